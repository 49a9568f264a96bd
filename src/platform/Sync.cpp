#include <karvelui/Sync.h>

#include <chrono>

namespace KarvelUI {

void ManualResetEvent::Set() {
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_signalled = true;
  }
  m_changed.notify_all();
}

void ManualResetEvent::Reset() {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_signalled = false;
}

bool ManualResetEvent::IsSet() const {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_signalled;
}

bool ManualResetEvent::Wait(DWORD milliseconds) {
  std::unique_lock<std::mutex> lock(m_mutex);
  if (milliseconds == INFINITE) {
    m_changed.wait(lock, [this] { return m_signalled; });
    return true;
  }
  return m_changed.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return m_signalled; });
}

}  // namespace KarvelUI
