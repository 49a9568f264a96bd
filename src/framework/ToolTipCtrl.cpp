#include "framework/ToolTipCtrl.h"

#include <algorithm>
#include <climits>

#include <karvelui/Helpers.h>
#include <karvelui/Input.h>
#include <karvelui/Screen.h>
#include <karvelui/DXCore.h>

namespace KarvelUI {
namespace {

constexpr UINT_PTR kShowTimer = 1;
constexpr UINT_PTR kPopTimer = 2;

constexpr int kDefaultInitialMs = 500;  // the desktop's double-click time
constexpr int kAutoPopFactor = 10;
constexpr int kReshowDivisor = 5;

constexpr LONG kBorder = 1;
constexpr LONG kPadX = 4;
constexpr LONG kPadY = 2;
// Below the arrow's hot spot, clear of the cursor image.
constexpr CPoint kCursorOffset(0, 20);

constexpr DWORD kBackground = 0xFFFFFFE1;
constexpr DWORD kBorderColour = 0xFF404040;
constexpr DWORD kTextColour = 0xFF000000;
constexpr DWORD kTextFormat = DT_LEFT | DT_TOP | DT_NOPREFIX;

constexpr wchar_t kClassName[] = L"KarvelToolTip";

void RegisterTipClass() {
  WNDCLASSW cls;
  cls.lpszClassName = kClassName;
  AfxRegisterClass(&cls);
}

HWND HwndOf(const CWnd* wnd) { return wnd ? wnd->m_hWnd : nullptr; }

UINT_PTR IdOfWindow(HWND hwnd) { return reinterpret_cast<UINT_PTR>(hwnd); }

CPoint ClientPoint(LPARAM lParam) { return CPoint(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)); }

bool IsButtonPress(UINT message) {
  switch (message) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
    case WM_RBUTTONDOWN:
    case WM_RBUTTONDBLCLK:
    case WM_MBUTTONDOWN:
    case WM_MBUTTONDBLCLK: return true;
    default: return false;
  }
}

bool IsMouseInput(UINT message) {
  return (message >= WM_MOUSEFIRST && message <= WM_MOUSELAST) || message == WM_MOUSEHOVER;
}

int ClampedProduct(int ms, int factor) {
  return static_cast<int>(std::min<long long>(static_cast<long long>(ms) * factor, INT_MAX));
}

CRect WorkAreaAt(const CPoint& point) {
  MONITORINFO info;
  if (GetMonitorInfoW(MonitorFromPoint(point, MONITOR_DEFAULTTONEAREST), &info)) return info.rcWork;
  return CRect(INT_MIN / 2, INT_MIN / 2, INT_MAX / 2, INT_MAX / 2);  // no display: nothing to keep inside
}

// Below-right of the cursor; above it when there is no room below, and
// pushed left and down so that the work area holds it.
CRect PlaceTip(const CPoint& cursor, const CSize& size, const CRect& work) {
  CPoint at = cursor + kCursorOffset;
  if (at.y + size.cy > work.bottom) at.y = cursor.y - size.cy;
  at.x = std::max<LONG>(work.left, std::min<LONG>(at.x, work.right - size.cx));
  at.y = std::max<LONG>(work.top, at.y);
  return CRect(at, size);
}

}  // namespace

CToolTipCtrl::CToolTipCtrl() {
  SetDelayTime(TTDT_AUTOMATIC, -1);
  GetDefaultLOGFONT(m_font);
}

CToolTipCtrl::~CToolTipCtrl() { DestroyWindow(); }

BOOL CToolTipCtrl::Create(CWnd* owner, DWORD style) {
  if (m_hWnd) return FALSE;
  RegisterTipClass();
  m_style = style;
  constexpr DWORD kExStyle = WS_EX_TOPMOST | WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE;
  if (!CreateEx(kExStyle, kClassName, L"", WS_POPUP, CRect(0, 0, 16, 16), owner, 0)) return FALSE;
  m_owner = HwndOf(GetOwner());
  CreateRenderDevice();
  return TRUE;
}

void CToolTipCtrl::CreateRenderDevice() {
  auto core = std::make_unique<DXCore>();
  core->SetWindow(m_hWnd);
  if (SUCCEEDED(core->Init())) m_core = std::move(core);
}

// --- delays ------------------------------------------------------------------------

void CToolTipCtrl::SetDelayTime(UINT ms) {
  SetDelayTime(TTDT_AUTOMATIC, static_cast<int>(std::min<UINT>(ms, INT_MAX)));
}

void CToolTipCtrl::SetDelayTime(DWORD which, int ms) {
  switch (which) {
    case TTDT_AUTOMATIC: {
      const int initial = ms < 0 ? kDefaultInitialMs : ms;
      m_initialMs = initial;
      m_autoPopMs = ClampedProduct(initial, kAutoPopFactor);
      m_reshowMs = initial / kReshowDivisor;
      break;
    }
    case TTDT_INITIAL: m_initialMs = ms < 0 ? kDefaultInitialMs : ms; break;
    case TTDT_AUTOPOP: m_autoPopMs = ms < 0 ? kDefaultInitialMs * kAutoPopFactor : ms; break;
    case TTDT_RESHOW: m_reshowMs = ms < 0 ? kDefaultInitialMs / kReshowDivisor : ms; break;
    default: break;
  }
}

int CToolTipCtrl::GetDelayTime(DWORD which) const {
  switch (which) {
    case TTDT_AUTOMATIC:
    case TTDT_INITIAL: return m_initialMs;
    case TTDT_AUTOPOP: return m_autoPopMs;
    case TTDT_RESHOW: return m_reshowMs;
    default: return 0;
  }
}

void CToolTipCtrl::Activate(BOOL active) {
  m_active = active != FALSE;
  if (m_active) return;
  ForgetTool();
  m_suppressed.reset();
}

// --- tools ---------------------------------------------------------------------------

int CToolTipCtrl::IndexOf(HWND hwnd, UINT_PTR toolId) const {
  if (!hwnd) return -1;
  for (size_t i = 0; i < m_tools.size(); ++i)
    if (m_tools[i].hwnd == hwnd && m_tools[i].uId == toolId) return static_cast<int>(i);
  if (toolId != 0) return -1;
  for (size_t i = 0; i < m_tools.size(); ++i)
    if (m_tools[i].hwnd == hwnd && (m_tools[i].uFlags & TTF_IDISHWND)) return static_cast<int>(i);
  return -1;
}

BOOL CToolTipCtrl::StoreTool(const CToolInfo& tool) {
  if (!tool.hwnd) return FALSE;
  const int index = IndexOf(tool.hwnd, tool.uId);
  if (index < 0) {
    m_tools.push_back(tool);
    return TRUE;
  }
  m_tools[static_cast<size_t>(index)].rect = tool.rect;
  SetToolText(static_cast<size_t>(index), tool.strText);
  return TRUE;
}

BOOL CToolTipCtrl::AddTool(CWnd* wnd, const CString& text, const CRect* toolRect, UINT_PTR toolId) {
  CToolInfo tool;
  tool.hwnd = HwndOf(wnd);
  tool.uId = toolId;
  if (toolRect) {
    tool.rect = *toolRect;
    tool.rect.NormalizeRect();
  }
  tool.strText = text;
  return StoreTool(tool);
}

BOOL CToolTipCtrl::AddTool(CWnd* wnd, const CString& text) {
  CToolInfo tool;
  tool.uFlags = TTF_IDISHWND;
  tool.hwnd = HwndOf(wnd);
  tool.uId = IdOfWindow(tool.hwnd);
  tool.strText = text;
  return StoreTool(tool);
}

void CToolTipCtrl::DelTool(CWnd* wnd, UINT_PTR toolId) {
  const int index = IndexOf(HwndOf(wnd), toolId);
  if (index < 0) return;
  const ToolKey key = KeyOf(m_tools[static_cast<size_t>(index)]);
  if (m_current == key) ForgetTool();
  if (m_suppressed == key) m_suppressed.reset();
  m_tools.erase(m_tools.begin() + index);
}

BOOL CToolTipCtrl::GetToolInfo(CToolInfo& out, CWnd* wnd, UINT_PTR toolId) const {
  const int index = IndexOf(HwndOf(wnd), toolId);
  if (index < 0) return FALSE;
  out = m_tools[static_cast<size_t>(index)];
  return TRUE;
}

void CToolTipCtrl::SetToolRect(CWnd* wnd, UINT_PTR toolId, const CRect& rect) {
  const int index = IndexOf(HwndOf(wnd), toolId);
  if (index < 0 || (m_tools[static_cast<size_t>(index)].uFlags & TTF_IDISHWND)) return;
  m_tools[static_cast<size_t>(index)].rect = rect;
  m_tools[static_cast<size_t>(index)].rect.NormalizeRect();
}

void CToolTipCtrl::UpdateTipText(const CString& text, CWnd* wnd, UINT_PTR toolId) {
  const int index = IndexOf(HwndOf(wnd), toolId);
  if (index >= 0) SetToolText(static_cast<size_t>(index), text);
}

void CToolTipCtrl::SetToolText(size_t index, const CString& text) {
  CToolInfo& tool = m_tools[index];
  tool.strText = text;
  if (!IsTipShown() || m_current != KeyOf(tool)) return;
  if (text.IsEmpty())
    HideTip();
  else
    LayOutTip(text);
}

const CToolInfo* CToolTipCtrl::ToolAt(HWND hwnd, const CPoint& point) const {
  if (!hwnd) return nullptr;
  for (const CToolInfo& tool : m_tools)
    if (tool.hwnd == hwnd && !(tool.uFlags & TTF_IDISHWND) && tool.rect.PtInRect(point)) return &tool;
  // A captured cursor reports points outside the window too.
  CRect client;
  if (!::KarvelUI::GetClientRect(hwnd, &client) || !client.PtInRect(point)) return nullptr;
  for (const CToolInfo& tool : m_tools)
    if (tool.hwnd == hwnd && (tool.uFlags & TTF_IDISHWND)) return &tool;
  return nullptr;
}

const CToolInfo* CToolTipCtrl::CurrentTool() const {
  if (!m_current) return nullptr;
  const int index = IndexOf(m_current->hwnd, m_current->id);
  return index < 0 ? nullptr : &m_tools[static_cast<size_t>(index)];
}

// --- following the cursor -------------------------------------------------------------------

void CToolTipCtrl::RelayEvent(const MSG* msg) {
  // Input on the popup itself is handled by its own window procedure.
  if (!msg || !m_hWnd || !msg->hwnd || msg->hwnd == m_hWnd) return;
  if (msg->message == WM_MOUSEMOVE)
    OnRelayedMove(msg->hwnd, ClientPoint(msg->lParam));
  else if (IsButtonPress(msg->message))
    OnRelayedPress(msg->hwnd, ClientPoint(msg->lParam));
  else if (msg->message == WM_MOUSELEAVE)
    OnRelayedLeave(msg->hwnd);
}

void CToolTipCtrl::OnRelayedMove(HWND hwnd, const CPoint& point) {
  m_cursor = point;
  ::KarvelUI::ClientToScreen(hwnd, &m_cursor);
  const CToolInfo* tool = (m_active && OwnerAllowsTips()) ? ToolAt(hwnd, point) : nullptr;
  if (!tool) {
    ForgetTool();
    m_suppressed.reset();
    return;
  }
  const ToolKey key = KeyOf(*tool);
  if (m_current == key || m_suppressed == key) return;
  m_suppressed.reset();
  EnterTool(key);
}

void CToolTipCtrl::OnRelayedPress(HWND hwnd, const CPoint& point) {
  ForgetTool();
  const CToolInfo* tool = ToolAt(hwnd, point);
  m_suppressed = tool ? std::optional<ToolKey>(KeyOf(*tool)) : std::nullopt;
}

void CToolTipCtrl::OnRelayedLeave(HWND hwnd) {
  if (m_current && m_current->hwnd == hwnd) ForgetTool();
  if (m_suppressed && m_suppressed->hwnd == hwnd) m_suppressed.reset();
}

void CToolTipCtrl::EnterTool(const ToolKey& key) {
  const bool browsing = IsTipShown() || RecentlyHidden();
  ForgetTool();
  m_current = key;
  const int delay = browsing ? m_reshowMs : m_initialMs;
  if (delay <= 0)
    ShowTip();
  else
    SetTimer(kShowTimer, static_cast<UINT>(delay));
}

void CToolTipCtrl::ForgetTool() {
  StopTimers();
  HideTip();
  m_current.reset();
}

// --- showing -------------------------------------------------------------------------------

bool CToolTipCtrl::OwnerAllowsTips() const {
  return (m_style & TTS_ALWAYSTIP) || !m_owner || GetActiveWindow() == m_owner;
}

bool CToolTipCtrl::CanShow(const CToolInfo& tool) const {
  return m_core && m_active && !tool.strText.IsEmpty() && IsWindow(tool.hwnd) && OwnerAllowsTips();
}

bool CToolTipCtrl::RecentlyHidden() const {
  return m_lastHideMs && MessageClockNow() - *m_lastHideMs < static_cast<std::uint64_t>(std::max(0, m_reshowMs));
}

void CToolTipCtrl::ShowTip() {
  const CToolInfo* tool = CurrentTool();
  if (!m_hWnd || !tool || !CanShow(*tool)) return;
  LayOutTip(tool->strText);
  if (m_autoPopMs > 0) SetTimer(kPopTimer, static_cast<UINT>(m_autoPopMs));
}

void CToolTipCtrl::LayOutTip(const CString& text) {
  m_shownText = text;
  const CSize extent = TextExtent(text);
  const CSize size(extent.cx + 2 * (kBorder + kPadX), extent.cy + 2 * (kBorder + kPadY));
  const CRect place = PlaceTip(m_cursor, size, WorkAreaAt(m_cursor));
  SetWindowPos(HWND_TOPMOST, place.left, place.top, place.Width(), place.Height(), SWP_NOACTIVATE | SWP_SHOWWINDOW);
  Invalidate(FALSE);
}

void CToolTipCtrl::HideTip() {
  if (m_hWnd) KillTimer(kPopTimer);
  if (!IsTipShown()) return;
  ShowWindow(SW_HIDE);
  m_lastHideMs = MessageClockNow();
}

void CToolTipCtrl::StopTimers() {
  if (!m_hWnd) return;
  KillTimer(kShowTimer);
  KillTimer(kPopTimer);
}

BOOL CToolTipCtrl::IsTipShown() const { return m_hWnd && IsWindowVisible() ? TRUE : FALSE; }

CString CToolTipCtrl::GetShownText() const { return IsTipShown() ? m_shownText : CString(); }

CSize CToolTipCtrl::TextExtent(const CString& text) {
  CRect extent(0, 0, 0, 0);
  if (FAILED(m_core->MeasureText(text, m_font, kTextFormat, &extent))) return CSize(0, 0);
  return extent.Size();
}

// --- window messages -------------------------------------------------------------------------

LRESULT CToolTipCtrl::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  // The popup only shows text: touching it puts it away, and the tip stays
  // away while the cursor remains in the same tool.
  if (IsMouseInput(message)) {
    HideTip();
    return 0;
  }
  return CWnd::WindowProc(message, wParam, lParam);
}

void CToolTipCtrl::OnDestroy() {
  StopTimers();
  m_current.reset();
  m_suppressed.reset();
  m_core.reset();  // the device draws into this window: it goes first
  CWnd::OnDestroy();
}

void CToolTipCtrl::OnSize(UINT type, int cx, int cy) {
  if (m_core && cx > 0 && cy > 0) m_core->ResetD3DSize({cx, cy});
  CWnd::OnSize(type, cx, cy);
}

void CToolTipCtrl::OnTimer(UINT_PTR id) {
  if (id == kShowTimer) {
    KillTimer(kShowTimer);
    ShowTip();
  } else if (id == kPopTimer) {
    HideTip();
  } else {
    CWnd::OnTimer(id);
  }
}

void CToolTipCtrl::OnPaint() {
  CPaintDC dc(this);
  if (!m_core || FAILED(m_core->BeginPaint())) return;
  PaintTip();
  if (m_core->EndPaint() == D3DERR_DEVICELOST) Invalidate(FALSE);
}

void CToolTipCtrl::PaintTip() {
  CRect inner;
  GetClientRect(&inner);
  m_core->CleanScreen(kBorderColour);
  inner.DeflateRect(kBorder, kBorder);
  m_core->FillRect(inner, kBackground);
  inner.DeflateRect(kPadX, kPadY);
  m_core->DrawTextW(m_shownText, inner, m_font, kTextFormat, kTextColour);
}

}  // namespace KarvelUI
