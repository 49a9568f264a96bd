#pragma once

// Shared pieces of the framework tests: a control that writes what happens
// to it into a journal, a temporary application folder with a build file and
// a default skin, and forms over the fault-injecting device double built
// from a small skin (a 300 x 200 form at (50, 40) with three probe controls
// in a row).

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include <karvelui/DXCore.h>
#include <karvelui/SkinManager.h>
#include <karvelui/UIControl.h>
#include <karvelui/UIForm.h>
#include <karvelui/UIManager.h>
#include "platform/MessageBoxHook.h"
#include "skin/SkinTestSupport.h"
#include "support/FakeDirect3D.h"
#include "support/TraceCapture.h"
#include "support/WindowTesting.h"

namespace KarvelTest {

using namespace KarvelUI;

// The message's name in journal lines, or its number when unnamed here.
inline std::string MessageName(UINT message) {
#define KARVEL_NAMED(m) {m, #m}
  static const std::pair<UINT, const char*> kNames[] = {
      KARVEL_NAMED(WM_MOUSEMOVE),     KARVEL_NAMED(WM_LBUTTONDOWN),   KARVEL_NAMED(WM_LBUTTONUP),
      KARVEL_NAMED(WM_RBUTTONDOWN),   KARVEL_NAMED(WM_RBUTTONUP),     KARVEL_NAMED(WM_MOUSEWHEEL),
      KARVEL_NAMED(WM_MOUSEHWHEEL),   KARVEL_NAMED(WM_MOUSEHOVER),    KARVEL_NAMED(WM_MOUSELEAVE),
      KARVEL_NAMED(WM_KEYDOWN),       KARVEL_NAMED(WM_KEYUP),         KARVEL_NAMED(UI_KEY_SETFOCUS),
      KARVEL_NAMED(UI_KEY_KILLFOCUS)};
#undef KARVEL_NAMED
  for (const auto& [value, name] : kNames)
    if (value == message) return name;
  return std::to_string(message);
}

// What the probes saw, one line per event, in order.
inline std::vector<std::string>& Journal() {
  static std::vector<std::string> journal;
  return journal;
}

// The journal lines that start with prefix.
inline std::vector<std::string> JournalOf(const std::string& prefix) {
  std::vector<std::string> lines;
  for (const std::string& line : Journal())
    if (line.rfind(prefix, 0) == 0) lines.push_back(line);
  return lines;
}

class ProbeControl : public CUIControl {
 public:
  explicit ProbeControl(const char* id = "", const CRect& bounds = CRect()) {
    SetTypeName(L"ProbeControl");
    SetObjectID(CString(id));
    SetBounds(bounds);
  }
  ~ProbeControl() override {
    if (destroyed) *destroyed = true;
  }
  void RenderSelf(DXCore* dx, CRect*) override {
    std::ostringstream line;
    line.precision(3);
    line << Id() << " draw " << dx->GetGlobalOpacity();
    Journal().push_back(line.str());
  }
  int OnMouseMessage(UINT message, UINT flags, const CPoint& point) override {
    Journal().push_back(Id() + " mouse " + MessageName(message) + " " + std::to_string(point.x) + "," +
                        std::to_string(point.y) + (flags ? " flags " + std::to_string(flags) : ""));
    return handlesMouse;
  }
  int OnKeyMessage(UINT message, UINT wParam, UINT, UINT) override {
    Journal().push_back(Id() + " key " + MessageName(message) + (wParam ? " " + std::to_string(wParam) : ""));
    return handlesKeys;
  }
  void OnSetSkinData() override { Journal().push_back(Id() + " skin"); }
  using CUIControl::SetBounds;  // tests drive the bounds the layout would compute

  int handlesMouse = 0;
  int handlesKeys = 0;
  bool* destroyed = nullptr;

 private:
  std::string Id() { return GetObjectID().ToUtf8(); }
};

// A temporary application folder with Theme\SkinDatas.xml, the skin manager
// reading it, and the journal emptied.
class FrameworkTest : public SkinManagerTest {
 protected:
  void SetUp() override {
    Journal().clear();
    Write("Theme/SkinDatas.xml", R"(<SkinsRoot><Skin Name="Default" Text="Default"/></SkinsRoot>)");
  }
  void TearDown() override {
    CUIManager::FreeInstance();
    SkinManagerTest::TearDown();
    Journal().clear();
  }
  // Writes the build file and the default skin, then loads them.
  void LoadSkin(const std::string& build, const std::string& skin) {
    Write("Theme/Build.xml", "<BuildRoot>" + build + "</BuildRoot>");
    Write("Theme/Default/KarvelView.xml", "<UIRoot>" + skin + "</UIRoot>");
    ASSERT_EQ(Manager()->InitSkinData(), 1);
    Manager()->RegisterObjectCreateor([](const CString& type) -> CUIControl* {
      return type == L"ProbeControl" ? new ProbeControl() : nullptr;
    });
  }
};

inline constexpr const char* kFormBuild = R"(
  <TestForm css="Main" ass="Main">
    <One type="ProbeControl" ass="One"/><Two type="ProbeControl" ass="Two"/><Three type="ProbeControl" ass="Three"/>
  </TestForm>)";

inline constexpr const char* kFormSkin = R"(
  <css><CUIForm><Main PositionRect="50, 40, 300, 200" BorderMargin="0, 0, 0, 0" MinSize="200, 120"
                      Resize="true" RoundDiameters="0, 0"/></CUIForm></css>
  <ass><ProbeControl>
    <One Bounds="10, 10, 80, 40" AnchorStyle="topleft"/>
    <Two Bounds="100, 10, 80, 40" AnchorStyle="topleft"/>
    <Three Bounds="190, 10, 80, 40" AnchorStyle="topleft"/>
  </ProbeControl></ass>)";

class FormTest : public FrameworkTest {
 protected:
  void SetUp() override {
    FrameworkTest::SetUp();
    ASSERT_EQ(DXCore::InitInstance(fake::FakeDirect3D::Create(gpu).Get()), S_OK);
    m_previousBox = SetMessageBoxHook([this](HWND, const CString& text, const CString& caption, UINT type) {
      boxes.push_back(caption.ToUtf8() + ": " + text.ToUtf8() + " type " + std::to_string(type));
      return IDOK;
    });
  }
  void TearDown() override {
    for (CUIForm* form : m_forms)
      if (CUIManager::GetInstance()->IsExist(form) != -1) form->Release();
    SetMessageBoxHook(m_previousBox);
    DXCore::ExitInstance();
    FrameworkTest::TearDown();
  }

  // A form of the loaded skin, created and shown; released at the end of
  // the test unless it went itself.
  CUIForm* MakeForm(const char* id = "TestForm", DWORD style = WS_POPUP | WS_VISIBLE) {
    auto* form = new CUIForm();
    m_forms.push_back(form);
    form->SetObjectID(CString(id));
    created = form->Create(style, L"KarvelTestForm", L"Test form", nullptr, 0, CRect(0, 0, 100, 100));
    PumpAll();
    return form;
  }
  void LoadTestSkin() { LoadSkin(kFormBuild, kFormSkin); }
  CUIControl* Child(CUIForm* form, const wchar_t* id) { return form->FindControl(id); }
  static LRESULT Send(CUIForm* form, UINT message, int x, int y, WPARAM flags = 0) {
    return form->SendMessage(message, flags, MAKELPARAM(x, y));
  }

  std::shared_ptr<fake::FakeGpu> gpu = std::make_shared<fake::FakeGpu>();
  std::vector<std::string> boxes;
  BOOL created = FALSE;

 private:
  std::vector<CUIForm*> m_forms;
  MessageBoxHook m_previousBox;
};

}  // namespace KarvelTest
