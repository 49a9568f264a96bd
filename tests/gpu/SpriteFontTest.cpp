// The GPU font: text laid out by the text engine, drawn through the sprite
// batch from atlas pages uploaded as textures, checked by the ink it leaves.

#include <algorithm>

#include <karvelui/WinConstants.h>
#include "gpu/GpuTestSupport.h"
#include <karvelui/D3DMath.h>

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

constexpr DWORD kBlack = 0xFF000000, kWhite = 0xFFFFFFFF;

struct TextWindow : GLWindow {
  RefPtr<ID3DXSprite> sprite;
  RefPtr<ID3DXFont> font;

  void SetUp(int width, int height, int fontHeight = 16) {
    ASSERT_EQ(Open(width, height), S_OK);
    ASSERT_EQ(D3DXCreateSprite(device.Get(), sprite.Receive()), S_OK);
    ASSERT_EQ(D3DXCreateFontW(device.Get(), fontHeight, 0, FW_NORMAL, 1, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                              DRAFT_QUALITY, 0, L"DejaVu Sans", font.Receive()),
              S_OK);
  }
  // Draws one text on black and returns the frame.
  Frame Draw(const wchar_t* text, RECT rect, DWORD format, DWORD color = kWhite) {
    device->Clear(0, nullptr, D3DCLEAR_TARGET, kBlack, 1.0f, 0);
    sprite->Begin(D3DXSPRITE_ALPHABLEND);
    EXPECT_GT(font->DrawTextW(sprite.Get(), text, -1, &rect, format, color), 0);
    sprite->End();
    return ReadBack(device.Get());
  }
};

// Runs of columns holding ink, left to right, within `area`.
std::vector<CRect> InkColumns(const Frame& frame, const CRect& area) {
  std::vector<CRect> runs;
  bool inRun = false;
  for (int x = area.left; x < area.right; ++x) {
    const CRect column = frame.InkBounds(kBlack, CRect(x, area.top, x + 1, area.bottom));
    if (column.IsRectEmpty()) {
      inRun = false;
    } else if (inRun) {
      runs.back() = runs.back() | column;
    } else {
      runs.push_back(column);
      inRun = true;
    }
  }
  return runs;
}

}  // namespace

TEST(SpriteFont, AlignsSingleLinesInsideTheRectangle) {
  TextWindow w;
  w.SetUp(200, 80);
  const RECT rect(20, 10, 180, 60);
  const UINT line = DT_SINGLELINE | DT_VCENTER;

  const CRect left = w.Draw(L"Photo", rect, line | DT_LEFT).InkBounds(kBlack);
  const CRect center = w.Draw(L"Photo", rect, line | DT_CENTER).InkBounds(kBlack);
  const CRect right = w.Draw(L"Photo", rect, line | DT_RIGHT).InkBounds(kBlack);
  const CRect bottom = w.Draw(L"Photo", rect, DT_SINGLELINE | DT_BOTTOM).InkBounds(kBlack);
  const CRect top = w.Draw(L"Photo", rect, DT_TOP).InkBounds(kBlack);
  for (const CRect& ink : {left, center, right, bottom, top}) {
    ASSERT_FALSE(ink.IsRectEmpty());
    EXPECT_EQ(ink & rect, ink) << "ink outside the rectangle";
    EXPECT_EQ(ink.Width(), left.Width());
  }
  EXPECT_LE(left.left, rect.left + 3);
  EXPECT_GE(right.right, rect.right - 3);
  EXPECT_NEAR((center.left + center.right) / 2.0, (rect.left + rect.right) / 2.0, 2.0);
  EXPECT_NEAR((left.top + left.bottom) / 2.0, (rect.top + rect.bottom) / 2.0, 4.0);
  EXPECT_GE(bottom.bottom, rect.bottom - 5);
  EXPECT_LE(top.top, rect.top + 5);
}

TEST(SpriteFont, WrapsAtWordsAndEndsCutLinesWithAnEllipsis) {
  TextWindow w;
  w.SetUp(240, 120);
  const wchar_t* text = L"holiday photos from the coast";
  const CRect oneLine = w.Draw(text, RECT(10, 10, 90, 110), DT_SINGLELINE | DT_NOCLIP).InkBounds(kBlack);
  const CRect wrapped = w.Draw(text, RECT(10, 10, 90, 110), DT_WORDBREAK).InkBounds(kBlack);
  EXPECT_GT(oneLine.right, 90);  // too wide for the rectangle on one line
  EXPECT_LE(wrapped.right, 90);
  EXPECT_GT(wrapped.Height(), 2 * 16);  // three or more lines

  const RECT narrow(10, 10, 90, 40);
  const Frame cut = w.Draw(text, narrow, DT_SINGLELINE | DT_END_ELLIPSIS);
  const CRect ink = cut.InkBounds(kBlack);
  EXPECT_EQ(ink & narrow, ink);
  // The line ends with three dots: three small marks low on the line.
  const std::vector<CRect> marks = InkColumns(cut, narrow);
  ASSERT_GE(marks.size(), 4u);
  for (size_t i = marks.size() - 3; i < marks.size(); ++i) {
    EXPECT_LE(marks[i].Width(), 3) << i;
    EXPECT_LE(marks[i].Height(), 3) << i;
    EXPECT_GT(marks[i].top, (ink.top + ink.bottom) / 2) << i;
  }
}

TEST(SpriteFont, CalcRectReportsTheSizeItDraws) {
  TextWindow w;
  w.SetUp(200, 60);
  RECT measured(30, 20, 30, 20);
  const int height = w.font->DrawTextW(nullptr, L"Summer 2024", -1, &measured, DT_SINGLELINE | DT_CALCRECT, kWhite);
  EXPECT_EQ(height, measured.Height());
  EXPECT_EQ(measured.TopLeft(), CPoint(30, 20));
  EXPECT_GT(measured.Width(), 40);

  const CRect ink = w.Draw(L"Summer 2024", measured, DT_SINGLELINE).InkBounds(kBlack);
  EXPECT_EQ(ink & measured, ink);
  EXPECT_GE(ink.Width(), measured.Width() - 3);
  EXPECT_GE(ink.Height(), measured.Height() / 2);
}

TEST(SpriteFont, DrawsInTheColourAndFollowsTheSpriteTransform) {
  TextWindow w;
  w.SetUp(200, 60, 20);
  const Frame red = w.Draw(L"Label", RECT(10, 10, 100, 40), DT_SINGLELINE, 0xFFFF0000);
  const CRect ink = red.InkBounds(kBlack);
  ASSERT_FALSE(ink.IsRectEmpty());
  bool fullyCovered = false;
  for (DWORD p : red.pixels) {
    if (p == kBlack) continue;
    EXPECT_EQ(p & 0x0000FFFF, 0u) << std::hex << p;  // no green, no blue
    fullyCovered |= p == 0xFFFF0000;
  }
  EXPECT_TRUE(fullyCovered);

  const D3DXVECTOR2 shift{80, 5};
  D3DXMATRIX m;
  D3DXMatrixTransformation2D(&m, nullptr, 0, nullptr, nullptr, 0, &shift);
  w.sprite->SetTransform(&m);
  const CRect moved = w.Draw(L"Label", RECT(10, 10, 100, 40), DT_SINGLELINE, 0xFFFF0000).InkBounds(kBlack);
  EXPECT_EQ(moved, CRect(ink.left + 80, ink.top + 5, ink.right + 80, ink.bottom + 5));
}

TEST(SpriteFont, GlyphsAddedLaterInAFrameAreUploadedBeforeTheyAreDrawn) {
  TextWindow w;
  w.SetUp(200, 60);
  w.device->Clear(0, nullptr, D3DCLEAR_TARGET, kBlack, 1.0f, 0);
  w.sprite->Begin(D3DXSPRITE_ALPHABLEND);
  RECT first(0, 0, 100, 30), second(100, 0, 200, 30);
  w.font->DrawTextW(w.sprite.Get(), L"abc", -1, &first, DT_SINGLELINE, kWhite);
  // Characters the atlas has not seen yet: the page changes mid-batch.
  w.font->DrawTextW(w.sprite.Get(), L"QZ#%@", -1, &second, DT_SINGLELINE, kWhite);
  w.sprite->End();
  const Frame frame = ReadBack(w.device.Get());
  EXPECT_FALSE(frame.InkBounds(kBlack, first).IsRectEmpty());

  // The same text again, its glyphs long uploaded, leaves the same ink.
  const Frame again = w.Draw(L"QZ#%@", second, DT_SINGLELINE);
  ASSERT_FALSE(again.InkBounds(kBlack, second).IsRectEmpty());
  for (int y = second.top; y < second.bottom; ++y)
    for (int x = second.left; x < second.right; ++x) ASSERT_EQ(frame.At(x, y), again.At(x, y)) << x << "," << y;
}

TEST(SpriteFont, DrawsWithABatchOfItsOwnWhenGivenNone) {
  TextWindow w;
  w.SetUp(120, 40);
  w.device->Clear(0, nullptr, D3DCLEAR_TARGET, kBlack, 1.0f, 0);
  RECT rect(0, 0, 120, 40);
  EXPECT_GT(w.font->DrawTextW(nullptr, L"Hello", 5, &rect, DT_SINGLELINE, kWhite), 0);
  EXPECT_FALSE(ReadBack(w.device.Get()).InkBounds(kBlack).IsRectEmpty());
}
