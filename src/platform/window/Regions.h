#pragma once

// Region constructors for window shapes, with the desktop's pixel rules.

#include <karvelui/Export.h>
#include <karvelui/Region.h>

namespace KarvelUI {

HRGN CreateRectRgn(int left, int top, int right, int bottom);
// A rectangle with elliptic corners of the given diameters. Like the
// desktop's own, it leaves out the right column and the bottom row of the
// rectangle: callers who want them add one pixel. Diameters below 2 give
// a plain rectangle of the same (reduced) extent.
HRGN CreateRoundRectRgn(int left, int top, int right, int bottom, int ellipseWidth, int ellipseHeight);

}  // namespace KarvelUI
