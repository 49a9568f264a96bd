#include <karvelui/DragDrop.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>

namespace KarvelUI {

namespace {

// Handles are numbers, never addresses: a stale or doubled DragFinish
// finds nothing instead of freeing twice.
struct DropRegistry {
  std::mutex mutex;
  std::map<std::uintptr_t, std::vector<CString>> drops;
  std::uintptr_t next = 1;
};

DropRegistry& Registry() {
  static DropRegistry registry;
  return registry;
}

// A copy of the drop's files; false for an unknown handle.
bool FilesOf(HDROP drop, std::vector<CString>& files) {
  DropRegistry& r = Registry();
  std::lock_guard lock(r.mutex);
  const auto it = r.drops.find(reinterpret_cast<std::uintptr_t>(drop));
  if (it == r.drops.end()) return false;
  files = it->second;
  return true;
}

}  // namespace

HDROP CreateDropFiles(const std::vector<CString>& files) {
  DropRegistry& r = Registry();
  std::lock_guard lock(r.mutex);
  const std::uintptr_t id = r.next++;
  r.drops[id] = files;
  return reinterpret_cast<HDROP>(id);
}

UINT DragQueryFileW(HDROP drop, UINT index, wchar_t* buffer, UINT size) {
  std::vector<CString> files;
  if (!FilesOf(drop, files)) return 0;
  if (index == DRAG_QUERY_COUNT) return static_cast<UINT>(files.size());
  if (index >= files.size()) return 0;
  const CString& file = files[index];
  const UINT length = static_cast<UINT>(file.GetLength());
  if (buffer && size > 0) {
    const UINT copied = std::min(length, size - 1);
    std::wmemcpy(buffer, file.GetString(), copied);
    buffer[copied] = L'\0';
    return copied;
  }
  return length;
}

CString DragQueryFilePath(HDROP drop, UINT index) {
  std::vector<CString> files;
  if (!FilesOf(drop, files) || index >= files.size()) return CString();
  return files[index];
}

void DragFinish(HDROP drop) {
  DropRegistry& r = Registry();
  std::lock_guard lock(r.mutex);
  r.drops.erase(reinterpret_cast<std::uintptr_t>(drop));
}

}  // namespace KarvelUI
