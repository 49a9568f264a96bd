// The committed sample skins and string table (assets/), read through the
// real skin manager and reader: the things that would break silently when
// someone edits a skin by hand. What the border pictures look like on screen
// is checked by tests/framework/SampleFormPixelTest.cpp.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

#include <karvelui/CommonString.h>
#include <karvelui/SkinReader.h>
#include "SkinTestSupport.h"
#include "support/PictureFiles.h"

namespace fs = std::filesystem;
using namespace KarvelUI;

namespace {

const fs::path kAssets = fs::path(KARVEL_SOURCE_DIR) / "assets";

LONG TallestPiece(const CEdge& e) { return std::max({e.left.Height(), e.mid.Height(), e.right.Height()}); }
LONG WidestPiece(const CEdge& e) { return std::max({e.left.Width(), e.mid.Width(), e.right.Width()}); }

// The committed Theme folder in a private application folder: the manager
// writes PreSkin.xml beside Theme\ when it is freed, which must reach
// neither the source tree nor a folder that tests running beside this one
// read their previous skin from.
class SampleSkinTest : public KarvelTest::SkinManagerTest {
 protected:
  void SetUp() override {
    fs::copy(kAssets / "Theme", m_app.Path() / "Theme", fs::copy_options::recursive);
    ASSERT_EQ(Manager()->InitSkinData(), 1);
  }
};

TEST_F(SampleSkinTest, ListsBothSkinsAndTheMainFormNamesEntriesTheSkinHolds) {
  CArray<SkinItem> items;
  Manager()->GetAllSkinItem(items);
  ASSERT_EQ(items.GetSize(), 2);
  EXPECT_EQ(items[0].m_strName + L"=" + items[0].m_strText, L"Default=Graphite");
  EXPECT_EQ(items[1].m_strName + L"=" + items[1].m_strText, L"Ocean=Ocean");
  EXPECT_EQ(Manager()->GetCurrentSkinName(), L"Default");

  void* form = Manager()->GetBuildNode(L"BuildRoot MainForm");
  ASSERT_NE(form, nullptr);
  EXPECT_EQ(CXmlDocument::GetNodeAttribute(form, L"css"), L"Main");
  EXPECT_EQ(CXmlDocument::GetNodeAttribute(form, L"ass"), L"Main");
  // The root would skip its layout while the client size equals an anchor size.
  _AssData layout;
  Manager()->ReadAssData(L"Main", L"CUIForm", &layout);
  EXPECT_TRUE(layout.m_rcBounds.IsRectNull());
}

TEST_F(SampleSkinTest, SecondSkinLoadsAndFallsBackToTheDefaultForTheRest) {
  ASSERT_EQ(Manager()->SetSkinFile(L"Ocean"), 1);
  LOGFONTW font{};
  DWORD colour = 0;
  Manager()->GetFontAndColor(L"Title", font, colour);
  EXPECT_EQ(colour, 0xFFC8ECFAu) << "Ocean's own title style";
  EXPECT_EQ(font.lfWeight, 700);
  Manager()->GetFontAndColor(L"Normal", font, colour);
  EXPECT_EQ(colour, 0xFFC8CCD2u) << "the default skin's style";
}

// A css entry of the current skin replaces the default's whole, so each
// skin's form entry must carry every key; BorderMargin is where controls
// dock, so it must match the bands the picture draws, whose pieces must lie
// inside the skin's own picture.
TEST_F(SampleSkinTest, FormEntriesCarryEveryKeyAndBordersMatchTheirOwnPictures) {
  for (const char* skin : {"Default", "Ocean"}) {
    SCOPED_TRACE(skin);
    CXmlDocument doc;
    ASSERT_EQ(doc.LoadFile(KarvelTest::LibraryPath(m_app.Path() / "Theme" / skin / "KarvelView.xml")), 1);
    ASSERT_EQ(Manager()->SetSkinFile(FromNativePath(skin)), 1);
    CSkinReader entry(doc.PathWalk(L"UIRoot css CUIForm Main"), 0);
    ASSERT_TRUE(entry.IsValid());
    CRect position, margin;
    CSize minimum;
    CPoint round;
    int resize = 0, fullWindow = 1;
    EXPECT_EQ(entry.GetRect(position, L"PositionRect", 0) + entry.GetRect(margin, L"BorderMargin", 1) +
                  entry.GetSize(minimum, L"MinSize") + entry.GetPoint(round, L"RoundDiameters") +
                  entry.GetBool(resize, L"Resize") + entry.GetBool(fullWindow, L"IsFullWindow"),
              6);
    EXPECT_EQ(position, CRect(120, 80, 1080, 720));
    EXPECT_EQ(minimum, CSize(480, 320));
    EXPECT_EQ(resize, 1);
    EXPECT_EQ(fullWindow, 0);

    _ImageBorderConfig border;
    ASSERT_EQ(entry.GetImage(border, L"Image"), 1);
    EXPECT_EQ(border.m_strFile,
              CommonString::ReparsePath(AppPath() + L"Theme\\" + FromNativePath(skin) + L"\\images\\FormBorder.png"));
    EXPECT_EQ(CRect(WidestPiece(border.m_edgeLeft), TallestPiece(border.m_edgeTop), WidestPiece(border.m_edgeRight),
                    TallestPiece(border.m_edgeBottom)),
              margin);
    // The rounded window corner must fall inside the corner pieces.
    EXPECT_LE(round.x / 2, border.m_edgeTop.left.Width());
    EXPECT_LE(round.y / 2, margin.top);

    const KarvelTest::DecodedPicture picture =
        KarvelTest::DecodePicture(KarvelTest::TempDir::Read(ToNativePath(border.m_strFile)));
    ASSERT_GT(picture.width, 0);
    const CRect all(0, 0, picture.width, picture.height);
    for (const CEdge* edge :
         {&border.m_edgeTop, &border.m_edgeLeft, &border.m_edgeRight, &border.m_edgeBottom, &border.m_edgeCenter})
      for (const CRect* piece : {&edge->left, &edge->mid, &edge->right}) {
        EXPECT_FALSE(piece->IsRectEmpty());
        EXPECT_EQ(*piece & all, *piece) << piece->left << "," << piece->top << "," << piece->right << ","
                                        << piece->bottom;
      }
  }
}

// --- string table -----------------------------------------------------------------

TEST(SampleStringTableTest, HoldsTheStartupAndMainFormTextsAndNoTextIsCutByAComment) {
  const fs::path file = kAssets / "KarvelView.lng";
  CommonString table;
  ASSERT_EQ(table.LoadStringTable(FromNativePath(file.string())), 1);
  EXPECT_EQ(table.GetStringViaID(L"STRID_ERROR_D3DINITFAIL"),
            L"The graphics device could not be initialised.\r\nPlease check your display driver.");
  EXPECT_EQ(table.GetStringViaID(L"STRID_MAINFORM_TITLE"), L"KarvelView");
  for (const wchar_t* id : {L"STRID_ERROR_D3DINITFAIL_TITLE", L"STRID_ABOUT", L"STRID_OPEN_FOLDER", L"STRID_ZOOM_IN",
                            L"STRID_ZOOM_OUT", L"STRID_ROTATE_LEFT", L"STRID_ROTATE_RIGHT", L"STRID_NEXT_PICTURE",
                            L"STRID_PREV_PICTURE", L"STRID_TIP_ZOOM_IN", L"STRID_TIP_NEXT_PICTURE"})
    EXPECT_FALSE(table.GetStringViaID(id).IsEmpty()) << id;

  // A ';' inside a text silently cuts it there, so only comment lines may hold one.
  std::ifstream in(file);
  std::string line;
  int entries = 0;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == ';') continue;
    EXPECT_NE(line.find('='), std::string::npos) << line;
    EXPECT_EQ(line.find(';'), std::string::npos) << line;
    ++entries;
  }
  EXPECT_GT(entries, 10);
}

}  // namespace
