#include <karvelui/UILabel.h>

#include <karvelui/CommonString.h>
#include <karvelui/DXCore.h>
#include <karvelui/Helpers.h>
#include <karvelui/Input.h>
#include <karvelui/SkinReader.h>
#include <karvelui/UIForm.h>
#include <karvelui/WindowHelpers.h>

namespace KarvelUI {

namespace {

constexpr COLORREF kDefaultHyperLinkColour = 0xCA5B00;
constexpr COLORREF kDefaultHoverTextColour = 0xFFFFFF;
constexpr COLORREF kDisabledTextColour = 0xC0C0C0;
constexpr int kShowCommandShow = 5;  // SW_SHOW for the browser

UINT HorizontalFormat(LONG x) { return x == 0 ? DT_LEFT : x == 2 ? DT_RIGHT : DT_CENTER; }
UINT VerticalFormat(LONG y) { return y == 0 ? DT_TOP : y == 2 ? DT_BOTTOM : DT_VCENTER; }

}  // namespace

// --- _LabelConfig -----------------------------------------------------------------------

_LabelConfig::_LabelConfig() { _LabelConfig::Reset(); }

void _LabelConfig::Reset() {
  m_imgBackground.Reset();
  m_bTransparent = 1;
  GetDefaultLOGFONT(m_font);
  m_clrText = 0;
  m_nFormatHor = DT_LEFT;
  m_nFormatVer = DT_TOP;
  m_bHyperLink = 0;
  m_bSingleLine = 1;
  m_clrHyperLink = kDefaultHyperLinkColour;
  m_bAlwaysUnderline = 1;
  m_clrHoverText = kDefaultHoverTextColour;
  m_bAutoOpenURL = 0;
}

void _LabelConfig::Copy(_SkinConfig* source) {
  Reset();
  auto* from = static_cast<_LabelConfig*>(source);
  if (!from) return;
  m_imgBackground.Copy(&from->m_imgBackground);
  m_bTransparent = from->m_bTransparent;
  m_font = from->m_font;
  m_clrText = from->m_clrText;
  m_nFormatHor = from->m_nFormatHor;
  m_nFormatVer = from->m_nFormatVer;
  m_bHyperLink = from->m_bHyperLink;
  m_bSingleLine = from->m_bSingleLine;
  m_clrHyperLink = from->m_clrHyperLink;
  m_bAlwaysUnderline = from->m_bAlwaysUnderline;
  m_clrHoverText = from->m_clrHoverText;
  m_bAutoOpenURL = from->m_bAutoOpenURL;
}

int _LabelConfig::Read(CSkinReader* reader) {
  if (!reader) return 0;
  reader->GetImage(m_imgBackground, L"BkImage");
  reader->GetBool(m_bTransparent, L"Transparent");
  reader->GetFont(m_font, m_clrText, L"Font");
  CPoint align;
  if (reader->GetPoint(align, L"TextAlign")) {
    m_nFormatHor = HorizontalFormat(align.x);
    m_nFormatVer = VerticalFormat(align.y);
  }
  reader->GetBool(m_bHyperLink, L"IsHyperLink");
  reader->GetBool(m_bSingleLine, L"IsSingleLine");
  reader->GetColor(m_clrHyperLink, L"HyperColor");
  reader->GetBool(m_bAlwaysUnderline, L"IsAlwaysShowHyperLine");
  reader->GetColor(m_clrHoverText, L"ReverseTextColor");
  reader->GetBool(m_bAutoOpenURL, L"IsAutoOpenURL");
  return 1;
}

_SkinConfig* _LabelConfig::Clone() {
  auto* clone = new _LabelConfig();
  clone->Copy(this);
  return clone;
}

// --- CUILabel ------------------------------------------------------------------------------

CUILabel::CUILabel() { SetTypeName(L"CUILabel"); }

_LabelConfig* CUILabel::GetLabelConfig() { return dynamic_cast<_LabelConfig*>(GetSkinConfig(CString())); }

void CUILabel::OnSetSkinData() {
  const CString& id = GetAssData().m_strStrID;
  if (!GetLabelConfig() || id.IsEmpty()) return;
  const CString text = CommonString::GetInstance()->GetStringViaID(id);
  if (!text.IsEmpty()) SetText(text, FALSE);
}

void CUILabel::SetText(CString text, BOOL relayout) {
  m_strText = text.Trim();
  if (relayout && GetParentContainer()) GetParentContainer()->RePositionSubControls();
}

void CUILabel::SetHyperLinkMode(BOOL hyperlink, CString url, BOOL alwaysUnderline) {
  _LabelConfig* config = GetLabelConfig();
  if (!config) return;
  config->m_bHyperLink = hyperlink;
  config->m_bAlwaysUnderline = alwaysUnderline;
  m_strURL = url;
}

void CUILabel::SetAlignmentHor(int format) {
  if (_LabelConfig* config = GetLabelConfig()) config->m_nFormatHor = static_cast<UINT>(format);
}
void CUILabel::SetAlignmentVer(int format) {
  if (_LabelConfig* config = GetLabelConfig()) config->m_nFormatVer = static_cast<UINT>(format);
}
void CUILabel::SetTextColor(COLORREF colour) {
  if (_LabelConfig* config = GetLabelConfig()) config->m_clrText = colour;
}
void CUILabel::SetFontBold(BOOL bold) {
  if (_LabelConfig* config = GetLabelConfig()) config->m_font.lfWeight = bold ? FW_BOLD : FW_NORMAL;
}
void CUILabel::SetTransparent(BOOL transparent) {
  if (_LabelConfig* config = GetLabelConfig()) config->m_bTransparent = transparent;
}
void CUILabel::SetMultiLine(BOOL multiLine) {
  if (_LabelConfig* config = GetLabelConfig()) config->m_bSingleLine = multiLine ? 0 : 1;
}
void CUILabel::SetHyperLinkColor(COLORREF colour) {
  if (_LabelConfig* config = GetLabelConfig()) config->m_clrHyperLink = colour;
}
void CUILabel::SetAutoOpenURL(BOOL autoOpen) {
  if (_LabelConfig* config = GetLabelConfig()) config->m_bAutoOpenURL = autoOpen;
}

int CUILabel::GetWidth() {
  _LabelConfig* config = GetLabelConfig();
  DXCore* dx = GetOwnerForm() ? GetOwnerForm()->GetRenderDevice() : nullptr;
  if (!config || !dx) return 0;
  CRect extent;
  if (FAILED(dx->MeasureText(m_strText, config->m_font, DT_SINGLELINE, &extent))) return 0;
  return extent.Width();
}

// --- mouse --------------------------------------------------------------------------------------

void CUILabel::SetCursorShape(const wchar_t* cursor) const { SetCursor(LoadCursorW(nullptr, cursor)); }

int CUILabel::OnMouseMessage(UINT message, UINT, const CPoint&) {
  _LabelConfig* config = GetLabelConfig();
  if (!config || message < WM_MOUSEMOVE || message > WM_MOUSELEAVE) return 0;
  switch (message) {
    case WM_MOUSEMOVE:
      if (config->m_bHyperLink) SetCursorShape(IDC_HAND);
      return 1;  // consumed in every mode
    case WM_LBUTTONDOWN:
      OnClick();
      return 1;
    case WM_LBUTTONUP: return 1;
    case WM_MOUSEHOVER: return OnHoverChange(TRUE);
    case WM_MOUSELEAVE: return OnHoverChange(FALSE);
    default: return 0;
  }
}

int CUILabel::OnHoverChange(BOOL entering) {
  if (!IsEnabled()) return 0;
  _LabelConfig* config = GetLabelConfig();
  if (config->m_bHyperLink) SetCursorShape(entering ? IDC_HAND : IDC_ARROW);
  if (m_bNotifyHover) FireEvent(entering ? UI_EVENT_LINK_ENTER : UI_EVENT_LINK_LEAVE, this);
  m_bHovered = entering;
  if (!config->m_bAlwaysUnderline) {
    m_bHighlighted = entering;
    Refresh();
  }
  return 1;
}

void CUILabel::OnClick() {
  _LabelConfig* config = GetLabelConfig();
  if (!config || !IsEnabled()) return;
  if (config->m_bAutoOpenURL && !m_strURL.IsEmpty()) {
    CString url = m_strURL;
    SafeOpenWeb(url, kShowCommandShow);
    return;
  }
  DispatchEvent(this, UI_EVENT_CLICK, this);
}

// --- drawing ---------------------------------------------------------------------------------------

void CUILabel::RenderSelf(DXCore* dx, CRect* clip) {
  _LabelConfig* config = GetLabelConfig();
  if (!config || !dx) return;
  if (!config->m_bTransparent && !config->m_imgBackground.m_strFile.IsEmpty() && clip) {
    CRect target = *clip;  // the clip rectangle, not the label's bounds
    config->m_imgBackground.Render(dx, target, nullptr);
  }
  const BOOL enabled = IsEnabled();
  COLORREF colour = config->m_clrText;
  if (!enabled)
    colour = kDisabledTextColour;
  else if (m_bHighlighted)
    colour = config->m_clrHoverText;
  if (config->m_bHyperLink) {
    config->m_font.lfUnderline = config->m_bAlwaysUnderline || m_bHovered ? 1 : 0;
    if (!enabled)
      colour = kDisabledTextColour;
    else if (!m_bHighlighted)
      colour = config->m_clrHyperLink;
  } else {
    config->m_font.lfUnderline = 0;
  }
  const UINT format = config->m_nFormatHor | config->m_nFormatVer | (config->m_bSingleLine ? DT_SINGLELINE : DT_WORDBREAK);
  dx->SetTransform(nullptr, nullptr, nullptr, 0.0f, nullptr);
  dx->DrawTextW(m_strText, GetBounds(), config->m_font, format, colour);
}

}  // namespace KarvelUI
