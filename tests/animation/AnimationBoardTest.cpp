// Boards driven frame by frame, without a controller (a null form).

#include "AnimationTestSupport.h"

using namespace KarvelUI;
using namespace KarvelTest;

TEST(AnimationBoard, LinearUsesRawTicksAndTheLastFrameCompletesBeforeReportingValues) {
  ManualClock clock;
  Log log;
  LoggingBoard board("b", &log);
  board.Animate(10.0, 110.0, 100).Begin(nullptr, 1);
  clock.AdvanceTicks(50 * kTicksPerMs + kTicksPerMs / 2);
  board.NextFrame(nullptr);
  EXPECT_DOUBLE_EQ(board.value, 60.5);
  EXPECT_EQ(board.oldValues, std::vector<double>{0.0});
  clock.AdvanceTicks(50 * kTicksPerMs - kTicksPerMs / 2 - 1);  // 1 tick short of 100 ms: still running
  board.NextFrame(nullptr);
  EXPECT_EQ(board.GetState(), ANIMATION_RUNNING);
  EXPECT_LT(board.value, 110.0);
  clock.AdvanceTicks(1);
  board.NextFrame(nullptr);
  EXPECT_EQ(board.value, 110.0);
  EXPECT_EQ(board.GetState(), ANIMATION_STOPPED);
  EXPECT_EQ(log, (Log{"b:changed", "b:changed", "b:completed", "b:changed"}));
}

TEST(AnimationBoard, PowerFormulaCountsWholeMillisecondsAndUnknownFormulasHoldValues) {
  ManualClock clock;
  Log log;
  LoggingBoard board("b", &log);
  board.Animate(0.0, 100.0, 100).SetFormula(FORMULA_POW);
  board.SetRange(AnimationRange(0.0, 100.0, 2.0), 0);
  board.Begin(nullptr, 1);
  clock.AdvanceTicks(50 * kTicksPerMs + kTicksPerMs * 9 / 10);  // 50.9 ms counts as 50
  board.NextFrame(nullptr);
  EXPECT_DOUBLE_EQ(board.value, 25.0);  // 100 / 100^2 * 50^2
  board.SetRange(AnimationRange(0.0, 100.0, 0.5), 0);
  board.NextFrame(nullptr);
  EXPECT_NEAR(board.value, 70.7107, 1e-4);  // below 1 it starts fast
  board.SetFormula(static_cast<FORMULA_TYPE>(2));  // no such formula: values hold until the end
  board.value = 7.0;
  board.NextFrame(nullptr);
  EXPECT_EQ(board.value, 7.0);
  clock.Advance(50);
  board.NextFrame(nullptr);
  EXPECT_EQ(board.value, 100.0);
}

TEST(AnimationBoard, ReportsConvertedValuesAndBeginAgainRestartsTheClock) {
  ManualClock clock;
  Log log;
  LoggingBoard board("b", &log);
  std::int32_t size[2] = {100, 80};
  board.SetTarget(size, 2, TARGET_INT);
  board.SetRange(AnimationRange(100, 110, 1.0), 0);
  board.SetRange(AnimationRange(80, 85, 1.0), 1);
  board.SetDuration(CUITimeSpan(300));
  board.Begin(nullptr, 1);
  clock.Advance(30);  // 10 %: 101.0 and 80.5
  board.NextFrame(nullptr);
  EXPECT_EQ(board.oldValues, (std::vector<double>{100.0, 80.0}));
  EXPECT_EQ(board.newValues, (std::vector<double>{101.0, 81.0}));  // what the fields hold
  board.Begin(nullptr, 1);
  clock.Advance(30);  // 10 % again, not 20 %
  board.NextFrame(nullptr);
  EXPECT_EQ(board.newValues, (std::vector<double>{101.0, 81.0}));
}

TEST(AnimationBoard, ZeroDurationAndEmptyBoardsEndAndStillReportBoth) {
  ManualClock clock;
  Log log;
  LoggingBoard instant("instant", &log), empty("empty", &log);
  instant.Animate(0.0, 42.0, 0).Begin(nullptr, 1);
  instant.NextFrame(nullptr);
  EXPECT_EQ(instant.value, 42.0);
  empty.SetTarget(nullptr, 0, TARGET_INT);
  empty.SetDuration(CUITimeSpan(40));
  empty.Begin(nullptr, 1);
  empty.Pause();  // pausing does nothing
  clock.Advance(40);
  empty.NextFrame(nullptr);
  EXPECT_EQ(empty.GetState(), ANIMATION_STOPPED);
  EXPECT_TRUE(empty.newValues.empty());
  EXPECT_EQ(log, (Log{"instant:completed", "instant:changed", "empty:completed", "empty:changed"}));
}
