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
// Where the pointer is on the window's screen, asked of the server (SDL's
// answer may be one that XTest's moves have not updated).
bool GetX11Pointer(SDL_Window* window, CPoint& screen);
// A window manager runs on the window's screen (it owns WM_S<screen>).
bool HasX11WindowManager(SDL_Window* window);

// The keyboard focus where no window manager keeps it: SDL gives it to
// every window it shows there, so a window shown without activation hands
// it back, and activating a window takes it.
unsigned long GetX11InputFocus(SDL_Window* window);
void SetX11InputFocus(SDL_Window* window, unsigned long focus);
void FocusX11Window(SDL_Window* window);

}  // namespace KarvelUI::detail
