#include "platform/Clock.h"

#include <time.h>

#include <atomic>
#include <mutex>

namespace KarvelUI {
namespace {

std::mutex& HookMutex() {
  static std::mutex m;
  return m;
}

PerformanceCounterHook& Hook() {
  static PerformanceCounterHook hook;
  return hook;
}

// Lets the common case (no hook) read the clock without taking the mutex.
std::atomic<bool> g_hooked{false};

LONGLONG ReadMonotonic() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<LONGLONG>(now.tv_sec) * kPerformanceFrequency + now.tv_nsec;
}

}  // namespace

BOOL QueryPerformanceCounter(LONGLONG* counter) {
  if (!counter) return FALSE;
  if (g_hooked.load(std::memory_order_acquire)) {
    PerformanceCounterHook hook;
    {
      std::lock_guard<std::mutex> lock(HookMutex());
      hook = Hook();
    }
    if (hook) {
      *counter = hook();
      return TRUE;
    }
  }
  *counter = ReadMonotonic();
  return TRUE;
}

BOOL QueryPerformanceFrequency(LONGLONG* frequency) {
  if (!frequency) return FALSE;
  *frequency = kPerformanceFrequency;
  return TRUE;
}

PerformanceCounterHook SetPerformanceCounterHook(PerformanceCounterHook hook) {
  std::lock_guard<std::mutex> lock(HookMutex());
  PerformanceCounterHook previous = std::move(Hook());
  Hook() = std::move(hook);
  g_hooked.store(static_cast<bool>(Hook()), std::memory_order_release);
  return previous;
}

std::uint64_t GetTickCount64() {
  LONGLONG ticks = 0;
  QueryPerformanceCounter(&ticks);
  return static_cast<std::uint64_t>(ticks / (kPerformanceFrequency / 1000));
}

}  // namespace KarvelUI
