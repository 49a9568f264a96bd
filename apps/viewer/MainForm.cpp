#include "MainForm.h"

#include <algorithm>
#include <fstream>

#include "ContextMenu.h"
#include "PhotoView.h"
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

// The keyboard's Menu key (VK_APPS), which opens the context menu.
constexpr UINT kMenuKey = 0x5D;

CString Text(const wchar_t* id) { return CommonString::GetInstance()->GetStringViaID(id); }

}  // namespace

CMainForm::CMainForm() : m_menu(std::make_unique<CContextMenu>(*this)) {}

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
  ListenEvent(kZoomChangedEvent, MakeDelegate(this, &CMainForm::OnViewZoomed));
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
  m_view = dynamic_cast<CPhotoView*>(FindControlRecusive(L"ImageView"));
}

void CMainForm::OnSkinChanged() {
  CUIForm::OnSkinChanged();
  PlaceZoomThumb();
  ShowStatus(CString());  // it names the skin
}

void CMainForm::OnSize(UINT type, int cx, int cy) {
  CUIForm::OnSize(type, cx, cy);
  PlaceZoomThumb();
}

void CMainForm::PlaceZoomThumb() {
  // The view zooms further than the slider reaches; the thumb then waits at the end.
  if (m_zoom) m_zoom->SetPosition(std::clamp(m_zoomPercent, kZoomMin, kZoomMax));
}

// --- events --------------------------------------------------------------------------------

void CMainForm::OnButtonClick(CUIControl* sender, void*) {
  if (!sender) return;
  const CString id = sender->GetObjectID();
  if (id == L"btnSkin") SwitchSkin();
  else if (id == L"btnPrev") StepPicture(-1);
  else if (id == L"btnNext") StepPicture(1);
  else if (id == L"btnRotateLeft") RotateLeft();
  else if (id == L"btnRotateRight") RotateRight();
  else if (id == L"btnFit") FitPicture();
  else if (id == L"btnActualSize") ActualSize();
}

void CMainForm::OnZoomChanged(CUIControl*, void*) {
  if (!m_zoom) return;
  // A click in the track leaves the slider holding the mouse; the viewer
  // wants the next click to go where it points.
  if (!m_zoom->IsDragging() && GetCaptureControl() == m_zoom) m_zoom->ReleaseControlCapture();
  if (m_view && m_view->GetZoomPercent() > 0) {
    m_view->SetZoomPercent(m_zoom->GetPosition());  // the view reports back (OnViewZoomed)
    return;
  }
  m_zoomPercent = m_zoom->GetPosition();
  ShowStatus(CString());
}

void CMainForm::OnViewZoomed(CUIControl*, void*) {
  if (!m_view) return;
  m_zoomPercent = m_view->GetZoomPercent();
  PlaceZoomThumb();
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
  const CString picture = PictureText();
  if (!picture.IsEmpty()) line = picture + L"  |  " + line;
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
  if (message == WM_KEYDOWN && !IsClosing()) {
    if (wParam == kMenuKey) {
      CPoint centre = m_view ? m_view->GetBounds().CenterPoint() : GetBounds().CenterPoint();
      ClientToScreen(&centre);
      ShowContextMenu(centre.x, centre.y);
      return 1;
    }
    // The photo view's keys do not wait for it to hold the focus: it is
    // what the window is about.
    if (m_view && m_view->OnKeyMessage(message, static_cast<UINT>(wParam), LOWORD(lParam), HIWORD(lParam)))
      return 1;
  }
  // The strip's keys work wherever the keyboard focus is (the form sends
  // keys only to a focused control).
  if ((message == WM_KEYDOWN || message == WM_KEYUP) && m_strip && m_strip->OnKey(message, static_cast<UINT>(wParam)))
    return 0;
  const bool tab = message == WM_KEYDOWN && wParam == static_cast<WPARAM>(VK_TAB);
  const LRESULT result = CUIForm::WindowProc(message, wParam, lParam);
  // The form shows a newly focused button in its hover state; the viewer
  // shows its keyboard-focus picture instead.
  if (tab)
    if (CUIButton* button = FocusedButton(); button && button->IsFocused()) button->SetButtonStatus(UIBUTTON_KBFOCUS);
  return result;
}

int CMainForm::OnMouseMessage(UINT message, UINT flags, const CPoint& point) {
  if (message != WM_RBUTTONUP || !OpensContextMenu(point)) return CUIForm::OnMouseMessage(message, flags, point);
  CPoint screen = point;
  ClientToScreen(&screen);
  ShowContextMenu(screen.x, screen.y);
  return 1;
}

bool CMainForm::OpensContextMenu(const CPoint& point) {
  for (const wchar_t* id : {L"ImageView", L"ThumbList"}) {
    CUIControl* control = FindControlRecusive(id);
    if (control && control->IsShown() && control->GetBounds().PtInRect(point)) return true;
  }
  return false;
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

namespace KarvelView {

void CMainForm::OpenPath(const KarvelUI::CString& path) {
  if (m_strip) m_strip->Open(path);  // it tells the status line when it cannot
}

void CMainForm::StepPicture(int direction) {
  if (m_strip) m_strip->Move(direction);
}

}  // namespace KarvelView
