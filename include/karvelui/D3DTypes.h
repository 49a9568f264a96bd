#pragma once

// The records, formats and flags of the GPU device layer. Every backend
// uses these names and numbers, so present parameters, caps and the numbers
// the trace lines print read the same whichever backend runs.

#include <karvelui/Geometry.h>
#include <karvelui/Types.h>

namespace KarvelUI {

using RECT = CRect;

// Pixel formats. In memory (little-endian) A8R8G8B8 is the byte order
// B, G, R, A (the DWORD 0xAARRGGBB); A8B8G8R8 is R, G, B, A. The X formats
// ignore their alpha byte (drawn opaque).
enum D3DFORMAT : DWORD {
  D3DFMT_UNKNOWN = 0,
  D3DFMT_A8R8G8B8 = 21,
  D3DFMT_X8R8G8B8 = 22,
  D3DFMT_R5G6B5 = 23,
  D3DFMT_A1R5G5B5 = 25,
  D3DFMT_A8B8G8R8 = 32,
  D3DFMT_X8B8G8R8 = 33,
};

enum D3DPOOL : DWORD {
  D3DPOOL_DEFAULT = 0,
  D3DPOOL_MANAGED = 1,  // a CPU copy backs the GPU texture; survives resets
  D3DPOOL_SYSTEMMEM = 2,
};

enum D3DSWAPEFFECT : DWORD {
  D3DSWAPEFFECT_DISCARD = 1,
  D3DSWAPEFFECT_FLIP = 2,
  D3DSWAPEFFECT_COPY = 3,
};

enum D3DDEVTYPE : DWORD { D3DDEVTYPE_HAL = 1, D3DDEVTYPE_REF = 2 };
enum D3DRESOURCETYPE : DWORD { D3DRTYPE_SURFACE = 1, D3DRTYPE_TEXTURE = 3 };
enum D3DMULTISAMPLE_TYPE : DWORD { D3DMULTISAMPLE_NONE = 0 };
enum D3DXIMAGE_FILEFORMAT : DWORD {
  D3DXIFF_BMP = 0,
  D3DXIFF_JPG = 1,
  D3DXIFF_PNG = 3,
  D3DXIFF_FORCE_DWORD = 0x7FFFFFFF,  // "no file"
};

inline constexpr UINT D3D_SDK_VERSION = 32;
inline constexpr UINT D3DADAPTER_DEFAULT = 0;
inline constexpr UINT D3DPRESENT_BACK_BUFFERS_MAX = 3;

inline constexpr DWORD D3DCREATE_MULTITHREADED = 0x00000004;
inline constexpr DWORD D3DCREATE_SOFTWARE_VERTEXPROCESSING = 0x00000020;
inline constexpr DWORD D3DCREATE_HARDWARE_VERTEXPROCESSING = 0x00000040;

inline constexpr UINT D3DPRESENT_INTERVAL_DEFAULT = 0x00000000;
inline constexpr UINT D3DPRESENT_INTERVAL_ONE = 0x00000001;
inline constexpr UINT D3DPRESENT_INTERVAL_IMMEDIATE = 0x80000000;

inline constexpr DWORD D3DCLEAR_TARGET = 0x00000001;
inline constexpr DWORD D3DCLEAR_ZBUFFER = 0x00000002;
inline constexpr DWORD D3DCLEAR_STENCIL = 0x00000004;

inline constexpr DWORD D3DLOCK_DISCARD = 0x00002000;
inline constexpr DWORD D3DLOCK_READONLY = 0x00000010;

inline constexpr DWORD D3DXSPRITE_ALPHABLEND = 0x00000010;

inline constexpr BYTE DEFAULT_CHARSET = 1;
inline constexpr BYTE OUT_DEFAULT_PRECIS = 0;
inline constexpr BYTE DRAFT_QUALITY = 1;

struct D3DPRESENT_PARAMETERS {
  UINT BackBufferWidth;   // 0: the window's client width (written back)
  UINT BackBufferHeight;  // 0: the window's client height (written back)
  D3DFORMAT BackBufferFormat;
  UINT BackBufferCount;   // 0 reads as 1
  D3DMULTISAMPLE_TYPE MultiSampleType;
  DWORD MultiSampleQuality;
  D3DSWAPEFFECT SwapEffect;
  HWND hDeviceWindow;     // null: the focus window given at creation
  BOOL Windowed;
  BOOL EnableAutoDepthStencil;
  D3DFORMAT AutoDepthStencilFormat;
  DWORD Flags;
  UINT FullScreen_RefreshRateInHz;
  UINT PresentationInterval;
};

struct D3DCAPS9 {
  D3DDEVTYPE DeviceType;
  UINT AdapterOrdinal;
  DWORD MaxTextureWidth;
  DWORD MaxTextureHeight;
};

struct D3DSURFACE_DESC {
  D3DFORMAT Format;
  D3DRESOURCETYPE Type;
  DWORD Usage;
  D3DPOOL Pool;
  D3DMULTISAMPLE_TYPE MultiSampleType;
  DWORD MultiSampleQuality;
  UINT Width;
  UINT Height;
};

struct D3DLOCKED_RECT {
  int Pitch;      // bytes from one row to the next
  void* pBits;    // the locked rectangle's top-left texel
};

struct D3DRECT {
  LONG x1, y1, x2, y2;
};

struct D3DXIMAGE_INFO {
  UINT Width;
  UINT Height;
  UINT Depth;
  UINT MipLevels;
  D3DFORMAT Format;
  D3DRESOURCETYPE ResourceType;
  D3DXIMAGE_FILEFORMAT ImageFileFormat;
};

struct D3DXFONT_DESCW {
  int Height;  // the logical font's height rule: > 0 cell, < 0 character
  UINT Width;
  UINT Weight;
  UINT MipLevels;
  BOOL Italic;
  BYTE CharSet;
  BYTE OutputPrecision;
  BYTE Quality;
  BYTE PitchAndFamily;
  wchar_t FaceName[LF_FACESIZE];
};

struct D3DXVECTOR2 {
  float x = 0.0f;
  float y = 0.0f;
};

struct D3DXVECTOR3 {
  float x = 0.0f;
  float y = 0.0f;
  float z = 0.0f;
};

// Row-vector convention: a point p maps to p * M, so for 2-D points
// x' = x*m[0][0] + y*m[1][0] + m[3][0] and y' = x*m[0][1] + y*m[1][1] + m[3][1].
struct D3DXMATRIX {
  float m[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
  friend bool operator==(const D3DXMATRIX&, const D3DXMATRIX&) = default;
};

// Bytes per texel of a texture format; 0 for formats textures cannot have.
constexpr UINT BytesPerTexel(D3DFORMAT format) {
  switch (format) {
    case D3DFMT_A8R8G8B8:
    case D3DFMT_X8R8G8B8:
    case D3DFMT_A8B8G8R8:
    case D3DFMT_X8B8G8R8:
      return 4;
    default:
      return 0;
  }
}

}  // namespace KarvelUI
