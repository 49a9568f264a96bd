#pragma once

// Files dropped on a window, shaped like the desktop's: the window receives
// WM_DROPFILES with a drop handle (HDROP) as its word parameter, asks it for
// the files and frees it with DragFinish. A window that leaves the message
// to its default handling has the handle freed there. Paths are in the
// library's form (backslashes). Works on the user-interface thread.

#include <vector>

#include <karvelui/CString.h>
#include <karvelui/Export.h>
#include <karvelui/Types.h>

namespace KarvelUI {

using HDROP = HANDLE;

// Asks for the number of files.
inline constexpr UINT DRAG_QUERY_COUNT = 0xFFFFFFFF;

// With DRAG_QUERY_COUNT: the number of files. Otherwise the length of file
// `index` (characters, no terminator), copied into buffer (size characters,
// terminator included, cut to fit) when one is given; 0 for an unknown
// handle or index.
KARVELUI_API UINT DragQueryFileW(HDROP drop, UINT index, wchar_t* buffer, UINT size);
// File `index` as a string; empty for an unknown handle or index.
KARVELUI_API CString DragQueryFilePath(HDROP drop, UINT index);
// Frees the handle; an unknown or already freed handle is ignored.
KARVELUI_API void DragFinish(HDROP drop);
// A drop handle holding `files`, as the desktop makes one for a drop.
KARVELUI_API HDROP CreateDropFiles(const std::vector<CString>& files);

}  // namespace KarvelUI
