#pragma once

// The high-resolution performance counter: a monotonic tick count with a
// fixed frequency (nanoseconds, 1e9 ticks per second). Tests replace the
// reading with a hook to drive time-based logic without sleeping.

#include <cstdint>
#include <functional>

#include <karvelui/Export.h>
#include <karvelui/Types.h>

namespace KarvelUI {

using LONGLONG = std::int64_t;

inline constexpr LONGLONG kPerformanceFrequency = 1000000000LL;

// Both return TRUE; the out-parameter receives ticks / ticks per second.
BOOL QueryPerformanceCounter(LONGLONG* counter);
BOOL QueryPerformanceFrequency(LONGLONG* frequency);

using PerformanceCounterHook = std::function<LONGLONG()>;
// Installs a hook that answers QueryPerformanceCounter (an empty function
// restores the real counter); returns the previous hook.
PerformanceCounterHook SetPerformanceCounterHook(PerformanceCounterHook hook);

// Milliseconds on the same monotonic counter (hook included).
std::uint64_t GetTickCount64();

}  // namespace KarvelUI
