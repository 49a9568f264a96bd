#include <gtest/gtest.h>

#include <karvelui/CString.h>

using namespace KarvelUI;

TEST(CStringFormat, WideAndNarrowStringsFollowWindowsConventions) {
  CString s;
  const char* narrow = "n\xC3\xA4rrow";  // UTF-8 "närrow"
  s.Format(L"[%s|%S|%ls|%hs]", L"wide", narrow, L"l", "h");
  EXPECT_EQ(s, L"[wide|n\u00e4rrow|l|h]");
  // The argument's type decides how it is read, even against the letter.
  s.Format(L"%s", narrow);
  EXPECT_EQ(s, L"n\u00e4rrow");
}

TEST(CStringFormat, CStringArgumentsNeedNoCast) {
  CString name(L"Button");
  CString s;
  s.Format(L"%s %s", CString(L"BuildRoot"), name);
  EXPECT_EQ(s, L"BuildRoot Button");
}

TEST(CStringFormat, IntegerWidthsMatchWindows) {
  CString s;
  s.Format(L"%I64d %I64u %d %u %ld", -5000000000LL, 18446744073709551615ULL, -1, -1, 1);
  EXPECT_EQ(s, L"-5000000000 18446744073709551615 -1 4294967295 1");
  // %d truncates a 64-bit value to its low 32 bits instead of misreading the stack.
  s.Format(L"%d", 0x100000002LL);
  EXPECT_EQ(s, L"2");
  s.Format(L"%08X|%x|%-4d|%+d", 0xBEEFu, 255, 7, 3);
  EXPECT_EQ(s, L"0000BEEF|ff|7   |+3");
}

TEST(CStringFormat, FloatsPrecisionAndStrings) {
  CString s;
  s.Format(L"%0.2fMB %0.1fKB %.3s %5s|%-5s|", 3.0f, 1.5, L"abcdef", L"ab", L"cd");
  EXPECT_EQ(s, L"3.00MB 1.5KB abc    ab|cd   |");
  s.Format(L"%c%C%%", L'\u4e2d', 'A');
  EXPECT_EQ(s, L"\u4e2dA%");
}

TEST(CStringFormat, MissingArgumentsAndNullStringsAreHarmless) {
  CString s;
  s.Format(L"a%db%sc");
  EXPECT_EQ(s, L"abc");
  const wchar_t* nothing = nullptr;
  s.Format(L"%s", nothing);
  EXPECT_EQ(s, L"(null)");
  s.Format(L"%*d|%.*f", 4, 7, 1, 2.25);
  EXPECT_EQ(s, L"   7|2.2");
}

TEST(CStringEdit, TrimFindAndExtraction) {
  CString s(L"  \tHello World \r\n");
  s.Trim();
  EXPECT_EQ(s, L"Hello World");
  EXPECT_EQ(s.Find(L'o'), 4);
  EXPECT_EQ(s.Find(L'o', 5), 7);
  EXPECT_EQ(s.Find(L"World"), 6);
  EXPECT_EQ(s.Find(L'z'), -1);
  EXPECT_EQ(s.ReverseFind(L'o'), 7);
  EXPECT_EQ(s.Left(5), L"Hello");
  EXPECT_EQ(s.Mid(6), L"World");
  EXPECT_EQ(s.Mid(6, 100), L"World");
  EXPECT_EQ(s.Mid(100), L"");
  EXPECT_EQ(s.Right(3), L"rld");
  EXPECT_EQ(s.Left(-1), L"");
  EXPECT_EQ(CString(L"xxaxx").Trim(L'x'), L"a");
}

TEST(CStringEdit, ReplaceRemoveInsertDelete) {
  CString s(L"a\\\\b\\\\\\c");
  EXPECT_EQ(s.Replace(L"\\\\", L"\\"), 2);  // left to right, no overlap
  EXPECT_EQ(s, L"a\\b\\\\c");
  EXPECT_EQ(s.Replace(L"zz", L"y"), 0);
  CString t(L"banana");
  EXPECT_EQ(t.Remove(L'a'), 3);
  EXPECT_EQ(t, L"bnn");
  t.Insert(1, L"AA");
  EXPECT_EQ(t, L"bAAnn");
  t.Delete(0, 3);
  EXPECT_EQ(t, L"nn");
}

TEST(CStringCompare, NoCaseCoversNonAsciiLetters) {
  EXPECT_EQ(CString(L"TRUE").CompareNoCase(L"true"), 0);
  EXPECT_EQ(CString(L"\u00c4RGER").CompareNoCase(L"\u00e4rger"), 0);
  EXPECT_LT(CString(L"abc").CompareNoCase(L"ABD"), 0);
  EXPECT_GT(CString(L"abc").Compare(L"ABC"), 0);
  EXPECT_EQ(CString(L"\u00c4b").MakeLower(), L"\u00e4b");
}

TEST(CStringCompare, TokenizeSkipsEmptyTokens) {
  CString s(L",a,,b,");
  int pos = 0;
  EXPECT_EQ(s.Tokenize(L",", pos), L"a");
  EXPECT_EQ(s.Tokenize(L",", pos), L"b");
  EXPECT_EQ(s.Tokenize(L",", pos), L"");
  EXPECT_EQ(pos, -1);
}

TEST(CStringConvert, NarrowTextIsUtf8) {
  CString s("\xE4\xB8\xAD\xE6\x96\x87");  // "中文"
  EXPECT_EQ(s.GetLength(), 2);
  EXPECT_EQ(s.ToUtf8(), "\xE4\xB8\xAD\xE6\x96\x87");
  CString bad("\xFF" "a");
  EXPECT_EQ(bad, L"\uFFFDa");
}
