#pragma once

// Shared set-up of the render benchmarks: an off-screen window with a
// render device over the OpenGL backend, and textures made in memory.

#include <cstdio>
#include <functional>

#include <karvelui/Wnd.h>
#include <karvelui/DXCore.h>

namespace KarvelBench {

using namespace KarvelUI;

// The process object lives as long as the program.
inline bool InitRenderer() {
  static const bool ready = DXCore::InitInstance() == S_OK;
  return ready;
}

struct BenchWindow {
  CWnd wnd;
  DXCore core;

  bool Open(int width, int height) {
    if (!InitRenderer()) return false;
    WNDCLASSW cls;
    cls.lpszClassName = L"KarvelBenchWindow";
    AfxRegisterClass(&cls);
    if (!wnd.CreateEx(0, cls.lpszClassName, L"bench", WS_POPUP, CRect(0, 0, width, height), nullptr, 0)) return false;
    core.SetWindow(wnd.m_hWnd);
    return core.Init() == S_OK;
  }
};

inline RefPtr<IDirect3DTexture9> MakeTexture(IDirect3DDevice9* device, int width, int height,
                                             const std::function<DWORD(int, int)>& texel) {
  RefPtr<IDirect3DTexture9> texture;
  if (FAILED(device->CreateTexture(width, height, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, texture.Receive(), nullptr)))
    return {};
  D3DLOCKED_RECT locked{};
  if (FAILED(texture->LockRect(0, &locked, nullptr, 0))) return {};
  for (int y = 0; y < height; ++y) {
    auto* row = reinterpret_cast<DWORD*>(static_cast<BYTE*>(locked.pBits) + static_cast<size_t>(y) * locked.Pitch);
    for (int x = 0; x < width; ++x) row[x] = texel(x, y);
  }
  texture->UnlockRect(0);
  return texture;
}

}  // namespace KarvelBench
