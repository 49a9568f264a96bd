#include <gtest/gtest.h>

#include <string>

#include "text/TextTestHelpers.h"

using namespace KarvelUI;
using namespace KarvelUI::texttest;

namespace {

class TextLayoutTest : public ::testing::Test {
 protected:
  void SetUp() override {
    font = OpenFont(L"SimSun", 12);
    ASSERT_NE(font, nullptr);
  }

  TextLayout Lay(const std::wstring& text, const CRect& rect, UINT format) {
    TextLayout layout;
    font->Layout(text.c_str(), -1, rect, format, layout);
    return layout;
  }

  int Width(const std::wstring& text) { return font->GetTextExtent(text.c_str(), -1).cx; }

  std::shared_ptr<TextFont> font;
};

// Every quad of `part` shifted by (dx, dy) appears, in order, in `whole`
// starting at quad `from`.
void ExpectSameGlyphs(const TextLayout& part, const TextLayout& whole, size_t from, int dx,
                      int dy) {
  ASSERT_LE(from + part.quads.size(), whole.quads.size());
  for (size_t i = 0; i < part.quads.size(); ++i) {
    CRect moved = part.quads[i].dest;
    moved.OffsetRect(dx, dy);
    EXPECT_EQ(whole.quads[from + i].dest, moved) << "quad " << i;
    EXPECT_EQ(whole.quads[from + i].source, part.quads[i].source) << "quad " << i;
  }
}

}  // namespace

TEST_F(TextLayoutTest, HorizontalAlignmentPlacesTheLineInTheRectangle) {
  const CRect rect(10, 20, 210, 70);
  const std::wstring text = L"Hi 中";
  const int width = Width(text);
  const UINT single = DT_SINGLELINE;
  const TextLayout left = Lay(text, rect, single | DT_LEFT);
  const TextLayout centre = Lay(text, rect, single | DT_CENTER);
  const TextLayout right = Lay(text, rect, single | DT_RIGHT);
  ASSERT_EQ(left.quads.size(), 3u);
  ExpectSameGlyphs(left, centre, 0, (200 - width) / 2, 0);
  ExpectSameGlyphs(left, right, 0, 200 - width, 0);
  // The pen starts at the left edge: the first glyph's ink is within a few
  // pixels of it.
  EXPECT_GE(left.quads[0].dest.left, 10);
  EXPECT_LE(left.quads[0].dest.left, 13);
}

TEST_F(TextLayoutTest, VerticalAlignmentAppliesToSingleLinesOnly) {
  const CRect rect(0, 100, 300, 150);  // 50 high, lines are 12
  const TextLayout top = Lay(L"Mix", rect, DT_SINGLELINE);
  const TextLayout middle = Lay(L"Mix", rect, DT_SINGLELINE | DT_VCENTER);
  const TextLayout bottom = Lay(L"Mix", rect, DT_SINGLELINE | DT_BOTTOM);
  ExpectSameGlyphs(top, middle, 0, 0, 19);
  ExpectSameGlyphs(top, bottom, 0, 0, 38);
  EXPECT_EQ(top.height, 12);
  EXPECT_EQ(middle.height, 19 + 12);
  EXPECT_EQ(bottom.height, 50);

  // Without DT_SINGLELINE the text stays at the top.
  const TextLayout multi = Lay(L"Mix", rect, DT_VCENTER);
  ExpectSameGlyphs(top, multi, 0, 0, 0);
  EXPECT_EQ(multi.height, 12);
}

TEST_F(TextLayoutTest, LineFeedsBreakLinesUnlessSingleLine) {
  const CRect rect(0, 0, 300, 100);
  const TextLayout ab = Lay(L"ab", rect, DT_LEFT);
  const TextLayout a = Lay(L"a", rect, DT_LEFT);
  const TextLayout b = Lay(L"b", rect, DT_LEFT);

  for (const wchar_t* text : {L"a\nb", L"a\r\nb", L"a\rb"}) {
    const TextLayout broken = Lay(text, rect, DT_LEFT);
    EXPECT_EQ(broken.lineCount, 2);
    EXPECT_EQ(broken.height, 24);
    ASSERT_EQ(broken.quads.size(), 2u);
    ExpectSameGlyphs(a, broken, 0, 0, 0);
    ExpectSameGlyphs(b, broken, 1, 0, 12);
  }
  const TextLayout single = Lay(L"a\r\nb", rect, DT_SINGLELINE);
  EXPECT_EQ(single.lineCount, 1);
  ExpectSameGlyphs(ab, single, 0, 0, 0);

  EXPECT_EQ(Lay(L"a\n", rect, DT_CALCRECT).lineCount, 2);
  EXPECT_EQ(Lay(L"a\n\nb", rect, DT_CALCRECT).height, 36);
  EXPECT_EQ(Lay(L"", rect, DT_CALCRECT).height, 12);
}

TEST_F(TextLayoutTest, WordBreakWrapsALatinSentenceAtTheWidth) {
  const std::wstring sentence = L"the quick brown fox jumps over the lazy dog";
  const int width = Width(L"the quick brown");
  const CRect rect(0, 0, width, 200);
  const TextLayout wrapped = Lay(sentence, rect, DT_WORDBREAK);
  EXPECT_EQ(wrapped.lineCount, 3);  // "the quick brown" / "fox jumps over" / "the lazy dog"
  EXPECT_EQ(wrapped.height, 36);
  ExpectSameGlyphs(Lay(L"the quick brown", rect, 0), wrapped, 0, 0, 0);
  ExpectSameGlyphs(Lay(L"fox jumps over", rect, 0), wrapped, 13, 0, 12);
  ExpectSameGlyphs(Lay(L"the lazy dog", rect, 0), wrapped, 25, 0, 24);
  for (const GlyphQuad& quad : wrapped.quads) EXPECT_LE(quad.dest.right, width + 1);

  // Without DT_WORDBREAK the sentence stays on one line.
  EXPECT_EQ(Lay(sentence, rect, DT_NOCLIP).lineCount, 1);
}

TEST_F(TextLayoutTest, WordBreakWrapsCjkBetweenCharacters) {
  const std::wstring text = L"中文字符测试换行";
  const int cell = Width(L"中");
  ASSERT_EQ(Width(text), 8 * cell);
  const TextLayout wrapped = Lay(text, CRect(0, 0, 3 * cell + 1, 100), DT_WORDBREAK);
  EXPECT_EQ(wrapped.lineCount, 3);
  const auto perLine = QuadsPerLine(wrapped, 0, 12);
  EXPECT_EQ(perLine, (std::map<int, int>{{0, 3}, {1, 3}, {2, 2}}));
}

TEST_F(TextLayoutTest, CalcRectReportsTheRectangleLayoutUses) {
  const CRect rect(5, 6, 5 + 90, 6 + 200);
  const std::wstring text = L"Settings and preferences\nAbout";
  TextLayout measured = Lay(text, rect, DT_CALCRECT | DT_WORDBREAK);
  EXPECT_TRUE(measured.quads.empty());
  const TextLayout drawn = Lay(text, rect, DT_WORDBREAK);
  EXPECT_EQ(measured.lineCount, drawn.lineCount);
  EXPECT_EQ(measured.bounds.Height(), drawn.lineCount * 12);
  EXPECT_EQ(measured.bounds.TopLeft(), rect.TopLeft());
  EXPECT_EQ(measured.bounds.Width(), 90);  // several wrapped lines keep the width
  // Every glyph lies within the reported rectangle.
  const CRect ink = UnionOfQuads(drawn);
  EXPECT_GE(ink.top, measured.bounds.top - 1);
  EXPECT_LE(ink.bottom, measured.bounds.bottom + 1);

  // Unwrapped text reports its longest line, and drawing into exactly that
  // rectangle with word breaks does not wrap it.
  const TextLayout natural = Lay(text, CRect(0, 0, 0, 0), DT_CALCRECT);
  EXPECT_EQ(natural.bounds.Width(), Width(L"Settings and preferences"));
  EXPECT_EQ(Lay(text, natural.bounds, DT_WORDBREAK).lineCount, 2);
}

TEST_F(TextLayoutTest, EndEllipsisShortensATooLongLineAndEndsWithThreeDots) {
  const std::wstring text = L"A rather long caption for a small label";
  const CRect rect(0, 0, 80, 20);
  const TextLayout full = Lay(text, rect, DT_SINGLELINE | DT_NOCLIP);
  const TextLayout cut = Lay(text, rect, DT_SINGLELINE | DT_END_ELLIPSIS);
  ASSERT_GT(cut.quads.size(), 3u);
  EXPECT_LT(cut.quads.size(), full.quads.size());
  const size_t kept = cut.quads.size() - 3;
  // The start of the text is unchanged.
  for (size_t i = 0; i < kept; ++i) EXPECT_EQ(cut.quads[i].dest, full.quads[i].dest);
  // Three identical dots, the last one inside the rectangle.
  const TextLayout dot = Lay(L".", rect, DT_SINGLELINE);
  ASSERT_EQ(dot.quads.size(), 1u);
  for (size_t i = kept; i < cut.quads.size(); ++i) {
    EXPECT_EQ(cut.quads[i].source, dot.quads[0].source);
  }
  EXPECT_LE(cut.quads.back().dest.right, rect.right);
  EXPECT_LE(Lay(text, rect, DT_SINGLELINE | DT_END_ELLIPSIS | DT_CALCRECT).bounds.Width(), 80);

  // A line that fits is left alone.
  const TextLayout fits = Lay(L"Short", rect, DT_SINGLELINE | DT_END_ELLIPSIS);
  EXPECT_EQ(fits.quads.size(), 5u);
}

TEST_F(TextLayoutTest, ClippingKeepsEveryQuadInsideTheRectangle) {
  const CRect rect(10, 10, 60, 18);  // narrower and shorter than the text
  const std::wstring text = L"Clipped text 中文";
  const TextLayout loose = Lay(text, rect, DT_SINGLELINE | DT_NOCLIP);
  const TextLayout clipped = Lay(text, rect, DT_SINGLELINE);
  EXPECT_FALSE(UnionOfQuads(loose).IsRectEmpty());
  CRect inside;
  EXPECT_FALSE(inside.IntersectRect(UnionOfQuads(loose), rect) && UnionOfQuads(loose) == inside);
  ASSERT_FALSE(clipped.quads.empty());
  EXPECT_LT(clipped.quads.size(), loose.quads.size());
  bool partial = false;
  for (const GlyphQuad& quad : clipped.quads) {
    CRect check;
    check.IntersectRect(quad.dest, rect);
    EXPECT_EQ(check, quad.dest);
    EXPECT_EQ(quad.source.Size(), quad.dest.Size());
    partial = partial || quad.dest.bottom == rect.bottom;
  }
  EXPECT_TRUE(partial) << "glyphs across the bottom edge should be cut, not dropped";
  // A cut glyph keeps the top part of its bitmap.
  for (size_t i = 0; i < clipped.quads.size(); ++i) {
    EXPECT_EQ(clipped.quads[i].source.TopLeft(), loose.quads[i].source.TopLeft());
  }
}

TEST_F(TextLayoutTest, CountTabsAndControlCharacters) {
  const CRect rect(0, 0, 300, 20);
  TextLayout part;
  font->Layout(L"abcdef", 3, rect, DT_SINGLELINE, part);
  ExpectSameGlyphs(Lay(L"abc", rect, DT_SINGLELINE), part, 0, 0, 0);
  EXPECT_EQ(Width(L"a\tb"), Width(L"a b"));
  EXPECT_EQ(Width(L"a\x01\x1b" L"b"), Width(L"ab"));
  TextLayout none;
  EXPECT_EQ(font->Layout(nullptr, -1, rect, 0, none), 0);
  EXPECT_TRUE(none.quads.empty());
}
