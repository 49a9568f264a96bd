// Layout: anchors place a control against its parent's full bounds, docks
// carve strips out of the parent's inner area in child order.

#include <gmock/gmock.h>

#include "framework/FrameworkTestSupport.h"

namespace KarvelTest {
namespace {

// A container with a margin at fixed bounds, its parent itself.
struct Container {
  explicit Container(const CRect& bounds, const CRect& margin = CRect()) {
    root.SetParentContainer(&root);
    root.SetBounds(bounds);
    root.SetMargin(margin);
  }
  ProbeControl* Add(int style, const CRect& anchor) {
    auto* child = new ProbeControl();
    child->SetAnchor(anchor);
    child->SetAnchorStyle(static_cast<AnchorStyle>(style));
    root.RegisterControl(child);
    return child;
  }
  ProbeControl root;
};

TEST(Docking, TopThenFillShareTheInnerArea) {
  Container c(CRect(0, 0, 100, 50), CRect(3, 3, 3, 3));
  ProbeControl* top = c.Add(DOCK_TOP, CRect(0, 0, 10, 20));
  ProbeControl* fill = c.Add(DOCK_FILL, CRect());
  c.root.RePositionSubControls();
  EXPECT_EQ(top->GetBounds(), CRect(3, 3, 97, 23));
  EXPECT_EQ(fill->GetBounds(), CRect(3, 23, 97, 47));
}

TEST(Docking, EachSideTakesItsStripInChildOrder) {
  Container c(CRect(0, 0, 200, 100));
  ProbeControl* bottom = c.Add(DOCK_BOTTOM, CRect(0, 0, 0, 10));
  ProbeControl* left = c.Add(DOCK_LEFT, CRect(0, 0, 30, 0));
  ProbeControl* right = c.Add(DOCK_RIGHT, CRect(0, 0, 40, 0));
  ProbeControl* fill = c.Add(DOCK_FILL, CRect());
  c.root.RePositionSubControls();
  EXPECT_EQ(bottom->GetBounds(), CRect(0, 90, 200, 100));
  EXPECT_EQ(left->GetBounds(), CRect(0, 0, 30, 90));
  EXPECT_EQ(right->GetBounds(), CRect(160, 0, 200, 90));
  EXPECT_EQ(fill->GetBounds(), CRect(30, 0, 160, 90));
}

TEST(Docking, HorAndVerSpanTheRemainingExtentAndTakeNothing) {
  Container c(CRect(0, 0, 200, 100), CRect(5, 5, 5, 5));
  c.Add(DOCK_TOP, CRect(0, 0, 0, 20));
  ProbeControl* hor = c.Add(DOCK_HOR, CRect(0, 40, 10, 50));
  ProbeControl* ver = c.Add(DOCK_VER, CRect(60, 0, 70, 10));
  ProbeControl* fill = c.Add(DOCK_FILL, CRect());
  c.root.RePositionSubControls();
  EXPECT_EQ(hor->GetBounds(), CRect(5, 40, 195, 50));
  // Full remaining height, but from the inner top: "ver" ignores what "top" took.
  EXPECT_EQ(ver->GetBounds(), CRect(60, 5, 70, 75));
  EXPECT_EQ(fill->GetBounds(), CRect(5, 25, 195, 95));
}

TEST(Docking, TheCaptionSpansTheOuterWidthAndKeepsItsConfiguredBottom) {
  Container c(CRect(0, 0, 300, 200), CRect(4, 4, 4, 4));
  ProbeControl* caption = c.Add(DOCK_CAPTION, CRect(0, 0, 50, 28));
  ProbeControl* fill = c.Add(DOCK_FILL, CRect());
  c.root.RePositionSubControls();
  EXPECT_EQ(caption->GetBounds(), CRect(0, 0, 300, 28));
  EXPECT_EQ(fill->GetBounds(), CRect(4, 32, 296, 196));
}

TEST(Docking, HiddenChildrenTakeNothing) {
  Container c(CRect(0, 0, 100, 50));
  ProbeControl* hidden = c.Add(DOCK_TOP, CRect(0, 0, 0, 20));
  ProbeControl* fill = c.Add(DOCK_FILL, CRect());
  hidden->SetVisible(FALSE);
  c.root.RePositionSubControls();
  EXPECT_EQ(fill->GetBounds(), CRect(0, 0, 100, 50));
}

TEST(Docking, AMarginLargerThanTheContainerLeavesAnEmptyInnerArea) {
  Container c(CRect(10, 10, 30, 20), CRect(15, 8, 15, 8));
  EXPECT_EQ(c.root.GetBoundsSmall(), CRect(25, 18, 25, 18));
}

TEST(Docking, ALaterLayoutStartsFromTheDockedRectangle) {
  Container c(CRect(0, 0, 100, 50));
  ProbeControl* top = c.Add(DOCK_TOP, CRect(0, 0, 10, 20));
  c.root.RePositionSubControls();
  c.root.SetBounds(CRect(0, 0, 60, 40));
  c.root.RePositionSubControls();
  EXPECT_EQ(top->GetBounds(), CRect(0, 0, 60, 20));
}

TEST(Anchoring, OffsetsApplyFromEveryCornerAndCentre) {
  Container c(CRect(0, 0, 200, 100), CRect(7, 7, 7, 7));  // anchors ignore the margin
  const CRect a(-10, 5, 40, 25);                           // 50 x 20, offset (-10, 5)
  ProbeControl* topLeft = c.Add(ANCHOR_TOPLEFT, a);
  ProbeControl* topRight = c.Add(ANCHOR_TOPRIGHT, a);
  ProbeControl* bottomLeft = c.Add(ANCHOR_BOTTOMLEFT, a);
  ProbeControl* bottomRight = c.Add(ANCHOR_BOTTOMRIGHT, a);
  ProbeControl* topCentre = c.Add(ANCHOR_TOPCENTER, a);
  ProbeControl* centre = c.Add(ANCHOR_CENTER, a);
  ProbeControl* bottomCentre = c.Add(ANCHOR_BOTTOMCENTER, a);
  ProbeControl* absolute = c.Add(ANCHOR_NONE, a);
  c.root.RePositionSubControls();
  EXPECT_EQ(topLeft->GetBounds(), CRect(-10, 5, 40, 25));
  EXPECT_EQ(topRight->GetBounds(), CRect(140, 5, 190, 25));
  EXPECT_EQ(bottomLeft->GetBounds(), CRect(-10, 85, 40, 105));
  EXPECT_EQ(bottomRight->GetBounds(), CRect(140, 85, 190, 105));
  EXPECT_EQ(topCentre->GetBounds(), CRect(65, 5, 115, 25));
  EXPECT_EQ(centre->GetBounds(), CRect(65, 45, 115, 65));
  EXPECT_EQ(bottomCentre->GetBounds(), CRect(65, 85, 115, 105));
  EXPECT_EQ(absolute->GetBounds(), a);
}

TEST(Anchoring, CentringRoundsTowardMinusInfinity) {
  Container c(CRect(100, 0, 151, 10));  // 51 wide
  ProbeControl* odd = c.Add(ANCHOR_CENTER, CRect(0, 0, 20, 4));
  ProbeControl* wide = c.Add(ANCHOR_TOPCENTER, CRect(0, 0, 60, 4));
  c.root.RePositionSubControls();
  EXPECT_EQ(odd->GetBounds().left, 100 + 15);   // (51 - 20) >> 1
  EXPECT_EQ(odd->GetBounds().top, 3);           // (10 - 4) >> 1
  EXPECT_EQ(wide->GetBounds().left, 100 - 5);   // (51 - 60) >> 1 is -5, not -4
}

TEST(Anchoring, ChildrenFollowTheirParentsNewPlace) {
  Container c(CRect(0, 0, 200, 100));
  ProbeControl* panel = c.Add(ANCHOR_BOTTOMRIGHT, CRect(0, 0, 50, 40));
  auto* button = new ProbeControl();
  button->SetAnchor(CRect(5, 5, 15, 15));
  button->SetAnchorStyle(ANCHOR_TOPLEFT);
  panel->RegisterControl(button);
  c.root.RePositionSubControls();
  EXPECT_EQ(button->GetBounds(), CRect(155, 65, 165, 75));
}

}  // namespace
}  // namespace KarvelTest
