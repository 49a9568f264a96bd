#include <karvelui/SkinChecker.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <map>

#include <karvelui/SkinManager.h>
#include <karvelui/SkinReader.h>
#include <karvelui/UIControl.h>
#include <karvelui/XmlDocument.h>
#include "platform/FileSystem.h"
#include "render/PictureDecoder.h"
#include "skin/ValueScanner.h"
#include "skin/XmlRows.h"

namespace KarvelUI {
namespace {

constexpr const wchar_t* kDefaultSkin = L"Default";
constexpr const wchar_t* kBuildFile = L"Build.xml";
constexpr const wchar_t* kListFile = L"SkinDatas.xml";
constexpr int kStyleUnread = -1;  // no layout keyword took effect
constexpr int kMaxColorComponent = 255;

// The keys one Read asked for, per element, with the most precise kind.
class KeyLog : public ISkinKeyRecorder {
 public:
  void OnSkinKey(void* node, const CString& key, SkinKeyKind kind) override {
    auto [at, added] = m_keys[node].try_emplace(key, kind);
    if (!added) at->second = std::max(at->second, kind);
  }
  const SkinKeyKind* Find(void* node, const CString& key) const {
    const auto keys = m_keys.find(node);
    if (keys == m_keys.end()) return nullptr;
    const auto at = keys->second.find(key);
    return at == keys->second.end() ? nullptr : &at->second;
  }

 private:
  std::map<void*, std::map<CString, SkinKeyKind>> m_keys;
};

struct BuildNode {
  void* node;
  CString id, type, css, ass;
};

struct SkinSource {
  CString name;  // its folder
  CString file;  // relative to the theme folder
  int fromDefault = 0;
  XmlRowsDocument doc;
  bool loaded = false;
};

struct PictureFacts {
  bool exists = false;
  bool decodes = false;
  int width = 0, height = 0;  // 0: not known (multi-page files)
};

bool ReadInts(const CString& text, std::int32_t* values, int count) {
  ValueScanner scanner(text);
  for (int i = 0; i < count; ++i)
    if ((i > 0 && !scanner.ReadSeparator()) || !scanner.ReadInt(values[i])) return false;
  return scanner.AtEnd();
}

bool IsBool(const CString& text) {
  for (const wchar_t* word : {L"T", L"true", L"F", L"false"})
    if (text.CompareNoCase(word) == 0) return true;
  return false;
}

// What the value should have been, or empty when it reads as its kind.
CString ValueProblem(SkinKeyKind kind, const CString& text) {
  ValueScanner scanner(text);
  std::int32_t v[4] = {};
  float real = 0;
  switch (kind) {
    case SkinKeyKind::Int:
      return scanner.ReadInt(v[0]) && scanner.AtEnd() ? CString() : CString(L"a whole number");
    case SkinKeyKind::Number:
      return scanner.ReadAutoBaseInt(v[0]) && scanner.AtEnd() ? CString() : CString(L"a number (0x for hexadecimal)");
    case SkinKeyKind::Real:
      return scanner.ReadFloat(real) && scanner.AtEnd() ? CString() : CString(L"a number");
    case SkinKeyKind::Bool:
      return IsBool(text) ? CString() : CString(L"true or false");
    case SkinKeyKind::Size:
    case SkinKeyKind::Point:
      return ReadInts(text, v, 2) ? CString() : CString(L"a pair \"x, y\"");
    case SkinKeyKind::Color:
      if (ReadInts(text, v, 3) && std::all_of(v, v + 3, [](int c) { return c >= 0 && c <= kMaxColorComponent; }))
        return CString();
      return L"a colour \"red, green, blue\" of 0 to 255 each";
    case SkinKeyKind::Rect:
    case SkinKeyKind::SourceRect:
      return ReadInts(text, v, 4) ? CString() : CString(L"a rectangle \"a, b, c, d\"");
    case SkinKeyKind::FontFace:
      return text.GetLength() < LF_FACESIZE ? CString() : CString(L"a font face of at most 31 characters");
    default:
      return CString();
  }
}

class Checker {
 public:
  Checker(const CString& theme, std::vector<SkinFinding>& out) : m_theme(theme), m_out(out) {}

  SkinCheckResult Run(const CString& skin) {
    if (!PathExists(m_theme)) return Unreadable(CString(), L"no theme folder here");
    if (m_build.Load(Path(kBuildFile)) == XmlRowsDocument::kMissing) return Unreadable(kBuildFile, L"is missing");
    if (m_list.Load(Path(kListFile)) == XmlRowsDocument::kMissing) return Unreadable(kListFile, L"is missing");
    ReportParse(kBuildFile, m_build);
    ReportParse(kListFile, m_list);
    CollectForms();
    CollectSkins(skin);
    for (SkinSource& source : m_skins)
      if (source.loaded) CheckSkin(source);
    return m_out.empty() ? SKINCHECK_CLEAN : SKINCHECK_FINDINGS;
  }

 private:
  // --- findings and paths -------------------------------------------------------------

  void Add(const CString& file, int line, const CString& message, bool breaksLoading = false) {
    m_out.push_back({file, line, message, breaksLoading});
  }

  SkinCheckResult Unreadable(const CString& file, const wchar_t* message) {
    Add(file, 0, message, true);
    return SKINCHECK_UNREADABLE;
  }

  CString Path(CString relative) const {
    relative.Replace(L"/", L"\\");
    return m_theme + L"\\" + relative;
  }

  void ReportParse(const CString& file, const XmlRowsDocument& doc) {
    if (!doc.Root() && doc.ErrorRow() > 0) Add(file, doc.ErrorRow(), L"XML does not parse: " + doc.ErrorText(), true);
  }

  // --- the build file -------------------------------------------------------------------

  // The type name a control of `type` looks its entries up under; empty
  // when the factory makes no such control.
  CString ControlType(const CString& type) {
    if (const CString* known = m_types.PLookup(type)) return *known;
    CString resolved;
    if (CUIControl* control = CUISkinManager::GetInstance()->CreateSkinObject(type)) {
      resolved = control->GetType();
      control->Release();
    }
    m_types[type] = resolved;
    return resolved;
  }

  void CollectForms() {
    void* root = m_build.Root();
    if (!root) return;
    for (void* form = CXmlDocument::GetFirstChild(root); form; form = CXmlDocument::GetNextSibling(form)) {
      AddNode(form, L"CUIForm");
      CollectControls(form);
    }
  }

  void CollectControls(void* parent) {
    for (void* node = CXmlDocument::GetFirstChild(parent); node; node = CXmlDocument::GetNextSibling(node)) {
      const CString type = CXmlDocument::GetNodeAttribute(node, L"type");
      if (type.IsEmpty()) continue;  // names an existing control; builds nothing
      const CString resolved = ControlType(type);
      if (resolved.IsEmpty()) {
        Add(kBuildFile, XmlRowsDocument::AttributeRow(node, L"type"),
            Formatted(L"type \"%s\" of \"%s\" is no control type the factory makes", type, CXmlDocument::GetNodeName(node)));
        continue;
      }
      AddNode(node, resolved);
      CollectControls(node);
    }
  }

  void AddNode(void* node, const CString& type) {
    m_nodes.push_back({node, CXmlDocument::GetNodeName(node), type, CXmlDocument::GetNodeAttribute(node, L"css"),
                       CXmlDocument::GetNodeAttribute(node, L"ass")});
  }

  // Without a build file that parses every entry would look unused.
  bool Used(bool css, const CString& type, const CString& name) const {
    if (!m_build.Root()) return true;
    return std::any_of(m_nodes.begin(), m_nodes.end(),
                       [&](const BuildNode& n) { return n.type == type && (css ? n.css : n.ass) == name; });
  }

  // --- the skin list ---------------------------------------------------------------------

  void CollectSkins(const CString& only) {
    AddSkin(kDefaultSkin, 0);
    void* root = m_list.Root();
    bool found = only.IsEmpty() || only.CompareNoCase(kDefaultSkin) == 0;
    for (void* item = root ? CXmlDocument::GetFirstChild(root) : nullptr; item;
         item = CXmlDocument::GetNextSibling(item)) {
      const CString name = CXmlDocument::GetNodeAttribute(item, L"Name");
      if (name.IsEmpty()) {
        Add(kListFile, XmlRowsDocument::Row(item), L"a skin without \"Name\"");
        continue;
      }
      if (name.CompareNoCase(kDefaultSkin) == 0 || (!only.IsEmpty() && name.CompareNoCase(only) != 0)) continue;
      found = true;
      AddSkin(name, XmlRowsDocument::AttributeRow(item, L"Name"));
    }
    if (!found) Add(kListFile, root ? XmlRowsDocument::Row(root) : 1, Formatted(L"no skin \"%s\" is installed", only));
  }

  void AddSkin(const CString& name, int listRow) {
    SkinSource& source = m_skins.emplace_back();
    source.name = name;
    source.file = name + L"/KarvelView.xml";
    source.fromDefault = name.CompareNoCase(kDefaultSkin) == 0 ? 1 : 0;
    switch (source.doc.Load(Path(source.file))) {
      case XmlRowsDocument::kLoaded:
        source.loaded = true;
        break;
      case XmlRowsDocument::kMissing:
        if (listRow > 0)
          Add(kListFile, listRow, Formatted(L"skin \"%s\" has no %s", name, source.file));
        else
          Add(source.file, 0, L"is missing: the default skin answers every lookup", true);
        break;
      case XmlRowsDocument::kMalformed:
        ReportParse(source.file, source.doc);
        break;
    }
  }

  const SkinSource& DefaultSkin() const { return m_skins.front(); }

  // --- one skin file ------------------------------------------------------------------------

  void CheckSkin(SkinSource& skin) {
    void* root = skin.doc.Root();
    if (CXmlDocument::GetNodeName(root) != L"UIRoot") {
      Add(skin.file, XmlRowsDocument::Row(root), L"the root element is not <UIRoot>");
      return;
    }
    for (void* section = CXmlDocument::GetFirstChild(root); section; section = CXmlDocument::GetNextSibling(section)) {
      const CString name = CXmlDocument::GetNodeName(section);
      if (name == L"css")
        CheckCss(skin, section);
      else if (name == L"ass")
        CheckAss(skin, section);
      else
        Add(skin.file, XmlRowsDocument::Row(section), Formatted(L"element <%s> is not read (UIRoot holds css and ass)", name));
    }
    CheckBuildEntries(skin);
  }

  void CheckCss(const SkinSource& skin, void* css) {
    CUISkinManager* manager = CUISkinManager::GetInstance();
    for (void* group = CXmlDocument::GetFirstChild(css); group; group = CXmlDocument::GetNextSibling(group)) {
      const CString type = CXmlDocument::GetNodeName(group);
      const bool textStyles = type == L"text";
      const SkinConfigPtr probe(textStyles ? nullptr : manager->CreateSkinConfig(type));
      if (!textStyles && !probe) {
        Add(skin.file, XmlRowsDocument::Row(group), Formatted(L"css <%s> is no control type with a skin record", type));
        continue;
      }
      const bool madeByBuild = !textStyles && !ControlType(type).IsEmpty();
      for (void* entry = CXmlDocument::GetFirstChild(group); entry; entry = CXmlDocument::GetNextSibling(entry)) {
        KeyLog log;
        {
          const CSkinKeyRecording recording(log);
          CSkinReader reader(entry, skin.fromDefault);
          if (textStyles) {
            LOGFONTW font{};
            DWORD color = 0;
            reader.GetFontKeys(font, color);
          } else {
            const SkinConfigPtr config(manager->CreateSkinConfig(type));
            config->Read(&reader);
          }
        }
        CheckElement(skin, entry, log, textStyles ? CString(L"a text style") : type + L"'s record", nullptr);
        const CString name = CXmlDocument::GetNodeName(entry);
        if (madeByBuild && !Used(true, type, name))
          Add(skin.file, XmlRowsDocument::Row(entry), Formatted(L"css entry \"%s %s\" is used by no build node", type, name));
      }
    }
  }

  void CheckAss(const SkinSource& skin, void* ass) {
    for (void* group = CXmlDocument::GetFirstChild(ass); group; group = CXmlDocument::GetNextSibling(group)) {
      const CString type = CXmlDocument::GetNodeName(group);
      if (ControlType(type).IsEmpty()) {
        Add(skin.file, XmlRowsDocument::Row(group), Formatted(L"ass <%s> is no control type the factory makes", type));
        continue;
      }
      for (void* entry = CXmlDocument::GetFirstChild(group); entry; entry = CXmlDocument::GetNextSibling(entry)) {
        KeyLog log;
        _AssData layout;
        layout.m_nStyle = kStyleUnread;
        {
          const CSkinKeyRecording recording(log);
          CSkinReader(entry, skin.fromDefault).GetAssData(&layout);
        }
        CheckElement(skin, entry, log, L"a layout entry", nullptr);
        if (layout.m_nStyle == kStyleUnread) CheckStyleKeyword(skin, entry);
        const CString name = CXmlDocument::GetNodeName(entry);
        if (!Used(false, type, name))
          Add(skin.file, XmlRowsDocument::Row(entry), Formatted(L"ass entry \"%s %s\" is used by no build node", type, name));
      }
    }
  }

  // The reader's own keyword tables decided: a style key was given but no
  // style came of it.
  void CheckStyleKeyword(const SkinSource& skin, void* entry) {
    for (const wchar_t* key : {L"DockStyle", L"AnchorStyle"}) {
      const CString value = CXmlDocument::GetNodeAttribute(entry, key);
      if (value.IsEmpty()) continue;
      Add(skin.file, XmlRowsDocument::AttributeRow(entry, key),
          Formatted(L"value \"%s\" of \"%s\" is no layout keyword", value, key));
      return;
    }
  }

  void CheckElement(const SkinSource& skin, void* element, const KeyLog& log, const CString& owner,
                    const PictureFacts* picture) {
    const PictureFacts* facts = picture;
    if (const SkinKeyKind* file = log.Find(element, L"File"); file && *file == SkinKeyKind::Picture) {
      const CString written = CXmlDocument::GetNodeAttribute(element, L"File");
      if (!written.IsEmpty()) facts = &CheckPicture(skin, written, XmlRowsDocument::AttributeRow(element, L"File"));
    }
    CStringArray attributes;
    XmlRowsDocument::AttributeNames(element, attributes);
    for (const CString& key : attributes) {
      const int row = XmlRowsDocument::AttributeRow(element, key);
      const SkinKeyKind* kind = log.Find(element, key);
      if (!kind || *kind == SkinKeyKind::Child) {
        Add(skin.file, row, Formatted(L"\"%s\" is not read by %s (misspelt?)", key, owner));
        continue;
      }
      const CString value = CXmlDocument::GetNodeAttribute(element, key);
      const CString expected = ValueProblem(*kind, value);
      if (!expected.IsEmpty()) {
        Add(skin.file, row, Formatted(L"value \"%s\" of \"%s\" is not ", value, key) + expected);
        continue;
      }
      std::int32_t v[4] = {};
      if (*kind == SkinKeyKind::SourceRect && facts && facts->width > 0 && ReadInts(value, v, 4) &&
          !(v[0] >= 0 && v[0] <= v[2] && v[2] <= facts->width && v[1] >= 0 && v[1] <= v[3] && v[3] <= facts->height)) {
        CString message = Formatted(L"\"%s\" (%s) leaves its picture", key, value);
        message.AppendFormat(L" of %d x %d", facts->width, facts->height);
        Add(skin.file, row, message);
      }
      if (*kind == SkinKeyKind::Size && key == L"ItemSize" && ReadInts(value, v, 2) && v[0] == 0)
        Add(skin.file, row, L"\"ItemSize\" has zero width");
    }
    CMap<CString, const CString&, int, int> seen;
    for (void* child = CXmlDocument::GetFirstChild(element); child; child = CXmlDocument::GetNextSibling(child)) {
      const CString name = CXmlDocument::GetNodeName(child);
      const SkinKeyKind* kind = log.Find(element, name);
      const int row = XmlRowsDocument::Row(child);
      if (!kind || *kind != SkinKeyKind::Child)
        Add(skin.file, row, Formatted(L"element <%s> is not read by %s (misspelt?)", name, owner));
      else if (seen.PLookup(name))
        Add(skin.file, row, Formatted(L"a second <%s>: only the first is read", name));
      else
        CheckElement(skin, child, log, owner, facts);
      seen[name] = 1;
    }
  }

  // --- pictures ---------------------------------------------------------------------------

  // Where a picture named in this skin lives, relative to the theme folder
  // ('%': the folder above it, '@': the default skin's folder).
  CString PictureFile(const SkinSource& skin, const CString& written) const {
    if (written[0] == L'%') return L"../" + written.Mid(1);
    if (written[0] == L'@') return CString(kDefaultSkin) + L"/" + written.Mid(1);
    return (skin.fromDefault ? CString(kDefaultSkin) : skin.name) + L"/images/" + written;
  }

  const PictureFacts& CheckPicture(const SkinSource& skin, const CString& written, int row) {
    const CString file = PictureFile(skin, written);
    const PictureFacts& facts = Facts(Path(file));
    if (!facts.exists)
      Add(skin.file, row, Formatted(L"picture \"%s\" does not exist (%s)", written, file));
    else if (!facts.decodes)
      Add(skin.file, row, Formatted(L"picture \"%s\" cannot be decoded (%s)", written, file));
    return facts;
  }

  const PictureFacts& Facts(const CString& path) {
    if (const PictureFacts* known = m_pictures.PLookup(path)) return *known;
    PictureFacts facts;
    PictureHeader header;
    facts.exists = PathExists(path);
    if (facts.exists && ReadPictureHeader(path, header)) {
      if (IsMultiPageFormat(header.format)) {
        facts.decodes = OpenMultiPagePicture(path, header.format) != nullptr;
      } else {
        facts.decodes = LoadPicture(path, header.format) != nullptr;
        facts.width = static_cast<int>(header.width);
        facts.height = static_cast<int>(header.height);
      }
    }
    m_pictures[path] = facts;
    return *m_pictures.PLookup(path);
  }

  // --- what the build file asks of a skin ----------------------------------------------------

  void* FindEntry(const SkinSource& skin, const wchar_t* section, const CString& type, const CString& name) const {
    if (!skin.loaded) return nullptr;
    void* node = CXmlDocument::FindChild(skin.doc.Root(), section);
    node = CXmlDocument::FindChild(node, type);
    return CXmlDocument::FindChild(node, name);
  }

  void CheckBuildEntries(const SkinSource& skin) {
    const bool isDefault = skin.fromDefault != 0;
    CString where = skin.file;
    if (!isDefault) where += L" nor " + DefaultSkin().file;
    for (const BuildNode& node : m_nodes) {
      for (const bool css : {true, false}) {
        const CString& name = css ? node.css : node.ass;
        const wchar_t* section = css ? L"css" : L"ass";
        if (name.IsEmpty()) continue;
        const int row = XmlRowsDocument::AttributeRow(node.node, section);
        if (!FindEntry(skin, section, node.type, name) && (isDefault || !FindEntry(DefaultSkin(), section, node.type, name))) {
          CString message = Formatted(L"%s entry \"%s ", section, node.type);
          message += Formatted(L"%s\" of \"%s\" is in neither ", name, node.id) + where;
          if (isDefault) message.Replace(L"in neither ", L"not in ");
          Add(kBuildFile, row, message);
        } else if (css && !SkinConfigPtr(CUISkinManager::GetInstance()->CreateSkinConfig(node.type))) {
          Add(kBuildFile, row, Formatted(L"\"%s\" has a css entry, but %s has no skin record", node.id, node.type));
        }
      }
    }
  }

  template <typename... Args>
  static CString Formatted(const wchar_t* format, const Args&... args) {
    CString text;
    text.Format(format, args...);
    return text;
  }

  CString m_theme;
  std::vector<SkinFinding>& m_out;
  XmlRowsDocument m_build, m_list;
  std::vector<BuildNode> m_nodes;
  std::deque<SkinSource> m_skins;  // a deque: documents do not move
  CMap<CString, const CString&, CString, const CString&> m_types;
  CMap<CString, const CString&, PictureFacts, const PictureFacts&> m_pictures;
};

}  // namespace

SkinCheckResult CSkinChecker::Check(const CString& themeFolder, const CString& skin,
                                    std::vector<SkinFinding>& findings) {
  findings.clear();
  const SkinCheckResult result = Checker(themeFolder, findings).Run(skin);
  std::stable_sort(findings.begin(), findings.end(), [](const SkinFinding& a, const SkinFinding& b) {
    return a.file != b.file ? a.file < b.file : a.line < b.line;
  });
  findings.erase(std::unique(findings.begin(), findings.end(),
                             [](const SkinFinding& a, const SkinFinding& b) {
                               return a.file == b.file && a.line == b.line && a.message == b.message;
                             }),
                 findings.end());
  return result;
}

CString CSkinChecker::FormatFinding(const SkinFinding& finding, const CString& folder) {
  CString file = finding.file;
  if (!folder.IsEmpty()) file = file.IsEmpty() ? folder : folder + L"/" + file;
  CString line;
  if (finding.line > 0)
    line.Format(L"%s:%d: %s", file, finding.line, finding.message);
  else
    line.Format(L"%s: %s", file, finding.message);
  return line;
}

}  // namespace KarvelUI
