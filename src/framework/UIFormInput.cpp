// CUIForm: the window procedure, mouse and key routing, hover, keyboard
// focus and tab order, the non-client hit test (drag and resize areas),
// the min/max sizes and size changes.

#include <karvelui/FormConfig.h>
#include <karvelui/UIForm.h>
#include <karvelui/Input.h>
#include <karvelui/Screen.h>
#include <karvelui/DXCore.h>

namespace KarvelUI {

namespace {

// WM_MOUSEMOVE to WM_MOUSEWHEEL and WM_MOUSELEAVE. The messages after the
// wheel (side buttons, WM_MOUSEHWHEEL) go to the window's default handling:
// no control takes them.
bool IsMouseMessage(UINT message) {
  return (message >= WM_MOUSEMOVE && message <= WM_MOUSEWHEEL) || message == WM_MOUSELEAVE;
}

// Deliberately unsigned 16-bit halves, as the form's controls expect: a
// captured cursor left of or above the window arrives as a large positive
// coordinate, which no control contains.
CPoint UnsignedPoint(LPARAM lParam) { return CPoint(LOWORD(lParam), HIWORD(lParam)); }

// The smallest grips, whatever the border margin says.
constexpr int kMinGripLeft = 6;
constexpr int kMinGripTop = 5;
constexpr int kMinGripRight = 6;
constexpr int kMinGripBottom = 10;

}  // namespace

// --- the window procedure -------------------------------------------------------------------

LRESULT CUIForm::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  if (m_bClosing) return 1;
  if (IsMouseMessage(message)) return RouteMouseMessage(message, wParam, lParam);
  switch (message) {
    case UI_WM_RELEASEMENU:
      if (!m_pActiveMenu) break;
      ReleaseActiveMenu(FALSE);
      return 1;
    case WM_ACTIVATE:
      if (LOWORD(wParam) == WA_INACTIVE) break;
      OnPaint(static_cast<UINT>(wParam));
      return 1;
    case WM_PAINT:
    case WM_SHOWWINDOW:
      OnPaint(static_cast<UINT>(wParam));
      return 1;
    case WM_KEYDOWN:
    case WM_KEYUP: return RouteKeyMessage(message, wParam, lParam);
    default: break;
  }
  return CWnd::WindowProc(message, wParam, lParam);
}

LRESULT CUIForm::RouteMouseMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  CPoint point = UnsignedPoint(lParam);
  if (message == WM_MOUSEWHEEL) ScreenToClient(&point);
  // A handler may close the form: after it, only the handle is looked at.
  const HWND hwnd = m_hWnd;
  if (OnMouseMsg(message, static_cast<UINT>(wParam), point)) return 1;
  if (!IsWindow(hwnd)) return 1;
  return CWnd::WindowProc(message, wParam, lParam);
}

LRESULT CUIForm::RouteKeyMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  const HWND hwnd = m_hWnd;
  if (OnKeyMsg(message, static_cast<UINT>(wParam), LOWORD(lParam), HIWORD(lParam))) return 1;
  if (!IsWindow(hwnd)) return 1;
  return CWnd::WindowProc(message, wParam, lParam);
}

// --- mouse ---------------------------------------------------------------------------------------

LRESULT CUIForm::OnMouseMsg(UINT message, UINT flags, const CPoint& point) {
  if (m_bClosing) return 1;
  // A click in the form dismisses its popup menu first, then goes on as usual.
  if (message == WM_LBUTTONDOWN) ReleaseActiveMenu(TRUE);
  if (m_pCaptureControl) {
    m_pCaptureControl->OnMouseMessage(message, flags, point);
    return 1;
  }
  if (message == WM_MOUSELEAVE) {
    SetCursorMoveFocus(nullptr);
    OnMouseLeave(flags, point);
    m_bTracking = FALSE;
    return 1;
  }
  if (!m_bTracking) {
    m_bTracking = TRUE;
    TRACKMOUSEEVENT track;
    track.dwFlags = TME_LEAVE;
    track.hwndTrack = m_hWnd;
    TrackMouseEvent(&track);
  }
  // Moves within the hovered control search from it; a press always searches the whole tree.
  CUIControl* start = this;
  if (m_pHoverControl && m_pHoverControl->IsShownAndEnabled() && m_pHoverControl->IsCursorInBounds(point) &&
      message != WM_LBUTTONDOWN)
    start = m_pHoverControl;
  CUIControl* target = start->FindControlUnderPoint(point);
  if (!target || !target->IsShownAndEnabled()) return 0;
  if (message == WM_MOUSEMOVE) SetCursorMoveFocus(target);
  target->DispatchMouseMessage(message, flags, point);
  return 0;
}

void CUIForm::SetCursorMoveFocus(CUIControl* control) {
  if (control == m_pHoverControl) return;
  CUIControl* previous = m_pHoverControl;
  m_pHoverControl = control;
  if (previous) previous->OnMouseMessage(WM_MOUSELEAVE, 0, CPoint(0, 0));
  if (control) control->OnMouseMessage(WM_MOUSEHOVER, 0, CPoint(0, 0));
}

void CUIForm::OnMouseLeave(UINT, const CPoint&) {}

// --- keyboard ---------------------------------------------------------------------------------------

LRESULT CUIForm::OnKeyMsg(UINT message, UINT wParam, UINT repeat, UINT keyFlags) {
  if (m_bClosing) return 1;
  if (message == WM_KEYDOWN && wParam == static_cast<UINT>(VK_ESCAPE) && m_bCloseOnEscape) {
    if (m_bModal)
      EndDialog(0);
    else
      PostMessage(WM_CLOSE);
    return 1;
  }
  if (message == WM_KEYDOWN && wParam == static_cast<UINT>(VK_TAB) && !m_vecTabOrder.empty()) return HandleTabKey();
  if (!IsEnabled()) return 0;
  if (m_pKeyFocusControl && m_pKeyFocusControl->IsShownAndEnabled())
    m_pKeyFocusControl->DispatchKeyMessage(message, wParam, repeat, keyFlags);
  return 0;
}

BOOL CUIForm::HandleTabKey() {
  CUIControl* current = GetCurFocused();
  const bool shift = GetKeyState(VK_LSHIFT) < 0 || GetKeyState(VK_RSHIFT) < 0;
  CUIControl* next = shift ? GetPrevTabCtrl() : GetNextTabCtrl();
  if (!next) return TRUE;
  if (current) current->SetFocused(FALSE);
  next->SetFocused(TRUE);
  Refresh();
  return TRUE;
}

void CUIForm::SetKeyFocus(CUIControl* control) {
  if (control == m_pKeyFocusControl) return;
  CUIControl* previous = m_pKeyFocusControl;
  m_pKeyFocusControl = control;
  if (previous) previous->OnKeyMessage(UI_KEY_KILLFOCUS, 0, 0, 0);
  if (control) control->OnKeyMessage(UI_KEY_SETFOCUS, 0, 0, 0);
}

void CUIForm::AddTABOrder(CUIControl* control) { m_vecTabOrder.push_back(control); }

CUIControl* CUIForm::GetCurFocused() {
  for (size_t i = 0; i < m_vecTabOrder.size(); ++i) {
    CUIControl* control = m_vecTabOrder[i];
    if (control && control->IsFocused() && control->IsShown()) {
      m_nCurTabIndex = static_cast<int>(i);
      return control;
    }
  }
  return nullptr;
}

CUIControl* CUIForm::GetNextTabCtrl() {
  const size_t count = m_vecTabOrder.size();
  const size_t current = m_nCurTabIndex < 0 ? 0 : static_cast<size_t>(m_nCurTabIndex);
  for (size_t step = 1; step <= count; ++step) {
    CUIControl* control = m_vecTabOrder[(current + step) % count];
    if (control && control->IsShownAndEnabled()) return control;
  }
  return nullptr;
}

CUIControl* CUIForm::GetPrevTabCtrl() {
  if (m_nCurTabIndex == -1) m_nCurTabIndex = 0;
  for (CUIControl* control : m_vecTabOrder)
    if (control && control->IsShownAndEnabled()) return control;
  return nullptr;
}

// --- hit test, sizes and size changes -------------------------------------------------------------------

LRESULT CUIForm::OnNcHitTest(CPoint screenPoint) {
  CPoint point = screenPoint;
  ScreenToClient(&point);
  _FormConfig* config = GetFormConfig();
  if (!config) return HTNOWHERE;
  if (HitFormCaption(point) == 1) return HTCAPTION;  // the caption's drag area
  if (config->m_bResize == 1) return GripHitTest(point, config->m_rcBorderMargin);
  return HTCLIENT;
}

LRESULT CUIForm::GripHitTest(const CPoint& point, const CRect& margin) {
  const CRect b = GetBounds();
  const CRect inner(b.left + std::max<LONG>(margin.left, kMinGripLeft), b.top + std::max<LONG>(margin.top, kMinGripTop),
                    b.right - std::max<LONG>(margin.right, kMinGripRight),
                    b.bottom - std::max<LONG>(margin.bottom, kMinGripBottom));
  if (point.y < inner.top) return point.x < inner.left ? HTTOPLEFT : point.x > inner.right ? HTTOPRIGHT : HTTOP;
  if (point.y > inner.bottom)
    return point.x < inner.left ? HTBOTTOMLEFT : point.x > inner.right ? HTBOTTOMRIGHT : HTBOTTOM;
  if (point.x < inner.left) return HTLEFT;
  if (point.x > inner.right) return HTRIGHT;
  return HTCLIENT;
}

void CUIForm::OnGetMinMaxInfo(MINMAXINFO* info) {
  _FormConfig* config = info ? GetFormConfig() : nullptr;
  if (config && config->m_bResize) {
    MONITORINFO monitor;
    GetMonitorInfoW(MonitorFromWindow(m_hWnd, MONITOR_DEFAULTTONEAREST), &monitor);
    const CRect& work = monitor.rcWork;
    const CRect& screen = monitor.rcMonitor;
    const CPoint offset = m_ptOffset;
    info->ptMaxPosition = CPoint(work.left - screen.left - offset.x, work.top - screen.top - offset.y);
    const CRect& area = config->m_bFullWindow ? screen : work;
    info->ptMaxSize = CPoint(area.Width() + 2 * offset.x, area.Height() + 2 * offset.y);
    info->ptMaxTrackSize = info->ptMaxSize;
    // The height deliberately adds the horizontal frame offset.
    info->ptMinTrackSize = CPoint(config->m_szMin.cx + 2 * offset.x, config->m_szMin.cy + 2 * offset.x);
  }
  CWnd::OnGetMinMaxInfo(info);
}

void CUIForm::OnSize(UINT type, int cx, int cy) {
  CWnd::OnSize(type, cx, cy);
  if (cx <= 0 || cy <= 0) return;
  m_ptOffset = GetOffsetPtAux();
  SizeFormCaption(type);
  CalculateBounds();
  SetFormRgn();
  AddAllSubTooltip();
  m_pDXCore->ResetD3DSize({cx, cy});
  Refresh();
}

}  // namespace KarvelUI
