#pragma once

// AnimationBoard: one timeline that moves a run of numeric fields from their
// `from` to their `to` values over a duration. It does not run by itself:
// Begin hands it to the animation controller of a form, whose timer calls
// NextFrame about every 20 ms until the board stops.
//
// Ownership: a controllable board belongs to its creator (usually a member
// of a control) and is only referenced by the controller. Any other board
// is handed over by Begin; the controller calls its Release() once it leaves
// the list, so such a board is made with new and never touched after Stop.
//
// Restarting a running animation from where it stands:
//   board.Stop(form);                       // no-op when already stopped
//   board.SetTarget(&offset, 1, TARGET_DOUBLE);
//   board.SetFormula(FORMULA_LINEAR);
//   board.SetRange(AnimationRange(offset, target, 1.0), 0);
//   board.SetDuration(CUITimeSpan(300));
//   board.Begin(form, 1);

#include <atomic>
#include <vector>

#include <karvelui/AnimationValues.h>
#include <karvelui/Export.h>
#include <karvelui/FastDelegate.h>
#include <karvelui/UITime.h>

namespace KarvelUI {

class CUIForm;
class AnimationController;

enum FORMULA_TYPE : int {
  FORMULA_LINEAR = 0,
  FORMULA_POW = 1,
};

enum ANIMATION_STATE : int {
  ANIMATION_IDLE = 0,     // constructed, never begun
  ANIMATION_RUNNING = 1,  // set by Begin
  ANIMATION_PAUSED = 2,   // kept for the interface; nothing pauses a board
  ANIMATION_STOPPED = 3,  // by Stop, or when the duration has elapsed
};

// (old values, new values, count); both arrays live only during the call.
using AnimationValueChangedCallback = FastDelegate3<double*, double*, unsigned int>;
using AnimationCompletedCallback = FastDelegate0<>;

class KARVELUI_API AnimationBoard {
 public:
  AnimationBoard() = default;
  // Leaves the controller it is still listed in, so that it is never ticked
  // after its owner destroyed it.
  virtual ~AnimationBoard();
  // Each board is listed at most once; a copy would be a second identity.
  AnimationBoard(const AnimationBoard&) = delete;
  AnimationBoard& operator=(const AnimationBoard&) = delete;

  // Destroys a board that was handed over (called by the controller).
  virtual void Release();

  // Advances every target to the current time; the last frame stops the
  // board and calls `completed` before `valueChanged`. The form is not used
  // here; subclasses may.
  virtual void NextFrame(CUIForm* form);

  // Replaces all targets with count fields of one type laid out one after
  // the other from first, and every range with (0, 0, 1): set ranges after.
  void SetTarget(void* first, unsigned count, TARGET_TYPE type);
  void SetFormula(FORMULA_TYPE formula) { m_formula = formula; }
  // An index beyond the targets is ignored.
  void SetRange(const AnimationRange& range, unsigned index);
  void SetDuration(const CUITimeSpan& duration) { m_duration = duration; }
  void SetCallbackValueChanged(AnimationValueChangedCallback callback) { m_valueChanged = callback; }
  void SetCallbackCompleted(AnimationCompletedCallback callback) { m_completed = callback; }

  int GetIsControllable() const { return m_bIsControllable; }
  void SetIsControllable(int controllable) { m_bIsControllable = controllable; }
  ANIMATION_STATE GetState() const { return m_state.load(); }

  unsigned GetTargetCount() const { return static_cast<unsigned>(m_targets.size()); }
  const AnimationTarget* GetTarget(unsigned index) const;
  const AnimationRange* GetRange(unsigned index) const;
  FORMULA_TYPE GetFormula() const { return m_formula; }
  CUITimeSpan GetDuration() const { return m_duration; }

  // Starts (or restarts) the board from now on the controller of form;
  // startTimer arms the controller's timer when it is idle.
  void Begin(CUIForm* form, int startTimer);
  // Stops a board that is not stopped yet and takes it off the form's
  // controller, which releases it unless it is controllable.
  void Stop(CUIForm* form);
  // Part of the interface; a board cannot be paused.
  void Pause() {}
  void Resume() {}

 protected:
  virtual double CalculateAsLinear(const double& from, const double& to, CUITimeSpan elapsed);
  virtual double CalculateAsPow(const double& from, const double& to, const double& exponent, CUITimeSpan elapsed);

 private:
  friend class AnimationController;

  // Frame value of target i, or false when the formula computes none.
  bool ComputeValue(unsigned i, const CUITimeSpan& elapsed, bool finished, double& value);

  std::vector<AnimationTarget> m_targets;
  FORMULA_TYPE m_formula = FORMULA_LINEAR;
  std::vector<AnimationRange> m_ranges;
  CUITimeSpan m_duration;
  CUITime m_beginTime;
  // Read from any thread (the thumbnail loader checks boards while the
  // window's thread ticks them).
  std::atomic<ANIMATION_STATE> m_state{ANIMATION_IDLE};
  int m_bIsControllable = 0;
  AnimationValueChangedCallback m_valueChanged;
  AnimationCompletedCallback m_completed;
  // The controller listing the board; kept by the controller under its lock.
  std::atomic<AnimationController*> m_pController{nullptr};
};

}  // namespace KarvelUI
