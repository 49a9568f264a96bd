#include <karvelui/BackUpdateTask.h>

#include <mutex>

namespace KarvelUI {

UILock::UILock(CRITICAL_SECTION* section, int tryOnly) : m_pSection(section) {
  if (!m_pSection) return;
  if (tryOnly) {
    m_bEntered = m_pSection->TryEnter();
  } else {
    m_pSection->Enter();
    m_bEntered = true;
  }
}

UILock::~UILock() {
  if (m_pSection && m_bEntered) m_pSection->Leave();
}

CRITICAL_SECTION* UILock::CreateLock() { return new CRITICAL_SECTION(); }

void UILock::ReleaseLock(CRITICAL_SECTION* section) { delete section; }

BackUpdateTask::BackUpdateTask() : m_pLock(UILock::CreateLock()) {}

BackUpdateTask::~BackUpdateTask() {
  // Subclasses kill their worker before their own members go; this is the
  // last line of defence against a thread outliving the task.
  KillUpdateTask(this);
  m_hThread.Join();
  UILock::ReleaseLock(m_pLock);
}

void BackUpdateTask::Release() { delete this; }

BackUpdateTask* BackUpdateTask::CreateTask(BackUpdateTask* task, void* owner) {
  if (!task || !owner) return nullptr;
  task->m_pOwner = owner;
  task->OnCreate();
  return task;
}

void BackUpdateTask::SetTaskEvent(BackUpdateTask* task) { task->m_hEvent.Set(); }

bool BackUpdateTask::StartWorker() {
  if (!m_pThreadFunc) return false;
  m_hThread.Join();  // a worker that ended on its own is collected first
  const ThreadFunc func = m_pThreadFunc;
  return m_hThread.Start([func, this] { func(this); });
}

int BackUpdateTask::BeginUpdateTask(BackUpdateTask* task) {
  if (!task) return 0;
  if (task->m_nState == TASK_STATE_WORKING) return 1;
  UILock lock(task->m_pLock);
  switch (task->m_nState) {
    case TASK_STATE_KILL:
      return 0;
    case TASK_STATE_NONE:
      if (!task->StartWorker()) {
        task->m_nState = TASK_STATE_NONE;
        return 0;
      }
      // Marked as woken at once, so that a kill issued before the new thread
      // runs is not mistaken for "no worker".
      task->m_nState = TASK_STATE_WOKEN;
      break;
    case TASK_STATE_WAITING:
      task->m_nState = TASK_STATE_WOKEN;
      break;
    default:  // restart or woken: the worker is about to work anyway
      return 1;
  }
  SetTaskEvent(task);
  return 1;
}

int BackUpdateTask::ResetUpdateTask(BackUpdateTask* task) {
  if (!task) return 0;
  if (task->m_nState == TASK_STATE_RESTART) return 1;
  UILock lock(task->m_pLock);
  switch (task->m_nState) {
    case TASK_STATE_WORKING:
      task->m_nState = TASK_STATE_RESTART;
      return 1;
    case TASK_STATE_WAITING:
      task->m_nState = TASK_STATE_WOKEN;
      SetTaskEvent(task);
      return 1;
    default:
      return 0;
  }
}

void BackUpdateTask::KillUpdateTask(BackUpdateTask* task) {
  if (!task) return;
  const int quick = task->m_nState;
  if (quick == TASK_STATE_NONE || quick == TASK_STATE_KILL) return;
  {
    UILock lock(task->m_pLock);
    const int previous = task->m_nState.exchange(TASK_STATE_KILL);
    if (previous == TASK_STATE_WAITING) SetTaskEvent(task);
  }
  task->m_hDoneEvent.Wait();
  task->m_hDoneEvent.Reset();
  task->m_hThread.Join();
}

bool BackUpdateTask::WaitForWork() {
  {
    UILock lock(m_pLock);
    const int state = m_nState;
    if (state == TASK_STATE_KILL) return false;
    if (state == TASK_STATE_RESTART || state == TASK_STATE_WOKEN) {
      m_hEvent.Reset();  // the wake-up this signal announced is being taken now
      return true;
    }
    m_nState = TASK_STATE_WAITING;
  }
  m_hEvent.Wait();
  m_hEvent.Reset();
  return m_nState != TASK_STATE_KILL;
}

bool BackUpdateTask::BeginPass() {
  UILock lock(m_pLock);
  if (m_nState == TASK_STATE_KILL) return false;
  m_nState = TASK_STATE_WORKING;
  return true;
}

BackUpdateTask::UnitCheck BackUpdateTask::CheckBetweenUnits() {
  UILock lock(m_pLock);
  switch (m_nState) {
    case TASK_STATE_RESTART:
      return UnitCheck::Restart;
    case TASK_STATE_KILL:
      m_nState = TASK_STATE_NONE;
      m_hDoneEvent.Set();
      return UnitCheck::Exit;
    default:
      return UnitCheck::Continue;
  }
}

void BackUpdateTask::ExitWorker() {
  UILock lock(m_pLock);
  m_nState = TASK_STATE_NONE;
  m_hDoneEvent.Set();
}

void BackUpdateTask::RunWorkerLoop(const std::function<PassEnd()>& runPass) {
  while (WaitForWork()) {
    for (;;) {
      if (!BeginPass()) {
        ExitWorker();
        return;
      }
      const PassEnd end = runPass();
      if (end == PassEnd::Exit) return;
      if (end == PassEnd::Completed) break;
    }
  }
  ExitWorker();
}

}  // namespace KarvelUI
