#include "render/gpu/gl/GLDevice.h"


#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>

#include "platform/SystemInfo.h"
#include "render/gpu/SpriteFont.h"
#include "render/gpu/gl/GLEffect.h"

namespace KarvelUI::gl {
namespace {

// The render target's GL format for a back-buffer format; 0 when none.
GLenum RenderTargetFormat(D3DFORMAT format) {
  switch (format) {
    case D3DFMT_UNKNOWN:  // windowed: the desktop's format
    case D3DFMT_A8R8G8B8:
    case D3DFMT_X8R8G8B8:
      return GL_RGBA8;
    case D3DFMT_A1R5G5B5:
      return GL_RGB5_A1;
    case D3DFMT_R5G6B5:
      return GL_RGB565;
    default:
      return 0;
  }
}

bool BackBufferHasAlpha(D3DFORMAT format) { return format == D3DFMT_A8R8G8B8 || format == D3DFMT_A1R5G5B5; }

HRESULT CheckParameters(const D3DPRESENT_PARAMETERS& p) {
  if (p.BackBufferCount > D3DPRESENT_BACK_BUFFERS_MAX) return D3DERR_INVALIDCALL;
  if (p.SwapEffect < D3DSWAPEFFECT_DISCARD || p.SwapEffect > D3DSWAPEFFECT_COPY) return D3DERR_INVALIDCALL;
  if (!p.Windowed || p.MultiSampleType != D3DMULTISAMPLE_NONE || p.EnableAutoDepthStencil)
    return D3DERR_NOTAVAILABLE;
  if (RenderTargetFormat(p.BackBufferFormat) == 0) return D3DERR_NOTAVAILABLE;
  return S_OK;
}

// What the driver says is free for textures; drivers that do not tell
// (software renderers among them) get half the system memory. Capped so
// that it stays a positive 32-bit number of bytes.
std::int64_t DetectTextureMemory() {
  GLint kilobytes[4] = {};
  std::int64_t bytes = 0;
  if (epoxy_has_gl_extension("GL_NVX_gpu_memory_info")) {
    glGetIntegerv(GL_GPU_MEMORY_INFO_TOTAL_AVAILABLE_MEMORY_NVX, kilobytes);
    bytes = std::int64_t{kilobytes[0]} * 1024;
  } else if (epoxy_has_gl_extension("GL_ATI_meminfo")) {
    glGetIntegerv(GL_TEXTURE_FREE_MEMORY_ATI, kilobytes);
    bytes = std::int64_t{kilobytes[0]} * 1024;
  } else {
    bytes = GetPhysicalMemoryBytes() / 2;  // a shared-memory adapter: guess half of it
  }
  constexpr std::int64_t kMaxReported = std::int64_t{2047} << 20;
  return std::clamp<std::int64_t>(bytes, 0, kMaxReported);
}

}  // namespace

HRESULT GLDirect3D::CreateDevice(UINT adapter, D3DDEVTYPE type, HWND focusWindow, DWORD /*behaviorFlags*/,
                                 D3DPRESENT_PARAMETERS* params, IDirect3DDevice9** device) {
  if (!params || !device) return D3DERR_INVALIDCALL;
  *device = nullptr;
  if (adapter != D3DADAPTER_DEFAULT || (type != D3DDEVTYPE_HAL && type != D3DDEVTYPE_REF))
    return D3DERR_INVALIDCALL;
  HWND window = params->hDeviceWindow ? params->hDeviceWindow : focusWindow;
  if (!window) return D3DERR_INVALIDCALL;
  return GLDevice::Create(window, params, device);
}

GLDevice::GLDevice(HWND window) : m_window(window) {}

GLDevice::~GLDevice() {
  const bool alive = MakeCurrent();
  if (alive) m_shared->DeleteBuried();
  ReleaseGLObjects(alive);
  m_shared->NewGeneration();  // textures that outlive the device keep no names
  m_surface.Destroy();
}

HRESULT GLDevice::Create(HWND window, D3DPRESENT_PARAMETERS* params, IDirect3DDevice9** out) {
  HRESULT hr = CheckParameters(*params);
  if (FAILED(hr)) return hr;
  RefPtr<GLDevice> device = RefPtr<GLDevice>::Adopt(new GLDevice(window));
  D3DPRESENT_PARAMETERS p = *params;
  if (p.BackBufferCount == 0) p.BackBufferCount = 1;
  if (FAILED(hr = device->MakeContext(p)) || FAILED(hr = device->MakeBackBuffer(p))) return hr;
  GLint maxTexture = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maxTexture);
  device->m_caps.DeviceType = D3DDEVTYPE_HAL;
  device->m_caps.MaxTextureWidth = device->m_caps.MaxTextureHeight = static_cast<DWORD>(maxTexture);
  device->m_textureMemoryBudget = DetectTextureMemory();
  device->m_params = *params = p;
  *out = device.Detach();
  return S_OK;
}

HRESULT GLDevice::MakeContext(const D3DPRESENT_PARAMETERS& params) {
  GLSurfaceRequest request;
  request.doubleBuffered = true;
  request.robustness = true;
  if (m_surface.Create(m_window, request) != S_OK) return D3DERR_NOTAVAILABLE;
  if (params.BackBufferCount >= 2 && !m_surface.IsDoubleBuffered()) {
    m_surface.Destroy();
    return D3DERR_NOTAVAILABLE;
  }
  if (!MakeSpriteObjects()) {
    ReleaseGLObjects(true);
    m_surface.Destroy();
    return D3DERR_NOTAVAILABLE;
  }
  m_surface.SetSwapInterval(params.PresentationInterval == D3DPRESENT_INTERVAL_IMMEDIATE ? 0 : 1);
  glDisable(GL_DEPTH_TEST);
  glDisable(GL_CULL_FACE);
  return S_OK;
}

bool GLDevice::MakeSpriteObjects() {
  if (!m_program.Build()) return false;
  m_vertexArray = GLName::Make(GLKind::VertexArray);
  m_vertexBuffer = GLName::Make(GLKind::Buffer);
  m_indexBuffer = GLName::Make(GLKind::Buffer);
  if (!m_vertexArray || !m_vertexBuffer || !m_indexBuffer) return false;
  glBindVertexArray(m_vertexArray.Get());
  glBindBuffer(GL_ARRAY_BUFFER, m_vertexBuffer.Get());
  constexpr GLsizei stride = sizeof(SpriteVertex);
  glEnableVertexAttribArray(0);
  glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, stride, reinterpret_cast<const void*>(offsetof(SpriteVertex, x)));
  glEnableVertexAttribArray(1);
  glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, stride, reinterpret_cast<const void*>(offsetof(SpriteVertex, u)));
  glEnableVertexAttribArray(2);
  glVertexAttribPointer(2, GL_BGRA, GL_UNSIGNED_BYTE, GL_TRUE, stride,
                        reinterpret_cast<const void*>(offsetof(SpriteVertex, color)));
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_indexBuffer.Get());
  m_indexedQuads = 0;
  return true;
}

HRESULT GLDevice::MakeBackBuffer(D3DPRESENT_PARAMETERS& params) {
  const CSize drawable = m_surface.GetDrawableSize();
  if (params.BackBufferWidth == 0) params.BackBufferWidth = static_cast<UINT>(std::max<LONG>(1, drawable.cx));
  if (params.BackBufferHeight == 0) params.BackBufferHeight = static_cast<UINT>(std::max<LONG>(1, drawable.cy));
  GLint maxSize = 0;
  glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &maxSize);
  if (params.BackBufferWidth > static_cast<UINT>(maxSize) || params.BackBufferHeight > static_cast<UINT>(maxSize))
    return D3DERR_NOTAVAILABLE;

  m_backBuffer = GLName::Make(GLKind::Framebuffer);
  m_backBufferColor = GLName::Make(GLKind::Renderbuffer);
  glBindRenderbuffer(GL_RENDERBUFFER, m_backBufferColor.Get());
  while (glGetError() != GL_NO_ERROR) {
  }
  glRenderbufferStorage(GL_RENDERBUFFER, RenderTargetFormat(params.BackBufferFormat),
                        static_cast<GLsizei>(params.BackBufferWidth), static_cast<GLsizei>(params.BackBufferHeight));
  const bool stored = glGetError() == GL_NO_ERROR;
  glBindFramebuffer(GL_FRAMEBUFFER, m_backBuffer.Get());
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, m_backBufferColor.Get());
  if (!stored || glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
    m_backBuffer.Reset();
    m_backBufferColor.Reset();
    return D3DERR_NOTAVAILABLE;
  }
  glViewport(0, 0, static_cast<GLsizei>(params.BackBufferWidth), static_cast<GLsizei>(params.BackBufferHeight));
  glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
  glClear(GL_COLOR_BUFFER_BIT);
  return S_OK;
}

void GLDevice::ReleaseGLObjects(bool contextAlive) {
  for (GLName* name : {&m_program.program, &m_vertexArray, &m_vertexBuffer, &m_indexBuffer, &m_backBuffer,
                       &m_backBufferColor, &m_effectArray, &m_effectBuffer}) {
    if (contextAlive) {
      name->Reset();
    } else {
      name->Abandon();
    }
  }
  m_indexedQuads = 0;
}

bool GLDevice::MakeCurrent() { return m_surface.MakeCurrent() == TRUE; }

HRESULT GLDevice::GetDeviceCaps(D3DCAPS9* caps) {
  if (!caps) return D3DERR_INVALIDCALL;
  *caps = m_caps;
  return S_OK;
}

UINT GLDevice::GetAvailableTextureMem() {
  const std::int64_t left = std::max<std::int64_t>(0, m_textureMemoryBudget - m_shared->textureBytes.load());
  return static_cast<UINT>(left >> 20 << 20);
}

HRESULT GLDevice::Reset(D3DPRESENT_PARAMETERS* params) {
  if (!params || m_spriteCount > 0) return D3DERR_INVALIDCALL;
  HRESULT hr = CheckParameters(*params);
  if (FAILED(hr)) return hr;
  D3DPRESENT_PARAMETERS p = *params;
  if (p.BackBufferCount == 0) p.BackBufferCount = 1;
  m_inScene = false;
  m_openSprites.clear();
  if (m_lost) {
    // A new context; the old one's names go with it.
    ReleaseGLObjects(MakeCurrent());
    m_surface.Destroy();
    m_shared->NewGeneration();
    if (FAILED(hr = MakeContext(p))) return hr;
    m_lost = false;
  } else {
    if (!MakeCurrent()) return D3DERR_DEVICELOST;
    if (p.BackBufferCount >= 2 && !m_surface.IsDoubleBuffered()) return D3DERR_NOTAVAILABLE;
    m_surface.SetSwapInterval(p.PresentationInterval == D3DPRESENT_INTERVAL_IMMEDIATE ? 0 : 1);
  }
  if (FAILED(hr = MakeBackBuffer(p))) {
    m_lost = true;  // no back buffer: only another Reset helps
    return hr;
  }
  m_params = *params = p;
  return S_OK;
}

HRESULT GLDevice::Clear(DWORD count, const D3DRECT* rects, DWORD flags, D3DCOLOR color, float /*z*/,
                        DWORD /*stencil*/) {
  // There is no depth or stencil buffer to clear.
  if ((flags & ~D3DCLEAR_TARGET) != 0 || (count > 0 && !rects)) return D3DERR_INVALIDCALL;
  if (!(flags & D3DCLEAR_TARGET) || m_lost) return S_OK;
  if (!MakeCurrent()) return E_FAIL;
  FlushOpenSprites();
  BindBackBuffer();
  glClearColor(static_cast<float>((color >> 16) & 0xFF) / 255.0f, static_cast<float>((color >> 8) & 0xFF) / 255.0f,
               static_cast<float>(color & 0xFF) / 255.0f, static_cast<float>(color >> 24) / 255.0f);
  if (count == 0) {
    glClear(GL_COLOR_BUFFER_BIT);
    return S_OK;
  }
  glEnable(GL_SCISSOR_TEST);
  for (DWORD i = 0; i < count; ++i) {
    const D3DRECT& r = rects[i];
    if (r.x2 <= r.x1 || r.y2 <= r.y1) continue;
    glScissor(r.x1, static_cast<GLint>(m_params.BackBufferHeight) - r.y2, r.x2 - r.x1, r.y2 - r.y1);
    glClear(GL_COLOR_BUFFER_BIT);
  }
  glDisable(GL_SCISSOR_TEST);
  return S_OK;
}

HRESULT GLDevice::BeginScene() {
  if (m_inScene) return D3DERR_INVALIDCALL;
  if (!m_lost && !MakeCurrent()) return E_FAIL;
  m_inScene = true;
  if (!m_lost) m_shared->DeleteBuried();
  return S_OK;
}

HRESULT GLDevice::EndScene() {
  if (!m_inScene) return D3DERR_INVALIDCALL;
  m_inScene = false;
  return S_OK;
}

HRESULT GLDevice::Present(const RECT* source, const RECT* dest, HWND overrideWindow, const void* /*dirtyRegion*/) {
  if (overrideWindow && overrideWindow != m_window) return D3DERR_INVALIDCALL;
  if (m_lost) return D3DERR_DEVICELOST;
  if (!MakeCurrent()) return E_FAIL;
  FlushOpenSprites();
  const CSize drawable = m_surface.GetDrawableSize();
  const RECT src = source ? *source
                          : RECT(0, 0, static_cast<LONG>(m_params.BackBufferWidth),
                                 static_cast<LONG>(m_params.BackBufferHeight));
  const RECT dst = dest ? *dest : RECT(0, 0, drawable.cx, drawable.cy);
  if (!src.IsRectEmpty() && !dst.IsRectEmpty()) {
    glBindFramebuffer(GL_READ_FRAMEBUFFER, m_backBuffer.Get());
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
    // Both keep GL's bottom-up rows, so a copy of equal size is a plain copy.
    const GLenum filter = src.Size() == dst.Size() ? GL_NEAREST : GL_LINEAR;
    const LONG height = static_cast<LONG>(m_params.BackBufferHeight);
    glBlitFramebuffer(src.left, height - src.bottom, src.right, height - src.top, dst.left, drawable.cy - dst.bottom,
                      dst.right, drawable.cy - dst.top, GL_COLOR_BUFFER_BIT, filter);
  }
  m_surface.SwapBuffers();
  if (ContextWasReset()) m_lost = true;
  return m_lost ? D3DERR_DEVICELOST : S_OK;
}

bool GLDevice::ContextWasReset() {
  if (!m_surface.HasRobustness()) return false;
  GLenum status = GL_NO_ERROR;
  if (epoxy_gl_version() >= 45 || epoxy_has_gl_extension("GL_KHR_robustness")) {
    status = glGetGraphicsResetStatus();
  } else if (epoxy_has_gl_extension("GL_ARB_robustness")) {
    status = glGetGraphicsResetStatusARB();
  }
  return status != GL_NO_ERROR;
}

HRESULT GLDevice::CreateTexture(UINT width, UINT height, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                                IDirect3DTexture9** texture, HANDLE* shared) {
  if (!texture || shared) return D3DERR_INVALIDCALL;
  *texture = nullptr;
  const HRESULT hr = TextureStorage::Validate(width, height, levels, format, m_caps.MaxTextureWidth,
                                              m_caps.MaxTextureHeight);
  if (FAILED(hr)) return hr;
  try {
    *texture = new GLTexture(m_shared, width, height, format, pool, usage);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
  return S_OK;
}

HRESULT GLDevice::CreateSprite(ID3DXSprite** sprite) {
  if (!sprite) return D3DERR_INVALIDCALL;
  *sprite = new GLSprite(RefPtr<GLDevice>::Share(this));
  return S_OK;
}

HRESULT GLDevice::CreateFont(const D3DXFONT_DESCW& desc, ID3DXFont** font) {
  return SpriteFont::Create(this, desc, font);
}

HRESULT GLDevice::ReadBackBuffer(std::vector<DWORD>& pixels, CSize& size) {
  if (m_lost || !MakeCurrent()) return D3DERR_DEVICELOST;
  FlushOpenSprites();
  const auto width = static_cast<GLsizei>(m_params.BackBufferWidth);
  const auto height = static_cast<GLsizei>(m_params.BackBufferHeight);
  pixels.resize(static_cast<size_t>(width) * height);
  glBindFramebuffer(GL_READ_FRAMEBUFFER, m_backBuffer.Get());
  glPixelStorei(GL_PACK_ALIGNMENT, 4);
  glPixelStorei(GL_PACK_ROW_LENGTH, 0);
  // BGRA bytes are the DWORD 0xAARRGGBB. GL's rows run bottom-up.
  glReadPixels(0, 0, width, height, GL_BGRA, GL_UNSIGNED_BYTE, pixels.data());
  for (GLsizei top = 0, bottom = height - 1; top < bottom; ++top, --bottom)
    std::swap_ranges(pixels.begin() + static_cast<ptrdiff_t>(top) * width,
                     pixels.begin() + static_cast<ptrdiff_t>(top + 1) * width,
                     pixels.begin() + static_cast<ptrdiff_t>(bottom) * width);
  if (!BackBufferHasAlpha(m_params.BackBufferFormat))
    for (DWORD& p : pixels) p |= 0xFF000000u;
  size = CSize(width, height);
  return S_OK;
}

void GLDevice::SpriteOpened(GLSprite* sprite) {
  FlushOpenSprites();  // what an outer batch holds goes first
  m_openSprites.push_back(sprite);
}

void GLDevice::SpriteClosed(GLSprite* sprite) { std::erase(m_openSprites, sprite); }

void GLDevice::FlushOpenSprites() {
  for (GLSprite* sprite : m_openSprites) sprite->Flush();
}

void GLDevice::BindBackBuffer() {
  glBindFramebuffer(GL_FRAMEBUFFER, m_backBuffer.Get());
  glViewport(0, 0, static_cast<GLsizei>(m_params.BackBufferWidth), static_cast<GLsizei>(m_params.BackBufferHeight));
}

void GLDevice::EnsureQuadIndices(size_t quads) {
  if (quads <= m_indexedQuads) return;
  const size_t count = std::max({quads, m_indexedQuads * 2, size_t{1024}});
  std::vector<GLuint> indices(count * 6);
  for (size_t q = 0; q < count; ++q) {
    const auto v = static_cast<GLuint>(q * 4);
    GLuint* i = &indices[q * 6];
    i[0] = v, i[1] = v + 1, i[2] = v + 2, i[3] = v + 2, i[4] = v + 1, i[5] = v + 3;
  }
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_indexBuffer.Get());
  glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indices.size() * sizeof(GLuint)), indices.data(),
               GL_STATIC_DRAW);
  m_indexedQuads = count;
}

HRESULT GLDevice::DrawSprites(const std::vector<SpriteVertex>& vertices, const std::vector<SpriteRun>& runs,
                              bool blend) {
  if (m_lost) return S_OK;  // a lost device draws nothing until it is reset
  if (!MakeCurrent()) return E_FAIL;
  BindBackBuffer();
  glUseProgram(m_program.program.Get());
  glUniform2f(m_program.viewportScale, 2.0f / static_cast<float>(m_params.BackBufferWidth),
              2.0f / static_cast<float>(m_params.BackBufferHeight));
  glUniform1i(m_program.straightOutput, blend ? 0 : 1);
  if (blend) {
    glEnable(GL_BLEND);
    glBlendFuncSeparate(GL_ONE, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
  } else {
    glDisable(GL_BLEND);
  }
  glBindVertexArray(m_vertexArray.Get());
  glBindBuffer(GL_ARRAY_BUFFER, m_vertexBuffer.Get());
  glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size() * sizeof(SpriteVertex)), vertices.data(),
               GL_STREAM_DRAW);
  EnsureQuadIndices(vertices.size() / 4);
  glActiveTexture(GL_TEXTURE0);
  for (const SpriteRun& run : runs) {
    if (!run.texture->Prepare()) continue;
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(run.quadCount * 6), GL_UNSIGNED_INT,
                   reinterpret_cast<const void*>(size_t{run.firstQuad} * 6 * sizeof(GLuint)));
  }
  return S_OK;
}

// --- effects -----------------------------------------------------------------------

HRESULT GLDevice::CreateEffect(const std::string& source, DWORD /*flags*/, ID3DXEffect** effect,
                               std::string* messages) {
  if (!effect) return D3DERR_INVALIDCALL;
  *effect = nullptr;
  if (m_lost) return D3DERR_DEVICELOST;
  return GLEffect::Create(RefPtr<GLDevice>::Share(this), source, effect, messages);
}

HRESULT GLDevice::SetTexture(DWORD stage, IDirect3DTexture9* texture) {
  if (stage != 0) return D3DERR_INVALIDCALL;
  auto* glTexture = dynamic_cast<GLTexture*>(texture);
  if (texture && (!glTexture || !glTexture->BelongsTo(m_shared.get()))) return D3DERR_INVALIDCALL;
  m_stageTexture = RefPtr<GLTexture>::Share(glTexture);
  return S_OK;
}

void GLDevice::EffectPassClosed(GLEffect* effect) {
  if (m_effectPass == effect) m_effectPass = nullptr;
}

bool GLDevice::MakeEffectObjects() {
  if (m_effectArray) return true;
  m_effectArray = GLName::Make(GLKind::VertexArray);
  m_effectBuffer = GLName::Make(GLKind::Buffer);
  if (!m_effectArray || !m_effectBuffer) return false;
  glBindVertexArray(m_effectArray.Get());
  glBindBuffer(GL_ARRAY_BUFFER, m_effectBuffer.Get());
  constexpr GLsizei stride = sizeof(D3DEFFECTVERTEX);
  glEnableVertexAttribArray(0);
  glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, stride, reinterpret_cast<const void*>(offsetof(D3DEFFECTVERTEX, x)));
  glEnableVertexAttribArray(1);
  glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, stride, reinterpret_cast<const void*>(offsetof(D3DEFFECTVERTEX, u)));
  return true;
}

HRESULT GLDevice::DrawPrimitiveUP(D3DPRIMITIVETYPE type, UINT primitiveCount, const void* vertices, UINT stride) {
  if (type != D3DPT_TRIANGLESTRIP || primitiveCount == 0 || !vertices || stride < sizeof(D3DEFFECTVERTEX) ||
      !m_effectPass)
    return D3DERR_INVALIDCALL;
  if (m_lost) return S_OK;  // a lost device draws nothing until it is reset
  if (!MakeCurrent()) return E_FAIL;
  FlushOpenSprites();
  if (!MakeEffectObjects() || !m_effectPass->Use()) return E_FAIL;

  // GL puts pixel (0, 0)'s centre half a pixel right of and below (-1, 1).
  const float shiftX = 1.0f / static_cast<float>(m_params.BackBufferWidth);
  const float shiftY = 1.0f / static_cast<float>(m_params.BackBufferHeight);
  std::vector<D3DEFFECTVERTEX> strip(primitiveCount + 2);
  const auto* bytes = static_cast<const BYTE*>(vertices);
  for (size_t i = 0; i < strip.size(); ++i) {
    std::memcpy(&strip[i], bytes + i * stride, sizeof(D3DEFFECTVERTEX));
    strip[i].x += shiftX;
    strip[i].y -= shiftY;
  }
  BindBackBuffer();
  glDisable(GL_BLEND);
  glBindVertexArray(m_effectArray.Get());
  glBindBuffer(GL_ARRAY_BUFFER, m_effectBuffer.Get());
  glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(strip.size() * sizeof(D3DEFFECTVERTEX)), strip.data(),
               GL_STREAM_DRAW);
  glActiveTexture(GL_TEXTURE0);
  if (!m_stageTexture || !m_stageTexture->Prepare()) glBindTexture(GL_TEXTURE_2D, 0);  // samples read black
  glDrawArrays(GL_TRIANGLE_STRIP, 0, static_cast<GLsizei>(strip.size()));
  return S_OK;
}

}  // namespace KarvelUI::gl

namespace KarvelUI {

IDirect3D9* Direct3DCreate9(UINT sdkVersion) {
  if (sdkVersion != D3D_SDK_VERSION) return nullptr;
  return new gl::GLDirect3D();
}

}  // namespace KarvelUI
