#include <karvelui/XmlDocument.h>

#include <tinyxml.h>

#include <stdexcept>
#include <string>
#include <string_view>

#include <karvelui/CommonString.h>
#include <karvelui/Helpers.h>
#include "platform/MappedFile.h"
#include <karvelui/StdioFile.h>
#include <karvelui/Trace.h>
#include "skin/XmlText.h"

namespace KarvelUI {
namespace {

constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";

std::string Narrow(const CString& text) {
  std::string out;
  CString_to_MBCS(text, out);
  return out;
}

CString Widen(const char* text) {
  CString out;
  MBCS_to_CString(text, out);
  return out;
}

TiXmlElement* AsElement(void* node) { return static_cast<TiXmlElement*>(node); }

struct ParsedFile {
  std::unique_ptr<TiXmlDocument> doc;
  bool utf8Bom = false;
};

// Reads, prepares and parses one file; no document when any step fails.
ParsedFile ParseXmlFile(const CString& path) {
  ParsedFile parsed;
  const MappedFile file(path);
  if (!file.IsOpen()) return parsed;
  if (file.Size() > kMaxXmlFileBytes) {
    g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"<ERROR> XML file of %llu bytes is over the limit: %s",
                    static_cast<unsigned long long>(file.Size()), path);
    return parsed;
  }
  const std::string_view bytes(reinterpret_cast<const char*>(file.Data()), file.Size());
  const std::optional<std::string> text = PrepareXmlText(bytes);
  if (!text) {
    g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH,
                    L"<ERROR> XML file nested deeper than %d or with more than %d attributes on an element: %s",
                    kMaxXmlElementDepth, kMaxXmlAttributes, path);
    return parsed;
  }

  auto doc = std::make_unique<TiXmlDocument>(Narrow(path).c_str());
  doc->SetTabSize(0);  // no row/column tracking: it can spin on stray lead bytes
  doc->Parse(text->c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
  // A declaration or a comment alone parses: a document without elements.
  if (doc->Error()) return parsed;
  parsed.doc = std::move(doc);
  parsed.utf8Bom = text->starts_with(kUtf8Bom);
  return parsed;
}

bool WriteBytes(const CString& path, const std::string& bytes) {
  CStdioFile file;
  if (!file.Open(path, CStdioFile::modeCreate | CStdioFile::modeWrite | CStdioFile::typeBinary)) return false;
  return file.Write(bytes.data(), static_cast<UINT>(bytes.size())) && file.Flush();
}

// The first top-level element named `name`; empty names match nothing.
TiXmlElement* FirstElementNamed(TiXmlNode* parent, const CString& name) {
  if (name.IsEmpty()) return nullptr;
  return parent->FirstChildElement(Narrow(name).c_str());
}

}  // namespace

CXmlDocument::CXmlDocument() = default;

CXmlDocument::CXmlDocument(const CString& path) { LoadFile(path); }

CXmlDocument::~CXmlDocument() = default;

int CXmlDocument::LoadFile(const CString& path) {
  Clear();
  ParsedFile parsed = ParseXmlFile(path);
  if (!parsed.doc) return 0;
  m_pDoc = std::move(parsed.doc);
  m_bUtf8Bom = parsed.utf8Bom;
  return 1;
}

int CXmlDocument::SaveFile() {
  if (!m_pDoc) return 0;
  return SaveFile(Widen(m_pDoc->Value()));
}

int CXmlDocument::SaveFile(const CString& path) {
  if (!m_pDoc) return 0;
  TiXmlPrinter printer;
  m_pDoc->Accept(&printer);
  std::string bytes = m_bUtf8Bom ? std::string(kUtf8Bom) : std::string();
  bytes.append(printer.CStr(), printer.Size());
  return WriteBytes(path, bytes) ? 1 : 0;
}

void CXmlDocument::Clear() {
  m_pDoc.reset();
  m_bUtf8Bom = false;
}

void* CXmlDocument::PathWalk(const CString& path) {
  if (!m_pDoc) return nullptr;
  CStringArray pieces;
  CommonString::AnalyzeString(path, L' ', pieces);
  if (pieces.IsEmpty()) throw std::invalid_argument("CXmlDocument::PathWalk: empty path");
  TiXmlElement* element = FirstElementNamed(m_pDoc.get(), pieces[0]);
  for (INT_PTR i = 1; element && i < pieces.GetSize(); ++i) element = FirstElementNamed(element, pieces[i]);
  return element;
}

void* CXmlDocument::InsertEndChild(const CString& name) {
  if (!m_pDoc) m_pDoc = std::make_unique<TiXmlDocument>();
  TiXmlNode* added = m_pDoc->LinkEndChild(new TiXmlElement(Narrow(name).c_str()));
  return added ? added->ToElement() : nullptr;
}

int CXmlDocument::Include(const CString& file, const CString& path, int merge) {
  const ParsedFile included = ParseXmlFile(file);
  if (!included.doc) return 0;
  TiXmlElement* target = AsElement(PathWalk(path));
  TiXmlElement* root = included.doc->RootElement();
  if (!target || !root) return 0;

  TiXmlElement* existing = merge ? target->FirstChildElement(root->Value()) : nullptr;
  if (!existing) return target->InsertEndChild(*root) ? 1 : 0;
  for (TiXmlElement* child = root->FirstChildElement(); child; child = child->NextSiblingElement()) {
    if (!existing->InsertEndChild(*child)) return 0;
  }
  return 1;
}

CString CXmlDocument::GetNodeName(void* node) { return node ? Widen(AsElement(node)->Value()) : CString(); }

CString CXmlDocument::GetNodeText(void* node) {
  if (!node) return CString();
  return Widen(AsElement(node)->GetText());
}

CString CXmlDocument::GetNodeAttribute(void* node, const CString& name) {
  if (!node) return CString();
  return Widen(AsElement(node)->Attribute(Narrow(name).c_str()));
}

void* CXmlDocument::SetNodeAttribute(void* node, const CString& name, const CString& value) {
  if (!node) return nullptr;
  AsElement(node)->SetAttribute(Narrow(name).c_str(), Narrow(value).c_str());
  return node;
}

void* CXmlDocument::FindChild(void* node, const CString& name) { return GetFirstChild(node, name); }

// Callers never pass null to these three; answering null anyway keeps a
// damaged skin from becoming a crash.
void* CXmlDocument::GetFirstChild(void* node) { return node ? AsElement(node)->FirstChildElement() : nullptr; }

void* CXmlDocument::GetFirstChild(void* node, const CString& name) {
  return node ? AsElement(node)->FirstChildElement(Narrow(name).c_str()) : nullptr;
}

void* CXmlDocument::GetNextSibling(void* node) { return node ? AsElement(node)->NextSiblingElement() : nullptr; }

void* CXmlDocument::CreateNode(const CString& name) { return new TiXmlElement(Narrow(name).c_str()); }

int CXmlDocument::DeleteNode(void* node) {
  delete AsElement(node);
  return 1;
}

void* CXmlDocument::InsertEndChild(void* parent, void* child) {
  if (!parent || !child) return nullptr;
  TiXmlNode* copy = AsElement(parent)->InsertEndChild(*AsElement(child));
  return copy ? copy->ToElement() : nullptr;
}

}  // namespace KarvelUI
