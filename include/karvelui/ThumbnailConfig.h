#pragma once

// _ThumbnailConfig: the thumbnail of one picture. It holds the picture's
// path, the size its texture should have, the loaded texture and a faded
// mirror image (the reflection) drawn under it, and it loads them: first
// from the folder's "thumbs.db", else from the picture file (camera RAW
// files through their cached JPEG preview). Every thumbnail list item embeds
// one; a worker thread loads it while the drawing thread draws it.
//
// Loading from the picture file looks, before decoding, for a thumbnail in
// the cache Linux desktops share ($XDG_CACHE_HOME/thumbnails/{normal,large},
// keyed by the MD5 of the file's URI and valid while its Thumb::MTime matches
// the file), and after decoding writes the "large" one there for the next
// visit and for other programs. JPEG files are decoded at a reduced scale
// (1/2, 1/4 or 1/8, whichever still covers the texture), which looks the
// same as decoding the whole picture and resampling it: the mean absolute
// difference per channel stays within kFastPathMeanDifference.
//
// Threads and locks. The record's lock serialises loading, clearing and
// destruction: a load holds it from start to end, so a record is never
// destroyed in the middle of one. Drawing never takes that lock and so never
// waits for a decode; what drawing reads (state, sizes, textures) is handed
// over under a short lock of its own that nobody holds while decoding.
// Textures are made on the render device's managed pool: the loading thread
// writes their memory, the drawing thread uploads them.

#include <atomic>
#include <memory>
#include <mutex>

#include <karvelui/CString.h>
#include <karvelui/D3DTypes.h>
#include <karvelui/Direct3D.h>
#include <karvelui/Export.h>
#include <karvelui/Geometry.h>
#include <karvelui/RefPtr.h>
#include <karvelui/Sync.h>

namespace KarvelUI {

class DXCore;
class ThumbDB;

enum ThumbLoadState {
  THUMB_STATE_NOT_LOADED = 0,
  THUMB_STATE_LOADED = 1,
  THUMB_STATE_FAILED = 2,
};

class KARVELUI_API _ThumbnailConfig {
 public:
  // The largest mean absolute difference per channel between a JPEG
  // thumbnail decoded at a reduced scale and one resampled from the whole
  // picture, for photographs without detail finer than the thumbnail shows.
  static constexpr double kFastPathMeanDifference = 3.0;

  _ThumbnailConfig();
  // Copies share the textures and the lock; nothing copies a loaded record.
  _ThumbnailConfig(const _ThumbnailConfig& other);
  _ThumbnailConfig& operator=(const _ThumbnailConfig& other);
  virtual ~_ThumbnailConfig();

  // Destroys a record made with new.
  virtual void Release();
  // The thumbnail as a centre-cropped square in `rect` turned by `angle`
  // (radians), and its reflection right below it (never turned), both cut to
  // `clip` when given. 0 when the thumbnail is not loaded or cannot be drawn.
  virtual int Render(DXCore* dx, CRect rect, CRect* clip, double angle);

  void SetImage(const CString& path);
  // Path, width and height of `source`.
  void Copy(_ThumbnailConfig* source);
  // Back to an empty record: no path, device, textures, sizes or state.
  void Clear();
  // A new picture: the thumbnail and the picture's size go, the state is 0;
  // the reflection stays until the next one is made.
  void UpdateImage(const CString& path);
  void ReleaseTexture();

  // The picture's own size (not the texture's); 0 before a load.
  UINT GetImageWidth();
  UINT GetImageHeight();

  // The whole load: thumbs.db, else the picture file, then the reflection.
  // 1 when the thumbnail is (or already was) loaded or has failed before.
  int LoadThumb();

  // Opens the class-wide thumbs.db of `folder` unless it is the open one.
  static void ReadThumbDB(const CString& folder);
  static void ClearThumbDB();

  // The desktop's shared thumbnail cache is read and written unless turned
  // off here; writing also stops by itself when the cache folder refuses it.
  static void SetSharedCacheEnabled(int enabled);
  static int IsSharedCacheEnabled();

  CString GetImage() const;
  // The wanted texture size; after a load from the picture file, the size
  // the texture really has.
  void SetSize(int width, int height);
  int GetWidth() const;
  int GetHeight() const;
  void SetRenderDevice(DXCore* dx);
  int GetState() const { return m_nState.load(); }
  void SetState(int state) { m_nState.store(state); }
  // The textures as loaded (shared references); null when there is none.
  RefPtr<IDirect3DTexture9> GetTexture() const;
  RefPtr<IDirect3DTexture9> GetReflection() const;
  // Where the reflection texture lies in the mirrored thumbnail: only the
  // part a drawing can show (the centre square's columns, the rows that are
  // not fully transparent) is kept.
  CRect GetReflectionPart() const;

 private:
  friend class ThumbUpdateTask;

  // What drawing reads, taken in one go under the short lock.
  struct View;
  // What a load starts from: path, device and wanted size.
  struct LoadInput;

  int LoadThumbFromThumbDB();
  int LoadThumbFromOriFile();
  int LoadReflecThumb();
  int RenderThumb(const View& view, IDirect3DTexture9* texture, const CRect& part, DXCore* dx, const CRect& rect,
                  CRect* clip, double angle);
  View TakeView() const;
  LoadInput TakeLoadInput() const;
  // Hands a loaded texture over to drawing.
  void Publish(RefPtr<IDirect3DTexture9> texture, const D3DSURFACE_DESC& desc, const D3DXIMAGE_INFO& info);
  CRITICAL_SECTION* Lock() const { return m_pLock.get(); }

  static std::mutex s_ThumbDBMutex;
  static std::shared_ptr<ThumbDB> s_pThumbDB;
  static CString s_sThumbDBFolder;

  CString m_strPath;
  int m_nWidth = 0;
  int m_nHeight = 0;
  std::atomic<int> m_nState{THUMB_STATE_NOT_LOADED};
  DXCore* m_pDXCore = nullptr;
  RefPtr<IDirect3DTexture9> m_pTexture;
  RefPtr<IDirect3DTexture9> m_pReflection;
  CRect m_ReflectionPart;
  std::unique_ptr<D3DXIMAGE_INFO> m_pImageInfo;
  D3DSURFACE_DESC m_TextureDesc{};
  std::shared_ptr<CRITICAL_SECTION> m_pLock;
  mutable std::mutex m_ViewMutex;  // the short lock; guards every field above but the state
};

}  // namespace KarvelUI
