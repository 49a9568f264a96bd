// The rectangle the library's own move and size loop gives a window (on
// X11, where no window manager may be there to ask).

#include <gtest/gtest.h>

#include "platform/window/MoveSize.h"

namespace KarvelTest {
namespace {

using namespace KarvelUI;

TEST(MoveSizeTest, CaptionsMoveAndGripsMoveTheirEdgesWithinTheSizeLimits) {
  const CRect start(100, 100, 400, 300);  // 300 x 200
  const CSize minimum(200, 150), maximum(500, 0);
  struct Case {
    LRESULT hitTest;
    CPoint delta;
    CRect expected;
  };
  const Case cases[] = {
      {HTCAPTION, {-30, 40}, {70, 140, 370, 340}},
      {HTRIGHT, {50, 9}, {100, 100, 450, 300}},
      {HTLEFT, {50, 0}, {150, 100, 400, 300}},
      {HTLEFT, {150, 0}, {200, 100, 400, 300}},          // stops at the minimum width
      {HTBOTTOMRIGHT, {500, 500}, {100, 100, 600, 800}},  // the maximum width; no maximum height
      {HTTOPLEFT, {-20, 100}, {80, 150, 400, 300}},       // the minimum height, the bottom stays
      {HTTOP, {0, -30}, {100, 70, 400, 300}},
      {HTCLIENT, {10, 10}, start},
  };
  for (const Case& c : cases)
    EXPECT_EQ(detail::MoveSizeRect(start, c.hitTest, c.delta, minimum, maximum), c.expected) << c.hitTest;
  EXPECT_TRUE(detail::IsMoveSizeArea(HTBOTTOMRIGHT) && !detail::IsMoveSizeArea(HTCLIENT));
}

}  // namespace
}  // namespace KarvelTest
