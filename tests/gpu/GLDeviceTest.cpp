// The OpenGL device: creation from present parameters, clears, presents,
// resets (resize and recovery of a lost context) and back-buffer formats.

#include "gpu/GpuTestSupport.h"
#include "render/gpu/gl/GLDevice.h"

using namespace KarvelUI;
using namespace KarvelTest;

TEST(GLDevice, TakesTheWindowSizeAndReportsCaps) {
  GLWindow w;
  ASSERT_EQ(w.Open(96, 64), S_OK);
  EXPECT_EQ(w.params.BackBufferWidth, 96u);
  EXPECT_EQ(w.params.BackBufferHeight, 64u);
  D3DCAPS9 caps{};
  ASSERT_EQ(w.device->GetDeviceCaps(&caps), S_OK);
  EXPECT_GE(caps.MaxTextureWidth, 2048u);
  EXPECT_EQ(caps.MaxTextureWidth, caps.MaxTextureHeight);

  // Texture memory in use is no longer available, in whole megabytes.
  const UINT before = w.device->GetAvailableTextureMem();
  EXPECT_EQ(before % (1u << 20), 0u);
  RefPtr<IDirect3DTexture9> big = SolidTexture(w.device.Get(), 2048, 1024, 0);  // 8 MB
  ASSERT_TRUE(big);
  EXPECT_EQ(w.device->GetAvailableTextureMem(), before - (8u << 20));
}

TEST(GLDevice, RefusesParametersItCannotHonour) {
  CWnd wnd;
  ASSERT_TRUE(OpenWindow(wnd, 32, 32));
  auto d3d = RefPtr<IDirect3D9>::Adopt(Direct3DCreate9(D3D_SDK_VERSION));
  ASSERT_TRUE(d3d);
  EXPECT_EQ(Direct3DCreate9(31), nullptr);
  RefPtr<IDirect3DDevice9> device;

  D3DPRESENT_PARAMETERS p = WindowedParameters();
  p.BackBufferCount = 4;
  EXPECT_EQ(d3d->CreateDevice(0, D3DDEVTYPE_HAL, wnd.m_hWnd, 0, &p, device.Receive()), D3DERR_INVALIDCALL);
  p = WindowedParameters(static_cast<D3DFORMAT>(50));
  EXPECT_EQ(d3d->CreateDevice(0, D3DDEVTYPE_HAL, wnd.m_hWnd, 0, &p, device.Receive()), D3DERR_NOTAVAILABLE);
  p = WindowedParameters();
  p.Windowed = FALSE;
  EXPECT_EQ(d3d->CreateDevice(0, D3DDEVTYPE_HAL, wnd.m_hWnd, 0, &p, device.Receive()), D3DERR_NOTAVAILABLE);
  p = WindowedParameters();
  EXPECT_EQ(d3d->CreateDevice(0, D3DDEVTYPE_HAL, nullptr, 0, &p, device.Receive()), D3DERR_INVALIDCALL);
  EXPECT_FALSE(device);

  // Every later step of the caller's fallback chain is a device this backend
  // makes; two back buffers need a double-buffered window surface, which
  // the off-screen driver does not have.
  p = WindowedParameters();
  p.BackBufferCount = 2;
  const HRESULT two = d3d->CreateDevice(0, D3DDEVTYPE_HAL, wnd.m_hWnd, 0x24, &p, device.Receive());
  EXPECT_TRUE(two == S_OK || two == D3DERR_NOTAVAILABLE) << two;
  for (D3DFORMAT format : {D3DFMT_A8R8G8B8, D3DFMT_A1R5G5B5}) {
    for (D3DSWAPEFFECT swap : {D3DSWAPEFFECT_DISCARD, D3DSWAPEFFECT_COPY}) {
      p = WindowedParameters(format);
      p.SwapEffect = swap;
      EXPECT_EQ(d3d->CreateDevice(0, D3DDEVTYPE_HAL, wnd.m_hWnd, 0x24, &p, device.Receive()), S_OK)
          << format << " " << swap;
      device.Reset();
    }
  }
}

TEST(GLDevice, ClearsTheBackBufferOrRectanglesOfIt) {
  GLWindow w;
  ASSERT_EQ(w.Open(40, 30), S_OK);
  ASSERT_EQ(w.device->Clear(0, nullptr, D3DCLEAR_TARGET, 0xFF102030, 1.0f, 0), S_OK);
  const D3DRECT box{10, 5, 20, 25};
  ASSERT_EQ(w.device->Clear(1, &box, D3DCLEAR_TARGET, 0xFFFF0000, 1.0f, 0), S_OK);
  EXPECT_EQ(w.device->Clear(0, nullptr, D3DCLEAR_ZBUFFER, 0, 1.0f, 0), D3DERR_INVALIDCALL);

  const Frame frame = ReadBack(w.device.Get());
  ASSERT_EQ(frame.size, CSize(40, 30));
  EXPECT_EQ(frame.At(0, 0), 0xFF102030u);
  EXPECT_EQ(frame.At(10, 5), 0xFFFF0000u);   // top-left of the box: rows run from the top
  EXPECT_EQ(frame.At(19, 24), 0xFFFF0000u);
  EXPECT_EQ(frame.At(20, 24), 0xFF102030u);
  EXPECT_EQ(frame.At(19, 25), 0xFF102030u);
}

TEST(GLDevice, ScenesNestNeitherWayAndPresentKeepsTheBackBuffer) {
  GLWindow w;
  ASSERT_EQ(w.Open(16, 16), S_OK);
  EXPECT_EQ(w.device->EndScene(), D3DERR_INVALIDCALL);
  ASSERT_EQ(w.device->BeginScene(), S_OK);
  EXPECT_EQ(w.device->BeginScene(), D3DERR_INVALIDCALL);
  w.device->Clear(0, nullptr, D3DCLEAR_TARGET, 0xFF00FF00, 1.0f, 0);
  ASSERT_EQ(w.device->EndScene(), S_OK);
  ASSERT_EQ(w.device->Present(nullptr, nullptr, nullptr, nullptr), S_OK);
  EXPECT_EQ(ReadBack(w.device.Get()).At(8, 8), 0xFF00FF00u);
}

TEST(GLDevice, SixteenBitBackBufferKeepsFiveBitsPerChannel) {
  GLWindow w;
  ASSERT_EQ(w.Open(8, 8, WindowedParameters(D3DFMT_A1R5G5B5)), S_OK);
  w.device->Clear(0, nullptr, D3DCLEAR_TARGET, 0xFF0F80FF, 1.0f, 0);
  const DWORD pixel = ReadBack(w.device.Get()).At(2, 2);
  // 0x0F and 0x80 are not five-bit values: they come back rounded to them.
  EXPECT_NE(pixel, 0xFF0F80FFu);
  EXPECT_TRUE(ColorNear(pixel, 0xFF0F80FF, 5));
}

TEST(GLDevice, ResetResizesTheBackBufferAndKeepsTextures) {
  GLWindow w;
  ASSERT_EQ(w.Open(32, 32), S_OK);
  RefPtr<IDirect3DTexture9> texture = SolidTexture(w.device.Get(), 4, 4, 0xFF3366CC);
  ASSERT_TRUE(texture);

  w.wnd.MoveWindow(0, 0, 50, 40);
  D3DPRESENT_PARAMETERS p = w.params;
  p.BackBufferWidth = 50;
  p.BackBufferHeight = 40;
  ASSERT_EQ(w.device->Reset(&p), S_OK);

  RefPtr<ID3DXSprite> sprite;
  ASSERT_EQ(D3DXCreateSprite(w.device.Get(), sprite.Receive()), S_OK);
  // A sprite holds drawing state of the device: no reset while one exists.
  EXPECT_EQ(w.device->Reset(&p), D3DERR_INVALIDCALL);
  sprite->Begin(D3DXSPRITE_ALPHABLEND);
  const D3DXVECTOR3 at{46, 36, 0};
  sprite->Draw(texture.Get(), nullptr, nullptr, &at, 0xFFFFFFFF);
  sprite->End();
  const Frame frame = ReadBack(w.device.Get());
  ASSERT_EQ(frame.size, CSize(50, 40));
  EXPECT_EQ(frame.At(49, 39), 0xFF3366CCu);
}

TEST(GLDevice, ALostContextIsReportedUntilResetAndTexturesComeBack) {
  GLWindow w;
  ASSERT_EQ(w.Open(16, 16), S_OK);
  RefPtr<IDirect3DTexture9> texture = SolidTexture(w.device.Get(), 2, 2, 0xFFAA5500);
  auto drawTexture = [&] {
    RefPtr<ID3DXSprite> sprite;
    ASSERT_EQ(D3DXCreateSprite(w.device.Get(), sprite.Receive()), S_OK);
    sprite->Begin(D3DXSPRITE_ALPHABLEND);
    sprite->Draw(texture.Get(), nullptr, nullptr, nullptr, 0xFFFFFFFF);
    sprite->End();
  };
  drawTexture();  // uploads into the first context

  static_cast<gl::GLDevice*>(w.device.Get())->SimulateContextLoss();
  EXPECT_EQ(w.device->Present(nullptr, nullptr, nullptr, nullptr), D3DERR_DEVICELOST);
  EXPECT_EQ(w.device->Present(nullptr, nullptr, nullptr, nullptr), D3DERR_DEVICELOST);

  D3DPRESENT_PARAMETERS p = w.params;
  ASSERT_EQ(w.device->Reset(&p), S_OK);
  w.device->Clear(0, nullptr, D3DCLEAR_TARGET, 0xFF000000, 1.0f, 0);
  drawTexture();  // a new context: uploaded again from the CPU copy
  EXPECT_EQ(ReadBack(w.device.Get()).At(1, 1), 0xFFAA5500u);
  EXPECT_EQ(w.device->Present(nullptr, nullptr, nullptr, nullptr), S_OK);
}
