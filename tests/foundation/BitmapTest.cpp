#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include <karvelui/Bitmap.h>
#include "platform/Paths.h"
#include "support/TempDir.h"

using namespace KarvelUI;
using KarvelTest::TempDir;

namespace {

void Put32(std::string& s, std::uint32_t v) {
  for (int i = 0; i < 4; ++i) s += static_cast<char>((v >> (8 * i)) & 0xFF);
}
void Put16(std::string& s, std::uint16_t v) {
  s += static_cast<char>(v & 0xFF);
  s += static_cast<char>(v >> 8);
}

// A BMP file: headers, optional palette, rows exactly as given (padded).
std::string Bmp(int width, int height, int bits, const std::vector<std::string>& rows,
                const std::string& palette = std::string(), std::uint32_t infoSize = 40) {
  std::string pixels;
  const size_t stride = ((static_cast<size_t>(width) * bits + 31) / 32) * 4;
  for (const std::string& row : rows) pixels += row + std::string(stride - row.size(), '\0');
  const std::uint32_t offset = 14 + 40 + static_cast<std::uint32_t>(palette.size());
  std::string file = "BM";
  Put32(file, offset + static_cast<std::uint32_t>(pixels.size()));
  Put32(file, 0);
  Put32(file, offset);
  Put32(file, infoSize);
  Put32(file, static_cast<std::uint32_t>(width));
  Put32(file, static_cast<std::uint32_t>(height));
  Put16(file, 1);
  Put16(file, static_cast<std::uint16_t>(bits));
  Put32(file, 0);  // uncompressed
  Put32(file, static_cast<std::uint32_t>(pixels.size()));
  Put32(file, 2835);
  Put32(file, 2835);
  Put32(file, static_cast<std::uint32_t>(palette.size() / 4));  // colours used
  Put32(file, 0);
  return file + palette + pixels;
}

std::string Bgr(std::uint8_t r, std::uint8_t g, std::uint8_t b) { return {char(b), char(g), char(r)}; }

CString Lib(const std::filesystem::path& p) { return FromNativePath(p.string()); }

std::vector<CRect> RectsOf(const HRGN& region) { return region ? region->Rects() : std::vector<CRect>{}; }

}  // namespace

TEST(LoadBitmapFromFile, BottomUpTopDownAndPalettedPixels) {
  TempDir dir;
  // 24-bit, bottom-up: the first stored row is the bottom one.
  const auto bgr = dir.Write("a.bmp", Bmp(2, 2, 24,
                                          {Bgr(255, 0, 0) + Bgr(0, 255, 0),       // bottom
                                           Bgr(0, 0, 255) + Bgr(16, 32, 48)}));  // top
  CBitmap bitmap;
  ASSERT_TRUE(LoadBitmapFromFile(&bitmap, Lib(bgr)));
  ASSERT_EQ(bitmap.GetWidth(), 2);
  ASSERT_EQ(bitmap.GetHeight(), 2);
  EXPECT_EQ(bitmap.GetPixel(0, 0), 0xFF0000FFu);
  EXPECT_EQ(bitmap.GetPixel(1, 0), 0xFF102030u);
  EXPECT_EQ(bitmap.GetPixel(0, 1), 0xFFFF0000u);
  EXPECT_EQ(bitmap.GetPixel(1, 1), 0xFF00FF00u);

  // 32-bit top-down (negative height).
  std::string row;
  Put32(row, 0x80112233);
  const auto top = dir.Write("b.bmp", Bmp(1, -1, 32, {row}));
  ASSERT_TRUE(LoadBitmapFromFile(&bitmap, Lib(top)));
  EXPECT_EQ(bitmap.GetWidth(), 1);
  EXPECT_EQ(bitmap.GetPixel(0, 0), 0x80112233u);

  // 4-bit paletted: two entries, pixels 1 0 1 in one row.
  std::string palette;
  Put32(palette, 0x00000000);
  Put32(palette, 0x00ABCDEF);
  const auto pal = dir.Write("c.bmp", Bmp(3, 1, 4, {std::string("\x10\x10", 2)}, palette));
  ASSERT_TRUE(LoadBitmapFromFile(&bitmap, Lib(pal)));
  EXPECT_EQ(bitmap.GetPixel(0, 0), 0xFFABCDEFu);
  EXPECT_EQ(bitmap.GetPixel(1, 0), 0xFF000000u);
  EXPECT_EQ(bitmap.GetPixel(2, 0), 0xFFABCDEFu);
}

TEST(LoadBitmapFromFile, DamagedFilesFailAndLeaveNoBitmap) {
  TempDir dir;
  const std::string good = Bmp(2, 1, 24, {Bgr(1, 2, 3) + Bgr(4, 5, 6)});
  std::string badMagic = good;
  badMagic[0] = 'X';
  std::string badSize = good;
  badSize[2] = static_cast<char>(badSize[2] + 1);
  // Pixel rows cut short, with the recorded size matching the cut file.
  std::string truncated = good.substr(0, good.size() - 4);
  std::string size;
  Put32(size, static_cast<std::uint32_t>(truncated.size()));
  truncated.replace(2, 4, size);
  const std::string coreHeader = Bmp(2, 1, 24, {Bgr(1, 2, 3) + Bgr(4, 5, 6)}, {}, 12);
  const std::string hugeHeader = Bmp(100000, 100000, 24, {});

  CBitmap bitmap(4, 4, 0xFFFFFFFF);
  for (const std::string& bytes : {badMagic, badSize, truncated, coreHeader, hugeHeader, std::string("BM")}) {
    EXPECT_FALSE(LoadBitmapFromFile(&bitmap, Lib(dir.Write("bad.bmp", bytes))));
    EXPECT_TRUE(bitmap.IsNull());
  }
  EXPECT_FALSE(LoadBitmapFromFile(&bitmap, Lib(dir.Path() / "missing.bmp")));
  EXPECT_FALSE(LoadBitmapFromFile(nullptr, Lib(dir.Write("good.bmp", good))));
  EXPECT_TRUE(LoadBitmapFromFile(&bitmap, Lib(dir.Path() / "good.bmp")));
}

TEST(BitmapToRegion, RunsOfNonKeyPixelsPerRow) {
  const DWORD key = 0xFFFF00FF;  // magenta, as a pixel
  const DWORD ink = 0xFF000000;
  CBitmap bitmap(6, 3, key);
  // row 0: . X X . X X   row 1: all key   row 2: X . . . . X
  for (int x : {1, 2, 4, 5}) bitmap.SetPixel(x, 0, ink);
  bitmap.SetPixel(0, 2, ink);
  bitmap.SetPixel(5, 2, 0x00000001);  // alpha is ignored; the colour differs from the key

  const HRGN region = BitmapToRegion(&bitmap, CRect(0, 0, 6, 3), RGB(255, 0, 255));
  ASSERT_NE(region, nullptr);
  EXPECT_EQ(RectsOf(region), (std::vector<CRect>{CRect(1, 0, 3, 1), CRect(4, 0, 6, 1), CRect(0, 2, 1, 3),
                                                 CRect(5, 2, 6, 3)}));
  EXPECT_TRUE(region->Contains(CPoint(2, 0)));
  EXPECT_FALSE(region->Contains(CPoint(3, 0)));

  // Only the part of rc inside the bitmap counts.
  const HRGN clipped = BitmapToRegion(&bitmap, CRect(2, -5, 5, 1), RGB(255, 0, 255));
  EXPECT_EQ(RectsOf(clipped), (std::vector<CRect>{CRect(2, 0, 3, 1), CRect(4, 0, 5, 1)}));

  // The key compares red, green and blue exactly: a blue key leaves magenta opaque.
  const HRGN blueKey = BitmapToRegion(&bitmap, CRect(0, 1, 6, 2), RGB(0, 0, 255));
  EXPECT_EQ(RectsOf(blueKey), (std::vector<CRect>{CRect(0, 1, 6, 2)}));
}

TEST(BitmapToRegion, AllKeyIsEmptyButMissingInputIsNull) {
  const CBitmap plain(3, 2, 0xFF00FF00);
  const HRGN empty = BitmapToRegion(&plain, CRect(0, 0, 3, 2), RGB(0, 255, 0));
  ASSERT_NE(empty, nullptr);
  EXPECT_TRUE(empty->IsEmpty());
  EXPECT_EQ(BitmapToRegion(nullptr, CRect(0, 0, 3, 2), 0), nullptr);
  EXPECT_EQ(BitmapToRegion(&plain, CRect(3, 0, 9, 2), 0), nullptr);
  const CBitmap none;
  EXPECT_EQ(BitmapToRegion(&none, CRect(0, 0, 3, 2), 0), nullptr);
}
