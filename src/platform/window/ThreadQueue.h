#pragma once

// Internal: one thread's message queue. Posting and cross-thread sending are
// thread-safe; paints, timers and retrieval belong to the owner thread. The
// user-interface thread's queue also has an event source (the desktop's
// events, translated into input messages) that it pumps and waits on.

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include <karvelui/WindowTypes.h>

namespace KarvelUI::detail {

class IEventSource {
 public:
  virtual ~IEventSource() = default;
  // Translates every desktop event waiting now into messages.
  virtual void Pump() = 0;
  // Waits up to timeoutMs (negative: no limit) for a desktop event or Wake().
  virtual void Wait(std::int64_t timeoutMs) = 0;
  // Interrupts Wait from any thread.
  virtual void Wake() = 0;
  // Clock time at which the source needs a Pump without any event (hover).
  virtual std::optional<std::uint64_t> NextDue() const = 0;
  // A message leaves the queue: the key state follows it.
  virtual void OnRetrieved(const MSG& msg) = 0;
};

class ThreadQueue {
 public:
  ThreadQueue();
  ~ThreadQueue();
  ThreadQueue(const ThreadQueue&) = delete;
  ThreadQueue& operator=(const ThreadQueue&) = delete;

  // The calling thread's queue, made on first use.
  static std::shared_ptr<ThreadQueue> Current();
  bool IsOwnerThread() const { return std::this_thread::get_id() == m_owner; }

  // --- any thread --------------------------------------------------------------
  bool Post(const MSG& msg);
  // Posts a mouse move, replacing a move for the same window still at the tail.
  void PostMouseMove(const MSG& msg);
  void PostQuit(int exitCode);
  // Runs the message on the owner thread and waits for its result.
  LRESULT SendFromOtherThread(const MSG& msg);

  // --- owner thread --------------------------------------------------------------
  void SetEventSource(IEventSource* source) { m_source.store(source); }
  bool Peek(MSG* out, HWND hwnd, UINT filterMin, UINT filterMax, bool remove);
  // Waits until a message may be ready, at most maxMs (negative: no limit).
  void WaitForWork(std::int64_t maxMs = -1);
  void AddPaint(HWND hwnd);
  void RemovePaint(HWND hwnd);
  UINT_PTR SetTimer(HWND hwnd, UINT_PTR id, UINT elapse, TIMERPROC proc);
  bool KillTimer(HWND hwnd, UINT_PTR id);
  // Forgets posted messages, paints and timers of a destroyed window.
  void PurgeWindow(HWND hwnd);
  // The thread ends: pending senders are released with result 0.
  void Close();

 private:
  struct SentItem {
    MSG msg;
    std::promise<LRESULT> result;
  };
  struct Timer {
    HWND hwnd;
    UINT_PTR id;
    UINT elapse;
    std::uint64_t due;
    TIMERPROC proc;
  };

  void RunSentMessages();
  bool TakePosted(MSG* out, HWND hwnd, UINT filterMin, UINT filterMax, bool remove);
  bool TakeQuit(MSG* out, bool remove);
  bool TakePaint(MSG* out, HWND hwnd, UINT filterMin, UINT filterMax);
  bool TakeTimer(MSG* out, HWND hwnd, UINT filterMin, UINT filterMax, bool remove);
  std::optional<std::uint64_t> NextDue() const;
  void WakeOwner();

  const std::thread::id m_owner;
  std::atomic<IEventSource*> m_source{nullptr};

  mutable std::mutex m_mutex;  // guards the members down to m_closed
  std::condition_variable m_wake;
  std::deque<MSG> m_posted;
  std::deque<std::shared_ptr<SentItem>> m_sent;
  bool m_quit = false;
  int m_quitCode = 0;
  bool m_closed = false;

  std::vector<HWND> m_paint;  // windows in the order they were invalidated
  std::vector<Timer> m_timers;
  UINT_PTR m_nextThreadTimerId = 1;
};

}  // namespace KarvelUI::detail
