#include "MainForm.h"

#include <karvelui/CommonString.h>
#include <karvelui/FormConfig.h>

using namespace KarvelUI;

namespace KarvelView {

bool CMainForm::Open() {
  SetObjectID(L"MainForm");
  CString title = CommonString::GetInstance()->GetStringViaID(L"STRID_MAINFORM_TITLE");
  if (title.IsEmpty()) title = L"KarvelView";
  const DWORD style = WS_POPUP | WS_THICKFRAME | WS_SYSMENU | WS_MINIMIZEBOX | WS_MAXIMIZEBOX;
  if (!Create(style, L"KarvelViewMainForm", title, nullptr, 0, CRect(0, 0, 960, 640))) return false;
  ShowWindow(SW_SHOW);
  return true;
}

CMainForm::~CMainForm() { PostQuitMessage(0); }

LRESULT CMainForm::OnNcHitTest(CPoint screenPoint) {
  const LRESULT hit = CUIForm::OnNcHitTest(screenPoint);
  _FormConfig* config = GetFormConfig();
  if (hit != HTCLIENT || !config) return hit;
  CPoint client = screenPoint;
  ScreenToClient(&client);
  return client.y < GetBounds().top + config->m_rcBorderMargin.top ? HTCAPTION : hit;
}

}  // namespace KarvelView
