#pragma once

// Internal: the table that turns window handles into window objects and
// queues, and the registered window classes. Handles are never reused, so a
// stale handle is simply not found.

#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "platform/window/ThreadQueue.h"
#include <karvelui/WindowTypes.h>

namespace KarvelUI::detail {

struct WindowClass {
  CString name;
  UINT style = 0;
  HCURSOR cursor = nullptr;
};

class WindowRegistry {
 public:
  static WindowRegistry& Get();

  HWND Add(CWnd* wnd, std::shared_ptr<ThreadQueue> queue);
  void Remove(HWND hwnd);
  // The window object, only on its own thread (null elsewhere or when gone).
  CWnd* Find(HWND hwnd) const;
  std::shared_ptr<ThreadQueue> QueueOf(HWND hwnd) const;
  bool Contains(HWND hwnd) const;
  // The calling thread's windows, oldest first.
  std::vector<HWND> ThreadWindows() const;

  bool AddClass(const WindowClass& cls);
  bool RemoveClass(const CString& name);
  bool FindClass(const CString& name, WindowClass& out) const;

 private:
  struct Entry {
    CWnd* wnd;
    std::shared_ptr<ThreadQueue> queue;
    std::uint64_t serial;
  };
  mutable std::mutex m_mutex;
  std::unordered_map<HWND, Entry> m_windows;
  std::vector<WindowClass> m_classes;
  std::uintptr_t m_nextHandle = 0x10000;
  std::uint64_t m_nextSerial = 0;
};

// Implemented by the window class: the paths the queue uses to reach windows.
LRESULT DeliverMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
bool WindowWantsPaint(HWND hwnd);
// Counts the paint scopes a window has opened, so that a WM_PAINT handler
// that never opened one is not asked again and again.
unsigned PaintScopeSerial(HWND hwnd);
void ValidateWholeWindow(HWND hwnd);

}  // namespace KarvelUI::detail
