#pragma once

// One worker thread, joined when the object goes (a thread still running
// then is waited for, never abandoned).

#include <functional>
#include <thread>

#include <karvelui/Export.h>
#include <karvelui/Types.h>

namespace KarvelUI {

class KARVELUI_API Thread {
 public:
  Thread() = default;
  ~Thread() { Join(); }
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

  // Starts body on a new thread; false when the OS refuses one or a thread
  // is still attached.
  bool Start(std::function<void()> body);
  // Waits for the thread to end; nothing when there is none.
  void Join();
  bool IsRunning() const { return m_thread.joinable(); }
  bool IsCurrent() const { return m_thread.get_id() == std::this_thread::get_id(); }

 private:
  std::thread m_thread;
};

KARVELUI_API void Sleep(DWORD milliseconds);

}  // namespace KarvelUI
