// The tooltip control over real off-screen windows: mouse events pass
// through the owner's pre-translation into the control, time runs on a
// hand-driven clock, and the popup paints through its own GL device.

#include "framework/ToolTipTestSupport.h"
#include "gpu/GpuTestSupport.h"
#include <karvelui/DXCore.h>

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

const CRect kOpenRect(10, 10, 60, 40);
const CRect kSaveRect(100, 10, 150, 40);
constexpr UINT_PTR kOpen = 1, kSave = 2;

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
  void Press(int x, int y) {
    PushButton(owner.m_hWnd, x, y, true);
    PushButton(owner.m_hWnd, x, y, false);
    PumpAll();
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

}  // namespace

// --- timing ----------------------------------------------------------------------------

TEST_F(ToolTipTest, ShowsTheToolTextAfterTheInitialDelayBelowTheCursorWithoutActivation) {
  MoveTo(20, 20);
  Wait(599);
  EXPECT_FALSE(tip.IsTipShown());
  EXPECT_EQ(tip.GetShownText(), L"");
  Wait(1);
  ASSERT_TRUE(tip.IsTipShown());
  EXPECT_EQ(tip.GetShownText(), L"Open");
  EXPECT_EQ(WindowRectOf(tip).TopLeft(), CPoint(120, 140));
  EXPECT_EQ(GetActiveWindow(), owner.m_hWnd);
}

TEST_F(ToolTipTest, MovingWithinAToolKeepsTheDelayGoing) {
  MoveTo(20, 20);
  Wait(300);
  MoveTo(30, 25);
  Wait(300);
  EXPECT_EQ(tip.GetShownText(), L"Open");
}

TEST_F(ToolTipTest, AnotherToolRestartsTheDelayWithItsOwnText) {
  MoveTo(20, 20);
  Wait(400);
  MoveTo(110, 20);
  Wait(200 + 399);
  EXPECT_FALSE(tip.IsTipShown());
  Wait(1);
  EXPECT_EQ(tip.GetShownText(), L"Save");
}

TEST_F(ToolTipTest, FromAShownTipTheNextToolFollowsAfterTheReshowDelay) {
  ShowOpen();
  MoveTo(110, 20);
  EXPECT_FALSE(tip.IsTipShown());
  Wait(119);
  EXPECT_FALSE(tip.IsTipShown());
  Wait(1);
  EXPECT_EQ(tip.GetShownText(), L"Save");
}

TEST_F(ToolTipTest, APressHidesTheTipUntilTheCursorEntersAnotherTool) {
  MoveTo(20, 20);
  Wait(300);
  Press(20, 20);
  Wait(1000);
  EXPECT_FALSE(tip.IsTipShown());
  MoveTo(25, 22);
  Wait(5000);
  EXPECT_FALSE(tip.IsTipShown());
  MoveTo(110, 20);
  Wait(600);
  EXPECT_EQ(tip.GetShownText(), L"Save");
  const MSG rightPress{owner.m_hWnd, WM_RBUTTONDOWN, 0, MAKELPARAM(110, 20), 0, {}};
  tip.RelayEvent(&rightPress);
  EXPECT_FALSE(tip.IsTipShown());
}

TEST_F(ToolTipTest, AutoPopHidesAfterTenTimesTheDelayAndTheToolStaysQuiet) {
  ShowOpen();
  Wait(5999);
  EXPECT_TRUE(tip.IsTipShown());
  Wait(1);
  EXPECT_FALSE(tip.IsTipShown());
  MoveTo(22, 22);
  Wait(10000);
  EXPECT_FALSE(tip.IsTipShown());
}

TEST_F(ToolTipTest, LeavingTheToolWindowHidesButAnotherWindowsLeaveDoesNot) {
  RecordingWnd other;
  ASSERT_TRUE(MakeWindow(other, CRect(500, 100, 600, 200)));
  ShowOpen();
  const MSG otherLeave{other.m_hWnd, WM_MOUSELEAVE, 0, 0, 0, {}};
  tip.RelayEvent(&otherLeave);
  EXPECT_TRUE(tip.IsTipShown());
  owner.PostMessage(WM_MOUSELEAVE);
  PumpAll();
  EXPECT_FALSE(tip.IsTipShown());
  Wait(1000);
  EXPECT_FALSE(tip.IsTipShown());
}

TEST_F(ToolTipTest, InputOnThePopupItselfPutsItAway) {
  ShowOpen();
  MoveTo(2, 2, &tip);
  EXPECT_FALSE(tip.IsTipShown());
  MoveTo(22, 22);
  Wait(1000);
  EXPECT_FALSE(tip.IsTipShown());
}

// --- states and tools ------------------------------------------------------------------

TEST_F(ToolTipTest, AnInactiveControlShowsNothingAndDeactivatingHides) {
  tip.Activate(FALSE);
  MoveTo(20, 20);
  Wait(1000);
  EXPECT_FALSE(tip.IsTipShown());
  tip.Activate(TRUE);
  MoveTo(22, 22);
  Wait(600);
  EXPECT_TRUE(tip.IsTipShown());
  tip.Activate(FALSE);
  EXPECT_FALSE(tip.IsTipShown());
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
  EXPECT_EQ(plain.GetShownText(), L"Open");
  EXPECT_EQ(GetActiveWindow(), owner.m_hWnd);
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
  EXPECT_EQ(info.uFlags, TTF_IDISHWND);
  EXPECT_EQ(info.uId, reinterpret_cast<UINT_PTR>(child.m_hWnd));
  EXPECT_EQ(info.strText, L"Child");

  MoveTo(5, 5, &child);
  Wait(600);
  EXPECT_EQ(tip.GetShownText(), L"Corner");
  MoveTo(40, 40, &child);
  Wait(120);
  EXPECT_EQ(tip.GetShownText(), L"Child");
  tip.DelTool(&child, 0);
  EXPECT_FALSE(tip.IsTipShown());
  EXPECT_EQ(tip.GetToolCount(), 3);
}

TEST_F(ToolTipTest, DeletingTheShownToolHidesItForGood) {
  ShowOpen();
  tip.DelTool(&owner, kOpen);
  EXPECT_FALSE(tip.IsTipShown());
  EXPECT_EQ(tip.GetToolCount(), 1);
  CToolInfo info;
  EXPECT_FALSE(tip.GetToolInfo(info, &owner, kOpen));
  MoveTo(25, 25);
  Wait(1000);
  EXPECT_FALSE(tip.IsTipShown());
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

TEST_F(ToolTipTest, ThePopupStaysInsideTheWorkAreaAndOffTheCursor) {
  const CRect work = WorkAreaAt(CPoint(0, 0));
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

TEST_F(ToolTipTest, PaintsTheInfoBackgroundInADarkBorderWithDarkText) {
  ShowOpen();
  const Frame frame = ReadBack(tip.GetRenderDevice()->GetD3DDevice());
  const CRect popup = WindowRectOf(tip);
  ASSERT_EQ(frame.size, popup.Size());
  auto dark = [](DWORD c) { return (c & 0xFF) < 0x80 && ((c >> 8) & 0xFF) < 0x80 && ((c >> 16) & 0xFF) < 0x80; };
  EXPECT_TRUE(dark(frame.At(0, 0)));
  EXPECT_TRUE(dark(frame.At(popup.Width() - 1, popup.Height() - 1)));
  int background = 0, ink = 0;
  for (int y = 1; y < popup.Height() - 1; ++y)
    for (int x = 1; x < popup.Width() - 1; ++x) {
      background += ColorNear(frame.At(x, y), 0xFFFFFFE1) ? 1 : 0;
      ink += dark(frame.At(x, y)) ? 1 : 0;
    }
  EXPECT_GT(background, (popup.Width() - 2) * (popup.Height() - 2) / 2);
  EXPECT_GT(ink, 10);
}

// --- life and bad input ----------------------------------------------------------------

TEST_F(ToolTipTest, DestroyingTheOwnerTakesThePopupAlongAndLaterCallsDoNothing) {
  MoveTo(20, 20);
  const HWND popup = tip.m_hWnd;
  owner.DestroyWindow();
  EXPECT_FALSE(IsWindow(popup));
  EXPECT_EQ(tip.GetRenderDevice(), nullptr);
  Wait(10000);
  const MSG move{popup, WM_MOUSEMOVE, 0, MAKELPARAM(20, 20), 0, {}};
  tip.RelayEvent(&move);
  EXPECT_FALSE(tip.IsTipShown());
  EXPECT_EQ(tip.GetToolCount(), 2);
}

TEST_F(ToolTipTest, BadInputIsIgnored) {
  CWnd unmade;
  EXPECT_FALSE(tip.Create(&owner, 0));
  EXPECT_FALSE(tip.AddTool(nullptr, L"x"));
  EXPECT_FALSE(tip.AddTool(&unmade, L"x", &kOpenRect, 5));
  tip.RelayEvent(nullptr);
  const MSG nowhere{nullptr, WM_MOUSEMOVE, 0, 0, 0, {}};
  tip.RelayEvent(&nowhere);
  tip.DelTool(nullptr, 1);
  tip.DelTool(&owner, 99);
  tip.UpdateTipText(L"x", &owner, 99);
  tip.SetToolRect(nullptr, 1, kSaveRect);
  CToolInfo info;
  EXPECT_FALSE(tip.GetToolInfo(info, &owner, 99));
  EXPECT_EQ(tip.GetToolCount(), 2);

  tip.AddTool(&owner, L"", &kOpenRect, kOpen);  // same tool: replaced, not added
  EXPECT_EQ(tip.GetToolCount(), 2);
  MoveTo(20, 20);
  Wait(1000);
  EXPECT_FALSE(tip.IsTipShown());

  CToolTipCtrl uncreated;
  uncreated.AddTool(&owner, L"x");
  uncreated.RelayEvent(&nowhere);
  uncreated.Activate(FALSE);
  EXPECT_FALSE(uncreated.IsTipShown());
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
  EXPECT_FALSE(bare.IsTipShown());
  EXPECT_EQ(bare.GetToolCount(), 1);
  owner.tip = &tip;
}

TEST(ToolTipDelays, OneDelayLeavesTheOthersAndNegativeRestoresTheDefaults) {
  CToolTipCtrl tip;
  tip.SetDelayTime(TTDT_RESHOW, 40);
  EXPECT_EQ(tip.GetDelayTime(TTDT_RESHOW), 40);
  EXPECT_EQ(tip.GetDelayTime(TTDT_INITIAL), 500);
  tip.SetDelayTime(TTDT_AUTOMATIC, -1);
  EXPECT_EQ(tip.GetDelayTime(TTDT_RESHOW), 100);
  EXPECT_EQ(tip.GetDelayTime(TTDT_AUTOPOP), 5000);
}
