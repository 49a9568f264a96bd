#pragma once

// Internal: SDL key codes to the virtual-key codes and scan codes that key
// messages carry.

#include <vector>

#include <karvelui/WindowTypes.h>

namespace KarvelUI::detail {

struct KeyInfo {
  int vk = 0;            // virtual-key code; 0 for keys the library does not know
  BYTE scan = 0;         // the keyboard's scan code (set 1), bits 16-23 of lParam
  bool extended = false;  // bit 24 of lParam
};

// sdlKeycode decides letters and digits, so that they follow the keyboard layout.
KeyInfo KeyFromSdl(int sdlScancode, int sdlKeycode);
// The side-specific code of a modifier message (VK_LSHIFT for a left Shift...);
// other keys keep vk.
int SidedKey(int vk, BYTE scan, bool extended);
// SDL scan codes that produce vk (for the state of the keyboard now).
std::vector<int> SdlScancodesFor(int vk);

}  // namespace KarvelUI::detail
