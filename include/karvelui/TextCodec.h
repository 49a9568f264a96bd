#pragma once

// Conversions between the encodings that meet inside the library: wide
// strings (wchar_t, UTF-32 on Linux), UTF-16 code units (what files and the
// clipboard carry) and UTF-8 (the narrow "ANSI" code page on Linux).
// Malformed input never throws: bad sequences become U+FFFD.

#include <string>
#include <string_view>

#include <karvelui/Export.h>

namespace KarvelUI {

KARVELUI_API std::wstring Utf8ToWide(std::string_view utf8);
KARVELUI_API std::string WideToUtf8(std::wstring_view wide);
KARVELUI_API std::u16string WideToUtf16(std::wstring_view wide);
KARVELUI_API std::wstring Utf16ToWide(std::u16string_view utf16);

// Case mapping for any Unicode letter the C library knows, independent of the
// process locale (which a host may leave at "C").
KARVELUI_API wchar_t ToLowerChar(wchar_t c);
KARVELUI_API wchar_t ToUpperChar(wchar_t c);

}  // namespace KarvelUI
