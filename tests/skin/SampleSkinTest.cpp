// The committed sample skins and string table (assets/), read through the
// real skin manager and reader: the things that would break silently when
// someone edits a skin by hand or restyles its pictures.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
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
  DWORD corner;
  DWORD edge;
  DWORD centre;
};
const SkinColours kDefaultColours{"Default", 0xFF3E424A, 0xFF3A3E45, 0xFF2B2E33};
const SkinColours kOceanColours{"Ocean", 0xFF1E6091, 0xFF1A4E75, 0xFF123A5C};

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

std::vector<const CEdge*> Edges(const _ImageBorderConfig& border) {
  return {&border.m_edgeTop, &border.m_edgeLeft, &border.m_edgeRight, &border.m_edgeBottom, &border.m_edgeCenter};
}

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

  // Where a skin's picture must resolve to, normalised as the manager does.
  std::wstring InImagesOf(const char* skin, const wchar_t* file) const {
    return CommonString::ReparsePath(AppPath() + L"Theme\\" + FromNativePath(skin) + L"\\images\\" + file).str();
  }

  // Current skin Ocean, as after the user picked it.
  void ChooseOcean() { ASSERT_EQ(Manager()->SetSkinFile(L"Ocean"), 1); }

  std::vector<std::unique_ptr<CXmlDocument>> m_documents;
};

TEST_F(SampleSkinTest, ListsBothSkinsWithTheirDisplayNames) {
  CArray<SkinItem> items;
  Manager()->GetAllSkinItem(items);
  ASSERT_EQ(items.GetSize(), 2);
  EXPECT_EQ(items[0].m_strName, L"Default");
  EXPECT_EQ(items[0].m_strText, L"Graphite");
  EXPECT_EQ(items[1].m_strName, L"Ocean");
  EXPECT_EQ(items[1].m_strText, L"Ocean");
  EXPECT_EQ(Manager()->GetCurrentSkinName(), L"Default");
}

TEST_F(SampleSkinTest, MainFormBuildNodeNamesEntriesTheSkinHolds) {
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
  ChooseOcean();
  LOGFONTW font{};
  DWORD colour = 0;
  Manager()->GetFontAndColor(L"Title", font, colour);
  EXPECT_EQ(colour, 0xFFC8ECFAu) << "Ocean's own title style";
  EXPECT_EQ(font.lfWeight, 700);
  Manager()->GetFontAndColor(L"Normal", font, colour);
  EXPECT_EQ(colour, 0xFFC8CCD2u) << "the default skin's style";
}

TEST_F(SampleSkinTest, FormBorderResolvesIntoEachSkinsOwnImages) {
  const _ImageBorderConfig graphite = FormBorder("Default", 1);
  EXPECT_EQ(graphite.m_strFile.str(), InImagesOf("Default", L"FormBorder.png"));
  EXPECT_TRUE(fs::exists(ToNativePath(graphite.m_strFile)));

  ChooseOcean();
  const _ImageBorderConfig ocean = FormBorder("Ocean", 0);
  EXPECT_EQ(ocean.m_strFile.str(), InImagesOf("Ocean", L"FormBorder.png"));
  EXPECT_TRUE(fs::exists(ToNativePath(ocean.m_strFile)));
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
    EXPECT_EQ(entry.GetRect(position, L"PositionRect", 0), 1);
    EXPECT_EQ(entry.GetRect(margin, L"BorderMargin", 1), 1);
    EXPECT_EQ(entry.GetSize(minimum, L"MinSize"), 1);
    EXPECT_EQ(entry.GetPoint(round, L"RoundDiameters"), 1);
    EXPECT_EQ(entry.GetBool(resize, L"Resize"), 1);
    EXPECT_EQ(entry.GetBool(fullWindow, L"IsFullWindow"), 1);
    EXPECT_EQ(position, CRect(120, 80, 1080, 720));
    EXPECT_EQ(minimum, CSize(480, 320));
    EXPECT_EQ(resize, 1);
    EXPECT_EQ(fullWindow, 0);

    _ImageBorderConfig border;
    ASSERT_EQ(entry.GetImage(border, L"Image"), 1);
    // The caption docks over the caption band, so the top margin leaves it room.
    EXPECT_EQ(margin.top, 0);
    EXPECT_EQ(CaptionHeight(skin), TallestPiece(border.m_edgeTop));
    EXPECT_EQ(margin.bottom, TallestPiece(border.m_edgeBottom));
    EXPECT_EQ(margin.left, WidestPiece(border.m_edgeLeft));
    EXPECT_EQ(margin.right, WidestPiece(border.m_edgeRight));
    // The rounded window corner must fall inside the corner pieces.
    EXPECT_LE(round.x / 2, border.m_edgeTop.left.Width());
    EXPECT_LE(round.y / 2, TallestPiece(border.m_edgeTop));
  }
}

TEST_F(SampleSkinTest, EveryEdgePieceLiesInsideItsPicture) {
  ChooseOcean();
  for (const auto& [skin, fromDefault] : {std::pair{"Default", 1}, std::pair{"Ocean", 0}}) {
    SCOPED_TRACE(skin);
    const _ImageBorderConfig border = FormBorder(skin, fromDefault);
    const Picture picture(border.m_strFile);
    ASSERT_TRUE(picture.Loaded());
    const CRect all = picture.Bounds();
    for (const CEdge* edge : Edges(border))
      for (const CRect* piece : {&edge->left, &edge->mid, &edge->right}) {
        EXPECT_FALSE(piece->IsRectEmpty());
        EXPECT_TRUE(piece->left >= all.left && piece->top >= all.top && piece->right <= all.right &&
                    piece->bottom <= all.bottom)
            << piece->left << ", " << piece->top << ", " << piece->right << ", " << piece->bottom << " in "
            << all.right << " x " << all.bottom;
      }
  }
}

TEST_F(SampleSkinTest, SkinsDifferAtCornerEdgeAndCentre) {
  ChooseOcean();
  for (const auto& [expected, fromDefault] : {std::pair{kDefaultColours, 1}, std::pair{kOceanColours, 0}}) {
    SCOPED_TRACE(expected.skin);
    const _ImageBorderConfig border = FormBorder(expected.skin, fromDefault);
    const Picture picture(border.m_strFile);
    ASSERT_TRUE(picture.Loaded());
    EXPECT_EQ(picture.AtMiddleOf(border.m_edgeTop.left), expected.corner);
    EXPECT_EQ(picture.AtMiddleOf(border.m_edgeTop.right), expected.corner);
    EXPECT_EQ(picture.AtMiddleOf(border.m_edgeLeft.mid), expected.edge);
    EXPECT_EQ(picture.AtMiddleOf(border.m_edgeCenter.mid), expected.centre);
    EXPECT_EQ(picture.At(0, 0) >> 24, 0u) << "the outer corner is rounded off";
  }
  EXPECT_NE(kDefaultColours.corner, kOceanColours.corner);
  EXPECT_NE(kDefaultColours.edge, kOceanColours.edge);
  EXPECT_NE(kDefaultColours.centre, kOceanColours.centre);
}

// --- string table -----------------------------------------------------------------

class SampleStringTableTest : public testing::Test {
 protected:
  void TearDown() override { CommonString::FreeInstance(); }
  const fs::path m_file = kAssets / "KarvelView.lng";
};

TEST_F(SampleStringTableTest, LoadsTheStartupAndMainFormTexts) {
  CommonString* table = CommonString::GetInstance();
  ASSERT_EQ(table->LoadStringTable(FromNativePath(m_file.string())), 1);
  EXPECT_EQ(table->GetStringViaID(L"STRID_ERROR_D3DINITFAIL"),
            L"The graphics device could not be initialised.\r\nPlease check your display driver.");
  EXPECT_FALSE(table->GetStringViaID(L"STRID_ERROR_D3DINITFAIL_TITLE").IsEmpty());
  EXPECT_EQ(table->GetStringViaID(L"STRID_MAINFORM_TITLE"), L"KarvelView");
  for (const wchar_t* id : {L"STRID_ABOUT", L"STRID_OPEN_FOLDER", L"STRID_ZOOM_IN", L"STRID_ZOOM_OUT",
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
