#include "thumbnails/ThumbPixels.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace KarvelUI {
namespace {

constexpr double kReflectionOpacity = 0.43;
constexpr double kReflectionFadeShare = 0.6;
constexpr double kReflectionFadePower = 0.38;

BYTE RoundChannel(float value) { return static_cast<BYTE>(static_cast<int>(value + 0.5f)); }

// Per target column: the first source column and its weight.
struct Tap {
  int index;
  float fraction;
};

std::vector<Tap> Taps(int targetExtent, int sourceExtent, float shift) {
  const float scale = static_cast<float>(targetExtent) / static_cast<float>(sourceExtent);
  std::vector<Tap> taps(static_cast<size_t>(targetExtent));
  for (int i = 0; i < targetExtent; ++i) {
    const float at = std::max(0.0f, static_cast<float>(i) / scale - shift);
    const int index = std::min(static_cast<int>(at), sourceExtent - 1);  // rounding never leaves the picture
    taps[static_cast<size_t>(i)] = {index, at - static_cast<float>(index)};
  }
  return taps;
}

}  // namespace

void ResampleBilinear(const PixelView& source, const PixelTarget& target, bool swapRedBlue) {
  if (source.width <= 0 || source.height <= 0 || target.width <= 0 || target.height <= 0) return;
  static constexpr BYTE kSubstitute[4] = {0, 0, 0, 0};
  const std::vector<Tap> columns = Taps(target.width, source.width, source.shift);
  const std::vector<Tap> rows = Taps(target.height, source.height, source.shift);
  const int red = swapRedBlue ? 2 : 0, blue = swapRedBlue ? 0 : 2;
  for (int y = 0; y < target.height; ++y) {
    const Tap row = rows[static_cast<size_t>(y)];
    const BYTE* upper = source.Row(row.index);
    const BYTE* lower = row.index + 1 < source.height ? source.Row(row.index + 1) : nullptr;
    BYTE* out = target.Row(y);
    for (int x = 0; x < target.width; ++x, out += 4) {
      const Tap column = columns[static_cast<size_t>(x)];
      const bool hasRight = column.index + 1 < source.width;
      const BYTE* p00 = upper + column.index * 4;
      const BYTE* p10 = hasRight ? p00 + 4 : kSubstitute;
      const BYTE* p01 = lower ? lower + column.index * 4 : kSubstitute;
      const BYTE* p11 = lower && hasRight ? p01 + 4 : kSubstitute;
      const float fx = column.fraction, fy = row.fraction;
      const float w00 = (1 - fx) * (1 - fy), w10 = fx * (1 - fy), w01 = (1 - fx) * fy, w11 = fx * fy;
      BYTE mixed[4];
      for (int c = 0; c < 4; ++c) mixed[c] = RoundChannel(p00[c] * w00 + p10[c] * w10 + p01[c] * w01 + p11[c] * w11);
      out[0] = mixed[red];
      out[1] = mixed[1];
      out[2] = mixed[blue];
      out[3] = mixed[3];
    }
  }
}

double ReflectionAlphaFactor(int y, int h) {
  const double t = h > 0 ? static_cast<double>(y) / h : 0.0;
  if (t <= 0) return kReflectionOpacity;
  if (t >= kReflectionFadeShare) return 0.0;
  return kReflectionOpacity -
         kReflectionOpacity * std::pow(t, kReflectionFadePower) / std::pow(kReflectionFadeShare, kReflectionFadePower);
}

int ReflectionVisibleRows(int h) {
  int rows = 0;
  // Alpha 255, the largest there is, rounds to 0 from this row on.
  while (rows < h && static_cast<int>(255 * ReflectionAlphaFactor(rows, h) + 0.5) > 0) ++rows;
  return rows;
}

void MakeReflection(const PixelView& thumbnail, LONG columnLeft, const PixelTarget& target) {
  const int h = thumbnail.height;
  for (int y = 0; y < target.height && y < h; ++y) {
    const double factor = ReflectionAlphaFactor(y, h);
    const BYTE* in = thumbnail.Row(h - 1 - y) + static_cast<std::ptrdiff_t>(columnLeft) * 4;
    BYTE* out = target.Row(y);
    std::memcpy(out, in, static_cast<size_t>(target.width) * 4);
    for (int x = 0; x < target.width; ++x) out[x * 4 + 3] = static_cast<BYTE>(static_cast<int>(out[x * 4 + 3] * factor + 0.5));
  }
}

}  // namespace KarvelUI
