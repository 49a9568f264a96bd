#pragma once

// Shared pieces of the GPU and render-device tests: an off-screen window
// with an OpenGL device, textures filled by a function, and back-buffer
// pixels read back for comparison.

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <vector>

#include <karvelui/Wnd.h>
#include <karvelui/Direct3D.h>

namespace KarvelTest {

using namespace KarvelUI;

inline const wchar_t* GpuTestClass() {
  static const wchar_t* name = L"KarvelGpuTestWindow";
  WNDCLASSW cls;
  cls.lpszClassName = name;
  AfxRegisterClass(&cls);
  return name;
}

// A hidden borderless window of the given client size.
inline bool OpenWindow(CWnd& wnd, int width, int height) {
  return wnd.CreateEx(0, GpuTestClass(), L"gpu test", WS_POPUP, CRect(0, 0, width, height), nullptr, 0) != FALSE;
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

// A window with an OpenGL device drawing into it.
struct GLWindow {
  CWnd wnd;
  RefPtr<IDirect3D9> d3d;
  RefPtr<IDirect3DDevice9> device;
  D3DPRESENT_PARAMETERS params{};

  HRESULT Open(int width, int height, D3DPRESENT_PARAMETERS wanted = WindowedParameters()) {
    if (!OpenWindow(wnd, width, height)) return E_FAIL;
    d3d = RefPtr<IDirect3D9>::Adopt(Direct3DCreate9(D3D_SDK_VERSION));
    if (!d3d) return E_FAIL;
    params = wanted;
    return d3d->CreateDevice(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, wnd.m_hWnd, 0, &params, device.Receive());
  }
};

inline RefPtr<IDirect3DTexture9> MakeTexture(IDirect3DDevice9* device, int width, int height,
                                             const std::function<DWORD(int x, int y)>& texel,
                                             D3DFORMAT format = D3DFMT_A8R8G8B8) {
  RefPtr<IDirect3DTexture9> texture;
  if (FAILED(device->CreateTexture(width, height, 1, 0, format, D3DPOOL_MANAGED, texture.Receive(), nullptr)))
    return {};
  D3DLOCKED_RECT locked{};
  if (FAILED(texture->LockRect(0, &locked, nullptr, 0))) return {};
  for (int y = 0; y < height; ++y) {
    auto* row = reinterpret_cast<DWORD*>(static_cast<BYTE*>(locked.pBits) + y * locked.Pitch);
    for (int x = 0; x < width; ++x) row[x] = texel(x, y);
  }
  texture->UnlockRect(0);
  return texture;
}

inline RefPtr<IDirect3DTexture9> SolidTexture(IDirect3DDevice9* device, int width, int height, DWORD argb) {
  return MakeTexture(device, width, height, [argb](int, int) { return argb; });
}

struct Frame {
  std::vector<DWORD> pixels;
  CSize size;
  DWORD At(int x, int y) const { return pixels[static_cast<size_t>(y) * size.cx + x]; }
  // The smallest rectangle holding every pixel that differs from `background`.
  CRect InkBounds(DWORD background, const CRect& within) const {
    CRect bounds(within.right, within.bottom, within.left, within.top);
    for (int y = within.top; y < within.bottom; ++y)
      for (int x = within.left; x < within.right; ++x)
        if (At(x, y) != background) {
          bounds.left = std::min<LONG>(bounds.left, x);
          bounds.top = std::min<LONG>(bounds.top, y);
          bounds.right = std::max<LONG>(bounds.right, x + 1);
          bounds.bottom = std::max<LONG>(bounds.bottom, y + 1);
        }
    return bounds.IsRectEmpty() ? CRect() : bounds;
  }
  CRect InkBounds(DWORD background) const { return InkBounds(background, CRect(0, 0, size.cx, size.cy)); }
};

inline Frame ReadBack(IDirect3DDevice9* device) {
  Frame frame;
  EXPECT_EQ(device->ReadBackBuffer(frame.pixels, frame.size), S_OK);
  return frame;
}

// Equal per channel within `tolerance`.
inline ::testing::AssertionResult ColorNear(DWORD actual, DWORD expected, int tolerance = 1) {
  for (int shift = 0; shift < 32; shift += 8) {
    const int a = static_cast<int>((actual >> shift) & 0xFF);
    const int e = static_cast<int>((expected >> shift) & 0xFF);
    if (std::abs(a - e) > tolerance)
      return ::testing::AssertionFailure() << std::hex << "0x" << actual << " is not near 0x" << expected;
  }
  return ::testing::AssertionSuccess();
}

}  // namespace KarvelTest
