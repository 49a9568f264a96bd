#pragma once

// Real picture files for the tests, written by the image library: from
// deterministic noise (so JPEGs carry real entropy-coded data) or from a
// pixel function, animated GIFs with their frame metadata, and the small
// structural tools the tests use to damage them.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace KarvelTest {

std::string MakeJpeg(int width, int height, bool progressive = false);
std::string MakePng(int width, int height, bool palette = false);
std::string MakeGif(int width, int height);
// bpp 1, 4, 8 (palette), 16 (5-6-5), 24 or 32.
std::string MakeBmp(int width, int height, int bpp);

// The colour (0xAARRGGBB) of the pixel at (x, y), y from the top.
using PixelFunction = std::function<std::uint32_t(int x, int y)>;

// A picture drawn by `pixel`, in the image library's format `format` (0 BMP,
// 2 JPEG, 13 PNG, 18 TIFF) with 24 or 32 bits per pixel.
std::string MakePicture(int format, int width, int height, int bitsPerPixel, const PixelFunction& pixel);

// One frame of an animated GIF. Pixels with alpha 0 become the frame's
// transparent colour; a frame may use at most 255 other colours.
struct GifFrame {
  int width = 0, height = 0;
  int left = 0, top = 0;       // "FrameLeft", "FrameTop"
  int frameTime = 100;         // "FrameTime", milliseconds (stored in 10 ms steps)
  int disposal = 0;            // "DisposalMethod"
  PixelFunction pixel;
};
std::string MakeAnimatedGif(const std::vector<GifFrame>& frames);

// A picture file decoded by the image library: 0xAARRGGBB pixels, rows from
// the top; empty when the bytes are no picture.
struct DecodedPicture {
  int width = 0, height = 0;
  std::vector<std::uint32_t> pixels;
  std::uint32_t At(int x, int y) const { return pixels[static_cast<std::size_t>(y) * width + x]; }
};
DecodedPicture DecodePicture(const std::string& bytes);

// Equal per channel (0xAARRGGBB) within `tolerance`.
::testing::AssertionResult ColorNear(std::uint32_t actual, std::uint32_t expected, int tolerance = 1);

// Offset of the FF that introduces the first `marker` segment of a JPEG
// header; npos when absent.
std::size_t FindJpegMarker(const std::string& jpeg, unsigned char marker);

// PNG chunks, each whole (length, type, data, CRC), in file order.
std::vector<std::string> SplitPngChunks(const std::string& png);
std::string JoinPngChunks(const std::vector<std::string>& chunks);
std::string PngChunkType(const std::string& chunk);

// Hand-made GIF pieces (the checker never decodes the pixel data).
std::string GifHeader(int width, int height, int globalTableBits, const char* version = "89a");
std::string GifImage(int localTableBits, const std::string& data = std::string("\x02\x02\x44\x01\x00", 5));
std::string GifExtension(unsigned char label, const std::string& payload = "abc");

// Multi-byte fields.
void PutLE16(std::string& bytes, std::size_t at, unsigned value);
void PutLE32(std::string& bytes, std::size_t at, unsigned value);
void PutBE16(std::string& bytes, std::size_t at, unsigned value);
void PutBE32(std::string& bytes, std::size_t at, unsigned value);

}  // namespace KarvelTest
