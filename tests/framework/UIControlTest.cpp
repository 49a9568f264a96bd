// The control tree: identity, building, inherited visibility and enabled
// state, opacity products, drawing order, hit testing, bubbling and events.

#include <gmock/gmock.h>

#include <cmath>
#include <tuple>

#include <karvelui/CommonString.h>
#include <karvelui/FormConfig.h>
#include "framework/FrameworkTestSupport.h"
#include "support/TraceCapture.h"

namespace KarvelTest {
namespace {

using ::testing::ElementsAre;

// A root whose parent is itself, as a form's root is, so walks end there.
struct Tree {
  Tree() {
    root.SetParentContainer(&root);
    root.RegisterControl(a);
    root.RegisterControl(b);
    a->RegisterControl(a1);
  }
  ProbeControl root{"root", CRect(0, 0, 200, 100)};
  ProbeControl* a = new ProbeControl("A", CRect(10, 10, 110, 60));
  ProbeControl* b = new ProbeControl("B", CRect(50, 20, 150, 80));  // overlaps A
  ProbeControl* a1 = new ProbeControl("A1", CRect(20, 20, 40, 40));
};

TEST(ControlTree, LookupsCompareWithoutCaseAndOnlyTheRecursiveOneDescends) {
  Tree t;
  EXPECT_EQ((std::vector{t.root.FindControl(L"b"), t.root.FindControl(L"ROOT"), t.root.FindControl(L"a1"),
                         t.root.FindControlRecusive(L"a1")}),
            (std::vector<CUIControl*>{t.b, &t.root, nullptr, t.a1}));
  CPtrArray all;
  t.root.GetAllSubControls(all);
  EXPECT_THAT(all.std_vector(), ElementsAre(t.a, t.a1, t.b));  // parents before children
  EXPECT_EQ(t.a->Equals(t.b), 1);                              // the same type, compared without case
  EXPECT_EQ(t.a->ToString(), CString(L"Type: ProbeControl , ID: A"));
}

TEST(ControlTree, AppendingRefusesDuplicatesInsertingDoesNotAndDetachingByIdForgetsTheParent) {
  Tree t;
  EXPECT_FALSE(t.root.RegisterControl(t.a) || t.root.RegisterControl(nullptr));
  EXPECT_TRUE(t.root.RegisterControl(0, t.b));
  EXPECT_EQ(t.root.GetChild(0), t.b);
  t.root.UnRegisterControl(static_cast<CUIControl*>(t.b));  // the extra entry only
  EXPECT_EQ(t.root.GetChildCount(), 2);
  std::unique_ptr<CUIControl> byId(t.root.UnRegisterControl(CString(L"a")));
  ASSERT_EQ(byId.get(), t.a);
  EXPECT_EQ(byId->GetParentContainer(), nullptr);
  EXPECT_TRUE(t.root.UnRegisterControl(static_cast<CUIControl*>(t.b)));
  std::unique_ptr<CUIControl> byPointer(t.b);  // detached by pointer: the parent stays set
  EXPECT_EQ(std::make_tuple(byPointer->GetParentContainer(), t.root.UnRegisterControl(CString(L"missing"))),
            std::make_tuple(static_cast<CUIControl*>(&t.root), static_cast<CUIControl*>(nullptr)));

  bool childGone = false;  // releasing a parent releases its children
  auto* parent = new ProbeControl("P");
  auto* child = new ProbeControl("C");
  child->destroyed = &childGone;
  parent->RegisterControl(child);
  parent->Release();
  EXPECT_TRUE(childGone);
}

TEST(ControlStates, AContainerImposesItsVisibilityWithoutTouchingOwnFlagsAndDisabledControlsFireNothing) {
  Tree t;
  std::vector<BOOL> seen;
  for (BOOL visible : {FALSE, TRUE}) {
    t.a->SetVisible(visible);
    seen.push_back(t.a1->IsVisible());
  }
  EXPECT_EQ(seen, (std::vector<BOOL>{FALSE, TRUE}));
  t.a1->SetVisible(FALSE);
  t.a->SetVisible(FALSE);
  t.a->SetVisible(TRUE);
  EXPECT_FALSE(t.a1->IsVisible());  // a hidden child shows again only through its own flag

  int calls = 0;
  struct Counter {
    int* calls;
    void On(CUIControl*, void*) { ++*calls; }
  } counter{&calls};
  t.root.ListenEvent(1, UIEventHandler(&counter, &Counter::On));
  t.a->SetEnabled(FALSE);
  EXPECT_FALSE(t.a1->FireEvent(1, nullptr));
  t.a->SetEnabled(TRUE);
  EXPECT_TRUE(t.a1->FireEvent(1, nullptr) && t.a1->FireEvent(77, nullptr));  // nobody listens to 77
  EXPECT_EQ(calls, 1);
}

TEST(ControlEvents, TheFirstListenerUpTheTreeGetsTheSenderAndTheParameter) {
  Tree t;
  struct Recorder {
    std::string name;
    void On(CUIControl* sender, void* param) {
      Journal().push_back(name + " from " + static_cast<ProbeControl*>(sender)->GetObjectID().ToUtf8() +
                          (param ? " with" : ""));
    }
  } onRoot{"root"}, onA{"A"}, replaced{"old"};
  t.root.ListenEvent(5, UIEventHandler(&onRoot, &Recorder::On));
  t.a->ListenEvent(5, UIEventHandler(&replaced, &Recorder::On));
  t.a->ListenEvent(5, UIEventHandler(&onA, &Recorder::On));  // replaces
  int param = 0;
  t.a1->FireEvent(5, &param);
  t.b->FireEvent(5, nullptr);
  EXPECT_THAT(Journal(), ElementsAre("A from A1 with", "root from B"));
}

TEST(ControlDrawing, ChildrenDrawInOrderAtTheProductOfTheirOpacitiesAndZeroSkipsTheSubtree) {
  Tree t;
  DXCore dx;
  CRect clip(0, 0, 200, 100);
  t.root.SetOpacitySelf(0.5f);
  t.a->SetOpacitySelf(0.5f);
  for (float bad : {1.5f, -0.1f, std::nanf("")}) t.a->SetOpacitySelf(bad);  // ignored
  auto* late = new ProbeControl("late");  // appended to a translucent container: it takes the product too
  late->SetOpacitySelf(0.5f);
  t.a1->RegisterControl(late);
  t.root.Render(&dx, &clip);
  EXPECT_THAT(Journal(), ElementsAre("root draw 0.5", "A draw 0.25", "A1 draw 0.25", "late draw 0.125", "B draw 0.5"));
  EXPECT_FLOAT_EQ(dx.GetGlobalOpacity(), 1.0f);
  Journal().clear();
  t.a->SetOpacitySelf(0.0f);
  t.b->SetVisible(FALSE);
  t.root.Render(&dx, &clip);
  EXPECT_THAT(Journal(), ElementsAre("root draw 0.5"));
}

TEST(ControlHitTest, TheLowerIndexWinsAnOverlapAndAHitTransparentPanelIsNeverTheHitItself) {
  Tree t;
  auto hit = [&](int x, int y) { return t.root.FindControlUnderPoint(CPoint(x, y)); };
  // A is drawn underneath B, yet hit first; A's right edge is outside A.
  EXPECT_EQ((std::vector{hit(60, 30), hit(25, 25), hit(110, 30)}), (std::vector<CUIControl*>{t.a, t.a1, t.b}));
  t.a->SetHitTransparent(TRUE);  // the search goes on past A
  EXPECT_EQ(std::make_tuple(hit(15, 15), hit(25, 25)), std::make_tuple(static_cast<CUIControl*>(&t.root), static_cast<CUIControl*>(t.a1)));
  t.a->SetVisible(FALSE);
  EXPECT_EQ(hit(60, 30), t.b);
  t.root.SetHitTransparent(TRUE);
  EXPECT_EQ(hit(190, 5), nullptr);
}

TEST(ControlInput, UnhandledMessagesBubbleUpToTheRootAndSkinChangesReachParentsFirst) {
  Tree t;
  t.a1->DispatchMouseMessage(WM_LBUTTONDOWN, 0, CPoint(1, 2));
  t.a->handlesKeys = 1;
  t.a1->DispatchKeyMessage(WM_KEYDOWN, VK_SPACE, 1, 0);
  t.root.DispathSkinChangeMsg();
  EXPECT_THAT(Journal(),
              ElementsAre("A1 mouse WM_LBUTTONDOWN 1,2", "A mouse WM_LBUTTONDOWN 1,2", "root mouse WM_LBUTTONDOWN 1,2",
                          "A1 key WM_KEYDOWN 32", "A key WM_KEYDOWN 32", "root skin", "A skin", "A1 skin", "B skin"));
}

class ControlBuildTest : public FrameworkTest {};

TEST_F(ControlBuildTest, ChildElementsBecomeControlsThroughTheFactory) {
  LoadSkin(R"(<Form><Panel type="ProbeControl" css="Dark" ass="Top" Visible="false">
                  <Inner type="ProbeControl" Enable="F"/><Broken type="NoSuchType"/><Plain/></Panel></Form>)",
           "");
  TraceCapture trace;
  ProbeControl root("Form");
  ASSERT_TRUE(root.BuildFromXML(Manager()->GetBuildNode(L"BuildRoot Form")));
  auto* panel = root.FindControl(L"panel");
  ASSERT_NE(panel, nullptr);
  EXPECT_EQ(panel->GetCssName() + L"/" + panel->GetAssName(), CString(L"Dark/Top"));
  ASSERT_EQ(panel->GetChildCount(), 1);
  EXPECT_FALSE(panel->IsVisible() || panel->GetChild(0)->IsEnabled() || root.BuildFromXML(nullptr));
  ASSERT_EQ(trace.Lines().size(), 1u);
  EXPECT_EQ(std::make_tuple(trace.Lines()[0].message, trace.Lines()[0].level),
            std::make_tuple(std::wstring(L"Create obj error:Broken, type:NoSuchType\n"), TRACE_LEVEL_ERROR));
}

TEST_F(ControlBuildTest, LayoutAndSkinRecordsComeFromTheEntriesTheNodeNames) {
  LoadSkin("", R"(<css><CUIForm><Main BorderMargin="1, 2, 3, 4" MinSize="300, 200"/></CUIForm></css>
                  <ass><ProbeControl><Top Bounds="5, 6, 70, 20" DockStyle="top" TipID="TIP"/></ProbeControl></ass>)");
  TempDir dir;
  CommonString::GetInstance()->LoadStringTable(LibraryPath(dir.Write("strings.lng", "TIP=Open a folder\n")));
  ProbeControl root("root");
  auto* child = new ProbeControl("child", CRect(1, 1, 2, 2));
  root.RegisterControl(child);
  child->SetAssName(L"Top");
  child->SetCssName(L"Main");
  root.ReadAssSkinData(CString());
  EXPECT_EQ(std::make_tuple(child->GetAnchor(), child->GetAssData().m_nStyle, child->GetBounds(), child->GetTooltipText()),
            std::make_tuple(CRect(5, 6, 75, 26), int{DOCK_TOP}, CRect(), CString(L"Open a folder")));
  auto* config = dynamic_cast<_FormConfig*>(child->GetSkinConfig(L"CUIForm"));
  ASSERT_NE(config, nullptr);
  EXPECT_EQ(config->m_rcBorderMargin, CRect(1, 2, 3, 4));
  EXPECT_EQ(child->GetSkinConfig(CString()), config);  // cached, whatever the name
  CommonString::FreeInstance();
}

}  // namespace
}  // namespace KarvelTest
