// The effect registry and the banded swirl's frame over the fault-injecting
// device double.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <karvelui/BandedSwirlEffect.h>
#include <karvelui/DXCore.h>
#include "support/FakeDirect3D.h"
#include "support/TraceCapture.h"

namespace KarvelTest {
namespace {

using namespace KarvelUI;
using ::testing::ElementsAre;

// Counts its releases; registered by hand.
struct CountingEffect : IKarvelEffect {
  CountingEffect(std::string name, std::vector<std::string>* log) : name(std::move(name)), log(log) {}
  int Init(CEffectsManager*, DXCore*) override { return 0; }
  void ApplyEffect(CString) override {}
  void Release() override { log->push_back(name); }
  std::string name;
  std::vector<std::string>* log;
};

TEST(EffectsManagerTest, GetEffectCountsButAlwaysAnswersTheFirstName) {
  std::vector<std::string> released;
  CountingEffect b("b", &released), c("c", &released), a("a", &released);
  {
    CEffectsManager effects;
    effects.RegisterEffect(L"b", &b);
    effects.RegisterEffect(L"c", &c);
    effects.RegisterEffect(L"a", &a);
    EXPECT_EQ(effects.GetEffect(2), &a);
    EXPECT_EQ(effects.GetEffect(3), nullptr);
    EXPECT_EQ(effects.FindEffect(L"B"), nullptr);  // names are case-sensitive

    effects.UnRegisterEffect(L"c");
    effects.UnRegisterEffect(L"c");  // gone already: nothing
    EXPECT_THAT(released, ElementsAre("c"));
  }
  EXPECT_THAT(released, ElementsAre("c", "a", "b"));  // the destructor, in name order
}

class SwirlFakeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(DXCore::InitInstance(fake::FakeDirect3D::Create(gpu).Get()), S_OK);
    core.SetWindow(reinterpret_cast<HWND>(0x1000));  // the double never looks at it
    ASSERT_EQ(core._InitD3D(), S_OK);
    BandedSwirlEffect::SetShaderPath(CString(KARVEL_SOURCE_DIR "/assets/BandedSwirl.fx"));
    gpu->ClearLog();
  }
  void TearDown() override {
    BandedSwirlEffect::SetShaderPath(CString());
    DXCore::ExitInstance();
  }
  std::vector<std::string> Calls(const std::string& prefix = "") const {
    std::vector<std::string> calls;
    for (const std::string& call : gpu->Calls())
      if (call.rfind(prefix, 0) == 0) calls.push_back(call);
    return calls;
  }

  std::shared_ptr<fake::FakeGpu> gpu = std::make_shared<fake::FakeGpu>();
  TraceCapture trace;
  DXCore core;
  BandedSwirlEffect swirl;  // before the manager, which releases it when it goes
  CEffectsManager effects;
};

TEST_F(SwirlFakeTest, ReRegistrationReleasesTheFirstProgramButKeepsTheObject) {
  BandedSwirlEffect second;
  ASSERT_EQ(swirl.Init(&effects, &core), 0);
  ASSERT_EQ(second.Init(&effects, &core), 0);
  EXPECT_EQ(gpu->LiveEffects(), 1);
  EXPECT_EQ(effects.FindEffect(BandedSwirlEffect::kName), &second);
  gpu->ClearLog();
  swirl.ApplyEffect(L"");  // the first object lives on, without a program
  EXPECT_THAT(Calls(), ElementsAre());
  effects.ReleaseAll();
  EXPECT_EQ(gpu->LiveEffects(), 0);
}

TEST_F(SwirlFakeTest, InitSetsTheDefaultSwirlAndAFrameRunsEveryPassAndPresentsTwice) {
  gpu->effectPasses = 2;
  ASSERT_EQ(swirl.Init(&effects, &core), 0);
  EXPECT_THAT(Calls("CreateEffect"), ElementsAre("CreateEffect flags=0x180"));
  EXPECT_THAT(Calls("Effect."), ElementsAre("Effect.SetTechnique TShader", "Effect.SetFloat Frequency=50",
                                            "Effect.SetFloat TwistAmount=0.785398"));
  EXPECT_THAT(Calls("SetTexture"), ElementsAre("SetTexture stage=0 tex#1"));  // the copied frame
  gpu->ClearLog();
  swirl.ApplyEffect(L"ignored.png");
  EXPECT_THAT(Calls(), ElementsAre("BeginScene", "Sprite.Begin flags=0x10", "Clear count=0 flags=0x1 color=0xFFFFFF",
                                   "Effect.Begin flags=0x0", "Effect.BeginPass 0",
                                   "DrawPrimitiveUP type=5 count=2 stride=20", "Effect.EndPass", "Effect.BeginPass 1",
                                   "DrawPrimitiveUP type=5 count=2 stride=20", "Effect.EndPass", "Effect.End",
                                   "Sprite.End", "EndScene", "Present", "Present"));
}

TEST_F(SwirlFakeTest, ADeviceThatCannotBeginASceneStillPresentsOnce) {
  ASSERT_EQ(swirl.Init(&effects, &core), 0);
  gpu->ClearLog();
  gpu->FailNext(fake::Call::BeginScene, E_FAIL);
  swirl.ApplyEffect(L"");
  EXPECT_THAT(Calls(), ElementsAre("BeginScene -> 0x80004005", "Present"));
}

// Missing (false) or not compiling (true).
class SwirlBrokenShaderTest : public SwirlFakeTest, public ::testing::WithParamInterface<bool> {};

TEST_P(SwirlBrokenShaderTest, InitFailsWithTheCompilerTextAndTheEffectDrawsNothing) {
  if (GetParam()) {
    gpu->FailNext(fake::Call::CreateEffect, E_FAIL);
  } else {
    BandedSwirlEffect::SetShaderPath(CString(KARVEL_SOURCE_DIR "/assets/NoSuch.fx"));
  }
  EXPECT_EQ(swirl.Init(&effects, &core), E_FAIL);
  const CString traced = GetParam() ? CString("<D3DERROR> ") + CString(gpu->effectMessages.c_str())
                                    : CString("NoSuch.fx: cannot be read");
  EXPECT_TRUE(trace.Contains(traced.GetString())) << ::testing::PrintToString(trace.Messages());
  EXPECT_EQ(effects.FindEffect(BandedSwirlEffect::kName), &swirl);  // registered all the same
  gpu->ClearLog();
  swirl.ApplyEffect(L"");
  EXPECT_THAT(Calls(), ElementsAre());
}

INSTANTIATE_TEST_SUITE_P(Files, SwirlBrokenShaderTest, ::testing::Bool(),
                         [](const auto& info) { return info.param ? "NotCompiling" : "Missing"; });

}  // namespace
}  // namespace KarvelTest
