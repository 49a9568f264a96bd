#pragma once

// Popup menus over the fault-injecting device: a host form that keeps the
// entry ids its menus report on hover, a menu tree whose end is observed,
// and the pointer and hover clock driven by hand.

#include <functional>

#include <karvelui/IMenu.h>
#include <karvelui/UIMenu.h>
#include "framework/FormTestSupport.h"

namespace KarvelTest {

// A 300 x 200 form at (50, 40) and a menu skin whose entries are 20 pixels
// high and separators 5, with an indent of 2.
inline constexpr const char* kMenuBuild = R"(<TestForm css="Main" ass="Main"/>)";
inline constexpr const char* kMenuSkin = R"(
  <css>
    <CUIForm><Main PositionRect="50, 40, 300, 200" BorderMargin="0, 0, 0, 0" RoundDiameters="0, 0"/></CUIForm>
    <CUIMenu><public Indent="2" TextOffset="6, 30" IconSize="16">
      <NormalImage File="m.png" Rect="0, 0, 8, 20"/>
      <SeperatorImage File="m.png" Rect="0, 20, 8, 25"/>
    </public></CUIMenu>
  </css>)";

// Takes UI_WM_MENUHOVER as a host would.
class HostForm : public CUIForm {
 public:
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message == UI_WM_MENUHOVER) hovered.push_back(static_cast<int>(wParam));
    return CUIForm::WindowProc(message, wParam, lParam);
  }
  std::vector<int> hovered;
};

// A root that tells when the tree is freed.
class WatchedMenu : public IMenu {
 public:
  explicit WatchedMenu(bool& freed) : m_freed(freed) { m_freed = false; }
  ~WatchedMenu() override { m_freed = true; }

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
    ASSERT_TRUE(form->Create(WS_POPUP | WS_VISIBLE, L"KarvelMenuHost", L"Host", nullptr, 0, CRect(0, 0, 100, 100)));
    PumpAll();
  }
  void TearDown() override {
    if (form && CUIManager::GetInstance()->IsExist(form) != -1) form->Release();
    PumpAll();
    FormTest::TearDown();
  }

  // Open, a separator, Rotate (disabled), Skins > (Graphite, Ocean checked), Exit.
  IMenu* MakeTree() {
    auto* root = new WatchedMenu(treeFreed);
    root->AddMenu(L"Open", 1, 0, 0, Chosen(), CString());
    root->AddMenu(L"", 0, 0, 0);
    root->AddMenu(L"Rotate", 2, 1, 0, Chosen(), CString());
    IMenu* skins = root->AddMenu(L"Skins", 3, 0, 0, Chosen(), CString());
    skins->AddMenu(L"Graphite", 31, 0, 0, Chosen(), CString());
    skins->AddMenu(L"Ocean", 32, 0, 1, Chosen(), CString());
    root->AddMenu(L"Exit", 4, 0, 0, Chosen(), CString());
    return root;
  }
  MenuHandler Chosen() { return MenuHandler(this, &MenuTest::OnChosen); }
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
    const MenuItem* item = menu->GetItem(index);
    return CPoint(20, item->GetPos() + item->GetHeight() / 2);
  }
  // Moves the pointer onto an entry without waiting.
  static void MoveTo(CUIMenu* menu, int index) {
    const CPoint at = PointOn(menu, index);
    PushMotion(menu->GetSafeHwnd(), at.x, at.y);
    PumpAll();
  }
  // Moves onto an entry and rests there until the hover comes.
  void RestOn(CUIMenu* menu, int index) {
    MoveTo(menu, index);
    clock.Advance(2);
    PumpAll();
  }
  static void Click(CUIMenu* menu, int index) {
    const CPoint at = PointOn(menu, index);
    menu->SendMessage(WM_LBUTTONUP, 0, MAKELPARAM(at.x, at.y));
  }
  static void Key(HWND hwnd, SDL_Scancode code) {
    PushKey(hwnd, code, true);
    PushKey(hwnd, code, false);
    PumpAll();
  }
  static CRect WindowOf(const CWnd* wnd) {
    CRect rect;
    wnd->GetWindowRect(&rect);
    return rect;
  }
  static int HoverId(CUIMenu* menu) {
    return menu && menu->GetHoverItem() ? menu->GetHoverItem()->GetMenu()->GetID() : 0;
  }

  ManualClock clock;
  HostForm* form = nullptr;
  bool treeFreed = false;
  std::vector<int> chosen;
  std::function<void(IMenu*)> onChosen;
};

}  // namespace KarvelTest
