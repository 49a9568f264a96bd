#include "thumbnails/ThumbUpdateTask.h"

#include <karvelui/MessageQueue.h>
#include <karvelui/UITime.h>
#include <karvelui/WinConstants.h>

namespace KarvelUI {

ThumbUpdateTask* ThumbUpdateTask::Create(IThumbList* list) {
  if (!list) return nullptr;
  // Freed through Release(), as every task is.
  auto* task = static_cast<ThumbUpdateTask*>(CreateTask(new ThumbUpdateTask(), list));
  task->m_LoadedCallback.bind(list, &IThumbList::ItemThumbLoadedCallback);
  return task;
}

ThumbUpdateTask::~ThumbUpdateTask() {
  // The worker reads the list and this task's members: it goes first.
  KillUpdateTask(this);
}

void ThumbUpdateTask::OnCreate() {
  m_LoadedCallback.clear();
  m_pThreadFunc = &ThumbUpdateTask::ThreadMain;
}

void ThumbUpdateTask::ThreadMain(void* task) {
  auto* self = static_cast<ThumbUpdateTask*>(task);
  self->RunWorkerLoop([self] { return self->RunPass(); });
}

int ThumbUpdateTask::VisitIndex(int centre, int step, int count) {
  // centre, centre - 1, centre + 1, centre - 2, centre + 2, ...
  const int candidate = step % 2 == 1 ? centre - (step + 1) / 2 : centre + step / 2;
  int index = candidate % count;
  if (index < 0) index += count;
  return index;
}

BackUpdateTask::PassEnd ThumbUpdateTask::RunPass() {
  IThumbList* list = List();
  const int selected = list->GetSelectedIndex();
  const int centre = selected >= 0 ? selected : kCentreWithoutSelection;
  CUITime lastRepaint;
  lastRepaint.Now();
  bool changed = false;
  for (int step = 0; step < kStepsPerPass; ++step) {
    switch (CheckBetweenUnits()) {
      case UnitCheck::Restart: return PassEnd::Restart;
      case UnitCheck::Exit: return PassEnd::Exit;
      case UnitCheck::Continue: break;
    }
    const int count = list->GetThumbCount();
    if (count <= 0) return PassEnd::Completed;
    changed = VisitItem(VisitIndex(centre, step, count)) || changed;

    CUITime now;
    now.Now();
    CUITimeSpan elapsed = now - lastRepaint;
    CUITimeSpan interval(kRepaintIntervalMs);
    if (changed && elapsed >= interval) {
      lastRepaint = now;
      changed = false;
      if (const HWND window = list->GetRepaintWindow()) PostMessageW(window, WM_PAINT, 0, 0);
    }
  }
  return PassEnd::Completed;
}

bool ThumbUpdateTask::VisitItem(int index) {
  const std::shared_ptr<_ThumbnailConfig> thumb = List()->GetThumbAt(index);
  if (!thumb) return false;
  switch (thumb->GetState()) {
    case THUMB_STATE_LOADED:
      return false;
    case THUMB_STATE_FAILED:
      m_LoadedCallback(index);
      return true;
    default:
      break;
  }
  if (!thumb->LoadThumbFromThumbDB() && !thumb->LoadThumbFromOriFile()) return false;
  thumb->LoadReflecThumb();
  thumb->SetState(THUMB_STATE_LOADED);
  m_LoadedCallback(index);
  return true;
}

}  // namespace KarvelUI
