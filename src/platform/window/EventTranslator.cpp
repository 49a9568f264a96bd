#include "platform/window/EventTranslator.h"

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <string>

#include <karvelui/DragDrop.h>
#include "platform/Paths.h"
#include "platform/window/KeyMap.h"
#include "platform/window/MoveSize.h"
#include "platform/window/X11Desktop.h"
#include <karvelui/MessageQueue.h>
#include "platform/window/NativeWindow.h"
#include "platform/window/WindowState.h"
#include <karvelui/Wnd.h>

namespace KarvelUI::detail {
namespace {

constexpr int kHoverHalfSize = 2;  // the hover rectangle is 4 x 4 pixels

struct MouseHit {
  HWND hwnd = nullptr;
  LRESULT code = HTNOWHERE;
};

LPARAM PackPoint(const CPoint& p) { return MAKELPARAM(p.x, p.y); }

void PostInput(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  WindowState* s = StateOf(hwnd);
  if (!s) return;
  MSG msg{hwnd, message, wParam, lParam, static_cast<DWORD>(MessageClockNow()), Input().cursor};
  if (message == WM_MOUSEMOVE)
    s->queue->PostMouseMove(msg);
  else
    s->queue->Post(msg);
}

// The window of ours under a screen point and what it says the point is.
MouseHit HitAt(const CPoint& screen, HWND source) {
  WindowState* s = StateOf(source);
  HWND hwnd = s && s->Visible() && s->HitsClient(screen - s->ScreenOrigin()) ? source : WindowFromPoint(screen);
  if (!hwnd) return {};
  return {hwnd, SendMessageW(hwnd, WM_NCHITTEST, 0, PackPoint(screen))};
}

WPARAM ButtonBit(Uint8 button) {
  switch (button) {
    case SDL_BUTTON_LEFT: return MK_LBUTTON;
    case SDL_BUTTON_RIGHT: return MK_RBUTTON;
    case SDL_BUTTON_MIDDLE: return MK_MBUTTON;
    default: return 0;
  }
}

WPARAM ButtonsFromSdl(Uint32 state) {
  WPARAM bits = 0;
  if (state & SDL_BUTTON_LMASK) bits |= MK_LBUTTON;
  if (state & SDL_BUTTON_RMASK) bits |= MK_RBUTTON;
  if (state & SDL_BUTTON_MMASK) bits |= MK_MBUTTON;
  return bits;
}

UINT ButtonMessage(Uint8 button, bool down, bool doubleClick) {
  const UINT base = button == SDL_BUTTON_LEFT ? WM_LBUTTONDOWN
                    : button == SDL_BUTTON_RIGHT ? WM_RBUTTONDOWN
                                                 : WM_MBUTTONDOWN;
  if (!down) return base + 1;
  return doubleClick ? base + 2 : base;
}

class DesktopEventSource final : public IEventSource {
 public:
  void Start() { m_wakeType.store(SDL_RegisterEvents(1)); }

  void Pump() override {
    SDL_PumpEvents();
    SDL_Event event;
    while (SDL_PeepEvents(&event, 1, SDL_GETEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT) > 0) Translate(event);
    CheckTimedWork();
  }

  void Wait(std::int64_t timeoutMs) override {
    SDL_Event event;
    const int got = timeoutMs < 0 ? SDL_WaitEvent(&event) : SDL_WaitEventTimeout(&event, static_cast<int>(timeoutMs));
    if (got) Translate(event);
  }

  void Wake() override {
    const Uint32 type = m_wakeType.load();
    if (type == static_cast<Uint32>(-1) || m_wakePending.exchange(true)) return;
    SDL_Event event{};
    event.type = type;
    SDL_PushEvent(&event);
  }

  std::optional<std::uint64_t> NextDue() const override {
    const InputState& in = Input();
    std::optional<std::uint64_t> due;
    if (in.tracking.hwnd && (in.tracking.flags & TME_HOVER)) due = in.tracking.hoverStart + in.tracking.hoverTime;
    if (in.pendingDeactivation) {
      const std::uint64_t at = in.deactivationSince + kDeactivationGraceMs;
      due = due ? std::min(*due, at) : at;
    }
    return due;
  }

  void OnRetrieved(const MSG& msg) override {
    auto& keys = Input().keys;
    switch (msg.message) {
      case WM_KEYDOWN:
      case WM_SYSKEYDOWN:
      case WM_KEYUP:
      case WM_SYSKEYUP: {
        const bool down = msg.message == WM_KEYDOWN || msg.message == WM_SYSKEYDOWN;
        const auto vk = static_cast<int>(msg.wParam);
        const int sided = SidedKey(vk, static_cast<BYTE>((msg.lParam >> 16) & 0xFF), (msg.lParam & KF_EXTENDED_BIT) != 0);
        SetKeyDown(keys, sided, down);
        break;
      }
      case WM_LBUTTONDOWN:
      case WM_LBUTTONDBLCLK: SetKeyDown(keys, VK_LBUTTON, true); break;
      case WM_LBUTTONUP: SetKeyDown(keys, VK_LBUTTON, false); break;
      case WM_RBUTTONDOWN:
      case WM_RBUTTONDBLCLK: SetKeyDown(keys, VK_RBUTTON, true); break;
      case WM_RBUTTONUP: SetKeyDown(keys, VK_RBUTTON, false); break;
      case WM_MBUTTONDOWN:
      case WM_MBUTTONDBLCLK: SetKeyDown(keys, VK_MBUTTON, true); break;
      case WM_MBUTTONUP: SetKeyDown(keys, VK_MBUTTON, false); break;
      default: break;
    }
  }

 private:
  void Translate(const SDL_Event& event) {
    if (event.type == m_wakeType.load()) {
      m_wakePending.store(false);
      return;
    }
    switch (event.type) {
      case SDL_MOUSEMOTION: OnMotion(event.motion); break;
      case SDL_MOUSEBUTTONDOWN:
      case SDL_MOUSEBUTTONUP: OnButton(event.button); break;
      case SDL_MOUSEWHEEL: OnWheel(event.wheel); break;
      case SDL_KEYDOWN:
      case SDL_KEYUP: OnKey(event.key); break;
      case SDL_TEXTINPUT: OnText(event.text); break;
      case SDL_WINDOWEVENT: OnWindowEvent(event.window); break;
      case SDL_DROPBEGIN:
      case SDL_DROPFILE:
      case SDL_DROPCOMPLETE: OnDrop(event.drop); break;
      default: break;
    }
  }

  // One WM_DROPFILES per drop: the files between SDL's begin and complete
  // (a file outside such a pair is a drop of its own).
  void OnDrop(const SDL_DropEvent& e) {
    if (e.type == SDL_DROPBEGIN) {
      m_dropping = true;
      m_dropFiles.clear();
      return;
    }
    if (e.type == SDL_DROPFILE && e.file) {
      m_dropFiles.push_back(FromNativePath(e.file));
      SDL_free(e.file);
      if (m_dropping) return;
    }
    m_dropping = false;
    const HWND hwnd = HwndFromSdlWindowId(e.windowID);
    if (!m_dropFiles.empty() && StateOf(hwnd))
      PostInput(hwnd, WM_DROPFILES, reinterpret_cast<WPARAM>(CreateDropFiles(m_dropFiles)), 0);
    m_dropFiles.clear();
  }

  // Screen position of a point SDL reports relative to one of our windows.
  static bool ToScreen(Uint32 windowId, int x, int y, HWND& source, CPoint& screen) {
    source = HwndFromSdlWindowId(windowId);
    WindowState* s = StateOf(source);
    if (!s) return false;
    screen = s->ScreenOrigin() + CPoint(x, y);
    Input().cursor = screen;
    return true;
  }

  void OnMotion(const SDL_MouseMotionEvent& e) {
    HWND source;
    CPoint screen;
    if (!ToScreen(e.windowID, e.x, e.y, source, screen)) return;
    if (m_moveSize.Active()) {
      m_moveSize.Follow(GlobalCursor(source, screen));
      return;
    }
    InputState& in = Input();
    in.eventButtons = ButtonsFromSdl(e.state);
    const MouseHit hit = HitAt(screen, source);
    const HWND overClient = hit.code == HTCLIENT ? hit.hwnd : nullptr;
    FollowTracking(overClient, screen);
    const HWND target = in.capture ? in.capture : overClient;
    WindowState* t = StateOf(target);
    if (!t) {
      if (hit.hwnd) SendMessageW(hit.hwnd, WM_SETCURSOR, reinterpret_cast<WPARAM>(hit.hwnd), MAKELPARAM(hit.code, WM_MOUSEMOVE));
      return;
    }
    if (!in.capture) {
      if (t->style & WS_DISABLED) return;
      SendMessageW(target, WM_SETCURSOR, reinterpret_cast<WPARAM>(target), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
      if (!(t = StateOf(target))) return;
    }
    PostInput(target, WM_MOUSEMOVE, EventKeyFlags(), PackPoint(screen - t->ScreenOrigin()));
  }

  void OnButton(const SDL_MouseButtonEvent& e) {
    const WPARAM bit = ButtonBit(e.button);
    HWND source;
    CPoint screen;
    if (!bit || !ToScreen(e.windowID, e.x, e.y, source, screen)) return;
    InputState& in = Input();
    const bool down = e.type == SDL_MOUSEBUTTONDOWN;
    in.eventButtons = down ? (in.eventButtons | bit) : (in.eventButtons & ~bit);
    if (m_moveSize.Active()) {
      if (!down && e.button == SDL_BUTTON_LEFT) m_moveSize.End();
      return;
    }
    HWND target = in.capture;
    if (!target) {
      const MouseHit hit = HitAt(screen, source);
      // Presses on a caption or grip belong to the desktop's move and resize.
      if (hit.code != HTCLIENT) {
        if (down && e.button == SDL_BUTTON_LEFT && LibraryMovesWindows()) PressMoveSizeArea(hit, e.clicks);
        return;
      }
      target = hit.hwnd;
      WindowState* t = StateOf(target);
      if (!t || (t->style & WS_DISABLED)) return;
      if (down) ClickActivate(target);
    }
    WindowState* t = StateOf(target);
    if (!t) return;
    const bool doubleClick = down && e.clicks >= 2 && e.clicks % 2 == 0 && (t->classStyle & CS_DBLCLKS);
    PostInput(target, ButtonMessage(e.button, down, doubleClick), EventKeyFlags(), PackPoint(screen - t->ScreenOrigin()));
  }

  // Where the library moves windows itself: a caption or grip press starts
  // the move or size, a caption double click maximises or restores.
  void PressMoveSizeArea(const MouseHit& hit, Uint8 clicks) {
    WindowState* s = StateOf(hit.hwnd);
    if (!s || (s->style & WS_DISABLED)) return;
    ClickActivate(hit.hwnd);
    if (hit.code == HTCAPTION && clicks >= 2 && clicks % 2 == 0) {
      if ((s = StateOf(hit.hwnd)) && (s->style & WS_MAXIMIZEBOX))
        PostMessageW(hit.hwnd, WM_SYSCOMMAND, (s->style & WS_MAXIMIZE) ? SC_RESTORE : SC_MAXIMIZE, 0);
      return;
    }
    m_moveSize.Begin(hit.hwnd, hit.code, GlobalCursor(hit.hwnd, Input().cursor));
  }

  // The cursor on screen, asked of the desktop: while a window moves under
  // it, the event's window-relative point may be older than the move.
  static CPoint GlobalCursor(HWND hwnd, const CPoint& fallback) {
    CPoint screen = fallback;
    if (!GetX11Pointer(SdlWindowOf(hwnd), screen)) screen = fallback;
    return screen;
  }

  static void ClickActivate(HWND target) {
    WindowState* top = TopLevelOf(StateOf(target));
    if (!top || top->hwnd == Input().active || (top->exStyle & WS_EX_NOACTIVATE)) return;
    ActivateWindow(top->hwnd, WA_CLICKACTIVE, true);
  }

  void OnWheel(const SDL_MouseWheelEvent& e) {
    HWND source;
    CPoint screen;
    if (!ToScreen(e.windowID, e.mouseX, e.mouseY, source, screen)) return;
    const float sign = e.direction == SDL_MOUSEWHEEL_FLIPPED ? -1.0f : 1.0f;
    const int vertical = static_cast<int>(std::lround(e.preciseY * sign * WHEEL_DELTA));
    const int horizontal = static_cast<int>(std::lround(e.preciseX * sign * WHEEL_DELTA));
    InputState& in = Input();
    HWND target = in.capture;
    if (!target) {
      const MouseHit hit = HitAt(screen, source);
      WindowState* t = StateOf(hit.hwnd);
      if (hit.code != HTCLIENT || !t || (t->style & WS_DISABLED)) return;
      target = hit.hwnd;
    }
    if (vertical)
      PostInput(target, WM_MOUSEWHEEL, MAKEWPARAM(static_cast<int>(EventKeyFlags()), vertical), PackPoint(screen));
    if (horizontal)
      PostInput(target, WM_MOUSEHWHEEL, MAKEWPARAM(static_cast<int>(EventKeyFlags()), horizontal), PackPoint(screen));
  }

  // Keys go to the focus window, else the active one, else the desktop's choice.
  static HWND KeyTarget(Uint32 windowId) {
    const InputState& in = Input();
    for (HWND candidate : {in.focus, in.active, HwndFromSdlWindowId(windowId)}) {
      WindowState* s = StateOf(candidate);
      if (s) return (s->style & WS_DISABLED) ? nullptr : candidate;
    }
    return nullptr;
  }

  void OnKey(const SDL_KeyboardEvent& e) {
    const KeyInfo key = KeyFromSdl(e.keysym.scancode, e.keysym.sym);
    if (!key.vk) return;
    const bool down = e.type == SDL_KEYDOWN;
    InputState& in = Input();
    SetKeyDown(in.eventKeys, SidedKey(key.vk, key.scan, key.extended), down);
    const HWND target = KeyTarget(e.windowID);
    if (!target) return;
    const bool alt = (in.eventKeys[VK_MENU] & 0x80) || key.vk == VK_MENU;
    const bool system = (alt && !(in.eventKeys[VK_CONTROL] & 0x80)) || key.vk == VK_F10;
    const UINT message = down ? (system ? WM_SYSKEYDOWN : WM_KEYDOWN) : (system ? WM_SYSKEYUP : WM_KEYUP);
    DWORD bits = 1u | (static_cast<DWORD>(key.scan) << 16);
    if (key.extended) bits |= 1u << 24;
    if (alt) bits |= 1u << 29;
    if (!down || e.repeat) bits |= 1u << 30;
    if (!down) bits |= 1u << 31;
    PostInput(target, message, static_cast<WPARAM>(key.vk), static_cast<LPARAM>(bits));
  }

  void OnText(const SDL_TextInputEvent& e) {
    const HWND target = KeyTarget(e.windowID);
    if (!target) return;
    for (char16_t unit : WideToUtf16(Utf8ToWide(e.text))) PostInput(target, WM_CHAR, unit, 1);
  }

  void OnWindowEvent(const SDL_WindowEvent& e) {
    const HWND hwnd = HwndFromSdlWindowId(e.windowID);
    WindowState* s = StateOf(hwnd);
    if (!s) return;
    InputState& in = Input();
    switch (e.event) {
      case SDL_WINDOWEVENT_MOVED: DesktopMoved(hwnd, CPoint(e.data1, e.data2)); break;
      case SDL_WINDOWEVENT_SIZE_CHANGED: DesktopResized(hwnd, CSize(e.data1, e.data2)); break;
      case SDL_WINDOWEVENT_MINIMIZED: DesktopMinimized(hwnd); break;
      case SDL_WINDOWEVENT_MAXIMIZED: DesktopMaximized(hwnd); break;
      case SDL_WINDOWEVENT_RESTORED: DesktopRestored(hwnd); break;
      case SDL_WINDOWEVENT_EXPOSED: InvalidateRect(hwnd, nullptr, FALSE); break;
      case SDL_WINDOWEVENT_SHOWN:
        // A window hidden as minimised (no window manager) was mapped by someone else.
        if (s->native->ShownAgainByDesktop()) DesktopRestored(hwnd);
        break;
      case SDL_WINDOWEVENT_LEAVE:
        if (in.tracking.hwnd && IsSelfOrDescendant(hwnd, in.tracking.hwnd)) EndTracking();
        break;
      case SDL_WINDOWEVENT_FOCUS_GAINED: {
        WindowState* top = TopLevelOf(s);
        in.pendingDeactivation = nullptr;
        if (top->hwnd != in.active) ActivateWindow(top->hwnd, WA_ACTIVE, false);
        break;
      }
      case SDL_WINDOWEVENT_FOCUS_LOST:
        if (in.active == TopLevelOf(s)->hwnd) {
          in.pendingDeactivation = in.active;
          in.deactivationSince = MessageClockNow();
        }
        break;
      case SDL_WINDOWEVENT_CLOSE: PostMessageW(hwnd, WM_SYSCOMMAND, SC_CLOSE, 0); break;
      default: break;
    }
  }

  // --- tracking ------------------------------------------------------------------------

  static void EndTracking() {
    MouseTracking& t = Input().tracking;
    const MouseTracking ended = t;
    t = MouseTracking{};
    if (ended.flags & TME_LEAVE) PostInput(ended.hwnd, WM_MOUSELEAVE, 0, 0);
  }

  static void FollowTracking(HWND overClient, const CPoint& screen) {
    MouseTracking& t = Input().tracking;
    if (!t.hwnd) return;
    if (overClient != t.hwnd) {
      EndTracking();
      return;
    }
    if ((t.flags & TME_HOVER) &&
        (std::abs(screen.x - t.hoverAnchor.x) > kHoverHalfSize || std::abs(screen.y - t.hoverAnchor.y) > kHoverHalfSize)) {
      t.hoverAnchor = screen;
      t.hoverStart = MessageClockNow();
    }
  }

  static void CheckTimedWork() {
    InputState& in = Input();
    const std::uint64_t now = MessageClockNow();
    MouseTracking& t = in.tracking;
    if (t.hwnd && (t.flags & TME_HOVER) && now >= t.hoverStart + t.hoverTime) {
      t.flags &= ~TME_HOVER;
      const HWND hwnd = t.hwnd;
      if (!t.flags) t = MouseTracking{};
      if (WindowState* s = StateOf(hwnd))
        PostInput(hwnd, WM_MOUSEHOVER, EventKeyFlags(), PackPoint(in.cursor - s->ScreenOrigin()));
    }
    if (in.pendingDeactivation && now >= in.deactivationSince + kDeactivationGraceMs) {
      const HWND lost = in.pendingDeactivation;
      in.pendingDeactivation = nullptr;
      if (in.active == lost) ActivateWindow(nullptr, WA_INACTIVE, false);
    }
  }

  MoveSizeLoop m_moveSize;
  std::vector<CString> m_dropFiles;  // the drop being delivered
  bool m_dropping = false;
  std::atomic<Uint32> m_wakeType{static_cast<Uint32>(-1)};
  std::atomic<bool> m_wakePending{false};
};

DesktopEventSource& Source() {
  static DesktopEventSource source;
  return source;
}

}  // namespace

IEventSource& DesktopEvents() {
  static bool started = [] {
    Source().Start();
    return true;
  }();
  (void)started;
  return Source();
}

SDL_HitTestResult HitTestResultFor(LRESULT hitTest, bool maximized) {
  if (hitTest == HTCAPTION) return SDL_HITTEST_DRAGGABLE;
  if (maximized) return SDL_HITTEST_NORMAL;
  switch (hitTest) {
    case HTLEFT: return SDL_HITTEST_RESIZE_LEFT;
    case HTRIGHT: return SDL_HITTEST_RESIZE_RIGHT;
    case HTTOP: return SDL_HITTEST_RESIZE_TOP;
    case HTTOPLEFT: return SDL_HITTEST_RESIZE_TOPLEFT;
    case HTTOPRIGHT: return SDL_HITTEST_RESIZE_TOPRIGHT;
    case HTBOTTOM: return SDL_HITTEST_RESIZE_BOTTOM;
    case HTBOTTOMLEFT: return SDL_HITTEST_RESIZE_BOTTOMLEFT;
    case HTBOTTOMRIGHT: return SDL_HITTEST_RESIZE_BOTTOMRIGHT;
    default: return SDL_HITTEST_NORMAL;
  }
}

SDL_HitTestResult SDLCALL HitTestCallback(SDL_Window*, const SDL_Point* area, void* data) {
  const HWND hwnd = static_cast<HWND>(data);
  WindowState* s = StateOf(hwnd);
  if (!s || !area) return SDL_HITTEST_NORMAL;
  const CPoint screen = s->ScreenOrigin() + CPoint(area->x, area->y);
  const LRESULT hit = SendMessageW(hwnd, WM_NCHITTEST, 0, PackPoint(screen));
  s = StateOf(hwnd);
  return HitTestResultFor(hit, s && (s->style & WS_MAXIMIZE));
}

}  // namespace KarvelUI::detail
