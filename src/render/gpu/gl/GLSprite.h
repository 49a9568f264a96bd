#pragma once

// The sprite batch of the OpenGL backend. Draws become transformed quads in
// one vertex array per batch; a run of consecutive quads with the same
// texture becomes one GL draw call when the batch is flushed (at End, or
// when the device must draw something else first).

#include <vector>

#include <karvelui/Direct3D.h>

namespace KarvelUI::gl {

class GLDevice;
class GLTexture;

struct SpriteVertex {
  float x, y;  // back-buffer pixels
  float u, v;
  DWORD color;  // 0xAARRGGBB, read by GL as BGRA bytes
};

struct SpriteRun {
  RefPtr<GLTexture> texture;  // kept alive until drawn
  UINT firstQuad = 0;
  UINT quadCount = 0;
};

class GLSprite final : public RefCounted<ID3DXSprite> {
 public:
  explicit GLSprite(RefPtr<GLDevice> device);

  HRESULT Begin(DWORD flags) override;
  HRESULT End() override;
  HRESULT SetTransform(const D3DXMATRIX* transform) override;
  HRESULT Draw(IDirect3DTexture9* texture, const RECT* source, const D3DXVECTOR3* center,
               const D3DXVECTOR3* position, D3DCOLOR color) override;

  // Draws what is batched; the batch stays open.
  HRESULT Flush();

 private:
  ~GLSprite() override;

  RefPtr<GLDevice> m_device;
  bool m_open = false;
  DWORD m_flags = 0;
  D3DXMATRIX m_transform;
  std::vector<SpriteVertex> m_vertices;  // four per quad
  std::vector<SpriteRun> m_runs;
};

}  // namespace KarvelUI::gl
