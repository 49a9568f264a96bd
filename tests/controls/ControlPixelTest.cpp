// Controls painted by the OpenGL backend off screen and read back: a
// button in each of its five states and in three slices narrower than its
// ends, a slider's groove, fill and thumb, and a label's lines.

#include "controls/ControlsTestSupport.h"
#include "support/GLTesting.h"
#include "support/PictureFiles.h"

namespace KarvelTest {
namespace {

constexpr DWORD kBack = 0xFF000000;
constexpr DWORD kStateColours[5] = {0xFF808080, 0xFF00C000, 0xFF0000C0, 0xFF404040, 0xFFC0C000};
constexpr DWORD kRed = 0xFFFF0000, kGreen = 0xFF00FF00, kBlue = 0xFF0000FF, kWhite = 0xFFFFFFFF;
constexpr int kPng = 13;

class ControlPixelTest : public FrameworkTest {
 protected:
  void SetUp() override {
    FrameworkTest::SetUp();
    ASSERT_EQ(DXCore::InitInstance(), S_OK);
    Picture("back.png", 4, 4, [](int, int) { return kBack; });
  }
  void TearDown() override {
    if (form) form->Release();
    DXCore::ExitInstance();
    FrameworkTest::TearDown();
  }
  void Picture(const std::string& name, int w, int h, const PixelFunction& pixel) {
    Write("Theme/Default/images/" + name, MakePicture(kPng, w, h, 32, pixel));
  }
  // A 200 x 100 form on a black background holding `children`.
  void Make(const std::string& children, const std::string& css, const std::string& ass) {
    LoadSkin("<TestForm css=\"Main\">" + children + "</TestForm>",
             R"(<css><CUIForm><Main PositionRect="0, 0, 200, 100" BorderMargin="0, 0, 0, 0">
                  <Image File="back.png"><EdgeCenter mid="0, 0, 4, 4"/></Image></Main></CUIForm>)" +
                 css + "</css><ass>" + ass + "</ass>");
    form = new CUIForm();
    form->SetObjectID(L"TestForm");
    ASSERT_TRUE(form->Create(WS_POPUP | WS_VISIBLE, L"KarvelControlPixels", L"", nullptr, 0, CRect(0, 0, 10, 10)));
  }
  Frame Paint() {
    form->OnPaint(0);
    return ReadBack(form->GetRenderDevice()->GetD3DDevice());
  }
  template <class T>
  T* Get(const wchar_t* id) {
    return dynamic_cast<T*>(form->FindControlRecusive(id));
  }

  CUIForm* form = nullptr;
};

TEST_F(ControlPixelTest, AButtonShowsThePictureOfEachOfItsFiveStates) {
  Picture("states.png", 40, 8, [](int x, int) { return kStateColours[x / 8]; });
  Make(R"(<B type="CUIButton" css="B" ass="B"/>)",
       R"(<CUIButton><B Flat="true"><Image File="states.png" Normal="0, 0, 8, 8" Focus="8, 0, 16, 8"
            Press="16, 0, 24, 8" Disable="24, 0, 32, 8" KBFocus="32, 0, 40, 8"/></B></CUIButton>)",
       R"(<CUIButton><B AnchorStyle="topleft" Bounds="20, 20, 60, 30"/></CUIButton>)");
  auto* button = Get<CUIButton>(L"B");
  for (int status = 0; status < UIBUTTON_STATE_COUNT; ++status) {
    button->SetButtonStatus(static_cast<UIButtonStatus>(status));
    const Frame frame = Paint();
    EXPECT_EQ(frame.At(50, 35), kStateColours[status]) << status;
    EXPECT_EQ(frame.InkBounds(kBack), CRect(20, 20, 80, 50)) << status;
  }
}

TEST_F(ControlPixelTest, ThreeSlicesNarrowerThanTheirEndsDropTheMiddleAndOverlapTheEnds) {
  Picture("slices.png", 18, 8, [](int x, int) { return x < 6 ? kRed : x < 12 ? kGreen : kBlue; });
  Make(R"(<B type="CUIButton" css="B" ass="B"/>)",
       R"(<CUIButton><B Edge="6, 6"><Image File="slices.png" Normal="0, 0, 18, 8"/></B></CUIButton>)",
       R"(<CUIButton><B AnchorStyle="topleft" Bounds="20, 20, 10, 30"/></CUIButton>)");
  const Frame frame = Paint();
  for (int x = 16; x < 34; ++x) {
    const DWORD expected = x < 20 || x >= 30 ? kBack : x < 24 ? kRed : kBlue;  // the right end is drawn last
    EXPECT_EQ(frame.At(x, 35), expected) << x;
  }
}

TEST_F(ControlPixelTest, ASliderFillsItsTrackUpToTheThumbUnlessItsRangeIsEmpty) {
  Picture("slider.png", 44, 20, [](int x, int y) {
    if (x < 16) return kWhite;              // groove, stretched over the bounds
    if (x < 32) return y < 10 ? kGreen : 0u;  // fill
    return kRed;                            // thumb
  });
  Make(R"(<S type="CUISlider" css="S" ass="S"/>)",
       R"(<CUISlider><S><BkImage File="slider.png" Rect="0, 0, 16, 20"/><FillImage File="slider.png" Rect="16, 0, 32, 10"/>
            <SliderBtn File="slider.png" Normal="32, 0, 44, 16"/></S></CUISlider>)",
       R"(<CUISlider><S AnchorStyle="topleft" Bounds="10, 40, 160, 20"/></CUISlider>)");
  auto* slider = Get<CUISlider>(L"S");
  slider->SetRange(0, 100);
  slider->SetPosition(50);  // thumb (84, 42, 96, 58)
  Frame frame = Paint();
  // Groove outside the track, fill before the thumb, the thumb, groove after it, nothing above.
  EXPECT_EQ((std::vector{frame.At(12, 50), frame.At(50, 50), frame.At(90, 50), frame.At(130, 50), frame.At(90, 38)}),
            (std::vector{kWhite, kGreen, kRed, kWhite, kBack}));
  slider->SetRange(0, 0);
  EXPECT_EQ(Paint().At(50, 50), kWhite);
}

TEST_F(ControlPixelTest, AMultiLineLabelWrapsWordsWhereASingleLineLabelStaysOnItsLine) {
  const char* label = R"(<Font TextColor="255, 255, 255" FontFace="DejaVu Sans" FontSize="12"/>)";
  Make(R"(<One type="CUILabel" css="One" ass="One"/><Many type="CUILabel" css="Many" ass="Many"/>)",
       std::string("<CUILabel><One>") + label + "</One><Many IsSingleLine=\"false\">" + label + "</Many></CUILabel>",
       R"(<CUILabel><One AnchorStyle="topleft" Bounds="0, 0, 90, 50"/><Many AnchorStyle="topleft" Bounds="100, 0, 90, 50"/></CUILabel>)");
  const CString text = L"alpha beta gamma delta";
  Get<CUILabel>(L"One")->SetText(text, FALSE);
  Get<CUILabel>(L"Many")->SetText(text, FALSE);
  const Frame frame = Paint();
  const CRect one = frame.InkBounds(kBack, CRect(0, 0, 95, 100));
  const CRect many = frame.InkBounds(kBack, CRect(100, 0, 200, 100));
  EXPECT_TRUE(one.bottom <= 18 && one.right <= 90) << one.bottom << " " << one.right;  // one line, cut at the edge
  EXPECT_TRUE(many.bottom > one.bottom + 6 && many.right <= 190) << many.bottom;     // a second line below it
}

}  // namespace
}  // namespace KarvelTest
