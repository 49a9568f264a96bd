// The two-step load across threads: a worker decodes files (decode-only)
// while the drawing thread, holding the texture lock for each frame as a
// form does, uploads and draws whatever is ready. Run under the thread
// sanitizer as well.

#include <atomic>
#include <thread>

#include "cache/CacheTestSupport.h"
#include <karvelui/BackUpdateTask.h>

using namespace KarvelUI;
using namespace KarvelTest;

TEST_F(CacheTest, AWorkerDecodesWhileTheDrawingThreadUploadsAndDraws) {
  constexpr int kFiles = 24;
  std::vector<CString> paths;
  for (int i = 0; i < kFiles; ++i)
    paths.push_back(WritePicture("photo" + std::to_string(i) + ".png", PICTURE_FORMAT_PNG, 120 + i, 90,
                                 Solid(0xFF000000u | static_cast<DWORD>(i * 0x0A0B0C))));

  std::atomic<bool> decoded{false};
  std::thread worker([&] {
    for (const CString& path : paths) EXPECT_NE(Cache().LoadTextureFromFile(path, Device(), 1), nullptr);
    decoded = true;
  });

  // Frames until the worker is done: each draws the pictures decoded so far.
  const CRect dest(0, 0, 20, 20);
  bool done = false;
  while (!done) {
    done = decoded.load();
    UILock paint(Cache().GetTextureLock());
    ASSERT_EQ(core.BeginPaint(), S_OK);
    for (const CString& path : paths) {
      const tagTextureItem* entry = Cache().SearchTextureItem(path, Device());
      if (entry && (entry->nState == TEXTURE_STATE_DECODED || entry->IsReady())) {
        EXPECT_EQ(core.DrawImage(path, &dest, nullptr, nullptr, 0, 0xFFFFFFFF, 0), S_OK);
      }
    }
    ASSERT_EQ(core.EndPaint(), S_OK);
  }
  worker.join();

  // Whatever the drawing thread has not uploaded yet comes from the decoded
  // pictures: the files are gone.
  for (const CString& path : paths) RemoveFile(path);
  for (int i = 0; i < kFiles; ++i) {
    tagTextureItem* item = Cache().GetTextureItem(paths[i], Device());
    ASSERT_NE(item, nullptr) << i;
    EXPECT_EQ(item->nState, TEXTURE_STATE_READY_FILE);
    EXPECT_EQ(item->TextureInfo.Width, static_cast<UINT>(120 + i));
    EXPECT_EQ(PictureTexel(item, 0, 0), 0xFF000000u | static_cast<DWORD>(i * 0x0A0B0C));
  }
  EXPECT_TRUE(trace.Lines().empty());
}
