#pragma once

// Tests answer the library's message boxes through a hook instead of
// blocking on a dialog.

#include <functional>

#include <karvelui/CString.h>
#include <karvelui/MessageBox.h>

namespace KarvelUI {

using MessageBoxHook = std::function<int(HWND owner, const CString& text, const CString& caption, UINT type)>;

// Installs a hook (an empty function removes it); returns the previous one.
// While one is installed, MessageBoxW asks it instead of showing a dialog.
MessageBoxHook SetMessageBoxHook(MessageBoxHook hook);

}  // namespace KarvelUI
