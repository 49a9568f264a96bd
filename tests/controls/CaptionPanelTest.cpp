// The caption (system commands, the maximise/restore swap, where the form
// drags the window), the two panels (hit transparency, the bottom panel's
// own routing and capture) and the tooltip window.

#include "controls/ControlsTestSupport.h"
#include "platform/window/Shell.h"
#include <karvelui/UITooltip.h>

namespace KarvelTest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A caption over the top 30 rows (its top 5 left to the grips), with a
// close, a maximise, a hidden restore, a help and a host button.
constexpr const char* kCaption = R"(
  <FormCaption type="CUICaption" css="Main" ass="Main">
    <SysButtonClose type="CUIButton" ass="Close"/>
    <SysButtonMax type="CUIButton" ass="Max"/>
    <SysButtonRestore type="CUIButton" ass="Max" Visible="false"/>
    <SysButtonMin type="CUIButton" ass="Min"/>
    <SysButtonHelp type="CUIButton" ass="Help" Visible="false"/>
    <sysbuttonclose type="CUIButton" ass="Host"/>
  </FormCaption>)";
constexpr const char* kCaptionCss = R"(<CUICaption><Main/></CUICaption>)";
constexpr const char* kCaptionAss = R"(
  <CUICaption><Main DockStyle="caption" Bounds="0, 0, 0, 30" Margin="0, 5, 0, 0"/></CUICaption>
  <CUIButton><Close AnchorStyle="topright" Bounds="-4, 8, 20, 16"/><Max AnchorStyle="topright" Bounds="-28, 8, 20, 16"/>
             <Min AnchorStyle="topright" Bounds="-52, 8, 20, 16"/><Help AnchorStyle="topleft" Bounds="100, 8, 20, 16"/>
             <Host AnchorStyle="topleft" Bounds="130, 8, 20, 16"/></CUIButton>)";

class CaptionTest : public ControlsTest {
 protected:
  void SetUp() override {
    ControlsTest::SetUp();
    form = MakeControls(kCaption, kCaptionCss, kCaptionAss);
    caption = Find<CUICaption>(form, L"FormCaption");
    ASSERT_NE(caption, nullptr);
  }
  // The system commands posted to the form, taken off its queue.
  std::vector<WPARAM> TakeSysCommands() {
    std::vector<WPARAM> commands;
    MSG msg;
    while (PeekMessageW(&msg, form->GetSafeHwnd(), WM_SYSCOMMAND, WM_SYSCOMMAND, PM_REMOVE))
      commands.push_back(msg.wParam);
    return commands;
  }
  LRESULT HitTest(int x, int y) { return form->SendMessage(WM_NCHITTEST, 0, MAKELPARAM(50 + x, 40 + y)); }

  CUIForm* form = nullptr;
  CUICaption* caption = nullptr;
};

TEST_F(CaptionTest, SystemButtonsPostTheirExactCommandsAndOtherButtonsReachTheHost) {
  const std::pair<const wchar_t*, WPARAM> buttons[] = {
      {L"SysButtonClose", 0xF060}, {L"SysButtonMin", 0xF020}, {L"SysButtonMax", 0xF030}, {L"SysButtonRestore", 0xF120}};
  for (auto [id, command] : buttons) {
    static_cast<CUIButton*>(caption->FindControl(id))->OnClick();
    EXPECT_THAT(TakeSysCommands(), ElementsAre(command)) << CString(id).ToUtf8();
  }
  // Help without a help-centre text in the string table: nothing at all.
  std::vector<std::string> opened;
  const ShellOpenHook previous = SetShellOpenHook([&](const CString&, const CString& file, const CString&, int) {
    opened.push_back(file.ToUtf8());
    return true;
  });
  static_cast<CUIButton*>(caption->FindControl(L"SysButtonHelp"))->OnClick();
  SetShellOpenHook(previous);
  EXPECT_THAT(opened, IsEmpty());
  EXPECT_THAT(TakeSysCommands(), IsEmpty());
  // Found by the tree's case-blind lookup, compared by the caption with case.
  CUIControl* host = nullptr;
  for (INT_PTR i = 0; i < caption->GetChildCount(); ++i)
    if (caption->GetChild(i)->GetObjectID() == L"sysbuttonclose") host = caption->GetChild(i);
  ASSERT_NE(host, nullptr);
  static_cast<CUIButton*>(host)->OnClick();
  EXPECT_THAT(TakeSysCommands(), IsEmpty());
  EXPECT_THAT(events.lines, ElementsAre("1 sysbuttonclose"));
}

TEST_F(CaptionTest, MaximisingSwapsInTheRestoreButtonAndRestoringSwapsBack) {
  CUIControl* max = caption->FindControl(L"SysButtonMax");
  CUIControl* restore = caption->FindControl(L"SysButtonRestore");
  auto shown = [&] { return std::make_pair(max->IsShown() != FALSE, restore->IsShown() != FALSE); };
  form->ShowWindow(SW_SHOWMAXIMIZED);
  EXPECT_TRUE(caption->IsMaximized() && restore->GetBounds() == max->GetBounds());
  caption->OnSize(SIZE_MAXIMIZED);  // again: nothing changes
  EXPECT_EQ(shown(), std::make_pair(false, true));
  form->ShowWindow(SW_RESTORE);
  EXPECT_EQ(std::make_tuple(caption->IsMaximized(), shown()), std::make_tuple(FALSE, std::make_pair(true, false)));
}

TEST_F(CaptionTest, TheFormDragsByTheCaptionButNeverOverItsButtonsShownOrNot) {
  // Over the hidden help button a child; the caption's margin is not the caption.
  EXPECT_EQ((std::vector{caption->IsHitCaption(CPoint(50, 15)), caption->IsHitCaption(CPoint(105, 15)),
                         caption->IsHitCaption(CPoint(50, 2)), caption->IsHitCaption(CPoint(50, 40))}),
            (std::vector<int>{CAPTION_HIT_DRAG, CAPTION_HIT_CHILD, CAPTION_HIT_NONE, CAPTION_HIT_NONE}));
  // The grip above the caption's margin, the close button, the client area.
  EXPECT_EQ((std::vector{HitTest(50, 15), HitTest(50, 2), HitTest(form->GetBounds().right - 14, 15), HitTest(50, 100)}),
            (std::vector<LRESULT>{HTCAPTION, HTTOP, HTCLIENT, HTCLIENT}));
}

constexpr const char* kPanels = R"(
  <Panel type="CUIPanel" css="Plain" ass="Panel"><InPanel type="CUIButton" ass="InPanel"/></Panel>
  <Bar type="CUIBottomPanel" ass="Bar"><Left type="CUIButton" ass="Left"/><Right type="CUIButton" ass="Right"/></Bar>)";
constexpr const char* kPanelCss = R"(<CUIPanel><Plain BkColor="10, 20, 30"><BkImage File="none.png"/></Plain></CUIPanel>)";
constexpr const char* kPanelAss = R"(
  <CUIPanel><Panel AnchorStyle="topleft" Bounds="0, 0, 300, 100"/></CUIPanel>
  <CUIBottomPanel><Bar DockStyle="bottom" Bounds="0, 0, 0, 50"/></CUIBottomPanel>
  <CUIButton><InPanel AnchorStyle="topleft" Bounds="10, 10, 40, 40"/>
             <Left AnchorStyle="bottomleft" Bounds="10, -10, 40, 30"/>
             <Right AnchorStyle="bottomleft" Bounds="60, -10, 40, 30"/></CUIButton>)";

class PanelTest : public ControlsTest {
 protected:
  void SetUp() override {
    ControlsTest::SetUp();
    form = MakeControls(kPanels, kPanelCss, kPanelAss);
    bar = Find<CUIBottomPanel>(form, L"Bar");
    left = Find<CUIButton>(form, L"Left");
    right = Find<CUIButton>(form, L"Right");
  }
  void Move(int x, int y) { form->SendMessage(WM_MOUSEMOVE, 0, MAKELPARAM(x, y)); }

  CUIForm* form = nullptr;
  CUIBottomPanel* bar = nullptr;
  CUIButton* left = nullptr;
  CUIButton* right = nullptr;
};

TEST_F(PanelTest, APanelLetsTheMouseThroughAndDrawsNothingWithoutAPictureRectangle) {
  EXPECT_EQ(form->FindControlUnderPoint(CPoint(100, 50)), form);
  EXPECT_EQ(form->FindControlUnderPoint(CPoint(20, 20)), form->FindControlRecusive(L"InPanel"));
  gpu->ClearLog();
  form->OnPaint(0);
  EXPECT_EQ(gpu->Count(fake::Call::SpriteDraw), 0);
}

TEST_F(PanelTest, TheBottomPanelRoutesItsCaptureToItsButtonsAndGivesItUpWhenLeft) {
  const CRect bounds = bar->GetBounds();
  ASSERT_EQ(bounds, CRect(0, 150, 300, 200));
  bar->SetControlCapture();
  Move(30, 180);  // over Left
  EXPECT_EQ(std::make_tuple(bar->GetHoverChild(), left->GetButtonStatus()), std::make_tuple((CUIControl*)left, UIBUTTON_HOVER));
  Move(80, 180);  // over Right
  EXPECT_EQ(std::make_tuple(left->GetButtonStatus(), right->GetButtonStatus()), std::make_tuple(UIBUTTON_NORMAL, UIBUTTON_HOVER));
  form->SendMessage(WM_LBUTTONDOWN, 0, MAKELPARAM(80, 180));
  form->SendMessage(WM_LBUTTONUP, 0, MAKELPARAM(80, 180));
  EXPECT_THAT(events.lines, ElementsAre("1 Right"));
  EXPECT_EQ(form->GetCaptureControl(), bar);
  Move(80, 100);  // off the bar
  EXPECT_EQ(form->GetCaptureControl(), nullptr);
}

TEST_F(ControlsTest, TheTooltipWindowIsARoundedChildThatSwallowsTheMouse) {
  LoadSkin(R"(<TestForm css="Main"/><Tip/>)",
           R"(<css><CUIForm><Main PositionRect="50, 40, 300, 200"/></CUIForm></css>)");
  CUIForm* form = MakeForm();
  auto* tip = new CUITooltip();
  tip->SetObjectID(L"Tip");
  ASSERT_TRUE(tip->Create(form));
  EXPECT_TRUE((tip->GetStyle() & WS_CHILD) && Mouse(tip, WM_LBUTTONDOWN) == 1);
  tip->MoveWindow(0, 0, 80, 60);
  Region region;
  ASSERT_NE(tip->GetWindowRgn(region), RGN_ERROR);
  EXPECT_TRUE(!region.Contains(CPoint(1, 1)) && region.Contains(CPoint(40, 30)));
  tip->Release();
}

}  // namespace
}  // namespace KarvelTest
