#pragma once

// Pieces of the tooltip tests: an owner window that relays its messages
// (and those of its children and owned popups) to a tooltip control the way
// a form does, and the work area around a point.

#include "framework/ToolTipCtrl.h"
#include <karvelui/Screen.h>
#include "window/WindowTestSupport.h"

namespace KarvelTest {

using namespace KarvelUI;

class RelayingOwner : public CWnd {
 public:
  CToolTipCtrl* tip = nullptr;
  BOOL PreTranslateMessage(MSG* msg) override {
    if (tip) tip->RelayEvent(msg);
    return FALSE;
  }
};

inline CRect WorkAreaAt(const CPoint& point) {
  MONITORINFO info;
  GetMonitorInfoW(MonitorFromPoint(point, MONITOR_DEFAULTTONEAREST), &info);
  return info.rcWork;
}

inline CRect WindowRectOf(const CWnd& wnd) {
  CRect rect;
  wnd.GetWindowRect(&rect);
  return rect;
}

}  // namespace KarvelTest
