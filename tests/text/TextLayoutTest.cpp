// Laying text out into a rectangle: alignment, line feeds, word breaks,
// the reported rectangle, the end ellipsis and clipping, compared glyph by
// glyph with simpler layouts of the same text.

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "text/TextTestHelpers.h"

using namespace KarvelUI;
using namespace KarvelUI::texttest;

namespace {

class TextLayoutTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(font = OpenFont(L"SimSun", 12), nullptr); }
  TextLayout Lay(const std::wstring& text, const CRect& rect, UINT format) {
    TextLayout layout;
    font->Layout(text.c_str(), -1, rect, format, layout);
    return layout;
  }
  int Width(const std::wstring& text) { return font->GetTextExtent(text.c_str(), -1).cx; }
  std::shared_ptr<TextFont> font;
};

// Every quad of `part` shifted by (dx, dy) appears, in order, in `whole` from quad `from`.
void ExpectSameGlyphs(const TextLayout& part, const TextLayout& whole, size_t from, int dx, int dy) {
  ASSERT_LE(from + part.quads.size(), whole.quads.size());
  for (size_t i = 0; i < part.quads.size(); ++i) {
    CRect moved = part.quads[i].dest;
    moved.OffsetRect(dx, dy);
    EXPECT_EQ(whole.quads[from + i].dest, moved) << "quad " << i;
    EXPECT_EQ(whole.quads[from + i].source, part.quads[i].source) << "quad " << i;
  }
}

}  // namespace

TEST_F(TextLayoutTest, AlignmentPlacesTheLineAndVerticalAlignmentAppliesToSingleLinesOnly) {
  const CRect rect(10, 20, 210, 70);  // 200 x 50, lines are 12 high
  const std::wstring text = L"Hi 中";
  const int width = Width(text);
  const TextLayout left = Lay(text, rect, DT_SINGLELINE);
  ASSERT_EQ(left.quads.size(), 3u);
  EXPECT_EQ(left.height, 12);
  // The pen starts at the left edge: the first glyph's ink is within a few pixels of it.
  EXPECT_TRUE(left.quads[0].dest.left >= 10 && left.quads[0].dest.left <= 13) << left.quads[0].dest.left;
  const struct {
    UINT format;
    int dx, dy, height;
  } cases[] = {{DT_SINGLELINE | DT_CENTER, (200 - width) / 2, 0, 12}, {DT_SINGLELINE | DT_RIGHT, 200 - width, 0, 12},
               {DT_SINGLELINE | DT_VCENTER, 0, 19, 19 + 12},        {DT_SINGLELINE | DT_BOTTOM, 0, 38, 50},
               {DT_VCENTER, 0, 0, 12}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.format);
    const TextLayout aligned = Lay(text, rect, c.format);
    ExpectSameGlyphs(left, aligned, 0, c.dx, c.dy);
    EXPECT_EQ(aligned.height, c.height);
  }
}

TEST_F(TextLayoutTest, LineFeedsBreakLinesUnlessSingleLine) {
  const CRect rect(0, 0, 300, 100);
  for (const wchar_t* text : {L"a\nb", L"a\r\nb", L"a\rb"}) {
    const TextLayout broken = Lay(text, rect, DT_LEFT);
    EXPECT_EQ(std::make_tuple(broken.lineCount, broken.height), std::make_tuple(2, 24));
    ExpectSameGlyphs(Lay(L"a", rect, DT_LEFT), broken, 0, 0, 0);
    ExpectSameGlyphs(Lay(L"b", rect, DT_LEFT), broken, 1, 0, 12);
  }
  const TextLayout single = Lay(L"a\r\nb", rect, DT_SINGLELINE);
  EXPECT_EQ(single.lineCount, 1);
  ExpectSameGlyphs(Lay(L"ab", rect, DT_LEFT), single, 0, 0, 0);
  EXPECT_EQ(std::make_tuple(Lay(L"a\n", rect, DT_CALCRECT).lineCount, Lay(L"a\n\nb", rect, DT_CALCRECT).height,
                            Lay(L"", rect, DT_CALCRECT).height),
            std::make_tuple(2, 36, 12));
}

TEST_F(TextLayoutTest, WordBreakWrapsLatinAtBlanksAndCjkBetweenCharacters) {
  const std::wstring sentence = L"the quick brown fox jumps over the lazy dog";
  const int width = Width(L"the quick brown");
  const CRect rect(0, 0, width, 200);
  const TextLayout wrapped = Lay(sentence, rect, DT_WORDBREAK);
  EXPECT_EQ(wrapped.lineCount, 3);
  ExpectSameGlyphs(Lay(L"the quick brown", rect, 0), wrapped, 0, 0, 0);
  ExpectSameGlyphs(Lay(L"fox jumps over", rect, 0), wrapped, 13, 0, 12);
  ExpectSameGlyphs(Lay(L"the lazy dog", rect, 0), wrapped, 25, 0, 24);
  for (const GlyphQuad& quad : wrapped.quads) EXPECT_LE(quad.dest.right, width + 1);
  EXPECT_EQ(Lay(sentence, rect, DT_NOCLIP).lineCount, 1);  // without DT_WORDBREAK

  const std::wstring cjk = L"中文字符测试换行";
  const int cell = Width(L"中");
  ASSERT_EQ(Width(cjk), 8 * cell);
  const TextLayout columns = Lay(cjk, CRect(0, 0, 3 * cell + 1, 100), DT_WORDBREAK);
  EXPECT_EQ(columns.lineCount, 3);
  ExpectSameGlyphs(Lay(L"符测试", rect, 0), columns, 3, 0, 12);
  ExpectSameGlyphs(Lay(L"换行", rect, 0), columns, 6, 0, 24);
}

TEST_F(TextLayoutTest, CalcRectReportsTheRectangleLayoutUses) {
  const CRect rect(5, 6, 5 + 90, 6 + 200);
  const std::wstring text = L"Settings and preferences\nAbout";
  const TextLayout measured = Lay(text, rect, DT_CALCRECT | DT_WORDBREAK);
  const TextLayout drawn = Lay(text, rect, DT_WORDBREAK);
  EXPECT_TRUE(measured.quads.empty() && measured.lineCount == drawn.lineCount);
  // Several wrapped lines keep the width; every glyph lies within the rectangle.
  EXPECT_EQ(measured.bounds, CRect(5, 6, 95, 6 + drawn.lineCount * 12));
  const CRect ink = UnionOfQuads(drawn);
  EXPECT_TRUE(ink.top >= measured.bounds.top - 1 && ink.bottom <= measured.bounds.bottom + 1);
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
  ASSERT_LT(cut.quads.size(), full.quads.size());
  const size_t kept = cut.quads.size() - 3;
  for (size_t i = 0; i < kept; ++i) EXPECT_EQ(cut.quads[i].dest, full.quads[i].dest);
  const CRect dot = Lay(L".", rect, DT_SINGLELINE).quads.at(0).source;
  for (size_t i = kept; i < cut.quads.size(); ++i) EXPECT_EQ(cut.quads[i].source, dot);
  EXPECT_TRUE(cut.quads.back().dest.right <= rect.right &&
              Lay(text, rect, DT_SINGLELINE | DT_END_ELLIPSIS | DT_CALCRECT).bounds.Width() <= 80);
  EXPECT_EQ(Lay(L"Short", rect, DT_SINGLELINE | DT_END_ELLIPSIS).quads.size(), 5u);  // a line that fits
}

TEST_F(TextLayoutTest, ClippingCutsGlyphsToTheRectangleKeepingTheirTopPart) {
  const CRect rect(10, 10, 60, 18);  // narrower and shorter than the text
  const std::wstring text = L"Clipped text 中文";
  const TextLayout loose = Lay(text, rect, DT_SINGLELINE | DT_NOCLIP);
  const TextLayout clipped = Lay(text, rect, DT_SINGLELINE);
  EXPECT_NE(UnionOfQuads(loose) & rect, UnionOfQuads(loose));
  ASSERT_FALSE(clipped.quads.empty());
  EXPECT_LT(clipped.quads.size(), loose.quads.size());
  bool partial = false;
  for (size_t i = 0; i < clipped.quads.size(); ++i) {
    const GlyphQuad& quad = clipped.quads[i];
    EXPECT_TRUE((quad.dest & rect) == quad.dest && quad.source.Size() == quad.dest.Size() &&
                quad.source.TopLeft() == loose.quads[i].source.TopLeft())
        << i;
    partial = partial || quad.dest.bottom == rect.bottom;
  }
  EXPECT_TRUE(partial) << "glyphs across the bottom edge should be cut, not dropped";
}

TEST_F(TextLayoutTest, CountTabsAndControlCharacters) {
  const CRect rect(0, 0, 300, 20);
  TextLayout part, none;
  font->Layout(L"abcdef", 3, rect, DT_SINGLELINE, part);
  ExpectSameGlyphs(Lay(L"abc", rect, DT_SINGLELINE), part, 0, 0, 0);
  EXPECT_EQ(Width(L"a\tb"), Width(L"a b"));
  EXPECT_EQ(Width(L"a\x01\x1b" L"b"), Width(L"ab"));
  EXPECT_EQ(font->Layout(nullptr, -1, rect, 0, none), 0);
  EXPECT_TRUE(none.quads.empty());
}
