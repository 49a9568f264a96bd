// The GL surface of a window: one context per window, following resizes,
// and failures as results.

#include <GL/glcorearb.h>

#include <array>

#include "platform/window/GLSurface.h"
#include "support/WindowTesting.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

using Rgba = std::array<unsigned char, 4>;

// Clears the current context's drawable to a colour and reads a pixel back.
Rgba FillAndRead(float r, float g, float b, int x, int y) {
  auto load = [](const char* name) { return GLSurface::GetProcAddress(name); };
  reinterpret_cast<PFNGLCLEARCOLORPROC>(load("glClearColor"))(r, g, b, 1.0f);
  reinterpret_cast<PFNGLCLEARPROC>(load("glClear"))(GL_COLOR_BUFFER_BIT);
  Rgba pixel{};
  reinterpret_cast<PFNGLREADPIXELSPROC>(load("glReadPixels"))(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
  return pixel;
}

Rgba ReadPixel(int x, int y) {
  Rgba pixel{};
  reinterpret_cast<PFNGLREADPIXELSPROC>(GLSurface::GetProcAddress("glReadPixels"))(x, y, 1, 1, GL_RGBA,
                                                                                    GL_UNSIGNED_BYTE, pixel.data());
  return pixel;
}

}  // namespace

TEST(GLSurface, ClearsTheWindowAtItsSizeBeforeAndAfterAResize) {
  CWnd wnd;
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 64, 48)));
  GLSurface surface;
  ASSERT_EQ(surface.Create(wnd.m_hWnd), S_OK);
  EXPECT_EQ(surface.GetDrawableSize(), CSize(64, 48));
  EXPECT_EQ(FillAndRead(1, 0, 0, 10, 10), (Rgba{255, 0, 0, 255}));
  EXPECT_TRUE(surface.SwapBuffers());
  wnd.MoveWindow(0, 0, 128, 96);
  ASSERT_TRUE(surface.MakeCurrent());
  EXPECT_EQ(surface.GetDrawableSize(), CSize(128, 96));
  reinterpret_cast<PFNGLVIEWPORTPROC>(GLSurface::GetProcAddress("glViewport"))(0, 0, 128, 96);
  EXPECT_EQ(FillAndRead(0, 1, 0, 127, 95), (Rgba{0, 255, 0, 255}));
}

TEST(GLSurface, EachWindowHasItsOwnContext) {
  CWnd first, second;
  ASSERT_TRUE(MakeWindow(first, CRect(0, 0, 32, 32)));
  ASSERT_TRUE(MakeWindow(second, CRect(40, 0, 72, 32)));
  GLSurface a, b;
  ASSERT_EQ(a.Create(first.m_hWnd), S_OK);
  ASSERT_EQ(b.Create(second.m_hWnd), S_OK);
  ASSERT_TRUE(a.MakeCurrent());
  FillAndRead(0, 0, 1, 5, 5);
  ASSERT_TRUE(b.MakeCurrent());
  FillAndRead(1, 1, 0, 5, 5);
  for (auto [surface, colour] : {std::pair{&a, Rgba{0, 0, 255, 255}}, std::pair{&b, Rgba{255, 255, 0, 255}}}) {
    ASSERT_TRUE(surface->MakeCurrent());
    EXPECT_EQ(ReadPixel(5, 5), colour);
  }
}

TEST(GLSurface, FailuresAreResults) {
  GLSurface surface;
  EXPECT_EQ(surface.Create(nullptr), E_INVALIDARG);
  EXPECT_FALSE(surface.MakeCurrent() || surface.SwapBuffers());
  EXPECT_EQ(surface.GetDrawableSize(), CSize());
  auto wnd = std::make_unique<CWnd>();
  ASSERT_TRUE(MakeWindow(*wnd, CRect(0, 0, 16, 16)));
  ASSERT_EQ(surface.Create(wnd->m_hWnd), S_OK);
  wnd.reset();
  EXPECT_FALSE(surface.MakeCurrent());
  surface.Destroy();
  EXPECT_FALSE(surface.IsCreated());
}
