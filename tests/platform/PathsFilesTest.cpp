#include <gtest/gtest.h>

#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>

#include "platform/FileSystem.h"
#include "platform/MappedFile.h"
#include "platform/Paths.h"
#include <karvelui/StdioFile.h>
#include "support/TempDir.h"

using namespace KarvelUI;
using KarvelTest::TempDir;

namespace {

CString Lib(const std::filesystem::path& p) { return FromNativePath(p.string()); }

}  // namespace

TEST(NativePaths, SeparatorRunsCollapseSoNormalisedPathsReachTheSameFile) {
  EXPECT_EQ(ToNativePath(L"\\\\home\\x\\a.png"), "/home/x/a.png");
  EXPECT_EQ(ToNativePath(L"\\home\\\\x//y/"), "/home/x/y/");
  EXPECT_EQ(ToNativePath(L"rel\\dir\\f"), "rel/dir/f");
  EXPECT_EQ(ToNativePath(L"\\tmp\\caf\u00e9\\\u5199\u771f.jpg"), "/tmp/caf\xc3\xa9/\xe5\x86\x99\xe7\x9c\x9f.jpg");
  EXPECT_EQ(FromNativePath("/tmp/caf\xc3\xa9/x"), CString(L"\\tmp\\caf\u00e9\\x"));
}

TEST(NativePaths, ExecutableAndDataFolders) {
  const CString exe = GetExecutablePath();
  EXPECT_EQ(exe.Left(1), CString(L"\\"));
  EXPECT_GE(exe.Find(L"karvel_platform_tests"), 0);
  EXPECT_EQ(GetExecutableFolderNative() + "/karvel_platform_tests", ToNativePath(exe));

  setenv("XDG_DATA_HOME", "/srv/data//", 1);
  CString folder;
  ASSERT_TRUE(GetUserDataFolder(folder));
  EXPECT_EQ(folder, CString(L"\\srv\\data"));

  // A relative data home is ignored in favour of the home folder.
  setenv("XDG_DATA_HOME", "relative", 1);
  setenv("HOME", "/home/someone", 1);
  ASSERT_TRUE(GetUserDataFolder(folder));
  EXPECT_EQ(folder, CString(L"\\home\\someone\\.local\\share"));
  unsetenv("XDG_DATA_HOME");
  ASSERT_TRUE(GetUserDataFolder(folder));
  EXPECT_EQ(folder, CString(L"\\home\\someone\\.local\\share"));
}

TEST(FileSystem, StatusSizeTimesAndRemoval) {
  TempDir dir;
  const CString file = Lib(dir.Write("a.txt", "12345"));
  const CString doubled = CString(L"\\") + file;  // as ReparsePath leaves it

  FileStatus status;
  ASSERT_TRUE(GetPathStatus(doubled, status));
  EXPECT_EQ(status.size, 5u);
  EXPECT_FALSE(status.isFolder);
  EXPECT_GT(status.creationTime, 0);

  const std::int64_t access = 1300000000LL * 1000000000LL + 5;
  const std::int64_t modified = 1200000000LL * 1000000000LL + 7;
  ASSERT_TRUE(SetPathTimes(file, access, modified));
  ASSERT_TRUE(GetPathStatus(file, status));
  EXPECT_EQ(status.accessTime, access);
  EXPECT_EQ(status.modificationTime, modified);

  EXPECT_TRUE(SetHiddenAttribute(file, true));
  EXPECT_TRUE(PathExists(file));  // hiding never renames or removes
  EXPECT_TRUE(RemoveFile(file));
  EXPECT_FALSE(PathExists(file));
  EXPECT_FALSE(RemoveFile(file));
  EXPECT_FALSE(GetPathStatus(file, status));
  EXPECT_FALSE(SetHiddenAttribute(file, true));
}

TEST(FileSystem, CreateFolderTellsAlreadyExistsFromFailure) {
  TempDir dir;
  const CString folder = Lib(dir.Path() / "new");
  EXPECT_EQ(CreateFolder(folder), CreateFolderResult::Created);
  EXPECT_EQ(CreateFolder(folder), CreateFolderResult::AlreadyExists);
  EXPECT_EQ(CreateFolder(Lib(dir.Path() / "missing" / "child")), CreateFolderResult::Failed);
  const CString file = Lib(dir.Write("plain", "x"));
  EXPECT_EQ(CreateFolder(file), CreateFolderResult::Failed);
  EXPECT_EQ(CreateFolder(CString()), CreateFolderResult::Failed);

  EXPECT_TRUE(CreateFolderTree(Lib(dir.Path() / "a" / "b" / "c")));
  EXPECT_TRUE(std::filesystem::is_directory(dir.Path() / "a" / "b" / "c"));
  EXPECT_FALSE(CreateFolderTree(file + L"\\below"));
}

TEST(StdioFile, CreateTruncatesUnlessNoTruncate) {
  TempDir dir;
  const auto path = dir.Write("f.bin", "old content");
  CStdioFile file;
  ASSERT_TRUE(file.Open(Lib(path), CStdioFile::modeReadWrite | CStdioFile::modeCreate | CStdioFile::modeNoTruncate));
  EXPECT_EQ(file.GetLength(), 11u);
  ASSERT_TRUE(file.SeekToEnd());
  ASSERT_TRUE(file.Write("!", 1));
  EXPECT_EQ(file.GetLength(), 12u);  // pending bytes count
  file.Close();
  EXPECT_EQ(TempDir::Read(path), "old content!");

  ASSERT_TRUE(file.Open(Lib(path), CStdioFile::modeWrite | CStdioFile::modeCreate));
  file.Close();
  EXPECT_EQ(TempDir::Read(path), "");

  EXPECT_FALSE(file.Open(Lib(dir.Path() / "none"), CStdioFile::modeRead));
  EXPECT_FALSE(file.Open(Lib(dir.Path()), CStdioFile::modeRead));  // a folder is no file
  EXPECT_FALSE(file.SetFilePath(nullptr));
}

TEST(StdioFile, LineReadsStopAtLineFeedOrLimit) {
  TempDir dir;
  const auto path = dir.Write("lines", std::string("ab\r\ncdefgh\nlast"));
  CStdioFile file;
  ASSERT_TRUE(file.Open(Lib(path), CStdioFile::modeRead));
  std::string line;
  ASSERT_TRUE(file.ReadLineBytes(line, 100));
  EXPECT_EQ(line, "ab\r\n");
  ASSERT_TRUE(file.ReadLineBytes(line, 3));
  EXPECT_EQ(line, "cde");
  ASSERT_TRUE(file.ReadLineBytes(line, 100));
  EXPECT_EQ(line, "fgh\n");
  ASSERT_TRUE(file.ReadLineBytes(line, 100));
  EXPECT_EQ(line, "last");
  EXPECT_FALSE(file.ReadLineBytes(line, 100));

  const auto wide = dir.Write("w", std::string("a\0\n\0b\0", 6));
  ASSERT_TRUE(file.Open(Lib(wide), CStdioFile::modeRead));
  std::u16string units;
  ASSERT_TRUE(file.ReadLineUtf16(units));
  EXPECT_EQ(units, u"a\n");
  ASSERT_TRUE(file.ReadLineUtf16(units));
  EXPECT_EQ(units, u"b");
  EXPECT_FALSE(file.ReadLineUtf16(units));
}

TEST(MappedFile, MapsWholeFileAndFailsCleanly) {
  TempDir dir;
  const CString file = Lib(dir.Write("data.bin", std::string("\x00\x01\x02\xff", 4)));
  MappedFile mapped(file);
  ASSERT_TRUE(mapped.IsOpen());
  ASSERT_EQ(mapped.Size(), 4u);
  EXPECT_EQ(mapped.Data()[3], 0xff);

  MappedFile moved(std::move(mapped));
  EXPECT_FALSE(mapped.IsOpen());
  EXPECT_EQ(moved.Size(), 4u);
  EXPECT_EQ(moved.Data()[1], 0x01);

  EXPECT_FALSE(MappedFile(Lib(dir.Write("empty", ""))).IsOpen());
  EXPECT_FALSE(MappedFile(Lib(dir.Path() / "missing")).IsOpen());
  EXPECT_FALSE(MappedFile(Lib(dir.Path())).IsOpen());
  if (geteuid() != 0) {  // root reads anything
    const auto locked = dir.Write("locked", "secret");
    chmod(locked.c_str(), 0);
    MappedFile unreadable(Lib(locked));
    EXPECT_FALSE(unreadable.IsOpen());
    EXPECT_EQ(unreadable.Data(), nullptr);
  }
}
