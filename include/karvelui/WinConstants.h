#pragma once

// Window-system constants with exactly their Windows values. Skins, traces
// and the host speak these numbers, so they must not drift.

#include <karvelui/Types.h>

namespace KarvelUI {

// --- window messages -------------------------------------------------------
inline constexpr UINT WM_NULL = 0x0000;
inline constexpr UINT WM_CREATE = 0x0001;
inline constexpr UINT WM_DESTROY = 0x0002;
inline constexpr UINT WM_MOVE = 0x0003;
inline constexpr UINT WM_SIZE = 0x0005;
inline constexpr UINT WM_ACTIVATE = 0x0006;
inline constexpr UINT WM_SETFOCUS = 0x0007;
inline constexpr UINT WM_KILLFOCUS = 0x0008;
inline constexpr UINT WM_ENABLE = 0x000A;
inline constexpr UINT WM_SETTEXT = 0x000C;
inline constexpr UINT WM_PAINT = 0x000F;
inline constexpr UINT WM_CLOSE = 0x0010;
inline constexpr UINT WM_QUIT = 0x0012;
inline constexpr UINT WM_ERASEBKGND = 0x0014;
inline constexpr UINT WM_SHOWWINDOW = 0x0018;
inline constexpr UINT WM_ACTIVATEAPP = 0x001C;
inline constexpr UINT WM_SETCURSOR = 0x0020;
inline constexpr UINT WM_MOUSEACTIVATE = 0x0021;
inline constexpr UINT WM_GETMINMAXINFO = 0x0024;
inline constexpr UINT WM_WINDOWPOSCHANGING = 0x0046;
inline constexpr UINT WM_WINDOWPOSCHANGED = 0x0047;
inline constexpr UINT WM_NOTIFY = 0x004E;
inline constexpr UINT WM_NCCREATE = 0x0081;
inline constexpr UINT WM_NCDESTROY = 0x0082;
inline constexpr UINT WM_NCCALCSIZE = 0x0083;
inline constexpr UINT WM_NCHITTEST = 0x0084;
inline constexpr UINT WM_NCPAINT = 0x0085;
inline constexpr UINT WM_NCACTIVATE = 0x0086;
inline constexpr UINT WM_GETDLGCODE = 0x0087;
inline constexpr UINT WM_NCMOUSEMOVE = 0x00A0;
inline constexpr UINT WM_NCLBUTTONDOWN = 0x00A1;
inline constexpr UINT WM_NCLBUTTONUP = 0x00A2;
inline constexpr UINT WM_NCLBUTTONDBLCLK = 0x00A3;
inline constexpr UINT WM_KEYFIRST = 0x0100;
inline constexpr UINT WM_KEYDOWN = 0x0100;
inline constexpr UINT WM_KEYUP = 0x0101;
inline constexpr UINT WM_CHAR = 0x0102;
inline constexpr UINT WM_SYSKEYDOWN = 0x0104;
inline constexpr UINT WM_SYSKEYUP = 0x0105;
inline constexpr UINT WM_SYSCHAR = 0x0106;
inline constexpr UINT WM_KEYLAST = 0x0109;
inline constexpr UINT WM_INITDIALOG = 0x0110;
inline constexpr UINT WM_COMMAND = 0x0111;
inline constexpr UINT WM_SYSCOMMAND = 0x0112;
inline constexpr UINT WM_TIMER = 0x0113;
inline constexpr UINT WM_HSCROLL = 0x0114;
inline constexpr UINT WM_VSCROLL = 0x0115;
inline constexpr UINT WM_INITMENUPOPUP = 0x0117;
inline constexpr UINT WM_MENUSELECT = 0x011F;
inline constexpr UINT WM_ENTERIDLE = 0x0121;
inline constexpr UINT WM_MOUSEFIRST = 0x0200;
inline constexpr UINT WM_MOUSEMOVE = 0x0200;
inline constexpr UINT WM_LBUTTONDOWN = 0x0201;
inline constexpr UINT WM_LBUTTONUP = 0x0202;
inline constexpr UINT WM_LBUTTONDBLCLK = 0x0203;
inline constexpr UINT WM_RBUTTONDOWN = 0x0204;
inline constexpr UINT WM_RBUTTONUP = 0x0205;
inline constexpr UINT WM_RBUTTONDBLCLK = 0x0206;
inline constexpr UINT WM_MBUTTONDOWN = 0x0207;
inline constexpr UINT WM_MBUTTONUP = 0x0208;
inline constexpr UINT WM_MBUTTONDBLCLK = 0x0209;
inline constexpr UINT WM_MOUSEWHEEL = 0x020A;
inline constexpr UINT WM_MOUSEHWHEEL = 0x020E;
inline constexpr UINT WM_MOUSELAST = 0x020E;
inline constexpr UINT WM_PARENTNOTIFY = 0x0210;
inline constexpr UINT WM_ENTERMENULOOP = 0x0211;
inline constexpr UINT WM_EXITMENULOOP = 0x0212;
inline constexpr UINT WM_SIZING = 0x0214;
inline constexpr UINT WM_CAPTURECHANGED = 0x0215;
inline constexpr UINT WM_MOVING = 0x0216;
inline constexpr UINT WM_ENTERSIZEMOVE = 0x0231;
inline constexpr UINT WM_EXITSIZEMOVE = 0x0232;
inline constexpr UINT WM_DROPFILES = 0x0233;
inline constexpr UINT WM_MOUSEHOVER = 0x02A1;  // 673
inline constexpr UINT WM_MOUSELEAVE = 0x02A3;  // 675
inline constexpr UINT WM_NCMOUSELEAVE = 0x02A2;
inline constexpr UINT WM_CUT = 0x0300;
inline constexpr UINT WM_COPY = 0x0301;
inline constexpr UINT WM_PASTE = 0x0302;
inline constexpr UINT WM_USER = 0x0400;
inline constexpr UINT WM_APP = 0x8000;

// --- WM_SIZE types, WM_ACTIVATE states ------------------------------------
inline constexpr WPARAM SIZE_RESTORED = 0;
inline constexpr WPARAM SIZE_MINIMIZED = 1;
inline constexpr WPARAM SIZE_MAXIMIZED = 2;
inline constexpr WPARAM WA_INACTIVE = 0;
inline constexpr WPARAM WA_ACTIVE = 1;
inline constexpr WPARAM WA_CLICKACTIVE = 2;

// --- system commands ---------------------------------------------------------
inline constexpr WPARAM SC_SIZE = 0xF000;
inline constexpr WPARAM SC_MOVE = 0xF010;
inline constexpr WPARAM SC_MINIMIZE = 0xF020;
inline constexpr WPARAM SC_MAXIMIZE = 0xF030;
inline constexpr WPARAM SC_CLOSE = 0xF060;
inline constexpr WPARAM SC_RESTORE = 0xF120;

// --- hit-test codes ----------------------------------------------------------
inline constexpr LRESULT HTERROR = -2;
inline constexpr LRESULT HTTRANSPARENT = -1;
inline constexpr LRESULT HTNOWHERE = 0;
inline constexpr LRESULT HTCLIENT = 1;
inline constexpr LRESULT HTCAPTION = 2;
inline constexpr LRESULT HTSYSMENU = 3;
inline constexpr LRESULT HTMINBUTTON = 8;
inline constexpr LRESULT HTMAXBUTTON = 9;
inline constexpr LRESULT HTLEFT = 10;
inline constexpr LRESULT HTRIGHT = 11;
inline constexpr LRESULT HTTOP = 12;
inline constexpr LRESULT HTTOPLEFT = 13;
inline constexpr LRESULT HTTOPRIGHT = 14;
inline constexpr LRESULT HTBOTTOM = 15;
inline constexpr LRESULT HTBOTTOMLEFT = 16;
inline constexpr LRESULT HTBOTTOMRIGHT = 17;
inline constexpr LRESULT HTBORDER = 18;
inline constexpr LRESULT HTCLOSE = 20;
inline constexpr LRESULT HTHELP = 21;

// --- mouse key flags ---------------------------------------------------------
inline constexpr WPARAM MK_LBUTTON = 0x0001;
inline constexpr WPARAM MK_RBUTTON = 0x0002;
inline constexpr WPARAM MK_SHIFT = 0x0004;
inline constexpr WPARAM MK_CONTROL = 0x0008;
inline constexpr WPARAM MK_MBUTTON = 0x0010;
inline constexpr short WHEEL_DELTA = 120;

// --- mouse tracking ----------------------------------------------------------
inline constexpr DWORD TME_HOVER = 0x00000001;
inline constexpr DWORD TME_LEAVE = 0x00000002;
inline constexpr DWORD TME_CANCEL = 0x80000000;
inline constexpr DWORD HOVER_DEFAULT = 0xFFFFFFFF;

// --- virtual keys ------------------------------------------------------------
inline constexpr int VK_LBUTTON = 0x01;
inline constexpr int VK_RBUTTON = 0x02;
inline constexpr int VK_MBUTTON = 0x04;
inline constexpr int VK_BACK = 0x08;
inline constexpr int VK_TAB = 0x09;
inline constexpr int VK_RETURN = 0x0D;
inline constexpr int VK_SHIFT = 0x10;
inline constexpr int VK_CONTROL = 0x11;
inline constexpr int VK_MENU = 0x12;
inline constexpr int VK_PAUSE = 0x13;
inline constexpr int VK_CAPITAL = 0x14;
inline constexpr int VK_ESCAPE = 0x1B;
inline constexpr int VK_SPACE = 0x20;
inline constexpr int VK_PRIOR = 0x21;
inline constexpr int VK_NEXT = 0x22;
inline constexpr int VK_END = 0x23;
inline constexpr int VK_HOME = 0x24;
inline constexpr int VK_LEFT = 0x25;
inline constexpr int VK_UP = 0x26;
inline constexpr int VK_RIGHT = 0x27;
inline constexpr int VK_DOWN = 0x28;
inline constexpr int VK_INSERT = 0x2D;
inline constexpr int VK_DELETE = 0x2E;
inline constexpr int VK_F1 = 0x70;
inline constexpr int VK_F2 = 0x71;
inline constexpr int VK_F3 = 0x72;
inline constexpr int VK_F4 = 0x73;
inline constexpr int VK_F5 = 0x74;
inline constexpr int VK_F6 = 0x75;
inline constexpr int VK_F7 = 0x76;
inline constexpr int VK_F8 = 0x77;
inline constexpr int VK_F9 = 0x78;
inline constexpr int VK_F10 = 0x79;
inline constexpr int VK_F11 = 0x7A;
inline constexpr int VK_F12 = 0x7B;
inline constexpr int VK_LSHIFT = 0xA0;
inline constexpr int VK_RSHIFT = 0xA1;
inline constexpr int VK_LCONTROL = 0xA2;
inline constexpr int VK_RCONTROL = 0xA3;
inline constexpr int VK_LMENU = 0xA4;
inline constexpr int VK_RMENU = 0xA5;
inline constexpr int VK_OEM_PLUS = 0xBB;
inline constexpr int VK_OEM_MINUS = 0xBD;
inline constexpr int VK_ADD = 0x6B;
inline constexpr int VK_SUBTRACT = 0x6D;

// --- DrawText formats ------------------------------------------------------
inline constexpr UINT DT_TOP = 0x00000000;
inline constexpr UINT DT_LEFT = 0x00000000;
inline constexpr UINT DT_CENTER = 0x00000001;
inline constexpr UINT DT_RIGHT = 0x00000002;
inline constexpr UINT DT_VCENTER = 0x00000004;
inline constexpr UINT DT_BOTTOM = 0x00000008;
inline constexpr UINT DT_WORDBREAK = 0x00000010;
inline constexpr UINT DT_SINGLELINE = 0x00000020;
inline constexpr UINT DT_EXPANDTABS = 0x00000040;
inline constexpr UINT DT_TABSTOP = 0x00000080;
inline constexpr UINT DT_NOCLIP = 0x00000100;
inline constexpr UINT DT_EXTERNALLEADING = 0x00000200;
inline constexpr UINT DT_CALCRECT = 0x00000400;
inline constexpr UINT DT_NOPREFIX = 0x00000800;
inline constexpr UINT DT_INTERNAL = 0x00001000;
inline constexpr UINT DT_EDITCONTROL = 0x00002000;
inline constexpr UINT DT_PATH_ELLIPSIS = 0x00004000;
inline constexpr UINT DT_END_ELLIPSIS = 0x00008000;
inline constexpr UINT DT_MODIFYSTRING = 0x00010000;
inline constexpr UINT DT_RTLREADING = 0x00020000;
inline constexpr UINT DT_WORD_ELLIPSIS = 0x00040000;

// --- window styles -----------------------------------------------------------
inline constexpr DWORD WS_OVERLAPPED = 0x00000000;
inline constexpr DWORD WS_POPUP = 0x80000000;
inline constexpr DWORD WS_CHILD = 0x40000000;
inline constexpr DWORD WS_MINIMIZE = 0x20000000;
inline constexpr DWORD WS_VISIBLE = 0x10000000;
inline constexpr DWORD WS_DISABLED = 0x08000000;
inline constexpr DWORD WS_CLIPSIBLINGS = 0x04000000;
inline constexpr DWORD WS_CLIPCHILDREN = 0x02000000;
inline constexpr DWORD WS_MAXIMIZE = 0x01000000;
inline constexpr DWORD WS_CAPTION = 0x00C00000;
inline constexpr DWORD WS_BORDER = 0x00800000;
inline constexpr DWORD WS_DLGFRAME = 0x00400000;
inline constexpr DWORD WS_VSCROLL = 0x00200000;
inline constexpr DWORD WS_HSCROLL = 0x00100000;
inline constexpr DWORD WS_SYSMENU = 0x00080000;
inline constexpr DWORD WS_THICKFRAME = 0x00040000;
inline constexpr DWORD WS_MINIMIZEBOX = 0x00020000;
inline constexpr DWORD WS_MAXIMIZEBOX = 0x00010000;
inline constexpr DWORD WS_TABSTOP = 0x00010000;
inline constexpr DWORD WS_OVERLAPPEDWINDOW = WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU |
                                             WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX;

inline constexpr DWORD WS_EX_DLGMODALFRAME = 0x00000001;
inline constexpr DWORD WS_EX_TOPMOST = 0x00000008;
inline constexpr DWORD WS_EX_ACCEPTFILES = 0x00000010;
inline constexpr DWORD WS_EX_TRANSPARENT = 0x00000020;
inline constexpr DWORD WS_EX_TOOLWINDOW = 0x00000080;
inline constexpr DWORD WS_EX_WINDOWEDGE = 0x00000100;
inline constexpr DWORD WS_EX_APPWINDOW = 0x00040000;
inline constexpr DWORD WS_EX_LAYERED = 0x00080000;
inline constexpr DWORD WS_EX_NOACTIVATE = 0x08000000;

// --- ShowWindow commands -----------------------------------------------------
inline constexpr int SW_HIDE = 0;
inline constexpr int SW_SHOWNORMAL = 1;
inline constexpr int SW_NORMAL = 1;
inline constexpr int SW_SHOWMINIMIZED = 2;
inline constexpr int SW_SHOWMAXIMIZED = 3;
inline constexpr int SW_MAXIMIZE = 3;
inline constexpr int SW_SHOWNOACTIVATE = 4;
inline constexpr int SW_SHOW = 5;
inline constexpr int SW_MINIMIZE = 6;
inline constexpr int SW_SHOWMINNOACTIVE = 7;
inline constexpr int SW_SHOWNA = 8;
inline constexpr int SW_RESTORE = 9;
inline constexpr int SW_SHOWDEFAULT = 10;

// --- SetWindowPos flags ------------------------------------------------------
inline constexpr UINT SWP_NOSIZE = 0x0001;
inline constexpr UINT SWP_NOMOVE = 0x0002;
inline constexpr UINT SWP_NOZORDER = 0x0004;
inline constexpr UINT SWP_NOREDRAW = 0x0008;
inline constexpr UINT SWP_NOACTIVATE = 0x0010;
inline constexpr UINT SWP_FRAMECHANGED = 0x0020;
inline constexpr UINT SWP_SHOWWINDOW = 0x0040;
inline constexpr UINT SWP_HIDEWINDOW = 0x0080;
inline constexpr UINT SWP_NOOWNERZORDER = 0x0200;
inline const HWND HWND_TOP = reinterpret_cast<HWND>(0);
inline const HWND HWND_BOTTOM = reinterpret_cast<HWND>(1);
inline const HWND HWND_TOPMOST = reinterpret_cast<HWND>(-1);
inline const HWND HWND_NOTOPMOST = reinterpret_cast<HWND>(-2);

// --- message boxes -------------------------------------------------------------
inline constexpr UINT MB_OK = 0x00000000;
inline constexpr UINT MB_OKCANCEL = 0x00000001;
inline constexpr UINT MB_YESNO = 0x00000004;
inline constexpr UINT MB_ICONERROR = 0x00000010;
inline constexpr UINT MB_ICONQUESTION = 0x00000020;
inline constexpr UINT MB_ICONWARNING = 0x00000030;
inline constexpr UINT MB_ICONINFORMATION = 0x00000040;
inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;

// --- layered windows -----------------------------------------------------------
inline constexpr DWORD LWA_COLORKEY = 0x00000001;
inline constexpr DWORD LWA_ALPHA = 0x00000002;

// --- clipboard formats -------------------------------------------------------
inline constexpr UINT CF_TEXT = 1;
inline constexpr UINT CF_HDROP = 15;
inline constexpr UINT CF_UNICODETEXT = 13;

// --- dialog codes and styles ---------------------------------------------------
inline constexpr LRESULT DLGC_WANTALLKEYS = 0x0004;
inline constexpr DWORD DS_NOIDLEMSG = 0x00000100;

}  // namespace KarvelUI
