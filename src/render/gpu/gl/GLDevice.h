#pragma once

// The OpenGL 3.3 backend: the process object and the device. A device owns
// one GL context for its window (through GLSurface) and draws into an
// off-screen back buffer of the present parameters' size and format; Present
// copies it into the window (stretched when the sizes differ) and swaps.
// The back buffer keeps its content after a present, so it can be read back.
//
// Creation maps the present parameters one for one: BackBufferCount 2 needs
// a double-buffered window surface, 1 accepts either; the back-buffer
// format is the render target's format (A8R8G8B8, X8R8G8B8, A1R5G5B5,
// R5G6B5); every swap effect is accepted. What the driver refuses is
// D3DERR_NOTAVAILABLE, so the caller's fallbacks take over.
//
// Loss: when the context was made with reset notification, a reset of the
// GPU is seen at Present (D3DERR_DEVICELOST); Reset then makes a new context
// and every texture is uploaded again from its CPU copy. Without reset
// notification a loss is never reported.

#include <memory>
#include <vector>

#include "platform/window/GLSurface.h"
#include <karvelui/Direct3D.h>
#include "render/gpu/gl/GLObjects.h"
#include "render/gpu/gl/GLSprite.h"
#include "render/gpu/gl/GLTexture.h"

namespace KarvelUI::gl {

class GLEffect;

class GLDirect3D final : public RefCounted<IDirect3D9> {
 public:
  HRESULT CreateDevice(UINT adapter, D3DDEVTYPE type, HWND focusWindow, DWORD behaviorFlags,
                       D3DPRESENT_PARAMETERS* params, IDirect3DDevice9** device) override;
};

class GLDevice final : public RefCounted<IDirect3DDevice9> {
 public:
  static HRESULT Create(HWND window, D3DPRESENT_PARAMETERS* params, IDirect3DDevice9** device);

  HRESULT GetDeviceCaps(D3DCAPS9* caps) override;
  UINT GetAvailableTextureMem() override;
  HRESULT Reset(D3DPRESENT_PARAMETERS* params) override;
  HRESULT Clear(DWORD count, const D3DRECT* rects, DWORD flags, D3DCOLOR color, float z,
                DWORD stencil) override;
  HRESULT BeginScene() override;
  HRESULT EndScene() override;
  HRESULT Present(const RECT* source, const RECT* dest, HWND overrideWindow, const void* dirtyRegion) override;
  HRESULT CreateTexture(UINT width, UINT height, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                        IDirect3DTexture9** texture, HANDLE* shared) override;
  HRESULT CreateSprite(ID3DXSprite** sprite) override;
  HRESULT CreateFont(const D3DXFONT_DESCW& desc, ID3DXFont** font) override;
  HRESULT ReadBackBuffer(std::vector<DWORD>& pixels, CSize& size) override;
  HRESULT CreateEffect(const std::string& source, DWORD flags, ID3DXEffect** effect, std::string* messages) override;
  HRESULT SetTexture(DWORD stage, IDirect3DTexture9* texture) override;
  HRESULT DrawPrimitiveUP(D3DPRIMITIVETYPE type, UINT primitiveCount, const void* vertices, UINT stride) override;

  // For the sprite batch.
  ContextShared* Shared() const { return m_shared.get(); }
  void SpriteMade() { ++m_spriteCount; }
  void SpriteGone() { --m_spriteCount; }
  void SpriteOpened(GLSprite* sprite);
  void SpriteClosed(GLSprite* sprite);
  HRESULT DrawSprites(const std::vector<SpriteVertex>& vertices, const std::vector<SpriteRun>& runs,
                      bool blend);

  // For effects: the context their programs belong to, and the pass whose
  // program draws the next DrawPrimitiveUP.
  std::uint64_t Generation() const { return m_shared->Generation(); }
  bool MakeContextCurrent() { return MakeCurrent(); }
  void EffectPassOpened(GLEffect* effect) { m_effectPass = effect; }
  void EffectPassClosed(GLEffect* effect);

  // Behaves as if the driver had reported a GPU reset: Present answers
  // D3DERR_DEVICELOST until Reset has made a new context. For tests of the
  // recovery path, which real hardware cannot be made to take on demand.
  void SimulateContextLoss() { m_lost = true; }

 private:
  explicit GLDevice(HWND window);
  ~GLDevice() override;

  HRESULT MakeContext(const D3DPRESENT_PARAMETERS& params);
  HRESULT MakeBackBuffer(D3DPRESENT_PARAMETERS& params);
  bool MakeSpriteObjects();
  bool MakeEffectObjects();
  void ReleaseGLObjects(bool contextAlive);
  bool MakeCurrent();
  void FlushOpenSprites();
  void BindBackBuffer();
  void EnsureQuadIndices(size_t quads);
  bool ContextWasReset();

  HWND m_window = nullptr;
  GLSurface m_surface;
  D3DPRESENT_PARAMETERS m_params{};
  D3DCAPS9 m_caps{};
  std::int64_t m_textureMemoryBudget = 0;
  std::shared_ptr<ContextShared> m_shared = std::make_shared<ContextShared>();

  SpriteProgram m_program;
  GLName m_vertexArray, m_vertexBuffer, m_indexBuffer;
  size_t m_indexedQuads = 0;
  GLName m_backBuffer, m_backBufferColor;
  GLName m_effectArray, m_effectBuffer;  // made on the first effect draw
  RefPtr<GLTexture> m_stageTexture;      // what effects sample
  GLEffect* m_effectPass = nullptr;      // the effect whose pass is open

  bool m_inScene = false;
  bool m_lost = false;
  int m_spriteCount = 0;
  std::vector<GLSprite*> m_openSprites;  // innermost last
};

}  // namespace KarvelUI::gl
