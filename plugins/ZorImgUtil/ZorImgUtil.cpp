// The RAW extraction library: one C entry point that writes a JPEG rendering
// of a camera RAW file. Paths are native, null-terminated wide strings.

#include <sys/stat.h>

#include <string>
#include <vector>

#include "RawExtract.h"

namespace {

// wchar_t holds UTF-32 here. False for a value that is no Unicode scalar.
bool WideToUtf8(const wchar_t* wide, std::string& utf8) {
  utf8.clear();
  for (; *wide; ++wide) {
    const auto c = static_cast<unsigned long>(*wide);
    if (c < 0x80) {
      utf8 += static_cast<char>(c);
    } else if (c < 0x800) {
      utf8 += static_cast<char>(0xC0 | (c >> 6));
      utf8 += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      if (c >= 0xD800 && c <= 0xDFFF) return false;
      utf8 += static_cast<char>(0xE0 | (c >> 12));
      utf8 += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      utf8 += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c <= 0x10FFFF) {
      utf8 += static_cast<char>(0xF0 | (c >> 18));
      utf8 += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
      utf8 += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      utf8 += static_cast<char>(0x80 | (c & 0x3F));
    } else {
      return false;
    }
  }
  return true;
}

// Writing the JPEG over the RAW file would destroy the original.
bool IsSameFile(const std::string& a, const std::string& b) {
  struct stat first{}, second{};
  return a == b || (stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 && first.st_dev == second.st_dev &&
                    first.st_ino == second.st_ino);
}

int Extract(const wchar_t* rawPath, const wchar_t* jpgPath) {
  using namespace ZorImgUtil;
  std::string raw, jpg;
  if (!rawPath || !jpgPath || !WideToUtf8(rawPath, raw) || !WideToUtf8(jpgPath, jpg) || raw.empty() ||
      jpg.empty() || IsSameFile(raw, jpg))
    return kExtractBadArguments;
  std::vector<unsigned char> jpeg;
  const ExtractResult result = ExtractJpegFromFile(raw, jpeg);
  if (result != kExtractOk) return result;
  return WriteFileAtomically(jpg, jpeg) ? kExtractOk : kExtractWriteFailed;
}

}  // namespace

// 0 when the JPEG was written; otherwise nothing is left at jpgPath.
extern "C" __attribute__((visibility("default"))) int ExtrctRawImageFile(const wchar_t* rawPath,
                                                                         const wchar_t* jpgPath) {
  try {
    return Extract(rawPath, jpgPath);
  } catch (...) {
    return ZorImgUtil::kExtractInternalError;
  }
}
