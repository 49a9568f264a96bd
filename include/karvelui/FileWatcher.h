#pragma once

// CFileWatcher: learns that files in a folder tree were saved, created,
// renamed or deleted (inotify). Poll() never blocks, so a host asks from a
// window timer. Folders created below a watched one are watched from then
// on. One thread only.

#include <memory>

#include <karvelui/Base.h>

namespace KarvelUI {

class KARVELUI_API CFileWatcher {
 public:
  CFileWatcher();
  ~CFileWatcher();
  CFileWatcher(const CFileWatcher&) = delete;
  CFileWatcher& operator=(const CFileWatcher&) = delete;

  // Watches folder and every folder below it; 0 when it cannot be watched.
  int WatchTree(const CString& folder);
  // The number of changes seen since the last call; 0 when none.
  int Poll();

 private:
  struct Impl;
  std::unique_ptr<Impl> m_pImpl;
};

}  // namespace KarvelUI
