#pragma once

// Small camera RAW files for the tests: a minimal little-endian DNG with a
// 16-bit RGGB sensor image and any number of embedded JPEG previews (the
// first in the main directory, the others as sub-directories beside the
// sensor image).

#include <string>
#include <vector>

namespace KarvelTest {

struct DngPreview {
  int width = 0;
  int height = 0;
  std::string jpeg;
};

struct DngLayout {
  int sensorWidth = 256;
  int sensorHeight = 192;
  std::vector<DngPreview> previews;
};

// The sensor image is dark in its top half and bright in its bottom half.
std::string MakeDng(const DngLayout& layout);

// A JPEG of one colour (0xRRGGBB).
DngPreview MakePreviewJpeg(int width, int height, unsigned rgb);

}  // namespace KarvelTest
