// Device creation: the four attempts with their fallbacks and trace lines,
// the caps line, the sprite, and the failures before any attempt.

#include "support/FakeCore.h"

using namespace KarvelUI;
using namespace KarvelTest;
using ::testing::ElementsAre;

namespace {

const std::wstring kIndent(22, L' ');
const std::wstring kCapsLine = L"3 Device Caps:\r\n" + kIndent + L"MaxTextureWidth: 4096, MaxTextureHeight: 4096\r\n" +
                               kIndent + L"AvailableTextureMem: 268435456";

}  // namespace

TEST_F(FakeCoreTest, FirstAttemptAsksForTwoBackBuffersImmediatePresentation) {
  ASSERT_EQ(core.Init(), S_OK);
  EXPECT_THAT(gpu->Calls(), ElementsAre("CreateDevice count=2 format=21 swap=1 interval=0x80000000 size=0x0 flags=0x24",
                                        "GetDeviceCaps", "GetAvailableTextureMem", "CreateSprite"));
  EXPECT_THAT(Traced(), ElementsAre(kCapsLine));
  EXPECT_TRUE(core.GetD3DDevice() && core.GetD3DXSprite());
  EXPECT_EQ(core.GetD3DPresentParameters().BackBufferWidth, 640u);  // as the device reports it
}

TEST_F(FakeCoreTest, FourRefusalsReturnTheLastResultAndLeaveNoDevice) {
  gpu->FailNext(fake::Call::CreateDevice, D3DERR_NOTAVAILABLE, 3);
  gpu->FailNext(fake::Call::CreateDevice, D3DERR_OUTOFVIDEOMEMORY);
  EXPECT_EQ(core._InitD3D(), D3DERR_OUTOFVIDEOMEMORY);
  EXPECT_THAT(CallsStartingWith("CreateDevice"),
              ElementsAre("CreateDevice count=2 format=21 swap=1 interval=0x80000000 size=0x0 flags=0x24 -> 0x8876086A",
                          "CreateDevice count=1 format=21 swap=1 interval=0x80000000 size=0x0 flags=0x24 -> 0x8876086A",
                          "CreateDevice count=1 format=25 swap=1 interval=0x80000000 size=0x0 flags=0x24 -> 0x8876086A",
                          "CreateDevice count=1 format=25 swap=3 interval=0x80000000 size=0x0 flags=0x24 -> 0x8876017C"));
  EXPECT_THAT(Traced(), ElementsAre(L"3 fail try Double Buffer: -2005530518", L"3 try single buffer",
                                    L"3 fail try: -2005530518", L"3 try D3DFMT_A1R5G5B5",
                                    L"3 fail try D3DSWAPEFFECT_DISCARD: -2005530518", L"3 try D3DSWAPEFFECT_COPY",
                                    L"4 <D3DERROR> Create D3DDevice fail: -2005532292"));
  EXPECT_EQ(core.GetD3DDevice(), nullptr);
  EXPECT_EQ((std::vector{core.BeginPaint(), core.EndPaint(), core.ResetD3DSize({800, 600})}),
            (std::vector<HRESULT>{E_FAIL, E_FAIL, 1}));
}

TEST_F(FakeCoreTest, AFailedSpriteKeepsTheDeviceAndTheNextResetMakesIt) {
  gpu->FailNext(fake::Call::CreateSprite, E_OUTOFMEMORY);
  EXPECT_EQ(core._InitD3D(), E_OUTOFMEMORY);
  EXPECT_THAT(Traced(), ElementsAre(kCapsLine, L"4 <D3DERROR> Create sprite fail: -2147024882"));
  EXPECT_TRUE(core.GetD3DDevice() && !core.GetD3DXSprite());
  EXPECT_EQ(core.BeginPaint(), E_FAIL);
  ASSERT_EQ(core.ResetD3DSize({320, 200}), S_OK);
  EXPECT_TRUE(core.GetD3DXSprite() && core.BeginPaint() == S_OK);
}

TEST_F(FakeCoreTest, NothingIsAttemptedWithoutTheProcessObjectOrAWindow) {
  DXCore unbound;
  EXPECT_EQ(unbound.Init(), E_FAIL);
  DXCore::ExitInstance();
  EXPECT_EQ(DXCore::GetD3DObject(), nullptr);
  EXPECT_EQ((std::vector{core._InitD3D(), DXCore::InitInstance(nullptr)}), (std::vector<HRESULT>{E_FAIL, E_FAIL}));
  EXPECT_TRUE(gpu->Calls().empty() && trace.Lines().empty());
}

TEST_F(FakeCoreTest, CapsAreZeroedAndCopiedFromTheDevice) {
  D3DCAPS9 caps;
  caps.MaxTextureWidth = 77;
  EXPECT_EQ(core.GetD3DDeviceCaps(&caps), E_FAIL);
  EXPECT_EQ(caps.MaxTextureWidth, 0u);
  MakeReady();
  gpu->caps.MaxTextureWidth = 8192;
  ASSERT_EQ(core.GetD3DDeviceCaps(&caps), S_OK);
  EXPECT_EQ(caps.MaxTextureWidth, 8192u);
  gpu->FailNext(fake::Call::GetDeviceCaps, D3DERR_INVALIDCALL);
  EXPECT_EQ(core.GetD3DDeviceCaps(&caps), E_FAIL);
}

TEST_F(FakeCoreTest, CleanUpDropsDeviceSpriteAndFonts) {
  MakeReady();
  ASSERT_EQ(core.BeginPaint(), S_OK);
  ASSERT_EQ(core.DrawTextW(L"a", -1, 0, 0, 10, 10, 12, 400, 0, 0, L"SimSun", 0, 0xFF000000), S_OK);
  ASSERT_EQ(core.EndPaint(), S_OK);
  core.CleanUp();
  EXPECT_EQ(core.GetD3DDevice(), nullptr);
  EXPECT_EQ(core.GetD3DXSprite(), nullptr);
  EXPECT_EQ(core.BeginPaint(), E_FAIL);
  // A new device makes its own font again.
  ASSERT_EQ(core._InitD3D(), S_OK);
  ASSERT_EQ(core.BeginPaint(), S_OK);
  ASSERT_EQ(core.DrawTextW(L"a", -1, 0, 0, 10, 10, 12, 400, 0, 0, L"SimSun", 0, 0xFF000000), S_OK);
  EXPECT_EQ(gpu->Count(fake::Call::CreateFont), 2);
}
