// Frames of animated GIFs: decoded one at a time when first asked for, in
// order, composed on the previous frame by its disposal method, and timed.

#include <tuple>

#include "cache/CacheTestSupport.h"

using namespace KarvelUI;
using namespace KarvelTest;
using ::testing::ElementsAre;

namespace {

constexpr DWORD kRed = 0xFFFF0000, kGreen = 0xFF00FF00, kBlue = 0xFF0000FF, kTransparentWhite = 0x00FFFFFF;
const DWORD kColumnColours[] = {kRed, 0xFF101010, 0xFF202020, 0xFF303030, 0xFF404040};

// Five frames on an 8 x 6 canvas: red, then frame k paints column k only.
std::vector<GifFrame> ColumnFrames() {
  std::vector<GifFrame> frames{{8, 6, 0, 0, 0, 0, Solid(kRed)}};
  const int times[] = {20, 30, 100, 50};
  for (int k = 1; k < 5; ++k) frames.push_back({1, 6, k, 0, times[k - 1], 0, Solid(kColumnColours[k])});
  return frames;
}

int TextureId(const tagTextureItem* frame) { return fake::FakeTexture::From(frame->pTiles[0].pTexture.Get())->Id(); }

}  // namespace

TEST_F(CacheTest, FramesAreDecodedInOrderOnFirstRequestAndTimed) {
  const CString path = WriteFile("columns.gif", MakeAnimatedGif(ColumnFrames()));
  tagTextureItem* first = Cache().GetTextureItem(path, Device());
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(std::make_tuple(first->nImageFormat, first->nFrameCount, first->nFrameTime),
            std::make_tuple(int{PICTURE_FORMAT_GIF}, 5, 100));  // 0 ms is shown for 100
  EXPECT_EQ(Cache().GetFrameByIndex(first, 0, Device()), first);
  tagTextureItem* third = Cache().GetFrameByIndex(first, 3, Device());
  ASSERT_NE(third, nullptr);
  const tagTextureItem* one = first->pNextFrame.get();
  const tagTextureItem* two = one->pNextFrame.get();
  EXPECT_EQ(two->pNextFrame.get(), third);
  EXPECT_FALSE(third->pNextFrame);  // nothing past the frame asked for
  EXPECT_TRUE(TextureId(one) < TextureId(two) && TextureId(two) < TextureId(third));
  EXPECT_THAT((std::vector<int>{one->nFrameTime, two->nFrameTime, third->nFrameTime}), ElementsAre(100, 30, 100));
  EXPECT_EQ(third->pFirstFrame, first);
  // Frame 3 is composed on frames 1 and 2.
  for (int x = 0; x < 8; ++x) EXPECT_EQ(PictureTexel(third, x, 5), x >= 1 && x <= 3 ? kColumnColours[x] : kRed) << x;
  EXPECT_TRUE(first->pMultiBitmap);  // frame 4 is still to come
  EXPECT_EQ(Cache().GetFrameByIndex(first, 5, Device()), nullptr);
  tagTextureItem* last = Cache().GetFrameByIndex(first, 4, Device());
  ASSERT_NE(last, nullptr);
  EXPECT_EQ(std::make_tuple(last->nFrameTime, first->pMultiBitmap == nullptr), std::make_tuple(50, true));  // file closed
  EXPECT_EQ(Cache().GetFrameByIndex(first, 3, Device()), third);
}

TEST_F(CacheTest, FramesAreComposedByDisposalAndTransparencyAndKeptInsideTheCanvas) {
  using Probe = std::tuple<int, int, DWORD>;
  const struct {
    const char* name;
    std::vector<GifFrame> frames;
    std::vector<Probe> probes;
  } cases[] = {
      {"disposal 2 clears the canvas",
       {{8, 6, 0, 0, 100, 2, Solid(kRed)}, {2, 2, 1, 1, 100, 0, Solid(kGreen)}},
       {{1, 1, kGreen}, {2, 2, kGreen}, {0, 0, kTransparentWhite}, {7, 5, kTransparentWhite}}},
      // A 4 x 4 frame at (6, 4) would reach past the 8 x 6 canvas: it moves to (4, 2).
      {"disposal 1 keeps it",
       {{8, 6, 0, 0, 100, 1, Solid(kRed)}, {4, 4, 6, 4, 100, 0, Solid(kBlue)}},
       {{4, 2, kBlue}, {7, 5, kBlue}, {3, 5, kRed}, {7, 1, kRed}}},
      {"transparent pixels leave it",
       {{4, 4, 0, 0, 100, 0, Solid(kRed)}, {4, 4, 0, 0, 100, 0, [](int x, int) { return x < 2 ? kGreen : 0u; }}},
       {{1, 3, kGreen}, {2, 3, kRed}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const CString path = WriteFile(std::string(c.name) + ".gif", MakeAnimatedGif(c.frames));
    tagTextureItem* frame = Cache().GetFrameByIndex(Cache().GetTextureItem(path, Device()), 1, Device());
    ASSERT_NE(frame, nullptr);
    for (const auto& [x, y, colour] : c.probes) EXPECT_EQ(PictureTexel(frame, x, y), colour) << x << "," << y;
  }
}

TEST_F(CacheTest, AFrameThatCannotBeReadShortensTheAnimationToTheFramesBeforeIt) {
  std::string gif = MakeAnimatedGif({{4, 4, 0, 0, 100, 0, Solid(kRed)},
                                     {4, 4, 0, 0, 100, 0, Solid(kGreen)},
                                     {4, 4, 0, 0, 100, 0, Solid(kBlue)}});
  PutLE16(gif, gif.rfind("\x21\xF9\x04") + 8 + 5, 0);  // the last image claims no width
  const CString path = WriteFile("three.gif", gif);
  tagTextureItem* first = Cache().GetTextureItem(path, Device());
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->nFrameCount, 3);
  EXPECT_EQ(Cache().GetFrameByIndex(first, 2, Device()), nullptr);
  EXPECT_EQ(std::make_tuple(first->nFrameCount, first->pNextFrame->nFrameCount), std::make_tuple(2, 2));
  EXPECT_EQ(PictureTexel(Cache().GetFrameByIndex(first, 1, Device()), 0, 0), kGreen);
}

TEST_F(CacheTest, KeepDecodedFramesComeBackWithoutTheFileAndAReloadDropsSurplusFrames) {
  const CString path = WriteFile("frames.gif", MakeAnimatedGif(ColumnFrames()));
  tagTextureItem* first = Cache().GetTextureItem(path, Device());
  ASSERT_NE(Cache().GetFrameByIndex(first, 2, Device()), nullptr);
  ASSERT_EQ(Cache().ReleaseTexture(path, Device(), 1), 1);
  EXPECT_EQ(first->pNextFrame->pNextFrame->nState, TEXTURE_STATE_DECODED);
  RemoveFile(path);
  tagTextureItem* again = Cache().GetTextureItem(path, Device());
  ASSERT_EQ(again, first);
  tagTextureItem* second = Cache().GetFrameByIndex(first, 2, Device());
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(std::make_tuple(second->nState, PictureTexel(second, 2, 0)),
            std::make_tuple(TEXTURE_STATE_READY_FILE, kColumnColours[2]));

  ASSERT_EQ(Cache().ReleaseTexture(path, Device(), 0), 1);
  EXPECT_FALSE(first->pMultiBitmap);
  WritePicture("frames.gif", PICTURE_FORMAT_PNG, 3, 3);  // a still picture under the old name
  EXPECT_EQ(Cache().GetTextureItem(path, Device()), first);
  EXPECT_EQ(std::make_tuple(first->nFrameCount, first->nFrameTime, first->pNextFrame == nullptr,
                            Cache().GetFrameByIndex(first, 1, Device())),
            std::make_tuple(1, -1, true, static_cast<tagTextureItem*>(nullptr)));
}
