// The image view: its fitting rule, its loading rules (same file, rotation
// map, EXIF orientation) and the placeholder's rectangle without a device;
// then in a form painted by the OpenGL backend off screen: a quarter turn
// puts the picture's corners where they belong, a damaged file shows the
// placeholder, and a large photo comes up through its preview without a
// frame that lacks it.

#include <gmock/gmock.h>

#include <tuple>

#include <karvelui/ResourceCache.h>
#include <karvelui/UIImageBase.h>
#include "framework/FrameworkTestSupport.h"
#include "platform/Paths.h"
#include "support/GLTesting.h"
#include "support/PictureFiles.h"
#include "support/TempDir.h"
#include "support/TraceCapture.h"
#include "support/WindowTesting.h"

namespace KarvelTest {
namespace {

// The image view with its protected geometry opened to the tests.
class OpenImageView : public CUIImageBase {
 public:
  using CUIImageBase::GetInvalidateViewRect;
  using CUIImageBase::m_bNeedRefresh;
  using CUIImageBase::m_mapRotations;
  using CUIImageBase::m_pImage;
  using CUIImageBase::m_pImageInfo;
  using CUIImageBase::m_rcView;
  using CUIImageBase::m_rcViewF;
  using CUIImageBase::RotateRect;
  using CUIImageBase::SetRectData;
  using CUIImageBase::SetViewRect;
  // A view the factory made is a plain CUIImageBase: its rectangle is read
  // through the member, not by a downcast.
  static CRect ViewRectOf(CUIImageBase* view) { return view->*(&OpenImageView::m_rcView); }
};

// A JPEG of the given size whose EXIF data (one IFD entry, little-endian)
// gives `orientation`.
inline std::string JpegWithOrientation(int width, int height, int orientation) {
  const std::string jpeg = MakeJpeg(width, height);
  std::string tiff("II*\0\x08\0\0\0\x01\0", 10);                   // header, IFD at 8, one entry
  tiff += std::string("\x12\x01\x03\0\x01\0\0\0", 8);              // Orientation, SHORT, count 1
  tiff += static_cast<char>(orientation);
  tiff += std::string("\0\0\0\0\0\0", 6);                          // value padding, no next IFD
  const std::string payload = std::string("Exif\0\0", 6) + tiff;
  std::string app1 = "\xFF\xE1";
  PutBE16(app1 += "  ", 2, static_cast<unsigned>(payload.size() + 2));
  return jpeg.substr(0, 2) + app1 + payload + jpeg.substr(2);
}


constexpr float kQuarter = 1.5707964f;
constexpr float kHalf = 3.1415927f;
constexpr float kThreeQuarters = 4.712389f;

struct FitCase {
  const char* name;
  float width, height, rotation;
  int fit;
  RectF exact;
  CRect view;
};

// A 1000 x 800 inner rectangle of a form that is not maximised (margins 30).
const FitCase kFitCases[] = {
    {"LargeUprightLimitedByHeight", 4000, 3000, 0.0f, 1, {6.6667f, 30, 993.3333f, 770}, {7, 30, 993, 770}},
    {"QuarterTurnLimitedByWidth", 4000, 3000, kQuarter, 1, {130, 122.5f, 870, 677.5f}, {130, 123, 870, 678}},
    {"ThreeQuartersIsSidewaysToo", 4000, 3000, kThreeQuarters, 1, {130, 122.5f, 870, 677.5f}, {130, 123, 870, 678}},
    {"NegativeQuarterIsSideways", 4000, 3000, -kQuarter, 1, {130, 122.5f, 870, 677.5f}, {130, 123, 870, 678}},
    {"NotTheNearestFloatIsUpright", 4000, 3000, 1.5707963f, 1, {6.6667f, 30, 993.3333f, 770}, {7, 30, 993, 770}},
    {"SmallIsNeverEnlarged", 300, 200, 0.0f, 1, {350, 300, 650, 500}, {350, 300, 650, 500}},
    // truncate(v + 0.5) rounds negative halves up: -1500 becomes -1499.
    {"FitOffKeepsNaturalSize", 4000, 3000, 0.0f, 0, {-1500, -1100, 2500, 1900}, {-1499, -1099, 2500, 1900}},
};

class ImageViewFitTest : public testing::TestWithParam<FitCase> {};

TEST_P(ImageViewFitTest, PlacesThePictureInTheInnerRectangle) {
  const FitCase& c = GetParam();
  OpenImageView view;
  view.SetBounds(CRect(0, 0, 1000, 800));
  view.m_pImage = std::make_unique<_ImageConfig>();
  view.m_pImage->m_fRotation = c.rotation;
  view.SetViewRect(view.m_rcView, view.m_rcViewF, c.width, c.height, CRect(0, 0, 1000, 800), c.fit, nullptr, 1);
  for (auto [got, want] : {std::pair{view.m_rcViewF.left, c.exact.left}, std::pair{view.m_rcViewF.top, c.exact.top},
                           std::pair{view.m_rcViewF.right, c.exact.right}, std::pair{view.m_rcViewF.bottom, c.exact.bottom}})
    EXPECT_NEAR(got, want, 1e-3);
  EXPECT_EQ(view.m_rcView, c.view);
}

INSTANTIATE_TEST_SUITE_P(Cases, ImageViewFitTest, testing::ValuesIn(kFitCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(ImageViewGeometryTest, AQuarterTurnedPictureCovers555By740OnScreen) {
  OpenImageView view;
  RectF picture(130, 122.5f, 870, 677.5f);
  view.RotateRect(picture, kQuarter, 500, 400);
  for (auto [got, want] : {std::pair{picture.Width(), 555.0f}, std::pair{picture.Height(), 740.0f},
                           std::pair{picture.left, 222.5f}, std::pair{picture.top, 30.0f}})
    EXPECT_NEAR(got, want, 1e-3);
}

class ImageViewLoadTest : public testing::Test {
 protected:
  CString Write(const std::string& name, const std::string& bytes) {
    return FromNativePath(dir.Write(name, bytes).string());
  }
  float RotationAfterLoading(const CString& path, float rotation) {
    EXPECT_EQ(view.LoadImageW(path, 0, 0, rotation, 1), 1);
    return view.m_pImage->m_fRotation;
  }

  TempDir dir;
  OpenImageView view;
};

TEST_F(ImageViewLoadTest, TheShownFileAgainKeepsTheHostsRectangleAndAnEmptyPathOrMissingFileEmptiesTheView) {
  const CString a = Write("a.jpg", MakeJpeg(40, 30));
  ASSERT_EQ(view.LoadImageW(a, 7, 8, 0.0f, 1), 1);
  EXPECT_EQ(view.m_bNeedRefresh, 1);
  view.m_rcView = CRect(-50, -40, 950, 710);  // zoomed by the host
  EXPECT_EQ(view.LoadImageW(a, 0, 0, kHalf, 0), 1);
  EXPECT_EQ(std::make_tuple(view.m_bNeedRefresh, view.m_rcView, view.m_pImage->m_fRotation),
            std::make_tuple(0, CRect(-50, -40, 950, 710), 0.0f));
  for (const CString& empty : {FromNativePath((dir.Path() / "gone.jpg").string()), CString()}) {
    ASSERT_EQ(view.LoadImageW(a, 0, 0, 0.0f, 1), 1);
    EXPECT_EQ(view.LoadImageW(empty, 0, 0, 0.0f, 1), 0);
    EXPECT_EQ(view.IsHaveImage(), 0);
  }
}

TEST_F(ImageViewLoadTest, TheStoredTurnOfAFileWinsOverTheArgument) {
  const CString a = Write("a.jpg", MakeJpeg(40, 30)), b = Write("b.jpg", MakeJpeg(40, 30));
  EXPECT_EQ(RotationAfterLoading(a, kHalf), kHalf);
  EXPECT_EQ(RotationAfterLoading(b, 0.0f), 0.0f);
  EXPECT_EQ(RotationAfterLoading(a, 0.0f), kHalf);
  // Paths are compared exactly: another spelling is another file.
  const CString upper = Write("A.jpg", MakeJpeg(40, 30));
  EXPECT_EQ(RotationAfterLoading(upper, kQuarter), kQuarter);
}

struct ExifCase {
  int orientation;
  float argument;
  float shown;
};

class ImageViewExifTest : public ImageViewLoadTest, public testing::WithParamInterface<ExifCase> {};

TEST_P(ImageViewExifTest, AJpegTurnedInItsExifDataIsShownUpright) {
  const ExifCase& c = GetParam();
  const CString path = Write("exif.jpg", JpegWithOrientation(40, 30, c.orientation));
  EXPECT_EQ(RotationAfterLoading(path, c.argument), c.shown);
  EXPECT_EQ(view.m_mapRotations[path].fRotation, c.shown);
}

INSTANTIATE_TEST_SUITE_P(Orientations, ImageViewExifTest,
                         testing::Values(ExifCase{1, 0.0f, 0.0f}, ExifCase{3, 0.0f, kHalf},
                                         ExifCase{6, 0.0f, kQuarter}, ExifCase{8, 0.0f, kThreeQuarters},
                                         ExifCase{6, kQuarter, kHalf}, ExifCase{8, kQuarter, 0.0f}));

class ImageViewPlaceholderTest : public FrameworkTest {};

TEST_F(ImageViewPlaceholderTest, ThePlaceholderTakesItsPicturesSizeInTheMiddle) {
  LoadSkin("<F/>", R"(<css><CUIImageBase>
      <Sized><InvalidateImage File="p.png" Rect="0, 0, 128, 96"/></Sized>
      <Unsized/>
    </CUIImageBase></css>)");
  OpenImageView sized, unsized;
  sized.SetCssName(L"Sized");
  unsized.SetCssName(L"Unsized");
  for (OpenImageView* view : {&sized, &unsized}) view->SetBounds(CRect(0, 0, 1000, 800));
  EXPECT_EQ(sized.GetInvalidateViewRect(), CRect(436, 352, 564, 448));
  EXPECT_EQ(unsized.GetInvalidateViewRect(), CRect(300, 200, 700, 600));
}

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
    view = dynamic_cast<CUIImageBase*>(form->FindControl(L"View"));
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
  CUIImageBase* view = nullptr;
};

TEST_F(ImageViewPixelTest, AQuarterTurnPutsThePicturesTopLeftCornerTopRight) {
  // 160 x 80, red in its top-left quarter; fits unscaled: on screen 80 x 160
  // around (200, 150), so its top-left corner lands at the top right.
  const CString path = Write("corner.png", MakePicture(13, 160, 80, 24, [](int x, int y) {
                                return x < 80 && y < 40 ? kRed : kBlue;
                              }));
  ASSERT_EQ(view->LoadImageW(path, 0, 0, 1.5707964f, 1), 1);
  const Frame frame = PaintUntil([](const Frame& f) { return f.At(200, 150) == kBlue || f.At(200, 150) == kRed; });
  EXPECT_EQ((std::vector{frame.At(235, 75), frame.At(205, 145), frame.At(165, 75), frame.At(235, 225),
                         frame.At(165, 225)}),
            (std::vector{kRed, kRed, kBlue, kBlue, kBlue}));
  const DWORD outside = frame.At(150, 150);
  EXPECT_TRUE(outside != kRed && outside != kBlue);
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
  const CRect firstRect = OpenImageView::ViewRectOf(view);
  EXPECT_EQ(firstRect, CRect(20, 30, 380, 270));  // fitted from the whole picture's size
  const tagTextureItem* entry = nullptr;
  while (!(entry = cache->SearchTextureItem(path, form->GetRenderDevice()->GetD3DDevice())) || !entry->IsReady()) {
    PumpAll();
    frame = Paint();
    ASSERT_TRUE(shown(frame));  // never blank, never the preview gone before the tiles
    ASSERT_EQ(OpenImageView::ViewRectOf(view), firstRect);
  }
  frame = Paint();
  EXPECT_TRUE(shown(frame));
  EXPECT_EQ(OpenImageView::ViewRectOf(view), firstRect);
}

}  // namespace
}  // namespace KarvelTest
