// Picture files into cache entries: what each kind of file becomes, the
// files that must fail (with the trace line, never a crash), the two-step
// load (also across threads, for the thread sanitizer), the entries that
// keep their identity, and drawing and describing a file by its path.

#include <atomic>
#include <thread>

#include <karvelui/BackUpdateTask.h>
#include "cache/CacheTestSupport.h"
#include "render/PictureDecoder.h"

using namespace KarvelUI;
using namespace KarvelTest;
using ::testing::ElementsAre;

// Restores the decoder's pixel limit when the test ends.
struct PixelLimit {
  explicit PixelLimit(std::uint64_t pixels) : previous(SetMaxPicturePixels(pixels)) {}
  ~PixelLimit() { SetMaxPicturePixels(previous); }
  std::uint64_t previous;
};

TEST_F(CacheTest, FilesBecomeReadyEntriesWithTheirFormatASingleFrameAndTheirPixels) {
  const CString jpeg = WritePicture("photo.jpg", PICTURE_FORMAT_JPEG, 40, 30, Solid(0xFF3060C0));
  tagTextureItem* photo = Cache().GetTextureItem(jpeg, Device());
  ASSERT_NE(photo, nullptr);
  EXPECT_EQ(std::make_tuple(photo->nState, photo->nImageFormat, photo->nFrameCount, photo->nFrameTime,
                            CSize(photo->ImageInfo.Width, photo->TextureInfo.Height)),
            std::make_tuple(TEXTURE_STATE_READY_FILE, int{PICTURE_FORMAT_JPEG}, 1, -1, CSize(40, 30)));
  // Uploaded at once, the 24-bit picture is kept as decoded and expanded on the way.
  EXPECT_TRUE(Is24BitPicture(photo->pBitmap.get()));
  EXPECT_TRUE(ColorNear(PictureTexel(photo, 39, 29), 0xFF3060C0, 4));
  EXPECT_EQ(Cache().GetTextureItem(jpeg, Device()), photo);
  // PNG alpha is kept; a 32-bit BMP's fourth byte is no alpha.
  const auto halfClear = [](int x, int y) { return Pattern(x, y) & 0x80FFFFFF; };
  const auto clear = [](int x, int y) { return Pattern(x, y) & 0x00FFFFFF; };
  const CString png = WritePicture("alpha.png", PICTURE_FORMAT_PNG, 5, 4, halfClear, 32);
  const CString bmp = WritePicture("clear.bmp", PICTURE_FORMAT_BMP, 6, 3, clear, 32);
  EXPECT_EQ(PictureTexel(Cache().GetTextureItem(png, Device()), 4, 3), halfClear(4, 3));
  EXPECT_EQ(PictureTexel(Cache().GetTextureItem(bmp, Device()), 5, 2), Pattern(5, 2));
  EXPECT_TRUE(trace.Lines().empty());
}

TEST_F(CacheTest, DamagedTruncatedUnknownAndOversizedPicturesFailWithTheTraceLine) {
  const std::string jpeg = MakePicture(PICTURE_FORMAT_JPEG, 64, 48, 24, Pattern);
  const std::string png = MakePicture(PICTURE_FORMAT_PNG, 64, 48, 24, Pattern);
  const std::string bmp = MakePicture(PICTURE_FORMAT_BMP, 64, 48, 24, Pattern);
  const std::string gif = MakeAnimatedGif({{64, 64, 0, 0, 100, 0, [](int x, int y) { return Pattern(x % 5, y % 7); }}});
  std::string hugeBmp = bmp.substr(0, 200);  // the header claims 40000 x 40000
  PutLE32(hugeBmp, 18, 40000);
  PutLE32(hugeBmp, 22, 40000);
  std::string hugeGif = gif;  // the first image claims 65535 x 65535
  const size_t descriptor = hugeGif.find("\x21\xF9\x04") + 8;  // after the graphic control extension
  ASSERT_EQ(hugeGif[descriptor], '\x2c');
  PutLE32(hugeGif, descriptor + 5, 0xFFFFFFFF);
  const std::pair<const char*, std::string> files[] = {
      {"empty.jpg", ""},
      {"noise.png", std::string(300, '\x5a')},
      {"cut.jpg", jpeg.substr(0, jpeg.size() / 2)},
      {"cut.png", png.substr(0, png.size() - 40)},
      {"cut.bmp", bmp.substr(0, bmp.size() - 64 * 3)},
      {"cut.gif", gif.substr(0, gif.size() / 2)},
      {"header-only.jpg", jpeg.substr(0, FindJpegMarker(jpeg, 0xDA))},
      {"huge.bmp", hugeBmp},
      {"huge.gif", hugeGif},
      {"picture.ppm", "P6\n2 2\n255\n" + std::string(12, '\x40')},  // a format the viewer does not decode
  };
  for (const auto& [name, bytes] : files) {
    trace.Clear();
    const CString path = WriteFile(name, bytes);
    EXPECT_EQ(Cache().LoadTextureFromFile(path, Device(), 0), nullptr) << name;
    EXPECT_EQ(Cache().SearchTextureItem(path, Device()), nullptr) << name;
    EXPECT_EQ(Traced(), DecodeFailure(path)) << name;
  }
  const CString missing = FromNativePath((dir.Path() / "missing.png").string());
  trace.Clear();
  EXPECT_EQ(Cache().GetTextureItem(missing, Device()), nullptr);
  EXPECT_EQ(Traced(), DecodeFailure(missing));
  EXPECT_EQ(gpu->Count(fake::Call::CreateTexture), 0);
}

TEST_F(CacheTest, ThePixelLimitIsCheckedForEveryFormatBeforeDecoding) {
  const CString files[] = {
      WritePicture("limit.jpg", PICTURE_FORMAT_JPEG, 100, 50), WritePicture("limit.tif", PICTURE_FORMAT_TIFF, 100, 50),
      WriteFile("limit.gif", MakeAnimatedGif({{10, 10, 0, 0, 100, 0, Solid(0xFF00FF00)},
                                              {100, 50, 0, 0, 100, 0, Solid(0xFF0000FF)}}))};
  {
    PixelLimit limit(4999);
    for (const CString& path : files) {
      trace.Clear();
      EXPECT_EQ(Cache().LoadTextureFromFile(path, Device(), 1), nullptr) << path.str();
      EXPECT_EQ(Traced(), DecodeFailure(path));
    }
  }
  PixelLimit limit(5000);
  for (const CString& path : files) EXPECT_NE(Cache().LoadTextureFromFile(path, Device(), 1), nullptr) << path.str();
}

TEST_F(CacheTest, DecodedEntriesAreUploadedLaterWithoutTheFileAndAReleaseKeepsTheRecord) {
  const CString path = WritePicture("two-step.jpg", PICTURE_FORMAT_JPEG, 30, 20, Solid(0xFF808080));
  tagTextureItem* decoded = Cache().LoadTextureFromFile(path, Device(), 1);
  ASSERT_NE(decoded, nullptr);
  EXPECT_EQ(std::make_tuple(decoded->nState, gpu->Count(fake::Call::CreateTexture)),
            std::make_tuple(TEXTURE_STATE_DECODED, 0));
  EXPECT_TRUE(Is32BitPicture(decoded->pBitmap.get()));  // kept at 24 bits only for an upload at once
  EXPECT_EQ(Cache().LoadTextureFromFile(path, Device(), 1), decoded);
  RemoveFile(path);
  EXPECT_EQ(Cache().GetTextureItem(path, Device()), decoded);
  EXPECT_EQ(decoded->nState, TEXTURE_STATE_READY_FILE);
  EXPECT_TRUE(ColorNear(PictureTexel(decoded, 0, 0), 0xFF808080, 3));

  // Releasing with keep-decoded goes back to the decoded picture; without, the picture goes too.
  EXPECT_EQ(Cache().ReleaseTexture(path, nullptr, 1) + Cache().ReleaseTexture(L"other.png", Device(), 1), 0);
  EXPECT_EQ(Cache().ReleaseTexture(path, Device(), 1), 1);
  EXPECT_EQ(std::make_tuple(decoded->nState, decoded->nTileCols), std::make_tuple(TEXTURE_STATE_DECODED, 0));
  EXPECT_EQ(Cache().ReleaseTexture(path, Device(), 0), 1);
  EXPECT_EQ(std::make_tuple(decoded->nState, decoded->pBitmap == nullptr), std::make_tuple(TEXTURE_STATE_EMPTY, true));
  trace.Clear();
  EXPECT_EQ(Cache().GetTextureItem(path, Device()), nullptr);
  EXPECT_EQ(Traced(), DecodeFailure(path));
  EXPECT_EQ(decoded->nState, TEXTURE_STATE_EMPTY);  // a failed load leaves the entry as it was
  // A reload reads the file, which now holds another picture, into the same record.
  WritePicture("two-step.jpg", PICTURE_FORMAT_PNG, 3, 2, Solid(0xFF00FF00));
  EXPECT_EQ(Cache().GetTextureItem(path, Device()), decoded);
  EXPECT_EQ(PictureTexel(decoded, 2, 1), 0xFF00FF00u);
}

TEST_F(CacheTest, KeysDifferingInCaseOrFolderAreDistinctEntries) {
  std::vector<UINT> widths;
  for (const auto& [name, width] : {std::pair{"A.PNG", 4}, std::pair{"a.png", 5}, std::pair{"a/b.png", 6},
                                    std::pair{"c/b.png", 7}}) {
    const CString path = WritePicture(name, PICTURE_FORMAT_PNG, width, 4);
    ASSERT_NE(Cache().GetTextureItem(path, Device()), nullptr) << name;
    widths.push_back(Cache().SearchTextureItem(path, Device())->ImageInfo.Width);
  }
  EXPECT_THAT(widths, ElementsAre(4u, 5u, 6u, 7u));
}

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

  // Frames until the worker is done, each holding the texture lock as a form
  // does and drawing the pictures decoded so far.
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
    EXPECT_EQ(std::make_tuple(item->nState, item->TextureInfo.Width, PictureTexel(item, 0, 0)),
              std::make_tuple(TEXTURE_STATE_READY_FILE, static_cast<UINT>(120 + i),
                              0xFF000000u | static_cast<DWORD>(i * 0x0A0B0C)));
  }
  EXPECT_TRUE(trace.Lines().empty());
}

class CacheDrawTest : public CacheTest {
 protected:
  void SetUp() override {
    CacheTest::SetUp();
    ASSERT_EQ(core.BeginPaint(), S_OK);
  }
};

TEST_F(CacheDrawTest, APathIsLoadedOnFirstDrawAndItsFramesOnDemand) {
  gpu->caps.MaxTextureWidth = gpu->caps.MaxTextureHeight = 32;  // tiles of 8 x 8
  const CString path = WriteFile("two.gif", MakeAnimatedGif({{12, 4, 0, 0, 100, 0, Solid(0xFFFF0000)},
                                                             {12, 4, 0, 0, 100, 0, Solid(0xFF00FF00)}}));
  const CRect dest(10, 10, 34, 18);
  ASSERT_EQ(core.DrawImage(path, &dest, nullptr, nullptr, 0, 0xFFFFFFFF, 0), S_OK);
  tagTextureItem* first = Cache().SearchTextureItem(path, Device());
  ASSERT_NE(first, nullptr);
  ASSERT_EQ(gpu->Draws().size(), 2u);  // two tiles across
  EXPECT_EQ(gpu->Draws()[1].source, CRect(0, 0, 4, 4));
  D3DXIMAGE_INFO image{}, texture{};  // described by its path
  ASSERT_EQ(core.GetTextureInfo(path, &image, &texture), S_OK);
  EXPECT_EQ(CSize(image.Width, texture.Height), CSize(12, 4));
  EXPECT_EQ(core.GetTextureInfo(path, nullptr, nullptr), S_OK);
  EXPECT_EQ(core.GetTextureInfo(FromNativePath((dir.Path() / "none.png").string()), &image, nullptr), E_FAIL);

  gpu->ClearLog();
  ASSERT_EQ(core.DrawImage(path, &dest, nullptr, nullptr, 0, 0xFFFFFFFF, 1), S_OK);
  ASSERT_NE(first->pNextFrame, nullptr);
  EXPECT_EQ(gpu->Draws()[0].textureId, fake::FakeTexture::From(first->pNextFrame->pTiles[0].pTexture.Get())->Id());
  EXPECT_EQ(core.DrawImage(path, &dest, nullptr, nullptr, 0, 0xFFFFFFFF, 2), E_FAIL);

  const CRect mirrored(34, 10, 10, 18);
  EXPECT_EQ(core.DrawImage(path, &mirrored, nullptr, nullptr, 0, 0xFFFFFFFF, 0), E_FAIL);
  const CString missing = FromNativePath((dir.Path() / "missing.png").string());
  EXPECT_EQ(core.DrawImage(missing, &dest, nullptr, nullptr, 0, 0xFFFFFFFF, 0), E_FAIL);
}
