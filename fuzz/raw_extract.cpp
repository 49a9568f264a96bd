// Arbitrary bytes through the RAW extraction library's decoder, in memory:
// preview lookup, and development when there is no preview. Nothing is
// written to disk.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "RawExtract.h"

namespace {
// Small enough that a header claiming a huge sensor is refused quickly
// instead of spending the run developing it.
constexpr unsigned long long kFuzzMaxPixels = 4ull * 1000 * 1000;
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<unsigned char> jpeg;
  ZorImgUtil::ExtractJpegFromMemory(data, size, jpeg, kFuzzMaxPixels);
  return 0;
}
