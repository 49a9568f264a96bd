#pragma once

// Mouse and keyboard state of the user-interface thread: capture, hover and
// leave tracking, key state, the cursor's position and shape.

#include <karvelui/Export.h>
#include <karvelui/WindowTypes.h>

namespace KarvelUI {

// While a window holds the capture, every mouse message goes to it, with
// client coordinates even when the cursor is outside (packed as unsigned
// 16-bit values, so left of or above the window reads as large numbers).
KARVELUI_API HWND SetCapture(HWND hwnd);
KARVELUI_API HWND GetCapture();
KARVELUI_API BOOL ReleaseCapture();

// TME_LEAVE posts WM_MOUSELEAVE once when the cursor leaves the window's
// client area (at once when it is not there now); TME_HOVER posts
// WM_MOUSEHOVER once when the cursor has rested within the hover rectangle
// for dwHoverTime ms (HOVER_DEFAULT: 400). Leaving ends both. TME_CANCEL
// ends the given kinds.
KARVELUI_API BOOL TrackMouseEvent(TRACKMOUSEEVENT* track);

// State as of the last message retrieved: negative when down, bit 0 toggled.
KARVELUI_API short GetKeyState(int virtualKey);
// State now: 0x8000 set when down.
KARVELUI_API short GetAsyncKeyState(int virtualKey);

KARVELUI_API BOOL GetCursorPos(CPoint* point);
KARVELUI_API BOOL SetCursorPos(int x, int y);
// System cursors only (instance null, IDC_ARROW, IDC_HAND, ...).
KARVELUI_API HCURSOR LoadCursorW(HINSTANCE instance, const wchar_t* cursorId);
// Returns the previous cursor; null hides the cursor.
KARVELUI_API HCURSOR SetCursor(HCURSOR cursor);
KARVELUI_API HCURSOR GetCursor();

}  // namespace KarvelUI
