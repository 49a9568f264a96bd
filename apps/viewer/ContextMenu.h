#pragma once

// The main form's context menu: Open folder..., Rotate left and right, Fit,
// Actual size, Copy path, Skins (one checked entry per installed skin),
// Effects (Banded swirl), About, Exit. Each entry calls the main form's
// command of that name.

#include <karvelui/Collections.h>
#include <karvelui/CString.h>
#include <karvelui/SkinTypes.h>

namespace KarvelUI {
class IMenu;
}

namespace KarvelView {

class CMainForm;

class CContextMenu {
 public:
  // Command ids of the entries; a skin's entry is kFirstSkin + its place
  // in the list of installed skins.
  enum Command {
    kOpenFolder = 1,
    kRotateLeft,
    kRotateRight,
    kFit,
    kActualSize,
    kCopyPath,
    kBandedSwirl,
    kAbout,
    kExit,
    kFirstSkin = 100,
  };

  explicit CContextMenu(CMainForm& form) : m_form(form) {}

  // The tree as the form stands now (picture commands disabled without a
  // picture, the current skin checked). The caller owns it until it hands
  // it to a popup.
  KarvelUI::IMenu* Build();
  // Pops the tree up at a screen point ((-1, -1): at the cursor).
  void Popup(int x, int y);

 private:
  void OnChosen(KarvelUI::IMenu* entry);

  CMainForm& m_form;
  KarvelUI::CArray<KarvelUI::SkinItem> m_skins;  // as listed when the tree was built
};

}  // namespace KarvelView
