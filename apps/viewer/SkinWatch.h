#pragma once

// --watch-skins: the skin is read again while its author edits it. Every
// open form is re-skinned in place (window position, picture, zoom and the
// strip's selection stay); the status line says what the skin checker
// found, or which skin was reloaded. A save that no longer parses keeps the
// last good skin.

#include <karvelui/SkinWatcher.h>
#include <karvelui/UIForm.h>

namespace KarvelView {

class SkinWatch {
 public:
  // Watches the skins beside the program, polled from a timer of `form`
  // (which must outlive the watch or stop it by closing). False when the
  // folder cannot be watched.
  bool Start(KarvelUI::CUIForm& form);

 private:
  void OnTimer(unsigned int id);

  KarvelUI::CSkinWatcher m_watcher;
  KarvelUI::CUIForm* m_form = nullptr;
};

}  // namespace KarvelView
