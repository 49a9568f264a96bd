#include <karvelui/FileWatcher.h>

#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <map>
#include <string>
#include <system_error>

#include "platform/Paths.h"

namespace KarvelUI {
namespace {

// What an editor's save looks like: written in place, or written beside and
// renamed over, or deleted and created anew.
constexpr std::uint32_t kChangeEvents =
    IN_CLOSE_WRITE | IN_MODIFY | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF;
constexpr std::size_t kEventBufferBytes = 64 * 1024;

}  // namespace

struct CFileWatcher::Impl {
  int fd = -1;
  std::map<int, std::string> folders;  // watch descriptor -> native folder

  ~Impl() {
    if (fd >= 0) close(fd);
  }

  bool Watch(const std::string& folder) {
    const int wd = inotify_add_watch(fd, folder.c_str(), kChangeEvents);
    if (wd < 0) return false;
    folders[wd] = folder;
    return true;
  }

  bool WatchTree(const std::string& root) {
    if (!Watch(root)) return false;
    std::error_code error;
    for (auto it = std::filesystem::recursive_directory_iterator(root, error);
         !error && it != std::filesystem::recursive_directory_iterator(); it.increment(error))
      if (it->is_directory(error)) Watch(it->path().string());
    return true;
  }

  int Drain() {
    alignas(inotify_event) char buffer[kEventBufferBytes];
    int changes = 0;
    for (;;) {
      const ssize_t length = read(fd, buffer, sizeof buffer);
      if (length <= 0) break;  // EAGAIN: nothing more for now
      for (ssize_t at = 0; at < length;) {
        const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
        at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        if (event->mask & IN_Q_OVERFLOW) {
          ++changes;
          continue;
        }
        const auto folder = folders.find(event->wd);
        if (folder == folders.end()) continue;
        if ((event->mask & IN_ISDIR) && (event->mask & (IN_CREATE | IN_MOVED_TO)) && event->len > 0)
          WatchTree(folder->second + "/" + event->name);
        if (event->mask & IN_IGNORED) folders.erase(folder);
        ++changes;
      }
    }
    return changes;
  }
};

CFileWatcher::CFileWatcher() : m_pImpl(std::make_unique<Impl>()) {
  m_pImpl->fd = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
}

CFileWatcher::~CFileWatcher() = default;

int CFileWatcher::WatchTree(const CString& folder) {
  if (m_pImpl->fd < 0) return 0;
  return m_pImpl->WatchTree(ToNativePath(folder)) ? 1 : 0;
}

int CFileWatcher::Poll() { return m_pImpl->fd < 0 ? 0 : m_pImpl->Drain(); }

}  // namespace KarvelUI
