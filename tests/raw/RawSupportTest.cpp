// RAW files: recognising them, where their cached preview JPEG lives, when
// it is current, and extracting it through the extraction library (the real
// one over small DNG files, and stand-ins that lack the export or write
// nothing).

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>
#include <tuple>

#include <karvelui/Helpers.h>
#include <karvelui/ResourceCache.h>
#include "platform/DynamicLibrary.h"
#include "platform/FileSystem.h"
#include "platform/Paths.h"
#include "raw/DngWriter.h"
#include "raw/RawSupport.h"
#include "render/PictureDecoder.h"
#include "support/FakeDirect3D.h"
#include "support/PictureFiles.h"
#include "support/TempDir.h"
#include "support/TraceCapture.h"

namespace fs = std::filesystem;
using namespace KarvelUI;
using namespace KarvelTest;

namespace {

CString LibraryPath(const fs::path& native) { return FromNativePath(native.string()); }

std::int64_t ModificationTime(const fs::path& file) {
  FileStatus status;
  EXPECT_TRUE(GetPathStatus(LibraryPath(file), status)) << file;
  return status.modificationTime;
}

void SetTimes(const fs::path& file, std::int64_t access, std::int64_t modification) {
  ASSERT_TRUE(SetPathTimes(LibraryPath(file), access, modification)) << file;
}

constexpr std::int64_t kSecond = 1000000000, kSomeTime = 1300000000 * kSecond;

// Every test gets its own application-data folder, so caches never mix.
class RawTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const char* old = std::getenv("XDG_DATA_HOME")) m_oldDataHome = old;
    setenv("XDG_DATA_HOME", (m_home.Path() / "data").c_str(), 1);
    m_oldLibrary = SetRawExtractorLibrary(L"ZorImgUtil.dll");
  }
  void TearDown() override {
    setenv("XDG_DATA_HOME", m_oldDataHome.c_str(), 1);
    SetRawExtractorLibrary(m_oldLibrary);
  }
  // A RAW file in the photo folder, its cache path and that path on disk.
  struct Files {
    fs::path raw;
    CString jpg;
    fs::path jpgFile;
  };
  Files Raw(const std::string& name, const std::string& bytes) {
    Files files{m_photos.Write(name, bytes), {}, {}};
    EXPECT_EQ(GetRawFileJPGPath(LibraryPath(files.raw), files.jpg), 1);
    files.jpgFile = ToNativePath(files.jpg);
    return files;
  }
  static std::string Dng(std::initializer_list<DngPreview> previews) { return MakeDng({256, 192, previews}); }

  TempDir m_home, m_photos;
  std::string m_oldDataHome;
  CString m_oldLibrary;
};

}  // namespace

TEST(IsRawPic, EveryCameraExtensionInAnyCaseAndOnlyTheLastExtensionOfTheLastComponent) {
  for (const wchar_t* ext : {L"nef", L"crw", L"cr2", L"dcr", L"kdc", L"k25", L"mrw", L"arw", L"srf", L"sr2",
                             L"orf", L"mos", L"raf", L"pxn", L"mef", L"raw", L"pef", L"dng"}) {
    CString path;
    path.Format(L"\\photos\\img.%s", ext);
    const int lower = IsRawPic(path);
    path.MakeUpper();
    EXPECT_EQ(lower + IsRawPic(path), 2) << ext;
  }
  EXPECT_EQ(IsRawPic(L"\\a\\.dng"), 1);
  for (const wchar_t* other : {L"archive.raw.jpg", L"\\shots.nef\\readme", L"/shots.nef/readme", L"\\a\\photo.nefx",
                               L"\\a\\photo.tif", L"\\a\\nef", L""})
    EXPECT_EQ(IsRawPic(other), 0) << other;
}

TEST_F(RawTest, TheCachePathIsTheMd5OfTheFolderAndOfTheFullPath) {
  CString appData, jpg = L"untouched";
  ASSERT_TRUE(GetAppDataPath(appData));
  EXPECT_EQ(GetRawFileJPGPath(L"x.nef", jpg), 0);  // no folder
  EXPECT_EQ(jpg, L"untouched");
  ASSERT_EQ(GetRawFileJPGPath(L"abc\\IMG_0001.CR2", jpg), 1);
  EXPECT_EQ(jpg, appData + L"\\thumbnail\\900150983cd24fb0d6963f7d28e17f72\\415d9a84b23af3bad7fef7af1088eb82.jpg");
  // Folder names are hashed as UTF-8; the folder is made.
  ASSERT_EQ(GetRawFileJPGPath(L"Fotos\\\u00c9t\u00e9\\DSC.NEF", jpg), 1);
  EXPECT_EQ(jpg, appData + L"\\thumbnail\\274a90cd1e85e542264d5f903a4102fd\\c431cf297e38f9681d099fa0653a96d7.jpg");
  EXPECT_TRUE(fs::is_directory(ToNativePath(jpg.Left(jpg.ReverseFind(L'\\')))));
  // A folder that exists is reused as it is; a file where it belongs is no folder.
  const fs::path folder = m_home.Path() / "data/Orvane/Karvel/thumbnail/274a90cd1e85e542264d5f903a4102fd";
  fs::permissions(folder, fs::perms::owner_all);
  ASSERT_EQ(GetRawFileJPGPath(L"Fotos\\\u00c9t\u00e9\\b.NEF", jpg), 1);
  EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all);
  fs::remove_all(m_home.Path() / "data/Orvane/Karvel/thumbnail");
  m_home.Write("data/Orvane/Karvel/thumbnail", "not a folder");
  EXPECT_EQ(GetRawFileJPGPath(L"abc\\x.nef", jpg), 0);
}

TEST_F(RawTest, TimeStatusCompareLooksAtModificationTimesOnly) {
  const fs::path a = m_photos.Write("a.nef", "a"), b = m_photos.Write("a.jpg", "b");
  SetTimes(a, kSomeTime, kSomeTime);
  SetTimes(b, kSomeTime + 60 * kSecond, kSomeTime);  // read a minute later
  EXPECT_EQ(TimeStatusCompare(LibraryPath(a), LibraryPath(b)), 1);
  SetTimes(b, kSomeTime, kSomeTime + 1);
  EXPECT_EQ(TimeStatusCompare(LibraryPath(a), LibraryPath(b)), 0);
  EXPECT_EQ(TimeStatusCompare(LibraryPath(a), LibraryPath(m_photos.Path() / "missing.jpg")), 0);
}

TEST_F(RawTest, ACurrentJpegIsKeptWithoutTheLibraryAndAStaleOneIsDeletedBeforeExtracting) {
  const Files f = Raw("a.nef", "raw bytes");
  m_home.Write(fs::relative(f.jpgFile, m_home.Path()).string(), "cached jpeg");
  SetTimes(f.raw, kSomeTime, kSomeTime);
  SetTimes(f.jpgFile, kSomeTime + kSecond, kSomeTime);  // read since it was made
  SetRawExtractorLibrary(L"KarvelNoSuchExtractor.dll");
  EXPECT_EQ(GenerateRawJPGFile(LibraryPath(f.raw), f.jpg), 1);
  EXPECT_EQ(TempDir::Read(f.jpgFile), "cached jpeg");
  SetTimes(f.raw, kSomeTime, kSomeTime + kSecond);  // the RAW file changed since
  EXPECT_EQ(GenerateRawJPGFile(LibraryPath(f.raw), f.jpg), 0);
  EXPECT_FALSE(fs::exists(f.jpgFile));
}

TEST_F(RawTest, AMissingLibraryOrExportFailsSilentlyAndAFailedTimeCopyIsTracedWithTheSystemError) {
  const Files f = Raw("a.dng", Dng({}));
  TraceCapture trace;
  for (const wchar_t* library : {L"KarvelNoSuchExtractor.dll", L"KarvelRawNoExport.dll"}) {
    SetRawExtractorLibrary(library);
    EXPECT_EQ(GenerateRawJPGFile(LibraryPath(f.raw), f.jpg), 0) << library;
  }
  EXPECT_TRUE(!fs::exists(f.jpgFile) && trace.Lines().empty());
  // This stand-in reports success but writes no JPEG, so its status cannot be written.
  SetRawExtractorLibrary(L"KarvelRawNoOutput.dll");
  EXPECT_EQ(GenerateRawJPGFile(LibraryPath(f.raw), f.jpg), 0);
  ASSERT_EQ(trace.Lines().size(), 1u);
  EXPECT_EQ(std::make_tuple(trace.Lines()[0].level, trace.Lines()[0].message),
            std::make_tuple(TRACE_LEVEL_FALLBACK, std::wstring(L"Error in SetStatus for 2")));  // ENOENT
}

TEST_F(RawTest, TheLargestPreviewIsWrittenAsItIsWhereverItIsStoredAndStaysCurrentWhenRead) {
  const DngPreview small = MakePreviewJpeg(32, 24, 0xFF0000), large = MakePreviewJpeg(96, 64, 0x00FF00);
  const Files second = Raw("IMG_0001.DNG", Dng({small, large}));
  const Files first = Raw("IMG_0002.DNG", Dng({large, small}));
  for (const Files* f : {&first, &second}) {
    m_home.Write(fs::relative(f->jpgFile, m_home.Path()).string(), "stale");
    SetTimes(f->raw, kSomeTime, kSomeTime);
    SetTimes(f->jpgFile, kSomeTime, kSomeTime - kSecond);
    ASSERT_EQ(GenerateRawJPGFile(LibraryPath(f->raw), f->jpg), 1);
    EXPECT_EQ(ModificationTime(f->jpgFile), ModificationTime(f->raw));
    EXPECT_EQ(TempDir::Read(f->jpgFile), large.jpeg);
  }
  // Reading the preview and the RAW file (new access times) keeps it current: no library is needed.
  SetRawExtractorLibrary(L"KarvelNoSuchExtractor.dll");
  for (int read = 1; read <= 2; ++read) {
    SetTimes(first.jpgFile, kSomeTime + read * kSecond, ModificationTime(first.jpgFile));
    SetTimes(first.raw, kSomeTime - read * kSecond, ModificationTime(first.raw));
    EXPECT_EQ(GenerateRawJPGFile(LibraryPath(first.raw), first.jpg), 1);
  }
}

TEST_F(RawTest, WithoutPreviewTheSensorImageIsDevelopedAtHalfSizeAndFailuresLeaveNoFile) {
  const Files f = Raw("a.dng", Dng({}));  // 256 x 192, dark top half, bright bottom half
  ASSERT_EQ(GenerateRawJPGFile(LibraryPath(f.raw), f.jpg), 1);
  const DecodedPicture decoded = DecodePicture(TempDir::Read(f.jpgFile));
  ASSERT_EQ(CSize(decoded.width, decoded.height), CSize(128, 96));
  EXPECT_LT(((decoded.At(0, 2) >> 8) & 0xFF) + 60, (decoded.At(0, 93) >> 8) & 0xFF);

  // Neither a file that is no RAW nor a DNG cut inside its directories leaves anything.
  const std::pair<std::string, std::string> bad[] = {{"broken.nef", std::string(4096, 'x')},
                                                     {"cut.dng", Dng({}).substr(0, 40)}};
  for (const auto& [name, bytes] : bad) {
    const Files files = Raw(name, bytes);
    EXPECT_EQ(GenerateRawJPGFile(LibraryPath(files.raw), files.jpg), 0) << name;
    EXPECT_FALSE(fs::exists(files.jpgFile)) << name;
  }
}

TEST_F(RawTest, TheLibraryRefusesToWriteOverTheRawFileOrIntoAMissingFolder) {
  const DngPreview preview = MakePreviewJpeg(48, 32, 0x0000FF);
  const std::string dng = Dng({preview});
  const std::wstring raw = m_photos.Write("a.dng", dng).wstring();
  DynamicLibrary library;
  ASSERT_TRUE(library.Load(L"ZorImgUtil.dll")) << library.LastError();
  const auto extract =
      reinterpret_cast<int (*)(const wchar_t*, const wchar_t*)>(library.GetProcAddress("ExtrctRawImageFile"));
  ASSERT_NE(extract, nullptr);
  for (const fs::path& refused :
       {fs::path(raw), m_photos.Path() / "." / "a.dng", m_photos.Path() / "missing" / "a.jpg"})
    EXPECT_NE(extract(raw.c_str(), refused.wstring().c_str()), 0) << refused;
  EXPECT_EQ(TempDir::Read(raw), dng);
  EXPECT_EQ(extract(raw.c_str(), (m_photos.Path() / "a.jpg").wstring().c_str()), 0);
  EXPECT_EQ(TempDir::Read(m_photos.Path() / "a.jpg"), preview.jpeg);
}

TEST_F(RawTest, TheCacheShowsARawFileThroughItsCachedPreviewOrTriesTheFileItself) {
  auto gpu = std::make_shared<fake::FakeGpu>();
  D3DPRESENT_PARAMETERS params{};
  RefPtr<IDirect3DDevice9> device;
  ASSERT_EQ(fake::FakeDirect3D::Create(gpu)->CreateDevice(0, D3DDEVTYPE_HAL, reinterpret_cast<HWND>(0x1000), 0,
                                                          &params, device.Receive()),
            S_OK);
  const Files f = Raw("IMG_0002.DNG", Dng({MakePreviewJpeg(96, 64, 0x00FF00)}));  // a 256 x 192 sensor
  ResourceCache cache;
  const tagTextureItem* item = cache.GetTextureItem(LibraryPath(f.raw), device.Get());
  ASSERT_NE(item, nullptr);
  EXPECT_EQ(std::make_tuple(item->nImageFormat, item->ImageInfo.Width), std::make_tuple(int{PICTURE_FORMAT_JPEG}, 96u));
  // Without a preview to be had, the RAW file itself is tried, and it is no picture.
  const Files broken = Raw("broken.nef", std::string(4096, 'x'));
  TraceCapture trace;
  EXPECT_EQ(cache.GetTextureItem(LibraryPath(broken.raw), device.Get()), nullptr);
  EXPECT_TRUE(trace.Contains(L"<ERROR> Decode Fail: " + LibraryPath(broken.raw).str()));
}
