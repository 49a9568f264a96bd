#include "support/TempDir.h"

#include <stdlib.h>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace KarvelTest {

TempDir::TempDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "karvel-test-XXXXXX").string();
  if (!mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
  m_path = pattern;
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(m_path, ignored);
}

std::filesystem::path TempDir::Write(const std::string& relative, const std::string& bytes) const {
  const std::filesystem::path file = m_path / relative;
  std::filesystem::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return file;
}

void TempDir::UseAsDesktop() const {
  const std::pair<const char*, const char*> folders[] = {
      {"XDG_CONFIG_HOME", "config"}, {"XDG_DATA_HOME", "data"}, {"XDG_CONFIG_DIRS", "etc"}, {"XDG_DATA_DIRS", "share"}};
  for (const auto& [variable, folder] : folders) setenv(variable, (m_path / folder).c_str(), 1);
}

std::string TempDir::Read(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace KarvelTest
