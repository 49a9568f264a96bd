#pragma once

// Paths as the library keeps them ("\\home\\me\\a.jpg") and as the system
// and its users write them ("/home/me/a.jpg").

#include <algorithm>
#include <string>

#include <karvelui/CString.h>

namespace KarvelView {

// Every run of backslashes or slashes becomes one '/'.
inline std::string NativePath(const KarvelUI::CString& path) {
  const std::string text = path.ToUtf8();
  std::string native;
  for (char c : text) {
    const bool separator = c == '\\' || c == '/';
    if (separator && !native.empty() && native.back() == '/') continue;
    native += separator ? '/' : c;
  }
  return native;
}

inline KarvelUI::CString LibraryPath(const std::string& native) {
  KarvelUI::CString path(native.c_str());
  path.Replace(L'/', L'\\');
  return path;
}

inline KarvelUI::CString NativeText(const KarvelUI::CString& path) {
  return KarvelUI::CString(NativePath(path).c_str());
}

// The path without its last part; empty when it has a single part.
inline KarvelUI::CString FolderOf(const KarvelUI::CString& path) {
  const int slash = std::max(path.ReverseFind(L'\\'), path.ReverseFind(L'/'));
  return slash > 0 ? path.Left(slash) : KarvelUI::CString();
}

// The last part of a path in either form.
inline KarvelUI::CString FileNameOf(const KarvelUI::CString& path) {
  const int slash = std::max(path.ReverseFind(L'\\'), path.ReverseFind(L'/'));
  return path.Mid(slash + 1);
}

}  // namespace KarvelView
