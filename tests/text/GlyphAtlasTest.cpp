// The glyph atlas: packing with a blank border, new pages when one is full,
// generations that say what changed, and the ARGB export.

#include <gtest/gtest.h>

#include <vector>

#include "render/text/GlyphAtlas.h"

using namespace KarvelUI;

namespace {

std::vector<BYTE> Solid(int width, int height, BYTE value) {
  return std::vector<BYTE>(static_cast<size_t>(width) * height, value);
}

BYTE At(const AtlasPageView& page, int x, int y) { return page.pixels[static_cast<size_t>(y) * page.pitch + x]; }

}  // namespace

TEST(GlyphAtlas, GlyphsKeepABlankBorderAndNeverOverlap) {
  GlyphAtlas atlas(64);
  std::vector<CRect> placed;
  for (int i = 0; i < 12; ++i) {
    const auto pixels = Solid(7, 9 + (i % 3), static_cast<BYTE>(100 + i));
    const auto placement = atlas.Add(pixels.data(), 7, 7, 9 + (i % 3));
    ASSERT_EQ(placement.page, 0);
    placed.push_back(placement.source);
  }
  const AtlasPageView page = atlas.GetPage(0);
  for (size_t a = 0; a < placed.size(); ++a) {
    EXPECT_EQ(At(page, placed[a].left, placed[a].top), 100 + a);
    EXPECT_EQ(At(page, placed[a].right - 1, placed[a].bottom - 1), 100 + a);
    CRect grown = placed[a], overlap;
    grown.InflateRect(GlyphAtlas::kPadding, GlyphAtlas::kPadding);
    for (size_t b = a + 1; b < placed.size(); ++b)
      EXPECT_FALSE(overlap.IntersectRect(grown, placed[b])) << a << "," << b;
  }
}

TEST(GlyphAtlas, FullPagesOpenAnotherOnlyThatPagesGenerationMovesAndOversizedGlyphsGetTheirOwn) {
  GlyphAtlas atlas(16);
  EXPECT_EQ(atlas.GetGeneration(), 0u);
  const auto block = Solid(6, 6, 255);
  for (int i = 0; i < 4; ++i) ASSERT_EQ(atlas.Add(block.data(), 6, 6, 6).page, 0);  // four 8 x 8 padded cells
  const auto generation = atlas.GetGeneration(), firstPage = atlas.GetPage(0).generation;
  EXPECT_EQ(atlas.Add(block.data(), 6, 6, 6).page, 1);
  EXPECT_GT(atlas.GetGeneration(), generation);
  EXPECT_EQ(atlas.GetPage(0).generation, firstPage);
  EXPECT_EQ(atlas.GetPage(7).pixels, nullptr);

  const auto big = Solid(40, 20, 9);
  const auto placement = atlas.Add(big.data(), 40, 40, 20);
  ASSERT_EQ(placement.page, 2);
  EXPECT_GE(atlas.GetPage(2).width, 42);
  EXPECT_EQ(At(atlas.GetPage(2), placement.source.left + 39, placement.source.top + 19), 9);
  EXPECT_EQ(atlas.Add(block.data(), 1, GlyphAtlas::kMaxPageSize, 1).page, -1);
  EXPECT_EQ(atlas.Add(block.data(), 1, 0, 1).page, -1);
}

TEST(GlyphAtlas, ArgbTexelsAreWhiteWithCoverageAsAlphaAndOnlyInsideThePage) {
  GlyphAtlas atlas(16);
  const BYTE pixels[] = {0, 128, 255, 7};
  const auto placement = atlas.Add(pixels, 2, 2, 2);
  std::vector<DWORD> texels(4, 0xDEADBEEF);
  atlas.CopyToArgb(placement.page, placement.source, texels.data(), 2 * sizeof(DWORD));
  EXPECT_EQ(texels, (std::vector<DWORD>{0x00FFFFFF, 0x80FFFFFF, 0xFFFFFFFF, 0x07FFFFFF}));
  std::vector<DWORD> edge(4, 0xDEADBEEF);
  atlas.CopyToArgb(0, CRect(15, 15, 17, 17), edge.data(), 2 * sizeof(DWORD));
  EXPECT_EQ(edge, (std::vector<DWORD>{0x00FFFFFF, 0xDEADBEEF, 0xDEADBEEF, 0xDEADBEEF}));
}
