#include <gtest/gtest.h>

#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <tuple>
#include <vector>

#include <karvelui/StdioFile.h>
#include "platform/FileSystem.h"
#include "platform/MappedFile.h"
#include "platform/Paths.h"
#include "support/TempDir.h"

using namespace KarvelUI;
using KarvelTest::TempDir;

namespace {

CString Lib(const std::filesystem::path& p) { return FromNativePath(p.string()); }

}  // namespace

TEST(NativePaths, SeparatorRunsCollapseSoNormalisedPathsReachTheSameFile) {
  const std::pair<const wchar_t*, const char*> paths[] = {
      {L"\\\\home\\x\\a.png", "/home/x/a.png"},
      {L"\\home\\\\x//y/", "/home/x/y/"},
      {L"rel\\dir\\f", "rel/dir/f"},
      {L"\\tmp\\caf\u00e9\\\u5199\u771f.jpg", "/tmp/caf\xc3\xa9/\xe5\x86\x99\xe7\x9c\x9f.jpg"}};
  for (const auto& [library, native] : paths) EXPECT_EQ(ToNativePath(library), native);
  EXPECT_EQ(FromNativePath("/tmp/caf\xc3\xa9/x"), CString(L"\\tmp\\caf\u00e9\\x"));
}

TEST(NativePaths, ExecutableAndDataFolders) {
  EXPECT_EQ(GetExecutableFolderNative() + "/karvel_platform_tests", ToNativePath(GetExecutablePath()));
  CString folder;
  setenv("XDG_DATA_HOME", "/srv/data//", 1);
  ASSERT_TRUE(GetUserDataFolder(folder));
  EXPECT_EQ(folder, CString(L"\\srv\\data"));
  setenv("HOME", "/home/someone", 1);
  setenv("XDG_DATA_HOME", "relative", 1);
  for (bool set : {true, false}) {  // a relative data home counts as none
    if (!set) unsetenv("XDG_DATA_HOME");
    ASSERT_TRUE(GetUserDataFolder(folder));
    EXPECT_EQ(folder, CString(L"\\home\\someone\\.local\\share")) << set;
  }
}

TEST(FileSystem, StatusTimesHidingRemovalAndFolders) {
  TempDir dir;
  const CString file = Lib(dir.Write("a.txt", "12345"));
  FileStatus status;
  ASSERT_TRUE(GetPathStatus(CString(L"\\") + file, status));  // as ReparsePath leaves it
  EXPECT_TRUE(status.size == 5u && !status.isFolder && status.creationTime > 0);
  const std::int64_t access = 1300000000LL * 1000000000LL + 5, modified = 1200000000LL * 1000000000LL + 7;
  ASSERT_TRUE(SetPathTimes(file, access, modified));
  ASSERT_TRUE(GetPathStatus(file, status));
  EXPECT_EQ(std::make_tuple(status.accessTime, status.modificationTime), std::make_tuple(access, modified));
  EXPECT_TRUE(SetHiddenAttribute(file, true) && PathExists(file));  // hiding never renames or removes
  EXPECT_TRUE(RemoveFile(file));
  EXPECT_FALSE(RemoveFile(file) || GetPathStatus(file, status) || SetHiddenAttribute(file, true));

  const CString folder = Lib(dir.Path() / "new"), plain = Lib(dir.Write("plain", "x"));
  EXPECT_EQ((std::vector{CreateFolder(folder), CreateFolder(folder)}),
            (std::vector{CreateFolderResult::Created, CreateFolderResult::AlreadyExists}));
  for (const CString& bad : {Lib(dir.Path() / "missing" / "child"), plain, CString()})
    EXPECT_EQ(CreateFolder(bad), CreateFolderResult::Failed);
  EXPECT_TRUE(CreateFolderTree(Lib(dir.Path() / "a" / "b" / "c")) && std::filesystem::is_directory(dir.Path() / "a" / "b" / "c"));
  EXPECT_FALSE(CreateFolderTree(plain + L"\\below"));
}

TEST(StdioFile, CreateTruncatesUnlessNoTruncateAndLinesStopAtLineFeedOrLimit) {
  TempDir dir;
  const auto path = dir.Write("f.bin", "old content");
  CStdioFile file;
  ASSERT_TRUE(file.Open(Lib(path), CStdioFile::modeReadWrite | CStdioFile::modeCreate | CStdioFile::modeNoTruncate));
  ASSERT_TRUE(file.SeekToEnd());
  ASSERT_TRUE(file.Write("!", 1));
  EXPECT_EQ(file.GetLength(), 12u);  // pending bytes count
  file.Close();
  EXPECT_EQ(TempDir::Read(path), "old content!");
  ASSERT_TRUE(file.Open(Lib(path), CStdioFile::modeWrite | CStdioFile::modeCreate));
  file.Close();
  EXPECT_EQ(TempDir::Read(path), "");
  EXPECT_FALSE(file.Open(Lib(dir.Path() / "none"), CStdioFile::modeRead) ||
               file.Open(Lib(dir.Path()), CStdioFile::modeRead));  // a folder is no file

  ASSERT_TRUE(file.Open(Lib(dir.Write("lines", "ab\r\ncdefgh\nlast")), CStdioFile::modeRead));
  std::string line;
  const std::pair<std::size_t, const char*> reads[] = {{100, "ab\r\n"}, {3, "cde"}, {100, "fgh\n"}, {100, "last"}};
  for (const auto& [limit, expected] : reads) {
    ASSERT_TRUE(file.ReadLineBytes(line, limit));
    EXPECT_EQ(line, expected);
  }
  EXPECT_FALSE(file.ReadLineBytes(line, 100));
  ASSERT_TRUE(file.Open(Lib(dir.Write("w", std::string("a\0\n\0b\0", 6))), CStdioFile::modeRead));
  std::u16string units;
  for (const char16_t* expected : {u"a\n", u"b"}) {
    ASSERT_TRUE(file.ReadLineUtf16(units));
    EXPECT_EQ(units, expected);
  }
  EXPECT_FALSE(file.ReadLineUtf16(units));
}

TEST(MappedFile, MapsWholeFileMovesOwnershipAndFailsCleanly) {
  TempDir dir;
  MappedFile mapped(Lib(dir.Write("data.bin", std::string("\x00\x01\x02\xff", 4))));
  ASSERT_TRUE(mapped.IsOpen());
  MappedFile moved(std::move(mapped));
  EXPECT_FALSE(mapped.IsOpen());
  ASSERT_EQ(moved.Size(), 4u);
  EXPECT_EQ(moved.Data()[3], 0xff);
  for (const CString& bad : {Lib(dir.Write("empty", "")), Lib(dir.Path() / "missing"), Lib(dir.Path())})
    EXPECT_FALSE(MappedFile(bad).IsOpen());
  if (geteuid() != 0) {  // root reads anything
    const auto locked = dir.Write("locked", "secret");
    chmod(locked.c_str(), 0);
    MappedFile unreadable(Lib(locked));
    EXPECT_FALSE(unreadable.IsOpen());
    EXPECT_EQ(unreadable.Data(), nullptr);
  }
}
