#include "support/PictureFiles.h"

#include <FreeImage.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <stdexcept>

#include "support/TempDir.h"

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

namespace {

Bitmap DrawnBitmap(int width, int height, int bitsPerPixel, const PixelFunction& pixel) {
  Bitmap bitmap(FreeImage_Allocate(width, height, bitsPerPixel), &FreeImage_Unload);
  if (!bitmap) throw std::runtime_error("FreeImage_Allocate failed");
  const int bytes = bitsPerPixel / 8;
  for (int y = 0; y < height; ++y) {
    BYTE* line = FreeImage_GetScanLine(bitmap.get(), height - 1 - y);
    for (int x = 0; x < width; ++x) {
      const std::uint32_t argb = pixel(x, y);
      for (int b = 0; b < bytes; ++b) line[x * bytes + b] = static_cast<BYTE>(argb >> (8 * b));  // B, G, R, A
    }
  }
  return bitmap;
}

// An 8-bit frame with a palette of the frame's colours; index 255 is
// transparent when any pixel has alpha 0.
Bitmap PaletteFrame(const GifFrame& frame) {
  Bitmap bitmap(FreeImage_Allocate(frame.width, frame.height, 8), &FreeImage_Unload);
  if (!bitmap) throw std::runtime_error("FreeImage_Allocate failed");
  RGBQUAD* palette = FreeImage_GetPalette(bitmap.get());
  std::map<std::uint32_t, BYTE> indices;
  bool transparent = false;
  for (int y = 0; y < frame.height; ++y) {
    BYTE* line = FreeImage_GetScanLine(bitmap.get(), frame.height - 1 - y);
    for (int x = 0; x < frame.width; ++x) {
      const std::uint32_t argb = frame.pixel(x, y);
      if ((argb >> 24) == 0) {
        line[x] = 255;
        transparent = true;
        continue;
      }
      auto [at, added] = indices.emplace(argb & 0xFFFFFF, static_cast<BYTE>(indices.size()));
      if (added && indices.size() > 255) throw std::invalid_argument("too many colours for a GIF frame");
      palette[at->second] = RGBQUAD{BYTE(argb), BYTE(argb >> 8), BYTE(argb >> 16), 0};
      line[x] = at->second;
    }
  }
  if (transparent) FreeImage_SetTransparentIndex(bitmap.get(), 255);
  return bitmap;
}

void SetAnimationTag(FIBITMAP* page, const char* key, FREE_IMAGE_MDTYPE type, DWORD length, const void* value) {
  std::unique_ptr<FITAG, decltype(&FreeImage_DeleteTag)> tag(FreeImage_CreateTag(), &FreeImage_DeleteTag);
  FreeImage_SetTagKey(tag.get(), key);
  FreeImage_SetTagType(tag.get(), type);
  FreeImage_SetTagCount(tag.get(), 1);
  FreeImage_SetTagLength(tag.get(), length);
  FreeImage_SetTagValue(tag.get(), value);
  FreeImage_SetMetadata(FIMD_ANIMATION, page, key, tag.get());
}

}  // namespace

std::string MakePicture(int format, int width, int height, int bitsPerPixel, const PixelFunction& pixel) {
  FreeImageSession session;
  const Bitmap bitmap = DrawnBitmap(width, height, bitsPerPixel, pixel);
  const int flags = format == FIF_JPEG ? JPEG_QUALITYSUPERB : 0;
  return Save(static_cast<FREE_IMAGE_FORMAT>(format), bitmap.get(), flags);
}

std::string MakeAnimatedGif(const std::vector<GifFrame>& frames) {
  FreeImageSession session;
  TempDir folder;
  const std::string path = (folder.Path() / "animation.gif").string();
  FIMULTIBITMAP* gif = FreeImage_OpenMultiBitmap(FIF_GIF, path.c_str(), TRUE, FALSE, TRUE, 0);
  if (!gif) throw std::runtime_error("FreeImage could not create the GIF");
  for (const GifFrame& frame : frames) {
    const Bitmap page = PaletteFrame(frame);
    const WORD left = static_cast<WORD>(frame.left), top = static_cast<WORD>(frame.top);
    const DWORD time = static_cast<DWORD>(frame.frameTime);
    const BYTE disposal = static_cast<BYTE>(frame.disposal);
    SetAnimationTag(page.get(), "FrameLeft", FIDT_SHORT, 2, &left);
    SetAnimationTag(page.get(), "FrameTop", FIDT_SHORT, 2, &top);
    SetAnimationTag(page.get(), "FrameTime", FIDT_LONG, 4, &time);
    SetAnimationTag(page.get(), "DisposalMethod", FIDT_BYTE, 1, &disposal);
    FreeImage_AppendPage(gif, page.get());
  }
  FreeImage_CloseMultiBitmap(gif, 0);
  return TempDir::Read(path);
}

DecodedPicture DecodePicture(const std::string& bytes) {
  FreeImageSession session;
  std::string copy = bytes;
  std::unique_ptr<FIMEMORY, decltype(&FreeImage_CloseMemory)> memory(
      FreeImage_OpenMemory(reinterpret_cast<BYTE*>(copy.data()), static_cast<DWORD>(copy.size())),
      &FreeImage_CloseMemory);
  const FREE_IMAGE_FORMAT format = FreeImage_GetFileTypeFromMemory(memory.get(), 0);
  const Bitmap loaded(format == FIF_UNKNOWN ? nullptr : FreeImage_LoadFromMemory(format, memory.get(), 0),
                      &FreeImage_Unload);
  const Bitmap bitmap(loaded ? FreeImage_ConvertTo32Bits(loaded.get()) : nullptr, &FreeImage_Unload);
  DecodedPicture picture;
  if (!bitmap) return picture;
  picture.width = static_cast<int>(FreeImage_GetWidth(bitmap.get()));
  picture.height = static_cast<int>(FreeImage_GetHeight(bitmap.get()));
  for (int y = picture.height - 1; y >= 0; --y) {  // scan line 0 is the bottom row
    const auto* line = reinterpret_cast<const std::uint32_t*>(FreeImage_GetScanLine(bitmap.get(), y));
    picture.pixels.insert(picture.pixels.end(), line, line + picture.width);
  }
  return picture;
}

::testing::AssertionResult ColorNear(std::uint32_t actual, std::uint32_t expected, int tolerance) {
  for (int shift = 0; shift < 32; shift += 8)
    if (std::abs(static_cast<int>((actual >> shift) & 0xFF) - static_cast<int>((expected >> shift) & 0xFF)) > tolerance)
      return ::testing::AssertionFailure() << std::hex << "0x" << actual << " is not near 0x" << expected;
  return ::testing::AssertionSuccess();
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
