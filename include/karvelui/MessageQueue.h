#pragma once

// The thread message queue: posting and sending, retrieval with the Windows
// order (sent, posted and input, quit, paint, timer), dispatch, window timers
// and the time source they run on.
//
// Every thread has its own queue, made on first use. A window belongs to the
// queue of the thread that created it (the user-interface thread, which also
// reads the desktop's events). PostMessageW and SendMessageW may be called
// from any thread; everything else works on the calling thread's queue.

#include <cstdint>

#include <karvelui/Export.h>
#include <karvelui/WindowTypes.h>

namespace KarvelUI {

// Time source for message times, timers and mouse hover, in milliseconds.
// Tests install a clock they advance by hand instead of sleeping.
class KARVELUI_API IMessageClock {
 public:
  virtual ~IMessageClock() = default;
  virtual std::uint64_t NowMs() const = 0;
};

// Installs a clock (null restores the steady system clock) and returns the
// previous one (null for the system clock). The caller keeps it alive while installed.
KARVELUI_API IMessageClock* SetMessageClock(IMessageClock* clock);
KARVELUI_API std::uint64_t MessageClockNow();

// Queues a message for hwnd's thread; a null hwnd posts to the calling
// thread's queue. FALSE when hwnd is not a window.
KARVELUI_API BOOL PostMessageW(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
// Calls hwnd's window procedure and returns its result. From another thread
// the call waits until the owner thread has run it (that thread must be
// retrieving messages). 0 when hwnd is not a window.
KARVELUI_API LRESULT SendMessageW(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
KARVELUI_API void PostQuitMessage(int exitCode);

// Waits for the next message. Returns FALSE for WM_QUIT (exit code in wParam).
KARVELUI_API BOOL GetMessageW(MSG* msg, HWND hwnd, UINT filterMin, UINT filterMax);
// Takes the next message without waiting; PM_NOREMOVE leaves it queued.
KARVELUI_API BOOL PeekMessageW(MSG* msg, HWND hwnd, UINT filterMin, UINT filterMax, UINT removeFlags);
// Blocks until a message may be available or timeoutMs pass (0 = no limit).
KARVELUI_API void WaitMessage(DWORD timeoutMs = 0);
KARVELUI_API LRESULT DispatchMessageW(const MSG* msg);
// Offers msg to PreTranslateMessage of its window and then of each parent;
// TRUE when one of them consumed it.
KARVELUI_API BOOL WalkPreTranslateTree(MSG* msg);
// Retrieve, pre-translate and dispatch until WM_QUIT; returns its exit code.
KARVELUI_API int RunMessageLoop();
// Time (clock milliseconds, truncated) of the last message retrieved.
KARVELUI_API DWORD GetMessageTime();

// Window timers. WM_TIMER is generated when nothing else is pending, once per
// elapse. Re-arming an id replaces it. With a proc, DispatchMessageW calls the
// proc instead of the window. A null hwnd makes a thread timer whose id is
// chosen here and returned. Elapse is clamped to USER_TIMER_MINIMUM..MAXIMUM.
KARVELUI_API UINT_PTR SetTimer(HWND hwnd, UINT_PTR id, UINT elapse, TIMERPROC proc);
KARVELUI_API BOOL KillTimer(HWND hwnd, UINT_PTR id);

}  // namespace KarvelUI
