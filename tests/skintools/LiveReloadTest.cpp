// Live reload: a form shown in the sample skin follows a saved change of a
// colour, and keeps the last good skin when a save does not parse.

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include <karvelui/DXCore.h>
#include <karvelui/SkinWatcher.h>
#include <karvelui/UIForm.h>
#include <karvelui/UIManager.h>
#include "skintools/PhotoViewStandIn.h"
#include "skin/SkinTestSupport.h"
#include "support/GLTesting.h"

namespace KarvelTest {
namespace {

using namespace KarvelUI;
namespace fs = std::filesystem;

constexpr const char* kSkinFile = "Theme/Default/KarvelView.xml";

class LiveReloadTest : public SkinManagerTest {
 protected:
  void SetUp() override {
    fs::copy(fs::path(KARVEL_SOURCE_DIR) / "assets" / "Theme", m_app.Path() / "Theme", fs::copy_options::recursive);
    ASSERT_EQ(DXCore::InitInstance(), S_OK);
    Manager()->RegisterObjectCreateor(&PhotoViewStandIn::Create);
    ASSERT_EQ(Manager()->InitSkinData(), 1);
    form = new CUIForm();
    form->SetObjectID(L"MainForm");
    ASSERT_TRUE(form->Create(WS_POPUP | WS_VISIBLE, L"KarvelLiveReloadForm", L"Viewer", nullptr, 0, CRect()));
    ASSERT_EQ(watcher.Start(), 1);
  }
  void TearDown() override {
    if (form) form->Release();
    DXCore::ExitInstance();
    CUIManager::FreeInstance();
    SkinManagerTest::TearDown();
  }

  DWORD Centre() {
    form->OnPaint(0);
    const Frame frame = ReadBack(form->GetRenderDevice()->GetD3DDevice());
    return frame.At(frame.size.cx / 2, frame.size.cy / 2);
  }

  // Polls as a host's timer would until a reload was tried; the deadline
  // only ends a run whose file events never arrive.
  bool SaveAndPoll(const std::string& xml, CString& report) {
    Write(kSkinFile, xml);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (std::chrono::steady_clock::now() < deadline) {
      if (watcher.Poll(report)) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
  }

  CUIForm* form = nullptr;
  CSkinWatcher watcher;
};

TEST_F(LiveReloadTest, FollowsAChangedColourAndSurvivesABrokenSave) {
  const DWORD before = Centre();
  CRect placed;
  form->GetWindowRect(&placed);
  // Tint the form's background picture (the first image of the file) green.
  std::string xml = Read(kSkinFile);
  const std::string image = "<Image File=\"FormBorder.png\"";
  xml.insert(xml.find(image) + image.size(), " Color=\"0xFF00FF00\"");
  CString report = L"unset";
  ASSERT_TRUE(SaveAndPoll(xml, report));
  EXPECT_EQ(report, CString()) << report.ToUtf8();
  const DWORD tinted = Centre();
  EXPECT_EQ(tinted, before & 0xFF00FF00);
  CRect kept;
  form->GetWindowRect(&kept);
  EXPECT_EQ(kept, placed);

  ASSERT_TRUE(SaveAndPoll("<UIRoot><css>\n</UIRoot>\n", report));
  EXPECT_EQ(watcher.IsLastReloadGood(), 0);
  EXPECT_EQ(report, CString(L"Default/KarvelView.xml:2: XML does not parse: Error reading end tag."));
  EXPECT_EQ(Centre(), tinted);
}

}  // namespace
}  // namespace KarvelTest
