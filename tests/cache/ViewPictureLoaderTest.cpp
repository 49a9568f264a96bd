// Pictures shown large: the worker decodes a reduced preview and the whole
// picture; the drawing thread uploads the preview, then the tiles a few per
// frame over it, and moves them into the path's own entry. Pictures decoded
// ahead stay decoded only while they are wanted.

#include <karvelui/BackUpdateTask.h>
#include "cache/CacheTestSupport.h"
#include "support/GLTesting.h"
#include "render/ViewPictureLoader.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

// The worker's decodes end long before this; it only keeps a broken build
// from hanging.
constexpr DWORD kPatienceMs = 60000;

class ViewPictureTest : public CacheTest {
 protected:
  void Request(const CString& path, const std::vector<CString>& ahead) {
    Cache().RequestViewPictures(path, ahead, CSize(400, 300), Device(), [this] { stepped.Set(); });
  }
  // Waits for the worker's reports until `key` holds a decoded or uploaded picture.
  void WaitForPicture(const CString& key) {
    for (;;) {
      {
        UILock frame(Cache().GetTextureLock());
        const tagTextureItem* entry = Cache().SearchTextureItem(key, Device());
        if (entry && (entry->IsReady() || (entry->nState == TEXTURE_STATE_DECODED && entry->pBitmap))) return;
      }
      ASSERT_TRUE(stepped.Wait(kPatienceMs)) << "no picture for " << key.ToUtf8();
      stepped.Reset();
    }
  }
  int State(const CString& key) {
    UILock frame(Cache().GetTextureLock());
    const tagTextureItem* entry = Cache().SearchTextureItem(key, Device());
    return entry ? entry->nState : -1;
  }
  static int TilesWithTexture(const tagTextureItem* item) {
    int count = 0;
    for (int i = 0; i < item->nTileCols * item->nTileRows; ++i) count += item->pTiles[i].pTexture ? 1 : 0;
    return count;
  }

  ManualResetEvent stepped;
};

TEST_F(ViewPictureTest, ThePreviewShowsFirstAndTheTilesReplaceItOneByOne) {
  const CString path = WritePicture("photo.jpg", PICTURE_FORMAT_JPEG, 2400, 1600, Solid(0xFF3060A0));
  Request(path, {});
  WaitForPicture(path);

  UILock frame(Cache().GetTextureLock());
  tagTextureItem* entry = Cache().SearchTextureItem(path, Device());
  for (int step = 1; step <= 6; ++step) {  // 3 x 2 tiles of 1024 on a 4096 adapter, one per call
    const ViewPicture picture = Cache().StepViewPicture(path, Device(), 0.0);
    EXPECT_EQ(CSize(picture.ImageInfo.Width, picture.ImageInfo.Height), CSize(2400, 1600));
    if (step < 6) {
      ASSERT_EQ(picture.nStage, VIEW_PICTURE_PARTIAL) << step;
      ASSERT_NE(picture.pPreview, nullptr);
      // A quarter of the width covers 400.
      EXPECT_EQ(std::make_tuple(picture.pPreview->TextureInfo.Width, TilesWithTexture(picture.pPicture), entry->nState),
                std::make_tuple(600u, step, TEXTURE_STATE_DECODED));
    } else {
      ASSERT_EQ(picture.nStage, VIEW_PICTURE_FULL);
      EXPECT_EQ(picture.pPicture, entry);  // the entry kept its address
    }
  }
  EXPECT_TRUE(entry->IsReady() && !entry->pBitmap);  // the tiles hold the picture
  EXPECT_EQ(TilesWithTexture(entry), 6);
  EXPECT_TRUE(ColorNear(PictureTexel(entry, 2399, 1599), 0xFF3060A0, 8));
  // The preview's textures went; its decoded copy stays for a quick return.
  EXPECT_EQ(State(ViewPictureLoader::PreviewKey(path)), TEXTURE_STATE_DECODED);
  EXPECT_TRUE(trace.Lines().empty());
}

TEST_F(ViewPictureTest, OnlyTheShownPictureAndThoseAheadStayDecoded) {
  std::vector<CString> paths;
  for (const char* name : {"a.jpg", "b.jpg", "c.jpg", "d.jpg"})
    paths.push_back(WritePicture(name, PICTURE_FORMAT_JPEG, 1600, 1200, Solid(0xFF808080)));
  const CString &a = paths[0], &b = paths[1], &c = paths[2], &d = paths[3];
  Request(a, {b});
  WaitForPicture(a);
  WaitForPicture(b);
  Request(b, {a, c});
  WaitForPicture(c);
  EXPECT_EQ(State(a), TEXTURE_STATE_DECODED);
  Request(c, {b, d});
  WaitForPicture(d);
  EXPECT_EQ(std::make_tuple(State(a), State(ViewPictureLoader::PreviewKey(a))),
            std::make_tuple(int{TEXTURE_STATE_EMPTY}, int{TEXTURE_STATE_EMPTY}));
  for (const CString& wanted : {b, c, d}) EXPECT_EQ(State(wanted), TEXTURE_STATE_DECODED);
}

TEST_F(ViewPictureTest, APictureNobodyAskedForIsLoadedAtOnce) {
  const CString path = WritePicture("small.png", PICTURE_FORMAT_PNG, 64, 48, Solid(0xFF102030));
  const ViewPicture picture = Cache().StepViewPicture(path, Device(), 0.0);
  ASSERT_EQ(picture.nStage, VIEW_PICTURE_FULL);
  EXPECT_EQ(std::make_tuple(picture.ImageInfo.Width, PictureTexel(picture.pPicture, 5, 5)), std::make_tuple(64u, 0xFF102030u));
}

}  // namespace
