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
#include <string>
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
class ID3DXEffect;

// Primitive types of DrawPrimitiveUP: effects draw their quad as a strip.
enum D3DPRIMITIVETYPE : DWORD { D3DPT_TRIANGLESTRIP = 5 };

// The one vertex layout of effect draws (position, then one texture
// coordinate): D3DFVF_XYZ | D3DFVF_TEX1.
struct D3DEFFECTVERTEX {
  float x, y, z;  // clip space (see DrawPrimitiveUP)
  float u, v;     // texture coordinates, (0, 0) the texture's top-left corner
};

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

  // --- full-window shader effects ---
  // Compiles an effect from its source text (the backend's shader language;
  // see D3DXCreateEffectFromFileW). Compiler messages, warnings included, go
  // into *messages when given. A source that does not compile is E_FAIL.
  virtual HRESULT CreateEffect(const std::string& source, DWORD flags, ID3DXEffect** effect,
                               std::string* messages) = 0;
  // The texture the effect's sampler reads; stage 0 only (D3DERR_INVALIDCALL
  // for any other). Held by the device until replaced; null unbinds.
  virtual HRESULT SetTexture(DWORD stage, IDirect3DTexture9* texture) = 0;
  // Draws `primitiveCount` triangles of a D3DPT_TRIANGLESTRIP of
  // D3DEFFECTVERTEX records `stride` bytes apart through the pass in
  // progress (D3DERR_INVALIDCALL outside a pass), without blending. Clip
  // space keeps the rule of the interface this layer is shaped after: the
  // centre of pixel (0, 0) lies at (-1, 1), so a quad maps texels to pixels
  // one to one when its corners are shifted half a pixel left and up.
  // Sprite draws batched before are drawn first.
  virtual HRESULT DrawPrimitiveUP(D3DPRIMITIVETYPE type, UINT primitiveCount, const void* vertices, UINT stride) = 0;
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

// A compiled effect: one technique of one or more passes, float parameters
// set by name. Per frame: Begin, then BeginPass / draws / EndPass for each
// pass, then End. Parameters set during a pass apply from its next draw.
class ID3DXEffect : public IRefCounted {
 public:
  // D3DERR_INVALIDCALL when the effect has no technique of that name.
  virtual HRESULT SetTechnique(const char* name) = 0;
  // D3DERR_INVALIDCALL when no stage of the technique reads a float of that name.
  virtual HRESULT SetFloat(const char* name, float value) = 0;
  virtual HRESULT Begin(UINT* passes, DWORD flags) = 0;
  virtual HRESULT BeginPass(UINT pass) = 0;
  virtual HRESULT EndPass() = 0;
  virtual HRESULT End() = 0;
};

// The OpenGL backend's process object; null for any other SDK version.
KARVELUI_API IDirect3D9* Direct3DCreate9(UINT sdkVersion);

KARVELUI_API HRESULT D3DXCreateSprite(IDirect3DDevice9* device, ID3DXSprite** sprite);

KARVELUI_API HRESULT D3DXCreateFontW(IDirect3DDevice9* device, int height, UINT width, UINT weight,
                                     UINT mipLevels, BOOL italic, DWORD charSet, DWORD outputPrecision,
                                     DWORD quality, DWORD pitchAndFamily, const wchar_t* faceName,
                                     ID3DXFont** font);

// Reads the effect file at `path` (library form) and compiles it on the
// device. A file that cannot be read (or is larger than an effect can be)
// is E_FAIL with a message naming it. The OpenGL backend's effect files
// hold GLSL 3.30 in sections, each begun by a marker line:
//   //! technique NAME     the technique's name (one technique, one pass)
//   //! vertex             the vertex stage: inputs at locations 0 (vec3
//                          position) and 1 (vec2 texture coordinate)
//   //! fragment           the fragment stage; every sampler2D reads stage 0
// Uniform floats are the parameters. `flags` are compiler switches of the
// interface this layer is shaped after; GLSL has none, so they are ignored.
KARVELUI_API HRESULT D3DXCreateEffectFromFileW(IDirect3DDevice9* device, const wchar_t* path, DWORD flags,
                                               ID3DXEffect** effect, std::string* messages);

}  // namespace KarvelUI
