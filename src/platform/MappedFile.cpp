#include "platform/MappedFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

#include "platform/Paths.h"

namespace KarvelUI {

MappedFile::MappedFile(MappedFile&& other) noexcept
    : m_data(std::exchange(other.m_data, nullptr)), m_size(std::exchange(other.m_size, 0)) {}

MappedFile& MappedFile::operator=(MappedFile&& other) noexcept {
  if (this != &other) {
    Close();
    m_data = std::exchange(other.m_data, nullptr);
    m_size = std::exchange(other.m_size, 0);
  }
  return *this;
}

bool MappedFile::Open(const CString& path) {
  Close();
  if (path.IsEmpty()) return false;
  const int fd = ::open(ToNativePath(path).c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  struct stat st{};
  if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || st.st_size <= 0) {
    ::close(fd);
    return false;
  }
  // The mapping keeps its own reference to the file; the descriptor can go.
  void* address = mmap(nullptr, static_cast<size_t>(st.st_size), PROT_READ, MAP_PRIVATE, fd, 0);
  ::close(fd);
  if (address == MAP_FAILED) return false;
  m_data = static_cast<const std::uint8_t*>(address);
  m_size = static_cast<size_t>(st.st_size);
  return true;
}

void MappedFile::Close() {
  if (m_data) munmap(const_cast<std::uint8_t*>(m_data), m_size);
  m_data = nullptr;
  m_size = 0;
}

}  // namespace KarvelUI
