#include "platform/window/NativeWindow.h"

#include <SDL.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <thread>
#include <unordered_map>

#include "platform/window/EventTranslator.h"
#include "platform/window/ThreadQueue.h"
#include "platform/window/WindowState.h"
#include "platform/window/X11Desktop.h"
#include <karvelui/Wnd.h>

namespace KarvelUI::detail {
namespace {

std::mutex g_videoMutex;
bool g_videoStarted = false;
std::thread::id g_videoThread;

// SDL window id -> handle; user-interface thread only.
std::unordered_map<std::uint32_t, HWND>& IdMap() {
  static std::unordered_map<std::uint32_t, HWND> map;
  return map;
}

void SetVideoHints() {
  // A library must not take over the host's signals, and the desktop's last
  // window closing is the host's business, not a quit request.
  SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  SDL_SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0");
  // Clicks that activate a window are still delivered, and the mouse is
  // captured only when a window asks for it.
  SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
  SDL_SetHint(SDL_HINT_MOUSE_AUTO_CAPTURE, "0");
  SDL_SetHint(SDL_HINT_VIDEO_MINIMIZE_ON_FOCUS_LOSS, "0");
  SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
}

// Every window can carry a GL 3.3 core context; the visual is chosen when
// the window is made, so the attributes are set before each one.
void SetGLWindowAttributes() {
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 3);
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 3);
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_CORE);
  SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
  SDL_GL_SetAttribute(SDL_GL_RED_SIZE, 8);
  SDL_GL_SetAttribute(SDL_GL_GREEN_SIZE, 8);
  SDL_GL_SetAttribute(SDL_GL_BLUE_SIZE, 8);
  SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 24);
  SDL_GL_SetAttribute(SDL_GL_STENCIL_SIZE, 8);
}

Uint32 FlagsFor(const NativeOptions& options) {
  Uint32 flags = SDL_WINDOW_HIDDEN;
  if (options.borderless) flags |= SDL_WINDOW_BORDERLESS;
  if (options.resizable) flags |= SDL_WINDOW_RESIZABLE;
  if (options.skipTaskbar) flags |= SDL_WINDOW_SKIP_TASKBAR;
  if (options.topmost) flags |= SDL_WINDOW_ALWAYS_ON_TOP;
  return flags;
}

bool DriverIs(const char* name) {
  const char* driver = SDL_GetCurrentVideoDriver();
  return driver && std::strcmp(driver, name) == 0;
}

// Shapes are applied to borderless windows on X11, where the server cuts
// them (not through SDL's shaped windows, which park themselves off screen
// on every resize).
bool WantsShapedWindow(const NativeOptions& options) { return options.borderless && DriverIs("x11"); }

SDL_Window* MakeSdlWindow(const NativeOptions& options, Uint32 flags) {
  const CRect& r = options.screenRect;
  const int w = std::max<LONG>(1, r.Width());
  const int h = std::max<LONG>(1, r.Height());
  return SDL_CreateWindow(options.title.ToUtf8().c_str(), r.left, r.top, w, h, flags);
}

}  // namespace

bool EnsureVideo() {
  std::lock_guard<std::mutex> lock(g_videoMutex);
  if (g_videoStarted) return std::this_thread::get_id() == g_videoThread;
  SetVideoHints();
  if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) return false;
  // SDL unloads the GL driver with the last GL window; holding one reference
  // for the process keeps it (and its compiled state) across windows.
  SDL_GL_LoadLibrary(nullptr);
  g_videoStarted = true;
  g_videoThread = std::this_thread::get_id();
  ThreadQueue::Current()->SetEventSource(&DesktopEvents());
  return true;
}

bool IsVideoThread() {
  std::lock_guard<std::mutex> lock(g_videoMutex);
  return g_videoStarted && std::this_thread::get_id() == g_videoThread;
}

bool IsHeadlessDriver() { return DriverIs("offscreen") || DriverIs("dummy"); }

// SDL hands X11 presses on a draggable area to the window manager and drops
// them; a bare server has no window manager, so the library moves the window.
bool LibraryMovesWindows() { return DriverIs("x11"); }

namespace {

void SetHitTest(SDL_Window* window, HWND hwnd) {
  if (!LibraryMovesWindows()) SDL_SetWindowHitTest(window, &HitTestCallback, hwnd);
}

}  // namespace

NativeWindow::NativeWindow(SDL_Window* window, HWND hwnd, bool shaped, bool gl, std::uint32_t flags)
    : m_window(window), m_hwnd(hwnd), m_id(SDL_GetWindowID(window)), m_shaped(shaped), m_gl(gl), m_flags(flags) {
  IdMap()[m_id] = hwnd;
  // Borderless windows move and resize through the areas their window
  // procedure reports; drivers without hit testing simply decline.
  SetHitTest(m_window, hwnd);
}

std::unique_ptr<NativeWindow> NativeWindow::Create(const NativeOptions& options, HWND hwnd) {
  const Uint32 flags = FlagsFor(options);
  SetGLWindowAttributes();
  bool gl = true;
  SDL_Window* window = MakeSdlWindow(options, flags | SDL_WINDOW_OPENGL);
  if (!window) {
    // Without GL the window still works; its GL surface will report the failure.
    gl = false;
    window = MakeSdlWindow(options, flags);
  }
  if (!window) return nullptr;
  return std::unique_ptr<NativeWindow>(new NativeWindow(window, hwnd, WantsShapedWindow(options), gl, flags));
}

NativeWindow::~NativeWindow() {
  IdMap().erase(m_id);
  SDL_DestroyWindow(m_window);
}

void NativeWindow::SetTitle(const CString& title) { SDL_SetWindowTitle(m_window, title.ToUtf8().c_str()); }

void NativeWindow::SetBounds(const CRect& screenRect) {
  const int w = std::max<LONG>(1, screenRect.Width());
  const int h = std::max<LONG>(1, screenRect.Height());
  int oldW = 0, oldH = 0;
  SDL_GetWindowSize(m_window, &oldW, &oldH);
  if ((w != oldW || h != oldH) && m_gl && IsHeadlessDriver()) {
    Recreate(screenRect);
    return;
  }
  SDL_SetWindowPosition(m_window, screenRect.left, screenRect.top);
  if (w != oldW || h != oldH) SDL_SetWindowSize(m_window, w, h);
}

// The headless driver's GL surface keeps the size the window was made with.
// A resize therefore makes a new SDL window under the same handle; GL
// contexts outlive it and are simply made current on the new one.
void NativeWindow::Recreate(const CRect& screenRect) {
  NativeOptions options;
  options.title = CString(SDL_GetWindowTitle(m_window));
  options.screenRect = screenRect;
  SetGLWindowAttributes();
  SDL_Window* fresh = MakeSdlWindow(options, m_flags | SDL_WINDOW_OPENGL);
  if (!fresh) return;
  SDL_GLContext current = SDL_GL_GetCurrentContext();
  const bool wasCurrent = current && SDL_GL_GetCurrentWindow() == m_window;
  float opacity = 1.0f;
  if (SDL_GetWindowOpacity(m_window, &opacity) == 0) SDL_SetWindowOpacity(fresh, opacity);
  IdMap().erase(m_id);
  SDL_DestroyWindow(m_window);
  m_window = fresh;
  m_id = SDL_GetWindowID(fresh);
  IdMap()[m_id] = m_hwnd;
  SetHitTest(m_window, m_hwnd);
  if (m_visible) SDL_ShowWindow(m_window);
  if (wasCurrent) SDL_GL_MakeCurrent(m_window, current);
}

void NativeWindow::Show(bool activate) {
  SDL_SetHint(SDL_HINT_WINDOW_NO_ACTIVATION_WHEN_SHOWN, activate ? "0" : "1");
  const bool ownFocus = DriverIs("x11") && !HasX11WindowManager(m_window);
  const unsigned long focus = ownFocus && !activate ? GetX11InputFocus(m_window) : 0;
  SDL_ShowWindow(m_window);
  if (activate) Raise();
  if (ownFocus && !activate) SetX11InputFocus(m_window, focus);  // SDL focused it anyway
  m_visible = true;
}

void NativeWindow::Hide() {
  SDL_HideWindow(m_window);
  m_visible = false;
}

void NativeWindow::Raise() {
  SDL_RaiseWindow(m_window);
  // Without a window manager nobody else gives an activated window the keys.
  if (DriverIs("x11") && !HasX11WindowManager(m_window)) FocusX11Window(m_window);
}
// A bare X server has no window manager to iconify a window: it is hidden
// instead, as a desktop without a task bar would show a minimised window.
void NativeWindow::Minimize() {
  if (DriverIs("x11") && !HasX11WindowManager(m_window)) {
    SDL_HideWindow(m_window);
    m_hiddenAsMinimized = true;
    return;
  }
  SDL_MinimizeWindow(m_window);
}

bool NativeWindow::ShownAgainByDesktop() {
  if (!m_hiddenAsMinimized) return false;
  m_hiddenAsMinimized = false;
  return true;
}

void NativeWindow::Restore() {
  if (!m_hiddenAsMinimized) {
    SDL_RestoreWindow(m_window);
    return;
  }
  m_hiddenAsMinimized = false;
  if (m_visible) SDL_ShowWindow(m_window);
}
void NativeWindow::SetTopmost(bool topmost) { SDL_SetWindowAlwaysOnTop(m_window, topmost ? SDL_TRUE : SDL_FALSE); }
void NativeWindow::SetResizable(bool resizable) { SDL_SetWindowResizable(m_window, resizable ? SDL_TRUE : SDL_FALSE); }
void NativeWindow::SetBordered(bool bordered) { SDL_SetWindowBordered(m_window, bordered ? SDL_TRUE : SDL_FALSE); }
void NativeWindow::SetOpacity(float opacity) { SDL_SetWindowOpacity(m_window, opacity); }

void NativeWindow::SetSizeLimits(const CSize& minimum, const CSize& maximum) {
  SDL_SetWindowMinimumSize(m_window, std::max<LONG>(1, minimum.cx), std::max<LONG>(1, minimum.cy));
  // SDL reads 0 x 0 as "no maximum"; it refuses a maximum below the minimum.
  if (maximum.cx > 0 && maximum.cy > 0)
    SDL_SetWindowMaximumSize(m_window, std::max(maximum.cx, minimum.cx), std::max(maximum.cy, minimum.cy));
}

void NativeWindow::SetShape(const Region* region, const CSize& size) {
  if (!m_shaped || size.cx <= 0 || size.cy <= 0) return;
  if (region)
    SetX11WindowShape(m_window, region->Rects());
  else
    ClearX11WindowShape(m_window);
}

HWND HwndFromSdlWindowId(std::uint32_t id) {
  auto it = IdMap().find(id);
  return it == IdMap().end() ? nullptr : it->second;
}

SDL_Window* SdlWindowOf(HWND hwnd) {
  WindowState* state = StateOf(hwnd);
  return state && state->native ? state->native->Sdl() : nullptr;
}

}  // namespace KarvelUI::detail
