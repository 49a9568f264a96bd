#include <karvelui/StdioFile.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/Paths.h"

namespace KarvelUI {
namespace {

int OpenFlagsFor(UINT flags) {
  int posix = O_CLOEXEC;
  if (flags & CStdioFile::modeReadWrite) posix |= O_RDWR;
  else if (flags & CStdioFile::modeWrite) posix |= O_WRONLY;
  else posix |= O_RDONLY;
  if (flags & CStdioFile::modeCreate) {
    posix |= O_CREAT;
    if (!(flags & CStdioFile::modeNoTruncate)) posix |= O_TRUNC;
  }
  return posix;
}

const char* StreamModeFor(UINT flags) {
  if (flags & CStdioFile::modeReadWrite) return "r+b";
  if (flags & CStdioFile::modeWrite) return "wb";
  return "rb";
}

}  // namespace

BOOL CStdioFile::Open(const CString& path, UINT flags) {
  Close();
  if (path.IsEmpty()) return FALSE;
  const int fd = ::open(ToNativePath(path).c_str(), OpenFlagsFor(flags), 0666);
  if (fd < 0) return FALSE;
  struct stat st{};
  if (fstat(fd, &st) != 0 || S_ISDIR(st.st_mode)) {
    ::close(fd);
    return FALSE;
  }
  std::FILE* stream = fdopen(fd, StreamModeFor(flags));
  if (!stream) {
    ::close(fd);
    return FALSE;
  }
  m_file.reset(stream);
  m_path = path;
  return TRUE;
}

void CStdioFile::Close() { m_file.reset(); }

UINT CStdioFile::Read(void* buffer, UINT count) {
  if (!m_file || count == 0) return 0;
  return static_cast<UINT>(std::fread(buffer, 1, count, m_file.get()));
}

bool CStdioFile::Write(const void* data, UINT count) {
  if (!m_file) return false;
  if (count == 0) return true;
  return std::fwrite(data, 1, count, m_file.get()) == count;
}

bool CStdioFile::ReadLineBytes(std::string& line, size_t maxBytes) {
  line.clear();
  if (!m_file) return false;
  while (line.size() < maxBytes) {
    const int c = std::fgetc(m_file.get());
    if (c == EOF) break;
    line += static_cast<char>(c);
    if (c == '\n') break;
  }
  return !line.empty();
}

bool CStdioFile::ReadLineUtf16(std::u16string& line) {
  line.clear();
  if (!m_file) return false;
  for (;;) {
    unsigned char pair[2];
    if (std::fread(pair, 1, 2, m_file.get()) != 2) break;  // a dangling odd byte is dropped
    const char16_t unit = static_cast<char16_t>(pair[0] | (pair[1] << 8));
    line += unit;
    if (unit == u'\n') break;
  }
  return !line.empty();
}

std::uint64_t CStdioFile::GetPosition() const {
  if (!m_file) return 0;
  const off_t at = ftello(m_file.get());
  return at < 0 ? 0 : static_cast<std::uint64_t>(at);
}

bool CStdioFile::Seek(std::int64_t offset, SeekPosition from) {
  return m_file && fseeko(m_file.get(), static_cast<off_t>(offset), from) == 0;
}

std::uint64_t CStdioFile::GetLength() const {
  if (!m_file) return 0;
  // Seeking to the end also accounts for bytes still in the write buffer.
  std::FILE* f = m_file.get();
  const off_t at = ftello(f);
  if (at < 0 || fseeko(f, 0, SEEK_END) != 0) return 0;
  const off_t length = ftello(f);
  fseeko(f, at, SEEK_SET);
  return length < 0 ? 0 : static_cast<std::uint64_t>(length);
}

bool CStdioFile::Flush() { return m_file && std::fflush(m_file.get()) == 0; }

bool CStdioFile::SetFilePath(const wchar_t* path) {
  if (!path) return false;
  m_path = path;
  return true;
}

}  // namespace KarvelUI
