// karvelskin preview paints a form as the viewer paints it: the viewer's
// screenshot of its main form and the previewer's picture agree in every
// pixel the skin decides. The viewer writes its own title, status line and
// zoom position, and fills the band between caption and tool bar with its
// photo and the strip's thumbnails, so those places (from the sample skin's
// layout) are left out of the comparison.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "support/PictureFiles.h"
#include "support/TempDir.h"

namespace KarvelTest {
namespace {

std::string Bin(const char* program) { return std::string(KARVEL_BINARY_DIR) + "/bin/" + program; }

bool RunProgram(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }

// The rounded corners (their edge pixels blend with what the program drew
// before), the caption's title between the icon and the system buttons, the photo
// and strip between caption and tool bar (inside the frame's sides), and the
// tool bar right of its buttons (status line and zoom slider).
bool HostDraws(int x, int y, int width, int height) {
  constexpr int kCaptionHeight = 32, kTitleLeft = 38, kSysButtons = 96;
  constexpr int kToolBarTop = 52, kToolButtonsRight = 292, kFrameSide = 8, kCorner = 6;
  const bool corner = (x < kCorner || x >= width - kCorner) && (y < kCorner || y >= height - kCorner);
  return corner || (y < kCaptionHeight && x >= kTitleLeft && x < width - kSysButtons) ||
         (y >= kCaptionHeight && y < height - kToolBarTop && x >= kFrameSide && x < width - kFrameSide) ||
         (y >= height - kToolBarTop && x >= kToolButtonsRight);
}

TEST(PreviewTest, MainFormMatchesTheViewersScreenshotInEachSkin) {
  const TempDir dir;
  // Default last: the viewer keeps the skin it ran with for its next start.
  for (const char* skin : {"Ocean", "Default"}) {
    SCOPED_TRACE(skin);
    const auto viewed = dir.Path() / "viewer.png", previewed = dir.Path() / "preview.png";
    ASSERT_TRUE(RunProgram(Bin("karvelview") + " --skin " + skin + " --screenshot " + viewed.string()));
    ASSERT_TRUE(RunProgram(Bin("karvelskin") + " preview " + KARVEL_SOURCE_DIR + "/assets/Theme --skin " + skin +
                    " --form MainForm --out " + previewed.string()));
    const DecodedPicture viewer = DecodePicture(TempDir::Read(viewed));
    const DecodedPicture preview = DecodePicture(TempDir::Read(previewed));
    ASSERT_GT(viewer.width, 0);
    ASSERT_EQ(preview.width, viewer.width);
    ASSERT_EQ(preview.height, viewer.height);
    int differing = 0;
    for (int y = 0; y < viewer.height; ++y)
      for (int x = 0; x < viewer.width; ++x)
        if (!HostDraws(x, y, viewer.width, viewer.height) && preview.At(x, y) != viewer.At(x, y)) ++differing;
    EXPECT_EQ(differing, 0);
  }
}

}  // namespace
}  // namespace KarvelTest
