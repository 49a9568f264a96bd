#include <gtest/gtest.h>

#include <cstdint>

#include <karvelui/AnimationBoard.h>

using namespace KarvelUI;

namespace {

template <typename Field>
Field Written(TARGET_TYPE type, double value) {
  Field field{};
  AnimationTarget(&field, type).SetValue(value);
  return field;
}

template <typename Field>
double Read(TARGET_TYPE type, Field field) {
  return AnimationTarget(&field, type).GetValue();
}

}  // namespace

TEST(AnimationTarget, IntegersAddAHalfTruncateTowardZeroAndKeepTheirLowBits) {
  EXPECT_EQ(Written<std::uint8_t>(TARGET_BYTE, 255.4), 255);
  EXPECT_EQ(Written<std::uint8_t>(TARGET_BYTE, 255.6), 0);   // 256 wraps, no clamping
  EXPECT_EQ(Written<std::uint8_t>(TARGET_BYTE, -1.7), 255);  // trunc(-1.2) = -1
  EXPECT_EQ(Written<std::uint8_t>(TARGET_BYTE, -0.7), 0);
  EXPECT_EQ(Written<std::int32_t>(TARGET_INT, 2.5), 3);
  EXPECT_EQ(Written<std::int32_t>(TARGET_INT, -2.5), -2);
  EXPECT_EQ(Written<std::int32_t>(TARGET_INT, -2.7), -2);
  EXPECT_EQ(Written<std::uint32_t>(TARGET_UINT, 4294967296.0), 0u);
  EXPECT_EQ(Written<std::uint32_t>(TARGET_UINT, -1.7), 4294967295u);
  EXPECT_EQ(Read<std::uint8_t>(TARGET_BYTE, 200), 200.0);  // reads keep each field's sign
  EXPECT_EQ(Read<std::uint32_t>(TARGET_UINT, Written<std::uint32_t>(TARGET_UINT, 4294967295.0)), 4294967295.0);
}

TEST(AnimationTarget, FloatingFieldsTakeNoHalfAndUnknownTypesAreLeftAlone) {
  EXPECT_EQ(Read<float>(TARGET_FLOAT, Written<float>(TARGET_FLOAT, 0.1)), static_cast<double>(0.1f));
  EXPECT_EQ(Written<float>(TARGET_FLOAT, 2.75), 2.75f);
  EXPECT_EQ(Written<double>(TARGET_DOUBLE, 0.1), 0.1);
  std::int32_t field = 77;
  AnimationTarget unknown(&field, static_cast<TARGET_TYPE>(9));
  unknown.SetValue(3.0);
  EXPECT_EQ(field, 77);
  EXPECT_EQ(unknown.GetValue(), 0.0);
}

TEST(AnimationBoardTargets, SetTargetWalksFieldsByWidthAndResetsEveryRange) {
  struct {
    std::uint8_t alpha[3];
    std::int32_t size[2];
    double position[2];
  } fields{};
  AnimationBoard board;
  board.SetTarget(fields.alpha, 3, TARGET_BYTE);
  EXPECT_EQ(board.GetTarget(2)->GetTarget(), &fields.alpha[2]);
  board.SetTarget(fields.size, 2, TARGET_INT);
  EXPECT_EQ(board.GetTarget(1)->GetTarget(), &fields.size[1]);
  board.SetTarget(fields.position, 2, TARGET_DOUBLE);
  EXPECT_EQ(board.GetTarget(1)->GetTarget(), &fields.position[1]);

  board.SetRange(AnimationRange(1.0, 2.0, 3.0), 1);
  board.SetRange(AnimationRange(9.0, 9.0, 9.0), 2);  // one past the last: ignored
  EXPECT_EQ(board.GetRange(1)->to, 2.0);
  EXPECT_EQ(board.GetRange(2), nullptr);
  board.SetTarget(fields.position, 2, TARGET_DOUBLE);  // ranges must follow targets
  EXPECT_EQ(board.GetRange(1)->to, 0.0);
  EXPECT_EQ(board.GetRange(1)->exponent, 1.0);
}
