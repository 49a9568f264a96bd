// Cached pictures drawn by the OpenGL backend in an off-screen window: what
// reaches the back buffer.

#include "dxcore/GLCoreFixture.h"
#include "platform/Paths.h"
#include "render/PictureDecoder.h"
#include "support/PictureFiles.h"
#include "support/TempDir.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

class CachePixelTest : public GLCoreTest {
 protected:
  CString Write(const std::string& name, int format, int width, int height, int bitsPerPixel,
                const PixelFunction& pixel) {
    return FromNativePath(dir.Write(name, MakePicture(format, width, height, bitsPerPixel, pixel)).string());
  }

  TempDir dir;
};

}  // namespace

TEST_F(CachePixelTest, TilesOfAFilePictureDrawnAtTwiceTheirSizeJoinWithoutSeams) {
  D3DCAPS9 caps{};
  ASSERT_EQ(core.GetD3DDeviceCaps(&caps), S_OK);
  const int tile = static_cast<int>(caps.MaxTextureWidth / 4);
  // Red up to the first tile's right edge, green after it, four rows high.
  const CString path = Write("wide.png", PICTURE_FORMAT_PNG, tile + 20, 4, 24,
                             [tile](int x, int) { return x < tile ? kRed : kGreen; });
  const CRect source(tile - 20, 0, tile + 20, 4);
  const CRect dest(10, 10, 90, 18);
  ASSERT_EQ(core.DrawImage(path, &dest, &source, nullptr, 0, kWhite, 0), S_OK);
  ASSERT_EQ(core.GetResourceCache()->SearchTextureItem(path, core.GetD3DDevice())->nTileCols, 2);
  const Frame frame = EndAndRead();
  EXPECT_EQ(frame.InkBounds(kBlack), dest);
  for (int y = 10; y < 18; ++y) {
    for (int x = 10; x < 90; ++x) ASSERT_EQ(frame.At(x, y), x < 50 ? kRed : kGreen) << x << "," << y;
  }
}

TEST_F(CachePixelTest, AThirtyTwoBitBmpWithZeroAlphaIsDrawnOpaque) {
  const CString path = Write("clear.bmp", PICTURE_FORMAT_BMP, 8, 8, 32, [](int, int) { return 0x0000FF00u; });
  const CRect dest(20, 20, 36, 36);
  ASSERT_EQ(core.DrawImage(path, &dest, nullptr, nullptr, 0, kWhite, 0), S_OK);
  const Frame frame = EndAndRead();
  EXPECT_EQ(frame.At(20, 20), kGreen);
  EXPECT_EQ(frame.At(35, 35), kGreen);
  EXPECT_EQ(frame.InkBounds(kBlack), dest);
}
