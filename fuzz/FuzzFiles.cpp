#include "FuzzFiles.h"

#include <stdlib.h>

#include <cstdio>
#include <system_error>

namespace fuzzing {
namespace {

struct Scratch {
  std::filesystem::path folder;
  Scratch() {
    std::string pattern = (std::filesystem::temp_directory_path() / "karvel-fuzz-XXXXXX").string();
    if (!mkdtemp(pattern.data())) abort();
    folder = pattern;
  }
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
  }
};

}  // namespace

const std::filesystem::path& ScratchFolder() {
  static const Scratch scratch;
  return scratch.folder;
}

std::filesystem::path WriteScratchFile(const std::string& name, const std::uint8_t* data, std::size_t size) {
  const std::filesystem::path file = ScratchFolder() / name;
  std::FILE* out = std::fopen(file.c_str(), "wb");
  if (!out) abort();
  if (size && std::fwrite(data, 1, size, out) != size) abort();
  std::fclose(out);
  return file;
}

}  // namespace fuzzing
