#include <karvelui/Screen.h>

#include <SDL.h>

#include <algorithm>
#include <climits>
#include <vector>

#include "platform/window/NativeWindow.h"
#include <karvelui/Wnd.h>

namespace KarvelUI {
namespace {

constexpr int kKeyboardDelaySetting = 1;   // 0..3: 250 ms steps from 250 ms
constexpr int kKeyboardSpeedSetting = 31;  // 0..31: about 2.5 to 30 repeats a second
constexpr UINT kHoverSize = 4;
constexpr int kDoubleClickSize = 4;
constexpr int kDragSize = 4;

struct Display {
  CRect bounds;
  CRect work;
};

std::vector<Display> Displays() {
  std::vector<Display> displays;
  if (!detail::EnsureVideo() && !SDL_WasInit(SDL_INIT_VIDEO)) return displays;
  const int count = SDL_GetNumVideoDisplays();
  for (int i = 0; i < count; ++i) {
    SDL_Rect b, u;
    if (SDL_GetDisplayBounds(i, &b) != 0) continue;
    if (SDL_GetDisplayUsableBounds(i, &u) != 0) u = b;
    displays.push_back({CRect(b.x, b.y, b.x + b.w, b.y + b.h), CRect(u.x, u.y, u.x + u.w, u.y + u.h)});
  }
  return displays;
}

HMONITOR ToHandle(size_t index) { return reinterpret_cast<HMONITOR>(index + 1); }

LONG Overlap(const CRect& a, const CRect& b) {
  CRect r;
  return r.IntersectRect(a, b) ? r.Width() * r.Height() : 0;
}

long long DistanceSquared(const CRect& r, const CPoint& p) {
  const long long dx = p.x < r.left ? r.left - p.x : (p.x >= r.right ? p.x - r.right + 1 : 0);
  const long long dy = p.y < r.top ? r.top - p.y : (p.y >= r.bottom ? p.y - r.bottom + 1 : 0);
  return dx * dx + dy * dy;
}

HMONITOR Fallback(const std::vector<Display>& displays, const CPoint& centre, DWORD flags) {
  if (displays.empty() || flags == MONITOR_DEFAULTTONULL) return nullptr;
  if (flags == MONITOR_DEFAULTTOPRIMARY) return ToHandle(0);
  size_t best = 0;
  for (size_t i = 1; i < displays.size(); ++i)
    if (DistanceSquared(displays[i].bounds, centre) < DistanceSquared(displays[best].bounds, centre)) best = i;
  return ToHandle(best);
}

}  // namespace

int GetSystemMetrics(int index) {
  const std::vector<Display> displays = Displays();
  if (displays.empty()) return 0;
  const Display& primary = displays.front();
  CRect virtualScreen;
  for (const Display& d : displays) virtualScreen.UnionRect(virtualScreen, d.bounds);
  switch (index) {
    case SM_CXSCREEN: return primary.bounds.Width();
    case SM_CYSCREEN: return primary.bounds.Height();
    case SM_CXFULLSCREEN:
    case SM_CXMAXIMIZED: return primary.work.Width();
    case SM_CYFULLSCREEN:
    case SM_CYMAXIMIZED: return primary.work.Height();
    case SM_CXDOUBLECLK:
    case SM_CYDOUBLECLK: return kDoubleClickSize;
    case SM_CXDRAG:
    case SM_CYDRAG: return kDragSize;
    case SM_XVIRTUALSCREEN: return virtualScreen.left;
    case SM_YVIRTUALSCREEN: return virtualScreen.top;
    case SM_CXVIRTUALSCREEN: return virtualScreen.Width();
    case SM_CYVIRTUALSCREEN: return virtualScreen.Height();
    case SM_CMONITORS: return static_cast<int>(displays.size());
    default: return 0;
  }
}

BOOL SystemParametersInfoW(UINT action, UINT, void* value, UINT) {
  if (!value) return FALSE;
  switch (action) {
    case SPI_GETWORKAREA: {
      const std::vector<Display> displays = Displays();
      if (displays.empty()) return FALSE;
      *static_cast<CRect*>(value) = displays.front().work;
      return TRUE;
    }
    case SPI_GETKEYBOARDDELAY: *static_cast<int*>(value) = kKeyboardDelaySetting; return TRUE;
    case SPI_GETKEYBOARDSPEED: *static_cast<int*>(value) = kKeyboardSpeedSetting; return TRUE;
    case SPI_GETMOUSEHOVERWIDTH:
    case SPI_GETMOUSEHOVERHEIGHT: *static_cast<UINT*>(value) = kHoverSize; return TRUE;
    case SPI_GETMOUSEHOVERTIME: *static_cast<UINT*>(value) = HOVER_DEFAULT_TIME; return TRUE;
    default: return FALSE;
  }
}

HMONITOR MonitorFromPoint(CPoint point, DWORD flags) {
  const std::vector<Display> displays = Displays();
  for (size_t i = 0; i < displays.size(); ++i)
    if (displays[i].bounds.PtInRect(point)) return ToHandle(i);
  return Fallback(displays, point, flags);
}

HMONITOR MonitorFromRect(const CRect* rect, DWORD flags) {
  if (!rect) return nullptr;
  const std::vector<Display> displays = Displays();
  LONG bestArea = 0;
  HMONITOR best = nullptr;
  for (size_t i = 0; i < displays.size(); ++i) {
    const LONG area = Overlap(displays[i].bounds, *rect);
    if (area > bestArea) bestArea = area, best = ToHandle(i);
  }
  return best ? best : Fallback(displays, rect->CenterPoint(), flags);
}

HMONITOR MonitorFromWindow(HWND hwnd, DWORD flags) {
  CRect rect;
  if (!GetWindowRect(hwnd, &rect)) return flags == MONITOR_DEFAULTTONULL ? nullptr : MonitorFromPoint({}, flags);
  if (rect.IsRectEmpty()) rect.InflateRect(0, 0, 1, 1);
  return MonitorFromRect(&rect, flags);
}

BOOL GetMonitorInfoW(HMONITOR monitor, MONITORINFO* info) {
  if (!monitor || !info) return FALSE;
  const size_t index = reinterpret_cast<size_t>(monitor) - 1;
  const std::vector<Display> displays = Displays();
  if (index >= displays.size()) return FALSE;
  info->rcMonitor = displays[index].bounds;
  info->rcWork = displays[index].work;
  info->dwFlags = index == 0 ? MONITORINFOF_PRIMARY : 0;
  return TRUE;
}

UINT KeyboardRepeatDelayMs() {
  int setting = kKeyboardDelaySetting;
  SystemParametersInfoW(SPI_GETKEYBOARDDELAY, 0, &setting, 0);
  return static_cast<UINT>(250 * (std::clamp(setting, 0, 3) + 1));
}

UINT KeyboardRepeatIntervalMs() {
  int setting = kKeyboardSpeedSetting;
  SystemParametersInfoW(SPI_GETKEYBOARDSPEED, 0, &setting, 0);
  // 0 is about 2.5 repeats a second, 31 about 30; linear in between.
  const double perSecond = 2.5 + (30.0 - 2.5) * std::clamp(setting, 0, 31) / 31.0;
  return static_cast<UINT>(1000.0 / perSecond + 0.5);
}

}  // namespace KarvelUI
