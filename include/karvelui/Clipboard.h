#pragma once

// The clipboard, shaped like the desktop's: open, empty, put data under
// numbered formats, close. The text formats (CF_TEXT and CF_UNICODETEXT)
// carry UTF-16 with a terminator in this library and are shared with other
// programs as text; other formats stay inside the process, except that a
// file-drop block (CF_HDROP) also goes out as a text/uri-list style text when
// no text was put with it. Works on the user-interface thread only.

#include <vector>

#include <karvelui/Export.h>
#include <karvelui/WindowTypes.h>

namespace KarvelUI {

KARVELUI_API BOOL OpenClipboard(HWND owner);
KARVELUI_API BOOL CloseClipboard();
KARVELUI_API BOOL EmptyClipboard();
// Needs the clipboard open.
KARVELUI_API BOOL SetClipboardData(UINT format, std::vector<BYTE> data);
KARVELUI_API BOOL GetClipboardData(UINT format, std::vector<BYTE>& data);
KARVELUI_API BOOL IsClipboardFormatAvailable(UINT format);
// The same id for the same name (compared without case), from 0xC000 on.
KARVELUI_API UINT RegisterClipboardFormatW(const wchar_t* name);

}  // namespace KarvelUI
