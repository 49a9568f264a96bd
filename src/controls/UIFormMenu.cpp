// The form's dealings with its active popup menu live here because the
// menu belongs to this layer, which the form's own layer may not see.

#include <karvelui/UIForm.h>
#include <karvelui/UIMenu.h>

namespace KarvelUI {

// A click in the form, Escape and the form's end all close the whole chain
// and free its tree: nothing else would free it.
void CUIForm::ReleaseActiveMenu(BOOL /*wholeChain*/) {
  CUIMenu* menu = m_pActiveMenu;
  if (!menu) return;
  m_pActiveMenu = nullptr;
  menu->ReleaseAll();
}

}  // namespace KarvelUI
