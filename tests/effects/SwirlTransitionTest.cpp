// The swirl transition over a form on the device double, frame by frame on
// a hand-driven clock.

#include <algorithm>
#include <cstdlib>

#include <karvelui/SwirlTransition.h>
#include "animation/AnimationTestSupport.h"
#include "framework/FrameworkTestSupport.h"

namespace KarvelTest {
namespace {

class SwirlTransitionTest : public FormTest {
 protected:
  void TearDown() override {
    BandedSwirlEffect::SetShaderPath(CString());
    FormTest::TearDown();
  }
  ManualClock clock;
};

TEST_F(SwirlTransitionTest, WindsUpUnwindsAndHandsThePaintBack) {
  LoadTestSkin();
  BandedSwirlEffect::SetShaderPath(CString(KARVEL_SOURCE_DIR "/assets/BandedSwirl.fx"));
  CUIForm* form = MakeForm();
  CSwirlTransition transition;
  ASSERT_TRUE(transition.Start(form, CString(), 400));
  Journal().clear();

  // Each frame's twist (-1: no swirl drawn), until the form draws its tree.
  const std::string twistCall = "Effect.SetFloat TwistAmount=";
  std::vector<double> twists;
  while (JournalOf("One draw").empty() && twists.size() < 30) {
    gpu->ClearLog();
    clock.Advance(ANIMATION_FRAME_INTERVAL);
    PumpAll();
    twists.push_back(-1);
    for (const std::string& call : gpu->Calls())
      if (call.starts_with(twistCall)) twists.back() = std::atof(call.c_str() + twistCall.size());
  }
  // 20 ms frames over 400 ms: the last tick ended the transition, and its
  // paint was the form's own.
  EXPECT_FALSE(transition.IsPlaying());
  ASSERT_EQ(twists.size(), 20u);
  EXPECT_EQ(twists.back(), -1);
  twists.pop_back();
  const auto peak = std::max_element(twists.begin(), twists.end());
  EXPECT_NEAR(*peak, CSwirlTransition::kPeakTwist, 1e-4);
  EXPECT_TRUE(std::is_sorted(twists.begin(), peak + 1));
  EXPECT_TRUE(std::is_sorted(peak, twists.end(), std::greater<>()));
  EXPECT_GT(twists.front(), 0.0);
}

}  // namespace
}  // namespace KarvelTest
