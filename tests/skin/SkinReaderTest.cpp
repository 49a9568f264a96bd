// The skin reader: attribute values as the scan formats read them, fonts,
// layout records, and images whose relative names resolve through the skin
// manager.

#include <gtest/gtest.h>

#include <cwchar>
#include <tuple>

#include <karvelui/CommonString.h>
#include <karvelui/SkinReader.h>
#include "SkinTestSupport.h"

using namespace KarvelUI;
using KarvelTest::LoadedXml;

namespace {

// The value `read` leaves in an output that started as `start`, and whether the key was found.
template <typename T, typename Read>
std::pair<int, T> ReadOnto(T start, Read read) {
  T out = start;
  const int found = read(out);
  return {found, out};
}

}  // namespace

TEST(SkinReaderTest, ValuesFollowTheScanFormats) {
  LoadedXml xml(
      "<v i=\" -7\" plus=\"+12px\" word=\"abc\" big=\"4294967297\" hex=\"0xFF102030\" oct=\"010\" neg=\"-1\" "
      "bad8=\"09\" fe=\"-2.25e1\" a=\"TRUE\" c=\"t\" d=\"f\" one=\"1\" empty=\"\" gap=\"5 ,6\" spaced=\"3,  \t4\" "
      "wide=\"300, 0, 0\" negative=\"-1, 256, 511\" part=\"10, 20\" rect=\"10, 20, 30, 40\">body</v>");
  CSkinReader r(xml.Node(L"v"));
  CString text;
  EXPECT_EQ(r.GetString(text, L""), 1);  // an empty key reads the text
  EXPECT_EQ(text, L"body");
  EXPECT_EQ(r.GetString(text, L"empty") + r.GetString(text, L"I"), 0);  // keys are exact
  // Found but holding no number: the output is kept (5).
  using IntCase = std::tuple<const wchar_t*, int, int>;
  for (const auto& [key, found, value] : {IntCase{L"i", 1, -7}, IntCase{L"plus", 1, 12}, IntCase{L"word", 1, 5},
                                          IntCase{L"big", 1, 1}, IntCase{L"missing", 0, 5}})
    EXPECT_EQ(ReadOnto(5, [&, key = key](int& out) { return r.GetInt(out, key); }), std::pair(found, value)) << key;
  using DwordCase = std::pair<const wchar_t*, DWORD>;
  for (const auto& [key, value] : {DwordCase{L"hex", 0xFF102030u}, DwordCase{L"oct", 8}, DwordCase{L"neg", 0xFFFFFFFFu},
                                   DwordCase{L"bad8", 0} /* octal stops at the 9 */, DwordCase{L"word", 5}})
    EXPECT_EQ(ReadOnto<DWORD>(5, [&, key = key](DWORD& out) { return r.GetDWORD(out, key); }).second, value) << key;
  EXPECT_FLOAT_EQ(ReadOnto(3.0f, [&](float& out) { return r.GetReal(out, L"fe"); }).second, -22.5f);
  // Only true, false, t and f in any case; anything else is not found and leaves the output (7).
  using BoolCase = std::tuple<const wchar_t*, int, int>;
  for (const auto& [key, found, value] :
       {BoolCase{L"a", 1, 1}, BoolCase{L"c", 1, 1}, BoolCase{L"d", 1, 0}, BoolCase{L"one", 0, 7},
        BoolCase{L"word", 0, 7}})
    EXPECT_EQ(ReadOnto(7, [&, key = key](int& out) { return r.GetBool(out, key); }), std::pair(found, value)) << key;

  // Lists need the comma right after each number: what the scan did not reach keeps its value.
  EXPECT_EQ(ReadOnto(CSize(-1, 4), [&](CSize& out) { return r.GetSize(out, L"gap"); }).second, CSize(5, 4));
  EXPECT_EQ(ReadOnto(CPoint(9, 9), [&](CPoint& out) { return r.GetPoint(out, L"spaced"); }).second, CPoint(3, 4));
  // Colour components keep their low byte.
  EXPECT_EQ(ReadOnto<DWORD>(0, [&](DWORD& out) { return r.GetColor(out, L"wide"); }).second, 0xFF2C0000u);
  EXPECT_EQ(ReadOnto<DWORD>(0, [&](DWORD& out) { return r.GetColor(out, L"negative"); }).second, 0xFFFF00FFu);
  EXPECT_EQ(ReadOnto(CRect(), [&](CRect& out) { return r.GetRect(out, L"rect", 1); }).second, CRect(10, 20, 30, 40));
  // Not absolute: left, top, width, height.
  EXPECT_EQ(ReadOnto(CRect(), [&](CRect& out) { return r.GetRect(out, L"rect", 0); }).second, CRect(10, 20, 40, 60));
  // Components not reached read as 0.
  EXPECT_EQ(ReadOnto(CRect(1, 1, 2, 2), [&](CRect& out) { return r.GetRect(out, L"part", 1); }).second,
            CRect(10, 20, 0, 0));
  EXPECT_EQ(ReadOnto(CRect(1, 1, 2, 2), [&](CRect& out) { return r.GetRect(out, L"missing", 1); }),
            std::pair(0, CRect(1, 1, 2, 2)));
  EXPECT_EQ(CSkinReader().IsValid(), 0);
}

TEST(SkinReaderTest, FontsAreReadOntoTheFontGivenAndLayoutStylesMapTheirKeywords) {
  LoadedXml xml(
      "<v><Title TextColor=\"1, 2, 3\" FontFace=\"DejaVu Sans\" FontSize=\"-16\" FontBold=\"true\"/>"
      "<Light FontBold=\"false\"/><Long FontFace=\"ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789\"/>"
      "<dock TipID=\"tip\" DockStyle=\"FILL\" AnchorStyle=\"center\" Margin=\"1, 2, 3, 4\" "
      "Bounds=\"10, 20, 30, 40\" AllowSize=\"true\"/><unknown DockStyle=\"middle\" AnchorStyle=\"center\"/>"
      "<anchor DockStyle=\"\" AnchorStyle=\"BottomRight\"/><caption DockStyle=\"caption\"/></v>");
  CSkinReader r(xml.Node(L"v")), child;
  LOGFONTW font{};
  font.lfItalic = 1;
  DWORD color = 0;
  EXPECT_EQ(r.GetFont(font, color, L"Title"), 1);
  EXPECT_STREQ(font.lfFaceName, L"DejaVu Sans");
  EXPECT_EQ(std::make_tuple(color, font.lfHeight, font.lfItalic), std::make_tuple(0xFF010203u, LONG{-16}, BYTE{1}));
  EXPECT_EQ(r.GetFont(font, color, L"Light"), 1);
  EXPECT_EQ(font.lfWeight, FW_BOLD);  // false never lowers the weight
  EXPECT_EQ(r.GetFont(font, color, L"Long") - r.GetFont(font, color, L"Missing"), 1);
  EXPECT_EQ(std::wcslen(font.lfFaceName), static_cast<size_t>(LF_FACESIZE - 1));

  _AssData data;
  data.m_strStrID = L"keep";
  ASSERT_EQ(r.FindChild(child, L"dock"), 1);
  child.GetAssData(&data);
  EXPECT_EQ(std::make_tuple(data.m_strTipID + L"/" + data.m_strStrID, data.m_nStyle, data.m_rcMargin, data.m_rcBounds,
                            data.m_bAllowSize),
            std::make_tuple(CString(L"tip/keep"), int{DOCK_FILL}, CRect(1, 2, 3, 4), CRect(10, 20, 40, 60), 1));
  // An unknown dock style keeps the style: there is no fall back to the anchor style.
  const std::pair<const wchar_t*, int> styles[] = {
      {L"unknown", DOCK_FILL}, {L"anchor", ANCHOR_BOTTOMRIGHT}, {L"caption", DOCK_CAPTION}};
  for (const auto& [name, style] : styles) {
    ASSERT_EQ(r.FindChild(child, name), 1);
    child.GetAssData(&data);
    EXPECT_EQ(data.m_nStyle, style) << name;
  }
  EXPECT_EQ(r.FindChild(child, L"missing"), 0);
}

class SkinReaderImageTest : public KarvelTest::SkinManagerTest {
 protected:
  CString Images(const wchar_t* skin, const wchar_t* file) {
    return CommonString::ReparsePath(AppPath() + L"Theme\\" + skin + L"\\images\\" + file);
  }
};

TEST_F(SkinReaderImageTest, ImagesTakeFileRectAndColorAndResolveInTheSkinOfTheirReader) {
  Manager()->SetSkinFile(L"Blue");
  LoadedXml xml(
      "<v><Back File=\"back.png\" Rect=\"1, 2, 30, 40\" Color=\"0x80FF0000\"/><NoFile Rect=\"1, 1, 2, 2\"/>"
      "<App File=\"%res/logo.png\"/><Btn File=\"btn.png\" Normal=\"0, 0, 10, 10\" Press=\"20, 0, 30, 10\"/>"
      "<Check File=\"chk.png\" CheckDisable=\"5, 5, 6, 6\"/></v>");
  CSkinReader r(xml.Node(L"v"));  // the default skin's
  _ImageConfig image;
  EXPECT_EQ(r.GetImage(image, L"Back"), 1);
  EXPECT_EQ(std::make_tuple(image.m_strFile, image.m_dwColor), std::make_tuple(Images(L"Default", L"back.png"), 0x80FF0000u));
  EXPECT_EQ(r.GetImage(image, L"NoFile"), 0);
  EXPECT_EQ(r.GetImage(image, L"App"), 1);  // no "Rect": kept
  EXPECT_EQ(std::make_tuple(image.m_strFile, image.m_rcSrc),
            std::make_tuple(CommonString::ReparsePath(AppPath() + L"res\\logo.png"), CRect(1, 2, 30, 40)));
  CSkinReader current(xml.Node(L"v"), 0), child;
  ASSERT_EQ(current.FindChild(child, L"Back"), 1);  // children keep their reader's skin
  EXPECT_EQ(child.TranslatePath(L"a.png"), Images(L"Blue", L"a.png"));

  // State images fill only the states present.
  _ImageConfig five[5], six[6];
  for (_ImageConfig& state : five) state.m_strFile = L"old";
  EXPECT_EQ(r.Get5StateImage(five, L"Btn"), 1);
  EXPECT_EQ(std::make_tuple(five[2].m_strFile, five[2].m_rcSrc, five[1].m_strFile),
            std::make_tuple(Images(L"Default", L"btn.png"), CRect(20, 0, 30, 10), CString(L"old")));
  EXPECT_EQ(r.Get5StateImage(five, L"NoFile") + 2 * r.Get6StateImage(six, L"Check"), 2);
  EXPECT_EQ(std::make_tuple(six[5].m_rcSrc, six[0].m_strFile), std::make_tuple(CRect(5, 5, 6, 6), CString()));
}

TEST_F(SkinReaderImageTest, EdgeAndBorderImagesTakeTheirSizeFromTheirPieces) {
  Manager();
  LoadedXml xml(
      "<v><Bar File=\"bar.png\" Rect=\"0, 0, 500, 500\" left=\"0, 0, 10, 20\" mid=\"10, 0, 11, 18\" "
      "right=\"11, 0, 23, 22\"/><Column File=\"col.png\" Hor=\"F\" left=\"0, 0, 8, 5\" mid=\"0, 5, 6, 6\" "
      "right=\"0, 6, 7, 13\"/><Frame File=\"frame.png\"><EdgeTop left=\"0, 0, 5, 6\" mid=\"5, 0, 6, 4\" "
      "right=\"6, 0, 11, 6\"/><EdgeBottom left=\"0, 0, 5, 3\" mid=\"5, 0, 6, 3\" right=\"6, 0, 11, 3\"/>"
      "<EdgeLeft left=\"0, 0, 4, 2\" mid=\"0, 2, 4, 3\" right=\"0, 3, 4, 5\"/></Frame></v>");
  CSkinReader r(xml.Node(L"v"));
  _ImageEdgeConfig bar, column;
  EXPECT_EQ(r.GetImage(bar, L"Bar") + r.GetImage(column, L"Column"), 2);
  EXPECT_EQ(r.GetImage(column, L"Missing"), 0);
  EXPECT_EQ(std::make_tuple(bar.m_edge.mid, bar.m_rcSrc), std::make_tuple(CRect(10, 0, 11, 18), CRect(0, 0, 23, 22)));
  EXPECT_EQ(std::make_tuple(column.m_bHorizontal, column.m_rcSrc), std::make_tuple(0, CRect(0, 0, 8, 13)));
  _ImageBorderConfig frame;
  frame.m_edgeRight.mid = CRect(0, 0, 7, 7);
  EXPECT_EQ(r.GetImage(frame, L"Frame"), 1);
  // No EdgeRight: kept. W = 5 + 1 + 5; H = 6 (tallest top) + 9 (bottom heights) + 5 (left heights).
  EXPECT_EQ((std::vector{frame.m_edgeLeft.mid, frame.m_edgeRight.mid, frame.m_rcSrc}),
            (std::vector{CRect(0, 2, 4, 3), CRect(0, 0, 7, 7), CRect(0, 0, 11, 20)}));
}
