// The file watcher behind live reload: saves, renames and deletions below
// the watched folder, also in folders made after watching began.

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <thread>

#include <karvelui/FileWatcher.h>
#include "skin/SkinTestSupport.h"
#include "support/TempDir.h"

namespace KarvelTest {
namespace {

namespace fs = std::filesystem;
using KarvelUI::CFileWatcher;

// Polls until the watcher reports something; the deadline only ends a run
// whose events never arrive.
int PollFor(CFileWatcher& watcher) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (std::chrono::steady_clock::now() < deadline) {
    if (const int changes = watcher.Poll()) return changes;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return 0;
}

TEST(FileWatcherTest, SeesEveryKindOfSaveBelowTheFolder) {
  const TempDir dir;
  dir.Write("Theme/Default/KarvelView.xml", "<UIRoot/>");
  CFileWatcher watcher;
  ASSERT_EQ(watcher.WatchTree(LibraryPath(dir.Path() / "Theme")), 1);
  EXPECT_EQ(watcher.Poll(), 0);
  const fs::path theme = dir.Path() / "Theme";
  const struct {
    const char* what;
    std::function<void()> save;
  } saves[] = {
      {"written in place", [&] { dir.Write("Theme/Default/KarvelView.xml", "<UIRoot></UIRoot>"); }},
      {"renamed over", [&] {
         dir.Write("Theme/Default/new.tmp", "<UIRoot/>");
         PollFor(watcher);
         fs::rename(theme / "Default/new.tmp", theme / "Default/KarvelView.xml");
       }},
      {"a new skin folder", [&] { fs::create_directories(theme / "Ocean/images"); }},
      {"a picture in the new folder", [&] { dir.Write("Theme/Ocean/images/a.png", "png"); }},
      {"deleted", [&] { fs::remove(theme / "Ocean/images/a.png"); }},
  };
  for (const auto& [what, save] : saves) {
    save();
    EXPECT_GT(PollFor(watcher), 0) << what;
  }
  EXPECT_EQ(CFileWatcher().WatchTree(LibraryPath(dir.Path() / "none")), 0);
}

}  // namespace
}  // namespace KarvelTest
