// The tooltip control over real off-screen windows: mouse events pass
// through the owner's pre-translation into the control, time runs on a
// hand-driven clock, and the popup paints through its own GL device.

#include <karvelui/DXCore.h>
#include <karvelui/Screen.h>
#include "framework/ToolTipCtrl.h"
#include "support/GLTesting.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

const CRect kOpenRect(10, 10, 60, 40);
const CRect kSaveRect(100, 10, 150, 40);
constexpr UINT_PTR kOpen = 1, kSave = 2;

// Relays its messages (and those of its children and owned popups) to a
// tooltip control the way a form does.
class RelayingOwner : public CWnd {
 public:
  CToolTipCtrl* tip = nullptr;
  BOOL PreTranslateMessage(MSG* msg) override {
    if (tip) tip->RelayEvent(msg);
    return FALSE;
  }
};

class ToolTipTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(DXCore::InitInstance(), S_OK);
    ASSERT_TRUE(MakeWindow(owner, CRect(100, 100, 400, 300), WS_POPUP | WS_VISIBLE));
    owner.tip = &tip;
    ASSERT_TRUE(tip.Create(&owner, TTS_ALWAYSTIP));
    tip.SetDelayTime(600);
    ASSERT_TRUE(tip.AddTool(&owner, L"Open", &kOpenRect, kOpen));
    ASSERT_TRUE(tip.AddTool(&owner, L"Save", &kSaveRect, kSave));
  }
  void TearDown() override {
    tip.DestroyWindow();
    owner.DestroyWindow();
    DXCore::ExitInstance();
  }
  void MoveTo(int x, int y, CWnd* over = nullptr) {
    PushMotion((over ? over : &owner)->m_hWnd, x, y);
    PumpAll();
  }
  void Relay(HWND hwnd, UINT message, int x = 0, int y = 0) {
    const MSG msg{hwnd, message, 0, MAKELPARAM(x, y), 0, {}};
    tip.RelayEvent(&msg);
  }
  void Wait(std::uint64_t ms) {
    clock.Advance(ms);
    PumpAll();
  }
  void ShowOpen() {
    MoveTo(20, 20);
    Wait(600);
    ASSERT_EQ(tip.GetShownText(), L"Open");
  }

  ManualClock clock;
  RelayingOwner owner;
  CToolTipCtrl tip;
};

// Timing, as scripts of cursor moves, presses and waits.
struct Step {
  enum Action { Move, Wait, Press, RightPress, Leave, OtherLeave, MoveOnTip, Deactivate, Activate, Delete } action;
  int x = 0, y = 0;                // the point, or the milliseconds to wait
  const wchar_t* shown = nullptr;  // the text shown afterwards ("" none); null: not looked at
};
struct Script {
  const char* name;
  std::vector<Step> steps;
};

class ToolTipTimingTest : public ToolTipTest, public ::testing::WithParamInterface<Script> {
 protected:
  void Run(const Step& step) {
    switch (step.action) {
      case Step::Move: return MoveTo(step.x, step.y);
      case Step::Wait: return Wait(static_cast<std::uint64_t>(step.x));
      case Step::Press:
        PushButton(owner.m_hWnd, step.x, step.y, true);
        PushButton(owner.m_hWnd, step.x, step.y, false);
        PumpAll();
        return;
      case Step::RightPress: return Relay(owner.m_hWnd, WM_RBUTTONDOWN, step.x, step.y);
      case Step::Leave:
        owner.PostMessage(WM_MOUSELEAVE);
        PumpAll();
        return;
      case Step::OtherLeave: return Relay(other.m_hWnd, WM_MOUSELEAVE);
      case Step::MoveOnTip: return MoveTo(step.x, step.y, &tip);
      case Step::Deactivate: return tip.Activate(FALSE);
      case Step::Activate: return tip.Activate(TRUE);
      case Step::Delete: return tip.DelTool(&owner, kOpen);
    }
  }
  RecordingWnd other;
};

TEST_P(ToolTipTimingTest, ShowsWhatTheScriptExpects) {
  ASSERT_TRUE(MakeWindow(other, CRect(500, 100, 600, 200)));
  int index = 0;
  for (const Step& step : GetParam().steps) {
    Run(step);
    if (step.shown) {
      EXPECT_EQ(tip.GetShownText(), CString(step.shown)) << "after step " << index;
      EXPECT_EQ(tip.IsTipShown(), *step.shown != 0) << "after step " << index;
    }
    ++index;
  }
}

using S = Step;
INSTANTIATE_TEST_SUITE_P(
    ToolTip, ToolTipTimingTest,
    ::testing::Values(
        Script{"AfterTheInitialDelay", {{S::Move, 20, 20, L""}, {S::Wait, 599, 0, L""}, {S::Wait, 1, 0, L"Open"}}},
        Script{"MovingWithinAToolKeepsTheDelayGoing",
               {{S::Move, 20, 20}, {S::Wait, 300}, {S::Move, 30, 25}, {S::Wait, 300, 0, L"Open"}}},
        Script{"AnotherToolRestartsTheDelay",
               {{S::Move, 20, 20}, {S::Wait, 400}, {S::Move, 110, 20}, {S::Wait, 599, 0, L""},
                {S::Wait, 1, 0, L"Save"}}},
        Script{"FromAShownTipTheNextFollowsAfterTheReshowDelay",
               {{S::Move, 20, 20}, {S::Wait, 600, 0, L"Open"}, {S::Move, 110, 20, L""}, {S::Wait, 119, 0, L""},
                {S::Wait, 1, 0, L"Save"}}},
        Script{"APressHidesUntilTheCursorEntersAnotherTool",
               {{S::Move, 20, 20}, {S::Wait, 300}, {S::Press, 20, 20}, {S::Wait, 1000, 0, L""}, {S::Move, 25, 22},
                {S::Wait, 5000, 0, L""}, {S::Move, 110, 20}, {S::Wait, 600, 0, L"Save"},
                {S::RightPress, 110, 20, L""}}},
        Script{"AutoPopAfterTenTimesTheDelayThenTheToolStaysQuiet",
               {{S::Move, 20, 20}, {S::Wait, 600}, {S::Wait, 5999, 0, L"Open"}, {S::Wait, 1, 0, L""},
                {S::Move, 22, 22}, {S::Wait, 10000, 0, L""}}},
        Script{"LeavingTheToolWindowHidesButAnotherWindowsLeaveDoesNot",
               {{S::Move, 20, 20}, {S::Wait, 600}, {S::OtherLeave, 0, 0, L"Open"}, {S::Leave, 0, 0, L""},
                {S::Wait, 1000, 0, L""}}},
        Script{"InputOnThePopupPutsItAway",
               {{S::Move, 20, 20}, {S::Wait, 600}, {S::MoveOnTip, 2, 2, L""}, {S::Move, 22, 22},
                {S::Wait, 1000, 0, L""}}},
        Script{"AnInactiveControlShowsNothingAndDeactivatingHides",
               {{S::Deactivate}, {S::Move, 20, 20}, {S::Wait, 1000, 0, L""}, {S::Activate}, {S::Move, 22, 22},
                {S::Wait, 600, 0, L"Open"}, {S::Deactivate, 0, 0, L""}}},
        Script{"DeletingTheShownToolHidesItForGood",
               {{S::Move, 20, 20}, {S::Wait, 600}, {S::Delete, 0, 0, L""}, {S::Move, 25, 25},
                {S::Wait, 1000, 0, L""}}}),
    [](const ::testing::TestParamInfo<Script>& info) { return std::string(info.param.name); });

TEST_F(ToolTipTest, ThePopupOpensBelowTheCursorWithoutActivationAndStaysInsideTheWorkArea) {
  ShowOpen();
  EXPECT_EQ(WindowRectOf(tip).TopLeft(), CPoint(120, 140));
  EXPECT_EQ(GetActiveWindow(), owner.m_hWnd);

  MONITORINFO info;
  GetMonitorInfoW(MonitorFromPoint(CPoint(0, 0), MONITOR_DEFAULTTONEAREST), &info);
  const CRect work = info.rcWork;
  owner.MoveWindow(work.right - 120, work.bottom - 60, 120, 60);
  const CRect whole(0, 0, 120, 60);
  tip.AddTool(&owner, L"A rather long text for a tool in the corner", &whole, 3);
  MoveTo(115, 55);
  Wait(600);
  ASSERT_TRUE(tip.IsTipShown());
  const CRect popup = WindowRectOf(tip);
  EXPECT_EQ(popup & work, popup);
  EXPECT_FALSE(popup.PtInRect(CPoint(work.right - 5, work.bottom - 5)));
}

TEST_F(ToolTipTest, WithoutAlwaysTipOnlyTheActiveOwnerGetsTips) {
  CToolTipCtrl plain;
  ASSERT_TRUE(plain.Create(&owner, 0));
  plain.SetDelayTime(600);
  plain.AddTool(&owner, L"Open", &kOpenRect, kOpen);
  owner.tip = &plain;
  RecordingWnd other;
  ASSERT_TRUE(MakeWindow(other, CRect(500, 100, 600, 200), WS_POPUP | WS_VISIBLE));
  ASSERT_EQ(GetActiveWindow(), other.m_hWnd);
  MoveTo(20, 20);
  Wait(1000);
  EXPECT_FALSE(plain.IsTipShown());
  owner.SetActiveWindow();
  MoveTo(22, 22);
  Wait(600);
  EXPECT_EQ(std::make_tuple(plain.GetShownText(), GetActiveWindow()), std::make_tuple(CString(L"Open"), owner.m_hWnd));
  owner.tip = &tip;
}

TEST_F(ToolTipTest, WholeWindowToolsYieldToRectanglesOfThatWindow) {
  CWnd child;
  ASSERT_TRUE(MakeWindow(child, CRect(200, 100, 280, 180), WS_CHILD | WS_VISIBLE, 0, &owner));
  ASSERT_TRUE(tip.AddTool(&child, L"Child"));
  const CRect corner(0, 0, 10, 10);
  ASSERT_TRUE(tip.AddTool(&child, L"Corner", &corner, 7));
  CToolInfo info;
  ASSERT_TRUE(tip.GetToolInfo(info, &child));
  EXPECT_EQ(std::make_tuple(info.uFlags, info.uId), std::make_tuple(UINT{TTF_IDISHWND}, reinterpret_cast<UINT_PTR>(child.m_hWnd)));
  MoveTo(5, 5, &child);
  Wait(600);
  EXPECT_EQ(tip.GetShownText(), L"Corner");
  MoveTo(40, 40, &child);
  Wait(120);
  EXPECT_EQ(tip.GetShownText(), L"Child");
  tip.DelTool(&child, 0);
  EXPECT_EQ(std::make_tuple(tip.IsTipShown(), tip.GetToolCount()), std::make_tuple(FALSE, 3));
}

TEST_F(ToolTipTest, UpdateTipTextChangesAShownTipAtOnce) {
  ShowOpen();
  const LONG narrow = WindowRectOf(tip).Width();
  tip.UpdateTipText(L"Save as", &owner, kSave);
  EXPECT_EQ(tip.GetShownText(), L"Open");
  tip.UpdateTipText(L"Open the picture\nin a new window", &owner, kOpen);
  EXPECT_EQ(tip.GetShownText(), L"Open the picture\nin a new window");
  const CRect wide = WindowRectOf(tip);
  EXPECT_GT(wide.Width(), narrow);
  EXPECT_GT(wide.Height(), 2 * 12);  // two lines
  tip.UpdateTipText(L"", &owner, kOpen);
  EXPECT_FALSE(tip.IsTipShown());
}

TEST_F(ToolTipTest, PaintsTheInfoBackgroundInADarkBorderWithDarkText) {
  ShowOpen();
  const Frame frame = ReadBack(tip.GetRenderDevice()->GetD3DDevice());
  const CRect popup = WindowRectOf(tip);
  ASSERT_EQ(frame.size, popup.Size());
  auto dark = [](DWORD c) { return (c & 0xFF) < 0x80 && ((c >> 8) & 0xFF) < 0x80 && ((c >> 16) & 0xFF) < 0x80; };
  EXPECT_TRUE(dark(frame.At(0, 0)) && dark(frame.At(popup.Width() - 1, popup.Height() - 1)));
  int background = 0, ink = 0;
  for (int y = 1; y < popup.Height() - 1; ++y)
    for (int x = 1; x < popup.Width() - 1; ++x) {
      background += ColorNear(frame.At(x, y), 0xFFFFFFE1) ? 1 : 0;
      ink += dark(frame.At(x, y)) ? 1 : 0;
    }
  EXPECT_GT(background, (popup.Width() - 2) * (popup.Height() - 2) / 2);
  EXPECT_GT(ink, 10);
}

TEST_F(ToolTipTest, DestroyingTheOwnerTakesThePopupAlongAndLaterCallsDoNothing) {
  MoveTo(20, 20);
  const HWND popup = tip.m_hWnd;
  owner.DestroyWindow();
  EXPECT_FALSE(IsWindow(popup));
  EXPECT_EQ(tip.GetRenderDevice(), nullptr);
  Wait(10000);
  Relay(popup, WM_MOUSEMOVE, 20, 20);
  EXPECT_EQ(std::make_tuple(tip.IsTipShown(), tip.GetToolCount()), std::make_tuple(FALSE, 2));
}

TEST_F(ToolTipTest, BadInputIsIgnoredAndTheSameToolIsReplacedNotAdded) {
  CWnd unmade;
  CToolTipCtrl uncreated;
  EXPECT_FALSE(tip.Create(&owner, 0));
  EXPECT_FALSE(tip.AddTool(nullptr, L"x"));
  EXPECT_FALSE(tip.AddTool(&unmade, L"x", &kOpenRect, 5));
  tip.RelayEvent(nullptr);
  Relay(nullptr, WM_MOUSEMOVE);
  tip.DelTool(nullptr, 1);
  tip.UpdateTipText(L"x", &owner, 99);
  tip.SetToolRect(nullptr, 1, kSaveRect);
  uncreated.AddTool(&owner, L"x");
  uncreated.Activate(FALSE);
  tip.AddTool(&owner, L"", &kOpenRect, kOpen);
  EXPECT_EQ(tip.GetToolCount(), 2);
  MoveTo(20, 20);
  Wait(1000);
  EXPECT_FALSE(tip.IsTipShown());  // an empty text shows nothing
}

TEST_F(ToolTipTest, WithoutARenderDeviceToolsAreKeptAndNothingShows) {
  DXCore::ExitInstance();
  CToolTipCtrl bare;
  ASSERT_TRUE(bare.Create(&owner, TTS_ALWAYSTIP));
  EXPECT_EQ(bare.GetRenderDevice(), nullptr);
  bare.AddTool(&owner, L"Open", &kOpenRect, kOpen);
  owner.tip = &bare;
  MoveTo(20, 20);
  Wait(1000);
  EXPECT_EQ(std::make_tuple(bare.IsTipShown(), bare.GetToolCount()), std::make_tuple(FALSE, 1));
  owner.tip = &tip;
}

TEST(ToolTipDelays, OneDelayLeavesTheOthersAndNegativeRestoresTheDefaults) {
  CToolTipCtrl tip;
  tip.SetDelayTime(TTDT_RESHOW, 40);
  EXPECT_EQ(std::make_tuple(tip.GetDelayTime(TTDT_RESHOW), tip.GetDelayTime(TTDT_INITIAL)), std::make_tuple(40, 500));
  tip.SetDelayTime(TTDT_AUTOMATIC, -1);
  EXPECT_EQ(std::make_tuple(tip.GetDelayTime(TTDT_RESHOW), tip.GetDelayTime(TTDT_AUTOPOP)), std::make_tuple(100, 5000));
}

}  // namespace
