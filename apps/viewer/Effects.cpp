// The viewer's full-window effects, by the names they register under.

#include <karvelui/BandedSwirlEffect.h>
#include <karvelui/KarvelEffect.h>
#include <karvelui/UIForm.h>

using namespace KarvelUI;

namespace KarvelView {

// Draws one frame of the effect `name` over what the form shows now and
// presents it; false when no effect has that name or it cannot be made.
bool ApplyNamedEffect(CUIForm& form, const CString& name) {
  BandedSwirlEffect swirl;
  CEffectsManager effects;  // after the effect, which it releases when it goes
  const bool ready = swirl.Init(&effects, form.GetRenderDevice()) == 0;
  IKarvelEffect* effect = effects.FindEffect(name);
  if (!ready || !effect) return false;
  effect->ApplyEffect(CString());
  return true;
}

}  // namespace KarvelView
