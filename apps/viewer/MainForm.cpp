#include "MainForm.h"

#include <fstream>

#include <karvelui/CommonString.h>
#include <karvelui/Input.h>
#include <karvelui/SkinManager.h>
#include <karvelui/UIButton.h>
#include <karvelui/UILabel.h>
#include <karvelui/UIList.h>
#include <karvelui/UISlider.h>

using namespace KarvelUI;

namespace KarvelView {

namespace {

constexpr int kZoomMin = 10;   // percent
constexpr int kZoomMax = 400;
constexpr int kZoomStart = 100;

CString Text(const wchar_t* id) { return CommonString::GetInstance()->GetStringViaID(id); }

}  // namespace

bool CMainForm::Open() {
  SetObjectID(L"MainForm");
  CString title = Text(L"STRID_MAINFORM_TITLE");
  if (title.IsEmpty()) title = L"KarvelView";
  const DWORD style = WS_POPUP | WS_THICKFRAME | WS_SYSMENU | WS_MINIMIZEBOX | WS_MAXIMIZEBOX;
  if (!Create(style, L"KarvelViewMainForm", title, nullptr, 0, CRect(0, 0, 960, 640))) return false;
  FindControls();
  m_strip = std::make_unique<CFolderStrip>(
      *this, dynamic_cast<CUIList*>(FindControlRecusive(L"ThumbList")),
      [this](const CString& path, const std::vector<CString>& ahead) { ShowPicture(path, ahead); },
      [this](const CString& text) { ShowStatus(text); });
  ListenEvent(UI_EVENT_CLICK, MakeDelegate(this, &CMainForm::OnButtonClick));
  ListenEvent(UI_EVENT_SLIDER_CHANGED, MakeDelegate(this, &CMainForm::OnZoomChanged));
  for (const wchar_t* id : kToolButtons)
    if (CUIControl* button = FindControlRecusive(id)) AddTABOrder(button);
  if (m_zoom) m_zoom->SetRange(kZoomMin, kZoomMax);
  PlaceZoomThumb();
  ShowStatus(CString());
  ShowWindow(SW_SHOW);
  return true;
}

CMainForm::~CMainForm() { PostQuitMessage(0); }

void CMainForm::FindControls() {
  m_zoom = dynamic_cast<CUISlider*>(FindControlRecusive(L"sldZoom"));
  m_status = dynamic_cast<CUILabel*>(FindControlRecusive(L"lblStatus"));
}

void CMainForm::OnSkinChanged() {
  CUIForm::OnSkinChanged();
  PlaceZoomThumb();
}

void CMainForm::OnSize(UINT type, int cx, int cy) {
  CUIForm::OnSize(type, cx, cy);
  PlaceZoomThumb();
}

void CMainForm::PlaceZoomThumb() {
  if (m_zoom) m_zoom->SetPosition(m_zoomPercent);
}

// --- events --------------------------------------------------------------------------------

void CMainForm::OnButtonClick(CUIControl* sender, void*) {
  if (!sender) return;
  if (sender->GetObjectID() == L"btnSkin") SwitchSkin();
  if (sender->GetObjectID() == L"btnPrev" || sender->GetObjectID() == L"btnNext") {
    m_strip->Move(sender->GetObjectID() == L"btnPrev" ? -1 : 1);
    return;  // the new selection writes the status
  }
  // The picture view comes later; until then the status line says what was asked.
  ShowStatus(sender->GetTooltipText());
}

void CMainForm::OnZoomChanged(CUIControl*, void*) {
  if (!m_zoom) return;
  m_zoomPercent = m_zoom->GetPosition();
  // A click in the track leaves the slider holding the mouse; the viewer
  // wants the next click to go where it points.
  if (!m_zoom->IsDragging() && GetCaptureControl() == m_zoom) m_zoom->ReleaseControlCapture();
  ShowStatus(CString());
}

void CMainForm::SwitchSkin() {
  CUISkinManager* skins = CUISkinManager::GetInstance();
  CArray<SkinItem> items;
  skins->GetAllSkinItem(items);
  if (items.GetSize() == 0) return;
  INT_PTR current = 0;
  for (INT_PTR i = 0; i < items.GetSize(); ++i)
    if (items[i].m_strName.CompareNoCase(skins->GetCurrentSkinName()) == 0) current = i;
  skins->SetCurrentSkin(items[(current + 1) % items.GetSize()].m_strName);
}

void CMainForm::ShowStatus(const CString& action) {
  if (!m_status) return;
  CUISkinManager* skins = CUISkinManager::GetInstance();
  CString skin = skins->GetSkinNameText(skins->GetCurrentSkinName());
  if (skin.IsEmpty()) skin = skins->GetCurrentSkinName();
  CString line;
  line.Format(L"%s  |  %s %d%%", skin, Text(L"STRID_STATUS_ZOOM"), m_zoomPercent);
  if (!action.IsEmpty()) line = action + L"  |  " + line;
  m_status->SetText(line, FALSE);
  m_status->Refresh();
  if (!m_statusFile.empty()) std::ofstream(m_statusFile, std::ios::app) << line.ToUtf8() << '\n';
}

// --- keyboard --------------------------------------------------------------------------------

CUIButton* CMainForm::FocusedButton() { return dynamic_cast<CUIButton*>(GetKeyFocusControl()); }

LRESULT CMainForm::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_DROPFILES && m_strip) {
    m_strip->OpenDrop(reinterpret_cast<void*>(wParam));
    return 0;
  }
  // The strip's keys work wherever the keyboard focus is (the form sends
  // keys only to a focused control).
  if ((message == WM_KEYDOWN || message == WM_KEYUP) && m_strip && m_strip->OnKey(message, static_cast<UINT>(wParam))) return 0;
  const bool tab = message == WM_KEYDOWN && wParam == static_cast<WPARAM>(VK_TAB);
  const LRESULT result = CUIForm::WindowProc(message, wParam, lParam);
  // The form shows a newly focused button in its hover state; the viewer
  // shows its keyboard-focus picture instead.
  if (tab)
    if (CUIButton* button = FocusedButton(); button && button->IsFocused()) button->SetButtonStatus(UIBUTTON_KBFOCUS);
  return result;
}

int CMainForm::OnKeyMessage(UINT message, UINT wParam, UINT, UINT) {
  if (wParam != static_cast<UINT>(VK_SPACE) && wParam != static_cast<UINT>(VK_RETURN)) return 0;
  CUIButton* button = FocusedButton();
  if (!button || !button->IsFocused()) return 0;
  if (message == WM_KEYDOWN) {
    button->SetButtonStatus(UIBUTTON_PRESSED);
  } else if (message == WM_KEYUP) {
    button->SetButtonStatus(UIBUTTON_KBFOCUS);
    button->OnClick();
  }
  return 1;
}

}  // namespace KarvelView
