// String tables, string splitting and path helpers.

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include <karvelui/CommonString.h>
#include "platform/MessageBoxHook.h"
#include "platform/Paths.h"
#include "support/TempDir.h"

using namespace KarvelUI;
using KarvelTest::TempDir;

namespace {

CString Lib(const std::filesystem::path& p) { return FromNativePath(p.string()); }

template <typename List>
std::vector<std::wstring> Items(const List& list) {
  std::vector<std::wstring> items;
  for (const CString& s : list) items.push_back(s.str());
  return items;
}

}  // namespace

TEST(StringTable, LinesCommentsEqualsEscapesAndMerging) {
  TempDir dir;
  CommonString table;
  ASSERT_EQ(table.LoadStringTable(Lib(dir.Write("strings.txt",
                                                "  OK = Confirm ; button\r\n\r\nno separator here\r\nURL=a=b\r\n"
                                                "Multi=Line1\\nLine2\\r\\nEnd\r\nDup=first\nDup=second\nCase=upper\n"
                                                "Name=Caf\xc3\xa9 \xe5\x86\x99\xe7\x9c\x9f\nLast=no line end"))),
            1);
  const std::pair<const wchar_t*, const wchar_t*> entries[] = {
      {L"OK", L"Confirm "},        {L"URL", L"a=b"},
      {L"Multi", L"Line1\nLine2\r\nEnd"}, {L"Dup", L"second"},
      {L"case", L""},  // identifiers are case-sensitive
      {L"Name", L"Caf\u00e9 \u5199\u771f"}, {L"Last", L"no line end"},
      {L"no separator here", L""},  {L"", L""}};
  for (const auto& [id, text] : entries) EXPECT_EQ(table.GetStringViaID(id), CString(text)) << id;

  // A second file merges; ClearAll empties.
  ASSERT_EQ(table.LoadStringTable(Lib(dir.Write("more.txt", "OK=Fine\nExtra=1\n"))), 1);
  EXPECT_EQ(table.GetStringViaID(L"OK") + L"|" + table.GetStringViaID(L"URL"), CString(L"Fine|a=b"));
  table.ClearAll();
  EXPECT_EQ(table.GetStringViaID(L"Extra"), CString());

  // A UTF-16 file is read as bytes and yields nothing usable.
  std::string utf16 = "\xff\xfe";
  for (char c : std::string("OK=Confirm\r\n")) utf16 += std::string{c, '\0'};
  ASSERT_EQ(table.LoadStringTable(Lib(dir.Write("utf16.txt", utf16))), 1);
  EXPECT_EQ(table.GetStringViaID(L"OK"), CString());
}

TEST(StringTable, MissingFileShowsTheMessageBox) {
  std::vector<std::wstring> boxes;
  const MessageBoxHook previous =
      SetMessageBoxHook([&](HWND owner, const CString& text, const CString& caption, UINT type) {
        boxes.push_back((owner ? L"owned " : L"") + caption.str() + L": " + text.str() + L" " + std::to_wstring(type));
        return IDOK;
      });
  CommonString table;
  EXPECT_EQ(table.LoadStringTable(L"\\nowhere\\strings.txt"), 0);
  EXPECT_EQ(table.LoadStringTable(CString()), 0);
  SetMessageBoxHook(previous);
  const std::wstring tail = L" Please reinstall karvelview to fix this problem. " + std::to_wstring(MB_ICONINFORMATION);
  EXPECT_EQ(boxes, (std::vector<std::wstring>{
                       L"Load file error!: Cannot open required file \\nowhere\\strings.txt!" + tail,
                       L"Load file error!: Cannot open required file !" + tail}));
}

TEST(StringTable, WriteThenReadLinesRoundTripAndAnalyzeStopsAtTheSecondEquals) {
  TempDir dir;
  const CString path = Lib(dir.Write("out.txt", "old content that must go away entirely"));
  CStringArray lines;
  lines.Add(L"A=1");
  lines.Add(L"B=\u00e9t\u00e9");
  ASSERT_EQ(CommonString::WriteStringTable(lines, path), 1);
  EXPECT_EQ(TempDir::Read(ToNativePath(path)), "A=1\r\nB=\xc3\xa9t\xc3\xa9\r\n");
  EXPECT_EQ(CommonString::WriteStringTable(lines, Lib(dir.Path() / "no" / "folder.txt")), 0);
  CStringArray read;
  read.Add(L"kept");
  ASSERT_EQ(CommonString::LoadStringTable(read, path), 1);
  EXPECT_EQ(Items(read), (std::vector<std::wstring>{L"kept", L"A=1", L"B=\u00e9t\u00e9"}));
  EXPECT_EQ(CommonString::LoadStringTable(read, CString()) + CommonString::LoadStringTable(read, L"\\no\\such\\file"), 0);

  lines.Add(L"URL=a=b");
  lines.Add(L" OK = Confirm ; note");
  lines.Add(L"skip me");
  CMapStringToString map;
  EXPECT_EQ(CommonString::AnalyzeStringTable(lines, map), 1);
  EXPECT_EQ(map.GetCount(), 4);
  EXPECT_EQ(*map.PLookup(L"URL") + L"|" + *map.PLookup(L"OK"), CString(L"a|Confirm "));
}

TEST(AnalyzeString, KeepsEmptyPiecesAndTheTail) {
  CStringArray parts;
  parts.Add(L"stale");
  EXPECT_EQ(CommonString::AnalyzeString(CString(), L',', parts) + parts.GetSize(), 0);
  const std::pair<const wchar_t*, std::vector<std::wstring>> splits[] = {
      {L",x", {L"", L"x"}}, {L"a,,b,", {L"a", L"", L"b", L""}}, {L"whole", {L"whole"}}};
  for (const auto& [text, pieces] : splits) {
    EXPECT_EQ(CommonString::AnalyzeString(text, L',', parts), 1);
    EXPECT_EQ(Items(parts), pieces) << text;
  }
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

TEST(PathHelpers, ReparseSplitAndMeasure) {
  using Helper = CString (*)(const CString&);
  const std::tuple<Helper, const wchar_t*, const wchar_t*> cases[] = {
      {&CommonString::ReparsePath, L"c:/a//b", L"c:\\a\\b"},
      {&CommonString::ReparsePath, L"\\\\server\\share", L"\\\\server\\share"},
      {&CommonString::ReparsePath, L"/home/x", L"\\\\home\\x"},
      {&CommonString::ReparsePath, L"a\\\\\\b", L"a\\\\b"},  // three become two
      {&CommonString::ReparsePath, L"\\", L"\\\\"},
      {&CommonString::GetFileDirFromPath, L"C:file.txt", L"C:"},
      {&CommonString::GetFileDirFromPath, L"file.txt", L""},
      {&CommonString::GetFileDirFromPath, L"c:/skins/a.png", L"c:\\skins\\"},
      {&CommonString::GetFileNameFromPath, L"c:/skins//a.png", L"a.png"},
      {&CommonString::GetFileNameNoExtension, L"c:/x/a.b.png", L"c:\\x\\a.b"},
      {&CommonString::GetFileNameNoExtension, L"c:/my.dir/file", L"c:\\my"},
      {&CommonString::GetFileNameNoExtension, L"c:/dir//file", L"c:/dir//file"},
  };
  for (const auto& [helper, path, expected] : cases) EXPECT_EQ(helper(path), CString(expected)) << path;

  TempDir dir;
  const auto file = dir.Write("sized.bin", std::string(1536, 'x'));
  // The native path in the library's form: normalised it begins with two
  // backslashes and must still reach the file.
  EXPECT_EQ(CommonString::GetFileSize(Lib(file)), 1536u);
  EXPECT_EQ(CommonString::GetFileSize(CString(file.c_str())), 1536u);
  EXPECT_EQ(CommonString::GetFileSize(Lib(dir.Path() / "missing")), 0u);
  CommonString table;
  EXPECT_TRUE(table.GetAppPath().IsEmpty());
  table.SetAppPath();
  EXPECT_EQ(table.GetAppPath().Left(2), CString(L"\\\\"));
  EXPECT_EQ(ToNativePath(table.GetAppPath()), GetExecutableFolderNative() + "/");
}

TEST(FormatSize, StrictBoundaries) {
  const std::pair<unsigned long long, const wchar_t*> sizes[] = {
      {0, L"0B"},           {1024, L"1024B"},         {1025, L"1.0KB"},           {1536, L"1.5KB"},
      {1048576, L"1024.0KB"}, {1048577, L"1.00MB"}, {5ULL << 40, L"5242880.00MB"}};
  for (const auto& [size, text] : sizes) EXPECT_EQ(GetFormatSizeString(size), CString(text)) << size;
}
