// The message queue: posting and sending across threads, peeking, quitting,
// paints made up from invalid regions, timers and modal loops.

#include <algorithm>
#include <thread>
#include <tuple>

#include "support/WindowTesting.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

constexpr UINT kPing = WM_APP + 1;

// Paints through a paint scope (unless openScope is false) and remembers what it covered.
class PaintingWnd : public RecordingWnd {
 public:
  std::vector<CRect> painted;
  std::vector<WPARAM> paintFlags;
  bool openScope = true;

  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message != WM_PAINT) return RecordingWnd::WindowProc(message, wParam, lParam);
    log.push_back({m_hWnd, message, wParam, lParam});
    paintFlags.push_back(wParam);
    if (openScope) painted.push_back(CPaintDC(this).m_ps.rcPaint);
    return 0;
  }
};

}  // namespace

TEST(MessageQueue, PostsFromAnotherThreadArriveInOrderAndSendsRunOnTheWindowThread) {
  class Doubler : public RecordingWnd {
   public:
    std::thread::id ranOn;
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
      if (message != kPing + 1) return RecordingWnd::WindowProc(message, wParam, lParam);
      ranOn = std::this_thread::get_id();
      return static_cast<LRESULT>(wParam * 2);
    }
  } wnd;
  wnd.only = {kPing};
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 50, 50)));
  constexpr int kCount = 2000;
  const HWND hwnd = wnd.m_hWnd;
  std::atomic<LRESULT> result{0};
  std::thread worker([hwnd, &result] {
    for (int i = 0; i < kCount; ++i) PostMessageW(hwnd, kPing, static_cast<WPARAM>(i), -i);
    result = SendMessageW(hwnd, kPing + 1, 21, 0);
  });
  MSG msg;
  while (result == 0 || wnd.log.size() < static_cast<size_t>(kCount)) {
    WaitMessage(20);
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&msg);
  }
  worker.join();
  EXPECT_EQ(std::make_tuple(result.load(), wnd.ranOn), std::make_tuple(LRESULT{42}, std::this_thread::get_id()));
  ASSERT_EQ(wnd.log.size(), static_cast<size_t>(kCount));
  for (int i = 0; i < kCount; ++i)
    ASSERT_EQ(std::make_tuple(wnd.log[i].wParam, wnd.log[i].lParam), std::make_tuple(static_cast<WPARAM>(i), LPARAM{-i}));
}

TEST(MessageQueue, PostingToAGoneWindowFailsItsQueuedMessagesGoAndPeekHonoursFilters) {
  RecordingWnd a, b;
  ASSERT_TRUE(MakeWindow(a, CRect(0, 0, 10, 10)));
  ASSERT_TRUE(MakeWindow(b, CRect(0, 0, 10, 10)));
  auto doomed = std::make_unique<RecordingWnd>();
  ASSERT_TRUE(MakeWindow(*doomed, CRect(0, 0, 10, 10)));
  const HWND gone = doomed->m_hWnd;
  EXPECT_TRUE(PostMessageW(gone, kPing, 9, 0));
  PostMessageW(a.m_hWnd, kPing, 1, 0);
  PostMessageW(b.m_hWnd, kPing + 1, 2, 0);
  doomed.reset();
  EXPECT_FALSE(PostMessageW(gone, kPing, 3, 0));
  MSG msg;
  ASSERT_TRUE(PeekMessageW(&msg, b.m_hWnd, 0, 0, PM_NOREMOVE));
  EXPECT_EQ(msg.wParam, 2u);
  ASSERT_TRUE(PeekMessageW(&msg, nullptr, kPing + 1, kPing + 1, PM_REMOVE));
  const HWND filtered = msg.hwnd;
  ASSERT_TRUE(PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(std::make_tuple(filtered, msg.wParam), std::make_tuple(b.m_hWnd, WPARAM{1}));
  EXPECT_FALSE(PeekMessageW(&msg, nullptr, kPing, kPing + 1, PM_REMOVE));
  PostMessageW(nullptr, kPing, 5, 0);  // a message for the thread itself
  ASSERT_TRUE(PeekMessageW(&msg, nullptr, kPing, kPing, PM_REMOVE));
  EXPECT_EQ(msg.hwnd, nullptr);
}

TEST(MessageQueue, QuitComesAfterPostedMessagesAndTheLoopOffersMessagesToPreTranslateFirst) {
  class Eater : public RecordingWnd {
   public:
    BOOL PreTranslateMessage(MSG* msg) override { return msg->message == kPing && msg->wParam == 1; }
  } wnd;
  wnd.only = {kPing};
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 10, 10)));
  PostQuitMessage(3);
  wnd.PostMessage(kPing, 1);
  wnd.PostMessage(kPing, 2);
  EXPECT_EQ(RunMessageLoop(), 3);
  ASSERT_EQ(wnd.log.size(), 1u);
  EXPECT_EQ(wnd.log[0].wParam, 2u);
}

TEST(Painting, InvalidationsMergeIntoOnePaintAfterPostedMessagesAndUpdateWindowPaintsAtOnce) {
  PaintingWnd wnd;
  wnd.only = {kPing};
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 100, 80)));
  wnd.Invalidate();
  PumpAll();
  EXPECT_TRUE(wnd.painted.empty());  // hidden windows paint when shown
  wnd.ShowWindow(SW_SHOWNA);
  PumpAll();
  ASSERT_EQ(wnd.painted, std::vector<CRect>{CRect(0, 0, 100, 80)});
  wnd.log.clear();
  wnd.painted.clear();
  const CRect first(10, 10, 20, 20), second(40, 5, 50, 30);
  wnd.InvalidateRect(&first, FALSE);
  wnd.InvalidateRect(&second, FALSE);
  wnd.PostMessage(kPing);
  PumpAll();
  EXPECT_EQ(wnd.Messages(), (std::vector<UINT>{kPing, WM_PAINT}));
  EXPECT_EQ(wnd.painted, std::vector<CRect>{CRect(10, 5, 50, 30)});
  wnd.InvalidateRect(&first, FALSE);
  wnd.UpdateWindow();
  EXPECT_EQ(wnd.painted.back(), first);
  EXPECT_EQ(PumpAll(), 0);
}

TEST(Painting, APostedPaintKeepsItsMarkerAndValidatesAndAHandlerWithoutAScopeIsNotAskedAgain) {
  PaintingWnd wnd;
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 40, 40), WS_POPUP | WS_VISIBLE));
  PumpAll();
  wnd.paintFlags.clear();
  wnd.Invalidate();
  wnd.PostMessage(WM_PAINT, 14401);
  PumpAll();
  EXPECT_EQ(wnd.paintFlags, std::vector<WPARAM>{14401});  // no second paint is made up
  wnd.openScope = false;
  wnd.Invalidate();
  PumpAll();
  EXPECT_EQ(wnd.paintFlags.size(), 2u);
}

TEST(Painting, BeginPaintErasesOnlyWhenAsked) {
  class Eraser : public CWnd {
   public:
    int erases = 0;
    BOOL fErase = FALSE;
    BOOL OnEraseBkgnd() override { return ++erases, FALSE; }
    void OnPaint() override { fErase = CPaintDC(this).m_ps.fErase; }
  } wnd;
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 40, 40), WS_POPUP | WS_VISIBLE));
  PumpAll();
  wnd.erases = 0;
  for (BOOL erase : {FALSE, TRUE}) {
    wnd.InvalidateRect(nullptr, erase);
    PumpAll();
  }
  EXPECT_EQ(std::make_tuple(wnd.erases, wnd.fErase), std::make_tuple(1, TRUE));  // the handler did not erase: the painter must
}

TEST(Timers, FireWithTheirIdsAtTheirIntervalsOnceWhenLateAndStopWhenKilled) {
  ManualClock clock;
  RecordingWnd wnd;
  wnd.only = {WM_TIMER};
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 10, 10)));
  EXPECT_EQ((std::vector{wnd.SetTimer(14401, 20), wnd.SetTimer(7, 50)}), (std::vector<UINT_PTR>{14401, 7}));
  std::vector<std::pair<int, WPARAM>> fired;
  for (int ms = 10; ms <= 100; ms += 10) {
    clock.Advance(10);
    wnd.log.clear();
    PumpAll();
    for (const Received& r : wnd.log) fired.emplace_back(ms, r.wParam);
  }
  EXPECT_EQ(fired, (std::vector<std::pair<int, WPARAM>>{
                       {20, 14401}, {40, 14401}, {50, 7}, {60, 14401}, {80, 14401}, {100, 14401}, {100, 7}}));
  EXPECT_TRUE(wnd.KillTimer(14401) && !wnd.KillTimer(14401));
  wnd.log.clear();
  clock.Advance(200);
  PumpAll();
  ASSERT_EQ(wnd.log.size(), 1u);  // late: once, not once per missed period
  EXPECT_EQ(wnd.log[0].wParam, 7u);
  wnd.SetTimer(7, 1);  // re-armed: its interval replaced, raised to the 10 ms minimum
  wnd.log.clear();
  clock.Advance(9);
  PumpAll();
  EXPECT_TRUE(wnd.log.empty());
  clock.Advance(1);
  PumpAll();
  EXPECT_EQ(wnd.log.size(), 1u);
}

namespace {
std::vector<std::pair<HWND, UINT_PTR>> g_procCalls;
void RecordTimerProc(HWND hwnd, UINT message, UINT_PTR id, DWORD) {
  if (message == WM_TIMER) g_procCalls.emplace_back(hwnd, id);
}
}  // namespace

TEST(Timers, ATimerProcIsCalledInsteadOfTheWindowAndThreadTimersGetTheirOwnIds) {
  ManualClock clock;
  RecordingWnd wnd;
  wnd.only = {WM_TIMER};
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 10, 10)));
  wnd.SetTimer(1234, 30, &RecordTimerProc);
  const UINT_PTR threadTimer = SetTimer(nullptr, 0, 30, &RecordTimerProc);
  EXPECT_NE(threadTimer, 0u);
  clock.Advance(30);
  PumpAll();
  EXPECT_TRUE(wnd.log.empty());
  std::sort(g_procCalls.begin(), g_procCalls.end());
  EXPECT_EQ(g_procCalls, (std::vector<std::pair<HWND, UINT_PTR>>{{nullptr, threadTimer}, {wnd.m_hWnd, 1234}}));
  EXPECT_TRUE(KillTimer(nullptr, threadTimer));
}

TEST(Timers, GetMessageWaitsForTheNextTimerOnTheRealClock) {
  RecordingWnd wnd;
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 10, 10)));
  wnd.SetTimer(3, 15);
  MSG msg;
  ASSERT_TRUE(GetMessageW(&msg, nullptr, WM_TIMER, WM_TIMER));
  EXPECT_EQ(std::make_tuple(msg.hwnd, msg.wParam), std::make_tuple(wnd.m_hWnd, WPARAM{3}));
}

TEST(ModalLoop, ANestedLoopReturnsItsResultAndTheOuterLoopContinues) {
  class Dialog : public CWnd {
   public:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
      if (message == kPing) EndModalLoop(static_cast<int>(wParam));
      return CWnd::WindowProc(message, wParam, lParam);
    }
  } dialog;
  class Owner : public RecordingWnd {
   public:
    Dialog* dialog = nullptr;
    int modalResult = 0;
    BOOL enabledDuringLoop = TRUE;
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
      if (message == WM_APP + 9) {
        EnableWindow(FALSE);
        dialog->PostMessage(kPing, 5);
        PostMessage(WM_APP + 10);  // still queued when the inner loop ends
        modalResult = dialog->RunModalLoop(MLF_SHOWONIDLE);
        enabledDuringLoop = IsWindowEnabled();
        EnableWindow(TRUE);
        PostQuitMessage(0);
      }
      return RecordingWnd::WindowProc(message, wParam, lParam);
    }
  } owner;
  owner.only = {WM_APP + 9, WM_APP + 10};
  owner.dialog = &dialog;
  ASSERT_TRUE(MakeWindow(owner, CRect(0, 0, 50, 50), WS_POPUP | WS_VISIBLE));
  ASSERT_TRUE(MakeWindow(dialog, CRect(10, 10, 30, 30), WS_POPUP, 0, &owner));
  owner.PostMessage(WM_APP + 9);
  EXPECT_EQ(RunMessageLoop(), 0);
  EXPECT_EQ(std::make_tuple(owner.modalResult, owner.enabledDuringLoop), std::make_tuple(5, FALSE));
  EXPECT_EQ(owner.Messages(), (std::vector<UINT>{WM_APP + 9, WM_APP + 10}));
}

TEST(ModalLoop, QuitEndsTheLoopAndIsPassedOnAndAModalWindowShowsWhenIdleAndEndsWhenDestroyed) {
  RecordingWnd plain;
  ASSERT_TRUE(MakeWindow(plain, CRect(0, 0, 10, 10)));
  PostQuitMessage(4);
  EXPECT_EQ(plain.RunModalLoop(), -1);
  MSG msg;
  EXPECT_FALSE(GetMessageW(&msg, nullptr, 0, 0));
  EXPECT_EQ(msg.wParam, 4u);

  class SelfClosing : public CWnd {
   public:
    BOOL visibleAtTimer = FALSE;
    void OnTimer(UINT_PTR) override {
      visibleAtTimer = IsWindowVisible();
      DestroyWindow();
    }
  } dialog;
  ASSERT_TRUE(MakeWindow(dialog, CRect(0, 0, 10, 10)));
  dialog.SetTimer(1, 10);
  EXPECT_EQ(dialog.RunModalLoop(MLF_SHOWONIDLE), -1);
  EXPECT_TRUE(dialog.visibleAtTimer && !IsWindow(dialog.m_hWnd));
}
