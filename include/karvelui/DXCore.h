#pragma once

// DXCore: the render device of one window. It owns the window's device
// with its swap chain, the one sprite batch through which every image and
// text of the window is drawn, and the window's ResourceCache. The
// process-wide device object is shared by all of them.
//
// Per paint: BeginPaint, any number of SetTransform / DrawImage /
// DrawTextW, EndPaint (which presents). Coordinates are client pixels,
// origin top-left, y down; angles are radians, clockwise on screen; colours
// 0xAARRGGBB. Every colour drawn has its alpha scaled by the global
// opacity: trunc(alpha x opacity + 0.5).
//
// Threads: painting runs on the window's thread. The device lock guards the
// device and sprite pointers against a concurrent reset (GetD3DDevice and
// GetD3DXSprite read them under it); lock order is the cache's texture lock
// first, then the device lock.

#include <memory>

#include <karvelui/Export.h>
#include <karvelui/Geometry.h>
#include <karvelui/Sync.h>
#include <karvelui/ResourceCache.h>
#include <karvelui/Direct3D.h>

namespace KarvelUI {

// A new back-buffer size in pixels.
struct DXSIZE {
  LONG width = 0;
  LONG height = 0;
};

class KARVELUI_API DXCore {
 public:
  // Makes the process-wide device object: 0, or E_FAIL when there is none.
  static HRESULT InitInstance();
  // Uses `d3d` (taking a reference) as the process-wide object instead: how
  // tests put the fault-injecting double under every device. E_FAIL for null.
  static HRESULT InitInstance(IDirect3D9* d3d);
  static void ExitInstance();
  static IDirect3D9* GetD3DObject();

  DXCore();
  ~DXCore();
  DXCore(const DXCore&) = delete;
  DXCore& operator=(const DXCore&) = delete;

  void SetWindow(HWND window);
  // E_FAIL without a window; otherwise _InitD3D's result (0 on success).
  HRESULT Init();
  // Creates the device (four attempts, each falling back further), the
  // sprite and the device lock.
  HRESULT _InitD3D();
  // Empties the cache and releases the sprite and the device; the lock stays.
  void CleanUp();

  IDirect3DDevice9* GetD3DDevice();
  ID3DXSprite* GetD3DXSprite();
  D3DPRESENT_PARAMETERS GetD3DPresentParameters() const { return m_d3dpp; }
  HRESULT GetD3DDeviceCaps(D3DCAPS9* caps);
  ResourceCache* GetResourceCache() { return &m_ResourceCache; }
  // The image and uploaded-texture descriptions of the picture at `path`
  // (loaded when needed); either pointer may be null. E_FAIL when the
  // picture cannot be made.
  HRESULT GetTextureInfo(const CString& path, D3DXIMAGE_INFO* imageInfo, D3DXIMAGE_INFO* textureInfo);
  // Empties the cache entry of `path`; keepDecoded keeps its decoded picture.
  void ReleaseTexture(const CString& path, int keepDecoded);

  // Kept only when 0 <= opacity <= 1; anything else (NaN included) is ignored.
  void SetGlobalOpacity(float opacity);
  float GetGlobalOpacity() const { return m_fGlobalOpacity; }

  // One frame. EndPaint returns D3DERR_DEVICELOST (untraced) when the device
  // was lost and has been reset: the caller paints again.
  // E_FAIL, quietly, while a failed reset or sprite creation left no sprite:
  // the next successful ResetD3DSize (a size change) makes painting resume.
  HRESULT BeginPaint();
  HRESULT EndPaint();
  // Resizes the back buffer, recovering a lost device; 1 without a device.
  HRESULT ResetD3DSize(DXSIZE size);
  HRESULT CleanScreen(DWORD colour);

  // The sprite transform: scaling about `scalingCentre`, then a turn of
  // `rotation` about `rotationCentre`, then `translation`; null vectors are
  // neutral. It stays in force until set again.
  HRESULT SetTransform(const D3DXVECTOR2* scalingCentre, const D3DXVECTOR2* scaling,
                       const D3DXVECTOR2* rotationCentre, float rotation, const D3DXVECTOR2* translation);
  // Text in the rectangle (left, top, left + width, top + height): note top
  // before left. `format` is the DT_* set; `count` -1 means zero-terminated.
  HRESULT DrawTextW(const wchar_t* text, int count, LONG top, LONG left, LONG width, LONG height, int fontHeight,
                    int fontWeight, int italic, int underline, const wchar_t* faceName, DWORD format,
                    DWORD colour);
  // The same with the rectangle and the font record: face, height, weight,
  // italic and underline come from `font`.
  HRESULT DrawTextW(const CString& text, const CRect& rect, const LOGFONTW& font, DWORD format, DWORD colour);
  // The extent `text` takes in `font` with `format` (DT_CALCRECT added):
  // `rect` keeps its top-left corner and gets the size. E_FAIL without a font.
  HRESULT MeasureText(const CString& text, const LOGFONTW& font, DWORD format, CRect* rect);
  // A solid rectangle drawn through the sprite batch, so it keeps its place
  // among the images and texts of the frame. Leaves the identity transform.
  HRESULT FillRect(const CRect& rect, DWORD colour);
  // One sprite draw of `source` (null: the whole texture) with its `centre`
  // (null: top-left) at `position`.
  HRESULT DrawImage(IDirect3DTexture9* texture, const RECT* source, const D3DXVECTOR3* centre,
                    const D3DXVECTOR3* position, DWORD colour);
  // A cached picture's `source` part (null or empty: all of it) scaled into
  // `dest`, tile by tile, turned by `rotation` about `rotationCentre`. E_FAIL
  // when the item is not ready or a scale would be negative (no mirroring).
  HRESULT DrawImage(tagTextureItem* item, const CRect* dest, const CRect* source, const D3DXVECTOR2* rotationCentre,
                    float rotation, DWORD colour);
  // The picture at `path` (loaded on first use), or frame `frame` of an
  // animated one (decoded on demand), drawn as above. E_FAIL when the
  // picture or the frame cannot be had.
  HRESULT DrawImage(const CString& path, const CRect* dest, const CRect* source, const D3DXVECTOR2* rotationCentre,
                    float rotation, DWORD colour, long frame);

 private:
  struct LockDeleter {
    void operator()(CRITICAL_SECTION* section) const;
  };

  HRESULT CreateDevice();
  void TraceDeviceCaps();
  DWORD ApplyOpacity(DWORD colour) const;

  static RefPtr<IDirect3D9> s_pD3D;

  HWND m_hWnd = nullptr;
  D3DPRESENT_PARAMETERS m_d3dpp{};
  RefPtr<IDirect3DDevice9> m_pD3DDevice;
  RefPtr<ID3DXSprite> m_pD3DXSprite;
  ResourceCache m_ResourceCache;
  std::unique_ptr<CRITICAL_SECTION, LockDeleter> m_pDeviceLock;
  float m_fGlobalOpacity = 1.0f;
  bool m_bSceneOpen = false;  // a BeginPaint whose sprite failed left the scene open
};

}  // namespace KarvelUI
