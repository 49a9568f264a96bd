#pragma once

// A buffered file on a library path, the base of the library's text files
// and of the trace log: open flags that callers combine as bits (their
// values are part of the public interface), byte reads and writes, line
// reads, seeking. Text mode performs no line-end
// translation on this platform ("\r\n" written is "\r\n" in the file).
// Failures are results, never exceptions.

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include <karvelui/CString.h>
#include <karvelui/Export.h>
#include <karvelui/Types.h>

namespace KarvelUI {

class KARVELUI_API CStdioFile {
 public:
  static constexpr UINT modeRead = 0x0000;
  static constexpr UINT modeWrite = 0x0001;
  static constexpr UINT modeReadWrite = 0x0002;
  static constexpr UINT shareDenyNone = 0x0040;
  static constexpr UINT modeCreate = 0x1000;
  static constexpr UINT modeNoTruncate = 0x2000;
  static constexpr UINT typeText = 0x4000;
  static constexpr UINT typeBinary = 0x8000;

  enum SeekPosition { begin = SEEK_SET, current = SEEK_CUR, end = SEEK_END };

  CStdioFile() = default;
  virtual ~CStdioFile() = default;
  CStdioFile(const CStdioFile&) = delete;
  CStdioFile& operator=(const CStdioFile&) = delete;

  // Opens path with the flags above. modeCreate without modeNoTruncate
  // empties an existing file; sharing flags have no meaning here.
  virtual BOOL Open(const CString& path, UINT flags);
  void Close();
  bool IsOpen() const { return m_file != nullptr; }

  // Bytes actually read (0 at the end or on error).
  UINT Read(void* buffer, UINT count);
  bool Write(const void* data, UINT count);
  // Reads up to maxBytes bytes, up to and including the next '\n'. False at
  // the end of the file with nothing read.
  bool ReadLineBytes(std::string& line, size_t maxBytes);
  // Reads 16-bit little-endian units up to and including the next line feed.
  bool ReadLineUtf16(std::u16string& line);

  std::uint64_t GetPosition() const;
  bool Seek(std::int64_t offset, SeekPosition from);
  bool SeekToEnd() { return Seek(0, end); }
  std::uint64_t GetLength() const;
  bool Flush();

  const CString& GetFilePath() const { return m_path; }
  // A null path is refused (the path stays as it was).
  bool SetFilePath(const wchar_t* path);

 private:
  struct FileCloser {
    void operator()(std::FILE* f) const { std::fclose(f); }
  };
  std::unique_ptr<std::FILE, FileCloser> m_file;
  CString m_path;
};

}  // namespace KarvelUI
