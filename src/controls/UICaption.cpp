#include <karvelui/UICaption.h>

#include <karvelui/CommonString.h>
#include <karvelui/DXCore.h>
#include <karvelui/Helpers.h>
#include <karvelui/SkinReader.h>
#include <karvelui/UIForm.h>
#include <karvelui/WindowHelpers.h>

namespace KarvelUI {

namespace {

constexpr int kDefaultTextHeight = 10;
constexpr LONG kTitleBoxWidth = 1000;
constexpr int kGapBeforeButtons = 30;
constexpr int kGapWithoutButtons = 10;
constexpr int kShowCommandShow = 5;  // SW_SHOW for the browser

struct SysCommand {
  const wchar_t* id;
  WPARAM command;
};
// In the order the IDs are compared.
constexpr SysCommand kSysCommands[] = {
    {kSysButtonClose, SC_CLOSE},
    {kSysButtonMin, SC_MINIMIZE},
    {kSysButtonMax, SC_MAXIMIZE},
    {kSysButtonRestore, SC_RESTORE},
};

}  // namespace

// --- _CaptionConfig ------------------------------------------------------------------------

_CaptionConfig::_CaptionConfig() { _CaptionConfig::Reset(); }

void _CaptionConfig::Reset() {
  m_bIconVisible = 1;
  m_bTextVisible = 1;
  m_rcIcon.SetRectEmpty();
  m_ptTextStart = CPoint(0, 0);
  m_nTextHeight = kDefaultTextHeight;
  GetDefaultLOGFONT(m_font);
  m_clrText = 0;
  m_nReserved = 0;
  m_imgIcon.Reset();
}

void _CaptionConfig::Copy(_SkinConfig* source) {
  auto* from = static_cast<_CaptionConfig*>(source);
  if (!from) return;
  m_bIconVisible = from->m_bIconVisible;
  m_bTextVisible = from->m_bTextVisible;
  m_rcIcon = from->m_rcIcon;
  m_ptTextStart = from->m_ptTextStart;
  m_nTextHeight = from->m_nTextHeight;
  m_font = from->m_font;
  m_clrText = from->m_clrText;
  m_nReserved = from->m_nReserved;
  m_imgIcon = from->m_imgIcon;
}

int _CaptionConfig::Read(CSkinReader* reader) {
  if (!reader) return 0;
  reader->GetBool(m_bIconVisible, L"IconVisible");
  reader->GetBool(m_bTextVisible, L"TextVisible");
  reader->GetPoint(m_ptTextStart, L"TextStartPosition");
  reader->GetRect(m_rcIcon, L"IconRect", 0);
  reader->GetInt(m_nTextHeight, L"TextHeight");
  reader->GetFont(m_font, m_clrText, L"Font");
  reader->GetImage(m_imgIcon, L"Image");
  return 1;
}

_SkinConfig* _CaptionConfig::Clone() {
  auto* clone = new _CaptionConfig();
  clone->Copy(this);
  return clone;
}

// --- CUICaption ----------------------------------------------------------------------------

CUICaption::CUICaption() {
  SetTypeName(L"CUICaption");
  // Clicks bubble to the first listener, so every button inside arrives here.
  ListenEvent(UI_EVENT_CLICK, MakeDelegate(this, &CUICaption::OnButtonClick));
}

void CUICaption::OnSetSkinData() { GetSkinConfig(CString()); }

void CUICaption::PostSysCommand(UINT command) { GetOwnerForm()->PostMessage(WM_SYSCOMMAND, command, 0); }

void CUICaption::OnButtonClick(CUIControl* sender, void*) {
  if (!GetOwnerForm() || !sender) return;
  const CString id = sender->GetObjectID();
  for (const SysCommand& sys : kSysCommands) {
    if (id == sys.id) {
      PostSysCommand(static_cast<UINT>(sys.command));
      return;
    }
  }
  if (id == kSysButtonHelp) {
    CString url = CommonString::GetInstance()->GetStringViaID(L"STRID_MAINFORM_HELPCENTER");
    if (!url.IsEmpty()) SafeOpenWeb(url, kShowCommandShow);
    return;
  }
  // The host's own buttons in the caption: their clicks go on upwards.
  if (CUIControl* parent = GetParentContainer()) parent->DispatchEvent(sender, UI_EVENT_CLICK, sender);
}

int CUICaption::IsHitCaption(CPoint point) {
  if (!GetBoundsSmall().PtInRect(point)) return CAPTION_HIT_NONE;
  // Hidden children count too, so the window is never dragged where a button may appear.
  for (INT_PTR i = 0; i < GetChildCount(); ++i) {
    CUIControl* child = GetChild(i);
    if (child && child->IsCursorInBounds(point)) return CAPTION_HIT_CHILD;
  }
  return CAPTION_HIT_DRAG;
}

void CUICaption::OnSize(UINT type) {
  const BOOL maximized = type == SIZE_MAXIMIZED ? TRUE : FALSE;
  if (maximized == m_bMaximized) return;
  m_bMaximized = maximized;
  ChangeMaxRestoreButton();
}

CUIControl* CUICaption::ChildNamed(const wchar_t* id) {
  for (INT_PTR i = 0; i < GetChildCount(); ++i) {
    CUIControl* child = GetChild(i);
    if (child && child->GetObjectID().CompareNoCase(id) == 0) return child;
  }
  return nullptr;
}

void CUICaption::ChangeMaxRestoreButton() {
  CUIControl* maximize = ChildNamed(kSysButtonMax);
  CUIControl* restore = ChildNamed(kSysButtonRestore);
  if (!restore) return;
  if (m_bMaximized && maximize && maximize->IsShown()) {
    restore->SetVisible(TRUE);
    maximize->SetVisible(FALSE);
    RePositionSubControls();
  } else if (!m_bMaximized && restore->IsShown()) {
    restore->SetVisible(FALSE);
    if (maximize) maximize->SetVisible(TRUE);
    RePositionSubControls();
  }
}

int CUICaption::GetTextWidth() {
  auto* config = dynamic_cast<_CaptionConfig*>(GetSkinConfig(CString()));
  const LONG textX = config ? config->m_ptTextStart.x : 0;
  for (const wchar_t* id : {kSysButtonMin, kSysButtonMax, kSysButtonClose}) {
    CUIControl* button = ChildNamed(id);
    if (button && button->IsShown()) return button->GetBounds().left - textX - kGapBeforeButtons;
  }
  const CRect b = GetBounds();
  return b.right - textX - b.left - kGapWithoutButtons;
}

void CUICaption::RenderSelf(DXCore* dx, CRect*) {
  auto* config = dynamic_cast<_CaptionConfig*>(GetSkinConfig(CString()));
  if (!config || !dx) return;
  const CRect b = GetBounds();
  if (config->m_bIconVisible) {
    CRect icon = config->m_rcIcon;
    icon.OffsetRect(b.TopLeft());
    config->m_imgIcon.RenderRect(dx, icon, config->m_imgIcon.m_rcSrc, nullptr);
  }
  const CString title = GetOwnerForm() ? GetOwnerForm()->GetWindowText() : CString();
  if (!config->m_bTextVisible || title.IsEmpty()) return;
  // The start position is in form coordinates, not moved with the caption.
  const CPoint& at = config->m_ptTextStart;
  dx->SetTransform(nullptr, nullptr, nullptr, 0.0f, nullptr);
  dx->DrawTextW(title, CRect(at.x, at.y, at.x + kTitleBoxWidth, at.y + config->m_nTextHeight), config->m_font, 0,
                config->m_clrText);
}

}  // namespace KarvelUI
