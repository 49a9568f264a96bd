// The GPU font: text laid out by the text engine, drawn through the sprite
// batch from atlas pages uploaded as textures, checked by the ink it leaves.
// Where glyphs go within the rectangle is the text engine's (tests/text).

#include <karvelui/D3DMath.h>
#include <karvelui/WinConstants.h>
#include "support/GLTesting.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

struct TextWindow : GLWindow {
  RefPtr<ID3DXFont> font;

  void SetUp(int width, int height) {
    OpenForDrawing(width, height);
    ASSERT_EQ(D3DXCreateFontW(device.Get(), 16, 0, FW_NORMAL, 1, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                              DRAFT_QUALITY, 0, L"DejaVu Sans", font.Receive()),
              S_OK);
  }
  Frame DrawText(const wchar_t* text, RECT rect, DWORD format, DWORD colour = kWhite) {
    Clear(kBlack);
    sprite->Begin(D3DXSPRITE_ALPHABLEND);
    EXPECT_GT(font->DrawTextW(sprite.Get(), text, -1, &rect, format, colour), 0);
    sprite->End();
    return Read();
  }
};

}  // namespace

TEST(SpriteFont, DrawsInsideTheRectangleInTheColourAndFollowsTheSpriteTransform) {
  TextWindow w;
  w.SetUp(200, 60);
  const RECT rect(10, 10, 100, 40);
  const Frame red = w.DrawText(L"Label", rect, DT_SINGLELINE | DT_RIGHT, kRed);
  const CRect ink = red.InkBounds(kBlack);
  ASSERT_FALSE(ink.IsRectEmpty());
  EXPECT_TRUE((ink & rect) == ink && ink.right >= rect.right - 3);
  bool fullyCovered = false;
  for (DWORD p : red.pixels) {
    EXPECT_EQ(p & 0x0000FFFF, 0u) << std::hex << p;  // no green, no blue
    fullyCovered |= p == kRed;
  }
  EXPECT_TRUE(fullyCovered);

  const D3DXVECTOR2 shift{80, 5};
  D3DXMATRIX m;
  D3DXMatrixTransformation2D(&m, nullptr, 0, nullptr, nullptr, 0, &shift);
  w.sprite->SetTransform(&m);
  const CRect moved = w.DrawText(L"Label", rect, DT_SINGLELINE | DT_RIGHT, kRed).InkBounds(kBlack);
  EXPECT_EQ(moved, CRect(ink.left + 80, ink.top + 5, ink.right + 80, ink.bottom + 5));
}

TEST(SpriteFont, GlyphsAddedLaterInAFrameAreUploadedBeforeTheyAreDrawn) {
  TextWindow w;
  w.SetUp(200, 60);
  w.sprite->Begin(D3DXSPRITE_ALPHABLEND);
  RECT first(0, 0, 100, 30), second(100, 0, 200, 30);
  w.font->DrawTextW(w.sprite.Get(), L"abc", -1, &first, DT_SINGLELINE, kWhite);
  // Characters the atlas has not seen yet: the page changes mid-batch.
  w.font->DrawTextW(w.sprite.Get(), L"QZ#%@", -1, &second, DT_SINGLELINE, kWhite);
  w.sprite->End();
  const Frame frame = w.Read();
  EXPECT_FALSE(frame.InkBounds(kBlack, first).IsRectEmpty());
  // The same text again, its glyphs long uploaded, leaves the same ink.
  const Frame again = w.DrawText(L"QZ#%@", second, DT_SINGLELINE);
  ASSERT_FALSE(again.InkBounds(kBlack, second).IsRectEmpty());
  for (int y = second.top; y < second.bottom; ++y)
    for (int x = second.left; x < second.right; ++x) ASSERT_EQ(frame.At(x, y), again.At(x, y)) << x << "," << y;
}

TEST(SpriteFont, CalcRectReportsTheSizeAndWithoutABatchTheFontDrawsThroughItsOwn) {
  TextWindow w;
  w.SetUp(200, 60);
  RECT measured(30, 20, 30, 20);
  const int height = w.font->DrawTextW(nullptr, L"Summer 2024", -1, &measured, DT_SINGLELINE | DT_CALCRECT, kWhite);
  EXPECT_TRUE(height == measured.Height() && measured.TopLeft() == CPoint(30, 20));
  EXPECT_EQ(w.Read().InkBounds(kBlack), CRect());  // measuring draws nothing

  EXPECT_GT(w.font->DrawTextW(nullptr, L"Summer 2024", 6, &measured, DT_SINGLELINE, kWhite), 0);
  const CRect ink = w.Read().InkBounds(kBlack);
  ASSERT_FALSE(ink.IsRectEmpty());
  EXPECT_TRUE((ink & measured) == ink && ink.Width() < measured.Width() * 3 / 4);  // only the six characters counted
}
