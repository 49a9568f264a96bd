#include <karvelui/MessageQueue.h>

#include <algorithm>
#include <atomic>
#include <chrono>

#include "platform/window/ThreadQueue.h"
#include <karvelui/Wnd.h>
#include "platform/window/WindowRegistry.h"

namespace KarvelUI {
namespace {

std::atomic<IMessageClock*> g_clock{nullptr};

std::uint64_t SystemNowMs() {
  using namespace std::chrono;
  return static_cast<std::uint64_t>(
      duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

bool InFilter(const MSG& msg, HWND hwnd, UINT filterMin, UINT filterMax) {
  if (hwnd && msg.hwnd != hwnd) return false;
  if (filterMin == 0 && filterMax == 0) return true;
  return msg.message >= filterMin && msg.message <= filterMax;
}

thread_local DWORD t_lastMessageTime = 0;

// Closes the thread's queue when the thread ends, so that a sender waiting on
// it is released instead of hanging.
struct QueueHolder {
  std::shared_ptr<detail::ThreadQueue> queue;
  ~QueueHolder() {
    if (queue) queue->Close();
  }
};

}  // namespace

IMessageClock* SetMessageClock(IMessageClock* clock) { return g_clock.exchange(clock); }

std::uint64_t MessageClockNow() {
  IMessageClock* clock = g_clock.load();
  return clock ? clock->NowMs() : SystemNowMs();
}

namespace detail {

ThreadQueue::ThreadQueue() : m_owner(std::this_thread::get_id()) {}
ThreadQueue::~ThreadQueue() { Close(); }

std::shared_ptr<ThreadQueue> ThreadQueue::Current() {
  thread_local QueueHolder holder;
  if (!holder.queue) holder.queue = std::make_shared<ThreadQueue>();
  return holder.queue;
}

bool ThreadQueue::Post(const MSG& msg) {
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_closed) return false;
    m_posted.push_back(msg);
  }
  WakeOwner();
  return true;
}

void ThreadQueue::PostMouseMove(const MSG& msg) {
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_closed) return;
    if (!m_posted.empty() && m_posted.back().message == WM_MOUSEMOVE && m_posted.back().hwnd == msg.hwnd)
      m_posted.back() = msg;
    else
      m_posted.push_back(msg);
  }
  WakeOwner();
}

void ThreadQueue::PostQuit(int exitCode) {
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_quit = true;
    m_quitCode = exitCode;
  }
  WakeOwner();
}

LRESULT ThreadQueue::SendFromOtherThread(const MSG& msg) {
  auto item = std::make_shared<SentItem>();
  item->msg = msg;
  std::future<LRESULT> result = item->result.get_future();
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_closed) return 0;
    m_sent.push_back(item);
  }
  WakeOwner();
  return result.get();
}

void ThreadQueue::WakeOwner() {
  if (IsOwnerThread()) return;
  m_wake.notify_all();
  if (IEventSource* source = m_source.load()) source->Wake();
}

void ThreadQueue::Close() {
  std::deque<std::shared_ptr<SentItem>> pending;
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_closed = true;
    pending.swap(m_sent);
    m_posted.clear();
  }
  for (auto& item : pending) item->result.set_value(0);
}

void ThreadQueue::RunSentMessages() {
  for (;;) {
    std::shared_ptr<SentItem> item;
    {
      std::lock_guard<std::mutex> lock(m_mutex);
      if (m_sent.empty()) return;
      item = m_sent.front();
      m_sent.pop_front();
    }
    const MSG& m = item->msg;
    item->result.set_value(DeliverMessage(m.hwnd, m.message, m.wParam, m.lParam));
  }
}

bool ThreadQueue::TakePosted(MSG* out, HWND hwnd, UINT filterMin, UINT filterMax, bool remove) {
  std::lock_guard<std::mutex> lock(m_mutex);
  for (auto it = m_posted.begin(); it != m_posted.end(); ++it) {
    if (!InFilter(*it, hwnd, filterMin, filterMax)) continue;
    *out = *it;
    if (remove) m_posted.erase(it);
    return true;
  }
  return false;
}

bool ThreadQueue::TakeQuit(MSG* out, bool remove) {
  std::lock_guard<std::mutex> lock(m_mutex);
  if (!m_quit) return false;
  *out = MSG{nullptr, WM_QUIT, static_cast<WPARAM>(m_quitCode), 0, 0, {}};
  if (remove) m_quit = false;
  return true;
}

bool ThreadQueue::TakePaint(MSG* out, HWND hwnd, UINT filterMin, UINT filterMax) {
  for (HWND candidate : m_paint) {
    MSG msg{candidate, WM_PAINT, 0, 0, 0, {}};
    if (!InFilter(msg, hwnd, filterMin, filterMax) || !WindowWantsPaint(candidate)) continue;
    *out = msg;
    return true;
  }
  return false;
}

bool ThreadQueue::TakeTimer(MSG* out, HWND hwnd, UINT filterMin, UINT filterMax, bool remove) {
  const std::uint64_t now = MessageClockNow();
  Timer* best = nullptr;
  for (Timer& t : m_timers) {
    MSG probe{t.hwnd, WM_TIMER, 0, 0, 0, {}};
    if (t.due > now || !InFilter(probe, hwnd, filterMin, filterMax)) continue;
    if (!best || t.due < best->due) best = &t;
  }
  if (!best) return false;
  *out = MSG{best->hwnd, WM_TIMER, best->id, reinterpret_cast<LPARAM>(best->proc), 0, {}};
  if (remove) best->due = now + best->elapse;
  return true;
}

bool ThreadQueue::Peek(MSG* out, HWND hwnd, UINT filterMin, UINT filterMax, bool remove) {
  IEventSource* source = m_source.load();
  RunSentMessages();
  if (source) source->Pump();
  RunSentMessages();
  MSG msg;
  const bool found = TakePosted(&msg, hwnd, filterMin, filterMax, remove) || TakeQuit(&msg, remove) ||
                     TakePaint(&msg, hwnd, filterMin, filterMax) ||
                     TakeTimer(&msg, hwnd, filterMin, filterMax, remove);
  if (!found) return false;
  if (msg.time == 0) msg.time = static_cast<DWORD>(MessageClockNow());
  if (remove) {
    t_lastMessageTime = msg.time;
    if (source) source->OnRetrieved(msg);
  }
  *out = msg;
  return true;
}

std::optional<std::uint64_t> ThreadQueue::NextDue() const {
  std::optional<std::uint64_t> due;
  for (const Timer& t : m_timers) due = due ? std::min(*due, t.due) : t.due;
  if (IEventSource* source = m_source.load()) {
    if (auto hover = source->NextDue()) due = due ? std::min(*due, *hover) : *hover;
  }
  return due;
}

void ThreadQueue::WaitForWork(std::int64_t maxMs) {
  std::int64_t timeout = maxMs;
  if (auto due = NextDue()) {
    const std::uint64_t now = MessageClockNow();
    const auto untilDue = *due > now ? static_cast<std::int64_t>(*due - now) : 0;
    timeout = timeout < 0 ? untilDue : std::min(timeout, untilDue);
  }
  // A hand-driven clock moves without any event: look again regularly.
  if (g_clock.load() && (timeout < 0 || timeout > 10)) timeout = 10;
  if (timeout == 0) return;

  if (IEventSource* source = m_source.load()) {
    source->Wait(timeout);
    return;
  }
  std::unique_lock<std::mutex> lock(m_mutex);
  auto ready = [&] { return !m_posted.empty() || !m_sent.empty() || m_quit || m_closed; };
  if (timeout < 0)
    m_wake.wait(lock, ready);
  else
    m_wake.wait_for(lock, std::chrono::milliseconds(timeout), ready);
}

void ThreadQueue::AddPaint(HWND hwnd) {
  if (std::find(m_paint.begin(), m_paint.end(), hwnd) == m_paint.end()) m_paint.push_back(hwnd);
}

void ThreadQueue::RemovePaint(HWND hwnd) {
  m_paint.erase(std::remove(m_paint.begin(), m_paint.end(), hwnd), m_paint.end());
}

UINT_PTR ThreadQueue::SetTimer(HWND hwnd, UINT_PTR id, UINT elapse, TIMERPROC proc) {
  elapse = std::clamp(elapse, USER_TIMER_MINIMUM, USER_TIMER_MAXIMUM);
  if (!hwnd) {
    const bool known = std::any_of(m_timers.begin(), m_timers.end(),
                                   [&](const Timer& t) { return !t.hwnd && t.id == id; });
    if (!known) id = m_nextThreadTimerId++;
  }
  const std::uint64_t due = MessageClockNow() + elapse;
  const UINT_PTR result = id ? id : 1;  // never 0, which means failure
  for (Timer& t : m_timers) {
    if (t.hwnd == hwnd && t.id == id) {
      t = Timer{hwnd, id, elapse, due, proc};
      return result;
    }
  }
  m_timers.push_back(Timer{hwnd, id, elapse, due, proc});
  return result;
}

bool ThreadQueue::KillTimer(HWND hwnd, UINT_PTR id) {
  auto it = std::find_if(m_timers.begin(), m_timers.end(),
                         [&](const Timer& t) { return t.hwnd == hwnd && t.id == id; });
  if (it == m_timers.end()) return false;
  m_timers.erase(it);
  return true;
}

void ThreadQueue::PurgeWindow(HWND hwnd) {
  RemovePaint(hwnd);
  m_timers.erase(std::remove_if(m_timers.begin(), m_timers.end(), [&](const Timer& t) { return t.hwnd == hwnd; }),
                 m_timers.end());
  std::lock_guard<std::mutex> lock(m_mutex);
  m_posted.erase(std::remove_if(m_posted.begin(), m_posted.end(), [&](const MSG& m) { return m.hwnd == hwnd; }),
                 m_posted.end());
}

}  // namespace detail

// --- public functions ----------------------------------------------------------

BOOL PostMessageW(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  MSG msg{hwnd, message, wParam, lParam, static_cast<DWORD>(MessageClockNow()), {}};
  if (!hwnd) return detail::ThreadQueue::Current()->Post(msg) ? TRUE : FALSE;
  auto queue = detail::WindowRegistry::Get().QueueOf(hwnd);
  return queue && queue->Post(msg) ? TRUE : FALSE;
}

LRESULT SendMessageW(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  auto queue = detail::WindowRegistry::Get().QueueOf(hwnd);
  if (!queue) return 0;
  if (queue->IsOwnerThread()) return detail::DeliverMessage(hwnd, message, wParam, lParam);
  return queue->SendFromOtherThread(MSG{hwnd, message, wParam, lParam, 0, {}});
}

void PostQuitMessage(int exitCode) { detail::ThreadQueue::Current()->PostQuit(exitCode); }

BOOL PeekMessageW(MSG* msg, HWND hwnd, UINT filterMin, UINT filterMax, UINT removeFlags) {
  if (!msg) return FALSE;
  return detail::ThreadQueue::Current()->Peek(msg, hwnd, filterMin, filterMax, (removeFlags & PM_REMOVE) != 0)
             ? TRUE
             : FALSE;
}

BOOL GetMessageW(MSG* msg, HWND hwnd, UINT filterMin, UINT filterMax) {
  if (!msg) return FALSE;
  auto queue = detail::ThreadQueue::Current();
  while (!queue->Peek(msg, hwnd, filterMin, filterMax, true)) queue->WaitForWork();
  return msg->message == WM_QUIT ? FALSE : TRUE;
}

void WaitMessage(DWORD timeoutMs) {
  auto queue = detail::ThreadQueue::Current();
  MSG msg;
  if (queue->Peek(&msg, nullptr, 0, 0, false)) return;
  if (timeoutMs == 0) {
    queue->WaitForWork();
    return;
  }
  const std::uint64_t until = MessageClockNow() + timeoutMs;
  for (std::uint64_t now = MessageClockNow(); now < until; now = MessageClockNow()) {
    queue->WaitForWork(static_cast<std::int64_t>(until - now));
    if (queue->Peek(&msg, nullptr, 0, 0, false)) return;
  }
}

LRESULT DispatchMessageW(const MSG* msg) {
  if (!msg) return 0;
  if (msg->message == WM_TIMER && msg->lParam) {
    auto proc = reinterpret_cast<TIMERPROC>(msg->lParam);
    proc(msg->hwnd, WM_TIMER, msg->wParam, static_cast<DWORD>(MessageClockNow()));
    return 0;
  }
  if (!msg->hwnd) return 0;
  if (msg->message != WM_PAINT) return detail::DeliverMessage(msg->hwnd, msg->message, msg->wParam, msg->lParam);

  const unsigned before = detail::PaintScopeSerial(msg->hwnd);
  const LRESULT result = detail::DeliverMessage(msg->hwnd, msg->message, msg->wParam, msg->lParam);
  if (detail::PaintScopeSerial(msg->hwnd) == before) detail::ValidateWholeWindow(msg->hwnd);
  return result;
}

BOOL WalkPreTranslateTree(MSG* msg) {
  if (!msg) return FALSE;
  for (CWnd* wnd = CWnd::FromHandle(msg->hwnd); wnd; wnd = wnd->GetParent())
    if (wnd->PreTranslateMessage(msg)) return TRUE;
  return FALSE;
}

int RunMessageLoop() {
  MSG msg;
  while (GetMessageW(&msg, nullptr, 0, 0)) {
    if (!WalkPreTranslateTree(&msg)) DispatchMessageW(&msg);
  }
  return static_cast<int>(msg.wParam);
}

DWORD GetMessageTime() { return t_lastMessageTime; }

UINT_PTR SetTimer(HWND hwnd, UINT_PTR id, UINT elapse, TIMERPROC proc) {
  if (hwnd && !CWnd::FromHandle(hwnd)) return 0;
  return detail::ThreadQueue::Current()->SetTimer(hwnd, id, elapse, proc);
}

BOOL KillTimer(HWND hwnd, UINT_PTR id) {
  if (hwnd && !CWnd::FromHandle(hwnd)) return FALSE;
  return detail::ThreadQueue::Current()->KillTimer(hwnd, id) ? TRUE : FALSE;
}

}  // namespace KarvelUI
