#include "thumbnails/SharedThumbCache.h"

#include <openssl/evp.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <vector>

#include <karvelui/Helpers.h>
#include "platform/FileSystem.h"
#include "platform/Paths.h"

namespace KarvelUI {
namespace {

constexpr std::int64_t kNanosPerSecond = 1000000000LL;
const char kUriKey[] = "Thumb::URI";
const char kMTimeKey[] = "Thumb::MTime";
const char kWidthKey[] = "Thumb::Image::Width";
const char kHeightKey[] = "Thumb::Image::Height";

std::atomic<bool> g_enabled{true};
std::atomic<bool> g_folderRefused{false};

bool IsPathByte(unsigned char c) {
  if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) return true;
  return std::string_view("-._~!$&'()*+,;=:@/").find(static_cast<char>(c)) != std::string_view::npos;
}

CString Md5Hex(const std::string& bytes) {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int length = 0;
  if (EVP_Digest(bytes.data(), bytes.size(), digest, &length, EVP_md5(), nullptr) != 1) return CString();
  return bin2hex(digest, length);
}

std::string ModificationSeconds(const CString& path) {
  FileStatus status;
  if (!GetPathStatus(path, status)) return {};
  std::int64_t seconds = status.modificationTime / kNanosPerSecond;
  if (status.modificationTime < 0 && status.modificationTime % kNanosPerSecond != 0) --seconds;  // floor
  return std::to_string(seconds);
}

UINT ReadNumber(FIBITMAP* picture, const char* key, UINT fallback) {
  std::string text;
  if (!ReadPngText(picture, key, text) || text.empty() || text.size() > 9 ||
      !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }))
    return fallback;
  return static_cast<UINT>(std::stoul(text));
}

bool IsCurrent(FIBITMAP* picture, const std::string& uri, const std::string& mtime) {
  std::string stored;
  if (!ReadPngText(picture, kMTimeKey, stored) || stored != mtime) return false;
  return !ReadPngText(picture, kUriKey, stored) || stored == uri;
}

}  // namespace

void SharedThumbCache::SetEnabled(bool enabled) {
  g_enabled = enabled;
  if (enabled) g_folderRefused = false;  // a new chance, e.g. after the home became writable
}

bool SharedThumbCache::IsEnabled() { return g_enabled; }

bool SharedThumbCache::IsWriting() { return g_enabled && !g_folderRefused; }

std::string SharedThumbCache::FileUri(const CString& path) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string uri = "file://";
  for (const unsigned char c : ToNativePath(path)) {
    if (IsPathByte(c)) {
      uri += static_cast<char>(c);
    } else {
      uri += '%';
      uri += kHex[c >> 4];
      uri += kHex[c & 0x0F];
    }
  }
  return uri;
}

CString SharedThumbCache::ThumbnailPath(const CString& path, const wchar_t* size) {
  CString cache;
  if (!GetUserCacheFolder(cache)) return CString();
  const CString name = Md5Hex(FileUri(path));
  if (name.IsEmpty()) return CString();
  CString file;
  file.Format(L"%s\\thumbnails\\%s\\%s.png", cache, size, name);
  return file;
}

CSize SharedThumbCache::LargeSize(UINT imageWidth, UINT imageHeight) {
  if (imageWidth <= kLargeExtent && imageHeight <= kLargeExtent)
    return CSize(static_cast<int>(imageWidth), static_cast<int>(imageHeight));
  if (imageWidth >= imageHeight)
    return CSize(kLargeExtent, std::max(1, static_cast<int>(std::uint64_t(kLargeExtent) * imageHeight / imageWidth)));
  return CSize(std::max(1, static_cast<int>(std::uint64_t(kLargeExtent) * imageWidth / imageHeight)), kLargeExtent);
}

bool SharedThumbCache::Find(const CString& path, int wantedExtent, Hit& hit) {
  if (!IsEnabled()) return false;
  const std::string mtime = ModificationSeconds(path);
  if (mtime.empty()) return false;
  const std::string uri = FileUri(path);
  // The smallest size that covers the wanted one first.
  const wchar_t* sizes[] = {L"normal", L"large"};
  if (wantedExtent > kNormalExtent) std::swap(sizes[0], sizes[1]);
  for (const wchar_t* size : sizes) {
    const CString file = ThumbnailPath(path, size);
    if (file.IsEmpty() || !PathExists(file) || DetectPictureFormat(file) != PICTURE_FORMAT_PNG) continue;
    FIBitmapPtr picture = LoadPicture(file, PICTURE_FORMAT_PNG);
    if (!picture || !IsCurrent(picture.get(), uri, mtime)) continue;
    hit.imageWidth = ReadNumber(picture.get(), kWidthKey, 0);
    hit.imageHeight = ReadNumber(picture.get(), kHeightKey, 0);
    hit.picture = std::move(picture);
    return true;
  }
  return false;
}

void SharedThumbCache::Store(const CString& path, const PixelView& decoded, UINT imageWidth, UINT imageHeight) {
  if (!IsWriting() || decoded.width <= 0 || decoded.height <= 0) return;
  const std::string mtime = ModificationSeconds(path);
  const CString file = ThumbnailPath(path, L"large");
  if (mtime.empty() || file.IsEmpty()) return;
  const CSize size = LargeSize(imageWidth, imageHeight);
  std::vector<BYTE> pixels(static_cast<size_t>(size.cx) * size.cy * 4);
  const PixelTarget target{pixels.data(), size.cx * 4, size.cx, size.cy};
  ResampleBilinear(decoded, target);
  const std::string png = EncodePng(pixels.data(), target.pitch, size.cx, size.cy,
                                    {{kUriKey, FileUri(path)},
                                     {kMTimeKey, mtime},
                                     {kWidthKey, std::to_string(imageWidth)},
                                     {kHeightKey, std::to_string(imageHeight)}});
  if (png.empty()) return;
  const CString folder = file.Left(file.ReverseFind(L'\\'));
  if (!CreatePrivateFolderTree(folder, kFolderMode)) {
    g_folderRefused = true;
    return;
  }
  if (WriteFileAtomically(file, png, kFileMode) == WriteFileResult::NotWritable) g_folderRefused = true;
}

}  // namespace KarvelUI
