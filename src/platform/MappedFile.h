#pragma once

// A whole file mapped read-only into memory. Missing, unreadable, empty and
// non-regular files fail to open (IsOpen() false, no data). Move-only; the
// mapping ends with the object.

#include <cstddef>
#include <cstdint>

#include <karvelui/CString.h>
#include <karvelui/Export.h>

namespace KarvelUI {

class MappedFile {
 public:
  MappedFile() = default;
  explicit MappedFile(const CString& path) { Open(path); }
  ~MappedFile() { Close(); }
  MappedFile(MappedFile&& other) noexcept;
  MappedFile& operator=(MappedFile&& other) noexcept;
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  bool Open(const CString& path);
  void Close();

  bool IsOpen() const { return m_data != nullptr; }
  const std::uint8_t* Data() const { return m_data; }
  std::size_t Size() const { return m_size; }

 private:
  const std::uint8_t* m_data = nullptr;
  std::size_t m_size = 0;
};

}  // namespace KarvelUI
