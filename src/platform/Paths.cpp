#include "platform/Paths.h"

#include <dlfcn.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

#include <karvelui/TextCodec.h>

namespace KarvelUI {
namespace {

bool IsSeparator(wchar_t c) { return c == L'\\' || c == L'/'; }

std::string FolderOf(const std::string& file) {
  const size_t slash = file.rfind('/');
  if (slash == std::string::npos) return std::string();
  return slash == 0 ? std::string("/") : file.substr(0, slash);
}

std::string ReadSelfExe() {
  std::vector<char> buffer(4096);
  for (;;) {
    const ssize_t n = readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (n < 0) return std::string();
    if (static_cast<size_t>(n) < buffer.size()) return std::string(buffer.data(), static_cast<size_t>(n));
    buffer.resize(buffer.size() * 2);
  }
}

std::string HomeFolder() {
  const char* home = std::getenv("HOME");
  if (home && *home) return home;
  const passwd* entry = getpwuid(getuid());
  if (entry && entry->pw_dir && *entry->pw_dir) return entry->pw_dir;
  return std::string();
}

}  // namespace

std::string ToNativePath(const CString& libraryPath) {
  std::wstring native;
  native.reserve(static_cast<size_t>(libraryPath.GetLength()));
  for (const wchar_t c : libraryPath.view()) {
    if (IsSeparator(c)) {
      if (native.empty() || native.back() != L'/') native += L'/';
    } else {
      native += c;
    }
  }
  return WideToUtf8(native);
}

CString FromNativePath(const std::string& nativePath) {
  std::wstring wide = Utf8ToWide(nativePath);
  for (wchar_t& c : wide)
    if (c == L'/') c = L'\\';
  return CString(std::move(wide));
}

CString GetExecutablePath() { return FromNativePath(ReadSelfExe()); }

std::string GetExecutableFolderNative() { return FolderOf(ReadSelfExe()); }

std::string GetLibraryFolderNative() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&GetLibraryFolderNative), &info) == 0 || !info.dli_fname)
    return GetExecutableFolderNative();
  char* resolved = realpath(info.dli_fname, nullptr);
  if (!resolved) return FolderOf(info.dli_fname);
  std::string folder = FolderOf(resolved);
  std::free(resolved);
  return folder;
}

namespace {

// An XDG base folder: the variable's value when it is absolute (the rules
// ignore relative ones), else the fallback below the home folder.
bool XdgFolder(const char* variable, const char* belowHome, CString& folder) {
  const char* xdg = std::getenv(variable);
  std::string native;
  if (xdg && xdg[0] == '/') {
    native = xdg;
  } else {
    const std::string home = HomeFolder();
    if (home.empty()) return false;
    native = home + belowHome;
  }
  while (native.size() > 1 && native.back() == '/') native.pop_back();
  folder = FromNativePath(native);
  return true;
}

}  // namespace

bool GetUserDataFolder(CString& folder) { return XdgFolder("XDG_DATA_HOME", "/.local/share", folder); }

bool GetUserCacheFolder(CString& folder) { return XdgFolder("XDG_CACHE_HOME", "/.cache", folder); }

}  // namespace KarvelUI
