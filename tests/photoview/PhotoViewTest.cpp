// The viewer's photo view: zoom steps, zoom about the cursor, pan clamping,
// turns kept per file and the frame timing of animations under an injected
// clock. The view is driven directly, without a device.

#include <gtest/gtest.h>

#include <cmath>

#include "PhotoView.h"
#include "platform/Paths.h"
#include "support/PictureFiles.h"
#include "support/TempDir.h"

using namespace KarvelUI;
using namespace KarvelView;

namespace {

constexpr float kQuarter = 1.5707964f;
constexpr float kHalf = 3.1415927f;

class OpenPhotoView : public CPhotoView {
 public:
  using CPhotoView::KeepInView;
  using CPhotoView::PanBy;
  using CPhotoView::ScreenRect;
  using CUIImageBase::m_mapRotations;
  using CUIImageBase::m_pImage;
  using CUIImageBase::m_pImageInfo;
  using CUIImageBase::m_rcViewF;

  // A 4000 x 3000 picture fitted into a 1000 x 800 view, turned by `rotation`.
  void ShowFitted(float rotation) {
    SetBounds(CRect(0, 0, 1000, 800));
    m_pImage = std::make_unique<_ImageConfig>();
    m_pImage->m_strFile = L"\\photo.jpg";
    m_pImage->m_fRotation = rotation;
    m_pImageInfo = std::make_unique<D3DXIMAGE_INFO>();
    m_pImageInfo->Width = 4000;
    m_pImageInfo->Height = 3000;
    CRect area(0, 0, 1000, 800);
    SetRectData(area);
  }
  // The picture's own coordinates of a client point.
  D3DXVECTOR2 PicturePointUnder(float x, float y) const {
    const double cx = (m_rcViewF.left + m_rcViewF.right) / 2.0, cy = (m_rcViewF.top + m_rcViewF.bottom) / 2.0;
    const double a = -m_pImage->m_fRotation;
    const double ux = cx + (x - cx) * std::cos(a) - (y - cy) * std::sin(a);
    const double uy = cy + (x - cx) * std::sin(a) + (y - cy) * std::cos(a);
    const double zoom = m_rcViewF.Width() / 4000.0;
    return {static_cast<float>((ux - m_rcViewF.left) / zoom), static_cast<float>((uy - m_rcViewF.top) / zoom)};
  }
};

struct StepCase {
  double zoom;
  int direction;
  double next;
};

class ZoomStepTest : public testing::TestWithParam<StepCase> {};

TEST_P(ZoomStepTest, StepsToTheNextLevelAndStopsAtTheEnds) {
  EXPECT_DOUBLE_EQ(NextZoomStep(GetParam().zoom, GetParam().direction), GetParam().next);
}

INSTANTIATE_TEST_SUITE_P(Levels, ZoomStepTest,
                         testing::Values(StepCase{0.1645, 1, 0.25}, StepCase{0.25, 1, 0.333}, StepCase{0.25, -1, 0.125},
                                         StepCase{1.00001, 1, 1.25}, StepCase{16.0, 1, 16.0}, StepCase{0.05, -1, 0.05},
                                         StepCase{20.0, -1, 16.0}));

class PhotoViewTurnedTest : public testing::TestWithParam<float> {
 protected:
  OpenPhotoView view;
};

TEST_P(PhotoViewTurnedTest, TheWheelZoomsAboutTheCursorInSteps) {
  view.ShowFitted(GetParam());
  const float x = 400, y = 300;
  const D3DXVECTOR2 before = view.PicturePointUnder(x, y);
  view.ZoomAt(3, CPoint(400, 300));
  EXPECT_EQ(view.GetZoomPercent(), 50);
  const D3DXVECTOR2 after = view.PicturePointUnder(x, y);
  EXPECT_NEAR(after.x, before.x, 0.05);
  EXPECT_NEAR(after.y, before.y, 0.05);

  view.ZoomAt(-20, CPoint(400, 300));
  EXPECT_EQ(view.GetZoomPercent(), 5);  // the first step is the floor
  view.ZoomAt(40, CPoint(400, 300));
  EXPECT_EQ(view.GetZoomPercent(), 1600);
}

TEST_P(PhotoViewTurnedTest, PanningNeverLetsThePictureLeaveTheView) {
  view.ShowFitted(GetParam());
  const RectF fitted = view.m_rcViewF;
  view.PanBy(150, -90);  // smaller than the view: it stays centred
  EXPECT_EQ(view.m_rcViewF, fitted);

  view.SetZoomPercent(50);  // 2000 x 1500, turned or not larger than the view
  view.PanBy(5000, 5000);
  RectF screen = view.ScreenRect();
  EXPECT_NEAR(screen.left, 0, 0.01);
  EXPECT_NEAR(screen.top, 0, 0.01);
  view.PanBy(-9000, -9000);
  screen = view.ScreenRect();
  EXPECT_NEAR(screen.right, 1000, 0.01);
  EXPECT_NEAR(screen.bottom, 800, 0.01);
  view.PanBy(10, 20);  // inside the allowed range it moves freely
  EXPECT_NEAR(view.ScreenRect().right, 1010, 0.01);
  EXPECT_NEAR(view.ScreenRect().bottom, 820, 0.01);
}

INSTANTIATE_TEST_SUITE_P(Turns, PhotoViewTurnedTest, testing::Values(0.0f, kQuarter));

TEST(PhotoViewTest, ZoomChangesAreReportedToListeners) {
  OpenPhotoView view;
  view.ShowFitted(0.0f);
  struct Listener {
    void OnZoom(CUIControl* sender, void*) { zooms.push_back(static_cast<CPhotoView*>(sender)->GetZoomPercent()); }
    std::vector<int> zooms;
  } listener;
  view.ListenEvent(kZoomChangedEvent, UIEventHandler(&listener, &Listener::OnZoom));
  view.ZoomIn();
  view.ActualSize();
  view.ActualSize();  // no change, no report
  EXPECT_EQ(listener.zooms, (std::vector<int>{25, 100}));
}

TEST(PhotoViewTest, QuarterTurnsAreKeptPerFile) {
  KarvelTest::TempDir dir;
  const CString a = FromNativePath(dir.Write("a.jpg", KarvelTest::MakeJpeg(40, 30)).string());
  const CString b = FromNativePath(dir.Write("b.jpg", KarvelTest::MakeJpeg(40, 30)).string());
  OpenPhotoView view;
  ASSERT_EQ(view.ShowFile(a), 1);
  view.OnKeyMessage(WM_KEYDOWN, 0xDD, 1, 0);  // "]"
  view.RotateRight();
  EXPECT_EQ(view.m_pImage->m_fRotation, kHalf);
  view.ShowFile(b);
  view.RotateLeft();
  EXPECT_EQ(view.m_pImage->m_fRotation, 4.712389f);
  view.ShowFile(a);
  EXPECT_EQ(view.m_pImage->m_fRotation, kHalf);
  EXPECT_EQ(view.m_mapRotations[b].fRotation, 4.712389f);
}

TEST(FramePlayerTest, EachFrameKeepsItsOwnTimeAndFramesAreAskedForLazily) {
  const int times[] = {100, 30, 250};
  std::vector<int> asked;
  FramePlayer player;
  player.Start(1000, 3, [&](int frame) {
    if (asked.empty() || asked.back() != frame) asked.push_back(frame);
    return times[frame];
  });
  struct Tick {
    std::uint64_t now;
    int frame;
    int left;
  };
  const Tick ticks[] = {
      {1099, 0, 1},    {1100, 1, 30},   {1130, 2, 250},
      {1380, 0, 100},  // a round
      {1520, 2, 240},  // a late timer skips frames 0 and 1
      {11520, 2, 250}, // a whole round late: on from now
  };
  for (const Tick& tick : ticks) {
    EXPECT_EQ(player.Advance(tick.now), tick.frame) << tick.now;
    EXPECT_EQ(player.MillisecondsLeft(tick.now), tick.left) << tick.now;
    if (tick.now == 1100) {
      EXPECT_EQ(asked, (std::vector<int>{0, 1}));  // frame 2 not yet
    }
  }
  player.Stop();
  EXPECT_FALSE(player.IsPlaying());
}

}  // namespace
