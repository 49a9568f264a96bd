#pragma once

// A managed texture of the OpenGL backend: the CPU copy (TextureStorage)
// plus the GL texture that mirrors it on the drawing thread.

#include <epoxy/gl.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include <karvelui/Direct3D.h>
#include "render/gpu/TextureStorage.h"

namespace KarvelUI::gl {

// What a device's textures share with it across threads. The context
// generation changes when a lost context is replaced: every GL name of an
// older generation is gone with its context.
struct ContextShared {
  std::mutex mutex;
  std::uint64_t generation = 1;        // under mutex
  std::vector<GLuint> deadTextures;    // under mutex; deleted on the drawing thread
  std::atomic<std::int64_t> textureBytes{0};

  // Forgets a name of `generation` (any thread).
  void Bury(GLuint name, std::uint64_t nameGeneration);
  // Deletes the buried names (drawing thread, context current).
  void DeleteBuried();
  // A new context: all earlier names are void.
  void NewGeneration();
  std::uint64_t Generation();
};

class GLTexture final : public RefCounted<IDirect3DTexture9> {
 public:
  GLTexture(std::shared_ptr<ContextShared> shared, UINT width, UINT height, D3DFORMAT format,
            D3DPOOL pool, DWORD usage);

  HRESULT GetLevelDesc(UINT level, D3DSURFACE_DESC* desc) override;
  HRESULT LockRect(UINT level, D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) override;
  HRESULT UnlockRect(UINT level) override;

  // Drawing thread, context current: the GL texture with every finished
  // write uploaded (texels premultiplied). 0 when GL refused the texture.
  GLuint Prepare();
  bool BelongsTo(const ContextShared* shared) const { return m_shared.get() == shared; }
  const D3DSURFACE_DESC& Desc() const { return m_storage.Desc(); }

 private:
  ~GLTexture() override;
  void Upload(const BYTE* texels, int pitch, const CRect& region);

  std::shared_ptr<ContextShared> m_shared;
  TextureStorage m_storage;
  // Drawing thread only (and the destructor, after the last reference).
  GLuint m_name = 0;
  std::uint64_t m_generation = 0;
  bool m_fullUploadPending = false;
};

}  // namespace KarvelUI::gl
