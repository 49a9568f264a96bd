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
  EXPECT_EQ(elapsed.GetTicks(), 3 * kMs - 1);
  EXPECT_EQ(elapsed.GetTotalMillisecond(), 2u);
  EXPECT_EQ((start - end).GetTotalMillisecond(), 4294967294u);  // -2.999 ms truncates to -2
}

TEST(UITime, SpansFromMillisecondsAndComparisonsAtMillisecondResolution) {
  EXPECT_EQ(CUITimeSpan(0).GetTicks(), 0);
  EXPECT_TRUE(CUITimeSpan(0) == CUITimeSpan());
  EXPECT_EQ(CUITimeSpan(1000).GetTicks(), kPerformanceFrequency);
  EXPECT_EQ(CUITimeSpan(-1).GetTicks(), -kMs);

  const CUITimeSpan a = CUITimeSpan::FromTicks(5 * kMs);
  const CUITimeSpan b = CUITimeSpan::FromTicks(5 * kMs + kMs - 1);  // same millisecond
  EXPECT_TRUE(a == b);
  EXPECT_FALSE(a < b);
  EXPECT_FALSE(b > a);
  EXPECT_TRUE(a <= b);
  EXPECT_TRUE(b >= a);

  const CUITimeSpan c = CUITimeSpan::FromTicks(6 * kMs);
  EXPECT_TRUE(a < c);
  EXPECT_TRUE(c > b);
  EXPECT_TRUE(c >= a);
  EXPECT_FALSE(c <= a);
  EXPECT_FALSE(a == c);
}

TEST(UITime, NegativeAndHugeSpansWrapInUnsignedMilliseconds) {
  const CUITimeSpan negative(-1);
  EXPECT_EQ(negative.GetTotalMillisecond(), 4294967295u);
  EXPECT_TRUE(negative > CUITimeSpan(4294967294LL));
  EXPECT_TRUE(negative >= CUITimeSpan(0));

  const CUITimeSpan wrapped((1LL << 32) + 5);
  EXPECT_EQ(wrapped.GetTotalMillisecond(), 5u);
  EXPECT_TRUE(wrapped == CUITimeSpan(5));
  EXPECT_TRUE(wrapped < CUITimeSpan(6));
}
