#pragma once

// JPEG encoding of developed RAW pixels, kept apart from the RAW decoder
// because the two libraries' headers disagree on their integer names.

#include <vector>

namespace ZorImgUtil {

// Encodes 8-bit top-down pixels (colors 3: red, green, blue; colors 1: grey).
bool EncodeJpeg(const unsigned char* pixels, unsigned width, unsigned height, unsigned colors,
                std::vector<unsigned char>& jpeg);

}  // namespace ZorImgUtil
