#pragma once

// Opening URLs, documents and programs through the desktop. Tests install a
// hook that sees every request instead of starting anything.

#include <functional>

#include <karvelui/CString.h>
#include <karvelui/Export.h>
#include <karvelui/Types.h>

namespace KarvelUI {

// Returns true when the request counts as started.
using ShellOpenHook =
    std::function<bool(const CString& verb, const CString& file, const CString& parameters, int showCommand)>;
// Installs a hook (an empty function removes it); returns the previous one.
ShellOpenHook SetShellOpenHook(ShellOpenHook hook);

// The browser program name callers use to open a URL; asking for it opens
// the parameters (the URL) in the desktop's web browser.
inline constexpr const wchar_t* kBrowserProgram = L"IEXPLORE.EXE";

// Opens file (a URL, a document, or the browser program with a URL as
// parameters). Above 32 on success; 2 (not found) or 31 (nothing to open it
// with) on failure, as the desktop reports them.
INT_PTR ShellExecuteW(HWND owner, const wchar_t* verb, const wchar_t* file, const wchar_t* parameters,
                                   const wchar_t* directory, int showCommand);

}  // namespace KarvelUI
