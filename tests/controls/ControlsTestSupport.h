#pragma once

// Shared pieces of the control tests: a 300 x 200 form at (50, 40) over the
// GPU double, built from the given children with their css and ass
// entries, and a log of the events that reach its root.

#include <gmock/gmock.h>

#include <string>
#include <tuple>
#include <vector>

#include "framework/FrameworkTestSupport.h"
#include <karvelui/UIButton.h>
#include <karvelui/UICaption.h>
#include <karvelui/UILabel.h>
#include <karvelui/UIPanel.h>
#include <karvelui/UISlider.h>

namespace KarvelTest {

// "<id> <sender>" per event that reached the root.
struct EventLog {
  std::vector<std::string> lines;
  template <int Id>
  void On(CUIControl* sender, void*) {
    lines.push_back(std::to_string(Id) + " " + (sender ? sender->GetObjectID().ToUtf8() : std::string("-")));
  }
  void ListenTo(CUIControl* root) {
    root->ListenEvent(UI_EVENT_CLICK, MakeDelegate(this, &EventLog::On<UI_EVENT_CLICK>));
    root->ListenEvent(UI_EVENT_SLIDER_CHANGED, MakeDelegate(this, &EventLog::On<UI_EVENT_SLIDER_CHANGED>));
    root->ListenEvent(UI_EVENT_LINK_ENTER, MakeDelegate(this, &EventLog::On<UI_EVENT_LINK_ENTER>));
    root->ListenEvent(UI_EVENT_LINK_LEAVE, MakeDelegate(this, &EventLog::On<UI_EVENT_LINK_LEAVE>));
  }
};

class ControlsTest : public FormTest {
 protected:
  // The form "TestForm" with `children` (build elements), `css` and `ass`
  // (the skin's type elements), events of its root logged.
  CUIForm* MakeControls(const std::string& children, const std::string& css = "", const std::string& ass = "") {
    LoadSkin("<TestForm css=\"Main\" ass=\"Main\">" + children + "</TestForm>",
             "<css><CUIForm><Main PositionRect=\"50, 40, 300, 200\" BorderMargin=\"0, 0, 0, 0\"/></CUIForm>" + css +
                 "</css><ass>" + ass + "</ass>");
    CUIForm* form = MakeForm();
    events.ListenTo(form);
    return form;
  }
  template <class T>
  static T* Find(CUIForm* form, const wchar_t* id) {
    return dynamic_cast<T*>(form->FindControlRecusive(id));
  }
  // Drives a control's handler directly, the way the form routes to it.
  static int Mouse(CUIControl* control, UINT message, int x = 0, int y = 0) {
    return control->OnMouseMessage(message, 0, CPoint(x, y));
  }

  EventLog events;
};

}  // namespace KarvelTest
