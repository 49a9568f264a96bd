#pragma once

// The image view with its protected geometry opened to the tests, and JPEG
// files that carry an EXIF orientation.

#include <string>

#include <karvelui/UIImageBase.h>
#include "support/PictureFiles.h"

namespace KarvelTest {

using namespace KarvelUI;

class OpenImageView : public CUIImageBase {
 public:
  using CUIImageBase::GetInvalidateViewRect;
  using CUIImageBase::m_bNeedRefresh;
  using CUIImageBase::m_mapRotations;
  using CUIImageBase::m_pImage;
  using CUIImageBase::m_pImageInfo;
  using CUIImageBase::m_rcView;
  using CUIImageBase::m_rcViewF;
  using CUIImageBase::RotateRect;
  using CUIImageBase::SetRectData;
  using CUIImageBase::SetViewRect;
};

// A JPEG of the given size whose EXIF data (one IFD entry, little-endian)
// gives `orientation`.
inline std::string JpegWithOrientation(int width, int height, int orientation) {
  const std::string jpeg = MakeJpeg(width, height);
  std::string tiff("II*\0\x08\0\0\0\x01\0", 10);                   // header, IFD at 8, one entry
  tiff += std::string("\x12\x01\x03\0\x01\0\0\0", 8);              // Orientation, SHORT, count 1
  tiff += static_cast<char>(orientation);
  tiff += std::string("\0\0\0\0\0\0", 6);                          // value padding, no next IFD
  const std::string payload = std::string("Exif\0\0", 6) + tiff;
  std::string app1 = "\xFF\xE1";
  PutBE16(app1 += "  ", 2, static_cast<unsigned>(payload.size() + 2));
  return jpeg.substr(0, 2) + app1 + payload + jpeg.substr(2);
}

}  // namespace KarvelTest
