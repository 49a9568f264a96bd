#pragma once

// Windows driven the way the desktop drives them: a hand-driven clock behind
// both the message clock (window timers) and the performance counter
// (animation time), a window that records its messages, and SDL events
// pushed at windows.

#include <SDL.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <vector>

#include <karvelui/Input.h>
#include <karvelui/MessageQueue.h>
#include <karvelui/Wnd.h>
#include "platform/Clock.h"
#include "platform/window/NativeWindow.h"

namespace KarvelTest {

using namespace KarvelUI;

inline constexpr LONGLONG kTicksPerMs = kPerformanceFrequency / 1000;

class ManualClock : public IMessageClock {
 public:
  ManualClock() : m_previous(SetMessageClock(this)) { SetPerformanceCounterHook([this] { return m_ticks.load(); }); }
  ~ManualClock() override {
    SetPerformanceCounterHook(nullptr);
    SetMessageClock(m_previous);
  }
  std::uint64_t NowMs() const override { return static_cast<std::uint64_t>(m_ticks.load() / kTicksPerMs); }
  void Advance(std::int64_t ms) { m_ticks += ms * kTicksPerMs; }
  void AdvanceTicks(std::int64_t ticks) { m_ticks += ticks; }

 private:
  std::atomic<LONGLONG> m_ticks{100000 * kTicksPerMs};
  IMessageClock* m_previous;
};

struct Received {
  HWND hwnd;
  UINT message;
  WPARAM wParam;
  LPARAM lParam;
};

// Records every message its window procedure sees (only those listed in
// `only` when it is not empty).
class RecordingWnd : public CWnd {
 public:
  std::vector<Received> log;
  std::vector<UINT> only;

  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (only.empty() || std::find(only.begin(), only.end(), message) != only.end())
      log.push_back({m_hWnd, message, wParam, lParam});
    return CWnd::WindowProc(message, wParam, lParam);
  }
  std::vector<UINT> Messages() const {
    std::vector<UINT> result;
    for (const Received& r : log) result.push_back(r.message);
    return result;
  }
  std::vector<Received> Of(UINT message) const {
    std::vector<Received> result;
    for (const Received& r : log)
      if (r.message == message) result.push_back(r);
    return result;
  }
};

inline const wchar_t* TestClass() {
  static const wchar_t* name = L"KarvelTestWindow";
  WNDCLASSW cls;
  cls.style = CS_DBLCLKS;
  cls.lpszClassName = name;
  AfxRegisterClass(&cls);
  return name;
}

// A borderless top-level window (hidden unless the style says otherwise).
inline bool MakeWindow(CWnd& wnd, const CRect& rect, DWORD style = WS_POPUP, DWORD exStyle = 0,
                       CWnd* parent = nullptr) {
  return wnd.CreateEx(exStyle, TestClass(), L"test", style, rect, parent, 0) != FALSE;
}

// Retrieves and dispatches everything pending now; returns how many.
inline int PumpAll() {
  MSG msg;
  int count = 0;
  while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
    if (msg.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(msg.wParam));
      break;
    }
    if (!WalkPreTranslateTree(&msg)) DispatchMessageW(&msg);
    ++count;
  }
  return count;
}

inline Uint32 SdlId(HWND hwnd) { return SDL_GetWindowID(detail::SdlWindowOf(hwnd)); }

inline void PushMotion(HWND hwnd, int x, int y, Uint32 buttons = 0) {
  SDL_Event e{};
  e.type = SDL_MOUSEMOTION;
  e.motion = {SDL_MOUSEMOTION, 0, SdlId(hwnd), 0, buttons, x, y, 0, 0};
  SDL_PushEvent(&e);
}

inline void PushButton(HWND hwnd, int x, int y, bool down, Uint8 button = SDL_BUTTON_LEFT, Uint8 clicks = 1) {
  SDL_Event e{};
  e.type = down ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
  e.button.windowID = SdlId(hwnd);
  e.button.button = button;
  e.button.state = down ? SDL_PRESSED : SDL_RELEASED;
  e.button.clicks = clicks;
  e.button.x = x;
  e.button.y = y;
  SDL_PushEvent(&e);
}

inline void PushWheel(HWND hwnd, int x, int y, float notches, bool flipped = false) {
  SDL_Event e{};
  e.type = SDL_MOUSEWHEEL;
  e.wheel.windowID = SdlId(hwnd);
  e.wheel.y = static_cast<Sint32>(notches);
  e.wheel.preciseY = notches;
  e.wheel.direction = flipped ? SDL_MOUSEWHEEL_FLIPPED : SDL_MOUSEWHEEL_NORMAL;
  e.wheel.mouseX = x;
  e.wheel.mouseY = y;
  SDL_PushEvent(&e);
}

inline void PushKey(HWND hwnd, SDL_Scancode code, bool down, bool repeat = false) {
  SDL_Event e{};
  e.type = down ? SDL_KEYDOWN : SDL_KEYUP;
  e.key.windowID = SdlId(hwnd);
  e.key.state = down ? SDL_PRESSED : SDL_RELEASED;
  e.key.repeat = repeat ? 1 : 0;
  e.key.keysym.scancode = code;
  e.key.keysym.sym = SDL_GetKeyFromScancode(code);
  SDL_PushEvent(&e);
}

inline void PushWindowEvent(HWND hwnd, SDL_WindowEventID event, int data1 = 0, int data2 = 0) {
  SDL_Event e{};
  e.type = SDL_WINDOWEVENT;
  e.window.windowID = SdlId(hwnd);
  e.window.event = event;
  e.window.data1 = data1;
  e.window.data2 = data2;
  SDL_PushEvent(&e);
}

inline CPoint PointOf(LPARAM lParam) { return CPoint(LOWORD(lParam), HIWORD(lParam)); }
inline CRect WindowRectOf(const CWnd& wnd) {
  CRect rect;
  wnd.GetWindowRect(&rect);
  return rect;
}

}  // namespace KarvelTest
