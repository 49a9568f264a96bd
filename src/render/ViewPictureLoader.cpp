#include "render/ViewPictureLoader.h"

#include <algorithm>
#include <chrono>

#include <karvelui/BackUpdateTask.h>
#include <karvelui/Trace.h>
#include "platform/Memory.h"

// After the library's headers: the image library defines TRUE and FALSE as macros.
#include <FreeImage.h>

namespace KarvelUI {

namespace {

using Clock = std::chrono::steady_clock;

constexpr const wchar_t* kPreviewPrefix = L"<preview> ";

bool Contains(const std::vector<CString>& paths, const CString& path) {
  return std::find(paths.begin(), paths.end(), path) != paths.end();
}

bool HoldsPicture(const tagTextureItem* entry) {
  return entry && (entry->nState == TEXTURE_STATE_READY_FILE ||
                   (entry->nState == TEXTURE_STATE_DECODED && entry->pBitmap));
}

D3DXIMAGE_INFO PictureInfo(unsigned width, unsigned height) {
  return D3DXIMAGE_INFO{width, height, 0, 1, D3DFMT_A8R8G8B8, D3DRTYPE_TEXTURE, D3DXIFF_FORCE_DWORD};
}

// A decoded single picture as a decode-only load leaves it.
std::unique_ptr<tagTextureItem> DecodedRecord(FIBitmapPtr picture, int format) {
  auto record = std::make_unique<tagTextureItem>();
  record->nImageFormat = format;
  record->nFrameCount = 1;
  record->nFrameIndex = 0;
  record->nFrameTime = -1;
  record->ImageInfo = record->TextureInfo =
      PictureInfo(FreeImage_GetWidth(picture.get()), FreeImage_GetHeight(picture.get()));
  record->pBitmap = SharedFIBitmap(std::move(picture));
  record->nState = TEXTURE_STATE_DECODED;
  return record;
}

// The tile grid of a record that is uploaded across frames; every tile's
// rectangle is set, none has a texture yet.
void LayOutTiles(tagTextureItem& record, int width, int height, int side) {
  record.nTileCols = (width + side - 1) / side;
  record.nTileRows = (height + side - 1) / side;
  record.pTiles = std::make_unique<TextureTile[]>(static_cast<size_t>(record.nTileCols) * record.nTileRows);
  for (int row = 0; row < record.nTileRows; ++row)
    for (int column = 0; column < record.nTileCols; ++column)
      record.Tile(column, row)->rect = CRect(column * side, row * side, std::min(width, (column + 1) * side),
                                             std::min(height, (row + 1) * side));
}

double MillisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

}  // namespace

ViewPictureLoader::ViewPictureLoader(ResourceCache& cache) : m_cache(cache) {}

ViewPictureLoader::~ViewPictureLoader() {
  {
    std::lock_guard guard(m_mutex);
    m_stop = true;
    m_cancel = true;
  }
  m_wake.notify_all();
  m_thread.Join();
}

CString ViewPictureLoader::PreviewKey(const CString& path) { return CString(kPreviewPrefix) + path; }

// --- requests (drawing thread) ------------------------------------------------------

void ViewPictureLoader::Request(const CString& path, const std::vector<CString>& ahead, CSize previewSize,
                                IDirect3DDevice9* device, std::function<void()> notify) {
  std::vector<CString> wanted;
  for (const CString& p : ahead)
    if (!p.IsEmpty() && p != path && !Contains(wanted, p)) wanted.push_back(p);
  if (!path.IsEmpty()) wanted.insert(wanted.begin(), path);

  UILock texture(m_cache.GetTextureLock());  // the worker stores under it: no store slips between
  std::vector<CString> dropped;
  {
    std::lock_guard guard(m_mutex);
    for (const CString& p : m_wanted)
      if (!Contains(wanted, p)) dropped.push_back(p);
    for (const CString& p : dropped) m_facts.erase(p);
    m_wanted = wanted;
    m_previewSize = previewSize;
    m_device = device;
    m_notify = std::move(notify);
    m_jobs.clear();
    for (const CString& p : wanted) {
      m_jobs.push_back({p, Work::Preview});
      m_jobs.push_back({p, Work::Whole});
    }
    // The decode in progress goes on only while it serves what is wanted now
    // and the current picture does not wait for it.
    const tagTextureItem* current = m_cache.FindEntry(path);
    const bool currentDone = HoldsPicture(current);
    if (m_busy && !(m_working == path || (currentDone && Contains(wanted, m_working)))) m_cancel = true;
    if (!m_thread.IsRunning()) m_thread.Start([this] { Run(); });
  }
  m_wake.notify_all();
  for (const CString& p : dropped) {
    m_cache.ReleaseTexture(p, device, 0);
    m_cache.ReleaseTexture(PreviewKey(p), device, 0);
  }
}

void ViewPictureLoader::DropUpload(const CString& path) { m_uploads.erase(path); }

void ViewPictureLoader::Clear() {
  {
    std::lock_guard guard(m_mutex);
    m_jobs.clear();
    m_wanted.clear();
    m_facts.clear();
    if (m_busy) m_cancel = true;
  }
  m_uploads.clear();
}

// --- the worker ---------------------------------------------------------------------

void ViewPictureLoader::Run() {
  Job job;
  while (TakeJob(job)) {
    const bool stored = Do(job);
    std::function<void()> notify;
    {
      std::lock_guard guard(m_mutex);
      m_busy = false;
      m_working.Empty();
      notify = m_notify;
    }
    if (stored && notify) notify();
  }
}

bool ViewPictureLoader::TakeJob(Job& job) {
  std::unique_lock lock(m_mutex);
  m_wake.wait(lock, [this] { return m_stop || !m_jobs.empty(); });
  if (m_stop) return false;
  job = m_jobs.front();
  m_jobs.pop_front();
  m_busy = true;
  m_working = job.path;
  m_cancel = false;
  return true;
}

bool ViewPictureLoader::Do(const Job& job) {
  {
    std::lock_guard guard(m_mutex);
    const auto facts = m_facts.find(job.path);
    if (facts != m_facts.end() && facts->second.failed) return false;
  }
  return job.work == Work::Preview ? DecodePreview(job.path) : DecodeWhole(job.path);
}

bool ViewPictureLoader::IsWanted(const CString& path) {
  std::lock_guard guard(m_mutex);
  return Contains(m_wanted, path) && !m_stop;
}

void ViewPictureLoader::MarkFailed(const CString& path) {
  {
    std::lock_guard guard(m_mutex);
    if (!Contains(m_wanted, path)) return;
    m_facts[path].failed = true;
  }
  g_ITrace->Trace(TRACE_LEVEL_DEVICE, TRACE_FLUSH, L"<ERROR> Decode Fail: %s", path);
}

bool ViewPictureLoader::KnowHeader(const CString& path, PictureHeader& header) {
  {
    std::lock_guard guard(m_mutex);
    const auto facts = m_facts.find(path);
    if (facts != m_facts.end() && facts->second.headerRead) {
      header = facts->second.header;
      return true;
    }
  }
  if (!ReadPictureHeader(m_cache.FileToDecode(path), header)) return false;
  std::lock_guard guard(m_mutex);
  if (!Contains(m_wanted, path)) return false;
  Facts& facts = m_facts[path];
  facts.headerRead = true;
  facts.header = header;
  return true;
}

bool ViewPictureLoader::StoreDecoded(const CString& path, const CString& key, std::unique_ptr<tagTextureItem> record) {
  UILock texture(m_cache.GetTextureLock());
  if (!IsWanted(path) || HoldsPicture(m_cache.FindEntry(key))) return false;
  m_cache.StoreEntry(key, std::move(record));
  return true;
}

bool ViewPictureLoader::HasPicture(const CString& key, bool readyOnly) {
  UILock texture(m_cache.GetTextureLock());
  const tagTextureItem* entry = m_cache.FindEntry(key);
  return readyOnly ? entry && entry->IsReady() : HoldsPicture(entry);
}

int ViewPictureLoader::PreviewReduction(const PictureHeader& header) {
  CSize wanted;
  {
    std::lock_guard guard(m_mutex);
    wanted = m_previewSize;
  }
  return JpegReductionFor(header.width, header.height, static_cast<unsigned>(std::max<LONG>(wanted.cx, 0)),
                          static_cast<unsigned>(std::max<LONG>(wanted.cy, 0)));
}

bool ViewPictureLoader::DecodePreview(const CString& path) {
  if (!IsWanted(path)) return false;
  const CString key = PreviewKey(path);
  if (HasPicture(path, true) || HasPicture(key, false)) return false;
  PictureHeader header;
  if (!KnowHeader(path, header)) {
    MarkFailed(path);
    return IsWanted(path);
  }
  if (header.format != PICTURE_FORMAT_JPEG) return false;  // shrunk from the whole picture instead
  const int reduction = PreviewReduction(header);
  if (reduction == 1) return false;
  FIBitmapPtr preview = LoadPictureReduced(m_cache.FileToDecode(path), header.format, reduction, &m_cancel);
  if (!preview) return false;  // the whole decode will tell whether the file is damaged
  auto record = DecodedRecord(std::move(preview), header.format);
  record->ImageInfo = PictureInfo(header.width, header.height);
  return StoreDecoded(path, key, std::move(record));
}

bool ViewPictureLoader::DecodeMultiPage(const CString& path) {
  if (!m_cache.LoadTextureFromFile(path, nullptr, 1)) {
    std::lock_guard guard(m_mutex);  // the cache has traced it
    if (Contains(m_wanted, path)) m_facts[path].failed = true;
  }
  return true;
}

bool ViewPictureLoader::DecodeWhole(const CString& path) {
  if (!IsWanted(path) || HasPicture(path, false)) return false;
  PictureHeader header;
  if (!KnowHeader(path, header)) {
    MarkFailed(path);
    return true;
  }
  if (IsMultiPageFormat(header.format)) return DecodeMultiPage(path);
  FIBitmapPtr picture = LoadPictureReduced(m_cache.FileToDecode(path), header.format, 1, &m_cancel);
  if (!picture) {
    if (!m_cancel.load()) MarkFailed(path);
    return !m_cancel.load();
  }
  // 32-bit BMP files carry no meaningful alpha.
  if (header.format == PICTURE_FORMAT_BMP && Is32BitPicture(picture.get())) MakeOpaque(picture.get());
  if (!Is32BitPicture(picture.get()) && !Is24BitPicture(picture.get())) {
    picture = CopyAs32Bits(picture.get());
    if (!picture) {
      MarkFailed(path);
      return true;
    }
  }
  // Other formats have no reduced decode: their preview is the picture shrunk.
  FIBitmapPtr preview;
  if (header.format != PICTURE_FORMAT_JPEG) {
    const int reduction = PreviewReduction(header);
    if (reduction > 1) preview = ShrinkPicture(picture.get(), reduction);
  }
  const bool stored = StoreDecoded(path, path, DecodedRecord(std::move(picture), header.format));
  if (preview) {
    auto record = DecodedRecord(std::move(preview), header.format);
    record->ImageInfo = PictureInfo(header.width, header.height);
    StoreDecoded(path, PreviewKey(path), std::move(record));
  }
  ReleaseFreeHeapMemory();
  return stored;
}

// --- the drawing thread ---------------------------------------------------------------

ViewPicture ViewPictureLoader::Failed(const CString& path) {
  m_uploads.erase(path);
  {
    std::lock_guard guard(m_mutex);
    if (Contains(m_wanted, path)) m_facts[path].failed = true;  // not tried again every frame
  }
  ViewPicture result;
  result.nStage = VIEW_PICTURE_FAILED;
  return result;
}

ViewPicture ViewPictureLoader::Full(const CString& path, tagTextureItem* entry, IDirect3DDevice9* device) {
  // The preview's textures go; its decoded copy stays for a quick return.
  const CString key = PreviewKey(path);
  if (const tagTextureItem* preview = m_cache.FindEntry(key); preview && preview->IsReady())
    m_cache.ReleaseTexture(key, device, 1);
  ViewPicture result;
  result.nStage = VIEW_PICTURE_FULL;
  result.pPicture = entry;
  result.ImageInfo = entry->ImageInfo;
  return result;
}

tagTextureItem* ViewPictureLoader::ReadyPreview(const CString& path, IDirect3DDevice9* device) {
  const CString key = PreviewKey(path);
  tagTextureItem* preview = m_cache.FindEntry(key);
  if (!preview || preview->IsReady()) return preview;
  if (preview->nState != TEXTURE_STATE_DECODED || !preview->pBitmap) return nullptr;
  // Uploaded whole (it is small); it keeps describing the whole picture.
  auto record = std::make_unique<tagTextureItem>();
  record->pBitmap = preview->pBitmap;
  FIBITMAP* bitmap = record->pBitmap.get();
  record->nImageFormat = preview->nImageFormat;
  record->nFrameTime = -1;
  const D3DXIMAGE_INFO whole = preview->ImageInfo;
  const auto height = static_cast<int>(FreeImage_GetHeight(bitmap));
  const std::uint64_t size = std::uint64_t(FreeImage_GetPitch(bitmap)) * static_cast<std::uint64_t>(height);
  if (size > INT32_MAX ||
      !m_cache.CacheTextureFromMemory(device, FreeImage_GetBits(bitmap), static_cast<int>(size),
                                      static_cast<int>(FreeImage_GetWidth(bitmap)), height, FreeImage_GetBPP(bitmap),
                                      record.get(), 1))
    return nullptr;
  record->ImageInfo = whole;
  record->nState = TEXTURE_STATE_READY_FILE;
  return m_cache.StoreEntry(key, std::move(record));
}

tagTextureItem* ViewPictureLoader::UploadSome(const CString& path, tagTextureItem* entry, IDirect3DDevice9* device,
                                              double budgetMs, Upload*& upload) {
  const Clock::time_point start = Clock::now();
  Upload& current = m_uploads[path];
  upload = &current;
  if (!current.record || current.record->pBitmap != entry->pBitmap) {
    FIBITMAP* bitmap = entry->pBitmap.get();
    const auto width = static_cast<int>(FreeImage_GetWidth(bitmap));
    const auto height = static_cast<int>(FreeImage_GetHeight(bitmap));
    D3DCAPS9 caps{};
    if (!device || FAILED(device->GetDeviceCaps(&caps))) return nullptr;
    const int side = std::min<int>(kTileSide, static_cast<int>(std::min(caps.MaxTextureWidth, caps.MaxTextureHeight) / 4));
    if (side < 1) return nullptr;
    current.record = std::make_unique<tagTextureItem>();
    current.nextTile = 0;
    tagTextureItem& record = *current.record;
    record.pBitmap = entry->pBitmap;
    record.nImageFormat = entry->nImageFormat;
    record.nFrameTime = entry->nFrameTime;
    record.ImageInfo = record.TextureInfo = PictureInfo(static_cast<unsigned>(width), static_cast<unsigned>(height));
    LayOutTiles(record, width, height, side);
    record.nState = TEXTURE_STATE_READY_FILE;  // drawable as it grows: tiles without a texture are skipped
  }
  tagTextureItem& record = *current.record;
  const int tiles = record.nTileCols * record.nTileRows;
  while (current.nextTile < tiles) {
    TextureTile* tile = record.Tile(current.nextTile % record.nTileCols, current.nextTile / record.nTileCols);
    if (!m_cache.UploadTile(device, record.pBitmap.get(), tile)) return nullptr;
    ++current.nextTile;
    if (MillisecondsSince(start) >= budgetMs) break;
  }
  return current.nextTile < tiles ? &record : nullptr;
}

ViewPicture ViewPictureLoader::Step(const CString& path, IDirect3DDevice9* device, double budgetMs) {
  UILock texture(m_cache.GetTextureLock());
  tagTextureItem* entry = m_cache.FindEntry(path);
  if (entry && entry->IsReady()) return Full(path, entry, device);
  Facts facts;
  bool wanted = false;
  {
    std::lock_guard guard(m_mutex);
    wanted = Contains(m_wanted, path);
    if (const auto found = m_facts.find(path); found != m_facts.end()) facts = found->second;
  }
  if (!wanted) {
    // Nobody asked for it ahead: the ordinary load, at once.
    tagTextureItem* item = m_cache.GetTextureItem(path, device);
    return item ? Full(path, item, device) : Failed(path);
  }
  if (facts.failed) return Failed(path);

  ViewPicture result;
  if (HoldsPicture(entry)) {
    FIBITMAP* bitmap = entry->pBitmap.get();
    const std::uint64_t pixels = std::uint64_t(FreeImage_GetWidth(bitmap)) * FreeImage_GetHeight(bitmap);
    if (entry->nFrameCount > 1 || pixels <= kImmediatePixels) {
      tagTextureItem* item = m_cache.GetTextureItem(path, device);  // uploads what is decoded
      return item ? Full(path, item, device) : Failed(path);
    }
    Upload* upload = nullptr;
    tagTextureItem* growing = UploadSome(path, entry, device, budgetMs, upload);
    if (!growing) {
      if (!upload || !upload->record || upload->nextTile < upload->record->nTileCols * upload->record->nTileRows) {
        g_ITrace->Trace(TRACE_LEVEL_DEVICE, TRACE_FLUSH, L"<ERROR> Decode Fail: %s", path);
        return Failed(path);
      }
      // Every tile is up: the content moves into the entry, which keeps its
      // address; the decoded copy goes with a single picture.
      std::unique_ptr<tagTextureItem> record = std::move(upload->record);
      m_uploads.erase(path);
      if (record->nFrameCount == 1) record->pBitmap.reset();
      tagTextureItem* stored = m_cache.StoreEntry(path, std::move(record));
      ReleaseFreeHeapMemory();
      return Full(path, stored, device);
    }
    result.pPicture = growing;
    result.ImageInfo = growing->ImageInfo;
    result.nStage = VIEW_PICTURE_PARTIAL;
  }
  if (tagTextureItem* preview = ReadyPreview(path, device)) {
    result.pPreview = preview;
    result.ImageInfo = preview->ImageInfo;
    if (result.nStage == VIEW_PICTURE_PENDING) result.nStage = VIEW_PICTURE_PREVIEW;
  }
  return result;
}

}  // namespace KarvelUI
