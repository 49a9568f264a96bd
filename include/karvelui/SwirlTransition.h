#pragma once

// CSwirlTransition: the banded swirl played over a form as a transition.
// The picture the form shows winds up (frequency and twist rising) and
// unwinds again, driven by an animation board on the form's controller;
// meanwhile the form's paints draw the effect instead of the tree, and
// afterwards the form paints itself as before.
//
//   m_swirl.Start(this);                 // in a form subclass holding the member
//
// The object must not outlive the form it plays on (a member of the form
// is the usual home). Everything runs on the form's thread.

#include <karvelui/AnimationBoard.h>
#include <karvelui/BandedSwirlEffect.h>
#include <karvelui/Export.h>
#include <karvelui/KarvelEffect.h>

namespace KarvelUI {

class CUIForm;
class DXCore;

class KARVELUI_API CSwirlTransition {
 public:
  static constexpr UINT kDefaultDurationMs = 1200;  // winding up and unwinding together
  // The turn at the height of the transition, and the ring frequency it
  // rises to from its start.
  static constexpr float kPeakTwist = 3.0f;
  static constexpr float kStartFrequency = 10.0f;
  static constexpr float kPeakFrequency = BandedSwirlEffect::kDefaultFrequency;

  CSwirlTransition();
  ~CSwirlTransition();
  CSwirlTransition(const CSwirlTransition&) = delete;
  CSwirlTransition& operator=(const CSwirlTransition&) = delete;

  // Swirls the form's current frame, or `picture` stretched over the
  // window, over `durationMs`. A transition still playing ends first.
  // FALSE when the effect cannot be made (no effect file, no render
  // device): the form then simply goes on painting itself.
  BOOL Start(CUIForm* form, const CString& picture = CString(), UINT durationMs = kDefaultDurationMs);
  // Ends the transition at once; the form paints itself again.
  void Stop();
  BOOL IsPlaying() const { return m_pForm != nullptr; }

 private:
  struct Swirl {
    float frequency;  // the board moves both fields, which lie side by side
    float twist;
  };

  void BeginPhase(bool windingUp);
  void OnPhaseCompleted();
  void Paint(DXCore* device);

  CUIForm* m_pForm = nullptr;
  BandedSwirlEffect m_swirl;
  CEffectsManager m_effects;  // after the effect: its destructor releases the effect
  AnimationBoard m_board;
  Swirl m_values{};
  UINT m_nPhaseMs = 0;
  bool m_bWindingUp = false;
};

}  // namespace KarvelUI
