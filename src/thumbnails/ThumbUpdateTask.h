#pragma once

// ThumbUpdateTask: the thumbnail list's background loader. Its worker walks
// the list outward from the selected item (centre, centre - 1, centre + 1,
// ... out to 40 on either side, wrapping around lists shorter than that),
// loads every thumbnail that is not loaded yet (thumbs.db first, then the
// picture file), calls the list's loaded-callback on the worker thread for
// each item it finished or found failed, and posts a repaint (WM_PAINT, both
// parameters zero) to the list's window at most every 50 ms. A new selection
// restarts the pass around the new centre; a kill ends the worker at the
// next item.
//
// The list may change while the worker reads it. IThumbList hands out each
// item's thumbnail record under shared ownership, so a record removed while
// it loads stays alive until the worker lets go of it; the list's own lock
// guards only the reading of its array, never a decode.

#include <memory>

#include <karvelui/BackUpdateTask.h>
#include <karvelui/FastDelegate.h>
#include <karvelui/ThumbnailConfig.h>
#include <karvelui/Types.h>

namespace KarvelUI {

// What the worker needs of its list. Every call may come from the worker
// thread while the list changes on its own thread.
class IThumbList {
 public:
  virtual int GetThumbCount() = 0;
  // The thumbnail record of item `index`, or null when there is none.
  virtual std::shared_ptr<_ThumbnailConfig> GetThumbAt(int index) = 0;
  // -1 when nothing is selected.
  virtual int GetSelectedIndex() = 0;
  // The window that receives repaint requests; null when there is none.
  virtual HWND GetRepaintWindow() = 0;
  // The loaded-callback target: an item was loaded or has failed.
  virtual void ItemThumbLoadedCallback(int index) = 0;

 protected:
  ~IThumbList() = default;
};

class ThumbUpdateTask : public BackUpdateTask {
 public:
  static constexpr int kCentreWithoutSelection = 40;  // a fixed guess, kept on purpose
  static constexpr int kStepsPerPass = 81;
  static constexpr DWORD kRepaintIntervalMs = 50;

  // A task owned by `list`, its loaded-callback bound to the list's.
  static ThumbUpdateTask* Create(IThumbList* list);

  // Clears the loaded callback and installs the worker.
  void OnCreate() override;

  // The item the pass's step k visits, wrapped into a list of `count` items.
  static int VisitIndex(int centre, int step, int count);

  FastDelegate1<int> m_LoadedCallback;

 protected:
  ~ThumbUpdateTask() override;

 private:
  static void ThreadMain(void* task);
  PassEnd RunPass();
  // One item of the pass; true when it changed (loaded or found failed).
  bool VisitItem(int index);
  IThumbList* List() const { return static_cast<IThumbList*>(m_pOwner); }
};

}  // namespace KarvelUI
