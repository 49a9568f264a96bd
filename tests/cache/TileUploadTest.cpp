// Pixels into tile textures: the tile grid on the double's 4096 adapter,
// row order and depth expansion, and entries made from memory and from
// other textures.

#include <cstring>

#include "cache/CacheTestSupport.h"

using namespace KarvelUI;
using namespace KarvelTest;
using ::testing::ElementsAre;

namespace {

// Rows bottom-up, as a device-independent bitmap stores them.
std::vector<DWORD> BottomUpPixels(int width, int height, const PixelFunction& pixel) {
  std::vector<DWORD> pixels(static_cast<size_t>(width) * height);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) pixels[static_cast<size_t>(height - 1 - y) * width + x] = pixel(x, y);
  return pixels;
}

}  // namespace

TEST_F(CacheTest, APictureIsCutIntoQuarterTilesWithPowerOfTwoTexturesAtTheEdges) {
  std::vector<DWORD> pixels = BottomUpPixels(3000, 1500, Pattern);
  tagTextureItem* item = Cache().LoadTextureFromMemory(L"big", Device(), pixels.data(),
                                                      static_cast<int>(pixels.size() * 4), 3000, 1500, 32);
  ASSERT_NE(item, nullptr);
  ASSERT_EQ(std::make_tuple(item->nState, item->nTileCols, item->nTileRows),
            std::make_tuple(TEXTURE_STATE_READY_MEMORY, 3, 2));
  // 952 columns remain for the last column and 476 rows for the second row.
  const std::string full = "CreateTexture 1024x1024 levels=1 format=21 pool=1";
  const std::string half = "CreateTexture 1024x512 levels=1 format=21 pool=1";
  EXPECT_THAT(CallsStartingWith("CreateTexture"), ElementsAre(full, full, full, half, half, half));
  const CRect covered[] = {{0, 0, 1024, 1024},    {1024, 0, 2048, 1024},    {2048, 0, 3000, 1024},
                           {0, 1024, 1024, 1500}, {1024, 1024, 2048, 1500}, {2048, 1024, 3000, 1500}};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(item->pTiles[i].rect, covered[i]) << i;
  for (const CPoint p : {CPoint(0, 0), CPoint(1023, 1023), CPoint(1024, 0), CPoint(2048, 1024), CPoint(2999, 1499),
                         CPoint(1500, 1200), CPoint(0, 1499)})
    EXPECT_EQ(PictureTexel(item, p.x, p.y), Pattern(p.x, p.y)) << p.x << "," << p.y;
  // Past the picture's last column and row the edge textures repeat them
  // once (so filtering does not fade the edges) and stay empty beyond.
  const std::vector<DWORD> corner = fake::FakeTexture::From(item->Tile(2, 1)->pTexture.Get())->Texels();
  const auto at = [&](int x, int y) { return corner[static_cast<size_t>(y) * 1024 + x]; };
  EXPECT_EQ((std::vector{at(952, 475), at(951, 476), at(952, 476), at(953, 476), at(10, 477)}),
            (std::vector<DWORD>{Pattern(2999, 1499), Pattern(2999, 1499), Pattern(2999, 1499), 0, 0}));
  const D3DXIMAGE_INFO expected{3000, 1500, 0, 1, D3DFMT_A8R8G8B8, D3DRTYPE_TEXTURE, D3DXIFF_FORCE_DWORD};
  EXPECT_EQ(std::memcmp(&item->ImageInfo, &expected, sizeof expected), 0);
}

TEST_F(CacheTest, TwentyFourBitRowsGainOpaqueAlphaAndOtherDepthsAreRefused) {
  // Three rows of five pixels, each row padded to 16 bytes, bottom row first.
  std::vector<BYTE> rows(16 * 3, 0x55);
  for (int stored = 0; stored < 3; ++stored)
    for (int x = 0; x < 5; ++x) {
      BYTE* pixel = &rows[stored * 16 + x * 3];
      pixel[0] = static_cast<BYTE>(x), pixel[1] = static_cast<BYTE>(stored), pixel[2] = 0xC0;
    }
  tagTextureItem* item = Cache().LoadTextureFromMemory(L"rgb", Device(), rows.data(), 48, 5, 3, 24);
  ASSERT_NE(item, nullptr);
  // The top row is the last one stored.
  EXPECT_EQ(std::make_tuple(PictureTexel(item, 4, 0), PictureTexel(item, 0, 2)), std::make_tuple(0xFFC00204u, 0xFFC00000u));
  EXPECT_EQ((std::vector{Cache().LoadTextureFromMemory(L"grey", Device(), rows.data(), 48, 5, 3, 8),
                         Cache().LoadTextureFromMemory(L"short", Device(), rows.data(), 30, 5, 3, 32),
                         Cache().LoadTextureFromMemory(L"none", nullptr, rows.data(), 48, 5, 3, 24),
                         Cache().SearchTextureItem(L"grey", Device())}),
            std::vector<tagTextureItem*>(4, nullptr));

  // A ready entry is handed out again without a new upload.
  gpu->ClearLog();
  EXPECT_EQ(Cache().GetTextureItemFromMemory(L"rgb", Device(), rows.data(), 48, 5, 3, 24), item);
  EXPECT_EQ(gpu->Count(fake::Call::CreateTexture), 0);
}

TEST_F(CacheTest, ATextureIsCopiedRowsTopDownAndDescribedByTheCallersImageInformation) {
  RefPtr<IDirect3DTexture9> source;
  ASSERT_EQ(Device()->CreateTexture(8, 4, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, source.Receive(), nullptr), S_OK);
  D3DLOCKED_RECT locked{};
  ASSERT_EQ(source->LockRect(0, &locked, nullptr, 0), S_OK);
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 8; ++x)
      reinterpret_cast<DWORD*>(static_cast<BYTE*>(locked.pBits) + y * locked.Pitch)[x] = Pattern(x, y);
  source->UnlockRect(0);

  D3DSURFACE_DESC part{};
  source->GetLevelDesc(0, &part);
  part.Width = 6;  // only the left six columns
  D3DXIMAGE_INFO original{600, 400, 1, 1, D3DFMT_A8R8G8B8, D3DRTYPE_TEXTURE, D3DXIFF_JPG};
  tagTextureItem* item = Cache().LoadTextureFromTexture(L"copy", Device(), source.Get(), &part, &original);
  ASSERT_NE(item, nullptr);
  EXPECT_EQ(std::make_tuple(item->nState, item->ImageInfo.Width, item->ImageInfo.ImageFileFormat, item->TextureInfo.Width),
            std::make_tuple(TEXTURE_STATE_READY_MEMORY, 600u, D3DXIFF_JPG, 6u));
  EXPECT_EQ(std::make_tuple(PictureTexel(item, 5, 0), PictureTexel(item, 1, 3)), std::make_tuple(Pattern(5, 0), Pattern(1, 3)));

  // A description larger than the texture is refused rather than read past.
  part.Height = 5;
  EXPECT_EQ(Cache().LoadTextureFromTexture(L"too tall", Device(), source.Get(), &part, nullptr), nullptr);
}

TEST_F(CacheTest, FailedTextureCreationOrLockingMakesNoEntry) {
  std::vector<DWORD> pixels = BottomUpPixels(4, 4, Pattern);
  gpu->FailNext(fake::Call::CreateTexture, E_OUTOFMEMORY);
  gpu->FailNext(fake::Call::LockRect, D3DERR_INVALIDCALL);
  for (int failure = 0; failure < 2; ++failure)
    EXPECT_EQ(Cache().LoadTextureFromMemory(L"a", Device(), pixels.data(), 64, 4, 4, 32), nullptr) << failure;
  EXPECT_EQ(Cache().SearchTextureItem(L"a", Device()), nullptr);
}
