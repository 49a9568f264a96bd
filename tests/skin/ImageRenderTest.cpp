// Image records drawn through a render device over the double: where each
// piece lands (the quad the sprite would fill) and which part of the
// picture it shows.

#include <cmath>

#include "support/FakeCore.h"
#include "platform/Paths.h"
#include "render/PictureDecoder.h"
#include <karvelui/ImageConfig.h>
#include "support/PictureFiles.h"
#include "support/TempDir.h"

using namespace KarvelUI;
using namespace KarvelTest;
using ::testing::ElementsAre;

namespace {

// One draw as (screen rectangle | picture rectangle).
struct Piece {
  CRect screen;
  CRect picture;
  friend bool operator==(const Piece&, const Piece&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Piece& p) {
    for (const CRect& r : {p.screen, p.picture})
      out << "(" << r.left << "," << r.top << "," << r.right << "," << r.bottom << ")";
    return out;
  }
};

class ImageRenderTest : public FakeCoreTest {
 protected:
  void SetUp() override {
    FakeCoreTest::SetUp();
    MakeReady();
    ASSERT_EQ(core.BeginPaint(), S_OK);
    const std::string png =
        MakePicture(PICTURE_FORMAT_PNG, 40, 20, 24, [](int x, int y) { return 0xFF000000u | x << 8 | y; });
    image.m_strFile = FromNativePath(dir.Write("skin.png", png).string());
    image.m_dwColor = 0x80FFFFFF;
    gpu->ClearLog();
  }

  // The draws since the last call, each with its rounded screen rectangle.
  std::vector<Piece> Pieces() {
    std::vector<Piece> pieces;
    for (const fake::SpriteDrawRecord& draw : gpu->Draws()) {
      const D3DXVECTOR2& a = draw.quad.corners[0];
      const D3DXVECTOR2& b = draw.quad.corners[3];
      pieces.push_back({CRect(std::lround(a.x), std::lround(a.y), std::lround(b.x), std::lround(b.y)), draw.source});
    }
    gpu->ClearLog();
    return pieces;
  }

  TempDir dir;
  _ImageConfig image;
};

}  // namespace

TEST_F(ImageRenderTest, AnEmptySourceDrawsTheWholePictureWithTheRecordsColour) {
  CRect target(10, 10, 90, 50);
  image.Render(&core, target, nullptr);
  EXPECT_THAT(Pieces(), ElementsAre(Piece{{10, 10, 90, 50}, {0, 0, 40, 20}}));

  image.m_rcSrc = CRect(5, 5, 15, 10);
  image.Render(&core, target, nullptr);
  EXPECT_EQ(gpu->Draws().at(0).color, 0x80FFFFFFu);
  EXPECT_THAT(Pieces(), ElementsAre(Piece{{10, 10, 90, 50}, {5, 5, 15, 10}}));

  // Nothing without a file, into an empty target, or for a picture the cache cannot make.
  CRect empty(10, 10, 10, 50);
  image.Render(&core, empty, nullptr);
  image.m_rcSrc.SetRectEmpty();
  image.m_strFile = FromNativePath((dir.Path() / "missing.png").string());
  image.Render(&core, target, nullptr);
  image.m_strFile.Empty();
  image.Render(&core, target, nullptr);
  EXPECT_TRUE(Pieces().empty());
}

TEST_F(ImageRenderTest, AClipShrinksDestinationAndSourceTogether) {
  CRect target(10, 10, 130, 70);  // three times the picture's size
  CRect clip(20, 0, 100, 30);
  image.Render(&core, target, &clip);
  // Left: 10 screen pixels are 3.33 picture pixels, truncated to 3; right: 30
  // are 10; bottom: 40 are 13.33, truncated to 13.
  EXPECT_THAT(Pieces(), ElementsAre(Piece{{20, 10, 100, 30}, {3, 0, 30, 7}}));

  CRect around(0, 0, 200, 200);
  image.Render(&core, target, &around);
  EXPECT_THAT(Pieces(), ElementsAre(Piece{{10, 10, 130, 70}, {0, 0, 40, 20}}));
  CRect elsewhere(200, 200, 300, 300);
  image.Render(&core, target, &elsewhere);
  EXPECT_TRUE(Pieces().empty());
}

TEST_F(ImageRenderTest, EdgeEndsKeepTheirSizeAlongAndTheMiddleStretchesOrIsSkipped) {
  _ImageEdgeConfig edge;
  edge.m_strFile = image.m_strFile;
  edge.m_edge = CEdge{{0, 0, 10, 8}, {28, 0, 40, 8}, {10, 0, 28, 8}};  // left, right, mid
  edge.Render(&core, CRect(0, 20, 100, 30));
  EXPECT_THAT(Pieces(), ElementsAre(Piece{{0, 20, 10, 30}, {0, 0, 10, 8}}, Piece{{10, 20, 88, 30}, {10, 0, 28, 8}},
                                    Piece{{88, 20, 100, 30}, {28, 0, 40, 8}}));

  // Ends wider than the target overlap and the inverted middle is skipped.
  edge.Render(&core, CRect(0, 0, 16, 8));
  EXPECT_THAT(Pieces(), ElementsAre(Piece{{0, 0, 10, 8}, {0, 0, 10, 8}}, Piece{{4, 0, 16, 8}, {28, 0, 40, 8}}));

  // Vertical: the ends keep their heights; an empty middle leaves a gap.
  edge.m_bHorizontal = 0;
  edge.m_edge = CEdge{{0, 0, 6, 4}, {0, 16, 6, 20}, {}};
  edge.Render(&core, CRect(50, 0, 56, 30));
  EXPECT_THAT(Pieces(), ElementsAre(Piece{{50, 0, 56, 4}, {0, 0, 6, 4}}, Piece{{50, 26, 56, 30}, {0, 16, 6, 20}}));
}

TEST_F(ImageRenderTest, ABorderDrawsTopLeftRightBottomThenCentreInTheirRegions) {
  _ImageBorderConfig border;
  border.m_strFile = image.m_strFile;
  const CRect piece(0, 0, 4, 4);
  border.m_edgeTop.left = border.m_edgeLeft.left = border.m_edgeRight.left = border.m_edgeBottom.left =
      border.m_edgeCenter.left = piece;
  border.m_edgeBottom.left = CRect(0, 0, 4, 2);
  border.m_edgeCenter.left = CRect(8, 8, 12, 12);
  border.Render(&core, CRect(0, 0, 40, 30));
  EXPECT_THAT(Pieces(), ElementsAre(Piece{{0, 0, 4, 4}, piece},          // top band, full width
                                    Piece{{0, 4, 4, 8}, piece},          // left column
                                    Piece{{36, 4, 40, 8}, piece},        // right column
                                    Piece{{0, 28, 4, 30}, {0, 0, 4, 2}},  // bottom band
                                    Piece{{4, 4, 36, 8}, {8, 8, 12, 12}}));

  _ImageBorderConfig nothing;
  nothing.m_strFile = image.m_strFile;
  nothing.Render(&core, CRect(0, 0, 40, 30));
  EXPECT_TRUE(Pieces().empty());
}
