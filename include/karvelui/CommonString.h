#pragma once

// The process-wide string table (identifier -> display text, loaded from an
// "identifier=text" file) and the folder of the host application, plus the
// string-splitting and path helpers the library shares.
//
// String-table lines: trimmed; no '=' -> skipped; identifier = text before
// the first '=' (trimmed); text = the rest (trimmed), cut before the first
// ';' (a comment). "\r" and "\n" written in a text become real control
// characters when the text is fetched.

#include <cstdint>

#include <karvelui/Base.h>

namespace KarvelUI {

class KARVELUI_API CommonString {
 public:
  static CommonString* GetInstance();
  static void FreeInstance();
  static CommonString* m_pInstance;

  CommonString() { m_StringTable.InitHashTable(10); }
  virtual ~CommonString() = default;

  // Stores the folder of the host executable (backslash form, trailing
  // backslash).
  void SetAppPath();
  CString GetAppPath() const { return m_strAppPath; }

  // Merges the file into the table; 1, or 0 (after a message box) when the
  // file cannot be read.
  int LoadStringTable(const CString& path);
  // Appends the file's trimmed, non-empty lines to lines; 0 on failure.
  static int LoadStringTable(CStringArray& lines, const CString& path);
  // Writes each line followed by "\r\n" (replacing the file); 0 when it
  // cannot be created.
  static int WriteStringTable(const CStringArray& lines, const CString& path);
  CString GetStringViaID(const CString& id) const;
  void ClearAll() { m_StringTable.RemoveAll(); }
  // Like the file rule, but the text stops at a second '='. Returns 1.
  static int AnalyzeStringTable(const CStringArray& lines, CMapStringToString& map);

  // Splits text at every separator; empty pieces are kept and the text
  // after the last separator is always the last piece. 0 for an empty text.
  static int AnalyzeString(const CString& text, wchar_t separator, CStringArray& parts);
  static int AnalyzeString(const CString& text, const CString& separator, CStringArray& parts);
  static int AnalyzeString(const CString& text, wchar_t separator, CStringList& parts);
  static int AnalyzeString(const CString& text, const CString& separator, CStringList& parts);
  // tail = the text after the last `character` (untouched when there is
  // none); 0 only for an empty text.
  static int AnalyzeString(const CString& text, wchar_t character, CString& tail);

  // '/' -> '\', doubled backslashes halved; a path beginning with a single
  // backslash gains a second one.
  static CString ReparsePath(const CString& path);
  static CString GetFileDirFromPath(const CString& path);
  static CString GetFileNameFromPath(const CString& path);
  static CString GetFileNameNoExtension(const CString& path);
  static std::uint64_t GetFileSize(const CString& path);

 private:
  void AddTableLine(const CString& line);

  CString m_strAppPath;
  CMapStringToString m_StringTable;
};

// "3.00MB", "1.5KB", "1024B": megabytes above 1048576 bytes, kilobytes above
// 1024 (both limits exclusive).
KARVELUI_API CString GetFormatSizeString(std::uint64_t size);

}  // namespace KarvelUI
