#pragma once

// CWnd: a desktop window with a handle and a virtual window procedure, in
// the shape the library's forms, menus and tooltips are written against.
//
// The object owns the window: CreateEx makes it, DestroyWindow (or the
// destructor) ends it. Everything except PostMessage/SendMessage must be
// called on the thread that created the window. The frame of a window is
// drawn by the desktop, outside it: window and client rectangles have the
// same size, and the window rectangle is the client area on screen.
//
// Mapping to the desktop: a window without the full caption style is
// borderless; WS_THICKFRAME lets the user resize it; WS_EX_TOPMOST keeps it
// above others; WS_EX_TOOLWINDOW (given to CreateEx) keeps it off the
// taskbar; a WS_CHILD window is a borderless window kept at its place over
// its parent's client area.

#include <memory>

#include <karvelui/Export.h>
#include <karvelui/MessageQueue.h>
#include <karvelui/WindowTypes.h>

namespace KarvelUI {

namespace detail {
struct WindowState;
WindowState* StateOf(HWND hwnd);
}  // namespace detail

class KARVELUI_API CWnd {
 public:
  CWnd();
  virtual ~CWnd();
  CWnd(const CWnd&) = delete;
  CWnd& operator=(const CWnd&) = delete;

  HWND m_hWnd = nullptr;
  HWND GetSafeHwnd() const { return m_hWnd; }
  operator HWND() const { return m_hWnd; }  // NOLINT: MFC converts implicitly
  // The live window object of hwnd on the calling thread, else null.
  static CWnd* FromHandle(HWND hwnd);

  // --- creation and destruction -------------------------------------------------
  // The class must be registered (RegisterClassW). rect is in screen
  // coordinates, or in the parent's client coordinates for WS_CHILD.
  // Sends WM_CREATE (-1 fails the creation), WM_GETMINMAXINFO, WM_SIZE and
  // WM_MOVE, and shows the window when style has WS_VISIBLE.
  virtual BOOL CreateEx(DWORD exStyle, const wchar_t* className, const wchar_t* windowName, DWORD style,
                        const CRect& rect, CWnd* parent, UINT id, void* param = nullptr);
  virtual BOOL Create(const wchar_t* className, const wchar_t* windowName, DWORD style, const CRect& rect,
                      CWnd* parent, UINT id);
  // Sends WM_DESTROY (children and owned windows go first), then PostNcDestroy.
  virtual BOOL DestroyWindow();

  // --- messages ----------------------------------------------------------------------
  LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
  BOOL PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
  // Called before a message of this window (or of a child) is dispatched;
  // TRUE consumes it.
  virtual BOOL PreTranslateMessage(MSG* msg);
  // Routes messages to the On... handlers below; each default handler
  // passes the message on to DefWindowProc.
  virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
  virtual LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
  // DefWindowProc for the message WindowProc is handling now.
  LRESULT Default();

  // --- modal loop ------------------------------------------------------------------------
  // Retrieves and dispatches until EndModalLoop (returns its result), the
  // window is destroyed or WM_QUIT arrives (re-posted; returns -1).
  int RunModalLoop(DWORD flags = 0);
  virtual BOOL ContinueModal();
  virtual void EndModalLoop(int result);

  // --- styles and identity -----------------------------------------------------------------
  DWORD GetStyle() const;
  DWORD GetExStyle() const;
  BOOL ModifyStyle(DWORD remove, DWORD add, UINT swpFlags = 0);
  BOOL ModifyStyleEx(DWORD remove, DWORD add, UINT swpFlags = 0);
  UINT GetDlgCtrlID() const;
  // The parent of a child window, else the owner.
  CWnd* GetParent() const;
  CWnd* GetOwner() const;
  CString GetWindowText() const;
  void SetWindowText(const wchar_t* text);
  CString GetClassName() const;

  // --- visibility, position, size ---------------------------------------------------------
  // Returns whether the window was visible before.
  BOOL ShowWindow(int showCommand);
  // insertAfter: HWND_TOP, HWND_TOPMOST, HWND_NOTOPMOST (or null with SWP_NOZORDER).
  // Without SWP_NOACTIVATE a visible top-level window is activated.
  BOOL SetWindowPos(HWND insertAfter, int x, int y, int cx, int cy, UINT flags);
  void MoveWindow(int x, int y, int width, int height, BOOL repaint = TRUE);
  void MoveWindow(const CRect& rect, BOOL repaint = TRUE);
  void CenterWindow(CWnd* alternateOwner = nullptr);
  void GetWindowRect(CRect* rect) const;
  void GetClientRect(CRect* rect) const;
  void ClientToScreen(CPoint* point) const;
  void ClientToScreen(CRect* rect) const;
  void ScreenToClient(CPoint* point) const;
  void ScreenToClient(CRect* rect) const;
  BOOL IsWindowVisible() const;
  BOOL IsWindowEnabled() const;
  BOOL IsIconic() const;
  BOOL IsZoomed() const;
  // Returns whether the window was disabled before; sends WM_ENABLE.
  BOOL EnableWindow(BOOL enable = TRUE);

  // --- activation, focus, capture ------------------------------------------------------------
  CWnd* SetActiveWindow();
  BOOL SetForegroundWindow();
  CWnd* SetFocus();
  CWnd* SetCapture();

  // --- painting --------------------------------------------------------------------------
  void Invalidate(BOOL erase = TRUE);
  void InvalidateRect(const CRect* rect, BOOL erase = TRUE);
  void ValidateRect(const CRect* rect);
  BOOL GetUpdateRect(CRect* rect) const;
  // Sends WM_PAINT at once when part of the window is invalid.
  void UpdateWindow();
  // Opens a paint scope: takes the invalid area (erasing first when asked)
  // and validates it.
  void* BeginPaint(PAINTSTRUCT* paint);
  void EndPaint(const PAINTSTRUCT* paint);

  // --- timers ------------------------------------------------------------------------------
  UINT_PTR SetTimer(UINT_PTR id, UINT elapse, TIMERPROC proc = nullptr);
  BOOL KillTimer(UINT_PTR id);

  // --- shape and translucency ------------------------------------------------------------------
  // Takes the region (window coordinates; null removes it). Points outside it
  // are not part of the window: no mouse input, HTNOWHERE.
  int SetWindowRgn(HRGN region, BOOL redraw);
  // Copies the region into out; NULLREGION/SIMPLEREGION/COMPLEXREGION, or RGN_ERROR without one.
  int GetWindowRgn(Region& out) const;
  // Needs WS_EX_LAYERED. LWA_ALPHA sets the window's opacity.
  BOOL SetLayeredWindowAttributes(COLORREF key, BYTE alpha, DWORD flags);
  BOOL GetLayeredWindowAttributes(COLORREF* key, BYTE* alpha, DWORD* flags) const;

 protected:
  // Message handlers (the message map). Each default calls Default().
  virtual int OnCreate(LPCREATESTRUCT createStruct);
  virtual void OnDestroy();
  // After the window is gone; the object may delete itself here.
  virtual void PostNcDestroy();
  virtual void OnClose();
  virtual void OnSize(UINT type, int cx, int cy);
  virtual void OnMove(int x, int y);
  virtual void OnTimer(UINT_PTR id);
  virtual void OnPaint();
  virtual BOOL OnEraseBkgnd();
  virtual void OnGetMinMaxInfo(MINMAXINFO* info);
  virtual LRESULT OnNcHitTest(CPoint screenPoint);
  virtual void OnActivate(UINT state, CWnd* other, BOOL minimized);
  virtual void OnShowWindow(BOOL show, UINT status);
  virtual void OnSysCommand(UINT id, LPARAM lParam);
  virtual void OnSetFocus(CWnd* oldWnd);
  virtual void OnKillFocus(CWnd* newWnd);
  virtual BOOL OnSetCursor(CWnd* wnd, UINT hitTest, UINT message);
  virtual void OnCaptureChanged(CWnd* wnd);
  virtual void OnMouseMove(UINT flags, CPoint point);
  virtual void OnLButtonDown(UINT flags, CPoint point);
  virtual void OnLButtonUp(UINT flags, CPoint point);
  virtual void OnLButtonDblClk(UINT flags, CPoint point);
  virtual void OnRButtonDown(UINT flags, CPoint point);
  virtual void OnRButtonUp(UINT flags, CPoint point);
  virtual BOOL OnMouseWheel(UINT flags, short delta, CPoint screenPoint);
  virtual void OnMouseHover(UINT flags, CPoint point);
  virtual void OnMouseLeave();
  virtual void OnKeyDown(UINT key, UINT repeat, UINT flags);
  virtual void OnKeyUp(UINT key, UINT repeat, UINT flags);
  virtual void OnChar(UINT ch, UINT repeat, UINT flags);

 private:
  friend detail::WindowState* detail::StateOf(HWND hwnd);
  void ReleaseWindowState();

  std::unique_ptr<detail::WindowState> m_state;  // present while the window exists
  bool m_continueModal = false;
  int m_modalResult = -1;
};

// RAII paint scope (BeginPaint in the constructor, EndPaint in the destructor).
class KARVELUI_API CPaintDC {
 public:
  explicit CPaintDC(CWnd* wnd);
  ~CPaintDC();
  CPaintDC(const CPaintDC&) = delete;
  CPaintDC& operator=(const CPaintDC&) = delete;
  PAINTSTRUCT m_ps;

 private:
  CWnd* m_wnd;
};

// --- window classes ----------------------------------------------------------------------
// FALSE when a class of that name (compared without case) exists already.
KARVELUI_API BOOL RegisterClassW(const WNDCLASSW* cls);
// Like RegisterClassW, but an existing class of that name counts as success.
KARVELUI_API BOOL AfxRegisterClass(const WNDCLASSW* cls);
KARVELUI_API BOOL UnregisterClassW(const wchar_t* className);

// --- the same operations by handle (FALSE/0/null for a handle that is not a window) ----------
KARVELUI_API BOOL IsWindow(HWND hwnd);
// Grows a client rectangle to the window rectangle of that style. The
// desktop draws every frame outside the window here, so the rectangle is
// left as it is.
KARVELUI_API BOOL AdjustWindowRectEx(CRect* rect, DWORD style, BOOL menu, DWORD exStyle);
KARVELUI_API LONG GetWindowLongW(HWND hwnd, int index);
// GWL_STYLE and GWL_EXSTYLE keep the bits and apply those the desktop can change
// (topmost, resizable, bordered, layered); returns the previous value.
KARVELUI_API LONG SetWindowLongW(HWND hwnd, int index, LONG value);
KARVELUI_API BOOL ShowWindow(HWND hwnd, int showCommand);
KARVELUI_API BOOL SetWindowPos(HWND hwnd, HWND insertAfter, int x, int y, int cx, int cy, UINT flags);
KARVELUI_API BOOL DestroyWindow(HWND hwnd);
KARVELUI_API BOOL GetWindowRect(HWND hwnd, CRect* rect);
KARVELUI_API BOOL GetClientRect(HWND hwnd, CRect* rect);
KARVELUI_API BOOL ClientToScreen(HWND hwnd, CPoint* point);
KARVELUI_API BOOL ScreenToClient(HWND hwnd, CPoint* point);
KARVELUI_API BOOL InvalidateRect(HWND hwnd, const CRect* rect, BOOL erase);
KARVELUI_API BOOL ValidateRect(HWND hwnd, const CRect* rect);
KARVELUI_API BOOL UpdateWindow(HWND hwnd);
KARVELUI_API BOOL EnableWindow(HWND hwnd, BOOL enable);
KARVELUI_API BOOL IsWindowVisible(HWND hwnd);
KARVELUI_API BOOL IsWindowEnabled(HWND hwnd);
KARVELUI_API BOOL IsIconic(HWND hwnd);
KARVELUI_API BOOL IsZoomed(HWND hwnd);
KARVELUI_API HWND GetParent(HWND hwnd);
KARVELUI_API int SetWindowRgn(HWND hwnd, HRGN region, BOOL redraw);
KARVELUI_API BOOL SetLayeredWindowAttributes(HWND hwnd, COLORREF key, BYTE alpha, DWORD flags);
KARVELUI_API BOOL GetLayeredWindowAttributes(HWND hwnd, COLORREF* key, BYTE* alpha, DWORD* flags);

// --- activation and focus (the calling thread's windows) ------------------------------------
// Activation sends WM_ACTIVATE (WA_INACTIVE with the newly active window's
// handle as lParam) to the window losing it, then WM_ACTIVATE (state in the
// low word, the previously active window as lParam) to the one gaining it.
KARVELUI_API HWND SetActiveWindow(HWND hwnd);
KARVELUI_API HWND GetActiveWindow();
KARVELUI_API BOOL SetForegroundWindow(HWND hwnd);
KARVELUI_API HWND GetForegroundWindow();
KARVELUI_API HWND SetFocus(HWND hwnd);
KARVELUI_API HWND GetFocus();
// A stand-in handle for the desktop; it is no window of ours.
KARVELUI_API HWND GetDesktopWindow();
// The visible, enabled-or-not window of this thread under a screen point (topmost first).
KARVELUI_API HWND WindowFromPoint(CPoint screenPoint);

}  // namespace KarvelUI
