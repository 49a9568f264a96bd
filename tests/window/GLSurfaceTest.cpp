#include <GL/glcorearb.h>

#include <array>

#include "WindowTestSupport.h"
#include "platform/window/GLSurface.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

// The few GL entry points the tests need, loaded through the surface.
struct GL {
  PFNGLCLEARCOLORPROC ClearColor = nullptr;
  PFNGLCLEARPROC Clear = nullptr;
  PFNGLREADPIXELSPROC ReadPixels = nullptr;
  PFNGLVIEWPORTPROC Viewport = nullptr;
  PFNGLFINISHPROC Finish = nullptr;

  bool Load() {
    ClearColor = reinterpret_cast<PFNGLCLEARCOLORPROC>(GLSurface::GetProcAddress("glClearColor"));
    Clear = reinterpret_cast<PFNGLCLEARPROC>(GLSurface::GetProcAddress("glClear"));
    ReadPixels = reinterpret_cast<PFNGLREADPIXELSPROC>(GLSurface::GetProcAddress("glReadPixels"));
    Viewport = reinterpret_cast<PFNGLVIEWPORTPROC>(GLSurface::GetProcAddress("glViewport"));
    Finish = reinterpret_cast<PFNGLFINISHPROC>(GLSurface::GetProcAddress("glFinish"));
    return ClearColor && Clear && ReadPixels && Viewport && Finish;
  }
  void Fill(float r, float g, float b) const {
    ClearColor(r, g, b, 1.0f);
    Clear(GL_COLOR_BUFFER_BIT);
    Finish();
  }
  std::array<unsigned char, 4> Pixel(int x, int y) const {
    std::array<unsigned char, 4> px{};
    ReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, px.data());
    return px;
  }
};

using Rgba = std::array<unsigned char, 4>;

}  // namespace

TEST(GLSurface, ClearsTheWindowAndReadsThePixelBack) {
  CWnd wnd;
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 64, 48)));
  GLSurface surface;
  ASSERT_EQ(surface.Create(wnd.m_hWnd), S_OK);
  GL gl;
  ASSERT_TRUE(gl.Load());
  EXPECT_EQ(surface.GetDrawableSize(), CSize(64, 48));
  gl.Fill(1.0f, 0.0f, 0.0f);
  EXPECT_EQ(gl.Pixel(10, 10), (Rgba{255, 0, 0, 255}));
  EXPECT_TRUE(surface.SwapBuffers());
}

TEST(GLSurface, KeepsWorkingAtTheNewSizeAfterAResize) {
  CWnd wnd;
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 64, 64)));
  GLSurface surface;
  ASSERT_EQ(surface.Create(wnd.m_hWnd), S_OK);
  GL gl;
  ASSERT_TRUE(gl.Load());
  wnd.MoveWindow(0, 0, 128, 96);
  ASSERT_TRUE(surface.MakeCurrent());
  EXPECT_EQ(surface.GetDrawableSize(), CSize(128, 96));
  gl.Viewport(0, 0, 128, 96);
  gl.Fill(0.0f, 1.0f, 0.0f);
  EXPECT_EQ(gl.Pixel(127, 95), (Rgba{0, 255, 0, 255}));
}

TEST(GLSurface, EachWindowHasItsOwnContext) {
  CWnd first, second;
  ASSERT_TRUE(MakeWindow(first, CRect(0, 0, 32, 32)));
  ASSERT_TRUE(MakeWindow(second, CRect(40, 0, 72, 32)));
  GLSurface a, b;
  ASSERT_EQ(a.Create(first.m_hWnd), S_OK);
  ASSERT_EQ(b.Create(second.m_hWnd), S_OK);
  GL gl;
  ASSERT_TRUE(gl.Load());
  ASSERT_TRUE(a.MakeCurrent());
  gl.Fill(0.0f, 0.0f, 1.0f);
  ASSERT_TRUE(b.MakeCurrent());
  gl.Fill(1.0f, 1.0f, 0.0f);
  ASSERT_TRUE(a.MakeCurrent());
  EXPECT_EQ(gl.Pixel(5, 5), (Rgba{0, 0, 255, 255}));
  ASSERT_TRUE(b.MakeCurrent());
  EXPECT_EQ(gl.Pixel(5, 5), (Rgba{255, 255, 0, 255}));
}

TEST(GLSurface, FailuresAreResults) {
  GLSurface surface;
  EXPECT_EQ(surface.Create(nullptr), E_INVALIDARG);
  EXPECT_FALSE(surface.IsCreated());
  EXPECT_FALSE(surface.MakeCurrent());
  EXPECT_FALSE(surface.SwapBuffers());
  EXPECT_EQ(surface.GetDrawableSize(), CSize());

  auto wnd = std::make_unique<CWnd>();
  ASSERT_TRUE(MakeWindow(*wnd, CRect(0, 0, 16, 16)));
  ASSERT_EQ(surface.Create(wnd->m_hWnd), S_OK);
  wnd.reset();
  EXPECT_FALSE(surface.MakeCurrent());
  surface.Destroy();
  EXPECT_FALSE(surface.IsCreated());
}
