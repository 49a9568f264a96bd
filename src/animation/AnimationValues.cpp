#include <karvelui/AnimationValues.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace KarvelUI {
namespace {

// Truncation toward zero. A value the integer cannot hold gives the
// integer's minimum, as the processor's own conversion does, instead of
// undefined behaviour; its low bits are then 0.
template <typename Int>
Int TruncateToward0(double value) {
  constexpr double kLimit = static_cast<double>(std::numeric_limits<Int>::max()) + 1.0;
  if (std::isnan(value) || value >= kLimit || value < -kLimit) return std::numeric_limits<Int>::min();
  return static_cast<Int>(value);
}

template <typename Field>
void Store(void* target, Field value) {
  std::memcpy(target, &value, sizeof value);
}

template <typename Field>
Field Load(const void* target) {
  Field value;
  std::memcpy(&value, target, sizeof value);
  return value;
}

}  // namespace

unsigned TargetFieldWidth(TARGET_TYPE type) {
  switch (type) {
    case TARGET_BYTE:
      return 1;
    case TARGET_INT:
    case TARGET_UINT:
    case TARGET_FLOAT:
      return 4;
    case TARGET_DOUBLE:
      return 8;
  }
  return 0;
}

void AnimationTarget::SetValue(double value) {
  if (!m_pTarget) return;
  switch (m_type) {
    case TARGET_BYTE:
      Store(m_pTarget, static_cast<std::uint8_t>(TruncateToward0<std::int32_t>(value + 0.5)));
      break;
    case TARGET_INT:
      Store(m_pTarget, TruncateToward0<std::int32_t>(value + 0.5));
      break;
    case TARGET_UINT:
      Store(m_pTarget, static_cast<std::uint32_t>(TruncateToward0<std::int64_t>(value + 0.5)));
      break;
    case TARGET_FLOAT:
      Store(m_pTarget, static_cast<float>(value));
      break;
    case TARGET_DOUBLE:
      Store(m_pTarget, value);
      break;
  }
}

double AnimationTarget::GetValue() const {
  if (!m_pTarget) return 0.0;
  switch (m_type) {
    case TARGET_BYTE:
      return Load<std::uint8_t>(m_pTarget);
    case TARGET_INT:
      return Load<std::int32_t>(m_pTarget);
    case TARGET_UINT:
      return Load<std::uint32_t>(m_pTarget);
    case TARGET_FLOAT:
      return Load<float>(m_pTarget);
    case TARGET_DOUBLE:
      return Load<double>(m_pTarget);
  }
  return 0.0;
}

}  // namespace KarvelUI
