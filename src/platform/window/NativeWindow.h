#pragma once

// Internal: the SDL window behind a CWnd, and the start of SDL's video
// subsystem. Only the window layer's sources include this header.

#include <cstdint>
#include <memory>

#include <karvelui/WindowTypes.h>

struct SDL_Window;

namespace KarvelUI::detail {

// Starts SDL video on the calling thread the first time; afterwards true
// only on that same thread (the user-interface thread).
bool EnsureVideo();
bool IsVideoThread();
// SDL's video driver is the headless one (no desktop, surfaces fixed in size).
bool IsHeadlessDriver();
// Windows are moved and sized by their captions and grips in this library
// (X11), not handed to the desktop through SDL's hit testing.
bool LibraryMovesWindows();

struct NativeOptions {
  CString title;
  CRect screenRect;
  bool borderless = true;
  bool resizable = false;
  bool skipTaskbar = false;
  bool topmost = false;
};

class NativeWindow {
 public:
  // Null when SDL cannot make the window.
  static std::unique_ptr<NativeWindow> Create(const NativeOptions& options, HWND hwnd);
  ~NativeWindow();
  NativeWindow(const NativeWindow&) = delete;
  NativeWindow& operator=(const NativeWindow&) = delete;

  SDL_Window* Sdl() const { return m_window; }
  std::uint32_t Id() const { return m_id; }
  bool HasGL() const { return m_gl; }

  void SetTitle(const CString& title);
  void SetBounds(const CRect& screenRect);
  void Show(bool activate);
  void Hide();
  void Raise();
  void Minimize();
  void Restore();
  // True once when the desktop showed the window again after Minimize hid it.
  bool ShownAgainByDesktop();
  void SetTopmost(bool topmost);
  void SetResizable(bool resizable);
  void SetBordered(bool bordered);
  void SetOpacity(float opacity);
  // Limits for the user's resizing; a zero size means no limit.
  void SetSizeLimits(const CSize& minimum, const CSize& maximum);
  // Cuts the window to region (window coordinates; null: the whole window) where SDL can.
  void SetShape(const Region* region, const CSize& size);

 private:
  NativeWindow(SDL_Window* window, HWND hwnd, bool shaped, bool gl, std::uint32_t flags);
  void Recreate(const CRect& screenRect);

  SDL_Window* m_window;
  HWND m_hwnd;
  std::uint32_t m_id;
  bool m_shaped;
  bool m_gl;
  std::uint32_t m_flags;
  bool m_visible = false;
  bool m_hiddenAsMinimized = false;  // minimised where no window manager could iconify it
};

HWND HwndFromSdlWindowId(std::uint32_t id);
SDL_Window* SdlWindowOf(HWND hwnd);

}  // namespace KarvelUI::detail
