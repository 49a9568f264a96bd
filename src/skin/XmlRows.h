#pragma once

// A skin file read for a tool that points its author at lines. Unlike
// CXmlDocument, its elements and attributes remember the rows they start
// on, and a file that does not parse tells where and why. Node handles are
// the same as CXmlDocument's, so CSkinReader and the static helpers of
// CXmlDocument work on them. Internal to the library (the skin checker).

#include <memory>

#include <karvelui/Base.h>

class TiXmlDocument;

namespace KarvelUI {

class XmlRowsDocument {
 public:
  enum LoadResult { kLoaded, kMissing, kMalformed };

  XmlRowsDocument();
  ~XmlRowsDocument();
  XmlRowsDocument(const XmlRowsDocument&) = delete;
  XmlRowsDocument& operator=(const XmlRowsDocument&) = delete;

  // The same preparation and limits as CXmlDocument::LoadFile.
  LoadResult Load(const CString& path);
  // The first top-level element; null without a tree.
  void* Root() const;
  // Where and why a kMalformed file failed (row 1 for a file refused whole).
  int ErrorRow() const { return m_nErrorRow; }
  const CString& ErrorText() const { return m_strError; }

  // Rows count from 1.
  static int Row(void* node);
  // The attribute's row; the element's when it has no such attribute.
  static int AttributeRow(void* node, const CString& name);
  // The element's attribute names in document order.
  static void AttributeNames(void* node, CStringArray& names);

 private:
  std::unique_ptr<TiXmlDocument> m_pDoc;
  int m_nErrorRow = 0;
  CString m_strError;
};

}  // namespace KarvelUI
