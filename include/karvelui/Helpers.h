#pragma once

// Stateless helpers used across the library and by the host: number and
// text conversions, file tests, the system font and version, browser
// detection, and the application folders. Window and clipboard helpers live
// in WindowHelpers.h.
//
// "Bytes" are std::string buffers holding raw UTF-16 code units
// (little-endian, two bytes per character); "MBCS" is the system's narrow
// code page, UTF-8 on this platform.

#include <cstdint>
#include <string>

#include <karvelui/Base.h>

namespace KarvelUI {

// --- numbers and text -------------------------------------------------------
// Decimal digits from the start of s, at most len characters, no sign, no
// overflow check; *end receives the first unparsed character, or null when
// all len characters were digits.
KARVELUI_API long xatol(const wchar_t* s, unsigned len, const wchar_t** end);
KARVELUI_API std::wstring ultoa10(unsigned value);
// Two lower-case hexadecimal digits per byte, high nibble first.
KARVELUI_API CString bin2hex(const void* data, unsigned len);
KARVELUI_API CString bin2hex(const std::string& bytes);
// 1-based index of c among the first len characters of s; 0 when absent.
KARVELUI_API unsigned find(const wchar_t* s, unsigned len, wchar_t c);

KARVELUI_API int Bytes2Int(const std::string& bytes);
KARVELUI_API std::uint64_t Bytes2DWORD64(const std::string& bytes);
KARVELUI_API std::string Int2Bytes(int value);
KARVELUI_API std::string DWORD642Bytes(const std::uint64_t& value);
KARVELUI_API int CString2Int(const CString& text);
KARVELUI_API std::uint64_t CString2DWORD64(const CString& text);
// Base from the prefix: "0x" hexadecimal, a leading 0 octal, else decimal.
KARVELUI_API std::uint64_t CString2UInt(const CString& text);
KARVELUI_API CString Int2CString(int value);
// Both use the signed 64-bit format, so values above 2^63 print negative.
KARVELUI_API CString DWORD642CString(const std::uint64_t& value);
KARVELUI_API CString UInt2CString(std::uint64_t value);
KARVELUI_API std::string Int2Utf8(int value);

KARVELUI_API CString Bytes_to_CString(const std::string& bytes);
KARVELUI_API std::string CString_to_Bytes(const CString& text);
// Returns the number of bytes written to out.
KARVELUI_API int CString_to_MBCS(const CString& text, std::string& out);
// Returns the number of characters (0 for null input or on failure).
KARVELUI_API int MBCS_to_CString(const char* text, CString& out);
// Converts up to the first zero byte; returns the number of characters.
KARVELUI_API int utf8_to_CString(const std::string& utf8, CString& out);
KARVELUI_API std::string CString_to_utf8(const CString& text);

// --- files ------------------------------------------------------------------
KARVELUI_API BOOL IsFileExist(const CString& path);
KARVELUI_API std::uint64_t GetFileSize(const CString& path);
// A failure (missing file, no permission) is swallowed.
KARVELUI_API void DeleteFileW(const wchar_t* path);

// --- system -----------------------------------------------------------------
// "platform id.product type.major.minor".
KARVELUI_API CString GetOSVersion();
// NT platform, major version exactly 6. Never true on this platform.
KARVELUI_API bool IsVistaWindows();
// The default font of every control: height 12, normal weight, "SimSun".
KARVELUI_API void GetDefaultLOGFONT(LOGFONT& font);

// --- browser ----------------------------------------------------------------
// The legacy browser's version from the registry view; 5.0 when unknown.
KARVELUI_API float GetIEVersion();
// Whether the http (https) open command names the legacy browser. A missing
// https command counts as true, a missing http command as false.
KARVELUI_API bool IsUsingIEAsHttpBrowser();
KARVELUI_API bool IsUsingIEAsHttpsBrowser();

// --- folders ----------------------------------------------------------------
// Folder of the running program's executable, library form, no trailing
// separator.
KARVELUI_API void GetAppPath(CString& out);
// The user's data folder joined with "Orvane\Karvel" (no trailing
// separator); the application folder when the user has no home. Returns 1.
KARVELUI_API BOOL GetAppDataPath(CString& out);

}  // namespace KarvelUI
