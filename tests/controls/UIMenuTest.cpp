// Popup menu windows driven by messages on the offscreen driver: size and
// placement, hover, sub-menus, choosing, dismissal and the keyboard.

#include <gmock/gmock.h>

#include <karvelui/Screen.h>
#include <karvelui/SkinReader.h>
#include "controls/UIMenuTestSupport.h"

namespace KarvelTest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// --- size and placement ----------------------------------------------------------------------

TEST_F(MenuTest, EntriesAreStackedAndTheWidthFollowsTheMeasuredText) {
  CUIMenu* menu = Popup(MakeTree());
  ASSERT_NE(menu, nullptr);
  ASSERT_EQ(menu->GetItemCount(), 5);
  std::vector<int> tops;
  for (int i = 0; i < 5; ++i) tops.push_back(menu->GetItem(i)->GetPos());
  EXPECT_THAT(tops, ElementsAre(2, 22, 27, 47, 67));
  // "Rotate" is the widest: its text, both text offsets and two indents;
  // the height runs to the last entry plus 2.
  EXPECT_EQ(WindowOf(menu), CRect(100, 100, 100 + 6 * gpu->charWidth + 6 + 30 + 4, 100 + 87 + 2));
}

TEST_F(MenuTest, AMenuWithoutEntriesOrWithoutSkinEntryIs200By200) {
  CUIMenu* empty = Popup(new IMenu(), 10, 20);
  EXPECT_EQ(WindowOf(empty), CRect(10, 20, 210, 220));
  CUIMenu* unskinned = Popup(MakeTree(), 10, 20, 0, L"Missing");
  EXPECT_EQ(unskinned->GetItemCount(), 0);
  EXPECT_EQ(WindowOf(unskinned), CRect(10, 20, 210, 220));
}

TEST_F(MenuTest, MenusKeepClearOfTheScreensRightAndBottomEdges) {
  const int screenW = GetSystemMetrics(SM_CXFULLSCREEN);
  const int screenH = GetSystemMetrics(SM_CYFULLSCREEN);
  CUIMenu* menu = Popup(MakeTree(), 100, 100);
  const CSize size = WindowOf(menu).Size();
  struct Case {
    int x, y, flags;
    CPoint topLeft;
  } cases[] = {
      {screenW - 10, 100, 0, {screenW - 10 - size.cx, 100}},                  // left of x
      {screenW - size.cx, 100, 0, {screenW - 2 * size.cx, 100}},              // touching counts
      {100, screenH - 10, 0, {100, screenH - 10 - size.cy}},                  // above y
      {100, 300, MENU_POPUP_UPWARDS, {100, 300 - size.cy}},                   // asked upwards
  };
  for (const Case& c : cases) {
    menu = Popup(MakeTree(), c.x, c.y, c.flags);
    EXPECT_EQ(WindowOf(menu).TopLeft(), c.topLeft) << c.x << "," << c.y << " flags " << c.flags;
  }
}

TEST_F(MenuTest, ASubMenuOpensBesideItsEntryOrLeftOfItsParentAtTheEdge) {
  CUIMenu* menu = Popup(MakeTree(), 100, 100);
  RestOn(menu, 3);
  CUIMenu* sub = menu->GetChildMenuWnd();
  ASSERT_NE(sub, nullptr);
  EXPECT_EQ(WindowOf(sub).TopLeft(), CPoint(WindowOf(menu).right, 100 + 47 - 2));
  EXPECT_EQ(sub->GetMenu()->GetSubMenu(0)->GetID(), 31);

  const int screenW = GetSystemMetrics(SM_CXFULLSCREEN);
  menu = Popup(MakeTree(), screenW - WindowOf(menu).Width() - 20, 100);
  RestOn(menu, 3);
  ASSERT_NE(menu->GetChildMenuWnd(), nullptr);
  EXPECT_EQ(WindowOf(menu->GetChildMenuWnd()).right, WindowOf(menu).left);
}

// --- hover -------------------------------------------------------------------------------------

TEST_F(MenuTest, RestingOnAnEnabledEntrySelectsItAndTellsTheFormButDisabledOnesStayQuiet) {
  CUIMenu* menu = Popup(MakeTree());
  RestOn(menu, 2);  // Rotate, disabled
  EXPECT_EQ(menu->GetHoverItem(), nullptr);
  EXPECT_EQ(menu->GetItem(2)->IsSel(), 0);
  RestOn(menu, 1);  // the separator
  EXPECT_EQ(menu->GetHoverItem(), nullptr);
  EXPECT_THAT(form->hovered, IsEmpty());
  RestOn(menu, 4);
  EXPECT_EQ(HoverId(menu), 4);
  EXPECT_THAT(form->hovered, ElementsAre(4));
}

TEST_F(MenuTest, MovingToAnotherEntryClosesAnOpenSubMenuAtOnce) {
  CUIMenu* menu = Popup(MakeTree());
  RestOn(menu, 3);
  const HWND sub = menu->GetChildMenuWnd()->GetSafeHwnd();
  MoveTo(menu, 4);
  EXPECT_EQ(menu->GetChildMenuWnd(), nullptr);
  EXPECT_FALSE(IsWindow(sub));
  EXPECT_EQ(HoverId(menu), 4);
}

// --- choosing ------------------------------------------------------------------------------------

TEST_F(MenuTest, ChoosingClosesTheChainThenRunsTheCallbackThenFreesTheTree) {
  CUIMenu* menu = Popup(MakeTree());
  const HWND root = menu->GetSafeHwnd();
  RestOn(menu, 3);
  CUIMenu* sub = menu->GetChildMenuWnd();
  const HWND subHwnd = sub->GetSafeHwnd();
  std::vector<std::string> seen;
  onChosen = [&](IMenu* entry) {
    seen.push_back(entry->GetCaption().ToUtf8());
    seen.push_back(IsWindow(root) || IsWindow(subHwnd) || form->GetActiveMenu() ? "chain open" : "chain closed");
    seen.push_back(treeFreed ? "tree freed" : "tree alive");
  };
  Click(sub, 1);
  EXPECT_THAT(chosen, ElementsAre(32));
  EXPECT_THAT(seen, ElementsAre("Ocean", "chain closed", "tree alive"));
  EXPECT_TRUE(treeFreed);
}

TEST_F(MenuTest, ClicksOnSeparatorsDisabledEntriesOrSubMenusChooseNothing) {
  CUIMenu* menu = Popup(MakeTree());
  for (int index : {1, 2, 3}) Click(menu, index);
  EXPECT_THAT(chosen, IsEmpty());
  EXPECT_EQ(form->GetActiveMenu(), menu);
  EXPECT_FALSE(treeFreed);
}

// A callback may open the next menu, or a modal form, at once.
TEST_F(MenuTest, ACallbackCanOpenANewMenu) {
  bool secondFreed = false;
  onChosen = [&](IMenu*) {
    auto* next = new WatchedMenu(secondFreed);
    next->AddMenu(L"Again", 7, 0, 0);
    IMenu::PopupMenu(form, next, 150, 150, 0, CString());
  };
  Click(Popup(MakeTree()), 0);
  PumpAll();
  EXPECT_TRUE(treeFreed);
  CUIMenu* next = form->GetActiveMenu();
  ASSERT_NE(next, nullptr);
  EXPECT_TRUE(next->IsWindowVisible());
  EXPECT_EQ(next->GetItem(0)->GetCaption(), L"Again");
  EXPECT_FALSE(secondFreed);
}

TEST_F(MenuTest, ACallbackCanRunAModalForm) {
  int result = -1;
  onChosen = [&](IMenu*) {
    auto* dialog = new CUIForm();
    dialog->SetObjectID(L"TestForm");
    ASSERT_TRUE(dialog->Create(WS_POPUP, L"KarvelMenuDialog", L"About", form, 0, CRect(0, 0, 100, 100)));
    dialog->PostMessage(WM_KEYDOWN, VK_ESCAPE);
    result = dialog->DoModal();
    dialog->Release();
  };
  Click(Popup(MakeTree()), 4);
  EXPECT_EQ(result, 0);
  EXPECT_TRUE(treeFreed);
  EXPECT_TRUE(form->IsWindowEnabled());
  EXPECT_EQ(GetActiveWindow(), form->GetSafeHwnd());
}

// --- dismissal ------------------------------------------------------------------------------------

class MenuDismissalTest;

struct Dismissal {
  const char* name;
  std::function<void(MenuDismissalTest&, CUIMenu*)> act;
};

void PrintTo(const Dismissal& dismissal, std::ostream* out) { *out << dismissal.name; }

class MenuDismissalTest : public MenuTest, public testing::WithParamInterface<Dismissal> {};

TEST_P(MenuDismissalTest, ClosesEveryWindowAndFreesTheTreeWithoutACallback) {
  CUIMenu* menu = Popup(MakeTree());
  RestOn(menu, 3);
  const HWND root = menu->GetSafeHwnd();
  const HWND sub = menu->GetChildMenuWnd()->GetSafeHwnd();
  GetParam().act(*this, menu);
  PumpAll();
  EXPECT_FALSE(IsWindow(root));
  EXPECT_FALSE(IsWindow(sub));
  EXPECT_TRUE(treeFreed);
  EXPECT_THAT(chosen, IsEmpty());
  if (form) {
    EXPECT_EQ(form->GetActiveMenu(), nullptr);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Ways, MenuDismissalTest,
    testing::Values(Dismissal{"ClickInTheForm",
                              [](MenuDismissalTest& t, CUIMenu*) {
                                t.form->SendMessage(WM_LBUTTONDOWN, 0, MAKELPARAM(150, 150));
                              }},
                    Dismissal{"Escape",
                              [](MenuDismissalTest&, CUIMenu* menu) {
                                MenuTest::Key(menu->GetSafeHwnd(), SDL_SCANCODE_ESCAPE);
                              }},
                    Dismissal{"AnotherWindowActivated",
                              [](MenuDismissalTest&, CUIMenu*) {
                                CWnd other;
                                ASSERT_TRUE(MakeWindow(other, CRect(500, 500, 600, 600), WS_POPUP | WS_VISIBLE));
                              }},
                    Dismissal{"AnotherProgramActivated",
                              [](MenuDismissalTest& t, CUIMenu* menu) {
                                PushWindowEvent(menu->GetSafeHwnd(), SDL_WINDOWEVENT_FOCUS_LOST);
                                PumpAll();
                                t.clock.Advance(100);
                              }},
                    Dismissal{"TheFormGoes",
                              [](MenuDismissalTest& t, CUIMenu*) {
                                t.form->Release();
                                t.form = nullptr;
                              }}),
    [](const testing::TestParamInfo<Dismissal>& info) { return std::string(info.param.name); });

// --- keyboard -----------------------------------------------------------------------------------------

TEST_F(MenuTest, KeysWalkTheEnabledEntriesOpenAndCloseSubMenusAndChoose) {
  CUIMenu* menu = Popup(MakeTree());
  const HWND root = menu->GetSafeHwnd();
  std::vector<int> path;
  auto press = [&](SDL_Scancode code) {
    Key(root, code);
    CUIMenu* level = menu;
    while (level->GetChildMenuWnd()) level = level->GetChildMenuWnd();
    path.push_back(HoverId(level));
  };
  for (SDL_Scancode code : {SDL_SCANCODE_DOWN, SDL_SCANCODE_DOWN, SDL_SCANCODE_DOWN, SDL_SCANCODE_DOWN,
                            SDL_SCANCODE_UP, SDL_SCANCODE_UP, SDL_SCANCODE_RIGHT, SDL_SCANCODE_DOWN, SDL_SCANCODE_LEFT})
    press(code);
  // Separator and disabled entries are skipped, both ways round.
  EXPECT_THAT(path, ElementsAre(1, 3, 4, 1, 4, 3, 31, 32, 3));
  EXPECT_EQ(menu->GetChildMenuWnd(), nullptr);
  Key(root, SDL_SCANCODE_RIGHT);
  Key(root, SDL_SCANCODE_DOWN);
  Key(root, SDL_SCANCODE_RETURN);
  EXPECT_THAT(chosen, ElementsAre(32));
  EXPECT_TRUE(treeFreed);
  EXPECT_FALSE(IsWindow(root));
}

// --- skin record ---------------------------------------------------------------------------------------

TEST(MenuConfig, CopyLeavesTheFontAndSkinColoursAreOpaque) {
  LoadedXml xml(R"(<public Indent="5"><Font FontFace="DejaVu Sans" FontSize="15"/>
                   <Color Text="10, 20, 30"/></public>)");
  _MenuConfig read;
  CSkinReader reader(xml.Node(L"public"));
  EXPECT_EQ(read.Read(&reader), 1);
  EXPECT_EQ(read.m_nIndent, 5);
  EXPECT_EQ(read.m_font.lfHeight, 15);
  EXPECT_EQ(read.m_clrText, 0xFF0A141Eu);
  EXPECT_EQ(read.m_clrTextSel, 0x00FFFFFFu);  // untouched default

  SkinConfigPtr clone(read.Clone());
  auto* copy = static_cast<_MenuConfig*>(clone.get());
  EXPECT_EQ(copy->m_nIndent, 5);
  EXPECT_EQ(copy->m_clrText, 0xFF0A141Eu);
  EXPECT_EQ(copy->m_font.lfHeight, _MenuConfig().m_font.lfHeight);
}

}  // namespace
}  // namespace KarvelTest
