#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include <karvelui/BackUpdateTask.h>

using namespace KarvelUI;

namespace {

// Waits (without assuming any speed) until pred holds; fails after a minute.
template <class Pred>
bool WaitUntil(Pred pred) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!pred()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::yield();
  }
  return true;
}

// A worker whose passes have `units` units; every unit waits for a permit
// from the test, so the test decides where the worker is.
class GatedTask : public BackUpdateTask {
 public:
  explicit GatedTask(int units) : m_units(units) {}

  void OnCreate() override {
    ++onCreateCalls;
    m_pThreadFunc = &GatedTask::ThreadMain;
  }

  void Permit(int count = 1) {
    {
      std::lock_guard<std::mutex> lock(m_mutex);
      m_permits += count;
    }
    m_changed.notify_all();
  }

  std::atomic<int> onCreateCalls{0};
  std::atomic<int> threadsStarted{0};
  std::atomic<int> threadsEnded{0};
  std::atomic<int> passes{0};
  std::atomic<int> unitsEntered{0};
  std::atomic<int> unitsDone{0};

  ~GatedTask() override { KillUpdateTask(this); }

 private:
  static void ThreadMain(void* task) { static_cast<GatedTask*>(task)->Run(); }

  void Run() {
    ++threadsStarted;
    RunWorkerLoop([this] { return Pass(); });
    ++threadsEnded;
  }

  PassEnd Pass() {
    ++passes;
    for (int i = 0; i < m_units; ++i) {
      ++unitsEntered;
      TakePermit();
      switch (CheckBetweenUnits()) {
        case UnitCheck::Restart: return PassEnd::Restart;
        case UnitCheck::Exit: return PassEnd::Exit;
        case UnitCheck::Continue: break;
      }
      ++unitsDone;
    }
    return PassEnd::Completed;
  }

  void TakePermit() {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return m_permits > 0; });
    --m_permits;
  }

  const int m_units;
  std::mutex m_mutex;
  std::condition_variable m_changed;
  int m_permits = 0;
};

struct TaskFixture : ::testing::Test {
  GatedTask* task = new GatedTask(2);
  int owner = 0;
  void SetUp() override { ASSERT_EQ(BackUpdateTask::CreateTask(task, &owner), task); }
  void TearDown() override {
    task->Permit(1000);  // never leave the worker blocked in a unit
    task->Release();
  }
  bool StateIs(int state) { return WaitUntil([&] { return task->GetState() == state; }); }
};

}  // namespace

TEST(BackUpdateTask, FreshTaskAndNullOwner) {
  GatedTask* orphan = new GatedTask(1);
  EXPECT_EQ(BackUpdateTask::CreateTask(orphan, nullptr), nullptr);
  EXPECT_EQ(orphan->onCreateCalls.load(), 0);
  EXPECT_EQ(orphan->GetOwner(), nullptr);
  EXPECT_EQ(BackUpdateTask::ResetUpdateTask(orphan), 0);
  EXPECT_EQ(orphan->GetState(), TASK_STATE_NONE);
  BackUpdateTask::KillUpdateTask(orphan);  // never begun: returns at once
  // Without a thread function there is nothing to start.
  EXPECT_EQ(BackUpdateTask::BeginUpdateTask(orphan), 0);
  EXPECT_EQ(orphan->GetState(), TASK_STATE_NONE);
  orphan->Release();
}

TEST_F(TaskFixture, BeginStartsOneWorkerThatWaitsBetweenPasses) {
  EXPECT_EQ(task->onCreateCalls.load(), 1);
  EXPECT_EQ(task->GetOwner(), &owner);
  EXPECT_EQ(BackUpdateTask::BeginUpdateTask(task), 1);
  ASSERT_TRUE(WaitUntil([&] { return task->unitsEntered == 1; }));
  EXPECT_EQ(task->GetState(), TASK_STATE_WORKING);
  EXPECT_EQ(BackUpdateTask::BeginUpdateTask(task), 1);  // already working
  task->Permit(2);
  ASSERT_TRUE(StateIs(TASK_STATE_WAITING));
  EXPECT_EQ(task->passes.load(), 1);
  EXPECT_EQ(task->unitsDone.load(), 2);

  EXPECT_EQ(BackUpdateTask::BeginUpdateTask(task), 1);  // wakes the same thread
  ASSERT_TRUE(WaitUntil([&] { return task->unitsEntered == 3; }));
  EXPECT_EQ(task->passes.load(), 2);
  EXPECT_EQ(task->threadsStarted.load(), 1);
}

TEST_F(TaskFixture, ResetRestartsARunningPassAndWakesAWaitingOne) {
  ASSERT_EQ(BackUpdateTask::BeginUpdateTask(task), 1);
  ASSERT_TRUE(WaitUntil([&] { return task->unitsEntered == 1; }));
  EXPECT_EQ(BackUpdateTask::ResetUpdateTask(task), 1);
  EXPECT_EQ(task->GetState(), TASK_STATE_RESTART);
  EXPECT_EQ(BackUpdateTask::ResetUpdateTask(task), 1);  // already asked
  task->Permit();  // the unit ends, sees the restart, starts over
  ASSERT_TRUE(WaitUntil([&] { return task->unitsEntered == 2; }));
  EXPECT_EQ(task->passes.load(), 2);
  EXPECT_EQ(task->unitsDone.load(), 0);
  task->Permit(2);
  ASSERT_TRUE(StateIs(TASK_STATE_WAITING));
  EXPECT_EQ(task->unitsDone.load(), 2);

  EXPECT_EQ(BackUpdateTask::ResetUpdateTask(task), 1);
  ASSERT_TRUE(WaitUntil([&] { return task->unitsEntered == 4; }));
  EXPECT_EQ(task->passes.load(), 3);
}

TEST_F(TaskFixture, KillWhileWaitingWakesAndEndsTheWorker) {
  ASSERT_EQ(BackUpdateTask::BeginUpdateTask(task), 1);
  task->Permit(2);
  ASSERT_TRUE(StateIs(TASK_STATE_WAITING));
  BackUpdateTask::KillUpdateTask(task);
  EXPECT_EQ(task->GetState(), TASK_STATE_NONE);
  EXPECT_EQ(task->threadsEnded.load(), 1);
  EXPECT_EQ(task->passes.load(), 1);
}

TEST_F(TaskFixture, KillWhileWorkingWaitsForTheUnitThenBeginStartsAgain) {
  ASSERT_EQ(BackUpdateTask::BeginUpdateTask(task), 1);
  ASSERT_TRUE(WaitUntil([&] { return task->unitsEntered == 1; }));
  std::atomic<bool> killed{false};
  std::thread killer([&] {
    BackUpdateTask::KillUpdateTask(task);
    killed = true;
  });
  ASSERT_TRUE(StateIs(TASK_STATE_KILL));
  EXPECT_EQ(BackUpdateTask::BeginUpdateTask(task), 0);  // refused while the kill is pending
  EXPECT_FALSE(killed.load());  // the worker is still inside its unit
  task->Permit();
  killer.join();
  EXPECT_EQ(task->GetState(), TASK_STATE_NONE);
  EXPECT_EQ(task->unitsDone.load(), 0);  // the unit's result was abandoned
  EXPECT_EQ(task->threadsEnded.load(), 1);

  ASSERT_EQ(BackUpdateTask::BeginUpdateTask(task), 1);
  ASSERT_TRUE(WaitUntil([&] { return task->unitsEntered == 2; }));
  EXPECT_EQ(task->threadsStarted.load(), 2);
  task->Permit(2);
  ASSERT_TRUE(StateIs(TASK_STATE_WAITING));
  EXPECT_EQ(task->unitsDone.load(), 2);
}

TEST_F(TaskFixture, KillRightAfterBeginIsNotLost) {
  task->Permit(1000);  // wherever the worker is, it can reach its next check
  ASSERT_EQ(BackUpdateTask::BeginUpdateTask(task), 1);
  BackUpdateTask::KillUpdateTask(task);  // possibly before the thread ran at all
  EXPECT_EQ(task->GetState(), TASK_STATE_NONE);
  EXPECT_EQ(task->threadsStarted.load(), 1);
  EXPECT_EQ(task->threadsEnded.load(), 1);  // a lost kill would leave it running
}

TEST(UILock, NullTryAndRecursion) {
  { UILock none(nullptr); }  // nothing to enter or leave

  CRITICAL_SECTION* section = UILock::CreateLock();
  {
    UILock outer(section);
    UILock inner(section);  // recursive
    bool otherEntered = true;
    std::thread other([&] {
      UILock attempt(section, 1);
      otherEntered = attempt.m_bEntered;
    });
    other.join();
    EXPECT_FALSE(otherEntered);
  }
  bool enteredAfter = false;
  std::thread later([&] {
    UILock attempt(section, 1);
    enteredAfter = attempt.m_bEntered;
  });
  later.join();
  EXPECT_TRUE(enteredAfter);
  UILock::ReleaseLock(section);
}
