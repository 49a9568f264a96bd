#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "render/text/TextWrap.h"

using namespace KarvelUI;

namespace {

// Every character 10 pixels wide, break opportunities from the real rules.
std::vector<CharInfo> Chars(std::wstring_view text, int advance = 10) {
  std::vector<CharInfo> chars(text.size());
  for (CharInfo& c : chars) c.advance = advance;
  MarkBreakOpportunities(text, chars);
  return chars;
}

std::vector<std::wstring> Wrap(std::wstring_view text, int width) {
  const auto chars = Chars(text);
  std::vector<LineSpan> spans;
  WrapParagraph(chars, width, spans);
  std::vector<std::wstring> lines;
  for (const LineSpan& span : spans) {
    lines.emplace_back(text.substr(span.begin, span.end - span.begin));
  }
  return lines;
}

using Lines = std::vector<std::wstring>;

}  // namespace

TEST(LineBreaking, LatinWrapsAfterBlanksAndDropsThemFromTheNextLine) {
  EXPECT_EQ(Wrap(L"aa bb cc", 50), (Lines{L"aa bb", L"cc"}));
  EXPECT_EQ(Wrap(L"aa   bb", 20), (Lines{L"aa", L"bb"}));
  EXPECT_EQ(Wrap(L"aa bb", 1000), (Lines{L"aa bb"}));
}

TEST(LineBreaking, WrappedLineWidthLeavesOutHangingBlanks) {
  const auto chars = Chars(L"aa   bb");
  std::vector<LineSpan> spans;
  WrapParagraph(chars, 40, spans);
  ASSERT_EQ(spans.size(), 2u);
  EXPECT_EQ(spans[0].width, 20);
  EXPECT_EQ(spans[1].begin, 5);
  EXPECT_EQ(spans[1].width, 20);
}

TEST(LineBreaking, WordLongerThanTheWidthBreaksWhereItOverflows) {
  EXPECT_EQ(Wrap(L"abcdefghij", 35), (Lines{L"abc", L"def", L"ghi", L"j"}));
  EXPECT_EQ(Wrap(L"ab abcdefg", 40), (Lines{L"ab", L"abcd", L"efg"}));
  // Narrower than one character still makes progress, one per line.
  EXPECT_EQ(Wrap(L"abc", 0), (Lines{L"a", L"b", L"c"}));
}

TEST(LineBreaking, CjkBreaksBetweenCharactersButKeepsPunctuationAttached) {
  EXPECT_EQ(Wrap(L"中文字符测试换行", 30), (Lines{L"中文字", L"符测试", L"换行"}));
  // "，" may not start a line: the break moves back before "文".
  EXPECT_EQ(Wrap(L"中文，中文", 20), (Lines{L"中", L"文，", L"中文"}));
  // "（" may not end a line.
  EXPECT_EQ(Wrap(L"中文（中", 30), (Lines{L"中文", L"（中"}));
  // Latin next to CJK breaks at the script boundary.
  EXPECT_EQ(Wrap(L"abc中文", 40), (Lines{L"abc中", L"文"}));
}

TEST(LineBreaking, ForcedBreakNeverSplitsACluster) {
  auto chars = Chars(L"abcde");
  chars[3].clusterStart = false;  // "cd" is one cluster
  std::vector<LineSpan> spans;
  WrapParagraph(chars, 35, spans);
  ASSERT_EQ(spans.size(), 2u);
  EXPECT_EQ(spans[0].end, 2);  // backs off to the cluster's start
  EXPECT_EQ(spans[1].end, 5);

  spans.clear();
  WrapParagraph(chars, 15, spans);  // the cluster alone is too wide: kept whole
  ASSERT_EQ(spans.size(), 4u);
  EXPECT_EQ(spans[2].begin, 2);
  EXPECT_EQ(spans[2].end, 4);
  EXPECT_EQ(spans[2].width, 20);
}

TEST(LineBreaking, EmptyParagraphIsOneEmptyLine) {
  std::vector<LineSpan> spans;
  WrapParagraph({}, 100, spans);
  ASSERT_EQ(spans.size(), 1u);
  EXPECT_EQ(spans[0].begin, 0);
  EXPECT_EQ(spans[0].end, 0);
}

TEST(EllipsisFit, KeepsTheLongestPrefixWithoutTrailingBlanks) {
  const auto chars = Chars(L"abc defgh");
  const LineSpan whole = WholeParagraph(chars);
  EXPECT_EQ(whole.width, 90);

  LineSpan fit = FitPrefix(chars, whole, 55);
  EXPECT_EQ(fit.end, 5);  // "abc d"
  EXPECT_EQ(fit.width, 50);

  fit = FitPrefix(chars, whole, 40);  // "abc " fits only with its blank dropped
  EXPECT_EQ(fit.end, 3);
  EXPECT_EQ(fit.width, 30);

  fit = FitPrefix(chars, whole, 5);
  EXPECT_EQ(fit.end, 0);
  EXPECT_EQ(fit.width, 0);

  fit = FitPrefix(chars, whole, 90);
  EXPECT_EQ(fit.end, 9);
}
