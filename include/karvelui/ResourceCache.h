#pragma once

// ResourceCache: the textures and fonts of one render device (each DXCore
// embeds one). It turns picture files into textures keyed by their path,
// makes textures from pixel memory and from other textures, composes the
// frames of animated pictures one at a time on demand, and caches fonts.
//
// Pictures are cut into tiles no larger than a quarter of the adapter's
// maximum texture size; a tile at the right or bottom edge uses the
// smallest power-of-two texture that holds it. Decoding and uploading are
// separate steps: a worker thread may decode a file (LoadTextureFromFile
// with decodeOnly 1, leaving the entry "decoded") while the drawing thread
// uploads it on its next GetTextureItem without reading the file again.
//
// Entries keep their identity for the life of the cache: a reload moves
// the new content into the existing record, and ReleaseTexture empties an
// entry without removing it, so pointers held by controls never dangle.
//
// Locks: the texture lock guards the texture map and every lock and unlock
// of a tile texture (the drawing thread holds it for a whole frame);
// decoding and pixel copying run without it. The raw lock serialises the
// making of JPEG previews from camera RAW files. Both are recursive. Fonts
// and the frames of animated pictures are the drawing thread's business.

#include <functional>
#include <map>
#include <memory>
#include <vector>

#include <karvelui/CString.h>
#include <karvelui/Export.h>
#include <karvelui/Geometry.h>
#include <karvelui/Sync.h>
#include <karvelui/Direct3D.h>

// The image library's picture handles (global, as it declares them).
struct FIBITMAP;
struct FIMULTIBITMAP;

namespace KarvelUI {

// A decoded picture shared by the records that hold it: a record that is
// being uploaded keeps its picture even when the entry it came from is
// released meanwhile.
using SharedFIBitmap = std::shared_ptr<FIBITMAP>;
using SharedFIMultiBitmap = std::shared_ptr<FIMULTIBITMAP>;

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
  SharedFIBitmap pBitmap;          // decoded (for a frame: composed) picture, kept after upload
  SharedFIMultiBitmap pMultiBitmap;  // the open multi-page file, held by the first frame
  int nFrameCount = 1;
  int nFrameIndex = 0;
  int nFrameTime = 100;            // milliseconds; -1 for single-frame pictures
  int nDisposalMethod = 0;         // of this frame (0..3)
  tagTextureItem* pFirstFrame;     // the chain's first frame (this one for a first frame)
  std::unique_ptr<tagTextureItem> pNextFrame;

  TextureTile* Tile(int column, int row) const { return &pTiles[static_cast<size_t>(row) * nTileCols + column]; }
  bool IsReady() const { return nState == TEXTURE_STATE_READY_MEMORY || nState == TEXTURE_STATE_READY_FILE; }
  void ReleaseTiles();
};
using TEXTUREITEM = tagTextureItem;

// How far a picture shown large has come (ResourceCache::StepViewPicture).
enum ViewPictureStage {
  VIEW_PICTURE_PENDING = 0,  // nothing to draw yet: the cache's worker is decoding it
  VIEW_PICTURE_PREVIEW = 1,  // a reduced copy can be drawn in the picture's place
  VIEW_PICTURE_PARTIAL = 2,  // some full-resolution tiles are up (and the reduced copy, if any)
  VIEW_PICTURE_FULL = 3,     // the path's own entry is ready
  VIEW_PICTURE_FAILED = 4,   // the picture cannot be made
};

// What the drawing thread can draw of a picture shown large, this frame.
struct KARVELUI_API ViewPicture {
  int nStage = VIEW_PICTURE_PENDING;
  D3DXIMAGE_INFO ImageInfo{};          // the whole picture's own description, from the preview on
  tagTextureItem* pPreview = nullptr;  // ready reduced copy, drawn over the whole picture's rectangle
  // PARTIAL: the tiles made so far (those with a texture), for the device to
  // take in while the preview shows; FULL: the path's entry.
  tagTextureItem* pPicture = nullptr;
};

class ViewPictureLoader;
class PictureSource;

struct KARVELUI_API FONTITEM {
  virtual ~FONTITEM() = default;
  RefPtr<ID3DXFont> pFont;
};

class KARVELUI_API ResourceCache {
 public:
  ResourceCache();
  ResourceCache(const ResourceCache&) = delete;
  ResourceCache& operator=(const ResourceCache&) = delete;

  // Destroys a cache made with new.
  virtual void Release();
  virtual ~ResourceCache();

  // The entry of `path` when it is ready; otherwise the file is loaded (an
  // entry that is only decoded is uploaded without reading the file). Null
  // when the picture cannot be made.
  tagTextureItem* GetTextureItem(CString path, IDirect3DDevice9* device);
  // The entry of `key` in whatever state, or null; never loads.
  tagTextureItem* SearchTextureItem(CString key, IDirect3DDevice9* device);
  // The entry of `key` when ready, else LoadTextureFromMemory.
  tagTextureItem* GetTextureItemFromMemory(CString key, IDirect3DDevice9* device, void* bits, int size, int width,
                                           int height, UINT bitsPerPixel);

  // Decodes the file and, unless decodeOnly, uploads it. A failure traces
  // "<ERROR> Decode Fail: <path>" and returns null; an existing entry is
  // then unchanged.
  tagTextureItem* LoadTextureFromFile(CString path, IDirect3DDevice9* device, int decodeOnly);
  // The same for a picture file image held in memory (a stored thumbnail, a
  // picture inside another file), entered under `key`. The cache keeps a
  // copy of the bytes while frames of an animated picture remain to be read.
  tagTextureItem* LoadTextureFromFileImage(CString key, IDirect3DDevice9* device, const void* data, size_t size,
                                           int decodeOnly);
  // Uploads the caller's pixels (24 or 32 bits, rows bottom-up, `size`
  // bytes in all) as an entry in state 1.
  tagTextureItem* LoadTextureFromMemory(CString key, IDirect3DDevice9* device, void* bits, int size, int width,
                                        int height, UINT bitsPerPixel);
  // Copies the texture's level 0 (described by `description`, or by the
  // texture itself when null) into an entry in state 1 whose image
  // information is `imageInfo`. The caller keeps its texture.
  tagTextureItem* LoadTextureFromTexture(CString key, IDirect3DDevice9* device, IDirect3DTexture9* texture,
                                         D3DSURFACE_DESC* description, D3DXIMAGE_INFO* imageInfo);

  // Frame `frame` of an animated picture, decoding the frames before it that
  // are still missing, in order; the item itself for frame 0 or below, null
  // at or beyond the frame count.
  tagTextureItem* GetFrameByIndex(tagTextureItem* item, long frame, IDirect3DDevice9* device);
  // Decodes and uploads the `count` frames after `item`; returns the one
  // right after it, or null (also when a page cannot be read: the frame
  // count then shrinks to the frames that exist).
  tagTextureItem* LoadTextureFromNextFrames(tagTextureItem* item, long count, IDirect3DDevice9* device);

  // Empties the entry of `key` (every frame): with keepDecoded its decoded
  // pictures stay for a quick re-upload (state 3), otherwise everything
  // goes (state 0). The entry stays. 0 without a device or an entry.
  int ReleaseTexture(CString key, IDirect3DDevice9* device, int keepDecoded);

  // Deletes every texture entry (frames, tiles, bitmaps) and every font.
  void ReleaseAll();

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

  // --- pictures shown large (the image view) ---------------------------------
  // A large photo reaches the screen in steps that never hold up the drawing
  // thread for long: the cache's worker decodes a reduced preview (at least
  // `previewSize`) and then the whole picture, without textures; the drawing
  // thread uploads the preview at once and the whole picture a few tiles per
  // frame; the preview stands for it until the last tile is up.
  //
  // Decodes `path` and then each of `ahead` (in that order) on the worker,
  // replacing requests not yet done; a decode of a picture no longer wanted
  // first is abandoned. Pictures decoded for an earlier request and not
  // named now are released (keep-decoded 0), so at most 1 + ahead.size()
  // pictures stay decoded. `notify` runs on the worker after each step.
  void RequestViewPictures(const CString& path, const std::vector<CString>& ahead, CSize previewSize,
                           IDirect3DDevice9* device, std::function<void()> notify);
  // Drawing thread: uploads what the worker has decoded for `path` (the
  // preview at once, the whole picture for at most about `budgetMs` per call)
  // and tells what can be drawn. A path never requested is loaded at once.
  ViewPicture StepViewPicture(const CString& path, IDirect3DDevice9* device, double budgetMs);

  CRITICAL_SECTION* GetTextureLock() { return m_pTextureLock.get(); }
  CRITICAL_SECTION* GetRawLock() { return m_pRawLock.get(); }

 private:
  friend class ViewPictureLoader;

  // Shorter keys first; keys of equal length compare from the last
  // character towards the first (paths of one folder differ at the end).
  struct KeyLess {
    bool operator()(const CString& a, const CString& b) const;
  };

  int CacheTextureFromFile(CString path, IDirect3DDevice9* device, tagTextureItem* item, int decodeOnly);
  // Decodes `image`, or the file at `key` when it is null, into `item`.
  int CacheTexture(const CString& key, const PictureSource* image, IDirect3DDevice9* device, tagTextureItem* item,
                   int decodeOnly);
  tagTextureItem* LoadTexture(const CString& key, const PictureSource* image, IDirect3DDevice9* device,
                              int decodeOnly);
  int CacheTextureFromMemory(IDirect3DDevice9* device, void* bits, int size, int width, int height,
                             UINT bitsPerPixel, tagTextureItem* item, int bottomUp);
  // Frame composed on a copy of the previous composed picture; `disposal` is
  // the previous frame's disposal method.
  SharedFIBitmap MergeBitmap(FIBITMAP* canvas, FIBITMAP* frame, CPoint offset, BYTE disposal);

  tagTextureItem* FindEntry(const CString& key);
  // Moves `item` into the entry of `key` (or inserts it) and returns the entry.
  tagTextureItem* StoreEntry(const CString& key, std::unique_ptr<tagTextureItem> item);
  CString FileToDecode(const CString& path);
  bool DecodePicture(const PictureSource& source, tagTextureItem* item, int decodeOnly);
  bool DecodeFirstPage(const PictureSource& source, int format, tagTextureItem* item);
  bool DecodeSinglePicture(const PictureSource& source, int format, tagTextureItem* item, int decodeOnly);
  int UploadBitmap(IDirect3DDevice9* device, tagTextureItem* item);
  bool CreateTiles(IDirect3DDevice9* device, int width, int height, tagTextureItem* item);
  bool LockTile(TextureTile* tile);
  void UnlockTile(TextureTile* tile);
  enum class FrameDecode { Done, MissingPage, Failed };
  FrameDecode DecodeNextFrame(tagTextureItem* previous, tagTextureItem* frame, int page);
  // Makes the texture of one tile of `item` and copies its part of `picture`
  // (24 or 32 bits, bottom-up rows) into it; the tile's rectangle must be set.
  bool UploadTile(IDirect3DDevice9* device, FIBITMAP* picture, TextureTile* tile);
  ViewPictureLoader& ViewPictures();

  std::map<CString, std::unique_ptr<tagTextureItem>, KeyLess> m_Textures;
  std::map<CString, std::unique_ptr<FONTITEM>, KeyLess> m_Fonts;
  std::unique_ptr<CRITICAL_SECTION> m_pTextureLock;
  std::unique_ptr<CRITICAL_SECTION> m_pRawLock;
  // Made on first use; its worker is stopped before the entries go.
  std::unique_ptr<ViewPictureLoader> m_pViewPictures;
};

}  // namespace KarvelUI
