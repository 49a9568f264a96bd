// The render device's picture operations by path: drawing a file or a
// frame of it, and describing it.

#include "cache/CacheTestSupport.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

constexpr DWORD kWhite = 0xFFFFFFFF;

class CacheDrawTest : public CacheTest {
 protected:
  void SetUp() override {
    CacheTest::SetUp();
    ASSERT_EQ(core.BeginPaint(), S_OK);
  }
};

}  // namespace

TEST_F(CacheDrawTest, APathIsLoadedOnFirstDrawAndItsFramesOnDemand) {
  gpu->caps.MaxTextureWidth = gpu->caps.MaxTextureHeight = 32;  // tiles of 8 x 8
  const CString path = WriteFile("two.gif", MakeAnimatedGif({{12, 4, 0, 0, 100, 0, Solid(0xFFFF0000)},
                                                             {12, 4, 0, 0, 100, 0, Solid(0xFF00FF00)}}));
  const CRect dest(10, 10, 34, 18);
  ASSERT_EQ(core.DrawImage(path, &dest, nullptr, nullptr, 0, kWhite, 0), S_OK);
  tagTextureItem* first = Cache().SearchTextureItem(path, Device());
  ASSERT_NE(first, nullptr);
  ASSERT_EQ(gpu->Draws().size(), 2u);  // two tiles across
  EXPECT_EQ(gpu->Draws()[1].source, CRect(0, 0, 4, 4));

  gpu->ClearLog();
  ASSERT_EQ(core.DrawImage(path, &dest, nullptr, nullptr, 0, kWhite, 1), S_OK);
  ASSERT_NE(first->pNextFrame, nullptr);
  EXPECT_EQ(gpu->Draws()[0].textureId, fake::FakeTexture::From(first->pNextFrame->pTiles[0].pTexture.Get())->Id());
  EXPECT_EQ(core.DrawImage(path, &dest, nullptr, nullptr, 0, kWhite, 2), E_FAIL);

  const CRect mirrored(34, 10, 10, 18);
  EXPECT_EQ(core.DrawImage(path, &mirrored, nullptr, nullptr, 0, kWhite, 0), E_FAIL);
  const CString missing = FromNativePath((dir.Path() / "missing.png").string());
  EXPECT_EQ(core.DrawImage(missing, &dest, nullptr, nullptr, 0, kWhite, 0), E_FAIL);
}

TEST_F(CacheDrawTest, TextureInfoDescribesThePicture) {
  const CString path = WritePicture("info.png", PICTURE_FORMAT_PNG, 30, 20);
  D3DXIMAGE_INFO image{}, texture{};
  ASSERT_EQ(core.GetTextureInfo(path, &image, &texture), S_OK);
  EXPECT_EQ(CSize(image.Width, texture.Height), CSize(30, 20));
  EXPECT_EQ(core.GetTextureInfo(path, nullptr, nullptr), S_OK);
  EXPECT_EQ(core.GetTextureInfo(FromNativePath((dir.Path() / "none.png").string()), &image, nullptr), E_FAIL);
}
