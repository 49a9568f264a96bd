// Image records: copying through the base (the frame stays), sizes from the
// pieces, and the regions a border divides a window into.

#include <gtest/gtest.h>

#include <karvelui/ImageConfig.h>

using namespace KarvelUI;

TEST(ImageConfigTest, CopyKeepsTheFrameAndCopiesDerivedPiecesThroughTheBase) {
  _ImageConfig source;
  source.m_strFile = L"a.png";
  source.m_dwColor = 0x80112233;
  source.m_fRotation = 1.25f;
  source.m_nFrame = 9;
  _ImageConfig target;
  target.m_nFrame = 3;
  target.Copy(&source);
  target.Copy(nullptr);
  EXPECT_EQ(target.m_strFile, L"a.png");
  EXPECT_EQ(target.m_dwColor, 0x80112233u);
  EXPECT_FLOAT_EQ(target.m_fRotation, 1.25f);
  EXPECT_EQ(target.m_nFrame, 3);
  target.Reset();
  EXPECT_EQ(target.m_dwColor, 0xFFFFFFFFu);
  EXPECT_EQ(target.m_nFrame, 0);

  _ImageEdgeConfig edge, edgeCopy;
  edge.m_edge.mid = CRect(1, 1, 2, 2);
  edge.m_bHorizontal = 0;
  _ImageConfig* base = &edgeCopy;
  base->Copy(&edge);
  EXPECT_EQ(edgeCopy.m_edge.mid, CRect(1, 1, 2, 2));
  EXPECT_EQ(edgeCopy.m_bHorizontal, 0);
  base->Reset();
  EXPECT_EQ(edgeCopy.m_bHorizontal, 1);
  edge.Copy(&source);  // a plain record as source gives only the plain fields
  EXPECT_EQ(edge.m_strFile, L"a.png");
  EXPECT_EQ(edge.m_edge.mid, CRect(1, 1, 2, 2));

  _ImageBorderConfig border, borderCopy;
  border.m_edgeBottom.right = CRect(0, 0, 3, 3);
  base = &borderCopy;
  base->Copy(&border);
  EXPECT_EQ(borderCopy.m_edgeBottom.right, CRect(0, 0, 3, 3));
  base->Reset();
  EXPECT_TRUE(borderCopy.m_edgeBottom.right.IsRectNull());
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
  EXPECT_EQ(regions[0], CRect(100, 50, 300, 58));    // top: tallest top piece 8
  EXPECT_EQ(regions[1], CRect(100, 58, 107, 245));   // left: widest left piece 7
  EXPECT_EQ(regions[2], CRect(291, 58, 300, 245));   // right: widest right piece 9
  EXPECT_EQ(regions[3], CRect(100, 245, 300, 250));  // bottom: tallest bottom piece 5
  EXPECT_EQ(regions[4], CRect(107, 58, 291, 245));
  _ImageBorderConfig empty;
  empty.DivideWindow(CRect(0, 0, 10, 10), regions);
  EXPECT_TRUE(regions[0].IsRectEmpty());
  EXPECT_EQ(regions[4], CRect(0, 0, 10, 10));
}
