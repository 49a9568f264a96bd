#pragma once

// Turning a camera RAW file into JPEG bytes: the largest embedded JPEG
// preview the decoder finds, byte for byte; failing that, the RAW data
// developed at half size and encoded as a JPEG.

#include <cstddef>
#include <string>
#include <vector>

namespace ZorImgUtil {

// Results of the extraction library; 0 is success, as its callers expect.
enum ExtractResult : int {
  kExtractOk = 0,
  kExtractBadArguments = 1,
  kExtractNotRaw = 2,         // not a RAW file the decoder understands
  kExtractTooLarge = 3,       // refused before decoding: too many pixels
  kExtractDevelopFailed = 4,  // no preview, and the RAW data would not develop
  kExtractEncodeFailed = 5,
  kExtractWriteFailed = 6,
  kExtractInternalError = 7,
};

// RAW pictures above this many sensor pixels are refused before any pixel
// memory is allocated.
constexpr unsigned long long kMaxRawPixels = 400ull * 1000 * 1000;

ExtractResult ExtractJpegFromFile(const std::string& nativePath, std::vector<unsigned char>& jpeg,
                                  unsigned long long maxPixels = kMaxRawPixels);
ExtractResult ExtractJpegFromMemory(const void* data, std::size_t size, std::vector<unsigned char>& jpeg,
                                    unsigned long long maxPixels = kMaxRawPixels);

// Writes bytes to a temporary file beside `path` and renames it into place,
// so a failure never leaves a partial file at `path`.
bool WriteFileAtomically(const std::string& path, const std::vector<unsigned char>& bytes);

}  // namespace ZorImgUtil
