#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

#include <karvelui/Helpers.h>
#include "platform/DynamicLibrary.h"
#include "platform/FileSystem.h"
#include "platform/Paths.h"
#include "raw/DngWriter.h"
#include <karvelui/ResourceCache.h>
#include "render/PictureDecoder.h"
#include "support/FakeDirect3D.h"
#include "support/TempDir.h"
#include "support/TraceCapture.h"
#include "raw/RawSupport.h"

namespace fs = std::filesystem;
using KarvelUI::CString;
using KarvelUI::FileStatus;
using KarvelUI::GenerateRawJPGFile;
using KarvelUI::GetRawFileJPGPath;
using KarvelUI::IsRawPic;
using KarvelUI::TimeStatusCompare;

namespace {

CString LibraryPath(const fs::path& native) { return KarvelUI::FromNativePath(native.string()); }

std::int64_t ModificationTime(const fs::path& file) {
  FileStatus status;
  EXPECT_TRUE(KarvelUI::GetPathStatus(LibraryPath(file), status)) << file;
  return status.modificationTime;
}

void SetTimes(const fs::path& file, std::int64_t access, std::int64_t modification) {
  ASSERT_TRUE(KarvelUI::SetPathTimes(LibraryPath(file), access, modification)) << file;
}

constexpr std::int64_t kSecond = 1000000000;
constexpr std::int64_t kSomeTime = 1300000000 * kSecond;

// Every test gets its own application-data folder, so caches never mix.
class RawTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const char* old = std::getenv("XDG_DATA_HOME")) m_oldDataHome = old;
    setenv("XDG_DATA_HOME", (m_home.Path() / "data").c_str(), 1);
    m_oldLibrary = KarvelUI::SetRawExtractorLibrary(L"ZorImgUtil.dll");
  }
  void TearDown() override {
    setenv("XDG_DATA_HOME", m_oldDataHome.c_str(), 1);
    KarvelUI::SetRawExtractorLibrary(m_oldLibrary);
  }

  fs::path CacheRoot() const { return m_home.Path() / "data" / "Orvane" / "Karvel" / "thumbnail"; }

  // A RAW file in the photo folder and its cache path.
  std::pair<fs::path, CString> RawAndCache(const std::string& name, const std::string& bytes) {
    const fs::path raw = m_photos.Write(name, bytes);
    CString jpg;
    EXPECT_EQ(GetRawFileJPGPath(LibraryPath(raw), jpg), 1);
    return {raw, jpg};
  }

  KarvelTest::TempDir m_home;
  KarvelTest::TempDir m_photos;
  std::string m_oldDataHome;
  CString m_oldLibrary;
};

// --- recognising RAW files -------------------------------------------------------

TEST(IsRawPic, EveryCameraExtensionInAnyCase) {
  for (const wchar_t* ext : {L"nef", L"crw", L"cr2", L"dcr", L"kdc", L"k25", L"mrw", L"arw", L"srf", L"sr2",
                             L"orf", L"mos", L"raf", L"pxn", L"mef", L"raw", L"pef", L"dng"}) {
    CString lower, upper;
    lower.Format(L"\\photos\\img.%s", ext);
    upper = lower;
    upper.MakeUpper();
    EXPECT_EQ(IsRawPic(lower), 1) << ext;
    EXPECT_EQ(IsRawPic(upper), 1) << ext;
  }
  EXPECT_EQ(IsRawPic(L"IMG_0001.CR2"), 1);
  EXPECT_EQ(IsRawPic(L"\\a\\.dng"), 1);
}

TEST(IsRawPic, OnlyTheLastExtensionOfTheLastComponentCounts) {
  EXPECT_EQ(IsRawPic(L"archive.raw.jpg"), 0);
  EXPECT_EQ(IsRawPic(L"\\shots.nef\\readme"), 0);
  EXPECT_EQ(IsRawPic(L"/shots.nef/readme"), 0);
  EXPECT_EQ(IsRawPic(L"\\a\\photo.nefx"), 0);
  EXPECT_EQ(IsRawPic(L"\\a\\photo.tif"), 0);
  EXPECT_EQ(IsRawPic(L"\\a\\nef"), 0);
  EXPECT_EQ(IsRawPic(L""), 0);
}

// --- cache paths -----------------------------------------------------------------

TEST_F(RawTest, CachePathIsTheMd5OfFolderAndOfFullPath) {
  CString appData;
  ASSERT_TRUE(KarvelUI::GetAppDataPath(appData));
  CString jpg;
  ASSERT_EQ(GetRawFileJPGPath(L"abc\\IMG_0001.CR2", jpg), 1);
  EXPECT_EQ(jpg, appData + L"\\thumbnail\\900150983cd24fb0d6963f7d28e17f72\\415d9a84b23af3bad7fef7af1088eb82.jpg");
  // Folder names are hashed as UTF-8.
  ASSERT_EQ(GetRawFileJPGPath(L"Fotos\\\u00c9t\u00e9\\DSC.NEF", jpg), 1);
  EXPECT_EQ(jpg, appData + L"\\thumbnail\\274a90cd1e85e542264d5f903a4102fd\\c431cf297e38f9681d099fa0653a96d7.jpg");
  EXPECT_TRUE(fs::is_directory(CacheRoot() / "900150983cd24fb0d6963f7d28e17f72"));
  EXPECT_TRUE(fs::is_directory(CacheRoot() / "274a90cd1e85e542264d5f903a4102fd"));
}

TEST_F(RawTest, FilesOfOneFolderShareTheCacheFolder) {
  CString first, second, other;
  ASSERT_EQ(GetRawFileJPGPath(LibraryPath(m_photos.Path() / "a.nef"), first), 1);
  ASSERT_EQ(GetRawFileJPGPath(LibraryPath(m_photos.Path() / "b.nef"), second), 1);
  ASSERT_EQ(GetRawFileJPGPath(LibraryPath(m_photos.Path() / "sub" / "a.nef"), other), 1);
  const auto folderOf = [](const CString& path) { return path.Left(path.ReverseFind(L'\\')); };
  EXPECT_EQ(folderOf(first), folderOf(second));
  EXPECT_NE(first, second);
  EXPECT_NE(folderOf(first), folderOf(other));
  EXPECT_TRUE(fs::is_directory(KarvelUI::ToNativePath(folderOf(first))));
}

TEST_F(RawTest, ExistingCacheFolderIsReusedAsItIs) {
  fs::create_directories(CacheRoot());
  const fs::path keep = CacheRoot() / "keep.txt";
  m_home.Write("data/Orvane/Karvel/thumbnail/keep.txt", "x");
  fs::permissions(CacheRoot(), fs::perms::owner_all);
  CString jpg;
  EXPECT_EQ(GetRawFileJPGPath(L"abc\\x.nef", jpg), 1);
  EXPECT_EQ(KarvelTest::TempDir::Read(keep), "x");
  EXPECT_EQ(fs::status(CacheRoot()).permissions(), fs::perms::owner_all);
}

TEST_F(RawTest, CachePathFailsWithoutFolderOrWhenTheCacheCannotBeCreated) {
  CString jpg = L"untouched";
  EXPECT_EQ(GetRawFileJPGPath(L"x.nef", jpg), 0);
  EXPECT_EQ(jpg, L"untouched");
  // A file where the cache folder belongs is not "already exists".
  m_home.Write("data/Orvane/Karvel/thumbnail", "not a folder");
  EXPECT_EQ(GetRawFileJPGPath(L"abc\\x.nef", jpg), 0);
}

// --- cache freshness -------------------------------------------------------------

TEST_F(RawTest, TimeStatusCompareLooksAtModificationTimesOnly) {
  const fs::path a = m_photos.Write("a.nef", "a");
  const fs::path b = m_photos.Write("a.jpg", "b");
  SetTimes(a, kSomeTime, kSomeTime);
  SetTimes(b, kSomeTime + 60 * kSecond, kSomeTime);  // read a minute later
  EXPECT_EQ(TimeStatusCompare(LibraryPath(a), LibraryPath(b)), 1);
  SetTimes(b, kSomeTime, kSomeTime + 1);
  EXPECT_EQ(TimeStatusCompare(LibraryPath(a), LibraryPath(b)), 0);
  EXPECT_EQ(TimeStatusCompare(LibraryPath(a), LibraryPath(m_photos.Path() / "missing.jpg")), 0);
  EXPECT_EQ(TimeStatusCompare(LibraryPath(m_photos.Path() / "missing.nef"), LibraryPath(a)), 0);
}

TEST_F(RawTest, CurrentJpegIsKeptWithoutLoadingTheLibrary) {
  auto [raw, jpg] = RawAndCache("a.nef", "raw bytes");
  const fs::path jpgFile = KarvelUI::ToNativePath(jpg);
  m_home.Write(fs::relative(jpgFile, m_home.Path()).string(), "cached jpeg");
  SetTimes(raw, kSomeTime, kSomeTime);
  SetTimes(jpgFile, kSomeTime + kSecond, kSomeTime);  // read since it was made
  KarvelUI::SetRawExtractorLibrary(L"KarvelNoSuchExtractor.dll");
  EXPECT_EQ(GenerateRawJPGFile(LibraryPath(raw), jpg), 1);
  EXPECT_EQ(KarvelTest::TempDir::Read(jpgFile), "cached jpeg");
}

TEST_F(RawTest, StaleJpegIsDeletedBeforeExtracting) {
  auto [raw, jpg] = RawAndCache("a.nef", "raw bytes");
  const fs::path jpgFile = KarvelUI::ToNativePath(jpg);
  m_home.Write(fs::relative(jpgFile, m_home.Path()).string(), "old jpeg");
  SetTimes(raw, kSomeTime, kSomeTime + kSecond);  // the RAW file changed since
  SetTimes(jpgFile, kSomeTime, kSomeTime);
  KarvelUI::SetRawExtractorLibrary(L"KarvelNoSuchExtractor.dll");
  EXPECT_EQ(GenerateRawJPGFile(LibraryPath(raw), jpg), 0);
  EXPECT_FALSE(fs::exists(jpgFile));
}

// --- the extraction library ------------------------------------------------------

TEST_F(RawTest, MissingLibraryOrExportFailsAndWritesNothing) {
  auto [raw, jpg] = RawAndCache("a.dng", KarvelTest::MakeDng(KarvelTest::DngLayout{}));
  KarvelTest::TraceCapture trace;
  KarvelUI::SetRawExtractorLibrary(L"KarvelNoSuchExtractor.dll");
  EXPECT_EQ(GenerateRawJPGFile(LibraryPath(raw), jpg), 0);
  KarvelUI::SetRawExtractorLibrary(L"KarvelRawNoExport.dll");
  EXPECT_EQ(GenerateRawJPGFile(LibraryPath(raw), jpg), 0);
  EXPECT_FALSE(fs::exists(KarvelUI::ToNativePath(jpg)));
  EXPECT_TRUE(trace.Messages().empty());
}

TEST_F(RawTest, FailedTimeCopyIsTracedWithTheSystemError) {
  auto [raw, jpg] = RawAndCache("a.nef", "raw bytes");
  KarvelTest::TraceCapture trace;
  // This stand-in reports success but writes no JPEG, so its status cannot
  // be written.
  KarvelUI::SetRawExtractorLibrary(L"KarvelRawNoOutput.dll");
  EXPECT_EQ(GenerateRawJPGFile(LibraryPath(raw), jpg), 0);
  ASSERT_EQ(trace.Lines().size(), 1u);
  EXPECT_EQ(trace.Lines()[0].level, 3);
  EXPECT_EQ(trace.Lines()[0].message, L"Error in SetStatus for 2");  // ENOENT
}

TEST_F(RawTest, EmbeddedPreviewIsWrittenAsItIsAndStampedWithTheRawModificationTime) {
  KarvelTest::DngLayout layout;
  layout.previews = {KarvelTest::MakePreviewJpeg(32, 24, 0xFF0000), KarvelTest::MakePreviewJpeg(96, 64, 0x00FF00)};
  auto [raw, jpg] = RawAndCache("IMG_0001.DNG", KarvelTest::MakeDng(layout));
  const fs::path jpgFile = KarvelUI::ToNativePath(jpg);
  ASSERT_EQ(GenerateRawJPGFile(LibraryPath(raw), jpg), 1);
  EXPECT_EQ(ModificationTime(jpgFile), ModificationTime(raw));
  // Now current: no extraction is needed, not even a library; reading the
  // preview and the RAW file (new access times) keeps it so.
  KarvelUI::SetRawExtractorLibrary(L"KarvelNoSuchExtractor.dll");
  for (int read = 1; read <= 2; ++read) {
    EXPECT_EQ(GenerateRawJPGFile(LibraryPath(raw), jpg), 1);
    SetTimes(jpgFile, kSomeTime + read * kSecond, ModificationTime(jpgFile));
    SetTimes(raw, kSomeTime - read * kSecond, ModificationTime(raw));
  }
  // The larger preview, byte for byte.
  EXPECT_EQ(KarvelTest::TempDir::Read(jpgFile), layout.previews[1].jpeg);
}

TEST_F(RawTest, LargestPreviewWinsWhereverItIsStored) {
  KarvelTest::DngLayout layout;
  layout.previews = {KarvelTest::MakePreviewJpeg(96, 64, 0x00FF00), KarvelTest::MakePreviewJpeg(32, 24, 0xFF0000)};
  auto [raw, jpg] = RawAndCache("a.dng", KarvelTest::MakeDng(layout));
  ASSERT_EQ(GenerateRawJPGFile(LibraryPath(raw), jpg), 1);
  EXPECT_EQ(KarvelTest::TempDir::Read(KarvelUI::ToNativePath(jpg)), layout.previews[0].jpeg);
}

TEST_F(RawTest, StaleJpegIsReplacedByAFreshExtraction) {
  KarvelTest::DngLayout layout;
  layout.previews = {KarvelTest::MakePreviewJpeg(48, 32, 0x0000FF)};
  auto [raw, jpg] = RawAndCache("a.dng", KarvelTest::MakeDng(layout));
  const fs::path jpgFile = KarvelUI::ToNativePath(jpg);
  m_home.Write(fs::relative(jpgFile, m_home.Path()).string(), "stale");
  SetTimes(raw, kSomeTime, kSomeTime);
  SetTimes(jpgFile, kSomeTime, kSomeTime - kSecond);
  ASSERT_EQ(GenerateRawJPGFile(LibraryPath(raw), jpg), 1);
  EXPECT_EQ(ModificationTime(jpgFile), ModificationTime(raw));
  EXPECT_EQ(KarvelTest::TempDir::Read(jpgFile), layout.previews[0].jpeg);
}

TEST_F(RawTest, WithoutPreviewTheSensorImageIsDevelopedAtHalfSize) {
  KarvelTest::DngLayout layout;  // 256 x 192, dark top half, bright bottom half
  auto [raw, jpg] = RawAndCache("a.dng", KarvelTest::MakeDng(layout));
  ASSERT_EQ(GenerateRawJPGFile(LibraryPath(raw), jpg), 1);
  const KarvelTest::DecodedJpeg decoded = KarvelTest::DecodeJpeg(KarvelTest::TempDir::Read(KarvelUI::ToNativePath(jpg)));
  EXPECT_EQ(decoded.width, 128);
  EXPECT_EQ(decoded.height, 96);
  EXPECT_LT(decoded.topGreen + 60, decoded.bottomGreen);
}

TEST_F(RawTest, FailedExtractionLeavesNoFileBehind) {
  auto [raw, jpg] = RawAndCache("broken.nef", std::string(4096, 'x'));
  const fs::path jpgFile = KarvelUI::ToNativePath(jpg);
  EXPECT_EQ(GenerateRawJPGFile(LibraryPath(raw), jpg), 0);
  EXPECT_FALSE(fs::exists(jpgFile));
  EXPECT_TRUE(fs::is_empty(jpgFile.parent_path()));
  // A DNG cut short inside its directories fails the same way.
  const std::string dng = KarvelTest::MakeDng(KarvelTest::DngLayout{});
  auto [cut, cutJpg] = RawAndCache("cut.dng", dng.substr(0, 40));
  EXPECT_EQ(GenerateRawJPGFile(LibraryPath(cut), cutJpg), 0);
  EXPECT_TRUE(fs::is_empty(jpgFile.parent_path()));
}

TEST_F(RawTest, LibraryRefusesToWriteOverTheRawFileOrIntoAMissingFolder) {
  KarvelTest::DngLayout layout;
  layout.previews = {KarvelTest::MakePreviewJpeg(48, 32, 0x0000FF)};
  const std::string dng = KarvelTest::MakeDng(layout);
  const fs::path raw = m_photos.Write("a.dng", dng);
  KarvelUI::DynamicLibrary library;
  ASSERT_TRUE(library.Load(L"ZorImgUtil.dll")) << library.LastError();
  const auto extract = reinterpret_cast<int (*)(const wchar_t*, const wchar_t*)>(
      library.GetProcAddress("ExtrctRawImageFile"));
  ASSERT_NE(extract, nullptr);
  const std::wstring rawPath = raw.wstring();
  EXPECT_NE(extract(rawPath.c_str(), rawPath.c_str()), 0);
  EXPECT_NE(extract(rawPath.c_str(), (m_photos.Path() / "." / "a.dng").wstring().c_str()), 0);
  EXPECT_NE(extract(rawPath.c_str(), (m_photos.Path() / "missing" / "a.jpg").wstring().c_str()), 0);
  EXPECT_EQ(KarvelTest::TempDir::Read(raw), dng);
  EXPECT_EQ(extract(rawPath.c_str(), (m_photos.Path() / "a.jpg").wstring().c_str()), 0);
  EXPECT_EQ(KarvelTest::TempDir::Read(m_photos.Path() / "a.jpg"), layout.previews[0].jpeg);
}

}  // namespace

// --- the picture cache -------------------------------------------------------------

TEST_F(RawTest, TheCacheShowsARawFileThroughItsCachedPreview) {
  auto gpu = std::make_shared<KarvelUI::fake::FakeGpu>();
  KarvelUI::D3DPRESENT_PARAMETERS params{};
  KarvelUI::RefPtr<KarvelUI::IDirect3DDevice9> device;
  ASSERT_EQ(KarvelUI::fake::FakeDirect3D::Create(gpu)->CreateDevice(0, KarvelUI::D3DDEVTYPE_HAL,
                                                                    reinterpret_cast<KarvelUI::HWND>(0x1000), 0,
                                                                    &params, device.Receive()),
            KarvelUI::S_OK);
  KarvelTest::DngLayout layout;  // a 256 x 192 sensor
  layout.previews = {KarvelTest::MakePreviewJpeg(96, 64, 0x00FF00)};
  auto [raw, jpg] = RawAndCache("IMG_0002.DNG", KarvelTest::MakeDng(layout));
  KarvelUI::ResourceCache cache;
  const KarvelUI::tagTextureItem* item = cache.GetTextureItem(LibraryPath(raw), device.Get());
  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->nImageFormat, KarvelUI::PICTURE_FORMAT_JPEG);
  EXPECT_EQ(item->ImageInfo.Width, 96u);
  EXPECT_TRUE(fs::exists(KarvelUI::ToNativePath(jpg)));

  // Without a preview to be had, the RAW file itself is tried, and it is no picture.
  auto [broken, brokenJpg] = RawAndCache("broken.nef", std::string(4096, 'x'));
  KarvelTest::TraceCapture trace;
  EXPECT_EQ(cache.GetTextureItem(LibraryPath(broken), device.Get()), nullptr);
  EXPECT_TRUE(trace.Contains(L"<ERROR> Decode Fail: " + LibraryPath(broken).str()));
}
