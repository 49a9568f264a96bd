#include "JpegEncoder.h"

#include <FreeImage.h>

#include <cstddef>
#include <memory>

namespace ZorImgUtil {
namespace {

struct BitmapDeleter {
  void operator()(FIBITMAP* bitmap) const { FreeImage_Unload(bitmap); }
};
struct MemoryDeleter {
  void operator()(FIMEMORY* memory) const { FreeImage_CloseMemory(memory); }
};

// FreeImage counts its initialisations, so pairing them here leaves the
// host's own use of the library alone.
class FreeImageSession {
 public:
  FreeImageSession() { FreeImage_Initialise(FALSE); }
  ~FreeImageSession() { FreeImage_DeInitialise(); }
  FreeImageSession(const FreeImageSession&) = delete;
  FreeImageSession& operator=(const FreeImageSession&) = delete;
};

}  // namespace

// FreeImage keeps rows bottom-up in blue, green, red order.
bool EncodeJpeg(const unsigned char* pixels, unsigned width, unsigned height, unsigned colors,
                std::vector<unsigned char>& jpeg) {
  jpeg.clear();
  if (!pixels || width == 0 || height == 0 || (colors != 1 && colors != 3)) return false;
  FreeImageSession session;
  std::unique_ptr<FIBITMAP, BitmapDeleter> bitmap(
      FreeImage_Allocate(static_cast<int>(width), static_cast<int>(height), 24));
  if (!bitmap) return false;
  for (unsigned y = 0; y < height; ++y) {
    const unsigned char* source = pixels + std::size_t(y) * width * colors;
    BYTE* line = FreeImage_GetScanLine(bitmap.get(), static_cast<int>(height - 1 - y));
    for (unsigned x = 0; x < width; ++x, source += colors, line += 3) {
      line[FI_RGBA_RED] = source[0];
      line[FI_RGBA_GREEN] = source[colors == 3 ? 1 : 0];
      line[FI_RGBA_BLUE] = source[colors == 3 ? 2 : 0];
    }
  }
  std::unique_ptr<FIMEMORY, MemoryDeleter> memory(FreeImage_OpenMemory());
  if (!memory || !FreeImage_SaveToMemory(FIF_JPEG, bitmap.get(), memory.get(), JPEG_QUALITYGOOD)) return false;
  BYTE* data = nullptr;
  DWORD size = 0;
  if (!FreeImage_AcquireMemory(memory.get(), &data, &size) || !data || size == 0) return false;
  jpeg.assign(data, data + size);
  return true;
}

}  // namespace ZorImgUtil
