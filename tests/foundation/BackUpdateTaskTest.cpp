// The background worker protocol: begin, reset and kill from any state,
// with a worker whose every unit waits for a permit from the test, so the
// test decides where the worker is (no sleeps, no timing assumptions).

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <tuple>

#include <karvelui/BackUpdateTask.h>

using namespace KarvelUI;

namespace {

// Waits until pred holds; fails after a minute.
template <class Pred>
bool WaitUntil(Pred pred) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!pred()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::yield();
  }
  return true;
}

// Passes of two units; every unit waits for a permit.
class GatedTask : public BackUpdateTask {
 public:
  void OnCreate() override { m_pThreadFunc = [](void* task) { static_cast<GatedTask*>(task)->Run(); }; }
  void Permit(int count = 1) {
    {
      std::lock_guard<std::mutex> lock(m_mutex);
      m_permits += count;
    }
    m_changed.notify_all();
  }
  ~GatedTask() override { KillUpdateTask(this); }

  std::atomic<int> threadsStarted{0}, threadsEnded{0}, passes{0}, unitsEntered{0}, unitsDone{0};

 private:
  void Run() {
    ++threadsStarted;
    RunWorkerLoop([this] { return Pass(); });
    ++threadsEnded;
  }
  PassEnd Pass() {
    ++passes;
    for (int i = 0; i < 2; ++i) {
      ++unitsEntered;
      {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [this] { return m_permits > 0; });
        --m_permits;
      }
      switch (CheckBetweenUnits()) {
        case UnitCheck::Restart: return PassEnd::Restart;
        case UnitCheck::Exit: return PassEnd::Exit;
        case UnitCheck::Continue: ++unitsDone;
      }
    }
    return PassEnd::Completed;
  }
  std::mutex m_mutex;
  std::condition_variable m_changed;
  int m_permits = 0;
};

struct TaskFixture : ::testing::Test {
  GatedTask* task = new GatedTask();
  int owner = 0;
  void SetUp() override { ASSERT_EQ(BackUpdateTask::CreateTask(task, &owner), task); }
  void TearDown() override {
    task->Permit(1000);  // never leave the worker blocked in a unit
    task->Release();
  }
  bool StateIs(int state) { return WaitUntil([&] { return task->GetState() == state; }); }
  bool Entered(int units) { return WaitUntil([&] { return task->unitsEntered == units; }); }
};

}  // namespace

TEST(BackUpdateTask, WithoutOwnerOrThreadFunctionNothingStarts) {
  GatedTask* orphan = new GatedTask();
  EXPECT_EQ(BackUpdateTask::CreateTask(orphan, nullptr), nullptr);
  EXPECT_EQ(BackUpdateTask::ResetUpdateTask(orphan), 0);
  BackUpdateTask::KillUpdateTask(orphan);  // never begun: returns at once
  EXPECT_EQ(BackUpdateTask::BeginUpdateTask(orphan), 0);  // OnCreate never ran: no thread function
  EXPECT_EQ(orphan->GetState(), TASK_STATE_NONE);
  orphan->Release();
}

TEST_F(TaskFixture, BeginStartsOneWorkerThatWaitsBetweenPassesAndWakesForTheNext) {
  EXPECT_EQ(task->GetOwner(), &owner);
  EXPECT_EQ(BackUpdateTask::BeginUpdateTask(task), 1);
  ASSERT_TRUE(Entered(1));
  EXPECT_EQ(task->GetState(), TASK_STATE_WORKING);
  EXPECT_EQ(BackUpdateTask::BeginUpdateTask(task), 1);  // already working
  task->Permit(2);
  ASSERT_TRUE(StateIs(TASK_STATE_WAITING));
  EXPECT_EQ(task->unitsDone.load(), 2);
  EXPECT_EQ(BackUpdateTask::BeginUpdateTask(task), 1);  // wakes the same thread
  ASSERT_TRUE(Entered(3));
  EXPECT_EQ(std::make_tuple(task->passes.load(), task->threadsStarted.load()), std::make_tuple(2, 1));
}

TEST_F(TaskFixture, ResetRestartsARunningPassAndWakesAWaitingOne) {
  ASSERT_EQ(BackUpdateTask::BeginUpdateTask(task), 1);
  ASSERT_TRUE(Entered(1));
  EXPECT_EQ(BackUpdateTask::ResetUpdateTask(task), 1);
  EXPECT_EQ(task->GetState(), TASK_STATE_RESTART);
  EXPECT_EQ(BackUpdateTask::ResetUpdateTask(task), 1);  // already asked
  task->Permit();  // the unit ends, sees the restart, starts over
  ASSERT_TRUE(Entered(2));
  EXPECT_EQ(std::make_tuple(task->passes.load(), task->unitsDone.load()), std::make_tuple(2, 0));
  task->Permit(2);
  ASSERT_TRUE(StateIs(TASK_STATE_WAITING));
  EXPECT_EQ(BackUpdateTask::ResetUpdateTask(task), 1);
  ASSERT_TRUE(Entered(4));
  EXPECT_EQ(task->passes.load(), 3);
}

TEST_F(TaskFixture, KillWhileWaitingWakesAndEndsTheWorker) {
  ASSERT_EQ(BackUpdateTask::BeginUpdateTask(task), 1);
  task->Permit(2);
  ASSERT_TRUE(StateIs(TASK_STATE_WAITING));
  BackUpdateTask::KillUpdateTask(task);
  EXPECT_EQ(std::make_tuple(task->GetState(), task->threadsEnded.load(), task->passes.load()),
            std::make_tuple(int{TASK_STATE_NONE}, 1, 1));
}

TEST_F(TaskFixture, KillWhileWorkingWaitsForTheUnitThenBeginStartsAgain) {
  ASSERT_EQ(BackUpdateTask::BeginUpdateTask(task), 1);
  ASSERT_TRUE(Entered(1));
  std::atomic<bool> killed{false};
  std::thread killer([&] {
    BackUpdateTask::KillUpdateTask(task);
    killed = true;
  });
  ASSERT_TRUE(StateIs(TASK_STATE_KILL));
  EXPECT_EQ(BackUpdateTask::BeginUpdateTask(task), 0);  // refused while the kill is pending
  EXPECT_FALSE(killed.load());                          // the worker is still inside its unit
  task->Permit();
  killer.join();  // the unit's result was abandoned
  EXPECT_EQ(std::make_tuple(task->GetState(), task->unitsDone.load()), std::make_tuple(int{TASK_STATE_NONE}, 0));
  ASSERT_EQ(BackUpdateTask::BeginUpdateTask(task), 1);
  ASSERT_TRUE(Entered(2));
  EXPECT_EQ(task->threadsStarted.load(), 2);
}

TEST_F(TaskFixture, KillRightAfterBeginIsNotLost) {
  task->Permit(1000);  // wherever the worker is, it can reach its next check
  ASSERT_EQ(BackUpdateTask::BeginUpdateTask(task), 1);
  BackUpdateTask::KillUpdateTask(task);  // possibly before the thread ran at all; a lost kill would leave it running
  EXPECT_EQ(std::make_tuple(task->GetState(), task->threadsEnded.load()), std::make_tuple(int{TASK_STATE_NONE}, 1));
}

TEST(UILock, IsRecursiveExcludesOtherThreadsAndTakesNoLockFromNull) {
  { UILock none(nullptr); }
  CRITICAL_SECTION* section = UILock::CreateLock();
  auto otherEnters = [section] {
    bool entered = false;
    std::thread([&] { entered = UILock(section, 1).m_bEntered; }).join();
    return entered;
  };
  {
    UILock outer(section);
    UILock inner(section);
    EXPECT_FALSE(otherEnters());
  }
  EXPECT_TRUE(otherEnters());
  UILock::ReleaseLock(section);
}
