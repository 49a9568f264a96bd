// wndcheck: opens a borderless window for a person to try the window layer
// under a real desktop. Drag it by the top band, resize it by its edges and
// corners; M maximises or restores, N minimises, Escape closes. Every
// message of interest is printed. "--seconds N" closes it by itself.

#include <GL/glcorearb.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/window/GLSurface.h"
#include "platform/window/Input.h"
#include "platform/window/Wnd.h"

using namespace KarvelUI;

namespace {

constexpr int kCaptionHeight = 32;
constexpr int kGrip = 8;
constexpr UINT_PTR kCloseTimer = 1;

class CheckWindow : public CWnd {
 public:
  bool Open() {
    WNDCLASSW cls;
    cls.style = CS_DBLCLKS | CS_HREDRAW | CS_VREDRAW;
    cls.lpszClassName = L"KarvelWndCheck";
    AfxRegisterClass(&cls);
    const DWORD style = WS_POPUP | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX | WS_SYSMENU;
    if (!CreateEx(0, L"KarvelWndCheck", L"KarvelUI window check", style, CRect(200, 150, 840, 630), nullptr, 0))
      return false;
    if (FAILED(m_surface.Create(m_hWnd))) std::printf("no GL surface: drawing is skipped\n");
    LoadGL();
    ShowWindow(SW_SHOW);
    return true;
  }

 protected:
  LRESULT OnNcHitTest(CPoint screen) override {
    CPoint p = screen;
    ScreenToClient(&p);
    CRect client;
    GetClientRect(&client);
    if (!IsZoomed()) {
      const bool left = p.x < kGrip, right = p.x >= client.right - kGrip;
      const bool top = p.y < kGrip, bottom = p.y >= client.bottom - kGrip;
      if (top) return left ? HTTOPLEFT : right ? HTTOPRIGHT : HTTOP;
      if (bottom) return left ? HTBOTTOMLEFT : right ? HTBOTTOMRIGHT : HTBOTTOM;
      if (left) return HTLEFT;
      if (right) return HTRIGHT;
    }
    return p.y < kCaptionHeight ? HTCAPTION : HTCLIENT;
  }

  void OnGetMinMaxInfo(MINMAXINFO* info) override { info->ptMinTrackSize = CPoint(240, 160); }

  void OnSize(UINT type, int cx, int cy) override {
    std::printf("WM_SIZE type %u, %d x %d\n", type, cx, cy);
    Invalidate(FALSE);
  }
  void OnMove(int x, int y) override { std::printf("WM_MOVE %d, %d\n", x, y); }
  void OnActivate(UINT state, CWnd* other, BOOL minimized) override {
    std::printf("WM_ACTIVATE state %u, other %p\n", state, static_cast<void*>(other));
    CWnd::OnActivate(state, other, minimized);
  }
  void OnLButtonDown(UINT flags, CPoint point) override {
    std::printf("WM_LBUTTONDOWN flags %u at %ld, %ld\n", flags, static_cast<long>(point.x), static_cast<long>(point.y));
  }
  void OnLButtonDblClk(UINT, CPoint point) override {
    std::printf("WM_LBUTTONDBLCLK at %ld, %ld\n", static_cast<long>(point.x), static_cast<long>(point.y));
  }
  BOOL OnMouseWheel(UINT, short delta, CPoint screen) override {
    std::printf("WM_MOUSEWHEEL %d at screen %ld, %ld\n", delta, static_cast<long>(screen.x), static_cast<long>(screen.y));
    return TRUE;
  }
  void OnKeyDown(UINT key, UINT, UINT) override {
    std::printf("WM_KEYDOWN 0x%02X\n", key);
    if (key == VK_ESCAPE) PostMessage(WM_CLOSE);
    if (key == 'M') ShowWindow(IsZoomed() ? SW_RESTORE : SW_MAXIMIZE);
    if (key == 'N') ShowWindow(SW_MINIMIZE);
  }
  void OnTimer(UINT_PTR id) override {
    if (id == kCloseTimer) PostMessage(WM_CLOSE);
  }
  void OnDestroy() override {
    m_surface.Destroy();
    PostQuitMessage(0);
  }
  void OnPaint() override {
    CPaintDC dc(this);
    if (!m_surface.MakeCurrent() || !m_clearColor) return;
    const CSize size = m_surface.GetDrawableSize();
    m_viewport(0, 0, size.cx, size.cy);
    m_clearColor(0.16f, 0.17f, 0.20f, 1.0f);
    m_clear(GL_COLOR_BUFFER_BIT);
    // The caption band, drawn with a scissored clear (GL's origin is bottom-left).
    m_enable(GL_SCISSOR_TEST);
    m_scissor(0, size.cy - kCaptionHeight, size.cx, kCaptionHeight);
    m_clearColor(0.25f, 0.45f, 0.70f, 1.0f);
    m_clear(GL_COLOR_BUFFER_BIT);
    m_disable(GL_SCISSOR_TEST);
    m_surface.SwapBuffers();
  }

 public:
  void CloseAfter(UINT seconds) { SetTimer(kCloseTimer, seconds * 1000); }

 private:
  void LoadGL() {
    m_clearColor = reinterpret_cast<PFNGLCLEARCOLORPROC>(GLSurface::GetProcAddress("glClearColor"));
    m_clear = reinterpret_cast<PFNGLCLEARPROC>(GLSurface::GetProcAddress("glClear"));
    m_viewport = reinterpret_cast<PFNGLVIEWPORTPROC>(GLSurface::GetProcAddress("glViewport"));
    m_scissor = reinterpret_cast<PFNGLSCISSORPROC>(GLSurface::GetProcAddress("glScissor"));
    m_enable = reinterpret_cast<PFNGLENABLEPROC>(GLSurface::GetProcAddress("glEnable"));
    m_disable = reinterpret_cast<PFNGLDISABLEPROC>(GLSurface::GetProcAddress("glDisable"));
    if (!m_clear || !m_viewport || !m_scissor || !m_enable || !m_disable) m_clearColor = nullptr;
  }

  GLSurface m_surface;
  PFNGLCLEARCOLORPROC m_clearColor = nullptr;
  PFNGLCLEARPROC m_clear = nullptr;
  PFNGLVIEWPORTPROC m_viewport = nullptr;
  PFNGLSCISSORPROC m_scissor = nullptr;
  PFNGLENABLEPROC m_enable = nullptr;
  PFNGLDISABLEPROC m_disable = nullptr;
};

}  // namespace

int main(int argc, char** argv) {
  CheckWindow window;
  if (!window.Open()) {
    std::fprintf(stderr, "wndcheck: the window could not be made (is there a display?)\n");
    return 1;
  }
  if (argc == 3 && std::strcmp(argv[1], "--seconds") == 0) window.CloseAfter(static_cast<UINT>(std::atoi(argv[2])));
  std::printf("Drag by the blue band, resize by the edges; M maximise/restore, N minimise, Escape close.\n");
  return RunMessageLoop();
}
