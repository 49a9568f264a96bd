#pragma once

// The viewer's main window: the skin's "MainForm" build node. A caption
// with the system buttons, and a tool bar along the bottom with the
// picture buttons, the zoom slider and a status line; the space between
// them is left for the picture. Tab and Shift+Tab walk the tool bar's
// buttons, Space and Enter press the focused one. Closing the window ends
// the program.

#include <memory>
#include <string>
#include <vector>

#include <karvelui/UIForm.h>

#include "FolderStrip.h"

namespace KarvelUI {
class CUIButton;
class CUILabel;
class CUISlider;
}  // namespace KarvelUI

namespace KarvelView {

class CMainForm : public KarvelUI::CUIForm {
 public:
  // Builds the window from the skin and shows it; false when it cannot be made.
  bool Open();
  ~CMainForm() override;

  // The tool bar's picture buttons, in tab order.
  static constexpr const wchar_t* kToolButtons[] = {L"btnPrev", L"btnNext", L"btnRotateLeft", L"btnRotateRight",
                                                    L"btnFit", L"btnActualSize", L"btnSkin"};

  // Shows a picture; `ahead` (the previous and next ones) is decoded meanwhile.
  void ShowPicture(const KarvelUI::CString& path, const std::vector<KarvelUI::CString>& ahead);
  // The film strip (never null once opened).
  CFolderStrip* GetStrip() const { return m_strip.get(); }
  // Also appended to this file (native path) when set, for scripted checks.
  void SetStatusFile(const std::string& file) { m_statusFile = file; }

  void OnSkinChanged() override;
  KarvelUI::LRESULT WindowProc(KarvelUI::UINT message, KarvelUI::WPARAM wParam, KarvelUI::LPARAM lParam) override;
  // Space and Enter reaching the root from the focused button press it.
  int OnKeyMessage(KarvelUI::UINT message, KarvelUI::UINT wParam, KarvelUI::UINT repeat,
                   KarvelUI::UINT flags) override;

 protected:
  void OnSize(KarvelUI::UINT type, int cx, int cy) override;

 private:
  void FindControls();
  void OnButtonClick(KarvelUI::CUIControl* sender, void* param);
  void OnZoomChanged(KarvelUI::CUIControl* sender, void* param);
  // Shows the next installed skin.
  void SwitchSkin();
  // The slider's thumb is placed in window coordinates: again after every layout.
  void PlaceZoomThumb();
  void ShowStatus(const KarvelUI::CString& action);
  KarvelUI::CUIButton* FocusedButton();

  KarvelUI::CUISlider* m_zoom = nullptr;
  KarvelUI::CUILabel* m_status = nullptr;
  int m_zoomPercent = 100;
  std::unique_ptr<CFolderStrip> m_strip;
  std::string m_statusFile;
};

}  // namespace KarvelView
