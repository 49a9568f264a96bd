#include <karvelui/SkinWatcher.h>

#include <algorithm>
#include <vector>

#include <karvelui/SkinChecker.h>
#include <karvelui/SkinManager.h>

namespace KarvelUI {

int CSkinWatcher::Start() {
  m_strTheme = CUISkinManager::GetInstance()->GetAppPath() + L"Theme";
  return m_watcher.WatchTree(m_strTheme);
}

int CSkinWatcher::Poll(CString& report) {
  if (m_watcher.Poll() > 0) {
    m_bPending = true;  // wait for the save to settle
    return 0;
  }
  if (!m_bPending) return 0;
  m_bPending = false;
  CUISkinManager* manager = CUISkinManager::GetInstance();
  m_bLastGood = manager->ReloadSkin();
  std::vector<SkinFinding> findings;
  CSkinChecker::Check(m_strTheme, manager->GetCurrentSkinName(), findings);
  auto first = findings.begin();
  if (!m_bLastGood)
    first = std::find_if(findings.begin(), findings.end(), [](const SkinFinding& f) { return f.breaksLoading; });
  if (first == findings.end()) first = findings.begin();
  report = first == findings.end() ? CString() : CSkinChecker::FormatFinding(*first);
  return 1;
}

}  // namespace KarvelUI
