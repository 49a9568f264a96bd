#pragma once

// The GPU device layer: the operations the render device and the resource
// cache call. Each step that can fail on a real driver (creation, reset, a
// lost device, a texture lock, a sprite batch) is a call of its own, so the
// render device's fallbacks can be driven one by one. Two implementations
// exist: the OpenGL 3.3 backend (Direct3DCreate9) and a fault-injecting
// double for tests (tests/support/FakeDirect3D.h, not in the shipped library).
//
// Results are HRESULTs: S_OK, or E_FAIL / D3DERR_* (negative). Nothing throws.
//
// Threads. A device and its sprites and fonts belong to the thread that
// created the device (the window's thread): scenes, clears, presents, sprite
// batches and text run there. Textures are the exception: CreateTexture,
// GetLevelDesc, LockRect, UnlockRect and Release may be called from any
// thread. A texture keeps a CPU copy of its texels (the managed pool); a
// lock hands out that copy, and the drawing thread uploads what changed the
// next time the texture is drawn. A texture that is locked while it is drawn
// shows its previous content.
//
// Colours are 0xAARRGGBB. A sprite draw multiplies every texel by the colour
// per channel (0..255 as 0..1) and blends the result over the back buffer
// with straight alpha: dst = src * a + dst * (1 - a).
//
// Coordinates are back-buffer pixels, origin top-left, y down; one texel
// covers one unit before the sprite transform.

#include <cstdint>
#include <vector>

#include <karvelui/Export.h>
#include <karvelui/Geometry.h>
#include <karvelui/D3DTypes.h>
#include <karvelui/RefPtr.h>

namespace KarvelUI {

class IDirect3DDevice9;
class IDirect3DTexture9;
class ID3DXSprite;
class ID3DXFont;

// The process-wide object that makes devices.
class IDirect3D9 : public IRefCounted {
 public:
  // Makes a device drawing into `focusWindow` (or params->hDeviceWindow).
  // Zero back-buffer sizes are replaced by the window's client size in
  // *params, as the device reports them. Refusals: D3DERR_INVALIDCALL for
  // parameters no device can have, D3DERR_NOTAVAILABLE for what this adapter
  // cannot give (a back-buffer count or format).
  virtual HRESULT CreateDevice(UINT adapter, D3DDEVTYPE type, HWND focusWindow, DWORD behaviorFlags,
                               D3DPRESENT_PARAMETERS* params, IDirect3DDevice9** device) = 0;
};

class IDirect3DDevice9 : public IRefCounted {
 public:
  virtual HRESULT GetDeviceCaps(D3DCAPS9* caps) = 0;
  // Bytes of texture memory still free, rounded down to whole megabytes.
  virtual UINT GetAvailableTextureMem() = 0;
  // New present parameters (a resize), or the recovery of a lost device.
  // Managed textures survive; fails with D3DERR_INVALIDCALL while a sprite of
  // this device exists (sprites hold per-device drawing state).
  virtual HRESULT Reset(D3DPRESENT_PARAMETERS* params) = 0;
  // Fills the back buffer (or `count` rectangles of it) with `color`. Sprite
  // draws batched before the clear are drawn before it.
  virtual HRESULT Clear(DWORD count, const D3DRECT* rects, DWORD flags, D3DCOLOR color, float z,
                        DWORD stencil) = 0;
  virtual HRESULT BeginScene() = 0;
  virtual HRESULT EndScene() = 0;
  // Shows the back buffer (source/dest: null for the whole of each) in the
  // device window. D3DERR_DEVICELOST when the device was lost: only Reset
  // brings it back.
  virtual HRESULT Present(const RECT* source, const RECT* dest, HWND overrideWindow,
                          const void* dirtyRegion) = 0;
  // One level only; formats A8R8G8B8, X8R8G8B8, A8B8G8R8, X8B8G8R8; the
  // texels start transparent black. Any thread.
  virtual HRESULT CreateTexture(UINT width, UINT height, UINT levels, DWORD usage, D3DFORMAT format,
                                D3DPOOL pool, IDirect3DTexture9** texture, HANDLE* shared) = 0;
  virtual HRESULT CreateSprite(ID3DXSprite** sprite) = 0;
  virtual HRESULT CreateFont(const D3DXFONT_DESCW& desc, ID3DXFont** font) = 0;
  // The back buffer as drawn so far: 0xAARRGGBB texels, rows from the top,
  // size->cx * size->cy of them. Pending sprite draws are drawn first.
  virtual HRESULT ReadBackBuffer(std::vector<DWORD>& pixels, CSize& size) = 0;
  // Full-window shader effects extend this interface with an effect object
  // (compile, set parameters, draw a quad over the back buffer).
};

class IDirect3DTexture9 : public IRefCounted {
 public:
  virtual HRESULT GetLevelDesc(UINT level, D3DSURFACE_DESC* desc) = 0;
  // Hands out the CPU copy of `rect` (null: the whole level). One lock at a
  // time: a second lock before UnlockRect is D3DERR_INVALIDCALL.
  virtual HRESULT LockRect(UINT level, D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) = 0;
  virtual HRESULT UnlockRect(UINT level) = 0;
};

class ID3DXSprite : public IRefCounted {
 public:
  // Opens a batch. D3DXSPRITE_ALPHABLEND blends (see above); without it the
  // colour-multiplied texels replace the back buffer's.
  virtual HRESULT Begin(DWORD flags) = 0;
  // Draws what the batch holds, in the order drawn, and closes it.
  virtual HRESULT End() = 0;
  // Applies to every later Draw (the batch keeps transformed quads).
  virtual HRESULT SetTransform(const D3DXMATRIX* transform) = 0;
  virtual HRESULT Draw(IDirect3DTexture9* texture, const RECT* source, const D3DXVECTOR3* center,
                       const D3DXVECTOR3* position, D3DCOLOR color) = 0;
};

class ID3DXFont : public IRefCounted {
 public:
  // Lays `count` characters (-1: zero-terminated) out in *rect with the DT_*
  // `format` and draws them through `sprite` (null: a batch of its own) in
  // `color`. With DT_CALCRECT nothing is drawn and *rect's right and bottom
  // become the extent of the text. Returns the text height; 0 on failure.
  virtual int DrawTextW(ID3DXSprite* sprite, const wchar_t* text, int count, RECT* rect, DWORD format,
                        D3DCOLOR color) = 0;
};

// The OpenGL backend's process object; null for any other SDK version.
KARVELUI_API IDirect3D9* Direct3DCreate9(UINT sdkVersion);

KARVELUI_API HRESULT D3DXCreateSprite(IDirect3DDevice9* device, ID3DXSprite** sprite);

KARVELUI_API HRESULT D3DXCreateFontW(IDirect3DDevice9* device, int height, UINT width, UINT weight,
                                     UINT mipLevels, BOOL italic, DWORD charSet, DWORD outputPrecision,
                                     DWORD quality, DWORD pitchAndFamily, const wchar_t* faceName,
                                     ID3DXFont** font);

}  // namespace KarvelUI
