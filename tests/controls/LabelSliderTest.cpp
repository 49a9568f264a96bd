// The label (text, hyperlink clicks, hover events, colours) and the
// slider (value mapping, track clicks, dragging), driven the way the form
// routes messages to them; and the factory that makes every built-in type.

#include <typeinfo>

#include "controls/ControlsTestSupport.h"
#include "platform/window/Shell.h"

namespace KarvelTest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kLabelCss = R"(<CUILabel>
  <Plain ReverseTextColor="0, 0, 255"><Font TextColor="255, 0, 0"/></Plain>
  <Link IsHyperLink="true" IsAlwaysShowHyperLine="false" HyperColor="0, 255, 0" ReverseTextColor="0, 0, 255"/>
  <Always IsHyperLink="true" HyperColor="0, 255, 0"/>
  <Open IsAutoOpenURL="true"/>
</CUILabel>)";
constexpr const char* kLabelAss = R"(<CUILabel><Box AnchorStyle="topleft" Bounds="10, 10, 100, 20"/></CUILabel>
  <ProbeControl><Beside AnchorStyle="topleft" Bounds="120, 10, 100, 20"/></ProbeControl>)";

class LabelTest : public ControlsTest {
 protected:
  CUILabel* MakeLabel(const char* css) {
    form = MakeControls(std::string("<L type=\"CUILabel\" ass=\"Box\" css=\"") + css +
                            "\"/><P type=\"ProbeControl\" ass=\"Beside\"/>",
                        kLabelCss, kLabelAss);
    CUILabel* label = Find<CUILabel>(form, L"L");
    label->SetText(L"  a link  ", FALSE);
    return label;
  }
  // Colour of the label's text in a fresh paint, and whether it was underlined.
  std::pair<DWORD, bool> Painted(CUILabel* label) {
    gpu->ClearLog();
    form->OnPaint(0);
    const std::vector<fake::TextRecord> texts = gpu->Texts();
    EXPECT_EQ(texts.size(), 1u);
    auto* config = dynamic_cast<_LabelConfig*>(label->GetSkinConfig(CString()));
    return {texts.empty() ? 0 : texts.back().color, config && config->m_font.lfUnderline};
  }
  CUIForm* form = nullptr;
};

TEST_F(LabelTest, ColourAndUnderlineFollowTheLinkModeTheCursorAndTheEnabledState) {
  struct Case {
    const char* css;
    bool hovered;
    bool enabled;
    DWORD colour;
    bool underline;
  };
  const Case cases[] = {
      {"Plain", false, true, 0xFFFF0000, false}, {"Plain", true, true, 0xFFFF0000, false},  // always-underline: no highlight
      {"Link", false, true, 0xFF00FF00, false},  {"Link", true, true, 0xFF0000FF, true},
      {"Always", false, true, 0xFF00FF00, true}, {"Link", false, false, 0xC0C0C0, false},
  };
  for (const Case& c : cases) {
    CUILabel* label = MakeLabel(c.css);
    label->SetEnabled(c.enabled ? TRUE : FALSE);
    if (c.hovered) Mouse(label, WM_MOUSEHOVER);
    EXPECT_EQ(Painted(label), std::make_pair(c.colour, c.underline)) << c.css << " hovered " << c.hovered;
    form->Release();
  }
  form = nullptr;
}

TEST_F(LabelTest, AClickOpensTheUrlWhenAskedToElseRaisesTheClickEvent) {
  std::vector<std::string> opened;
  const ShellOpenHook previous = SetShellOpenHook([&](const CString&, const CString& file, const CString& params, int) {
    opened.push_back(file.ToUtf8() + " " + params.ToUtf8());
    return true;
  });
  CUILabel* label = MakeLabel("Open");
  EXPECT_EQ(label->GetText(), CString(L"a link"));  // without its surrounding blanks
  Mouse(label, WM_LBUTTONDOWN);                      // no URL yet: an ordinary click
  label->SetHyperLinkMode(TRUE, L"https://example.org/", TRUE);
  Mouse(label, WM_LBUTTONDOWN);
  SetShellOpenHook(previous);
  EXPECT_THAT(events.lines, ElementsAre("1 L"));
  ASSERT_EQ(opened.size(), 1u);
  EXPECT_NE(opened[0].find("https://example.org/"), std::string::npos);
}

TEST_F(LabelTest, EnteringAndLeavingRaiseTheirEventsOnceEachUnlessDisabled) {
  CUILabel* label = MakeLabel("Link");
  label->SetNotifyHover(TRUE);
  for (int x : {20, 30, 130, 140}) form->SendMessage(WM_MOUSEMOVE, 0, MAKELPARAM(x, 15));
  EXPECT_THAT(events.lines, ElementsAre("5 L", "6 L"));
  events.lines.clear();
  label->SetEnabled(FALSE);
  EXPECT_EQ(Mouse(label, WM_MOUSEHOVER) + Mouse(label, WM_MOUSELEAVE), 0);
  EXPECT_THAT(events.lines, IsEmpty());
}

// A 160 x 20 horizontal and a 20 x 160 vertical slider with 12 x 16 thumbs:
// their tracks are (14, 15, 166, 25) and (214, 15, 226, 165).
constexpr const char* kSliders = R"(<H type="CUISlider" css="H" ass="H"/><V type="CUISlider" css="V" ass="V"/>)";
constexpr const char* kSliderCss = R"(<CUISlider>
  <H><SliderBtn File="t.png" Normal="0, 0, 12, 16"/></H>
  <V IsHorz="false"><SliderBtn File="t.png" Normal="0, 0, 12, 16"/></V></CUISlider>)";
constexpr const char* kSliderAss = R"(<CUISlider><H AnchorStyle="topleft" Bounds="10, 10, 160, 20"/>
                                                <V AnchorStyle="topleft" Bounds="210, 10, 20, 160"/></CUISlider>)";

class SliderTest : public ControlsTest {
 protected:
  void SetUp() override {
    ControlsTest::SetUp();
    form = MakeControls(kSliders, kSliderCss, kSliderAss);
    h = Find<CUISlider>(form, L"H");
    v = Find<CUISlider>(form, L"V");
    h->SetRange(0, 100);
    v->SetRange(0, 100);
  }
  CUIForm* form = nullptr;
  CUISlider* h = nullptr;
  CUISlider* v = nullptr;
};

TEST_F(SliderTest, PositionsMapOntoTheTrackAtBothEndsBeyondThemAndForAnEmptyRange) {
  struct Case {
    int min, max, set;
    int position;
    LONG thumbCentre;  // x of the horizontal thumb's centre
  };
  const Case cases[] = {{0, 100, 0, 0, 14},       {0, 100, 100, 100, 166}, {0, 100, 50, 50, 90},
                        {0, 100, -5, 0, 14},      {0, 100, 150, 150, 242},  // no upper clamp
                        {20, 20, 20, 20, 14},     {20, 20, 50, 50, 14}};   // an empty range sits at the start
  for (const Case& c : cases) {
    h->SetRange(c.min, c.max);
    h->SetPosition(c.set);
    EXPECT_EQ(h->GetPosition(), c.position) << c.set;
    EXPECT_EQ(h->GetThumbRect(), CRect(c.thumbCentre - 6, 12, c.thumbCentre + 6, 28)) << c.set;
  }
}

TEST_F(SliderTest, AVerticalSliderGrowsUpwards) {
  for (auto [position, thumb] : {std::pair{0, CRect(214, 157, 226, 173)}, std::pair{75, CRect(214, 44, 226, 60)},
                                 std::pair{100, CRect(214, 7, 226, 23)}}) {
    v->SetPosition(position);
    EXPECT_EQ(v->GetThumbRect(), thumb) << position;
  }
}

TEST_F(SliderTest, ATrackClickPutsTheThumbsLeftEdgeThereAndReportsIt) {
  struct Case {
    int x;
    LONG thumbLeft;
    int position;
  };
  const Case cases[] = {{100, 100, 61}, {12, 14, 0}, {168, 154, 100}};
  for (const Case& c : cases) {
    h->SetPosition(50);
    events.lines.clear();
    h->OnLButtonDown(0, CPoint(c.x, 20));
    EXPECT_EQ(std::make_tuple(h->GetThumbRect().left, h->GetPosition()), std::make_tuple(c.thumbLeft, c.position)) << c.x;
    EXPECT_THAT(events.lines, ElementsAre("2 H"));
    EXPECT_EQ(form->GetCaptureControl(), h);  // kept until a drag ends
  }
  h->SetEnabled(FALSE);
  events.lines.clear();
  h->OnLButtonDown(0, CPoint(100, 20));
  EXPECT_EQ(h->GetThumbRect().left, 100);
  EXPECT_THAT(events.lines, IsEmpty());
}

TEST_F(SliderTest, DraggingPastAnEndPinsAHorizontalThumbAndStopsAVerticalOne) {
  h->SetPosition(50);  // thumb (84, 12, 96, 28)
  EXPECT_EQ(Mouse(h, WM_LBUTTONDOWN, 90, 20), 1);
  EXPECT_TRUE(h->IsDragging());
  Mouse(h, WM_MOUSEMOVE, 400, 20);
  EXPECT_EQ(std::make_tuple(h->GetPosition(), h->GetThumbRect().right), std::make_tuple(100, LONG{166}));
  Mouse(h, WM_MOUSEMOVE, 500, 20);  // further out: the value stays, the event comes again
  Mouse(h, WM_MOUSEMOVE, -300, 20);
  EXPECT_EQ(std::make_tuple(h->GetPosition(), h->GetThumbRect().left), std::make_tuple(0, LONG{14}));
  EXPECT_THAT(events.lines, ElementsAre("2 H", "2 H", "2 H"));
  Mouse(h, WM_LBUTTONUP, 20, 20);
  EXPECT_FALSE(h->IsDragging() || form->GetCaptureControl());

  v->SetPosition(50);
  const CRect before = v->GetThumbRect();
  events.lines.clear();
  Mouse(v, WM_LBUTTONDOWN, 220, before.CenterPoint().y);
  Mouse(v, WM_MOUSEMOVE, 220, before.CenterPoint().y - 20);
  EXPECT_EQ(v->GetPosition(), 65);  // 87 of the 134 pixels of travel, from the placement SetPosition centred
  Mouse(v, WM_MOUSEMOVE, 220, -500);  // stopped, not pinned
  EXPECT_EQ(v->GetThumbRect().top, before.top - 20);
  EXPECT_THAT(events.lines, ElementsAre("2 V", "2 V"));
}

TEST_F(ControlsTest, TheFactoryMakesEveryBuiltInTypeAndHasASkinRecordForEachButTheBottomPanel) {
  LoadSkin("<TestForm/>", R"(<css><CUIForm><X/></CUIForm><CUICaption><X/></CUICaption><CUIButton><X/></CUIButton>
                           <CUILabel><X/></CUILabel><CUIPanel><X/></CUIPanel><CUISlider><X/></CUISlider>
                           <CUIBottomPanel><X/></CUIBottomPanel></css>)");
  CUISkinManager* manager = Manager();
  for (const wchar_t* type :
       {L"CUIForm", L"CUICaption", L"CUIButton", L"CUILabel", L"CUIPanel", L"CUISlider", L"CUIBottomPanel"}) {
    CUIControl* control = manager->CreateSkinObject(type);
    ASSERT_NE(control, nullptr) << CString(type).ToUtf8();
    EXPECT_EQ(control->GetType(), CString(type));
    control->Release();
  }
  EXPECT_EQ(manager->CreateSkinObject(L"CUIMenu"), nullptr);
  EXPECT_EQ(manager->CreateSkinObject(L"cuibutton"), nullptr);

  const std::pair<const wchar_t*, const std::type_info*> records[] = {
      {L"CUICaption", &typeid(_CaptionConfig)}, {L"CUIButton", &typeid(_ButtonConfig)},
      {L"CUILabel", &typeid(_LabelConfig)},     {L"CUIPanel", &typeid(_PanelConfig)},
      {L"CUISlider", &typeid(_SliderConfig)}};
  for (auto [type, record] : records) {
    _SkinConfig* config = nullptr;
    manager->ReadCssData(L"X", type, config);
    ASSERT_NE(config, nullptr) << CString(type).ToUtf8();
    EXPECT_EQ(typeid(*config), *record) << CString(type).ToUtf8();
    config->Release();
  }
  TraceCapture trace;
  _SkinConfig* none = nullptr;
  manager->ReadCssData(L"X", L"CUIBottomPanel", none);
  EXPECT_EQ(none, nullptr);
  EXPECT_TRUE(trace.Contains(L"No defualt config: css(X), type(CUIBottomPanel)"));
}

}  // namespace
}  // namespace KarvelTest
