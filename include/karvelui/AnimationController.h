#pragma once

// AnimationController: the running boards of one form, driven by window
// timer ANIMATION_TIMER_ID (14401). A tick kills the timer, advances every
// running board, drops the stopped ones and posts a paint marked with that
// id; once the form has painted it calls AfterRefresh, which re-arms the
// timer for the rest of the 20 ms slot. Frames therefore never pile up
// faster than the form draws them.
//
//   idle (no timer) --Begin(board, 1)--> armed --WM_TIMER--> tick (paint posted)
//   tick --AfterRefresh, boards left--> armed;  --no boards left--> idle
//
// A form wires it up so:
//   constructor:                 m_pAnimationController = new AnimationController(this);
//   window created:              m_pAnimationController->SetWnd(m_hWnd);
//   WM_TIMER ANIMATION_TIMER_ID: m_pAnimationController->OnTimer(this);
//   painted, flag of that id:    m_pAnimationController->AfterRefresh();
//   destructor:                  m_pAnimationController->Release();
//
// Threads: OnTimer and AfterRefresh run on the window's thread; Begin and
// Stop may come from any thread (the thumbnail loader starts effects). A
// Begin that must arm the timer from another thread posts the first tick
// instead, since window timers belong to the window's thread. One
// recursive lock serialises the list and every tick, and is held while
// board callbacks run, so callbacks may begin and stop boards. A board that
// leaves the list during a tick is released when the tick ends, so a
// callback may stop the very board that is calling it.
//
// Time comes from the performance counter and timers from the window
// layer's message clock; tests drive both by hand.

#include <atomic>
#include <vector>

#include <karvelui/AnimationBoard.h>
#include <karvelui/Export.h>
#include <karvelui/Types.h>
#include <karvelui/UITime.h>
#include <karvelui/Sync.h>

namespace KarvelUI {

inline constexpr UINT ANIMATION_TIMER_ID = 14401;    // timer id and paint marker
inline constexpr UINT ANIMATION_FRAME_INTERVAL = 20;  // milliseconds per frame

class KARVELUI_API AnimationController {
 public:
  // form (may be null) is the form that owns the controller. The form is
  // never dereferenced here.
  explicit AnimationController(CUIForm* form = nullptr);
  AnimationController(const AnimationController&) = delete;
  AnimationController& operator=(const AnimationController&) = delete;

  // Boards are begun on a form, a type of the layer above; that layer tells
  // this one how to reach a form's controller.
  using FormResolver = AnimationController* (*)(CUIForm* form);
  static void SetFormResolver(FormResolver resolver);
  // The controller of form, or null for no form or before a resolver is set.
  static AnimationController* FromForm(CUIForm* form);

  virtual void Release();
  // The form's window got timer ANIMATION_TIMER_ID.
  virtual void OnTimer(CUIForm* form);
  // The form painted in answer to a paint marked ANIMATION_TIMER_ID.
  virtual void AfterRefresh();

  void SetWnd(HWND hwnd);
  HWND GetWnd() const;

  // Moves board to the end of the list (once); startTimer arms the timer
  // when it is idle. Reached through AnimationBoard::Begin.
  void Begin(AnimationBoard* board, int startTimer);
  // Takes board off the list and releases it unless it is controllable.
  // Reached through AnimationBoard::Stop.
  void Stop(AnimationBoard* board);

  unsigned GetBoardCount() const;
  // Non-zero while the timer is armed or a tick's paint is pending.
  int GetTimerRunning() const { return m_bTimerRunning.load(); }

 protected:
  // Releases the listed boards that are not controllable.
  virtual ~AnimationController();

 private:
  friend class AnimationBoard;

  bool Contains(const AnimationBoard* board) const;
  // Unlinks every occurrence; true when it was listed.
  bool Unlink(AnimationBoard* board);
  // Releases a board that is not controllable, after the tick when one runs.
  void ReleaseIfOwned(AnimationBoard* board);
  void ReleaseDeferred();
  // Arms the timer with elapse ms; false when there is no window to tick.
  bool ArmTimer(UINT elapse);
  void AdvanceBoards(CUIForm* form);

  HWND m_hWnd = nullptr;
  std::vector<AnimationBoard*> m_boards;
  std::atomic<int> m_bTimerRunning{0};
  CUITime m_lastTick;
  mutable CRITICAL_SECTION m_lock;

  CUIForm* m_pForm;
  int m_nTickDepth = 0;  // OnTimer calls in progress (a callback may pump messages)
  std::vector<AnimationBoard*> m_releaseAfterTick;
};

}  // namespace KarvelUI
