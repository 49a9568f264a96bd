// Managed textures of the OpenGL device: the CPU copy written through
// LockRect from any thread, uploaded by the drawing thread when drawn.

#include <algorithm>
#include <atomic>
#include <thread>
#include <tuple>

#include "support/GLTesting.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

// Draws the texture alone at (0, 0) on black.
Frame DrawAlone(GLWindow& w, IDirect3DTexture9* texture) {
  w.Clear(kBlack);
  w.sprite->Begin(D3DXSPRITE_ALPHABLEND);
  w.Draw(texture, 0, 0);
  w.sprite->End();
  return w.Read();
}

void Fill(IDirect3DTexture9* texture, const RECT* area, DWORD value, bool unlock = true) {
  D3DLOCKED_RECT locked{};
  ASSERT_EQ(texture->LockRect(0, &locked, area, 0), S_OK);
  D3DSURFACE_DESC desc{};
  texture->GetLevelDesc(0, &desc);
  const RECT r = area ? *area : RECT(0, 0, desc.Width, desc.Height);
  for (int y = 0; y < r.Height(); ++y)
    std::fill_n(reinterpret_cast<DWORD*>(static_cast<BYTE*>(locked.pBits) + y * locked.Pitch), r.Width(), value);
  if (unlock) {
    ASSERT_EQ(texture->UnlockRect(0), S_OK);
  }
}

}  // namespace

TEST(ManagedTexture, DescribesItselfAndRefusesWhatItCannotBe) {
  GLWindow w;
  ASSERT_EQ(w.Open(8, 8), S_OK);
  RefPtr<IDirect3DTexture9> texture;
  ASSERT_EQ(w.device->CreateTexture(64, 32, 1, 0, D3DFMT_A8B8G8R8, D3DPOOL_MANAGED, texture.Receive(), nullptr), S_OK);
  D3DSURFACE_DESC desc{};
  ASSERT_EQ(texture->GetLevelDesc(0, &desc), S_OK);
  EXPECT_EQ(std::make_tuple(CSize(desc.Width, desc.Height), desc.Format, desc.Pool),
            std::make_tuple(CSize(64, 32), D3DFMT_A8B8G8R8, D3DPOOL_MANAGED));
  EXPECT_EQ(texture->GetLevelDesc(1, &desc), D3DERR_INVALIDCALL);

  D3DCAPS9 caps{};
  w.device->GetDeviceCaps(&caps);
  const struct {
    UINT width, levels;
    D3DFORMAT format;
  } refused[] = {{caps.MaxTextureWidth + 1, 1, D3DFMT_A8R8G8B8}, {4, 2, D3DFMT_A8R8G8B8}, {4, 1, D3DFMT_A1R5G5B5}};
  for (const auto& r : refused) {
    RefPtr<IDirect3DTexture9> none;
    EXPECT_EQ(w.device->CreateTexture(r.width, 4, r.levels, 0, r.format, D3DPOOL_MANAGED, none.Receive(), nullptr),
              D3DERR_INVALIDCALL);
    EXPECT_FALSE(none);
  }

  D3DLOCKED_RECT locked{};
  const RECT outside(60, 0, 70, 4);
  EXPECT_EQ(texture->LockRect(0, &locked, &outside, 0), D3DERR_INVALIDCALL);
  ASSERT_EQ(texture->LockRect(0, &locked, nullptr, 0), S_OK);
  EXPECT_EQ(locked.Pitch, 64 * 4);
  // One lock at a time, one unlock per lock.
  EXPECT_EQ((std::vector{texture->LockRect(0, &locked, nullptr, 0), texture->UnlockRect(0), texture->UnlockRect(0)}),
            (std::vector<HRESULT>{D3DERR_INVALIDCALL, S_OK, D3DERR_INVALIDCALL}));
}

TEST(ManagedTexture, WritesReachTheScreenOnceUnlockedAndOnlyWhereWritten) {
  GLWindow w;
  w.OpenForDrawing(8, 8);
  RefPtr<IDirect3DTexture9> texture = w.Solid(8, 8, kBlue);
  EXPECT_EQ(DrawAlone(w, texture.Get()).At(3, 3), kBlue);

  const RECT corner(4, 4, 8, 8);
  Fill(texture.Get(), &corner, kRed, false);
  EXPECT_EQ(DrawAlone(w, texture.Get()).InkBounds(kBlue), CRect());  // still locked: the old content
  ASSERT_EQ(texture->UnlockRect(0), S_OK);
  const Frame frame = DrawAlone(w, texture.Get());
  EXPECT_TRUE(frame.InkBounds(kBlue) == CRect(4, 4, 8, 8) && frame.At(7, 7) == kRed);
}

TEST(ManagedTexture, FilledOnAnotherThreadDrawnCorrectlyByTheDrawingThread) {
  GLWindow w;
  w.OpenForDrawing(16, 16);
  RefPtr<IDirect3DTexture9> texture;
  // As the thumbnail loader does: make and fill a texture off the drawing thread.
  std::thread([&] {
    texture = MakeTexture(w.device.Get(), 16, 16, [](int x, int y) { return 0xFF000000u | x << 16 | y << 8 | 0x40; });
  }).join();
  ASSERT_TRUE(texture);
  const Frame frame = DrawAlone(w, texture.Get());
  EXPECT_EQ(std::make_tuple(frame.At(0, 0), frame.At(15, 9)), std::make_tuple(0xFF000040u, 0xFF0F0940u));

  // The last reference may go on another thread too; the GL texture then
  // goes at the drawing thread's next scene.
  std::thread([t = std::move(texture)]() mutable { t.Reset(); }).join();
  ASSERT_EQ(w.device->BeginScene(), S_OK);
  ASSERT_EQ(w.device->EndScene(), S_OK);
}

TEST(ManagedTexture, ConcurrentRefillsNeverShowAHalfWrittenTexture) {
  GLWindow w;
  w.OpenForDrawing(32, 32);
  RefPtr<IDirect3DTexture9> texture = w.Solid(32, 32, 0xFF000001);
  std::atomic<bool> stop{false};
  std::atomic<int> refills{0};
  std::thread writer([&] {
    for (DWORD value = 2; !stop; ++value) {
      Fill(texture.Get(), nullptr, 0xFF000000 | (value & 0xFFFFFF));
      ++refills;
      // Release the texture and make another on the way, as a loader would.
      RefPtr<IDirect3DTexture9> scratch = MakeTexture(w.device.Get(), 4, 4, [value](int, int) { return value; });
    }
  });
  for (int frame = 0; frame < 60 || refills < 20; ++frame) {
    const Frame drawn = DrawAlone(w, texture.Get());
    ASSERT_EQ(std::count(drawn.pixels.begin(), drawn.pixels.end(), drawn.At(0, 0)), 32 * 32) << "frame " << frame;
  }
  stop = true;
  writer.join();
}
