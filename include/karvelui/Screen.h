#pragma once

// Screen metrics: the displays, their work areas (the part not taken by
// panels and taskbars) and the few system settings the library reads.
// Monitors are numbered from the primary one; HMONITOR is that number + 1.

#include <karvelui/Export.h>
#include <karvelui/WindowTypes.h>

namespace KarvelUI {

// SM_CXSCREEN/SM_CYSCREEN: the primary display; SM_CXFULLSCREEN/SM_CYFULLSCREEN
// and SM_CXMAXIMIZED/SM_CYMAXIMIZED: its work area; the virtual-screen values
// span all displays. 0 for unknown indices or without a display.
KARVELUI_API int GetSystemMetrics(int index);

// SPI_GETWORKAREA (CRect*), SPI_GETKEYBOARDDELAY and SPI_GETKEYBOARDSPEED
// (int*: 0..3 and 0..31, the desktop defaults 1 and 31 since the desktop does
// not publish its own), SPI_GETMOUSEHOVERWIDTH/HEIGHT/TIME (UINT*).
KARVELUI_API BOOL SystemParametersInfoW(UINT action, UINT param, void* value, UINT winIni);

KARVELUI_API HMONITOR MonitorFromPoint(CPoint point, DWORD flags);
KARVELUI_API HMONITOR MonitorFromRect(const CRect* rect, DWORD flags);
KARVELUI_API HMONITOR MonitorFromWindow(HWND hwnd, DWORD flags);
KARVELUI_API BOOL GetMonitorInfoW(HMONITOR monitor, MONITORINFO* info);

// The keyboard's auto-repeat, in milliseconds, from the two settings above.
KARVELUI_API UINT KeyboardRepeatDelayMs();
KARVELUI_API UINT KeyboardRepeatIntervalMs();

}  // namespace KarvelUI
