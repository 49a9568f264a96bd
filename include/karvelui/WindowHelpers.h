#pragma once

// Window and clipboard helpers of the library's helper set: window state
// tests, translucency, clipboard text and file lists, and opening a web page.

#include <vector>

#include <karvelui/Base.h>

namespace KarvelUI {

// The window's minimised / maximised style bit (FALSE for a non-window).
KARVELUI_API BOOL IsWndMinimized(HWND hwnd);
KARVELUI_API BOOL IsWndMaximized(HWND hwnd);

// Makes the window layered (when it is not yet) with alpha
// trunc(percent * 255 / 100); returns 0.
KARVELUI_API DWORD MakeWindowTransparent(HWND hwnd, wchar_t percent);
// Re-applies the layered style, then sets colour key and alpha together.
// Returns the layered-window call's result, or 0 when hwnd is no window.
KARVELUI_API DWORD MakeWindowTransparent(HWND hwnd, wchar_t percent, DWORD colorKey);

// Puts the text (UTF-16 with its terminator) on the clipboard under the
// plain-text format id 1; an empty text changes nothing.
KARVELUI_API void CopyTextToClipborder(const CString& text);
// Puts the files on the clipboard: the file-drop block under format 15 and
// the drop effect (1 copy, 2 move) under "Preferred DropEffect".
KARVELUI_API void CopyFilesToClipBoard(const CStringArray& files, BOOL copy);
// Opens url in the browser: the legacy browser program directly when it is
// older than 7.0 and the default for the URL's scheme, else the URL itself;
// on failure the browser program once more, then a message box.
KARVELUI_API void SafeOpenWeb(CString& url, int showCommand);
// The file-drop block: a 20-byte header (list offset 20, drop point (0, 0),
// non-client 0, wide 1), each path in UTF-16 with its terminator, then a
// final terminator.
KARVELUI_API std::vector<BYTE> BuildFileDropBlock(const CStringArray& files);

}  // namespace KarvelUI
