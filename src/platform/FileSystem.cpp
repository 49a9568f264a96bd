#include "platform/FileSystem.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>
#include <string>

#include "platform/Paths.h"

namespace KarvelUI {
namespace {

constexpr std::int64_t kNanosPerSecond = 1000000000LL;

std::int64_t ToNanos(const statx_timestamp& t) {
  return static_cast<std::int64_t>(t.tv_sec) * kNanosPerSecond + t.tv_nsec;
}

timespec ToPosixTime(std::int64_t nanos) {
  timespec t{};
  t.tv_sec = static_cast<time_t>(nanos / kNanosPerSecond);
  t.tv_nsec = static_cast<long>(nanos % kNanosPerSecond);
  if (t.tv_nsec < 0) {
    t.tv_nsec += kNanosPerSecond;
    --t.tv_sec;
  }
  return t;
}

std::mutex& WritableHookMutex() {
  static std::mutex mutex;
  return mutex;
}

FolderWritableHook& WritableHook() {
  static FolderWritableHook hook;
  return hook;
}

}  // namespace

bool PathExists(const CString& path) {
  if (path.IsEmpty()) return false;
  struct stat st{};
  return stat(ToNativePath(path).c_str(), &st) == 0;
}

bool GetPathStatus(const CString& path, FileStatus& status) {
  if (path.IsEmpty()) return false;
  struct statx sx{};
  const unsigned mask = STATX_BASIC_STATS | STATX_BTIME;
  if (statx(AT_FDCWD, ToNativePath(path).c_str(), 0, mask, &sx) != 0) return false;
  status.size = sx.stx_size;
  status.modificationTime = ToNanos(sx.stx_mtime);
  status.accessTime = ToNanos(sx.stx_atime);
  status.creationTime = (sx.stx_mask & STATX_BTIME) ? ToNanos(sx.stx_btime) : ToNanos(sx.stx_ctime);
  status.isFolder = S_ISDIR(sx.stx_mode);
  return true;
}

bool SetPathTimes(const CString& path, std::int64_t accessTime, std::int64_t modificationTime) {
  if (path.IsEmpty()) return false;
  const timespec times[2] = {ToPosixTime(accessTime), ToPosixTime(modificationTime)};
  return utimensat(AT_FDCWD, ToNativePath(path).c_str(), times, 0) == 0;
}

bool RemoveFile(const CString& path) {
  if (path.IsEmpty()) return false;
  return unlink(ToNativePath(path).c_str()) == 0;
}

bool IsFolderWritable(const CString& folder) {
  FolderWritableHook hook;
  {
    std::lock_guard<std::mutex> lock(WritableHookMutex());
    hook = WritableHook();
  }
  if (hook) return hook(folder);
  if (folder.IsEmpty()) return false;
  return access(ToNativePath(folder).c_str(), W_OK | X_OK) == 0;
}

FolderWritableHook SetFolderWritableHook(FolderWritableHook hook) {
  std::lock_guard<std::mutex> lock(WritableHookMutex());
  FolderWritableHook previous = std::move(WritableHook());
  WritableHook() = std::move(hook);
  return previous;
}

CreateFolderResult CreateFolder(const CString& path) {
  if (path.IsEmpty()) return CreateFolderResult::Failed;
  if (mkdir(ToNativePath(path).c_str(), 0777) == 0) return CreateFolderResult::Created;
  if (errno != EEXIST) return CreateFolderResult::Failed;
  // EEXIST also covers a file of that name, which is no folder.
  FileStatus status;
  return GetPathStatus(path, status) && status.isFolder ? CreateFolderResult::AlreadyExists
                                                        : CreateFolderResult::Failed;
}

namespace {

bool MakeFolderTree(const CString& path, mode_t mode) {
  const std::string native = ToNativePath(path);
  if (native.empty()) return false;
  for (size_t at = native.find('/', 1); at != std::string::npos; at = native.find('/', at + 1))
    mkdir(native.substr(0, at).c_str(), mode);  // parents that exist fail harmlessly
  mkdir(native.c_str(), mode);
  struct stat st{};
  return stat(native.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool WriteAll(int fd, const std::string& bytes) {
  for (size_t done = 0; done < bytes.size();) {
    const ssize_t written = write(fd, bytes.data() + done, bytes.size() - done);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    done += static_cast<size_t>(written);
  }
  return true;
}

}  // namespace

bool CreateFolderTree(const CString& path) { return MakeFolderTree(path, 0777); }

bool CreatePrivateFolderTree(const CString& path, unsigned mode) { return MakeFolderTree(path, mode); }

WriteFileResult WriteFileAtomically(const CString& path, const std::string& bytes, unsigned mode) {
  const std::string native = ToNativePath(path);
  if (native.empty()) return WriteFileResult::Failed;
  std::string temporary = native + ".XXXXXX";
  const int fd = mkstemp(temporary.data());
  if (fd < 0) {
    return errno == EACCES || errno == EPERM || errno == EROFS ? WriteFileResult::NotWritable
                                                                : WriteFileResult::Failed;
  }
  const bool written = fchmod(fd, mode) == 0 && WriteAll(fd, bytes);
  const bool closed = close(fd) == 0;
  if (!written || !closed || rename(temporary.c_str(), native.c_str()) != 0) {
    unlink(temporary.c_str());
    return WriteFileResult::Failed;
  }
  return WriteFileResult::Written;
}

bool SetHiddenAttribute(const CString& path, bool /*hidden*/) { return PathExists(path); }

}  // namespace KarvelUI
