// Managed textures of the OpenGL device: the CPU copy written through
// LockRect from any thread, uploaded by the drawing thread when drawn.

#include <atomic>
#include <thread>

#include "gpu/GpuTestSupport.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

constexpr DWORD kBlack = 0xFF000000;

struct TextureWindow : GLWindow {
  RefPtr<ID3DXSprite> sprite;
  void SetUp(int width, int height) {
    ASSERT_EQ(Open(width, height), S_OK);
    ASSERT_EQ(D3DXCreateSprite(device.Get(), sprite.Receive()), S_OK);
  }
  Frame DrawAlone(IDirect3DTexture9* texture) {
    device->Clear(0, nullptr, D3DCLEAR_TARGET, kBlack, 1.0f, 0);
    sprite->Begin(D3DXSPRITE_ALPHABLEND);
    sprite->Draw(texture, nullptr, nullptr, nullptr, 0xFFFFFFFF);
    sprite->End();
    return ReadBack(device.Get());
  }
};

void Fill(IDirect3DTexture9* texture, const RECT* area, DWORD value) {
  D3DLOCKED_RECT locked{};
  ASSERT_EQ(texture->LockRect(0, &locked, area, 0), S_OK);
  D3DSURFACE_DESC desc{};
  texture->GetLevelDesc(0, &desc);
  const RECT whole(0, 0, desc.Width, desc.Height);
  const RECT r = area ? *area : whole;
  for (int y = 0; y < r.Height(); ++y) {
    auto* row = reinterpret_cast<DWORD*>(static_cast<BYTE*>(locked.pBits) + y * locked.Pitch);
    for (int x = 0; x < r.Width(); ++x) row[x] = value;
  }
  ASSERT_EQ(texture->UnlockRect(0), S_OK);
}

}  // namespace

TEST(ManagedTexture, DescribesItselfAndRefusesWhatItCannotBe) {
  TextureWindow w;
  w.SetUp(8, 8);
  RefPtr<IDirect3DTexture9> texture;
  ASSERT_EQ(w.device->CreateTexture(64, 32, 1, 0, D3DFMT_A8B8G8R8, D3DPOOL_MANAGED, texture.Receive(), nullptr), S_OK);
  D3DSURFACE_DESC desc{};
  ASSERT_EQ(texture->GetLevelDesc(0, &desc), S_OK);
  EXPECT_EQ(desc.Width, 64u);
  EXPECT_EQ(desc.Height, 32u);
  EXPECT_EQ(desc.Format, D3DFMT_A8B8G8R8);
  EXPECT_EQ(desc.Pool, D3DPOOL_MANAGED);
  EXPECT_EQ(texture->GetLevelDesc(1, &desc), D3DERR_INVALIDCALL);

  D3DCAPS9 caps{};
  w.device->GetDeviceCaps(&caps);
  RefPtr<IDirect3DTexture9> refused;
  EXPECT_EQ(w.device->CreateTexture(caps.MaxTextureWidth + 1, 4, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED,
                                    refused.Receive(), nullptr),
            D3DERR_INVALIDCALL);
  EXPECT_EQ(w.device->CreateTexture(4, 4, 2, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, refused.Receive(), nullptr),
            D3DERR_INVALIDCALL);
  EXPECT_EQ(w.device->CreateTexture(4, 4, 1, 0, D3DFMT_A1R5G5B5, D3DPOOL_MANAGED, refused.Receive(), nullptr),
            D3DERR_INVALIDCALL);
  EXPECT_FALSE(refused);

  D3DLOCKED_RECT locked{};
  const RECT outside(60, 0, 70, 4);
  EXPECT_EQ(texture->LockRect(0, &locked, &outside, 0), D3DERR_INVALIDCALL);
  ASSERT_EQ(texture->LockRect(0, &locked, nullptr, 0), S_OK);
  EXPECT_EQ(locked.Pitch, 64 * 4);
  EXPECT_EQ(texture->LockRect(0, &locked, nullptr, 0), D3DERR_INVALIDCALL);  // one lock at a time
  EXPECT_EQ(texture->UnlockRect(0), S_OK);
  EXPECT_EQ(texture->UnlockRect(0), D3DERR_INVALIDCALL);
}

TEST(ManagedTexture, WritesReachTheScreenAtTheNextDrawAndOnlyWhereWritten) {
  TextureWindow w;
  w.SetUp(8, 8);
  RefPtr<IDirect3DTexture9> texture = SolidTexture(w.device.Get(), 8, 8, 0xFF0000FF);
  EXPECT_EQ(w.DrawAlone(texture.Get()).At(3, 3), 0xFF0000FFu);

  const RECT corner(4, 4, 8, 8);
  Fill(texture.Get(), &corner, 0xFFFF0000);
  const Frame frame = w.DrawAlone(texture.Get());
  EXPECT_EQ(frame.At(3, 3), 0xFF0000FFu);
  EXPECT_EQ(frame.At(4, 4), 0xFFFF0000u);
  EXPECT_EQ(frame.At(7, 7), 0xFFFF0000u);
  EXPECT_EQ(frame.At(7, 3), 0xFF0000FFu);
}

TEST(ManagedTexture, ALockedTextureShowsItsPreviousContentUntilUnlocked) {
  TextureWindow w;
  w.SetUp(4, 4);
  RefPtr<IDirect3DTexture9> texture = SolidTexture(w.device.Get(), 4, 4, 0xFF00FF00);
  w.DrawAlone(texture.Get());

  D3DLOCKED_RECT locked{};
  ASSERT_EQ(texture->LockRect(0, &locked, nullptr, 0), S_OK);
  for (int i = 0; i < 16; ++i) static_cast<DWORD*>(locked.pBits)[i] = 0xFFFF00FF;
  EXPECT_EQ(w.DrawAlone(texture.Get()).At(1, 1), 0xFF00FF00u);
  ASSERT_EQ(texture->UnlockRect(0), S_OK);
  EXPECT_EQ(w.DrawAlone(texture.Get()).At(1, 1), 0xFFFF00FFu);
}

TEST(ManagedTexture, FilledOnAnotherThreadDrawnCorrectlyByTheDrawingThread) {
  TextureWindow w;
  w.SetUp(16, 16);
  RefPtr<IDirect3DTexture9> texture;
  std::thread worker([&] {
    // As the thumbnail loader does: make and fill a texture off the drawing thread.
    texture = MakeTexture(w.device.Get(), 16, 16, [](int x, int y) { return 0xFF000000u | x << 16 | y << 8 | 0x40; });
  });
  worker.join();
  ASSERT_TRUE(texture);
  const Frame frame = w.DrawAlone(texture.Get());
  EXPECT_EQ(frame.At(0, 0), 0xFF000040u);
  EXPECT_EQ(frame.At(15, 9), 0xFF0F0940u);

  // The last reference may go on another thread too; the GL texture then
  // goes at the drawing thread's next scene.
  std::thread releaser([t = std::move(texture)]() mutable { t.Reset(); });
  releaser.join();
  ASSERT_EQ(w.device->BeginScene(), S_OK);
  ASSERT_EQ(w.device->EndScene(), S_OK);
}

TEST(ManagedTexture, ConcurrentRefillsNeverShowAHalfWrittenTexture) {
  TextureWindow w;
  w.SetUp(32, 32);
  RefPtr<IDirect3DTexture9> texture = SolidTexture(w.device.Get(), 32, 32, 0xFF000001);
  std::atomic<bool> stop{false};
  std::atomic<int> refills{0};
  std::thread writer([&] {
    for (DWORD value = 2; !stop; ++value) {
      Fill(texture.Get(), nullptr, 0xFF000000 | (value & 0xFFFFFF));
      ++refills;
      // Release the texture and make another on the way, as a loader would.
      RefPtr<IDirect3DTexture9> scratch = SolidTexture(w.device.Get(), 4, 4, value);
    }
  });
  for (int frame = 0; frame < 60 || refills < 20; ++frame) {
    const Frame drawn = w.DrawAlone(texture.Get());
    const DWORD first = drawn.At(0, 0);
    ASSERT_EQ(std::count(drawn.pixels.begin(), drawn.pixels.end(), first), 32 * 32) << "frame " << frame;
  }
  stop = true;
  writer.join();
}
