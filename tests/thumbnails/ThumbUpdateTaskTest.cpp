#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <set>
#include <thread>
#include <tuple>

#include <karvelui/MessageQueue.h>
#include <karvelui/Wnd.h>
#include "ThumbTestSupport.h"
#include "support/FakeCore.h"
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
  while (!pred() && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
  return pred();
}

// A list as the loader sees it: its fields are touched only under With().
class TestList : public IThumbList {
 public:
  ~TestList() { task->Release(); }  // the worker goes before the list

  template <class F>
  auto With(F f) {
    std::lock_guard lock(m_mutex);
    return f();
  }
  void AddFailed(int count) {
    for (int i = 0; i < count; ++i) {
      auto thumb = std::make_shared<_ThumbnailConfig>();
      thumb->SetState(THUMB_STATE_FAILED);  // reported on every visit, never decoded
      With([&] { items.push_back(thumb); });
    }
  }
  // Runs one pass from a waiting worker (or a fresh task) and waits for its end.
  void RunPass() {
    if (!BackUpdateTask::ResetUpdateTask(task)) BackUpdateTask::BeginUpdateTask(task);
    ASSERT_TRUE(WaitUntil([this] { return task->GetState() == TASK_STATE_WAITING; }));
  }

  int GetThumbCount() override { return With([&] { return static_cast<int>(items.size()); }); }
  std::shared_ptr<_ThumbnailConfig> GetThumbAt(int index) override {
    return With([&] { return index < static_cast<int>(items.size()) ? items[index] : nullptr; });
  }
  int GetSelectedIndex() override { return With([&] { return selected; }); }
  HWND GetRepaintWindow() override { return window; }
  void ItemThumbLoadedCallback(int index) override {
    if (onLoaded) onLoaded(index);
    With([&] { loaded.push_back(index); });
  }

  std::vector<std::shared_ptr<_ThumbnailConfig>> items;
  int selected = -1;
  std::vector<int> loaded;
  HWND window = nullptr;
  std::function<void(int)> onLoaded;  // set before the worker starts
  ThumbUpdateTask* task = ThumbUpdateTask::Create(this);

 private:
  std::mutex m_mutex;
};

TEST(ThumbUpdateTask, WalksOutwardFromTheSelectionWrappingAShortListAndRestartsAroundANewOne) {
  TestList list;
  list.AddFailed(5);
  list.With([&] { list.selected = 2; });
  list.RunPass();
  std::vector<int> loaded = list.With([&] { return list.loaded; });
  ASSERT_EQ(loaded.size(), 81u);
  EXPECT_EQ(std::vector<int>(loaded.begin(), loaded.begin() + 10), (std::vector<int>{2, 1, 3, 0, 4, 4, 0, 3, 1, 2}));

  list.With([&] { list.selected = 4; });
  list.RunPass();
  loaded = list.With([&] { return list.loaded; });
  ASSERT_EQ(loaded.size(), 162u);
  EXPECT_EQ(std::vector<int>(loaded.begin() + 81, loaded.begin() + 86), (std::vector<int>{4, 3, 0, 2, 1}));
}

TEST(ThumbUpdateTask, WithoutASelectionAHundredItemsAreVisitedFrom40OutToItems0And80) {
  TestList list;
  list.AddFailed(100);
  list.RunPass();
  const std::vector<int> loaded = list.With([&] { return list.loaded; });
  ASSERT_EQ(loaded.size(), 81u);
  EXPECT_EQ(std::vector<int>(loaded.begin(), loaded.begin() + 5), (std::vector<int>{40, 39, 41, 38, 42}));
  EXPECT_EQ(std::make_tuple(loaded[79], loaded[80]), std::make_tuple(0, 80));
  const std::set<int> visited(loaded.begin(), loaded.end());
  EXPECT_EQ(std::make_tuple(visited.size(), *visited.rbegin()), std::make_tuple(81u, 80));
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
    return MakeThumb(LibraryPath(file), &core);
  }

  PrivateCacheHome cacheHome;
  TempDir dir;
};

TEST_F(ThumbLoaderTest, StoppingWhileAnItemDecodesEndsAfterThatItemAndNeverWaitsToDraw) {
  const std::filesystem::path fifo = dir.Path() / "slow.jpg";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  TestList list;
  list.AddFailed(3);
  list.items[1] = Thumb(fifo);
  const std::weak_ptr<_ThumbnailConfig> watch = list.items[1];
  list.With([&] { list.selected = 1; });
  ASSERT_EQ(BackUpdateTask::BeginUpdateTask(list.task), 1);

  const int writer = open(fifo.c_str(), O_WRONLY);  // returns once the worker reads the picture
  ASSERT_GE(writer, 0);
  EXPECT_EQ(list.GetThumbAt(1)->Render(&core, CRect(0, 0, 140, 140), nullptr, 0.0), 0);  // no waiting to draw
  list.With([&] { list.items.erase(list.items.begin() + 1); });
  BackUpdateTask::ResetUpdateTask(list.task);
  EXPECT_FALSE(watch.expired());  // the worker still holds the record it decodes
  std::atomic<bool> killed{false};
  std::thread killer([&] {
    BackUpdateTask::KillUpdateTask(list.task);
    killed = true;
  });
  ASSERT_TRUE(WaitUntil([&] { return list.task->GetState() == TASK_STATE_KILL; }));
  EXPECT_FALSE(killed.load());  // it waits for the item being decoded
  ASSERT_EQ(write(writer, "garbage!", 8), 8);
  close(writer);
  killer.join();
  EXPECT_TRUE(list.task->GetState() == TASK_STATE_NONE && watch.expired());
  EXPECT_TRUE(trace.Contains(L"<ERROR> create texture from file: " + LibraryPath(fifo).str()));
  EXPECT_TRUE(list.With([&] { return list.loaded.empty(); }));  // the kill took effect at the next step
}

TEST_F(ThumbLoaderTest, ItemsRemovedWhileTheWorkerLoadsThemStayAliveUntilItLetsGo) {
  const std::filesystem::path picture = dir.Write("p.png", MakePng(64, 48));
  TestList list;
  for (int i = 0; i < 30; ++i) list.items.push_back(Thumb(picture));
  list.With([&] { list.selected = 15; });
  ASSERT_EQ(BackUpdateTask::BeginUpdateTask(list.task), 1);
  for (int i = 29; i >= 0; i -= 2) {
    list.With([&] { list.items.erase(list.items.begin() + i); });
    BackUpdateTask::ResetUpdateTask(list.task);
  }
  BackUpdateTask::KillUpdateTask(list.task);
  for (int i = 0; i < list.GetThumbCount(); ++i) EXPECT_NE(list.GetThumbAt(i)->GetState(), THUMB_STATE_FAILED);
}

}  // namespace
