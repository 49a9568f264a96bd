#pragma once

// ResourceCache: the textures and fonts of one render device (each DXCore
// embeds one). Entries keep their identity for the life of the cache, so
// pointers held by controls never dangle.
//
// Locks: the texture lock guards the texture map and every lock and unlock
// of a tile texture (the drawing thread holds it for a whole frame); the
// raw lock serialises the making of JPEG previews from camera RAW files.
// Both are recursive. The font map is used on the drawing thread only.

#include <map>
#include <memory>

#include "base/CString.h"
#include "base/Export.h"
#include "platform/Sync.h"
#include "render/gpu/Direct3D.h"

// The picture decoder's bitmap types (global, as the decoder declares them).
struct FIBITMAP;
struct FIMULTIBITMAP;

namespace KarvelUI {

// Frees decoded pictures with the decoder that made them.
struct FreeImageDeleter {
  void operator()(FIBITMAP* bitmap) const;
  void operator()(FIMULTIBITMAP* bitmap) const;
};
using FIBitmapPtr = std::unique_ptr<FIBITMAP, FreeImageDeleter>;
using FIMultiBitmapPtr = std::unique_ptr<FIMULTIBITMAP, FreeImageDeleter>;

// One tile texture of a picture. The picture's pixels of `rect` sit in the
// texture's top-left corner.
struct KARVELUI_API TextureTile {
  TextureTile() = default;
  ~TextureTile();  // unlocks a texture still locked, then releases it
  TextureTile(const TextureTile&) = delete;
  TextureTile& operator=(const TextureTile&) = delete;

  RefPtr<IDirect3DTexture9> pTexture;
  D3DSURFACE_DESC SurfaceDesc{};  // of level 0
  RECT rect;                      // the part of the picture covered, in picture pixels
  bool bLocked = false;
  D3DLOCKED_RECT LockedRect{};    // pitch and bits while locked
};

// Texture item states.
enum TextureItemState {
  TEXTURE_STATE_EMPTY = 0,
  TEXTURE_STATE_READY_MEMORY = 1,  // made from memory or from a texture
  TEXTURE_STATE_FAILED = 2,
  TEXTURE_STATE_DECODED = 3,       // a bitmap is held, no textures
  TEXTURE_STATE_READY_FILE = 4,    // made from a file or a frame
};

// One picture, or one frame of an animated picture, as a grid of tiles.
struct KARVELUI_API tagTextureItem {
  tagTextureItem();
  ~tagTextureItem();
  tagTextureItem(const tagTextureItem&) = delete;
  tagTextureItem& operator=(const tagTextureItem&) = delete;

  int nImageFormat = -1;           // the decoder's format code; -1 unknown or not from a file
  D3DXIMAGE_INFO ImageInfo{};      // the picture's own description
  D3DXIMAGE_INFO TextureInfo{};    // what was uploaded; width and height are the drawing extent
  std::unique_ptr<TextureTile[]> pTiles;  // nTileCols x nTileRows, rows from the top
  int nTileCols = 0;
  int nTileRows = 0;
  int nState = TEXTURE_STATE_EMPTY;
  FIBitmapPtr pBitmap;             // decoded (for a frame: composed) picture
  FIMultiBitmapPtr pMultiBitmap;   // the open multi-page file, owned by the first frame
  int nFrameCount = 1;
  int nFrameIndex = 0;
  int nFrameTime = 100;            // milliseconds; -1 for single-frame pictures
  int nDisposalMethod = 0;
  tagTextureItem* pFirstFrame;     // the chain's first frame (this one for a first frame)
  std::unique_ptr<tagTextureItem> pNextFrame;

  TextureTile* Tile(int column, int row) const { return &pTiles[static_cast<size_t>(row) * nTileCols + column]; }
  bool IsReady() const { return nState == TEXTURE_STATE_READY_MEMORY || nState == TEXTURE_STATE_READY_FILE; }
};
using TEXTUREITEM = tagTextureItem;

struct KARVELUI_API FONTITEM {
  virtual ~FONTITEM() = default;
  RefPtr<ID3DXFont> pFont;
};

class KARVELUI_API ResourceCache {
 public:
  ResourceCache();
  virtual ~ResourceCache();
  ResourceCache(const ResourceCache&) = delete;
  ResourceCache& operator=(const ResourceCache&) = delete;

  // The font of the description, made on first request under the key
  // "%s %d %d %d %d" (face, underline, italic, weight, height) and kept until
  // ReleaseAll; null when the device cannot make it. Underline only tells
  // entries apart: fonts draw no underline.
  ID3DXFont* GetFont(int height, int weight, int italic, const wchar_t* faceName, int underline,
                     IDirect3DDevice9* device);
  // Deletes the entry under "%s %d %d %d" (face, italic, weight, height): 1
  // when there was one, 0 otherwise or without a device. Fonts made by
  // GetFont live under the longer key and are not found here.
  int ReleaseFont(int height, int weight, int italic, const wchar_t* faceName, IDirect3DDevice9* device);

  // Deletes every texture entry (frames, tiles, bitmaps) and every font.
  void ReleaseAll();

  CRITICAL_SECTION* GetTextureLock() { return m_pTextureLock.get(); }
  CRITICAL_SECTION* GetRawLock() { return m_pRawLock.get(); }

 private:
  // Shorter keys first; keys of equal length compare from the last
  // character towards the first (paths of one folder differ at the end).
  struct KeyLess {
    bool operator()(const CString& a, const CString& b) const;
  };

  std::map<CString, std::unique_ptr<tagTextureItem>, KeyLess> m_Textures;
  std::map<CString, std::unique_ptr<FONTITEM>, KeyLess> m_Fonts;
  std::unique_ptr<CRITICAL_SECTION> m_pTextureLock;
  std::unique_ptr<CRITICAL_SECTION> m_pRawLock;
};

}  // namespace KarvelUI
