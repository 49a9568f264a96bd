// Drawing on the double: the colour and opacity rule, text rectangles and the
// font cache, and cached pictures drawn tile by tile (the pieces joining,
// turning as one).

#include <cmath>
#include <limits>
#include <tuple>

#include <karvelui/WinConstants.h>
#include "support/FakeCore.h"

using namespace KarvelUI;
using namespace KarvelTest;
using ::testing::ElementsAre;

namespace {

class FakeDrawTest : public FakeCoreTest {
 protected:
  void SetUp() override {
    FakeCoreTest::SetUp();
    MakeReady();
    ASSERT_EQ(core.BeginPaint(), S_OK);
    ASSERT_EQ(core.GetD3DDevice()->CreateTexture(16, 16, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, texture.Receive(),
                                                 nullptr),
              S_OK);
  }
  DWORD DrawnColour(DWORD colour) {
    const D3DXVECTOR3 at{};
    EXPECT_EQ(core.DrawImage(texture.Get(), nullptr, nullptr, &at, colour), S_OK);
    return gpu->Draws().back().color;
  }
  // A ready item of `size` cut into tiles at `cuts` (right/bottom edges of
  // every tile but the last in each direction).
  void MakeItem(tagTextureItem& item, CSize size, std::vector<LONG> columnCuts, std::vector<LONG> rowCuts) {
    columnCuts.push_back(size.cx);
    rowCuts.push_back(size.cy);
    item.nTileCols = static_cast<int>(columnCuts.size());
    item.nTileRows = static_cast<int>(rowCuts.size());
    item.pTiles = std::make_unique<TextureTile[]>(columnCuts.size() * rowCuts.size());
    item.TextureInfo.Width = static_cast<UINT>(size.cx);
    item.TextureInfo.Height = static_cast<UINT>(size.cy);
    item.nState = TEXTURE_STATE_READY_FILE;
    LONG top = 0;
    for (int row = 0; row < item.nTileRows; ++row) {
      LONG left = 0;
      for (int column = 0; column < item.nTileCols; ++column) {
        TextureTile* tile = item.Tile(column, row);
        tile->rect = CRect(left, top, columnCuts[column], rowCuts[row]);
        core.GetD3DDevice()->CreateTexture(16, 16, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, tile->pTexture.Receive(),
                                           nullptr);
        left = columnCuts[column];
      }
      top = rowCuts[row];
    }
    gpu->ClearLog();
  }

  RefPtr<IDirect3DTexture9> texture;
};

int FakeTextureId(const TextureTile* tile) { return fake::FakeTexture::From(tile->pTexture.Get())->Id(); }

void ExpectCorner(const D3DXVECTOR2& corner, float x, float y) {
  EXPECT_NEAR(corner.x, x, 1e-3f);
  EXPECT_NEAR(corner.y, y, 1e-3f);
}

}  // namespace

TEST_F(FakeDrawTest, OpacityScalesAlphaRoundedAndLeavesTheChannels) {
  EXPECT_EQ(DrawnColour(0x80123456), 0x80123456u);
  core.SetGlobalOpacity(0.5f);  // alpha x 0.5 + 0.5, truncated: 127.5 + 0.5, 63.5 + 0.5, 0.5 + 0.5
  EXPECT_EQ((std::vector{DrawnColour(0xFFFFFFFF), DrawnColour(0x7F123456), DrawnColour(0x01ABCDEF)}),
            (std::vector<DWORD>{0x80FFFFFF, 0x40123456, 0x01ABCDEF}));

  for (float ignored : {1.5f, -0.1f, std::numeric_limits<float>::quiet_NaN()}) {
    core.SetGlobalOpacity(ignored);
    EXPECT_EQ(core.GetGlobalOpacity(), 0.5f);
  }
  for (auto [opacity, drawn] : {std::pair{0.0f, 0x00FFFFFFu}, std::pair{1.0f, 0xFFFFFFFFu}}) {
    core.SetGlobalOpacity(opacity);
    EXPECT_EQ(DrawnColour(0xFFFFFFFF), drawn) << opacity;
  }
}

TEST_F(FakeDrawTest, AFailedDrawIsTracedAndReturned) {
  gpu->FailNext(fake::Call::SpriteDraw, D3DERR_INVALIDCALL);
  const D3DXVECTOR3 at{};
  EXPECT_EQ(core.DrawImage(texture.Get(), nullptr, nullptr, &at, 0xFFFFFFFF), D3DERR_INVALIDCALL);
  EXPECT_THAT(Traced(), ElementsAre(L"4 <D3DERROR> Draw image fail: -2005530516"));
}

TEST_F(FakeDrawTest, TextGoesIntoTheRectangleTopBeforeLeftWithTheFontCached) {
  core.SetGlobalOpacity(0.5f);
  const UINT format = DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS;
  ASSERT_EQ(core.DrawTextW(L"Holiday", 3, 10, 20, 100, 30, 12, 400, 0, 0, L"SimSun", format, 0xFF112233), S_OK);
  ASSERT_EQ(core.DrawTextW(L"Holiday", -1, 10, 20, 100, 30, 12, 400, 0, 0, L"SimSun", format, 0xFF112233), S_OK);
  const std::vector<fake::TextRecord> texts = gpu->Texts();
  ASSERT_EQ(texts.size(), 2u);
  EXPECT_EQ(std::make_tuple(texts[0].text, texts[1].text, CRect(texts[0].rect), texts[0].format, texts[0].color,
                            texts[0].throughSprite),
            std::make_tuple(std::wstring(L"Hol"), std::wstring(L"Holiday"), CRect(20, 10, 120, 40), DWORD{format},
                            0x80112233u, true));
  EXPECT_THAT(CallsStartingWith("CreateFont"), ElementsAre("CreateFont height=12 weight=400 italic=0 face=SimSun"));

  // Underline makes another entry; the shorter release key finds neither.
  ASSERT_EQ(core.DrawTextW(L"x", -1, 0, 0, 9, 9, 12, 400, 0, 1, L"SimSun", 0, 0xFF000000), S_OK);
  EXPECT_EQ(std::make_tuple(gpu->Count(fake::Call::CreateFont),
                            core.GetResourceCache()->ReleaseFont(12, 400, 0, L"SimSun", core.GetD3DDevice())),
            std::make_tuple(2, 0));
  ASSERT_EQ(core.DrawTextW(L"x", -1, 0, 0, 9, 9, 12, 400, 0, 0, L"SimSun", 0, 0xFF000000), S_OK);
  EXPECT_EQ(gpu->Count(fake::Call::CreateFont), 2);
}

TEST_F(FakeDrawTest, TextFailsWithoutAFontAndPassesANegativeResultOn) {
  gpu->FailNext(fake::Call::CreateFont, E_OUTOFMEMORY);
  EXPECT_EQ(core.DrawTextW(L"x", -1, 0, 0, 9, 9, 14, 700, 1, 0, L"Arial", 0, 0xFF000000), E_FAIL);
  // Not cached as missing: the next draw asks again.
  EXPECT_EQ(core.DrawTextW(L"x", -1, 0, 0, 9, 9, 14, 700, 1, 0, L"Arial", 0, 0xFF000000), S_OK);
  gpu->FailNext(fake::Call::FontDrawText, E_FAIL);
  EXPECT_EQ(core.DrawTextW(L"x", -1, 0, 0, 9, 9, 14, 700, 1, 0, L"Arial", 0, 0xFF000000), E_FAIL);
}

TEST_F(FakeDrawTest, ACachedPictureIsDrawnTileByTileAndThePiecesJoin) {
  tagTextureItem item;
  MakeItem(item, CSize(7, 6), {4}, {4});
  const CRect dest(100, 50, 114, 62);  // twice the picture's size
  ASSERT_EQ(core.DrawImage(&item, &dest, nullptr, nullptr, 0, 0xFFFFFFFF), S_OK);
  const std::vector<fake::SpriteDrawRecord> draws = gpu->Draws();
  ASSERT_EQ(draws.size(), 4u);
  // Rows from the top, each from the left; each piece ends where the next begins.
  const CRect expected[] = {{100, 50, 108, 58}, {108, 50, 114, 58}, {100, 58, 108, 62}, {108, 58, 114, 62}};
  const CRect sources[] = {{0, 0, 4, 4}, {0, 0, 3, 4}, {0, 0, 4, 2}, {0, 0, 3, 2}};
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(std::make_tuple(draws[i].textureId, CRect(draws[i].source)),
              std::make_tuple(FakeTextureId(item.Tile(static_cast<int>(i % 2), static_cast<int>(i / 2))), sources[i]))
        << i;
    ExpectCorner(draws[i].quad.corners[0], static_cast<float>(expected[i].left), static_cast<float>(expected[i].top));
    ExpectCorner(draws[i].quad.corners[3], static_cast<float>(expected[i].right),
                 static_cast<float>(expected[i].bottom));
  }
}

TEST_F(FakeDrawTest, APartOfAPictureTakesOnlyTheTilesItCrosses) {
  tagTextureItem item;
  MakeItem(item, CSize(8, 8), {4}, {4});
  const CRect source(2, 1, 6, 3);  // crosses the top two tiles only
  const CRect dest(0, 0, 8, 4);
  const D3DXVECTOR2 centre{4, 2};
  ASSERT_EQ(core.DrawImage(&item, &dest, &source, &centre, static_cast<float>(M_PI), 0x80FFFFFF), S_OK);
  const std::vector<fake::SpriteDrawRecord> draws = gpu->Draws();
  ASSERT_EQ(draws.size(), 2u);
  EXPECT_EQ(std::make_tuple(CRect(draws[0].source), CRect(draws[1].source), draws[1].color),
            std::make_tuple(CRect(2, 1, 4, 3), CRect(0, 1, 2, 3), 0x80FFFFFFu));
  // Half a turn about (4, 2): the left piece (0..4, 0..4) lands on the right.
  ExpectCorner(draws[0].quad.corners[0], 8, 4);
  ExpectCorner(draws[0].quad.corners[3], 4, 0);
  ExpectCorner(draws[1].quad.corners[0], 4, 4);
}

TEST_F(FakeDrawTest, PicturesThatCannotBeDrawnAsAskedFailWithoutDrawing) {
  tagTextureItem item;
  MakeItem(item, CSize(8, 8), {}, {});
  for (const CRect& inverted : {CRect(50, 0, 10, 20), CRect(0, 20, 10, 0)})  // mirrored, upside down
    EXPECT_EQ(core.DrawImage(&item, &inverted, nullptr, nullptr, 0, 0xFFFFFFFF), E_FAIL);
  EXPECT_TRUE(gpu->Draws().empty());

  const CRect flat(0, 0, 0, 20);  // zero width is accepted: nothing visible
  EXPECT_EQ(core.DrawImage(&item, &flat, nullptr, nullptr, 0, 0xFFFFFFFF), S_OK);

  item.nState = TEXTURE_STATE_DECODED;
  const CRect dest(0, 0, 8, 8);
  EXPECT_EQ(core.DrawImage(&item, &dest, nullptr, nullptr, 0, 0xFFFFFFFF), E_FAIL);
  item.nState = TEXTURE_STATE_READY_MEMORY;
  gpu->FailNext(fake::Call::SpriteDraw, D3DERR_INVALIDCALL);
  EXPECT_EQ(core.DrawImage(&item, &dest, nullptr, nullptr, 0, 0xFFFFFFFF), E_FAIL);
}
