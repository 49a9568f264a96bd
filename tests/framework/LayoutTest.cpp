// Layout: anchors place a control against its parent's full bounds, docks
// carve strips out of the parent's inner area (inside its margin) in child
// order.

#include <gmock/gmock.h>

#include "framework/FrameworkTestSupport.h"

namespace KarvelTest {
namespace {

struct Child {
  int style;
  CRect anchor;
  CRect expected;
};
struct Layout {
  const char* name;
  CRect bounds, margin;
  std::vector<Child> children;
};

class LayoutTest : public ::testing::TestWithParam<Layout> {};

TEST_P(LayoutTest, PlacesEveryChild) {
  ProbeControl root;
  root.SetParentContainer(&root);  // as a form's root: walks end there
  root.SetBounds(GetParam().bounds);
  root.SetMargin(GetParam().margin);
  std::vector<ProbeControl*> children;
  for (const Child& c : GetParam().children) {
    children.push_back(new ProbeControl());
    children.back()->SetAnchor(c.anchor);
    children.back()->SetAnchorStyle(static_cast<AnchorStyle>(c.style));
    root.RegisterControl(children.back());
  }
  root.RePositionSubControls();
  for (size_t i = 0; i < children.size(); ++i)
    EXPECT_EQ(children[i]->GetBounds(), GetParam().children[i].expected) << i;
}

const CRect kNone;
const CRect kA(-10, 5, 40, 25);  // 50 x 20 at (-10, 5)

INSTANTIATE_TEST_SUITE_P(
    Docking, LayoutTest,
    ::testing::Values(
        Layout{"TopThenFillShareTheInnerArea", {0, 0, 100, 50}, {3, 3, 3, 3},
               {{DOCK_TOP, {0, 0, 10, 20}, {3, 3, 97, 23}}, {DOCK_FILL, kNone, {3, 23, 97, 47}}}},
        Layout{"EachSideTakesItsStripInChildOrder", {0, 0, 200, 100}, kNone,
               {{DOCK_BOTTOM, {0, 0, 0, 10}, {0, 90, 200, 100}}, {DOCK_LEFT, {0, 0, 30, 0}, {0, 0, 30, 90}},
                {DOCK_RIGHT, {0, 0, 40, 0}, {160, 0, 200, 90}}, {DOCK_FILL, kNone, {30, 0, 160, 90}}}},
        // Hor and ver span the remaining extent and take nothing; ver starts
        // from the inner top, ignoring what top took.
        Layout{"HorAndVerSpanTheRemainingExtent", {0, 0, 200, 100}, {5, 5, 5, 5},
               {{DOCK_TOP, {0, 0, 0, 20}, {5, 5, 195, 25}}, {DOCK_HOR, {0, 40, 10, 50}, {5, 40, 195, 50}},
                {DOCK_VER, {60, 0, 70, 10}, {60, 5, 70, 75}}, {DOCK_FILL, kNone, {5, 25, 195, 95}}}},
        Layout{"TheCaptionSpansTheOuterWidthAndKeepsItsConfiguredBottom", {0, 0, 300, 200}, {4, 4, 4, 4},
               {{DOCK_CAPTION, {0, 0, 50, 28}, {0, 0, 300, 28}}, {DOCK_FILL, kNone, {4, 32, 296, 196}}}}),
    [](const ::testing::TestParamInfo<Layout>& info) { return std::string(info.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Anchoring, LayoutTest,
    ::testing::Values(
        // Anchors ignore the margin.
        Layout{"OffsetsApplyFromEveryCornerAndCentre", {0, 0, 200, 100}, {7, 7, 7, 7},
               {{ANCHOR_TOPLEFT, kA, {-10, 5, 40, 25}}, {ANCHOR_TOPRIGHT, kA, {140, 5, 190, 25}},
                {ANCHOR_BOTTOMLEFT, kA, {-10, 85, 40, 105}}, {ANCHOR_BOTTOMRIGHT, kA, {140, 85, 190, 105}},
                {ANCHOR_TOPCENTER, kA, {65, 5, 115, 25}}, {ANCHOR_CENTER, kA, {65, 45, 115, 65}},
                {ANCHOR_BOTTOMCENTER, kA, {65, 85, 115, 105}}, {ANCHOR_NONE, kA, kA}}},
        // In a parent 51 wide: (51 - 20) >> 1 = 15, (10 - 4) >> 1 = 3, (51 - 60) >> 1 = -5 (not -4).
        Layout{"CentringRoundsTowardMinusInfinity", {100, 0, 151, 10}, kNone,
               {{ANCHOR_CENTER, {0, 0, 20, 4}, {115, 3, 135, 7}}, {ANCHOR_TOPCENTER, {0, 0, 60, 4}, {95, 0, 155, 4}}}}),
    [](const ::testing::TestParamInfo<Layout>& info) { return std::string(info.param.name); });

TEST(Docking, HiddenChildrenTakeNothingAndALaterLayoutStartsFromTheDockedRectangle) {
  ProbeControl root("root", CRect(0, 0, 100, 50));
  root.SetParentContainer(&root);
  auto* hidden = new ProbeControl();
  auto* top = new ProbeControl();
  auto* fill = new ProbeControl();
  for (ProbeControl* c : {hidden, top, fill}) root.RegisterControl(c);
  hidden->SetAnchor(CRect(0, 0, 0, 20));
  hidden->SetAnchorStyle(DOCK_TOP);
  hidden->SetVisible(FALSE);
  top->SetAnchor(CRect(0, 0, 10, 20));
  top->SetAnchorStyle(DOCK_TOP);
  fill->SetAnchorStyle(DOCK_FILL);
  root.RePositionSubControls();
  EXPECT_EQ(top->GetBounds(), CRect(0, 0, 100, 20));
  EXPECT_EQ(fill->GetBounds(), CRect(0, 20, 100, 50));
  root.SetBounds(CRect(0, 0, 60, 40));
  root.RePositionSubControls();
  EXPECT_EQ(top->GetBounds(), CRect(0, 0, 60, 20));

  root.SetMargin(CRect(15, 8, 15, 8));  // larger than the container: an empty inner area
  root.SetBounds(CRect(10, 10, 30, 20));
  EXPECT_EQ(root.GetBoundsSmall(), CRect(25, 18, 25, 18));
}

TEST(Anchoring, ChildrenFollowTheirParentsNewPlace) {
  ProbeControl root("root", CRect(0, 0, 200, 100));
  root.SetParentContainer(&root);
  auto* panel = new ProbeControl("panel");
  auto* button = new ProbeControl("button");
  root.RegisterControl(panel);
  panel->RegisterControl(button);
  panel->SetAnchor(CRect(0, 0, 50, 40));
  panel->SetAnchorStyle(ANCHOR_BOTTOMRIGHT);
  button->SetAnchor(CRect(5, 5, 15, 15));
  button->SetAnchorStyle(ANCHOR_TOPLEFT);
  root.RePositionSubControls();
  EXPECT_EQ(button->GetBounds(), CRect(155, 65, 165, 75));
}

}  // namespace
}  // namespace KarvelTest
