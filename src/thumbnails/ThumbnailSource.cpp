#include "thumbnails/ThumbnailSource.h"

#include <algorithm>
#include <atomic>

#include "thumbnails/SharedThumbCache.h"

// After the library's headers: the image library defines TRUE and FALSE as macros.
#include <FreeImage.h>

namespace KarvelUI {
namespace {

std::atomic<bool> g_fastJpeg{true};

// Each loading thread keeps its decoder, and with it its buffers.
ScaledJpegDecoder& ThreadDecoder() {
  thread_local ScaledJpegDecoder decoder;
  return decoder;
}

PixelView ViewOf(FIBITMAP* picture) {
  return PixelView{FreeImage_GetBits(picture), static_cast<int>(FreeImage_GetPitch(picture)),
                   static_cast<int>(FreeImage_GetWidth(picture)), static_cast<int>(FreeImage_GetHeight(picture)),
                   true};
}

bool TakeBitmap(FIBitmapPtr picture, ThumbnailSource& out) {
  if (!picture) return false;
  out.holder = std::move(picture);
  out.pixels = ViewOf(out.holder.get());
  return true;
}

bool FromSharedCache(const CString& path, CSize wanted, ThumbnailSource& out) {
  SharedThumbCache::Hit hit;
  if (!SharedThumbCache::Find(path, std::max(wanted.cx, wanted.cy), hit)) return false;
  if (!TakeBitmap(CopyAs32Bits(hit.picture.get()), out)) return false;
  // A thumbnail that does not say how large its picture is stands for it.
  out.imageWidth = hit.imageWidth ? hit.imageWidth : static_cast<UINT>(out.pixels.width);
  out.imageHeight = hit.imageHeight ? hit.imageHeight : static_cast<UINT>(out.pixels.height);
  out.fromSharedCache = true;
  return true;
}

bool DecodeScaledJpeg(const CString& file, CSize wanted, ThumbnailSource& out) {
  const bool writing = SharedThumbCache::IsWriting();
  const auto minimum = [&](unsigned width, unsigned height) {
    CSize least = ThumbnailTextureSize(width, height, wanted.cx, wanted.cy);
    if (writing) {
      const CSize large = SharedThumbCache::LargeSize(width, height);
      least = CSize(std::max(least.cx, large.cx), std::max(least.cy, large.cy));
    }
    return std::pair<unsigned, unsigned>(static_cast<unsigned>(least.cx), static_cast<unsigned>(least.cy));
  };
  ScaledJpegDecoder::Picture picture;
  if (!ThreadDecoder().Decode(file, minimum, picture)) return false;
  const float d = static_cast<float>(picture.denominator);
  out.pixels = PixelView{picture.bits, picture.pitch, picture.width, picture.height, false, (d - 1) / (2 * d)};
  out.imageWidth = picture.fullWidth;
  out.imageHeight = picture.fullHeight;
  return true;
}

FIBitmapPtr DecodeFirstPage(const CString& file, int format) {
  const FIMultiBitmapPtr pages = OpenMultiPagePicture(file, format);
  if (!pages) return nullptr;
  const LockedPage page(pages.get(), 0);
  return CopyAs32Bits(page.Get());
}

bool DecodeWhole(const CString& file, int format, ThumbnailSource& out) {
  FIBitmapPtr picture;
  if (IsMultiPageFormat(format)) {
    picture = DecodeFirstPage(file, format);
  } else {
    picture = LoadPicture(file, format);
    // 32-bit BMP files carry no meaningful alpha.
    if (format == PICTURE_FORMAT_BMP && Is32BitPicture(picture.get())) MakeOpaque(picture.get());
    if (picture && !Is32BitPicture(picture.get())) picture = CopyAs32Bits(picture.get());
  }
  if (!TakeBitmap(std::move(picture), out)) return false;
  out.imageWidth = static_cast<UINT>(out.pixels.width);
  out.imageHeight = static_cast<UINT>(out.pixels.height);
  return true;
}

}  // namespace

void SetJpegFastPath(bool enabled) { g_fastJpeg = enabled; }

bool IsJpegFastPath() { return g_fastJpeg; }

CSize ThumbnailTextureSize(UINT imageWidth, UINT imageHeight, int wantedWidth, int wantedHeight) {
  const auto width = static_cast<std::int64_t>(imageWidth), height = static_cast<std::int64_t>(imageHeight);
  if (width <= wantedWidth || height <= wantedHeight) return CSize(static_cast<int>(width), static_cast<int>(height));
  if (width > height) return CSize(static_cast<int>(wantedHeight * width / height), wantedHeight);
  if (height > width) return CSize(wantedWidth, static_cast<int>(wantedWidth * height / width));
  return CSize(wantedWidth, wantedHeight);
}

bool DecodeThumbnailSource(const CString& file, const CString& path, CSize wanted, ThumbnailSource& out) {
  if (FromSharedCache(path, wanted, out)) return true;
  const int format = DetectPictureFormat(file);
  if (format == PICTURE_FORMAT_UNKNOWN) return false;
  const bool decoded = (format == PICTURE_FORMAT_JPEG && IsJpegFastPath() && DecodeScaledJpeg(file, wanted, out)) ||
                       DecodeWhole(file, format, out);
  if (!decoded) return false;
  SharedThumbCache::Store(path, out.pixels, out.imageWidth, out.imageHeight);
  return true;
}

}  // namespace KarvelUI
