#include <karvelui/AnimationBoard.h>

#include <cmath>

#include <karvelui/AnimationController.h>
#include <karvelui/BackUpdateTask.h>

namespace KarvelUI {

AnimationBoard::~AnimationBoard() {
  if (AnimationController* controller = m_pController.load()) {
    UILock lock(&controller->m_lock);
    controller->Unlink(this);
  }
}

void AnimationBoard::Release() { delete this; }

void AnimationBoard::SetTarget(void* first, unsigned count, TARGET_TYPE type) {
  const unsigned width = TargetFieldWidth(type);
  auto* field = static_cast<unsigned char*>(first);
  m_targets.clear();
  m_targets.reserve(count);
  for (unsigned i = 0; i < count; ++i) m_targets.emplace_back(field + static_cast<std::size_t>(i) * width, type);
  m_ranges.assign(count, AnimationRange(0.0, 0.0, 1.0));
}

void AnimationBoard::SetRange(const AnimationRange& range, unsigned index) {
  if (index < m_ranges.size()) m_ranges[index] = range;
}

const AnimationTarget* AnimationBoard::GetTarget(unsigned index) const {
  return index < m_targets.size() ? &m_targets[index] : nullptr;
}

const AnimationRange* AnimationBoard::GetRange(unsigned index) const {
  return index < m_ranges.size() ? &m_ranges[index] : nullptr;
}

void AnimationBoard::Begin(CUIForm* form, int startTimer) {
  AnimationController* controller = AnimationController::FromForm(form);
  // Under the controller's lock, so a restart never meets a tick halfway.
  UILock lock(controller ? &controller->m_lock : nullptr);
  m_beginTime.Now();
  m_state = ANIMATION_RUNNING;
  if (controller) controller->Begin(this, startTimer);
}

void AnimationBoard::Stop(CUIForm* form) {
  AnimationController* controller = AnimationController::FromForm(form);
  UILock lock(controller ? &controller->m_lock : nullptr);
  if (m_state == ANIMATION_STOPPED) return;
  m_state = ANIMATION_STOPPED;
  // May release this board: nothing below touches it.
  if (controller) controller->Stop(this);
}

bool AnimationBoard::ComputeValue(unsigned i, const CUITimeSpan& elapsed, bool finished, double& value) {
  const AnimationRange& range = m_ranges[i];
  if (finished) {
    value = range.to;
    return true;
  }
  switch (m_formula) {
    case FORMULA_LINEAR:
      value = CalculateAsLinear(range.from, range.to, elapsed);
      return true;
    case FORMULA_POW:
      value = CalculateAsPow(range.from, range.to, range.exponent, elapsed);
      return true;
  }
  return false;
}

void AnimationBoard::NextFrame(CUIForm* /*form*/) {
  const unsigned count = GetTargetCount();
  // Old values first, new values after them.
  std::vector<double> values(2 * static_cast<std::size_t>(count));
  double* oldValues = values.data();
  double* newValues = values.data() + count;

  CUITime now;
  now.Now();
  const CUITimeSpan elapsed = now - m_beginTime;
  const bool finished = elapsed >= m_duration;

  for (unsigned i = 0; i < count; ++i) {
    AnimationTarget& target = m_targets[i];
    oldValues[i] = target.GetValue();
    double value = 0.0;
    if (ComputeValue(i, elapsed, finished, value)) target.SetValue(value);
    // What the field really holds after conversion.
    newValues[i] = target.GetValue();
  }

  if (finished) {
    m_state = ANIMATION_STOPPED;
    if (m_completed) m_completed();
  }
  // After `completed` on the last frame, so a listener sees the end state first.
  if (m_valueChanged) m_valueChanged(oldValues, newValues, count);
}

double AnimationBoard::CalculateAsLinear(const double& from, const double& to, CUITimeSpan elapsed) {
  // Raw ticks, finer than the millisecond test that ends the animation.
  const double fraction = static_cast<double>(elapsed.GetTicks()) / static_cast<double>(m_duration.GetTicks());
  return fraction * (to - from) + from;
}

double AnimationBoard::CalculateAsPow(const double& from, const double& to, const double& exponent,
                                      CUITimeSpan elapsed) {
  const double d = m_duration.GetTotalMillisecond();
  const double e = elapsed.GetTotalMillisecond();
  return (to - from) / std::pow(d, exponent) * std::pow(e, exponent) + from;
}

}  // namespace KarvelUI
