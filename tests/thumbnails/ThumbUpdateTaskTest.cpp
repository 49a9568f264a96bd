#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <set>
#include <thread>

#include <karvelui/MessageQueue.h>
#include <karvelui/Wnd.h>
#include "ThumbTestSupport.h"
#include "dxcore/FakeCoreFixture.h"
#include "platform/Clock.h"
#include "support/PictureFiles.h"
#include "thumbnails/ThumbUpdateTask.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

// Waits (without assuming any speed) until pred holds; false after a minute.
template <class Pred>
bool WaitUntil(Pred pred) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!pred()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::yield();
  }
  return true;
}

// A list as the loader sees it, guarding its array with a short lock.
class TestList : public IThumbList {
 public:
  ~TestList() { task->Release(); }  // the worker goes before the list

  void Add(std::shared_ptr<_ThumbnailConfig> thumb) {
    std::lock_guard lock(m_mutex);
    m_items.push_back(std::move(thumb));
  }
  void AddFailed(int count) {
    for (int i = 0; i < count; ++i) {
      auto thumb = std::make_shared<_ThumbnailConfig>();
      thumb->SetState(THUMB_STATE_FAILED);  // reported on every visit, never decoded
      Add(thumb);
    }
  }
  void Remove(int index) {
    std::lock_guard lock(m_mutex);
    m_items.erase(m_items.begin() + index);
  }
  void Select(int index) {
    std::lock_guard lock(m_mutex);
    m_selected = index;
  }
  std::vector<int> Loaded() {
    std::lock_guard lock(m_mutex);
    return m_loaded;
  }
  // Runs one pass from a waiting worker (or a fresh task) and waits for its end.
  void RunPass() {
    if (!BackUpdateTask::ResetUpdateTask(task)) BackUpdateTask::BeginUpdateTask(task);
    ASSERT_TRUE(WaitUntil([this] { return task->GetState() == TASK_STATE_WAITING; }));
  }

  int GetThumbCount() override {
    std::lock_guard lock(m_mutex);
    return static_cast<int>(m_items.size());
  }
  std::shared_ptr<_ThumbnailConfig> GetThumbAt(int index) override {
    std::lock_guard lock(m_mutex);
    return index >= 0 && index < static_cast<int>(m_items.size()) ? m_items[index] : nullptr;
  }
  int GetSelectedIndex() override {
    std::lock_guard lock(m_mutex);
    return m_selected;
  }
  HWND GetRepaintWindow() override { return window; }
  void ItemThumbLoadedCallback(int index) override {
    if (onLoaded) onLoaded(index);
    std::lock_guard lock(m_mutex);
    m_loaded.push_back(index);
  }

  HWND window = nullptr;
  std::function<void(int)> onLoaded;  // set before the worker starts
  ThumbUpdateTask* task = ThumbUpdateTask::Create(this);

 private:
  std::mutex m_mutex;
  std::vector<std::shared_ptr<_ThumbnailConfig>> m_items;
  int m_selected = -1;
  std::vector<int> m_loaded;
};

TEST(ThumbUpdateTask, WalksOutwardFromTheSelectionWrappingAShortListAndRestartsAroundANewOne) {
  TestList list;
  list.AddFailed(5);
  list.Select(2);
  list.RunPass();
  std::vector<int> loaded = list.Loaded();
  ASSERT_EQ(loaded.size(), 81u);
  EXPECT_EQ(std::vector<int>(loaded.begin(), loaded.begin() + 10), (std::vector<int>{2, 1, 3, 0, 4, 4, 0, 3, 1, 2}));

  list.Select(4);
  list.RunPass();
  loaded = list.Loaded();
  ASSERT_EQ(loaded.size(), 162u);
  EXPECT_EQ(std::vector<int>(loaded.begin() + 81, loaded.begin() + 86), (std::vector<int>{4, 3, 0, 2, 1}));
}

TEST(ThumbUpdateTask, WithoutASelectionAHundredItemsAreVisitedFrom40OutToItems0And80) {
  TestList list;
  list.AddFailed(100);
  list.RunPass();
  const std::vector<int> loaded = list.Loaded();
  ASSERT_EQ(loaded.size(), 81u);
  EXPECT_EQ(std::vector<int>(loaded.begin(), loaded.begin() + 5), (std::vector<int>{40, 39, 41, 38, 42}));
  EXPECT_EQ(loaded[79], 0);
  EXPECT_EQ(loaded[80], 80);
  const std::set<int> visited(loaded.begin(), loaded.end());
  EXPECT_EQ(visited.size(), 81u);
  EXPECT_EQ(*visited.rbegin(), 80);
}

TEST(ThumbUpdateTask, RepaintsArePostedAtMostEvery50Milliseconds) {
  std::atomic<LONGLONG> ticks{1'000'000'000'000};
  const PerformanceCounterHook previous = SetPerformanceCounterHook([&ticks] { return ticks.load(); });
  CWnd wnd;
  WNDCLASSW cls;
  cls.lpszClassName = L"KarvelThumbTestWindow";
  AfxRegisterClass(&cls);
  ASSERT_TRUE(wnd.CreateEx(0, cls.lpszClassName, L"list", WS_POPUP, CRect(0, 0, 40, 40), nullptr, 0));
  {
    TestList list;
    list.window = wnd.m_hWnd;
    list.onLoaded = [&ticks](int) { ticks += 20'000'000; };  // every item takes 20 ms
    list.AddFailed(3);
    list.RunPass();
  }
  SetPerformanceCounterHook(previous);
  int paints = 0;
  MSG msg;
  while (PeekMessageW(&msg, wnd.m_hWnd, WM_PAINT, WM_PAINT, PM_REMOVE))
    if (msg.wParam == 0 && msg.lParam == 0) ++paints;
  EXPECT_EQ(paints, 27);  // after items 3, 6, 9, ... of 81: one per 60 ms
}

class ThumbLoaderTest : public FakeCoreTest {
 protected:
  void SetUp() override {
    FakeCoreTest::SetUp();
    MakeReady();
  }
  std::shared_ptr<_ThumbnailConfig> Thumb(const std::filesystem::path& file) {
    auto thumb = std::make_shared<_ThumbnailConfig>();
    thumb->SetImage(LibraryPath(file));
    thumb->SetSize(140, 140);
    thumb->SetRenderDevice(&core);
    return thumb;
  }

  PrivateCacheHome cacheHome;
  TempDir dir;
};

TEST_F(ThumbLoaderTest, StoppingWhileAnItemDecodesEndsAfterThatItemAndNeverWaitsToDraw) {
  const std::filesystem::path fifo = dir.Path() / "slow.jpg";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  TestList list;
  list.AddFailed(1);
  std::shared_ptr<_ThumbnailConfig> slow = Thumb(fifo);
  const std::weak_ptr<_ThumbnailConfig> watch = slow;
  list.Add(std::move(slow));
  list.AddFailed(1);
  list.Select(1);
  ASSERT_EQ(BackUpdateTask::BeginUpdateTask(list.task), 1);

  const int writer = open(fifo.c_str(), O_WRONLY);  // returns once the worker reads the picture
  ASSERT_GE(writer, 0);
  EXPECT_EQ(list.GetThumbAt(1)->Render(&core, CRect(0, 0, 140, 140), nullptr, 0.0), 0);  // no waiting to draw
  list.Remove(1);
  BackUpdateTask::ResetUpdateTask(list.task);
  EXPECT_FALSE(watch.expired());  // the worker still holds the record it decodes
  std::atomic<bool> killed{false};
  std::thread killer([&] {
    BackUpdateTask::KillUpdateTask(list.task);
    killed = true;
  });
  EXPECT_FALSE(killed.load());
  ASSERT_EQ(write(writer, "garbage!", 8), 8);
  close(writer);
  killer.join();
  EXPECT_EQ(list.task->GetState(), TASK_STATE_NONE);
  EXPECT_TRUE(watch.expired());
  EXPECT_TRUE(trace.Contains(L"<ERROR> create texture from file: " + LibraryPath(fifo).str()));
  EXPECT_TRUE(list.Loaded().empty());  // the kill took effect at the next step
}

TEST_F(ThumbLoaderTest, ItemsRemovedWhileTheWorkerLoadsThemStayAliveUntilItLetsGo) {
  const std::filesystem::path picture = dir.Write("p.png", MakePng(64, 48));
  TestList list;
  for (int i = 0; i < 30; ++i) list.Add(Thumb(picture));
  list.Select(15);
  ASSERT_EQ(BackUpdateTask::BeginUpdateTask(list.task), 1);
  for (int i = 29; i >= 0; i -= 2) {
    list.Remove(i);
    BackUpdateTask::ResetUpdateTask(list.task);
  }
  BackUpdateTask::KillUpdateTask(list.task);
  for (int i = 0; i < list.GetThumbCount(); ++i) EXPECT_NE(list.GetThumbAt(i)->GetState(), THUMB_STATE_FAILED);
}

}  // namespace
