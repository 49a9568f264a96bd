#pragma once

// The CPU copy behind every texture (the managed pool): the texels, the one
// lock a writer may hold on them, and the region written since the last
// upload. Writers on any thread lock, write and unlock; the drawing thread
// uploads under the storage's own mutex and never while a writer holds the
// lock, so a half-written texture is never shown.

#include <cstdint>
#include <mutex>
#include <vector>

#include <karvelui/Geometry.h>
#include <karvelui/D3DTypes.h>

namespace KarvelUI {

class TextureStorage {
 public:
  // Texels start as zero (transparent black).
  TextureStorage(UINT width, UINT height, D3DFORMAT format, D3DPOOL pool, DWORD usage);
  TextureStorage(const TextureStorage&) = delete;
  TextureStorage& operator=(const TextureStorage&) = delete;

  // Whether a texture of this size and format can be made at all.
  static HRESULT Validate(UINT width, UINT height, UINT levels, D3DFORMAT format, UINT maxWidth,
                          UINT maxHeight);

  const D3DSURFACE_DESC& Desc() const { return m_desc; }  // never changes
  HRESULT GetLevelDesc(UINT level, D3DSURFACE_DESC* desc) const;
  HRESULT LockRect(UINT level, D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags);
  HRESULT UnlockRect(UINT level);
  size_t ByteSize() const { return m_pixels.size(); }

  // Hands `upload(texels, pitch, region)` what must reach the GPU: the whole
  // texture when `everything`, else the region written since the last call
  // (nothing when none). False, without calling, while a writer holds the
  // lock. The texels are those of the region's top-left corner.
  template <class Upload>
  bool TakeChanges(bool everything, Upload&& upload) {
    std::lock_guard guard(m_mutex);
    if (m_locked) return false;
    const CRect region = everything ? Whole() : m_dirty;
    m_dirty.SetRectEmpty();
    if (!region.IsRectEmpty()) upload(TexelAt(region.left, region.top), m_pitch, region);
    return true;
  }

  // A copy of the texels as they are (tests and read-back).
  std::vector<DWORD> CopyTexels() const;

 private:
  CRect Whole() const;
  BYTE* TexelAt(LONG x, LONG y) { return m_pixels.data() + static_cast<size_t>(y) * m_pitch + x * 4; }

  D3DSURFACE_DESC m_desc{};
  int m_pitch = 0;
  std::vector<BYTE> m_pixels;
  mutable std::mutex m_mutex;
  bool m_locked = false;
  CRect m_lockedRect;
  bool m_lockedReadOnly = false;
  CRect m_dirty;
};

}  // namespace KarvelUI
