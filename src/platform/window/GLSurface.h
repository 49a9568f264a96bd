#pragma once

// One OpenGL 3.3 core context for one window: the render backend's only way
// to GL. Failures are results, never exceptions. Use it on the window's thread.

#include <karvelui/Export.h>
#include <karvelui/WindowTypes.h>

namespace KarvelUI {

struct GLSurfaceRequest {
  bool doubleBuffered = true;
  // Ask for robust access with reset notification (a lost context can be
  // detected); dropped when the driver cannot give it.
  bool robustness = true;
};

class GLSurface {
 public:
  GLSurface() = default;
  ~GLSurface();
  GLSurface(const GLSurface&) = delete;
  GLSurface& operator=(const GLSurface&) = delete;

  // Makes the context (current afterwards). S_OK; E_INVALIDARG when hwnd is
  // no window of this thread; E_FAIL when GL is not available for it.
  HRESULT Create(HWND hwnd, const GLSurfaceRequest& request = {});
  void Destroy();
  bool IsCreated() const { return m_context != nullptr; }
  HWND GetWindow() const { return m_hwnd; }

  BOOL MakeCurrent();
  static void ReleaseCurrent();
  BOOL SwapBuffers();
  // Pixels of the window's drawable (0 x 0 when the window is gone).
  CSize GetDrawableSize() const;
  // 0: no wait for the display, 1: wait, -1: adaptive. FALSE when refused.
  BOOL SetSwapInterval(int interval);
  static void* GetProcAddress(const char* name);

  // What the driver gave, which may differ from the request.
  bool IsDoubleBuffered() const { return m_doubleBuffered; }
  bool HasRobustness() const { return m_robust; }

 private:
  HWND m_hwnd = nullptr;
  void* m_context = nullptr;
  CSize m_boundSize;  // the drawable's size when the context was last bound to it
  bool m_doubleBuffered = false;
  bool m_robust = false;
};

}  // namespace KarvelUI
