#pragma once

// Real picture files for the checker tests, written by the image library
// from deterministic noise (so JPEGs carry real entropy-coded data), and the
// small structural tools the tests use to damage them.

#include <cstddef>
#include <string>
#include <vector>

namespace KarvelTest {

std::string MakeJpeg(int width, int height, bool progressive = false);
std::string MakePng(int width, int height, bool palette = false);
std::string MakeGif(int width, int height);
// bpp 1, 4, 8 (palette), 16 (5-6-5), 24 or 32.
std::string MakeBmp(int width, int height, int bpp);

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
