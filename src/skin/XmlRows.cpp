#include "skin/XmlRows.h"

#include <tinyxml.h>

#include <string>
#include <string_view>

#include <karvelui/Helpers.h>
#include "platform/FileSystem.h"
#include "platform/MappedFile.h"
#include "skin/XmlText.h"

namespace KarvelUI {
namespace {

// Any width above 0 switches row tracking on; columns are not reported.
constexpr int kTrackingTabSize = 1;

TiXmlElement* AsElement(void* node) { return static_cast<TiXmlElement*>(node); }

CString Widen(const char* text) {
  CString out;
  MBCS_to_CString(text, out);
  return out;
}

}  // namespace

XmlRowsDocument::XmlRowsDocument() = default;
XmlRowsDocument::~XmlRowsDocument() = default;

XmlRowsDocument::LoadResult XmlRowsDocument::Load(const CString& path) {
  m_pDoc.reset();
  m_nErrorRow = 1;
  if (!PathExists(path)) return kMissing;
  const MappedFile file(path);
  if (!file.IsOpen()) return kMissing;
  if (file.Size() > kMaxXmlFileBytes) {
    m_strError = L"the file is larger than the 8 MiB a skin file may have";
    return kMalformed;
  }
  const std::string_view bytes(reinterpret_cast<const char*>(file.Data()), file.Size());
  const std::optional<std::string> text = PrepareXmlText(bytes);
  if (!text) {
    m_strError = L"elements are nested too deeply or carry too many attributes";
    return kMalformed;
  }
  auto doc = std::make_unique<TiXmlDocument>();
  // Tracking rows is safe here: the prepared text holds only whole UTF-8
  // sequences, so the parser's row counter never stops on a stray lead byte.
  doc->SetTabSize(kTrackingTabSize);
  doc->Parse(text->c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
  if (doc->Error()) {
    m_nErrorRow = doc->ErrorRow() > 0 ? doc->ErrorRow() : 1;
    m_strError = Widen(doc->ErrorDesc());
    return kMalformed;
  }
  m_pDoc = std::move(doc);
  m_nErrorRow = 0;
  return kLoaded;
}

void* XmlRowsDocument::Root() const { return m_pDoc ? m_pDoc->RootElement() : nullptr; }

int XmlRowsDocument::Row(void* node) { return node ? AsElement(node)->Row() : 0; }

int XmlRowsDocument::AttributeRow(void* node, const CString& name) {
  if (!node) return 0;
  std::string narrow;
  CString_to_MBCS(name, narrow);
  for (const TiXmlAttribute* a = AsElement(node)->FirstAttribute(); a; a = a->Next())
    if (narrow == a->Name()) return a->Row();
  return Row(node);
}

void XmlRowsDocument::AttributeNames(void* node, CStringArray& names) {
  names.RemoveAll();
  if (!node) return;
  for (const TiXmlAttribute* a = AsElement(node)->FirstAttribute(); a; a = a->Next()) names.Add(Widen(a->Name()));
}

}  // namespace KarvelUI
