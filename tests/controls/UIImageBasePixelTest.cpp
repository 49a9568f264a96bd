// The image view in a form painted by the OpenGL backend off screen: a
// quarter turn puts the picture's corners where they belong, a damaged file
// shows the placeholder, and a large photo comes up through its preview
// without a frame that lacks it.

#include <gmock/gmock.h>

#include <karvelui/ResourceCache.h>
#include "controls/UIImageBaseTestSupport.h"
#include "framework/FrameworkTestSupport.h"
#include "support/GLTesting.h"
#include "platform/Paths.h"
#include "support/TraceCapture.h"
#include "support/WindowTesting.h"

namespace KarvelTest {
namespace {

constexpr DWORD kRed = 0xFFFF0000, kBlue = 0xFF0000FF, kGreen = 0xFF00FF00;
// The worker's decodes end long before this; it only keeps a broken build
// from hanging.
constexpr auto kPatience = std::chrono::seconds(60);

class ImageViewPixelTest : public FrameworkTest {
 protected:
  void SetUp() override {
    FrameworkTest::SetUp();
    ASSERT_EQ(DXCore::InitInstance(), S_OK);
    m_app.Write("Theme/Default/images/Placeholder.png", MakePicture(13, 64, 48, 24, [](int, int) { return kGreen; }));
    LoadSkin(R"(<F css="Main" ass="Main"><View type="CUIImageBase" css="View" ass="View"/></F>)",
             R"(<css><CUIForm><Main PositionRect="0, 0, 400, 300" BorderMargin="0, 0, 0, 0" RoundDiameters="0, 0"/>
                </CUIForm>
                <CUIImageBase><View><InvalidateImage File="Placeholder.png" Rect="0, 0, 64, 48"/></View></CUIImageBase>
                </css>
                <ass><CUIImageBase><View Bounds="0, 0, 400, 300" AnchorStyle="topleft"/></CUIImageBase></ass>)");
    form = new CUIForm();
    form->SetObjectID(L"F");
    ASSERT_TRUE(form->Create(WS_POPUP | WS_VISIBLE, L"KarvelImageViewTest", L"view", nullptr, 0, CRect(0, 0, 400, 300)));
    view = static_cast<OpenImageView*>(dynamic_cast<CUIImageBase*>(form->FindControl(L"View")));
    ASSERT_NE(view, nullptr);
    ASSERT_EQ(view->GetBounds(), CRect(0, 0, 400, 300));
  }
  void TearDown() override {
    if (form) form->Release();
    DXCore::ExitInstance();
    FrameworkTest::TearDown();
  }
  CString Write(const std::string& name, const std::string& bytes) {
    return FromNativePath(pictures.Write(name, bytes).string());
  }
  Frame Paint() {
    form->OnPaint(0);
    return ReadBack(form->GetRenderDevice()->GetD3DDevice());
  }
  // Handles what the window was sent (the worker's paints among it) and
  // paints, until `done` holds for the frame.
  template <class Done>
  Frame PaintUntil(Done done) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    for (;;) {
      PumpAll();
      Frame frame = Paint();
      if (done(frame) || std::chrono::steady_clock::now() > end) return frame;
    }
  }

  TempDir pictures;
  CUIForm* form = nullptr;
  OpenImageView* view = nullptr;
};

TEST_F(ImageViewPixelTest, AQuarterTurnPutsThePicturesTopLeftCornerTopRight) {
  // 160 x 80, red in its top-left quarter; fits unscaled: on screen 80 x 160
  // around (200, 150), so its top-left corner lands at the top right.
  const CString path = Write("corner.png", MakePicture(13, 160, 80, 24, [](int x, int y) {
                                return x < 80 && y < 40 ? kRed : kBlue;
                              }));
  ASSERT_EQ(view->LoadImageW(path, 0, 0, 1.5707964f, 1), 1);
  const Frame frame = PaintUntil([](const Frame& f) { return f.At(200, 150) == kBlue || f.At(200, 150) == kRed; });
  EXPECT_EQ(frame.At(235, 75), kRed);
  EXPECT_EQ(frame.At(205, 145), kRed);
  EXPECT_EQ(frame.At(165, 75), kBlue);
  EXPECT_EQ(frame.At(235, 225), kBlue);
  EXPECT_EQ(frame.At(165, 225), kBlue);
  const DWORD outside = frame.At(150, 150);
  EXPECT_NE(outside, kRed);
  EXPECT_NE(outside, kBlue);
  EXPECT_EQ(frame.InkBounds(outside), CRect(160, 70, 240, 230));
}

TEST_F(ImageViewPixelTest, ADamagedFileShowsThePlaceholder) {
  std::string jpeg = MakeJpeg(640, 480);
  jpeg.resize(jpeg.size() / 3);  // the picture ends early
  const CString path = Write("damaged.jpg", jpeg);
  TraceCapture trace;
  ASSERT_EQ(view->LoadImageW(path, 0, 0, 0.0f, 1), 1);
  const Frame frame = PaintUntil([](const Frame& f) { return f.At(200, 150) == kGreen; });
  EXPECT_EQ(view->IsLoadImageSuccess(), 0);
  EXPECT_EQ(frame.InkBounds(frame.At(10, 10)), CRect(168, 126, 232, 174));
  EXPECT_THAT(trace.Messages(), testing::Contains(L"<ERROR> Decode Fail: " + path.str()));
}

TEST_F(ImageViewPixelTest, TheFullPictureReplacesItsPreviewWithoutABlankFrame) {
  // Large enough for a preview (a quarter of it fills the view) and for tiles
  // uploaded over several frames.
  const CString path = Write("photo.jpg", MakePicture(2, 2400, 1600, 24, [](int x, int) {
                                return x < 1200 ? 0xFFC02020u : 0xFF2020C0u;
                              }));
  ASSERT_EQ(view->LoadImageW(path, 0, 0, 0.0f, 1), 1);
  ResourceCache* cache = form->GetRenderDevice()->GetResourceCache();
  auto shown = [](const Frame& f) { return ColorNear(f.At(120, 150), 0xFFC02020, 24) && ColorNear(f.At(280, 150), 0xFF2020C0, 24); };
  Frame frame = PaintUntil(shown);
  ASSERT_TRUE(shown(frame));
  const CRect firstRect = view->m_rcView;
  EXPECT_EQ(firstRect, CRect(20, 30, 380, 270));  // fitted from the whole picture's size
  const tagTextureItem* entry = nullptr;
  while (!(entry = cache->SearchTextureItem(path, form->GetRenderDevice()->GetD3DDevice())) || !entry->IsReady()) {
    PumpAll();
    frame = Paint();
    ASSERT_TRUE(shown(frame));  // never blank, never the preview gone before the tiles
    ASSERT_EQ(view->m_rcView, firstRect);
  }
  frame = Paint();
  EXPECT_TRUE(shown(frame));
  EXPECT_EQ(view->m_rcView, firstRect);
}

}  // namespace
}  // namespace KarvelTest
