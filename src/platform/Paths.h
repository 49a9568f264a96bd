#pragma once

// Paths between the library and the operating system.
//
// Inside the library a path keeps its backslash form ("\\home\\me\\a.png",
// possibly with doubled separators after ReparsePath). Only here, where a
// path reaches the OS, does it become a native POSIX path: every run of
// backslashes or slashes turns into one '/', so "\\\\home\\x" still names
// "/home/x". Paths coming back from the OS take the inverse conversion.
// Narrow text on this platform is UTF-8.

#include <string>

#include <karvelui/CString.h>
#include <karvelui/Export.h>

namespace KarvelUI {

// Library path (backslash form) -> native UTF-8 path.
std::string ToNativePath(const CString& libraryPath);
// Native UTF-8 path -> library path (backslash form, nothing collapsed).
CString FromNativePath(const std::string& nativePath);

// Full path of the running program's executable, library form; empty when
// the OS cannot tell.
CString GetExecutablePath();
// Folder holding the code of this library (the shared library, or the
// program when linked statically), native form without trailing '/'.
std::string GetLibraryFolderNative();
// Folder of the running program, native form without trailing '/'.
std::string GetExecutableFolderNative();

// The user's data folder (XDG data home: $XDG_DATA_HOME, else
// $HOME/.local/share), library form without trailing separator. False when
// no home folder can be found.
bool GetUserDataFolder(CString& folder);
// The user's cache folder (XDG cache home: $XDG_CACHE_HOME, else
// $HOME/.cache), in the same form and with the same failure.
bool GetUserCacheFolder(CString& folder);

}  // namespace KarvelUI
