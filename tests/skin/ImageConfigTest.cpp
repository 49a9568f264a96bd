// Image records: copying through the base (the frame stays), sizes from the
// pieces, and the regions a border divides a window into.

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include <karvelui/ImageConfig.h>

using namespace KarvelUI;

TEST(ImageConfigTest, CopyKeepsTheFrameAndCopiesAndResetsDerivedPiecesThroughTheBase) {
  _ImageConfig source, target;
  source.m_strFile = L"a.png";
  source.m_nFrame = 9;
  target.m_nFrame = 3;
  target.Copy(&source);
  target.Copy(nullptr);
  EXPECT_EQ(std::make_tuple(target.m_strFile, target.m_nFrame), std::make_tuple(CString(L"a.png"), 3));
  _ImageEdgeConfig edge, edgeCopy;
  _ImageBorderConfig border, borderCopy;
  edge.m_bHorizontal = 0;
  border.m_edgeBottom.right = CRect(0, 0, 3, 3);
  const std::pair<_ImageConfig*, _ImageConfig*> copies[] = {{&edge, &edgeCopy}, {&border, &borderCopy}};
  for (const auto& [from, to] : copies) to->Copy(from);  // through the base
  EXPECT_EQ(std::make_tuple(edgeCopy.m_bHorizontal, borderCopy.m_edgeBottom.right), std::make_tuple(0, CRect(0, 0, 3, 3)));
  for (const auto& [from, to] : copies) to->Reset();
  EXPECT_EQ(std::make_tuple(edgeCopy.m_bHorizontal, borderCopy.m_edgeBottom.right), std::make_tuple(1, CRect()));
  edge.Copy(&source);  // a plain record as source gives only the plain fields
  EXPECT_EQ(std::make_tuple(edge.m_strFile, edge.m_bHorizontal), std::make_tuple(CString(L"a.png"), 0));
}

TEST(ImageConfigTest, EdgeSizeAddsAlongAndBorderSizeSumsBottomAndLeftHeights) {
  _ImageEdgeConfig edge;
  edge.m_edge = {CRect(0, 0, 10, 20), CRect(11, 0, 23, 20), CRect(10, 0, 11, 30)};  // left, right, mid
  edge.Caculate();
  EXPECT_EQ(edge.m_rcSrc, CRect(0, 0, 23, 30));
  edge.m_bHorizontal = 0;
  edge.Caculate();
  EXPECT_EQ(edge.m_rcSrc, CRect(0, 0, 12, 70));

  _ImageBorderConfig border;
  border.Caculate();
  EXPECT_EQ(border.m_rcSrc, CRect(0, 0, 0, 0));
  border.m_edgeTop = {CRect(0, 0, 6, 7), CRect(0, 0, 6, 7), CRect(0, 0, 2, 3)};
  border.m_edgeBottom = {CRect(0, 0, 6, 5), CRect(0, 0, 6, 5), CRect(0, 0, 2, 5)};
  border.m_edgeLeft = {CRect(0, 0, 4, 4), CRect(0, 0, 4, 4), CRect(0, 0, 4, 1)};
  border.m_edgeRight = {CRect(0, 0, 90, 90), CRect(), CRect()};  // not part of the size
  border.Caculate();
  EXPECT_EQ(border.m_rcSrc, CRect(0, 0, 14, 7 + 15 + 9));
}

TEST(ImageConfigTest, DivideWindowGivesTheCornersToTheBands) {
  _ImageBorderConfig border;
  border.m_edgeTop = {CRect(0, 0, 5, 8), CRect(0, 0, 5, 6), CRect(0, 0, 1, 4)};
  border.m_edgeBottom = {CRect(0, 0, 5, 3), CRect(0, 0, 5, 5), CRect(0, 0, 1, 2)};
  border.m_edgeLeft = {CRect(0, 0, 7, 1), CRect(0, 0, 2, 1), CRect(0, 0, 3, 1)};
  border.m_edgeRight = {CRect(0, 0, 4, 1), CRect(0, 0, 9, 1), CRect(0, 0, 1, 1)};
  CRect regions[5];
  border.DivideWindow(CRect(100, 50, 300, 250), regions);
  // Top: the tallest top piece 8; left: the widest left piece 7; right: 9; bottom: 5.
  EXPECT_EQ(std::vector<CRect>(regions, regions + 5),
            (std::vector{CRect(100, 50, 300, 58), CRect(100, 58, 107, 245), CRect(291, 58, 300, 245),
                         CRect(100, 245, 300, 250), CRect(107, 58, 291, 245)}));
  _ImageBorderConfig empty;
  empty.DivideWindow(CRect(0, 0, 10, 10), regions);
  EXPECT_TRUE(regions[0].IsRectEmpty() && regions[4] == CRect(0, 0, 10, 10));
}
