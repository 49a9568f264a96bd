#pragma once

// Internal: turns SDL's events into window messages for the user-interface
// thread's queue, and answers SDL's hit-test questions with WM_NCHITTEST.

#include <SDL.h>

#include "platform/window/ThreadQueue.h"

namespace KarvelUI::detail {

// The desktop event source of the user-interface thread (made by EnsureVideo).
IEventSource& DesktopEvents();

// Desktop area for a hit-test code (caption: drag; the eight grips: resize).
// A maximised window is not resized through its grips.
SDL_HitTestResult HitTestResultFor(LRESULT hitTest, bool maximized);
SDL_HitTestResult SDLCALL HitTestCallback(SDL_Window* window, const SDL_Point* area, void* data);

// How long a lost desktop focus waits for another of our windows to take it
// before the active window is told it lost activation to no window of ours.
inline constexpr std::uint64_t kDeactivationGraceMs = 50;

}  // namespace KarvelUI::detail
