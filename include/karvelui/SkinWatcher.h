#pragma once

// CSkinWatcher: live reload for skin authors. It watches the skin manager's
// theme folder; the host calls Poll() from a window timer (every 100 ms or
// so). Once a change has been followed by one quiet poll (an editor's save
// is several file operations), it reads the default and the current skin
// again (CUISkinManager::ReloadSkin: every form is re-skinned in place, so
// windows keep their place and their controls their state) and checks the
// theme (CSkinChecker). A skin that no longer parses keeps the last good one.
// UI thread only.

#include <karvelui/Base.h>
#include <karvelui/FileWatcher.h>

namespace KarvelUI {

class KARVELUI_API CSkinWatcher {
 public:
  // Watches the application folder's "Theme" (CUISkinManager::GetAppPath);
  // 0 when it cannot be watched.
  int Start();
  // 1 when a reload was tried: `report` is then the checker's first
  // finding ("file:line: message"; for a skin that no longer parses, the
  // parse error) or empty when the theme checks clean. 0 otherwise.
  int Poll(CString& report);
  // Whether the last reload took (0: the last good skin is still shown).
  int IsLastReloadGood() const { return m_bLastGood; }

 private:
  CFileWatcher m_watcher;
  CString m_strTheme;
  bool m_bPending = false;
  int m_bLastGood = 1;
};

}  // namespace KarvelUI
