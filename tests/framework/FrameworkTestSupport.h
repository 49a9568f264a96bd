#pragma once

// Shared pieces of the framework tests: a control that writes what happens
// to it into a journal, a host creator that makes it from build files, and
// a temporary application folder with a build file and a default skin.

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include <karvelui/UIControl.h>
#include <karvelui/UIForm.h>
#include <karvelui/UIManager.h>
#include <karvelui/DXCore.h>
#include <karvelui/SkinManager.h>
#include "skin/SkinTestSupport.h"

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
    line << GetObjectID().ToUtf8() << " draw " << dx->GetGlobalOpacity();
    Journal().push_back(line.str());
  }
  int OnMouseMessage(UINT message, UINT flags, const CPoint& point) override {
    Journal().push_back(GetObjectID().ToUtf8() + " mouse " + MessageName(message) + " " + std::to_string(point.x) +
                        "," + std::to_string(point.y) + (flags ? " flags " + std::to_string(flags) : ""));
    return handlesMouse;
  }
  int OnKeyMessage(UINT message, UINT wParam, UINT, UINT) override {
    Journal().push_back(GetObjectID().ToUtf8() + " key " + MessageName(message) +
                        (wParam ? " " + std::to_string(wParam) : ""));
    return handlesKeys;
  }
  void OnSetSkinData() override { Journal().push_back(GetObjectID().ToUtf8() + " skin"); }

  // Lets tests drive the bounds the layout would compute.
  using CUIControl::SetBounds;

  int handlesMouse = 0;
  int handlesKeys = 0;
  bool* destroyed = nullptr;
};

// Builds "ProbeControl" nodes of build files.
inline CUIControl* CreateProbe(const CString& type) {
  return type == L"ProbeControl" ? new ProbeControl() : nullptr;
}

// The journal lines that start with prefix.
inline std::vector<std::string> JournalOf(const std::string& prefix) {
  std::vector<std::string> lines;
  for (const std::string& line : Journal())
    if (line.rfind(prefix, 0) == 0) lines.push_back(line);
  return lines;
}

// A temporary application folder with Theme\Build.xml and a default skin,
// the skin manager reading it, and the journal emptied.
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
    CUISkinManager* manager = Manager();
    ASSERT_EQ(manager->InitSkinData(), 1);
    manager->RegisterObjectCreateor(&CreateProbe);
  }
};

}  // namespace KarvelTest
