#include "Controls.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace skingen {

namespace {

constexpr int kStates = 5;  // Normal, Focus (hover), Press, Disable, KBFocus
constexpr int kSamples = 4;  // per pixel and axis, for the shapes below
constexpr double kPi = 3.14159265358979323846;

constexpr int kTrackWidth = 16;
constexpr int kFillLeft = kTrackWidth + 2;  // a column of each neighbour between them: stretching never blends the two
constexpr int kThumbsLeft = kFillLeft + kTrackWidth + 2;
constexpr int kSliderHeight = 20;
constexpr int kFillHeight = 10;
constexpr int kGrooveTop = 8;     // rows of the groove in the 20-pixel slider
constexpr int kGrooveBottom = 12;
constexpr int kSlotInset = 5;     // the slider's track starts 5 rows below its top
constexpr int kThumbWidth = 12;
constexpr int kThumbHeight = 16;
constexpr int kThumbTop = 2;
constexpr int kBarWidth = 8;
constexpr int kBarHeight = 16;

struct Point {
  double x;
  double y;
};

// Coverage by sampling: the share of a pixel's sample points inside the shape.
template <class Inside>
void FillSampled(Canvas& canvas, const Box& area, Argb colour, Inside inside) {
  PaintArea(canvas, area, [colour](int, int) { return colour; },
            [&inside](int x, int y) {
              int hits = 0;
              for (int sy = 0; sy < kSamples; ++sy)
                for (int sx = 0; sx < kSamples; ++sx)
                  if (inside(x + (sx + 0.5) / kSamples, y + (sy + 0.5) / kSamples)) ++hits;
              return double(hits) / (kSamples * kSamples);
            });
}

bool InPolygon(const std::vector<Point>& points, double x, double y) {
  bool inside = false;
  for (size_t i = 0, j = points.size() - 1; i < points.size(); j = i++) {
    const Point& a = points[i];
    const Point& b = points[j];
    if ((a.y > y) != (b.y > y) && x < (b.x - a.x) * (y - a.y) / (b.y - a.y) + a.x) inside = !inside;
  }
  return inside;
}

void FillPolygon(Canvas& canvas, const Box& cell, const std::vector<Point>& local, Argb colour) {
  std::vector<Point> points;
  for (const Point& p : local) points.push_back({p.x + cell.left, p.y + cell.top});
  FillSampled(canvas, cell, colour, [&points](double x, double y) { return InPolygon(points, x, y); });
}

// A thick segment with round ends.
void FillStroke(Canvas& canvas, const Box& cell, Point from, Point to, double width, Argb colour) {
  const Point a{from.x + cell.left, from.y + cell.top};
  const Point b{to.x + cell.left, to.y + cell.top};
  FillSampled(canvas, cell, colour, [&](double x, double y) {
    const double dx = b.x - a.x, dy = b.y - a.y;
    const double t = std::clamp(((x - a.x) * dx + (y - a.y) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
    return std::hypot(x - (a.x + t * dx), y - (a.y + t * dy)) <= width / 2;
  });
}

// Part of a ring from angle `from` to `to` (radians, clockwise on screen from 3 o'clock).
void FillArc(Canvas& canvas, const Box& cell, Point centre, double inner, double outer, double from, double to,
             Argb colour) {
  const Point c{centre.x + cell.left, centre.y + cell.top};
  FillSampled(canvas, cell, colour, [&](double x, double y) {
    const double r = std::hypot(x - c.x, y - c.y);
    if (r < inner || r > outer) return false;
    double angle = std::atan2(y - c.y, x - c.x);
    while (angle < from) angle += 2 * kPi;
    return angle <= to;
  });
}

bool InRounded(double left, double top, double right, double bottom, double radius, double x, double y) {
  if (x < left || x > right || y < top || y > bottom) return false;
  const double nx = std::clamp(x, left + radius, right - radius);
  const double ny = std::clamp(y, top + radius, bottom - radius);
  return std::hypot(x - nx, y - ny) <= radius;
}

// A rounded frame `thickness` wide along the inside of `box`.
void FillRoundedOutline(Canvas& canvas, const Box& box, double radius, double thickness, Argb colour) {
  FillSampled(canvas, box, colour, [&](double x, double y) {
    return InRounded(box.left, box.top, box.right, box.bottom, radius, x, y) &&
           !InRounded(box.left + thickness, box.top + thickness, box.right - thickness, box.bottom - thickness,
                      std::max(0.0, radius - thickness), x, y);
  });
}

Box Cell(int column, int row, int width, int height) {
  return {column * width, row * height, (column + 1) * width, (row + 1) * height};
}

// --- tool buttons ------------------------------------------------------------------

void DrawToolState(Canvas& canvas, const ControlStyle& style, int state) {
  const ControlColours& c = style.colours;
  const Box cell = Cell(state, 0, style.toolButton, style.toolButton);
  const Box inner = Inset(cell, 1);
  const double radius = style.toolRadius;
  switch (state) {
    case 1:  // hover
      FillRounded(canvas, {inner, radius}, c.frame);
      FillRounded(canvas, {Inset(inner, 1), radius - 1}, c.hover);
      break;
    case 2:  // pressed
      FillRounded(canvas, {inner, radius}, c.frame);
      FillRounded(canvas, {Inset(inner, 1), radius - 1}, c.press);
      HorizontalLine(canvas, inner.left + style.toolRadius, inner.right - style.toolRadius, inner.bottom - 2, c.accent);
      break;
    case 4:  // keyboard focus
      FillRoundedOutline(canvas, inner, radius, 2.0, c.accent);
      break;
    default: break;  // normal and disabled: flat, only the icon shows
  }
}

// --- icons ------------------------------------------------------------------------------

void DrawIcon(Canvas& canvas, const ControlStyle& style, ToolIcon icon, Argb colour) {
  const double s = style.toolIcon / 20.0;  // icons are designed on a 20-pixel grid
  const Box cell = Cell(icon, 0, style.toolIcon, style.toolIcon);
  auto p = [s](double x, double y) { return Point{x * s, y * s}; };
  switch (icon) {
    case kIconPrev: FillPolygon(canvas, cell, {p(14, 4), p(14, 16), p(5, 10)}, colour); break;
    case kIconNext: FillPolygon(canvas, cell, {p(6, 4), p(6, 16), p(15, 10)}, colour); break;
    case kIconRotateLeft:
      FillArc(canvas, cell, p(10, 11), 5.0 * s, 7.2 * s, -kPi / 2, kPi, colour);
      FillPolygon(canvas, cell, {p(10.5, 1), p(10.5, 8.2), p(5.5, 4.6)}, colour);
      break;
    case kIconRotateRight:
      FillArc(canvas, cell, p(10, 11), 5.0 * s, 7.2 * s, 0, 3 * kPi / 2, colour);
      FillPolygon(canvas, cell, {p(9.5, 1), p(9.5, 8.2), p(14.5, 4.6)}, colour);
      break;
    case kIconFit: {
      const double arm = 5, t = 2, in = 3, out = 17;
      const std::vector<std::vector<Point>> corners = {
          {p(in, in), p(in + arm, in), p(in + arm, in + t), p(in + t, in + t), p(in + t, in + arm), p(in, in + arm)},
          {p(out, in), p(out - arm, in), p(out - arm, in + t), p(out - t, in + t), p(out - t, in + arm), p(out, in + arm)},
          {p(in, out), p(in + arm, out), p(in + arm, out - t), p(in + t, out - t), p(in + t, out - arm), p(in, out - arm)},
          {p(out, out), p(out - arm, out), p(out - arm, out - t), p(out - t, out - t), p(out - t, out - arm),
           p(out, out - arm)}};
      for (const auto& corner : corners) FillPolygon(canvas, cell, corner, colour);
      FillPolygon(canvas, cell, {p(8, 8), p(12, 8), p(12, 12), p(8, 12)}, colour);
      break;
    }
    case kIconActual:
      FillPolygon(canvas, cell, {p(3, 7), p(6, 4), p(8, 4), p(8, 16), p(6, 16), p(6, 7)}, colour);
      FillPolygon(canvas, cell, {p(9, 7), p(11, 7), p(11, 9), p(9, 9)}, colour);
      FillPolygon(canvas, cell, {p(9, 12), p(11, 12), p(11, 14), p(9, 14)}, colour);
      FillPolygon(canvas, cell, {p(12, 7), p(15, 4), p(17, 4), p(17, 16), p(15, 16), p(15, 7)}, colour);
      break;
    case kIconSkin:
      FillArc(canvas, cell, p(10, 10), 6.0 * s, 7.8 * s, -kPi, kPi, colour);
      FillArc(canvas, cell, p(10, 10), 0.0, 4.8 * s, kPi / 2, 3 * kPi / 2, colour);
      break;
    default: break;
  }
}

// --- system buttons --------------------------------------------------------------------------

void DrawSysGlyph(Canvas& canvas, const Box& cell, SysGlyph glyph, Argb colour) {
  const double cx = cell.Width() / 2.0, cy = cell.Height() / 2.0;
  auto box = [&](double l, double t, double r, double b) {
    FillPolygon(canvas, cell, {{cx + l, cy + t}, {cx + r, cy + t}, {cx + r, cy + b}, {cx + l, cy + b}}, colour);
  };
  auto frame = [&](double l, double t, double r, double b) {
    box(l, t, r, t + 2);      // a thicker top, like a window's title bar
    box(l, b - 1, r, b);
    box(l, t, l + 1, b);
    box(r - 1, t, r, b);
  };
  switch (glyph) {
    case kSysMin: box(-5, 2, 5, 4); break;
    case kSysMax: frame(-5, -5, 5, 5); break;
    case kSysRestore:
      box(-3, -5, 5, -3);  // the window behind: its visible top and right side
      box(4, -5, 5, 3);
      frame(-5, -3, 3, 5);
      break;
    case kSysClose:
      FillStroke(canvas, cell, {cx - 4.5, cy - 4.5}, {cx + 4.5, cy + 4.5}, 1.8, colour);
      FillStroke(canvas, cell, {cx + 4.5, cy - 4.5}, {cx - 4.5, cy + 4.5}, 1.8, colour);
      break;
    default: break;
  }
}

void DrawSysState(Canvas& canvas, const ControlStyle& style, SysGlyph glyph, int state) {
  const ControlColours& c = style.colours;
  const Box cell = Cell(state, glyph, style.sysWidth, style.sysHeight);
  const RoundedBox back{Inset(cell, 1), 3.0};
  const bool close = glyph == kSysClose;
  Argb ink = c.glyph;
  switch (state) {
    case 1:
      FillRounded(canvas, back, close ? c.close : c.hover);
      if (close) ink = 0xFFFFFFFF;
      break;
    case 2:
      FillRounded(canvas, back, close ? c.closePress : c.press);
      if (close) ink = 0xFFFFFFFF;
      break;
    case 3: ink = c.glyphDim; break;
    case 4: FillRoundedOutline(canvas, back.box, 3.0, 1.5, c.accent); break;
    default: break;
  }
  DrawSysGlyph(canvas, cell, glyph, ink);
}

// --- slider -------------------------------------------------------------------------------------

void DrawThumb(Canvas& canvas, const ControlStyle& style, int state) {
  const ControlColours& c = style.colours;
  const int left = kThumbsLeft + state * kThumbWidth;
  const Box box{left, kThumbTop, left + kThumbWidth, kThumbTop + kThumbHeight};
  const Argb fill = state == 1 ? c.thumbHover : state == 2 ? c.accent : state == 3 ? c.glyphDim : c.thumb;
  FillRounded(canvas, {box, 3.0}, c.trackShadow);
  FillRounded(canvas, {Inset(box, 1), 2.0}, fill);
  if (state == 4) FillRoundedOutline(canvas, box, 3.0, 1.5, c.accent);
}

void WriteBox(std::ostream& out, const char* key, const Box& box) {
  out << ' ';
  if (*key) out << key << '=';
  out << '"' << box.left << ", " << box.top << ", " << box.right << ", " << box.bottom << '"';
}

}  // namespace

Canvas DrawToolButtonStates(const ControlStyle& style) {
  Canvas canvas(kStates * style.toolButton, style.toolButton);
  for (int state = 0; state < kStates; ++state) DrawToolState(canvas, style, state);
  return canvas;
}

Canvas DrawToolIcons(const ControlStyle& style) {
  Canvas canvas(kToolIconCount * style.toolIcon, style.toolIcon);
  for (int icon = 0; icon < kToolIconCount; ++icon) DrawIcon(canvas, style, ToolIcon(icon), style.colours.glyph);
  return canvas;
}

Canvas DrawSysButtons(const ControlStyle& style) {
  Canvas canvas(kStates * style.sysWidth, kSysGlyphCount * style.sysHeight);
  for (int glyph = 0; glyph < kSysGlyphCount; ++glyph)
    for (int state = 0; state < kStates; ++state) DrawSysState(canvas, style, SysGlyph(glyph), state);
  return canvas;
}

Canvas DrawAppIcon(const ControlStyle& style) {
  const ControlColours& c = style.colours;
  const int n = style.appIcon;
  const double s = n / 20.0;
  Canvas canvas(n, n);
  const RoundedBox frame{canvas.Bounds(), 4.0 * s};
  FillRounded(canvas, frame, c.iconSky);
  FillDisc(canvas, {13.5 * s, 6.5 * s, 2.6 * s}, c.iconSun);
  FillSampled(canvas, canvas.Bounds(), c.iconHills, [&](double x, double y) {
    const std::vector<Point> hills = {{0, 16 * s}, {6 * s, 8 * s}, {10 * s, 12 * s}, {13 * s, 10 * s},
                                      {20 * s, 16 * s}, {20 * s, 20 * s}, {0, 20 * s}};
    return InPolygon(hills, x, y) && InRounded(0, 0, n, n, frame.radius, x, y);
  });
  return canvas;
}

Canvas DrawSlider(const ControlStyle& style) {
  const ControlColours& c = style.colours;
  Canvas canvas(kThumbsLeft + kStates * kThumbWidth, kSliderHeight);
  // The groove, uniform along x so it stretches over any width.
  HorizontalLine(canvas, 0, kTrackWidth + 1, kGrooveTop, c.trackShadow);
  FillBox(canvas, {0, kGrooveTop + 1, kTrackWidth + 1, kGrooveBottom}, c.track);
  // The fill covers the groove's rows of the track's slot.
  const int fillTop = kGrooveTop - kSlotInset;
  const int fillBottom = kGrooveBottom - kSlotInset;
  HorizontalLine(canvas, kFillLeft - 1, kFillLeft + kTrackWidth + 1, fillTop, Mix(c.accent, c.trackShadow, 0.4));
  FillBox(canvas, {kFillLeft - 1, fillTop + 1, kFillLeft + kTrackWidth + 1, fillBottom}, c.accent);
  for (int state = 0; state < kStates; ++state) DrawThumb(canvas, style, state);
  return canvas;
}

Canvas DrawToolBar(const ControlStyle& style) {
  const ControlColours& c = style.colours;
  Canvas canvas(kBarWidth, kBarHeight);
  HorizontalLine(canvas, 0, kBarWidth, 0, c.barLine);
  HorizontalLine(canvas, 0, kBarWidth, 1, c.barHighlight);
  FillVerticalGradient(canvas, {0, 2, kBarWidth, kBarHeight}, c.barTop, c.barBottom);
  return canvas;
}

void WriteControlRects(std::ostream& out, const ControlStyle& style) {
  static const char* const kStateKeys[kStates] = {"Normal", "Focus", "Press", "Disable", "KBFocus"};
  out << "  ToolButton.png Image";
  for (int state = 0; state < kStates; ++state)
    WriteBox(out, kStateKeys[state], Cell(state, 0, style.toolButton, style.toolButton));
  out << "\n  ToolIcons.png Icon Rect of prev, next, rotate left, rotate right, fit, 1:1, skin:";
  for (int icon = 0; icon < kToolIconCount; ++icon) WriteBox(out, "", Cell(icon, 0, style.toolIcon, style.toolIcon));
  out << "\n  SysButtons.png rows min max restore close, columns as ToolButton.png, cells " << style.sysWidth << " x "
      << style.sysHeight;
  out << "\n  Slider.png";
  WriteBox(out, "BkImage", {0, 0, kTrackWidth, kSliderHeight});
  WriteBox(out, "FillImage", {kFillLeft, 0, kFillLeft + kTrackWidth, kFillHeight});
  for (int state = 0; state < kStates; ++state) {
    const int left = kThumbsLeft + state * kThumbWidth;
    WriteBox(out, kStateKeys[state], {left, kThumbTop, left + kThumbWidth, kThumbTop + kThumbHeight});
  }
  out << "\n  ToolBar.png";
  WriteBox(out, "EdgeTop mid", {0, 0, kBarWidth, 2});
  WriteBox(out, "EdgeCenter mid", {0, 2, kBarWidth, kBarHeight});
  out << '\n';
}

}  // namespace skingen
