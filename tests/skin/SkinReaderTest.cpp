#include <gtest/gtest.h>

#include <cwchar>

#include <karvelui/CommonString.h>
#include <karvelui/SkinReader.h>
#include "SkinTestSupport.h"

using namespace KarvelUI;
using KarvelTest::LoadedXml;

namespace {

// A reader on the element <v> whose attributes are the given text.
class ValueElement {
 public:
  explicit ValueElement(const std::string& attributes, const std::string& body = "")
      : m_xml("<v " + attributes + ">" + body + "</v>") {}
  CSkinReader Reader() { return CSkinReader(m_xml.Node(L"v")); }

 private:
  LoadedXml m_xml;
};

}  // namespace

TEST(SkinReaderTest, GetStringReadsTheAttributeOrWithAnEmptyKeyTheText) {
  ValueElement e("name=\"attr\" empty=\"\"", "body text");
  CSkinReader r = e.Reader();
  CString out = L"stale";
  EXPECT_EQ(r.GetString(out, L"name"), 1);
  EXPECT_EQ(out, L"attr");
  EXPECT_EQ(r.GetString(out, L""), 1);
  EXPECT_EQ(out, L"body text");
  out = L"stale";
  EXPECT_EQ(r.GetString(out, L"empty"), 0);
  EXPECT_EQ(out, L"");
  out = L"stale";
  EXPECT_EQ(r.GetString(out, L"Name"), 0);  // keys are exact
  EXPECT_EQ(out, L"");
  EXPECT_EQ(r.IsValid(), 1);
  EXPECT_EQ(CSkinReader().IsValid(), 0);
}

TEST(SkinReaderTest, NumbersFollowTheScanFormats) {
  ValueElement e(
      "i=\" -7\" plus=\"+12px\" word=\"abc\" big=\"4294967297\" hex=\"0xFF102030\" dec=\"16\" oct=\"010\" "
      "neg=\"-1\" bad8=\"09\" f=\"1.5\" fe=\"-2.25e1\" fw=\"nope\"");
  CSkinReader r = e.Reader();
  int i = 99;
  EXPECT_EQ(r.GetInt(i, L"i"), 1);
  EXPECT_EQ(i, -7);
  EXPECT_EQ(r.GetInt(i, L"plus"), 1);
  EXPECT_EQ(i, 12);
  EXPECT_EQ(r.GetInt(i, L"word"), 1);  // found, but no number: output kept
  EXPECT_EQ(i, 12);
  EXPECT_EQ(r.GetInt(i, L"big"), 1);  // low 32 bits
  EXPECT_EQ(i, 1);
  EXPECT_EQ(r.GetInt(i, L"missing"), 0);

  DWORD d = 5;
  EXPECT_EQ(r.GetDWORD(d, L"hex"), 1);
  EXPECT_EQ(d, 0xFF102030u);
  EXPECT_EQ(r.GetDWORD(d, L"dec"), 1);
  EXPECT_EQ(d, 16u);
  EXPECT_EQ(r.GetDWORD(d, L"oct"), 1);
  EXPECT_EQ(d, 8u);
  EXPECT_EQ(r.GetDWORD(d, L"neg"), 1);
  EXPECT_EQ(d, 0xFFFFFFFFu);
  EXPECT_EQ(r.GetDWORD(d, L"bad8"), 1);  // octal stops before the 9
  EXPECT_EQ(d, 0u);
  d = 5;
  EXPECT_EQ(r.GetDWORD(d, L"word"), 1);
  EXPECT_EQ(d, 5u);

  float f = 3.0f;
  EXPECT_EQ(r.GetReal(f, L"f"), 1);
  EXPECT_FLOAT_EQ(f, 1.5f);
  EXPECT_EQ(r.GetReal(f, L"fe"), 1);
  EXPECT_FLOAT_EQ(f, -22.5f);
  EXPECT_EQ(r.GetReal(f, L"fw"), 1);
  EXPECT_FLOAT_EQ(f, -22.5f);
}

TEST(SkinReaderTest, BooleansAcceptOnlyTheFourWordsInAnyCase) {
  ValueElement e("a=\"TRUE\" b=\"False\" c=\"t\" d=\"f\" one=\"1\" zero=\"0\" yes=\"yes\"");
  CSkinReader r = e.Reader();
  int out = 7;
  EXPECT_EQ(r.GetBool(out, L"a"), 1);
  EXPECT_EQ(out, 1);
  EXPECT_EQ(r.GetBool(out, L"b"), 1);
  EXPECT_EQ(out, 0);
  EXPECT_EQ(r.GetBool(out, L"c"), 1);
  EXPECT_EQ(out, 1);
  EXPECT_EQ(r.GetBool(out, L"d"), 1);
  EXPECT_EQ(out, 0);
  out = 7;
  for (const wchar_t* key : {L"one", L"zero", L"yes", L"missing"}) {
    EXPECT_EQ(r.GetBool(out, key), 0) << key;
    EXPECT_EQ(out, 7) << key;
  }
}

TEST(SkinReaderTest, ListsNeedTheCommaRightAfterEachNumber) {
  ValueElement e(
      "tight=\"1,2\" spaced=\"3,  \t4\" gap=\"5 ,6\" one=\"7\" "
      "rgb=\"255, 0, 128\" wide=\"300, 0, 0\" negative=\"-1, 256, 511\" "
      "rect=\"10, 20, 30, 40\" part=\"10, 20\"");
  CSkinReader r = e.Reader();
  CSize size(-1, -1);
  EXPECT_EQ(r.GetSize(size, L"tight"), 1);
  EXPECT_EQ(size, CSize(1, 2));
  EXPECT_EQ(r.GetSize(size, L"spaced"), 1);
  EXPECT_EQ(size, CSize(3, 4));
  EXPECT_EQ(r.GetSize(size, L"gap"), 1);
  EXPECT_EQ(size, CSize(5, 4));  // the scan stops at " ,": cy unchanged
  EXPECT_EQ(r.GetSize(size, L"one"), 1);
  EXPECT_EQ(size, CSize(7, 4));

  CPoint point(9, 9);
  EXPECT_EQ(r.GetPoint(point, L"spaced"), 1);
  EXPECT_EQ(point, CPoint(3, 4));
  EXPECT_EQ(r.GetPoint(point, L"missing"), 0);
  EXPECT_EQ(point, CPoint(3, 4));

  DWORD color = 0;
  EXPECT_EQ(r.GetColor(color, L"rgb"), 1);
  EXPECT_EQ(color, 0xFFFF0080u);
  EXPECT_EQ(r.GetColor(color, L"wide"), 1);
  EXPECT_EQ(color, 0xFF2C0000u);
  EXPECT_EQ(r.GetColor(color, L"negative"), 1);
  EXPECT_EQ(color, 0xFFFF00FFu);

  CRect rect;
  EXPECT_EQ(r.GetRect(rect, L"rect", 1), 1);
  EXPECT_EQ(rect, CRect(10, 20, 30, 40));
  EXPECT_EQ(r.GetRect(rect, L"rect", 0), 1);
  EXPECT_EQ(rect, CRect(10, 20, 40, 60));
  EXPECT_EQ(r.GetRect(rect, L"part", 1), 1);
  EXPECT_EQ(rect, CRect(10, 20, 0, 0));  // components not reached read as 0
  rect = CRect(1, 1, 2, 2);
  EXPECT_EQ(r.GetRect(rect, L"missing", 1), 0);
  EXPECT_EQ(rect, CRect(1, 1, 2, 2));
}

TEST(SkinReaderTest, FontsAreReadOntoTheFontGiven) {
  ValueElement e("",
                 "<Title TextColor=\"1, 2, 3\" FontFace=\"DejaVu Sans\" FontSize=\"-16\" FontBold=\"true\"/>"
                 "<Light FontBold=\"false\"/>"
                 "<Long FontFace=\"ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789\"/>");
  CSkinReader r = e.Reader();
  LOGFONTW font{};
  font.lfHeight = 12;
  font.lfItalic = 1;
  DWORD color = 0x11223344;
  EXPECT_EQ(r.GetFont(font, color, L"Title"), 1);
  EXPECT_EQ(color, 0xFF010203u);
  EXPECT_STREQ(font.lfFaceName, L"DejaVu Sans");
  EXPECT_EQ(font.lfHeight, -16);
  EXPECT_EQ(font.lfWeight, FW_BOLD);
  EXPECT_EQ(font.lfItalic, 1);

  EXPECT_EQ(r.GetFont(font, color, L"Light"), 1);
  EXPECT_EQ(font.lfWeight, FW_BOLD);  // false never lowers the weight
  EXPECT_EQ(color, 0xFF010203u);

  EXPECT_EQ(r.GetFont(font, color, L"Long"), 1);
  EXPECT_EQ(std::wcslen(font.lfFaceName), static_cast<size_t>(LF_FACESIZE - 1));

  LOGFONTW untouched{};
  EXPECT_EQ(r.GetFont(untouched, color, L"Missing"), 0);
  EXPECT_EQ(untouched.lfHeight, 0);
}

TEST(SkinReaderTest, AssDataMapsStyleKeywordsAndKeepsAbsentKeys) {
  ValueElement e("",
                 "<dock TipID=\"tip\" StrID=\"\" DockStyle=\"FILL\" AnchorStyle=\"center\" Margin=\"1, 2, 3, 4\" "
                 "Bounds=\"10, 20, 30, 40\" AllowSize=\"true\"/>"
                 "<unknown DockStyle=\"middle\" AnchorStyle=\"center\"/>"
                 "<anchor DockStyle=\"\" AnchorStyle=\"BottomRight\"/>"
                 "<caption DockStyle=\"caption\"/>");
  CSkinReader r = e.Reader();
  CSkinReader child;

  _AssData data;
  data.m_strStrID = L"keep";
  ASSERT_EQ(r.FindChild(child, L"dock"), 1);
  child.GetAssData(&data);
  EXPECT_EQ(data.m_strTipID, L"tip");
  EXPECT_EQ(data.m_strStrID, L"keep");
  EXPECT_EQ(data.m_nStyle, DOCK_FILL);
  EXPECT_EQ(data.m_rcMargin, CRect(1, 2, 3, 4));
  EXPECT_EQ(data.m_rcBounds, CRect(10, 20, 40, 60));
  EXPECT_EQ(data.m_bAllowSize, 1);

  ASSERT_EQ(r.FindChild(child, L"unknown"), 1);
  child.GetAssData(&data);
  EXPECT_EQ(data.m_nStyle, DOCK_FILL);  // no fallback to the anchor style
  EXPECT_EQ(data.m_rcBounds, CRect(10, 20, 40, 60));

  ASSERT_EQ(r.FindChild(child, L"anchor"), 1);
  child.GetAssData(&data);
  EXPECT_EQ(data.m_nStyle, ANCHOR_BOTTOMRIGHT);

  ASSERT_EQ(r.FindChild(child, L"caption"), 1);
  child.GetAssData(&data);
  EXPECT_EQ(data.m_nStyle, DOCK_CAPTION);
  child.GetAssData(nullptr);
}

// --- images: relative names resolve through the skin manager ---------------------

class SkinReaderImageTest : public KarvelTest::SkinManagerTest {
 protected:
  CString Images(const wchar_t* skin, const wchar_t* file) {
    return CommonString::ReparsePath(AppPath() + L"Theme\\" + skin + L"\\images\\" + file);
  }
};

TEST_F(SkinReaderImageTest, PlainImageTakesFileRectAndColor) {
  Manager();
  LoadedXml xml(
      "<v><Back File=\"back.png\" Rect=\"1, 2, 30, 40\" Color=\"0x80FF0000\"/><NoFile Rect=\"1, 1, 2, 2\"/>"
      "<App File=\"%res/logo.png\"/></v>");
  CSkinReader r(xml.Node(L"v"));
  _ImageConfig image;
  EXPECT_EQ(r.GetImage(image, L"Back"), 1);
  EXPECT_EQ(image.m_strFile, Images(L"Default", L"back.png"));
  EXPECT_EQ(image.m_rcSrc, CRect(1, 2, 30, 40));
  EXPECT_EQ(image.m_dwColor, 0x80FF0000u);

  EXPECT_EQ(r.GetImage(image, L"NoFile"), 0);
  EXPECT_EQ(r.GetImage(image, L"Missing"), 0);
  EXPECT_EQ(image.m_rcSrc, CRect(1, 2, 30, 40));

  EXPECT_EQ(r.GetImage(image, L"App"), 1);
  EXPECT_EQ(image.m_strFile, CommonString::ReparsePath(AppPath() + L"res\\logo.png"));
  EXPECT_EQ(image.m_rcSrc, CRect(1, 2, 30, 40));  // no "Rect": kept
}

TEST_F(SkinReaderImageTest, ChildReadersKeepTheDefaultSkinFlag) {
  Manager()->SetSkinFile(L"Blue");
  LoadedXml xml("<v><inner/></v>");
  CSkinReader current(xml.Node(L"v"), 0);
  CSkinReader child;
  ASSERT_EQ(current.FindChild(child, L"inner"), 1);
  EXPECT_EQ(child.TranslatePath(L"a.png"), Images(L"Blue", L"a.png"));
  EXPECT_EQ(CSkinReader(xml.Node(L"v")).TranslatePath(L"a.png"), Images(L"Default", L"a.png"));
  child = CSkinReader();
  EXPECT_EQ(current.FindChild(child, L"missing"), 0);
  EXPECT_EQ(child.IsValid(), 0);
}

TEST_F(SkinReaderImageTest, EdgeImageSizeAlwaysComesFromItsPieces) {
  Manager();
  LoadedXml xml(
      "<v><Bar File=\"bar.png\" Rect=\"0, 0, 500, 500\" left=\"0, 0, 10, 20\" mid=\"10, 0, 11, 18\" "
      "right=\"11, 0, 23, 22\"/>"
      "<Column File=\"col.png\" Hor=\"F\" left=\"0, 0, 8, 5\" mid=\"0, 5, 6, 6\" right=\"0, 6, 7, 13\"/></v>");
  CSkinReader r(xml.Node(L"v"));
  _ImageEdgeConfig bar;
  EXPECT_EQ(r.GetImage(bar, L"Bar"), 1);
  EXPECT_EQ(bar.m_edge.left, CRect(0, 0, 10, 20));
  EXPECT_EQ(bar.m_edge.mid, CRect(10, 0, 11, 18));
  EXPECT_EQ(bar.m_edge.right, CRect(11, 0, 23, 22));
  EXPECT_EQ(bar.m_bHorizontal, 1);
  EXPECT_EQ(bar.m_rcSrc, CRect(0, 0, 23, 22));

  _ImageEdgeConfig column;
  column.m_edge.mid = CRect(0, 0, 99, 99);  // replaced by the element's pieces
  EXPECT_EQ(r.GetImage(column, L"Column"), 1);
  EXPECT_EQ(column.m_bHorizontal, 0);
  EXPECT_EQ(column.m_rcSrc, CRect(0, 0, 8, 13));

  _ImageEdgeConfig none;
  none.m_rcSrc = CRect(1, 2, 3, 4);
  EXPECT_EQ(r.GetImage(none, L"Missing"), 0);
  EXPECT_EQ(none.m_rcSrc, CRect(1, 2, 3, 4));
}

TEST_F(SkinReaderImageTest, BorderImageReadsItsEdgesAndComputesItsSize) {
  Manager();
  LoadedXml xml(
      "<v><Frame File=\"frame.png\">"
      "<EdgeTop left=\"0, 0, 5, 6\" mid=\"5, 0, 6, 4\" right=\"6, 0, 11, 6\"/>"
      "<EdgeBottom left=\"0, 0, 5, 3\" mid=\"5, 0, 6, 3\" right=\"6, 0, 11, 3\"/>"
      "<EdgeLeft left=\"0, 0, 4, 2\" mid=\"0, 2, 4, 3\" right=\"0, 3, 4, 5\"/>"
      "</Frame></v>");
  CSkinReader r(xml.Node(L"v"));
  _ImageBorderConfig frame;
  frame.m_edgeRight.mid = CRect(0, 0, 7, 7);
  EXPECT_EQ(r.GetImage(frame, L"Frame"), 1);
  EXPECT_EQ(frame.m_edgeTop.right, CRect(6, 0, 11, 6));
  EXPECT_EQ(frame.m_edgeLeft.mid, CRect(0, 2, 4, 3));
  EXPECT_EQ(frame.m_edgeRight.mid, CRect(0, 0, 7, 7));  // no EdgeRight: kept
  // W = 5 + 1 + 5; H = 6 (tallest top) + 9 (bottom heights) + 5 (left heights).
  EXPECT_EQ(frame.m_rcSrc, CRect(0, 0, 11, 20));
}

TEST_F(SkinReaderImageTest, StateImagesFillOnlyTheStatesPresent) {
  Manager();
  LoadedXml xml(
      "<v><Btn File=\"btn.png\" Normal=\"0, 0, 10, 10\" Press=\"20, 0, 30, 10\"/>"
      "<Check File=\"chk.png\" UncheckNormal=\"0, 0, 1, 1\" CheckDisable=\"5, 5, 6, 6\"/>"
      "<NoFile Normal=\"0, 0, 1, 1\"/></v>");
  CSkinReader r(xml.Node(L"v"));
  _ImageConfig five[5];
  for (_ImageConfig& state : five) state.m_strFile = L"old";
  EXPECT_EQ(r.Get5StateImage(five, L"Btn"), 1);
  EXPECT_EQ(five[0].m_strFile, Images(L"Default", L"btn.png"));
  EXPECT_EQ(five[0].m_rcSrc, CRect(0, 0, 10, 10));
  EXPECT_EQ(five[2].m_strFile, Images(L"Default", L"btn.png"));
  EXPECT_EQ(five[2].m_rcSrc, CRect(20, 0, 30, 10));
  for (int i : {1, 3, 4}) {
    EXPECT_EQ(five[i].m_strFile, L"old") << i;
    EXPECT_TRUE(five[i].m_rcSrc.IsRectNull()) << i;
  }
  EXPECT_EQ(r.Get5StateImage(five, L"NoFile"), 0);
  EXPECT_EQ(five[0].m_rcSrc, CRect(0, 0, 10, 10));

  _ImageConfig six[6];
  EXPECT_EQ(r.Get6StateImage(six, L"Check"), 1);
  EXPECT_EQ(six[0].m_rcSrc, CRect(0, 0, 1, 1));
  EXPECT_EQ(six[5].m_rcSrc, CRect(5, 5, 6, 6));
  EXPECT_EQ(six[5].m_strFile, Images(L"Default", L"chk.png"));
  EXPECT_TRUE(six[3].m_strFile.IsEmpty());
}
