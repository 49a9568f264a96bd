#pragma once

// Internal: what the layer keeps for one live window, and the user-interface
// thread's shared input state (activation, focus, capture, mouse tracking,
// key state). Only the thread that owns the windows touches either.

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/window/ThreadQueue.h"
#include <karvelui/WindowTypes.h>

namespace KarvelUI::detail {

class NativeWindow;

struct WindowState {
  HWND hwnd = nullptr;
  CWnd* wnd = nullptr;
  std::shared_ptr<ThreadQueue> queue;
  CString className;
  UINT classStyle = 0;
  HCURSOR classCursor = nullptr;
  CString title;
  DWORD style = 0;
  DWORD exStyle = 0;
  UINT id = 0;
  HWND parent = nullptr;  // WS_CHILD windows
  HWND owner = nullptr;   // other windows made with a parent
  CRect rect;             // screen, or the parent's client coordinates for a child
  CRect restoreRect;      // where a maximised window goes back to
  bool maximizedByDesktop = false;
  CRect update;           // invalid area, client coordinates
  bool erase = false;
  unsigned paintSerial = 0;
  std::unique_ptr<Region> region;
  COLORREF layeredKey = 0;
  BYTE layeredAlpha = 255;
  DWORD layeredFlags = 0;
  bool destroying = false;
  std::unique_ptr<NativeWindow> native;

  WindowState();
  ~WindowState();
  bool IsChild() const { return (style & WS_CHILD) != 0; }
  bool Visible() const { return (style & WS_VISIBLE) != 0; }
  CRect ClientRect() const { return CRect(0, 0, rect.Width(), rect.Height()); }
  // Top-left of the client area on screen.
  CPoint ScreenOrigin() const;
  CRect ScreenRect() const;
  // The point (client coordinates) belongs to the window: inside it and its region.
  bool HitsClient(const CPoint& client) const;
};

// The top-level window above a child (the window itself when it is no child).
WindowState* TopLevelOf(WindowState* state);
bool IsSelfOrDescendant(HWND ancestor, HWND hwnd);

struct MouseTracking {
  HWND hwnd = nullptr;
  DWORD flags = 0;  // TME_HOVER | TME_LEAVE still pending
  DWORD hoverTime = HOVER_DEFAULT_TIME;
  std::uint64_t hoverStart = 0;
  CPoint hoverAnchor;  // screen point the cursor must stay near
};

struct InputState {
  HWND active = nullptr;
  HWND focus = nullptr;
  HWND capture = nullptr;
  MouseTracking tracking;
  CPoint cursor;                     // last known cursor position on screen
  std::array<BYTE, 256> keys{};       // as of the last message retrieved (0x80 down, 0x01 toggled)
  std::array<BYTE, 256> eventKeys{};  // as of the last desktop event translated
  WPARAM eventButtons = 0;            // MK_ button bits as of that event
  HCURSOR cursorShape = nullptr;
  std::vector<HWND> zOrder;          // front first
  HWND pendingDeactivation = nullptr;  // focus went away; other windows of ours may take it
  std::uint64_t deactivationSince = 0;
};

InputState& Input();

// Activation bookkeeping shared by the window calls and the event translation.
void ActivateWindow(HWND hwnd, WPARAM how, bool raiseNative);
void BringToFront(HWND hwnd);
// A window goes away or out of sight: activation, focus, capture and tracking leave it.
void ForgetWindow(HWND hwnd, bool destroyed);
// MK_ flags of the event being translated.
WPARAM EventKeyFlags();
// Records a key transition in a key-state table (sided and generic codes, toggle bit).
void SetKeyDown(std::array<BYTE, 256>& keys, int vk, bool down);

// Geometry and visibility changes with the messages they send. Each works by
// handle because a handler may destroy the window on the way.
void ApplyRect(HWND hwnd, const CRect& rect);
void ShowNow(HWND hwnd, bool activate);
void HideNow(HWND hwnd);
void MinimizeNow(HWND hwnd);
void MaximizeNow(HWND hwnd);
void RestoreNow(HWND hwnd);
MINMAXINFO QueryMinMax(HWND hwnd);
void ApplySizeLimits(HWND hwnd);
// Places and shows or hides the child windows to follow their parent.
void SyncChildren(HWND hwnd);

// The desktop changed a window (user move/resize, window-manager state).
void DesktopMoved(HWND hwnd, const CPoint& screenTopLeft);
void DesktopResized(HWND hwnd, const CSize& size);
void DesktopMinimized(HWND hwnd);
void DesktopMaximized(HWND hwnd);
void DesktopRestored(HWND hwnd);

}  // namespace KarvelUI::detail
