#include "platform/window/X11Desktop.h"

#include <SDL.h>
#include <SDL_syswm.h>

// After the library's and SDL's headers: Xlib defines many short macros.
#include <X11/Xlib.h>
#include <X11/extensions/shape.h>

#include <algorithm>
#include <limits>
#include <string>

namespace KarvelUI::detail {

namespace {

struct X11Window {
  Display* display = nullptr;
  Window window = 0;
};

bool Resolve(SDL_Window* sdl, X11Window& out) {
  SDL_SysWMinfo info;
  SDL_VERSION(&info.version);
  if (!sdl || !SDL_GetWindowWMInfo(sdl, &info) || info.subsystem != SDL_SYSWM_X11) return false;
  out.display = info.info.x11.display;
  out.window = info.info.x11.window;
  return out.display && out.window;
}

bool HasShapeExtension(Display* display) {
  int eventBase = 0, errorBase = 0;
  return XShapeQueryExtension(display, &eventBase, &errorBase) != 0;
}

short Clamp16(LONG value) {
  return static_cast<short>(std::max<LONG>(std::numeric_limits<short>::min(),
                                           std::min<LONG>(std::numeric_limits<short>::max(), value)));
}

}  // namespace

bool SetX11WindowShape(SDL_Window* window, const std::vector<CRect>& rects) {
  X11Window x;
  if (!Resolve(window, x) || !HasShapeExtension(x.display)) return false;
  std::vector<XRectangle> boxes;
  boxes.reserve(rects.size());
  for (const CRect& r : rects) {
    if (r.IsRectEmpty()) continue;
    boxes.push_back({Clamp16(r.left), Clamp16(r.top), static_cast<unsigned short>(Clamp16(r.Width())),
                     static_cast<unsigned short>(Clamp16(r.Height()))});
  }
  XShapeCombineRectangles(x.display, x.window, ShapeBounding, 0, 0, boxes.data(), static_cast<int>(boxes.size()),
                          ShapeSet, Unsorted);
  XFlush(x.display);
  return true;
}

bool ClearX11WindowShape(SDL_Window* window) {
  X11Window x;
  if (!Resolve(window, x) || !HasShapeExtension(x.display)) return false;
  XShapeCombineMask(x.display, x.window, ShapeBounding, 0, 0, None, ShapeSet);
  XFlush(x.display);
  return true;
}

bool GetX11Pointer(SDL_Window* window, CPoint& screen) {
  X11Window x;
  if (!Resolve(window, x)) return false;
  Window root = None, child = None;
  int rootX = 0, rootY = 0, winX = 0, winY = 0;
  unsigned mask = 0;
  if (!XQueryPointer(x.display, x.window, &root, &child, &rootX, &rootY, &winX, &winY, &mask)) return false;
  screen = CPoint(rootX, rootY);
  return true;
}

bool HasX11WindowManager(SDL_Window* window) {
  X11Window x;
  if (!Resolve(window, x)) return false;
  const std::string selection = "WM_S" + std::to_string(DefaultScreen(x.display));
  return XGetSelectionOwner(x.display, XInternAtom(x.display, selection.c_str(), False)) != None;
}

unsigned long GetX11InputFocus(SDL_Window* window) {
  X11Window x;
  if (!Resolve(window, x)) return 0;
  Window focus = None;
  int revert = 0;
  XGetInputFocus(x.display, &focus, &revert);
  return focus;
}

void SetX11InputFocus(SDL_Window* window, unsigned long focus) {
  X11Window x;
  if (!Resolve(window, x) || focus == None || focus == PointerRoot) return;
  // Focusing a window that is not viewable is an X error, which ends the program.
  XWindowAttributes attributes;
  if (!XGetWindowAttributes(x.display, focus, &attributes) || attributes.map_state != IsViewable) return;
  XSetInputFocus(x.display, focus, RevertToPointerRoot, CurrentTime);
  XFlush(x.display);
}

void FocusX11Window(SDL_Window* window) {
  X11Window x;
  if (Resolve(window, x)) SetX11InputFocus(window, x.window);
}

}  // namespace KarvelUI::detail
