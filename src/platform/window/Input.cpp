// Activation, keyboard focus, mouse capture and tracking, key state and
// cursors of the user-interface thread.

#include <karvelui/Input.h>

#include <SDL.h>

#include <algorithm>
#include <cstdlib>

#include "platform/window/KeyMap.h"
#include "platform/window/NativeWindow.h"
#include "platform/window/WindowState.h"
#include <karvelui/Wnd.h>

namespace KarvelUI {
namespace detail {

InputState& Input() {
  static InputState state;
  return state;
}

WPARAM EventKeyFlags() {
  const InputState& in = Input();
  WPARAM flags = in.eventButtons;
  if (in.eventKeys[VK_SHIFT] & 0x80) flags |= MK_SHIFT;
  if (in.eventKeys[VK_CONTROL] & 0x80) flags |= MK_CONTROL;
  return flags;
}

void SetKeyDown(std::array<BYTE, 256>& keys, int vk, bool down) {
  if (vk <= 0 || vk > 255) return;
  BYTE& state = keys[static_cast<size_t>(vk)];
  if (down && !(state & 0x80)) state ^= 0x01;
  state = static_cast<BYTE>(down ? (state | 0x80) : (state & ~0x80));
  // The generic modifier is down while either side is.
  auto generic = [&](int left, int right, int both) {
    const bool anyDown = (keys[static_cast<size_t>(left)] & 0x80) || (keys[static_cast<size_t>(right)] & 0x80);
    keys[static_cast<size_t>(both)] = static_cast<BYTE>((keys[static_cast<size_t>(both)] & 0x01) | (anyDown ? 0x80 : 0));
  };
  if (vk == VK_LSHIFT || vk == VK_RSHIFT) generic(VK_LSHIFT, VK_RSHIFT, VK_SHIFT);
  if (vk == VK_LCONTROL || vk == VK_RCONTROL) generic(VK_LCONTROL, VK_RCONTROL, VK_CONTROL);
  if (vk == VK_LMENU || vk == VK_RMENU) generic(VK_LMENU, VK_RMENU, VK_MENU);
}

void BringToFront(HWND hwnd) {
  std::vector<HWND>& z = Input().zOrder;
  z.erase(std::remove(z.begin(), z.end(), hwnd), z.end());
  z.insert(z.begin(), hwnd);
  // Child windows are separate desktop windows that must stay above their parent.
  for (HWND other : std::vector<HWND>(z)) {
    WindowState* s = StateOf(other);
    if (s && s->IsChild() && s->parent == hwnd && other != hwnd) BringToFront(other);
  }
}

void ActivateWindow(HWND hwnd, WPARAM how, bool raiseNative) {
  InputState& in = Input();
  in.pendingDeactivation = nullptr;
  if (hwnd == in.active) return;
  const HWND old = in.active;
  in.active = hwnd;
  if (WindowState* s = StateOf(hwnd)) {
    BringToFront(hwnd);
    if (raiseNative) s->native->Raise();
  }
  if (StateOf(old))
    SendMessageW(old, WM_ACTIVATE, MAKEWPARAM(WA_INACTIVE, IsIconic(old)), reinterpret_cast<LPARAM>(hwnd));
  if (hwnd && in.active == hwnd && StateOf(hwnd))
    SendMessageW(hwnd, WM_ACTIVATE, MAKEWPARAM(static_cast<int>(how), IsIconic(hwnd)), reinterpret_cast<LPARAM>(old));
  if (!in.active && in.focus) KarvelUI::SetFocus(nullptr);
}

void ForgetWindow(HWND hwnd, bool destroyed) {
  InputState& in = Input();
  if (in.capture && IsSelfOrDescendant(hwnd, in.capture)) {
    const HWND old = in.capture;
    in.capture = nullptr;
    SDL_CaptureMouse(SDL_FALSE);
    if (!destroyed) SendMessageW(old, WM_CAPTURECHANGED, 0, 0);
  }
  if (in.tracking.hwnd && IsSelfOrDescendant(hwnd, in.tracking.hwnd)) in.tracking = MouseTracking{};
  if (in.active == hwnd) {
    // Activation goes back to the owner when it can take it.
    WindowState* s = StateOf(hwnd);
    WindowState* owner = s ? StateOf(s->owner) : nullptr;
    const bool ownerCanTake = owner && owner->Visible() && !(owner->style & WS_DISABLED) && !owner->destroying;
    ActivateWindow(ownerCanTake ? owner->hwnd : nullptr, WA_ACTIVE, ownerCanTake);
  }
  if (in.focus && IsSelfOrDescendant(hwnd, in.focus)) {
    if (destroyed)
      in.focus = nullptr;
    else
      KarvelUI::SetFocus(nullptr);
  }
  if (destroyed) {
    in.zOrder.erase(std::remove(in.zOrder.begin(), in.zOrder.end(), hwnd), in.zOrder.end());
    if (in.active == hwnd) in.active = nullptr;
    if (in.focus == hwnd) in.focus = nullptr;
    if (in.pendingDeactivation == hwnd) in.pendingDeactivation = nullptr;
  }
}

}  // namespace detail

using detail::Input;
using detail::StateOf;
using detail::WindowState;

// --- activation and focus -----------------------------------------------------------------

HWND SetActiveWindow(HWND hwnd) {
  if (!detail::IsVideoThread()) return nullptr;
  WindowState* s = StateOf(hwnd);
  if (hwnd && (!s || s->IsChild() || (s->style & WS_DISABLED))) return nullptr;
  const HWND old = Input().active;
  detail::ActivateWindow(hwnd, WA_ACTIVE, true);
  return old;
}

HWND GetActiveWindow() { return detail::IsVideoThread() ? Input().active : nullptr; }

BOOL SetForegroundWindow(HWND hwnd) {
  WindowState* s = StateOf(hwnd);
  if (!s) return FALSE;
  s = detail::TopLevelOf(s);
  detail::ActivateWindow(s->hwnd, WA_ACTIVE, true);
  s->native->Raise();
  return TRUE;
}

HWND GetForegroundWindow() { return GetActiveWindow(); }

HWND SetFocus(HWND hwnd) {
  if (!detail::IsVideoThread()) return nullptr;
  detail::InputState& in = Input();
  if (hwnd) {
    WindowState* s = StateOf(hwnd);
    if (!s || (s->style & WS_DISABLED)) return nullptr;
    WindowState* top = detail::TopLevelOf(s);
    if (top->hwnd != in.active) detail::ActivateWindow(top->hwnd, WA_ACTIVE, true);
  }
  const HWND old = in.focus;
  if (hwnd == old) return old;
  in.focus = hwnd;
  if (StateOf(old)) SendMessageW(old, WM_KILLFOCUS, reinterpret_cast<WPARAM>(hwnd), 0);
  if (hwnd && in.focus == hwnd && StateOf(hwnd)) SendMessageW(hwnd, WM_SETFOCUS, reinterpret_cast<WPARAM>(old), 0);
  return old;
}

HWND GetFocus() { return detail::IsVideoThread() ? Input().focus : nullptr; }

HWND GetDesktopWindow() {
  static int desktop;
  return reinterpret_cast<HWND>(&desktop);
}

HWND WindowFromPoint(CPoint screenPoint) {
  if (!detail::IsVideoThread()) return nullptr;
  for (HWND hwnd : Input().zOrder) {
    WindowState* s = StateOf(hwnd);
    if (!s || !s->Visible() || (s->style & WS_MINIMIZE)) continue;
    if (s->HitsClient(screenPoint - s->ScreenOrigin())) return hwnd;
  }
  return nullptr;
}

CWnd* CWnd::SetActiveWindow() { return FromHandle(KarvelUI::SetActiveWindow(m_hWnd)); }
BOOL CWnd::SetForegroundWindow() { return KarvelUI::SetForegroundWindow(m_hWnd); }
CWnd* CWnd::SetFocus() { return FromHandle(KarvelUI::SetFocus(m_hWnd)); }
CWnd* CWnd::SetCapture() { return FromHandle(KarvelUI::SetCapture(m_hWnd)); }

// --- capture and tracking ---------------------------------------------------------------------

HWND SetCapture(HWND hwnd) {
  if (!StateOf(hwnd)) return nullptr;
  detail::InputState& in = Input();
  const HWND old = in.capture;
  if (old == hwnd) return old;
  in.capture = hwnd;
  // Lets the desktop report the mouse outside the window (where it can).
  SDL_CaptureMouse(SDL_TRUE);
  if (StateOf(old)) SendMessageW(old, WM_CAPTURECHANGED, 0, reinterpret_cast<LPARAM>(hwnd));
  return old;
}

HWND GetCapture() { return detail::IsVideoThread() ? Input().capture : nullptr; }

BOOL ReleaseCapture() {
  if (!detail::IsVideoThread()) return FALSE;
  detail::InputState& in = Input();
  const HWND old = in.capture;
  if (!old) return TRUE;
  in.capture = nullptr;
  SDL_CaptureMouse(SDL_FALSE);
  SendMessageW(old, WM_CAPTURECHANGED, 0, 0);
  return TRUE;
}

BOOL TrackMouseEvent(TRACKMOUSEEVENT* track) {
  if (!track) return FALSE;
  WindowState* s = StateOf(track->hwndTrack);
  if (!s) return FALSE;
  detail::InputState& in = Input();
  detail::MouseTracking& t = in.tracking;
  const DWORD kinds = track->dwFlags & (TME_HOVER | TME_LEAVE);
  if (track->dwFlags & TME_CANCEL) {
    if (t.hwnd == track->hwndTrack) t.flags &= ~kinds;
    if (!t.flags) t = detail::MouseTracking{};
    return TRUE;
  }
  if (WindowFromPoint(in.cursor) != track->hwndTrack) {
    if (kinds & TME_LEAVE) PostMessageW(track->hwndTrack, WM_MOUSELEAVE, 0, 0);
    return TRUE;
  }
  if (t.hwnd != track->hwndTrack) t = detail::MouseTracking{track->hwndTrack, 0, HOVER_DEFAULT_TIME, 0, {}};
  t.flags |= kinds;
  if (kinds & TME_HOVER) {
    t.hoverTime = track->dwHoverTime == HOVER_DEFAULT ? HOVER_DEFAULT_TIME : track->dwHoverTime;
    t.hoverStart = MessageClockNow();
    t.hoverAnchor = in.cursor;
  }
  return TRUE;
}

// --- key state ------------------------------------------------------------------------------------

short GetKeyState(int virtualKey) {
  if (virtualKey <= 0 || virtualKey > 255 || !detail::IsVideoThread()) return 0;
  const BYTE state = Input().keys[static_cast<size_t>(virtualKey)];
  return static_cast<short>(((state & 0x80) ? 0xFF80 : 0) | (state & 0x01));
}

short GetAsyncKeyState(int virtualKey) {
  if (virtualKey <= 0 || virtualKey > 255 || !detail::IsVideoThread()) return 0;
  // The desktop's own state, or what its last event said (which is all a
  // headless run has).
  bool down = (Input().eventKeys[static_cast<size_t>(virtualKey)] & 0x80) != 0;
  const Uint32 buttons = SDL_GetMouseState(nullptr, nullptr);
  switch (virtualKey) {
    case VK_LBUTTON: down = down || (buttons & SDL_BUTTON_LMASK); break;
    case VK_RBUTTON: down = down || (buttons & SDL_BUTTON_RMASK); break;
    case VK_MBUTTON: down = down || (buttons & SDL_BUTTON_MMASK); break;
    default: {
      int count = 0;
      const Uint8* keys = SDL_GetKeyboardState(&count);
      for (int code : detail::SdlScancodesFor(virtualKey))
        if (code < count && keys[code]) down = true;
      break;
    }
  }
  return static_cast<short>(down ? 0x8000 : 0);
}

// --- cursor -----------------------------------------------------------------------------------------

namespace {

struct CursorRecord {
  int id;
  SDL_SystemCursor shape;
  SDL_Cursor* cursor;  // made on first use; null where the desktop has none
  bool made;
};

CursorRecord g_cursors[] = {
    {32512, SDL_SYSTEM_CURSOR_ARROW, nullptr, false},    {32513, SDL_SYSTEM_CURSOR_IBEAM, nullptr, false},
    {32514, SDL_SYSTEM_CURSOR_WAIT, nullptr, false},     {32515, SDL_SYSTEM_CURSOR_CROSSHAIR, nullptr, false},
    {32642, SDL_SYSTEM_CURSOR_SIZENWSE, nullptr, false}, {32643, SDL_SYSTEM_CURSOR_SIZENESW, nullptr, false},
    {32644, SDL_SYSTEM_CURSOR_SIZEWE, nullptr, false},   {32645, SDL_SYSTEM_CURSOR_SIZENS, nullptr, false},
    {32646, SDL_SYSTEM_CURSOR_SIZEALL, nullptr, false},  {32648, SDL_SYSTEM_CURSOR_NO, nullptr, false},
    {32649, SDL_SYSTEM_CURSOR_HAND, nullptr, false},
};

CursorRecord* RecordOf(HCURSOR cursor) { return reinterpret_cast<CursorRecord*>(cursor); }

bool UsesGlobalMouse() {
  const char* driver = SDL_GetCurrentVideoDriver();
  return driver && std::string_view(driver) == "x11";
}

}  // namespace

HCURSOR LoadCursorW(HINSTANCE, const wchar_t* cursorId) {
  const auto id = static_cast<int>(reinterpret_cast<UINT_PTR>(cursorId));
  for (CursorRecord& record : g_cursors)
    if (record.id == id) return reinterpret_cast<HCURSOR>(&record);
  return nullptr;
}

HCURSOR SetCursor(HCURSOR cursor) {
  if (!detail::IsVideoThread()) return nullptr;
  detail::InputState& in = Input();
  const HCURSOR old = in.cursorShape;
  in.cursorShape = cursor;
  if (CursorRecord* record = RecordOf(cursor)) {
    if (!record->made) {
      record->cursor = SDL_CreateSystemCursor(record->shape);
      record->made = true;
    }
    if (record->cursor) SDL_SetCursor(record->cursor);
    SDL_ShowCursor(SDL_ENABLE);
  } else {
    SDL_ShowCursor(SDL_DISABLE);
  }
  return old;
}

HCURSOR GetCursor() { return detail::IsVideoThread() ? Input().cursorShape : nullptr; }

BOOL GetCursorPos(CPoint* point) {
  if (!point || !detail::IsVideoThread()) return FALSE;
  if (UsesGlobalMouse()) {
    int x = 0, y = 0;
    SDL_GetGlobalMouseState(&x, &y);
    *point = CPoint(x, y);
    return TRUE;
  }
  // Other drivers do not tell where the cursor is outside our windows: the
  // last position an event reported stands in.
  *point = Input().cursor;
  return TRUE;
}

BOOL SetCursorPos(int x, int y) {
  if (!detail::IsVideoThread()) return FALSE;
  Input().cursor = CPoint(x, y);
  if (!detail::IsHeadlessDriver()) SDL_WarpMouseGlobal(x, y);
  return TRUE;
}

}  // namespace KarvelUI
