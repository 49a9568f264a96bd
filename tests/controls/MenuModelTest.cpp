// The menu model: separators, lookups, copies, and choosing an entry.

#include <gmock/gmock.h>

#include <stdexcept>

#include <karvelui/IMenu.h>
#include <karvelui/ImageConfig.h>

namespace KarvelTest {
namespace {

using namespace KarvelUI;
using ::testing::ElementsAre;

class Watched : public IMenu {
 public:
  Watched(bool& freed, const CString& caption, int id) : IMenu(caption, id, 0, 0), m_freed(freed) {}
  ~Watched() override { m_freed = true; }

 private:
  bool& m_freed;
};

std::vector<int> Ids(const std::list<IMenu*>& menus) {
  std::vector<int> ids;
  for (IMenu* menu : menus) ids.push_back(menu->GetID());
  return ids;
}

std::vector<int> g_calls;
void Record(IMenu* menu) { g_calls.push_back(menu->GetID()); }
void Throw(IMenu*) { throw std::runtime_error("host failure"); }

TEST(MenuModel, AnEmptyCaptionMakesASeparatorThatNeverTakesTheSelection) {
  IMenu* root = new IMenu();
  MenuItem line(7, root->AddMenu(L"", 5, 0, 0), nullptr), fit(22, root->AddMenu(L"Fit", 6, 0, 0), nullptr);
  line.SetSel(1);
  fit.SetSel(1);
  EXPECT_EQ(line.IsSeparator(), 1);
  EXPECT_EQ(line.IsSel(), 0);
  EXPECT_EQ(fit.IsSel(), 1);

  MenuItem flat(0, fit.GetMenu(), nullptr);
  flat.SetPos(40);
  EXPECT_EQ(flat.GetValidEndPos(), 40);
  fit.SetPos(40);
  EXPECT_EQ(fit.GetValidEndPos(), 62);
  root->Release();
}

TEST(MenuModel, LookupsWalkDepthFirstEachNodeBeforeItsChildren) {
  IMenu* root = new IMenu();
  IMenu* a = root->AddMenu(L"A", 1, 0, 0);
  a->AddMenu(L"A1", 11, 0, 0);
  a->AddMenu(new IMenu());  // keeps the default id -1
  root->AddMenu(L"B", 2, 0, 0)->AddMenu(L"B1", 11, 0, 0);
  std::list<IMenu*> all;
  root->GetAllSubMenu(all);
  EXPECT_THAT(Ids(all), ElementsAre(1, 11, -1, 2, 11));
  EXPECT_EQ(root->FindIMenu(11)->GetCaption(), L"A1");
  EXPECT_EQ(root->FindIMenu(-1), a->GetSubMenu(1));
  EXPECT_EQ(root->FindIMenu(-2), nullptr);
  EXPECT_EQ(root->FindIMenu(99), nullptr);
  root->Release();
}

TEST(MenuModel, InvokingRunsTheCallbackAndFreesTheRootEvenWhenTheCallbackThrows) {
  g_calls.clear();
  bool freed = false;
  auto* root = new Watched(freed, L"", -1);
  IMenu* fine = root->AddMenu(L"Fine", 1, 0, 0, MenuHandler(&Record), CString());
  IMenu* failing = root->AddMenu(L"Failing", 2, 0, 0, MenuHandler(&Throw), CString());
  IMenu* silent = root->AddMenu(L"Silent", 3, 0, 0);
  EXPECT_EQ(fine->Invoke(), 1);
  EXPECT_EQ(failing->Invoke(), 0);
  EXPECT_EQ(silent->Invoke(), 0);
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
  EXPECT_EQ(copy->GetCaption(), L"");
  EXPECT_EQ(copy->GetID(), -1);
  const IMenu* fit = copy->GetSubMenu(0);
  EXPECT_EQ(fit->GetCaption(), L"Fit");
  EXPECT_EQ(fit->GetID(), 1);
  EXPECT_EQ(fit->IsDisabled(), 1);
  EXPECT_EQ(fit->IsChecked(), 1);
  EXPECT_TRUE(fit->GetHandle() == MenuHandler(&Record));
  EXPECT_EQ(fit->GetICONImage(), nullptr);
  const IMenu* skins = copy->GetSubMenu(1);
  EXPECT_EQ(skins->GetCaption(), L"");  // shows as a separator
  EXPECT_EQ(skins->GetICONFile(), L"");
  EXPECT_EQ(skins->GetSubMenu(0)->GetCaption(), L"Ocean");
  copy->Release();
  root->Release();
}

}  // namespace
}  // namespace KarvelTest
