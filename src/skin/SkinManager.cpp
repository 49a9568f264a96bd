#include <karvelui/SkinManager.h>

#include <karvelui/CommonString.h>
#include <karvelui/Helpers.h>
#include <karvelui/Trace.h>
#include "platform/FileSystem.h"
#include <karvelui/SkinReader.h>

namespace KarvelUI {
namespace {

// A program installed where its user cannot write keeps the chosen skin in
// the user's application-data folder instead; reading looks beside the
// program first, then there.
CString DataFolder() {
  CString folder;
  GetAppDataPath(folder);
  return folder;
}

}  // namespace

CUISkinManager* CUISkinManager::m_pInstance = nullptr;
CUISkinManager::BuiltInRegistration CUISkinManager::s_builtInRegistration = nullptr;
CUISkinManager::FormsSkinChanger CUISkinManager::s_formsSkinChanger = nullptr;

CUISkinManager* CUISkinManager::GetInstance() {
  if (!m_pInstance) m_pInstance = new CUISkinManager();
  return m_pInstance;
}

void CUISkinManager::FreeInstance() {
  if (m_pInstance) m_pInstance->Release();
  m_pInstance = nullptr;
}

void CUISkinManager::SetBuiltInRegistration(BuiltInRegistration registration) {
  s_builtInRegistration = registration;
}

void CUISkinManager::SetFormsSkinChanger(FormsSkinChanger changer) { s_formsSkinChanger = changer; }

CUISkinManager::CUISkinManager() {
  if (s_builtInRegistration) s_builtInRegistration(*this);
}

CUISkinManager::~CUISkinManager() {
  SavePreSkin();
  DeleteSkinContents();
}

void CUISkinManager::SetAppPath(const CString& folder) {
  m_strAppPath = folder;
  if (!m_strAppPath.IsEmpty() && m_strAppPath[m_strAppPath.GetLength() - 1] != L'\\') m_strAppPath += L'\\';
}

CString CUISkinManager::GetAppPath() const {
  return m_strAppPath.IsEmpty() ? CommonString::GetInstance()->GetAppPath() : m_strAppPath;
}

// --- loading ---------------------------------------------------------------------

CString CUISkinManager::ThemeFile(const CString& name) const {
  return GetAppPath() + L"Theme" + L"\\" + name;
}

CString CUISkinManager::SkinFile(const CString& skin) const {
  CString path;
  path.Format(L"%s%s\\%s\\%s", GetAppPath(), L"Theme", SkinFolder(skin), L"KarvelView.xml");
  return path;
}

// Skin names compare without case; on a case-sensitive file system the
// folder is found under the installed skin's own spelling.
CString CUISkinManager::SkinFolder(const CString& name) const {
  const SkinItem* item = FindSkinItem(name);
  return item ? item->m_strName : name;
}

int CUISkinManager::InitSkinData() {
  if (!LoadSkinBuildFile()) {
    g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"CUISkinManager InitSkinData()->LoadSkinBuidFile() occur Error");
    return 0;
  }
  if (!LoadAllSkinItem()) {
    g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"CUISkinManager InitSkinData()->LoadAllSkinItem() occur Error");
    return 0;
  }
  if (!LoadDefaultSkin()) {
    g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"CUISkinManager InitSkinData()->LoadDefaultSkin() occur Error");
    return 0;
  }
  if (!LoadPreSkin()) {
    g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"CUISkinManager InitSkinData()->LoadPreSkin() occur Error");
    return 0;
  }
  return 1;
}

int CUISkinManager::LoadSkinBuildFile() {
  m_pBuildDoc.reset();
  const CString path = ThemeFile(L"Build.xml");
  if (!PathExists(path)) return 0;
  auto doc = std::make_unique<CXmlDocument>();
  if (!doc->LoadFile(path)) return 0;
  m_pBuildDoc = std::move(doc);
  return 1;
}

int CUISkinManager::LoadAllSkinItem() {
  const CString path = ThemeFile(L"SkinDatas.xml");
  if (!PathExists(path)) return 0;
  CXmlDocument list;
  if (!list.LoadFile(path)) return 0;
  void* root = list.PathWalk(L"SkinsRoot");
  if (!root) return 1;
  for (void* skin = CXmlDocument::GetFirstChild(root); skin; skin = CXmlDocument::GetNextSibling(skin)) {
    m_skinItems.Add(SkinItem(CXmlDocument::GetNodeAttribute(skin, L"Name"),
                             CXmlDocument::GetNodeAttribute(skin, L"Text")));
  }
  return 1;
}

int CUISkinManager::LoadDefaultSkin() {
  // The (empty) document stays even when the file is missing.
  m_pDefaultSkinDoc = std::make_unique<CXmlDocument>();
  const CString path = SkinFile(m_strDefaultSkin);
  if (!PathExists(path)) return 0;
  if (!m_pDefaultSkinDoc->LoadFile(path)) {
    m_pDefaultSkinDoc.reset();
    return 0;
  }
  return 1;
}

int CUISkinManager::LoadPreSkin() {
  for (const CString& path : {GetAppPath() + L"PreSkin.xml", DataFolder() + L"\\PreSkin.xml"}) {
    if (!PathExists(path)) continue;
    CXmlDocument previous;
    previous.LoadFile(path);
    if (void* node = previous.PathWalk(L"PreSkin")) m_strPreSkin = CXmlDocument::GetNodeAttribute(node, L"Name");
    break;
  }
  if (m_strPreSkin.CompareNoCase(m_strDefaultSkin) != 0) SetSkinFile(m_strPreSkin);
  return 1;
}

int CUISkinManager::SavePreSkin() {
  m_strPreSkin = m_strCurrentSkin;
  CXmlDocument choice;
  CXmlDocument::SetNodeAttribute(choice.InsertEndChild(L"PreSkin"), L"Name", m_strPreSkin);
  if (IsFolderWritable(GetAppPath())) return choice.SaveFile(GetAppPath() + L"PreSkin.xml");
  const CString folder = DataFolder();
  CreateFolderTree(folder);
  return choice.SaveFile(folder + L"\\PreSkin.xml");
}

void CUISkinManager::DeleteSkinContents() { m_prototypes.RemoveAll(); }

int CUISkinManager::IncludeSkinFile(const CString& /*path*/) { return 1; }

int CUISkinManager::IncludeSkinBuildFile(const CString& /*path*/) { return 1; }

// --- skins -------------------------------------------------------------------------

int CUISkinManager::SetSkinFile(const CString& name) {
  if (name.CompareNoCase(m_strCurrentSkin) == 0) return 1;
  m_strCurrentSkin = name;
  m_pCurrentSkinDoc.reset();
  m_textStyles.RemoveAll();
  if (name.CompareNoCase(m_strDefaultSkin) == 0 || !FindSkinItem(name)) return 1;
  auto doc = std::make_unique<CXmlDocument>();
  if (!doc->LoadFile(SkinFile(name))) return 0;
  m_pCurrentSkinDoc = std::move(doc);
  return 1;
}

void CUISkinManager::SetCurrentSkin(const CString& name) {
  if (name.CompareNoCase(m_strCurrentSkin) == 0) return;
  m_bThemeChanging = 1;
  SetSkinFile(name);
  ChangeAllFormsSkin();
  m_bThemeChanging = 0;
}

int CUISkinManager::ReloadSkin() {
  auto defaultDoc = std::make_unique<CXmlDocument>();
  if (!defaultDoc->LoadFile(SkinFile(m_strDefaultSkin))) return 0;
  std::unique_ptr<CXmlDocument> currentDoc;  // none while the default skin is current
  if (m_strCurrentSkin.CompareNoCase(m_strDefaultSkin) != 0 && FindSkinItem(m_strCurrentSkin)) {
    currentDoc = std::make_unique<CXmlDocument>();
    if (!currentDoc->LoadFile(SkinFile(m_strCurrentSkin))) return 0;
  }
  m_pDefaultSkinDoc = std::move(defaultDoc);
  m_pCurrentSkinDoc = std::move(currentDoc);
  m_textStyles.RemoveAll();
  m_bThemeChanging = 1;
  ChangeAllFormsSkin();
  m_bThemeChanging = 0;
  return 1;
}

void CUISkinManager::ChangeAllFormsSkin() {
  if (s_formsSkinChanger) s_formsSkinChanger();
}

void CUISkinManager::GetAllSkinItem(CArray<SkinItem>& items) const { items.Copy(m_skinItems); }

const SkinItem* CUISkinManager::FindSkinItem(const CString& name) const {
  for (const SkinItem& item : m_skinItems)
    if (item.m_strName.CompareNoCase(name) == 0) return &item;
  return nullptr;
}

CString CUISkinManager::GetSkinNameText(const CString& name) const {
  const SkinItem* item = FindSkinItem(name);
  return item ? item->m_strText : CString();
}

CString CUISkinManager::TranslatePath(const CString& path, int fromDefault) const {
  if (path.IsEmpty()) return CString();
  CString full;
  if (path[0] == L'%') {
    full = GetAppPath() + path.Mid(1);
  } else if (path[0] == L'@') {
    full = GetAppPath() + L"Theme" + L"\\" + m_strDefaultSkin + L"\\" + path.Mid(1);
  } else {
    const CString skin = fromDefault ? CString(L"Default") : SkinFolder(m_strCurrentSkin);
    full = GetAppPath() + L"Theme" + L"\\" + skin + L"\\" + L"images" + L"\\" + path;
  }
  return CommonString::ReparsePath(full);
}

void* CUISkinManager::GetBuildNode(const CString& path) {
  return m_pBuildDoc ? m_pBuildDoc->PathWalk(path) : nullptr;
}

// --- factory and prototypes --------------------------------------------------------

int CUISkinManager::RegisterObjectCreateor(ObjectCreator creator) {
  m_creators.Add(creator);
  return 1;
}

CUIControl* CUISkinManager::CreateSkinObject(const CString& type) {
  for (ObjectCreator creator : m_creators) {
    if (!creator) continue;
    if (CUIControl* control = creator(type)) return control;
  }
  return nullptr;
}

void CUISkinManager::RegisterSkinCreateor(const CString& type, _SkinConfig* prototype) {
  SkinConfigPtr& slot = m_prototypes[type];
  (void)slot.release();  // a replaced prototype goes back to whoever still holds it
  slot.reset(prototype);
}

_SkinConfig* CUISkinManager::CreateSkinConfig(const CString& type) const {
  const SkinConfigPtr* prototype = m_prototypes.PLookup(type);
  return prototype && *prototype ? (*prototype)->Clone() : nullptr;
}

// --- lookups -----------------------------------------------------------------------

void* CUISkinManager::FindSkinNode(const CString& path, int& fromDefault) const {
  if (m_pCurrentSkinDoc) {
    if (void* node = m_pCurrentSkinDoc->PathWalk(path)) {
      fromDefault = 0;
      return node;
    }
  }
  if (m_pDefaultSkinDoc) {
    if (void* node = m_pDefaultSkinDoc->PathWalk(path)) {
      fromDefault = 1;
      return node;
    }
  }
  return nullptr;
}

void CUISkinManager::ReadCssData(const CString& css, const CString& type, _SkinConfig*& out) {
  if (css.IsEmpty()) return;
  CString path;
  path.Format(L"%s css %s %s", L"UIRoot", type, css);
  int fromDefault = 1;
  void* node = FindSkinNode(path, fromDefault);
  if (!node) return;
  const SkinConfigPtr* prototype = m_prototypes.PLookup(type);
  if (!prototype || !*prototype) {
    g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"SkinManager ReadCssData error, No defualt config: css(%s), type(%s)\n", css, type);
    return;
  }
  out = (*prototype)->Clone();
  if (out) {
    CSkinReader reader(node, fromDefault);
    out->Read(&reader);
  }
}

void CUISkinManager::ReadAssData(const CString& ass, const CString& name, _AssData* data) {
  if (!data || ass.IsEmpty()) return;
  CString path;
  path.Format(L"%s ass %s %s", L"UIRoot", name, ass);
  int fromDefault = 1;
  void* node = FindSkinNode(path, fromDefault);
  if (!node) return;
  // Layout entries name no files, so the flag does not matter here.
  _AssData read = *data;
  CSkinReader(node, 1).GetAssData(&read);
  *data = read;
}

void CUISkinManager::GetFontAndColor(const CString& name, LOGFONTW& font, DWORD& color) {
  if (const TextStyle* cached = m_textStyles.PLookup(name)) {
    font = cached->font;
    color = cached->color;
    return;
  }
  CString path;
  path.Format(L"%s css text %s", L"UIRoot", name);
  int fromDefault = 1;
  void* node = FindSkinNode(path, fromDefault);
  if (!node) return;
  GetDefaultLOGFONT(font);
  CSkinReader(node, fromDefault).GetFontKeys(font, color);
  m_textStyles[name] = TextStyle{font, color};
}

}  // namespace KarvelUI
