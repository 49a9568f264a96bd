#include "ImageFiles.h"

#include <FreeImage.h>

#include <iostream>
#include <memory>
#include <string>

namespace skingen {

namespace {

struct BitmapDeleter {
  void operator()(FIBITMAP* bitmap) const {
    if (bitmap) FreeImage_Unload(bitmap);
  }
};
using Bitmap = std::unique_ptr<FIBITMAP, BitmapDeleter>;

struct MultiBitmapCloser {
  void operator()(FIMULTIBITMAP* multi) const {
    if (multi) FreeImage_CloseMultiBitmap(multi, 0);
  }
};
using MultiBitmap = std::unique_ptr<FIMULTIBITMAP, MultiBitmapCloser>;

bool Report(const std::filesystem::path& file, const char* what) {
  std::cerr << "skingen: " << file.string() << ": " << what << '\n';
  return false;
}

// FreeImage rows run bottom-up; the canvas's run top-down.
Bitmap ToBitmap(const Canvas& canvas, int bitsPerPixel) {
  Bitmap bitmap(FreeImage_Allocate(canvas.Width(), canvas.Height(), bitsPerPixel));
  if (!bitmap) return bitmap;
  const int bytesPerPixel = bitsPerPixel / 8;
  for (int y = 0; y < canvas.Height(); ++y) {
    BYTE* row = FreeImage_GetScanLine(bitmap.get(), canvas.Height() - 1 - y);
    for (int x = 0; x < canvas.Width(); ++x) {
      const Argb colour = canvas.At(x, y);
      BYTE* pixel = row + x * bytesPerPixel;
      pixel[FI_RGBA_RED] = BYTE(Red(colour));
      pixel[FI_RGBA_GREEN] = BYTE(Green(colour));
      pixel[FI_RGBA_BLUE] = BYTE(Blue(colour));
      if (bytesPerPixel == 4) pixel[FI_RGBA_ALPHA] = BYTE(Alpha(colour));
    }
  }
  return bitmap;
}

bool Save(FREE_IMAGE_FORMAT format, FIBITMAP* bitmap, const std::filesystem::path& file, int flags) {
  if (!bitmap) return Report(file, "out of memory");
  if (!FreeImage_Save(format, bitmap, file.string().c_str(), flags)) return Report(file, "cannot be written");
  return true;
}

template <class Value>
bool SetAnimationTag(FIBITMAP* bitmap, const char* key, FREE_IMAGE_MDTYPE type, Value value) {
  std::unique_ptr<FITAG, decltype(&FreeImage_DeleteTag)> tag(FreeImage_CreateTag(), &FreeImage_DeleteTag);
  return tag && FreeImage_SetTagKey(tag.get(), key) && FreeImage_SetTagType(tag.get(), type) &&
         FreeImage_SetTagCount(tag.get(), 1) && FreeImage_SetTagLength(tag.get(), sizeof(Value)) &&
         FreeImage_SetTagValue(tag.get(), &value) &&
         FreeImage_SetMetadata(FIMD_ANIMATION, bitmap, key, tag.get());
}

// An 8-bit frame carrying the timing the GIF writer reads.
Bitmap AnimationFrame(const Canvas& canvas, bool first, int frameMs) {
  Bitmap colour = ToBitmap(canvas, 24);
  if (!colour) return colour;
  Bitmap frame(FreeImage_ColorQuantize(colour.get(), FIQ_WUQUANT));
  if (!frame) return frame;
  const bool tagged = SetAnimationTag(frame.get(), "FrameTime", FIDT_LONG, DWORD(frameMs)) &&
                      SetAnimationTag(frame.get(), "DisposalMethod", FIDT_BYTE, BYTE(1)) &&
                      (!first || SetAnimationTag(frame.get(), "Loop", FIDT_LONG, DWORD(0)));
  if (!tagged) frame.reset();
  return frame;
}

}  // namespace

bool SavePng(const Canvas& canvas, const std::filesystem::path& file) {
  return Save(FIF_PNG, ToBitmap(canvas, 32).get(), file, PNG_Z_BEST_COMPRESSION);
}

bool SaveJpeg(const Canvas& canvas, const std::filesystem::path& file, int quality) {
  return Save(FIF_JPEG, ToBitmap(canvas, 24).get(), file, quality | JPEG_OPTIMIZE | JPEG_SUBSAMPLING_420);
}

bool SaveAnimatedGif(const std::vector<Canvas>& frames, const std::filesystem::path& file, int frameMs) {
  std::filesystem::remove(file);  // the multi-page writer appends to what it finds
  MultiBitmap gif(FreeImage_OpenMultiBitmap(FIF_GIF, file.string().c_str(), TRUE, FALSE, TRUE, 0));
  if (!gif) return Report(file, "cannot be created");
  for (std::size_t i = 0; i < frames.size(); ++i) {
    Bitmap frame = AnimationFrame(frames[i], i == 0, frameMs);
    if (!frame) return Report(file, "frame cannot be prepared");
    FreeImage_AppendPage(gif.get(), frame.get());
  }
  if (!FreeImage_CloseMultiBitmap(gif.release(), 0)) return Report(file, "cannot be written");
  return true;
}

}  // namespace skingen
