#pragma once

// CXmlDocument: the library's only door to XML. It owns one parsed tree,
// loads it from and saves it to a file, grafts other files into it, and its
// static helpers work on single elements of any tree through node handles.
//
// A node handle (void*) names one element of a tree; it lives as long as
// that tree (until Clear, LoadFile or destruction) and is never owned by
// the holder, except a free-standing node from CreateNode, which the caller
// frees with DeleteNode. Children are visited with GetFirstChild and
// GetNextSibling, which see elements only, in document order.
//
// Text crosses as UTF-8, the narrow code page of this platform, in both
// directions. Paths are library paths. Empty, truncated or not well-formed
// files fail to load: 0 and no tree; so do files past the limits that keep
// a hostile file from exhausting memory or the stack (src/skin/XmlText.h):
// larger than 8 MiB, elements nested deeper than 256, or an element with
// more than 1024 attributes. A file holding only a declaration or a comment
// loads as a document without elements. A file that starts with a UTF-8
// byte-order mark is saved back with one.

#include <memory>

#include <karvelui/Base.h>

class TiXmlDocument;

namespace KarvelUI {

class KARVELUI_API CXmlDocument {
 public:
  CXmlDocument();
  // LoadFile(path); the result is not reported (IsLoaded tells).
  explicit CXmlDocument(const CString& path);
  virtual ~CXmlDocument();
  // A document owns its tree alone.
  CXmlDocument(const CXmlDocument&) = delete;
  CXmlDocument& operator=(const CXmlDocument&) = delete;

  // Replaces any tree with the file's; 1 on success, else 0 and no tree.
  int LoadFile(const CString& path);
  // Writes the tree to the file it was loaded from; 0 without a tree.
  int SaveFile();
  int SaveFile(const CString& path);
  void Clear();
  bool IsLoaded() const { return m_pDoc != nullptr; }

  // Element found by names separated by single spaces: the first top-level
  // element named like the first piece, then the first child element named
  // like each further piece. Empty pieces match nothing. Null without a
  // tree. Throws std::invalid_argument for an empty path.
  void* PathWalk(const CString& path);
  // Appends a new top-level element (creating an empty document when none
  // is held); its handle, or null.
  void* InsertEndChild(const CString& name);
  // Grafts the root element of `file` under PathWalk(path). With `merge`,
  // when the target already has a child named like that root, the root's
  // child elements are appended to that child instead. 1 on success.
  int Include(const CString& file, const CString& path, int merge);

  static CString GetNodeName(void* node);
  // Text of the element's first child when that child is text; else empty.
  static CString GetNodeText(void* node);
  static CString GetNodeAttribute(void* node, const CString& name);
  // Sets or appends the attribute; returns node (null for a null node).
  static void* SetNodeAttribute(void* node, const CString& name, const CString& value);
  // First child element named exactly `name`; null for a null node.
  static void* FindChild(void* node, const CString& name);
  // Callers pass a non-null node to these three (null gives null).
  static void* GetFirstChild(void* node);
  static void* GetFirstChild(void* node, const CString& name);
  static void* GetNextSibling(void* node);
  // A free-standing element owned by the caller (free it with DeleteNode).
  static void* CreateNode(const CString& name);
  // Only for nodes outside any tree. Always 1.
  static int DeleteNode(void* node);
  // Appends a deep copy of child to parent; the copy's handle, or null when
  // either is null. child stays the caller's.
  static void* InsertEndChild(void* parent, void* child);

 private:
  std::unique_ptr<TiXmlDocument> m_pDoc;
  // The loaded file began with a UTF-8 byte-order mark; saving writes one.
  bool m_bUtf8Bom = false;
};

}  // namespace KarvelUI
