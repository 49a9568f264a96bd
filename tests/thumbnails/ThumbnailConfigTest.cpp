#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include <karvelui/ThumbnailConfig.h>
#include "ThumbTestSupport.h"
#include "support/FakeCore.h"
#include "platform/FileSystem.h"
#include "render/PictureDecoder.h"
#include "support/PictureFiles.h"
#include "thumbnails/SharedThumbCache.h"
#include "thumbnails/ThumbPixels.h"
#include "thumbnails/ThumbnailSource.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

constexpr int kWanted = 140;
constexpr int kJpeg = 2, kPng = 13;

// Soft light and colour changes, as photographs have them.
std::uint32_t Photo(int x, int y) {
  const auto wave = [](double v) { return static_cast<std::uint32_t>(127.5 + 127.5 * std::sin(v)); };
  return 0xFF000000u | wave(x / 97.0) << 16 | wave(y / 71.0 + 1) << 8 | wave((x + y) / 133.0 + 2);
}

std::vector<DWORD> Texels(const RefPtr<IDirect3DTexture9>& texture) {
  return fake::FakeTexture::From(texture.Get())->Texels();
}

class ThumbnailTest : public FakeCoreTest {
 protected:
  void SetUp() override {
    FakeCoreTest::SetUp();
    MakeReady();
  }

  CString Write(const std::string& name, const std::string& bytes) { return LibraryPath(dir.Write(name, bytes)); }
  CString WritePicture(const std::string& name, int format, int width, int height,
                       const PixelFunction& pixel = Photo) {
    return Write(name, MakePicture(format, width, height, 24, pixel));
  }
  std::shared_ptr<_ThumbnailConfig> Thumb(const CString& path) { return MakeThumb(path, &core); }

  PrivateCacheHome cacheHome;
  TempDir dir;
};

TEST(ThumbnailSize, CoversTheWantedSquareAndNeverEnlarges) {
  struct Case {
    UINT w, h;
    CSize texture;
  };
  for (const Case& c : {Case{4000, 3000, {186, 140}}, Case{3000, 4000, {140, 186}}, Case{500, 500, {140, 140}},
                        Case{100, 50, {100, 50}}, Case{141, 3000, {140, 2978}}, Case{3000, 140, {3000, 140}}})
    EXPECT_EQ(ThumbnailTextureSize(c.w, c.h, kWanted, kWanted), c.texture) << c.w << " x " << c.h;
}

TEST(ThumbnailReflection, FadesFrom43PercentToNothingAt60Percent) {
  EXPECT_DOUBLE_EQ(ReflectionAlphaFactor(0, 100), 0.43);
  EXPECT_NEAR(ReflectionAlphaFactor(30, 100), 0.43 - 0.43 * std::pow(0.3, 0.38) / std::pow(0.6, 0.38), 1e-12);
  EXPECT_EQ(ReflectionAlphaFactor(60, 100) + ReflectionAlphaFactor(99, 100), 0.0);
  EXPECT_EQ(ReflectionVisibleRows(140), 83);  // row 83 of alpha 255 already rounds to 0
}

TEST_F(ThumbnailTest, ALargePictureLoadsResampledWithItsReflectionAndDrawsItsCentreSquare) {
  const std::shared_ptr<_ThumbnailConfig> thumb = Thumb(WritePicture("p.png", kPng, 400, 300));
  ASSERT_EQ(thumb->LoadThumb(), 1);
  EXPECT_EQ(std::make_tuple(thumb->GetState(), Desc(thumb->GetTexture()).Width, Desc(thumb->GetTexture()).Height,
                            thumb->GetImageWidth(), thumb->GetWidth()),
            std::make_tuple(int{THUMB_STATE_LOADED}, 186u, 140u, 400u, 186));
  // Texel (93, 70) samples picture pixel (200, 150) exactly.
  EXPECT_EQ(Texels(thumb->GetTexture())[70 * 186 + 93], Photo(200, 150));

  // The reflection keeps the centre square's columns and the rows the fade leaves.
  EXPECT_EQ(thumb->GetReflectionPart(), CRect(23, 0, 163, 83));
  const std::vector<DWORD> mirror = Texels(thumb->GetReflection());
  const std::vector<DWORD> texels = Texels(thumb->GetTexture());
  EXPECT_EQ(mirror[0], (texels[139 * 186 + 23] & 0x00FFFFFF) | 110u << 24);  // trunc(255 x 0.43 + 0.5)
  EXPECT_GT(mirror[82 * 140] >> 24, 0u);

  ASSERT_EQ(core.BeginPaint(), S_OK);
  CRect clip(80, 0, 400, 400);
  ASSERT_EQ(thumb->Render(&core, CRect(10, 10, 150, 150), nullptr, 0.0), 1);
  ASSERT_EQ(thumb->Render(&core, CRect(10, 10, 150, 150), &clip, 0.0), 1);
  const std::vector<fake::SpriteDrawRecord> draws = gpu->Draws();
  ASSERT_EQ(draws.size(), 4u);
  // The reflection right below; the part left of the clip is cut in proportion.
  EXPECT_EQ((std::vector{draws[0].source, draws[1].source, draws[2].source, draws[3].source}),
            (std::vector<CRect>{{23, 0, 163, 140}, {0, 0, 140, 83}, {93, 0, 163, 140}, {70, 0, 140, 83}}));
  EXPECT_EQ((std::vector{draws[1].quad.corners[0].y, draws[1].quad.corners[3].y, draws[2].quad.corners[0].x}),
            (std::vector{150.0f, 233.0f, 80.0f}));
  core.EndPaint();
}

TEST_F(ThumbnailTest, APictureThatDoesNotDecodeFailsWithItsTraceLine) {
  const CString path = Write("broken.jpg", "no picture at all");
  const std::shared_ptr<_ThumbnailConfig> thumb = Thumb(path);
  EXPECT_EQ(thumb->LoadThumb(), 0);
  EXPECT_EQ(thumb->GetState(), THUMB_STATE_FAILED);
  EXPECT_THAT(Traced(), ::testing::Contains(L"4 <ERROR> create texture from file: " + path.str()));
  EXPECT_EQ(thumb->LoadThumb(), 1);  // failed once is final
}

TEST_F(ThumbnailTest, JpegsDecodedAtAReducedScaleLookLikeTheWholePictureResampled) {
  _ThumbnailConfig::SetSharedCacheEnabled(0);
  const CString path = WritePicture("photo.jpg", kJpeg, 1600, 1200);
  std::vector<DWORD> fast, exact;
  for (bool fastPath : {true, false}) {
    SetJpegFastPath(fastPath);
    const std::shared_ptr<_ThumbnailConfig> thumb = Thumb(path);
    ASSERT_EQ(thumb->LoadThumb(), 1);
    (fastPath ? fast : exact) = Texels(thumb->GetTexture());
  }
  SetJpegFastPath(true);
  ASSERT_EQ(fast.size(), 186u * 140u);
  ASSERT_EQ(exact.size(), fast.size());
  for (int channel = 0; channel < 3; ++channel) {
    double sum = 0;
    for (size_t i = 0; i < fast.size(); ++i)
      sum += std::abs(static_cast<int>(fast[i] >> (8 * channel) & 0xFF) - static_cast<int>(exact[i] >> (8 * channel) & 0xFF));
    EXPECT_LE(sum / fast.size(), _ThumbnailConfig::kFastPathMeanDifference) << "channel " << channel;
  }
}

TEST_F(ThumbnailTest, APictureListedInTheFolderDatabaseTakesItsThumbnailFromThere) {
  KARVEL_REQUIRE_THUMBSDB_DATA();
  dir.Write("Thumbs.db", TempDir::Read(ThumbsDbData() / "FOOGS-Thumbs.db"));
  const std::shared_ptr<_ThumbnailConfig> thumb = Thumb(Write("Key.bmp", "not readable as a picture"));
  ASSERT_EQ(thumb->LoadThumb(), 1);
  const D3DSURFACE_DESC desc = Desc(thumb->GetTexture());
  // The stored 32 x 32 JPEG, stretched to the wanted size; the picture itself cannot tell its size.
  EXPECT_EQ(std::make_tuple(thumb->GetState(), desc.Format, desc.Width, thumb->GetImageWidth()),
            std::make_tuple(int{THUMB_STATE_LOADED}, D3DFMT_A8B8G8R8, 140u, 32u));
  EXPECT_TRUE(trace.Lines().empty());
}

TEST_F(ThumbnailTest, AStoredThumbnailThatDoesNotDecodeFallsBackToThePicture) {
  KARVEL_REQUIRE_THUMBSDB_DATA();
  dir.Write("thumbs.db", TempDir::Read(ThumbsDbData() / "qsim-svn-Thumbs.db"));  // table-less JPEGs
  const std::shared_ptr<_ThumbnailConfig> thumb = Thumb(WritePicture("brick.png", kPng, 32, 16));
  ASSERT_EQ(thumb->LoadThumb(), 1);
  EXPECT_EQ(std::make_tuple(Desc(thumb->GetTexture()).Width, Desc(thumb->GetTexture()).Format),
            std::make_tuple(32u, D3DFMT_A8R8G8B8));  // decoded from the file, never enlarged
}

TEST_F(ThumbnailTest, ADecodedPictureIsWrittenToTheSharedCacheAndReadBackWhileItsTimeMatches) {
  const CString path = WritePicture("shared.jpg", kJpeg, 400, 300);
  ASSERT_EQ(Thumb(path)->LoadThumb(), 1);

  const CString png = SharedThumbCache::ThumbnailPath(path, L"large");
  ASSERT_TRUE(PathExists(png));
  EXPECT_EQ(std::filesystem::status(ToNativePath(png)).permissions() & std::filesystem::perms::all,
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  const FIBitmapPtr written = LoadPicture(png, PICTURE_FORMAT_PNG);
  ASSERT_TRUE(written);
  std::string uri, mtime;
  ASSERT_TRUE(ReadPngText(written.get(), "Thumb::URI", uri));
  ASSERT_TRUE(ReadPngText(written.get(), "Thumb::MTime", mtime));
  EXPECT_EQ(uri, "file://" + ToNativePath(path));
  FileStatus status;
  ASSERT_TRUE(GetPathStatus(path, status));
  EXPECT_EQ(mtime, std::to_string(status.modificationTime / 1000000000LL));

  // The picture goes; a thumbnail still comes while the file's time matches.
  Write("shared.jpg", "not a picture any more");
  SetPathTimes(path, status.accessTime, status.modificationTime);
  const std::shared_ptr<_ThumbnailConfig> again = Thumb(path);
  ASSERT_EQ(again->LoadThumb(), 1);
  EXPECT_EQ(std::make_tuple(again->GetImageWidth(), Desc(again->GetTexture()).Width), std::make_tuple(400u, 186u));

  SetPathTimes(path, status.accessTime, status.modificationTime + 5 * 1000000000LL);
  EXPECT_EQ(Thumb(path)->LoadThumb(), 0);  // stale: the broken file is decoded and fails
}

TEST_F(ThumbnailTest, TheSharedCacheCanBeTurnedOffAndStopsWritingWhereItCannot) {
  _ThumbnailConfig::SetSharedCacheEnabled(0);
  const CString path = WritePicture("off.jpg", kJpeg, 300, 300);
  ASSERT_EQ(Thumb(path)->LoadThumb(), 1);
  EXPECT_FALSE(PathExists(SharedThumbCache::ThumbnailPath(path, L"large")));

  _ThumbnailConfig::SetSharedCacheEnabled(1);
  setenv("XDG_CACHE_HOME", dir.Write("a file", "").c_str(), 1);  // no folder can be made below it
  ASSERT_EQ(Thumb(path)->LoadThumb(), 1);
  EXPECT_FALSE(SharedThumbCache::IsWriting());
}

TEST(SharedThumbCacheNames, FileUrisEscapeEverythingButPathCharacters) {
  EXPECT_EQ(SharedThumbCache::FileUri(L"\\tmp\\a b\\\u00e9+(1).jpg"), "file:///tmp/a%20b/%C3%A9+(1).jpg");
  EXPECT_EQ(std::make_tuple(SharedThumbCache::LargeSize(4000, 3000), SharedThumbCache::LargeSize(100, 80)),
            std::make_tuple(CSize(256, 192), CSize(100, 80)));
}

}  // namespace
