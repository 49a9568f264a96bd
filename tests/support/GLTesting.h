#pragma once

// Drawing for real: an off-screen window with an OpenGL device and a sprite
// batch, textures filled by a function, and back-buffer pixels read back.

#include <functional>
#include <vector>

#include <karvelui/Direct3D.h>
#include "support/PictureFiles.h"
#include "support/WindowTesting.h"

namespace KarvelTest {

inline constexpr DWORD kBlack = 0xFF000000, kWhite = 0xFFFFFFFF, kRed = 0xFFFF0000, kGreen = 0xFF00FF00,
                       kBlue = 0xFF0000FF;

using Texel = std::function<DWORD(int x, int y)>;

struct Frame {
  std::vector<DWORD> pixels;
  CSize size;
  DWORD At(int x, int y) const { return pixels[static_cast<size_t>(y) * size.cx + x]; }
  // The smallest rectangle holding every pixel within `within` that differs from `background`.
  CRect InkBounds(DWORD background, const CRect& within) const {
    CRect bounds;
    for (int y = within.top; y < within.bottom; ++y)
      for (int x = within.left; x < within.right; ++x)
        if (At(x, y) != background) bounds.UnionRect(bounds, CRect(x, y, x + 1, y + 1));
    return bounds;
  }
  CRect InkBounds(DWORD background) const { return InkBounds(background, CRect(0, 0, size.cx, size.cy)); }
};

inline Frame ReadBack(IDirect3DDevice9* device) {
  Frame frame;
  EXPECT_EQ(device->ReadBackBuffer(frame.pixels, frame.size), S_OK);
  return frame;
}

inline D3DPRESENT_PARAMETERS WindowedParameters(D3DFORMAT format = D3DFMT_A8R8G8B8) {
  D3DPRESENT_PARAMETERS params{};
  params.Windowed = TRUE;
  params.SwapEffect = D3DSWAPEFFECT_DISCARD;
  params.BackBufferCount = 1;
  params.BackBufferFormat = format;
  params.PresentationInterval = D3DPRESENT_INTERVAL_IMMEDIATE;
  return params;
}

inline RefPtr<IDirect3DTexture9> MakeTexture(IDirect3DDevice9* device, int width, int height, const Texel& texel,
                                             D3DFORMAT format = D3DFMT_A8R8G8B8) {
  RefPtr<IDirect3DTexture9> texture;
  D3DLOCKED_RECT locked{};
  if (FAILED(device->CreateTexture(width, height, 1, 0, format, D3DPOOL_MANAGED, texture.Receive(), nullptr)) ||
      FAILED(texture->LockRect(0, &locked, nullptr, 0)))
    return {};
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      reinterpret_cast<DWORD*>(static_cast<BYTE*>(locked.pBits) + y * locked.Pitch)[x] = texel(x, y);
  texture->UnlockRect(0);
  return texture;
}

// A window with an OpenGL device drawing into it, and (after OpenForDrawing)
// a sprite batch over a cleared back buffer.
struct GLWindow {
  CWnd wnd;
  RefPtr<IDirect3D9> d3d;
  RefPtr<IDirect3DDevice9> device;
  RefPtr<ID3DXSprite> sprite;
  D3DPRESENT_PARAMETERS params{};

  HRESULT Open(int width, int height, D3DPRESENT_PARAMETERS wanted = WindowedParameters()) {
    if (!MakeWindow(wnd, CRect(0, 0, width, height))) return E_FAIL;
    d3d = RefPtr<IDirect3D9>::Adopt(Direct3DCreate9(D3D_SDK_VERSION));
    if (!d3d) return E_FAIL;
    params = wanted;
    return d3d->CreateDevice(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, wnd.m_hWnd, 0, &params, device.Receive());
  }
  void OpenForDrawing(int width, int height, DWORD background = kBlack) {
    ASSERT_EQ(Open(width, height), S_OK);
    ASSERT_EQ(D3DXCreateSprite(device.Get(), sprite.Receive()), S_OK);
    Clear(background);
  }
  RefPtr<IDirect3DTexture9> Texture(int width, int height, const Texel& texel, D3DFORMAT format = D3DFMT_A8R8G8B8) {
    return MakeTexture(device.Get(), width, height, texel, format);
  }
  RefPtr<IDirect3DTexture9> Solid(int width, int height, DWORD argb) {
    return Texture(width, height, [argb](int, int) { return argb; });
  }
  void Clear(DWORD colour) { device->Clear(0, nullptr, D3DCLEAR_TARGET, colour, 1.0f, 0); }
  void Draw(IDirect3DTexture9* texture, float x, float y, DWORD colour = kWhite, const RECT* source = nullptr,
            const D3DXVECTOR3* center = nullptr) {
    const D3DXVECTOR3 at{x, y, 0};
    EXPECT_EQ(sprite->Draw(texture, source, center, &at, colour), S_OK);
  }
  Frame Read() { return ReadBack(device.Get()); }
};

}  // namespace KarvelTest
