#pragma once

// Client-pixel geometry with the Windows semantics the layout and hit-test
// code depends on: right and bottom are exclusive, an inverted or zero-sized
// rectangle is empty, and an empty intersection is (0, 0, 0, 0).

#include <algorithm>

#include <karvelui/Types.h>

namespace KarvelUI {

struct CSize {
  LONG cx = 0;
  LONG cy = 0;
  constexpr CSize() = default;
  constexpr CSize(LONG w, LONG h) : cx(w), cy(h) {}
  friend constexpr bool operator==(const CSize&, const CSize&) = default;
};

struct CPoint {
  LONG x = 0;
  LONG y = 0;
  constexpr CPoint() = default;
  constexpr CPoint(LONG px, LONG py) : x(px), y(py) {}
  // Unpacks a message lParam: x from the low, y from the high 16 bits, each
  // sign-extended, so points left of or above a window come out negative.
  static constexpr CPoint FromLParam(LPARAM lp) { return CPoint(GET_X_LPARAM(lp), GET_Y_LPARAM(lp)); }
  constexpr void Offset(LONG dx, LONG dy) { x += dx, y += dy; }
  constexpr void Offset(const CPoint& d) { Offset(d.x, d.y); }
  friend constexpr bool operator==(const CPoint&, const CPoint&) = default;
  friend constexpr CPoint operator+(CPoint a, const CPoint& b) { return {a.x + b.x, a.y + b.y}; }
  friend constexpr CPoint operator-(CPoint a, const CPoint& b) { return {a.x - b.x, a.y - b.y}; }
  constexpr CPoint& operator+=(const CPoint& b) { Offset(b); return *this; }
  constexpr CPoint& operator-=(const CPoint& b) { Offset(-b.x, -b.y); return *this; }
};

struct CRect {
  LONG left = 0;
  LONG top = 0;
  LONG right = 0;
  LONG bottom = 0;

  constexpr CRect() = default;
  constexpr CRect(LONG l, LONG t, LONG r, LONG b) : left(l), top(t), right(r), bottom(b) {}
  constexpr CRect(const CPoint& topLeft, const CSize& size)
      : left(topLeft.x), top(topLeft.y), right(topLeft.x + size.cx), bottom(topLeft.y + size.cy) {}
  constexpr CRect(const CPoint& topLeft, const CPoint& bottomRight)
      : left(topLeft.x), top(topLeft.y), right(bottomRight.x), bottom(bottomRight.y) {}

  constexpr LONG Width() const { return right - left; }
  constexpr LONG Height() const { return bottom - top; }
  constexpr CSize Size() const { return {Width(), Height()}; }
  constexpr CPoint TopLeft() const { return {left, top}; }
  constexpr CPoint BottomRight() const { return {right, bottom}; }
  constexpr CPoint CenterPoint() const { return {(left + right) / 2, (top + bottom) / 2}; }

  constexpr BOOL IsRectEmpty() const { return (right <= left || bottom <= top) ? TRUE : FALSE; }
  constexpr BOOL IsRectNull() const {
    return (left == 0 && top == 0 && right == 0 && bottom == 0) ? TRUE : FALSE;
  }
  constexpr BOOL PtInRect(const CPoint& p) const {
    return (p.x >= left && p.x < right && p.y >= top && p.y < bottom) ? TRUE : FALSE;
  }
  constexpr BOOL EqualRect(const CRect& o) const { return *this == o ? TRUE : FALSE; }

  constexpr void SetRect(LONG l, LONG t, LONG r, LONG b) { left = l, top = t, right = r, bottom = b; }
  constexpr void SetRectEmpty() { SetRect(0, 0, 0, 0); }
  constexpr void CopyRect(const CRect& o) { *this = o; }
  constexpr void OffsetRect(LONG dx, LONG dy) { left += dx, right += dx, top += dy, bottom += dy; }
  constexpr void OffsetRect(const CPoint& d) { OffsetRect(d.x, d.y); }
  constexpr void InflateRect(LONG dx, LONG dy) { left -= dx, top -= dy, right += dx, bottom += dy; }
  constexpr void InflateRect(LONG l, LONG t, LONG r, LONG b) { left -= l, top -= t, right += r, bottom += b; }
  constexpr void InflateRect(const CRect& r) { InflateRect(r.left, r.top, r.right, r.bottom); }
  constexpr void DeflateRect(LONG dx, LONG dy) { InflateRect(-dx, -dy); }
  constexpr void DeflateRect(LONG l, LONG t, LONG r, LONG b) { InflateRect(-l, -t, -r, -b); }
  constexpr void DeflateRect(const CRect& r) { DeflateRect(r.left, r.top, r.right, r.bottom); }
  constexpr void MoveToXY(LONG x, LONG y) { OffsetRect(x - left, y - top); }
  constexpr void MoveToX(LONG x) { OffsetRect(x - left, 0); }
  constexpr void MoveToY(LONG y) { OffsetRect(0, y - top); }
  constexpr void NormalizeRect() {
    if (left > right) std::swap(left, right);
    if (top > bottom) std::swap(top, bottom);
  }

  // Sets this to the overlap of a and b; (0,0,0,0) and FALSE when they do not overlap.
  constexpr BOOL IntersectRect(const CRect& a, const CRect& b) {
    const CRect r(std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                  std::min(a.bottom, b.bottom));
    if (r.IsRectEmpty()) {
      SetRectEmpty();
      return FALSE;
    }
    *this = r;
    return TRUE;
  }
  // Sets this to the smallest rectangle holding a and b; empty inputs are ignored.
  constexpr BOOL UnionRect(const CRect& a, const CRect& b) {
    if (a.IsRectEmpty() && b.IsRectEmpty()) {
      SetRectEmpty();
      return FALSE;
    }
    if (a.IsRectEmpty()) {
      *this = b;
    } else if (b.IsRectEmpty()) {
      *this = a;
    } else {
      SetRect(std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
              std::max(a.bottom, b.bottom));
    }
    return TRUE;
  }

  friend constexpr bool operator==(const CRect&, const CRect&) = default;
  friend constexpr CRect operator&(const CRect& a, const CRect& b) {
    CRect r;
    r.IntersectRect(a, b);
    return r;
  }
  friend constexpr CRect operator|(const CRect& a, const CRect& b) {
    CRect r;
    r.UnionRect(a, b);
    return r;
  }
};

struct RectF {
  float left = 0.0f;
  float top = 0.0f;
  float right = 0.0f;
  float bottom = 0.0f;
  constexpr RectF() = default;
  constexpr RectF(float l, float t, float r, float b) : left(l), top(t), right(r), bottom(b) {}
  constexpr float Width() const { return right - left; }
  constexpr float Height() const { return bottom - top; }
  friend constexpr bool operator==(const RectF&, const RectF&) = default;
};

}  // namespace KarvelUI
