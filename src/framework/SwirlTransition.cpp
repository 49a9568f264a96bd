#include <karvelui/SwirlTransition.h>

#include <karvelui/UIForm.h>

namespace KarvelUI {

CSwirlTransition::CSwirlTransition() {
  // The board is this object's own; the controller only lists it.
  m_board.SetIsControllable(1);
  m_board.SetTarget(&m_values.frequency, 2, TARGET_FLOAT);
  m_board.SetFormula(FORMULA_LINEAR);
  m_board.SetCallbackCompleted(MakeDelegate(this, &CSwirlTransition::OnPhaseCompleted));
}

CSwirlTransition::~CSwirlTransition() { Stop(); }

BOOL CSwirlTransition::Start(CUIForm* form, const CString& picture, UINT durationMs) {
  Stop();
  if (!form || !form->GetRenderDevice()) return FALSE;
  m_swirl.SetInputPicture(picture);
  if (m_swirl.Init(&m_effects, form->GetRenderDevice()) != 0) {
    m_effects.ReleaseAll();
    return FALSE;
  }
  m_pForm = form;
  m_nPhaseMs = durationMs / 2;
  m_values = {kStartFrequency, 0.0f};
  form->SetPaintOverride(MakeDelegate(this, &CSwirlTransition::Paint));
  BeginPhase(true);
  return TRUE;
}

void CSwirlTransition::Stop() {
  if (!m_pForm) return;
  CUIForm* form = m_pForm;
  m_pForm = nullptr;
  m_board.Stop(form);
  form->SetPaintOverride(UIPaintHandler());
  m_effects.ReleaseAll();
  form->Invalidate(FALSE);
}

void CSwirlTransition::BeginPhase(bool windingUp) {
  m_bWindingUp = windingUp;
  const AnimationRange frequency(kStartFrequency, kPeakFrequency, 1.0);
  const AnimationRange twist(0.0, kPeakTwist, 1.0);
  m_board.SetRange(windingUp ? frequency : AnimationRange(frequency.to, frequency.from, 1.0), 0);
  m_board.SetRange(windingUp ? twist : AnimationRange(twist.to, twist.from, 1.0), 1);
  m_board.SetDuration(CUITimeSpan(static_cast<std::int64_t>(m_nPhaseMs)));
  m_board.Begin(m_pForm, 1);
}

void CSwirlTransition::OnPhaseCompleted() {
  // Runs inside the controller's tick, which then posts the frame's paint.
  if (m_bWindingUp) {
    BeginPhase(false);
  } else {
    Stop();
  }
}

void CSwirlTransition::Paint(DXCore* /*device*/) {
  m_swirl.SetSwirl(m_values.frequency, m_values.twist);
  m_swirl.ApplyEffect(CString());
}

}  // namespace KarvelUI
