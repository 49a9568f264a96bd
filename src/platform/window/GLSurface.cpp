#include "platform/window/GLSurface.h"

#include <SDL.h>

#include "platform/window/NativeWindow.h"

namespace KarvelUI {
namespace {

void SetContextAttributes(const GLSurfaceRequest& request, bool robust) {
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 3);
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 3);
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_CORE);
  SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, request.doubleBuffered ? 1 : 0);
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_FLAGS, robust ? SDL_GL_CONTEXT_ROBUST_ACCESS_FLAG : 0);
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_RESET_NOTIFICATION,
                      robust ? SDL_GL_CONTEXT_RESET_LOSE_CONTEXT : SDL_GL_CONTEXT_RESET_NO_NOTIFICATION);
}

}  // namespace

GLSurface::~GLSurface() { Destroy(); }

HRESULT GLSurface::Create(HWND hwnd, const GLSurfaceRequest& request) {
  Destroy();
  SDL_Window* window = detail::SdlWindowOf(hwnd);
  if (!window) return E_INVALIDARG;
  if (!(SDL_GetWindowFlags(window) & SDL_WINDOW_OPENGL)) return E_FAIL;
  SDL_GLContext context = nullptr;
  bool robust = request.robustness;
  SetContextAttributes(request, robust);
  context = SDL_GL_CreateContext(window);
  if (!context && robust) {
    robust = false;
    SetContextAttributes(request, false);
    context = SDL_GL_CreateContext(window);
  }
  if (!context) return E_FAIL;
  m_hwnd = hwnd;
  m_context = context;
  int value = 0;
  m_doubleBuffered = SDL_GL_GetAttribute(SDL_GL_DOUBLEBUFFER, &value) == 0 && value != 0;
  m_robust = robust && SDL_GL_GetAttribute(SDL_GL_CONTEXT_FLAGS, &value) == 0 &&
             (value & SDL_GL_CONTEXT_ROBUST_ACCESS_FLAG) != 0;
  return S_OK;
}

void GLSurface::Destroy() {
  if (!m_context) return;
  SDL_GL_DeleteContext(static_cast<SDL_GLContext>(m_context));
  m_context = nullptr;
  m_hwnd = nullptr;
  m_doubleBuffered = false;
  m_robust = false;
}

BOOL GLSurface::MakeCurrent() {
  SDL_Window* window = detail::SdlWindowOf(m_hwnd);
  if (!m_context || !window) return FALSE;
  // A software GL on X11 learns a window's new size only when the context
  // is bound to it again; SDL skips binding what is bound already.
  const CSize size = GetDrawableSize();
  if (size != m_boundSize && SDL_GL_GetCurrentContext() == m_context) SDL_GL_MakeCurrent(window, nullptr);
  m_boundSize = size;
  return SDL_GL_MakeCurrent(window, static_cast<SDL_GLContext>(m_context)) == 0 ? TRUE : FALSE;
}

void GLSurface::ReleaseCurrent() {
  if (SDL_GL_GetCurrentContext()) SDL_GL_MakeCurrent(SDL_GL_GetCurrentWindow(), nullptr);
}

BOOL GLSurface::SwapBuffers() {
  SDL_Window* window = detail::SdlWindowOf(m_hwnd);
  if (!m_context || !window) return FALSE;
  SDL_GL_SwapWindow(window);
  return TRUE;
}

CSize GLSurface::GetDrawableSize() const {
  SDL_Window* window = detail::SdlWindowOf(m_hwnd);
  if (!window) return {};
  int w = 0, h = 0;
  SDL_GL_GetDrawableSize(window, &w, &h);
  return CSize(w, h);
}

BOOL GLSurface::SetSwapInterval(int interval) {
  if (!MakeCurrent()) return FALSE;
  return SDL_GL_SetSwapInterval(interval) == 0 ? TRUE : FALSE;
}

void* GLSurface::GetProcAddress(const char* name) { return name ? SDL_GL_GetProcAddress(name) : nullptr; }

}  // namespace KarvelUI
