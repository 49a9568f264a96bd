#pragma once

// The records and numbers of the window layer that the base vocabulary does
// not already carry: message, creation, min/max, tracking and paint records,
// window classes, cursors, monitors, metrics. Values are the Windows ones.

#include <karvelui/Base.h>

namespace KarvelUI {

class CWnd;

struct MSG {
  HWND hwnd = nullptr;
  UINT message = 0;
  WPARAM wParam = 0;
  LPARAM lParam = 0;
  DWORD time = 0;
  CPoint pt;  // cursor position on screen when the message was queued
};
using LPMSG = MSG*;

struct CREATESTRUCTW {
  void* lpCreateParams = nullptr;
  HWND hwndParent = nullptr;
  UINT id = 0;
  int cy = 0;
  int cx = 0;
  int y = 0;
  int x = 0;
  DWORD style = 0;
  const wchar_t* lpszName = nullptr;
  const wchar_t* lpszClass = nullptr;
  DWORD dwExStyle = 0;
};
using LPCREATESTRUCT = CREATESTRUCTW*;

// Sizes in window pixels. The layer fills the defaults before WM_GETMINMAXINFO;
// a handler changes what it wants.
struct MINMAXINFO {
  CPoint ptReserved;
  CPoint ptMaxSize;
  CPoint ptMaxPosition;
  CPoint ptMinTrackSize;
  CPoint ptMaxTrackSize;
};

struct TRACKMOUSEEVENT {
  DWORD cbSize = sizeof(TRACKMOUSEEVENT);
  DWORD dwFlags = 0;
  HWND hwndTrack = nullptr;
  DWORD dwHoverTime = HOVER_DEFAULT;
};

// There is no device context: drawing goes through each window's GL surface.
struct PAINTSTRUCT {
  void* hdc = nullptr;
  BOOL fErase = FALSE;
  CRect rcPaint;
};

struct HCURSOR__;
using HCURSOR = HCURSOR__*;
struct HMONITOR__;
using HMONITOR = HMONITOR__*;

struct WNDCLASSW {
  UINT style = 0;
  HCURSOR hCursor = nullptr;  // null: the arrow
  const wchar_t* lpszClassName = nullptr;
};

struct MONITORINFO {
  DWORD cbSize = sizeof(MONITORINFO);
  CRect rcMonitor;
  CRect rcWork;
  DWORD dwFlags = 0;
};

using TIMERPROC = void (*)(HWND hwnd, UINT message, UINT_PTR idEvent, DWORD time);

// --- message retrieval ---------------------------------------------------------
inline constexpr UINT PM_NOREMOVE = 0x0000;
inline constexpr UINT PM_REMOVE = 0x0001;

// --- window longs ------------------------------------------------------------
inline constexpr int GWL_STYLE = -16;
inline constexpr int GWL_EXSTYLE = -20;
inline constexpr int GWL_ID = -12;

// --- class styles --------------------------------------------------------------
inline constexpr UINT CS_VREDRAW = 0x0001;
inline constexpr UINT CS_HREDRAW = 0x0002;
inline constexpr UINT CS_DBLCLKS = 0x0008;

// --- system cursors (resource ids, used as MAKEINTRESOURCE values) -----------
inline const wchar_t* MakeIntResource(int id) {
  return reinterpret_cast<const wchar_t*>(static_cast<UINT_PTR>(static_cast<WORD>(id)));
}
inline const wchar_t* const IDC_ARROW = MakeIntResource(32512);
inline const wchar_t* const IDC_IBEAM = MakeIntResource(32513);
inline const wchar_t* const IDC_WAIT = MakeIntResource(32514);
inline const wchar_t* const IDC_CROSS = MakeIntResource(32515);
inline const wchar_t* const IDC_SIZENWSE = MakeIntResource(32642);
inline const wchar_t* const IDC_SIZENESW = MakeIntResource(32643);
inline const wchar_t* const IDC_SIZEWE = MakeIntResource(32644);
inline const wchar_t* const IDC_SIZENS = MakeIntResource(32645);
inline const wchar_t* const IDC_SIZEALL = MakeIntResource(32646);
inline const wchar_t* const IDC_NO = MakeIntResource(32648);
inline const wchar_t* const IDC_HAND = MakeIntResource(32649);

// --- system metrics and parameters ------------------------------------------------
inline constexpr int SM_CXSCREEN = 0;
inline constexpr int SM_CYSCREEN = 1;
inline constexpr int SM_CXFULLSCREEN = 16;
inline constexpr int SM_CYFULLSCREEN = 17;
inline constexpr int SM_CXDOUBLECLK = 36;
inline constexpr int SM_CYDOUBLECLK = 37;
inline constexpr int SM_CXMAXIMIZED = 61;
inline constexpr int SM_CYMAXIMIZED = 62;
inline constexpr int SM_CXDRAG = 68;
inline constexpr int SM_CYDRAG = 69;
inline constexpr int SM_XVIRTUALSCREEN = 76;
inline constexpr int SM_YVIRTUALSCREEN = 77;
inline constexpr int SM_CXVIRTUALSCREEN = 78;
inline constexpr int SM_CYVIRTUALSCREEN = 79;
inline constexpr int SM_CMONITORS = 80;

inline constexpr UINT SPI_GETKEYBOARDSPEED = 0x000A;
inline constexpr UINT SPI_GETKEYBOARDDELAY = 0x0016;
inline constexpr UINT SPI_GETWORKAREA = 0x0030;
inline constexpr UINT SPI_GETMOUSEHOVERWIDTH = 0x0062;
inline constexpr UINT SPI_GETMOUSEHOVERHEIGHT = 0x0064;
inline constexpr UINT SPI_GETMOUSEHOVERTIME = 0x0066;

inline constexpr DWORD MONITOR_DEFAULTTONULL = 0;
inline constexpr DWORD MONITOR_DEFAULTTOPRIMARY = 1;
inline constexpr DWORD MONITOR_DEFAULTTONEAREST = 2;
inline constexpr DWORD MONITORINFOF_PRIMARY = 1;

// --- region results ----------------------------------------------------------------
inline constexpr int RGN_ERROR = 0;
inline constexpr int NULLREGION = 1;
inline constexpr int SIMPLEREGION = 2;
inline constexpr int COMPLEXREGION = 3;

// --- modal loops and timers ----------------------------------------------------------
inline constexpr DWORD MLF_NOIDLEMSG = 0x0001;
inline constexpr DWORD MLF_NOKICKIDLE = 0x0002;
inline constexpr DWORD MLF_SHOWONIDLE = 0x0004;
inline constexpr UINT USER_TIMER_MINIMUM = 0x0000000A;
inline constexpr UINT USER_TIMER_MAXIMUM = 0x7FFFFFFF;
inline constexpr DWORD HOVER_DEFAULT_TIME = 400;  // ms, what HOVER_DEFAULT stands for

// --- key message lParam bits ----------------------------------------------------------
inline constexpr LPARAM KF_EXTENDED_BIT = 1 << 24;
inline constexpr LPARAM KF_PREVIOUS_DOWN_BIT = 1 << 30;

}  // namespace KarvelUI
