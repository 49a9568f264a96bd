// The OpenGL sprite batch: texel colours and byte orders, the colour
// multiply and straight-alpha blending, placement, transforms and the
// painter's order of batched draws.

#include <cmath>

#include "gpu/GpuTestSupport.h"
#include <karvelui/D3DMath.h>

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

constexpr DWORD kRed = 0xFFFF0000, kGreen = 0xFF00FF00, kBlue = 0xFF0000FF, kBlack = 0xFF000000;

struct SpriteWindow : GLWindow {
  RefPtr<ID3DXSprite> sprite;
  void SetUp(int width, int height, DWORD background = kBlack) {
    ASSERT_EQ(Open(width, height), S_OK);
    ASSERT_EQ(D3DXCreateSprite(device.Get(), sprite.Receive()), S_OK);
    device->Clear(0, nullptr, D3DCLEAR_TARGET, background, 1.0f, 0);
  }
  void Draw(IDirect3DTexture9* texture, float x, float y, DWORD color = 0xFFFFFFFF, const RECT* source = nullptr,
            const D3DXVECTOR3* center = nullptr) {
    const D3DXVECTOR3 at{x, y, 0};
    EXPECT_EQ(sprite->Draw(texture, source, center, &at, color), S_OK);
  }
};

}  // namespace

TEST(Sprite, WhiteDrawsTexelsUnchangedInBothByteOrders) {
  SpriteWindow w;
  w.SetUp(16, 8);
  // Distinct channels everywhere, so any swapped byte shows.
  auto texel = [](int x, int y) { return 0xFF000000u | (0x10u * x + 1) << 16 | (0x20u * y + 2) << 8 | 0x37u; };
  RefPtr<IDirect3DTexture9> argb = MakeTexture(w.device.Get(), 4, 2, texel);
  // The same colours in R,G,B,A memory order.
  RefPtr<IDirect3DTexture9> abgr = MakeTexture(
      w.device.Get(), 4, 2,
      [&](int x, int y) {
        const DWORD c = texel(x, y);
        return (c & 0xFF00FF00u) | (c & 0xFF) << 16 | (c >> 16 & 0xFF);
      },
      D3DFMT_A8B8G8R8);
  ASSERT_TRUE(argb && abgr);

  w.sprite->Begin(D3DXSPRITE_ALPHABLEND);
  w.Draw(argb.Get(), 0, 0);
  w.Draw(abgr.Get(), 8, 4);
  w.sprite->End();
  const Frame frame = ReadBack(w.device.Get());
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 4; ++x) {
      EXPECT_EQ(frame.At(x, y), texel(x, y)) << x << "," << y;
      EXPECT_EQ(frame.At(8 + x, 4 + y), texel(x, y)) << x << "," << y;
    }
  }
  EXPECT_EQ(frame.At(4, 0), kBlack);
}

TEST(Sprite, ColourMultipliesEachChannelAndBlendsWithStraightAlpha) {
  SpriteWindow w;
  w.SetUp(8, 8, kBlue);
  RefPtr<IDirect3DTexture9> white = SolidTexture(w.device.Get(), 2, 2, 0xFFFFFFFF);
  RefPtr<IDirect3DTexture9> halfRed = SolidTexture(w.device.Get(), 2, 2, 0x80FF0000);
  RefPtr<IDirect3DTexture9> tinted = SolidTexture(w.device.Get(), 2, 2, 0xFF8080FF);
  w.sprite->Begin(D3DXSPRITE_ALPHABLEND);
  w.Draw(white.Get(), 0, 0, 0x80FF8000);    // tint and fade by the colour
  w.Draw(halfRed.Get(), 2, 0, 0xFFFFFFFF);  // fade by the texel
  w.Draw(halfRed.Get(), 4, 0, 0x80FFFFFF);  // both: a = 0.5 * 0.5
  w.Draw(tinted.Get(), 6, 0, 0xFF80FF00);   // per channel: r 0x80*0x80, g 0x80, b 0
  w.sprite->End();
  const Frame frame = ReadBack(w.device.Get());
  EXPECT_TRUE(ColorNear(frame.At(0, 0) | 0xFF000000, 0xFF80407F));
  EXPECT_TRUE(ColorNear(frame.At(2, 0) | 0xFF000000, 0xFF80007F));
  EXPECT_TRUE(ColorNear(frame.At(4, 0) | 0xFF000000, 0xFF4000BF));
  EXPECT_TRUE(ColorNear(frame.At(6, 0), 0xFF408000));
}

TEST(Sprite, WithoutBlendingTheColouredTexelsReplaceTheBackBuffer) {
  SpriteWindow w;
  w.SetUp(4, 4, kBlue);
  RefPtr<IDirect3DTexture9> halfRed = SolidTexture(w.device.Get(), 2, 2, 0x80FF2000);
  w.sprite->Begin(0);
  w.Draw(halfRed.Get(), 0, 0);
  w.sprite->End();
  EXPECT_TRUE(ColorNear(ReadBack(w.device.Get()).At(1, 1), 0x80FF2000));
}

TEST(Sprite, OpaqueFormatsIgnoreTheirAlphaByte) {
  SpriteWindow w;
  w.SetUp(4, 4, kBlue);
  RefPtr<IDirect3DTexture9> texture =
      MakeTexture(w.device.Get(), 2, 2, [](int, int) { return 0x00FF0000u; }, D3DFMT_X8R8G8B8);
  w.sprite->Begin(D3DXSPRITE_ALPHABLEND);
  w.Draw(texture.Get(), 0, 0);
  w.sprite->End();
  EXPECT_EQ(ReadBack(w.device.Get()).At(0, 0), kRed);
}

TEST(Sprite, SourceCentreAndPositionPlaceTheTexels) {
  SpriteWindow w;
  w.SetUp(32, 32);
  RefPtr<IDirect3DTexture9> texture =
      MakeTexture(w.device.Get(), 8, 8, [](int x, int y) { return x >= 2 && x < 6 && y >= 2 && y < 6 ? kRed : kGreen; });
  const RECT inner(2, 2, 6, 6);
  const D3DXVECTOR3 center{2, 2, 0};
  w.sprite->Begin(D3DXSPRITE_ALPHABLEND);
  w.Draw(texture.Get(), 10, 10, 0xFFFFFFFF, &inner, &center);  // the red square, centred on (10, 10)
  w.sprite->End();
  const Frame frame = ReadBack(w.device.Get());
  EXPECT_EQ(frame.InkBounds(kBlack), CRect(8, 8, 12, 12));
  EXPECT_EQ(frame.At(8, 8), kRed);
  EXPECT_EQ(frame.At(11, 11), kRed);
}

TEST(Sprite, TransformScalesAboutItsCentreAndTurnsClockwise) {
  SpriteWindow w;
  w.SetUp(40, 40);
  // Left half red, right half green.
  RefPtr<IDirect3DTexture9> texture =
      MakeTexture(w.device.Get(), 4, 2, [](int x, int) { return x < 2 ? kRed : kGreen; });
  w.sprite->Begin(D3DXSPRITE_ALPHABLEND);

  const D3DXVECTOR2 scaleCentre{4, 4}, twice{2, 2};
  D3DXMATRIX m;
  D3DXMatrixTransformation2D(&m, &scaleCentre, 0, &twice, nullptr, 0, nullptr);
  w.sprite->SetTransform(&m);
  w.Draw(texture.Get(), 4, 4);  // (4..8, 4..6) doubled about (4, 4): (4..12, 4..8)

  const D3DXVECTOR2 turnCentre{30, 20};
  D3DXMatrixTransformation2D(&m, nullptr, 0, nullptr, &turnCentre, static_cast<float>(M_PI / 2), nullptr);
  w.sprite->SetTransform(&m);
  w.Draw(texture.Get(), 30, 20);  // a quarter turn clockwise: left edge on top
  w.sprite->End();

  const Frame frame = ReadBack(w.device.Get());
  EXPECT_EQ(frame.InkBounds(kBlack, CRect(0, 0, 20, 20)), CRect(4, 4, 12, 8));
  EXPECT_EQ(frame.At(5, 7), kRed);  // away from the red/green seam, which filtering blends
  EXPECT_EQ(frame.At(10, 4), kGreen);
  EXPECT_EQ(frame.InkBounds(kBlack, CRect(20, 10, 40, 40)), CRect(28, 20, 30, 24));
  EXPECT_EQ(frame.At(28, 20), kRed);
  EXPECT_EQ(frame.At(29, 23), kGreen);
}

TEST(Sprite, BatchedDrawsKeepThePaintersOrderAcrossTextures) {
  SpriteWindow w;
  w.SetUp(30, 4);
  RefPtr<IDirect3DTexture9> red = SolidTexture(w.device.Get(), 10, 4, kRed);
  RefPtr<IDirect3DTexture9> green = SolidTexture(w.device.Get(), 10, 4, kGreen);
  w.sprite->Begin(D3DXSPRITE_ALPHABLEND);
  w.Draw(red.Get(), 0, 0);
  w.Draw(green.Get(), 5, 0);
  w.Draw(red.Get(), 10, 0);
  // A clear in the middle of a batch comes after what was drawn before it.
  const D3DRECT corner{29, 3, 30, 4};
  w.device->Clear(1, &corner, D3DCLEAR_TARGET, kBlue, 1.0f, 0);
  w.sprite->End();
  const Frame frame = ReadBack(w.device.Get());
  EXPECT_EQ(frame.At(4, 0), kRed);
  EXPECT_EQ(frame.At(7, 0), kGreen);
  EXPECT_EQ(frame.At(12, 0), kRed);
  EXPECT_EQ(frame.At(19, 0), kRed);
  EXPECT_EQ(frame.At(22, 0), kBlack);
  EXPECT_EQ(frame.At(29, 3), kBlue);
}

TEST(Sprite, ThousandsOfQuadsInOneBatchAllLand) {
  SpriteWindow w;
  w.SetUp(64, 50);
  RefPtr<IDirect3DTexture9> dot = SolidTexture(w.device.Get(), 1, 1, kGreen);
  w.sprite->Begin(D3DXSPRITE_ALPHABLEND);
  for (int y = 0; y < 50; ++y)
    for (int x = 0; x < 64; ++x) w.Draw(dot.Get(), static_cast<float>(x), static_cast<float>(y));
  w.sprite->End();
  const Frame frame = ReadBack(w.device.Get());
  EXPECT_EQ(std::count(frame.pixels.begin(), frame.pixels.end(), kGreen), 64 * 50);
}

TEST(Sprite, RefusesDrawsOutsideABatchAndForeignTextures) {
  SpriteWindow w;
  w.SetUp(8, 8);
  GLWindow other;
  ASSERT_EQ(other.Open(8, 8), S_OK);
  RefPtr<IDirect3DTexture9> mine = SolidTexture(w.device.Get(), 2, 2, kRed);
  RefPtr<IDirect3DTexture9> foreign = SolidTexture(other.device.Get(), 2, 2, kRed);
  const D3DXVECTOR3 at{};
  EXPECT_EQ(w.sprite->Draw(mine.Get(), nullptr, nullptr, &at, 0xFFFFFFFF), D3DERR_INVALIDCALL);
  EXPECT_EQ(w.sprite->End(), D3DERR_INVALIDCALL);
  ASSERT_EQ(w.sprite->Begin(D3DXSPRITE_ALPHABLEND), S_OK);
  EXPECT_EQ(w.sprite->Begin(D3DXSPRITE_ALPHABLEND), D3DERR_INVALIDCALL);
  EXPECT_EQ(w.sprite->Draw(nullptr, nullptr, nullptr, &at, 0xFFFFFFFF), D3DERR_INVALIDCALL);
  EXPECT_EQ(w.sprite->Draw(foreign.Get(), nullptr, nullptr, &at, 0xFFFFFFFF), D3DERR_INVALIDCALL);
  EXPECT_EQ(w.sprite->End(), S_OK);
  EXPECT_EQ(ReadBack(w.device.Get()).InkBounds(kBlack), CRect());
}
