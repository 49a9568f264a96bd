#include "support/FakeDirect3D.h"

#include <algorithm>
#include <cstdio>

#include <karvelui/TextCodec.h>
#include <karvelui/WinConstants.h>

namespace KarvelUI::fake {
namespace {

std::string Hex(DWORD value) {
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "0x%X", value);
  return buffer;
}

std::string Describe(const D3DPRESENT_PARAMETERS& p) {
  return "count=" + std::to_string(p.BackBufferCount) + " format=" + std::to_string(p.BackBufferFormat) +
         " swap=" + std::to_string(p.SwapEffect) + " interval=" + Hex(p.PresentationInterval) +
         " size=" + std::to_string(p.BackBufferWidth) + "x" + std::to_string(p.BackBufferHeight);
}

// The injected result when it is a failure, otherwise what `next` answers.
template <class Next>
HRESULT Then(HRESULT injected, Next next) {
  return FAILED(injected) ? injected : next();
}

// Sets `state` to `to`; refused when it already is.
auto Toggle(bool& state, bool to) {
  return [&state, to]() -> HRESULT { return state == to ? D3DERR_INVALIDCALL : (state = to, S_OK); };
}

class FakeDevice;

class FakeSprite final : public RefCounted<ID3DXSprite> {
 public:
  FakeSprite(std::shared_ptr<FakeGpu> gpu, RefPtr<FakeDevice> device);
  HRESULT Begin(DWORD flags) override;
  HRESULT End() override;
  HRESULT SetTransform(const D3DXMATRIX* transform) override;
  HRESULT Draw(IDirect3DTexture9* texture, const RECT* source, const D3DXVECTOR3* center,
               const D3DXVECTOR3* position, D3DCOLOR color) override;

 private:
  ~FakeSprite() override;
  std::shared_ptr<FakeGpu> m_gpu;
  RefPtr<FakeDevice> m_device;
  bool m_open = false;
  D3DXMATRIX m_transform;
};

class FakeFont final : public RefCounted<ID3DXFont> {
 public:
  explicit FakeFont(std::shared_ptr<FakeGpu> gpu) : m_gpu(std::move(gpu)) {}
  int DrawTextW(ID3DXSprite* sprite, const wchar_t* text, int count, RECT* rect, DWORD format,
                D3DCOLOR color) override;

 private:
  ~FakeFont() override = default;
  std::shared_ptr<FakeGpu> m_gpu;
};

class FakeEffect final : public RefCounted<ID3DXEffect> {
 public:
  explicit FakeEffect(std::shared_ptr<FakeGpu> gpu) : m_gpu(std::move(gpu)) { m_gpu->EffectMade(); }
  HRESULT SetTechnique(const char* name) override {
    return Step(Call::EffectSetTechnique, std::string("Effect.SetTechnique ") + (name ? name : ""), name);
  }
  HRESULT SetFloat(const char* name, float value) override {
    char number[32];
    std::snprintf(number, sizeof number, "%g", value);
    return Step(Call::EffectSetFloat, std::string("Effect.SetFloat ") + (name ? name : "") + "=" + number, name);
  }
  HRESULT Begin(UINT* passes, DWORD flags) override {
    const HRESULT hr = Step(Call::EffectBegin, "Effect.Begin flags=" + Hex(flags), passes && !m_begun);
    if (hr == S_OK) m_begun = true, *passes = m_gpu->effectPasses;
    return hr;
  }
  HRESULT BeginPass(UINT pass) override {
    const bool valid = m_begun && !m_inPass && pass < m_gpu->effectPasses;
    const HRESULT hr = Step(Call::EffectBeginPass, "Effect.BeginPass " + std::to_string(pass), valid);
    if (hr == S_OK) m_inPass = true;
    return hr;
  }
  HRESULT EndPass() override {
    const HRESULT hr = Step(Call::EffectEndPass, "Effect.EndPass", m_inPass);
    if (hr == S_OK) m_inPass = false;
    return hr;
  }
  HRESULT End() override {
    const HRESULT hr = Step(Call::EffectEnd, "Effect.End", m_begun && !m_inPass);
    if (hr == S_OK) m_begun = false;
    return hr;
  }

 private:
  ~FakeEffect() override { m_gpu->EffectGone(); }
  // The injected failure, else D3DERR_INVALIDCALL for a call out of order.
  HRESULT Step(Call call, std::string line, bool valid) {
    const HRESULT hr = m_gpu->Enter(call, std::move(line));
    return FAILED(hr) ? hr : valid ? S_OK : D3DERR_INVALIDCALL;
  }
  std::shared_ptr<FakeGpu> m_gpu;
  bool m_begun = false;
  bool m_inPass = false;
};

class FakeDevice final : public RefCounted<IDirect3DDevice9> {
 public:
  FakeDevice(std::shared_ptr<FakeGpu> gpu, const D3DPRESENT_PARAMETERS& params)
      : m_gpu(std::move(gpu)), m_params(params) {}

  HRESULT GetDeviceCaps(D3DCAPS9* caps) override {
    const HRESULT hr = m_gpu->Enter(Call::GetDeviceCaps, "GetDeviceCaps");
    if (FAILED(hr)) return hr;
    if (!caps) return D3DERR_INVALIDCALL;
    *caps = m_gpu->caps;
    return S_OK;
  }
  UINT GetAvailableTextureMem() override {
    return FAILED(m_gpu->Enter(Call::GetAvailableTextureMem, "GetAvailableTextureMem")) ? 0
                                                                                        : m_gpu->availableTextureMem;
  }
  HRESULT Reset(D3DPRESENT_PARAMETERS* params) override {
    if (!params) return D3DERR_INVALIDCALL;
    const HRESULT hr = m_gpu->Enter(Call::Reset, "Reset " + Describe(*params));
    if (FAILED(hr)) return hr;
    if (m_sprites > 0) return D3DERR_INVALIDCALL;
    m_params = *params;
    m_inScene = false;
    m_gpu->Recovered();
    return S_OK;
  }
  HRESULT Clear(DWORD count, const D3DRECT* /*rects*/, DWORD flags, D3DCOLOR color, float /*z*/,
                DWORD /*stencil*/) override {
    return m_gpu->Enter(Call::Clear, "Clear count=" + std::to_string(count) + " flags=" + Hex(flags) +
                                         " color=" + Hex(color));
  }
  // One scene at a time: a state that must change.
  HRESULT BeginScene() override { return Then(m_gpu->Enter(Call::BeginScene, "BeginScene"), Toggle(m_inScene, true)); }
  HRESULT EndScene() override { return Then(m_gpu->Enter(Call::EndScene, "EndScene"), Toggle(m_inScene, false)); }
  HRESULT Present(const RECT*, const RECT*, HWND, const void*) override {
    return Then(m_gpu->Enter(Call::Present, "Present"), [this] { return m_gpu->IsLost() ? D3DERR_DEVICELOST : S_OK; });
  }
  HRESULT CreateTexture(UINT width, UINT height, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                        IDirect3DTexture9** texture, HANDLE* shared) override {
    if (!texture || shared) return D3DERR_INVALIDCALL;
    *texture = nullptr;
    HRESULT hr = m_gpu->Enter(Call::CreateTexture, "CreateTexture " + std::to_string(width) + "x" +
                                                       std::to_string(height) + " levels=" + std::to_string(levels) +
                                                       " format=" + std::to_string(format) +
                                                       " pool=" + std::to_string(pool));
    if (FAILED(hr)) return hr;
    hr = TextureStorage::Validate(width, height, levels, format, m_gpu->caps.MaxTextureWidth,
                                  m_gpu->caps.MaxTextureHeight);
    if (FAILED(hr)) return hr;
    *texture = new FakeTexture(m_gpu, width, height, format, pool, usage);
    return S_OK;
  }
  HRESULT CreateSprite(ID3DXSprite** sprite) override {
    if (!sprite) return D3DERR_INVALIDCALL;
    *sprite = nullptr;
    const HRESULT hr = m_gpu->Enter(Call::CreateSprite, "CreateSprite");
    if (FAILED(hr)) return hr;
    *sprite = new FakeSprite(m_gpu, RefPtr<FakeDevice>::Share(this));
    return S_OK;
  }
  HRESULT CreateFont(const D3DXFONT_DESCW& desc, ID3DXFont** font) override {
    if (!font) return D3DERR_INVALIDCALL;
    *font = nullptr;
    const HRESULT hr = m_gpu->Enter(Call::CreateFont, "CreateFont height=" + std::to_string(desc.Height) +
                                                          " weight=" + std::to_string(desc.Weight) +
                                                          " italic=" + std::to_string(desc.Italic) +
                                                          " face=" + WideToUtf8(desc.FaceName));
    if (FAILED(hr)) return hr;
    *font = new FakeFont(m_gpu);
    return S_OK;
  }
  HRESULT ReadBackBuffer(std::vector<DWORD>& pixels, CSize& size) override {
    const HRESULT hr = m_gpu->Enter(Call::ReadBackBuffer, "ReadBackBuffer");
    if (FAILED(hr)) return hr;
    size = CSize(static_cast<LONG>(m_params.BackBufferWidth), static_cast<LONG>(m_params.BackBufferHeight));
    pixels.assign(static_cast<size_t>(size.cx) * size.cy, 0);  // the double draws nothing
    return S_OK;
  }

  HRESULT CreateEffect(const std::string& /*source*/, DWORD flags, ID3DXEffect** effect,
                       std::string* messages) override {
    if (!effect) return D3DERR_INVALIDCALL;
    *effect = nullptr;
    const HRESULT hr = m_gpu->Enter(Call::CreateEffect, "CreateEffect flags=" + Hex(flags));
    if (FAILED(hr)) {
      if (messages) *messages = m_gpu->effectMessages;
      return hr;
    }
    *effect = new FakeEffect(m_gpu);
    return S_OK;
  }
  HRESULT SetTexture(DWORD stage, IDirect3DTexture9* texture) override {
    FakeTexture* fake = FakeTexture::From(texture);
    const HRESULT hr = m_gpu->Enter(Call::SetTexture, "SetTexture stage=" + std::to_string(stage) + " tex#" +
                                                         std::to_string(fake ? fake->Id() : 0));
    if (FAILED(hr)) return hr;
    if (stage != 0 || (texture && !fake)) return D3DERR_INVALIDCALL;
    m_stageTexture = RefPtr<IDirect3DTexture9>::Share(texture);
    return S_OK;
  }
  HRESULT DrawPrimitiveUP(D3DPRIMITIVETYPE type, UINT primitiveCount, const void* vertices, UINT stride) override {
    const HRESULT hr = m_gpu->Enter(Call::DrawPrimitiveUP, "DrawPrimitiveUP type=" + std::to_string(type) +
                                                              " count=" + std::to_string(primitiveCount) +
                                                              " stride=" + std::to_string(stride));
    if (FAILED(hr)) return hr;
    return vertices && stride >= sizeof(D3DEFFECTVERTEX) ? S_OK : D3DERR_INVALIDCALL;
  }

  void SpriteMade() { ++m_sprites; }
  void SpriteGone() { --m_sprites; }

 private:
  ~FakeDevice() override = default;
  std::shared_ptr<FakeGpu> m_gpu;
  D3DPRESENT_PARAMETERS m_params;
  bool m_inScene = false;
  int m_sprites = 0;
  RefPtr<IDirect3DTexture9> m_stageTexture;
};

FakeSprite::FakeSprite(std::shared_ptr<FakeGpu> gpu, RefPtr<FakeDevice> device)
    : m_gpu(std::move(gpu)), m_device(std::move(device)) {
  m_device->SpriteMade();
}

FakeSprite::~FakeSprite() { m_device->SpriteGone(); }

HRESULT FakeSprite::Begin(DWORD flags) {
  return Then(m_gpu->Enter(Call::SpriteBegin, "Sprite.Begin flags=" + Hex(flags)), Toggle(m_open, true));
}

HRESULT FakeSprite::End() { return Then(m_gpu->Enter(Call::SpriteEnd, "Sprite.End"), Toggle(m_open, false)); }

HRESULT FakeSprite::SetTransform(const D3DXMATRIX* transform) {
  return Then(m_gpu->Enter(Call::SpriteSetTransform, "Sprite.SetTransform"),
              [&] { return transform ? (m_transform = *transform, S_OK) : D3DERR_INVALIDCALL; });
}

HRESULT FakeSprite::Draw(IDirect3DTexture9* texture, const RECT* source, const D3DXVECTOR3* center,
                         const D3DXVECTOR3* position, D3DCOLOR color) {
  FakeTexture* fake = FakeTexture::From(texture);
  const HRESULT hr = m_gpu->Enter(Call::SpriteDraw, "Sprite.Draw tex#" + std::to_string(fake ? fake->Id() : 0) +
                                                        " color=" + Hex(color));
  if (FAILED(hr)) return hr;
  if (!m_open || !fake) return D3DERR_INVALIDCALL;
  const D3DSURFACE_DESC& desc = fake->Desc();
  SpriteDrawRecord record;
  record.textureId = fake->Id();
  record.source = source ? *source : RECT(0, 0, static_cast<LONG>(desc.Width), static_cast<LONG>(desc.Height));
  if (center) record.center = *center;
  if (position) record.position = *position;
  record.color = color;
  record.transform = m_transform;
  record.quad = ComputeSpriteQuad(desc.Width, desc.Height, source, center, position, m_transform);
  m_gpu->RecordDraw(record);
  return S_OK;
}

int FakeFont::DrawTextW(ID3DXSprite* sprite, const wchar_t* text, int count, RECT* rect, DWORD format,
                        D3DCOLOR color) {
  if (!text || !rect) return 0;
  const std::wstring content = count < 0 ? std::wstring(text) : std::wstring(text, static_cast<size_t>(count));
  const HRESULT hr = m_gpu->Enter(Call::FontDrawText, "Font.DrawText \"" + WideToUtf8(content) + "\" rect=(" +
                                                          std::to_string(rect->left) + "," + std::to_string(rect->top) +
                                                          "," + std::to_string(rect->right) + "," +
                                                          std::to_string(rect->bottom) + ") format=" + Hex(format) +
                                                          " color=" + Hex(color));
  if (FAILED(hr)) return hr;
  m_gpu->RecordText({content, *rect, format, color, sprite != nullptr});
  if (format & DT_CALCRECT) {
    rect->right = rect->left + m_gpu->charWidth * static_cast<LONG>(content.size());
    rect->bottom = rect->top + m_gpu->lineHeight;
  }
  return m_gpu->lineHeight;
}

}  // namespace

// --- FakeGpu ----------------------------------------------------------------

void FakeGpu::FailNext(Call call, HRESULT code, int times) {
  std::lock_guard guard(m_mutex);
  for (int i = 0; i < times; ++i) m_faults[call].next.push_back(code);
}
void FakeGpu::FailAlways(Call call, HRESULT code) { Locked([&] { m_faults[call].always = code; }); }
void FakeGpu::ClearFaults() { Locked([&] { m_faults.clear(); }); }
void FakeGpu::LoseDevice() { Locked([&] { m_lost = true; }); }
bool FakeGpu::IsLost() const { return Locked([&] { return m_lost; }); }
void FakeGpu::Recovered() { Locked([&] { m_lost = false; }); }
int FakeGpu::NextTextureId() { return Locked([&] { return ++m_textureIds; }); }

HRESULT FakeGpu::Enter(Call call, std::string line) {
  std::lock_guard guard(m_mutex);
  HRESULT result = S_OK;
  auto fault = m_faults.find(call);
  if (fault != m_faults.end()) {
    Faults& faults = fault->second;
    if (!faults.next.empty()) {
      result = faults.next.front();
      faults.next.pop_front();
    } else {
      result = faults.always;
    }
  }
  if (FAILED(result)) line += " -> " + Hex(static_cast<DWORD>(result));
  m_log.push_back({call, std::move(line)});
  return result;
}

void FakeGpu::RecordDraw(const SpriteDrawRecord& draw) { Locked([&] { m_draws.push_back(draw); }); }
void FakeGpu::RecordText(const TextRecord& text) { Locked([&] { m_texts.push_back(text); }); }
std::vector<SpriteDrawRecord> FakeGpu::Draws() const { return Locked([&] { return m_draws; }); }
std::vector<TextRecord> FakeGpu::Texts() const { return Locked([&] { return m_texts; }); }

std::vector<std::string> FakeGpu::Calls() const {
  std::lock_guard guard(m_mutex);
  std::vector<std::string> lines;
  for (const Entry& entry : m_log) lines.push_back(entry.line);
  return lines;
}

int FakeGpu::Count(Call call) const {
  std::lock_guard guard(m_mutex);
  return static_cast<int>(std::count_if(m_log.begin(), m_log.end(), [call](const Entry& e) { return e.call == call; }));
}

void FakeGpu::ClearLog() {
  Locked([&] {
    m_log.clear();
    m_draws.clear();
    m_texts.clear();
  });
}

// --- FakeDirect3D -------------------------------------------------------------

RefPtr<IDirect3D9> FakeDirect3D::Create(std::shared_ptr<FakeGpu> gpu) {
  return RefPtr<IDirect3D9>::Adopt(new FakeDirect3D(std::move(gpu)));
}

HRESULT FakeDirect3D::CreateDevice(UINT /*adapter*/, D3DDEVTYPE /*type*/, HWND focusWindow, DWORD behaviorFlags,
                                   D3DPRESENT_PARAMETERS* params, IDirect3DDevice9** device) {
  if (!params || !device) return D3DERR_INVALIDCALL;
  *device = nullptr;
  const HRESULT hr = m_gpu->Enter(Call::CreateDevice, "CreateDevice " + Describe(*params) + " flags=" + Hex(behaviorFlags));
  if (FAILED(hr)) return hr;
  if (!focusWindow && !params->hDeviceWindow) return D3DERR_INVALIDCALL;
  // A fixed adapter: zero sizes become 640 x 480.
  if (params->BackBufferWidth == 0) params->BackBufferWidth = 640;
  if (params->BackBufferHeight == 0) params->BackBufferHeight = 480;
  *device = new FakeDevice(m_gpu, *params);
  return S_OK;
}

// --- FakeTexture --------------------------------------------------------------

FakeTexture::FakeTexture(std::shared_ptr<FakeGpu> gpu, UINT width, UINT height, D3DFORMAT format, D3DPOOL pool,
                         DWORD usage)
    : m_gpu(std::move(gpu)), m_id(m_gpu->NextTextureId()), m_storage(width, height, format, pool, usage) {}

FakeTexture::~FakeTexture() = default;

FakeTexture* FakeTexture::From(IDirect3DTexture9* texture) { return dynamic_cast<FakeTexture*>(texture); }

std::vector<DWORD> FakeTexture::Texels() const { return m_storage.CopyTexels(); }

HRESULT FakeTexture::GetLevelDesc(UINT level, D3DSURFACE_DESC* desc) {
  return Then(m_gpu->Enter(Call::GetLevelDesc, "GetLevelDesc " + Name()),
              [&] { return m_storage.GetLevelDesc(level, desc); });
}

HRESULT FakeTexture::LockRect(UINT level, D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) {
  return Then(m_gpu->Enter(Call::LockRect, "LockRect " + Name()),
              [&] { return m_storage.LockRect(level, locked, rect, flags); });
}

HRESULT FakeTexture::UnlockRect(UINT level) {
  return Then(m_gpu->Enter(Call::UnlockRect, "UnlockRect " + Name()), [&] { return m_storage.UnlockRect(level); });
}

}  // namespace KarvelUI::fake
