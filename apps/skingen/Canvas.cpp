#include "Canvas.h"

#include <algorithm>
#include <cmath>

namespace skingen {

namespace {

int RoundChannel(double value) { return std::clamp(int(std::lround(value)), 0, 255); }

double Clamp01(double value) { return std::clamp(value, 0.0, 1.0); }

// Share of the pixel (x, x + 1) that lies between the two edges.
double Span(double left, double right, int x) {
  return Clamp01(std::min(right, x + 1.0) - std::max(left, double(x)));
}

}  // namespace

Argb Mix(Argb from, Argb to, double t) {
  auto channel = [t](int a, int b) { return RoundChannel(a + (b - a) * t); };
  return MakeArgb(channel(Alpha(from), Alpha(to)), channel(Red(from), Red(to)), channel(Green(from), Green(to)),
                  channel(Blue(from), Blue(to)));
}

Box Intersect(const Box& a, const Box& b) {
  return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

Box Inset(const Box& box, int by) { return {box.left + by, box.top + by, box.right - by, box.bottom - by}; }

Canvas::Canvas(int width, int height, Argb fill)
    : m_width(width), m_height(height), m_pixels(std::size_t(width) * std::size_t(height), fill) {}

void Canvas::Blend(int x, int y, Argb colour, double coverage) {
  const double source = Alpha(colour) / 255.0 * Clamp01(coverage);
  if (source <= 0.0) return;
  const Argb below = At(x, y);
  const double dest = Alpha(below) / 255.0 * (1.0 - source);
  const double alpha = source + dest;
  auto channel = [&](int s, int d) { return RoundChannel((s * source + d * dest) / alpha); };
  Set(x, y, MakeArgb(RoundChannel(alpha * 255.0), channel(Red(colour), Red(below)),
                     channel(Green(colour), Green(below)), channel(Blue(colour), Blue(below))));
}

double RoundedBox::Coverage(int x, int y) const {
  if (x < box.left || x >= box.right || y < box.top || y >= box.bottom) return 0.0;
  // Distance from the pixel centre to the nearest point of the box shrunk
  // by the radius: zero on the straight parts, growing around the corners.
  const double px = x + 0.5;
  const double py = y + 0.5;
  const double nx = std::clamp(px, box.left + radius, box.right - radius);
  const double ny = std::clamp(py, box.top + radius, box.bottom - radius);
  const double distance = std::hypot(px - nx, py - ny);
  return radius <= 0.0 ? 1.0 : Clamp01(radius + 0.5 - distance);
}

double Disc::Coverage(int x, int y) const {
  return Clamp01(radius + 0.5 - std::hypot(x + 0.5 - cx, y + 0.5 - cy));
}

double Trapezoid::Coverage(int x, int y) const {
  const double vertical = Span(top, bottom, y);
  if (vertical <= 0.0) return 0.0;
  const double t = bottom > top ? Clamp01((y + 0.5 - top) / (bottom - top)) : 0.0;
  const double left = topLeft + (bottomLeft - topLeft) * t;
  const double right = topRight + (bottomRight - topRight) * t;
  return vertical * Span(left, right, x);
}

void FillBox(Canvas& canvas, const Box& box, Argb colour) { FillShape(canvas, box, RoundedBox{box, 0.0}, colour); }

void FillVerticalGradient(Canvas& canvas, const Box& box, Argb top, Argb bottom) {
  FillVerticalGradient(canvas, box, top, bottom, RoundedBox{box, 0.0});
}

void FillVerticalGradient(Canvas& canvas, const Box& box, Argb top, Argb bottom, const RoundedBox& clip) {
  const int steps = std::max(1, box.Height() - 1);
  PaintArea(canvas, box, [&](int, int y) { return Mix(top, bottom, double(y - box.top) / steps); },
            [&clip](int x, int y) { return clip.Coverage(x, y); });
}

void FillRounded(Canvas& canvas, const RoundedBox& shape, Argb colour) { FillShape(canvas, shape.box, shape, colour); }

namespace {

Box BoundsOf(const Disc& disc) {
  return {int(std::floor(disc.cx - disc.radius - 1)), int(std::floor(disc.cy - disc.radius - 1)),
          int(std::ceil(disc.cx + disc.radius + 1)), int(std::ceil(disc.cy + disc.radius + 1))};
}

}  // namespace

void FillDisc(Canvas& canvas, const Disc& disc, Argb colour) { FillShape(canvas, BoundsOf(disc), disc, colour); }

void FillTrapezoid(Canvas& canvas, const Trapezoid& shape, Argb colour) {
  const Box area{int(std::floor(std::min(shape.topLeft, shape.bottomLeft))), int(std::floor(shape.top)),
                 int(std::ceil(std::max(shape.topRight, shape.bottomRight))), int(std::ceil(shape.bottom))};
  FillShape(canvas, area, shape, colour);
}

void FillGlow(Canvas& canvas, const Disc& disc, Argb colour) {
  PaintArea(canvas, BoundsOf(disc), [colour](int, int) { return colour; },
            [&disc](int x, int y) {
              const double t = 1.0 - std::hypot(x + 0.5 - disc.cx, y + 0.5 - disc.cy) / disc.radius;
              return t <= 0.0 ? 0.0 : t * t;
            });
}

void HorizontalLine(Canvas& canvas, int left, int right, int y, Argb colour) {
  FillBox(canvas, {left, y, right, y + 1}, colour);
}

void VerticalLine(Canvas& canvas, int x, int top, int bottom, Argb colour) {
  FillBox(canvas, {x, top, x + 1, bottom}, colour);
}

}  // namespace skingen
