#pragma once

// The viewer's main window: the skin's "MainForm" build node. Closing it
// ends the program.

#include <karvelui/UIForm.h>

namespace KarvelView {

class CMainForm : public KarvelUI::CUIForm {
 public:
  // Builds the window from the skin and shows it; false when it cannot be made.
  bool Open();
  ~CMainForm() override;

 protected:
  // The top band of the frame drags the window where no caption control
  // claims it.
  KarvelUI::LRESULT OnNcHitTest(KarvelUI::CPoint screenPoint) override;
};

}  // namespace KarvelView
