// CWnd: position, size, visibility, the maximised/minimised states, styles,
// painting, region and translucency, and the handle-based forms of them.

#include <algorithm>

#include "platform/window/NativeWindow.h"
#include <karvelui/Input.h>
#include <karvelui/Screen.h>
#include "platform/window/WindowRegistry.h"
#include "platform/window/WindowState.h"
#include <karvelui/Wnd.h>

namespace KarvelUI {
namespace detail {
namespace {

LPARAM PackSize(const CRect& r) { return MAKELPARAM(r.Width(), r.Height()); }

WPARAM SizeType(const WindowState& s) {
  if (s.style & WS_MINIMIZE) return SIZE_MINIMIZED;
  return (s.style & WS_MAXIMIZE) ? SIZE_MAXIMIZED : SIZE_RESTORED;
}

std::vector<WindowState*> ChildrenOf(HWND hwnd) {
  std::vector<WindowState*> children;
  for (HWND other : WindowRegistry::Get().ThreadWindows()) {
    WindowState* s = StateOf(other);
    if (s && s->IsChild() && s->parent == hwnd) children.push_back(s);
  }
  return children;
}

bool ShownOnDesktop(const WindowState* s) {
  for (; s; s = s->IsChild() ? StateOf(s->parent) : nullptr)
    if (!s->Visible() || (s->style & WS_MINIMIZE)) return false;
  return true;
}

void SendSizeAndMove(HWND hwnd, const CRect& before) {
  WindowState* s = StateOf(hwnd);
  if (!s) return;
  const CRect after = s->rect;
  if (after.TopLeft() != before.TopLeft()) {
    SendMessageW(hwnd, WM_MOVE, 0, MAKELPARAM(after.left, after.top));
    if (!(s = StateOf(hwnd))) return;
  }
  if (after.Size() != before.Size()) {
    InvalidateRect(hwnd, nullptr, TRUE);
    SendMessageW(hwnd, WM_SIZE, SizeType(*s), PackSize(after));
  }
}

}  // namespace

void ApplyRect(HWND hwnd, const CRect& rect) {
  WindowState* s = StateOf(hwnd);
  if (!s) return;
  const CRect before = s->rect;
  s->rect = rect;
  s->native->SetBounds(s->ScreenRect());
  if (rect.Size() != before.Size()) s->native->SetShape(s->region.get(), rect.Size());
  SyncChildren(hwnd);
  SendSizeAndMove(hwnd, before);
}

void SyncChildren(HWND hwnd) {
  for (WindowState* child : ChildrenOf(hwnd)) {
    child->native->SetBounds(child->ScreenRect());
    if (ShownOnDesktop(child))
      child->native->Show(false);
    else
      child->native->Hide();
    SyncChildren(child->hwnd);
  }
}

void ShowNow(HWND hwnd, bool activate) {
  WindowState* s = StateOf(hwnd);
  if (!s) return;
  if (!s->Visible()) {
    SendMessageW(hwnd, WM_SHOWWINDOW, TRUE, 0);
    if (!(s = StateOf(hwnd))) return;
    s->style |= WS_VISIBLE;
    if (ShownOnDesktop(s)) s->native->Show(activate && !s->IsChild());
    SyncChildren(hwnd);
    BringToFront(hwnd);
    InvalidateRect(hwnd, nullptr, TRUE);
  }
  if (activate && !s->IsChild() && !(s->style & WS_DISABLED)) ActivateWindow(hwnd, WA_ACTIVE, true);
}

void HideNow(HWND hwnd) {
  WindowState* s = StateOf(hwnd);
  if (!s || !s->Visible()) return;
  SendMessageW(hwnd, WM_SHOWWINDOW, FALSE, 0);
  if (!(s = StateOf(hwnd))) return;
  s->style &= ~WS_VISIBLE;
  s->native->Hide();
  SyncChildren(hwnd);
  ForgetWindow(hwnd, false);
}

MINMAXINFO QueryMinMax(HWND hwnd) {
  MINMAXINFO info;
  MONITORINFO monitor;
  if (GetMonitorInfoW(MonitorFromWindow(hwnd, MONITOR_DEFAULTTONEAREST), &monitor)) {
    info.ptMaxSize = CPoint(monitor.rcWork.Width(), monitor.rcWork.Height());
    info.ptMaxPosition = monitor.rcWork.TopLeft() - monitor.rcMonitor.TopLeft();
  }
  // Zero tracking limits mean "no limit" to the desktop.
  SendMessageW(hwnd, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&info));
  return info;
}

void ApplySizeLimits(HWND hwnd) {
  WindowState* s = StateOf(hwnd);
  if (!s || s->IsChild() || !(s->style & WS_THICKFRAME)) return;
  const MINMAXINFO info = QueryMinMax(hwnd);
  if (!(s = StateOf(hwnd))) return;
  s->native->SetSizeLimits(CSize(info.ptMinTrackSize.x, info.ptMinTrackSize.y),
                           CSize(info.ptMaxTrackSize.x, info.ptMaxTrackSize.y));
}

void MinimizeNow(HWND hwnd) {
  WindowState* s = StateOf(hwnd);
  if (!s || (s->style & WS_MINIMIZE)) return;
  s->style |= WS_MINIMIZE;
  s->native->Minimize();
  SyncChildren(hwnd);
  SendMessageW(hwnd, WM_SIZE, SIZE_MINIMIZED, 0);
  ForgetWindow(hwnd, false);
}

void MaximizeNow(HWND hwnd) {
  WindowState* s = StateOf(hwnd);
  if (!s || s->IsChild()) return;
  if (s->style & WS_MINIMIZE) {
    s->style &= ~WS_MINIMIZE;
    s->native->Restore();
  }
  if (!(s->style & WS_MAXIMIZE)) s->restoreRect = s->rect;
  const MINMAXINFO info = QueryMinMax(hwnd);
  if (!(s = StateOf(hwnd))) return;
  MONITORINFO monitor;
  CPoint origin;
  if (GetMonitorInfoW(MonitorFromWindow(hwnd, MONITOR_DEFAULTTONEAREST), &monitor))
    origin = monitor.rcMonitor.TopLeft();
  s->style |= WS_MAXIMIZE;
  s->maximizedByDesktop = false;
  const CRect target(origin + info.ptMaxPosition, CSize(info.ptMaxSize.x, info.ptMaxSize.y));
  const CRect before = s->rect;
  ApplyRect(hwnd, target);
  // A window already at that place still learns that it is maximised now.
  if ((s = StateOf(hwnd)) && target.Size() == before.Size())
    SendMessageW(hwnd, WM_SIZE, SIZE_MAXIMIZED, PackSize(target));
}

void RestoreNow(HWND hwnd) {
  WindowState* s = StateOf(hwnd);
  if (!s) return;
  if (s->style & WS_MINIMIZE) {
    s->style &= ~WS_MINIMIZE;
    s->native->Restore();
    SyncChildren(hwnd);
    SendMessageW(hwnd, WM_SIZE, SizeType(*s), PackSize(s->rect));
    return;
  }
  if (!(s->style & WS_MAXIMIZE)) return;
  s->style &= ~WS_MAXIMIZE;
  if (s->maximizedByDesktop) {
    s->maximizedByDesktop = false;
    s->native->Restore();
  }
  const CRect before = s->rect;
  ApplyRect(hwnd, s->restoreRect);
  if ((s = StateOf(hwnd)) && s->rect.Size() == before.Size())
    SendMessageW(hwnd, WM_SIZE, SIZE_RESTORED, PackSize(s->rect));
}

void DesktopMoved(HWND hwnd, const CPoint& screenTopLeft) {
  WindowState* s = StateOf(hwnd);
  if (!s || s->IsChild() || s->rect.TopLeft() == screenTopLeft) return;
  const CRect before = s->rect;
  s->rect = CRect(screenTopLeft, before.Size());
  SyncChildren(hwnd);
  SendSizeAndMove(hwnd, before);
}

void DesktopResized(HWND hwnd, const CSize& size) {
  WindowState* s = StateOf(hwnd);
  // A zero-sized window is one pixel on the desktop; that is no change.
  if (!s || s->IsChild() || (std::max<LONG>(1, s->rect.Width()) == size.cx &&
                             std::max<LONG>(1, s->rect.Height()) == size.cy))
    return;
  const CRect before = s->rect;
  s->rect = CRect(before.TopLeft(), size);
  s->native->SetShape(s->region.get(), size);
  SyncChildren(hwnd);
  SendSizeAndMove(hwnd, before);
}

void DesktopMinimized(HWND hwnd) { MinimizeNow(hwnd); }

void DesktopMaximized(HWND hwnd) {
  WindowState* s = StateOf(hwnd);
  if (!s || (s->style & WS_MAXIMIZE)) return;
  s->restoreRect = s->rect;
  s->style = (s->style | WS_MAXIMIZE) & ~WS_MINIMIZE;
  s->maximizedByDesktop = true;
  SendMessageW(hwnd, WM_SIZE, SIZE_MAXIMIZED, PackSize(s->rect));
}

void DesktopRestored(HWND hwnd) {
  WindowState* s = StateOf(hwnd);
  if (!s) return;
  if (s->style & WS_MINIMIZE) {
    s->style &= ~WS_MINIMIZE;
    SyncChildren(hwnd);
    SendMessageW(hwnd, WM_SIZE, SizeType(*s), PackSize(s->rect));
  } else if ((s->style & WS_MAXIMIZE) && s->maximizedByDesktop) {
    s->style &= ~WS_MAXIMIZE;
    s->maximizedByDesktop = false;
    SendMessageW(hwnd, WM_SIZE, SIZE_RESTORED, PackSize(s->rect));
  }
}

}  // namespace detail

using detail::StateOf;
using detail::WindowState;

// --- styles -------------------------------------------------------------------------------

DWORD CWnd::GetStyle() const { return m_state ? m_state->style : 0; }
DWORD CWnd::GetExStyle() const { return m_state ? m_state->exStyle : 0; }

BOOL CWnd::ModifyStyle(DWORD remove, DWORD add, UINT swpFlags) {
  if (!m_state) return FALSE;
  const DWORD style = (m_state->style & ~remove) | add;
  if (style == m_state->style) return FALSE;
  SetWindowLongW(m_hWnd, GWL_STYLE, static_cast<LONG>(style));
  if (swpFlags) SetWindowPos(nullptr, 0, 0, 0, 0, swpFlags | SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  return TRUE;
}

BOOL CWnd::ModifyStyleEx(DWORD remove, DWORD add, UINT swpFlags) {
  if (!m_state) return FALSE;
  const DWORD exStyle = (m_state->exStyle & ~remove) | add;
  if (exStyle == m_state->exStyle) return FALSE;
  SetWindowLongW(m_hWnd, GWL_EXSTYLE, static_cast<LONG>(exStyle));
  if (swpFlags) SetWindowPos(nullptr, 0, 0, 0, 0, swpFlags | SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  return TRUE;
}

LONG GetWindowLongW(HWND hwnd, int index) {
  WindowState* s = StateOf(hwnd);
  if (!s) return 0;
  switch (index) {
    case GWL_STYLE: return static_cast<LONG>(s->style);
    case GWL_EXSTYLE: return static_cast<LONG>(s->exStyle);
    case GWL_ID: return static_cast<LONG>(s->id);
    default: return 0;
  }
}

LONG SetWindowLongW(HWND hwnd, int index, LONG value) {
  WindowState* s = StateOf(hwnd);
  if (!s) return 0;
  const DWORD bits = static_cast<DWORD>(value);
  if (index == GWL_ID) {
    const LONG old = static_cast<LONG>(s->id);
    s->id = bits;
    return old;
  }
  if (index == GWL_STYLE) {
    const DWORD old = s->style;
    s->style = bits;
    if (!s->IsChild()) {
      if ((old ^ bits) & WS_THICKFRAME) s->native->SetResizable((bits & WS_THICKFRAME) != 0);
      if ((old ^ bits) & WS_CAPTION) s->native->SetBordered((bits & WS_CAPTION) == WS_CAPTION);
    }
    return static_cast<LONG>(old);
  }
  if (index == GWL_EXSTYLE) {
    const DWORD old = s->exStyle;
    s->exStyle = bits;
    if ((old ^ bits) & WS_EX_TOPMOST) s->native->SetTopmost((bits & WS_EX_TOPMOST) != 0);
    if ((old & WS_EX_LAYERED) && !(bits & WS_EX_LAYERED)) {
      s->layeredAlpha = 255;
      s->layeredKey = 0;
      s->layeredFlags = 0;
      s->native->SetOpacity(1.0f);
    }
    return static_cast<LONG>(old);
  }
  return 0;
}

// --- visibility and placement -------------------------------------------------------------------

BOOL CWnd::ShowWindow(int showCommand) {
  if (!m_state) return FALSE;
  const HWND hwnd = m_hWnd;
  const BOOL wasVisible = m_state->Visible() ? TRUE : FALSE;
  switch (showCommand) {
    case SW_HIDE: detail::HideNow(hwnd); break;
    case SW_MINIMIZE:
    case SW_SHOWMINNOACTIVE:
      detail::ShowNow(hwnd, false);
      detail::MinimizeNow(hwnd);
      break;
    case SW_SHOWMINIMIZED:
      detail::ShowNow(hwnd, true);
      detail::MinimizeNow(hwnd);
      break;
    case SW_SHOWMAXIMIZED:
      detail::MaximizeNow(hwnd);
      detail::ShowNow(hwnd, true);
      break;
    case SW_RESTORE:
    case SW_SHOWNORMAL:
    case SW_SHOWDEFAULT:
      detail::RestoreNow(hwnd);
      detail::ShowNow(hwnd, true);
      break;
    case SW_SHOWNOACTIVATE:
    case SW_SHOWNA: detail::ShowNow(hwnd, false); break;
    default: detail::ShowNow(hwnd, true); break;
  }
  return wasVisible;
}

BOOL CWnd::SetWindowPos(HWND insertAfter, int x, int y, int cx, int cy, UINT flags) {
  if (!m_state) return FALSE;
  const HWND hwnd = m_hWnd;
  const bool activate = !(flags & SWP_NOACTIVATE);
  if (!(flags & SWP_NOZORDER)) {
    if (insertAfter == HWND_TOPMOST || insertAfter == HWND_NOTOPMOST) {
      const DWORD ex = insertAfter == HWND_TOPMOST ? (m_state->exStyle | WS_EX_TOPMOST)
                                                   : (m_state->exStyle & ~WS_EX_TOPMOST);
      SetWindowLongW(hwnd, GWL_EXSTYLE, static_cast<LONG>(ex));
    }
    if (insertAfter != HWND_BOTTOM && insertAfter != HWND_NOTOPMOST && m_state->Visible()) {
      detail::BringToFront(hwnd);
      if (activate) m_state->native->Raise();
    }
  }
  CRect target = m_state->rect;
  if (!(flags & SWP_NOMOVE)) target.MoveToXY(x, y);
  if (!(flags & SWP_NOSIZE)) {
    target.right = target.left + std::max(0, cx);
    target.bottom = target.top + std::max(0, cy);
  }
  if (target != m_state->rect) detail::ApplyRect(hwnd, target);
  WindowState* s = StateOf(hwnd);
  if (!s) return TRUE;
  if (flags & SWP_SHOWWINDOW)
    detail::ShowNow(hwnd, activate);
  else if (flags & SWP_HIDEWINDOW)
    detail::HideNow(hwnd);
  else if (activate && s->Visible() && !s->IsChild())
    detail::ActivateWindow(hwnd, WA_ACTIVE, true);
  return TRUE;
}

void CWnd::MoveWindow(int x, int y, int width, int height, BOOL repaint) {
  if (!SetWindowPos(nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE)) return;
  if (repaint) Invalidate();
}

void CWnd::MoveWindow(const CRect& rect, BOOL repaint) {
  MoveWindow(rect.left, rect.top, rect.Width(), rect.Height(), repaint);
}

void CWnd::CenterWindow(CWnd* alternateOwner) {
  if (!m_state || m_state->IsChild()) return;
  CRect area;
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
  MONITORINFO monitor;
  if (GetMonitorInfoW(MonitorFromWindow(m_hWnd, MONITOR_DEFAULTTONEAREST), &monitor)) area = monitor.rcWork;
  CRect centreOn = area;
  CWnd* owner = alternateOwner ? alternateOwner : GetOwner();
  if (owner && owner->IsWindowVisible() && !owner->IsIconic()) owner->GetWindowRect(&centreOn);
  const CSize size = m_state->rect.Size();
  int x = centreOn.CenterPoint().x - size.cx / 2;
  int y = centreOn.CenterPoint().y - size.cy / 2;
  // Keep the window on the work area when it fits there.
  x = std::max<int>(area.left, std::min<int>(x, area.right - size.cx));
  y = std::max<int>(area.top, std::min<int>(y, area.bottom - size.cy));
  SetWindowPos(nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void CWnd::GetWindowRect(CRect* rect) const {
  if (rect) *rect = m_state ? m_state->ScreenRect() : CRect();
}

void CWnd::GetClientRect(CRect* rect) const {
  if (rect) *rect = m_state ? m_state->ClientRect() : CRect();
}

void CWnd::ClientToScreen(CPoint* point) const {
  if (point && m_state) *point += m_state->ScreenOrigin();
}

void CWnd::ClientToScreen(CRect* rect) const {
  if (rect && m_state) rect->OffsetRect(m_state->ScreenOrigin());
}

void CWnd::ScreenToClient(CPoint* point) const {
  if (point && m_state) *point -= m_state->ScreenOrigin();
}

void CWnd::ScreenToClient(CRect* rect) const {
  if (!rect || !m_state) return;
  const CPoint origin = m_state->ScreenOrigin();
  rect->OffsetRect(-origin.x, -origin.y);
}

BOOL CWnd::IsWindowVisible() const { return m_state && m_state->Visible() ? TRUE : FALSE; }
BOOL CWnd::IsWindowEnabled() const { return m_state && !(m_state->style & WS_DISABLED) ? TRUE : FALSE; }
BOOL CWnd::IsIconic() const { return m_state && (m_state->style & WS_MINIMIZE) ? TRUE : FALSE; }
BOOL CWnd::IsZoomed() const { return m_state && (m_state->style & WS_MAXIMIZE) ? TRUE : FALSE; }

BOOL CWnd::EnableWindow(BOOL enable) {
  if (!m_state) return FALSE;
  const BOOL wasDisabled = (m_state->style & WS_DISABLED) ? TRUE : FALSE;
  if (wasDisabled == !enable) return wasDisabled;
  if (enable) {
    m_state->style &= ~WS_DISABLED;
  } else {
    m_state->style |= WS_DISABLED;
    // A disabled window keeps neither the capture nor the keyboard focus.
    if (GetCapture() == m_hWnd) ReleaseCapture();
    if (detail::IsSelfOrDescendant(m_hWnd, GetFocus())) KarvelUI::SetFocus(nullptr);
  }
  SendMessage(WM_ENABLE, enable ? TRUE : FALSE);
  return wasDisabled;
}

// --- painting ----------------------------------------------------------------------------

void CWnd::Invalidate(BOOL erase) { InvalidateRect(nullptr, erase); }

void CWnd::InvalidateRect(const CRect* rect, BOOL erase) {
  if (!m_state) return;
  CRect area = m_state->ClientRect();
  if (rect) area.IntersectRect(area, *rect);
  if (area.IsRectEmpty()) return;
  m_state->update.UnionRect(m_state->update, area);
  if (erase) m_state->erase = true;
  m_state->queue->AddPaint(m_hWnd);
}

void CWnd::ValidateRect(const CRect* rect) {
  if (!m_state) return;
  CRect covered;
  // The invalid area is kept as one rectangle; a part of it stays invalid
  // unless the validated rectangle covers it all.
  if (rect && covered.UnionRect(m_state->update, *rect) && covered != *rect) return;
  m_state->update.SetRectEmpty();
  m_state->erase = false;
  m_state->queue->RemovePaint(m_hWnd);
}

BOOL CWnd::GetUpdateRect(CRect* rect) const {
  const CRect update = m_state ? m_state->update : CRect();
  if (rect) *rect = update;
  return update.IsRectEmpty() ? FALSE : TRUE;
}

void CWnd::UpdateWindow() {
  if (!detail::WindowWantsPaint(m_hWnd)) return;
  const HWND hwnd = m_hWnd;
  const unsigned before = detail::PaintScopeSerial(hwnd);
  SendMessage(WM_PAINT);
  if (detail::PaintScopeSerial(hwnd) == before) detail::ValidateWholeWindow(hwnd);
}

void* CWnd::BeginPaint(PAINTSTRUCT* paint) {
  if (!m_state || !paint) return nullptr;
  paint->hdc = nullptr;
  paint->rcPaint = m_state->update;
  const bool erase = m_state->erase;
  ++m_state->paintSerial;
  ValidateRect(nullptr);
  // fErase tells the painter that the background still needs erasing.
  paint->fErase = erase && !SendMessage(WM_ERASEBKGND) ? TRUE : FALSE;
  return paint;
}

void CWnd::EndPaint(const PAINTSTRUCT*) {}

CPaintDC::CPaintDC(CWnd* wnd) : m_wnd(wnd) {
  if (m_wnd) m_wnd->BeginPaint(&m_ps);
}

CPaintDC::~CPaintDC() {
  if (m_wnd) m_wnd->EndPaint(&m_ps);
}

// --- timers -------------------------------------------------------------------------------

UINT_PTR CWnd::SetTimer(UINT_PTR id, UINT elapse, TIMERPROC proc) {
  return m_hWnd ? KarvelUI::SetTimer(m_hWnd, id, elapse, proc) : 0;
}

BOOL CWnd::KillTimer(UINT_PTR id) { return m_hWnd ? KarvelUI::KillTimer(m_hWnd, id) : FALSE; }

// --- region and translucency ---------------------------------------------------------------

int CWnd::SetWindowRgn(HRGN region, BOOL redraw) {
  if (!m_state) return 0;
  m_state->region = std::move(region);
  m_state->native->SetShape(m_state->region.get(), m_state->rect.Size());
  if (redraw) Invalidate();
  return 1;
}

int CWnd::GetWindowRgn(Region& out) const {
  if (!m_state || !m_state->region) return RGN_ERROR;
  out = *m_state->region;
  if (out.IsEmpty()) return NULLREGION;
  return out.Rects().size() == 1 ? SIMPLEREGION : COMPLEXREGION;
}

BOOL CWnd::SetLayeredWindowAttributes(COLORREF key, BYTE alpha, DWORD flags) {
  if (!m_state || !(m_state->exStyle & WS_EX_LAYERED)) return FALSE;
  m_state->layeredKey = key;
  m_state->layeredAlpha = alpha;
  m_state->layeredFlags = flags;
  // The desktop offers whole-window opacity only; a colour key is kept but not applied.
  m_state->native->SetOpacity((flags & LWA_ALPHA) ? alpha / 255.0f : 1.0f);
  return TRUE;
}

BOOL CWnd::GetLayeredWindowAttributes(COLORREF* key, BYTE* alpha, DWORD* flags) const {
  if (!m_state || !(m_state->exStyle & WS_EX_LAYERED)) return FALSE;
  if (key) *key = m_state->layeredKey;
  if (alpha) *alpha = m_state->layeredAlpha;
  if (flags) *flags = m_state->layeredFlags;
  return TRUE;
}

// --- the same by handle ---------------------------------------------------------------------

namespace {
template <typename F>
BOOL WithWindow(HWND hwnd, F&& f) {
  CWnd* wnd = CWnd::FromHandle(hwnd);
  if (!wnd) return FALSE;
  return f(*wnd);
}
}  // namespace

BOOL ShowWindow(HWND hwnd, int cmd) {
  return WithWindow(hwnd, [&](CWnd& w) { return w.ShowWindow(cmd); });
}
BOOL SetWindowPos(HWND hwnd, HWND after, int x, int y, int cx, int cy, UINT flags) {
  return WithWindow(hwnd, [&](CWnd& w) { return w.SetWindowPos(after, x, y, cx, cy, flags); });
}
BOOL GetWindowRect(HWND hwnd, CRect* rect) {
  return WithWindow(hwnd, [&](CWnd& w) { return w.GetWindowRect(rect), TRUE; });
}
BOOL GetClientRect(HWND hwnd, CRect* rect) {
  return WithWindow(hwnd, [&](CWnd& w) { return w.GetClientRect(rect), TRUE; });
}
BOOL ClientToScreen(HWND hwnd, CPoint* point) {
  return WithWindow(hwnd, [&](CWnd& w) { return w.ClientToScreen(point), TRUE; });
}
BOOL ScreenToClient(HWND hwnd, CPoint* point) {
  return WithWindow(hwnd, [&](CWnd& w) { return w.ScreenToClient(point), TRUE; });
}
BOOL InvalidateRect(HWND hwnd, const CRect* rect, BOOL erase) {
  return WithWindow(hwnd, [&](CWnd& w) { return w.InvalidateRect(rect, erase), TRUE; });
}
BOOL ValidateRect(HWND hwnd, const CRect* rect) {
  return WithWindow(hwnd, [&](CWnd& w) { return w.ValidateRect(rect), TRUE; });
}
BOOL UpdateWindow(HWND hwnd) {
  return WithWindow(hwnd, [&](CWnd& w) { return w.UpdateWindow(), TRUE; });
}
BOOL EnableWindow(HWND hwnd, BOOL enable) {
  return WithWindow(hwnd, [&](CWnd& w) { return w.EnableWindow(enable); });
}
BOOL IsWindowVisible(HWND hwnd) {
  return WithWindow(hwnd, [&](CWnd& w) { return w.IsWindowVisible(); });
}
BOOL IsWindowEnabled(HWND hwnd) {
  // The desktop stand-in counts as enabled, so owners can test it like any window.
  if (hwnd == GetDesktopWindow()) return TRUE;
  return WithWindow(hwnd, [&](CWnd& w) { return w.IsWindowEnabled(); });
}
BOOL IsIconic(HWND hwnd) {
  return WithWindow(hwnd, [&](CWnd& w) { return w.IsIconic(); });
}
BOOL IsZoomed(HWND hwnd) {
  return WithWindow(hwnd, [&](CWnd& w) { return w.IsZoomed(); });
}
int SetWindowRgn(HWND hwnd, HRGN region, BOOL redraw) {
  CWnd* wnd = CWnd::FromHandle(hwnd);
  return wnd ? wnd->SetWindowRgn(std::move(region), redraw) : 0;
}
BOOL SetLayeredWindowAttributes(HWND hwnd, COLORREF key, BYTE alpha, DWORD flags) {
  return WithWindow(hwnd, [&](CWnd& w) { return w.SetLayeredWindowAttributes(key, alpha, flags); });
}
BOOL GetLayeredWindowAttributes(HWND hwnd, COLORREF* key, BYTE* alpha, DWORD* flags) {
  return WithWindow(hwnd, [&](CWnd& w) { return w.GetLayeredWindowAttributes(key, alpha, flags); });
}

}  // namespace KarvelUI
