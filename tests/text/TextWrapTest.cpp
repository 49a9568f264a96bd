// Line breaking and the ellipsis fit, with every character 10 pixels wide
// and break opportunities from the real rules.

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "render/text/TextWrap.h"

using namespace KarvelUI;

namespace {

std::vector<CharInfo> Chars(std::wstring_view text) {
  std::vector<CharInfo> chars(text.size());
  for (CharInfo& c : chars) c.advance = 10;
  MarkBreakOpportunities(text, chars);
  return chars;
}

std::vector<std::wstring> Wrap(std::wstring_view text, int width) {
  std::vector<LineSpan> spans;
  WrapParagraph(Chars(text), width, spans);
  std::vector<std::wstring> lines;
  for (const LineSpan& span : spans) lines.emplace_back(text.substr(span.begin, span.end - span.begin));
  return lines;
}

using Lines = std::vector<std::wstring>;

}  // namespace

TEST(LineBreaking, WrapsWhereTheRulesAllow) {
  const struct {
    const wchar_t* text;
    int width;
    Lines lines;
  } cases[] = {
      {L"aa bb cc", 50, {L"aa bb", L"cc"}},  // after blanks, which the next line drops
      {L"aa   bb", 20, {L"aa", L"bb"}},
      {L"aa bb", 1000, {L"aa bb"}},
      {L"abcdefghij", 35, {L"abc", L"def", L"ghi", L"j"}},  // a word wider than the line breaks where it overflows
      {L"ab abcdefg", 40, {L"ab", L"abcd", L"efg"}},
      {L"abc", 0, {L"a", L"b", L"c"}},  // narrower than a character: still one per line
      {L"中文字符测试换行", 30, {L"中文字", L"符测试", L"换行"}},  // CJK breaks between characters
      {L"中文，中文", 20, {L"中", L"文，", L"中文"}},  // "，" may not start a line
      {L"中文（中", 30, {L"中文", L"（中"}},          // "（" may not end one
      {L"abc中文", 40, {L"abc中", L"文"}},            // Latin next to CJK breaks at the boundary
  };
  for (const auto& c : cases) EXPECT_EQ(Wrap(c.text, c.width), c.lines) << c.width;
}

TEST(LineBreaking, LineWidthsLeaveOutHangingBlanksAndAnEmptyParagraphIsOneEmptyLine) {
  std::vector<LineSpan> spans;
  WrapParagraph(Chars(L"aa   bb"), 40, spans);
  ASSERT_EQ(spans.size(), 2u);
  EXPECT_EQ(std::make_tuple(spans[0].width, spans[1].begin, spans[1].width), std::make_tuple(20, 5, 20));
  spans.clear();
  WrapParagraph({}, 100, spans);
  ASSERT_EQ(spans.size(), 1u);
  EXPECT_EQ(spans[0].end, 0);
}

TEST(LineBreaking, ForcedBreakNeverSplitsACluster) {
  auto chars = Chars(L"abcde");
  chars[3].clusterStart = false;  // "cd" is one cluster
  std::vector<LineSpan> spans;
  WrapParagraph(chars, 35, spans);
  ASSERT_EQ(spans.size(), 2u);
  EXPECT_EQ(spans[0].end, 2);  // backs off to the cluster's start
  spans.clear();
  WrapParagraph(chars, 15, spans);  // the cluster alone is too wide: kept whole
  ASSERT_EQ(spans.size(), 4u);
  EXPECT_EQ(std::make_tuple(spans[2].begin, spans[2].end, spans[2].width), std::make_tuple(2, 4, 20));
}

TEST(EllipsisFit, KeepsTheLongestPrefixWithoutTrailingBlanks) {
  const auto chars = Chars(L"abc defgh");
  const LineSpan whole = WholeParagraph(chars);
  EXPECT_EQ(whole.width, 90);
  // "abc d" fits 55; "abc " fits 40 only with its blank dropped.
  const std::tuple<int, int, int> fits[] = {{55, 5, 50}, {40, 3, 30}, {5, 0, 0}, {90, 9, 90}};
  for (const auto& [width, end, used] : fits) {
    const LineSpan fit = FitPrefix(chars, whole, width);
    EXPECT_EQ(std::make_tuple(fit.end, fit.width), std::make_tuple(end, used)) << width;
  }
}
