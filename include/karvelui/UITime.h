#pragma once

// Points in time and durations on the performance counter. Both hold raw
// counter ticks; conversions to milliseconds compute ticks * 1000.0 /
// frequency, truncate, and keep the low 32 bits (unsigned). Comparisons of
// spans are made on those millisecond values, so spans within the same
// millisecond compare equal and a negative span compares as a huge one.

#include <cstdint>

#include <karvelui/Export.h>
#include <karvelui/Types.h>

namespace KarvelUI {

class CUITimeSpan;

class KARVELUI_API CUITime {
 public:
  CUITime() = default;

  // Stores the current counter reading.
  void Now();
  DWORD GetTotalMillisecond() const;
  CUITimeSpan operator-(const CUITime& earlier) const;
  std::int64_t GetTicks() const { return m_nTime; }

 private:
  std::int64_t m_nTime = 0;
};

class KARVELUI_API CUITimeSpan {
 public:
  CUITimeSpan() = default;
  // A duration of `milliseconds`.
  explicit CUITimeSpan(std::int64_t milliseconds);
  static CUITimeSpan FromTicks(std::int64_t ticks);

  DWORD GetTotalMillisecond() const;
  std::int64_t GetTicks() const { return m_nSpan; }

  bool operator==(const CUITimeSpan& other) const;
  bool operator<(const CUITimeSpan& other) const;
  bool operator<=(const CUITimeSpan& other) const;
  bool operator>(const CUITimeSpan& other) const;
  bool operator>=(const CUITimeSpan& other) const;

 private:
  std::int64_t m_nSpan = 0;
};

}  // namespace KarvelUI
