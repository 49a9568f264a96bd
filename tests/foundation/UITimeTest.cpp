#include <gtest/gtest.h>

#include <karvelui/UITime.h>
#include "platform/Clock.h"

using namespace KarvelUI;

namespace {

// Drives the performance counter by hand for the test's lifetime.
class ManualCounter {
 public:
  ManualCounter() { SetPerformanceCounterHook([this] { return m_ticks; }); }
  ~ManualCounter() { SetPerformanceCounterHook(nullptr); }
  void Set(LONGLONG ticks) { m_ticks = ticks; }

 private:
  LONGLONG m_ticks = 0;
};

constexpr LONGLONG kMs = 1000000;  // ticks per millisecond at 1e9 Hz

}  // namespace

TEST(UITime, ReadingsAndDifferencesInTicks) {
  ManualCounter counter;
  CUITime start;
  EXPECT_EQ(start.GetTicks(), 0);
  counter.Set(1234 * kMs + 999999);
  start.Now();
  EXPECT_EQ(start.GetTotalMillisecond(), 1234u);  // rounded down

  CUITime end;
  counter.Set(1234 * kMs + 999999 + 3 * kMs - 1);
  end.Now();
  const CUITimeSpan elapsed = end - start;
  EXPECT_EQ(std::make_tuple(elapsed.GetTicks(), elapsed.GetTotalMillisecond()), std::make_tuple(3 * kMs - 1, 2u));
  EXPECT_EQ((start - end).GetTotalMillisecond(), 4294967294u);  // -2.999 ms truncates to -2
}

TEST(UITime, SpansCompareAtMillisecondResolutionAndWrapInUnsignedMilliseconds) {
  EXPECT_EQ(std::make_tuple(CUITimeSpan(1000).GetTicks(), CUITimeSpan(-1).GetTicks()),
            std::make_tuple(LONGLONG{kPerformanceFrequency}, -kMs));
  const CUITimeSpan a = CUITimeSpan::FromTicks(5 * kMs), b = CUITimeSpan::FromTicks(6 * kMs - 1),  // same millisecond
      c = CUITimeSpan::FromTicks(6 * kMs);
  EXPECT_TRUE(a == b && a <= b && b >= a && !(a < b) && !(b > a));
  EXPECT_TRUE(a < c && c > b && c >= a && !(c <= a) && !(a == c));
  const CUITimeSpan negative(-1), wrapped((1LL << 32) + 5);
  EXPECT_EQ(std::make_tuple(negative.GetTotalMillisecond(), wrapped.GetTotalMillisecond()), std::make_tuple(4294967295u, 5u));
  EXPECT_TRUE(negative > CUITimeSpan(4294967294LL));
  EXPECT_TRUE(wrapped == CUITimeSpan(5) && wrapped < CUITimeSpan(6));
}
