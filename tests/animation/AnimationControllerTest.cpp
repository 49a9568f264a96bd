// The controller of a form: driven through a real window on the offscreen
// driver (timer and paint messages) or by calling OnTimer directly.

#include <thread>
#include <tuple>

#include "AnimationTestSupport.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

using Messages = std::vector<FormWindow::Received>;
const Messages kNothing;
const FormWindow::Received kTick{WM_TIMER, ANIMATION_TIMER_ID};
const Messages kFrame{kTick, {WM_PAINT, ANIMATION_TIMER_ID}};  // the paint carries the marker

// The controller of FakeForm() with its window.
struct WindowedController {
  ManualClock clock;
  ControllerPtr controller = NewController();
  FormWindow wnd{controller.get(), &clock};
  Log log;

  Messages After(std::int64_t ms) {
    clock.Advance(ms);
    return wnd.Pump();
  }
};

// A board the test keeps (controllable), its value the elapsed milliseconds.
struct KeptBoard : LoggingBoard {
  KeptBoard(std::string name, Log* log, std::int64_t ms) : LoggingBoard(std::move(name), log) {
    SetIsControllable(1);
    Animate(0.0, ms, ms);
  }
};

LoggingBoard* HandedBoard(const char* name, Log* log, int* destroyed, std::int64_t ms) {
  return &(new LoggingBoard(name, log, destroyed))->Animate(0.0, 1.0, ms);
}

}  // namespace

TEST(AnimationControllerTimer, FramesEvery20MsAndRearmsForTheRestOfTheSlot) {
  WindowedController f;
  KeptBoard board("b", &f.log, 200);
  board.Begin(FakeForm(), 1);
  EXPECT_EQ(f.After(19), kNothing);
  f.wnd.paintCostMs = 5;
  EXPECT_EQ(f.After(1), kFrame);
  EXPECT_DOUBLE_EQ(board.value, 20.0);
  EXPECT_EQ(f.After(14), kNothing);  // painting took 5 ms: 15 ms are left of the slot
  f.wnd.paintCostMs = 35;
  EXPECT_EQ(f.After(1), kFrame);
  EXPECT_DOUBLE_EQ(board.value, 40.0);
  // Past the slot: the shortest timer, which the window layer raises to its 10 ms floor.
  EXPECT_EQ(f.After(9), kNothing);
  f.wnd.paintCostMs = 20;
  EXPECT_EQ(f.After(1), kFrame);
  EXPECT_EQ(f.After(9), kNothing);  // exactly 20 ms is past it too
  EXPECT_EQ(f.After(1), kFrame);
}

TEST(AnimationControllerTimer, LastBoardLeavesInItsTickAndOneMorePaintIdlesTheTimer) {
  WindowedController f;
  auto* board = HandedBoard("b", &f.log, nullptr, 40);
  unsigned listedDuringCallback = 0;
  board->onCompleted = [&] { listedDuringCallback = f.controller->GetBoardCount(); };
  board->Begin(FakeForm(), 1);
  EXPECT_EQ(f.After(20), kFrame);
  EXPECT_EQ(f.After(20), kFrame);  // completes; its last frame is still painted
  EXPECT_EQ(std::make_tuple(listedDuringCallback, f.controller->GetBoardCount(), f.controller->GetTimerRunning()),
            std::make_tuple(1u, 0u, 0));
  EXPECT_EQ(f.After(200), kNothing);
  KeptBoard next("next", &f.log, 100);
  next.Begin(FakeForm(), 1);
  EXPECT_EQ(f.After(19), kNothing);
  EXPECT_EQ(f.After(1), kFrame);
}

TEST(AnimationControllerTimer, BoardsWithoutTheTimerWaitAndBeginMovesABoardToTheEnd) {
  WindowedController f;
  KeptBoard quiet("quiet", &f.log, 200), loud("loud", &f.log, 200);
  quiet.Begin(FakeForm(), 0);
  EXPECT_EQ(f.After(100), kNothing);
  EXPECT_EQ(quiet.value, 0.0);
  loud.Begin(FakeForm(), 1);
  quiet.Begin(FakeForm(), 0);  // restarted and moved behind loud
  loud.Begin(FakeForm(), 1);   // moved behind quiet, still listed once
  EXPECT_EQ(f.controller->GetBoardCount(), 2u);
  EXPECT_EQ(f.After(20), kFrame);
  EXPECT_EQ(f.log, (Log{"quiet:changed", "loud:changed"}));
  EXPECT_DOUBLE_EQ(quiet.value, 20.0);
}

TEST(AnimationControllerOwnership, ControllableBoardsAreNeverDeletedOthersAreReleasedOnce) {
  ManualClock clock;
  Log log;
  int keptDestroyed = 0, handedDestroyed = 0;
  LoggingBoard kept("kept", &log, &keptDestroyed);
  kept.SetIsControllable(1);
  kept.Animate(0.0, 1.0, 40);
  {
    ControllerPtr other = NewController(1);
    ControllerPtr controller = NewController();
    kept.Begin(FakeForm(), 1);
    HandedBoard("handed", &log, &handedDestroyed, 40)->Begin(FakeForm(), 1);
    EXPECT_EQ(other->GetBoardCount(), 0u);  // each board reaches only its own form's controller
    clock.Advance(40);
    controller->OnTimer(FakeForm());  // both complete
    EXPECT_EQ(std::make_tuple(handedDestroyed, controller->GetBoardCount()), std::make_tuple(1, 0u));
    LoggingBoard* stopped = HandedBoard("stopped", &log, &handedDestroyed, 40);
    stopped->Begin(FakeForm(), 1);
    stopped->Stop(FakeForm());
    EXPECT_EQ(handedDestroyed, 2);  // at once, outside a tick
    kept.Begin(FakeForm(), 1);
    kept.Stop(FakeForm());
    controller->Begin(&kept, 0);  // listed again, its state still stopped
    kept.Stop(FakeForm());        // already stopped: the controller is not asked
    EXPECT_EQ(controller->GetBoardCount(), 1u);
    controller->OnTimer(FakeForm());  // a stopped board leaves without a frame
    EXPECT_EQ(controller->GetBoardCount(), 0u);
    {
      KeptBoard member("member", &log, 100);  // destroyed while listed
      member.Begin(FakeForm(), 1);
    }
    EXPECT_EQ(controller->GetBoardCount(), 0u);
    kept.Begin(FakeForm(), 1);
    HandedBoard("handed", &log, &handedDestroyed, 40)->Begin(FakeForm(), 1);
  }  // the controller goes with both listed
  EXPECT_EQ(std::make_tuple(handedDestroyed, keptDestroyed), std::make_tuple(3, 0));
  EXPECT_EQ(log, (Log{"kept:completed", "kept:changed", "handed:completed", "handed:changed"}));
}

TEST(AnimationControllerCallbacks, CallbacksMayBeginAndStopBoards) {
  ManualClock clock;
  Log log;
  int destroyed = 0;
  ControllerPtr controller = NewController();
  LoggingBoard* first = HandedBoard("first", &log, &destroyed, 20);
  LoggingBoard* victim = HandedBoard("victim", &log, &destroyed, 100);
  LoggingBoard* self = HandedBoard("self", &log, &destroyed, 20);
  LoggingBoard* late = nullptr;
  first->onCompleted = [&] {
    victim->Stop(FakeForm());  // listed after `first`: never gets this tick's frame
    (late = HandedBoard("late", &log, &destroyed, 100))->Begin(FakeForm(), 1);
  };
  self->onCompleted = [&] { controller->Stop(self); };  // takes itself off during its own frame
  for (LoggingBoard* board : {first, victim, self}) board->Begin(FakeForm(), 1);
  clock.Advance(20);
  controller->OnTimer(FakeForm());
  EXPECT_EQ(log, (Log{"first:completed", "first:changed", "self:completed", "self:changed"}));
  // First, victim and self go after the tick; late's first frame comes with the next tick.
  ASSERT_EQ(std::make_tuple(destroyed, controller->GetBoardCount(), late->value), std::make_tuple(3, 1u, 0.0));
  controller->OnTimer(FakeForm());
  EXPECT_EQ(log.back(), "late:changed");
}

TEST(AnimationControllerThreads, ABoardBegunOnAnotherThreadTicksAtOnce) {
  WindowedController f;
  int destroyed = 0;
  std::thread([&] { HandedBoard("worker", &f.log, &destroyed, 40)->Begin(FakeForm(), 1); }).join();
  EXPECT_EQ(f.controller->GetTimerRunning(), 1);
  // The window's timer cannot be armed from there: the first tick is posted instead.
  EXPECT_EQ(f.wnd.Pump(), kFrame);
  EXPECT_EQ(f.After(19), kNothing);
  EXPECT_EQ(f.After(1), kFrame);
  EXPECT_EQ(f.After(20), kFrame);
  EXPECT_EQ(destroyed, 1);
  EXPECT_EQ(f.log, (Log{"worker:changed", "worker:changed", "worker:completed", "worker:changed"}));
}

TEST(AnimationControllerThreads, BoardsBegunAndStoppedWhileTicksRun) {
  WindowedController f;
  int destroyed = 0;
  std::atomic<int> handedOver{0}, ticks{0};
  KeptBoard restarted[3] = {{"r0", &f.log, 30}, {"r1", &f.log, 30}, {"r2", &f.log, 30}};
  std::atomic<bool> done{false};
  std::thread worker([&] {
    // Keeps going until the window's thread has ticked a good number of times meanwhile.
    for (int i = 0; i < 3000 || (ticks < 50 && i < 10000000); ++i) {
      LoggingBoard& board = restarted[i % 3];
      board.Stop(FakeForm());  // the library's restart sequence: stop, retarget, begin
      board.Animate(0.0, 30.0, 30);
      board.Begin(FakeForm(), 1);
      if (i % 10 == 0) {
        HandedBoard("handed", &f.log, &destroyed, 30)->Begin(FakeForm(), i % 20 == 0);
        ++handedOver;
      }
    }
    done = true;
  });
  while (!done)
    for (const FormWindow::Received& message : f.After(5)) ticks += message == kTick ? 1 : 0;
  worker.join();
  // A board handed over without the timer just after the window's thread
  // finished every other board waits for the next board that starts the
  // timer: start one.
  restarted[0].Begin(FakeForm(), 1);
  for (int i = 0; i < 100 && (f.controller->GetBoardCount() || f.controller->GetTimerRunning()); ++i) f.After(20);
  EXPECT_EQ(f.controller->GetBoardCount(), 0u);
  EXPECT_EQ(f.controller->GetTimerRunning(), 0);
  EXPECT_EQ(destroyed, handedOver.load());
  for (LoggingBoard& board : restarted) EXPECT_EQ(board.value, 30.0);
}
