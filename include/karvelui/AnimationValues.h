#pragma once

// One animated value: where it lives (AnimationTarget) and between which
// values it moves (AnimationRange). Boards compute every value in double
// precision; the target converts to and from the field's own type.
//
// Integer kinds round by adding 0.5 and truncating toward zero, then keep
// only the field's low bits: a byte set to 255.6 holds 0, an int set to
// -2.5 holds -2. Nothing clamps; callers animate within the field's range.

#include <karvelui/Export.h>

namespace KarvelUI {

// The enumerations of this layer are 32-bit with a fixed type, so that any
// value (an unknown type or formula) is representable and simply ignored.
enum TARGET_TYPE : int {
  TARGET_BYTE = 0,    // unsigned 8-bit
  TARGET_INT = 1,     // signed 32-bit
  TARGET_UINT = 2,    // unsigned 32-bit
  TARGET_FLOAT = 3,   // 32-bit floating point
  TARGET_DOUBLE = 4,  // 64-bit floating point
};

// Bytes one field of the type occupies (0 for an unknown type).
KARVELUI_API unsigned TargetFieldWidth(TARGET_TYPE type);

class KARVELUI_API AnimationTarget {
 public:
  AnimationTarget() = default;
  // field is not owned and must outlive every SetValue on it.
  AnimationTarget(void* field, TARGET_TYPE type) : m_pTarget(field), m_type(type) {}

  TARGET_TYPE GetType() const { return m_type; }
  void* GetTarget() const { return m_pTarget; }
  // An unknown type is neither written nor read (reads give 0.0).
  void SetValue(double value);
  double GetValue() const;

 private:
  void* m_pTarget = nullptr;
  TARGET_TYPE m_type = static_cast<TARGET_TYPE>(-1);  // unset
};

struct KARVELUI_API AnimationRange {
  AnimationRange() = default;
  AnimationRange(const double& from, const double& to, const double& exponent)
      : from(from), to(to), exponent(exponent) {}

  double from = 0.0;
  double to = 0.0;
  double exponent = 1.0;  // used by the power formula only
};

}  // namespace KarvelUI
