// Arbitrary bytes through the JPEG checker. The bytes sit in a block of
// exactly their size, so any read past the end is a sanitizer finding.

#include <cstddef>
#include <cstdint>

#include "render/ImageArchive.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  KarvelUI::CJpgImageArchive checker;
  checker.CheckMemory(data, size);
  return 0;
}
