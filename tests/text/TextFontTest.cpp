// Fonts of the text engine: which face a name resolves to, metrics, real
// and synthesised styles, the glyph atlas a font fills, and measuring.

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "render/text/FontLibrary.h"
#include "text/TextTestHelpers.h"

using namespace KarvelUI;
using namespace KarvelUI::texttest;

namespace {

constexpr UINT kDraw = DT_SINGLELINE | DT_NOCLIP;

TextLayout Draw(TextFont& font, const wchar_t* text, CRect rect = CRect(0, 0, 400, 100)) {
  TextLayout layout;
  font.Layout(text, -1, rect, kDraw, layout);
  return layout;
}

}  // namespace

TEST(FaceResolution, CjkSystemNamesStandForTheirLanguageAndDrawWithOneCjkFace) {
  const std::pair<const wchar_t*, const char*> names[] = {
      {L"SimSun", "zh-cn"}, {L"MICROSOFT YAHEI", "zh-cn"}, {L"宋体", "zh-cn"}, {L"ＭＳ ゴシック", "ja"},
      {L"굴림", "ko"},      {L"Arial", ""},                {L"", ""}};
  for (const auto& [name, language] : names) EXPECT_EQ(FontLibrary::CjkLanguageOfFaceName(name), language);
  auto font = OpenFont(L"SimSun");
  ASSERT_NE(font, nullptr);
  EXPECT_NE(font->GetMetrics().family.find(L"WenQuanYi"), std::wstring::npos) << "resolved to a face without CJK";
  const TextLayout layout = Draw(*font, L"中文Ab");
  ASSERT_EQ(layout.quads.size(), 4u);
  for (const GlyphQuad& quad : layout.quads) EXPECT_GT(Coverage(*font, quad), 0);
}

TEST(FaceResolution, UnknownNamesFallBackAndMissingCharactersComeFromAFaceThatHasThem) {
  for (const wchar_t* name : {L"No Such Face 123", L""}) {
    auto font = OpenFont(name);
    ASSERT_NE(font, nullptr) << "face name #" << std::wcslen(name);
    const TextLayout layout = Draw(*font, L"Hello");
    ASSERT_EQ(layout.quads.size(), 5u);
    for (const GlyphQuad& quad : layout.quads) EXPECT_GT(Coverage(*font, quad), 0);
  }
  auto latin = OpenFont(L"DejaVu Sans");
  auto cjk = OpenFont(L"WenQuanYi Zen Hei");
  ASSERT_TRUE(latin && cjk);
  ASSERT_EQ(latin->GetMetrics().family, L"DejaVu Sans");
  const TextLayout mixed = Draw(*latin, L"A中");
  const TextLayout reference = Draw(*cjk, L"中");
  ASSERT_EQ(mixed.quads.size(), 2u);
  // The same face at the same cell height rasterises the same bitmap; the
  // Latin face's missing-glyph box would differ.
  EXPECT_EQ(Pixels(*latin, mixed.quads[1]), Pixels(*cjk, reference.quads[0]));
}

TEST(FontMetrics, PositiveHeightIsTheCellNegativeTheEmAndGlyphsStayInTheirCell) {
  auto cell = OpenFont(L"SimSun", 12), em = OpenFont(L"SimSun", -12), standard = OpenFont(L"SimSun", 0);
  ASSERT_TRUE(cell && em && standard);
  EXPECT_EQ((std::vector{cell->GetMetrics().height, cell->GetMetrics().ascent + cell->GetMetrics().descent,
                         standard->GetMetrics().height}),
            (std::vector{12, 12, 12}));
  EXPECT_GT(em->GetMetrics().height, 12);
  EXPECT_GT(em->GetTextExtent(L"中中中", -1).cx, cell->GetTextExtent(L"中中中", -1).cx);

  auto font = OpenFont(L"DejaVu Sans", 16);
  const TextLayout layout = Draw(*font, L"Hxg", CRect(0, 40, 400, 80));
  ASSERT_EQ(layout.quads.size(), 3u);
  for (const GlyphQuad& quad : layout.quads)
    EXPECT_TRUE(quad.dest.top >= 40 - 1 && quad.dest.bottom <= 40 + 16 + 1) << quad.dest.top << " " << quad.dest.bottom;
  // 'x' sits on the baseline with 'H'; 'g' descends below it.
  EXPECT_EQ(layout.quads[0].dest.bottom, layout.quads[1].dest.bottom);
  EXPECT_GT(layout.quads[2].dest.bottom, layout.quads[0].dest.bottom);
}

TEST(FontStyles, BoldIsWiderWhetherRealOrSynthesisedAndSynthesisedItalicLeansRight) {
  for (const wchar_t* face : {L"DejaVu Sans", L"SimSun"}) {
    auto regular = OpenFont(face, 12, FW_NORMAL), bold = OpenFont(face, 12, FW_BOLD);
    ASSERT_TRUE(regular && bold);
    EXPECT_GT(bold->GetTextExtent(L"Hello World", -1).cx, regular->GetTextExtent(L"Hello World", -1).cx) << face;
    EXPECT_GT(Coverage(*bold, Draw(*bold, L"l").quads.at(0)), Coverage(*regular, Draw(*regular, L"l").quads.at(0)));
  }
  // A real bold face needs no synthesis; below 600 is not bold; a real italic face needs none either.
  EXPECT_EQ((std::vector<bool>{OpenFont(L"DejaVu Sans", 12, FW_BOLD)->GetMetrics().syntheticBold,
                               OpenFont(L"SimSun", 12, FW_BOLD)->GetMetrics().syntheticBold,
                               OpenFont(L"SimSun", 12, 600 - 1)->GetMetrics().syntheticBold,
                               OpenFont(L"DejaVu Sans", 12, FW_NORMAL, true)->GetMetrics().syntheticItalic}),
            (std::vector<bool>{false, true, false, false}));

  auto italic = OpenFont(L"SimSun", 40, FW_NORMAL, true);
  ASSERT_TRUE(italic->GetMetrics().syntheticItalic);
  const GlyphQuad quad = Draw(*italic, L"l").quads.at(0);
  const AtlasPageView page = italic->GetAtlasPage(quad.page);
  auto inkCentre = [&](int y) {
    long weighted = 0, total = 0;
    for (int x = quad.source.left; x < quad.source.right; ++x) {
      const int value = page.pixels[static_cast<size_t>(y) * page.pitch + x];
      weighted += static_cast<long>(value) * x;
      total += value;
    }
    return total ? static_cast<double>(weighted) / total : 0.0;
  };
  EXPECT_GT(inkCentre(quad.source.top + 1), inkCentre(quad.source.bottom - 2) + 2);
}

TEST(GlyphAtlasUse, OnlyNewGlyphsAreRasterisedAndEveryQuadPointsAtInkEvenAcrossPages) {
  auto font = OpenFont(L"SimSun");
  EXPECT_EQ(font->GetAtlasGeneration(), 0u);
  Draw(*font, L"abc");
  const auto first = font->GetAtlasGeneration();
  EXPECT_GT(first, 0u);
  Draw(*font, L"cab bca");
  TextLayout measured;  // measuring needs advances only, never pixels
  font->Layout(L"xyz", -1, CRect(), DT_CALCRECT, measured);
  EXPECT_EQ(font->GetAtlasGeneration(), first);
  Draw(*font, L"abcd");
  EXPECT_GT(font->GetAtlasGeneration(), first);

  auto paged = TextFont::Create(MakeFont(L"SimSun", 24), 64);
  const wchar_t* text = L"天地玄黄宇宙洪荒日月盈昃辰宿列张寒来暑往秋收冬藏";
  const TextLayout layout = Draw(*paged, text, CRect(0, 0, 2000, 50));
  ASSERT_EQ(layout.quads.size(), std::wcslen(text));
  EXPECT_GT(paged->GetAtlasPageCount(), 1);
  for (const GlyphQuad& quad : layout.quads) {
    ASSERT_LT(quad.page, paged->GetAtlasPageCount());
    EXPECT_EQ(quad.source.Size(), quad.dest.Size());
    EXPECT_GT(Coverage(*paged, quad), 0);
  }
  // The ARGB export carries the same coverage as alpha.
  const GlyphQuad& quad = layout.quads.back();
  std::vector<DWORD> texels(static_cast<size_t>(quad.source.Width()) * quad.source.Height());
  paged->CopyAtlasToArgb(quad.page, quad.source, texels.data(), quad.source.Width() * 4);
  const std::vector<BYTE> coverage = Pixels(*paged, quad);
  for (size_t i = 0; i < texels.size(); ++i) ASSERT_EQ(texels[i], (DWORD(coverage[i]) << 24) | 0x00FFFFFFu) << i;
}

TEST(Measuring, SharedFontsServeLabelWidthAndMenuCalcRect) {
  const LOGFONTW font = MakeFont(L"SimSun");
  EXPECT_TRUE(TextFont::GetShared(font) == TextFont::GetShared(MakeFont(L"simsun")) &&
              TextFont::GetShared(font) != TextFont::GetShared(MakeFont(L"SimSun", 12, FW_BOLD)));
  const CSize extent = MeasureTextExtent(font, L"Open File", -1);
  EXPECT_EQ(extent.cy, 12);
  EXPECT_EQ(MeasureTextExtent(font, L"Open File and more", 9).cx, extent.cx);
  EXPECT_EQ(MeasureTextExtent(font, L"", -1), CSize(0, 12));
  CRect rect(0, 0, 0, 0), twoLines(3, 4, 3, 4);
  EXPECT_EQ((std::vector{CalcTextRect(font, L"Open File", -1, rect, DT_NOCLIP),
                         CalcTextRect(font, L"Open\nFile", -1, twoLines, DT_NOCLIP)}),
            (std::vector{12, 24}));
  EXPECT_EQ(std::make_tuple(rect, twoLines),
            std::make_tuple(CRect(0, 0, extent.cx, 12), CRect(3, 4, 3 + MeasureTextExtent(font, L"Open", -1).cx, 28)));
}

TEST(Measuring, ConcurrentLayoutsOnOneFontMatchSerialOnes) {
  auto font = TextFont::GetShared(MakeFont(L"SimSun", 14));
  const std::vector<std::wstring> texts{L"alpha beta", L"中文字符", L"gamma 测试", L"delta"};
  std::vector<std::vector<GlyphQuad>> results(texts.size());
  std::vector<std::thread> threads;
  for (size_t i = 0; i < texts.size(); ++i)
    threads.emplace_back([&, i] {
      TextLayout layout;
      for (int round = 0; round < 20; ++round) font->Layout(texts[i].c_str(), -1, CRect(0, 0, 300, 40), kDraw, layout);
      results[i] = layout.quads;
    });
  for (auto& thread : threads) thread.join();
  for (size_t i = 0; i < texts.size(); ++i) {
    const TextLayout serial = Draw(*font, texts[i].c_str(), CRect(0, 0, 300, 40));
    ASSERT_EQ(serial.quads.size(), results[i].size());
    for (size_t q = 0; q < serial.quads.size(); ++q)
      EXPECT_TRUE(serial.quads[q].dest == results[i][q].dest && serial.quads[q].source == results[i][q].source) << q;
  }
}
