#pragma once

// The resource cache of a DXCore over the fault-injecting double: picture
// files written into a temporary folder, and the texels that tiles received.

#include <cstdint>
#include <tuple>
#include <string>
#include <vector>

#include "support/FakeCore.h"
#include "platform/Paths.h"
#include "render/PictureDecoder.h"
#include "support/PictureFiles.h"
#include "support/TempDir.h"

namespace KarvelTest {

// A colour per pixel that tells every pixel of a picture up to 4096 wide apart.
inline std::uint32_t Pattern(int x, int y) {
  return 0xFF000000u | (static_cast<std::uint32_t>(x & 0xFF) << 16) | (static_cast<std::uint32_t>(y & 0xFF) << 8) |
         static_cast<std::uint32_t>(((x >> 8) & 0x0F) | ((y >> 8) << 4));
}

inline PixelFunction Solid(std::uint32_t argb) {
  return [argb](int, int) { return argb; };
}

// The texel a cached picture holds for its pixel (x, y); 0xDEADBEEF when no
// tile covers it.
inline DWORD PictureTexel(const tagTextureItem* item, int x, int y) {
  for (int i = 0; i < item->nTileCols * item->nTileRows; ++i) {
    const TextureTile& tile = item->pTiles[i];
    if (!tile.rect.PtInRect(CPoint(x, y))) continue;
    const auto* texture = fake::FakeTexture::From(tile.pTexture.Get());
    return texture->Texels()[static_cast<size_t>(y - tile.rect.top) * texture->Desc().Width + (x - tile.rect.left)];
  }
  return 0xDEADBEEF;
}

class CacheTest : public FakeCoreTest {
 protected:
  void SetUp() override {
    FakeCoreTest::SetUp();
    MakeReady();
  }

  ResourceCache& Cache() { return *core.GetResourceCache(); }
  IDirect3DDevice9* Device() { return core.GetD3DDevice(); }

  // Writes the file below the temporary folder; its library path.
  CString WriteFile(const std::string& name, const std::string& bytes) {
    return FromNativePath(dir.Write(name, bytes).string());
  }
  CString WritePicture(const std::string& name, int format, int width, int height,
                       const PixelFunction& pixel = Pattern, int bitsPerPixel = 24) {
    return WriteFile(name, MakePicture(format, width, height, bitsPerPixel, pixel));
  }
  void RemoveFile(const CString& path) { std::filesystem::remove(ToNativePath(path)); }

  // The one line a failed decode of `path` leaves.
  std::vector<std::wstring> DecodeFailure(const CString& path) const {
    return {L"4 <ERROR> Decode Fail: " + path.str()};
  }

  TempDir dir;
};

}  // namespace KarvelTest
