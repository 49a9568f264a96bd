#pragma once

// Internal: moving a window by its caption and sizing it by its grips, run
// by the library itself where no window manager can be asked to (a bare X
// server has none, and SDL's hit testing hands such presses to it and
// never reports them). A left press on a caption or grip starts the loop;
// the cursor's screen position moves or sizes the window until the release.

#include <karvelui/WindowTypes.h>

namespace KarvelUI::detail {

// The window rectangle a move (HTCAPTION) or a size by grip `hitTest` makes
// of `start` when the cursor has moved by `delta`. The edges a grip moves
// stop where the size would leave minSize..maxSize (0: no maximum).
CRect MoveSizeRect(const CRect& start, LRESULT hitTest, const CPoint& delta, const CSize& minSize,
                   const CSize& maxSize);

// HTCAPTION and the eight grips.
bool IsMoveSizeArea(LRESULT hitTest);

class MoveSizeLoop {
 public:
  // Starts on a left press at a caption or grip of a window that is not
  // maximised; false when it does not.
  bool Begin(HWND hwnd, LRESULT hitTest, const CPoint& screen);
  bool Active() const { return m_hwnd != nullptr; }
  void Follow(const CPoint& screen);
  void End();

 private:
  HWND m_hwnd = nullptr;
  LRESULT m_hitTest = 0;
  CPoint m_start;
  CRect m_rect;
};

}  // namespace KarvelUI::detail
