#include <karvelui/UISlider.h>

#include <algorithm>

#include <karvelui/DXCore.h>
#include <karvelui/SkinReader.h>

namespace KarvelUI {

namespace {

constexpr LONG kSlotInsetX = 4;
constexpr LONG kSlotInsetY = 5;
constexpr int kThumbNormal = 0;
constexpr int kThumbHover = 1;
constexpr int kThumbPressed = 2;

// The value plus a half, truncated toward zero.
LONG RoundHalfUp(double value) { return static_cast<LONG>(value + 0.5); }

}  // namespace

// --- _SliderConfig ---------------------------------------------------------------------

_SliderConfig::_SliderConfig() { _SliderConfig::Reset(); }

void _SliderConfig::Reset() {
  for (_ImageConfig& image : m_imgThumb) image.Reset();
  m_imgBackground.Reset();
  m_imgFill.Reset();
  m_bHorizontal = 1;
}

void _SliderConfig::Copy(_SkinConfig* source) {
  Reset();
  auto* from = static_cast<_SliderConfig*>(source);
  if (!from) return;
  for (int i = 0; i < UISLIDER_THUMB_STATES; ++i) m_imgThumb[i].Copy(&from->m_imgThumb[i]);
  m_imgBackground.Copy(&from->m_imgBackground);
  m_imgFill.Copy(&from->m_imgFill);
  m_bHorizontal = from->m_bHorizontal;
}

int _SliderConfig::Read(CSkinReader* reader) {
  if (!reader) return 0;
  reader->GetImage(m_imgBackground, L"BkImage");
  reader->GetImage(m_imgFill, L"FillImage");
  reader->Get5StateImage(m_imgThumb, L"SliderBtn");
  reader->GetBool(m_bHorizontal, L"IsHorz");
  return 1;
}

_SkinConfig* _SliderConfig::Clone() {
  auto* clone = new _SliderConfig();
  clone->Copy(this);
  return clone;
}

// --- CUISlider: values ------------------------------------------------------------------------

CUISlider::CUISlider() { SetTypeName(L"CUISlider"); }

_SliderConfig* CUISlider::GetSliderConfig() { return dynamic_cast<_SliderConfig*>(GetSkinConfig(CString())); }

void CUISlider::OnSetSkinData() { GetSkinConfig(CString()); }

BOOL CUISlider::OnBuildControlAfter() { return TRUE; }

BOOL CUISlider::SetRange(int minimum, int maximum) {
  m_nMin = minimum;
  m_nMax = maximum;
  return TRUE;
}

void CUISlider::GetRange(int& minimum, int& maximum) const {
  minimum = m_nMin;
  maximum = m_nMax;
}

CRect CUISlider::GetSlotBounds(BOOL) {
  CRect slot = GetBounds();
  if (slot.IsRectEmpty()) return CRect();
  slot.DeflateRect(kSlotInsetX, kSlotInsetY);
  return slot;
}

// A zero range has no ratio; the thumb then sits at the track's start.
double CUISlider::PositionRatio() const {
  const int range = m_nMax - m_nMin;
  return range == 0 ? 0.0 : static_cast<double>(static_cast<float>(m_nPosition - m_nMin) / static_cast<float>(range));
}

int CUISlider::PositionAt(LONG done, LONG room) const {
  const double ratio = room == 0 ? 0.0 : static_cast<double>(done) / static_cast<double>(room);
  return m_nMin + static_cast<int>(ratio * (m_nMax - m_nMin) + 0.5);
}

CSize CUISlider::ThumbSize(_SliderConfig& config) const { return config.m_imgThumb[kThumbNormal].m_rcSrc.Size(); }

void CUISlider::SetPosition(int position) {
  m_nPosition = std::max(position, m_nMin);
  _SliderConfig* config = GetSliderConfig();
  if (!config) return;
  const CRect slot = GetSlotBounds(config->m_bHorizontal);
  const CSize thumb = ThumbSize(*config);
  if (!config->m_imgThumb[kThumbNormal].m_rcSrc.IsRectEmpty() && !slot.IsRectEmpty()) {
    const double ratio = PositionRatio();
    if (config->m_bHorizontal) {
      const LONG cx = slot.left + RoundHalfUp(slot.Width() * ratio);
      const LONG top = slot.top + (slot.Height() - thumb.cy) / 2;
      m_rcThumb.SetRect(cx - thumb.cx / 2, top, cx + thumb.cx / 2, top + thumb.cy);
    } else {
      const LONG cy = slot.bottom - RoundHalfUp(slot.Height() * ratio);
      const LONG left = slot.left + (slot.Width() - thumb.cx) / 2;
      m_rcThumb.SetRect(left, cy - thumb.cy / 2, left + thumb.cx, cy + thumb.cy / 2);
    }
  }
  Refresh();
}

// --- mouse -------------------------------------------------------------------------------------

int CUISlider::OnMouseMessage(UINT message, UINT flags, const CPoint& point) {
  switch (message) {
    case WM_MOUSEMOVE: OnMouseMove(flags, point); break;
    case WM_LBUTTONDOWN: OnLButtonDown(flags, point); break;
    case WM_LBUTTONUP: OnLButtonUp(flags, point); break;
    case WM_MOUSELEAVE: OnMouseLeave(flags, point); break;
    default: break;
  }
  return 1;
}

void CUISlider::FireChanged() {
  if (IsEnabled()) DispatchEvent(this, UI_EVENT_SLIDER_CHANGED, this);
}

void CUISlider::SetThumbState(int state) {
  if (m_nThumbState == state) return;
  m_nThumbState = state;
  Refresh();
}

void CUISlider::OnLButtonDown(UINT, CPoint point) {
  _SliderConfig* config = GetSliderConfig();
  if (!config) return;
  if (GetBounds().PtInRect(point)) SetControlCapture();
  if (m_rcThumb.PtInRect(point)) {
    m_ptLast = point;
    m_bDragging = TRUE;
    m_nThumbState = kThumbPressed;
    Refresh();
    return;
  }
  const CRect slot = GetSlotBounds(config->m_bHorizontal);
  if (config->m_bHorizontal) {
    const LONG newLeft = point.x <= slot.left ? slot.left : std::min(point.x, slot.right - m_rcThumb.Width());
    if (!m_rcThumb.IsRectEmpty()) {
      m_nThumbState = kThumbPressed;
      m_rcThumb.MoveToX(newLeft);
    }
    m_nPosition = PositionAt(m_rcThumb.left - slot.left, slot.Width() - m_rcThumb.Width());
  } else {
    const LONG newBottom = point.y >= slot.bottom ? slot.bottom
                           : point.y <= slot.top  ? slot.top + m_rcThumb.Height()
                                                  : point.y;
    if (!m_rcThumb.IsRectEmpty()) {
      m_nThumbState = kThumbPressed;
      m_rcThumb.OffsetRect(0, slot.bottom - newBottom);  // a relative move, kept as it always was
    }
    m_nPosition = PositionAt(slot.bottom - m_rcThumb.bottom, slot.Height() - m_rcThumb.Height());
  }
  FireChanged();
  Refresh();
}

void CUISlider::OnMouseMove(UINT, CPoint point) {
  _SliderConfig* config = GetSliderConfig();
  if (!config) return;
  if (!m_bDragging) {
    SetThumbState(m_rcThumb.PtInRect(point) ? kThumbHover : kThumbNormal);
    return;
  }
  const CRect slot = GetSlotBounds(config->m_bHorizontal);
  if (config->m_bHorizontal) {
    if (point.x == m_ptLast.x) return;
    DragHorizontally(point, slot);
  } else {
    if (point.y == m_ptLast.y) return;
    DragVertically(point, slot);
  }
  FireChanged();  // every step, whether the value changed or not
  Refresh();
}

void CUISlider::DragHorizontally(const CPoint& point, const CRect& slot) {
  const LONG dx = point.x - m_ptLast.x;
  CRect moved = m_rcThumb;
  moved.OffsetRect(dx, 0);
  if (moved.left >= slot.left && moved.right <= slot.right) {
    m_rcThumb = moved;
    m_ptLast = point;
    m_nPosition = PositionAt(m_rcThumb.left - slot.left, slot.Width() - m_rcThumb.Width());
    return;
  }
  // Past an end: the thumb stops there and the value is that end's.
  const LONG shift = dx < 0 ? slot.left - m_rcThumb.left : slot.right - m_rcThumb.right;
  m_rcThumb.OffsetRect(shift, 0);
  m_ptLast.x += shift;
  m_nPosition = dx < 0 ? m_nMin : m_nMax;
}

void CUISlider::DragVertically(const CPoint& point, const CRect& slot) {
  CRect moved = m_rcThumb;
  moved.OffsetRect(0, point.y - m_ptLast.y);
  // Past an end the thumb simply stops following.
  if (moved.top < slot.top || moved.bottom > slot.bottom) return;
  m_rcThumb = moved;
  m_ptLast = point;
  m_nPosition = PositionAt(slot.bottom - m_rcThumb.bottom, slot.Height() - m_rcThumb.Height());
}

void CUISlider::OnLButtonUp(UINT, CPoint point) {
  if (!m_bDragging) return;  // a track click keeps the capture until the next drag ends
  ReleaseControlCapture();
  m_bDragging = FALSE;
  m_nThumbState = m_rcThumb.PtInRect(point) ? kThumbHover : kThumbNormal;
  Refresh();
}

void CUISlider::OnMouseLeave(UINT, CPoint) {
  m_bDragging = FALSE;
  m_nThumbState = kThumbNormal;
  Refresh();
}

// --- drawing ---------------------------------------------------------------------------------------

// The first placement puts the thumb's edge at the value, where SetPosition
// centres it; both are intended.
void CUISlider::PlaceThumbForPaint(_SliderConfig& config, const CRect& slot) {
  const CSize thumb = ThumbSize(config);
  const double ratio = PositionRatio();
  if (config.m_bHorizontal) {
    const LONG left = slot.left + RoundHalfUp(slot.Width() * ratio);
    const LONG top = slot.top + (slot.Height() - thumb.cy) / 2;
    m_rcThumb.SetRect(left, top, left + thumb.cx, top + thumb.cy);
  } else {
    const LONG left = slot.left + (slot.Width() - thumb.cx) / 2;
    const LONG bottom = slot.bottom - RoundHalfUp(slot.Height() * ratio);
    m_rcThumb.SetRect(left, bottom - thumb.cy, left + thumb.cx, bottom);
  }
}

void CUISlider::RenderSelf(DXCore* dx, CRect*) {
  _SliderConfig* config = GetSliderConfig();
  if (!config || !dx) return;
  CRect b = GetBounds();
  if (!config->m_imgBackground.m_rcSrc.IsRectEmpty()) config->m_imgBackground.Render(dx, b, nullptr);
  const CRect slot = GetSlotBounds(config->m_bHorizontal);
  _ImageConfig& thumb = config->m_imgThumb[m_nThumbState];
  if (!thumb.m_rcSrc.IsRectEmpty()) {
    if (m_rcThumb.IsRectEmpty()) PlaceThumbForPaint(*config, slot);
    thumb.Render(dx, m_rcThumb, nullptr);
  }
  if (config->m_imgFill.m_rcSrc.IsRectEmpty() || m_nMax == m_nMin) return;
  CRect fill = config->m_bHorizontal ? CRect(slot.left, slot.top, m_rcThumb.left, slot.bottom)
                                     : CRect(slot.left, m_rcThumb.bottom, slot.right, slot.bottom);
  config->m_imgFill.Render(dx, fill, nullptr);
}

}  // namespace KarvelUI
