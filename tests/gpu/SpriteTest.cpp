// The OpenGL sprite batch: texel formats, the colour multiply and
// straight-alpha blending, placement, transforms and the painter's order of
// batched draws.

#include <cmath>
#include <tuple>

#include <karvelui/D3DMath.h>
#include "support/GLTesting.h"

using namespace KarvelUI;
using namespace KarvelTest;

TEST(Sprite, WhiteDrawsTexelsUnchangedInEveryFormat) {
  GLWindow w;
  w.OpenForDrawing(16, 8);
  // Distinct channels everywhere, so any swapped byte shows.
  auto texel = [](int x, int y) { return 0xFF000000u | (0x10u * x + 1) << 16 | (0x20u * y + 2) << 8 | 0x37u; };
  RefPtr<IDirect3DTexture9> argb = w.Texture(4, 2, texel);
  auto swapped = [&](int x, int y) {  // the same colours in R,G,B,A memory order
    return (texel(x, y) & 0xFF00FF00u) | (texel(x, y) & 0xFF) << 16 | (texel(x, y) >> 16 & 0xFF);
  };
  RefPtr<IDirect3DTexture9> abgr = w.Texture(4, 2, swapped, D3DFMT_A8B8G8R8);
  // An opaque format ignores its alpha byte.
  RefPtr<IDirect3DTexture9> xrgb = w.Texture(2, 2, [](int, int) { return 0x00FF0000u; }, D3DFMT_X8R8G8B8);
  w.sprite->Begin(D3DXSPRITE_ALPHABLEND);
  w.Draw(argb.Get(), 0, 0);
  w.Draw(abgr.Get(), 8, 4);
  w.Draw(xrgb.Get(), 12, 0);
  w.sprite->End();
  const Frame frame = w.Read();
  for (int y = 0; y < 2; ++y)
    for (int x = 0; x < 4; ++x) {
      EXPECT_EQ(frame.At(x, y), texel(x, y)) << x << "," << y;
      EXPECT_EQ(frame.At(8 + x, 4 + y), texel(x, y)) << x << "," << y;
    }
  EXPECT_EQ(std::make_tuple(frame.At(4, 0), frame.At(13, 1)), std::make_tuple(kBlack, kRed));
}

TEST(Sprite, ColourMultipliesEachChannelAndBlendsWithStraightAlphaOnlyWhenAsked) {
  GLWindow w;
  w.OpenForDrawing(10, 8, kBlue);
  RefPtr<IDirect3DTexture9> white = w.Solid(2, 2, kWhite);
  RefPtr<IDirect3DTexture9> halfRed = w.Solid(2, 2, 0x80FF0000);
  RefPtr<IDirect3DTexture9> tinted = w.Solid(2, 2, 0xFF8080FF);
  w.sprite->Begin(D3DXSPRITE_ALPHABLEND);
  w.Draw(white.Get(), 0, 0, 0x80FF8000);    // tint and fade by the colour
  w.Draw(halfRed.Get(), 2, 0, kWhite);      // fade by the texel
  w.Draw(halfRed.Get(), 4, 0, 0x80FFFFFF);  // both: a = 0.5 * 0.5
  w.Draw(tinted.Get(), 6, 0, 0xFF80FF00);   // per channel: r 0x80*0x80, g 0x80, b 0
  w.sprite->End();
  w.sprite->Begin(0);  // without blending the coloured texels replace the back buffer
  w.Draw(halfRed.Get(), 8, 0, 0xFFFFFF00);
  w.sprite->End();
  const Frame frame = w.Read();
  const std::tuple<int, int, DWORD, DWORD> expected[] = {  // x, y, alpha forced, colour
      {0, 0, 0xFF000000, 0xFF80407F}, {2, 0, 0xFF000000, 0xFF80007F}, {4, 0, 0xFF000000, 0xFF4000BF},
      {6, 0, 0, 0xFF408000}, {9, 1, 0, 0x80FF0000}};
  for (const auto& [x, y, alpha, colour] : expected) EXPECT_TRUE(ColorNear(frame.At(x, y) | alpha, colour)) << x;
}

TEST(Sprite, SourceCentreAndPositionPlaceTheTexels) {
  GLWindow w;
  w.OpenForDrawing(32, 32);
  RefPtr<IDirect3DTexture9> texture =
      w.Texture(8, 8, [](int x, int y) { return x >= 2 && x < 6 && y >= 2 && y < 6 ? kRed : kGreen; });
  const RECT inner(2, 2, 6, 6);
  const D3DXVECTOR3 center{2, 2, 0};
  w.sprite->Begin(D3DXSPRITE_ALPHABLEND);
  w.Draw(texture.Get(), 10, 10, kWhite, &inner, &center);  // the red square, centred on (10, 10)
  w.sprite->End();
  const Frame frame = w.Read();
  EXPECT_EQ(frame.InkBounds(kBlack), CRect(8, 8, 12, 12));
  EXPECT_EQ(frame.InkBounds(kRed, CRect(8, 8, 12, 12)), CRect());
}

TEST(Sprite, TransformScalesAboutItsCentreAndTurnsClockwise) {
  GLWindow w;
  w.OpenForDrawing(40, 40);
  RefPtr<IDirect3DTexture9> texture = w.Texture(4, 2, [](int x, int) { return x < 2 ? kRed : kGreen; });
  w.sprite->Begin(D3DXSPRITE_ALPHABLEND);
  const D3DXVECTOR2 scaleCentre{4, 4}, twice{2, 2}, turnCentre{30, 20};
  D3DXMATRIX m;
  D3DXMatrixTransformation2D(&m, &scaleCentre, 0, &twice, nullptr, 0, nullptr);
  w.sprite->SetTransform(&m);
  w.Draw(texture.Get(), 4, 4);  // (4..8, 4..6) doubled about (4, 4): (4..12, 4..8)
  D3DXMatrixTransformation2D(&m, nullptr, 0, nullptr, &turnCentre, static_cast<float>(M_PI / 2), nullptr);
  w.sprite->SetTransform(&m);
  w.Draw(texture.Get(), 30, 20);  // a quarter turn clockwise: left edge on top
  w.sprite->End();

  const Frame frame = w.Read();
  EXPECT_EQ(frame.InkBounds(kBlack, CRect(0, 0, 20, 20)), CRect(4, 4, 12, 8));
  EXPECT_EQ(frame.InkBounds(kBlack, CRect(20, 10, 40, 40)), CRect(28, 20, 30, 24));
  // Away from the red/green seam, which filtering blends.
  EXPECT_EQ((std::vector{frame.At(5, 7), frame.At(10, 4), frame.At(28, 20), frame.At(29, 23)}),
            (std::vector{kRed, kGreen, kRed, kGreen}));
}

TEST(Sprite, BatchedDrawsKeepThePaintersOrderAcrossTexturesAndClears) {
  GLWindow w;
  w.OpenForDrawing(30, 4);
  RefPtr<IDirect3DTexture9> red = w.Solid(10, 4, kRed);
  RefPtr<IDirect3DTexture9> green = w.Solid(10, 4, kGreen);
  w.sprite->Begin(D3DXSPRITE_ALPHABLEND);
  w.Draw(red.Get(), 0, 0);
  w.Draw(green.Get(), 5, 0);
  w.Draw(red.Get(), 10, 0);
  // A clear in the middle of a batch comes after what was drawn before it.
  const D3DRECT corner{29, 3, 30, 4};
  w.device->Clear(1, &corner, D3DCLEAR_TARGET, kBlue, 1.0f, 0);
  w.sprite->End();
  const Frame frame = w.Read();
  const std::pair<int, DWORD> expected[] = {{4, kRed}, {7, kGreen}, {12, kRed}, {19, kRed}, {22, kBlack}};
  for (const auto& [x, colour] : expected) EXPECT_EQ(frame.At(x, 0), colour) << x;
  EXPECT_EQ(frame.At(29, 3), kBlue);
}

TEST(Sprite, ThousandsOfQuadsInOneBatchAllLand) {
  GLWindow w;
  w.OpenForDrawing(64, 50);
  RefPtr<IDirect3DTexture9> dot = w.Solid(1, 1, kGreen);
  w.sprite->Begin(D3DXSPRITE_ALPHABLEND);
  for (int y = 0; y < 50; ++y)
    for (int x = 0; x < 64; ++x) w.Draw(dot.Get(), static_cast<float>(x), static_cast<float>(y));
  w.sprite->End();
  EXPECT_EQ(w.Read().InkBounds(kGreen), CRect());
}

TEST(Sprite, RefusesDrawsOutsideABatchAndForeignTextures) {
  GLWindow w, other;
  w.OpenForDrawing(8, 8);
  ASSERT_EQ(other.Open(8, 8), S_OK);
  RefPtr<IDirect3DTexture9> mine = w.Solid(2, 2, kRed);
  RefPtr<IDirect3DTexture9> foreign = other.Solid(2, 2, kRed);
  const D3DXVECTOR3 at{};
  EXPECT_EQ((std::vector{w.sprite->Draw(mine.Get(), nullptr, nullptr, &at, kWhite), w.sprite->End()}),
            std::vector<HRESULT>(2, D3DERR_INVALIDCALL));
  ASSERT_EQ(w.sprite->Begin(D3DXSPRITE_ALPHABLEND), S_OK);
  EXPECT_EQ((std::vector{w.sprite->Begin(D3DXSPRITE_ALPHABLEND), w.sprite->Draw(nullptr, nullptr, nullptr, &at, kWhite),
                         w.sprite->Draw(foreign.Get(), nullptr, nullptr, &at, kWhite)}),
            std::vector<HRESULT>(3, D3DERR_INVALIDCALL));
  EXPECT_EQ(w.sprite->End(), S_OK);
  EXPECT_EQ(w.Read().InkBounds(kBlack), CRect());
}
