#include <karvelui/Region.h>

namespace KarvelUI {

void Region::AddRect(const CRect& rect) {
  if (!rect.IsRectEmpty()) m_rects.push_back(rect);
}

void Region::Combine(const Region& other) {
  m_rects.insert(m_rects.end(), other.m_rects.begin(), other.m_rects.end());
}

bool Region::Contains(const CPoint& point) const {
  for (const CRect& r : m_rects)
    if (r.PtInRect(point)) return true;
  return false;
}

CRect Region::GetBox() const {
  CRect box;
  for (const CRect& r : m_rects) box.UnionRect(box, r);
  return box;
}

void Region::Offset(LONG dx, LONG dy) {
  for (CRect& r : m_rects) r.OffsetRect(dx, dy);
}

}  // namespace KarvelUI
