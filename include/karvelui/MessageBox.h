#pragma once

// The library's few user-visible messages (missing string table, render
// device that cannot be made, browser that cannot be started) go through
// this one function.

#include <karvelui/Export.h>
#include <karvelui/Types.h>

namespace KarvelUI {

// Shows a modal message box and returns the button pressed (IDOK, ...).
KARVELUI_API int MessageBoxW(HWND owner, const wchar_t* text, const wchar_t* caption, UINT type);

}  // namespace KarvelUI
