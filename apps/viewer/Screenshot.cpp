#include "Screenshot.h"

#include <cstring>
#include <memory>
#include <vector>

#include <karvelui/DXCore.h>

// After the library's headers: the image library defines TRUE and FALSE as macros.
#include <FreeImage.h>

using namespace KarvelUI;

namespace KarvelView {

namespace {

struct BitmapDeleter {
  void operator()(FIBITMAP* bitmap) const { FreeImage_Unload(bitmap); }
};

}  // namespace

bool WriteScreenshot(DXCore& core, const std::string& path) {
  IDirect3DDevice9* device = core.GetD3DDevice();
  std::vector<DWORD> pixels;
  CSize size;
  if (!device || FAILED(device->ReadBackBuffer(pixels, size)) || size.cx <= 0 || size.cy <= 0) return false;
  std::unique_ptr<FIBITMAP, BitmapDeleter> bitmap(FreeImage_Allocate(size.cx, size.cy, 32));
  if (!bitmap) return false;
  // 0xAARRGGBB texels are the image library's 32-bit pixel layout; its rows
  // run from the bottom.
  for (int y = 0; y < size.cy; ++y)
    std::memcpy(FreeImage_GetScanLine(bitmap.get(), size.cy - 1 - y), &pixels[static_cast<size_t>(y) * size.cx],
                static_cast<size_t>(size.cx) * sizeof(DWORD));
  return FreeImage_Save(FIF_PNG, bitmap.get(), path.c_str(), PNG_DEFAULT) != FALSE;
}

}  // namespace KarvelView
