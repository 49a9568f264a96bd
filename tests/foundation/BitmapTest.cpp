// BMP files into bitmaps (damaged ones fail), and bitmaps into window regions.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include <karvelui/Bitmap.h>
#include "platform/Paths.h"
#include "support/PictureFiles.h"
#include "support/TempDir.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

// A BMP file: headers, optional palette, rows exactly as given (padded).
std::string Bmp(int width, int height, int bits, const std::vector<std::string>& rows,
                const std::string& palette = std::string(), unsigned infoSize = 40) {
  std::string pixels;
  const size_t stride = ((static_cast<size_t>(width) * bits + 31) / 32) * 4;
  for (const std::string& row : rows) pixels += row + std::string(stride - row.size(), '\0');
  const unsigned offset = 14 + 40 + static_cast<unsigned>(palette.size());
  std::string file(54, '\0');
  file[0] = 'B', file[1] = 'M';
  const std::pair<size_t, unsigned> fields[] = {
      {2, offset + static_cast<unsigned>(pixels.size())}, {10, offset}, {14, infoSize},
      {18, static_cast<unsigned>(width)}, {22, static_cast<unsigned>(height)}, {34, static_cast<unsigned>(pixels.size())},
      {38, 2835}, {42, 2835}, {46, static_cast<unsigned>(palette.size() / 4)}};  // the last: colours used
  for (const auto& [at, value] : fields) PutLE32(file, at, value);
  PutLE16(file, 26, 1);
  PutLE16(file, 28, static_cast<unsigned>(bits));
  return file + palette + pixels;
}

std::string Bgr(std::uint8_t r, std::uint8_t g, std::uint8_t b) { return {char(b), char(g), char(r)}; }

CString Lib(const std::filesystem::path& p) { return FromNativePath(p.string()); }

std::vector<CRect> RectsOf(const HRGN& region) { return region ? region->Rects() : std::vector<CRect>{}; }

}  // namespace

TEST(LoadBitmapFromFile, BottomUpTopDownAndPalettedPixels) {
  TempDir dir;
  const struct {
    std::string file;
    std::vector<std::pair<CPoint, DWORD>> pixels;
  } cases[] = {
      // 24-bit, bottom-up: the first stored row is the bottom one.
      {Bmp(2, 2, 24, {Bgr(255, 0, 0) + Bgr(0, 255, 0), Bgr(0, 0, 255) + Bgr(16, 32, 48)}),
       {{{0, 0}, 0xFF0000FF}, {{1, 0}, 0xFF102030}, {{0, 1}, 0xFFFF0000}, {{1, 1}, 0xFF00FF00}}},
      // 32-bit top-down (negative height) keeps its alpha.
      {Bmp(1, -1, 32, {std::string("\x33\x22\x11\x80", 4)}), {{{0, 0}, 0x80112233}}},
      // 4-bit paletted: pixels 1 0 1 in one row.
      {Bmp(3, 1, 4, {std::string("\x10\x10", 2)}, std::string("\0\0\0\0\xEF\xCD\xAB\0", 8)),
       {{{0, 0}, 0xFFABCDEF}, {{1, 0}, 0xFF000000}, {{2, 0}, 0xFFABCDEF}}},
  };
  for (const auto& c : cases) {
    CBitmap bitmap;
    ASSERT_TRUE(LoadBitmapFromFile(&bitmap, Lib(dir.Write("a.bmp", c.file))));
    for (const auto& [at, colour] : c.pixels) EXPECT_EQ(bitmap.GetPixel(at.x, at.y), colour) << at.x << "," << at.y;
  }
}

TEST(LoadBitmapFromFile, DamagedFilesFailAndLeaveNoBitmap) {
  TempDir dir;
  const std::string good = Bmp(2, 1, 24, {Bgr(1, 2, 3) + Bgr(4, 5, 6)});
  std::string badMagic = good, badSize = good;
  badMagic[0] = 'X';
  badSize[2] = static_cast<char>(badSize[2] + 1);
  std::string truncated = good.substr(0, good.size() - 4);  // rows cut short, the recorded size matching
  PutLE32(truncated, 2, static_cast<unsigned>(truncated.size()));
  CBitmap bitmap(4, 4, 0xFFFFFFFF);
  for (const std::string& bytes : {badMagic, badSize, truncated, Bmp(2, 1, 24, {Bgr(1, 2, 3) + Bgr(4, 5, 6)}, {}, 12),
                                   Bmp(100000, 100000, 24, {}), std::string("BM")}) {
    EXPECT_FALSE(LoadBitmapFromFile(&bitmap, Lib(dir.Write("bad.bmp", bytes))));
    EXPECT_TRUE(bitmap.IsNull());
  }
  EXPECT_FALSE(LoadBitmapFromFile(&bitmap, Lib(dir.Path() / "missing.bmp")));
  EXPECT_FALSE(LoadBitmapFromFile(nullptr, Lib(dir.Write("good.bmp", good))));
  EXPECT_TRUE(LoadBitmapFromFile(&bitmap, Lib(dir.Path() / "good.bmp")));
}

TEST(BitmapToRegion, RunsOfNonKeyPixelsPerRowWithinTheRectangle) {
  const DWORD key = 0xFFFF00FF;  // magenta, as a pixel
  CBitmap bitmap(6, 3, key);
  // row 0: . X X . X X   row 1: all key   row 2: X . . . . X
  for (int x : {1, 2, 4, 5}) bitmap.SetPixel(x, 0, 0xFF000000);
  bitmap.SetPixel(0, 2, 0xFF000000);
  bitmap.SetPixel(5, 2, 0x00000001);  // alpha is ignored; the colour differs from the key
  EXPECT_EQ(RectsOf(BitmapToRegion(&bitmap, CRect(0, 0, 6, 3), RGB(255, 0, 255))),
            (std::vector<CRect>{CRect(1, 0, 3, 1), CRect(4, 0, 6, 1), CRect(0, 2, 1, 3), CRect(5, 2, 6, 3)}));
  // Only the part of the rectangle inside the bitmap counts.
  EXPECT_EQ(RectsOf(BitmapToRegion(&bitmap, CRect(2, -5, 5, 1), RGB(255, 0, 255))),
            (std::vector<CRect>{CRect(2, 0, 3, 1), CRect(4, 0, 5, 1)}));
  // The key compares red, green and blue exactly: a blue key leaves magenta opaque.
  EXPECT_EQ(RectsOf(BitmapToRegion(&bitmap, CRect(0, 1, 6, 2), RGB(0, 0, 255))), std::vector<CRect>{CRect(0, 1, 6, 2)});

  // All key is an empty region; missing input is none at all.
  const HRGN empty = BitmapToRegion(&bitmap, CRect(0, 1, 6, 2), RGB(255, 0, 255));
  ASSERT_NE(empty, nullptr);
  EXPECT_TRUE(empty->IsEmpty());
  const CBitmap none;
  EXPECT_FALSE(BitmapToRegion(nullptr, CRect(0, 0, 3, 2), 0) || BitmapToRegion(&bitmap, CRect(6, 0, 9, 2), 0) ||
               BitmapToRegion(&none, CRect(0, 0, 3, 2), 0));
}
