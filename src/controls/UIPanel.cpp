#include <karvelui/UIPanel.h>

#include <karvelui/DXCore.h>
#include <karvelui/SkinReader.h>

namespace KarvelUI {

namespace {

constexpr COLORREF kDefaultPanelColour = 255;

}  // namespace

// --- _PanelConfig ------------------------------------------------------------------------

_PanelConfig::_PanelConfig() { _PanelConfig::Reset(); }

void _PanelConfig::Reset() {
  m_imgBackground.Reset();
  m_clrBackground = kDefaultPanelColour;
}

void _PanelConfig::Copy(_SkinConfig* source) {
  auto* from = static_cast<_PanelConfig*>(source);
  if (!from) return;
  m_imgBackground.Copy(&from->m_imgBackground);
  m_clrBackground = from->m_clrBackground;
}

int _PanelConfig::Read(CSkinReader* reader) {
  if (!reader) return 0;
  reader->GetImage(m_imgBackground, L"BkImage");
  reader->GetColor(m_clrBackground, L"BkColor");
  return 1;
}

_SkinConfig* _PanelConfig::Clone() {
  auto* clone = new _PanelConfig();
  clone->Copy(this);
  return clone;
}

// --- CUIPanel -------------------------------------------------------------------------------

CUIPanel::CUIPanel() {
  SetTypeName(L"CUIPanel");
  SetHitTransparent(TRUE);
}

void CUIPanel::RenderSelf(DXCore* dx, CRect*) {
  auto* config = dynamic_cast<_PanelConfig*>(GetSkinConfig(CString()));
  if (!config || !dx || config->m_imgBackground.m_rcSrc.IsRectEmpty()) return;
  config->m_imgBackground.Render(dx, GetBounds());
}

// --- CUIBottomPanel ----------------------------------------------------------------------------

CUIBottomPanel::CUIBottomPanel() { SetTypeName(L"CUIBottomPanel"); }

CUIControl* CUIBottomPanel::LiveHoverChild() {
  if (!m_pHoverChild) return nullptr;
  CPtrArray all;
  GetAllSubControls(all);
  for (void* control : all)
    if (control == m_pHoverChild) return m_pHoverChild;
  m_pHoverChild = nullptr;  // detached or destroyed since
  return nullptr;
}

int CUIBottomPanel::OnMouseMessage(UINT message, UINT flags, const CPoint& point) {
  if (message == WM_MOUSEMOVE && !IsCursorInBounds(point)) OnMouseLeave(flags, point);
  CUIControl* hover = LiveHoverChild();
  CUIControl* start = this;
  if (hover && hover->IsShownAndEnabled() && hover->IsCursorInBounds(point) && message != WM_LBUTTONDOWN)
    start = hover;
  CUIControl* target = start->FindControlUnderPoint(point);
  if (!target || target == this) return 0;
  if (!target->IsShownAndEnabled()) return 1;
  if (message == WM_MOUSEMOVE) SetCursorMoveFocus(target);
  target->OnMouseMessage(message, flags, point);
  return 1;
}

void CUIBottomPanel::OnMouseLeave(UINT, const CPoint&) { ReleaseControlCapture(); }

void CUIBottomPanel::SetCursorMoveFocus(CUIControl* control) {
  CUIControl* previous = LiveHoverChild();
  if (control == previous) return;
  m_pHoverChild = control;
  if (previous) previous->OnMouseMessage(WM_MOUSELEAVE, 0, CPoint(0, 0));
  if (control) control->OnMouseMessage(WM_MOUSEHOVER, 0, CPoint(0, 0));
}

}  // namespace KarvelUI
