// The film strip's default look: a halo fading in under the pointer, a
// fisheye growth of the selection and its four neighbours each side while
// the strip scrolls the selection to the centre, the full halo once the
// growth is done, and items farther away shrinking back. Each is a board of
// the item (size, halo alpha) or the list's scroll board; a host may
// install its own callbacks instead (CUIList::Set...Effect).

#include <algorithm>

#include <karvelui/AnimationBoard.h>
#include <karvelui/UIForm.h>
#include <karvelui/UIList.h>

namespace KarvelUI {

namespace {

constexpr double kHaloHover = 128;
constexpr double kHaloFull = 255;
constexpr double kHaloHidden = 0;
constexpr DWORD kHaloFadeMs = 200;
constexpr DWORD kSizeMs = 300;
constexpr int kFisheyeReach = 4;     // neighbours that grow on each side
constexpr int kStopReach = 6;        // boards stopped on each side before a selection
constexpr LONG kSelectedGrowth = 23;
constexpr double kNeighbourGrowthBase = 18.0;  // a neighbour at distance d grows 18 - d*d

// Restarts `board` from the fields' current values towards `to`.
void Restart(AnimationBoard& board, CUIForm* form, void* field, unsigned count, TARGET_TYPE type,
             const double* to, DWORD ms, int startTimer) {
  board.Stop(form);
  board.SetTarget(field, count, type);
  board.SetFormula(FORMULA_LINEAR);
  for (unsigned i = 0; i < count; ++i) {
    AnimationTarget target = *board.GetTarget(i);
    board.SetRange(AnimationRange(target.GetValue(), to[i], 1.0), i);
  }
  board.SetDuration(CUITimeSpan(ms));
  board.Begin(form, startTimer);
}

void FadeHalo(UIItemInfo& item, double alpha) {
  Restart(*item.m_pHaloBoard, item.m_pForm, item.HaloAlpha(), 1, TARGET_BYTE, &alpha, kHaloFadeMs, 1);
}

void AnimateSize(UIItemInfo& item, const CSize& size, int startTimer,
                 AnimationCompletedCallback completed = AnimationCompletedCallback()) {
  const double to[] = {static_cast<double>(size.cx), static_cast<double>(size.cy)};
  item.m_pSelectBoard->SetCallbackCompleted(completed);
  Restart(*item.m_pSelectBoard, item.m_pForm, &item.m_size.cx, 2, TARGET_INT, to, kSizeMs, startTimer);
}

CSize Grown(const CSize& size, LONG grow) { return CSize(size.cx + grow, size.cy + grow); }

LONG NeighbourGrowth(int distance) { return static_cast<LONG>(kNeighbourGrowthBase - distance * distance); }

UIItemInfo* ItemAt(const UIItemList& items, int index) {
  return index >= 0 && index < static_cast<int>(items.size()) ? items[index] : nullptr;
}

}  // namespace

void CUIList::DefaultMouseHoverEffect(int index, int, const UIItemList& items, _ListConfig*, CUIList* list) {
  UIItemInfo* item = ItemAt(items, index);
  if (item && index != list->GetSelectedItem()) FadeHalo(*item, kHaloHover);
}

void CUIList::DefaultMouseLeaveEffect(int index, int, const UIItemList& items, _ListConfig*, CUIList* list) {
  UIItemInfo* item = ItemAt(items, index);
  if (item && index != list->GetSelectedItem()) FadeHalo(*item, kHaloHidden);
}

void CUIList::DefaultItemMeasureEffect(int index, CSize& size, const UIItemList& items, _ListConfig* config,
                                       CUIList* list) {
  UIItemInfo* item = ItemAt(items, index);
  if (!item || !config) return;
  const int selected = list->GetSelectedItem();
  // The select effect owns the sizes near the selection.
  if (selected >= 0 && std::abs(index - selected) <= kFisheyeReach) {
    size = item->m_size;
    return;
  }
  if (item->m_size == config->m_szItem) {
    size = config->m_szItem;
    return;
  }
  if (item->m_pSelectBoard->GetState() == ANIMATION_STOPPED || item->m_pSelectBoard->GetState() == ANIMATION_IDLE)
    AnimateSize(*item, config->m_szItem, 1);
  size = item->m_size;  // shrinks over the next frames
}

void CUIList::DefaultItemSelectEffect(int index, int previous, const UIItemList& items, _ListConfig* config,
                                      CUIList* list) {
  UIItemInfo* selected = ItemAt(items, index);
  if (!selected || !config) return;
  for (int i = index - kStopReach; i <= index + kStopReach; ++i)
    if (UIItemInfo* item = ItemAt(items, i)) item->m_pSelectBoard->Stop(item->m_pForm);
  list->CalculatePosition();

  const CSize cell = config->m_szItem;
  double shift = 0;
  for (int d = 1; d <= kFisheyeReach && index - d >= 0; ++d) {
    UIItemInfo* item = items[index - d];
    if (!item) continue;
    const LONG grow = NeighbourGrowth(d);
    AnimateSize(*item, Grown(cell, grow), 0);
    shift += cell.cx - item->m_size.cx + grow;
  }
  for (int d = 1; d <= kFisheyeReach && index + d < static_cast<int>(items.size()); ++d)
    if (UIItemInfo* item = items[index + d]) AnimateSize(*item, Grown(cell, NeighbourGrowth(d)), 0);
  // Items left of the fisheye shrink back when laid out.
  const int firstVisible = static_cast<int>(list->GetFirstVisible());
  const int lastVisible = firstVisible + static_cast<int>(list->GetVisibleCount()) - 1;
  for (int i = firstVisible; i <= index - kFisheyeReach - 1 && i < lastVisible; ++i)
    if (UIItemInfo* item = ItemAt(items, i)) shift += cell.cx - item->m_size.cx;

  // This one start runs the neighbours' boards too.
  AnimateSize(*selected, Grown(cell, kSelectedGrowth), 1, MakeDelegate(list, &CUIList::SelectMoveCompleted));
  shift += (cell.cx - selected->m_size.cx + kSelectedGrowth) * 0.5;

  // The offset that centres the selection's final cell.
  const double target = (selected->m_rect.left - selected->m_rcPadding.left) -
                        (list->GetBounds().Width() - selected->m_size.cx) * 0.5 + shift;
  if (previous == -1) {
    list->GetScrollBoard().Stop(list->GetOwnerForm());
    list->ScrollToOffset(target, 1);
  } else {
    list->AnimationScrollToOffset(target);
  }
  if (CUIForm* form = list->GetOwnerForm(); form && form->GetSafeHwnd()) {
    CRect client;
    form->GetClientRect(&client);
    list->SetLastSize(client.Width(), client.Height());
  }
  if (UIItemInfo* before = ItemAt(items, previous)) FadeHalo(*before, kHaloHidden);
}

void CUIList::SelectMoveCompleted() {
  const int selected = GetSelectedItem();
  if (UIItemInfo* item = ItemAt(GetItems(), selected)) FadeHalo(*item, kHaloFull);
}

}  // namespace KarvelUI
