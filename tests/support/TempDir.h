#pragma once

// A fresh folder under the system's temporary directory, removed with its
// content when the test ends.

#include <filesystem>
#include <string>

namespace KarvelTest {

class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& Path() const { return m_path; }
  // Writes bytes into a file below the folder (parent folders are created).
  std::filesystem::path Write(const std::string& relative, const std::string& bytes) const;
  // Points the desktop's settings folders (XDG_CONFIG_HOME "config",
  // XDG_DATA_HOME "data", XDG_CONFIG_DIRS "etc", XDG_DATA_DIRS "share") here.
  void UseAsDesktop() const;
  // Reads a whole file as bytes; empty when it cannot be read.
  static std::string Read(const std::filesystem::path& file);

 private:
  std::filesystem::path m_path;
};

}  // namespace KarvelTest
