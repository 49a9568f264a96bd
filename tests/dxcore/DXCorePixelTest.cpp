// DXCore over the OpenGL backend in an off-screen window: what a frame
// leaves in the back buffer.

#include <cmath>

#include <karvelui/WinConstants.h>
#include "dxcore/GLCoreFixture.h"

using namespace KarvelUI;
using namespace KarvelTest;

TEST_F(GLCoreTest, WhiteDrawsATextureUnchangedAndOpacityHalvesFullAlpha) {
  RefPtr<IDirect3DTexture9> texture = Texture(4, 4, [](int x, int y) { return 0xFF000000u | x * 0x400000u | y * 0x40u; });
  const D3DXVECTOR3 first{0, 0, 0}, second{10, 0, 0};
  ASSERT_EQ(core.DrawImage(texture.Get(), nullptr, nullptr, &first, kWhite), S_OK);
  core.SetGlobalOpacity(0.5f);
  RefPtr<IDirect3DTexture9> white = Texture(4, 4, [](int, int) { return kWhite; });
  ASSERT_EQ(core.DrawImage(white.Get(), nullptr, nullptr, &second, kWhite), S_OK);
  const Frame frame = EndAndRead();
  EXPECT_EQ(frame.At(3, 2), 0xFFC00080u);
  EXPECT_EQ(frame.At(1, 3), 0xFF4000C0u);
  EXPECT_TRUE(ColorNear(frame.At(12, 2), 0xFF808080));  // alpha 255 x 0.5 -> 128
}

TEST_F(GLCoreTest, TransformScalesAboutItsCentreAndTurnsClockwiseAboutItsOwn) {
  RefPtr<IDirect3DTexture9> square = Texture(8, 8, [](int, int) { return kGreen; });
  RefPtr<IDirect3DTexture9> bar = Texture(8, 4, [](int x, int) { return x < 4 ? kRed : kGreen; });

  const D3DXVECTOR2 centre{24, 24}, twice{2, 2};
  ASSERT_EQ(core.SetTransform(&centre, &twice, nullptr, 0, nullptr), S_OK);
  const D3DXVECTOR3 at{20, 20, 0};
  ASSERT_EQ(core.DrawImage(square.Get(), nullptr, nullptr, &at, kWhite), S_OK);

  const D3DXVECTOR2 pivot{100, 40};
  ASSERT_EQ(core.SetTransform(nullptr, nullptr, &pivot, static_cast<float>(M_PI / 2), nullptr), S_OK);
  const D3DXVECTOR3 barAt{100, 40, 0};
  ASSERT_EQ(core.DrawImage(bar.Get(), nullptr, nullptr, &barAt, kWhite), S_OK);

  const Frame frame = EndAndRead();
  EXPECT_EQ(frame.InkBounds(kBlack, CRect(0, 0, 60, 100)), CRect(16, 16, 32, 32));
  // A quarter turn clockwise about (100, 40): the bar hangs down to the
  // left of the pivot, its left half on top.
  EXPECT_EQ(frame.InkBounds(kBlack, CRect(60, 0, 160, 100)), CRect(96, 40, 100, 48));
  EXPECT_EQ(frame.At(97, 41), kRed);
  EXPECT_EQ(frame.At(97, 46), kGreen);
}

TEST_F(GLCoreTest, TiledPictureAtTwiceItsSizeHasNoSeamsAndANegativeWidthDrawsNothing) {
  // A 10 x 6 picture in four tiles, each tile texture a power of two.
  tagTextureItem item;
  item.nState = TEXTURE_STATE_READY_MEMORY;
  item.TextureInfo.Width = 10;
  item.TextureInfo.Height = 6;
  item.nTileCols = 2;
  item.nTileRows = 2;
  item.pTiles = std::make_unique<TextureTile[]>(4);
  const CRect rects[] = {{0, 0, 8, 4}, {8, 0, 10, 4}, {0, 4, 8, 6}, {8, 4, 10, 6}};
  for (int i = 0; i < 4; ++i) {
    item.pTiles[i].rect = rects[i];
    item.pTiles[i].pTexture = Texture(8, 4, [](int, int) { return kWhite; });
  }

  const CRect mirrored(60, 10, 40, 22);
  EXPECT_EQ(core.DrawImage(&item, &mirrored, nullptr, nullptr, 0, kWhite), E_FAIL);
  const CRect dest(10, 10, 30, 22);
  ASSERT_EQ(core.DrawImage(&item, &dest, nullptr, nullptr, 0, kWhite), S_OK);
  const Frame frame = EndAndRead();
  EXPECT_EQ(frame.InkBounds(kBlack), dest);
  EXPECT_EQ(std::count(frame.pixels.begin(), frame.pixels.end(), kWhite), 20 * 12);
}

TEST_F(GLCoreTest, TextLandsInTheRectangleGivenTopFirst) {
  ASSERT_EQ(core.DrawTextW(L"Album", -1, 10, 20, 100, 30, 16, FW_NORMAL, 0, 0, L"DejaVu Sans",
                           DT_SINGLELINE | DT_VCENTER | DT_RIGHT, kWhite),
            S_OK);
  const Frame frame = EndAndRead();
  const CRect ink = frame.InkBounds(kBlack);
  ASSERT_FALSE(ink.IsRectEmpty());
  EXPECT_EQ(ink & CRect(20, 10, 120, 40), ink);
  EXPECT_GE(ink.right, 117);
}

TEST_F(GLCoreTest, TheFrameSurvivesAResizeAndTheNextFrameUsesTheNewSize) {
  ASSERT_EQ(core.EndPaint(), S_OK);
  wnd.MoveWindow(0, 0, 200, 120);
  ASSERT_EQ(core.ResetD3DSize({200, 120}), S_OK);
  ASSERT_EQ(core.BeginPaint(), S_OK);
  ASSERT_EQ(core.CleanScreen(kRed), S_OK);
  const Frame frame = EndAndRead();
  ASSERT_EQ(frame.size, CSize(200, 120));
  EXPECT_EQ(frame.At(199, 119), kRed);
}
