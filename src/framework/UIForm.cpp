// CUIForm: life cycle, window creation, skin, painting, shape, closing, the
// modal loop, timers and tooltips. Input routing, tab order, hit testing and
// sizing live in UIFormInput.cpp.

#include <karvelui/UIForm.h>

#include <karvelui/AnimationController.h>
#include <karvelui/BackUpdateTask.h>
#include <karvelui/CommonString.h>
#include <karvelui/Trace.h>
#include <karvelui/WindowHelpers.h>
#include <karvelui/FormConfig.h>
#include "framework/ToolTipCtrl.h"
#include <karvelui/UIManager.h>
#include <karvelui/MessageBox.h>
#include <karvelui/Input.h>
#include "platform/window/Regions.h"
#include <karvelui/Screen.h>
#include <karvelui/DXCore.h>
#include <karvelui/SkinManager.h>

namespace KarvelUI {

namespace {

constexpr UINT kTooltipDelayMs = 600;

}  // namespace

void CUIForm::AnimationReleaser::operator()(AnimationController* controller) const {
  if (controller) controller->Release();
}

// --- life cycle ------------------------------------------------------------------------

CUIForm::CUIForm()
    : m_pDXCore(std::make_unique<DXCore>()),
      m_pAnimationController(new AnimationController(this)),
      m_pToolTip(std::make_unique<CToolTipCtrl>()) {
  AnimationController::SetFormResolver(
      [](CUIForm* form) -> AnimationController* { return form->GetAnimationController(); });
  SetTypeName(L"CUIForm");
  SetOwnerForm(this);
  SetParentContainer(this);
  CUIManager::GetInstance()->RegisterForm(this);
}

CUIForm::~CUIForm() {
  m_mapTimerHandlers.clear();
  ReleaseActiveMenu(FALSE);
  if (!m_strClassName.IsEmpty()) UnregisterClassW(m_strClassName);
  m_bClosing = TRUE;
  ClearOwnerForm();
  if (CUIManager* manager = CUIManager::m_pInstance) {
    manager->UnRegisterForm(this);
    manager->UnRegisterOnceForm(this);
  }
  RemoveAllControlFromMap();
  // The device goes while its window still exists, so its GL objects are
  // freed in a live context.
  m_pDXCore.reset();
  m_pToolTip.reset();
  DestroyWindow();
}

BOOL CUIForm::Create(DWORD style, const wchar_t* className, const wchar_t* windowName, CWnd* parent, UINT id,
                     CRect rect) {
  return Create(0, style, className, windowName, parent, id, rect);
}

BOOL CUIForm::Create(DWORD exStyle, DWORD style, const wchar_t* className, const wchar_t* windowName,
                     CWnd* parent, UINT id, CRect rect) {
  WNDCLASSW cls;
  cls.style = CS_VREDRAW | CS_HREDRAW | CS_DBLCLKS;
  cls.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  cls.lpszClassName = className;
  AfxRegisterClass(&cls);
  // Forms draw their own frame and caption.
  style &= ~(WS_CHILD | WS_CAPTION);
  m_pParentWnd = parent;
  m_strClassName = className;
  return CWnd::CreateEx(exStyle, className, windowName, style, rect, parent, id);
}

int CUIForm::OnCreate(LPCREATESTRUCT createStruct) {
  if (CWnd::OnCreate(createStruct) == -1) return -1;
  SetSelfHwnd(m_hWnd);
  m_ptOffset = GetOffsetPtAux();
  CString path;
  path.Format(L"%s %s", L"BuildRoot", GetObjectID());
  void* node = CUISkinManager::GetInstance()->GetBuildNode(path);
  if (!node || !BuildFromXML(node)) return -1;
  OnSkinChanged();
  m_pDXCore->SetWindow(m_hWnd);
  const HRESULT result = m_hWnd ? m_pDXCore->_InitD3D() : E_FAIL;
  if (FAILED(result)) {
    ShowD3DInitFailure(result);
    return -1;
  }
  CreateToolTip();
  AddAllSubTooltip();
  m_pAnimationController->SetWnd(m_hWnd);
  return 0;
}

void CUIForm::ShowD3DInitFailure(HRESULT result) {
  CommonString* strings = CommonString::GetInstance();
  MessageBoxW(nullptr, strings->GetStringViaID(L"STRID_ERROR_D3DINITFAIL"),
              strings->GetStringViaID(L"STRID_ERROR_D3DINITFAIL_TITLE"), MB_OK);
  g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"<ERROR> init d3d error:%d\n", result);
}

BOOL CUIForm::OnEraseBkgnd() { return TRUE; }  // the whole tree is drawn on every paint

// --- skin ------------------------------------------------------------------------------------

_FormConfig* CUIForm::GetFormConfig() { return dynamic_cast<_FormConfig*>(GetSkinConfig(CString())); }

void CUIForm::OnSkinChanged() {
  ReadAssSkinData(CString());
  OnSetSkinData();
  for (INT_PTR i = 0; i < GetChildCount(); ++i)
    if (CUIControl* child = GetChild(i)) child->DispathSkinChangeMsg();
  CalculateBounds();
  SetFormRgn();
  Refresh();
}

void CUIForm::OnSetSkinData() {
  _FormConfig* config = GetFormConfig();
  if (!config) return;
  SetMargin(config->m_rcBorderMargin);
  // A theme change keeps the window where the user put it.
  if (!CUISkinManager::GetInstance()->IsThemeChanging()) SetFormPosition(config->m_rcPosition);
  if (config->m_bResize == 0) ModifyStyle(WS_MAXIMIZEBOX, 0);
}

void CUIForm::SetFormPosition(CRect& r) {
  const CPoint offset = m_ptOffset;
  const int x = std::max(0, static_cast<int>(r.left - offset.x));
  const int y = std::max(0, static_cast<int>(r.top - offset.y));
  MoveWindow(x, y, r.Width() + 2 * offset.x, r.Height() + 2 * offset.y, TRUE);
}

CPoint CUIForm::GetOffsetPtAux() {
  CRect frame(0, 0, 400, 300);
  AdjustWindowRectEx(&frame, GetStyle(), FALSE, GetExStyle());
  return CPoint(-frame.left, -frame.top);
}

void CUIForm::CalculateBounds() {
  if (m_hWnd == reinterpret_cast<HWND>(~static_cast<UINT_PTR>(0))) return;
  CRect client;
  KarvelUI::GetClientRect(m_hWnd, &client);
  // Compared with the anchor rectangle, not with the current bounds.
  const CRect anchor = GetAnchor();
  if (client.Width() == anchor.Width() && client.Height() == anchor.Height()) return;
  SetBounds(CRect(0, 0, client.Width(), client.Height()));
  RePositionSubControls();
}

// --- shape and translucency ---------------------------------------------------------------------

HRGN CUIForm::GetBoundRgn() {
  _FormConfig* config = GetFormConfig();
  if (!config) return nullptr;
  if (config->m_bFullWindow && IsZoomed())
    return CreateRectRgn(0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN));
  const CRect b = GetBounds();
  return CreateRoundRectRgn(b.left, b.top, b.right + 1, b.bottom + 1, config->m_ptRoundDiameters.x,
                            config->m_ptRoundDiameters.y);
}

void CUIForm::SetFormRgn() {
  HRGN region = GetBoundRgn();
  if (!region) return;
  region->Offset(m_ptOffset.x, m_ptOffset.y);
  const BOOL redraw = IsZoomed() ? FALSE : TRUE;
  SetWindowRgn(std::move(region), redraw);
}

void CUIForm::SetFormTransparent(int percent) {
  if (percent != 100)
    MakeWindowTransparent(m_hWnd, static_cast<wchar_t>(percent));
  else if (GetExStyle() & WS_EX_LAYERED)
    ModifyStyleEx(WS_EX_LAYERED, 0);
}

void CUIForm::SetGlobalOpacity(float opacity) {
  if (opacity >= 0.0f && opacity <= 1.0f) m_pDXCore->SetGlobalOpacity(opacity);
}

// --- painting --------------------------------------------------------------------------------------

void CUIForm::RenderSelf(DXCore* dx, CRect* clip) {
  _FormConfig* config = GetFormConfig();
  if (!config || !clip) return;
  config->m_imgBackground.Render(dx, *clip);
}

void CUIForm::OnPaint(UINT flag) {
  {
    CPaintDC scope(this);
    if (!CUISkinManager::GetInstance()->IsThemeChanging()) {
      CRect clip = GetBounds();
      // Held for the whole frame: the thumbnail loader locks and fills
      // tile textures from its own thread.
      UILock lock(m_pDXCore->GetResourceCache()->GetTextureLock());
      if (m_paintOverride) {
        m_paintOverride(m_pDXCore.get());
      } else if (SUCCEEDED(m_pDXCore->BeginPaint())) {
        Render(m_pDXCore.get(), &clip);
        if (m_pDXCore->EndPaint() == D3DERR_DEVICELOST) PostMessage(WM_PAINT, flag, 0);
      }
    }
  }
  if (flag == ANIMATION_TIMER_ID) m_pAnimationController->AfterRefresh();
}

// --- closing and the modal loop ------------------------------------------------------------------------

void CUIForm::OnClose() {
  m_bClosing = TRUE;
  if (m_bModal) {
    if (ContinueModal()) EndModalLoop(0);
    m_nModalResult = 0;
    m_bModal = FALSE;
    return;
  }
  Release();  // a modeless form ends with its window
}

void CUIForm::OnQueryCloseForm() {
  if (m_bClosing) return;
  m_bClosing = TRUE;
  if (!m_bModal)
    Release();
  else
    EndDialog(0);
}

HWND CUIForm::PreModal() {
  HWND owner = m_pParentWnd ? m_pParentWnd->GetSafeHwnd() : GetActiveWindow();
  if (owner && owner != GetDesktopWindow() && KarvelUI::IsWindowEnabled(owner))
    KarvelUI::EnableWindow(owner, FALSE);
  else
    owner = nullptr;  // nothing of ours to re-enable afterwards
  return owner;
}

void CUIForm::PostModal(HWND owner) {
  SetWindowPos(nullptr, 0, 0, 0, 0, SWP_HIDEWINDOW | SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE | SWP_NOZORDER);
  if (owner) {
    KarvelUI::EnableWindow(owner, TRUE);
    KarvelUI::SetActiveWindow(owner);
  }
  DestroyWindow();
}

int CUIForm::DoModal() {
  m_bModal = TRUE;
  const HWND owner = PreModal();
  CenterWindow();
  ShowWindow(SW_SHOW);
  SetFocused(TRUE);
  DWORD flags = MLF_SHOWONIDLE;
  if (GetStyle() & DS_NOIDLEMSG) flags |= MLF_NOIDLEMSG;
  RunModalLoop(flags);
  PostModal(owner);
  return m_nModalResult;
}

void CUIForm::EndDialog(int result) {
  if (ContinueModal()) EndModalLoop(result);
  m_nModalResult = result;
  m_bModal = FALSE;
}

void CUIForm::BringToTop() {
  SetForegroundWindow();
  if (IsIconic())
    ShowWindow(SW_RESTORE);
  else
    ShowWindow(SW_SHOW);
}

void CUIForm::SetIcon(UINT, BOOL) {
  // Icons come from the module's resources, and a shared library on this
  // platform carries none: there is never an icon to set.
}

// --- timers -------------------------------------------------------------------------------------------

BOOL CUIForm::RegisterTimerHandler(UINT id, int intervalMs, UITimerHandler handler) {
  if (m_mapTimerHandlers.count(id)) return FALSE;
  m_mapTimerHandlers[id] = handler;
  SetTimer(id, static_cast<UINT>(std::max(0, intervalMs)));
  return TRUE;
}

void CUIForm::UnRegisterTimerHandler(UINT id) {
  if (!m_mapTimerHandlers.erase(id)) return;
  KillTimer(id);
}

void CUIForm::OnTimer(UINT_PTR id) {
  if (id == ANIMATION_TIMER_ID) {
    m_pAnimationController->OnTimer(this);
    return;
  }
  const auto found = m_mapTimerHandlers.find(static_cast<UINT>(id));
  if (found == m_mapTimerHandlers.end()) return;
  const UITimerHandler handler = found->second;  // it may unregister itself
  handler(static_cast<unsigned int>(id));
}

// --- tooltips ------------------------------------------------------------------------------------------

void CUIForm::CreateToolTip() {
  m_bTooltipEnabled = TRUE;
  if (!m_pToolTip->GetSafeHwnd()) {
    m_pToolTip->Create(this, TTS_ALWAYSTIP);
    m_pToolTip->SetDelayTime(kTooltipDelayMs);
  }
  m_pToolTip->Activate(TRUE);
  m_bToolTipsEnabled = TRUE;
}

void CUIForm::ActiveTooltip(BOOL active) {
  if (!m_pToolTip->GetSafeHwnd()) return;
  m_pToolTip->Activate(active);
  m_bToolTipsEnabled = active;
}

void CUIForm::AddSubTooltip(CUIControl* control) {
  if (!control || !m_bTooltipEnabled || !m_pToolTip->GetSafeHwnd() || !IsShown()) return;
  if (!control->IsShownAndEnabled() || control->GetTooltipText().IsEmpty()) {
    RemoveSubTooltip(control);
    return;
  }
  AddOrUpdateTool(control);
}

UINT_PTR CUIForm::ToolIdOf(CWnd* owner, CUIControl* control) const {
  // A control that is a window is that window's whole-window tool, id 0.
  return owner == static_cast<const CWnd*>(this) ? reinterpret_cast<UINT_PTR>(control) : 0;
}

void CUIForm::AddOrUpdateTool(CUIControl* control) {
  const CString text = control->GetTooltipText();
  CWnd* window = control->GetSelfHwnd() ? CWnd::FromHandle(control->GetSelfHwnd()) : nullptr;
  CWnd* owner = window ? window : static_cast<CWnd*>(this);
  CRect rect = control->GetBounds();
  rect.OffsetRect(-GetAnchor().left, -GetAnchor().top);
  void* known = nullptr;
  if (!m_mapTooltipTools.Lookup(control, known)) {
    if (window)
      m_pToolTip->AddTool(window, text);
    else
      m_pToolTip->AddTool(this, text, &rect, ToolIdOf(owner, control));
    m_mapTooltipTools[control] = owner;
    return;
  }
  const UINT_PTR toolId = ToolIdOf(owner, control);
  CToolInfo info;
  if (!m_pToolTip->GetToolInfo(info, owner, toolId)) return;
  if (!window && info.rect != rect) m_pToolTip->SetToolRect(owner, toolId, rect);
  if (info.strText != text) m_pToolTip->UpdateTipText(text, owner, toolId);
}

void CUIForm::RemoveSubTooltip(CUIControl* control) {
  if (!m_bTooltipEnabled || !m_pToolTip || !m_pToolTip->GetSafeHwnd()) return;
  void* known = nullptr;
  if (!m_mapTooltipTools.Lookup(control, known)) return;
  auto* owner = static_cast<CWnd*>(known);
  m_pToolTip->DelTool(owner, ToolIdOf(owner, control));
  m_mapTooltipTools.RemoveKey(control);
}

BOOL CUIForm::PreTranslateMessage(MSG* msg) {
  if (m_bClosing) return TRUE;
  if (m_pToolTip->GetSafeHwnd()) m_pToolTip->RelayEvent(msg);
  if (msg->message == WM_DESTROY) {
    // The tooltip window goes before the form it hangs on.
    m_bToolTipsEnabled = FALSE;
    m_pToolTip->DestroyWindow();
  }
  return CWnd::PreTranslateMessage(msg);
}

void CUIForm::ForgetControl(CUIControl* control) {
  if (m_pCaptureControl == control) m_pCaptureControl = nullptr;
  if (m_pHoverControl == control) m_pHoverControl = nullptr;
  if (m_pKeyFocusControl == control) m_pKeyFocusControl = nullptr;
  std::erase(m_vecTabOrder, control);
}

}  // namespace KarvelUI
