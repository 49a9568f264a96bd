#include "StripPicture.h"

#include <algorithm>
#include <cmath>

namespace skingen {

namespace {

constexpr int kPictureWidth = 56;
constexpr int kPictureHeight = 24;
constexpr Box kHalo{0, 0, 24, 24};  // nine-part frame, 8-px bands
constexpr int kBand = 8;
// The list draws the halo 6 px outside the item on every side.
constexpr int kOutset = 6;
constexpr double kGlowAlpha = 170.0;
constexpr int kLineAlpha = 230;
constexpr int kLineWidth = kBand - kOutset;  // the line lies on the picture's edge, inside it
constexpr Box kCard{24, 0, 40, 16};
constexpr Box kCardSelected{40, 0, 56, 16};
constexpr double kCardRadius = 3.0;

// Distance of the pixel's centre outside the item's box (0 inside).
double Outside(double px, double py, const Box& item) {
  const double dx = std::max({item.left - px, 0.0, px - item.right});
  const double dy = std::max({item.top - py, 0.0, py - item.bottom});
  return std::sqrt(dx * dx + dy * dy);
}

// How deep inside the item's box the pixel's centre lies.
double Inside(double px, double py, const Box& item) {
  return std::min({px - item.left, item.right - px, py - item.top, item.bottom - py});
}

void DrawHalo(Canvas& canvas, Argb colour) {
  const Box item = Inset(kHalo, kOutset);
  for (int y = kHalo.top; y < kHalo.bottom; ++y)
    for (int x = kHalo.left; x < kHalo.right; ++x) {
      const double px = x + 0.5, py = y + 0.5;
      const double out = Outside(px, py, item);
      int alpha = 0;
      if (out > 0) {
        const double fade = std::max(0.0, 1.0 - out / kOutset);
        alpha = int(std::lround(kGlowAlpha * fade * fade));
      } else if (Inside(px, py, item) < kLineWidth) {
        alpha = kLineAlpha;
      }
      canvas.Set(x, y, WithAlpha(colour, alpha));
    }
}

void WriteRect(std::ostream& out, const char* key, const Box& box) {
  out << ' ' << key << "=\"" << box.left << ", " << box.top << ", " << box.right << ", " << box.bottom << '"';
}

Box HaloPiece(int row, int column) {
  const int xs[] = {kHalo.left, kHalo.left + kBand, kHalo.right - kBand, kHalo.right};
  const int ys[] = {kHalo.top, kHalo.top + kBand, kHalo.bottom - kBand, kHalo.bottom};
  return {xs[column], ys[row], xs[column + 1], ys[row + 1]};
}

void WriteEdge(std::ostream& out, const char* name, const Box& begin, const Box& middle, const Box& end) {
  out << "          <" << name;
  WriteRect(out, "left", begin);
  WriteRect(out, "mid", middle);
  WriteRect(out, "right", end);
  out << "/>\n";
}

// A vertical edge cut from the middle row of one column: top end, middle, bottom end.
void WriteVerticalEdge(std::ostream& out, const char* name, int column) {
  const Box full = HaloPiece(1, column);
  const int quarter = full.Height() / 4;
  WriteEdge(out, name, {full.left, full.top, full.right, full.top + quarter},
            {full.left, full.top + quarter, full.right, full.bottom - quarter},
            {full.left, full.bottom - quarter, full.right, full.bottom});
}

}  // namespace

Canvas DrawStripPicture(const StripColours& c) {
  Canvas canvas(kPictureWidth, kPictureHeight);
  DrawHalo(canvas, c.halo);
  FillRounded(canvas, {kCard, kCardRadius}, c.card);
  FillRounded(canvas, {kCardSelected, kCardRadius}, c.cardSelected);
  return canvas;
}

void WriteStripImageElements(std::ostream& out, const char* file) {
  out << "        <ItemBKImage File=\"" << file << '"';
  WriteRect(out, "Rect", kCard);
  out << "/>\n        <ItemBKImageSelected File=\"" << file << '"';
  WriteRect(out, "Rect", kCardSelected);
  out << "/>\n        <ItemHalo File=\"" << file << "\">\n";
  WriteEdge(out, "EdgeTop", HaloPiece(0, 0), HaloPiece(0, 1), HaloPiece(0, 2));
  WriteVerticalEdge(out, "EdgeLeft", 0);
  WriteVerticalEdge(out, "EdgeRight", 2);
  WriteEdge(out, "EdgeBottom", HaloPiece(2, 0), HaloPiece(2, 1), HaloPiece(2, 2));
  WriteVerticalEdge(out, "EdgeCenter", 1);
  out << "        </ItemHalo>\n";
}

}  // namespace skingen
