// Frame time of a photo-viewer window: 1280 x 800 holding one 6000 x 4000
// picture in tiles (a quarter of the maximum texture size each), a strip of
// 30 thumbnails and 20 labels, presented and finished every frame.

#include <benchmark/benchmark.h>
#include <epoxy/gl.h>

#include <algorithm>

#include <karvelui/WinConstants.h>
#include "render_support.h"

using namespace KarvelUI;
using namespace KarvelBench;

namespace {

int PowerOfTwoAtLeast(int value) {
  int result = 1;
  while (result < value) result <<= 1;
  return result;
}

// A ready picture cut into tiles the way the cache cuts it.
void MakePicture(tagTextureItem& item, IDirect3DDevice9* device, int width, int height) {
  D3DCAPS9 caps{};
  device->GetDeviceCaps(&caps);
  const int tileW = static_cast<int>(caps.MaxTextureWidth / 4), tileH = static_cast<int>(caps.MaxTextureHeight / 4);
  item.nTileCols = (width + tileW - 1) / tileW;
  item.nTileRows = (height + tileH - 1) / tileH;
  item.pTiles = std::make_unique<TextureTile[]>(static_cast<size_t>(item.nTileCols) * item.nTileRows);
  for (int row = 0; row < item.nTileRows; ++row) {
    for (int column = 0; column < item.nTileCols; ++column) {
      const int left = column * tileW, top = row * tileH;
      const int w = std::min(tileW, width - left), h = std::min(tileH, height - top);
      TextureTile* tile = item.Tile(column, row);
      tile->rect = RECT(left, top, left + w, top + h);
      tile->pTexture = MakeTexture(device, w == tileW ? w : PowerOfTwoAtLeast(w), h == tileH ? h : PowerOfTwoAtLeast(h),
                                   [left, top](int x, int y) {
                                     return 0xFF000000u | ((left + x) / 24 & 0xFF) << 16 | ((top + y) / 16 & 0xFF) << 8;
                                   });
    }
  }
  item.TextureInfo.Width = static_cast<UINT>(width);
  item.TextureInfo.Height = static_cast<UINT>(height);
  item.nState = TEXTURE_STATE_READY_FILE;
}

void BM_ViewerFrame(benchmark::State& state) {
  BenchWindow window;
  if (!window.Open(1280, 800)) {
    state.SkipWithError("no GL device");
    return;
  }
  DXCore& core = window.core;
  IDirect3DDevice9* device = core.GetD3DDevice();
  tagTextureItem picture;
  MakePicture(picture, device, 6000, 4000);
  std::vector<RefPtr<IDirect3DTexture9>> thumbnails;
  for (int i = 0; i < 30; ++i)
    thumbnails.push_back(MakeTexture(device, 160, 120, [i](int x, int y) {
      return 0xFF000000u | (i * 8u) << 16 | static_cast<DWORD>(x) << 8 | static_cast<DWORD>(y);
    }));

  auto frame = [&] {
    core.BeginPaint();
    core.CleanScreen(0xFF202020);
    core.SetTransform(nullptr, nullptr, nullptr, 0, nullptr);
    const CRect view(140, 40, 1140, 707);  // 6000 x 4000 fitted
    core.DrawImage(&picture, &view, nullptr, nullptr, 0, 0xFFFFFFFF);
    core.SetTransform(nullptr, nullptr, nullptr, 0, nullptr);
    for (int i = 0; i < 30; ++i) {
      const D3DXVECTOR3 at{static_cast<float>(10 + (i % 15) * 84), static_cast<float>(712 + (i / 15) * 44), 0};
      const RECT part(0, 0, 80, 40);
      core.DrawImage(thumbnails[i].Get(), &part, nullptr, &at, 0xFFFFFFFF);
    }
    for (int i = 0; i < 20; ++i)
      core.DrawTextW(L"IMG_2041.JPG  3.2 MB", -1, 8, 10 + i * 63, 60, 24, 12, FW_NORMAL, 0, 0, L"SimSun",
                     DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS, 0xFFE0E0E0);
    core.EndPaint();
    glFinish();
  };
  frame();  // uploads every texture once
  for (auto _ : state) frame();
}
BENCHMARK(BM_ViewerFrame)->Unit(benchmark::kMillisecond)->MinTime(2.0)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
