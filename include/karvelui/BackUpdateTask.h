#pragma once

// The library's background worker: one restartable thread driven by a state
// machine, a wake event, a done event and a lock. Its owner begins it,
// restarts its pass with fresh inputs, or kills it; the worker checks the
// state between units of work.
//
//   0 none -> 5 woken (begin starts the thread) -> 1 working (worker)
//   2 waiting (worker, after a pass) -> 5 woken (begin/reset) -> 1 working
//   1 -> 3 restart (reset) -> 1 (worker starts over);  1 -> 2 when a pass ends
//   1, 2, 3, 5 -> 4 kill requested (kill) -> 0 (worker exits, done event)
//
// A subclass sets m_pThreadFunc in OnCreate(); the thread function usually
// calls RunWorkerLoop with its pass. UILock is the scoped lock used around
// critical sections throughout the library.

#include <atomic>
#include <functional>

#include <karvelui/Export.h>
#include <karvelui/Types.h>
#include <karvelui/Sync.h>
#include <karvelui/Thread.h>

namespace KarvelUI {

enum UITaskState {
  TASK_STATE_NONE = 0,
  TASK_STATE_WORKING = 1,
  TASK_STATE_WAITING = 2,
  TASK_STATE_RESTART = 3,
  TASK_STATE_KILL = 4,
  TASK_STATE_WOKEN = 5,
};

// Enters the section for its lifetime; a null section locks nothing.
// tryOnly only tries to enter; the section is left only when it was entered.
struct KARVELUI_API UILock {
  UILock() = default;
  explicit UILock(CRITICAL_SECTION* section, int tryOnly = 0);
  ~UILock();
  // A copy would leave the section twice.
  UILock(const UILock&) = delete;
  UILock& operator=(const UILock&) = delete;

  static CRITICAL_SECTION* CreateLock();
  static void ReleaseLock(CRITICAL_SECTION* section);

  CRITICAL_SECTION* m_pSection = nullptr;
  bool m_bEntered = false;
};

class KARVELUI_API BackUpdateTask {
 public:
  using ThreadFunc = void (*)(void* task);

  BackUpdateTask();
  BackUpdateTask(const BackUpdateTask&) = delete;
  BackUpdateTask& operator=(const BackUpdateTask&) = delete;

  // Kills a worker that is still running, then deletes the task.
  virtual void Release();
  virtual void OnCreate() {}

  // Stores the owner and calls OnCreate(); null (and nothing done) for a
  // null owner.
  static BackUpdateTask* CreateTask(BackUpdateTask* task, void* owner);
  // Makes sure a worker exists and works; 0 when a kill is pending or no
  // thread can be started.
  static int BeginUpdateTask(BackUpdateTask* task);
  // Asks a running or waiting worker for a fresh pass; 0 when there is none.
  static int ResetUpdateTask(BackUpdateTask* task);
  // Stops the worker and waits until it has left its current unit.
  static void KillUpdateTask(BackUpdateTask* task);

  int GetState() const { return m_nState.load(); }
  void* GetOwner() const { return m_pOwner; }

 protected:
  virtual ~BackUpdateTask();

  enum class UnitCheck { Continue, Restart, Exit };
  enum class PassEnd { Completed, Restart, Exit };

  // --- the worker's side (called on the worker thread) ---------------------
  // Sleeps until a begin or reset wakes the worker; false when it must exit.
  // A restart requested while the last pass was ending starts a new pass at
  // once instead of being lost.
  bool WaitForWork();
  // Marks a pass as running; false when a kill arrived meanwhile.
  bool BeginPass();
  // Between units: Restart (start the pass over), Exit (the worker has
  // already signalled its end and must return) or Continue.
  UnitCheck CheckBetweenUnits();
  // Final state change of the worker: state 0 and the done event.
  void ExitWorker();
  // The whole loop: waits, runs passes (runPass returns how the pass ended,
  // usually from CheckBetweenUnits), exits on kill.
  void RunWorkerLoop(const std::function<PassEnd()>& runPass);

  void* m_pOwner = nullptr;
  ThreadFunc m_pThreadFunc = nullptr;
  std::atomic<int> m_nState{TASK_STATE_NONE};
  Thread m_hThread;
  ManualResetEvent m_hEvent;
  CRITICAL_SECTION* m_pLock;
  ManualResetEvent m_hDoneEvent;

 private:
  static void SetTaskEvent(BackUpdateTask* task);
  bool StartWorker();
};

}  // namespace KarvelUI
