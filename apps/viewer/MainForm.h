#pragma once

// The viewer's main window: the skin's "MainForm" build node. A caption
// with the system buttons, the photo view ("ImageView") in the middle, and
// a tool bar along the bottom with the picture buttons, the zoom slider and
// a status line. Tab and Shift+Tab walk the tool bar's buttons, Space and
// Enter press the focused one; the photo view's keys ("[", "]", Ctrl+L,
// Ctrl+R, "F", "1", "+", "-") act whatever has the focus. A right click on
// the photo or the strip, or the Menu key, opens the context menu. Closing
// the window ends the program.

#include <memory>
#include <string>
#include <vector>

#include <karvelui/SwirlTransition.h>
#include <karvelui/UIForm.h>

#include "FolderStrip.h"

namespace KarvelUI {
class CUIButton;
class CUILabel;
class CUISlider;
}  // namespace KarvelUI

namespace KarvelView {

class CContextMenu;
class CPhotoView;

class CMainForm : public KarvelUI::CUIForm {
 public:
  CMainForm();
  // Builds the window from the skin and shows it; false when it cannot be made.
  bool Open();
  ~CMainForm() override;

  // The skin manager makes the viewer's own controls through this; call
  // it once before InitSkinData.
  static void RegisterControls();

  // The tool bar's picture buttons, in tab order.
  static constexpr const wchar_t* kToolButtons[] = {L"btnPrev", L"btnNext", L"btnRotateLeft", L"btnRotateRight",
                                                    L"btnFit", L"btnActualSize", L"btnSkin"};

  // Shows `path` fitted in the photo view, decoding `ahead` (the pictures
  // next to it) meanwhile; the status line names it and tells its size.
  void ShowPicture(const KarvelUI::CString& path, const std::vector<KarvelUI::CString>& ahead);
  // Shows the pictures of a folder, or of the folder holding a file, from
  // the command line or Open folder...; the first (or that file) is shown.
  void OpenPath(const KarvelUI::CString& path);
  // The next (1) or previous (-1) picture of the folder shown.
  void StepPicture(int direction);

  // --- commands of the tool bar, the keys and the context menu ---------------------------
  void RotateLeft();
  void RotateRight();
  void FitPicture();
  void ActualSize();
  // The shown picture's path, in the system's own form, to the clipboard.
  void CopyPath();
  // Switches every open form to the installed skin `name`; it is saved
  // as the choice for the next start when the program ends.
  void ChooseSkin(const KarvelUI::CString& name);
  // Plays the banded swirl over the shown photo.
  void PlaySwirl();
  // A small modal form that asks for a folder and opens it.
  void AskForFolder();
  void ShowAbout();
  void Exit();
  // The context menu at a screen point; (-1, -1) at the cursor.
  void ShowContextMenu(int x, int y);

  CPhotoView* GetPhotoView() const { return m_view; }
  KarvelUI::CString GetShownPath() const;
  KarvelUI::CSwirlTransition& GetSwirl() { return m_swirl; }
  // The film strip (never null once opened).
  CFolderStrip* GetStrip() const { return m_strip.get(); }
  // Also appended to this file (native path) when set, for scripted checks.
  void SetStatusFile(const std::string& file) { m_statusFile = file; }

  void OnSkinChanged() override;
  KarvelUI::LRESULT WindowProc(KarvelUI::UINT message, KarvelUI::WPARAM wParam, KarvelUI::LPARAM lParam) override;
  // Space and Enter reaching the root from the focused button press it.
  int OnKeyMessage(KarvelUI::UINT message, KarvelUI::UINT wParam, KarvelUI::UINT repeat,
                   KarvelUI::UINT flags) override;
  // Right clicks on the photo or the strip that no control took.
  int OnMouseMessage(KarvelUI::UINT message, KarvelUI::UINT flags, const KarvelUI::CPoint& point) override;

 protected:
  void OnSize(KarvelUI::UINT type, int cx, int cy) override;

 private:
  void FindControls();
  void OnButtonClick(KarvelUI::CUIControl* sender, void* param);
  void OnZoomChanged(KarvelUI::CUIControl* sender, void* param);
  void OnViewZoomed(KarvelUI::CUIControl* sender, void* param);
  // Shows the next installed skin.
  void SwitchSkin();
  // The slider's thumb is placed in window coordinates: again after every layout.
  void PlaceZoomThumb();
  void ShowStatus(const KarvelUI::CString& action);
  // The shown picture's name and size for the status line.
  KarvelUI::CString PictureText() const;
  KarvelUI::CUIButton* FocusedButton();
  // Whether a right click at a client point belongs to the photo or the strip.
  bool OpensContextMenu(const KarvelUI::CPoint& point);

  KarvelUI::CUISlider* m_zoom = nullptr;
  KarvelUI::CUILabel* m_status = nullptr;
  CPhotoView* m_view = nullptr;
  int m_zoomPercent = 100;
  bool m_loadFailed = false;
  std::unique_ptr<CContextMenu> m_menu;
  KarvelUI::CSwirlTransition m_swirl;
  std::unique_ptr<CFolderStrip> m_strip;
  std::string m_statusFile;
};

}  // namespace KarvelView
