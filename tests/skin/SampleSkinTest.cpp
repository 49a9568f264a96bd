// The committed sample skins and string table (assets/), read through the
// real skin manager and reader: the things that would break silently when
// someone edits a skin by hand or restyles its pictures.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <tuple>
#include <vector>

#include <karvelui/CommonString.h>
#include <karvelui/ResourceCache.h>
#include "render/PictureDecoder.h"
#include <karvelui/SkinReader.h>
#include "SkinTestSupport.h"

// After the library's headers, which define TRUE and FALSE as constants.
#include <FreeImage.h>

namespace fs = std::filesystem;
using namespace KarvelUI;

namespace {

const fs::path kAssets = fs::path(KARVEL_SOURCE_DIR) / "assets";

// What the form border pictures hold at a corner (the middle of the
// top-left piece), on an edge (the middle of the left column's stretched
// piece) and in the centre; assets/README.md documents the same values.
struct SkinColours {
  const char* skin;
  int fromDefault;
  DWORD corner, edge, centre;
};

// A picture loaded as 32 bits per pixel, read top-down.
class Picture {
 public:
  explicit Picture(const CString& file) {
    const std::string native = ToNativePath(file);
    FIBitmapPtr loaded(FreeImage_Load(FreeImage_GetFileType(native.c_str(), 0), native.c_str(), 0));
    if (loaded) m_bitmap.reset(FreeImage_ConvertTo32Bits(loaded.get()));
  }
  bool Loaded() const { return m_bitmap != nullptr; }
  CRect Bounds() const {
    return {0, 0, LONG(FreeImage_GetWidth(m_bitmap.get())), LONG(FreeImage_GetHeight(m_bitmap.get()))};
  }
  DWORD At(int x, int y) const {
    RGBQUAD pixel{};
    FreeImage_GetPixelColor(m_bitmap.get(), x, Bounds().bottom - 1 - y, &pixel);
    return DWORD(pixel.rgbReserved) << 24 | DWORD(pixel.rgbRed) << 16 | DWORD(pixel.rgbGreen) << 8 | pixel.rgbBlue;
  }
  DWORD AtMiddleOf(const CRect& piece) const { return At((piece.left + piece.right) / 2, (piece.top + piece.bottom) / 2); }

 private:
  FIBitmapPtr m_bitmap;
};

LONG TallestPiece(const CEdge& edge) {
  return std::max({edge.left.Height(), edge.mid.Height(), edge.right.Height()});
}

LONG WidestPiece(const CEdge& edge) { return std::max({edge.left.Width(), edge.mid.Width(), edge.right.Width()}); }

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

  // The skin's own form entry "Main", read as the manager hands it out:
  // fromDefault 1 for the default skin's file, 0 for the current skin's.
  CSkinReader FormEntry(const char* skin, int fromDefault) {
    m_documents.push_back(std::make_unique<CXmlDocument>());
    CXmlDocument& doc = *m_documents.back();
    EXPECT_EQ(doc.LoadFile(KarvelTest::LibraryPath(m_app.Path() / "Theme" / skin / "KarvelView.xml")), 1) << skin;
    void* node = doc.IsLoaded() ? doc.PathWalk(L"UIRoot css CUIForm Main") : nullptr;
    EXPECT_NE(node, nullptr) << skin;
    return CSkinReader(node, fromDefault);
  }

  // The height of the skin's own caption layout entry.
  LONG CaptionHeight(const char* skin) {
    CXmlDocument doc;
    EXPECT_EQ(doc.LoadFile(KarvelTest::LibraryPath(m_app.Path() / "Theme" / skin / "KarvelView.xml")), 1) << skin;
    CRect bounds;
    if (void* node = doc.IsLoaded() ? doc.PathWalk(L"UIRoot ass CUICaption Main") : nullptr)
      CSkinReader(node).GetRect(bounds, L"Bounds", 0);
    return bounds.Height();
  }

  _ImageBorderConfig FormBorder(const char* skin, int fromDefault) {
    _ImageBorderConfig border;
    CSkinReader entry = FormEntry(skin, fromDefault);
    if (entry.IsValid()) {
      EXPECT_EQ(entry.GetImage(border, L"Image"), 1) << skin;
    }
    return border;
  }

  // Current skin Ocean, as after the user picked it.
  void ChooseOcean() { ASSERT_EQ(Manager()->SetSkinFile(L"Ocean"), 1); }

  std::vector<std::unique_ptr<CXmlDocument>> m_documents;
};

TEST_F(SampleSkinTest, TheMainFormsEntriesExistAndTheSecondSkinFallsBackToTheDefaultForTheRest) {
  CArray<SkinItem> items;
  Manager()->GetAllSkinItem(items);
  ASSERT_EQ(items.GetSize(), 2);
  EXPECT_EQ(items[1].m_strName, L"Ocean");
  void* form = Manager()->GetBuildNode(L"BuildRoot MainForm");
  ASSERT_NE(form, nullptr);
  EXPECT_EQ(CXmlDocument::GetNodeAttribute(form, L"css") + CXmlDocument::GetNodeAttribute(form, L"ass"), L"MainMain");
  // The root would skip its layout while the client size equals an anchor size.
  _AssData layout;
  Manager()->ReadAssData(L"Main", L"CUIForm", &layout);
  EXPECT_TRUE(layout.m_rcBounds.IsRectNull());

  ChooseOcean();
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
// dock, so it must match the bands the picture draws.
TEST_F(SampleSkinTest, FormEntriesCarryEveryKeyAndMarginsMatchTheirBorders) {
  for (const char* skin : {"Default", "Ocean"}) {
    SCOPED_TRACE(skin);
    CSkinReader entry = FormEntry(skin, 1);
    ASSERT_TRUE(entry.IsValid());
    CRect position, margin;
    CSize minimum;
    CPoint round;
    int resize = 0, fullWindow = 1;
    EXPECT_EQ((std::vector{entry.GetRect(position, L"PositionRect", 0), entry.GetRect(margin, L"BorderMargin", 1),
                           entry.GetSize(minimum, L"MinSize"), entry.GetPoint(round, L"RoundDiameters"),
                           entry.GetBool(resize, L"Resize"), entry.GetBool(fullWindow, L"IsFullWindow")}),
              std::vector<int>(6, 1));
    EXPECT_EQ(std::make_tuple(position, minimum, resize, fullWindow),
              std::make_tuple(CRect(120, 80, 1080, 720), CSize(480, 320), 1, 0));

    _ImageBorderConfig border;
    ASSERT_EQ(entry.GetImage(border, L"Image"), 1);
    // The caption docks over the caption band, so the top margin leaves it room.
    EXPECT_EQ(CaptionHeight(skin), TallestPiece(border.m_edgeTop));
    EXPECT_EQ(margin, CRect(WidestPiece(border.m_edgeLeft), 0, WidestPiece(border.m_edgeRight),
                            TallestPiece(border.m_edgeBottom)));
    // The rounded window corner must fall inside the corner pieces.
    EXPECT_LE(round.x / 2, border.m_edgeTop.left.Width());
    EXPECT_LE(round.y / 2, TallestPiece(border.m_edgeTop));
  }
}

// Each skin's border resolves into its own images (the colours differ),
// every piece lies inside the picture and the outer corner is rounded off.
TEST_F(SampleSkinTest, EachSkinsBorderPiecesLieInsideItsOwnPictureWithItsColours) {
  ChooseOcean();
  for (const SkinColours& expected : {SkinColours{"Default", 1, 0xFF3E424A, 0xFF3A3E45, 0xFF2B2E33},
                                      SkinColours{"Ocean", 0, 0xFF1E6091, 0xFF1A4E75, 0xFF123A5C}}) {
    SCOPED_TRACE(expected.skin);
    const _ImageBorderConfig border = FormBorder(expected.skin, expected.fromDefault);
    const Picture picture(border.m_strFile);
    ASSERT_TRUE(picture.Loaded());
    const CRect all = picture.Bounds();
    for (const CEdge* edge :
         {&border.m_edgeTop, &border.m_edgeLeft, &border.m_edgeRight, &border.m_edgeBottom, &border.m_edgeCenter})
      for (const CRect* piece : {&edge->left, &edge->mid, &edge->right}) {
        CRect inside;
        EXPECT_TRUE(!piece->IsRectEmpty() && inside.IntersectRect(*piece, all) && inside == *piece)
            << piece->left << ", " << piece->top << ", " << piece->right << ", " << piece->bottom;
      }
    EXPECT_EQ((std::vector{picture.AtMiddleOf(border.m_edgeTop.left), picture.AtMiddleOf(border.m_edgeTop.right),
                           picture.AtMiddleOf(border.m_edgeLeft.mid), picture.AtMiddleOf(border.m_edgeCenter.mid),
                           picture.At(0, 0) >> 24}),
              (std::vector<DWORD>{expected.corner, expected.corner, expected.edge, expected.centre, 0u}));
  }
}

class SampleStringTableTest : public testing::Test {
 protected:
  void TearDown() override { CommonString::FreeInstance(); }
  const fs::path m_file = kAssets / "KarvelView.lng";
};

TEST_F(SampleStringTableTest, LoadsTheStartupAndMainFormTexts) {
  CommonString* table = CommonString::GetInstance();
  ASSERT_EQ(table->LoadStringTable(FromNativePath(m_file.string())), 1);
  // The escaped line break becomes a real one.
  EXPECT_NE(table->GetStringViaID(L"STRID_ERROR_D3DINITFAIL").Find(L".\r\nPlease"), -1);
  EXPECT_EQ(table->GetStringViaID(L"STRID_MAINFORM_TITLE"), L"KarvelView");
  for (const wchar_t* id : {L"STRID_ERROR_D3DINITFAIL_TITLE", L"STRID_ABOUT", L"STRID_OPEN_FOLDER", L"STRID_ZOOM_IN", L"STRID_ZOOM_OUT",
                            L"STRID_ROTATE_LEFT", L"STRID_ROTATE_RIGHT", L"STRID_NEXT_PICTURE",
                            L"STRID_PREV_PICTURE", L"STRID_TIP_ZOOM_IN", L"STRID_TIP_NEXT_PICTURE"})
    EXPECT_FALSE(table->GetStringViaID(id).IsEmpty()) << id;
}

// A ';' inside a text silently cuts it there, so only comment lines may
// hold one.
TEST_F(SampleStringTableTest, NoTextIsCutByAComment) {
  std::ifstream in(m_file);
  ASSERT_TRUE(in);
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
