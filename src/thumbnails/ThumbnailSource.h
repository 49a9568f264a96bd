#pragma once

// The picture a thumbnail is made from, decoded as cheaply as the wanted size
// allows: a current thumbnail of the desktop's shared cache when there is
// one; a JPEG decoded at a reduced scale that still covers the texture; any
// other picture decoded whole (GIF and TIFF: their first page). A picture
// decoded from its file is written to the shared cache afterwards.

#include <karvelui/CString.h>
#include <karvelui/Geometry.h>
#include "render/PictureDecoder.h"
#include "thumbnails/ThumbPixels.h"

namespace KarvelUI {

struct ThumbnailSource {
  PixelView pixels;            // 32-bit; valid while this object and the thread's decoder live
  UINT imageWidth = 0;         // the picture's own size
  UINT imageHeight = 0;
  bool fromSharedCache = false;
  FIBitmapPtr holder;          // the decoded picture, when the image library made it
};

// The texture size of a thumbnail: when the picture is larger than the wanted
// size in both dimensions, the wanted size in the picture's shorter dimension
// and the other scaled by the aspect ratio (so the texture covers the wanted
// square); otherwise the picture's own size (never enlarged).
CSize ThumbnailTextureSize(UINT imageWidth, UINT imageHeight, int wantedWidth, int wantedHeight);

// Decodes `file` (the picture, or the JPEG preview of a RAW picture) for a
// thumbnail of `path` with the wanted texture size. False when nothing could
// be decoded.
bool DecodeThumbnailSource(const CString& file, const CString& path, CSize wanted, ThumbnailSource& out);

// The reduced-scale JPEG decoding is on unless switched off (comparisons).
void SetJpegFastPath(bool enabled);
bool IsJpegFastPath();

}  // namespace KarvelUI
