#pragma once

// The library's few user-visible messages (missing string table, render
// device that cannot be made, browser that cannot be started) go through
// this one function. Tests install a hook to capture them instead of
// blocking on a dialog.

#include <functional>

#include "base/CString.h"
#include "base/Export.h"
#include "base/Types.h"

namespace KarvelUI {

// Shows a modal message box and returns the button pressed (IDOK, ...).
// With a hook installed the hook answers instead.
KARVELUI_API int MessageBoxW(HWND owner, const wchar_t* text, const wchar_t* caption, UINT type);

using MessageBoxHook = std::function<int(HWND owner, const CString& text, const CString& caption, UINT type)>;

// Installs a hook (an empty function removes it); returns the previous one.
KARVELUI_API MessageBoxHook SetMessageBoxHook(MessageBoxHook hook);

}  // namespace KarvelUI
