#pragma once

// Line-oriented text files whose content is either UTF-16 little-endian
// (with a byte-order mark) or narrow text in a code page; every line reaches
// the program as a wide string.
//
// Reading: a file opened for reading in text mode is probed for the UTF-16
// mark and then read as UTF-16; anything else is narrow text, read in pieces
// of at most 4095 bytes per ReadString. Writing: UTF-16 (mark first) with
// modeWriteUnicode, else narrow text in the file's code page.

#include <karvelui/CString.h>
#include <karvelui/Export.h>
#include <karvelui/StdioFile.h>

namespace KarvelUI {

class KARVELUI_API CStdioFileEx : public CStdioFile {
 public:
  static constexpr UINT modeWriteUnicode = 0x20000;
  static constexpr size_t kNarrowPiece = 4095;  // bytes per narrow read
  // Larger files are not opened for reading (a UTF-16 line is held whole,
  // and every caller reads a file to its end).
  static constexpr std::uint64_t kMaxReadBytes = 16u << 20;

  CStdioFileEx() = default;
  ~CStdioFileEx() override = default;

  BOOL Open(const CString& path, UINT flags) override;
  // Next line without its line end; FALSE at the end of the file.
  BOOL ReadString(CString& line);
  // Writes text as it is (no line end added).
  bool WriteString(const CString& text);

  bool IsFileUnicodeText() const { return m_bIsUnicodeText != 0; }
  UINT GetOpenFlags() const { return m_nFlags; }
  // -1 (the default) means the system's ANSI code page.
  void SetCodePage(int codePage) { m_nFileCodePage = codePage; }
  int GetCodePage() const { return m_nFileCodePage; }

 private:
  static bool StartsWithUtf16Mark(const CString& path);
  UINT NarrowCodePage() const;

  int m_bIsUnicodeText = 0;
  UINT m_nFlags = 0;
  int m_nFileCodePage = -1;
};

}  // namespace KarvelUI
