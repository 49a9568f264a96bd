// The banded swirl drawn by the OpenGL backend and read back, in a window of
// the size the effect's quad is laid out for (1680 x 1050), where texels
// meet pixels one to one.

#include <cmath>
#include <numbers>

#include <karvelui/BandedSwirlEffect.h>
#include <karvelui/DXCore.h>
#include "support/GLTesting.h"
#include "support/PictureFiles.h"
#include "support/TempDir.h"

namespace KarvelTest {
namespace {

constexpr int kWidth = 1680, kHeight = 1050;
constexpr double kCentreX = kWidth / 2.0, kCentreY = kHeight / 2.0;
constexpr double kRadius = kHeight / 2.0;  // half the shorter side
constexpr DWORD kRed = 0xFFFF0000, kWhite = 0xFFFFFFFF, kBlack = 0xFF000000;

// A busy picture: neighbouring pixels all differ.
DWORD Busy(int x, int y) {
  return 0xFF000000u | (static_cast<DWORD>(x * 7 & 0xFF) << 16) | (static_cast<DWORD>(y * 5 & 0xFF) << 8) |
         static_cast<DWORD>((x ^ y) & 0xFF);
}

// Black, with a red disc on the centre and a white one at half the radius
// right of it.
DWORD Spots(int x, int y) {
  const auto within = [&](double cx, double cy, double r) {
    return std::hypot(x + 0.5 - cx, y + 0.5 - cy) <= r;
  };
  if (within(kCentreX, kCentreY, 6.0)) return kRed;
  if (within(kCentreX + kRadius / 2, kCentreY, 2.5)) return kWhite;
  return kBlack;
}

class SwirlPixelTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(DXCore::InitInstance(), S_OK);
    ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, kWidth, kHeight)));
    core.SetWindow(wnd.m_hWnd);
    ASSERT_EQ(core.Init(), S_OK);
    BandedSwirlEffect::SetShaderPath(CString(KARVEL_SOURCE_DIR "/assets/BandedSwirl.fx"));
  }
  void TearDown() override {
    effects.ReleaseAll();
    BandedSwirlEffect::SetShaderPath(CString());
    core.CleanUp();
    DXCore::ExitInstance();
  }
  CString PictureFile(DWORD (*pixel)(int, int)) {
    const auto path = folder.Write("input.png", MakePicture(13, kWidth, kHeight, 24, pixel));
    return CString(path.string().c_str());
  }
  // Paints the picture into the window as its current frame.
  void PaintFrame(DWORD (*pixel)(int, int)) {
    RefPtr<IDirect3DTexture9> texture = MakeTexture(core.GetD3DDevice(), kWidth, kHeight, pixel);
    ASSERT_EQ(core.BeginPaint(), S_OK);
    const D3DXVECTOR3 origin{};
    ASSERT_EQ(core.DrawImage(texture.Get(), nullptr, nullptr, &origin, 0xFFFFFFFF), S_OK);
    ASSERT_EQ(core.EndPaint(), S_OK);
  }
  Frame Swirled() {
    swirl.ApplyEffect(L"");
    return ReadBack(core.GetD3DDevice());
  }

  CWnd wnd;
  DXCore core;
  TempDir folder;
  BandedSwirlEffect swirl;
  CEffectsManager effects;
};

class SwirlInputTest : public SwirlPixelTest, public ::testing::WithParamInterface<bool> {};

TEST_P(SwirlInputTest, NoTwistReproducesTheInput) {
  GetParam() ? swirl.SetInputPicture(PictureFile(&Busy)) : PaintFrame(&Busy);
  ASSERT_EQ(swirl.Init(&effects, &core), 0);
  ASSERT_EQ(swirl.SetSwirl(BandedSwirlEffect::kDefaultFrequency, 0.0f), S_OK);
  const Frame frame = Swirled();
  ASSERT_EQ(frame.size, CSize(kWidth, kHeight));
  int differing = 0;
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x) differing += !ColorNear(frame.At(x, y), Busy(x, y));
  EXPECT_EQ(differing, 0);
}

INSTANTIATE_TEST_SUITE_P(Inputs, SwirlInputTest, ::testing::Values(false, true),
                         [](const auto& info) { return info.param ? "Picture" : "CurrentFrame"; });

TEST_F(SwirlPixelTest, DefaultSwirlKeepsTheCentreAndTurnsHalfTheRadiusByItsAngle) {
  swirl.SetInputPicture(PictureFile(&Spots));
  ASSERT_EQ(swirl.Init(&effects, &core), 0);
  const Frame frame = Swirled();

  for (int x : {839, 840})
    for (int y : {524, 525}) EXPECT_TRUE(ColorNear(frame.At(x, y), kRed, 2)) << x << ", " << y;

  // A pixel shows the input turned clockwise by theta, so the spot moved
  // back by theta: anticlockwise on screen. Measured on the ring of pixels
  // at half the radius, where the spot's arc is centred on its angle.
  const double r = 0.5;
  const double theta = BandedSwirlEffect::kDefaultTwistAmount * (1 - r) *
                       std::cos(BandedSwirlEffect::kDefaultFrequency * r);
  double angles = 0, weight = 0;
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x) {
      const double dx = x + 0.5 - kCentreX, dy = y + 0.5 - kCentreY;
      if (std::abs(std::hypot(dx, dy) - r * kRadius) > 0.5) continue;
      const DWORD pixel = frame.At(x, y);
      const double white = std::min({(pixel >> 16) & 0xFF, (pixel >> 8) & 0xFF, pixel & 0xFF});
      angles += white * std::atan2(dy, dx), weight += white;
    }
  ASSERT_GT(weight, 0.0);
  EXPECT_NEAR(angles / weight, -theta, 0.001);
}

}  // namespace
}  // namespace KarvelTest
