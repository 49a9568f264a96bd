#include <gtest/gtest.h>

#include <vector>

#include <karvelui/CString.h>

using namespace KarvelUI;

namespace {

template <typename... Args>
CString Formatted(const wchar_t* format, Args... args) {
  CString s;
  s.Format(format, args...);
  return s;
}

}  // namespace

TEST(CStringFormat, ConversionsFollowWindowsConventions) {
  const char* narrow = "n\xC3\xA4rrow";  // UTF-8 "närrow"
  const wchar_t* nothing = nullptr;
  const std::pair<CString, const wchar_t*> cases[] = {
      {Formatted(L"[%s|%S|%ls|%hs]", L"wide", narrow, L"l", "h"), L"[wide|n\u00e4rrow|l|h]"},
      // The argument's type decides how it is read, even against the letter; CStrings need no cast.
      {Formatted(L"%s %s", narrow, CString(L"Button")), L"n\u00e4rrow Button"},
      {Formatted(L"%I64d %I64u %d %u %ld", -5000000000LL, 18446744073709551615ULL, -1, -1, 1),
       L"-5000000000 18446744073709551615 -1 4294967295 1"},
      {Formatted(L"%d", 0x100000002LL), L"2"},  // the low 32 bits, not a misread stack
      {Formatted(L"%08X|%x|%-4d|%+d", 0xBEEFu, 255, 7, 3), L"0000BEEF|ff|7   |+3"},
      {Formatted(L"%0.2fMB %0.1fKB %.3s %5s|%-5s|", 3.0f, 1.5, L"abcdef", L"ab", L"cd"),
       L"3.00MB 1.5KB abc    ab|cd   |"},
      {Formatted(L"%c%C%%", L'\u4e2d', 'A'), L"\u4e2dA%"},
      {Formatted(L"a%db%sc"), L"abc"},  // missing arguments are harmless
      {Formatted(L"%s", nothing), L"(null)"},
      {Formatted(L"%*d|%.*f", 4, 7, 1, 2.25), L"   7|2.2"},
  };
  for (const auto& [actual, expected] : cases) EXPECT_EQ(actual, expected);
}

TEST(CStringEdit, TrimFindExtractReplaceAndTokenize) {
  CString s(L"  \tHello World \r\n");
  s.Trim();
  EXPECT_EQ(s, L"Hello World");
  EXPECT_EQ((std::vector{s.Find(L'o', 5), s.Find(L"World"), s.Find(L'z'), s.ReverseFind(L'o')}),
            (std::vector{7, 6, -1, 7}));
  EXPECT_EQ((std::vector{s.Mid(6, 100), s.Mid(100), s.Right(3), s.Left(-1), CString(L"xxaxx").Trim(L'x')}),
            (std::vector<CString>{L"World", L"", L"rld", L"", L"a"}));

  CString path(L"a\\\\b\\\\\\c");
  EXPECT_EQ(path.Replace(L"\\\\", L"\\"), 2);  // left to right, no overlap
  EXPECT_EQ(path, L"a\\b\\\\c");
  CString t(L"banana");
  EXPECT_EQ(t.Remove(L'a'), 3);
  t.Insert(1, L"AA");
  t.Delete(0, 2);
  EXPECT_EQ(t, L"Ann");

  CString list(L",a,,b,");  // empty tokens are skipped
  int pos = 0;
  EXPECT_EQ((std::vector{list.Tokenize(L",", pos), list.Tokenize(L",", pos), list.Tokenize(L",", pos)}),
            (std::vector<CString>{L"a", L"b", L""}));
  EXPECT_EQ(pos, -1);
}

TEST(CStringCompare, NoCaseCoversNonAsciiLettersAndNarrowTextIsUtf8) {
  EXPECT_EQ(CString(L"\u00c4RGER").CompareNoCase(L"\u00e4rger"), 0);
  EXPECT_LT(CString(L"abc").CompareNoCase(L"ABD"), 0);
  EXPECT_GT(CString(L"abc").Compare(L"ABC"), 0);
  EXPECT_EQ(CString(L"\u00c4b").MakeLower(), L"\u00e4b");
  const CString chinese("\xE4\xB8\xAD\xE6\x96\x87");
  EXPECT_EQ(chinese.GetLength(), 2);
  EXPECT_EQ(chinese.ToUtf8(), "\xE4\xB8\xAD\xE6\x96\x87");
  EXPECT_EQ(CString("\xFF" "a"), L"\uFFFDa");
}
