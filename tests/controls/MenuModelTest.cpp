// The menu model: lookups, copies, and choosing an entry.

#include <gmock/gmock.h>

#include <stdexcept>

#include <karvelui/IMenu.h>
#include <karvelui/ImageConfig.h>

namespace KarvelTest {
namespace {

using namespace KarvelUI;
using ::testing::ElementsAre;

std::vector<int> g_calls;
void Record(IMenu* menu) { g_calls.push_back(menu->GetID()); }
void Throw(IMenu*) { throw std::runtime_error("host failure"); }

class Watched : public IMenu {
 public:
  explicit Watched(bool& freed) : m_freed(freed) {}
  ~Watched() override { m_freed = true; }

 private:
  bool& m_freed;
};

TEST(MenuModel, LookupsWalkDepthFirstEachNodeBeforeItsChildren) {
  IMenu* root = new IMenu();
  IMenu* a = root->AddMenu(L"A", 1, 0, 0);
  a->AddMenu(L"A1", 11, 0, 0);
  a->AddMenu(new IMenu());  // keeps the default id -1
  root->AddMenu(L"B", 2, 0, 0)->AddMenu(L"B1", 11, 0, 0);
  std::list<IMenu*> all;
  root->GetAllSubMenu(all);
  std::vector<int> ids;
  for (IMenu* menu : all) ids.push_back(menu->GetID());
  EXPECT_THAT(ids, ElementsAre(1, 11, -1, 2, 11));
  EXPECT_EQ(root->FindIMenu(11)->GetCaption(), L"A1");
  EXPECT_EQ(std::make_tuple(root->FindIMenu(-1), root->FindIMenu(-2)), std::make_tuple(a->GetSubMenu(1), (IMenu*)nullptr));
  root->Release();
}

TEST(MenuModel, InvokingRunsTheCallbackAndFreesTheRootEvenWhenTheCallbackThrows) {
  bool freed = false;
  auto* root = new Watched(freed);
  IMenu* fine = root->AddMenu(L"Fine", 1, 0, 0, MenuHandler(&Record), CString());
  IMenu* failing = root->AddMenu(L"Failing", 2, 0, 0, MenuHandler(&Throw), CString());
  EXPECT_EQ(std::make_tuple(fine->Invoke(), root->AddMenu(L"Silent", 3, 0, 0)->Invoke()), std::make_tuple(1, 0));
  EXPECT_THAT(g_calls, ElementsAre(1));
  EXPECT_EQ(IMenu::InvokeMenu(root, failing, nullptr), 1);
  EXPECT_TRUE(freed);
}

TEST(MenuModel, CloneCopiesLeavesButStripsSubMenusAndIcons) {
  _ImageConfig icon;
  icon.m_strFile = L"/icons/fit.png";
  IMenu* root = new IMenu(L"Root", 9, 0, 0);
  root->AddMenu(L"Fit", 1, 7, 5, MenuHandler(&Record), &icon);
  root->AddMenu(L"Skins", 2, 0, 0, MenuHandler(&Record), L"/icons/skins.png")->AddMenu(L"Ocean", 21, 0, 1);
  ASSERT_NE(root->GetSubMenu(0)->GetICONImage(), nullptr);

  IMenu* copy = IMenu::Clone(root);
  EXPECT_EQ(copy->GetID(), -1);
  const IMenu* fit = copy->GetSubMenu(0);
  EXPECT_EQ(fit->GetCaption(), L"Fit");
  EXPECT_THAT((std::vector<int>{fit->GetID(), fit->IsDisabled(), fit->IsChecked()}), ElementsAre(1, 1, 1));
  EXPECT_TRUE(fit->GetHandle() == MenuHandler(&Record) && fit->GetICONImage() == nullptr);
  const IMenu* skins = copy->GetSubMenu(1);  // shows as a separator
  EXPECT_EQ(skins->GetCaption() + L"|" + skins->GetICONFile() + L"|" + skins->GetSubMenu(0)->GetCaption(), L"||Ocean");
  copy->Release();
  root->Release();
}

}  // namespace
}  // namespace KarvelTest
