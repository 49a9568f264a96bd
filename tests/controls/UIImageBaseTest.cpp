// The image view's fitting rule, its loading rules (same file, rotation map,
// EXIF orientation) and the placeholder's rectangle, without a device.

#include <gtest/gtest.h>

#include "controls/UIImageBaseTestSupport.h"
#include "framework/FrameworkTestSupport.h"
#include "platform/Paths.h"
#include "support/TempDir.h"

namespace KarvelTest {
namespace {

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
  EXPECT_NEAR(view.m_rcViewF.left, c.exact.left, 1e-3);
  EXPECT_NEAR(view.m_rcViewF.top, c.exact.top, 1e-3);
  EXPECT_NEAR(view.m_rcViewF.right, c.exact.right, 1e-3);
  EXPECT_NEAR(view.m_rcViewF.bottom, c.exact.bottom, 1e-3);
  EXPECT_EQ(view.m_rcView, c.view);
}

INSTANTIATE_TEST_SUITE_P(Cases, ImageViewFitTest, testing::ValuesIn(kFitCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(ImageViewGeometryTest, AQuarterTurnedPictureCovers555By740OnScreen) {
  OpenImageView view;
  RectF picture(130, 122.5f, 870, 677.5f);
  view.RotateRect(picture, kQuarter, 500, 400);
  EXPECT_NEAR(picture.Width(), 555, 1e-3);
  EXPECT_NEAR(picture.Height(), 740, 1e-3);
  EXPECT_NEAR(picture.left, 222.5f, 1e-3);
  EXPECT_NEAR(picture.top, 30, 1e-3);
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

TEST_F(ImageViewLoadTest, LoadingTheShownFileAgainKeepsTheHostsRectangle) {
  const CString a = Write("a.jpg", MakeJpeg(40, 30));
  ASSERT_EQ(view.LoadImageW(a, 7, 8, 0.0f, 1), 1);
  EXPECT_EQ(view.m_bNeedRefresh, 1);
  view.m_rcView = CRect(-50, -40, 950, 710);  // zoomed by the host
  EXPECT_EQ(view.LoadImageW(a, 0, 0, kHalf, 0), 1);
  EXPECT_EQ(view.m_bNeedRefresh, 0);
  EXPECT_EQ(view.m_rcView, CRect(-50, -40, 950, 710));
  EXPECT_EQ(view.m_pImage->m_fRotation, 0.0f);
}

TEST_F(ImageViewLoadTest, AnEmptyPathOrMissingFileLeavesTheViewEmpty) {
  const CString a = Write("a.jpg", MakeJpeg(40, 30));
  ASSERT_EQ(view.LoadImageW(a, 0, 0, 0.0f, 1), 1);
  EXPECT_EQ(view.LoadImageW(FromNativePath((dir.Path() / "gone.jpg").string()), 0, 0, 0.0f, 1), 0);
  EXPECT_EQ(view.IsHaveImage(), 0);
  EXPECT_EQ(view.LoadImageW(CString(), 0, 0, 0.0f, 1), 0);
  EXPECT_EQ(view.IsHaveImage(), 0);
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

}  // namespace
}  // namespace KarvelTest
