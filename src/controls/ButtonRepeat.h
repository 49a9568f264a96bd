#pragma once

// How long a held button waits before its first repeated click and between
// the following ones, from the desktop's keyboard delay (0..3) and speed
// (0..31) settings. Out-of-range settings take the shortest times.

namespace KarvelUI {

inline constexpr int kRepeatDelayStepMs = 250;
inline constexpr int kRepeatFastestMs = 33;
inline constexpr int kRepeatSpeedRangeMs = 367;  // slowest (400 ms) minus fastest
inline constexpr int kMaxKeyboardDelay = 3;
inline constexpr int kMaxKeyboardSpeed = 31;

constexpr int ButtonRepeatDelayMs(int delaySetting) {
  if (delaySetting < 0 || delaySetting > kMaxKeyboardDelay) return kRepeatDelayStepMs;
  return (delaySetting + 1) * kRepeatDelayStepMs;
}

constexpr int ButtonRepeatIntervalMs(int speedSetting) {
  if (speedSetting < 0 || speedSetting > kMaxKeyboardSpeed) return kRepeatFastestMs;
  return kRepeatFastestMs + ((kMaxKeyboardSpeed - speedSetting) * kRepeatSpeedRangeMs) / kMaxKeyboardSpeed;
}

}  // namespace KarvelUI
