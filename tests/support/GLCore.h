#pragma once

// A DXCore drawing for real: a 160 x 100 off-screen window with the GL
// device, a paint begun on a black back buffer, and the frame read back.

#include <karvelui/DXCore.h>
#include "support/GLTesting.h"

namespace KarvelTest {

class GLCoreTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(DXCore::InitInstance(), S_OK);
    ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 160, 100)));
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
  RefPtr<IDirect3DTexture9> Texture(int w, int h, const Texel& texel) {
    return MakeTexture(core.GetD3DDevice(), w, h, texel);
  }

  CWnd wnd;
  DXCore core;
};

}  // namespace KarvelTest
