// CWnd: creation, destruction, message routing, default handling and the
// modal loop. Geometry, visibility and painting live in WndGeometry.cpp.

#include <karvelui/Wnd.h>

#include <karvelui/DragDrop.h>
#include <karvelui/Input.h>
#include "platform/window/NativeWindow.h"
#include "platform/window/WindowRegistry.h"
#include "platform/window/WindowState.h"

namespace KarvelUI {
namespace {

// The message WindowProc is handling, for Default(). Per thread rather than
// per object, because a handler may destroy its own object.
thread_local const MSG* t_currentMsg = nullptr;

CPoint SignedPoint(LPARAM lParam) { return CPoint(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)); }

HCURSOR CursorForHitTest(UINT hit, HCURSOR classCursor) {
  switch (hit) {
    case HTCLIENT: return classCursor ? classCursor : LoadCursorW(nullptr, IDC_ARROW);
    case HTLEFT:
    case HTRIGHT: return LoadCursorW(nullptr, IDC_SIZEWE);
    case HTTOP:
    case HTBOTTOM: return LoadCursorW(nullptr, IDC_SIZENS);
    case HTTOPLEFT:
    case HTBOTTOMRIGHT: return LoadCursorW(nullptr, IDC_SIZENWSE);
    case HTTOPRIGHT:
    case HTBOTTOMLEFT: return LoadCursorW(nullptr, IDC_SIZENESW);
    default: return LoadCursorW(nullptr, IDC_ARROW);
  }
}

}  // namespace

namespace detail {

WindowState::WindowState() = default;
WindowState::~WindowState() = default;

CPoint WindowState::ScreenOrigin() const {
  CPoint origin = rect.TopLeft();
  if (IsChild())
    if (WindowState* p = StateOf(parent)) origin += p->ScreenOrigin();
  return origin;
}

CRect WindowState::ScreenRect() const { return CRect(ScreenOrigin(), rect.Size()); }

bool WindowState::HitsClient(const CPoint& client) const {
  if (!ClientRect().PtInRect(client)) return false;
  return !region || region->Contains(client);
}

WindowState* TopLevelOf(WindowState* state) {
  while (state && state->IsChild()) {
    WindowState* parent = StateOf(state->parent);
    if (!parent) break;
    state = parent;
  }
  return state;
}

bool IsSelfOrDescendant(HWND ancestor, HWND hwnd) {
  for (WindowState* s = StateOf(hwnd); s; s = s->IsChild() ? StateOf(s->parent) : nullptr)
    if (s->hwnd == ancestor) return true;
  return false;
}

WindowState* StateOf(HWND hwnd) {
  if (!hwnd) return nullptr;
  CWnd* wnd = WindowRegistry::Get().Find(hwnd);
  return wnd ? wnd->m_state.get() : nullptr;
}

LRESULT DeliverMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  CWnd* wnd = CWnd::FromHandle(hwnd);
  return wnd ? wnd->WindowProc(message, wParam, lParam) : 0;
}

bool WindowWantsPaint(HWND hwnd) {
  WindowState* s = StateOf(hwnd);
  return s && s->Visible() && !(s->style & WS_MINIMIZE) && !s->update.IsRectEmpty();
}

unsigned PaintScopeSerial(HWND hwnd) {
  WindowState* s = StateOf(hwnd);
  return s ? s->paintSerial : 0;
}

void ValidateWholeWindow(HWND hwnd) {
  if (CWnd* wnd = CWnd::FromHandle(hwnd)) wnd->ValidateRect(nullptr);
}

}  // namespace detail

using detail::StateOf;
using detail::WindowRegistry;
using detail::WindowState;

CWnd::CWnd() = default;

CWnd::~CWnd() {
  if (m_state) CWnd::DestroyWindow();
}

CWnd* CWnd::FromHandle(HWND hwnd) { return hwnd ? WindowRegistry::Get().Find(hwnd) : nullptr; }

// --- creation ------------------------------------------------------------------

BOOL CWnd::Create(const wchar_t* className, const wchar_t* windowName, DWORD style, const CRect& rect,
                  CWnd* parent, UINT id) {
  return CreateEx(0, className, windowName, style, rect, parent, id);
}

BOOL CWnd::CreateEx(DWORD exStyle, const wchar_t* className, const wchar_t* windowName, DWORD style,
                    const CRect& rect, CWnd* parent, UINT id, void* param) {
  detail::WindowClass cls;
  if (m_state || !className || !detail::EnsureVideo() || !WindowRegistry::Get().FindClass(className, cls))
    return FALSE;
  const bool child = (style & WS_CHILD) != 0;
  WindowState* parentState = parent ? StateOf(parent->m_hWnd) : nullptr;
  if (child && !parentState) return FALSE;

  auto state = std::make_unique<WindowState>();
  state->wnd = this;
  state->queue = detail::ThreadQueue::Current();
  state->className = cls.name;
  state->classStyle = cls.style;
  state->classCursor = cls.cursor;
  state->title = CString(windowName);
  // Visibility and the maximised/minimised bits are set by ShowWindow below.
  state->style = style & ~(WS_VISIBLE | WS_MAXIMIZE | WS_MINIMIZE);
  state->exStyle = exStyle;
  state->id = id;
  if (child)
    state->parent = parent->m_hWnd;
  else if (parentState)
    state->owner = detail::TopLevelOf(parentState)->hwnd;
  state->rect = rect;
  state->rect.NormalizeRect();
  state->restoreRect = state->rect;

  detail::NativeOptions options;
  options.title = state->title;
  options.screenRect = CRect(state->rect.TopLeft() + (child ? parentState->ScreenOrigin() : CPoint()), state->rect.Size());
  options.borderless = child || (style & WS_CAPTION) != WS_CAPTION;
  options.resizable = !child && (style & WS_THICKFRAME) != 0;
  options.skipTaskbar = child || (exStyle & WS_EX_TOOLWINDOW) != 0;
  options.topmost = (exStyle & WS_EX_TOPMOST) != 0;

  const HWND hwnd = WindowRegistry::Get().Add(this, state->queue);
  state->hwnd = hwnd;
  state->native = detail::NativeWindow::Create(options, hwnd);
  if (!state->native) {
    WindowRegistry::Get().Remove(hwnd);
    return FALSE;
  }
  m_hWnd = hwnd;
  m_state = std::move(state);

  CREATESTRUCTW cs;
  cs.lpCreateParams = param;
  cs.hwndParent = parent ? parent->m_hWnd : nullptr;
  cs.id = id;
  cs.x = rect.left;
  cs.y = rect.top;
  cs.cx = rect.Width();
  cs.cy = rect.Height();
  cs.style = style;
  cs.lpszName = windowName;
  cs.lpszClass = className;
  cs.dwExStyle = exStyle;
  if (SendMessage(WM_CREATE, 0, reinterpret_cast<LPARAM>(&cs)) == -1) {
    if (m_state) DestroyWindow();
    return FALSE;
  }
  if (!m_state) return FALSE;
  detail::ApplySizeLimits(hwnd);
  const CRect& r = m_state->rect;
  SendMessage(WM_MOVE, 0, MAKELPARAM(r.left, r.top));
  if (m_state) SendMessage(WM_SIZE, SIZE_RESTORED, MAKELPARAM(r.Width(), r.Height()));
  if (!m_state) return FALSE;
  if (style & WS_MAXIMIZE)
    ShowWindow(SW_SHOWMAXIMIZED);
  else if (style & WS_MINIMIZE)
    ShowWindow(SW_SHOWMINIMIZED);
  else if (style & WS_VISIBLE)
    ShowWindow(SW_SHOW);
  return m_state ? TRUE : FALSE;
}

// --- destruction ---------------------------------------------------------------------

BOOL CWnd::DestroyWindow() {
  if (!m_state || m_state->destroying) return FALSE;
  const HWND hwnd = m_hWnd;
  m_state->destroying = true;

  // Owned popups go before their owner, as on the desktop.
  for (HWND other : WindowRegistry::Get().ThreadWindows()) {
    WindowState* s = StateOf(other);
    if (s && s->owner == hwnd)
      if (CWnd* owned = FromHandle(other)) owned->DestroyWindow();
  }
  if (m_state->Visible()) {
    m_state->style &= ~WS_VISIBLE;
    m_state->native->Hide();
  }
  detail::ForgetWindow(hwnd, false);
  SendMessage(WM_DESTROY);
  for (HWND other : WindowRegistry::Get().ThreadWindows()) {
    WindowState* s = StateOf(other);
    if (s && s->IsChild() && s->parent == hwnd)
      if (CWnd* child = FromHandle(other)) child->DestroyWindow();
  }
  ReleaseWindowState();
  PostNcDestroy();
  return TRUE;
}

void CWnd::ReleaseWindowState() {
  const HWND hwnd = m_hWnd;
  detail::ForgetWindow(hwnd, true);
  m_state->queue->PurgeWindow(hwnd);
  WindowRegistry::Get().Remove(hwnd);
  m_state.reset();
  m_hWnd = nullptr;
  m_continueModal = false;
}

void CWnd::PostNcDestroy() {}

// --- messages ---------------------------------------------------------------------------

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  return SendMessageW(m_hWnd, message, wParam, lParam);
}

BOOL CWnd::PostMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  return m_hWnd ? PostMessageW(m_hWnd, message, wParam, lParam) : FALSE;
}

BOOL CWnd::PreTranslateMessage(MSG*) { return FALSE; }

LRESULT CWnd::Default() {
  const MSG* msg = t_currentMsg;
  return msg ? DefWindowProc(msg->message, msg->wParam, msg->lParam) : 0;
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  const MSG current{m_hWnd, message, wParam, lParam, 0, {}};
  const MSG* saved = t_currentMsg;
  t_currentMsg = &current;
  LRESULT result = 0;
  switch (message) {
    case WM_CREATE: result = OnCreate(reinterpret_cast<LPCREATESTRUCT>(lParam)); break;
    case WM_DESTROY: OnDestroy(); break;
    case WM_CLOSE: OnClose(); break;
    case WM_SIZE: OnSize(static_cast<UINT>(wParam), LOWORD(lParam), HIWORD(lParam)); break;
    case WM_MOVE: OnMove(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)); break;
    case WM_TIMER: OnTimer(wParam); break;
    case WM_PAINT: OnPaint(); break;
    case WM_ERASEBKGND: result = OnEraseBkgnd(); break;
    case WM_GETMINMAXINFO: OnGetMinMaxInfo(reinterpret_cast<MINMAXINFO*>(lParam)); break;
    case WM_NCHITTEST: result = OnNcHitTest(SignedPoint(lParam)); break;
    case WM_ACTIVATE:
      OnActivate(LOWORD(wParam), FromHandle(reinterpret_cast<HWND>(lParam)), HIWORD(wParam));
      break;
    case WM_SHOWWINDOW: OnShowWindow(static_cast<BOOL>(wParam), static_cast<UINT>(lParam)); break;
    case WM_SYSCOMMAND: OnSysCommand(static_cast<UINT>(wParam), lParam); break;
    case WM_SETFOCUS: OnSetFocus(FromHandle(reinterpret_cast<HWND>(wParam))); break;
    case WM_KILLFOCUS: OnKillFocus(FromHandle(reinterpret_cast<HWND>(wParam))); break;
    case WM_SETCURSOR:
      result = OnSetCursor(FromHandle(reinterpret_cast<HWND>(wParam)), LOWORD(lParam), HIWORD(lParam));
      break;
    case WM_CAPTURECHANGED: OnCaptureChanged(FromHandle(reinterpret_cast<HWND>(lParam))); break;
    case WM_MOUSEMOVE: OnMouseMove(static_cast<UINT>(wParam), SignedPoint(lParam)); break;
    case WM_LBUTTONDOWN: OnLButtonDown(static_cast<UINT>(wParam), SignedPoint(lParam)); break;
    case WM_LBUTTONUP: OnLButtonUp(static_cast<UINT>(wParam), SignedPoint(lParam)); break;
    case WM_LBUTTONDBLCLK: OnLButtonDblClk(static_cast<UINT>(wParam), SignedPoint(lParam)); break;
    case WM_RBUTTONDOWN: OnRButtonDown(static_cast<UINT>(wParam), SignedPoint(lParam)); break;
    case WM_RBUTTONUP: OnRButtonUp(static_cast<UINT>(wParam), SignedPoint(lParam)); break;
    case WM_MOUSEWHEEL:
      result = OnMouseWheel(GET_KEYSTATE_WPARAM(wParam), GET_WHEEL_DELTA_WPARAM(wParam), SignedPoint(lParam));
      break;
    case WM_MOUSEHOVER: OnMouseHover(static_cast<UINT>(wParam), SignedPoint(lParam)); break;
    case WM_MOUSELEAVE: OnMouseLeave(); break;
    case WM_KEYDOWN: OnKeyDown(static_cast<UINT>(wParam), LOWORD(lParam), HIWORD(lParam)); break;
    case WM_KEYUP: OnKeyUp(static_cast<UINT>(wParam), LOWORD(lParam), HIWORD(lParam)); break;
    case WM_CHAR: OnChar(static_cast<UINT>(wParam), LOWORD(lParam), HIWORD(lParam)); break;
    default: result = DefWindowProc(message, wParam, lParam); break;
  }
  t_currentMsg = saved;
  return result;
}

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  if (!m_state) return 0;
  switch (message) {
    case WM_CLOSE: DestroyWindow(); return 0;
    case WM_DROPFILES: DragFinish(reinterpret_cast<HDROP>(wParam)); return 0;
    case WM_PAINT: {
      PAINTSTRUCT ps;
      BeginPaint(&ps);
      EndPaint(&ps);
      return 0;
    }
    case WM_NCHITTEST: {
      CPoint p = SignedPoint(lParam);
      ScreenToClient(&p);
      return m_state->HitsClient(p) ? HTCLIENT : HTNOWHERE;
    }
    case WM_SYSCOMMAND:
      switch (wParam & 0xFFF0) {
        case SC_CLOSE: SendMessage(WM_CLOSE); break;
        case SC_MINIMIZE: ShowWindow(SW_MINIMIZE); break;
        case SC_MAXIMIZE: ShowWindow(SW_MAXIMIZE); break;
        case SC_RESTORE: ShowWindow(SW_RESTORE); break;
        default: break;
      }
      return 0;
    case WM_ACTIVATE:
      if (LOWORD(wParam) != WA_INACTIVE && !HIWORD(wParam) && !detail::IsSelfOrDescendant(m_hWnd, GetFocus()))
        KarvelUI::SetFocus(m_hWnd);
      return 0;
    case WM_SETCURSOR:
      // A child's parent may decide first, as on the desktop.
      if (m_state->IsChild() && SendMessageW(m_state->parent, WM_SETCURSOR, wParam, lParam)) return TRUE;
      SetCursor(CursorForHitTest(LOWORD(lParam), m_state->classCursor));
      return TRUE;
    case WM_MOUSEWHEEL:
    case WM_MOUSEHWHEEL:
      return m_state->IsChild() ? SendMessageW(m_state->parent, message, wParam, lParam) : 0;
    default: return 0;
  }
}

// --- default handlers -----------------------------------------------------------------

int CWnd::OnCreate(LPCREATESTRUCT) { return static_cast<int>(Default()); }
void CWnd::OnDestroy() { Default(); }
void CWnd::OnClose() { Default(); }
void CWnd::OnSize(UINT, int, int) { Default(); }
void CWnd::OnMove(int, int) { Default(); }
void CWnd::OnTimer(UINT_PTR) { Default(); }
void CWnd::OnPaint() { Default(); }
BOOL CWnd::OnEraseBkgnd() { return static_cast<BOOL>(Default()); }
void CWnd::OnGetMinMaxInfo(MINMAXINFO*) { Default(); }
LRESULT CWnd::OnNcHitTest(CPoint) { return Default(); }
void CWnd::OnActivate(UINT, CWnd*, BOOL) { Default(); }
void CWnd::OnShowWindow(BOOL, UINT) { Default(); }
void CWnd::OnSysCommand(UINT, LPARAM) { Default(); }
void CWnd::OnSetFocus(CWnd*) { Default(); }
void CWnd::OnKillFocus(CWnd*) { Default(); }
BOOL CWnd::OnSetCursor(CWnd*, UINT, UINT) { return static_cast<BOOL>(Default()); }
void CWnd::OnCaptureChanged(CWnd*) { Default(); }
void CWnd::OnMouseMove(UINT, CPoint) { Default(); }
void CWnd::OnLButtonDown(UINT, CPoint) { Default(); }
void CWnd::OnLButtonUp(UINT, CPoint) { Default(); }
void CWnd::OnLButtonDblClk(UINT, CPoint) { Default(); }
void CWnd::OnRButtonDown(UINT, CPoint) { Default(); }
void CWnd::OnRButtonUp(UINT, CPoint) { Default(); }
BOOL CWnd::OnMouseWheel(UINT, short, CPoint) { return static_cast<BOOL>(Default()); }
void CWnd::OnMouseHover(UINT, CPoint) { Default(); }
void CWnd::OnMouseLeave() { Default(); }
void CWnd::OnKeyDown(UINT, UINT, UINT) { Default(); }
void CWnd::OnKeyUp(UINT, UINT, UINT) { Default(); }
void CWnd::OnChar(UINT, UINT, UINT) { Default(); }

// --- modal loop -------------------------------------------------------------------------------

int CWnd::RunModalLoop(DWORD flags) {
  if (!m_state) return -1;
  m_continueModal = true;
  MSG msg;
  while (ContinueModal()) {
    if ((flags & MLF_SHOWONIDLE) && !IsWindowVisible() && !PeekMessageW(&msg, nullptr, 0, 0, PM_NOREMOVE)) {
      ShowWindow(SW_SHOWNORMAL);
      UpdateWindow();
    }
    if (!GetMessageW(&msg, nullptr, 0, 0)) {
      PostQuitMessage(static_cast<int>(msg.wParam));
      m_continueModal = false;
      return -1;
    }
    if (!WalkPreTranslateTree(&msg)) DispatchMessageW(&msg);
  }
  return m_modalResult;
}

BOOL CWnd::ContinueModal() { return m_continueModal && m_state ? TRUE : FALSE; }

void CWnd::EndModalLoop(int result) {
  m_modalResult = result;
  if (m_continueModal) {
    m_continueModal = false;
    // Wakes the loop so that it sees the flag.
    PostMessage(WM_NULL);
  }
}

// --- identity ------------------------------------------------------------------------------

UINT CWnd::GetDlgCtrlID() const { return m_state ? m_state->id : 0; }

CWnd* CWnd::GetParent() const {
  if (!m_state) return nullptr;
  return FromHandle(m_state->IsChild() ? m_state->parent : m_state->owner);
}

CWnd* CWnd::GetOwner() const { return m_state ? FromHandle(m_state->owner) : nullptr; }

CString CWnd::GetWindowText() const { return m_state ? m_state->title : CString(); }

void CWnd::SetWindowText(const wchar_t* text) {
  if (!m_state) return;
  m_state->title = CString(text);
  m_state->native->SetTitle(m_state->title);
}

CString CWnd::GetClassName() const { return m_state ? m_state->className : CString(); }

// --- window classes -----------------------------------------------------------------------------

BOOL RegisterClassW(const WNDCLASSW* cls) {
  if (!cls || !cls->lpszClassName) return FALSE;
  detail::WindowClass record{CString(cls->lpszClassName), cls->style, cls->hCursor};
  return WindowRegistry::Get().AddClass(record) ? TRUE : FALSE;
}

BOOL AfxRegisterClass(const WNDCLASSW* cls) {
  if (!cls || !cls->lpszClassName) return FALSE;
  detail::WindowClass existing;
  if (WindowRegistry::Get().FindClass(cls->lpszClassName, existing)) return TRUE;
  return RegisterClassW(cls);
}

BOOL UnregisterClassW(const wchar_t* className) {
  return className && WindowRegistry::Get().RemoveClass(className) ? TRUE : FALSE;
}

BOOL AdjustWindowRectEx(CRect* rect, DWORD, BOOL, DWORD) { return rect ? TRUE : FALSE; }

BOOL IsWindow(HWND hwnd) { return hwnd && WindowRegistry::Get().Contains(hwnd) ? TRUE : FALSE; }

BOOL DestroyWindow(HWND hwnd) {
  CWnd* wnd = CWnd::FromHandle(hwnd);
  return wnd ? wnd->DestroyWindow() : FALSE;
}

HWND GetParent(HWND hwnd) {
  CWnd* wnd = CWnd::FromHandle(hwnd);
  CWnd* parent = wnd ? wnd->GetParent() : nullptr;
  return parent ? parent->m_hWnd : nullptr;
}

}  // namespace KarvelUI
