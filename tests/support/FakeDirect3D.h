#pragma once

// A test double of the device interfaces. It draws nothing; it records every
// call (in order, as one line of text each, plus the geometry of every sprite
// draw and every text) and fails any call on request with the code given.
// Textures are real CPU copies, so what a caller writes into them can be read
// back. The state rules of the real backend hold here too: one scene at a
// time, sprites drawn only between Begin and End, Reset refused while a
// sprite exists.
//
//   auto gpu = std::make_shared<fake::FakeGpu>();
//   gpu->FailNext(fake::Call::CreateDevice, D3DERR_NOTAVAILABLE);
//   DXCore::InitInstance(fake::FakeDirect3D::Create(gpu).Get());
//
// Everything here is safe to use from several threads.

#include <atomic>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <karvelui/Export.h>
#include <karvelui/D3DMath.h>
#include <karvelui/Direct3D.h>
#include "render/gpu/TextureStorage.h"

namespace KarvelUI::fake {

enum class Call {
  CreateDevice,
  GetDeviceCaps,
  GetAvailableTextureMem,
  Reset,
  Clear,
  BeginScene,
  EndScene,
  Present,
  CreateTexture,
  CreateSprite,
  CreateFont,
  ReadBackBuffer,
  GetLevelDesc,
  LockRect,
  UnlockRect,
  SpriteBegin,
  SpriteEnd,
  SpriteSetTransform,
  SpriteDraw,
  FontDrawText,
  CreateEffect,
  SetTexture,
  DrawPrimitiveUP,
  EffectSetTechnique,
  EffectSetFloat,
  EffectBegin,
  EffectBeginPass,
  EffectEndPass,
  EffectEnd,
};

struct SpriteDrawRecord {
  int textureId = 0;  // creation order, from 1
  RECT source;        // the texture's whole area when none was given
  D3DXVECTOR3 center;
  D3DXVECTOR3 position;
  D3DCOLOR color = 0;
  D3DXMATRIX transform;
  SpriteQuad quad;    // where it would land
};

struct TextRecord {
  std::wstring text;
  RECT rect;
  DWORD format = 0;
  D3DCOLOR color = 0;
  bool throughSprite = false;
};

class FakeGpu {
 public:
  // The adapter's description.
  D3DCAPS9 caps{D3DDEVTYPE_HAL, 0, 4096, 4096};
  UINT availableTextureMem = 256u << 20;
  // Text metrics of the double's fonts: every character this wide, every
  // line this high (DT_CALCRECT and the height DrawText returns).
  int charWidth = 8;
  int lineHeight = 16;
  // Effects: the passes Begin reports, and the compiler's messages handed
  // out with a CreateEffect failure injected by FailNext / FailAlways.
  UINT effectPasses = 1;
  std::string effectMessages = "effect.fx(3,1): error: syntax error";

  // The next `times` calls of `call` fail with `code` (they are recorded).
  // Calls queue: FailNext(c, A, 2) then FailNext(c, B) fails with A, A, B.
  void FailNext(Call call, HRESULT code, int times = 1);
  // Every call of `call` fails with `code` (once the queue is used up) until
  // ClearFaults.
  void FailAlways(Call call, HRESULT code);
  void ClearFaults();
  // Present answers D3DERR_DEVICELOST until a Reset succeeds.
  void LoseDevice();

  // One line per call, e.g. "CreateDevice count=2 format=21 swap=1
  // interval=0x80000000 flags=0x24", "Present", "Sprite.Draw tex#1
  // color=0x80FFFFFF"; a failed call ends with " -> <code>" in hex.
  std::vector<std::string> Calls() const;
  int Count(Call call) const;
  std::vector<SpriteDrawRecord> Draws() const;
  std::vector<TextRecord> Texts() const;
  void ClearLog();

  // For the double's objects: records the call and returns the injected
  // result (S_OK when none).
  HRESULT Enter(Call call, std::string line);
  void RecordDraw(const SpriteDrawRecord& draw);
  void RecordText(const TextRecord& text);
  bool IsLost() const;
  void Recovered();
  int NextTextureId();
  // Effects alive (made by CreateEffect, not yet released by every holder).
  int LiveEffects() const { return m_liveEffects.load(); }
  void EffectMade() { ++m_liveEffects; }
  void EffectGone() { --m_liveEffects; }

 private:
  struct Faults {
    std::deque<HRESULT> next;
    HRESULT always = S_OK;
  };
  struct Entry {
    Call call;
    std::string line;
  };
  template <class F>
  auto Locked(F f) const {
    std::lock_guard guard(m_mutex);
    return f();
  }

  mutable std::mutex m_mutex;
  std::map<Call, Faults> m_faults;
  std::vector<Entry> m_log;
  std::vector<SpriteDrawRecord> m_draws;
  std::vector<TextRecord> m_texts;
  bool m_lost = false;
  int m_textureIds = 0;
  std::atomic<int> m_liveEffects{0};
};

class FakeDirect3D final : public RefCounted<IDirect3D9> {
 public:
  static RefPtr<IDirect3D9> Create(std::shared_ptr<FakeGpu> gpu);

  HRESULT CreateDevice(UINT adapter, D3DDEVTYPE type, HWND focusWindow, DWORD behaviorFlags,
                       D3DPRESENT_PARAMETERS* params, IDirect3DDevice9** device) override;

 private:
  explicit FakeDirect3D(std::shared_ptr<FakeGpu> gpu) : m_gpu(std::move(gpu)) {}
  ~FakeDirect3D() override = default;
  std::shared_ptr<FakeGpu> m_gpu;
};

// The double's texture, for tests that look at what was written.
class FakeTexture final : public RefCounted<IDirect3DTexture9> {
 public:
  static FakeTexture* From(IDirect3DTexture9* texture);  // null when not one
  int Id() const { return m_id; }
  const D3DSURFACE_DESC& Desc() const { return m_storage.Desc(); }
  std::vector<DWORD> Texels() const;

  HRESULT GetLevelDesc(UINT level, D3DSURFACE_DESC* desc) override;
  HRESULT LockRect(UINT level, D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) override;
  HRESULT UnlockRect(UINT level) override;

  // Made by the double's devices (one reference for the caller).
  FakeTexture(std::shared_ptr<FakeGpu> gpu, UINT width, UINT height, D3DFORMAT format, D3DPOOL pool, DWORD usage);

 private:
  ~FakeTexture() override;
  std::string Name() const { return "tex#" + std::to_string(m_id); }

  std::shared_ptr<FakeGpu> m_gpu;
  int m_id;
  TextureStorage m_storage;
};

}  // namespace KarvelUI::fake
