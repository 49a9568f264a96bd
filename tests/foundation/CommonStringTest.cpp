#include <gtest/gtest.h>

#include <vector>

#include <karvelui/CommonString.h>
#include "platform/MessageBoxHook.h"
#include "platform/Paths.h"
#include "support/TempDir.h"

using namespace KarvelUI;
using KarvelTest::TempDir;

namespace {

CString Lib(const std::filesystem::path& p) { return FromNativePath(p.string()); }

std::vector<std::wstring> Items(const CStringArray& a) {
  std::vector<std::wstring> v;
  for (const CString& s : a) v.push_back(s.str());
  return v;
}

std::vector<std::wstring> Items(const CStringList& l) {
  std::vector<std::wstring> v;
  for (const CString& s : l) v.push_back(s.str());
  return v;
}

struct MessageBoxCapture {
  MessageBoxCapture() {
    SetMessageBoxHook([this](HWND owner, const CString& text, const CString& caption, UINT type) {
      calls.push_back({owner, text, caption, type});
      return IDOK;
    });
  }
  ~MessageBoxCapture() { SetMessageBoxHook(nullptr); }
  struct Call {
    HWND owner;
    CString text;
    CString caption;
    UINT type;
  };
  std::vector<Call> calls;
};

}  // namespace

TEST(StringTable, LinesCommentsEqualsAndEscapes) {
  TempDir dir;
  const auto file = dir.Write("strings.txt",
                              "  OK = Confirm ; button\r\n"
                              "\r\n"
                              "no separator here\r\n"
                              "URL=a=b\r\n"
                              "Multi=Line1\\nLine2\\r\\nEnd\r\n"
                              "Dup=first\n"
                              "Dup=second\n"
                              "Case=upper\n"
                              "Name=Caf\xc3\xa9 \xe5\x86\x99\xe7\x9c\x9f\n"
                              "Last=no line end");
  CommonString table;
  ASSERT_EQ(table.LoadStringTable(Lib(file)), 1);
  EXPECT_EQ(table.GetStringViaID(L"OK"), CString(L"Confirm "));
  EXPECT_EQ(table.GetStringViaID(L"URL"), CString(L"a=b"));
  EXPECT_EQ(table.GetStringViaID(L"Multi"), CString(L"Line1\nLine2\r\nEnd"));
  EXPECT_EQ(table.GetStringViaID(L"Dup"), CString(L"second"));
  EXPECT_EQ(table.GetStringViaID(L"case"), CString());  // identifiers are case-sensitive
  EXPECT_EQ(table.GetStringViaID(L"Name"), CString(L"Caf\u00e9 \u5199\u771f"));
  EXPECT_EQ(table.GetStringViaID(L"Last"), CString(L"no line end"));
  EXPECT_EQ(table.GetStringViaID(L"no separator here"), CString());
  EXPECT_EQ(table.GetStringViaID(CString()), CString());

  // A second file merges; ClearAll empties.
  const auto more = dir.Write("more.txt", "OK=Fine\nExtra=1\n");
  ASSERT_EQ(table.LoadStringTable(Lib(more)), 1);
  EXPECT_EQ(table.GetStringViaID(L"OK"), CString(L"Fine"));
  EXPECT_EQ(table.GetStringViaID(L"URL"), CString(L"a=b"));
  table.ClearAll();
  EXPECT_EQ(table.GetStringViaID(L"Extra"), CString());
}

TEST(StringTable, Utf16FileIsReadAsBytesAndYieldsNothingUsable) {
  TempDir dir;
  std::string bytes = "\xff\xfe";
  for (char c : std::string("OK=Confirm\r\n")) bytes += std::string{c, '\0'};
  const auto file = dir.Write("utf16.txt", bytes);
  CommonString table;
  ASSERT_EQ(table.LoadStringTable(Lib(file)), 1);
  EXPECT_EQ(table.GetStringViaID(L"OK"), CString());
}

TEST(StringTable, MissingFileShowsTheMessageBox) {
  MessageBoxCapture boxes;
  CommonString table;
  EXPECT_EQ(table.LoadStringTable(L"\\nowhere\\strings.txt"), 0);
  EXPECT_EQ(table.LoadStringTable(CString()), 0);
  ASSERT_EQ(boxes.calls.size(), 2u);
  EXPECT_EQ(boxes.calls[0].owner, nullptr);
  EXPECT_EQ(boxes.calls[0].text,
            CString(L"Cannot open required file \\nowhere\\strings.txt! Please reinstall karvelview to fix this problem."));
  EXPECT_EQ(boxes.calls[0].caption, CString(L"Load file error!"));
  EXPECT_EQ(boxes.calls[0].type, MB_ICONINFORMATION);
  EXPECT_EQ(boxes.calls[1].text,
            CString(L"Cannot open required file ! Please reinstall karvelview to fix this problem."));
}

TEST(StringTable, WriteThenReadLinesRoundTrip) {
  TempDir dir;
  const CString path = Lib(dir.Write("out.txt", "old content that must go away entirely"));
  CStringArray lines;
  lines.Add(L"A=1");
  lines.Add(L"B=\u00e9t\u00e9");
  ASSERT_EQ(CommonString::WriteStringTable(lines, path), 1);
  EXPECT_EQ(TempDir::Read(ToNativePath(path)), "A=1\r\nB=\xc3\xa9t\xc3\xa9\r\n");

  CStringArray read;
  read.Add(L"kept");
  ASSERT_EQ(CommonString::LoadStringTable(read, path), 1);
  EXPECT_EQ(Items(read), (std::vector<std::wstring>{L"kept", L"A=1", L"B=\u00e9t\u00e9"}));
  EXPECT_EQ(CommonString::LoadStringTable(read, CString()), 0);
  EXPECT_EQ(CommonString::LoadStringTable(read, L"\\no\\such\\file"), 0);
  EXPECT_EQ(CommonString::WriteStringTable(lines, Lib(dir.Path() / "no" / "folder.txt")), 0);

  CommonString table;
  ASSERT_EQ(table.LoadStringTable(path), 1);
  EXPECT_EQ(table.GetStringViaID(L"B"), CString(L"\u00e9t\u00e9"));
}

TEST(StringTable, AnalyzeStringTableStopsAtSecondEquals) {
  CStringArray lines;
  lines.Add(L"URL=a=b");
  lines.Add(L" OK = Confirm ; note");
  lines.Add(L"skip me");
  CMapStringToString map;
  EXPECT_EQ(CommonString::AnalyzeStringTable(lines, map), 1);
  EXPECT_EQ(map.GetCount(), 2);
  EXPECT_EQ(*map.PLookup(L"URL"), CString(L"a"));
  EXPECT_EQ(*map.PLookup(L"OK"), CString(L"Confirm "));
}

TEST(AnalyzeString, KeepsEmptyPiecesAndTheTail) {
  CStringArray parts;
  parts.Add(L"stale");
  EXPECT_EQ(CommonString::AnalyzeString(CString(), L',', parts), 0);
  EXPECT_EQ(parts.GetSize(), 0);

  EXPECT_EQ(CommonString::AnalyzeString(L",x", L',', parts), 1);
  EXPECT_EQ(Items(parts), (std::vector<std::wstring>{L"", L"x"}));
  CommonString::AnalyzeString(L"a=b=c", L'=', parts);
  EXPECT_EQ(Items(parts), (std::vector<std::wstring>{L"a", L"b", L"c"}));
  CommonString::AnalyzeString(L"a,,b,", L',', parts);
  EXPECT_EQ(Items(parts), (std::vector<std::wstring>{L"a", L"", L"b", L""}));
  CommonString::AnalyzeString(L"whole", L',', parts);
  EXPECT_EQ(Items(parts), (std::vector<std::wstring>{L"whole"}));

  CStringList list;
  CommonString::AnalyzeString(L"1::2:3::", CString(L"::"), list);
  EXPECT_EQ(Items(list), (std::vector<std::wstring>{L"1", L"2:3", L""}));
  CommonString::AnalyzeString(L"x|y", L'|', list);
  EXPECT_EQ(Items(list), (std::vector<std::wstring>{L"x", L"y"}));

  CString tail = L"untouched";
  EXPECT_EQ(CommonString::AnalyzeString(CString(), L'.', tail), 0);
  EXPECT_EQ(CommonString::AnalyzeString(L"noext", L'.', tail), 1);
  EXPECT_EQ(tail, CString(L"untouched"));
  EXPECT_EQ(CommonString::AnalyzeString(L"a.tar.gz", L'.', tail), 1);
  EXPECT_EQ(tail, CString(L"gz"));
}

TEST(PathHelpers, ReparseAndSplit) {
  EXPECT_EQ(CommonString::ReparsePath(L"c:/a//b"), CString(L"c:\\a\\b"));
  EXPECT_EQ(CommonString::ReparsePath(L"\\\\server\\share"), CString(L"\\\\server\\share"));
  EXPECT_EQ(CommonString::ReparsePath(L"\\home\\x"), CString(L"\\\\home\\x"));
  EXPECT_EQ(CommonString::ReparsePath(L"/home/x"), CString(L"\\\\home\\x"));
  EXPECT_EQ(CommonString::ReparsePath(L"a\\\\\\b"), CString(L"a\\\\b"));  // three become two
  EXPECT_EQ(CommonString::ReparsePath(L"\\"), CString(L"\\\\"));

  EXPECT_EQ(CommonString::GetFileDirFromPath(L"C:file.txt"), CString(L"C:"));
  EXPECT_EQ(CommonString::GetFileDirFromPath(L"file.txt"), CString());
  EXPECT_EQ(CommonString::GetFileDirFromPath(L"c:/skins/a.png"), CString(L"c:\\skins\\"));
  EXPECT_EQ(CommonString::GetFileNameFromPath(L"c:/skins//a.png"), CString(L"a.png"));
  EXPECT_EQ(CommonString::GetFileNameFromPath(L"a.png"), CString(L"a.png"));
  EXPECT_EQ(CommonString::GetFileNameNoExtension(L"c:/x/a.b.png"), CString(L"c:\\x\\a.b"));
  EXPECT_EQ(CommonString::GetFileNameNoExtension(L"c:/my.dir/file"), CString(L"c:\\my"));
  EXPECT_EQ(CommonString::GetFileNameNoExtension(L"c:/dir//file"), CString(L"c:/dir//file"));
}

TEST(PathHelpers, FileSizeOfNormalisedPathAndAppPath) {
  TempDir dir;
  const auto file = dir.Write("sized.bin", std::string(1536, 'x'));
  // The native path in the library's form: after normalising it begins with
  // two backslashes and must still reach the file.
  EXPECT_EQ(CommonString::GetFileSize(Lib(file)), 1536u);
  EXPECT_EQ(CommonString::GetFileSize(CString(file.c_str())), 1536u);
  EXPECT_EQ(CommonString::GetFileSize(Lib(dir.Path() / "missing")), 0u);

  CommonString table;
  EXPECT_TRUE(table.GetAppPath().IsEmpty());
  table.SetAppPath();
  const CString app = table.GetAppPath();
  EXPECT_EQ(app.Left(2), CString(L"\\\\"));
  EXPECT_EQ(app.Right(1), CString(L"\\"));
  EXPECT_EQ(ToNativePath(app), GetExecutableFolderNative() + "/");
}

TEST(PathHelpers, SingletonLifecycle) {
  CommonString* first = CommonString::GetInstance();
  EXPECT_EQ(CommonString::GetInstance(), first);
  EXPECT_EQ(CommonString::m_pInstance, first);
  CommonString::FreeInstance();
  EXPECT_EQ(CommonString::m_pInstance, nullptr);
  EXPECT_NE(CommonString::GetInstance(), nullptr);
  CommonString::FreeInstance();
}

TEST(FormatSize, StrictBoundaries) {
  EXPECT_EQ(GetFormatSizeString(0), CString(L"0B"));
  EXPECT_EQ(GetFormatSizeString(1024), CString(L"1024B"));
  EXPECT_EQ(GetFormatSizeString(1025), CString(L"1.0KB"));
  EXPECT_EQ(GetFormatSizeString(1536), CString(L"1.5KB"));
  EXPECT_EQ(GetFormatSizeString(1048576), CString(L"1024.0KB"));
  EXPECT_EQ(GetFormatSizeString(1048577), CString(L"1.00MB"));
  EXPECT_EQ(GetFormatSizeString(3145728), CString(L"3.00MB"));
  EXPECT_EQ(GetFormatSizeString(5ULL << 40), CString(L"5242880.00MB"));
}
