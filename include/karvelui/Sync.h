#pragma once

// Synchronisation primitives of the library's threads: a recursive critical
// section (the same thread may enter it again, since a lock holder may call
// back into code that takes the same lock) and a manual-reset event (stays
// signalled until reset and wakes every waiter, so a task's done event is
// seen by everyone who waits for it).

#include <condition_variable>
#include <cstdint>
#include <mutex>

#include <karvelui/Export.h>
#include <karvelui/Types.h>

namespace KarvelUI {

class KARVELUI_API CriticalSection {
 public:
  CriticalSection() = default;
  CriticalSection(const CriticalSection&) = delete;
  CriticalSection& operator=(const CriticalSection&) = delete;

  void Enter() { m_mutex.lock(); }
  bool TryEnter() { return m_mutex.try_lock(); }
  void Leave() { m_mutex.unlock(); }

  // So that std::lock_guard / std::unique_lock work on it.
  void lock() { Enter(); }
  bool try_lock() { return TryEnter(); }
  void unlock() { Leave(); }

 private:
  std::recursive_mutex m_mutex;
};

using CRITICAL_SECTION = CriticalSection;

inline constexpr DWORD INFINITE = 0xFFFFFFFFu;

class KARVELUI_API ManualResetEvent {
 public:
  explicit ManualResetEvent(bool initiallySignalled = false) : m_signalled(initiallySignalled) {}
  ManualResetEvent(const ManualResetEvent&) = delete;
  ManualResetEvent& operator=(const ManualResetEvent&) = delete;

  void Set();
  void Reset();
  bool IsSet() const;
  // Waits until signalled or the time (milliseconds; INFINITE for none) runs
  // out; true when signalled.
  bool Wait(DWORD milliseconds = INFINITE);

 private:
  mutable std::mutex m_mutex;
  std::condition_variable m_changed;
  bool m_signalled;
};

}  // namespace KarvelUI
