#include <karvelui/Clipboard.h>

#include <SDL.h>

#include <cctype>
#include <cstring>
#include <map>
#include <mutex>
#include <string>

#include "platform/Paths.h"
#include "platform/window/NativeWindow.h"

namespace KarvelUI {
namespace {

struct ClipboardStore {
  bool open = false;
  std::map<UINT, std::vector<BYTE>> formats;
  std::string published;  // the text we last gave the desktop
  std::vector<CString> registered;
};

ClipboardStore& Store() {
  static ClipboardStore store;
  return store;
}

bool IsTextFormat(UINT format) { return format == CF_TEXT || format == CF_UNICODETEXT; }

std::u16string Utf16FromBytes(const std::vector<BYTE>& data) {
  std::u16string text;
  for (size_t i = 0; i + 1 < data.size(); i += 2) {
    const char16_t unit = static_cast<char16_t>(data[i] | (data[i + 1] << 8));
    if (unit == 0) break;
    text.push_back(unit);
  }
  return text;
}

std::vector<BYTE> BytesFromUtf16(const std::u16string& text) {
  std::vector<BYTE> data;
  for (char16_t unit : text) {
    data.push_back(static_cast<BYTE>(unit & 0xFF));
    data.push_back(static_cast<BYTE>(unit >> 8));
  }
  data.push_back(0);
  data.push_back(0);
  return data;
}

std::string DesktopText() {
  char* text = SDL_GetClipboardText();
  std::string result = text ? text : "";
  SDL_free(text);
  return result;
}

// When another program has put something on the clipboard since, what we
// hold is stale.
void DropStaleFormats(ClipboardStore& store) {
  if (!store.formats.empty() && DesktopText() != store.published) store.formats.clear();
}

void Publish(ClipboardStore& store, const std::string& text) {
  store.published = text;
  SDL_SetClipboardText(text.c_str());
}

std::string PercentEncode(const std::string& path) {
  static const char* hex = "0123456789ABCDEF";
  std::string out;
  for (unsigned char c : path) {
    if (std::isalnum(c) || std::strchr("/-._~", c)) {
      out += static_cast<char>(c);
    } else {
      out += '%';
      out += hex[c >> 4];
      out += hex[c & 15];
    }
  }
  return out;
}

// The paths of a file-drop block (20-byte header, then terminated UTF-16
// paths, then one more terminator) as text/uri-list lines.
std::string UriListFromDrop(const std::vector<BYTE>& block) {
  if (block.size() < 20) return {};
  DWORD offset = 0;
  std::memcpy(&offset, block.data(), sizeof offset);
  std::string list;
  std::u16string path;
  for (size_t i = offset; i + 1 < block.size(); i += 2) {
    const char16_t unit = static_cast<char16_t>(block[i] | (block[i + 1] << 8));
    if (unit != 0) {
      path.push_back(unit);
      continue;
    }
    if (path.empty()) break;
    list += "file://" + PercentEncode(ToNativePath(CString(Utf16ToWide(path)))) + "\r\n";
    path.clear();
  }
  return list;
}

}  // namespace

BOOL OpenClipboard(HWND) {
  ClipboardStore& store = Store();
  if (!detail::EnsureVideo() || store.open) return FALSE;
  store.open = true;
  return TRUE;
}

BOOL CloseClipboard() {
  ClipboardStore& store = Store();
  if (!detail::IsVideoThread() || !store.open) return FALSE;
  store.open = false;
  return TRUE;
}

BOOL EmptyClipboard() {
  ClipboardStore& store = Store();
  if (!detail::IsVideoThread() || !store.open) return FALSE;
  store.formats.clear();
  return TRUE;
}

BOOL SetClipboardData(UINT format, std::vector<BYTE> data) {
  ClipboardStore& store = Store();
  if (!detail::IsVideoThread() || !store.open) return FALSE;
  if (IsTextFormat(format)) {
    Publish(store, WideToUtf8(Utf16ToWide(Utf16FromBytes(data))));
  } else if (format == CF_HDROP && !store.formats.count(CF_TEXT) && !store.formats.count(CF_UNICODETEXT)) {
    Publish(store, UriListFromDrop(data));
  }
  store.formats[format] = std::move(data);
  return TRUE;
}

BOOL GetClipboardData(UINT format, std::vector<BYTE>& data) {
  ClipboardStore& store = Store();
  if (!detail::EnsureVideo()) return FALSE;
  DropStaleFormats(store);
  auto it = store.formats.find(format);
  if (it != store.formats.end()) {
    data = it->second;
    return TRUE;
  }
  if (!IsTextFormat(format) || !SDL_HasClipboardText()) return FALSE;
  data = BytesFromUtf16(WideToUtf16(Utf8ToWide(DesktopText())));
  return TRUE;
}

BOOL IsClipboardFormatAvailable(UINT format) {
  if (!detail::EnsureVideo()) return FALSE;
  ClipboardStore& store = Store();
  DropStaleFormats(store);
  if (store.formats.count(format)) return TRUE;
  return IsTextFormat(format) && SDL_HasClipboardText() ? TRUE : FALSE;
}

UINT RegisterClipboardFormatW(const wchar_t* name) {
  if (!name || !*name) return 0;
  static std::mutex mutex;
  std::lock_guard<std::mutex> lock(mutex);
  ClipboardStore& store = Store();
  for (size_t i = 0; i < store.registered.size(); ++i)
    if (store.registered[i].CompareNoCase(name) == 0) return static_cast<UINT>(0xC000 + i);
  store.registered.emplace_back(name);
  return static_cast<UINT>(0xC000 + store.registered.size() - 1);
}

}  // namespace KarvelUI
