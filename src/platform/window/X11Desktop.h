#pragma once

// Internal: the few things the window layer asks of an X server directly,
// where SDL offers nothing that works. Each returns false (doing nothing)
// for a window that is not on an X11 display.

#include <vector>

#include <karvelui/Geometry.h>

struct SDL_Window;

namespace KarvelUI::detail {

// Cuts the window to the rectangles (window coordinates). SDL's own shaped
// windows park themselves off screen on every resize and may stay there.
bool SetX11WindowShape(SDL_Window* window, const std::vector<CRect>& rects);
// The whole window again.
bool ClearX11WindowShape(SDL_Window* window);
// A window manager runs on the window's screen (it owns WM_S<screen>).
bool HasX11WindowManager(SDL_Window* window);

}  // namespace KarvelUI::detail
