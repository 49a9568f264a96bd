#include "platform/window/Regions.h"

#include <algorithm>
#include <cmath>

namespace KarvelUI {

HRGN CreateRectRgn(int left, int top, int right, int bottom) {
  CRect rect(left, top, right, bottom);
  rect.NormalizeRect();
  return std::make_unique<Region>(rect);
}

HRGN CreateRoundRectRgn(int left, int top, int right, int bottom, int ellipseWidth, int ellipseHeight) {
  CRect box(left, top, right, bottom);
  box.NormalizeRect();
  box.right -= 1;
  box.bottom -= 1;
  const int ew = std::min<int>(std::abs(ellipseWidth), box.Width());
  const int eh = std::min<int>(std::abs(ellipseHeight), box.Height());
  if (ew < 2 || eh < 2) return std::make_unique<Region>(box);

  // One rectangle per run of rows with the same corner inset.
  auto region = std::make_unique<Region>();
  const double a = ew / 2.0;
  const double b = eh / 2.0;
  int runStart = box.top;
  int runInset = -1;
  for (int y = box.top; y <= box.bottom; ++y) {
    int inset = -1;
    if (y < box.bottom) {
      const double centre = y + 0.5;
      double dy = 0.0;
      if (centre < box.top + b) dy = box.top + b - centre;
      else if (centre > box.bottom - b) dy = centre - (box.bottom - b);
      const double t = std::min(1.0, dy / b);
      inset = static_cast<int>(std::lround(a - a * std::sqrt(1.0 - t * t)));
    }
    if (inset != runInset) {
      if (runInset >= 0) region->AddRect(CRect(box.left + runInset, runStart, box.right - runInset, y));
      runStart = y;
      runInset = inset;
    }
  }
  return region;
}

}  // namespace KarvelUI
