#pragma once

// A small software raster for the generated pictures: 32-bit 0xAARRGGBB
// pixels, top-down rows, source-over blending with a coverage per pixel.
// Shapes report how much of a pixel (sampled at its centre) they cover, so
// round edges come out anti-aliased. Everything is plain arithmetic, so the
// same program draws the same bytes on every run.

#include <cstdint>
#include <vector>

namespace skingen {

using Argb = std::uint32_t;

constexpr Argb MakeArgb(int a, int r, int g, int b) {
  return (Argb(a) << 24) | (Argb(r) << 16) | (Argb(g) << 8) | Argb(b);
}
constexpr int Alpha(Argb c) { return int(c >> 24); }
constexpr int Red(Argb c) { return int((c >> 16) & 0xFF); }
constexpr int Green(Argb c) { return int((c >> 8) & 0xFF); }
constexpr int Blue(Argb c) { return int(c & 0xFF); }
constexpr Argb WithAlpha(Argb c, int a) { return (c & 0x00FFFFFFu) | (Argb(a) << 24); }

// Channel-wise blend from `from` (t = 0) to `to` (t = 1), rounded.
Argb Mix(Argb from, Argb to, double t);

// Half-open pixel box: left/top inside, right/bottom outside.
struct Box {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;

  int Width() const { return right - left; }
  int Height() const { return bottom - top; }
  bool Empty() const { return right <= left || bottom <= top; }
};

Box Intersect(const Box& a, const Box& b);
Box Inset(const Box& box, int by);

class Canvas {
 public:
  Canvas(int width, int height, Argb fill = 0);

  int Width() const { return m_width; }
  int Height() const { return m_height; }
  Box Bounds() const { return {0, 0, m_width, m_height}; }
  Argb At(int x, int y) const { return m_pixels[Index(x, y)]; }
  void Set(int x, int y, Argb colour) { m_pixels[Index(x, y)] = colour; }
  // Source-over with the colour's own alpha scaled by coverage (0..1).
  void Blend(int x, int y, Argb colour, double coverage);

 private:
  std::size_t Index(int x, int y) const { return std::size_t(y) * std::size_t(m_width) + std::size_t(x); }

  int m_width;
  int m_height;
  std::vector<Argb> m_pixels;
};

// Coverage of a pixel by a box with rounded corners (radius 0: square).
struct RoundedBox {
  Box box;
  double radius = 0.0;
  double Coverage(int x, int y) const;
};

struct Disc {
  double cx = 0.0;
  double cy = 0.0;
  double radius = 0.0;
  double Coverage(int x, int y) const;
};

// A horizontal band whose left and right sides are straight lines from
// the top row to the bottom row: rectangles, trapezoids and (with equal
// top sides) triangles.
struct Trapezoid {
  double top = 0.0;
  double bottom = 0.0;
  double topLeft = 0.0;
  double topRight = 0.0;
  double bottomLeft = 0.0;
  double bottomRight = 0.0;
  double Coverage(int x, int y) const;
};

// Paints every pixel of `area` with colourAt(x, y), weighted by
// coverageAt(x, y).
template <class ColourAt, class CoverageAt>
void PaintArea(Canvas& canvas, const Box& area, ColourAt colourAt, CoverageAt coverageAt) {
  const Box clipped = Intersect(area, canvas.Bounds());
  for (int y = clipped.top; y < clipped.bottom; ++y)
    for (int x = clipped.left; x < clipped.right; ++x) {
      const double coverage = coverageAt(x, y);
      if (coverage > 0.0) canvas.Blend(x, y, colourAt(x, y), coverage);
    }
}

template <class Shape>
void FillShape(Canvas& canvas, const Box& area, const Shape& shape, Argb colour) {
  PaintArea(canvas, area, [colour](int, int) { return colour; },
            [&shape](int x, int y) { return shape.Coverage(x, y); });
}

void FillBox(Canvas& canvas, const Box& box, Argb colour);
// Row `box.top` gets `top`, the last row `bottom`, linear in between.
void FillVerticalGradient(Canvas& canvas, const Box& box, Argb top, Argb bottom);
// The same gradient, painted only where `clip` covers.
void FillVerticalGradient(Canvas& canvas, const Box& box, Argb top, Argb bottom, const RoundedBox& clip);
void FillRounded(Canvas& canvas, const RoundedBox& shape, Argb colour);
void FillDisc(Canvas& canvas, const Disc& disc, Argb colour);
void FillTrapezoid(Canvas& canvas, const Trapezoid& shape, Argb colour);
// A soft halo: alpha falls from `colour`'s alpha at the centre to 0 at radius.
void FillGlow(Canvas& canvas, const Disc& disc, Argb colour);
void HorizontalLine(Canvas& canvas, int left, int right, int y, Argb colour);
void VerticalLine(Canvas& canvas, int x, int top, int bottom, Argb colour);

}  // namespace skingen
