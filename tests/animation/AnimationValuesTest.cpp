#include <gtest/gtest.h>

#include <cstdint>

#include <karvelui/AnimationBoard.h>

using namespace KarvelUI;

namespace {

template <typename Field>
double WrittenAndRead(TARGET_TYPE type, double value) {
  Field field{};
  AnimationTarget target(&field, type);
  target.SetValue(value);
  return target.GetValue();
}

}  // namespace

TEST(AnimationTarget, IntegersAddAHalfTruncateTowardZeroAndKeepTheirLowBitsFloatsTakeNoHalf) {
  const struct {
    TARGET_TYPE type;
    double value, stored;
  } cases[] = {
      {TARGET_BYTE, 255.4, 255},       {TARGET_BYTE, 255.6, 0},  // 256 wraps, no clamping
      {TARGET_BYTE, -1.7, 255},        {TARGET_BYTE, -0.7, 0},   // trunc(-1.2) = -1
      {TARGET_INT, 2.5, 3},            {TARGET_INT, -2.5, -2},          {TARGET_INT, -2.7, -2},
      {TARGET_UINT, 4294967296.0, 0},  {TARGET_UINT, -1.7, 4294967295.0},  // reads keep each field's sign
      {TARGET_FLOAT, 0.1, 0.1f},       {TARGET_FLOAT, 2.75, 2.75},      {TARGET_DOUBLE, 0.1, 0.1},
  };
  for (const auto& c : cases) {
    const double read = c.type == TARGET_BYTE    ? WrittenAndRead<std::uint8_t>(c.type, c.value)
                        : c.type == TARGET_INT   ? WrittenAndRead<std::int32_t>(c.type, c.value)
                        : c.type == TARGET_UINT  ? WrittenAndRead<std::uint32_t>(c.type, c.value)
                        : c.type == TARGET_FLOAT ? WrittenAndRead<float>(c.type, c.value)
                                                 : WrittenAndRead<double>(c.type, c.value);
    EXPECT_EQ(read, c.stored) << c.type << " " << c.value;
  }
  std::int32_t field = 77;
  AnimationTarget unknown(&field, static_cast<TARGET_TYPE>(9));  // unknown types are left alone
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
