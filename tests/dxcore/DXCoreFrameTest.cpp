// Frames and resets: BeginPaint/EndPaint with their failures, the lost
// device at present, the reset fallbacks and painting after a failed reset.

#include "support/FakeCore.h"

using namespace KarvelUI;
using namespace KarvelTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(FakeCoreTest, AFrameIsOneSceneOneBlendingBatchAndAPresent) {
  MakeReady();
  ASSERT_EQ(core.BeginPaint(), S_OK);
  ASSERT_EQ(core.CleanScreen(0xFF102030), S_OK);
  ASSERT_EQ(core.EndPaint(), S_OK);
  EXPECT_THAT(gpu->Calls(), ElementsAre("BeginScene", "Sprite.Begin flags=0x10", "Clear count=0 flags=0x1 color=0xFF102030",
                                        "Sprite.End", "EndScene", "Present"));
  EXPECT_THAT(trace.Lines(), IsEmpty());
}

TEST_F(FakeCoreTest, EachFailingStepOfAFrameIsTracedAndReturned) {
  MakeReady();
  gpu->FailNext(fake::Call::BeginScene, E_FAIL);
  EXPECT_EQ(core.BeginPaint(), E_FAIL);
  gpu->FailNext(fake::Call::SpriteBegin, D3DERR_INVALIDCALL);
  EXPECT_EQ(core.BeginPaint(), D3DERR_INVALIDCALL);  // the scene stays open...
  ASSERT_EQ(core.BeginPaint(), S_OK);                 // ...until the next frame closes it first
  gpu->FailNext(fake::Call::SpriteEnd, D3DERR_INVALIDCALL);
  EXPECT_EQ(core.EndPaint(), D3DERR_INVALIDCALL);
  ASSERT_EQ(core.EndPaint(), S_OK);
  ASSERT_EQ(core.BeginPaint(), S_OK);
  gpu->FailNext(fake::Call::Present, D3DERR_DRIVERINTERNALERROR);
  EXPECT_EQ(core.EndPaint(), D3DERR_DRIVERINTERNALERROR);
  ASSERT_EQ(core.BeginPaint(), S_OK);
  gpu->FailNext(fake::Call::EndScene, E_FAIL);
  EXPECT_EQ(core.EndPaint(), E_FAIL);
  EXPECT_EQ(gpu->Count(fake::Call::Present), 2);
  EXPECT_THAT(Traced(), ElementsAre(L"4 <D3DERROR> Begin scene fail: -2147467259",
                                    L"4 <D3DERROR> Begin sprite fail: -2005530516",
                                    L"4 <D3DERROR> End sprite fail: -2005530516",
                                    L"4 <D3DERROR> Present fail: -2005530585",
                                    L"4 <D3DERROR> End scene fail: -2147467259"));
}

TEST_F(FakeCoreTest, ALostDeviceIsResetAtItsSizeAndReportedWithoutATrace) {
  MakeReady();
  ASSERT_EQ(core.ResetD3DSize({800, 600}), S_OK);
  ASSERT_EQ(core.BeginPaint(), S_OK);
  gpu->ClearLog();
  gpu->LoseDevice();
  EXPECT_EQ(core.EndPaint(), D3DERR_DEVICELOST);
  EXPECT_THAT(gpu->Calls(), ElementsAre("Sprite.End", "EndScene", "Present",
                                        "Reset count=2 format=21 swap=1 interval=0x80000000 size=800x600",
                                        "CreateSprite"));
  EXPECT_THAT(trace.Lines(), IsEmpty());
  // The caller paints again, and that frame goes through.
  ASSERT_EQ(core.BeginPaint(), S_OK);
  EXPECT_EQ(core.EndPaint(), S_OK);
}

TEST_F(FakeCoreTest, ALostDeviceThatCannotBeResetFailsPaintingCleanlyUntilItCan) {
  MakeReady();
  ASSERT_EQ(core.BeginPaint(), S_OK);
  gpu->LoseDevice();
  gpu->FailAlways(fake::Call::Reset, D3DERR_DEVICELOST);
  EXPECT_EQ(core.EndPaint(), D3DERR_DEVICELOST);
  EXPECT_THAT(Traced(), ElementsAre(L"3 fail reset: -2005530520", L"3 try D3DFMT_A1R5G5B5",
                                    L"4 <D3DERROR> Reset D3DDevice fail: -2005530520",
                                    L"4 <D3DERROR> Present fail: -2005530520"));
  EXPECT_EQ(core.GetD3DXSprite(), nullptr);

  // No sprite: paints fail quietly, without a reset, a scene or a trace line.
  gpu->ClearLog();
  trace.Clear();
  for (int paint = 0; paint < 3; ++paint) {
    EXPECT_EQ(core.BeginPaint(), E_FAIL);
    EXPECT_EQ(core.DrawImage(static_cast<IDirect3DTexture9*>(nullptr), nullptr, nullptr, nullptr, 0xFFFFFFFF), E_FAIL);
    EXPECT_EQ(core.DrawTextW(L"x", CRect(0, 0, 9, 9), LOGFONTW{}, 0, 0xFFFFFFFF), E_FAIL);
    EXPECT_EQ(core.SetTransform(nullptr, nullptr, nullptr, 0, nullptr), E_FAIL);
    EXPECT_EQ(core.EndPaint(), E_FAIL);
  }
  EXPECT_TRUE(gpu->Calls().empty() && trace.Lines().empty());

  // The next size change resets the device once it can be, and paints go through.
  gpu->ClearFaults();
  ASSERT_EQ(core.ResetD3DSize({640, 480}), S_OK);
  EXPECT_EQ((std::vector{core.BeginPaint(), core.EndPaint()}), (std::vector<HRESULT>{S_OK, S_OK}));
}

TEST_F(FakeCoreTest, ResetFallsBackToSixteenBitsThenToDiscard) {
  MakeReady();
  gpu->FailNext(fake::Call::Reset, D3DERR_NOTAVAILABLE);
  ASSERT_EQ(core.ResetD3DSize({320, 200}), S_OK);
  EXPECT_THAT(CallsStartingWith("Reset"),
              ElementsAre("Reset count=2 format=21 swap=1 interval=0x80000000 size=320x200 -> 0x8876086A",
                          "Reset count=2 format=25 swap=1 interval=0x80000000 size=320x200"));
  EXPECT_THAT(Traced(), ElementsAre(L"3 fail reset: -2005530518", L"3 try D3DFMT_A1R5G5B5"));
  EXPECT_EQ(core.GetD3DPresentParameters().BackBufferFormat, D3DFMT_A1R5G5B5);
}

TEST_F(FakeCoreTest, ACopyDeviceWhoseResetFailsSwitchesToDiscard) {
  gpu->FailNext(fake::Call::CreateDevice, D3DERR_NOTAVAILABLE, 3);
  ASSERT_EQ(core._InitD3D(), S_OK);  // single buffer, 16 bits, copy
  gpu->ClearLog();
  trace.Clear();
  gpu->FailNext(fake::Call::Reset, D3DERR_NOTAVAILABLE);
  ASSERT_EQ(core.ResetD3DSize({320, 200}), S_OK);
  EXPECT_THAT(CallsStartingWith("Reset"),
              ElementsAre("Reset count=1 format=25 swap=3 interval=0x80000000 size=320x200 -> 0x8876086A",
                          "Reset count=1 format=25 swap=1 interval=0x80000000 size=320x200"));
  EXPECT_THAT(Traced(), ElementsAre(L"3 fail reset D3DSWAPEFFECT_COPY: -2005530518", L"3 try D3DSWAPEFFECT_DISCARD"));
}

TEST_F(FakeCoreTest, AResetWhoseSpriteFailsReportsIt) {
  MakeReady();
  gpu->FailNext(fake::Call::CreateSprite, E_OUTOFMEMORY);
  EXPECT_EQ(core.ResetD3DSize({100, 100}), E_OUTOFMEMORY);
  EXPECT_THAT(Traced(), ElementsAre(L"4 <D3DERROR> Create sprite fail: -2147024882"));
  EXPECT_EQ(core.GetD3DXSprite(), nullptr);
}
