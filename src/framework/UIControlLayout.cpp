// Layout of a control tree. Anchored controls are placed against their
// parent's full bounds and take no room; docked controls carve strips out
// of the parent's inner area (bounds less margin), sibling after sibling in
// child order. All rectangles are in the form's client coordinates.

#include <karvelui/UIControl.h>

namespace KarvelUI {

CRect CUIControl::GetBoundsSmall() {
  const CRect& b = m_rcBounds;
  const CRect& m = m_AssData.m_rcMargin;
  const int width = std::max(0, b.Width() - m.left - m.right);
  const int height = std::max(0, b.Height() - m.top - m.bottom);
  const int left = b.left + m.left;
  const int top = b.top + m.top;
  return CRect(left, top, left + width, top + height);
}

void CUIControl::PlaceByAnchor(const CRect& parent) {
  const CRect& a = m_AssData.m_rcBounds;
  const int w = a.Width();
  const int h = a.Height();
  // Centred anchors round toward minus infinity, as an arithmetic shift does.
  const int centreX = parent.left + a.left + ((parent.Width() - w) >> 1);
  int x = a.left;
  int y = a.top;
  switch (m_AssData.m_nStyle) {
    case ANCHOR_TOPLEFT: x = parent.left + a.left; y = parent.top + a.top; break;
    case ANCHOR_TOPRIGHT: x = parent.right - w + a.left; y = parent.top + a.top; break;
    case ANCHOR_BOTTOMLEFT: x = parent.left + a.left; y = parent.bottom - h + a.top; break;
    case ANCHOR_BOTTOMRIGHT: x = parent.right - w + a.left; y = parent.bottom - h + a.top; break;
    case ANCHOR_TOPCENTER: x = centreX; y = parent.top + a.top; break;
    case ANCHOR_CENTER: x = centreX; y = parent.top + a.top + ((parent.Height() - h) >> 1); break;
    case ANCHOR_BOTTOMCENTER: x = centreX; y = parent.bottom - h + a.top; break;
    default: break;  // absolute and docked: the anchor rectangle as it is
  }
  m_rcBounds.SetRect(x, y, x + w, y + h);
}

void CUIControl::CalculateBounds() {
  if (!m_pParentContainer) return;
  PlaceByAnchor(m_pParentContainer->GetBounds());
  RePositionSubControls();
}

void CUIControl::RePositionSubControls() {
  CRect remaining = GetBoundsSmall();
  for (CUIControl* child : m_arrSubControls) {
    if (!child) continue;
    child->Dock2Container(&remaining);
    child->CalculateBounds();
  }
}

void CUIControl::Dock2Container(CRect* remaining) {
  if (!remaining || !IsShown() || !m_pParentContainer) return;
  CRect& r = *remaining;
  CRect& a = m_AssData.m_rcBounds;
  const int width = a.Width();
  const int height = a.Height();
  switch (m_AssData.m_nStyle) {
    case DOCK_TOP:
      a.SetRect(r.left, r.top, r.right, r.top + height);
      r.top += height;
      break;
    case DOCK_BOTTOM:
      r.bottom -= height;
      a.SetRect(r.left, r.bottom, r.right, r.bottom + height);
      break;
    case DOCK_LEFT:
      a.SetRect(r.left, r.top, r.left + width, r.bottom);
      r.left += width;
      break;
    case DOCK_RIGHT:
      r.right -= width;
      a.SetRect(r.right, r.top, r.right + width, r.bottom);
      break;
    case DOCK_HOR: {
      const int left = m_pParentContainer->GetBoundsSmall().left;
      a.left = left;
      a.right = left + r.Width();
      break;
    }
    case DOCK_VER: {
      const int top = m_pParentContainer->GetBoundsSmall().top;
      a.top = top;
      a.bottom = top + r.Height();
      break;
    }
    case DOCK_FILL: a = r; break;
    case DOCK_CAPTION: {
      // The caption spans the parent's outer width from its outer top and
      // keeps its configured bottom, unlike "top".
      const CRect parent = m_pParentContainer->GetBounds();
      a.left = parent.left;
      a.right = parent.right;
      a.top = parent.top;
      r.top += a.Height();
      break;
    }
    default: break;
  }
}

}  // namespace KarvelUI
