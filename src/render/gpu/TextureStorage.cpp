#include "render/gpu/TextureStorage.h"

#include <cstring>

namespace KarvelUI {

TextureStorage::TextureStorage(UINT width, UINT height, D3DFORMAT format, D3DPOOL pool, DWORD usage) {
  m_desc.Format = format;
  m_desc.Type = D3DRTYPE_TEXTURE;
  m_desc.Usage = usage;
  m_desc.Pool = pool;
  m_desc.MultiSampleType = D3DMULTISAMPLE_NONE;
  m_desc.Width = width;
  m_desc.Height = height;
  m_pitch = static_cast<int>(width * BytesPerTexel(format));
  m_pixels.assign(static_cast<size_t>(m_pitch) * height, 0);
  m_dirty = Whole();  // the first upload sends everything
}

HRESULT TextureStorage::Validate(UINT width, UINT height, UINT levels, D3DFORMAT format, UINT maxWidth,
                                 UINT maxHeight) {
  if (width == 0 || height == 0 || levels > 1 || BytesPerTexel(format) == 0) return D3DERR_INVALIDCALL;
  if (width > maxWidth || height > maxHeight) return D3DERR_INVALIDCALL;
  return S_OK;
}

CRect TextureStorage::Whole() const {
  return CRect(0, 0, static_cast<LONG>(m_desc.Width), static_cast<LONG>(m_desc.Height));
}

HRESULT TextureStorage::GetLevelDesc(UINT level, D3DSURFACE_DESC* desc) const {
  if (level != 0 || !desc) return D3DERR_INVALIDCALL;
  *desc = m_desc;
  return S_OK;
}

HRESULT TextureStorage::LockRect(UINT level, D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) {
  if (level != 0 || !locked) return D3DERR_INVALIDCALL;
  const CRect whole = Whole();
  const CRect area = rect ? *rect : whole;
  if (area.IsRectEmpty() || (area & whole) != area) return D3DERR_INVALIDCALL;
  std::lock_guard guard(m_mutex);
  if (m_locked) return D3DERR_INVALIDCALL;
  m_locked = true;
  m_lockedRect = area;
  m_lockedReadOnly = (flags & D3DLOCK_READONLY) != 0;
  locked->Pitch = m_pitch;
  locked->pBits = TexelAt(area.left, area.top);
  return S_OK;
}

HRESULT TextureStorage::UnlockRect(UINT level) {
  if (level != 0) return D3DERR_INVALIDCALL;
  std::lock_guard guard(m_mutex);
  if (!m_locked) return D3DERR_INVALIDCALL;
  m_locked = false;
  if (!m_lockedReadOnly) m_dirty = m_dirty | m_lockedRect;
  return S_OK;
}

std::vector<DWORD> TextureStorage::CopyTexels() const {
  std::lock_guard guard(m_mutex);
  std::vector<DWORD> texels(m_pixels.size() / 4);
  std::memcpy(texels.data(), m_pixels.data(), m_pixels.size());
  return texels;
}

}  // namespace KarvelUI
