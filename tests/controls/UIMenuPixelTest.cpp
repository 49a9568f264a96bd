// A context menu popped over the sample viewer's main form in each committed
// skin, painted by the OpenGL backend off screen and read back.

#include <gmock/gmock.h>

#include <filesystem>

#include <karvelui/IMenu.h>
#include <karvelui/UIMenu.h>
#include "framework/FrameworkTestSupport.h"
#include "support/GLTesting.h"

namespace KarvelTest {
namespace {

namespace fs = std::filesystem;

// Colours of each skin's Menu.png (assets/README.md).
struct MenuSkin {
  const char* name;
  DWORD outline, fill, mark, separator;
};
constexpr MenuSkin kSkins[] = {{"Default", 0xFF15171A, 0xFF2F3238, 0xFFE8A33D, 0xFF474C55},
                               {"Ocean", 0xFF06141F, 0xFF123A5C, 0xFF3FC1E8, 0xFF2A6A98}};
void PrintTo(const MenuSkin& skin, std::ostream* out) { *out << skin.name; }

void OnCommand(IMenu*) {}

class MenuPixelTest : public SkinManagerTest, public testing::WithParamInterface<MenuSkin> {
 protected:
  void SetUp() override {
    fs::copy(fs::path(KARVEL_SOURCE_DIR) / "assets" / "Theme", m_app.Path() / "Theme", fs::copy_options::recursive);
    ASSERT_EQ(DXCore::InitInstance(), S_OK);
    ASSERT_EQ(Manager()->InitSkinData(), 1);
    Manager()->SetCurrentSkin(GetParam().name);
    form = new CUIForm();
    form->SetObjectID(L"MainForm");
    ASSERT_TRUE(form->Create(WS_POPUP | WS_VISIBLE, L"KarvelMenuPixelForm", L"Viewer", nullptr, 0, CRect()));
  }
  void TearDown() override {
    if (form) form->Release();
    DXCore::ExitInstance();
    CUIManager::FreeInstance();
    SkinManagerTest::TearDown();
  }

  CUIForm* form = nullptr;
};

TEST_P(MenuPixelTest, TheSkinsFrameCheckMarkAndSeparatorAreDrawn) {
  // How a host builds and pops a context menu with a sub-menu.
  const MenuHandler command(&OnCommand);
  IMenu* menu = new IMenu();
  menu->AddMenu(L"Fit", 1, 0, 1, command, CString());  // checked
  menu->AddMenu(L"", 0, 0, 0);                         // separator
  menu->AddMenu(L"Actual size", 2, 0, 0, command, CString());
  IMenu* skins = menu->AddMenu(L"Skins", 3, 0, 0);
  skins->AddMenu(L"Graphite", 31, 0, 1, command, CString());
  skins->AddMenu(L"Ocean", 32, 0, 0, command, CString());
  IMenu::PopupMenu(form, menu, 40, 40, 0, CString());

  CUIMenu* popup = form->GetActiveMenu();
  ASSERT_NE(popup, nullptr);
  popup->OnPaint();
  const Frame frame = ReadBack(popup->GetRenderDevice()->GetD3DDevice());
  const CRect bounds = popup->GetBounds();
  const MenuSkin& skin = GetParam();
  const MenuItem* fit = popup->GetItem(0);
  const MenuItem* separator = popup->GetItem(1);
  const MenuItem* actual = popup->GetItem(2);

  // The frame's outline, and its fill showing through the (transparent) entries.
  EXPECT_EQ(frame.At(0, bounds.Height() / 2), skin.outline);
  EXPECT_EQ(frame.At(bounds.Width() - 12, actual->GetPos() + actual->GetHeight() / 2), skin.fill);
  // The 16-pixel mark starts 3 + 8 pixels in, squeezed to 13 wide; its box
  // is plain in its lower right, where the tick does not reach.
  EXPECT_EQ(frame.At(21, fit->GetPos() + (fit->GetHeight() - 16) / 2 + 12), skin.mark);
  // The separator's line is the middle row of its 7-pixel strip.
  EXPECT_EQ(frame.At(bounds.Width() / 2, separator->GetPos() + 3), skin.separator);
}

INSTANTIATE_TEST_SUITE_P(Skins, MenuPixelTest, testing::ValuesIn(kSkins),
                         [](const testing::TestParamInfo<MenuSkin>& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace KarvelTest
