#include "Photos.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace skingen {

namespace {

constexpr double kPi = 3.14159265358979323846;

// Fixed-seed generator, so every run places the same stars and glints.
class Random {
 public:
  explicit Random(std::uint32_t seed) : m_state(seed) {}
  // Uniform in [0, 1).
  double Next() {
    m_state = m_state * 1664525u + 1013904223u;
    return (m_state >> 8) / double(1u << 24);
  }
  double Between(double low, double high) { return low + (high - low) * Next(); }

 private:
  std::uint32_t m_state;
};

// Fills every column from its ridge line (anti-aliased) down to `bottom`;
// colourAt(x, y, ridge) lets the shading follow the ridge.
template <class RidgeAt, class ColourAt>
void FillBelowRidge(Canvas& canvas, int bottom, RidgeAt ridgeAt, ColourAt colourAt) {
  bottom = std::min(bottom, canvas.Height());
  for (int x = 0; x < canvas.Width(); ++x) {
    const double ridge = ridgeAt(x);
    for (int y = std::max(0, int(std::floor(ridge))); y < bottom; ++y)
      canvas.Blend(x, y, colourAt(x, y, ridge), std::clamp(y + 1.0 - ridge, 0.0, 1.0));
  }
}

// Rolling hills: a few sines of falling amplitude over the base line.
double HillLine(double x, double width, double base, double amplitude, double phase) {
  const double t = x / width * 2.0 * kPi;
  return base - amplitude * (0.55 * std::sin(t * 1.3 + phase) + 0.30 * std::sin(t * 3.1 + phase * 2.0) +
                             0.15 * std::sin(t * 7.7 + phase * 3.0));
}

Argb ShadeDown(Argb top, Argb bottom, int y, double ridge, double depth) {
  return Mix(top, bottom, std::clamp((y - ridge) / depth, 0.0, 1.0));
}

void DrawSun(Canvas& canvas, double cx, double cy, double radius, Argb colour) {
  FillGlow(canvas, {cx, cy, radius * 5.0}, WithAlpha(colour, 110));
  FillDisc(canvas, {cx, cy, radius}, colour);
}

// Short bright dashes on water under a light source.
void DrawGlints(Canvas& canvas, double cx, int top, int bottom, double spread, Argb colour, std::uint32_t seed) {
  Random random(seed);
  for (int i = 0; i < 60; ++i) {
    const double depth = random.Next();
    const int y = top + int(depth * (bottom - top));
    const double half = spread * (0.3 + depth);
    const double x = cx + random.Between(-half, half);
    const double length = 4.0 + depth * 18.0;
    FillTrapezoid(canvas, {double(y), y + 1.5, x, x + length, x, x + length}, WithAlpha(colour, 90 + int(depth * 80)));
  }
}

void DrawFir(Canvas& canvas, double x, double groundY, double height, Argb colour) {
  const double width = height * 0.42;
  FillBox(canvas, {int(x - height * 0.03), int(groundY - height * 0.15), int(x + height * 0.03) + 1, int(groundY)},
          MakeArgb(255, 58, 40, 28));
  for (int tier = 0; tier < 3; ++tier) {
    const double bottom = groundY - height * (0.12 + 0.26 * tier);
    const double top = bottom - height * 0.45;
    const double half = width * (0.5 - 0.12 * tier);
    FillTrapezoid(canvas, {top, bottom, x, x, x - half, x + half}, colour);
  }
}

struct LandscapePalette {
  Argb skyTop, skyHorizon, sun, farHills, midHillsTop, midHillsBottom, waterTop, waterBottom, meadowTop,
      meadowBottom, trees;
};

LandscapePalette PaletteFor(LandscapeLight light) {
  if (light == LandscapeLight::Day)
    return {0xFF2F6DB5, 0xFFBFD9EE, 0xFFFFF6D8, 0xFF7C98B4, 0xFF4F7A4C, 0xFF35583A,
            0xFF7FA6C8, 0xFF2D5A80, 0xFF6FA04A, 0xFF2F5A26, 0xFF1F3B22};
  return {0xFF2A2450, 0xFFF2A45C, 0xFFFFE0A0, 0xFF6B4E6E, 0xFF4A3A52, 0xFF2C2236,
          0xFFD98E5A, 0xFF3A2A48, 0xFF4A4A3A, 0xFF1E1E1A, 0xFF151515};
}

}  // namespace

Canvas DrawLandscape(int width, int height, LandscapeLight light) {
  const LandscapePalette p = PaletteFor(light);
  const double w = width;
  const double h = height;
  const int horizon = int(h * 0.60);
  Canvas canvas(width, height, 0xFF000000);
  FillVerticalGradient(canvas, {0, 0, width, horizon}, p.skyTop, p.skyHorizon);
  const double sunY = light == LandscapeLight::Day ? h * 0.22 : h * 0.50;
  DrawSun(canvas, w * 0.68, sunY, h * 0.045, p.sun);
  FillBelowRidge(canvas, horizon, [&](int x) { return HillLine(x, w, h * 0.50, h * 0.06, 0.4); },
                 [&](int, int, double) { return p.farHills; });
  FillBelowRidge(canvas, horizon, [&](int x) { return HillLine(x, w, h * 0.56, h * 0.05, 2.1); },
                 [&](int, int y, double ridge) { return ShadeDown(p.midHillsTop, p.midHillsBottom, y, ridge, h * 0.08); });
  FillVerticalGradient(canvas, {0, horizon, width, height}, p.waterTop, p.waterBottom);
  DrawGlints(canvas, w * 0.68, horizon + 2, int(h * 0.80), w * 0.05, p.sun, 7);
  auto meadow = [&](int x) { return HillLine(x, w, h * 0.84, h * 0.05, 4.0) + h * 0.04 * std::sin(x / w * kPi); };
  FillBelowRidge(canvas, height, meadow,
                 [&](int, int y, double ridge) { return ShadeDown(p.meadowTop, p.meadowBottom, y, ridge, h * 0.2); });
  const double firs[][2] = {{0.08, 0.30}, {0.13, 0.22}, {0.19, 0.26}, {0.86, 0.28}, {0.92, 0.20}};
  for (const auto& fir : firs) DrawFir(canvas, w * fir[0], meadow(int(w * fir[0])) + h * 0.02, h * fir[1], p.trees);
  return canvas;
}

namespace {

struct MountainRange {
  double base;        // foot of the range, as a share of the height
  double peakHeight;  // tallest peak above the foot, as a share
  double snowLine;    // snow above this row, as a share (0: none)
  Argb rockTop;
  Argb rockBottom;
  double relief;      // how strongly the slopes' light shows, 0..1
  std::uint32_t seed;
};

// Ridge row of every column: the highest of a few tent-shaped peaks.
std::vector<double> MountainRidge(const MountainRange& range, int width, int height) {
  Random random(range.seed);
  struct Peak { double x, rise, halfWidth; };
  std::vector<Peak> peaks(14);
  for (Peak& peak : peaks)
    peak = {random.Between(-0.05, 1.05) * width, random.Between(0.35, 1.0) * range.peakHeight * height,
            random.Between(0.04, 0.10) * width};
  std::vector<double> ridge(std::size_t(width) + 1);
  for (int x = 0; x <= width; ++x) {
    double rise = 0.0;
    for (const Peak& peak : peaks) rise = std::max(rise, peak.rise * (1.0 - std::abs(x - peak.x) / peak.halfWidth));
    ridge[std::size_t(x)] = range.base * height - rise - height * 0.008 * std::sin(x * 0.05);
  }
  return ridge;
}

// Light from the left: slopes falling to the right lie in shadow.
void DrawMountainRange(Canvas& canvas, const MountainRange& range) {
  const int width = canvas.Width();
  const double h = canvas.Height();
  const std::vector<double> ridge = MountainRidge(range, width, canvas.Height());
  FillBelowRidge(canvas, canvas.Height(), [&](int x) { return ridge[std::size_t(x)]; }, [&](int x, int y, double top) {
    // The slope's light shows near the ridge and fades into the haze below.
    const double fall = ridge[std::size_t(x) + 1] - ridge[std::size_t(x)];
    const double nearRidge = std::clamp(1.0 - (y - top) / (h * 0.22), 0.0, 1.0);
    const double shade = std::clamp(0.5 + fall * 0.8, 0.0, 1.0) * nearRidge * range.relief;
    const bool snow = y < range.snowLine * h + h * 0.02 * std::sin(x * 0.031);
    const Argb lit = snow ? 0xFFFFFFFF : Mix(range.rockTop, range.rockBottom, y / h);
    return Mix(lit, snow ? 0xFFA8B8D0 : Mix(lit, 0xFF101820, 0.45), shade);
  });
}

}  // namespace

Canvas DrawPanorama(int width, int height) {
  Canvas canvas(width, height, 0xFF000000);
  FillVerticalGradient(canvas, {0, 0, width, height}, 0xFF1C4C8C, 0xFFD8E6F0);
  const MountainRange ranges[] = {{0.62, 0.40, 0.36, 0xFF9FB0C8, 0xFF8A9CB6, 0.6, 11},
                                  {0.74, 0.34, 0.48, 0xFF6E7E96, 0xFF4A5A6C, 0.8, 23},
                                  {0.86, 0.22, 0.0, 0xFF4A6A44, 0xFF1E3018, 0.4, 31}};
  for (const MountainRange& range : ranges) DrawMountainRange(canvas, range);
  return canvas;
}

Canvas DrawLighthouse(int width, int height) {
  const double w = width;
  const double h = height;
  const int horizon = int(h * 0.72);
  Canvas canvas(width, height, 0xFF000000);
  FillVerticalGradient(canvas, {0, 0, width, horizon}, 0xFF141A3C, 0xFFF0905A);
  Random stars(5);
  for (int i = 0; i < 40; ++i)
    FillDisc(canvas, {stars.Next() * w, stars.Next() * h * 0.3, stars.Between(0.6, 1.6)}, 0xFFF4F0E0);
  FillVerticalGradient(canvas, {0, horizon, width, height}, 0xFF3E4E6A, 0xFF0C1A26);
  DrawGlints(canvas, w * 0.5, horizon + 2, height - 20, w * 0.25, 0xFFF7B878, 19);
  // The rock the tower stands on.
  FillBelowRidge(canvas, height, [&](int x) { return h * 0.80 + h * 0.05 * std::pow((x / w - 0.42) * 2.2, 2.0); },
                 [&](int, int y, double ridge) { return ShadeDown(0xFF3A3430, 0xFF141210, y, ridge, h * 0.15); });
  // Tower: white with red bands, narrowing upwards.
  const double cx = w * 0.42;
  const double top = h * 0.30;
  const double bottom = h * 0.81;
  const double topHalf = w * 0.055;
  const double bottomHalf = w * 0.09;
  auto half = [&](double y) { return topHalf + (bottomHalf - topHalf) * (y - top) / (bottom - top); };
  FillTrapezoid(canvas, {top, bottom, cx - topHalf, cx + topHalf, cx - bottomHalf, cx + bottomHalf}, 0xFFEDE8E0);
  for (int band = 0; band < 4; ++band) {
    const double y0 = top + (bottom - top) * (0.08 + band * 0.25);
    const double y1 = y0 + (bottom - top) * 0.12;
    FillTrapezoid(canvas, {y0, y1, cx - half(y0), cx + half(y0), cx - half(y1), cx + half(y1)}, 0xFFB8302A);
  }
  // Lantern room, lamp and its beam.
  FillBox(canvas, {int(cx - topHalf * 1.3), int(top - h * 0.012), int(cx + topHalf * 1.3), int(top)}, 0xFF202020);
  FillBox(canvas, {int(cx - topHalf * 0.8), int(top - h * 0.06), int(cx + topHalf * 0.8), int(top - h * 0.012)},
          0xFF2A2A2A);
  FillTrapezoid(canvas, {top - h * 0.10, top - h * 0.06, cx, cx, cx - topHalf, cx + topHalf}, 0xFF202020);
  const double lampY = top - h * 0.036;
  PaintArea(canvas, {0, int(lampY - h * 0.06), int(cx), int(lampY + h * 0.06)}, [](int, int) { return 0xFFFFF0B0; },
            [&](int x, int y) {
              const double spread = (cx - x) / cx * h * 0.055;  // the beam widens to the left edge
              const double off = std::abs(y + 0.5 - lampY);
              return off > spread ? 0.0 : 0.35 * (1.0 - off / (spread + 1.0));
            });
  FillGlow(canvas, {cx, lampY, w * 0.12}, 0xB0FFE6A0);
  FillDisc(canvas, {cx, lampY, w * 0.018}, 0xFFFFF8E0);
  return canvas;
}

Canvas DrawColourChart(int width, int height) {
  Canvas canvas(width, height, 0xFF2E2E30);
  const int square = height / 16;
  for (int x = 0; x * square < width; ++x)
    FillBox(canvas, {x * square, 0, (x + 1) * square, square}, x % 2 ? 0xFFF2F2F2 : 0xFF101010);
  for (int x = 0; x * square < width; ++x)
    FillBox(canvas, {x * square, square, (x + 1) * square, 2 * square}, x % 2 ? 0xFF101010 : 0xFFF2F2F2);
  const int columns = 6;
  const int rows = 4;
  const int gap = width / 60;
  const int top = 2 * square + gap;
  const int rampHeight = height / 10;
  const int cellW = (width - gap) / columns;
  const int cellH = (height - top - rampHeight - 2 * gap) / rows;
  const Argb patches[rows][columns] = {
      {0xFFC8322D, 0xFFE07B28, 0xFFE8C73A, 0xFF7BB23C, 0xFF2E9A5E, 0xFF2A9FA8},
      {0xFF2D6CC0, 0xFF4A43A8, 0xFF8A3FA6, 0xFFC43E86, 0xFF8C5A3C, 0xFF5E7A2E},
      {0xFFF0C8B0, 0xFFD8A07C, 0xFFB07850, 0xFF7A4E32, 0xFF9CB4D8, 0xFFB8D08C},
      {0xFFF4F4F4, 0xFFC4C4C4, 0xFF949494, 0xFF646464, 0xFF363636, 0xFF0C0C0C}};
  for (int row = 0; row < rows; ++row)
    for (int column = 0; column < columns; ++column) {
      const Box cell{gap + column * cellW, top + row * cellH, gap + (column + 1) * cellW - gap,
                     top + (row + 1) * cellH - gap};
      FillRounded(canvas, {cell, gap * 0.6}, patches[row][column]);
    }
  const Box ramp{gap, height - rampHeight - gap, width - gap, height - gap};
  PaintArea(canvas, ramp, [&](int x, int) { return Mix(0xFF000000, 0xFFFFFFFF, double(x - ramp.left) / (ramp.Width() - 1)); },
            [](int, int) { return 1.0; });
  return canvas;
}

Canvas DrawBubbles(int width, int height) {
  Canvas canvas(width, height);
  Random random(3);
  const Argb hues[] = {0xFF3FA8E8, 0xFFE85A7A, 0xFF8AD048, 0xFFF0B030, 0xFF9A6AE0};
  for (int i = 0; i < 14; ++i) {
    const double radius = random.Between(0.06, 0.16) * height;
    const double cx = random.Between(radius, width - radius);
    const double cy = random.Between(radius, height - radius);
    const Argb hue = hues[i % 5];
    FillDisc(canvas, {cx, cy, radius}, WithAlpha(hue, 150));
    FillDisc(canvas, {cx, cy, radius * 0.82}, WithAlpha(Mix(hue, 0xFFFFFFFF, 0.35), 70));
    FillDisc(canvas, {cx - radius * 0.35, cy - radius * 0.35, radius * 0.18}, 0xC8FFFFFF);
  }
  return canvas;
}

std::vector<Canvas> DrawSpinnerFrames(int size, int frames) {
  const int dots = 2 * frames;
  const double centre = size / 2.0;
  std::vector<Canvas> result;
  for (int frame = 0; frame < frames; ++frame) {
    Canvas canvas(size, size, 0xFF202428);
    for (int dot = 0; dot < dots; ++dot) {
      const double angle = 2.0 * kPi * dot / dots - kPi / 2.0;
      const int behind = (2 * frame - dot + dots) % dots;  // steps behind the bright dot
      const Argb colour = Mix(0xFF4FC3F7, 0xFF34404A, std::min(1.0, behind / 4.0));
      FillDisc(canvas, {centre + std::cos(angle) * size * 0.32, centre + std::sin(angle) * size * 0.32, size * 0.07},
               colour);
    }
    result.push_back(std::move(canvas));
  }
  return result;
}

}  // namespace skingen
