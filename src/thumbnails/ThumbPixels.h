#pragma once

// Pixel work of the thumbnails: bilinear resampling of a decoded picture
// into a texture, and the faded mirror image drawn under a thumbnail.
// Pixels are four bytes each (blue, green, red, alpha unless swapped).

#include <cstdint>

#include <karvelui/Geometry.h>
#include <karvelui/Types.h>

namespace KarvelUI {

struct PixelView {
  const BYTE* bits = nullptr;
  int pitch = 0;  // bytes from one stored row to the next
  int width = 0, height = 0;
  bool bottomUp = false;  // rows stored from the bottom (the image library's order)
  // For a picture the decoder reduced to 1/d: its pixel i stands for full
  // pixels d*i .. d*i + d - 1, centred (d - 1) / 2 after the full pixel d*i,
  // so samples move back by (d - 1) / (2d) of its pixels to land where a
  // sample of the full picture would.
  float shift = 0.0f;

  const BYTE* Row(int y) const {
    const int stored = bottomUp ? height - 1 - y : y;
    return bits + static_cast<std::ptrdiff_t>(stored) * pitch;
  }
};

struct PixelTarget {
  BYTE* bits = nullptr;
  int pitch = 0;
  int width = 0, height = 0;

  BYTE* Row(int y) const { return bits + static_cast<std::ptrdiff_t>(y) * pitch; }
};

// Texel (x, y) of the target samples the source at (x / sx, y / sy), sx and
// sy being target over source size (less the source's shift, not below 0), blending the four pixels around that
// point. Neighbours beyond the last column or row are transparent black, so
// the last column and row blend toward it. Each channel is rounded to the
// nearest integer. With swapRedBlue the first and third bytes trade places
// (for textures stored red first).
void ResampleBilinear(const PixelView& source, const PixelTarget& target, bool swapRedBlue = false);

// The alpha factor of reflection row y of h: 0.43 at the top, fading over
// 60 % of the height, 0 from there on.
double ReflectionAlphaFactor(int y, int h);
// The rows at the top of a reflection of height h whose alpha can be
// non-zero; all rows below them are fully transparent whatever the picture.
int ReflectionVisibleRows(int h);

// Writes into `target` the mirrored thumbnail from column `columnLeft` on,
// target.width columns and target.height rows: row y is thumbnail row
// h - 1 - y with each alpha byte scaled by the row's factor and rounded.
void MakeReflection(const PixelView& thumbnail, LONG columnLeft, const PixelTarget& target);

}  // namespace KarvelUI
