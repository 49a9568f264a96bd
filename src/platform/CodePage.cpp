#include "platform/CodePage.h"

#include <karvelui/TextCodec.h>

namespace KarvelUI {
namespace {

UINT Resolve(UINT codePage) { return codePage == CP_ACP ? GetACP() : codePage; }

wchar_t SingleByteLimit(UINT codePage) { return codePage == CP_LATIN1 ? 0xFF : 0x7F; }

}  // namespace

UINT GetACP() { return CP_UTF8; }

bool IsKnownCodePage(UINT codePage) {
  const UINT page = Resolve(codePage);
  return page == CP_UTF8 || page == CP_LATIN1 || page == CP_ASCII;
}

std::optional<std::wstring> MultiByteToWide(UINT codePage, std::string_view bytes) {
  const UINT page = Resolve(codePage);
  if (!IsKnownCodePage(page)) return std::nullopt;
  if (page == CP_UTF8) return Utf8ToWide(bytes);
  const wchar_t limit = SingleByteLimit(page);
  std::wstring wide;
  wide.reserve(bytes.size());
  for (const char c : bytes) {
    const wchar_t w = static_cast<unsigned char>(c);
    wide += w <= limit ? w : L'\xFFFD';
  }
  return wide;
}

std::optional<std::string> WideToMultiByte(UINT codePage, std::wstring_view text, char replacement) {
  const UINT page = Resolve(codePage);
  if (!IsKnownCodePage(page)) return std::nullopt;
  if (page == CP_UTF8) return WideToUtf8(text);
  const wchar_t limit = SingleByteLimit(page);
  std::string narrow;
  narrow.reserve(text.size());
  for (const wchar_t w : text) narrow += (w >= 0 && w <= limit) ? static_cast<char>(w) : replacement;
  return narrow;
}

}  // namespace KarvelUI
