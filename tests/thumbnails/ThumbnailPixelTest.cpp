#include <karvelui/ThumbnailConfig.h>
#include "ThumbTestSupport.h"
#include "support/GLCore.h"
#include "support/PictureFiles.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

// A 400 x 300 picture, red on the left half and green on the right, loaded
// and drawn into a 60-pixel square: the centre square keeps both halves, and
// the reflection under it is a fading copy.
TEST_F(GLCoreTest, AThumbnailDrawsItsCentreSquareAndAFadingReflection) {
  PrivateCacheHome cacheHome;
  TempDir dir;
  const auto halves = [](int x, int) { return x < 200 ? 0xFFFF0000u : 0xFF00FF00u; };
  _ThumbnailConfig thumb;
  thumb.SetImage(LibraryPath(dir.Write("halves.png", MakePicture(13, 400, 300, 24, halves))));
  thumb.SetSize(140, 140);
  thumb.SetRenderDevice(&core);
  ASSERT_EQ(thumb.LoadThumb(), 1);
  ASSERT_EQ(thumb.Render(&core, CRect(10, 10, 70, 70), nullptr, 0.0), 1);
  const Frame frame = EndAndRead();
  EXPECT_TRUE(ColorNear(frame.At(12, 40), kRed, 2) && ColorNear(frame.At(67, 40), kGreen, 2));
  EXPECT_EQ(frame.At(8, 40), kBlack);  // the picture's left quarter is cropped away
  // Right under the picture at most 43 % of its red shows over black, and less further down.
  const DWORD underneath = frame.At(12, 70), lower = frame.At(12, 95);
  const DWORD red = underneath >> 16 & 0xFF;
  EXPECT_TRUE(red >= 0x40u && red <= 0x6Eu && (lower >> 16 & 0xFF) < red) << red;
  EXPECT_EQ(underneath & 0xFFFF, 0u);
}

}  // namespace
