#include <karvelui/UIButton.h>

#include <karvelui/CommonString.h>
#include <karvelui/DXCore.h>
#include <karvelui/Helpers.h>
#include <karvelui/Input.h>
#include <karvelui/MessageQueue.h>
#include <karvelui/Screen.h>
#include <karvelui/SkinReader.h>
#include <karvelui/UIForm.h>
#include "controls/ButtonRepeat.h"

namespace KarvelUI {

namespace {

constexpr LONG kDefaultEdge = 6;
constexpr LONG kInnerGap = 3;  // between the bounds and the icon or text, and icon to text
constexpr COLORREF kDefaultTextColour = 0xFF000000;
constexpr COLORREF kDisabledTextColour = 0xC0C0C0;
const CPoint kDefaultShadowOffset(1, 1);

bool AnyInset(const CRect& r) { return r.left || r.top || r.right || r.bottom; }

CRect Shrunk(CRect r, const CRect& by) {
  r.DeflateRect(by);
  return r;
}

UINT TextFormat(int horizontal, int vertical) {
  const UINT hor = horizontal == 0 ? DT_LEFT : horizontal == 2 ? DT_RIGHT : DT_CENTER;
  const UINT ver = vertical == 0 ? DT_TOP : vertical == 2 ? DT_BOTTOM : DT_VCENTER;
  return hor | ver;
}

}  // namespace

// --- _ButtonConfig ------------------------------------------------------------------

_ButtonConfig::_ButtonConfig() { _ButtonConfig::Reset(); }

void _ButtonConfig::Reset() {
  for (_ImageConfig& image : m_imgStates) image.Reset();
  m_imgIcon.Reset();
  m_bFlat = 0;
  m_szEdge = CSize(kDefaultEdge, kDefaultEdge);
  m_clrText = kDefaultTextColour;
  m_clrTextFocus = kDefaultTextColour;
  m_bTextShadow = 0;
  m_clrTextShadow = 0;
  GetDefaultLOGFONT(m_font);
  m_rcIconOffset.SetRectEmpty();
  m_rcTextOffset.SetRectEmpty();
  m_nTextHorAlign = 1;
  m_nTextVerAlign = 1;
  m_bRepeat = 0;
}

void _ButtonConfig::Copy(_SkinConfig* source) {
  Reset();
  auto* from = static_cast<_ButtonConfig*>(source);
  if (!from) return;
  for (int i = 0; i < UIBUTTON_STATE_COUNT; ++i) m_imgStates[i].Copy(&from->m_imgStates[i]);
  m_imgIcon.Copy(&from->m_imgIcon);
  m_bFlat = from->m_bFlat;
  m_szEdge = from->m_szEdge;
  m_clrText = from->m_clrText;
  m_clrTextFocus = from->m_clrTextFocus;
  m_bTextShadow = from->m_bTextShadow;
  m_clrTextShadow = from->m_clrTextShadow;
  m_font = from->m_font;
  m_rcIconOffset = from->m_rcIconOffset;
  m_rcTextOffset = from->m_rcTextOffset;
  m_nTextHorAlign = from->m_nTextHorAlign;
  m_nTextVerAlign = from->m_nTextVerAlign;
  m_bRepeat = from->m_bRepeat;
}

int _ButtonConfig::Read(CSkinReader* reader) {
  if (!reader) return 0;
  reader->GetBool(m_bFlat, L"Flat");
  reader->GetImage(m_imgIcon, L"Icon");
  reader->Get5StateImage(m_imgStates, L"Image");
  reader->GetSize(m_szEdge, L"Edge");
  reader->GetFont(m_font, m_clrText, L"Font");
  if (!reader->GetColor(m_clrTextFocus, L"ColorTextFocus")) m_clrTextFocus = m_clrText;
  if (reader->GetBool(m_bTextShadow, L"IsTextShadow")) {
    reader->GetColor(m_clrTextShadow, L"ColorTextShadow");
    if (!reader->GetPoint(m_ptTextShadowOffset, L"TextShadowOffset")) m_ptTextShadowOffset = kDefaultShadowOffset;
  }
  reader->GetBool(m_bRepeat, L"IsRepeate");
  reader->GetRect(m_rcIconOffset, L"IconOffset", 1);
  reader->GetRect(m_rcTextOffset, L"TextOffset", 1);
  reader->GetInt(m_nTextHorAlign, L"TextHorAlign");
  reader->GetInt(m_nTextVerAlign, L"TextVerAlign");
  return 1;
}

_SkinConfig* _ButtonConfig::Clone() {
  auto* clone = new _ButtonConfig();
  clone->Copy(this);
  return clone;
}

// --- CUIButton: states ----------------------------------------------------------------

CUIButton* CUIButton::s_pRepeatButton = nullptr;

CUIButton::CUIButton() { SetTypeName(L"CUIButton"); }

CUIButton::~CUIButton() {
  if (s_pRepeatButton != this) return;
  StopTimer();
  s_pRepeatButton = nullptr;
}

_ButtonConfig* CUIButton::GetButtonConfig() { return dynamic_cast<_ButtonConfig*>(GetSkinConfig(CString())); }

BOOL CUIButton::IsDisabled() const { return IsEnabled() ? FALSE : TRUE; }

HWND CUIButton::FormWindow() const { return GetOwnerForm() ? GetOwnerForm()->GetSafeHwnd() : nullptr; }

void CUIButton::SetButtonStatus(UIButtonStatus status) {
  m_nStatus = status;
  Refresh();
}

void CUIButton::SetWindowTextW(const CString& text) {
  m_strText = text;
  Refresh();
}

void CUIButton::SetFlat(BOOL flat) {
  if (_ButtonConfig* config = GetButtonConfig()) config->m_bFlat = flat;
}

void CUIButton::SetEnabled(BOOL enabled) {
  CUIControl::SetEnabled(enabled);
  SetButtonStatus(enabled ? UIBUTTON_NORMAL : UIBUTTON_DISABLED);
}

void CUIButton::SetFocused(BOOL focused) {
  CUIControl::SetFocused(focused);  // with a form, gaining the focus makes this its key focus control
  SetButtonStatus(focused ? UIBUTTON_HOVER : UIBUTTON_NORMAL);
}

void CUIButton::OnSetSkinData() {
  const CString& id = GetAssData().m_strStrID;
  if (GetButtonConfig() && !id.IsEmpty()) {
    const CString text = CommonString::GetInstance()->GetStringViaID(id);
    if (!text.IsEmpty()) m_strText = text;
  }
  Refresh();
}

void CUIButton::OnClick() {
  if (IsDisabled()) return;
  DispatchEvent(this, UI_EVENT_CLICK, this);
}

// --- mouse ------------------------------------------------------------------------------

int CUIButton::OnMouseMessage(UINT message, UINT, const CPoint&) {
  if (m_nStatus == UIBUTTON_DISABLED && IsDisabled()) return 0;
  switch (message) {
    case WM_LBUTTONDOWN:
      if (!IsDisabled()) OnLeftDown();
      return 1;
    case WM_LBUTTONUP:
      if (!IsDisabled()) OnLeftUp();  // may release this button through a click handler
      return 1;
    case WM_MOUSEHOVER: OnHover(); return 1;
    case WM_MOUSELEAVE: OnLeave(); return 1;
    default: return 0;
  }
}

void CUIButton::OnLeftDown() {
  if (m_nButtonType == UIBUTTON_TOGGLE) {
    SetButtonStatus(m_nStatus == UIBUTTON_PRESSED ? UIBUTTON_NORMAL : UIBUTTON_PRESSED);
  } else {
    SetButtonStatus(UIBUTTON_PRESSED);
    const _ButtonConfig* config = GetButtonConfig();
    if (config && config->m_bRepeat) {
      s_pRepeatButton = this;
      StartTimer();
      m_nRepeating = 1;
    }
  }
  m_bPressed = TRUE;
}

void CUIButton::OnLeftUp() {
  const BOOL wasPressed = m_bPressed;
  if (m_nButtonType == UIBUTTON_PUSH) SetButtonStatus(UIBUTTON_HOVER);
  const _ButtonConfig* config = GetButtonConfig();
  if (config && config->m_bRepeat) {
    s_pRepeatButton = this;
    StopTimer();
    m_nRepeating = 0;
  }
  if (!wasPressed) return;
  m_bPressed = FALSE;
  OnClick();
}

void CUIButton::OnHover() {
  if (m_nStatus == UIBUTTON_NORMAL || m_nStatus == UIBUTTON_KBFOCUS) SetButtonStatus(UIBUTTON_HOVER);
}

void CUIButton::OnLeave() {
  if (m_nButtonType == UIBUTTON_PUSH) {
    if (m_nStatus == UIBUTTON_HOVER || m_nStatus == UIBUTTON_PRESSED)
      SetButtonStatus(IsFocused() ? UIBUTTON_KBFOCUS : UIBUTTON_NORMAL);
    else if (IsFocused())
      SetButtonStatus(UIBUTTON_KBFOCUS);
    m_bPressed = FALSE;  // leaving cancels the click
    return;
  }
  if (!m_bPressed) {
    if (m_nStatus != UIBUTTON_PRESSED) SetButtonStatus(UIBUTTON_NORMAL);  // a checked button stays checked
    return;
  }
  SetButtonStatus(m_nStatus == UIBUTTON_PRESSED ? UIBUTTON_NORMAL : UIBUTTON_PRESSED);  // undo the flip
  m_bPressed = FALSE;
}

// --- auto-repeat ------------------------------------------------------------------------

int CUIButton::GetDelay() {
  int setting = -1;
  SystemParametersInfoW(SPI_GETKEYBOARDDELAY, 0, &setting, 0);
  return ButtonRepeatDelayMs(setting);
}

int CUIButton::GetInterval() {
  int setting = -1;
  SystemParametersInfoW(SPI_GETKEYBOARDSPEED, 0, &setting, 0);
  return ButtonRepeatIntervalMs(setting);
}

void CUIButton::StartTimer() {
  if (HWND hwnd = FormWindow())
    KarvelUI::SetTimer(hwnd, UI_TIMER_BUTTON_REPEAT, static_cast<UINT>(GetDelay()), &CUIButton::OnTimerProc);
}

void CUIButton::StopTimer() {
  if (!m_nRepeating) return;
  if (HWND hwnd = FormWindow()) KarvelUI::KillTimer(hwnd, UI_TIMER_BUTTON_REPEAT);
}

void CUIButton::OnTimerProc(HWND hwnd, UINT, UINT_PTR id, DWORD) {
  CUIButton* button = s_pRepeatButton;
  if (!button) {
    KarvelUI::KillTimer(hwnd, id);
    return;
  }
  CPoint cursor;
  GetCursorPos(&cursor);
  KarvelUI::ScreenToClient(button->FormWindow(), &cursor);
  if (!button->IsCursorInBounds(cursor)) {
    button->StopTimer();
    button->m_nRepeating = 0;
    return;
  }
  if (button->m_nRepeating == 1) {
    KarvelUI::SetTimer(hwnd, UI_TIMER_BUTTON_REPEAT, static_cast<UINT>(button->GetInterval()), &CUIButton::OnTimerProc);
    button->m_nRepeating = 2;
  }
  if (button->m_nRepeating > 1) button->OnClick();
}

// --- drawing ---------------------------------------------------------------------------------

void CUIButton::RenderSelf(DXCore* dx, CRect* clip) {
  _ButtonConfig* config = GetButtonConfig();
  if (!config || !dx) return;
  const CRect b = GetBounds();
  RenderBackground(dx, *config, b, clip);
  const CRect iconBox = RenderIcon(dx, *config, b);
  if (!m_strText.IsEmpty()) RenderText(dx, *config, b, iconBox);
}

void CUIButton::RenderBackground(DXCore* dx, _ButtonConfig& config, const CRect& b, CRect* clip) {
  _ImageConfig& image = config.m_imgStates[m_nStatus];
  const CRect& src = image.m_rcSrc;
  if (src.IsRectEmpty()) return;
  CRect target = b;
  if (config.m_bFlat) {
    image.Render(dx, target, clip);
    return;
  }
  // Three slices of the state's picture: the ends keep their width, the middle stretches.
  const LONG leftW = config.m_szEdge.cx, rightW = config.m_szEdge.cy;
  CEdge edge;
  edge.left.SetRect(src.left, src.top, src.left + leftW, src.bottom);
  edge.mid.SetRect(src.left + leftW, src.top, src.right - rightW, src.bottom);
  edge.right.SetRect(src.right - rightW, src.top, src.right, src.bottom);
  image.RenderEdge(dx, target, edge, 1);
}

CRect CUIButton::RenderIcon(DXCore* dx, _ButtonConfig& config, const CRect& b) {
  _ImageConfig& icon = config.m_imgIcon;
  const CRect& src = icon.m_rcSrc;
  if (src.IsRectEmpty()) return CRect();
  CRect box = b;
  if (AnyInset(config.m_rcIconOffset))
    box.DeflateRect(config.m_rcIconOffset);
  else
    box.DeflateRect(kInnerGap, kInnerGap);
  if (src.Height() < box.Height()) {
    box.top += (box.Height() - src.Height()) >> 1;
    box.bottom = box.top + src.Height();
  }
  if (src.Width() < box.Width()) box.right = box.left + src.Width();  // no horizontal centring
  icon.RenderRect(dx, box, src, nullptr);
  return box;
}

void CUIButton::RenderText(DXCore* dx, _ButtonConfig& config, const CRect& b, const CRect& iconBox) {
  COLORREF colour = config.m_clrText;
  if (IsDisabled()) colour = kDisabledTextColour;
  if (m_nStatus == UIBUTTON_HOVER || m_nStatus == UIBUTTON_PRESSED || m_nStatus == UIBUTTON_KBFOCUS)
    colour = config.m_clrTextFocus;

  CRect box;
  if (AnyInset(config.m_rcTextOffset)) {
    box = Shrunk(b, config.m_rcTextOffset);
  } else if (config.m_imgIcon.m_rcSrc.IsRectEmpty()) {
    box = Shrunk(b, CRect(kInnerGap, kInnerGap, kInnerGap, kInnerGap));
  } else {
    // The full width of the button from beside the icon: it may run past
    // the button's right edge.
    const LONG left = iconBox.right + kInnerGap;
    box.SetRect(left, b.top + kInnerGap, left + b.Width(), b.bottom - kInnerGap);
  }

  LOGFONTW font = config.m_font;
  font.lfUnderline = 0;
  const UINT format = TextFormat(config.m_nTextHorAlign, config.m_nTextVerAlign);
  dx->SetTransform(nullptr, nullptr, nullptr, 0.0f, nullptr);
  if (config.m_bTextShadow && m_nStatus != UIBUTTON_NORMAL) {
    CRect shadow = box;
    shadow.OffsetRect(config.m_ptTextShadowOffset);
    dx->DrawTextW(m_strText, shadow, font, format, config.m_clrTextShadow);
  }
  dx->DrawTextW(m_strText, box, font, format, colour);
}

}  // namespace KarvelUI
