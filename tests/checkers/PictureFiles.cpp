#include "checkers/PictureFiles.h"

#include <FreeImage.h>

#include <memory>
#include <stdexcept>

namespace KarvelTest {
namespace {

using Bitmap = std::unique_ptr<FIBITMAP, decltype(&FreeImage_Unload)>;

class FreeImageSession {
 public:
  FreeImageSession() { FreeImage_Initialise(FALSE); }
  ~FreeImageSession() { FreeImage_DeInitialise(); }
  FreeImageSession(const FreeImageSession&) = delete;
  FreeImageSession& operator=(const FreeImageSession&) = delete;
};

Bitmap NoiseBitmap(int width, int height) {
  Bitmap bitmap(FreeImage_Allocate(width, height, 24), &FreeImage_Unload);
  if (!bitmap) throw std::runtime_error("FreeImage_Allocate failed");
  unsigned state = 12345;
  for (int y = 0; y < height; ++y) {
    BYTE* line = FreeImage_GetScanLine(bitmap.get(), y);
    for (int x = 0; x < width * 3; ++x) {
      state = state * 1103515245u + 12345u;
      line[x] = static_cast<BYTE>((state >> 16) & 0xFF);
    }
  }
  return bitmap;
}

std::string Save(FREE_IMAGE_FORMAT format, FIBITMAP* bitmap, int flags) {
  std::unique_ptr<FIMEMORY, decltype(&FreeImage_CloseMemory)> memory(FreeImage_OpenMemory(),
                                                                     &FreeImage_CloseMemory);
  if (!bitmap || !FreeImage_SaveToMemory(format, bitmap, memory.get(), flags))
    throw std::runtime_error("FreeImage could not write the picture");
  BYTE* data = nullptr;
  DWORD size = 0;
  FreeImage_AcquireMemory(memory.get(), &data, &size);
  return std::string(reinterpret_cast<const char*>(data), size);
}

Bitmap Converted(FIBITMAP* converted) { return Bitmap(converted, &FreeImage_Unload); }

}  // namespace

std::string MakeJpeg(int width, int height, bool progressive) {
  FreeImageSession session;
  const Bitmap bitmap = NoiseBitmap(width, height);
  return Save(FIF_JPEG, bitmap.get(), JPEG_QUALITYGOOD | (progressive ? JPEG_PROGRESSIVE : JPEG_BASELINE));
}

std::string MakePng(int width, int height, bool palette) {
  FreeImageSession session;
  const Bitmap bitmap = NoiseBitmap(width, height);
  if (!palette) return Save(FIF_PNG, bitmap.get(), PNG_DEFAULT);
  const Bitmap indexed = Converted(FreeImage_ColorQuantize(bitmap.get(), FIQ_WUQUANT));
  return Save(FIF_PNG, indexed.get(), PNG_DEFAULT);
}

std::string MakeGif(int width, int height) {
  FreeImageSession session;
  const Bitmap bitmap = NoiseBitmap(width, height);
  const Bitmap indexed = Converted(FreeImage_ColorQuantize(bitmap.get(), FIQ_WUQUANT));
  return Save(FIF_GIF, indexed.get(), GIF_DEFAULT);
}

std::string MakeBmp(int width, int height, int bpp) {
  FreeImageSession session;
  const Bitmap bitmap = NoiseBitmap(width, height);
  switch (bpp) {
    case 1: return Save(FIF_BMP, Converted(FreeImage_Threshold(bitmap.get(), 128)).get(), BMP_DEFAULT);
    case 4: return Save(FIF_BMP, Converted(FreeImage_ConvertTo4Bits(bitmap.get())).get(), BMP_DEFAULT);
    case 8: return Save(FIF_BMP, Converted(FreeImage_ConvertTo8Bits(bitmap.get())).get(), BMP_DEFAULT);
    case 16: return Save(FIF_BMP, Converted(FreeImage_ConvertTo16Bits565(bitmap.get())).get(), BMP_DEFAULT);
    case 24: return Save(FIF_BMP, bitmap.get(), BMP_DEFAULT);
    case 32: return Save(FIF_BMP, Converted(FreeImage_ConvertTo32Bits(bitmap.get())).get(), BMP_DEFAULT);
  }
  throw std::invalid_argument("unsupported BMP depth");
}

std::size_t FindJpegMarker(const std::string& jpeg, unsigned char marker) {
  // Walk the header segments; the scan data after SOS is never searched.
  std::size_t at = 2;
  while (at + 4 <= jpeg.size() && static_cast<unsigned char>(jpeg[at]) == 0xFF) {
    const auto current = static_cast<unsigned char>(jpeg[at + 1]);
    if (current == marker) return at;
    if (current == 0xDA) break;
    at += 2 + ((static_cast<unsigned char>(jpeg[at + 2]) << 8) | static_cast<unsigned char>(jpeg[at + 3]));
  }
  return std::string::npos;
}

std::vector<std::string> SplitPngChunks(const std::string& png) {
  std::vector<std::string> chunks;
  std::size_t at = 8;
  while (at + 12 <= png.size()) {
    const std::size_t length = (std::size_t(static_cast<unsigned char>(png[at])) << 24) |
                               (static_cast<unsigned char>(png[at + 1]) << 16) |
                               (static_cast<unsigned char>(png[at + 2]) << 8) | static_cast<unsigned char>(png[at + 3]);
    chunks.push_back(png.substr(at, length + 12));
    at += length + 12;
  }
  return chunks;
}

std::string JoinPngChunks(const std::vector<std::string>& chunks) {
  std::string png("\x89PNG\r\n\x1a\n", 8);
  for (const std::string& chunk : chunks) png += chunk;
  return png;
}

std::string PngChunkType(const std::string& chunk) { return chunk.substr(4, 4); }

std::string GifHeader(int width, int height, int globalTableBits, const char* version) {
  std::string gif = std::string("GIF") + version;
  gif += std::string(7, '\0');
  PutLE16(gif, 6, static_cast<unsigned>(width));
  PutLE16(gif, 8, static_cast<unsigned>(height));
  if (globalTableBits > 0) {
    gif[10] = static_cast<char>(0x80 | 0x70 | (globalTableBits - 1));
    gif += std::string(3u << globalTableBits, '\x7f');
  }
  return gif;
}

std::string GifImage(int localTableBits, const std::string& data) {
  std::string image("\x2c\0\0\0\0\x02\0\x01\0\0", 10);
  if (localTableBits > 0) {
    image[9] = static_cast<char>(0x80 | (localTableBits - 1));
    image += std::string(3u << localTableBits, '\x10');
  }
  return image + data;
}

std::string GifExtension(unsigned char label, const std::string& payload) {
  std::string extension{'\x21', static_cast<char>(label), static_cast<char>(payload.size())};
  return extension + payload + '\0';
}

void PutLE16(std::string& bytes, std::size_t at, unsigned value) {
  bytes[at] = static_cast<char>(value & 0xFF);
  bytes[at + 1] = static_cast<char>((value >> 8) & 0xFF);
}
void PutLE32(std::string& bytes, std::size_t at, unsigned value) {
  PutLE16(bytes, at, value & 0xFFFF);
  PutLE16(bytes, at + 2, value >> 16);
}
void PutBE16(std::string& bytes, std::size_t at, unsigned value) {
  bytes[at] = static_cast<char>((value >> 8) & 0xFF);
  bytes[at + 1] = static_cast<char>(value & 0xFF);
}
void PutBE32(std::string& bytes, std::size_t at, unsigned value) {
  PutBE16(bytes, at, value >> 16);
  PutBE16(bytes, at + 2, value & 0xFFFF);
}

}  // namespace KarvelTest
