#pragma once

// Code-page conversion. The system's narrow ("ANSI") code page on this
// platform is UTF-8. Besides it, the single-byte pages ISO 8859-1 and
// US-ASCII are known, so text files can name them.

#include <optional>
#include <string>
#include <string_view>

#include <karvelui/Export.h>
#include <karvelui/Types.h>

namespace KarvelUI {

inline constexpr UINT CP_ACP = 0;
inline constexpr UINT CP_UTF8 = 65001;
inline constexpr UINT CP_LATIN1 = 28591;
inline constexpr UINT CP_ASCII = 20127;

// The ANSI code page: always CP_UTF8 here.
UINT GetACP();
bool IsKnownCodePage(UINT codePage);

// Narrow -> wide; nullopt for an unknown code page. Bytes a page cannot
// hold become U+FFFD.
std::optional<std::wstring> MultiByteToWide(UINT codePage, std::string_view bytes);
// Wide -> narrow; characters the page cannot hold become `replacement`.
// nullopt for an unknown code page.
std::optional<std::string> WideToMultiByte(UINT codePage, std::wstring_view text, char replacement = '?');

}  // namespace KarvelUI
