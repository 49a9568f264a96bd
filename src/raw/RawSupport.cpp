#include "raw/RawSupport.h"

#include <openssl/evp.h>

#include <cerrno>
#include <mutex>
#include <string>

#include <karvelui/TextCodec.h>
#include <karvelui/Helpers.h>
#include <karvelui/Trace.h>
#include "platform/DynamicLibrary.h"
#include "platform/FileSystem.h"
#include "platform/Paths.h"

namespace KarvelUI {
namespace {

const wchar_t* const kRawExtensions[] = {L".nef", L".crw", L".cr2", L".dcr", L".kdc", L".k25",
                                         L".mrw", L".arw", L".srf", L".sr2", L".orf", L".mos",
                                         L".raf", L".pxn", L".mef", L".raw", L".pef", L".dng"};

const char kExtractExport[] = "ExtrctRawImageFile";
using ExtractRawImageFile = int (*)(const wchar_t* rawPath, const wchar_t* jpgPath);

std::mutex& LibraryNameMutex() {
  static std::mutex mutex;
  return mutex;
}

CString& LibraryName() {
  static CString name(L"ZorImgUtil.dll");
  return name;
}

CString CurrentLibraryName() {
  std::lock_guard<std::mutex> lock(LibraryNameMutex());
  return LibraryName();
}

int LastSeparator(const CString& path) {
  const int back = path.ReverseFind(L'\\');
  const int slash = path.ReverseFind(L'/');
  return back > slash ? back : slash;
}

// The path without its last component; false when it has no folder part. A
// file in the root keeps the root separator.
bool ParentFolderOf(const CString& path, CString& folder) {
  const int cut = LastSeparator(path);
  if (cut < 0) return false;
  folder = path.Left(cut == 0 ? 1 : cut);
  return true;
}

// Lower-case hexadecimal MD5 of the text's UTF-8 bytes; empty on failure.
CString Md5Hex(const CString& text) {
  const std::string bytes = CString_to_utf8(text);
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int length = 0;
  if (EVP_Digest(bytes.data(), bytes.size(), digest, &length, EVP_md5(), nullptr) != 1) return CString();
  return bin2hex(digest, length);
}

// Creates one cache folder; an existing folder is fine and left as it is.
bool EnsureCacheFolder(const CString& folder, bool hidden) {
  switch (CreateFolder(folder)) {
    case CreateFolderResult::Created:
      if (hidden) SetHiddenAttribute(folder, true);
      return true;
    case CreateFolderResult::AlreadyExists:
      return true;
    case CreateFolderResult::Failed:
      break;
  }
  return false;
}

// The extraction library receives native paths.
std::wstring NativeWide(const CString& path) { return Utf8ToWide(ToNativePath(path)); }

// Gives the JPEG the RAW file's modification time, which marks it current
// (its access time stays its own).
bool CopyModificationTime(const CString& rawPath, const CString& jpgPath) {
  FileStatus raw, jpg;
  return GetPathStatus(rawPath, raw) && GetPathStatus(jpgPath, jpg) &&
         SetPathTimes(jpgPath, jpg.accessTime, raw.modificationTime);
}

}  // namespace

int IsRawPic(const CString& path) {
  const CString name = path.Mid(LastSeparator(path) + 1);
  const int dot = name.ReverseFind(L'.');
  if (dot < 0) return 0;
  const CString extension = name.Mid(dot);
  for (const wchar_t* raw : kRawExtensions)
    if (extension.CompareNoCase(raw) == 0) return 1;
  return 0;
}

int GetRawFileJPGPath(const CString& rawPath, CString& jpgPath) {
  CString appData;
  if (!GetAppDataPath(appData)) return 0;
  CString folder;
  if (!ParentFolderOf(rawPath, folder)) return 0;
  const CString h1 = Md5Hex(folder);
  const CString h2 = Md5Hex(rawPath);
  if (h1.IsEmpty() || h2.IsEmpty()) return 0;

  // The application-data folder itself may not exist yet on a fresh account.
  CreateFolderTree(appData);
  CString cacheRoot, cacheFolder;
  cacheRoot.Format(L"%s\\%s", appData, L"thumbnail");
  if (!EnsureCacheFolder(cacheRoot, true)) return 0;
  cacheFolder.Format(L"%s\\%s\\%s", appData, L"thumbnail", h1);
  if (!EnsureCacheFolder(cacheFolder, false)) return 0;
  jpgPath.Format(L"%s\\%s\\%s\\%s.jpg", appData, L"thumbnail", h1, h2);
  return 1;
}

int TimeStatusCompare(const CString& a, const CString& b) {
  FileStatus first, second;
  if (!GetPathStatus(a, first) || !GetPathStatus(b, second)) return 0;
  return first.modificationTime == second.modificationTime ? 1 : 0;
}

int GenerateRawJPGFile(const CString& rawPath, const CString& jpgPath) {
  if (IsFileExist(jpgPath)) {
    if (TimeStatusCompare(rawPath, jpgPath)) return 1;
    DeleteFileW(jpgPath);
  }

  DynamicLibrary library;
  if (!library.Load(CurrentLibraryName())) return 0;
  const auto extract = reinterpret_cast<ExtractRawImageFile>(library.GetProcAddress(kExtractExport));
  if (!extract) return 0;
  if (extract(NativeWide(rawPath).c_str(), NativeWide(jpgPath).c_str()) != 0) return 0;

  if (!CopyModificationTime(rawPath, jpgPath)) {
    // The JPEG stays; its differing time makes the next call extract again.
    g_ITrace->Trace(TRACE_LEVEL_FALLBACK, TRACE_FLUSH, L"Error in SetStatus for %u", static_cast<unsigned>(errno));
    return 0;
  }
  return 1;
}

CString SetRawExtractorLibrary(const CString& name) {
  std::lock_guard<std::mutex> lock(LibraryNameMutex());
  CString previous = LibraryName();
  LibraryName() = name;
  return previous;
}

}  // namespace KarvelUI
