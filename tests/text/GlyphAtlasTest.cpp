#include <gtest/gtest.h>

#include <vector>

#include "render/text/GlyphAtlas.h"

using namespace KarvelUI;

namespace {

std::vector<BYTE> Solid(int width, int height, BYTE value) {
  return std::vector<BYTE>(static_cast<size_t>(width) * height, value);
}

BYTE At(const AtlasPageView& page, int x, int y) {
  return page.pixels[static_cast<size_t>(y) * page.pitch + x];
}

}  // namespace

TEST(GlyphAtlasPacking, GlyphsKeepABlankBorderAndNeverOverlap) {
  GlyphAtlas atlas(64);
  std::vector<CRect> placed;
  for (int i = 0; i < 12; ++i) {
    const auto pixels = Solid(7, 9 + (i % 3), static_cast<BYTE>(100 + i));
    const auto placement = atlas.Add(pixels.data(), 7, 7, 9 + (i % 3));
    ASSERT_EQ(placement.page, 0);
    EXPECT_EQ(placement.source.Width(), 7);
    placed.push_back(placement.source);
  }
  for (size_t a = 0; a < placed.size(); ++a) {
    for (size_t b = a + 1; b < placed.size(); ++b) {
      CRect grown = placed[a];
      grown.InflateRect(GlyphAtlas::kPadding, GlyphAtlas::kPadding);
      CRect overlap;
      EXPECT_FALSE(overlap.IntersectRect(grown, placed[b])) << a << " touches " << b;
    }
  }
  const AtlasPageView page = atlas.GetPage(0);
  for (size_t i = 0; i < placed.size(); ++i) {
    EXPECT_EQ(At(page, placed[i].left, placed[i].top), 100 + i);
    EXPECT_EQ(At(page, placed[i].right - 1, placed[i].bottom - 1), 100 + i);
  }
}

TEST(GlyphAtlasPacking, FullPageOpensAnotherAndOversizedGlyphsGetTheirOwn) {
  GlyphAtlas atlas(16);
  const auto block = Solid(6, 6, 255);
  int pages = 0;
  for (int i = 0; i < 5; ++i) pages = atlas.Add(block.data(), 6, 6, 6).page + 1;
  EXPECT_EQ(pages, 2);  // four 8x8 padded cells fill a 16x16 page

  const auto big = Solid(40, 20, 9);
  const auto placement = atlas.Add(big.data(), 40, 40, 20);
  ASSERT_EQ(placement.page, 2);
  const AtlasPageView page = atlas.GetPage(2);
  EXPECT_GE(page.width, 42);
  EXPECT_EQ(At(page, placement.source.left + 39, placement.source.top + 19), 9);

  const auto huge = Solid(1, 1, 1);
  EXPECT_EQ(atlas.Add(huge.data(), 1, GlyphAtlas::kMaxPageSize, 1).page, -1);
  EXPECT_EQ(atlas.Add(huge.data(), 1, 0, 1).page, -1);
}

TEST(GlyphAtlasGeneration, AdvancesOnEveryWriteAndOnlyForThePageWritten) {
  GlyphAtlas atlas(16);
  EXPECT_EQ(atlas.GetGeneration(), 0u);
  const auto block = Solid(6, 6, 1);
  for (int i = 0; i < 4; ++i) atlas.Add(block.data(), 6, 6, 6);
  const auto afterFirstPage = atlas.GetGeneration();
  const auto firstPageGeneration = atlas.GetPage(0).generation;
  atlas.Add(block.data(), 6, 6, 6);  // lands on a second page
  EXPECT_GT(atlas.GetGeneration(), afterFirstPage);
  EXPECT_EQ(atlas.GetPage(0).generation, firstPageGeneration);
  EXPECT_EQ(atlas.GetPage(7).pixels, nullptr);
}

TEST(GlyphAtlasExport, ArgbTexelsAreWhiteWithCoverageAsAlpha) {
  GlyphAtlas atlas(16);
  const BYTE pixels[] = {0, 128, 255, 7};
  const auto placement = atlas.Add(pixels, 2, 2, 2);
  std::vector<DWORD> texels(4, 0xDEADBEEF);
  atlas.CopyToArgb(placement.page, placement.source, texels.data(), 2 * sizeof(DWORD));
  EXPECT_EQ(texels[0], 0x00FFFFFFu);
  EXPECT_EQ(texels[1], 0x80FFFFFFu);
  EXPECT_EQ(texels[2], 0xFFFFFFFFu);
  EXPECT_EQ(texels[3], 0x07FFFFFFu);

  // An area partly outside the page writes only the part inside.
  std::vector<DWORD> edge(4, 0xDEADBEEF);
  atlas.CopyToArgb(0, CRect(15, 15, 17, 17), edge.data(), 2 * sizeof(DWORD));
  EXPECT_EQ(edge[0], 0x00FFFFFFu);
  EXPECT_EQ(edge[1], 0xDEADBEEFu);
  EXPECT_EQ(edge[3], 0xDEADBEEFu);
}
