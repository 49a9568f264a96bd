#include "Picture.h"

#include <algorithm>
#include <cstring>
#include <memory>

// After the library's headers: the image library defines TRUE and FALSE as macros.
#include <FreeImage.h>

namespace KarvelSkin {
namespace {

constexpr KarvelUI::DWORD kSheetBackground = 0xFF202226;
constexpr int kSheetGap = 12;

struct BitmapDeleter {
  void operator()(FIBITMAP* bitmap) const { FreeImage_Unload(bitmap); }
};
using BitmapPtr = std::unique_ptr<FIBITMAP, BitmapDeleter>;

// 0xAARRGGBB pixels are the image library's 32-bit layout; its rows run from the bottom.
BitmapPtr ToBitmap(const Picture& picture) {
  BitmapPtr bitmap(FreeImage_Allocate(picture.width, picture.height, 32));
  if (!bitmap) return bitmap;
  for (int y = 0; y < picture.height; ++y)
    std::memcpy(FreeImage_GetScanLine(bitmap.get(), picture.height - 1 - y), &picture.pixels[static_cast<size_t>(y) * picture.width],
                static_cast<size_t>(picture.width) * sizeof(KarvelUI::DWORD));
  return bitmap;
}

Picture FromBitmap(FIBITMAP* bitmap) {
  Picture picture;
  BitmapPtr converted(FreeImage_ConvertTo32Bits(bitmap));
  if (!converted) return picture;
  picture.width = static_cast<int>(FreeImage_GetWidth(converted.get()));
  picture.height = static_cast<int>(FreeImage_GetHeight(converted.get()));
  picture.pixels.resize(static_cast<size_t>(picture.width) * picture.height);
  for (int y = 0; y < picture.height; ++y)
    std::memcpy(&picture.pixels[static_cast<size_t>(y) * picture.width], FreeImage_GetScanLine(converted.get(), picture.height - 1 - y),
                static_cast<size_t>(picture.width) * sizeof(KarvelUI::DWORD));
  return picture;
}

Picture Scaled(const Picture& picture, int width) {
  if (picture.width <= width) return picture;
  const int height = std::max(1, picture.height * width / picture.width);
  BitmapPtr bitmap = ToBitmap(picture);
  BitmapPtr scaled(bitmap ? FreeImage_Rescale(bitmap.get(), width, height, FILTER_BILINEAR) : nullptr);
  return scaled ? FromBitmap(scaled.get()) : picture;
}

}  // namespace

void Picture::Paste(const Picture& other, int x, int y) {
  for (int row = 0; row < other.height; ++row) {
    if (y + row < 0 || y + row >= height) continue;
    for (int column = 0; column < other.width; ++column)
      if (x + column >= 0 && x + column < width)
        pixels[static_cast<size_t>(y + row) * width + x + column] = other.At(column, row);
  }
}

bool SavePng(const Picture& picture, const std::string& path) {
  BitmapPtr bitmap = ToBitmap(picture);
  return bitmap && FreeImage_Save(FIF_PNG, bitmap.get(), path.c_str(), PNG_DEFAULT) != FALSE;
}

bool LoadPng(const std::string& path, Picture& picture) {
  BitmapPtr bitmap(FreeImage_Load(FIF_PNG, path.c_str(), PNG_DEFAULT));
  if (!bitmap) return false;
  picture = FromBitmap(bitmap.get());
  return picture.width > 0;
}

Picture MakeContactSheet(const std::vector<Picture>& pictures, int columns, int cellWidth) {
  std::vector<Picture> cells;
  int cellHeight = 0;
  for (const Picture& picture : pictures) {
    cells.push_back(Scaled(picture, cellWidth));
    cellHeight = std::max(cellHeight, cells.back().height);
  }
  const int rows = (static_cast<int>(cells.size()) + columns - 1) / columns;
  Picture sheet;
  sheet.width = kSheetGap + columns * (cellWidth + kSheetGap);
  sheet.height = kSheetGap + rows * (cellHeight + kSheetGap);
  sheet.pixels.assign(static_cast<size_t>(sheet.width) * sheet.height, kSheetBackground);
  for (size_t i = 0; i < cells.size(); ++i) {
    const int column = static_cast<int>(i) % columns, row = static_cast<int>(i) / columns;
    sheet.Paste(cells[i], kSheetGap + column * (cellWidth + kSheetGap), kSheetGap + row * (cellHeight + kSheetGap));
  }
  return sheet;
}

}  // namespace KarvelSkin
