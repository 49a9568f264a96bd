// Runs a fuzz target's entry point over committed inputs without libFuzzer:
//   fuzz_replay_NAME PATH...
// Each PATH is a file or a folder of files (read in name order); a missing
// PATH is skipped. Each input sits in a block of exactly its size, so a
// sanitizer build catches any read past its end. Fails when no input ran.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// In a sanitizer build, an allocation larger than any input may cause is a
// finding (a size taken from a file before it was checked), not a success.
extern "C" const char* __asan_default_options() { return "max_allocation_size_mb=256:allocator_may_return_null=0"; }

namespace {

void RunOne(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  auto block = std::make_unique<std::uint8_t[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), block.get());
  std::printf("replay %s (%zu bytes)\n", file.c_str(), bytes.size());
  std::fflush(stdout);
  LLVMFuzzerTestOneInput(block.get(), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
  int ran = 0;
  for (int i = 1; i < argc; ++i) {
    const std::filesystem::path path(argv[i]);
    std::vector<std::filesystem::path> files;
    if (std::filesystem::is_directory(path)) {
      for (const auto& entry : std::filesystem::directory_iterator(path))
        if (entry.is_regular_file()) files.push_back(entry.path());
      std::sort(files.begin(), files.end());
    } else if (std::filesystem::is_regular_file(path)) {
      files.push_back(path);
    }
    for (const auto& file : files) RunOne(file), ++ran;
  }
  std::printf("%d inputs replayed\n", ran);
  return ran > 0 ? 0 : 1;
}
