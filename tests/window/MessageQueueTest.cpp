#include <thread>

#include "WindowTestSupport.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

constexpr UINT kPing = WM_APP + 1;

// Paints through a paint scope and remembers what the scope covered.
class PaintingWnd : public RecordingWnd {
 public:
  std::vector<CRect> painted;
  std::vector<WPARAM> paintFlags;
  bool openScope = true;

  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message != WM_PAINT) return RecordingWnd::WindowProc(message, wParam, lParam);
    log.push_back({m_hWnd, message, wParam, lParam});
    paintFlags.push_back(wParam);
    if (openScope) {
      CPaintDC dc(this);
      painted.push_back(dc.m_ps.rcPaint);
    }
    return 0;
  }
};

}  // namespace

TEST(MessageQueue, MessagesPostedFromAnotherThreadArriveInOrder) {
  RecordingWnd wnd;
  wnd.only = {kPing};
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 50, 50)));
  constexpr int kCount = 2000;
  const HWND hwnd = wnd.m_hWnd;
  std::thread worker([hwnd] {
    for (int i = 0; i < kCount; ++i) PostMessageW(hwnd, kPing, static_cast<WPARAM>(i), -i);
  });
  MSG msg;
  while (wnd.log.size() < static_cast<size_t>(kCount) && GetMessageW(&msg, nullptr, 0, 0)) DispatchMessageW(&msg);
  worker.join();
  ASSERT_EQ(wnd.log.size(), static_cast<size_t>(kCount));
  for (int i = 0; i < kCount; ++i) {
    ASSERT_EQ(wnd.log[i].wParam, static_cast<WPARAM>(i));
    ASSERT_EQ(wnd.log[i].lParam, -i);
  }
}

TEST(MessageQueue, SendFromAnotherThreadRunsOnTheWindowThreadAndReturnsItsResult) {
  class Doubler : public CWnd {
   public:
    std::thread::id ranOn;
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
      if (message != kPing) return CWnd::WindowProc(message, wParam, lParam);
      ranOn = std::this_thread::get_id();
      return static_cast<LRESULT>(wParam * 2);
    }
  } wnd;
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 50, 50)));
  std::atomic<LRESULT> result{0};
  std::atomic<bool> done{false};
  const HWND hwnd = wnd.m_hWnd;
  std::thread worker([&] {
    result = SendMessageW(hwnd, kPing, 21, 0);
    done = true;
  });
  MSG msg;
  while (!done) {
    WaitMessage(20);
    if (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&msg);
  }
  worker.join();
  EXPECT_EQ(result.load(), 42);
  EXPECT_EQ(wnd.ranOn, std::this_thread::get_id());
}

TEST(MessageQueue, PostingToAGoneWindowFailsAndItsQueuedMessagesAreDropped) {
  RecordingWnd survivor;
  ASSERT_TRUE(MakeWindow(survivor, CRect(0, 0, 10, 10)));
  auto doomed = std::make_unique<RecordingWnd>();
  ASSERT_TRUE(MakeWindow(*doomed, CRect(0, 0, 10, 10)));
  const HWND gone = doomed->m_hWnd;
  EXPECT_TRUE(PostMessageW(gone, kPing, 1, 0));
  EXPECT_TRUE(PostMessageW(survivor.m_hWnd, kPing, 2, 0));
  doomed.reset();
  EXPECT_FALSE(IsWindow(gone));
  EXPECT_FALSE(PostMessageW(gone, kPing, 3, 0));
  MSG msg;
  ASSERT_TRUE(PeekMessageW(&msg, nullptr, kPing, kPing, PM_REMOVE));
  EXPECT_EQ(msg.hwnd, survivor.m_hWnd);
  EXPECT_EQ(msg.wParam, 2u);
  EXPECT_FALSE(PeekMessageW(&msg, nullptr, kPing, kPing, PM_REMOVE));
}

TEST(MessageQueue, PeekHonoursFiltersAndNoRemove) {
  RecordingWnd a, b;
  ASSERT_TRUE(MakeWindow(a, CRect(0, 0, 10, 10)));
  ASSERT_TRUE(MakeWindow(b, CRect(0, 0, 10, 10)));
  PostMessageW(a.m_hWnd, kPing, 1, 0);
  PostMessageW(b.m_hWnd, kPing + 1, 2, 0);
  MSG msg;
  ASSERT_TRUE(PeekMessageW(&msg, b.m_hWnd, 0, 0, PM_NOREMOVE));
  EXPECT_EQ(msg.wParam, 2u);
  ASSERT_TRUE(PeekMessageW(&msg, nullptr, kPing + 1, kPing + 1, PM_REMOVE));
  EXPECT_EQ(msg.hwnd, b.m_hWnd);
  ASSERT_TRUE(PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(msg.wParam, 1u);
  EXPECT_FALSE(PeekMessageW(&msg, nullptr, kPing, kPing + 1, PM_REMOVE));
}

TEST(MessageQueue, QuitComesAfterPostedMessagesWithItsExitCode) {
  PostQuitMessage(7);
  PostMessageW(nullptr, kPing, 5, 0);
  MSG msg;
  ASSERT_TRUE(GetMessageW(&msg, nullptr, 0, 0));
  EXPECT_EQ(msg.message, kPing);
  EXPECT_FALSE(GetMessageW(&msg, nullptr, 0, 0));
  EXPECT_EQ(msg.message, WM_QUIT);
  EXPECT_EQ(msg.wParam, 7u);
}

TEST(MessageQueue, RunMessageLoopOffersMessagesToPreTranslateFirst) {
  class Eater : public RecordingWnd {
   public:
    BOOL PreTranslateMessage(MSG* msg) override { return msg->message == kPing && msg->wParam == 1; }
  } wnd;
  wnd.only = {kPing};
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 10, 10)));
  wnd.PostMessage(kPing, 1);
  wnd.PostMessage(kPing, 2);
  PostQuitMessage(3);
  EXPECT_EQ(RunMessageLoop(), 3);
  ASSERT_EQ(wnd.log.size(), 1u);
  EXPECT_EQ(wnd.log[0].wParam, 2u);
}

// --- painting -----------------------------------------------------------------------

TEST(Painting, InvalidationsMergeIntoExactlyOnePaintAfterPostedMessages) {
  PaintingWnd wnd;
  wnd.only = {kPing};
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 100, 80), WS_POPUP | WS_VISIBLE));
  PumpAll();
  wnd.log.clear();
  wnd.painted.clear();

  const CRect first(10, 10, 20, 20), second(40, 5, 50, 30);
  wnd.InvalidateRect(&first, FALSE);
  wnd.InvalidateRect(&second, FALSE);
  wnd.PostMessage(kPing);
  PumpAll();
  ASSERT_EQ(wnd.Messages(), (std::vector<UINT>{kPing, WM_PAINT}));
  ASSERT_EQ(wnd.painted.size(), 1u);
  EXPECT_EQ(wnd.painted[0], CRect(10, 5, 50, 30));
  EXPECT_EQ(PumpAll(), 0);
}

TEST(Painting, APostedPaintKeepsItsMarkerAndValidates) {
  PaintingWnd wnd;
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 40, 40), WS_POPUP | WS_VISIBLE));
  PumpAll();
  wnd.paintFlags.clear();
  wnd.Invalidate();
  wnd.PostMessage(WM_PAINT, 14401);
  PumpAll();
  // The posted paint validated the window, so no second paint is made up.
  EXPECT_EQ(wnd.paintFlags, std::vector<WPARAM>{14401});
}

TEST(Painting, AHandlerWithoutPaintScopeIsNotAskedAgain) {
  PaintingWnd wnd;
  wnd.openScope = false;
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 40, 40), WS_POPUP | WS_VISIBLE));
  PumpAll();
  wnd.Invalidate();
  wnd.paintFlags.clear();
  PumpAll();
  EXPECT_EQ(wnd.paintFlags.size(), 1u);
}

TEST(Painting, HiddenWindowsPaintWhenShownAndUpdateWindowPaintsAtOnce) {
  PaintingWnd wnd;
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 40, 40)));
  wnd.Invalidate();
  PumpAll();
  EXPECT_TRUE(wnd.painted.empty());
  wnd.ShowWindow(SW_SHOWNA);
  PumpAll();
  ASSERT_EQ(wnd.painted.size(), 1u);
  EXPECT_EQ(wnd.painted[0], CRect(0, 0, 40, 40));

  const CRect part(1, 2, 3, 4);
  wnd.InvalidateRect(&part, FALSE);
  wnd.UpdateWindow();
  ASSERT_EQ(wnd.painted.size(), 2u);
  EXPECT_EQ(wnd.painted[1], part);
  EXPECT_EQ(PumpAll(), 0);
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
  wnd.InvalidateRect(nullptr, FALSE);
  PumpAll();
  EXPECT_EQ(wnd.erases, 0);
  wnd.InvalidateRect(nullptr, TRUE);
  PumpAll();
  EXPECT_EQ(wnd.erases, 1);
  EXPECT_TRUE(wnd.fErase);  // the handler did not erase, so the painter must
}

// --- timers ------------------------------------------------------------------------------

TEST(Timers, FireWithTheirIdsAtTheirIntervalsAndStopWhenKilled) {
  ManualClock clock;
  RecordingWnd wnd;
  wnd.only = {WM_TIMER};
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 10, 10)));
  EXPECT_EQ(wnd.SetTimer(14401, 20), 14401u);
  EXPECT_EQ(wnd.SetTimer(7, 50), 7u);
  std::vector<std::pair<std::uint64_t, WPARAM>> fired;
  for (int step = 0; step < 10; ++step) {
    clock.Advance(10);
    wnd.log.clear();
    PumpAll();
    for (const Received& r : wnd.log) fired.emplace_back((step + 1) * 10, r.wParam);
  }
  const std::vector<std::pair<std::uint64_t, WPARAM>> expected = {
      {20, 14401}, {40, 14401}, {50, 7}, {60, 14401}, {80, 14401}, {100, 14401}, {100, 7}};
  EXPECT_EQ(fired, expected);

  EXPECT_TRUE(wnd.KillTimer(14401));
  EXPECT_FALSE(wnd.KillTimer(14401));
  wnd.log.clear();
  clock.Advance(200);
  PumpAll();
  ASSERT_EQ(wnd.log.size(), 1u);  // a timer that is late fires once, not once per missed period
  EXPECT_EQ(wnd.log[0].wParam, 7u);
}

TEST(Timers, RearmingAnIdReplacesItsIntervalAndTheMinimumIsTenMilliseconds) {
  ManualClock clock;
  RecordingWnd wnd;
  wnd.only = {WM_TIMER};
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 10, 10)));
  wnd.SetTimer(1, 100);
  wnd.SetTimer(1, 1);  // re-armed: now due after the minimum of 10 ms
  clock.Advance(9);
  PumpAll();
  EXPECT_TRUE(wnd.log.empty());
  clock.Advance(1);
  PumpAll();
  EXPECT_EQ(wnd.log.size(), 1u);
  clock.Advance(100);
  PumpAll();
  EXPECT_EQ(wnd.log.size(), 2u);
}

namespace {
std::vector<std::pair<HWND, UINT_PTR>> g_procCalls;
void RecordTimerProc(HWND hwnd, UINT message, UINT_PTR id, DWORD) {
  if (message == WM_TIMER) g_procCalls.emplace_back(hwnd, id);
}
}  // namespace

TEST(Timers, ATimerProcIsCalledInsteadOfTheWindowAndThreadTimersGetTheirOwnIds) {
  ManualClock clock;
  g_procCalls.clear();
  RecordingWnd wnd;
  wnd.only = {WM_TIMER};
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 10, 10)));
  wnd.SetTimer(1234, 30, &RecordTimerProc);
  const UINT_PTR threadTimer = SetTimer(nullptr, 0, 30, &RecordTimerProc);
  EXPECT_NE(threadTimer, 0u);
  clock.Advance(30);
  PumpAll();
  EXPECT_TRUE(wnd.log.empty());
  ASSERT_EQ(g_procCalls.size(), 2u);
  EXPECT_NE(std::find(g_procCalls.begin(), g_procCalls.end(), std::make_pair(wnd.m_hWnd, UINT_PTR{1234})),
            g_procCalls.end());
  EXPECT_NE(std::find(g_procCalls.begin(), g_procCalls.end(), std::make_pair(HWND{nullptr}, threadTimer)),
            g_procCalls.end());
  EXPECT_TRUE(KillTimer(nullptr, threadTimer));
}

TEST(Timers, GetMessageWaitsForTheNextTimerOnTheRealClock) {
  RecordingWnd wnd;
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 10, 10)));
  wnd.SetTimer(3, 15);
  MSG msg;
  ASSERT_TRUE(GetMessageW(&msg, nullptr, WM_TIMER, WM_TIMER));
  EXPECT_EQ(msg.hwnd, wnd.m_hWnd);
  EXPECT_EQ(msg.wParam, 3u);
}

// --- modal loops ----------------------------------------------------------------------------

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
  EXPECT_EQ(owner.modalResult, 5);
  EXPECT_FALSE(owner.enabledDuringLoop);
  EXPECT_TRUE(owner.IsWindowEnabled());
  EXPECT_EQ(owner.Messages(), (std::vector<UINT>{WM_APP + 9, WM_APP + 10}));
}

TEST(ModalLoop, QuitEndsTheLoopAndIsPassedOn) {
  RecordingWnd dialog;
  ASSERT_TRUE(MakeWindow(dialog, CRect(0, 0, 10, 10)));
  PostQuitMessage(4);
  EXPECT_EQ(dialog.RunModalLoop(), -1);
  MSG msg;
  EXPECT_FALSE(GetMessageW(&msg, nullptr, 0, 0));
  EXPECT_EQ(msg.wParam, 4u);
}

TEST(ModalLoop, ShowsTheWindowWhenIdleAndEndsWhenTheWindowIsDestroyed) {
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
  EXPECT_TRUE(dialog.visibleAtTimer);
  EXPECT_FALSE(IsWindow(dialog.m_hWnd));
}
