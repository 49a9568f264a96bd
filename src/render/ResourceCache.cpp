#include <karvelui/ResourceCache.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include <karvelui/BackUpdateTask.h>
#include <karvelui/Trace.h>
#include "platform/Memory.h"
#include "raw/RawSupport.h"
#include "render/PictureDecoder.h"
#include "render/ViewPictureLoader.h"

// After the library's headers: the image library defines TRUE and FALSE as macros.
#include <FreeImage.h>

namespace KarvelUI {

// --- records ---------------------------------------------------------------------

TextureTile::~TextureTile() {
  if (bLocked && pTexture) pTexture->UnlockRect(0);
}

tagTextureItem::tagTextureItem() : pFirstFrame(this) {}

tagTextureItem::~tagTextureItem() {
  // Frames are unlinked one at a time, so a long animation does not recurse.
  std::unique_ptr<tagTextureItem> next = std::move(pNextFrame);
  while (next) next = std::move(next->pNextFrame);
}

void tagTextureItem::ReleaseTiles() {
  pTiles.reset();
  nTileCols = nTileRows = 0;
}

namespace {

constexpr float kTileShare = 0.25f;  // of the adapter's largest texture, per side
constexpr int kMinFrameTime = 30;     // shorter frame times are shown for 100 ms
constexpr int kDefaultFrameTime = 100;
constexpr BYTE kDisposeLeave = 1;
constexpr BYTE kDisposeBackground = 2;
constexpr DWORD kTransparentWhite = 0x00FFFFFF;

int ChainLength(const tagTextureItem& item) {
  int length = 0;
  for (const tagTextureItem* frame = &item; frame; frame = frame->pNextFrame.get()) ++length;
  return length;
}

// Fields a record takes over from another, frame by frame, when content
// moves between records; the pictures are handed over by `take`.
template <class Take>
void CopyFrameFields(tagTextureItem& to, tagTextureItem& from, Take take) {
  to.nImageFormat = from.nImageFormat;
  take(to.pBitmap, from.pBitmap);
  take(to.pMultiBitmap, from.pMultiBitmap);
  to.nState = from.nState;
  to.ImageInfo = from.ImageInfo;
  to.TextureInfo = from.TextureInfo;
  to.nFrameCount = from.nFrameCount;
  to.nFrameIndex = from.nFrameIndex;
  to.nFrameTime = from.nFrameTime;
  to.nDisposalMethod = from.nDisposalMethod;
}

// Walks `to` and `from` frame by frame, making the frames `to` lacks.
template <class Visit>
void ForEachFramePair(tagTextureItem& to, tagTextureItem& from, Visit visit) {
  tagTextureItem* target = &to;
  for (tagTextureItem* source = &from; source; source = source->pNextFrame.get()) {
    visit(*target, *source);
    target->pFirstFrame = &to;
    if (source->pNextFrame && !target->pNextFrame) target->pNextFrame = std::make_unique<tagTextureItem>();
    target = target->pNextFrame.get();
  }
}

// Moves the content of `from` into `to`, so that the record others hold
// keeps its address. `to` ends with exactly as many frames as `from`; the
// emptied `from` is for the caller to delete.
void MoveItemContent(tagTextureItem& to, tagTextureItem& from) {
  const int frames = ChainLength(from);
  if (ChainLength(to) > frames) {
    tagTextureItem* last = &to;
    for (int i = 1; i < frames; ++i) last = last->pNextFrame.get();
    last->pNextFrame.reset();
  }
  ForEachFramePair(to, from, [](tagTextureItem& target, tagTextureItem& source) {
    // Assigning a shared picture unloads the old one unless both are the same.
    CopyFrameFields(target, source, [](auto& mine, auto& theirs) { mine = std::move(theirs); });
    target.pTiles = std::move(source.pTiles);
    target.nTileCols = source.nTileCols;
    target.nTileRows = source.nTileRows;
    source.ReleaseTiles();
  });
}

// Gives `to` the decoded pictures of `from` (shared, so both may hold them)
// for an upload that must not decode the file again.
void ShareDecodedContent(tagTextureItem& to, tagTextureItem& from) {
  ForEachFramePair(to, from, [](tagTextureItem& target, tagTextureItem& source) {
    CopyFrameFields(target, source, [](auto& mine, auto& theirs) { mine = theirs; });
  });
}

// Timing of a page from its animation metadata; missing tags change nothing.
void ReadFrameTiming(FIBITMAP* page, tagTextureItem& item) {
  std::uint32_t value = 0;
  if (ReadAnimationTag(page, "FrameTime", value)) {
    const auto time = static_cast<std::int32_t>(value);
    item.nFrameTime = time < kMinFrameTime ? kDefaultFrameTime : time;
  }
  if (ReadAnimationTag(page, "DisposalMethod", value)) item.nDisposalMethod = static_cast<BYTE>(value);
}

// Where a frame sits on the canvas (16-bit signed values, 0 when missing).
CPoint ReadFrameOffset(FIBITMAP* page) {
  std::uint32_t left = 0, top = 0;
  ReadAnimationTag(page, "FrameLeft", left);
  ReadAnimationTag(page, "FrameTop", top);
  return CPoint(static_cast<std::int16_t>(left), static_cast<std::int16_t>(top));
}

// Texture extent of a tile: the full tile size, or at the right and bottom
// edges the smallest power of two that holds what remains.
UINT TileTextureExtent(int remaining, int fullTile) {
  if (remaining >= fullTile) return static_cast<UINT>(fullTile);
  UINT extent = 1;
  while (extent < static_cast<UINT>(remaining)) extent <<= 1;
  return extent;
}

// The caller's pixels: rows of `rowLength` bytes, bottom-up or top-down.
struct PixelRows {
  const BYTE* bits;
  int rowLength;
  int height;
  UINT bitsPerPixel;
  bool bottomUp;

  const BYTE* Row(int row) const {
    const int stored = bottomUp ? height - 1 - row : row;
    return bits + static_cast<std::ptrdiff_t>(stored) * rowLength;
  }
};

// 24-bit pixels gain an opaque alpha byte on the way.
void ExpandRow24(const BYTE* source, BYTE* target, int pixels) {
  for (int i = 0; i + 1 < pixels; ++i, source += 3, target += 4) {
    std::uint32_t pixel;
    std::memcpy(&pixel, source, 4);  // the fourth byte belongs to the next pixel and is replaced
    pixel |= 0xFF000000u;
    std::memcpy(target, &pixel, 4);
  }
  if (pixels > 0) {
    target[0] = source[0], target[1] = source[1], target[2] = source[2], target[3] = 0xFF;
  }
}

// Texels just outside the covered part repeat its last column and row, so
// that filtering at the picture's right and bottom edges, where a tile's
// texture is larger than its part, does not fade into empty texels.
void CopyTileRows(const PixelRows& rows, const TextureTile& tile) {
  const int width = tile.rect.Width();
  const bool padColumn = static_cast<UINT>(width) < tile.SurfaceDesc.Width;
  const bool padRow = static_cast<UINT>(tile.rect.Height()) < tile.SurfaceDesc.Height;
  const size_t offset = static_cast<size_t>(tile.rect.left) * (rows.bitsPerPixel / 8);
  auto* target = static_cast<BYTE*>(tile.LockedRect.pBits);
  for (int r = tile.rect.top; r < tile.rect.bottom; ++r, target += tile.LockedRect.Pitch) {
    const BYTE* source = rows.Row(r) + offset;
    if (rows.bitsPerPixel == 32)
      std::memcpy(target, source, static_cast<size_t>(width) * 4);
    else
      ExpandRow24(source, target, width);
    if (padColumn) std::memcpy(target + width * 4, target + (width - 1) * 4, 4);
  }
  if (padRow) std::memcpy(target, target - tile.LockedRect.Pitch, static_cast<size_t>(width + padColumn) * 4);
}

D3DXIMAGE_INFO UploadedImageInfo(int width, int height) {
  return D3DXIMAGE_INFO{static_cast<UINT>(width), static_cast<UINT>(height), 0, 1, D3DFMT_A8R8G8B8,
                        D3DRTYPE_TEXTURE, D3DXIFF_FORCE_DWORD};
}

SharedFIBitmap Share(FIBitmapPtr bitmap) { return SharedFIBitmap(std::move(bitmap)); }

}  // namespace

// --- the cache -------------------------------------------------------------------

bool ResourceCache::KeyLess::operator()(const CString& a, const CString& b) const {
  if (a.GetLength() != b.GetLength()) return a.GetLength() < b.GetLength();
  const std::wstring& x = a.str();
  const std::wstring& y = b.str();
  for (size_t i = x.size(); i-- > 0;) {
    if (x[i] != y[i]) return static_cast<std::uint32_t>(x[i]) < static_cast<std::uint32_t>(y[i]);
  }
  return false;
}

ResourceCache::ResourceCache()
    : m_pTextureLock(std::make_unique<CRITICAL_SECTION>()), m_pRawLock(std::make_unique<CRITICAL_SECTION>()) {}

ResourceCache::~ResourceCache() {
  m_pViewPictures.reset();  // its worker goes before the entries and locks it uses
  ReleaseAll();
}

void ResourceCache::Release() { delete this; }

tagTextureItem* ResourceCache::FindEntry(const CString& key) {
  UILock lock(m_pTextureLock.get());
  auto found = m_Textures.find(key);
  return found == m_Textures.end() ? nullptr : found->second.get();
}

tagTextureItem* ResourceCache::StoreEntry(const CString& key, std::unique_ptr<tagTextureItem> item) {
  UILock lock(m_pTextureLock.get());
  auto found = m_Textures.find(key);
  if (found == m_Textures.end()) return m_Textures.emplace(key, std::move(item)).first->second.get();
  MoveItemContent(*found->second, *item);
  return found->second.get();
}

tagTextureItem* ResourceCache::GetTextureItem(CString path, IDirect3DDevice9* device) {
  tagTextureItem* entry = FindEntry(path);
  if (entry && entry->IsReady()) return entry;
  return LoadTextureFromFile(path, device, 0);
}

tagTextureItem* ResourceCache::SearchTextureItem(CString key, IDirect3DDevice9*) { return FindEntry(key); }

tagTextureItem* ResourceCache::GetTextureItemFromMemory(CString key, IDirect3DDevice9* device, void* bits, int size,
                                                        int width, int height, UINT bitsPerPixel) {
  tagTextureItem* entry = FindEntry(key);
  if (entry && entry->IsReady()) return entry;
  return LoadTextureFromMemory(key, device, bits, size, width, height, bitsPerPixel);
}

tagTextureItem* ResourceCache::LoadTextureFromFile(CString path, IDirect3DDevice9* device, int decodeOnly) {
  return LoadTexture(path, nullptr, device, decodeOnly);
}

tagTextureItem* ResourceCache::LoadTextureFromFileImage(CString key, IDirect3DDevice9* device, const void* data,
                                                        size_t size, int decodeOnly) {
  const PictureSource image = PictureSource::Memory(data, size);
  return LoadTexture(key, &image, device, decodeOnly);
}

tagTextureItem* ResourceCache::LoadTexture(const CString& key, const PictureSource* image, IDirect3DDevice9* device,
                                           int decodeOnly) {
  auto item = std::make_unique<tagTextureItem>();
  {
    UILock lock(m_pTextureLock.get());
    if (tagTextureItem* entry = FindEntry(key)) {
      if (entry->nState == TEXTURE_STATE_READY_FILE) return entry;
      if (entry->nState == TEXTURE_STATE_DECODED) {
        if (decodeOnly) return entry;
        ShareDecodedContent(*item, *entry);  // upload what is decoded instead of reading the file
      }
    }
  }
  if (!CacheTexture(key, image, device, item.get(), decodeOnly)) return nullptr;
  return StoreEntry(key, std::move(item));
}

CString ResourceCache::FileToDecode(const CString& path) {
  CString jpg;
  if (!IsRawPic(path) || !GetRawFileJPGPath(path, jpg)) return path;
  UILock lock(m_pRawLock.get());
  return GenerateRawJPGFile(path, jpg) ? jpg : path;
}

int ResourceCache::CacheTextureFromFile(CString path, IDirect3DDevice9* device, tagTextureItem* item,
                                        int decodeOnly) {
  return CacheTexture(path, nullptr, device, item, decodeOnly);
}

int ResourceCache::CacheTexture(const CString& key, const PictureSource* image, IDirect3DDevice9* device,
                                tagTextureItem* item, int decodeOnly) {
  const bool decoded = item->nState == TEXTURE_STATE_DECODED && item->pBitmap;
  const auto decode = [&] {
    return image ? DecodePicture(*image, item, decodeOnly)
                 : DecodePicture(PictureSource::File(FileToDecode(key)), item, decodeOnly);
  };
  if ((!decoded && !decode()) || (!decodeOnly && !UploadBitmap(device, item))) {
    item->nState = TEXTURE_STATE_FAILED;
    g_ITrace->Trace(TRACE_LEVEL_DEVICE, TRACE_FLUSH, L"<ERROR> Decode Fail: %s", key);
    return 0;
  }
  if (decodeOnly) return 1;
  item->nState = TEXTURE_STATE_READY_FILE;
  ReleaseFreeHeapMemory();
  return 1;
}

bool ResourceCache::DecodePicture(const PictureSource& source, tagTextureItem* item, int decodeOnly) {
  const int format = DetectPictureFormat(source);
  if (format == PICTURE_FORMAT_UNKNOWN) return false;
  item->nImageFormat = format;
  const bool decoded = IsMultiPageFormat(format) ? DecodeFirstPage(source, format, item)
                                                 : DecodeSinglePicture(source, format, item, decodeOnly);
  if (!decoded) return false;
  item->pNextFrame.reset();
  item->pFirstFrame = item;
  item->nState = TEXTURE_STATE_DECODED;
  ReleaseFreeHeapMemory();  // deliberately after every decode
  return true;
}

bool ResourceCache::DecodeFirstPage(const PictureSource& source, int format, tagTextureItem* item) {
  FIMultiBitmapPtr pages = OpenMultiPagePicture(source, format);
  if (!pages) return false;
  item->nFrameCount = FreeImage_GetPageCount(pages.get());
  item->nFrameIndex = 0;
  FIBitmapPtr picture;
  {
    const LockedPage page(pages.get(), 0);
    if (!page.Get()) return false;
    ReadFrameTiming(page.Get(), *item);
    picture = CopyAs32Bits(page.Get());
  }
  if (!picture) return false;
  item->pBitmap = Share(std::move(picture));
  item->pMultiBitmap = SharedFIMultiBitmap(std::move(pages));
  return true;
}

bool ResourceCache::DecodeSinglePicture(const PictureSource& source, int format, tagTextureItem* item,
                                        int decodeOnly) {
  item->nFrameCount = 1;
  item->nFrameIndex = 0;
  item->nFrameTime = -1;
  FIBitmapPtr picture = LoadPicture(source, format);
  if (!picture) return false;
  // 32-bit BMP files carry no meaningful alpha.
  if (format == PICTURE_FORMAT_BMP && Is32BitPicture(picture.get())) MakeOpaque(picture.get());
  // A 24-bit picture stays so only when it is uploaded at once: the upload expands it.
  const bool keep = Is32BitPicture(picture.get()) || (Is24BitPicture(picture.get()) && !decodeOnly);
  if (!keep) {
    picture = CopyAs32Bits(picture.get());
    if (!picture) return false;
  }
  item->pBitmap = Share(std::move(picture));
  return true;
}

int ResourceCache::UploadBitmap(IDirect3DDevice9* device, tagTextureItem* item) {
  FIBITMAP* bitmap = item->pBitmap.get();
  if (!bitmap || !FreeImage_HasPixels(bitmap)) return 0;
  const auto width = static_cast<int>(FreeImage_GetWidth(bitmap));
  const auto height = static_cast<int>(FreeImage_GetHeight(bitmap));
  const std::uint64_t size = std::uint64_t(FreeImage_GetPitch(bitmap)) * static_cast<std::uint64_t>(height);
  if (size > INT32_MAX) return 0;
  return CacheTextureFromMemory(device, FreeImage_GetBits(bitmap), static_cast<int>(size), width, height,
                                FreeImage_GetBPP(bitmap), item, 1);
}

// --- tiles -----------------------------------------------------------------------

bool ResourceCache::CreateTiles(IDirect3DDevice9* device, int width, int height, tagTextureItem* item) {
  D3DCAPS9 caps{};
  if (FAILED(device->GetDeviceCaps(&caps))) return false;
  // Whole tile sizes; with the usual power-of-two adapter limits they are
  // exactly a quarter of the largest texture.
  const auto tileWidth = static_cast<int>(static_cast<float>(caps.MaxTextureWidth) * kTileShare);
  const auto tileHeight = static_cast<int>(static_cast<float>(caps.MaxTextureHeight) * kTileShare);
  if (tileWidth < 1 || tileHeight < 1) return false;
  item->nTileCols = (width + tileWidth - 1) / tileWidth;
  item->nTileRows = (height + tileHeight - 1) / tileHeight;
  item->pTiles = std::make_unique<TextureTile[]>(static_cast<size_t>(item->nTileCols) * item->nTileRows);

  int remainingHeight = height;
  for (int row = 0; row < item->nTileRows; ++row, remainingHeight -= tileHeight) {
    int remainingWidth = width;
    for (int column = 0; column < item->nTileCols; ++column, remainingWidth -= tileWidth) {
      TextureTile* tile = item->Tile(column, row);
      if (FAILED(device->CreateTexture(TileTextureExtent(remainingWidth, tileWidth),
                                       TileTextureExtent(remainingHeight, tileHeight), 1, 0, D3DFMT_A8R8G8B8,
                                       D3DPOOL_MANAGED, tile->pTexture.Receive(), nullptr)))
        return false;
      tile->pTexture->GetLevelDesc(0, &tile->SurfaceDesc);
      // The covered size for now; CacheTextureFromMemory places it.
      tile->rect = CRect(0, 0, std::min(remainingWidth, tileWidth), std::min(remainingHeight, tileHeight));
    }
  }
  return true;
}

bool ResourceCache::LockTile(TextureTile* tile) {
  UILock lock(m_pTextureLock.get());
  if (!tile->pTexture) return false;
  if (!tile->bLocked) {
    if (FAILED(tile->pTexture->LockRect(0, &tile->LockedRect, nullptr, 0))) return false;
    tile->bLocked = true;
  }
  return true;
}

void ResourceCache::UnlockTile(TextureTile* tile) {
  UILock lock(m_pTextureLock.get());
  tile->pTexture->UnlockRect(0);
  tile->bLocked = false;
  tile->LockedRect = {};
}

int ResourceCache::CacheTextureFromMemory(IDirect3DDevice9* device, void* bits, int size, int width, int height,
                                          UINT bitsPerPixel, tagTextureItem* item, int bottomUp) {
  if (!device || !bits || !item || width <= 0 || height <= 0 || size <= 0) return 0;
  if (bitsPerPixel != 24 && bitsPerPixel != 32) return 0;
  const PixelRows rows{static_cast<const BYTE*>(bits), size / height, height, bitsPerPixel, bottomUp != 0};
  if (static_cast<std::int64_t>(rows.rowLength) < std::int64_t(width) * (bitsPerPixel / 8)) return 0;
  if (!CreateTiles(device, width, height, item)) return 0;

  // Each tile texture is locked only for the copy of its own rows, and the
  // texture lock only around the lock and the unlock.
  LONG x = 0, y = 0;
  for (int row = 0; row < item->nTileRows; ++row) {
    LONG rowHeight = 0;
    for (int column = 0; column < item->nTileCols; ++column) {
      TextureTile* tile = item->Tile(column, row);
      if (!LockTile(tile)) return 0;
      const CSize covered = tile->rect.Size();
      tile->rect = CRect(CPoint(x, y), covered);
      CopyTileRows(rows, *tile);
      UnlockTile(tile);
      x += covered.cx;
      rowHeight = covered.cy;
    }
    x = 0;
    y += rowHeight;
  }
  item->ImageInfo = item->TextureInfo = UploadedImageInfo(width, height);
  return 1;
}

bool ResourceCache::UploadTile(IDirect3DDevice9* device, FIBITMAP* picture, TextureTile* tile) {
  if (!device || !picture || !FreeImage_HasPixels(picture)) return false;
  const UINT bitsPerPixel = FreeImage_GetBPP(picture);
  if (bitsPerPixel != 24 && bitsPerPixel != 32) return false;
  const auto height = static_cast<int>(FreeImage_GetHeight(picture));
  const PixelRows rows{FreeImage_GetBits(picture), static_cast<int>(FreeImage_GetPitch(picture)), height, bitsPerPixel,
                       true};
  const CRect part = tile->rect;
  if (FAILED(device->CreateTexture(static_cast<UINT>(part.Width()), static_cast<UINT>(part.Height()), 1, 0,
                                   D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, tile->pTexture.Receive(), nullptr)))
    return false;
  tile->pTexture->GetLevelDesc(0, &tile->SurfaceDesc);
  if (!LockTile(tile)) return false;
  CopyTileRows(rows, *tile);
  UnlockTile(tile);
  return true;
}

tagTextureItem* ResourceCache::LoadTextureFromMemory(CString key, IDirect3DDevice9* device, void* bits, int size,
                                                     int width, int height, UINT bitsPerPixel) {
  auto item = std::make_unique<tagTextureItem>();
  {
    UILock lock(m_pTextureLock.get());
    if (tagTextureItem* entry = FindEntry(key)) {
      if (entry->nState == TEXTURE_STATE_READY_FILE) return entry;
      if (entry->nState == TEXTURE_STATE_DECODED) {
        item->nState = TEXTURE_STATE_DECODED;
        item->pBitmap = entry->pBitmap;
      }
    }
  }
  // The caller's rows are bottom-up, as in a device-independent bitmap.
  if (!CacheTextureFromMemory(device, bits, size, width, height, bitsPerPixel, item.get(), 1)) return nullptr;
  item->nState = TEXTURE_STATE_READY_MEMORY;
  return StoreEntry(key, std::move(item));
}

tagTextureItem* ResourceCache::LoadTextureFromTexture(CString key, IDirect3DDevice9* device,
                                                      IDirect3DTexture9* texture, D3DSURFACE_DESC* description,
                                                      D3DXIMAGE_INFO* imageInfo) {
  if (tagTextureItem* entry = FindEntry(key);
      entry && (entry->nState == TEXTURE_STATE_DECODED || entry->nState == TEXTURE_STATE_READY_FILE))
    return entry;
  D3DSURFACE_DESC level{};
  if (!texture || FAILED(texture->GetLevelDesc(0, &level))) return nullptr;
  // A description larger than the texture would read past its texels.
  const D3DSURFACE_DESC& desc = description ? *description : level;
  if (desc.Width > level.Width || desc.Height > level.Height) return nullptr;

  auto item = std::make_unique<tagTextureItem>();
  D3DLOCKED_RECT locked{};
  {
    UILock lock(m_pTextureLock.get());
    if (FAILED(texture->LockRect(0, &locked, nullptr, 0))) return nullptr;
  }
  const std::int64_t size = std::int64_t(desc.Height) * locked.Pitch;
  const int made = size <= INT32_MAX ? CacheTextureFromMemory(device, locked.pBits, static_cast<int>(size),
                                                               static_cast<int>(desc.Width),
                                                               static_cast<int>(desc.Height), 32, item.get(), 0)
                                     : 0;
  {
    UILock lock(m_pTextureLock.get());
    texture->UnlockRect(0);
  }
  if (!made) return nullptr;
  if (imageInfo) item->ImageInfo = *imageInfo;  // the source picture; the texture info keeps the upload
  item->nState = TEXTURE_STATE_READY_MEMORY;
  return StoreEntry(key, std::move(item));
}

// --- frames ----------------------------------------------------------------------

tagTextureItem* ResourceCache::GetFrameByIndex(tagTextureItem* item, long frame, IDirect3DDevice9* device) {
  if (!item || frame >= item->nFrameCount) return nullptr;
  tagTextureItem* current = item;
  for (long step = 0; step < frame && current; ++step) {
    tagTextureItem* next = current->pNextFrame.get();
    current = (next && next->nState == TEXTURE_STATE_READY_FILE) ? next
                                                                 : LoadTextureFromNextFrames(current, 1, device);
  }
  return current;
}

ResourceCache::FrameDecode ResourceCache::DecodeNextFrame(tagTextureItem* previous, tagTextureItem* frame, int page) {
  FIBitmapPtr copy;
  CPoint offset;
  {
    const LockedPage locked(frame->pFirstFrame->pMultiBitmap.get(), page);
    if (!locked.Get()) return FrameDecode::MissingPage;
    offset = ReadFrameOffset(locked.Get());
    ReadFrameTiming(locked.Get(), *frame);
    copy = CopyAs32Bits(locked.Get());
  }
  if (!copy) return FrameDecode::Failed;
  SharedFIBitmap merged = MergeBitmap(previous->pBitmap.get(), copy.get(), offset,
                                      static_cast<BYTE>(previous->nDisposalMethod));
  if (!merged) return FrameDecode::Failed;
  frame->pBitmap = std::move(merged);
  frame->nState = TEXTURE_STATE_DECODED;
  return FrameDecode::Done;
}

tagTextureItem* ResourceCache::LoadTextureFromNextFrames(tagTextureItem* item, long count, IDirect3DDevice9* device) {
  if (!item || item->nFrameIndex >= item->nFrameCount - 1) return nullptr;
  tagTextureItem* first = item->pFirstFrame;
  int page = item->nFrameIndex + 1;
  tagTextureItem* previous = item;
  for (long n = 0; n < count && page < item->nFrameCount; ++n, ++page) {
    if (!previous->pNextFrame) previous->pNextFrame = std::make_unique<tagTextureItem>();
    tagTextureItem* frame = previous->pNextFrame.get();
    frame->pFirstFrame = first;
    if (!(frame->nState == TEXTURE_STATE_DECODED && frame->pBitmap)) {
      const FrameDecode decoded = DecodeNextFrame(previous, frame, page);
      if (decoded == FrameDecode::MissingPage) {
        // The file has fewer frames than it claimed: cycle through those that exist.
        tagTextureItem* shortened = first;
        for (int i = 0; i < page && shortened; ++i, shortened = shortened->pNextFrame.get())
          shortened->nFrameCount = page;
        return nullptr;
      }
      if (decoded == FrameDecode::Failed) return nullptr;
    }
    frame->nFrameCount = item->nFrameCount;
    frame->nFrameIndex = page;
    if (!UploadBitmap(device, frame)) return nullptr;
    frame->nState = TEXTURE_STATE_READY_FILE;
    previous = frame;
  }
  if (page >= first->nFrameCount) first->pMultiBitmap.reset();  // every frame is decoded
  return item->pNextFrame.get();
}

SharedFIBitmap ResourceCache::MergeBitmap(FIBITMAP* canvas, FIBITMAP* frame, CPoint offset, BYTE disposal) {
  if (!Is32BitPicture(canvas) || !Is32BitPicture(frame)) return nullptr;
  FIBitmapPtr result(FreeImage_Clone(canvas));
  if (!result) return nullptr;
  const auto width = static_cast<LONG>(FreeImage_GetWidth(result.get()));
  const auto height = static_cast<LONG>(FreeImage_GetHeight(result.get()));
  const auto frameWidth = static_cast<LONG>(FreeImage_GetWidth(frame));
  const auto frameHeight = static_cast<LONG>(FreeImage_GetHeight(frame));
  if (disposal == kDisposeLeave) {
    // The frame is moved back inside the canvas.
    if (offset.x + frameWidth > width) offset.x = std::max<LONG>(width - frameWidth, 0);
    if (offset.y + frameHeight > height) offset.y = std::max<LONG>(height - frameHeight, 0);
  }
  if (!FreeImage_HasPixels(result.get()) || !FreeImage_HasPixels(frame)) return nullptr;

  // Rows are counted from the top over the bottom-up storage of both.
  auto canvasRow = [&](LONG i) { return reinterpret_cast<DWORD*>(FreeImage_GetScanLine(result.get(), height - 1 - i)); };
  auto frameRow = [&](LONG i) { return reinterpret_cast<const DWORD*>(FreeImage_GetScanLine(frame, frameHeight - 1 - i)); };
  if (disposal == kDisposeBackground) {
    // The whole canvas is cleared, not only the previous frame's area.
    for (LONG i = 0; i < height; ++i) std::fill_n(canvasRow(i), width, kTransparentWhite);
  }
  const CRect inside = CRect(CPoint(offset.x, offset.y), CSize(frameWidth, frameHeight)) & CRect(0, 0, width, height);
  for (LONG i = inside.top; i < inside.bottom; ++i) {
    DWORD* target = canvasRow(i);
    const DWORD* source = frameRow(i - offset.y);
    for (LONG j = inside.left; j < inside.right; ++j) {
      const DWORD pixel = source[j - offset.x];
      if (pixel >> 24) target[j] = pixel;  // no blending: opaque-enough pixels replace
    }
  }
  return Share(std::move(result));
}

// --- release ---------------------------------------------------------------------

int ResourceCache::ReleaseTexture(CString key, IDirect3DDevice9* device, int keepDecoded) {
  if (!device) return 0;
  UILock lock(m_pTextureLock.get());
  if (m_pViewPictures) m_pViewPictures->DropUpload(key);
  tagTextureItem* entry = FindEntry(key);
  if (!entry) return 0;
  tagTextureItem* frame = entry;
  for (int i = 0; i < entry->nFrameCount && frame; ++i, frame = frame->pNextFrame.get()) {
    frame->ReleaseTiles();
    if (keepDecoded && frame->pBitmap) {
      frame->nState = TEXTURE_STATE_DECODED;  // the decoded picture stays for a quick re-upload
    } else {
      frame->nState = TEXTURE_STATE_EMPTY;
      frame->pBitmap.reset();
    }
  }
  if (!keepDecoded) entry->pMultiBitmap.reset();
  return 1;
}

void ResourceCache::ReleaseAll() {
  if (m_pViewPictures) m_pViewPictures->Clear();  // the worker stops adding entries first
  {
    UILock lock(m_pTextureLock.get());
    m_Textures.clear();
  }
  m_Fonts.clear();
}

// --- pictures shown large ----------------------------------------------------------

ViewPictureLoader& ResourceCache::ViewPictures() {
  if (!m_pViewPictures) m_pViewPictures = std::make_unique<ViewPictureLoader>(*this);
  return *m_pViewPictures;
}

void ResourceCache::RequestViewPictures(const CString& path, const std::vector<CString>& ahead, CSize previewSize,
                                        IDirect3DDevice9* device, std::function<void()> notify) {
  ViewPictures().Request(path, ahead, previewSize, device, std::move(notify));
}

ViewPicture ResourceCache::StepViewPicture(const CString& path, IDirect3DDevice9* device, double budgetMs) {
  return ViewPictures().Step(path, device, budgetMs);
}

// --- fonts -----------------------------------------------------------------------

ID3DXFont* ResourceCache::GetFont(int height, int weight, int italic, const wchar_t* faceName, int underline,
                                  IDirect3DDevice9* device) {
  CString key;
  key.Format(L"%s %d %d %d %d", faceName ? faceName : L"", underline, italic, weight, height);
  auto found = m_Fonts.find(key);
  if (found != m_Fonts.end()) return found->second->pFont.Get();
  auto item = std::make_unique<FONTITEM>();
  if (FAILED(D3DXCreateFontW(device, height, 0, static_cast<UINT>(weight), 1, italic, DEFAULT_CHARSET,
                             OUT_DEFAULT_PRECIS, DRAFT_QUALITY, 0, faceName, item->pFont.Receive())))
    return nullptr;
  ID3DXFont* font = item->pFont.Get();
  m_Fonts.emplace(key, std::move(item));
  return font;
}

int ResourceCache::ReleaseFont(int height, int weight, int italic, const wchar_t* faceName,
                               IDirect3DDevice9* device) {
  if (!device) return 0;
  CString key;
  key.Format(L"%s %d %d %d", faceName ? faceName : L"", italic, weight, height);
  return m_Fonts.erase(key) > 0 ? 1 : 0;
}

}  // namespace KarvelUI
