// The OpenGL device: creation from present parameters, clears, scenes,
// resets (resize and recovery of a lost context) and back-buffer formats.

#include <tuple>

#include "render/gpu/gl/GLDevice.h"
#include "support/GLTesting.h"

using namespace KarvelUI;
using namespace KarvelTest;

TEST(GLDevice, TakesTheWindowSizeAndReportsCapsAndFreeTextureMemory) {
  GLWindow w;
  ASSERT_EQ(w.Open(96, 64), S_OK);
  EXPECT_EQ(CSize(w.params.BackBufferWidth, w.params.BackBufferHeight), CSize(96, 64));
  D3DCAPS9 caps{};
  ASSERT_EQ(w.device->GetDeviceCaps(&caps), S_OK);
  EXPECT_TRUE(caps.MaxTextureWidth >= 2048u && caps.MaxTextureWidth == caps.MaxTextureHeight) << caps.MaxTextureWidth;
  // Texture memory in use is no longer available, in whole megabytes.
  const UINT before = w.device->GetAvailableTextureMem();
  EXPECT_EQ(before % (1u << 20), 0u);
  RefPtr<IDirect3DTexture9> big = MakeTexture(w.device.Get(), 2048, 1024, [](int, int) { return 0u; });  // 8 MB
  ASSERT_TRUE(big);
  EXPECT_EQ(w.device->GetAvailableTextureMem(), before - (8u << 20));
}

TEST(GLDevice, RefusesParametersItCannotHonourAndMakesEveryFallbackDevice) {
  CWnd wnd;
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 32, 32)));
  auto d3d = RefPtr<IDirect3D9>::Adopt(Direct3DCreate9(D3D_SDK_VERSION));
  ASSERT_TRUE(d3d);
  EXPECT_EQ(Direct3DCreate9(31), nullptr);
  const struct {
    const char* name;
    void (*change)(D3DPRESENT_PARAMETERS&);
    HWND window;
    HRESULT expected;
  } cases[] = {
      {"four back buffers", [](D3DPRESENT_PARAMETERS& p) { p.BackBufferCount = 4; }, wnd.m_hWnd, D3DERR_INVALIDCALL},
      {"unknown format", [](D3DPRESENT_PARAMETERS& p) { p.BackBufferFormat = static_cast<D3DFORMAT>(50); }, wnd.m_hWnd,
       D3DERR_NOTAVAILABLE},
      {"full screen", [](D3DPRESENT_PARAMETERS& p) { p.Windowed = FALSE; }, wnd.m_hWnd, D3DERR_NOTAVAILABLE},
      {"no window", [](D3DPRESENT_PARAMETERS&) {}, nullptr, D3DERR_INVALIDCALL},
      // The caller's fallback chain: 16 bits, then a copying swap.
      {"sixteen bits", [](D3DPRESENT_PARAMETERS& p) { p.BackBufferFormat = D3DFMT_A1R5G5B5; }, wnd.m_hWnd, S_OK},
      {"sixteen bits copied",
       [](D3DPRESENT_PARAMETERS& p) {
         p.BackBufferFormat = D3DFMT_A1R5G5B5;
         p.SwapEffect = D3DSWAPEFFECT_COPY;
       },
       wnd.m_hWnd, S_OK},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    D3DPRESENT_PARAMETERS p = WindowedParameters();
    c.change(p);
    RefPtr<IDirect3DDevice9> device;
    EXPECT_EQ(d3d->CreateDevice(0, D3DDEVTYPE_HAL, c.window, 0x24, &p, device.Receive()), c.expected);
    EXPECT_EQ(device != nullptr, c.expected == S_OK);
  }
  // Two back buffers need a double-buffered window surface, which the
  // off-screen driver may lack: made, or refused as not available.
  D3DPRESENT_PARAMETERS p = WindowedParameters();
  p.BackBufferCount = 2;
  RefPtr<IDirect3DDevice9> device;
  const HRESULT two = d3d->CreateDevice(0, D3DDEVTYPE_HAL, wnd.m_hWnd, 0x24, &p, device.Receive());
  EXPECT_TRUE(two == S_OK || two == D3DERR_NOTAVAILABLE) << two;
}

TEST(GLDevice, ClearsRectanglesFromTheTopAndScenesNestNeitherWay) {
  GLWindow w;
  ASSERT_EQ(w.Open(40, 30), S_OK);
  EXPECT_EQ(w.device->EndScene(), D3DERR_INVALIDCALL);
  ASSERT_EQ(w.device->BeginScene(), S_OK);
  EXPECT_EQ(w.device->BeginScene(), D3DERR_INVALIDCALL);
  w.Clear(0xFF102030);
  const D3DRECT box{10, 5, 20, 25};
  ASSERT_EQ(w.device->Clear(1, &box, D3DCLEAR_TARGET, kRed, 1.0f, 0), S_OK);
  EXPECT_EQ(w.device->Clear(0, nullptr, D3DCLEAR_ZBUFFER, 0, 1.0f, 0), D3DERR_INVALIDCALL);
  ASSERT_EQ(w.device->EndScene(), S_OK);
  ASSERT_EQ(w.device->Present(nullptr, nullptr, nullptr, nullptr), S_OK);
  const Frame frame = w.Read();  // presenting keeps the back buffer
  ASSERT_EQ(frame.size, CSize(40, 30));
  EXPECT_EQ(frame.InkBounds(0xFF102030), CRect(10, 5, 20, 25));
  EXPECT_EQ(std::make_tuple(frame.At(0, 0), frame.At(10, 5)), std::make_tuple(0xFF102030u, kRed));
}

TEST(GLDevice, SixteenBitBackBufferKeepsFiveBitsPerChannel) {
  GLWindow w;
  ASSERT_EQ(w.Open(8, 8, WindowedParameters(D3DFMT_A1R5G5B5)), S_OK);
  w.Clear(0xFF0F80FF);
  const DWORD pixel = w.Read().At(2, 2);
  // 0x0F and 0x80 are not five-bit values: they come back rounded to them.
  EXPECT_TRUE(pixel != 0xFF0F80FFu && ColorNear(pixel, 0xFF0F80FF, 5)) << std::hex << pixel;
}

TEST(GLDevice, ResetResizesTheBackBufferKeepsTexturesAndIsRefusedWhileASpriteExists) {
  GLWindow w;
  ASSERT_EQ(w.Open(32, 32), S_OK);
  RefPtr<IDirect3DTexture9> texture = w.Solid(4, 4, 0xFF3366CC);
  w.wnd.MoveWindow(0, 0, 50, 40);
  D3DPRESENT_PARAMETERS p = w.params;
  p.BackBufferWidth = 50;
  p.BackBufferHeight = 40;
  ASSERT_EQ(w.device->Reset(&p), S_OK);
  ASSERT_EQ(D3DXCreateSprite(w.device.Get(), w.sprite.Receive()), S_OK);
  EXPECT_EQ(w.device->Reset(&p), D3DERR_INVALIDCALL);
  w.sprite->Begin(D3DXSPRITE_ALPHABLEND);
  w.Draw(texture.Get(), 46, 36);
  w.sprite->End();
  const Frame frame = w.Read();
  ASSERT_EQ(frame.size, CSize(50, 40));
  EXPECT_EQ(frame.At(49, 39), 0xFF3366CCu);
}

TEST(GLDevice, ALostContextIsReportedUntilResetAndTexturesComeBack) {
  GLWindow w;
  ASSERT_EQ(w.Open(16, 16), S_OK);
  RefPtr<IDirect3DTexture9> texture = w.Solid(2, 2, 0xFFAA5500);
  auto drawTexture = [&] {
    ASSERT_EQ(D3DXCreateSprite(w.device.Get(), w.sprite.Receive()), S_OK);
    w.sprite->Begin(D3DXSPRITE_ALPHABLEND);
    w.Draw(texture.Get(), 0, 0);
    w.sprite->End();
    w.sprite.Reset();
  };
  drawTexture();  // uploads into the first context
  static_cast<gl::GLDevice*>(w.device.Get())->SimulateContextLoss();
  for (int again = 0; again < 2; ++again)
    EXPECT_EQ(w.device->Present(nullptr, nullptr, nullptr, nullptr), D3DERR_DEVICELOST) << again;
  D3DPRESENT_PARAMETERS p = w.params;
  ASSERT_EQ(w.device->Reset(&p), S_OK);
  w.Clear(kBlack);
  drawTexture();  // a new context: uploaded again from the CPU copy
  EXPECT_EQ(w.Read().At(1, 1), 0xFFAA5500u);
  EXPECT_EQ(w.device->Present(nullptr, nullptr, nullptr, nullptr), S_OK);
}
