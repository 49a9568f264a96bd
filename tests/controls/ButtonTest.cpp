// The button: its states under the messages the form routes to it, the
// clicks they make, the skin record's defaults, and auto-repeat on a
// hand-driven clock.

#include "controls/ButtonRepeat.h"
#include "controls/ControlsTestSupport.h"
#include <karvelui/Input.h>
#include <karvelui/SkinReader.h>

namespace KarvelTest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kButtons = R"(<A type="CUIButton" css="Push" ass="A"/><B type="CUIButton" css="Push" ass="B"/>)";
constexpr const char* kButtonCss = R"(<CUIButton><Push/><Repeat IsRepeate="true"/></CUIButton>)";
constexpr const char* kButtonAss = R"(<CUIButton><A Bounds="10, 10, 80, 40" AnchorStyle="topleft"/>
                                                <B Bounds="100, 10, 80, 40" AnchorStyle="topleft"/></CUIButton>)";

class ButtonTest : public ControlsTest {
 protected:
  CUIButton* MakeButton(const char* children = kButtons) {
    form = MakeControls(children, kButtonCss, kButtonAss);
    return Find<CUIButton>(form, L"A");
  }
  // h hover, d left down, u left up, l leave.
  static void Play(CUIButton* button, const std::string& steps) {
    for (char step : steps) {
      const UINT message = step == 'h' ? WM_MOUSEHOVER : step == 'd' ? WM_LBUTTONDOWN : step == 'u' ? WM_LBUTTONUP
                                                                                                  : WM_MOUSELEAVE;
      EXPECT_EQ(Mouse(button, message), 1) << step;
    }
  }
  CUIForm* form = nullptr;
};

struct StateCase {
  const char* name;
  UIButtonType type;
  bool focused;
  const char* steps;
  UIButtonStatus status;
  size_t clicks;
};

void PrintTo(const StateCase& c, std::ostream* out) { *out << c.name; }

class ButtonStateTest : public ButtonTest, public testing::WithParamInterface<StateCase> {};

TEST_P(ButtonStateTest, MessagesMoveTheStateAndClickOnlyWhenThePressEndsOnTheButton) {
  const StateCase& c = GetParam();
  CUIButton* button = MakeButton();
  button->SetButtonType(c.type);
  if (c.focused) button->SetFocused(TRUE);
  Play(button, c.steps);
  EXPECT_EQ(button->GetButtonStatus(), c.status);
  EXPECT_EQ(events.lines.size(), c.clicks);
}

INSTANTIATE_TEST_SUITE_P(
    Button, ButtonStateTest,
    testing::Values(StateCase{"PushClick", UIBUTTON_PUSH, false, "hdu", UIBUTTON_HOVER, 1},
                    StateCase{"PressLeaveComeBackRelease", UIBUTTON_PUSH, false, "hdlhu", UIBUTTON_HOVER, 0},
                    StateCase{"PressAndLeave", UIBUTTON_PUSH, false, "hdl", UIBUTTON_NORMAL, 0},
                    StateCase{"FocusedLeaves", UIBUTTON_PUSH, true, "hl", UIBUTTON_KBFOCUS, 0},
                    StateCase{"ToggleChecks", UIBUTTON_TOGGLE, false, "hdu", UIBUTTON_PRESSED, 1},
                    StateCase{"CheckedStaysOnLeave", UIBUTTON_TOGGLE, false, "hdul", UIBUTTON_PRESSED, 1},
                    StateCase{"LeavingUndoesTheFlip", UIBUTTON_TOGGLE, false, "hdlu", UIBUTTON_NORMAL, 0},
                    StateCase{"SecondClickUnchecks", UIBUTTON_TOGGLE, false, "dudu", UIBUTTON_NORMAL, 2}),
    [](const testing::TestParamInfo<StateCase>& info) { return std::string(info.param.name); });

TEST_F(ButtonTest, ADisabledButtonHandlesNothingAndClicksNever) {
  CUIButton* button = MakeButton();
  button->SetEnabled(FALSE);
  EXPECT_EQ(button->GetButtonStatus(), UIBUTTON_DISABLED);
  for (UINT message : {WM_MOUSEHOVER, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_MOUSELEAVE, WM_MOUSEMOVE})
    EXPECT_EQ(Mouse(button, message), 0) << message;  // it bubbles to the parent
  button->OnClick();
  EXPECT_THAT(events.lines, IsEmpty());
  button->SetEnabled(TRUE);
  EXPECT_EQ(button->GetButtonStatus(), UIBUTTON_NORMAL);
}

TEST(ButtonConfigTest, AShadowWithoutAnOffsetFallsOneDownRightAndTheFocusColourOnTheTextColour) {
  LoadedXml xml(R"(<B IsTextShadow="true"><Font TextColor="10, 20, 30"/></B>)");
  _ButtonConfig read, copy;
  CSkinReader reader(xml.Node(L"B"));
  ASSERT_EQ(read.Read(&reader), 1);
  EXPECT_EQ(std::make_tuple(read.m_clrTextFocus, read.m_ptTextShadowOffset), std::make_tuple(0xFF0A141Eu, CPoint(1, 1)));
  copy.Copy(&read);  // everything but the offset, deliberately
  EXPECT_EQ(std::make_tuple(copy.m_clrTextFocus, copy.m_ptTextShadowOffset), std::make_tuple(0xFF0A141Eu, CPoint(0, 0)));
}

TEST(ButtonRepeatTimesTest, DelayAndIntervalFollowTheKeyboardSettings) {
  const std::pair<int, int> delays[] = {{-1, 250}, {0, 250}, {1, 500}, {2, 750}, {3, 1000}, {4, 250}};
  for (auto [setting, ms] : delays) EXPECT_EQ(ButtonRepeatDelayMs(setting), ms) << setting;
  const std::pair<int, int> intervals[] = {{-1, 33}, {0, 400}, {15, 222}, {31, 33}, {32, 33}};
  for (auto [setting, ms] : intervals) EXPECT_EQ(ButtonRepeatIntervalMs(setting), ms) << setting;
}

class ButtonRepeatTest : public ButtonTest {
 protected:
  void SetUp() override {
    ButtonTest::SetUp();
    a = MakeButton(R"(<A type="CUIButton" css="Repeat" ass="A"/><B type="CUIButton" css="Repeat" ass="B"/>)");
    b = Find<CUIButton>(form, L"B");
    PointAt(30, 20);  // over A
  }
  void PointAt(int x, int y) { SetCursorPos(50 + x, 40 + y); }
  // Advances the clock and runs the timers that came due.
  size_t ClicksAfter(std::uint64_t ms) {
    clock.Advance(ms);
    PumpAll();
    return events.lines.size();
  }

  ManualClock clock;
  CUIButton* a = nullptr;
  CUIButton* b = nullptr;
};

TEST_F(ButtonRepeatTest, AHeldButtonClicksAfterTheDelayThenEveryIntervalAndOnceOnRelease) {
  const int delay = ButtonRepeatDelayMs(1), interval = ButtonRepeatIntervalMs(31);  // the desktop's settings
  Mouse(a, WM_LBUTTONDOWN);
  const int steps[] = {delay - 1, 1, interval - 1, 1, interval};
  std::vector<size_t> clicks;
  for (int ms : steps) clicks.push_back(ClicksAfter(ms));
  EXPECT_THAT(clicks, ElementsAre(0u, 1u, 1u, 2u, 3u));
  Mouse(a, WM_LBUTTONUP);
  EXPECT_EQ(events.lines.size(), 4u);
  EXPECT_EQ(ClicksAfter(10 * interval), 4u);
}

TEST_F(ButtonRepeatTest, MovingOffTheButtonStopsTheRepetitionAtTheNextTick) {
  Mouse(a, WM_LBUTTONDOWN);
  EXPECT_EQ(ClicksAfter(ButtonRepeatDelayMs(1)), 1u);
  PointAt(200, 150);
  EXPECT_EQ(ClicksAfter(ButtonRepeatIntervalMs(31)), 1u);
  PointAt(30, 20);  // back over it: the timer is gone
  EXPECT_EQ(ClicksAfter(10 * ButtonRepeatIntervalMs(31)), 1u);
}

TEST_F(ButtonRepeatTest, OnlyTheLastPressedButtonRepeats) {
  Mouse(a, WM_LBUTTONDOWN);
  Mouse(b, WM_LBUTTONDOWN);
  PointAt(120, 20);  // over B
  ClicksAfter(ButtonRepeatDelayMs(1));
  ClicksAfter(ButtonRepeatIntervalMs(31));
  EXPECT_THAT(events.lines, ElementsAre("1 B", "1 B"));
}

}  // namespace
}  // namespace KarvelTest
