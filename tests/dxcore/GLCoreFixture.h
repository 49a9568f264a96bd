#pragma once

// A DXCore over the OpenGL backend in a 160 x 100 off-screen window, in a
// frame cleared to black; EndAndRead closes the frame and reads it back.

#include "gpu/GpuTestSupport.h"
#include <karvelui/DXCore.h>

namespace KarvelTest {

using namespace KarvelUI;

inline constexpr DWORD kBlack = 0xFF000000, kWhite = 0xFFFFFFFF, kRed = 0xFFFF0000, kGreen = 0xFF00FF00;

class GLCoreTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(DXCore::InitInstance(), S_OK);
    ASSERT_TRUE(OpenWindow(wnd, 160, 100));
    core.SetWindow(wnd.m_hWnd);
    ASSERT_EQ(core.Init(), S_OK);
    ASSERT_EQ(core.BeginPaint(), S_OK);
    ASSERT_EQ(core.CleanScreen(kBlack), S_OK);
  }
  void TearDown() override {
    core.CleanUp();
    DXCore::ExitInstance();
  }
  Frame EndAndRead() {
    EXPECT_EQ(core.EndPaint(), S_OK);
    return ReadBack(core.GetD3DDevice());
  }
  RefPtr<IDirect3DTexture9> Texture(int w, int h, const std::function<DWORD(int, int)>& texel) {
    return MakeTexture(core.GetD3DDevice(), w, h, texel);
  }

  CWnd wnd;
  DXCore core;
};

}  // namespace KarvelTest
