#include "render/gpu/gl/GLSprite.h"

#include <karvelui/D3DMath.h>
#include "render/gpu/gl/GLDevice.h"
#include "render/gpu/gl/GLTexture.h"

namespace KarvelUI::gl {

GLSprite::GLSprite(RefPtr<GLDevice> device) : m_device(std::move(device)) { m_device->SpriteMade(); }

GLSprite::~GLSprite() {
  if (m_open) m_device->SpriteClosed(this);
  m_device->SpriteGone();
}

HRESULT GLSprite::Begin(DWORD flags) {
  if (m_open) return D3DERR_INVALIDCALL;
  m_device->SpriteOpened(this);
  m_open = true;
  m_flags = flags;
  return S_OK;
}

HRESULT GLSprite::End() {
  if (!m_open) return D3DERR_INVALIDCALL;
  const HRESULT hr = Flush();
  m_open = false;
  m_device->SpriteClosed(this);
  return hr;
}

HRESULT GLSprite::SetTransform(const D3DXMATRIX* transform) {
  if (!transform) return D3DERR_INVALIDCALL;
  m_transform = *transform;
  return S_OK;
}

HRESULT GLSprite::Draw(IDirect3DTexture9* texture, const RECT* source, const D3DXVECTOR3* center,
                       const D3DXVECTOR3* position, D3DCOLOR color) {
  if (!m_open || !texture) return D3DERR_INVALIDCALL;
  // Consecutive draws of one texture (glyphs of a text) skip the type check.
  GLTexture* glTexture = nullptr;
  if (!m_runs.empty() && static_cast<IDirect3DTexture9*>(m_runs.back().texture.Get()) == texture) {
    glTexture = m_runs.back().texture.Get();
  } else {
    glTexture = dynamic_cast<GLTexture*>(texture);
    if (!glTexture || !glTexture->BelongsTo(m_device->Shared())) return D3DERR_INVALIDCALL;
  }
  const D3DSURFACE_DESC& desc = glTexture->Desc();
  const SpriteQuad quad = ComputeSpriteQuad(desc.Width, desc.Height, source, center, position, m_transform);

  const UINT quadIndex = static_cast<UINT>(m_vertices.size() / 4);
  if (m_runs.empty() || m_runs.back().texture.Get() != glTexture)
    m_runs.push_back({RefPtr<GLTexture>::Share(glTexture), quadIndex, 0});
  ++m_runs.back().quadCount;
  m_vertices.push_back({quad.corners[0].x, quad.corners[0].y, quad.u0, quad.v0, color});
  m_vertices.push_back({quad.corners[1].x, quad.corners[1].y, quad.u1, quad.v0, color});
  m_vertices.push_back({quad.corners[2].x, quad.corners[2].y, quad.u0, quad.v1, color});
  m_vertices.push_back({quad.corners[3].x, quad.corners[3].y, quad.u1, quad.v1, color});
  return S_OK;
}

HRESULT GLSprite::Flush() {
  if (m_vertices.empty()) return S_OK;
  const HRESULT hr = m_device->DrawSprites(m_vertices, m_runs, (m_flags & D3DXSPRITE_ALPHABLEND) != 0);
  m_vertices.clear();
  m_runs.clear();
  return hr;
}

}  // namespace KarvelUI::gl
