// The registry of forms: names compare case-sensitively, listings keep
// registration order, once-forms free their names when destroyed.

#include <gmock/gmock.h>

#include "framework/FormTestSupport.h"

namespace KarvelTest {
namespace {

using ::testing::ElementsAre;

class UIManagerTest : public ::testing::Test {
 protected:
  void TearDown() override { CUIManager::FreeInstance(); }
  CUIManager* Manager() { return CUIManager::GetInstance(); }
};

TEST_F(UIManagerTest, FormsRegisterThemselvesOnceForTheirWholeLife) {
  auto first = std::make_unique<CUIForm>();
  {
    CUIForm second;
    EXPECT_EQ(Manager()->IsExist(first.get()), 0);
    EXPECT_EQ(Manager()->IsExist(&second), 1);
    Manager()->RegisterForm(&second);
    CPtrArray all;
    Manager()->GetForms(CString(), all);
    EXPECT_EQ(all.GetSize(), 2);
  }
  CPtrArray all;
  Manager()->GetForms(CString(), all);
  EXPECT_THAT(all.std_vector(), ElementsAre(first.get()));
}

TEST_F(UIManagerTest, NamesAreExactAndTheFirstRegisteredWins) {
  CUIForm a, b, c;
  a.SetObjectID(L"Viewer");
  b.SetObjectID(L"Viewer");
  c.SetObjectID(L"About");
  EXPECT_EQ(Manager()->IsExist(CString(L"Viewer")), &a);
  EXPECT_EQ(Manager()->IsExist(CString(L"viewer")), nullptr);
  CPtrArray found;
  found.Add(&c);  // emptied first
  Manager()->GetForms(L"Viewer", found);
  EXPECT_THAT(found.std_vector(), ElementsAre(&a, &b));
}

TEST_F(UIManagerTest, OnceFormsAreKeptByNameUntilTheirFormGoes) {
  CUIForm keeper;
  {
    CUIForm once;
    Manager()->RegisterOnceForm(&once, L"Settings");
    Manager()->RegisterOnceForm(&once, L"Alias");
    Manager()->RegisterOnceForm(&keeper, L"Keeper");
    EXPECT_EQ(Manager()->IsExistOnceForm(L"Settings"), &once);
    EXPECT_EQ(Manager()->IsExistOnceForm(L"settings"), nullptr);
    Manager()->UnRegisterOnceForm(&once);  // the first in name order only
    EXPECT_EQ(Manager()->IsExistOnceForm(L"Alias"), nullptr);
    EXPECT_EQ(Manager()->IsExistOnceForm(L"Settings"), &once);
  }
  EXPECT_EQ(Manager()->IsExistOnceForm(L"Settings"), nullptr);
  EXPECT_EQ(Manager()->IsExistOnceForm(L"Keeper"), &keeper);
}

TEST_F(UIManagerTest, TheMainFormIsRemembered) {
  CUIForm main;
  Manager()->SetMainForm(&main);
  EXPECT_EQ(Manager()->GetMainForm(), &main);
}

class UIManagerFormsTest : public FormTest {};

TEST_F(UIManagerFormsTest, OnlyFormsWithAWindowAreListedAsLive) {
  LoadTestSkin();
  CUIForm* live = MakeForm();
  CUIForm unmade;
  CPtrArray all;
  CUIManager::GetInstance()->GetAllForms(all);
  EXPECT_THAT(all.std_vector(), ElementsAre(live));
  live->DestroyWindow();
  CUIManager::GetInstance()->GetAllForms(all);
  EXPECT_TRUE(all.IsEmpty());
}

TEST_F(UIManagerFormsTest, KeyStateMapsTheButtonsTheOtherWayRound) {
  LoadTestSkin();
  CUIForm* form = MakeForm();
  const HWND hwnd = form->GetSafeHwnd();
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
}

}  // namespace
}  // namespace KarvelTest
