#include "platform/MessageBoxHook.h"

#include <SDL.h>

#include <cstdio>
#include <cstring>
#include <mutex>

#include <karvelui/WinConstants.h>

namespace KarvelUI {
namespace {

std::mutex& HookMutex() {
  static std::mutex m;
  return m;
}

MessageBoxHook& Hook() {
  static MessageBoxHook hook;
  return hook;
}

Uint32 SdlFlags(UINT type) {
  switch (type & 0xF0) {
    case MB_ICONERROR: return SDL_MESSAGEBOX_ERROR;
    case MB_ICONWARNING: return SDL_MESSAGEBOX_WARNING;
    default: return SDL_MESSAGEBOX_INFORMATION;
  }
}

// A headless run (offscreen or dummy driver) has nobody to click the box:
// the message goes to standard error instead.
bool HasInteractiveDisplay() {
  const char* driver = SDL_GetCurrentVideoDriver();
  if (!driver) driver = SDL_getenv("SDL_VIDEODRIVER");
  if (driver && (std::strcmp(driver, "offscreen") == 0 || std::strcmp(driver, "dummy") == 0))
    return false;
  return SDL_getenv("DISPLAY") != nullptr || SDL_getenv("WAYLAND_DISPLAY") != nullptr;
}

}  // namespace

int MessageBoxW(HWND owner, const wchar_t* text, const wchar_t* caption, UINT type) {
  MessageBoxHook hook;
  {
    std::lock_guard<std::mutex> lock(HookMutex());
    hook = Hook();
  }
  const CString body(text);
  const CString title(caption);
  if (hook) return hook(owner, body, title, type);

  if (HasInteractiveDisplay() &&
      SDL_ShowSimpleMessageBox(SdlFlags(type), title.ToUtf8().c_str(), body.ToUtf8().c_str(), nullptr) == 0)
    return IDOK;
  std::fprintf(stderr, "[%s] %s\n", title.ToUtf8().c_str(), body.ToUtf8().c_str());
  return IDOK;
}

MessageBoxHook SetMessageBoxHook(MessageBoxHook hook) {
  std::lock_guard<std::mutex> lock(HookMutex());
  MessageBoxHook previous = std::move(Hook());
  Hook() = std::move(hook);
  return previous;
}

}  // namespace KarvelUI
