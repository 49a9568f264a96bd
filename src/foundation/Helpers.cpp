#include <karvelui/Helpers.h>

#include <climits>
#include <cwchar>

#include <karvelui/TextCodec.h>
#include "platform/FileSystem.h"
#include "platform/Paths.h"
#include "platform/Registry.h"
#include "platform/SystemInfo.h"

namespace KarvelUI {
namespace {

constexpr const wchar_t* kLegacyBrowserCommand = L"internet explorer\\iexplore.exe";

// Wide atoi: leading blanks, an optional sign, decimal digits; out-of-range
// values clamp to the type's limits.
long long ParseDecimal(const wchar_t* text) {
  return text ? std::wcstoll(text, nullptr, 10) : 0;
}

bool LegacyCommandNamesBrowser(const wchar_t* key, bool missingKeyAnswer) {
  RegistryKey command;
  if (!command.Open(RegistryRoot::ClassesRoot, key)) return missingKeyAnswer;
  CString name;
  CString value;
  if (!command.EnumValue(0, name, value)) return false;
  value.MakeLower();
  return value.Find(kLegacyBrowserCommand) >= 0;
}

bool UserChoiceIs(const wchar_t* key, const wchar_t* progId) {
  RegistryKey choice;
  CString value;
  return choice.Open(RegistryRoot::ClassesRoot, key) && choice.QueryString(L"Progid", value) &&
         value.CompareNoCase(progId) == 0;
}

}  // namespace

long xatol(const wchar_t* s, unsigned len, const wchar_t** end) {
  unsigned long value = 0;  // unsigned: wrapping is the documented overflow behaviour
  unsigned i = 0;
  for (; i < len && s[i] >= L'0' && s[i] <= L'9'; ++i) value = value * 10 + static_cast<unsigned long>(s[i] - L'0');
  if (end) *end = i < len ? s + i : nullptr;
  return static_cast<long>(value);
}

std::wstring ultoa10(unsigned value) { return std::to_wstring(value); }

CString bin2hex(const void* data, unsigned len) {
  static constexpr wchar_t kDigits[] = L"0123456789abcdef";
  const auto* bytes = static_cast<const unsigned char*>(data);
  std::wstring hex;
  hex.reserve(static_cast<size_t>(len) * 2);
  for (unsigned i = 0; i < len; ++i) {
    hex += kDigits[bytes[i] >> 4];
    hex += kDigits[bytes[i] & 0x0F];
  }
  return CString(std::move(hex));
}

CString bin2hex(const std::string& bytes) { return bin2hex(bytes.data(), static_cast<unsigned>(bytes.size())); }

unsigned find(const wchar_t* s, unsigned len, wchar_t c) {
  for (unsigned i = 0; i < len; ++i)
    if (s[i] == c) return i + 1;
  return 0;
}

int Bytes2Int(const std::string& bytes) { return CString2Int(Bytes_to_CString(bytes)); }

std::uint64_t Bytes2DWORD64(const std::string& bytes) { return CString2DWORD64(Bytes_to_CString(bytes)); }

std::string Int2Bytes(int value) { return CString_to_Bytes(Int2CString(value)); }

std::string DWORD642Bytes(const std::uint64_t& value) { return CString_to_Bytes(DWORD642CString(value)); }

int CString2Int(const CString& text) {
  const long long value = ParseDecimal(text.GetString());
  if (value > INT_MAX) return INT_MAX;
  if (value < INT_MIN) return INT_MIN;
  return static_cast<int>(value);
}

std::uint64_t CString2DWORD64(const CString& text) {
  return static_cast<std::uint64_t>(ParseDecimal(text.GetString()));
}

std::uint64_t CString2UInt(const CString& text) { return std::wcstoull(text.GetString(), nullptr, 0); }

CString Int2CString(int value) {
  CString text;
  text.Format(L"%d", value);
  return text;
}

CString DWORD642CString(const std::uint64_t& value) {
  CString text;
  text.Format(L"%I64d", static_cast<std::int64_t>(value));
  return text;
}

CString UInt2CString(std::uint64_t value) { return DWORD642CString(value); }

std::string Int2Utf8(int value) { return CString_to_utf8(Int2CString(value)); }

CString Bytes_to_CString(const std::string& bytes) {
  std::u16string units(bytes.size() / 2, u'\0');
  for (size_t i = 0; i < units.size(); ++i)
    units[i] = static_cast<char16_t>(static_cast<unsigned char>(bytes[2 * i]) |
                                     (static_cast<unsigned char>(bytes[2 * i + 1]) << 8));
  return CString(Utf16ToWide(units));
}

std::string CString_to_Bytes(const CString& text) {
  const std::u16string units = WideToUtf16(text.view());
  std::string bytes(units.size() * 2, '\0');
  for (size_t i = 0; i < units.size(); ++i) {
    bytes[2 * i] = static_cast<char>(units[i] & 0xFF);
    bytes[2 * i + 1] = static_cast<char>(units[i] >> 8);
  }
  return bytes;
}

int CString_to_MBCS(const CString& text, std::string& out) {
  out = WideToUtf8(text.view());
  return static_cast<int>(out.size());
}

int MBCS_to_CString(const char* text, CString& out) {
  out.Empty();
  if (!text) return 0;
  out = CString(Utf8ToWide(text));
  return out.GetLength();
}

int utf8_to_CString(const std::string& utf8, CString& out) {
  out.Empty();
  if (utf8.empty()) return 0;
  out = CString(Utf8ToWide(utf8.c_str()));  // stops at the first zero byte
  return out.GetLength();
}

std::string CString_to_utf8(const CString& text) { return WideToUtf8(text.view()); }

BOOL IsFileExist(const CString& path) { return PathExists(path) ? TRUE : FALSE; }

std::uint64_t GetFileSize(const CString& path) {
  FileStatus status;
  return GetPathStatus(path, status) ? status.size : 0;
}

void DeleteFileW(const wchar_t* path) {
  if (path) RemoveFile(CString(path));
}

CString GetOSVersion() {
  OSVersionInfo info;
  GetOSVersionInfo(info);
  CString text;
  text.Format(L"%d.%d.%d.%d", info.platformId, info.productType, info.majorVersion, info.minorVersion);
  return text;
}

bool IsVistaWindows() {
  OSVersionInfo info;
  return GetOSVersionInfo(info) && info.platformId == VER_PLATFORM_WIN32_NT && info.majorVersion == 6;
}

void GetDefaultLOGFONT(LOGFONT& font) {
  font = LOGFONT{};
  font.lfHeight = 12;
  font.lfWeight = FW_NORMAL;
  std::wcsncpy(font.lfFaceName, L"SimSun", LF_FACESIZE - 1);
}

float GetIEVersion() {
  RegistryKey key;
  CString version;
  if (!key.Open(RegistryRoot::LocalMachine, L"Software\\Microsoft\\Internet Explorer") ||
      !key.QueryString(L"Version", version))
    return 5.0f;
  return static_cast<float>(std::wcstod(version.Left(3).GetString(), nullptr));
}

bool IsUsingIEAsHttpBrowser() {
  if (IsVistaWindows())
    return UserChoiceIs(L"Software\\MicroSoft\\Windows\\Shell\\Associations\\UrlAssociations\\http\\UserChoice",
                        L"IE.HTTP");
  return LegacyCommandNamesBrowser(L"http\\shell\\open\\command", false);
}

bool IsUsingIEAsHttpsBrowser() {
  if (IsVistaWindows())
    return UserChoiceIs(L"Software\\MicroSoft\\Windows\\Shell\\Associations\\UrlAssociations\\https\\UserChoice",
                        L"IE.HTTPS");
  return LegacyCommandNamesBrowser(L"https\\shell\\open\\command", true);
}

void GetAppPath(CString& out) {
  const CString exe = GetExecutablePath();
  const int cut = exe.ReverseFind(L'\\');
  out = cut >= 0 ? exe.Left(cut) : exe;
}

BOOL GetAppDataPath(CString& out) {
  CString folder;
  if (!GetUserDataFolder(folder)) {
    GetAppPath(out);
    return TRUE;
  }
  out.Format(L"%s\\Orvane\\Karvel", folder);
  return TRUE;
}

}  // namespace KarvelUI
