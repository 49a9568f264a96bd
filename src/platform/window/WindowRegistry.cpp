#include "platform/window/WindowRegistry.h"

#include <algorithm>

namespace KarvelUI::detail {

WindowRegistry& WindowRegistry::Get() {
  static WindowRegistry registry;
  return registry;
}

HWND WindowRegistry::Add(CWnd* wnd, std::shared_ptr<ThreadQueue> queue) {
  std::lock_guard<std::mutex> lock(m_mutex);
  // Handles are aligned fake addresses that are never reused.
  HWND hwnd = reinterpret_cast<HWND>(m_nextHandle);
  m_nextHandle += 4;
  m_windows.emplace(hwnd, Entry{wnd, std::move(queue), m_nextSerial++});
  return hwnd;
}

void WindowRegistry::Remove(HWND hwnd) {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_windows.erase(hwnd);
}

CWnd* WindowRegistry::Find(HWND hwnd) const {
  std::lock_guard<std::mutex> lock(m_mutex);
  auto it = m_windows.find(hwnd);
  if (it == m_windows.end() || !it->second.queue->IsOwnerThread()) return nullptr;
  return it->second.wnd;
}

std::shared_ptr<ThreadQueue> WindowRegistry::QueueOf(HWND hwnd) const {
  std::lock_guard<std::mutex> lock(m_mutex);
  auto it = m_windows.find(hwnd);
  return it == m_windows.end() ? nullptr : it->second.queue;
}

bool WindowRegistry::Contains(HWND hwnd) const {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_windows.count(hwnd) != 0;
}

std::vector<HWND> WindowRegistry::ThreadWindows() const {
  std::vector<std::pair<std::uint64_t, HWND>> found;
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    for (const auto& [hwnd, entry] : m_windows)
      if (entry.queue->IsOwnerThread()) found.emplace_back(entry.serial, hwnd);
  }
  std::sort(found.begin(), found.end());
  std::vector<HWND> result;
  for (const auto& item : found) result.push_back(item.second);
  return result;
}

bool WindowRegistry::AddClass(const WindowClass& cls) {
  std::lock_guard<std::mutex> lock(m_mutex);
  if (cls.name.IsEmpty()) return false;
  for (const WindowClass& existing : m_classes)
    if (existing.name.CompareNoCase(cls.name) == 0) return false;
  m_classes.push_back(cls);
  return true;
}

bool WindowRegistry::RemoveClass(const CString& name) {
  std::lock_guard<std::mutex> lock(m_mutex);
  auto it = std::find_if(m_classes.begin(), m_classes.end(),
                         [&](const WindowClass& c) { return c.name.CompareNoCase(name) == 0; });
  if (it == m_classes.end()) return false;
  m_classes.erase(it);
  return true;
}

bool WindowRegistry::FindClass(const CString& name, WindowClass& out) const {
  std::lock_guard<std::mutex> lock(m_mutex);
  for (const WindowClass& c : m_classes) {
    if (c.name.CompareNoCase(name) == 0) {
      out = c;
      return true;
    }
  }
  return false;
}

}  // namespace KarvelUI::detail
