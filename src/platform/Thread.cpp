#include <karvelui/Thread.h>

#include <chrono>
#include <system_error>

namespace KarvelUI {

bool Thread::Start(std::function<void()> body) {
  if (m_thread.joinable() || !body) return false;
  try {
    m_thread = std::thread(std::move(body));
  } catch (const std::system_error&) {
    return false;
  }
  return true;
}

void Thread::Join() {
  if (!m_thread.joinable()) return;
  // A thread asked to join itself (its owner released from the worker)
  // cannot wait for its own end; it is let go instead.
  if (IsCurrent()) {
    m_thread.detach();
    return;
  }
  m_thread.join();
}

void Sleep(DWORD milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

}  // namespace KarvelUI
