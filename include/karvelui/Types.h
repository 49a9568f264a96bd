#pragma once

// The Win32 vocabulary the library speaks: integer types, handles, colour
// macros and result codes, with the same widths and values as on Windows so
// that numbers written in skins, traces and messages mean the same thing.

#include <cstdint>

namespace KarvelUI {

using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = unsigned int;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using DWORD_PTR = std::uintptr_t;
using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;
using LRESULT = LONG_PTR;
using HRESULT = std::int32_t;
using COLORREF = DWORD;  // 0x00BBGGRR, as RGB() builds it
using ARGB = DWORD;      // 0xAARRGGBB, alpha in the top byte
using D3DCOLOR = DWORD;  // the render device's ARGB colour

inline constexpr BOOL TRUE = 1;
inline constexpr BOOL FALSE = 0;

// Opaque window handle; the platform layer maps it to its window objects.
struct HWND__;
using HWND = HWND__*;
using HANDLE = void*;
using HINSTANCE = void*;

// --- colours -------------------------------------------------------------
constexpr COLORREF RGB(BYTE r, BYTE g, BYTE b) {
  return static_cast<COLORREF>(r) | (static_cast<COLORREF>(g) << 8) |
         (static_cast<COLORREF>(b) << 16);
}
constexpr BYTE GetRValue(COLORREF c) { return static_cast<BYTE>(c & 0xFF); }
constexpr BYTE GetGValue(COLORREF c) { return static_cast<BYTE>((c >> 8) & 0xFF); }
constexpr BYTE GetBValue(COLORREF c) { return static_cast<BYTE>((c >> 16) & 0xFF); }

constexpr D3DCOLOR D3DCOLOR_ARGB(DWORD a, DWORD r, DWORD g, DWORD b) {
  return ((a & 0xFF) << 24) | ((r & 0xFF) << 16) | ((g & 0xFF) << 8) | (b & 0xFF);
}
constexpr D3DCOLOR D3DCOLOR_XRGB(DWORD r, DWORD g, DWORD b) {
  return D3DCOLOR_ARGB(0xFF, r, g, b);
}

// --- packing of message parameters ---------------------------------------
constexpr WORD LOWORD(DWORD_PTR v) { return static_cast<WORD>(v & 0xFFFF); }
constexpr WORD HIWORD(DWORD_PTR v) { return static_cast<WORD>((v >> 16) & 0xFFFF); }
constexpr DWORD MAKELONG(WORD lo, WORD hi) {
  return static_cast<DWORD>(lo) | (static_cast<DWORD>(hi) << 16);
}
constexpr LPARAM MAKELPARAM(int lo, int hi) {
  return static_cast<LPARAM>(MAKELONG(static_cast<WORD>(lo), static_cast<WORD>(hi)));
}
constexpr WPARAM MAKEWPARAM(int lo, int hi) {
  return static_cast<WPARAM>(MAKELONG(static_cast<WORD>(lo), static_cast<WORD>(hi)));
}
// Signed coordinates out of an lParam, as windowsx.h unpacks them.
constexpr int GET_X_LPARAM(LPARAM lp) { return static_cast<short>(LOWORD(static_cast<DWORD_PTR>(lp))); }
constexpr int GET_Y_LPARAM(LPARAM lp) { return static_cast<short>(HIWORD(static_cast<DWORD_PTR>(lp))); }
constexpr short GET_WHEEL_DELTA_WPARAM(WPARAM wp) { return static_cast<short>(HIWORD(wp)); }
constexpr WORD GET_KEYSTATE_WPARAM(WPARAM wp) { return LOWORD(wp); }

// --- result codes ----------------------------------------------------------
inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005u);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057u);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000Eu);
inline constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001u);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003u);
inline constexpr HRESULT D3DERR_DEVICELOST = static_cast<HRESULT>(0x88760868u);
inline constexpr HRESULT D3DERR_DEVICENOTRESET = static_cast<HRESULT>(0x88760869u);
inline constexpr HRESULT D3DERR_NOTAVAILABLE = static_cast<HRESULT>(0x8876086Au);
inline constexpr HRESULT D3DERR_OUTOFVIDEOMEMORY = static_cast<HRESULT>(0x8876017Cu);
inline constexpr HRESULT D3DERR_INVALIDCALL = static_cast<HRESULT>(0x8876086Cu);
inline constexpr HRESULT D3DERR_DRIVERINTERNALERROR = static_cast<HRESULT>(0x88760827u);

constexpr bool SUCCEEDED(HRESULT hr) { return hr >= 0; }
constexpr bool FAILED(HRESULT hr) { return hr < 0; }

// --- fonts -----------------------------------------------------------------
inline constexpr int LF_FACESIZE = 32;
inline constexpr LONG FW_NORMAL = 400;
inline constexpr LONG FW_BOLD = 700;

struct LOGFONTW {
  LONG lfHeight = 0;
  LONG lfWidth = 0;
  LONG lfEscapement = 0;
  LONG lfOrientation = 0;
  LONG lfWeight = 0;
  BYTE lfItalic = 0;
  BYTE lfUnderline = 0;
  BYTE lfStrikeOut = 0;
  BYTE lfCharSet = 0;
  BYTE lfOutPrecision = 0;
  BYTE lfClipPrecision = 0;
  BYTE lfQuality = 0;
  BYTE lfPitchAndFamily = 0;
  wchar_t lfFaceName[LF_FACESIZE] = {};
};
using LOGFONT = LOGFONTW;

}  // namespace KarvelUI
