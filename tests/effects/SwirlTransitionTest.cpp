// The swirl transition over a form on the device double, frame by frame on
// a hand-driven clock.

#include <algorithm>
#include <cstdlib>

#include <karvelui/SwirlTransition.h>
#include "animation/AnimationTestSupport.h"
#include "framework/FormTestSupport.h"

namespace KarvelTest {
namespace {

class SwirlTransitionTest : public FormTest {
 protected:
  void SetUp() override {
    FormTest::SetUp();
    LoadTestSkin();
    BandedSwirlEffect::SetShaderPath(CString(KARVEL_SOURCE_DIR "/assets/BandedSwirl.fx"));
    form = MakeForm();
  }
  void TearDown() override {
    BandedSwirlEffect::SetShaderPath(CString());
    FormTest::TearDown();
  }
  // One animation frame: the tick's paint, then what the paint drew.
  void NextFrame() {
    gpu->ClearLog();
    Journal().clear();
    clock.Advance(ANIMATION_FRAME_INTERVAL);
    PumpAll();
  }
  // The twist the last frame was drawn with; -1 when it drew no swirl.
  double DrawnTwist() const {
    const std::string prefix = "Effect.SetFloat TwistAmount=";
    double twist = -1;
    for (const std::string& call : gpu->Calls())
      if (call.rfind(prefix, 0) == 0) twist = std::atof(call.c_str() + prefix.size());
    return twist;
  }

  TestClock clock;
  CUIForm* form = nullptr;
};

TEST_F(SwirlTransitionTest, WindsUpUnwindsAndHandsThePaintBack) {
  CSwirlTransition transition;
  ASSERT_TRUE(transition.Start(form, CString(), 400));
  std::vector<double> twists;
  bool treeDrawn = false;
  while (transition.IsPlaying() && twists.size() < 30) {
    EXPECT_FALSE(treeDrawn) << "the tree was drawn at frame " << twists.size();
    NextFrame();
    twists.push_back(DrawnTwist());
    treeDrawn = !JournalOf("One draw").empty();
  }
  // The last tick ended the transition: its paint is the form's own.
  EXPECT_FALSE(transition.IsPlaying());
  EXPECT_TRUE(treeDrawn);
  EXPECT_EQ(twists.back(), -1);
  twists.pop_back();

  const auto peak = std::max_element(twists.begin(), twists.end());
  EXPECT_NEAR(*peak, CSwirlTransition::kPeakTwist, 1e-4);
  EXPECT_TRUE(std::is_sorted(twists.begin(), peak + 1));
  EXPECT_TRUE(std::is_sorted(peak, twists.end(), std::greater<>()));
  EXPECT_GT(twists.front(), 0.0);
  EXPECT_EQ(twists.size(), 19u);  // 20 ms frames over 400 ms, the last one the form's
}

TEST_F(SwirlTransitionTest, WithoutItsEffectFileNothingStartsAndTheFormPaintsItself) {
  BandedSwirlEffect::SetShaderPath(CString("/no/such/BandedSwirl.fx"));
  CSwirlTransition transition;
  EXPECT_FALSE(transition.Start(form));
  EXPECT_FALSE(transition.IsPlaying());
  form->Invalidate();
  NextFrame();
  EXPECT_EQ(DrawnTwist(), -1);
  EXPECT_FALSE(JournalOf("One draw").empty());
}

}  // namespace
}  // namespace KarvelTest
