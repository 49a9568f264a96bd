#include "render/PictureDecoder.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cmath>
#include <cstring>
#include <map>
#include <mutex>
#include <string>

#include "platform/Paths.h"
#include <karvelui/StdioFile.h>

// After the library's headers: the image library defines TRUE and FALSE as macros.
#include <FreeImage.h>
#include <turbojpeg.h>

namespace KarvelUI {

void FreeImageDeleter::operator()(FIBITMAP* bitmap) const {
  if (bitmap) FreeImage_Unload(bitmap);
}

namespace {

// The memory stream and bytes a multi-page picture opened from memory reads
// its pages from; they go when the picture is closed.
struct MemoryPages {
  std::shared_ptr<const std::vector<std::uint8_t>> bytes;
  FIMEMORY* stream = nullptr;
  ~MemoryPages() {
    if (stream) FreeImage_CloseMemory(stream);
  }
};

std::mutex g_memoryPagesMutex;
std::map<FIMULTIBITMAP*, std::unique_ptr<MemoryPages>> g_memoryPages;

}  // namespace

void FreeImageDeleter::operator()(FIMULTIBITMAP* bitmap) const {
  if (!bitmap) return;
  FreeImage_CloseMultiBitmap(bitmap, 0);
  std::unique_ptr<MemoryPages> pages;
  {
    const std::lock_guard<std::mutex> lock(g_memoryPagesMutex);
    const auto found = g_memoryPages.find(bitmap);
    if (found == g_memoryPages.end()) return;
    pages = std::move(found->second);
    g_memoryPages.erase(found);
  }
}

namespace {

std::atomic<std::uint64_t> g_maxPicturePixels{kDefaultMaxPicturePixels};

bool IsViewerFormat(FREE_IMAGE_FORMAT format) {
  return format == FIF_BMP || format == FIF_JPEG || format == FIF_PNG || format == FIF_TIFF || format == FIF_GIF;
}

// Switches every other decoder off, once for the process.
void RestrictToViewerFormats() {
  static const bool restricted = [] {
    for (int i = 0; i < FreeImage_GetFIFCount(); ++i) {
      const auto format = static_cast<FREE_IMAGE_FORMAT>(i);
      FreeImage_SetPluginEnabled(format, IsViewerFormat(format) ? TRUE : FALSE);
    }
    return true;
  }();
  (void)restricted;
}

bool WithinPixelLimit(std::uint64_t width, std::uint64_t height) {
  return width * height <= GetMaxPicturePixels();
}

// A picture file read through the decoder's I/O hooks. Reads never go past
// the end of the file; a read the file could not satisfy marks the file as
// cut short.
class PictureFile {
 public:
  explicit PictureFile(const CString& path) { m_file.Open(path, CStdioFile::modeRead | CStdioFile::typeBinary); }

  bool IsOpen() const { return m_file.IsOpen(); }
  FreeImageIO* IO() { return &m_io; }
  fi_handle Handle() { return this; }
  bool WasCutShort() const { return m_bCutShort; }

  bool Rewind() {
    m_bCutShort = false;
    return m_file.Seek(0, CStdioFile::begin);
  }

 private:
  static PictureFile* From(fi_handle handle) { return static_cast<PictureFile*>(handle); }

  // A partial item, or nothing at all where bytes were asked for, means the
  // data ended early. (Byte-wise readers legitimately get a short last block.)
  static unsigned DLL_CALLCONV Read(void* buffer, unsigned size, unsigned count, fi_handle handle) {
    if (size == 0 || count == 0) return 0;
    PictureFile* self = From(handle);
    count = std::min(count, UINT_MAX / size);
    const UINT wanted = size * count;
    const UINT got = self->m_file.Read(buffer, wanted);
    if (got < wanted && (size > 1 || got == 0)) self->m_bCutShort = true;
    return got / size;
  }
  static unsigned DLL_CALLCONV Write(void*, unsigned, unsigned, fi_handle) { return 0; }
  static int DLL_CALLCONV Seek(fi_handle handle, long offset, int origin) {
    const auto from = origin == SEEK_CUR ? CStdioFile::current : origin == SEEK_END ? CStdioFile::end : CStdioFile::begin;
    return From(handle)->m_file.Seek(offset, from) ? 0 : -1;
  }
  static long DLL_CALLCONV Tell(fi_handle handle) { return static_cast<long>(From(handle)->m_file.GetPosition()); }

  CStdioFile m_file;
  FreeImageIO m_io{&Read, &Write, &Seek, &Tell};
  bool m_bCutShort = false;
};

// A picture file image in memory, read through the same hooks with the same
// notion of data that ends early.
class PictureMemory {
 public:
  PictureMemory(const void* data, std::size_t size) : m_data(static_cast<const BYTE*>(data)), m_size(size) {}

  FreeImageIO* IO() { return &m_io; }
  fi_handle Handle() { return this; }
  bool WasCutShort() const { return m_bCutShort; }
  bool Rewind() {
    m_bCutShort = false;
    m_at = 0;
    return true;
  }

 private:
  static PictureMemory* From(fi_handle handle) { return static_cast<PictureMemory*>(handle); }

  static unsigned DLL_CALLCONV Read(void* buffer, unsigned size, unsigned count, fi_handle handle) {
    if (size == 0 || count == 0) return 0;
    PictureMemory* self = From(handle);
    count = std::min(count, UINT_MAX / size);
    const std::size_t wanted = std::size_t(size) * count;
    const std::size_t got = std::min(wanted, self->m_size - self->m_at);
    std::memcpy(buffer, self->m_data + self->m_at, got);
    self->m_at += got;
    if (got < wanted && (size > 1 || got == 0)) self->m_bCutShort = true;
    return static_cast<unsigned>(got / size);
  }
  static unsigned DLL_CALLCONV Write(void*, unsigned, unsigned, fi_handle) { return 0; }
  static int DLL_CALLCONV Seek(fi_handle handle, long offset, int origin) {
    PictureMemory* self = From(handle);
    const long long base = origin == SEEK_CUR ? static_cast<long long>(self->m_at)
                           : origin == SEEK_END ? static_cast<long long>(self->m_size) : 0;
    const long long to = base + offset;
    if (to < 0 || to > static_cast<long long>(self->m_size)) return -1;
    self->m_at = static_cast<std::size_t>(to);
    return 0;
  }
  static long DLL_CALLCONV Tell(fi_handle handle) { return static_cast<long>(From(handle)->m_at); }

  const BYTE* m_data;
  std::size_t m_size;
  std::size_t m_at = 0;
  FreeImageIO m_io{&Read, &Write, &Seek, &Tell};
  bool m_bCutShort = false;
};

// The image library's PNG reader allocates every chunk as large as its
// length field claims before it reads a byte of it, so the chunk lengths are
// measured against the bytes the source holds first: a chunk that claims
// more is refused before the reader sees the file (the callers report the
// failure as for any picture that does not decode). A file that simply ends
// early is left to the reader, which finds it cut short.
constexpr std::uint32_t kPngSignatureBytes = 8;
constexpr std::uint32_t kPngChunkOverhead = 12;  // length, type and CRC
constexpr std::uint32_t kPngMaxChunkLength = 0x7FFFFFFF;

std::uint32_t BigEndian32(const BYTE* bytes) {
  return (std::uint32_t(bytes[0]) << 24) | (std::uint32_t(bytes[1]) << 16) | (std::uint32_t(bytes[2]) << 8) | bytes[3];
}

template <class Source>
bool PngChunksFitSource(Source& source) {
  FreeImageIO* io = source.IO();
  const fi_handle handle = source.Handle();
  if (io->seek_proc(handle, 0, SEEK_END) != 0) return false;
  const long long size = io->tell_proc(handle);
  bool fits = true;
  for (long long at = kPngSignatureBytes; at + 8 <= size;) {
    BYTE header[8];
    if (io->seek_proc(handle, static_cast<long>(at), SEEK_SET) != 0 || io->read_proc(header, 1, 8, handle) != 8) break;
    const std::uint32_t length = BigEndian32(header);
    if (length > kPngMaxChunkLength || length > size - at - kPngChunkOverhead) {
      fits = false;
      break;
    }
    if (std::memcmp(header + 4, "IEND", 4) == 0) break;
    at += kPngChunkOverhead + length;
  }
  return source.Rewind() && fits;
}

template <class Source>
bool ClaimsFitSource(Source& source, FREE_IMAGE_FORMAT fif) {
  return fif != FIF_PNG || PngChunksFitSource(source);
}

// The header first, measured against the limit, then the pixels; a source
// that ran dry meanwhile is refused.
template <class Source>
FIBitmapPtr LoadWithinLimits(Source& source, FREE_IMAGE_FORMAT fif) {
  if (!ClaimsFitSource(source, fif)) return nullptr;
  {
    const FIBitmapPtr header(FreeImage_LoadFromHandle(fif, source.IO(), source.Handle(), FIF_LOAD_NOPIXELS));
    if (!header || !WithinPixelLimit(FreeImage_GetWidth(header.get()), FreeImage_GetHeight(header.get())))
      return nullptr;
  }
  if (!source.Rewind()) return nullptr;
  FIBitmapPtr picture(FreeImage_LoadFromHandle(fif, source.IO(), source.Handle(), 0));
  if (!picture || !FreeImage_HasPixels(picture.get()) || source.WasCutShort()) return nullptr;
  return picture;
}

// --- GIF frames ----------------------------------------------------------------
// The decoder makes one buffer per image descriptor, as large as the
// descriptor says, so every descriptor is measured before the file is opened.
// The blocks are walked the way the decoder walks them.

// A picture file image in memory read front to back like a file: reads
// stop at the end, skips past it leave the reader at the end.
struct MemoryReader {
  const BYTE* data;
  std::size_t size;
  std::size_t at = 0;
};

UINT ReadBytes(CStdioFile& file, void* buffer, UINT count) { return file.Read(buffer, count); }

UINT ReadBytes(MemoryReader& memory, void* buffer, UINT count) {
  const std::size_t got = std::min<std::size_t>(count, memory.size - memory.at);
  std::memcpy(buffer, memory.data + memory.at, got);
  memory.at += got;
  return static_cast<UINT>(got);
}

bool SkipBytes(CStdioFile& file, std::uint64_t count) {
  return file.Seek(static_cast<std::int64_t>(count), CStdioFile::current);
}

bool SkipBytes(MemoryReader& memory, std::uint64_t count) {
  memory.at += static_cast<std::size_t>(std::min<std::uint64_t>(count, memory.size - memory.at));
  return true;
}

template <class Reader>
bool SkipSubBlocks(Reader& reader) {
  for (;;) {
    BYTE length = 0;
    if (ReadBytes(reader, &length, 1) != 1) return false;
    if (length == 0) return true;
    if (!SkipBytes(reader, length)) return false;
  }
}

std::uint64_t ColorTableBytes(BYTE packed) { return (packed & 0x80) ? 3ull << ((packed & 0x07) + 1) : 0; }

template <class Reader>
bool GifFramesWithinLimit(Reader& reader) {
  BYTE header[13];
  if (ReadBytes(reader, header, sizeof header) != sizeof header || !SkipBytes(reader, ColorTableBytes(header[10])))
    return false;
  for (;;) {
    BYTE block = 0;
    if (ReadBytes(reader, &block, 1) != 1) return true;
    if (block == 0x2C) {
      BYTE descriptor[9];
      if (ReadBytes(reader, descriptor, sizeof descriptor) != sizeof descriptor) return true;
      const unsigned width = descriptor[4] | (descriptor[5] << 8);
      const unsigned height = descriptor[6] | (descriptor[7] << 8);
      if (!WithinPixelLimit(width, height)) return false;
      if (!SkipBytes(reader, ColorTableBytes(descriptor[8]) + 1) || !SkipSubBlocks(reader)) return true;
    } else if (block == 0x21) {
      if (!SkipBytes(reader, 1) || !SkipSubBlocks(reader)) return true;
    } else {
      return true;  // trailer, or a block the decoder stops at too
    }
  }
}

bool GifFramesWithinLimit(const PictureSource& source) {
  if (source.IsMemory()) {
    MemoryReader memory{source.Data(), source.Size()};
    return GifFramesWithinLimit(memory);
  }
  CStdioFile file;
  return file.Open(source.Path(), CStdioFile::modeRead | CStdioFile::typeBinary) && GifFramesWithinLimit(file);
}

// The image library reads from memory through a stream over the caller's
// bytes; it never writes to them.
FIMEMORY* OpenMemoryStream(const PictureSource& source) {
  return FreeImage_OpenMemory(const_cast<BYTE*>(source.Data()), static_cast<DWORD>(source.Size()));
}

bool PageHeadersWithinLimit(FIMULTIBITMAP* headers) {
  if (!headers) return false;
  const int pages = FreeImage_GetPageCount(headers);
  for (int page = 0; page < pages; ++page) {
    const LockedPage header(headers, page);
    if (header.Get() && !WithinPixelLimit(FreeImage_GetWidth(header.Get()), FreeImage_GetHeight(header.Get())))
      return false;
  }
  return true;
}

// Every page's header, read without pixels.
bool TiffPagesWithinLimit(const PictureSource& source) {
  if (!source.IsMemory()) {
    const FIMultiBitmapPtr headers(
        FreeImage_OpenMultiBitmap(FIF_TIFF, ToNativePath(source.Path()).c_str(), FALSE, TRUE, TRUE, FIF_LOAD_NOPIXELS));
    return PageHeadersWithinLimit(headers.get());
  }
  FIMEMORY* stream = OpenMemoryStream(source);
  if (!stream) return false;
  bool within = false;
  {
    const FIMultiBitmapPtr headers(FreeImage_LoadMultiBitmapFromMemory(FIF_TIFF, stream, FIF_LOAD_NOPIXELS));
    within = PageHeadersWithinLimit(headers.get());
  }
  FreeImage_CloseMemory(stream);
  return within;
}

// Pages read from the source's bytes, which the picture keeps until it is closed.
FIMultiBitmapPtr OpenMemoryPages(const PictureSource& source, FREE_IMAGE_FORMAT fif) {
  auto pages = std::make_unique<MemoryPages>();
  pages->bytes = source.Bytes();
  pages->stream = OpenMemoryStream(source);
  if (!pages->stream) return nullptr;
  FIMULTIBITMAP* bitmap = FreeImage_LoadMultiBitmapFromMemory(fif, pages->stream, 0);
  if (!bitmap) return nullptr;
  const std::lock_guard<std::mutex> lock(g_memoryPagesMutex);
  g_memoryPages[bitmap] = std::move(pages);
  return FIMultiBitmapPtr(bitmap);
}

}  // namespace

std::uint64_t SetMaxPicturePixels(std::uint64_t pixels) { return g_maxPicturePixels.exchange(pixels); }

std::uint64_t GetMaxPicturePixels() { return g_maxPicturePixels.load(); }

PictureSource PictureSource::File(const CString& path) {
  PictureSource source;
  source.m_strPath = path;
  return source;
}

PictureSource PictureSource::Memory(const void* data, std::size_t size) {
  PictureSource source;
  const auto* bytes = static_cast<const std::uint8_t*>(data);
  source.m_pBytes = std::make_shared<const std::vector<std::uint8_t>>(bytes, bytes + (data ? size : 0));
  return source;
}

int DetectPictureFormat(const CString& path) { return DetectPictureFormat(PictureSource::File(path)); }

int DetectPictureFormat(const PictureSource& source) {
  RestrictToViewerFormats();
  FREE_IMAGE_FORMAT format = FIF_UNKNOWN;
  if (source.IsMemory()) {
    if (source.Size() == 0 || source.Size() > LONG_MAX) return PICTURE_FORMAT_UNKNOWN;
    PictureMemory memory(source.Data(), source.Size());
    format = FreeImage_GetFileTypeFromHandle(memory.IO(), memory.Handle(), 0);
  } else {
    PictureFile file(source.Path());
    if (!file.IsOpen()) return PICTURE_FORMAT_UNKNOWN;
    format = FreeImage_GetFileTypeFromHandle(file.IO(), file.Handle(), 0);
  }
  return IsViewerFormat(format) ? static_cast<int>(format) : PICTURE_FORMAT_UNKNOWN;
}

bool IsMultiPageFormat(int format) { return format == PICTURE_FORMAT_GIF || format == PICTURE_FORMAT_TIFF; }

FIBitmapPtr LoadPicture(const CString& path, int format) { return LoadPicture(PictureSource::File(path), format); }

FIBitmapPtr LoadPicture(const PictureSource& source, int format) {
  RestrictToViewerFormats();
  const auto fif = static_cast<FREE_IMAGE_FORMAT>(format);
  if (!IsViewerFormat(fif) || IsMultiPageFormat(format)) return nullptr;
  if (source.IsMemory()) {
    if (source.Size() == 0 || source.Size() > LONG_MAX) return nullptr;
    PictureMemory memory(source.Data(), source.Size());
    return LoadWithinLimits(memory, fif);
  }
  PictureFile file(source.Path());
  if (!file.IsOpen()) return nullptr;
  return LoadWithinLimits(file, fif);
}

FIBitmapPtr LoadPictureFromMemory(const void* data, std::size_t size) {
  RestrictToViewerFormats();
  if (!data || size == 0 || size > LONG_MAX) return nullptr;
  PictureMemory memory(data, size);
  const FREE_IMAGE_FORMAT fif = FreeImage_GetFileTypeFromHandle(memory.IO(), memory.Handle(), 0);
  if (!IsViewerFormat(fif) || IsMultiPageFormat(static_cast<int>(fif)) || !memory.Rewind()) return nullptr;
  return LoadWithinLimits(memory, fif);
}

FIMultiBitmapPtr OpenMultiPagePicture(const CString& path, int format) {
  return OpenMultiPagePicture(PictureSource::File(path), format);
}

FIMultiBitmapPtr OpenMultiPagePicture(const PictureSource& source, int format) {
  RestrictToViewerFormats();
  if (!IsMultiPageFormat(format)) return nullptr;
  if (source.IsMemory() && (source.Size() == 0 || source.Size() > LONG_MAX)) return nullptr;
  const bool measured = format == PICTURE_FORMAT_GIF ? GifFramesWithinLimit(source) : TiffPagesWithinLimit(source);
  if (!measured) return nullptr;
  const auto fif = static_cast<FREE_IMAGE_FORMAT>(format);
  if (source.IsMemory()) return OpenMemoryPages(source, fif);
  return FIMultiBitmapPtr(
      FreeImage_OpenMultiBitmap(fif, ToNativePath(source.Path()).c_str(), FALSE, TRUE, TRUE, 0));
}

LockedPage::LockedPage(FIMULTIBITMAP* file, int page)
    : m_pFile(file), m_pPage(file ? FreeImage_LockPage(file, page) : nullptr) {}

LockedPage::~LockedPage() {
  if (m_pPage) FreeImage_UnlockPage(m_pFile, m_pPage, FALSE);
}

bool Is32BitPicture(FIBITMAP* picture) {
  return picture && FreeImage_GetImageType(picture) == FIT_BITMAP && FreeImage_GetBPP(picture) == 32;
}

bool Is24BitPicture(FIBITMAP* picture) {
  return picture && FreeImage_GetImageType(picture) == FIT_BITMAP && FreeImage_GetBPP(picture) == 24;
}

FIBitmapPtr CopyAs32Bits(FIBITMAP* picture) {
  if (!picture || !FreeImage_HasPixels(picture)) return nullptr;
  return FIBitmapPtr(Is32BitPicture(picture) ? FreeImage_Clone(picture) : FreeImage_ConvertTo32Bits(picture));
}

void MakeOpaque(FIBITMAP* picture) {
  if (!Is32BitPicture(picture) || !FreeImage_HasPixels(picture)) return;
  const unsigned width = FreeImage_GetWidth(picture);
  for (unsigned y = 0; y < FreeImage_GetHeight(picture); ++y) {
    BYTE* pixel = FreeImage_GetScanLine(picture, static_cast<int>(y));
    for (unsigned x = 0; x < width; ++x, pixel += 4) pixel[FI_RGBA_ALPHA] = 0xFF;
  }
}

// --- thumbnails -------------------------------------------------------------------

namespace {

constexpr int kJpegDenominators[] = {8, 4, 2, 1};

// The scaled size the decoder delivers: the picture's size divided and rounded up.
unsigned ScaledExtent(unsigned extent, int denominator) {
  return static_cast<unsigned>((std::uint64_t(extent) + denominator - 1) / denominator);
}

// The file's bytes at the start of `bytes`, which only ever grows.
bool ReadWholeFile(const CString& path, std::uint64_t limit, std::vector<std::uint8_t>& bytes,
                   unsigned long& length) {
  CStdioFile file;
  if (!file.Open(path, CStdioFile::modeRead | CStdioFile::typeBinary)) return false;
  const std::uint64_t size = file.GetLength();
  if (size == 0 || size > limit) return false;
  if (bytes.size() < size) bytes.resize(static_cast<size_t>(size));
  length = static_cast<unsigned long>(size);
  return file.Read(bytes.data(), static_cast<UINT>(size)) == size;
}

}  // namespace

ScaledJpegDecoder::ScaledJpegDecoder() : m_pHandle(tjInitDecompress()) {}

ScaledJpegDecoder::~ScaledJpegDecoder() {
  if (m_pHandle) tjDestroy(m_pHandle);
}

bool ScaledJpegDecoder::Decode(const CString& path, const MinimumSize& minimum, Picture& out) {
  unsigned long length = 0;
  if (!m_pHandle || !ReadWholeFile(path, kMaxFileBytes, m_File, length)) return false;
  int width = 0, height = 0, subsampling = 0, colorspace = 0;
  if (tjDecompressHeader3(m_pHandle, m_File.data(), length, &width, &height, &subsampling, &colorspace) != 0 ||
      width <= 0 || height <= 0 || !WithinPixelLimit(width, height))
    return false;
  const auto [minWidth, minHeight] = minimum(width, height);
  int denominator = 1;
  for (int candidate : kJpegDenominators) {
    if (ScaledExtent(width, candidate) >= std::min<unsigned>(minWidth, width) &&
        ScaledExtent(height, candidate) >= std::min<unsigned>(minHeight, height)) {
      denominator = candidate;
      break;
    }
  }
  const int scaledWidth = static_cast<int>(ScaledExtent(width, denominator));
  const int scaledHeight = static_cast<int>(ScaledExtent(height, denominator));
  const int pitch = scaledWidth * 4;
  const size_t bytes = static_cast<size_t>(pitch) * scaledHeight;
  if (m_Pixels.size() < bytes) m_Pixels.resize(bytes);
  // Any warning (data that ends early, a damaged segment) refuses the file.
  constexpr int kFlags = TJFLAG_FASTDCT | TJFLAG_FASTUPSAMPLE | TJFLAG_STOPONWARNING;
  if (tjDecompress2(m_pHandle, m_File.data(), length, m_Pixels.data(), scaledWidth, pitch, scaledHeight,
                    TJPF_BGRA, kFlags) != 0)
    return false;
  out = Picture{m_Pixels.data(), pitch, scaledWidth, scaledHeight, static_cast<unsigned>(width),
                static_cast<unsigned>(height), denominator};
  return true;
}

std::string EncodePng(const std::uint8_t* bits, int pitch, int width, int height, const PngText& texts) {
  RestrictToViewerFormats();
  if (!bits || width <= 0 || height <= 0) return {};
  bool opaque = true;
  for (int y = 0; y < height && opaque; ++y)
    for (int x = 0; x < width && opaque; ++x) opaque = bits[static_cast<size_t>(y) * pitch + x * 4 + 3] == 0xFF;
  const int bpp = opaque ? 24 : 32;
  const FIBitmapPtr picture(FreeImage_Allocate(width, height, bpp));
  if (!picture) return {};
  for (int y = 0; y < height; ++y) {
    const std::uint8_t* source = bits + static_cast<size_t>(y) * pitch;
    BYTE* target = FreeImage_GetScanLine(picture.get(), height - 1 - y);  // stored bottom-up
    for (int x = 0; x < width; ++x, source += 4, target += bpp / 8) std::memcpy(target, source, bpp / 8);
  }
  for (const auto& [key, value] : texts) {
    FITAG* tag = FreeImage_CreateTag();
    if (!tag) return {};
    FreeImage_SetTagKey(tag, key.c_str());
    FreeImage_SetTagType(tag, FIDT_ASCII);
    FreeImage_SetTagLength(tag, static_cast<DWORD>(value.size() + 1));
    FreeImage_SetTagCount(tag, static_cast<DWORD>(value.size() + 1));
    FreeImage_SetTagValue(tag, value.c_str());
    FreeImage_SetMetadata(FIMD_COMMENTS, picture.get(), key.c_str(), tag);
    FreeImage_DeleteTag(tag);
  }
  std::unique_ptr<FIMEMORY, decltype(&FreeImage_CloseMemory)> memory(FreeImage_OpenMemory(), &FreeImage_CloseMemory);
  if (!memory || !FreeImage_SaveToMemory(FIF_PNG, picture.get(), memory.get(), PNG_Z_BEST_SPEED)) return {};
  BYTE* data = nullptr;
  DWORD size = 0;
  if (!FreeImage_AcquireMemory(memory.get(), &data, &size)) return {};
  return std::string(reinterpret_cast<const char*>(data), size);
}

bool ReadPngText(FIBITMAP* picture, const char* key, std::string& value) {
  FITAG* tag = nullptr;
  if (!picture || !FreeImage_GetMetadata(FIMD_COMMENTS, picture, key, &tag) || !tag) return false;
  if (FreeImage_GetTagType(tag) != FIDT_ASCII || !FreeImage_GetTagValue(tag)) return false;
  const auto* text = static_cast<const char*>(FreeImage_GetTagValue(tag));
  value.assign(text, strnlen(text, FreeImage_GetTagLength(tag)));
  return true;
}

namespace {

// A tag value of type T, when the tag holds that many bytes.
template <class T>
bool ReadTagValue(const void* data, DWORD length, std::uint32_t& value) {
  T stored{};
  if (length < sizeof stored) return false;
  std::memcpy(&stored, data, sizeof stored);
  value = stored;
  return true;
}

}  // namespace

bool ReadAnimationTag(FIBITMAP* page, const char* key, std::uint32_t& value) {
  FITAG* tag = nullptr;
  if (!page || !FreeImage_GetMetadata(FIMD_ANIMATION, page, key, &tag) || !tag) return false;
  const void* data = FreeImage_GetTagValue(tag);
  const DWORD length = FreeImage_GetTagLength(tag);
  if (!data || FreeImage_GetTagCount(tag) < 1) return false;
  switch (FreeImage_GetTagType(tag)) {
    case FIDT_BYTE:
    case FIDT_SBYTE:
      return ReadTagValue<std::uint8_t>(data, length, value);
    case FIDT_SHORT:
    case FIDT_SSHORT:
      return ReadTagValue<std::uint16_t>(data, length, value);
    case FIDT_LONG:
    case FIDT_SLONG:
      return ReadTagValue<std::uint32_t>(data, length, value);
    default:
      return false;
  }
}

// --- Pictures shown large: header facts, EXIF orientation, reduced and ------
// --- cancellable loading (the image view's fast path) -------------------------

namespace {

constexpr int kMaxExifOrientation = 8;
constexpr unsigned kMaxJpegSizeHint = 0xFFFF;  // the decoder takes the hint in the flags' high 16 bits

// The clockwise angles of 0..3 quarter turns, each the float nearest to k x pi/2.
constexpr float kQuarterTurnAngles[4] = {0.0f, 1.5707964f, 3.1415927f, 4.712389f};

// Reads through a picture file unless `cancel` is set: a cancelled read
// returns nothing, which ends the decoder's work early.
class CancellableRead {
 public:
  CancellableRead(PictureFile& file, const std::atomic<bool>* cancel) : m_file(file), m_cancel(cancel) {}

  FreeImageIO* IO() { return &m_io; }
  fi_handle Handle() { return this; }
  bool WasCancelled() const { return m_bCancelled; }

 private:
  static CancellableRead* From(fi_handle handle) { return static_cast<CancellableRead*>(handle); }
  static unsigned DLL_CALLCONV Read(void* buffer, unsigned size, unsigned count, fi_handle handle) {
    CancellableRead* self = From(handle);
    if (self->m_cancel && self->m_cancel->load(std::memory_order_relaxed)) {
      self->m_bCancelled = true;
      return 0;
    }
    return self->m_file.IO()->read_proc(buffer, size, count, self->m_file.Handle());
  }
  static unsigned DLL_CALLCONV Write(void*, unsigned, unsigned, fi_handle) { return 0; }
  static int DLL_CALLCONV Seek(fi_handle handle, long offset, int origin) {
    CancellableRead* self = From(handle);
    return self->m_file.IO()->seek_proc(self->m_file.Handle(), offset, origin);
  }
  static long DLL_CALLCONV Tell(fi_handle handle) {
    CancellableRead* self = From(handle);
    return self->m_file.IO()->tell_proc(self->m_file.Handle());
  }

  PictureFile& m_file;
  const std::atomic<bool>* m_cancel;
  bool m_bCancelled = false;
  FreeImageIO m_io{&Read, &Write, &Seek, &Tell};
};

// The header of a single-page file, without pixels; null over the pixel limit.
FIBitmapPtr LoadHeader(PictureFile& file, FREE_IMAGE_FORMAT format) {
  if (!ClaimsFitSource(file, format)) return nullptr;
  FIBitmapPtr header(FreeImage_LoadFromHandle(format, file.IO(), file.Handle(), FIF_LOAD_NOPIXELS));
  if (!header || !WithinPixelLimit(FreeImage_GetWidth(header.get()), FreeImage_GetHeight(header.get())))
    return nullptr;
  return header;
}

}  // namespace

bool ReadPictureHeader(const CString& path, PictureHeader& header) {
  header = PictureHeader{};
  header.format = DetectPictureFormat(path);
  if (header.format == PICTURE_FORMAT_UNKNOWN) return false;
  if (IsMultiPageFormat(header.format)) return true;
  PictureFile file(path);
  if (!file.IsOpen()) return false;
  const FIBitmapPtr loaded = LoadHeader(file, static_cast<FREE_IMAGE_FORMAT>(header.format));
  if (!loaded) return false;
  header.width = FreeImage_GetWidth(loaded.get());
  header.height = FreeImage_GetHeight(loaded.get());
  header.orientation = ExifOrientationOf(loaded.get());
  return true;
}

int ExifOrientationOf(FIBITMAP* picture) {
  FITAG* tag = nullptr;
  if (!picture || !FreeImage_GetMetadata(FIMD_EXIF_MAIN, picture, "Orientation", &tag) || !tag) return 1;
  const void* data = FreeImage_GetTagValue(tag);
  if (!data || FreeImage_GetTagType(tag) != FIDT_SHORT || FreeImage_GetTagCount(tag) < 1 ||
      FreeImage_GetTagLength(tag) < sizeof(std::uint16_t))
    return 1;
  std::uint16_t value = 0;
  std::memcpy(&value, data, sizeof value);
  return value >= 1 && value <= kMaxExifOrientation ? value : 1;
}

int ReadExifOrientation(const CString& path) {
  PictureHeader header;
  if (!ReadPictureHeader(path, header) || header.format != PICTURE_FORMAT_JPEG) return 1;
  return header.orientation;
}

int ExifOrientationQuarterTurns(int orientation) {
  switch (orientation) {
    case 3:
    case 4:
      return 2;
    case 5:
    case 8:
      return 3;
    case 6:
    case 7:
      return 1;
    default:
      return 0;
  }
}

float QuarterTurnAngle(int quarterTurns) { return kQuarterTurnAngles[((quarterTurns % 4) + 4) % 4]; }

int QuarterTurnsOf(float angle) {
  const long turns = std::lround(static_cast<double>(angle) / (3.14159265358979323846 / 2));
  return static_cast<int>(((turns % 4) + 4) % 4);
}

int JpegReductionFor(unsigned width, unsigned height, unsigned minWidth, unsigned minHeight) {
  for (int reduction : {8, 4, 2}) {
    const unsigned w = (width + reduction - 1) / reduction, h = (height + reduction - 1) / reduction;
    if (w >= std::max(minWidth, 1u) && h >= std::max(minHeight, 1u)) return reduction;
  }
  return 1;
}

FIBitmapPtr LoadPictureReduced(const CString& path, int format, int reduction, const std::atomic<bool>* cancel) {
  RestrictToViewerFormats();
  const auto fif = static_cast<FREE_IMAGE_FORMAT>(format);
  if (!IsViewerFormat(fif) || IsMultiPageFormat(format)) return nullptr;
  PictureFile file(path);
  if (!file.IsOpen()) return nullptr;
  int flags = 0;
  {
    const FIBitmapPtr header = LoadHeader(file, fif);
    if (!header) return nullptr;
    // The decoder picks the largest reduction that keeps the longer side at
    // least the hint, so the longer side divided by the reduction asks for
    // exactly that one.
    const unsigned longer = std::max(FreeImage_GetWidth(header.get()), FreeImage_GetHeight(header.get()));
    const unsigned hint = reduction > 1 ? longer / static_cast<unsigned>(reduction) : 0;
    if (format == PICTURE_FORMAT_JPEG && hint >= 1 && hint <= kMaxJpegSizeHint) flags = static_cast<int>(hint << 16);
  }
  if (!file.Rewind()) return nullptr;
  CancellableRead reader(file, cancel);
  FIBitmapPtr picture(FreeImage_LoadFromHandle(fif, reader.IO(), reader.Handle(), flags));
  if (!picture || !FreeImage_HasPixels(picture.get()) || file.WasCutShort() || reader.WasCancelled()) return nullptr;
  return picture;
}

FIBitmapPtr ShrinkPicture(FIBITMAP* picture, int reduction) {
  if (!picture || !FreeImage_HasPixels(picture) || reduction < 1) return nullptr;
  const int width = std::max(1, static_cast<int>(FreeImage_GetWidth(picture)) / reduction);
  const int height = std::max(1, static_cast<int>(FreeImage_GetHeight(picture)) / reduction);
  return FIBitmapPtr(FreeImage_Rescale(picture, width, height, FILTER_BOX));
}

}  // namespace KarvelUI
