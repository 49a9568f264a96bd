// Forms: creation from the build file and skin, mouse and key routing,
// tab order, modal loop and closing, timers, the non-client hit test and
// min/max sizes, re-skinning, painting and tooltips.

#include <gmock/gmock.h>

#include <tuple>

#include <karvelui/AnimationController.h>
#include <karvelui/CommonString.h>
#include <karvelui/Screen.h>
#include "framework/FrameworkTestSupport.h"
#include "framework/ToolTipCtrl.h"

namespace KarvelTest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(FormTest, CreationBuildsTheTreePlacesTheWindowAndLaysTheTreeOut) {
  LoadTestSkin();
  CUIForm* form = MakeForm();
  ASSERT_TRUE(created);
  EXPECT_EQ(WindowRectOf(*form), CRect(50, 40, 350, 240));  // PositionRect
  EXPECT_EQ(Child(form, L"Two")->GetBounds(), CRect(100, 10, 180, 50));
  EXPECT_THAT(JournalOf("One skin"), ElementsAre("One skin"));
  EXPECT_EQ(gpu->Count(fake::Call::CreateDevice), 2);  // the form's and its tooltip's
  EXPECT_EQ(CUIManager::GetInstance()->IsExist(CString(L"TestForm")), form);
  MakeForm("Elsewhere");  // no build node: no form
  EXPECT_FALSE(created);
  EXPECT_EQ(gpu->Count(fake::Call::CreateDevice), 2);
}

TEST_F(FormTest, ADeviceThatCannotBeMadeGivesTheMessageBoxAndTheTraceLine) {
  LoadTestSkin();
  TempDir dir;
  CommonString::GetInstance()->LoadStringTable(LibraryPath(dir.Write(
      "s.lng", "STRID_ERROR_D3DINITFAIL=No graphics device\nSTRID_ERROR_D3DINITFAIL_TITLE=Viewer\n")));
  gpu->FailAlways(fake::Call::CreateDevice, D3DERR_NOTAVAILABLE);
  TraceCapture trace;
  MakeForm();
  EXPECT_FALSE(created);
  EXPECT_THAT(boxes, ElementsAre("Viewer: No graphics device type 0"));
  EXPECT_TRUE(trace.Contains(L"<ERROR> init d3d error:" + std::to_wstring(D3DERR_NOTAVAILABLE) + L"\n"));
  CommonString::FreeInstance();
}

TEST_F(FormTest, TheRootKeepsItsLayoutWhileTheClientSizeEqualsItsAnchor) {
  LoadSkin(kFormBuild, R"(<css><CUIForm><Main PositionRect="50, 40, 300, 200"/></CUIForm></css>
                        <ass><CUIForm><Main Bounds="0, 0, 300, 200"/></CUIForm></ass>)");
  CUIForm* form = MakeForm();
  // Reading the layout data emptied the bounds, and the early exit kept them so.
  EXPECT_TRUE(form->GetBounds().IsRectEmpty());
  form->MoveWindow(50, 40, 310, 200);
  EXPECT_EQ(form->GetBounds(), CRect(0, 0, 310, 200));
}

TEST_F(FormTest, RealPointerEventsHoverAndLeaveEachControlOnce) {
  LoadTestSkin();
  CUIForm* form = MakeForm();
  Journal().clear();
  for (const CPoint p : {CPoint(20, 20), CPoint(30, 25), CPoint(120, 20)}) {
    PushMotion(form->GetSafeHwnd(), p.x, p.y);
    PumpAll();
  }
  PushWindowEvent(form->GetSafeHwnd(), SDL_WINDOWEVENT_LEAVE);
  PumpAll();
  EXPECT_THAT(Journal(),
              ElementsAre("One mouse WM_MOUSEHOVER 0,0", "One mouse WM_MOUSEMOVE 20,20", "One mouse WM_MOUSEMOVE 30,25",
                          "One mouse WM_MOUSELEAVE 0,0", "Two mouse WM_MOUSEHOVER 0,0", "Two mouse WM_MOUSEMOVE 120,20",
                          "Two mouse WM_MOUSELEAVE 0,0"));
  EXPECT_EQ(form->GetHoverControl(), nullptr);
}

TEST_F(FormTest, TheCaptureControlGetsClicksOutsideEveryControlAndOthersReachNoDisabledControl) {
  LoadTestSkin();
  CUIForm* form = MakeForm();
  CUIControl* one = Child(form, L"One");
  one->SetControlCapture();
  EXPECT_EQ(GetCapture(), form->GetSafeHwnd());
  Journal().clear();
  Send(form, WM_LBUTTONDOWN, 290, 190, MK_LBUTTON);
  Send(form, WM_LBUTTONUP, 150, 30);  // over Two, still One's
  EXPECT_THAT(Journal(), ElementsAre("One mouse WM_LBUTTONDOWN 290,190 flags 1", "One mouse WM_LBUTTONUP 150,30"));
  one->ReleaseControlCapture();
  Journal().clear();
  Child(form, L"Two")->SetEnabled(FALSE);
  Send(form, WM_LBUTTONDOWN, 290, 190);  // no control: the root itself
  Send(form, WM_LBUTTONDOWN, 120, 20);
  EXPECT_THAT(Journal(), IsEmpty());
}

TEST_F(FormTest, TheWheelArrivesInClientPointsAndTheHorizontalWheelIsNotRouted) {
  LoadTestSkin();
  CUIForm* form = MakeForm();
  Journal().clear();
  Send(form, WM_MOUSEWHEEL, 50 + 20, 40 + 20);  // a screen point over One
  Send(form, WM_MOUSEHWHEEL, 20, 20);
  EXPECT_THAT(Journal(), ElementsAre("One mouse WM_MOUSEWHEEL 20,20"));
}

TEST_F(FormTest, ADestroyMessageTakesTheTooltipWindowDown) {
  LoadTestSkin();
  CUIForm* form = MakeForm();
  ASSERT_NE(form->GetToolTipCtrl()->GetSafeHwnd(), nullptr);
  MSG destroy{};
  destroy.hwnd = form->GetSafeHwnd();
  destroy.message = WM_DESTROY;
  form->PreTranslateMessage(&destroy);
  EXPECT_EQ(std::make_tuple(form->GetToolTipCtrl()->GetSafeHwnd() == nullptr, form->GetSafeHwnd() != nullptr),
            std::make_tuple(true, true));  // the form itself goes its own way
}

TEST_F(FormTest, TabCyclesThroughTheOrderAndShiftTabAlwaysLandsOnTheFirst) {
  LoadTestSkin();
  CUIForm* form = MakeForm();
  CUIControl *one = Child(form, L"One"), *two = Child(form, L"Two"), *three = Child(form, L"Three");
  for (CUIControl* c : {one, two, three}) form->AddTABOrder(c);
  one->SetFocused(TRUE);
  std::vector<CUIControl*> seen;
  for (int i = 0; i < 3; ++i) {
    form->SendMessage(WM_KEYDOWN, VK_TAB);
    seen.push_back(form->GetKeyFocusControl());
  }
  EXPECT_THAT(seen, ElementsAre(two, three, one));
  two->SetFocused(TRUE);
  one->SetFocused(FALSE);
  PushKey(form->GetSafeHwnd(), SDL_SCANCODE_LSHIFT, true);
  for (int i = 0; i < 2; ++i) {
    PushKey(form->GetSafeHwnd(), SDL_SCANCODE_TAB, true);
    PumpAll();
    EXPECT_EQ(form->GetKeyFocusControl(), one) << i;
  }
  PushKey(form->GetSafeHwnd(), SDL_SCANCODE_LSHIFT, false);
  PumpAll();
}

TEST_F(FormTest, KeysGoToTheFocusControlAndFocusChangesAreAnnounced) {
  LoadTestSkin();
  CUIForm* form = MakeForm();
  Journal().clear();
  Child(form, L"One")->SetFocused(TRUE);
  form->SendMessage(WM_KEYDOWN, VK_RIGHT);
  Child(form, L"Two")->SetFocused(TRUE);
  Child(form, L"Two")->SetVisible(FALSE);
  form->SendMessage(WM_KEYDOWN, VK_RIGHT);  // a hidden focus control gets nothing
  // UI_KEY_SETFOCUS (4025), WM_KEYDOWN (256) with VK_RIGHT, UI_KEY_KILLFOCUS (4024).
  EXPECT_THAT(Journal(), ElementsAre("One key UI_KEY_SETFOCUS", "One key WM_KEYDOWN 39", "One key UI_KEY_KILLFOCUS",
                                     "Two key UI_KEY_SETFOCUS"));
}

TEST_F(FormTest, EscapeEndsAModalFormWithZeroAndClosesAModelessFormWhichReleasesItself) {
  LoadTestSkin();
  CUIForm* modal = MakeForm("TestForm", WS_POPUP);
  modal->PostMessage(WM_KEYDOWN, VK_ESCAPE);
  EXPECT_EQ(modal->DoModal(), 0);
  EXPECT_FALSE(IsWindow(modal->GetSafeHwnd()) || modal->IsModalWnd());

  bool oneGone = false;
  CUIForm* modeless = MakeForm();
  static_cast<ProbeControl*>(Child(modeless, L"One"))->destroyed = &oneGone;
  modeless->SendMessage(WM_KEYDOWN, VK_ESCAPE);
  PumpAll();
  EXPECT_TRUE(oneGone);
}

TEST_F(FormTest, AModalResultComesFromEndDialogAndTheModalListSeesTheForm) {
  LoadTestSkin();
  CUIForm* form = MakeForm("TestForm", WS_POPUP);
  struct Inside {
    CUIForm* form;
    CPtrArray modal;
    void OnTimer(unsigned int) {
      CUIManager::GetInstance()->GetModalForms(modal);
      CUIManager::GetInstance()->GetModalForms(modal);  // appends: listed twice
      form->EndDialog(42);
    }
  } inside{form, {}};
  ManualClock clock;
  ASSERT_TRUE(form->RegisterTimerHandler(9, 10, UITimerHandler(&inside, &Inside::OnTimer)));
  clock.Advance(10);
  EXPECT_EQ(form->DoModal(), 42);
  EXPECT_THAT(inside.modal.std_vector(), ElementsAre(form, form));
}

TEST_F(FormTest, AClosedModalFormEndsWithZeroAndIgnoresEveryMessage) {
  LoadTestSkin();
  CUIForm* form = MakeForm("TestForm", WS_POPUP);
  form->PostMessage(WM_CLOSE);
  EXPECT_EQ(form->DoModal(), 0);
  EXPECT_TRUE(form->IsClosing());
  Journal().clear();
  EXPECT_EQ(form->WindowProc(WM_LBUTTONDOWN, 0, MAKELPARAM(20, 20)) + form->OnKeyMsg(WM_KEYDOWN, VK_ESCAPE, 1, 0), 2);
  EXPECT_THAT(Journal(), IsEmpty());
}

TEST_F(FormTest, ATimerIdRegisteredTwiceKeepsItsFirstHandler) {
  LoadTestSkin();
  CUIForm* form = MakeForm();
  ManualClock clock;
  std::vector<std::string> fired;
  struct Handler {
    std::vector<std::string>* fired;
    std::string name;
    void On(unsigned int id) { fired->push_back(name + std::to_string(id)); }
  } first{&fired, "first "}, second{&fired, "second "};
  EXPECT_TRUE(form->RegisterTimerHandler(7, 100, UITimerHandler(&first, &Handler::On)));
  EXPECT_FALSE(form->RegisterTimerHandler(7, 50, UITimerHandler(&second, &Handler::On)));
  for (int ms : {60, 40}) {
    clock.Advance(ms);
    PumpAll();
  }
  EXPECT_THAT(fired, ElementsAre("first 7"));
  form->UnRegisterTimerHandler(7);
  clock.Advance(200);
  PumpAll();
  EXPECT_EQ(fired.size(), 1u);
  EXPECT_TRUE(form->RegisterTimerHandler(7, 50, UITimerHandler(&second, &Handler::On)));
}

TEST_F(FormTest, AZeroBorderMarginStillGivesGripsOfSixFiveSixAndTen) {
  LoadTestSkin();
  CUIForm* form = MakeForm();
  const std::tuple<int, int, LRESULT> hits[] = {
      {150, 100, HTCLIENT}, {5, 100, HTLEFT},       {6, 100, HTCLIENT},       {150, 4, HTTOP},      {150, 5, HTCLIENT},
      {295, 100, HTRIGHT},  {294, 100, HTCLIENT},   {150, 191, HTBOTTOM},     {150, 190, HTCLIENT}, {2, 2, HTTOPLEFT},
      {298, 2, HTTOPRIGHT}, {2, 198, HTBOTTOMLEFT}, {298, 198, HTBOTTOMRIGHT}};
  for (const auto& [x, y, code] : hits)
    EXPECT_EQ(form->SendMessage(WM_NCHITTEST, 0, MAKELPARAM(50 + x, 40 + y)), code) << x << "," << y;
}

TEST_F(FormTest, WithoutResizeEverythingIsClientAndWithoutSkinNothingIs) {
  LoadSkin(kFormBuild, R"(<css><CUIForm><Main PositionRect="50, 40, 300, 200" Resize="false"/></CUIForm></css>)");
  CUIForm* form = MakeForm("TestForm", WS_POPUP | WS_VISIBLE | WS_MAXIMIZEBOX);
  EXPECT_EQ(form->SendMessage(WM_NCHITTEST, 0, MAKELPARAM(51, 41)), HTCLIENT);
  EXPECT_FALSE(form->GetStyle() & WS_MAXIMIZEBOX);
  form->SetCssName(L"NoSuchEntry");
  form->OnSkinChanged();
  EXPECT_EQ(form->SendMessage(WM_NCHITTEST, 0, MAKELPARAM(51, 41)), HTNOWHERE);
}

TEST_F(FormTest, MinimumAndMaximumSizesComeFromTheSkinAndTheWorkArea) {
  LoadTestSkin();
  CUIForm* form = MakeForm();
  MINMAXINFO info;
  form->SendMessage(WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&info));
  MONITORINFO monitor;
  GetMonitorInfoW(MonitorFromWindow(form->GetSafeHwnd(), MONITOR_DEFAULTTONEAREST), &monitor);
  const CPoint work(monitor.rcWork.Width(), monitor.rcWork.Height());
  EXPECT_EQ((std::vector{info.ptMinTrackSize, info.ptMaxSize, info.ptMaxTrackSize, info.ptMaxPosition}),
            (std::vector{CPoint(200, 120), work, work,
                         CPoint(monitor.rcWork.left - monitor.rcMonitor.left, monitor.rcWork.top - monitor.rcMonitor.top)}));
}

TEST_F(FormTest, TheWindowIsRoundedByTheSkinAndTranslucentOnRequest) {
  LoadSkin(kFormBuild, R"(<css><CUIForm><Main PositionRect="50, 40, 300, 200" RoundDiameters="20, 20"/>
                        </CUIForm></css>)");
  CUIForm* form = MakeForm();
  Region region;
  ASSERT_NE(form->GetWindowRgn(region), RGN_ERROR);
  EXPECT_FALSE(region.Contains(CPoint(0, 0)) || region.Contains(CPoint(299, 199)));
  EXPECT_TRUE(region.Contains(CPoint(299, 100)));  // the region is one pixel larger than the bounds
  form->SetFormTransparent(50);
  BYTE alpha = 0;
  ASSERT_TRUE(form->GetLayeredWindowAttributes(nullptr, &alpha, nullptr));
  EXPECT_EQ(alpha, 127);
  form->SetFormTransparent(100);
  EXPECT_FALSE(form->GetExStyle() & WS_EX_LAYERED);
}

TEST_F(FormTest, SwitchingSkinsReskinsEveryFormWithoutMovingIt) {
  Write("Theme/SkinDatas.xml",
        R"(<SkinsRoot><Skin Name="Default" Text="Default"/><Skin Name="Wide" Text="Wide"/></SkinsRoot>)");
  Write("Theme/Wide/KarvelView.xml", R"(<UIRoot><css><CUIForm>
      <Main PositionRect="0, 0, 500, 400" BorderMargin="20, 20, 20, 20"/></CUIForm></css>
      <ass><ProbeControl><One DockStyle="fill"/></ProbeControl></ass></UIRoot>)");
  LoadTestSkin();
  CUIForm* form = MakeForm();
  Journal().clear();
  Manager()->SetCurrentSkin(L"wide");
  EXPECT_EQ(WindowRectOf(*form), CRect(50, 40, 350, 240));
  EXPECT_EQ(Child(form, L"One")->GetBounds(), CRect(20, 20, 280, 180));
  EXPECT_THAT(JournalOf("One skin"), ElementsAre("One skin"));
}

TEST_F(FormTest, APaintDrawsOneFrameAndALostDeviceAsksForAnother) {
  LoadTestSkin();
  CUIForm* form = MakeForm();
  gpu->ClearLog();
  Journal().clear();
  form->InvalidateRect(nullptr, FALSE);
  PumpAll();
  EXPECT_EQ(gpu->Count(fake::Call::Present), 1);
  EXPECT_THAT(Journal(), ElementsAre("One draw 1", "Two draw 1", "Three draw 1"));
  gpu->ClearLog();
  gpu->LoseDevice();
  form->InvalidateRect(nullptr, FALSE);
  PumpAll();
  EXPECT_EQ(gpu->Count(fake::Call::Present), 2);
  EXPECT_EQ(gpu->Count(fake::Call::Reset), 1);
}

TEST_F(FormTest, AMarkedPaintCompletesTheAnimationFrameAndArmsTheNextTick) {
  LoadTestSkin();
  CUIForm* form = MakeForm();
  ManualClock clock;
  auto* board = new AnimationBoard();
  board->SetDuration(CUITimeSpan(60000));
  board->Begin(form, 1);
  gpu->ClearLog();
  for (int frame = 1; frame <= 3; ++frame) {
    clock.Advance(20);
    PumpAll();  // the tick, the marked paint, the re-armed timer
    EXPECT_EQ(gpu->Count(fake::Call::Present), frame);
  }
  board->Stop(form);
}

class FormTooltipTest : public FormTest {
 protected:
  void SetUp() override {
    FormTest::SetUp();
    CommonString::GetInstance()->LoadStringTable(
        LibraryPath(m_strings.Write("s.lng", "TIP_ONE=Open a folder\nTIP_TWO=Rotate\n")));
    std::string skin = kFormSkin;
    skin.replace(skin.find(R"(<One Bounds)"), 4, R"(<One TipID="TIP_ONE")");
    skin.replace(skin.find(R"(<Two Bounds)"), 4, R"(<Two TipID="TIP_TWO")");
    LoadSkin(kFormBuild, skin);
  }
  void TearDown() override {
    FormTest::TearDown();
    CommonString::FreeInstance();
  }
  TempDir m_strings;
};

TEST_F(FormTooltipTest, ControlsWithTooltipTextBecomeToolsOverTheirBoundsAndShowAfterTheDelay) {
  ManualClock clock;
  CUIForm* form = MakeForm();
  CToolTipCtrl* tips = form->GetToolTipCtrl();
  EXPECT_EQ(tips->GetToolCount(), 2);
  CToolInfo one;
  ASSERT_TRUE(tips->GetToolInfo(one, form, reinterpret_cast<UINT_PTR>(Child(form, L"One"))));
  EXPECT_EQ(one.rect, CRect(10, 10, 90, 50));
  PushMotion(form->GetSafeHwnd(), 20, 20);
  PumpAll();
  clock.Advance(600);
  PumpAll();
  EXPECT_EQ(tips->GetShownText(), CString(L"Open a folder"));

  Child(form, L"Two")->SetVisible(FALSE);
  Child(form, L"One")->SetTooltipText(L"Open another folder");
  form->AddAllSubTooltip();
  EXPECT_EQ(tips->GetToolCount(), 1);
  ASSERT_TRUE(tips->GetToolInfo(one, form, reinterpret_cast<UINT_PTR>(Child(form, L"One"))));
  EXPECT_EQ(one.strText, CString(L"Open another folder"));
}

TEST_F(FormTooltipTest, ADestroyedControlTakesItsToolAndItsFocusAlong) {
  CUIForm* form = MakeForm();
  CUIControl* one = Child(form, L"One");
  form->AddTABOrder(one);
  one->SetFocused(TRUE);
  Send(form, WM_MOUSEMOVE, 20, 20);
  ASSERT_EQ(form->GetHoverControl(), one);
  std::unique_ptr<CUIControl> detached(form->UnRegisterControl(CString(L"One")));
  EXPECT_EQ(form->GetToolTipCtrl()->GetToolCount(), 1);
  EXPECT_EQ((std::vector{form->GetHoverControl(), form->GetKeyFocusControl(), form->GetNextTabCtrl()}),
            std::vector<CUIControl*>(3, nullptr));
  detached.reset();  // destroyed out of the form's sight
  Send(form, WM_MOUSEMOVE, 120, 20);
  form->SendMessage(WM_KEYDOWN, VK_TAB);  // nothing left to walk
  form->RemoveAllControlFromMap();
  EXPECT_EQ(form->GetToolTipCtrl()->GetToolCount(), 0);
}

}  // namespace
}  // namespace KarvelTest
