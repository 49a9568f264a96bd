#pragma once

// A window region as the library uses it: a set of rectangles (OR-ed), good
// for hit testing and for shaping a window where the platform can.

#include <memory>
#include <vector>

#include <karvelui/Export.h>
#include <karvelui/Geometry.h>

namespace KarvelUI {

class KARVELUI_API Region {
 public:
  Region() = default;
  explicit Region(const CRect& rect) { AddRect(rect); }

  // Adds rect to the region (union); empty rectangles add nothing.
  void AddRect(const CRect& rect);
  void Combine(const Region& other);
  bool Contains(const CPoint& point) const;
  bool IsEmpty() const { return m_rects.empty(); }
  CRect GetBox() const;
  void Offset(LONG dx, LONG dy);
  const std::vector<CRect>& Rects() const { return m_rects; }

  friend bool operator==(const Region&, const Region&) = default;

 private:
  std::vector<CRect> m_rects;
};

// Window shapes pass between forms and windows as HRGN values; the handle
// owns its region, so a shape is never leaked or freed twice.
using HRGN = std::unique_ptr<Region>;

}  // namespace KarvelUI
