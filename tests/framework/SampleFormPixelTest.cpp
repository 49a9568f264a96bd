// The sample viewer's main form from the committed skins, painted by the
// OpenGL backend off screen: its border picture lands where the skin puts
// it, and switching skins repaints it with the other skin's picture.

#include <gmock/gmock.h>

#include <filesystem>

#include "framework/FrameworkTestSupport.h"
#include "support/GLTesting.h"

namespace KarvelTest {
namespace {

namespace fs = std::filesystem;

// Colours the two skins' border pictures hold (assets/README.md): a corner
// piece of the caption band, the left edge and the centre fill.
struct Expected {
  CPoint corner;
  DWORD cornerColour;
  int edgeX;
  DWORD edgeColour;
  DWORD centreColour;
};
constexpr Expected kGraphite{CPoint(8, 16), 0xFF3E424A, 4, 0xFF3A3E45, 0xFF2B2E33};
constexpr Expected kOcean{CPoint(12, 20), 0xFF1E6091, 6, 0xFF1A4E75, 0xFF123A5C};

class SampleFormPixelTest : public SkinManagerTest {
 protected:
  void SetUp() override {
    // A private copy: freeing the skin manager writes PreSkin.xml beside Theme.
    fs::copy(fs::path(KARVEL_SOURCE_DIR) / "assets" / "Theme", m_app.Path() / "Theme", fs::copy_options::recursive);
    ASSERT_EQ(DXCore::InitInstance(), S_OK);
    ASSERT_EQ(Manager()->InitSkinData(), 1);
    form = new CUIForm();
    form->SetObjectID(L"MainForm");
    ASSERT_TRUE(form->Create(WS_POPUP | WS_VISIBLE | WS_THICKFRAME, L"KarvelSampleForm", L"Sample", nullptr, 0,
                             CRect(0, 0, 200, 200)));
  }
  void TearDown() override {
    if (form) form->Release();
    DXCore::ExitInstance();
    CUIManager::FreeInstance();
    SkinManagerTest::TearDown();
  }
  Frame Paint() {
    form->OnPaint(0);
    return ReadBack(form->GetRenderDevice()->GetD3DDevice());
  }
  void ExpectSkin(const Frame& frame, const Expected& skin) {
    const CRect client = form->GetBounds();
    const int w = client.Width(), h = client.Height();
    EXPECT_EQ((std::vector{frame.At(skin.corner.x, skin.corner.y), frame.At(w - 1 - skin.corner.x, skin.corner.y),
                           frame.At(skin.edgeX, h / 2), frame.At(w - 1 - skin.edgeX, h / 2),
                           frame.At(w / 2, h - 1 - skin.edgeX), frame.At(w / 2, h / 2)}),
              (std::vector{skin.cornerColour, skin.cornerColour, skin.edgeColour, skin.edgeColour, skin.edgeColour,
                           skin.centreColour}));
  }

  CUIForm* form = nullptr;
};

TEST_F(SampleFormPixelTest, TheBorderPictureFramesTheWindowInEachSkinAndFollowsItsSize) {
  ASSERT_EQ(WindowRectOf(*form), CRect(120, 80, 1080, 720));
  ExpectSkin(Paint(), kGraphite);
  form->MoveWindow(120, 80, 500, 300);
  ASSERT_EQ(form->GetBounds(), CRect(0, 0, 500, 300));
  ExpectSkin(Paint(), kGraphite);
  Manager()->SetCurrentSkin(L"Ocean");
  EXPECT_EQ(form->GetAssData().m_rcMargin, CRect(12, 0, 12, 12));
  ExpectSkin(Paint(), kOcean);
}

}  // namespace
}  // namespace KarvelTest
