#include "platform/window/KeyMap.h"

#include <SDL.h>

namespace KarvelUI::detail {
namespace {

constexpr int VK_SNAPSHOT = 0x2C;
constexpr int VK_LWIN = 0x5B;
constexpr int VK_RWIN = 0x5C;
constexpr int VK_APPS = 0x5D;
constexpr int VK_NUMPAD0 = 0x60;
constexpr int VK_MULTIPLY = 0x6A;
constexpr int VK_DECIMAL = 0x6E;
constexpr int VK_DIVIDE = 0x6F;
constexpr int VK_NUMLOCK = 0x90;
constexpr int VK_SCROLL = 0x91;
constexpr int VK_OEM_1 = 0xBA;
constexpr int VK_OEM_COMMA = 0xBC;
constexpr int VK_OEM_PERIOD = 0xBE;
constexpr int VK_OEM_2 = 0xBF;
constexpr int VK_OEM_3 = 0xC0;
constexpr int VK_OEM_4 = 0xDB;
constexpr int VK_OEM_5 = 0xDC;
constexpr int VK_OEM_6 = 0xDD;
constexpr int VK_OEM_7 = 0xDE;

struct Row {
  SDL_Scancode sdl;
  int vk;
  BYTE scan;
  bool extended;
};

// Keys that are not letters or digits.
constexpr Row kKeys[] = {
    {SDL_SCANCODE_ESCAPE, VK_ESCAPE, 0x01, false},     {SDL_SCANCODE_MINUS, VK_OEM_MINUS, 0x0C, false},
    {SDL_SCANCODE_EQUALS, VK_OEM_PLUS, 0x0D, false},   {SDL_SCANCODE_BACKSPACE, VK_BACK, 0x0E, false},
    {SDL_SCANCODE_TAB, VK_TAB, 0x0F, false},           {SDL_SCANCODE_LEFTBRACKET, VK_OEM_4, 0x1A, false},
    {SDL_SCANCODE_RIGHTBRACKET, VK_OEM_6, 0x1B, false}, {SDL_SCANCODE_RETURN, VK_RETURN, 0x1C, false},
    {SDL_SCANCODE_LCTRL, VK_CONTROL, 0x1D, false},     {SDL_SCANCODE_SEMICOLON, VK_OEM_1, 0x27, false},
    {SDL_SCANCODE_APOSTROPHE, VK_OEM_7, 0x28, false},  {SDL_SCANCODE_GRAVE, VK_OEM_3, 0x29, false},
    {SDL_SCANCODE_LSHIFT, VK_SHIFT, 0x2A, false},      {SDL_SCANCODE_BACKSLASH, VK_OEM_5, 0x2B, false},
    {SDL_SCANCODE_COMMA, VK_OEM_COMMA, 0x33, false},   {SDL_SCANCODE_PERIOD, VK_OEM_PERIOD, 0x34, false},
    {SDL_SCANCODE_SLASH, VK_OEM_2, 0x35, false},       {SDL_SCANCODE_RSHIFT, VK_SHIFT, 0x36, false},
    {SDL_SCANCODE_KP_MULTIPLY, VK_MULTIPLY, 0x37, false}, {SDL_SCANCODE_LALT, VK_MENU, 0x38, false},
    {SDL_SCANCODE_SPACE, VK_SPACE, 0x39, false},       {SDL_SCANCODE_CAPSLOCK, VK_CAPITAL, 0x3A, false},
    {SDL_SCANCODE_F1, VK_F1, 0x3B, false},             {SDL_SCANCODE_F2, VK_F2, 0x3C, false},
    {SDL_SCANCODE_F3, VK_F3, 0x3D, false},             {SDL_SCANCODE_F4, VK_F4, 0x3E, false},
    {SDL_SCANCODE_F5, VK_F5, 0x3F, false},             {SDL_SCANCODE_F6, VK_F6, 0x40, false},
    {SDL_SCANCODE_F7, VK_F7, 0x41, false},             {SDL_SCANCODE_F8, VK_F8, 0x42, false},
    {SDL_SCANCODE_F9, VK_F9, 0x43, false},             {SDL_SCANCODE_F10, VK_F10, 0x44, false},
    {SDL_SCANCODE_NUMLOCKCLEAR, VK_NUMLOCK, 0x45, true}, {SDL_SCANCODE_SCROLLLOCK, VK_SCROLL, 0x46, false},
    {SDL_SCANCODE_KP_7, VK_NUMPAD0 + 7, 0x47, false},  {SDL_SCANCODE_KP_8, VK_NUMPAD0 + 8, 0x48, false},
    {SDL_SCANCODE_KP_9, VK_NUMPAD0 + 9, 0x49, false},  {SDL_SCANCODE_KP_MINUS, VK_SUBTRACT, 0x4A, false},
    {SDL_SCANCODE_KP_4, VK_NUMPAD0 + 4, 0x4B, false},  {SDL_SCANCODE_KP_5, VK_NUMPAD0 + 5, 0x4C, false},
    {SDL_SCANCODE_KP_6, VK_NUMPAD0 + 6, 0x4D, false},  {SDL_SCANCODE_KP_PLUS, VK_ADD, 0x4E, false},
    {SDL_SCANCODE_KP_1, VK_NUMPAD0 + 1, 0x4F, false},  {SDL_SCANCODE_KP_2, VK_NUMPAD0 + 2, 0x50, false},
    {SDL_SCANCODE_KP_3, VK_NUMPAD0 + 3, 0x51, false},  {SDL_SCANCODE_KP_0, VK_NUMPAD0, 0x52, false},
    {SDL_SCANCODE_KP_PERIOD, VK_DECIMAL, 0x53, false}, {SDL_SCANCODE_F11, VK_F11, 0x57, false},
    {SDL_SCANCODE_F12, VK_F12, 0x58, false},           {SDL_SCANCODE_KP_ENTER, VK_RETURN, 0x1C, true},
    {SDL_SCANCODE_RCTRL, VK_CONTROL, 0x1D, true},      {SDL_SCANCODE_KP_DIVIDE, VK_DIVIDE, 0x35, true},
    {SDL_SCANCODE_PRINTSCREEN, VK_SNAPSHOT, 0x37, true}, {SDL_SCANCODE_RALT, VK_MENU, 0x38, true},
    {SDL_SCANCODE_PAUSE, VK_PAUSE, 0x45, false},       {SDL_SCANCODE_HOME, VK_HOME, 0x47, true},
    {SDL_SCANCODE_UP, VK_UP, 0x48, true},              {SDL_SCANCODE_PAGEUP, VK_PRIOR, 0x49, true},
    {SDL_SCANCODE_LEFT, VK_LEFT, 0x4B, true},          {SDL_SCANCODE_RIGHT, VK_RIGHT, 0x4D, true},
    {SDL_SCANCODE_END, VK_END, 0x4F, true},            {SDL_SCANCODE_DOWN, VK_DOWN, 0x50, true},
    {SDL_SCANCODE_PAGEDOWN, VK_NEXT, 0x51, true},      {SDL_SCANCODE_INSERT, VK_INSERT, 0x52, true},
    {SDL_SCANCODE_DELETE, VK_DELETE, 0x53, true},      {SDL_SCANCODE_LGUI, VK_LWIN, 0x5B, true},
    {SDL_SCANCODE_RGUI, VK_RWIN, 0x5C, true},          {SDL_SCANCODE_APPLICATION, VK_APPS, 0x5D, true},
};

// Scan codes of the letter keys by their position, top row first.
constexpr const char* kLetterRows[] = {"QWERTYUIOP", "ASDFGHJKL", "ZXCVBNM"};
constexpr BYTE kLetterRowStart[] = {0x10, 0x1E, 0x2C};

BYTE LetterScan(char letter) {
  for (int row = 0; row < 3; ++row)
    for (int i = 0; kLetterRows[row][i]; ++i)
      if (kLetterRows[row][i] == letter) return static_cast<BYTE>(kLetterRowStart[row] + i);
  return 0;
}

}  // namespace

KeyInfo KeyFromSdl(int sdlScancode, int sdlKeycode) {
  if (sdlKeycode >= 'a' && sdlKeycode <= 'z') {
    const char letter = static_cast<char>(sdlKeycode - 'a' + 'A');
    return {letter, LetterScan(letter), false};
  }
  if (sdlScancode >= SDL_SCANCODE_A && sdlScancode <= SDL_SCANCODE_Z) {
    const char letter = static_cast<char>('A' + (sdlScancode - SDL_SCANCODE_A));
    return {letter, LetterScan(letter), false};
  }
  if (sdlScancode >= SDL_SCANCODE_1 && sdlScancode <= SDL_SCANCODE_0) {
    const int index = sdlScancode - SDL_SCANCODE_1;  // 1..9 then 0
    return {index == 9 ? '0' : '1' + index, static_cast<BYTE>(0x02 + index), false};
  }
  for (const Row& row : kKeys)
    if (row.sdl == sdlScancode) return {row.vk, row.scan, row.extended};
  return {};
}

int SidedKey(int vk, BYTE scan, bool extended) {
  switch (vk) {
    case VK_SHIFT: return scan == 0x36 ? VK_RSHIFT : VK_LSHIFT;
    case VK_CONTROL: return extended ? VK_RCONTROL : VK_LCONTROL;
    case VK_MENU: return extended ? VK_RMENU : VK_LMENU;
    default: return vk;
  }
}

std::vector<int> SdlScancodesFor(int vk) {
  switch (vk) {
    case VK_LSHIFT: return {SDL_SCANCODE_LSHIFT};
    case VK_RSHIFT: return {SDL_SCANCODE_RSHIFT};
    case VK_LCONTROL: return {SDL_SCANCODE_LCTRL};
    case VK_RCONTROL: return {SDL_SCANCODE_RCTRL};
    case VK_LMENU: return {SDL_SCANCODE_LALT};
    case VK_RMENU: return {SDL_SCANCODE_RALT};
    default: break;
  }
  std::vector<int> codes;
  for (int code = SDL_SCANCODE_A; code < SDL_NUM_SCANCODES; ++code)
    if (KeyFromSdl(code, SDL_GetKeyFromScancode(static_cast<SDL_Scancode>(code))).vk == vk) codes.push_back(code);
  return codes;
}

}  // namespace KarvelUI::detail
