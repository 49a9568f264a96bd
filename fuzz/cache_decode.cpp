// Arbitrary bytes through the picture cache's decode path, from memory:
// format detection, the header and pixel-limit checks, decoding, tiling and
// the frames of animated pictures, then a release that keeps the decoded
// picture and a re-upload. Textures go to the test double with a small
// adapter, so that even small pictures are cut into several tiles.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "render/PictureDecoder.h"
#include <karvelui/ResourceCache.h>
#include "support/FakeDirect3D.h"

namespace {

using namespace KarvelUI;

// Small enough that a header claiming a huge picture is refused quickly.
constexpr std::uint64_t kFuzzMaxPixels = 4ull * 1000 * 1000;
constexpr long kMaxFrames = 32;
// No file of this name exists: a re-upload that had to read it would fail.
const wchar_t kKey[] = L"\\fuzz\\input";

struct Harness {
  std::shared_ptr<fake::FakeGpu> gpu = std::make_shared<fake::FakeGpu>();
  RefPtr<IDirect3DDevice9> device;

  Harness() {
    gpu->caps.MaxTextureWidth = gpu->caps.MaxTextureHeight = 256;  // tiles of 64 x 64
    SetMaxPicturePixels(kFuzzMaxPixels);
    D3DPRESENT_PARAMETERS params{};
    fake::FakeDirect3D::Create(gpu)->CreateDevice(0, D3DDEVTYPE_HAL, reinterpret_cast<HWND>(0x1000), 0, &params,
                                                   device.Receive());
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Harness harness;
  IDirect3DDevice9* device = harness.device.Get();
  ResourceCache cache;
  if (tagTextureItem* item = cache.LoadTextureFromFileImage(kKey, device, data, size, 0)) {
    for (long frame = 1; frame < std::min<long>(item->nFrameCount, kMaxFrames); ++frame)
      if (!cache.GetFrameByIndex(item, frame, device)) break;
    cache.ReleaseTexture(kKey, device, 1);
    cache.GetTextureItem(kKey, device);
  }
  harness.gpu->ClearLog();
  return 0;
}
