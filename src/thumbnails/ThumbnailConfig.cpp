#include <karvelui/ThumbnailConfig.h>

#include <algorithm>
#include <vector>

#include <karvelui/BackUpdateTask.h>
#include <karvelui/DXCore.h>
#include <karvelui/Trace.h>
#include "platform/FileSystem.h"
#include "raw/RawSupport.h"
#include "render/ImageArchive.h"
#include "render/PictureDecoder.h"
#include "thumbnails/SharedThumbCache.h"
#include "thumbnails/ThumbDB.h"
#include "thumbnails/ThumbnailSource.h"

// After the library's headers: the image library defines TRUE and FALSE as macros.
#include <FreeImage.h>

namespace KarvelUI {

struct _ThumbnailConfig::View {
  bool hasPath = false;
  int width = 0, height = 0;
  int state = THUMB_STATE_NOT_LOADED;
  RefPtr<IDirect3DTexture9> texture, reflection;
  CRect reflectionPart;
  UINT textureWidth = 0, textureHeight = 0;
  UINT imageWidth = 0, imageHeight = 0;
};

struct _ThumbnailConfig::LoadInput {
  CString path;
  DXCore* dx = nullptr;
  CSize wanted;
};

namespace {

constexpr D3DCOLOR kOpaqueWhite = 0xFFFFFFFF;
constexpr int kFileNameCapacity = 260;  // characters with the terminator, as the name buffer holds

// "<folder>\<name>", cut to the capacity of the name buffer.
CString FileInFolder(const CString& folder, const wchar_t* name) {
  CString file;
  file.Format(L"%s\\%s", folder, name);
  return file.Left(kFileNameCapacity - 1);
}

int LastSeparator(const CString& path) { return std::max(path.ReverseFind(L'\\'), path.ReverseFind(L'/')); }

// A texture of the device's managed pool (one level, no usage).
RefPtr<IDirect3DTexture9> CreateManagedTexture(DXCore* dx, const CSize& size, D3DFORMAT format) {
  RefPtr<IDirect3DTexture9> texture;
  IDirect3DDevice9* device = dx ? dx->GetD3DDevice() : nullptr;
  if (!device || size.cx <= 0 || size.cy <= 0 ||
      FAILED(device->CreateTexture(static_cast<UINT>(size.cx), static_cast<UINT>(size.cy), 1, 0, format,
                                   D3DPOOL_MANAGED, texture.Receive(), nullptr)))
    return {};
  return texture;
}

// Holds a texture's top level locked for writing or reading.
class LockedLevel {
 public:
  LockedLevel(IDirect3DTexture9* texture, DWORD flags) : m_pTexture(texture) {
    m_bLocked = texture && SUCCEEDED(texture->LockRect(0, &m_Rect, nullptr, flags));
  }
  ~LockedLevel() {
    if (m_bLocked) m_pTexture->UnlockRect(0);
  }
  LockedLevel(const LockedLevel&) = delete;
  LockedLevel& operator=(const LockedLevel&) = delete;

  bool IsLocked() const { return m_bLocked; }
  PixelTarget Target(const D3DSURFACE_DESC& desc) const {
    return PixelTarget{static_cast<BYTE*>(m_Rect.pBits), m_Rect.Pitch, static_cast<int>(desc.Width),
                       static_cast<int>(desc.Height)};
  }

 private:
  IDirect3DTexture9* m_pTexture;
  D3DLOCKED_RECT m_Rect{};
  bool m_bLocked = false;
};

// A texture of `size` holding `source` resampled to it; null on failure.
RefPtr<IDirect3DTexture9> MakeThumbnailTexture(DXCore* dx, const PixelView& source, const CSize& size,
                                               D3DFORMAT format, D3DSURFACE_DESC& desc) {
  RefPtr<IDirect3DTexture9> texture = CreateManagedTexture(dx, size, format);
  if (!texture || FAILED(texture->GetLevelDesc(0, &desc))) return {};
  const LockedLevel level(texture.Get(), 0);
  if (!level.IsLocked()) return {};
  ResampleBilinear(source, level.Target(desc), format == D3DFMT_A8B8G8R8);
  return texture;
}

// The picture's size by the header reader of its format (BMP, JPEG, PNG,
// GIF); false for other formats or a file the reader refuses.
bool ReadPictureSize(const CString& path, UINT& width, UINT& height) {
  std::unique_ptr<CImageArchive> archive;
  switch (DetectPictureFormat(path)) {
    case PICTURE_FORMAT_BMP: archive = std::make_unique<CBmpImageArchive>(); break;
    case PICTURE_FORMAT_JPEG: archive = std::make_unique<CJpgImageArchive>(); break;
    case PICTURE_FORMAT_PNG: archive = std::make_unique<CPngImageArchive>(); break;
    case PICTURE_FORMAT_GIF: archive = std::make_unique<CGifImageArchive>(); break;
    default: return false;
  }
  if (!archive->Open(path)) return false;
  width = archive->GetWidth();
  height = archive->GetHeight();
  return true;
}

D3DXIMAGE_INFO ImageInfo(UINT width, UINT height, D3DFORMAT format, D3DXIMAGE_FILEFORMAT fileFormat) {
  return D3DXIMAGE_INFO{width, height, 0, 1, format, D3DRTYPE_TEXTURE, fileFormat};
}

// The centre square of the picture in texture texels (step 3 of the crop).
CRect CentreSquare(UINT textureWidth, UINT textureHeight, UINT imageWidth, UINT imageHeight) {
  CRect source(0, 0, static_cast<LONG>(textureWidth), static_cast<LONG>(textureHeight));
  if (imageWidth == 0 || imageHeight == 0) return source;
  const float kx = static_cast<float>(textureWidth) / static_cast<float>(imageWidth);
  const float ky = static_cast<float>(textureHeight) / static_cast<float>(imageHeight);
  if (imageHeight > imageWidth) {
    source.top = static_cast<LONG>(static_cast<float>(imageHeight - imageWidth) * 0.5f * ky + 0.5f);
    source.bottom = static_cast<LONG>(ky * static_cast<float>(imageWidth) + static_cast<float>(source.top) + 0.5f);
  } else if (imageWidth > imageHeight) {
    source.left = static_cast<LONG>(static_cast<float>(imageWidth - imageHeight) * 0.5f * kx + 0.5f);
    source.right = static_cast<LONG>(kx * static_cast<float>(imageHeight) + static_cast<float>(source.left) + 0.5f);
  }
  return source;
}

// Traces the failure of a load from the picture file.
void TraceOriFileFailure(const CString& path) {
  g_ITrace->Trace(TRACE_LEVEL_DEVICE, TRACE_FLUSH, L"<ERROR> create texture from file: %s", path);
}

}  // namespace

std::mutex _ThumbnailConfig::s_ThumbDBMutex;
std::shared_ptr<ThumbDB> _ThumbnailConfig::s_pThumbDB;
CString _ThumbnailConfig::s_sThumbDBFolder;

// --- life --------------------------------------------------------------------------

_ThumbnailConfig::_ThumbnailConfig()
    : m_pImageInfo(std::make_unique<D3DXIMAGE_INFO>()),
      m_pLock(UILock::CreateLock(), &UILock::ReleaseLock) {}

_ThumbnailConfig::_ThumbnailConfig(const _ThumbnailConfig& other) { *this = other; }

_ThumbnailConfig& _ThumbnailConfig::operator=(const _ThumbnailConfig& other) {
  if (this == &other) return *this;
  std::scoped_lock both(m_ViewMutex, other.m_ViewMutex);
  m_strPath = other.m_strPath;
  m_nWidth = other.m_nWidth;
  m_nHeight = other.m_nHeight;
  m_nState = other.m_nState.load();
  m_pDXCore = other.m_pDXCore;
  m_pTexture = other.m_pTexture;
  m_pReflection = other.m_pReflection;
  m_ReflectionPart = other.m_ReflectionPart;
  m_pImageInfo = other.m_pImageInfo ? std::make_unique<D3DXIMAGE_INFO>(*other.m_pImageInfo) : nullptr;
  m_TextureDesc = other.m_TextureDesc;
  m_pLock = other.m_pLock;
  return *this;
}

_ThumbnailConfig::~_ThumbnailConfig() {
  // Waits for a load of this record to end.
  const std::shared_ptr<CRITICAL_SECTION> lock = m_pLock;
  UILock hold(lock.get());
  Clear();
}

void _ThumbnailConfig::Release() { delete this; }

// --- fields --------------------------------------------------------------------------

void _ThumbnailConfig::SetImage(const CString& path) {
  UILock lock(Lock());
  std::lock_guard view(m_ViewMutex);
  m_strPath = path;
}

CString _ThumbnailConfig::GetImage() const {
  std::lock_guard view(m_ViewMutex);
  return m_strPath;
}

void _ThumbnailConfig::SetSize(int width, int height) {
  UILock lock(Lock());
  std::lock_guard view(m_ViewMutex);
  m_nWidth = width;
  m_nHeight = height;
}

int _ThumbnailConfig::GetWidth() const {
  std::lock_guard view(m_ViewMutex);
  return m_nWidth;
}

int _ThumbnailConfig::GetHeight() const {
  std::lock_guard view(m_ViewMutex);
  return m_nHeight;
}

void _ThumbnailConfig::SetRenderDevice(DXCore* dx) {
  UILock lock(Lock());
  std::lock_guard view(m_ViewMutex);
  m_pDXCore = dx;
}

void _ThumbnailConfig::Copy(_ThumbnailConfig* source) {
  if (!source || source == this) return;
  const CString path = source->GetImage();
  const int width = source->GetWidth(), height = source->GetHeight();
  UILock lock(Lock());
  std::lock_guard view(m_ViewMutex);
  m_strPath = path;
  m_nWidth = width;
  m_nHeight = height;
}

void _ThumbnailConfig::Clear() {
  UILock lock(Lock());
  RefPtr<IDirect3DTexture9> texture, reflection;  // released after the short lock
  std::lock_guard view(m_ViewMutex);
  m_strPath.Empty();
  m_pDXCore = nullptr;
  m_pImageInfo.reset();
  texture = std::move(m_pTexture);
  reflection = std::move(m_pReflection);
  m_ReflectionPart.SetRectEmpty();
  m_nWidth = m_nHeight = 0;
  m_nState = THUMB_STATE_NOT_LOADED;
}

void _ThumbnailConfig::UpdateImage(const CString& path) {
  UILock lock(Lock());
  std::lock_guard view(m_ViewMutex);
  m_pImageInfo.reset();
  m_pTexture.Reset();
  m_nState = THUMB_STATE_NOT_LOADED;
  m_strPath = path;
}

void _ThumbnailConfig::ReleaseTexture() {
  UILock lock(Lock());
  std::lock_guard view(m_ViewMutex);
  m_pTexture.Reset();
}

UINT _ThumbnailConfig::GetImageWidth() {
  std::lock_guard view(m_ViewMutex);
  return m_pImageInfo ? m_pImageInfo->Width : 0;
}

UINT _ThumbnailConfig::GetImageHeight() {
  std::lock_guard view(m_ViewMutex);
  return m_pImageInfo ? m_pImageInfo->Height : 0;
}

RefPtr<IDirect3DTexture9> _ThumbnailConfig::GetTexture() const {
  std::lock_guard view(m_ViewMutex);
  return m_pTexture;
}

RefPtr<IDirect3DTexture9> _ThumbnailConfig::GetReflection() const {
  std::lock_guard view(m_ViewMutex);
  return m_pReflection;
}

CRect _ThumbnailConfig::GetReflectionPart() const {
  std::lock_guard view(m_ViewMutex);
  return m_ReflectionPart;
}

void _ThumbnailConfig::SetSharedCacheEnabled(int enabled) { SharedThumbCache::SetEnabled(enabled != 0); }

int _ThumbnailConfig::IsSharedCacheEnabled() { return SharedThumbCache::IsEnabled() ? 1 : 0; }

// --- the class-wide database -----------------------------------------------------

void _ThumbnailConfig::ReadThumbDB(const CString& folder) {
  std::lock_guard guard(s_ThumbDBMutex);
  if (folder == s_sThumbDBFolder) return;
  s_sThumbDBFolder = folder;
  s_pThumbDB.reset();
  CString file = FileInFolder(folder, L"thumbs.db");
  // The file browser writes "Thumbs.db"; its file names ignore case, ours do not.
  if (!PathExists(file) && PathExists(FileInFolder(folder, L"Thumbs.db"))) file = FileInFolder(folder, L"Thumbs.db");
  s_pThumbDB = std::make_shared<ThumbDB>(file);
}

void _ThumbnailConfig::ClearThumbDB() {
  std::lock_guard guard(s_ThumbDBMutex);
  s_sThumbDBFolder.Empty();
  s_pThumbDB.reset();
}

// --- loading -------------------------------------------------------------------------

int _ThumbnailConfig::LoadThumb() {
  const int state = GetState();
  if (state == THUMB_STATE_LOADED || state == THUMB_STATE_FAILED) return 1;
  if (!LoadThumbFromThumbDB() && !LoadThumbFromOriFile()) return 0;
  LoadReflecThumb();
  SetState(THUMB_STATE_LOADED);
  return 1;
}

_ThumbnailConfig::LoadInput _ThumbnailConfig::TakeLoadInput() const {
  std::lock_guard view(m_ViewMutex);
  return LoadInput{m_strPath, m_pDXCore, CSize(m_nWidth, m_nHeight)};
}

void _ThumbnailConfig::Publish(RefPtr<IDirect3DTexture9> texture, const D3DSURFACE_DESC& desc,
                               const D3DXIMAGE_INFO& info) {
  std::lock_guard view(m_ViewMutex);
  std::swap(m_pTexture, texture);  // the old one goes after the short lock
  m_TextureDesc = desc;
  m_pImageInfo = std::make_unique<D3DXIMAGE_INFO>(info);
}

int _ThumbnailConfig::LoadThumbFromThumbDB() {
  UILock lock(Lock());
  const auto [path, dx, wanted] = TakeLoadInput();
  if (GetState() != THUMB_STATE_NOT_LOADED || path.IsEmpty() || !dx) return 0;
  const int cut = LastSeparator(path);
  if (cut < 0) return 0;
  std::shared_ptr<ThumbDB> db;
  {
    ReadThumbDB(path.Left(cut));
    std::lock_guard guard(s_ThumbDBMutex);
    db = s_pThumbDB;
  }
  const std::vector<BYTE> data = db ? db->GetThumbData(path.Mid(cut + 1)) : std::vector<BYTE>();
  if (data.empty()) return 0;
  const FIBitmapPtr stored = CopyAs32Bits(LoadPictureFromMemory(data.data(), data.size()).get());
  if (!stored) return 0;
  const PixelView source{FreeImage_GetBits(stored.get()), static_cast<int>(FreeImage_GetPitch(stored.get())),
                         static_cast<int>(FreeImage_GetWidth(stored.get())),
                         static_cast<int>(FreeImage_GetHeight(stored.get())), true};
  D3DSURFACE_DESC desc{};
  RefPtr<IDirect3DTexture9> texture = MakeThumbnailTexture(dx, source, wanted, D3DFMT_A8B8G8R8, desc);
  if (!texture) return 0;
  D3DXIMAGE_INFO info = ImageInfo(static_cast<UINT>(source.width), static_cast<UINT>(source.height),
                                  D3DFMT_A8B8G8R8, D3DXIFF_JPG);
  ReadPictureSize(path, info.Width, info.Height);
  Publish(std::move(texture), desc, info);
  return 1;
}

int _ThumbnailConfig::LoadThumbFromOriFile() {
  UILock lock(Lock());
  const auto [path, dx, wanted] = TakeLoadInput();
  if (GetState() != THUMB_STATE_NOT_LOADED || path.IsEmpty() || !dx) return 0;

  CString file = path;
  CString jpg;
  if (IsRawPic(path) && GetRawFileJPGPath(path, jpg)) {
    UILock raw(dx->GetResourceCache()->GetRawLock());
    if (GenerateRawJPGFile(path, jpg)) file = jpg;
  }
  ThumbnailSource source;
  D3DSURFACE_DESC desc{};
  RefPtr<IDirect3DTexture9> texture;
  if (DecodeThumbnailSource(file, path, wanted, source)) {
    const CSize size = ThumbnailTextureSize(source.imageWidth, source.imageHeight, wanted.cx, wanted.cy);
    texture = MakeThumbnailTexture(dx, source.pixels, size, D3DFMT_A8R8G8B8, desc);
  }
  if (!texture) {
    TraceOriFileFailure(path);
    SetState(THUMB_STATE_FAILED);
    return 0;
  }
  Publish(std::move(texture), desc,
          ImageInfo(source.imageWidth, source.imageHeight, D3DFMT_A8R8G8B8, D3DXIFF_FORCE_DWORD));
  std::lock_guard view(m_ViewMutex);
  m_nWidth = static_cast<int>(desc.Width);  // from now on the texture's real size
  m_nHeight = static_cast<int>(desc.Height);
  return 1;
}

int _ThumbnailConfig::LoadReflecThumb() {
  UILock lock(Lock());
  RefPtr<IDirect3DTexture9> thumbnail, old;
  D3DSURFACE_DESC desc{};
  UINT imageWidth = 0, imageHeight = 0;
  DXCore* dx = nullptr;
  {
    std::lock_guard view(m_ViewMutex);
    old = std::move(m_pReflection);
    m_ReflectionPart.SetRectEmpty();
    thumbnail = m_pTexture;
    desc = m_TextureDesc;
    dx = m_pDXCore;
    if (m_pImageInfo) imageWidth = m_pImageInfo->Width, imageHeight = m_pImageInfo->Height;
  }
  old.Reset();
  if (!thumbnail || desc.Width == 0 || desc.Height == 0) return 0;
  // Only what a drawing can show: the centre square's columns and the rows
  // the fade leaves visible.
  const CRect square = CentreSquare(desc.Width, desc.Height, imageWidth, imageHeight);
  const CRect part(square.left, 0, square.right, ReflectionVisibleRows(static_cast<int>(desc.Height)));
  if (part.IsRectEmpty()) return 0;
  RefPtr<IDirect3DTexture9> reflection = CreateManagedTexture(dx, part.Size(), desc.Format);
  D3DSURFACE_DESC reflectionDesc{};
  if (!reflection || FAILED(reflection->GetLevelDesc(0, &reflectionDesc))) return 0;
  {
    const LockedLevel from(thumbnail.Get(), D3DLOCK_READONLY);
    const LockedLevel to(reflection.Get(), 0);
    if (!from.IsLocked() || !to.IsLocked()) return 0;
    const PixelTarget source = from.Target(desc);
    MakeReflection(PixelView{source.bits, source.pitch, source.width, source.height, false}, part.left,
                   to.Target(reflectionDesc));
  }
  std::lock_guard view(m_ViewMutex);
  m_pReflection = std::move(reflection);
  m_ReflectionPart = part;
  return 1;
}

// --- drawing -------------------------------------------------------------------------

_ThumbnailConfig::View _ThumbnailConfig::TakeView() const {
  View view;
  std::lock_guard guard(m_ViewMutex);
  view.hasPath = !m_strPath.IsEmpty();
  view.width = m_nWidth;
  view.height = m_nHeight;
  view.state = GetState();
  view.texture = m_pTexture;
  view.reflection = m_pReflection;
  view.reflectionPart = m_ReflectionPart;
  view.textureWidth = m_TextureDesc.Width;
  view.textureHeight = m_TextureDesc.Height;
  if (m_pImageInfo) view.imageWidth = m_pImageInfo->Width, view.imageHeight = m_pImageInfo->Height;
  return view;
}

int _ThumbnailConfig::Render(DXCore* dx, CRect rect, CRect* clip, double angle) {
  const View view = TakeView();
  const CRect whole(0, 0, static_cast<LONG>(view.textureWidth), static_cast<LONG>(view.textureHeight));
  if (!RenderThumb(view, view.texture.Get(), whole, dx, rect, clip, angle)) return 0;
  const CRect below(rect.left, rect.bottom, rect.right, 2 * rect.bottom - rect.top);
  return RenderThumb(view, view.reflection.Get(), view.reflectionPart, dx, below, clip, 0.0);
}

int _ThumbnailConfig::RenderThumb(const View& view, IDirect3DTexture9* texture, const CRect& part, DXCore* dx,
                                  const CRect& rect, CRect* clip, double angle) {
  if (!view.hasPath || view.width == 0 || view.height == 0 || !dx) return 0;
  dx->GetD3DDevice();  // enters and leaves the device lock: waits out a reset
  if (view.state == THUMB_STATE_NOT_LOADED) return 0;

  CRect source = CentreSquare(view.textureWidth, view.textureHeight, view.imageWidth, view.imageHeight);
  CRect dest = rect;
  if (clip && source.Width() > 0 && source.Height() > 0) {
    const float fx = static_cast<float>(dest.Width()) / static_cast<float>(source.Width());
    const float fy = static_cast<float>(dest.Height()) / static_cast<float>(source.Height());
    if (dest.left < clip->left) {
      source.left += static_cast<LONG>(static_cast<float>(clip->left - dest.left) / fx);
      dest.left = clip->left;
    }
    if (dest.top < clip->top) {
      source.top += static_cast<LONG>(static_cast<float>(clip->top - dest.top) / fy);
      dest.top = clip->top;
    }
    if (dest.right > clip->right) {
      source.right -= static_cast<LONG>(static_cast<float>(dest.right - clip->right) / fx);
      dest.right = clip->right;
    }
    if (dest.bottom > clip->bottom) {
      source.bottom -= static_cast<LONG>(static_cast<float>(dest.bottom - clip->bottom) / fy);
      dest.bottom = clip->bottom;
    }
  }
  if (source.Width() < 1 || source.Height() < 1 || dest.Width() < 1 || dest.Height() < 1) return 0;
  const D3DXVECTOR2 scaling{static_cast<float>(dest.Width()) / static_cast<float>(source.Width()),
                            static_cast<float>(dest.Height()) / static_cast<float>(source.Height())};
  if (!(scaling.x > 0) || !(scaling.y > 0)) return 0;
  if (!texture) return 0;

  // A texture holding only `part` of the whole draws the same pixels there,
  // at the place and scale the whole would have had.
  CRect drawn;
  if (!drawn.IntersectRect(source, part)) return 1;  // only fully transparent texels were left to draw
  const D3DXVECTOR2 origin{static_cast<float>(dest.left) + static_cast<float>(drawn.left - source.left) * scaling.x,
                           static_cast<float>(dest.top) + static_cast<float>(drawn.top - source.top) * scaling.y};
  const D3DXVECTOR2 centre{static_cast<float>(dest.left + dest.right) * 0.5f,
                           static_cast<float>(dest.top + dest.bottom) * 0.5f};
  drawn.OffsetRect(-part.left, -part.top);
  dx->SetTransform(&origin, &scaling, &centre, static_cast<float>(angle), nullptr);
  const D3DXVECTOR3 position{origin.x, origin.y, 0.0f};
  return SUCCEEDED(dx->DrawImage(texture, &drawn, nullptr, &position, kOpaqueWhite)) ? 1 : 0;
}

}  // namespace KarvelUI
