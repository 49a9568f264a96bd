#include <karvelui/UITime.h>

#include <atomic>
#include <cmath>
#include <limits>

#include "platform/Clock.h"

namespace KarvelUI {
namespace {

// The frequency is asked for again on every conversion and kept in a static
// of that conversion; atomics because conversions run on several threads.
std::int64_t QueryInto(std::atomic<std::int64_t>& store) {
  LONGLONG frequency = 0;
  QueryPerformanceFrequency(&frequency);
  store.store(frequency, std::memory_order_relaxed);
  return store.load(std::memory_order_relaxed);
}

// Truncation toward zero to 64 bits, saturating instead of overflowing.
std::int64_t TruncateToInt64(double value) {
  if (std::isnan(value)) return 0;
  if (value >= 9223372036854775807.0) return std::numeric_limits<std::int64_t>::max();
  if (value <= -9223372036854775808.0) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(value);
}

DWORD TicksToMilliseconds(std::int64_t ticks, std::atomic<std::int64_t>& frequencyStore) {
  const std::int64_t frequency = QueryInto(frequencyStore);
  const double ms = static_cast<double>(ticks) * 1000.0 / static_cast<double>(frequency);
  return static_cast<DWORD>(static_cast<std::uint64_t>(TruncateToInt64(ms)));
}

std::atomic<std::int64_t> g_spanCtorFrequency{0};
std::atomic<std::int64_t> g_spanFrequency{0};
std::atomic<std::int64_t> g_timeFrequency{0};

}  // namespace

void CUITime::Now() {
  LONGLONG ticks = 0;
  QueryPerformanceCounter(&ticks);
  m_nTime = ticks;
}

DWORD CUITime::GetTotalMillisecond() const { return TicksToMilliseconds(m_nTime, g_timeFrequency); }

CUITimeSpan CUITime::operator-(const CUITime& earlier) const {
  // Unsigned arithmetic: a difference of extreme readings wraps instead of overflowing.
  return CUITimeSpan::FromTicks(
      static_cast<std::int64_t>(static_cast<std::uint64_t>(m_nTime) - static_cast<std::uint64_t>(earlier.m_nTime)));
}

CUITimeSpan::CUITimeSpan(std::int64_t milliseconds) {
  const std::int64_t frequency = QueryInto(g_spanCtorFrequency);
  m_nSpan = TruncateToInt64(static_cast<double>(frequency) * static_cast<double>(milliseconds) / 1000.0);
}

CUITimeSpan CUITimeSpan::FromTicks(std::int64_t ticks) {
  CUITimeSpan span;
  span.m_nSpan = ticks;
  return span;
}

DWORD CUITimeSpan::GetTotalMillisecond() const { return TicksToMilliseconds(m_nSpan, g_spanFrequency); }

bool CUITimeSpan::operator==(const CUITimeSpan& other) const {
  return GetTotalMillisecond() == other.GetTotalMillisecond();
}
bool CUITimeSpan::operator<(const CUITimeSpan& other) const {
  return GetTotalMillisecond() < other.GetTotalMillisecond();
}
bool CUITimeSpan::operator<=(const CUITimeSpan& other) const {
  return GetTotalMillisecond() <= other.GetTotalMillisecond();
}
bool CUITimeSpan::operator>(const CUITimeSpan& other) const {
  return GetTotalMillisecond() > other.GetTotalMillisecond();
}
bool CUITimeSpan::operator>=(const CUITimeSpan& other) const {
  return GetTotalMillisecond() >= other.GetTotalMillisecond();
}

}  // namespace KarvelUI
