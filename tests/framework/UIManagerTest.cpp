// The registry of forms: names compare case-sensitively, listings keep
// registration order, once-forms free their names when destroyed.

#include <gmock/gmock.h>

#include "framework/FrameworkTestSupport.h"

namespace KarvelTest {
namespace {

using ::testing::ElementsAre;

class UIManagerTest : public ::testing::Test {
 protected:
  void TearDown() override { CUIManager::FreeInstance(); }
  CUIManager* Manager() { return CUIManager::GetInstance(); }
};

TEST_F(UIManagerTest, FormsRegisterThemselvesOnceForTheirLifeAndTheFirstOfANameWins) {
  CUIForm a, b;
  a.SetObjectID(L"Viewer");
  b.SetObjectID(L"Viewer");
  {
    CUIForm about;
    about.SetObjectID(L"About");
    Manager()->RegisterForm(&about);  // already registered: not twice
    EXPECT_EQ(Manager()->IsExist(&about), 2);
    CPtrArray found;
    found.Add(&about);  // emptied first
    Manager()->GetForms(L"Viewer", found);
    EXPECT_THAT(found.std_vector(), ElementsAre(&a, &b));
    Manager()->GetForms(L"About", found);
    EXPECT_THAT(found.std_vector(), ElementsAre(&about));
  }
  EXPECT_EQ((std::vector{Manager()->IsExist(CString(L"Viewer")), Manager()->IsExist(CString(L"viewer")),
                         Manager()->IsExist(CString(L"About"))}),
            (std::vector<CUIForm*>{&a, nullptr, nullptr}));
}

TEST_F(UIManagerTest, OnceFormsAreKeptByNameUntilTheirFormGoes) {
  CUIForm keeper;
  {
    CUIForm once;
    Manager()->RegisterOnceForm(&once, L"Settings");
    Manager()->RegisterOnceForm(&once, L"Alias");
    Manager()->RegisterOnceForm(&keeper, L"Keeper");
    EXPECT_EQ(Manager()->IsExistOnceForm(L"settings"), nullptr);
    Manager()->UnRegisterOnceForm(&once);  // the first in name order only
    EXPECT_EQ(std::make_tuple(Manager()->IsExistOnceForm(L"Alias"), Manager()->IsExistOnceForm(L"Settings")),
              std::make_tuple(static_cast<CUIForm*>(nullptr), &once));
  }
  EXPECT_EQ(std::make_tuple(Manager()->IsExistOnceForm(L"Settings"), Manager()->IsExistOnceForm(L"Keeper")),
            std::make_tuple(static_cast<CUIForm*>(nullptr), &keeper));
}

class UIManagerFormsTest : public FormTest {};

TEST_F(UIManagerFormsTest, OnlyFormsWithAWindowAreLiveAndKeyStateMapsTheButtonsTheOtherWayRound) {
  LoadTestSkin();
  CUIForm* live = MakeForm();
  CUIForm unmade;
  CPtrArray all;
  CUIManager::GetInstance()->GetAllForms(all);
  EXPECT_THAT(all.std_vector(), ElementsAre(live));

  const HWND hwnd = live->GetSafeHwnd();
  PushKey(hwnd, SDL_SCANCODE_LSHIFT, true);
  PushButton(hwnd, 20, 20, true, SDL_BUTTON_RIGHT);
  PumpAll();
  EXPECT_EQ(CUIManager::MapKeyState(), 0x4u | 0x1u);
  PushButton(hwnd, 20, 20, false, SDL_BUTTON_RIGHT);
  PushButton(hwnd, 20, 20, true, SDL_BUTTON_LEFT);
  PushKey(hwnd, SDL_SCANCODE_LSHIFT, false);
  PushKey(hwnd, SDL_SCANCODE_LCTRL, true);
  PumpAll();
  EXPECT_EQ(CUIManager::MapKeyState(), 0x2u | 0x8u);
  PushButton(hwnd, 20, 20, false, SDL_BUTTON_LEFT);
  PushKey(hwnd, SDL_SCANCODE_LCTRL, false);
  PumpAll();
  live->DestroyWindow();
  CUIManager::GetInstance()->GetAllForms(all);
  EXPECT_TRUE(all.IsEmpty());
}

}  // namespace
}  // namespace KarvelTest
