#include "platform/window/MoveSize.h"

#include <SDL.h>

#include <algorithm>

#include "platform/window/WindowState.h"
#include <karvelui/Wnd.h>

namespace KarvelUI::detail {

namespace {

struct GripEdges {
  bool left, top, right, bottom;
};

GripEdges EdgesOf(LRESULT hitTest) {
  switch (hitTest) {
    case HTLEFT: return {true, false, false, false};
    case HTRIGHT: return {false, false, true, false};
    case HTTOP: return {false, true, false, false};
    case HTBOTTOM: return {false, false, false, true};
    case HTTOPLEFT: return {true, true, false, false};
    case HTTOPRIGHT: return {false, true, true, false};
    case HTBOTTOMLEFT: return {true, false, false, true};
    case HTBOTTOMRIGHT: return {false, false, true, true};
    default: return {false, false, false, false};
  }
}

// The length an edge pair may take: at least min, at most max when max > 0.
LONG Limited(LONG length, LONG minimum, LONG maximum) {
  if (maximum > 0) length = std::min(length, maximum);
  return std::max(length, minimum);
}

}  // namespace

bool IsMoveSizeArea(LRESULT hitTest) { return hitTest == HTCAPTION || (hitTest >= HTLEFT && hitTest <= HTBOTTOMRIGHT); }

CRect MoveSizeRect(const CRect& start, LRESULT hitTest, const CPoint& delta, const CSize& minSize,
                   const CSize& maxSize) {
  CRect r = start;
  if (hitTest == HTCAPTION) {
    r.OffsetRect(delta);
    return r;
  }
  const GripEdges edges = EdgesOf(hitTest);
  if (edges.left) r.left = r.right - Limited(start.Width() - delta.x, minSize.cx, maxSize.cx);
  if (edges.right) r.right = r.left + Limited(start.Width() + delta.x, minSize.cx, maxSize.cx);
  if (edges.top) r.top = r.bottom - Limited(start.Height() - delta.y, minSize.cy, maxSize.cy);
  if (edges.bottom) r.bottom = r.top + Limited(start.Height() + delta.y, minSize.cy, maxSize.cy);
  return r;
}

bool MoveSizeLoop::Begin(HWND hwnd, LRESULT hitTest, const CPoint& screen) {
  WindowState* s = StateOf(hwnd);
  if (!s || s->IsChild() || !IsMoveSizeArea(hitTest) || (s->style & WS_MAXIMIZE)) return false;
  if (hitTest != HTCAPTION && !(s->style & WS_THICKFRAME)) return false;
  m_hwnd = hwnd;
  m_hitTest = hitTest;
  m_start = screen;
  m_rect = s->rect;
  // The cursor leaves the window while it drags: keep its motion coming.
  SDL_CaptureMouse(SDL_TRUE);
  return true;
}

void MoveSizeLoop::Follow(const CPoint& screen) {
  if (!StateOf(m_hwnd)) {
    End();
    return;
  }
  const MINMAXINFO limits = QueryMinMax(m_hwnd);
  const CRect target = MoveSizeRect(m_rect, m_hitTest, screen - m_start, CSize(limits.ptMinTrackSize.x, limits.ptMinTrackSize.y),
                                    CSize(limits.ptMaxTrackSize.x, limits.ptMaxTrackSize.y));
  WindowState* s = StateOf(m_hwnd);
  if (s && target != s->rect) ApplyRect(m_hwnd, target);
}

void MoveSizeLoop::End() {
  m_hwnd = nullptr;
  SDL_CaptureMouse(SDL_FALSE);
}

}  // namespace KarvelUI::detail
