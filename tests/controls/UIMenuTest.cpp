// Popup menu windows over the fault-injecting device, driven by messages and
// pointer events on the offscreen driver: size and placement, hover,
// sub-menus, choosing, dismissal and the keyboard.

#include <gmock/gmock.h>

#include <functional>

#include <karvelui/IMenu.h>
#include <karvelui/Screen.h>
#include <karvelui/UIMenu.h>
#include "framework/FrameworkTestSupport.h"

namespace KarvelTest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A 300 x 200 form with a probe control; menu entries 20 pixels high,
// separators 5, indent 2.
constexpr const char* kMenuBuild = R"(<TestForm css="Main" ass="Main"><One type="ProbeControl" ass="One"/></TestForm>)";
constexpr const char* kMenuSkin = R"(<css>
  <CUIForm><Main PositionRect="50, 40, 300, 200" BorderMargin="0, 0, 0, 0"/></CUIForm>
  <CUIMenu><public Indent="2" TextOffset="6, 30" IconSize="16">
    <NormalImage File="m.png" Rect="0, 0, 8, 20"/><SeperatorImage File="m.png" Rect="0, 20, 8, 25"/>
  </public></CUIMenu></css>
  <ass><ProbeControl><One Bounds="10, 10, 80, 40" AnchorStyle="topleft"/></ProbeControl></ass>)";

// Keeps the entry ids its menus report on hover, as a host would.
class HostForm : public CUIForm {
 public:
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message == UI_WM_MENUHOVER) hovered.push_back(static_cast<int>(wParam));
    return CUIForm::WindowProc(message, wParam, lParam);
  }
  std::vector<int> hovered;
};

class WatchedMenu : public IMenu {
 public:
  explicit WatchedMenu(bool& freed) : m_freed(freed) { m_freed = false; }
  ~WatchedMenu() override {
    m_freed = true;
    Journal().push_back("tree freed");
  }

 private:
  bool& m_freed;
};

class MenuTest : public FormTest {
 public:
  void SetUp() override {
    FormTest::SetUp();
    LoadSkin(kMenuBuild, kMenuSkin);
    form = new HostForm();
    form->SetObjectID(L"TestForm");
    ASSERT_TRUE(form->Create(WS_POPUP | WS_VISIBLE, L"KarvelMenuHost", L"Host", nullptr, 0, CRect(0, 0, 9, 9)));
  }
  void TearDown() override {
    if (form) form->Release();
    PumpAll();
    FormTest::TearDown();
  }

  // Open, a separator, Rotate (disabled), Skins > (Graphite, Ocean), Exit.
  IMenu* MakeTree() {
    auto* root = new WatchedMenu(treeFreed);
    const MenuHandler chosen(this, &MenuTest::OnChosen);
    root->AddMenu(L"Open", 1, 0, 0, chosen, CString());
    root->AddMenu(L"", 0, 0, 0);
    root->AddMenu(L"Rotate", 2, 1, 0, chosen, CString());
    IMenu* skins = root->AddMenu(L"Skins", 3, 0, 0, chosen, CString());
    skins->AddMenu(L"Graphite", 31, 0, 0, chosen, CString());
    skins->AddMenu(L"Ocean", 32, 0, 1, chosen, CString());
    root->AddMenu(L"Exit", 4, 0, 0, chosen, CString());
    return root;
  }
  void OnChosen(IMenu* entry) {
    chosen.push_back(entry->GetID());
    if (onChosen) onChosen(entry);
  }
  CUIMenu* Popup(IMenu* tree, int x = 100, int y = 100, int flags = 0, const wchar_t* css = L"") {
    IMenu::PopupMenu(form, tree, x, y, flags, css);
    PumpAll();
    return form->GetActiveMenu();
  }
  static CPoint PointOn(CUIMenu* menu, int index) {
    return CPoint(20, menu->GetItem(index)->GetPos() + menu->GetItem(index)->GetHeight() / 2);
  }
  static void MoveTo(CUIMenu* menu, int index) {
    PushMotion(menu->GetSafeHwnd(), PointOn(menu, index).x, PointOn(menu, index).y);
    PumpAll();
  }
  // Moves onto an entry and rests there until the hover comes.
  void RestOn(CUIMenu* menu, int index) {
    MoveTo(menu, index);
    clock.Advance(2);
    PumpAll();
  }
  static void Click(CUIMenu* menu, int index) {
    menu->SendMessage(WM_LBUTTONUP, 0, MAKELPARAM(PointOn(menu, index).x, PointOn(menu, index).y));
  }
  static void Key(HWND hwnd, SDL_Scancode code) {
    PushKey(hwnd, code, true);
    PushKey(hwnd, code, false);
    PumpAll();
  }
  static CRect WindowOf(const CWnd* wnd) { return WindowRectOf(*wnd); }
  static int HoverId(CUIMenu* menu) {
    return menu->GetHoverItem() ? menu->GetHoverItem()->GetMenu()->GetID() : 0;
  }

  ManualClock clock;
  HostForm* form = nullptr;
  bool treeFreed = false;
  std::vector<int> chosen;
  std::function<void(IMenu*)> onChosen;
};

TEST_F(MenuTest, EntriesStackUpAndTheTextSetsTheWidthAnEmptyMenuIs200Square) {
  CUIMenu* menu = Popup(MakeTree());
  std::vector<int> tops;
  for (int i = 0; i < menu->GetItemCount(); ++i) tops.push_back(menu->GetItem(i)->GetPos());
  EXPECT_THAT(tops, ElementsAre(2, 22, 27, 47, 67));
  // "Rotate" is the widest: its text, both text offsets and two indents;
  // the height runs to the last entry plus 2.
  EXPECT_EQ(WindowOf(menu), CRect(100, 100, 100 + 6 * gpu->charWidth + 6 + 30 + 4, 100 + 87 + 2));

  EXPECT_EQ(WindowOf(Popup(new IMenu(), 10, 20)), CRect(10, 20, 210, 220));
  CUIMenu* unskinned = Popup(MakeTree(), 10, 20, 0, L"Missing");
  EXPECT_EQ(std::make_tuple(unskinned->GetItemCount(), WindowOf(unskinned)), std::make_tuple(0, CRect(10, 20, 210, 220)));
}

TEST_F(MenuTest, MenusKeepClearOfTheScreensRightAndBottomEdges) {
  const int right = GetSystemMetrics(SM_CXFULLSCREEN), bottom = GetSystemMetrics(SM_CYFULLSCREEN);
  const CSize size = WindowOf(Popup(MakeTree())).Size();
  struct Case {
    int x, y, flags;
    CPoint topLeft;
  } cases[] = {{right - 10, 100, 0, {right - 10 - size.cx, 100}},
               {right - size.cx, 100, 0, {right - 2 * size.cx, 100}},  // touching the edge counts
               {100, bottom - 10, 0, {100, bottom - 10 - size.cy}},
               {100, 300, MENU_POPUP_UPWARDS, {100, 300 - size.cy}}};
  for (const Case& c : cases)
    EXPECT_EQ(WindowOf(Popup(MakeTree(), c.x, c.y, c.flags)).TopLeft(), c.topLeft) << c.x << "," << c.y;
}

TEST_F(MenuTest, ASubMenuOpensBesideItsEntryOrLeftOfItsParentAtTheEdge) {
  CUIMenu* menu = Popup(MakeTree());
  RestOn(menu, 3);
  ASSERT_NE(menu->GetChildMenuWnd(), nullptr);
  EXPECT_EQ(WindowOf(menu->GetChildMenuWnd()).TopLeft(), CPoint(WindowOf(menu).right, 100 + 47 - 2));

  menu = Popup(MakeTree(), GetSystemMetrics(SM_CXFULLSCREEN) - WindowOf(menu).Width() - 20);
  RestOn(menu, 3);
  ASSERT_NE(menu->GetChildMenuWnd(), nullptr);
  EXPECT_EQ(WindowOf(menu->GetChildMenuWnd()).right, WindowOf(menu).left);
}

TEST_F(MenuTest, RestingSelectsEnabledEntriesTellsTheFormAndOpensSubMenusThatCloseAtOnce) {
  CUIMenu* menu = Popup(MakeTree());
  RestOn(menu, 2);  // Rotate, disabled
  EXPECT_EQ(menu->GetItem(2)->IsSel(), 0);
  RestOn(menu, 1);  // the separator
  EXPECT_TRUE(menu->GetHoverItem() == nullptr && form->hovered.empty());
  RestOn(menu, 4);
  EXPECT_EQ(HoverId(menu), 4);
  EXPECT_THAT(form->hovered, ElementsAre(4));

  RestOn(menu, 3);
  ASSERT_NE(menu->GetChildMenuWnd(), nullptr);
  const HWND sub = menu->GetChildMenuWnd()->GetSafeHwnd();
  MoveTo(menu, 4);  // no rest
  EXPECT_FALSE(menu->GetChildMenuWnd() || IsWindow(sub));
  EXPECT_EQ(HoverId(menu), 4);
}

TEST_F(MenuTest, ChoosingClosesTheChainThenRunsTheCallbackThenFreesTheTree) {
  CUIMenu* menu = Popup(MakeTree());
  for (int index : {1, 2, 3}) Click(menu, index);  // separator, disabled, sub-menu
  EXPECT_TRUE(chosen.empty() && form->GetActiveMenu() == menu);
  RestOn(menu, 3);
  const HWND root = menu->GetSafeHwnd(), sub = menu->GetChildMenuWnd()->GetSafeHwnd();
  std::vector<std::string> seen;
  onChosen = [&](IMenu* entry) {
    seen.push_back(entry->GetCaption().ToUtf8());
    seen.push_back(IsWindow(root) || IsWindow(sub) || form->GetActiveMenu() ? "chain open" : "chain closed");
    seen.push_back(treeFreed ? "tree freed" : "tree alive");
  };
  Click(menu->GetChildMenuWnd(), 1);
  EXPECT_THAT(chosen, ElementsAre(32));
  EXPECT_THAT(seen, ElementsAre("Ocean", "chain closed", "tree alive"));
  EXPECT_TRUE(treeFreed);
}

TEST_F(MenuTest, ACallbackCanOpenANewMenuOrRunAModalForm) {
  bool nextFreed = false;
  onChosen = [&](IMenu*) {
    auto* next = new WatchedMenu(nextFreed);
    next->AddMenu(L"Again", 7, 0, 0);
    IMenu::PopupMenu(form, next, 150, 150, 0, CString());
  };
  Click(Popup(MakeTree()), 0);
  ASSERT_NE(form->GetActiveMenu(), nullptr);
  EXPECT_TRUE(treeFreed && !nextFreed && form->GetActiveMenu()->IsWindowVisible());
  EXPECT_EQ(form->GetActiveMenu()->GetItem(0)->GetCaption(), L"Again");

  int result = -1;
  onChosen = [&](IMenu*) {
    auto* dialog = new CUIForm();
    dialog->SetObjectID(L"TestForm");
    ASSERT_TRUE(dialog->Create(WS_POPUP, L"KarvelMenuDialog", L"About", form, 0, CRect(0, 0, 9, 9)));
    dialog->PostMessage(WM_KEYDOWN, VK_ESCAPE);
    result = dialog->DoModal();
    dialog->Release();
  };
  Click(Popup(MakeTree()), 4);
  EXPECT_TRUE(nextFreed && treeFreed && form->IsWindowEnabled());
  EXPECT_EQ(std::make_tuple(result, GetActiveWindow()), std::make_tuple(0, form->GetSafeHwnd()));
}

class MenuDismissalTest;
struct Dismissal {
  const char* name;
  void (*act)(MenuDismissalTest&, CUIMenu*);
};
void PrintTo(const Dismissal& dismissal, std::ostream* out) { *out << dismissal.name; }

class MenuDismissalTest : public MenuTest, public testing::WithParamInterface<Dismissal> {};

TEST_P(MenuDismissalTest, ClosesEveryWindowAndFreesTheTreeWithoutACallback) {
  CUIMenu* menu = Popup(MakeTree());
  RestOn(menu, 3);
  const HWND root = menu->GetSafeHwnd(), sub = menu->GetChildMenuWnd()->GetSafeHwnd();
  GetParam().act(*this, menu);
  PumpAll();
  EXPECT_FALSE(IsWindow(root) || IsWindow(sub));
  EXPECT_TRUE(treeFreed && chosen.empty() && (!form || !form->GetActiveMenu()));
}

// The click goes on to the control under it once the menu is gone.
void ClickInTheForm(MenuDismissalTest& t, CUIMenu*) {
  Journal().clear();
  t.form->SendMessage(WM_LBUTTONDOWN, 0, MAKELPARAM(20, 20));
  std::erase_if(Journal(), [](const std::string& line) { return line.find(" draw ") != std::string::npos; });
  EXPECT_THAT(Journal(), ElementsAre("tree freed", "One mouse WM_LBUTTONDOWN 20,20"));
}
void Escape(MenuDismissalTest&, CUIMenu* menu) { MenuTest::Key(menu->GetSafeHwnd(), SDL_SCANCODE_ESCAPE); }
void AnotherWindowActivated(MenuDismissalTest&, CUIMenu*) {
  CWnd other;
  ASSERT_TRUE(MakeWindow(other, CRect(500, 500, 600, 600), WS_POPUP | WS_VISIBLE));
}
void AnotherProgramActivated(MenuDismissalTest& t, CUIMenu* menu) {
  PushWindowEvent(menu->GetSafeHwnd(), SDL_WINDOWEVENT_FOCUS_LOST);
  PumpAll();
  t.clock.Advance(100);
}
void TheFormGoes(MenuDismissalTest& t, CUIMenu*) {
  t.form->Release();
  t.form = nullptr;
}

INSTANTIATE_TEST_SUITE_P(Ways, MenuDismissalTest,
                         testing::Values(Dismissal{"ClickInTheForm", &ClickInTheForm}, Dismissal{"Escape", &Escape},
                                         Dismissal{"AnotherWindowActivated", &AnotherWindowActivated},
                                         Dismissal{"AnotherProgramActivated", &AnotherProgramActivated},
                                         Dismissal{"TheFormGoes", &TheFormGoes}),
                         [](const testing::TestParamInfo<Dismissal>& info) { return std::string(info.param.name); });

TEST_F(MenuTest, KeysWalkTheEnabledEntriesOpenAndCloseSubMenusAndChoose) {
  CUIMenu* menu = Popup(MakeTree());
  const HWND root = menu->GetSafeHwnd();
  std::vector<int> path;
  for (SDL_Scancode code : {SDL_SCANCODE_DOWN, SDL_SCANCODE_DOWN, SDL_SCANCODE_DOWN, SDL_SCANCODE_DOWN,
                            SDL_SCANCODE_UP, SDL_SCANCODE_UP, SDL_SCANCODE_RIGHT, SDL_SCANCODE_DOWN, SDL_SCANCODE_LEFT}) {
    Key(root, code);
    path.push_back(HoverId(menu->GetChildMenuWnd() ? menu->GetChildMenuWnd() : menu));
  }
  // The separator and the disabled entry are skipped, both ways round.
  EXPECT_THAT(path, ElementsAre(1, 3, 4, 1, 4, 3, 31, 32, 3));
  EXPECT_EQ(menu->GetChildMenuWnd(), nullptr);
  for (SDL_Scancode code : {SDL_SCANCODE_RIGHT, SDL_SCANCODE_DOWN, SDL_SCANCODE_RETURN}) Key(root, code);
  EXPECT_THAT(chosen, ElementsAre(32));
  EXPECT_TRUE(treeFreed && !IsWindow(root));
}

}  // namespace
}  // namespace KarvelTest
