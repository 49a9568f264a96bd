#pragma once

// The thumbnail cache Linux desktops share: viewers and file managers keep a
// PNG per picture in $XDG_CACHE_HOME/thumbnails/<size>/<md5 of the file's
// URI>.png ("normal" at most 128 pixels on a side, "large" at most 256),
// carrying the text keys Thumb::URI and Thumb::MTime (the picture's
// modification time in whole seconds). A thumbnail whose Thumb::MTime differs
// from the file's is stale and ignored.
//
// Thumbnails are written atomically (a temporary file renamed over the old
// one, readable by the owner only), so other programs never read half a file.
// The cache can be turned off; writing also turns itself off for the rest of
// the process when the cache folder refuses new files.

#include <karvelui/CString.h>
#include "render/PictureDecoder.h"
#include "thumbnails/ThumbPixels.h"

namespace KarvelUI {

class SharedThumbCache {
 public:
  static constexpr int kNormalExtent = 128;
  static constexpr int kLargeExtent = 256;
  static constexpr unsigned kFileMode = 0600;
  static constexpr unsigned kFolderMode = 0700;

  struct Hit {
    FIBitmapPtr picture;
    UINT imageWidth = 0, imageHeight = 0;  // the picture's own size
  };

  static void SetEnabled(bool enabled);
  static bool IsEnabled();
  // Whether a decoded picture should be written (enabled, and the folder has
  // not refused a write).
  static bool IsWriting();

  // A current thumbnail of the picture at `path` (library path), preferring
  // the size that covers `wantedExtent` pixels; false when there is none.
  static bool Find(const CString& path, int wantedExtent, Hit& hit);
  // Writes the "large" thumbnail of the picture from its decoded pixels.
  static void Store(const CString& path, const PixelView& decoded, UINT imageWidth, UINT imageHeight);

  // "file:///..." with every byte outside the path characters escaped.
  static std::string FileUri(const CString& path);
  // Where the thumbnail of `path` of size "normal" or "large" lives; empty
  // when there is no cache folder.
  static CString ThumbnailPath(const CString& path, const wchar_t* size);
  // The size a "large" thumbnail of a picture of this size has.
  static CSize LargeSize(UINT imageWidth, UINT imageHeight);
};

}  // namespace KarvelUI
