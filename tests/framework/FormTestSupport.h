#pragma once

// Forms over the fault-injecting device double, built from a small skin:
// a 300 x 200 form at (50, 40) with three probe controls in a row.

#include "framework/FrameworkTestSupport.h"
#include "platform/MessageBoxHook.h"
#include "support/FakeDirect3D.h"
#include "support/TraceCapture.h"
#include "window/WindowTestSupport.h"

namespace KarvelTest {

inline constexpr const char* kFormBuild = R"(
  <TestForm css="Main" ass="Main">
    <One type="ProbeControl" ass="One"/>
    <Two type="ProbeControl" ass="Two"/>
    <Three type="ProbeControl" ass="Three"/>
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

  // A form of the test skin (or of the given build and skin), created and
  // shown; released at the end of the test unless it went itself.
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
