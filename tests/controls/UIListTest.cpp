// The film strip over the GPU double: layout around the selection, the
// padding warning, selection modes, the wheel, insertion, GetFiles, the
// failed-thumbnail stop, the default effects' boards on a hand-driven clock,
// the skin's "ItemSize" check and the worker killed before ClearAll frees
// the items.

#include <karvelui/AnimationBoard.h>
#include <karvelui/AnimationController.h>
#include <karvelui/UIList.h>

#include <chrono>
#include <thread>

#include "controls/ControlsTestSupport.h"
#include "platform/Paths.h"
#include "support/PictureFiles.h"
#include "support/TempDir.h"

namespace KarvelTest {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

class UIListTest : public ControlsTest {
 protected:
  // A 600 x 200 form with the strip "Strip" of `width` x 100 at (0, 0).
  CUIList* MakeList(int width = 450, const std::string& keys = "ItemSize=\"100, 80\"") {
    LoadSkin(R"(<TestForm css="Main"><Strip type="CUIList" css="Strip" ass="Strip"/></TestForm>)",
             R"(<css><CUIForm><Main PositionRect="0, 0, 600, 200" BorderMargin="0, 0, 0, 0"/></CUIForm>
                <CUIList><Strip )" + keys + R"(/></CUIList></css>
                <ass><CUIList><Strip AnchorStyle="topleft" Bounds="0, 0, )" + std::to_string(width) +
                 R"(, 100"/></CUIList></ass>)");
    form = MakeForm();
    list = Find<CUIList>(form, L"Strip");
    for (int id : {UI_EVENT_LIST_SELECTED, UI_EVENT_LIST_THUMB_FAILED, UI_EVENT_LIST_THUMB_LOADED})
      form->ListenEvent(id, MakeDelegate(this, &UIListTest::OnEvent));
    return list;
  }
  void OnEvent(CUIControl*, void* param) {
    if (param == list) {
      seen.push_back(-1);  // a selection
    } else {
      std::unique_ptr<int> index(static_cast<int*>(param));
      seen.push_back(*index);
    }
  }
  // `count` items whose thumbnails count as loaded (no path: the worker leaves them alone).
  void AddLoaded(int count) {
    for (int i = 0; i < count; ++i) {
      auto* item = new UIItemInfo();
      item->Thumbnail().SetState(THUMB_STATE_LOADED);
      ASSERT_EQ(list->AddItem(item, 0), 1);
    }
  }
  AnimationController& Controller() { return *form->GetAnimationController(); }
  // One animation tick after `ms` on the hand-driven clock.
  void Tick(int ms) {
    clock.Advance(ms);
    Controller().OnTimer(form);
  }
  static std::pair<double, double> SizeTarget(UIItemInfo* item) {
    return {item->m_pSelectBoard->GetRange(0)->to, item->m_pSelectBoard->GetRange(1)->to};
  }

  ManualClock clock;
  CUIForm* form = nullptr;
  CUIList* list = nullptr;
  std::vector<int> seen;
};

TEST_F(UIListTest, SelectingItemTenLaysOutSevenToElevenFromSevenHundredAndWarnsOfPaddingWiderThanTheItem) {
  MakeList();
  AddLoaded(30);
  list->GetItem(9)->m_rcPadding = CRect(60, 0, 60, 0);
  list->SetItemSelectEffect(nullptr);  // sizes stay the skin's
  list->SelectItem(10, 1);
  TraceCapture trace;
  list->CalculatePosition();
  EXPECT_EQ(list->GetFirstVisible(), 7u);
  EXPECT_EQ(list->GetVisibleCount(), 5u);
  EXPECT_EQ(list->GetItem(7)->m_rect, CRect(700, 10, 800, 90));
  EXPECT_EQ(list->GetItem(8)->m_rect, CRect(800, 10, 900, 90));
  EXPECT_TRUE(list->GetItem(9)->m_rect.IsRectEmpty());
  EXPECT_EQ(list->GetItem(10)->m_rect, CRect(900, 10, 1000, 90));  // where item 9 would have started
  EXPECT_THAT(trace.Messages(),
              ElementsAre(L"<WARNING> calculate position listchildren[9]: size or padding is invalidity"));
}

struct SelectCase {
  int loadState;
  int force;
  int selected;
  std::vector<int> events;
};

class UIListSelectTest : public UIListTest, public ::testing::WithParamInterface<SelectCase> {};

TEST_P(UIListSelectTest, OnlyALoadedItemIsSelectedUnlessForced) {
  MakeList();
  AddLoaded(3);
  list->GetItem(1)->Thumbnail().SetState(GetParam().loadState);
  list->SelectItem(1, GetParam().force);
  EXPECT_EQ(list->GetSelectedItem(), GetParam().selected);
  EXPECT_EQ(list->GetItem(1)->GetSelected(), GetParam().selected == 1);
  EXPECT_EQ(seen, GetParam().events);
  // The select effect runs only for a loaded picture.
  EXPECT_EQ(list->GetEffectIndex(), GetParam().loadState == THUMB_STATE_LOADED ? 1 : -1);
}

INSTANTIATE_TEST_SUITE_P(Modes, UIListSelectTest,
                         ::testing::Values(SelectCase{THUMB_STATE_NOT_LOADED, 0, -1, {}},
                                           SelectCase{THUMB_STATE_NOT_LOADED, 1, 1, {-1}},
                                           SelectCase{THUMB_STATE_FAILED, 0, -1, {}},
                                           SelectCase{THUMB_STATE_LOADED, 0, 1, {-1}}));

struct WheelCase {
  int canContentScroll;
  int selected;
  short delta;
  int selectedAfter;
  double scrollTarget;
};

class UIListWheelTest : public UIListTest, public ::testing::WithParamInterface<WheelCase> {};

TEST_P(UIListWheelTest, TheWheelMovesTheSelectionRoundTheEndsOrScrollsFortyPixelsANotch) {
  MakeList();
  AddLoaded(5);
  list->SetItemSelectEffect(nullptr);
  list->SelectItem(GetParam().selected, 0);
  list->SetCanContentScroll(GetParam().canContentScroll);
  const UINT flags = static_cast<UINT>(static_cast<WORD>(GetParam().delta)) << 16;
  EXPECT_EQ(list->OnMouseMessage(WM_MOUSEWHEEL, flags, CPoint()), 1);
  EXPECT_EQ(list->GetSelectedItem(), GetParam().selectedAfter);
  EXPECT_DOUBLE_EQ(list->GetScrollTarget(), GetParam().scrollTarget);
}

INSTANTIATE_TEST_SUITE_P(Wheel, UIListWheelTest,
                         ::testing::Values(WheelCase{1, 4, -120, 0, 0.0}, WheelCase{1, 0, 120, 4, 0.0},
                                           WheelCase{1, 2, -120, 3, 0.0}, WheelCase{0, 2, 120, 2, -40.0},
                                           WheelCase{0, 2, -240, 2, 80.0}));

TEST_F(UIListTest, InsertionAtOrBelowTheSelectionMovesItUp) {
  MakeList();
  const struct {
    unsigned at;
    int selectedAfter;
  } cases[] = {{0, 3}, {2, 3}, {3, 2}, {5, 2}};
  for (const auto& c : cases) {
    list->ClearAll(1);
    AddLoaded(5);
    list->SelectItem(2, 0);
    EXPECT_EQ(list->InsertItem(new UIItemInfo(), c.at, 0), 1);
    EXPECT_EQ(list->GetSelectedItem(), c.selectedAfter) << "insert at " << c.at;
  }
  auto* stray = new UIItemInfo();
  EXPECT_EQ(list->InsertItem(stray, 99, 0), 0);  // past the end: still the caller's
  stray->Release();
}

TEST_F(UIListTest, GetFilesReturnsNothingWithoutASelectionAndEveryPathWithOne) {
  MakeList();
  for (const wchar_t* path : {L"a.jpg", L"b.jpg", L"c.jpg"}) {
    auto* item = new UIItemInfo();
    item->Thumbnail().SetImage(path);
    list->AddItem(item, 0);
  }
  CStringArray paths;
  CString selected = L"untouched";
  list->GetFiles(paths, selected);
  EXPECT_EQ(paths.GetSize(), 0);
  EXPECT_EQ(selected, L"untouched");
  list->SelectItem(1, 1);
  list->GetFiles(paths, selected);
  EXPECT_EQ(selected, L"b.jpg");
  ASSERT_EQ(paths.GetSize(), 3);
  EXPECT_EQ(paths[2], L"c.jpg");
  list->ClearAll(1);
}

TEST_F(UIListTest, DrawingStopsAtAFailedThumbnailAndReportsItOnEveryPaint) {
  MakeList();
  AddLoaded(5);
  list->GetItem(2)->Thumbnail().SetState(THUMB_STATE_FAILED);
  list->GetItem(3)->Thumbnail().SetState(THUMB_STATE_FAILED);
  form->OnPaint(0);
  form->OnPaint(0);
  EXPECT_THAT(seen, ElementsAre(2, 2));
}

TEST_F(UIListTest, TheSelectEffectGrowsAFisheyeCentresTheSelectionAndShowsItsHaloWhenDone) {
  MakeList();
  AddLoaded(30);
  list->SelectItem(10, 0);
  // Outermost to innermost on each side, then the selection.
  const std::pair<double, double> grown[] = {{102, 82}, {109, 89}, {114, 94}, {117, 97}, {123, 103},
                                             {117, 97}, {114, 94}, {109, 89}, {102, 82}};
  for (int i = 6; i <= 14; ++i) {
    EXPECT_EQ(SizeTarget(list->GetItem(i)), grown[i - 6]) << "item " << i;
    EXPECT_EQ(list->GetItem(i)->m_pSelectBoard->GetDuration().GetTotalMillisecond(), 300u);
  }
  EXPECT_EQ(list->GetItem(5)->m_pSelectBoard->GetTargetCount(), 0u);  // never animated
  EXPECT_EQ(list->GetItem(15)->m_pSelectBoard->GetTargetCount(), 0u);
  // The first selection jumps to the centring offset at once.
  EXPECT_NE(list->GetScrollBoard().GetState(), ANIMATION_RUNNING);
  const double jumped = list->GetScrollOffset();
  EXPECT_DOUBLE_EQ(jumped, 1000 - (450 - 100) * 0.5 + (2 + 9 + 14 + 17) + 23 * 0.5);

  Tick(300);  // the growth ends: the selection's halo fades in fully over 200 ms
  EXPECT_EQ(list->GetItem(10)->GetSize(), CSize(123, 103));
  AnimationBoard& halo = *list->GetItem(10)->m_pHaloBoard;
  EXPECT_EQ(halo.GetState(), ANIMATION_RUNNING);
  EXPECT_EQ(halo.GetRange(0)->to, 255);
  EXPECT_EQ(halo.GetDuration().GetTotalMillisecond(), 200u);
  Tick(200);
  EXPECT_EQ(list->GetItem(10)->GetHaloAlpha(), 255);

  // A later selection scrolls there in 300 ms and hides the old halo.
  list->SelectItem(11, 0);
  EXPECT_EQ(list->GetScrollBoard().GetState(), ANIMATION_RUNNING);
  EXPECT_EQ(list->GetScrollBoard().GetDuration().GetTotalMillisecond(), 300u);
  EXPECT_EQ(halo.GetRange(0)->to, 0);
  Tick(300);
  Tick(1);
  EXPECT_DOUBLE_EQ(list->GetScrollOffset(), list->GetScrollTarget());
  EXPECT_NE(list->GetScrollOffset(), jumped);
}

TEST_F(UIListTest, HoverFadesTheHaloToHalfExceptOnTheSelectionAndFarItemsShrinkBack) {
  MakeList(1000);
  AddLoaded(30);
  list->SelectItem(10, 0);
  list->OnItemMouseHover(12, -1);
  list->OnItemMouseHover(10, 12);
  list->OnItemMouseLeave(10, -1);
  EXPECT_EQ(list->GetItem(12)->m_pHaloBoard->GetRange(0)->to, 128);
  EXPECT_EQ(list->GetItem(12)->m_pHaloBoard->GetDuration().GetTotalMillisecond(), 200u);
  EXPECT_EQ(list->GetItem(10)->m_pHaloBoard->GetState(), ANIMATION_IDLE);

  Tick(300);
  list->SelectItem(12, 0);  // items 6 and 7 are laid out 5 and 6 places away
  for (int i : {6, 7}) {
    EXPECT_EQ(list->GetItem(i)->m_pSelectBoard->GetState(), ANIMATION_RUNNING) << i;
    EXPECT_EQ(SizeTarget(list->GetItem(i)), std::make_pair(100.0, 80.0)) << i;
  }
  EXPECT_EQ(SizeTarget(list->GetItem(8)), std::make_pair(102.0, 82.0));
}

TEST_F(UIListTest, ASkinItemSizeWithoutWidthIsRefusedWithATraceLine) {
  TraceCapture trace;
  MakeList(450, "ItemSize=\"0, 80\"");
  EXPECT_TRUE(trace.Contains(L"<WARNING> list ItemSize 0, 80 is invalid, 96, 72 used"));
  EXPECT_EQ(list->GetListConfig()->m_szItem, CSize(96, 72));
  AddLoaded(3);
  list->SelectItem(1, 0);
  form->OnPaint(0);  // lays out without dividing by zero
  EXPECT_EQ(list->GetItem(0)->m_rect.left, 0);
}

TEST_F(UIListTest, ClearAllStopsTheWorkerBeforeItFreesTheItemsItIsLoading) {
  TempDir dir;
  MakeList();
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 12; ++i) {
      auto* item = new UIItemInfo();
      const std::string name = std::to_string(round) + "_" + std::to_string(i) + ".jpg";
      item->Thumbnail().SetImage(FromNativePath(dir.Write(name, MakeJpeg(320, 240)).string()));
      list->AddItem(item, 0);
    }
    list->SelectItem(6, 1);  // starts the worker on the middle of the strip
    if (round == 2) {        // the last round waits for a load, so one surely ran
      const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
      while (list->GetItem(6)->Thumbnail().GetState() != THUMB_STATE_LOADED &&
             std::chrono::steady_clock::now() < deadline)
        std::this_thread::yield();
      EXPECT_EQ(list->GetItem(6)->Thumbnail().GetState(), THUMB_STATE_LOADED);
    }
    list->ClearAll(0);
    EXPECT_EQ(list->GetItemsCount(), 0u);
    EXPECT_EQ(list->GetSelectedItem(), -1);
  }
  list->DeliverLoadedItems();  // reports from before the clear are gone with it
  EXPECT_THAT(seen, ::testing::Each(-1));
}

}  // namespace
}  // namespace KarvelTest
