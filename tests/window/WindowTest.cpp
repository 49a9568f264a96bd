// Windows: creation and destruction, activation, placement, the desktop's
// drag and resize areas, shape and translucency, and screen metrics.

#include <tuple>

#include <karvelui/Screen.h>
#include "platform/window/EventTranslator.h"
#include "platform/window/Regions.h"
#include "support/WindowTesting.h"

using namespace KarvelUI;
using namespace KarvelTest;

TEST(WindowLifecycle, CreationSendsCreateMoveSizeDestructionDestroyAndRefusedCreationsMakeNoWindow) {
  class Creating : public RecordingWnd {
   public:
    CREATESTRUCTW seen;
    int OnCreate(LPCREATESTRUCT cs) override {
      seen = *cs;
      return CWnd::OnCreate(cs);
    }
  } wnd;
  RecordingWnd owner;
  ASSERT_TRUE(MakeWindow(owner, CRect(0, 0, 10, 10)));
  ASSERT_TRUE(wnd.CreateEx(WS_EX_TOOLWINDOW, TestClass(), L"title", WS_POPUP, CRect(5, 6, 105, 56), &owner, 77));
  EXPECT_EQ(wnd.Messages(), (std::vector<UINT>{WM_CREATE, WM_MOVE, WM_SIZE}));
  EXPECT_EQ(std::make_tuple(PointOf(wnd.log[1].lParam), wnd.log[2].wParam, PointOf(wnd.log[2].lParam)),
            std::make_tuple(CPoint(5, 6), WPARAM{SIZE_RESTORED}, CPoint(100, 50)));
  EXPECT_EQ(std::make_tuple(wnd.seen.dwExStyle, wnd.seen.hwndParent, wnd.GetDlgCtrlID()),
            std::make_tuple(DWORD{WS_EX_TOOLWINDOW}, owner.m_hWnd, 77u));
  EXPECT_EQ(wnd.GetWindowText() + L"/" + wnd.GetClassName(), CString(L"title/") + TestClass());

  const HWND hwnd = wnd.m_hWnd;
  wnd.log.clear();
  EXPECT_TRUE(wnd.DestroyWindow());
  EXPECT_EQ(wnd.Messages(), std::vector<UINT>{WM_DESTROY});
  EXPECT_FALSE(IsWindow(hwnd));
  EXPECT_FALSE(wnd.DestroyWindow());

  // Unknown classes and windows refusing their creation are not made.
  CWnd plain;
  EXPECT_FALSE(plain.CreateEx(0, L"NoSuchClass", L"", WS_POPUP, CRect(0, 0, 10, 10), nullptr, 0));
  class Refusing : public RecordingWnd {
    int OnCreate(LPCREATESTRUCT) override { return -1; }
  } refusing;
  EXPECT_FALSE(MakeWindow(refusing, CRect(0, 0, 10, 10)));
  EXPECT_EQ(refusing.m_hWnd, nullptr);
  EXPECT_EQ(refusing.Messages(), (std::vector<UINT>{WM_CREATE, WM_DESTROY}));
}

TEST(WindowLifecycle, OwnedWindowsGoFirstAndChildrenAfterTheirParent) {
  std::vector<std::pair<HWND, UINT>> order;
  class Noting : public CWnd {
   public:
    std::vector<std::pair<HWND, UINT>>* order = nullptr;
    void OnDestroy() override { order->emplace_back(m_hWnd, WM_DESTROY); }
  } owner, owned, child;
  owner.order = owned.order = child.order = &order;
  ASSERT_TRUE(MakeWindow(owner, CRect(0, 0, 100, 100)));
  ASSERT_TRUE(MakeWindow(owned, CRect(0, 0, 10, 10), WS_POPUP, 0, &owner));
  ASSERT_TRUE(MakeWindow(child, CRect(5, 5, 15, 15), WS_CHILD, 0, &owner));
  const HWND ownerHwnd = owner.m_hWnd, ownedHwnd = owned.m_hWnd, childHwnd = child.m_hWnd;
  owner.DestroyWindow();
  EXPECT_EQ(order, (std::vector<std::pair<HWND, UINT>>{
                       {ownedHwnd, WM_DESTROY}, {ownerHwnd, WM_DESTROY}, {childHwnd, WM_DESTROY}}));
}

TEST(WindowLifecycle, CloseDestroysByDefaultAndSystemCommandsReachTheWindow) {
  RecordingWnd wnd;
  wnd.only = {WM_SYSCOMMAND, WM_CLOSE, WM_DESTROY};
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 10, 10), WS_POPUP | WS_VISIBLE));
  PushWindowEvent(wnd.m_hWnd, SDL_WINDOWEVENT_CLOSE);
  PumpAll();
  EXPECT_EQ(wnd.Messages(), (std::vector<UINT>{WM_SYSCOMMAND, WM_CLOSE, WM_DESTROY}));
  EXPECT_EQ(std::make_tuple(wnd.log[0].wParam, wnd.m_hWnd), std::make_tuple(WPARAM{SC_CLOSE}, HWND{}));
}

TEST(WindowActivation, ShowingActivatesTheLoserLearnsWhoWonAndHidingGivesActivationBackToTheOwner) {
  RecordingWnd a, b, popup;
  a.only = b.only = popup.only = {WM_SHOWWINDOW, WM_ACTIVATE};
  ASSERT_TRUE(MakeWindow(a, CRect(0, 0, 10, 10)));
  ASSERT_TRUE(MakeWindow(b, CRect(20, 0, 30, 10)));
  EXPECT_FALSE(a.ShowWindow(SW_SHOW));
  EXPECT_TRUE(a.ShowWindow(SW_SHOW));  // the previous state: visible
  EXPECT_EQ(a.Messages(), (std::vector<UINT>{WM_SHOWWINDOW, WM_ACTIVATE}));
  EXPECT_EQ(std::make_tuple(LOWORD(a.log[1].wParam), GetFocus()), std::make_tuple(WORD{WA_ACTIVE}, a.m_hWnd));
  a.log.clear();
  b.ShowWindow(SW_SHOW);
  ASSERT_EQ(a.Of(WM_ACTIVATE).size(), 1u);
  EXPECT_EQ(std::make_tuple(LOWORD(a.Of(WM_ACTIVATE)[0].wParam), reinterpret_cast<HWND>(a.Of(WM_ACTIVATE)[0].lParam)),
            std::make_tuple(WORD{WA_INACTIVE}, b.m_hWnd));
  EXPECT_EQ(reinterpret_cast<HWND>(b.Of(WM_ACTIVATE).at(0).lParam), a.m_hWnd);

  // A tool window shown without activation leaves the active window alone;
  // hiding an active popup gives activation back to its owner.
  ASSERT_TRUE(MakeWindow(popup, CRect(10, 0, 20, 10), WS_POPUP, WS_EX_TOOLWINDOW, &b));
  popup.SetWindowPos(HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW | SWP_NOACTIVATE);
  EXPECT_TRUE(popup.IsWindowVisible() && (popup.GetExStyle() & WS_EX_TOPMOST) && popup.Of(WM_ACTIVATE).empty());
  EXPECT_EQ(GetActiveWindow(), b.m_hWnd);
  popup.SetActiveWindow();
  b.log.clear();
  popup.ShowWindow(SW_HIDE);
  EXPECT_EQ(GetActiveWindow(), b.m_hWnd);
  EXPECT_EQ(reinterpret_cast<HWND>(b.Of(WM_ACTIVATE).at(0).lParam), popup.m_hWnd);
}

TEST(WindowActivation, LosingDesktopFocusDeactivatesOnlyWhenNoWindowOfOursTakesIt) {
  ManualClock clock;
  RecordingWnd a, b;
  a.only = {WM_ACTIVATE};
  ASSERT_TRUE(MakeWindow(a, CRect(0, 0, 10, 10), WS_POPUP | WS_VISIBLE));
  ASSERT_TRUE(MakeWindow(b, CRect(20, 0, 30, 10), WS_POPUP | WS_VISIBLE | WS_DISABLED));
  a.SetActiveWindow();
  a.log.clear();

  // Focus moving between our windows: one change, to the other window.
  PushWindowEvent(a.m_hWnd, SDL_WINDOWEVENT_FOCUS_LOST);
  PumpAll();
  EXPECT_TRUE(a.log.empty());  // not yet: the focus may go to a window of ours
  PushWindowEvent(b.m_hWnd, SDL_WINDOWEVENT_FOCUS_GAINED);
  PumpAll();
  ASSERT_EQ(a.log.size(), 1u);
  EXPECT_EQ(reinterpret_cast<HWND>(a.log[0].lParam), b.m_hWnd);

  // Focus going to another program: the active window hears of it after a grace period.
  a.SetActiveWindow();
  a.log.clear();
  PushWindowEvent(a.m_hWnd, SDL_WINDOWEVENT_FOCUS_LOST);
  PumpAll();
  EXPECT_TRUE(a.log.empty());
  clock.Advance(detail::kDeactivationGraceMs);
  PumpAll();
  ASSERT_EQ(a.log.size(), 1u);
  EXPECT_EQ(std::make_tuple(LOWORD(a.log[0].wParam), a.log[0].lParam, GetActiveWindow()),
            std::make_tuple(WORD{WA_INACTIVE}, LPARAM{0}, HWND{}));
}

TEST(WindowPlacement, MoveSizeAndCoordinateConversions) {
  RecordingWnd wnd;
  wnd.only = {WM_MOVE, WM_SIZE};
  ASSERT_TRUE(MakeWindow(wnd, CRect(10, 20, 110, 70)));
  wnd.log.clear();
  wnd.MoveWindow(30, 40, 200, 100);
  EXPECT_EQ(wnd.Messages(), (std::vector<UINT>{WM_MOVE, WM_SIZE}));
  EXPECT_EQ(PointOf(wnd.log[1].lParam), CPoint(200, 100));
  EXPECT_EQ(WindowRectOf(wnd), CRect(30, 40, 230, 140));
  CRect client;
  wnd.GetClientRect(&client);
  EXPECT_EQ(client, CRect(0, 0, 200, 100));
  CPoint p(5, 6), screen;
  wnd.ClientToScreen(&p);
  screen = p;
  wnd.ScreenToClient(&p);
  EXPECT_EQ(std::make_tuple(screen, p), std::make_tuple(CPoint(35, 46), CPoint(5, 6)));

  wnd.log.clear();
  wnd.SetWindowPos(nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  EXPECT_TRUE(wnd.log.empty());
}

TEST(WindowPlacement, ChildWindowsFollowTheirParent) {
  RecordingWnd parent, child;
  ASSERT_TRUE(MakeWindow(parent, CRect(100, 100, 300, 300), WS_POPUP | WS_VISIBLE));
  ASSERT_TRUE(MakeWindow(child, CRect(10, 20, 30, 40), WS_CHILD | WS_VISIBLE, 0, &parent));
  EXPECT_EQ(child.GetParent(), &parent);
  EXPECT_EQ(WindowRectOf(child), CRect(110, 120, 130, 140));
  parent.MoveWindow(50, 60, 200, 200);
  EXPECT_EQ(WindowRectOf(child), CRect(60, 80, 80, 100));
  int x = 0, y = 0;
  SDL_GetWindowPosition(detail::SdlWindowOf(child.m_hWnd), &x, &y);
  EXPECT_EQ(CPoint(x, y), CPoint(60, 80));
  EXPECT_EQ(WindowFromPoint(CPoint(65, 85)), child.m_hWnd);
  EXPECT_EQ(WindowFromPoint(CPoint(55, 65)), parent.m_hWnd);
}

TEST(WindowPlacement, MaximiseUsesTheMinMaxInfoAndRestoreGoesBack) {
  class Sized : public RecordingWnd {
   public:
    void OnGetMinMaxInfo(MINMAXINFO* info) override {
      info->ptMaxPosition = CPoint(-3, -3);
      info->ptMaxSize = CPoint(500, 400);
      info->ptMinTrackSize = CPoint(120, 90);
      info->ptMaxTrackSize = CPoint(500, 400);
    }
  } wnd;
  wnd.only = {WM_SIZE};
  ASSERT_TRUE(MakeWindow(wnd, CRect(10, 10, 210, 160), WS_POPUP | WS_THICKFRAME | WS_VISIBLE));
  int minW = 0, minH = 0;
  SDL_GetWindowMinimumSize(detail::SdlWindowOf(wnd.m_hWnd), &minW, &minH);
  EXPECT_EQ(CSize(minW, minH), CSize(120, 90));

  wnd.log.clear();
  wnd.SendMessage(WM_SYSCOMMAND, SC_MAXIMIZE);
  EXPECT_TRUE(IsZoomed(wnd.m_hWnd));
  ASSERT_EQ(wnd.log.size(), 1u);
  EXPECT_EQ(std::make_tuple(wnd.log[0].wParam, PointOf(wnd.log[0].lParam)),
            std::make_tuple(WPARAM{SIZE_MAXIMIZED}, CPoint(500, 400)));
  MONITORINFO monitor;
  ASSERT_TRUE(GetMonitorInfoW(MonitorFromWindow(wnd.m_hWnd, MONITOR_DEFAULTTONEAREST), &monitor));
  EXPECT_EQ(WindowRectOf(wnd).TopLeft(), monitor.rcMonitor.TopLeft() + CPoint(-3, -3));
  wnd.log.clear();
  wnd.SendMessage(WM_SYSCOMMAND, SC_RESTORE);
  EXPECT_FALSE(wnd.IsZoomed());
  ASSERT_EQ(wnd.log.size(), 1u);
  EXPECT_EQ(wnd.log[0].wParam, SIZE_RESTORED);
  EXPECT_EQ(WindowRectOf(wnd), CRect(10, 10, 210, 160));
}

TEST(WindowPlacement, MinimisedStateFollowsTheDesktopAndRestoresToMaximised) {
  RecordingWnd wnd;
  wnd.only = {WM_SIZE};
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 100, 100), WS_POPUP | WS_VISIBLE));
  wnd.ShowWindow(SW_MAXIMIZE);
  wnd.log.clear();
  PushWindowEvent(wnd.m_hWnd, SDL_WINDOWEVENT_MINIMIZED);
  PumpAll();
  EXPECT_EQ(wnd.GetStyle() & (WS_MINIMIZE | WS_MAXIMIZE), DWORD{WS_MINIMIZE | WS_MAXIMIZE});
  PushWindowEvent(wnd.m_hWnd, SDL_WINDOWEVENT_RESTORED);
  PumpAll();
  EXPECT_FALSE(wnd.GetStyle() & WS_MINIMIZE);
  ASSERT_EQ(wnd.log.size(), 2u);
  EXPECT_EQ(std::make_tuple(wnd.log[0].wParam, wnd.log[1].wParam), std::make_tuple(WPARAM{SIZE_MINIMIZED}, WPARAM{SIZE_MAXIMIZED}));
}

TEST(WindowPlacement, DesktopResizesReachTheWindowOnce) {
  RecordingWnd wnd;
  wnd.only = {WM_SIZE, WM_MOVE};
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 100, 100), WS_POPUP | WS_THICKFRAME | WS_VISIBLE));
  wnd.log.clear();
  PushWindowEvent(wnd.m_hWnd, SDL_WINDOWEVENT_SIZE_CHANGED, 150, 120);
  PushWindowEvent(wnd.m_hWnd, SDL_WINDOWEVENT_SIZE_CHANGED, 150, 120);
  PushWindowEvent(wnd.m_hWnd, SDL_WINDOWEVENT_MOVED, 7, 8);
  PumpAll();
  EXPECT_EQ(wnd.Messages(), (std::vector<UINT>{WM_SIZE, WM_MOVE}));
  EXPECT_EQ(WindowRectOf(wnd), CRect(7, 8, 157, 128));
}

TEST(WindowHitTest, CaptionAndGripCodesBecomeDesktopDragAndResizeAreas) {
  class Framed : public CWnd {
    LRESULT OnNcHitTest(CPoint screen) override {
      CPoint p = screen;
      ScreenToClient(&p);
      if (p.y < 5) return p.x < 5 ? HTTOPLEFT : HTTOP;
      if (p.x >= 95) return HTRIGHT;
      if (p.y < 20) return HTCAPTION;
      return HTCLIENT;
    }
  } wnd;
  ASSERT_TRUE(MakeWindow(wnd, CRect(300, 200, 400, 300), WS_POPUP | WS_THICKFRAME | WS_VISIBLE));
  SDL_Window* window = detail::SdlWindowOf(wnd.m_hWnd);
  auto area = [&](int x, int y) {
    const SDL_Point p{x, y};
    return detail::HitTestCallback(window, &p, wnd.m_hWnd);
  };
  EXPECT_EQ((std::vector{area(50, 10), area(2, 2), area(50, 2), area(97, 50), area(50, 50)}),
            (std::vector{SDL_HITTEST_DRAGGABLE, SDL_HITTEST_RESIZE_TOPLEFT, SDL_HITTEST_RESIZE_TOP,
                         SDL_HITTEST_RESIZE_RIGHT, SDL_HITTEST_NORMAL}));
  wnd.ShowWindow(SW_MAXIMIZE);  // dragged still, never resized
  EXPECT_EQ(std::make_tuple(area(50, 10), area(2, 2)), std::make_tuple(SDL_HITTEST_DRAGGABLE, SDL_HITTEST_NORMAL));

  const std::pair<LRESULT, SDL_HitTestResult> grips[] = {
      {HTLEFT, SDL_HITTEST_RESIZE_LEFT},          {HTRIGHT, SDL_HITTEST_RESIZE_RIGHT},
      {HTTOP, SDL_HITTEST_RESIZE_TOP},            {HTTOPLEFT, SDL_HITTEST_RESIZE_TOPLEFT},
      {HTTOPRIGHT, SDL_HITTEST_RESIZE_TOPRIGHT},  {HTBOTTOM, SDL_HITTEST_RESIZE_BOTTOM},
      {HTBOTTOMLEFT, SDL_HITTEST_RESIZE_BOTTOMLEFT}, {HTBOTTOMRIGHT, SDL_HITTEST_RESIZE_BOTTOMRIGHT},
      {HTCLIENT, SDL_HITTEST_NORMAL},             {HTNOWHERE, SDL_HITTEST_NORMAL}};
  for (const auto& [code, result] : grips) EXPECT_EQ(detail::HitTestResultFor(code, false), result) << code;
}

TEST(WindowShape, RoundRectRegionsCutTheCornersAndLeaveOutTheLastRowAndColumn) {
  HRGN round = CreateRoundRectRgn(0, 0, 21, 21, 10, 10);
  EXPECT_EQ(round->GetBox(), CRect(0, 0, 20, 20));
  for (CPoint out : {CPoint(0, 0), CPoint(19, 19), CPoint(20, 10)}) EXPECT_FALSE(round->Contains(out)) << out.x;
  for (CPoint in : {CPoint(0, 10), CPoint(10, 0), CPoint(19, 10), CPoint(3, 3)}) EXPECT_TRUE(round->Contains(in)) << in.x;
  // Without usable diameters: the same reduced rectangle.
  EXPECT_EQ(CreateRoundRectRgn(0, 0, 21, 21, 0, 0)->Rects(), std::vector<CRect>{CRect(0, 0, 20, 20)});
}

TEST(WindowShape, PointsOutsideTheRegionAreNotPartOfTheWindow) {
  RecordingWnd wnd;
  wnd.only = {WM_LBUTTONDOWN};
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 100, 100), WS_POPUP | WS_VISIBLE));
  EXPECT_EQ(wnd.SetWindowRgn(CreateRoundRectRgn(0, 0, 101, 101, 40, 40), TRUE), 1);
  Region copy;
  EXPECT_EQ(wnd.GetWindowRgn(copy), COMPLEXREGION);
  EXPECT_EQ(wnd.SendMessage(WM_NCHITTEST, 0, MAKELPARAM(1, 1)), HTNOWHERE);
  EXPECT_EQ(wnd.SendMessage(WM_NCHITTEST, 0, MAKELPARAM(50, 50)), HTCLIENT);
  PushButton(wnd.m_hWnd, 1, 1, true);
  PushButton(wnd.m_hWnd, 50, 50, true);
  PumpAll();
  ASSERT_EQ(wnd.log.size(), 1u);
  EXPECT_EQ(PointOf(wnd.log[0].lParam), CPoint(50, 50));
  wnd.SetWindowRgn(nullptr, FALSE);
  EXPECT_EQ(wnd.GetWindowRgn(copy), RGN_ERROR);
}

TEST(WindowShape, LayeredAttributesNeedTheLayeredStyle) {
  RecordingWnd wnd;
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 10, 10)));
  EXPECT_FALSE(wnd.SetLayeredWindowAttributes(0, 128, LWA_ALPHA));
  wnd.ModifyStyleEx(0, WS_EX_LAYERED);
  EXPECT_TRUE(wnd.SetLayeredWindowAttributes(RGB(1, 2, 3), 128, LWA_ALPHA | LWA_COLORKEY));
  COLORREF key = 0;
  BYTE alpha = 0;
  DWORD flags = 0;
  ASSERT_TRUE(wnd.GetLayeredWindowAttributes(&key, &alpha, &flags));
  EXPECT_EQ(std::make_tuple(key, alpha, flags), std::make_tuple(RGB(1, 2, 3), BYTE{128}, DWORD{LWA_ALPHA | LWA_COLORKEY}));
  wnd.ModifyStyleEx(WS_EX_LAYERED, 0);
  EXPECT_FALSE(wnd.GetLayeredWindowAttributes(&key, &alpha, &flags));
  wnd.ModifyStyleEx(0, WS_EX_LAYERED);
  ASSERT_TRUE(wnd.GetLayeredWindowAttributes(&key, &alpha, &flags));
  EXPECT_EQ(alpha, 255);
}

TEST(ScreenMetrics, MatchTheDisplaysAndFindTheNearestMonitor) {
  SDL_Rect bounds, usable;
  ASSERT_TRUE(detail::EnsureVideo());
  ASSERT_EQ(SDL_GetDisplayBounds(0, &bounds), 0);
  ASSERT_EQ(SDL_GetDisplayUsableBounds(0, &usable), 0);
  EXPECT_EQ((std::vector{GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN),
                         GetSystemMetrics(SM_CXFULLSCREEN), GetSystemMetrics(SM_CYFULLSCREEN)}),
            (std::vector{bounds.w, bounds.h, usable.w, usable.h}));
  CRect work;
  ASSERT_TRUE(SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0));
  EXPECT_EQ(work, CRect(usable.x, usable.y, usable.x + usable.w, usable.y + usable.h));

  const CPoint farAway(bounds.x + bounds.w + 5000, bounds.y + 10);
  EXPECT_EQ(MonitorFromPoint(farAway, MONITOR_DEFAULTTONULL), nullptr);
  MONITORINFO info;
  ASSERT_TRUE(GetMonitorInfoW(MonitorFromPoint(farAway, MONITOR_DEFAULTTONEAREST), &info));
  EXPECT_TRUE(info.rcMonitor.PtInRect(CPoint(info.rcWork.left, info.rcWork.top)));
  EXPECT_FALSE(GetMonitorInfoW(nullptr, &info));

  int delay = -1, speed = -1;
  ASSERT_TRUE(SystemParametersInfoW(SPI_GETKEYBOARDDELAY, 0, &delay, 0));
  ASSERT_TRUE(SystemParametersInfoW(SPI_GETKEYBOARDSPEED, 0, &speed, 0));
  EXPECT_EQ(std::make_tuple(KeyboardRepeatDelayMs(), speed, KeyboardRepeatIntervalMs()),
            std::make_tuple(static_cast<UINT>(250 * (delay + 1)), 31, 33u));  // about 30 a second
}
