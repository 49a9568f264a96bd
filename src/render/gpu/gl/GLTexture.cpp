#include "render/gpu/gl/GLTexture.h"

namespace KarvelUI::gl {
namespace {

bool HasAlpha(D3DFORMAT format) { return format == D3DFMT_A8R8G8B8 || format == D3DFMT_A8B8G8R8; }

// Byte order in memory: B,G,R,A for the xRGB formats, R,G,B,A for xBGR.
GLenum UploadFormat(D3DFORMAT format) {
  return (format == D3DFMT_A8B8G8R8 || format == D3DFMT_X8B8G8R8) ? GL_RGBA : GL_BGRA;
}

bool IsOpaque(const BYTE* texels, int pitch, const CRect& region) {
  for (LONG y = 0; y < region.Height(); ++y) {
    const BYTE* row = texels + static_cast<ptrdiff_t>(y) * pitch;
    for (LONG x = 0; x < region.Width(); ++x)
      if (row[x * 4 + 3] != 255) return false;
  }
  return true;
}

// round(c * a / 255) for bytes, exactly.
inline BYTE Premultiply(BYTE c, BYTE a) {
  const unsigned t = static_cast<unsigned>(c) * a + 128;
  return static_cast<BYTE>((t + (t >> 8)) >> 8);
}

void PremultiplyInto(std::vector<BYTE>& out, const BYTE* texels, int pitch, const CRect& region) {
  const size_t rowBytes = static_cast<size_t>(region.Width()) * 4;
  out.resize(rowBytes * region.Height());
  for (LONG y = 0; y < region.Height(); ++y) {
    const BYTE* src = texels + static_cast<ptrdiff_t>(y) * pitch;
    BYTE* dst = out.data() + rowBytes * y;
    for (size_t i = 0; i < rowBytes; i += 4) {
      const BYTE a = src[i + 3];
      dst[i + 0] = Premultiply(src[i + 0], a);
      dst[i + 1] = Premultiply(src[i + 1], a);
      dst[i + 2] = Premultiply(src[i + 2], a);
      dst[i + 3] = a;
    }
  }
}

}  // namespace

void ContextShared::Bury(GLuint name, std::uint64_t nameGeneration) {
  std::lock_guard guard(mutex);
  if (nameGeneration == generation) deadTextures.push_back(name);
}

void ContextShared::DeleteBuried() {
  std::vector<GLuint> names;
  {
    std::lock_guard guard(mutex);
    names.swap(deadTextures);
  }
  if (!names.empty()) glDeleteTextures(static_cast<GLsizei>(names.size()), names.data());
}

void ContextShared::NewGeneration() {
  std::lock_guard guard(mutex);
  ++generation;
  deadTextures.clear();
}

std::uint64_t ContextShared::Generation() {
  std::lock_guard guard(mutex);
  return generation;
}

GLTexture::GLTexture(std::shared_ptr<ContextShared> shared, UINT width, UINT height, D3DFORMAT format,
                     D3DPOOL pool, DWORD usage)
    : m_shared(std::move(shared)), m_storage(width, height, format, pool, usage) {
  m_shared->textureBytes += static_cast<std::int64_t>(m_storage.ByteSize());
}

GLTexture::~GLTexture() {
  m_shared->textureBytes -= static_cast<std::int64_t>(m_storage.ByteSize());
  if (m_name) m_shared->Bury(m_name, m_generation);
}

HRESULT GLTexture::GetLevelDesc(UINT level, D3DSURFACE_DESC* desc) { return m_storage.GetLevelDesc(level, desc); }

HRESULT GLTexture::LockRect(UINT level, D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) {
  return m_storage.LockRect(level, locked, rect, flags);
}

HRESULT GLTexture::UnlockRect(UINT level) { return m_storage.UnlockRect(level); }

GLuint GLTexture::Prepare() {
  const std::uint64_t generation = m_shared->Generation();
  const bool fresh = m_name == 0 || m_generation != generation;
  if (fresh) {
    m_name = 0;  // a name of an older context died with it
    glGenTextures(1, &m_name);
    if (!m_name) return 0;
    m_generation = generation;
    const D3DSURFACE_DESC& desc = m_storage.Desc();
    glBindTexture(GL_TEXTURE_2D, m_name);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, static_cast<GLsizei>(desc.Width),
                 static_cast<GLsizei>(desc.Height), 0, UploadFormat(desc.Format), GL_UNSIGNED_BYTE, nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0);
    if (!HasAlpha(desc.Format)) glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_SWIZZLE_A, GL_ONE);
  } else {
    glBindTexture(GL_TEXTURE_2D, m_name);
  }
  // A new GL texture needs every texel, even when the first try finds the
  // storage locked by a writer.
  if (fresh) m_fullUploadPending = true;
  const bool taken = m_storage.TakeChanges(m_fullUploadPending, [this](const BYTE* texels, int pitch,
                                                                       const CRect& region) {
    Upload(texels, pitch, region);
  });
  if (taken) m_fullUploadPending = false;
  return m_name;
}

void GLTexture::Upload(const BYTE* texels, int pitch, const CRect& region) {
  const D3DFORMAT format = m_storage.Desc().Format;
  glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
  if (!HasAlpha(format) || IsOpaque(texels, pitch, region)) {
    glPixelStorei(GL_UNPACK_ROW_LENGTH, pitch / 4);
    glTexSubImage2D(GL_TEXTURE_2D, 0, region.left, region.top, region.Width(), region.Height(),
                    UploadFormat(format), GL_UNSIGNED_BYTE, texels);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    return;
  }
  // The drawing thread's scratch rows, kept between uploads unless large.
  static thread_local std::vector<BYTE> scratch;
  PremultiplyInto(scratch, texels, pitch, region);
  glTexSubImage2D(GL_TEXTURE_2D, 0, region.left, region.top, region.Width(), region.Height(),
                  UploadFormat(format), GL_UNSIGNED_BYTE, scratch.data());
  constexpr size_t kKeptScratchBytes = 4u << 20;
  if (scratch.capacity() > kKeptScratchBytes) std::vector<BYTE>().swap(scratch);
}

}  // namespace KarvelUI::gl
