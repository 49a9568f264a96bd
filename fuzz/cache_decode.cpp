// Arbitrary bytes through the picture cache's decode path: format detection,
// the header and pixel-limit checks, decoding, tiling and the frames of
// animated pictures, then a release that keeps the decoded picture and a
// re-upload. The cache reads files, so the bytes go into one scratch file.
// Textures go to the test double with a small adapter, so that even small
// pictures are cut into several tiles.

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "platform/Paths.h"
#include "render/PictureDecoder.h"
#include <karvelui/ResourceCache.h>
#include "support/FakeDirect3D.h"

namespace {

using namespace KarvelUI;

// Small enough that a header claiming a huge picture is refused quickly.
constexpr std::uint64_t kFuzzMaxPixels = 4ull * 1000 * 1000;
constexpr long kMaxFrames = 32;

struct Harness {
  std::shared_ptr<fake::FakeGpu> gpu = std::make_shared<fake::FakeGpu>();
  RefPtr<IDirect3DDevice9> device;
  std::string file = (std::filesystem::temp_directory_path() / ("karvel-fuzz-" + std::to_string(getpid()))).string();
  CString path = FromNativePath(file);

  Harness() {
    gpu->caps.MaxTextureWidth = gpu->caps.MaxTextureHeight = 256;  // tiles of 64 x 64
    SetMaxPicturePixels(kFuzzMaxPixels);
    D3DPRESENT_PARAMETERS params{};
    fake::FakeDirect3D::Create(gpu)->CreateDevice(0, D3DDEVTYPE_HAL, reinterpret_cast<HWND>(0x1000), 0, &params,
                                                   device.Receive());
  }
  ~Harness() { std::filesystem::remove(file); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Harness harness;
  {
    std::ofstream out(harness.file, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  IDirect3DDevice9* device = harness.device.Get();
  ResourceCache cache;
  if (tagTextureItem* item = cache.GetTextureItem(harness.path, device)) {
    for (long frame = 1; frame < std::min<long>(item->nFrameCount, kMaxFrames); ++frame)
      if (!cache.GetFrameByIndex(item, frame, device)) break;
    cache.ReleaseTexture(harness.path, device, 1);
    cache.GetTextureItem(harness.path, device);
  }
  harness.gpu->ClearLog();
  return 0;
}
