#include <karvelui/UIList.h>

#include <algorithm>
#include <cstring>
#include <exception>

#include <karvelui/AnimationBoard.h>
#include <karvelui/DXCore.h>
#include <karvelui/Helpers.h>
#include <karvelui/MessageQueue.h>
#include <karvelui/SkinReader.h>
#include <karvelui/Trace.h>
#include <karvelui/UIForm.h>
#include "thumbnails/ThumbUpdateTask.h"

namespace KarvelUI {

namespace {

constexpr LONG kThumbnailMargin = 20;  // the thumbnail is loaded this much larger than the cell
constexpr LONG kHaloOutset = 6;
constexpr double kWheelStepDivisor = 3.0;  // one notch of 120 scrolls 40 pixels
constexpr DWORD kScrollDurationMs = 300;
constexpr std::size_t kMaxErrorText = 255;

}  // namespace

// --- _ListConfig ---------------------------------------------------------------------------

_ListConfig::_ListConfig() { _ListConfig::Reset(); }

void _ListConfig::Reset() {
  m_imgBackground.Reset();
  m_bIsBKTransparent = 1;
  m_bCanContentScroll = 0;
  m_bIsItemBKTransparent = 1;
  m_imgItemBK.Reset();
  m_imgItemBKSelected.Reset();
  m_imgItemCover.Reset();
  m_rcItemThickness.SetRectEmpty();
  m_szItem = CSize(0, 0);
  m_rcItemPadding.SetRectEmpty();
  GetDefaultLOGFONT(m_fontUnSelected);
  m_dwColorUnSelected = 0xFF000000;
  GetDefaultLOGFONT(m_font);
  m_dwColor = 0xFF000000;
  m_nTextAlignH = 0;
}

void _ListConfig::Copy(_SkinConfig* source) {
  Reset();
  auto* from = dynamic_cast<_ListConfig*>(source);
  if (!from) return;
  m_imgBackground.Copy(&from->m_imgBackground);
  m_font = from->m_font;
  m_fontUnSelected = from->m_fontUnSelected;
  m_dwColor = from->m_dwColor;
  m_dwColorUnSelected = from->m_dwColorUnSelected;
  m_nTextAlignH = from->m_nTextAlignH;
  m_nTextAlignV = from->m_nTextAlignV;
  m_bCanContentScroll = from->m_bCanContentScroll;
}

int _ListConfig::Read(CSkinReader* reader) {
  if (!reader) return 0;
  reader->GetBool(m_bIsBKTransparent, L"IsBKTransparent");
  if (!m_bIsBKTransparent) reader->GetImage(m_imgBackground, L"BKImage");
  reader->GetBool(m_bIsItemBKTransparent, L"IsItemBKTransparent");
  reader->GetImage(m_imgItemBK, L"ItemBKImage");
  if (!reader->GetImage(m_imgItemBKSelected, L"ItemBKImageSelected")) m_imgItemBKSelected.Copy(&m_imgItemBK);
  reader->GetImage(m_imgItemCover, L"ItemCoverImage");
  reader->GetImage(m_imgItemHalo, L"ItemHalo");
  CSize size;
  if (reader->GetSize(size, L"ItemSize")) {
    if (size.cx > 0 && size.cy > 0) {
      m_szItem = size;
    } else {
      // A zero width would divide by zero when the strip is laid out.
      g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"<WARNING> list ItemSize %d, %d is invalid, %d, %d used",
                      size.cx, size.cy, kFallbackItemWidth, kFallbackItemHeight);
      m_szItem = CSize(kFallbackItemWidth, kFallbackItemHeight);
    }
  }
  reader->GetRect(m_rcItemPadding, L"ItemPadding", 1);
  reader->GetFont(m_font, m_dwColor, L"ItemFont");
  // Without its own entry the unselected font overwrites the item font just
  // read (the font only); this direction is the skins' established meaning.
  if (!reader->GetFont(m_fontUnSelected, m_dwColorUnSelected, L"ItemFontUnSelected")) m_font = m_fontUnSelected;
  reader->GetRect(m_rcItemThickness, L"ItemThickness", 1);
  reader->GetInt(m_nTextAlignH, L"TextAlignH");
  reader->GetInt(m_nTextAlignV, L"TextAlignV");
  reader->GetBool(m_bCanContentScroll, L"CanContentScroll");
  return 1;
}

_SkinConfig* _ListConfig::Clone() {
  auto* clone = new _ListConfig();
  clone->Copy(this);
  return clone;
}

// --- UIItemInfo ------------------------------------------------------------------------------

UIItemInfo::UIItemInfo()
    : m_pThumbnail(std::make_shared<_ThumbnailConfig>()),
      m_pSelectBoard(std::make_unique<AnimationBoard>()),
      m_pHaloBoard(std::make_unique<AnimationBoard>()) {
  m_pSelectBoard->SetIsControllable(1);
  m_pHaloBoard->SetIsControllable(1);
}

UIItemInfo::~UIItemInfo() {
  if (m_pForm) {
    m_pSelectBoard->Stop(m_pForm);
    m_pHaloBoard->Stop(m_pForm);
  }
}

void UIItemInfo::Release() { delete this; }

BYTE* UIItemInfo::HaloAlpha() {
  static_assert(sizeof(m_halo.m_dwColor) == 4);
  // The top byte of the ARGB value: the last byte on a little-endian machine.
  return reinterpret_cast<BYTE*>(&m_halo.m_dwColor) + 3;
}

// --- the worker's view of the list ------------------------------------------------------------

// What the loader reads of the list, from its own thread.
class ListThumbSource final : public IThumbList {
 public:
  explicit ListThumbSource(CUIList& list) : m_list(list) {}

  int GetThumbCount() override {
    std::lock_guard lock(m_list.m_itemsMutex);
    return static_cast<int>(m_list.m_items.size());
  }
  std::shared_ptr<_ThumbnailConfig> GetThumbAt(int index) override {
    std::lock_guard lock(m_list.m_itemsMutex);
    if (index < 0 || index >= static_cast<int>(m_list.m_items.size()) || !m_list.m_items[index]) return nullptr;
    return m_list.m_items[index]->m_pThumbnail;
  }
  int GetSelectedIndex() override { return m_list.m_nSelected.load(); }
  HWND GetRepaintWindow() override { return m_window.load(); }
  void ItemThumbLoadedCallback(int index) override { m_list.ItemThumbLoadedCallback(index); }

  std::atomic<HWND> m_window{nullptr};

 private:
  CUIList& m_list;
};

// --- CUIList: life ------------------------------------------------------------------------------

CUIList::CUIList()
    : m_pScrollBoard(std::make_unique<AnimationBoard>()), m_pSource(std::make_unique<ListThumbSource>(*this)) {
  SetTypeName(L"CUIList");
  m_pScrollBoard->SetIsControllable(1);
  m_pScrollBoard->SetCallbackValueChanged(MakeDelegate(this, &CUIList::OnAnimationScrollOffsetChanged));
  m_hoverEffect = [this](int i, int other, const UIItemList& items, _ListConfig* config, CUIList* list) {
    DefaultMouseHoverEffect(i, other, items, config, list);
  };
  m_leaveEffect = [this](int i, int other, const UIItemList& items, _ListConfig* config, CUIList* list) {
    DefaultMouseLeaveEffect(i, other, items, config, list);
  };
  m_selectEffect = [this](int i, int other, const UIItemList& items, _ListConfig* config, CUIList* list) {
    DefaultItemSelectEffect(i, other, items, config, list);
  };
  m_measureEffect = [this](int i, CSize& size, const UIItemList& items, _ListConfig* config, CUIList* list) {
    DefaultItemMeasureEffect(i, size, items, config, list);
  };
  m_pLoader = ThumbUpdateTask::Create(m_pSource.get());
}

CUIList::~CUIList() {
  ClearAll(1);
  m_pLoader->Release();  // kills a worker that is still there
  StopBoard(*m_pScrollBoard);
}

_ListConfig* CUIList::GetListConfig() { return dynamic_cast<_ListConfig*>(GetSkinConfig(CString())); }

void CUIList::OnSetSkinData() { GetSkinConfig(CString()); }

void CUIList::CalculateBounds() {
  CUIControl::CalculateBounds();
  CUIForm* form = GetOwnerForm();
  if (!form || !form->GetSafeHwnd()) return;
  CRect client;
  form->GetClientRect(&client);
  if (client.Width() != m_nLastWidth || client.Height() != m_nLastHeight) OnSize(0, client.Width(), client.Height());
}

void CUIList::StopBoard(AnimationBoard& board) { board.Stop(GetOwnerForm()); }

int CUIList::GetPixelScroll() const { return static_cast<int>(m_dScrollOffset + m_dExtraOffset + 0.5); }

// --- items ------------------------------------------------------------------------------------------

int CUIList::AddItem(UIItemInfo* item, int refresh) {
  return InsertItem(item, static_cast<unsigned>(m_items.size()), refresh);
}

int CUIList::InsertItem(UIItemInfo* item, const unsigned& index, int refresh) {
  _ListConfig* config = GetListConfig();
  if (!config || !item || index > m_items.size()) return 0;
  item->m_pList = this;
  item->m_size = config->m_szItem;
  item->m_rcPadding = config->m_rcItemPadding;
  item->m_pThumbnail->SetSize(config->m_szItem.cx + kThumbnailMargin, config->m_szItem.cy + kThumbnailMargin);
  item->m_bIsItemBKTransparent = config->m_bIsItemBKTransparent;
  item->m_rcThickness = config->m_rcItemThickness;
  item->m_halo = config->m_imgItemHalo;
  *item->HaloAlpha() = 0;  // hidden until an effect fades it in (a skin colour is always opaque)
  CUIForm* form = GetOwnerForm();
  item->m_pThumbnail->SetRenderDevice(form ? form->GetRenderDevice() : nullptr);
  item->m_pForm = form;
  {
    // Set up before the worker can see it.
    std::lock_guard lock(m_itemsMutex);
    m_items.insert(m_items.begin() + index, item);
  }
  // Both indices keep naming the same item.
  const int count = static_cast<int>(m_items.size());
  const int at = static_cast<int>(index);
  if (m_nHovered >= at && m_nHovered < count - 1) ++m_nHovered;
  if (const int selected = m_nSelected.load(); selected >= at && selected < count - 1) m_nSelected = selected + 1;
  if (refresh) Refresh();
  return 1;
}

int CUIList::RemoveItem(unsigned index, int refresh) {
  if (index >= m_items.size()) return 0;
  UIItemInfo* item = m_items[index];
  {
    std::lock_guard lock(m_itemsMutex);
    m_items.erase(m_items.begin() + index);
  }
  if (item) {
    item->m_pSelectBoard->Stop(item->m_pForm);
    BackUpdateTask::ResetUpdateTask(m_pLoader);
    item->Release();
  }
  const int at = static_cast<int>(index);
  // The item that moved into the place is told; the index stays.
  if (m_nHovered == at) OnItemMouseLeave(at, -1);
  else if (m_nHovered > at && m_nHovered >= 1) --m_nHovered;
  if (const int selected = m_nSelected.load(); selected == at) {
    OnItemUnselected(index);
    m_nSelected = -1;
  } else if (selected > at && selected >= 1) {
    m_nSelected = selected - 1;
  }
  if (refresh) Refresh();
  return 1;
}

int CUIList::UpdateItemImage(unsigned index, UIItemInfo* source, int) {
  if (index >= m_items.size() || !m_items[index] || !source) return 0;
  // Frees the picture data and the thumbnail, state 0; the worker loads it on its next pass.
  m_items[index]->m_pThumbnail->UpdateImage(source->m_pThumbnail->GetImage());
  return 1;
}

void CUIList::ClearAll(int keepScroll) {
  BackUpdateTask::KillUpdateTask(m_pLoader);
  StopBoard(*m_pScrollBoard);
  UIItemList items;
  {
    std::lock_guard lock(m_itemsMutex);
    items.swap(m_items);
  }
  for (UIItemInfo* item : items)
    if (item) item->Release();
  {
    std::lock_guard lock(m_loadedMutex);
    m_loaded.clear();
  }
  OnItemMouseLeave(m_nHovered, -1);
  m_nHovered = -1;
  if (const int selected = m_nSelected.load(); selected >= 0) {
    OnItemUnselected(static_cast<UINT>(selected));
    m_nSelected = -1;
  }
  m_nEffectIndex = -1;
  _ThumbnailConfig::ClearThumbDB();
  if (!keepScroll) AnimationScrollToOffset(0.0);
}

void CUIList::SetItemRotateAngle(int index, const double& angle) {
  if (index >= 0 && index < static_cast<int>(m_items.size()) && m_items[index]) m_items[index]->SetRotateAngle(angle);
}

void CUIList::GetFiles(CStringArray& paths, CString& selectedPath) {
  const int selected = m_nSelected.load();
  if (m_items.empty() || selected < 0) return;
  selectedPath = m_items[selected]->m_pThumbnail->GetImage();
  for (UIItemInfo* item : m_items)
    if (item) paths.Add(item->m_pThumbnail->GetImage());
}

void CUIList::GetSelectedItemPath(CString& path) {
  const int selected = m_nSelected.load();
  if (selected >= 0 && selected < static_cast<int>(m_items.size())) path = m_items[selected]->m_pThumbnail->GetImage();
}

// --- layout -------------------------------------------------------------------------------------------

void CUIList::CalculatePosition() {
  _ListConfig* config = GetListConfig();
  if (!config) return;
  const CRect bounds = GetBounds();
  const int width = bounds.Width();
  const int height = bounds.Height();
  // The skin record refuses a non-positive width; a record made in code may still carry one.
  const int cellWidth = config->m_szItem.cx > 0 ? config->m_szItem.cx : _ListConfig::kFallbackItemWidth;
  const int perPage = width / cellWidth;
  const int half = perPage / 2;
  const int count = static_cast<int>(m_items.size());
  const int first = std::max(0, m_nSelected.load() - half - 1);
  const int last = std::min(first + perPage, count - 1);
  int x = first * cellWidth;
  for (int i = first; i <= last; ++i) {
    UIItemInfo* item = m_items[i];
    if (!item) continue;
    try {
      if (m_measureEffect) m_measureEffect(i, item->m_size, m_items, config, this);
      item->m_rect.SetRectEmpty();
      const CSize size = item->m_size;
      const CRect& padding = item->m_rcPadding;
      if (size.cx == 0 || size.cy == 0 || padding.left + padding.right > size.cx ||
          padding.top + padding.bottom > size.cy) {
        g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH,
                        L"<WARNING> calculate position listchildren[%d]: size or padding is invalidity", i);
        continue;
      }
      const int y = (height - size.cy) / 2;
      item->m_rect.SetRect(x + padding.left, y + padding.top, x + size.cx - padding.right,
                           y + size.cy - padding.bottom);
      x += size.cx;
    } catch (const std::exception& error) {
      g_ITrace->Trace(TRACE_LEVEL_DEVICE, TRACE_FLUSH, L"<ERROR> foreach listchildren[%d]: %s", i,
                      CString(std::string(error.what()).substr(0, kMaxErrorText).c_str()));
    }
  }
  m_nFirstVisible = static_cast<unsigned>(first);
  m_nVisibleCount = static_cast<unsigned>(std::max(0, last - first + 1));
}

void CUIList::CalculateViewport() {
  m_nFirstVisible = 0;
  m_nVisibleCount = 0;
  _ListConfig* config = GetListConfig();
  if (!config || m_items.empty()) return;
  const int scroll = GetPixelScroll();
  const int width = GetBounds().Width();
  int first = -1;
  std::size_t stop = m_items.size();
  for (std::size_t i = 0; i < m_items.size(); ++i) {
    UIItemInfo* item = m_items[i];
    if (!item) continue;
    CRect rect = item->m_rect;
    rect.OffsetRect(-scroll, 0);
    if (config->m_bCanContentScroll ? rect.right > width : rect.left > width) {
      stop = i;
      break;
    }
    if (first < 0 && (config->m_bCanContentScroll ? rect.left >= 0 : rect.right > 0)) first = static_cast<int>(i);
  }
  if (first < 0) return;
  m_nFirstVisible = static_cast<unsigned>(first);
  m_nVisibleCount = static_cast<unsigned>(stop - static_cast<std::size_t>(first));
}

// --- drawing ------------------------------------------------------------------------------------------

bool CUIList::IsItemVisible(const CRect& rect, int width, int canContentScroll) const {
  if (canContentScroll) return rect.left >= 0 && rect.right <= width;
  return rect.left <= width && rect.right > 0;
}

void CUIList::RenderSelf(DXCore* dx, CRect*) {
  DeliverLoadedItems();
  _ListConfig* config = GetListConfig();
  if (!config) return;
  CalculatePosition();
  CRect bounds = GetBounds();
  if (!config->m_bIsBKTransparent) config->m_imgBackground.Render(dx, bounds, nullptr);
  const int scroll = GetPixelScroll();
  const unsigned end = std::min<unsigned>(m_nFirstVisible + m_nVisibleCount, GetItemsCount());
  for (unsigned i = m_nFirstVisible; i < end; ++i) {
    UIItemInfo* item = m_items[i];
    if (!item) continue;
    CRect rect = item->m_rect;
    rect.OffsetRect(-scroll, 0);
    const int state = item->m_pThumbnail->GetState();
    if (state == THUMB_STATE_NOT_LOADED) continue;
    if (state == THUMB_STATE_FAILED) {
      // The rest of the range waits until the host has dealt with this one.
      FireIndexEvent(UI_EVENT_LIST_THUMB_FAILED, static_cast<int>(i));
      break;
    }
    if (!IsItemVisible(rect, bounds.Width(), config->m_bCanContentScroll)) continue;
    rect.OffsetRect(bounds.left, bounds.top);
    RenderItem(dx, config, item, rect, bounds);
  }
}

int CUIList::RenderItem(DXCore* dx, _ListConfig* config, UIItemInfo* item, CRect itemRect, CRect clip) {
  CRect halo = itemRect;
  halo.InflateRect(kHaloOutset, kHaloOutset);
  CRect thumb = itemRect;
  thumb.DeflateRect(item->m_rcThickness.left, item->m_rcThickness.top, item->m_rcThickness.right,
                    item->m_rcThickness.bottom);
  if (!item->m_bIsItemBKTransparent && GetOpacity() == 1.0f) {
    _ImageConfig& background = item->m_bIsSelected ? config->m_imgItemBKSelected : config->m_imgItemBK;
    background.Render(dx, thumb, &clip);
  }
  if (!item->m_pThumbnail->Render(dx, thumb, &clip, item->m_dRotateAngle)) return 0;
  if (!item->m_bIsSelected) config->m_imgItemCover.Render(dx, thumb, &clip);
  item->m_halo.Render(dx, halo);
  return 1;
}

// --- hit testing and the mouse -------------------------------------------------------------------

int CUIList::GetItemByPoint(const CPoint& point, unsigned& index) {
  if (m_items.empty() || m_nVisibleCount == 0 || !GetListConfig()) return 0;
  const int scroll = GetPixelScroll();
  const unsigned end = std::min<unsigned>(m_nFirstVisible + m_nVisibleCount, GetItemsCount());
  for (unsigned i = m_nFirstVisible; i < end; ++i) {
    UIItemInfo* item = m_items[i];
    if (!item || item->m_pThumbnail->GetState() == THUMB_STATE_NOT_LOADED) continue;
    CRect cell = item->m_rect;
    cell.InflateRect(item->m_rcPadding);
    cell.OffsetRect(-scroll, 0);
    if (cell.PtInRect(point)) {
      index = i;
      return 1;
    }
  }
  return 0;
}

void CUIList::MouseHoverHitTest(const CPoint& point) {
  unsigned hit = 0;
  if (GetItemByPoint(point, hit)) {
    const int index = static_cast<int>(hit);
    if (index == m_nHovered) return;
    const int previous = m_nHovered;
    if (previous >= 0) OnItemMouseLeave(previous, index);
    OnItemMouseHover(index, previous);
    m_nHovered = index;
  } else if (m_nHovered >= 0) {
    OnItemMouseLeave(m_nHovered, -1);
    m_nHovered = -1;
  }
}

void CUIList::SelectedHitTest(const CPoint&) {
  if (m_nHovered >= 0 && m_nHovered != m_nSelected.load()) SelectItem(static_cast<unsigned>(m_nHovered), 0);
}

int CUIList::OnMouseMessage(UINT message, UINT flags, const CPoint& point) {
  switch (message) {
    case WM_MOUSEMOVE: OnMouseMove(flags, point); return 1;
    case WM_LBUTTONDOWN:
      SetFocused(1);
      OnLButtonDown(flags, point);
      return 1;
    case WM_MOUSEWHEEL: OnMouseWheel(flags, point); return 1;
    case WM_MOUSELEAVE: OnMouseLeave(flags, point); return 1;
    default: return 0;
  }
}

void CUIList::OnMouseMove(UINT, const CPoint& point) {
  const CRect bounds = GetBounds();
  m_ptLastMouse = CPoint(point.x - bounds.left, point.y - bounds.top);
  MouseHoverHitTest(m_ptLastMouse);
}

void CUIList::OnLButtonDown(UINT, const CPoint&) {
  if (m_nHovered >= 0 && m_nHovered != m_nSelected.load()) SelectItem(static_cast<unsigned>(m_nHovered), 0);
}

void CUIList::OnMouseLeave(UINT, const CPoint&) {
  if (m_nHovered < 0) return;
  OnItemMouseLeave(m_nHovered, -1);
  m_nHovered = -1;
}

void CUIList::OnMouseWheel(UINT flags, const CPoint&) {
  const int delta = GET_WHEEL_DELTA_WPARAM(flags);
  if (GetCanContentScroll()) {
    const int count = static_cast<int>(m_items.size());
    if (delta == 0 || count == 0) return;
    int next = m_nSelected.load() + (delta < 0 ? 1 : -1);
    if (next >= count) next = 0;
    if (next < 0) next = count - 1;
    SelectItem(static_cast<unsigned>(next), 0);
    return;
  }
  // Fast turns add up: the target of a running scroll is the base.
  const bool running = m_pScrollBoard->GetState() == ANIMATION_RUNNING;
  const double base = running ? m_dScrollTarget : m_dScrollOffset;
  AnimationScrollToOffset(base - delta / kWheelStepDivisor);
}

// --- selection -----------------------------------------------------------------------------------------

void CUIList::SelectItem(unsigned index, int force) {
  if (index >= m_items.size() || !m_items[index]) return;
  UIItemInfo* item = m_items[index];
  if (!force && item->m_pThumbnail->GetState() != THUMB_STATE_LOADED) return;
  if (const int selected = m_nSelected.load(); selected >= 0) {
    OnItemUnselected(static_cast<UINT>(selected));
    m_nSelected = -1;
  }
  m_nSelected = static_cast<int>(index);
  OnItemSelected(index);
  if (CUIForm* form = GetOwnerForm()) m_pSource->m_window = form->GetSafeHwnd();
  if (!BackUpdateTask::ResetUpdateTask(m_pLoader)) BackUpdateTask::BeginUpdateTask(m_pLoader);
  if (item->m_pThumbnail->GetState() == THUMB_STATE_LOADED) RunSelectEffect(static_cast<int>(index));
}

void CUIList::RunSelectEffect(int index) {
  if (m_selectEffect) m_selectEffect(index, m_nEffectIndex, m_items, GetListConfig(), this);
  m_nEffectIndex = index;
}

void CUIList::UnselectItem() {
  const int selected = m_nSelected.load();
  if (selected < 0) return;
  OnItemUnselected(static_cast<UINT>(selected));
  m_nSelected = -1;
}

void CUIList::OnItemSelected(UINT index) {
  if (index < m_items.size() && m_items[index]) m_items[index]->m_bIsSelected = 1;
  FireEvent(UI_EVENT_LIST_SELECTED, this);
}

void CUIList::OnItemUnselected(UINT index) {
  if (index < m_items.size() && m_items[index]) m_items[index]->m_bIsSelected = 0;
  Refresh();
}

void CUIList::OnItemMouseHover(int index, int previous) {
  _ListConfig* config = GetListConfig();
  if (!config || index < 0 || index >= static_cast<int>(m_items.size()) || !m_items[index]) return;
  m_items[index]->m_bIsHover = 1;
  if (m_hoverEffect) m_hoverEffect(index, previous, m_items, config, this);
}

void CUIList::OnItemMouseLeave(int index, int next) {
  _ListConfig* config = GetListConfig();
  if (!config || index < 0 || index >= static_cast<int>(m_items.size()) || !m_items[index]) return;
  m_items[index]->m_bIsHover = 0;
  if (m_leaveEffect) m_leaveEffect(index, next, m_items, config, this);
}

// --- the worker's reports ----------------------------------------------------------------------------------

void CUIList::ItemThumbLoadedCallback(int index) {
  bool first = false;
  {
    std::lock_guard lock(m_loadedMutex);
    first = m_loaded.empty();
    m_loaded.push_back(index);
  }
  // One paint request per batch; that paint delivers the batch.
  if (first)
    if (const HWND window = m_pSource->m_window.load()) PostMessageW(window, WM_PAINT, 0, 0);
}

void CUIList::DeliverLoadedItems() {
  std::vector<int> loaded;
  {
    std::lock_guard lock(m_loadedMutex);
    loaded.swap(m_loaded);
  }
  for (const int index : loaded) {
    if (index < 0 || index >= static_cast<int>(m_items.size()) || !m_items[index]) continue;
    // A selection made before its picture was ready gets its effect now.
    if (index == m_nSelected.load() && m_items[index]->m_pThumbnail->GetState() == THUMB_STATE_LOADED)
      RunSelectEffect(index);
    FireIndexEvent(UI_EVENT_LIST_THUMB_LOADED, index);
  }
}

void CUIList::FireIndexEvent(int id, int index) {
  // The handler owns the integer.
  FireEvent(id, new int(index));
}

// --- scrolling -----------------------------------------------------------------------------------------------

int CUIList::OnScrollOffsetChanged(double, double) { return 1; }

void CUIList::ApplyScrollOffset(double offset) {
  m_dScrollOffset = offset;
  CalculateViewport();
  MouseHoverHitTest(m_ptLastMouse);
}

int CUIList::ScrollToOffset(double offset, int refresh) {
  if (!OnScrollOffsetChanged(m_dScrollOffset, offset)) return 0;
  ApplyScrollOffset(offset);
  if (refresh) Refresh();
  return 1;
}

void CUIList::AnimationScrollToOffset(double target) {
  m_dScrollTarget = target;
  StopBoard(*m_pScrollBoard);
  m_pScrollBoard->SetTarget(&m_dAnimatedOffset, 1, TARGET_DOUBLE);
  m_pScrollBoard->SetFormula(FORMULA_LINEAR);
  m_pScrollBoard->SetRange(AnimationRange(m_dScrollOffset, target, 1.0), 0);
  m_pScrollBoard->SetDuration(CUITimeSpan(kScrollDurationMs));
  m_pScrollBoard->Begin(GetOwnerForm(), 1);
}

void CUIList::OnAnimationScrollOffsetChanged(double*, double*, unsigned) {
  // The controller repaints after the tick.
  if (OnScrollOffsetChanged(m_dScrollOffset, m_dAnimatedOffset)) ApplyScrollOffset(m_dAnimatedOffset);
}

void CUIList::ScrollToItem(unsigned index, SCROLL_POSITION position) {
  if (!GetListConfig() || index >= m_items.size() || !m_items[index]) return;
  const UIItemInfo& item = *m_items[index];
  if (position == SCROLL_POSITION_LEFT) {
    AnimationScrollToOffset(item.m_rect.left - item.m_rcPadding.left);
  } else if (position == SCROLL_POSITION_RIGHT) {
    // The sign is the established one, not the offset that shows the right edge.
    AnimationScrollToOffset(GetBounds().Width() - (item.m_rect.right + item.m_rcPadding.right));
  }
}

void CUIList::OnSize(UINT, int cx, int cy) {
  if (cx > 0 && cy > 0 && m_nSelected.load() >= 0) {
    const double d = (m_nLastWidth - cx) * 0.5;
    if (m_pScrollBoard->GetState() == ANIMATION_RUNNING)
      m_pScrollBoard->SetRange(AnimationRange(m_dScrollOffset, m_dScrollTarget + d, 1.0), 0);
    else
      ScrollToOffset(m_dScrollOffset + d, 1);
  }
  m_nLastWidth = cx;
  m_nLastHeight = cy;
}

int CUIList::GetCanContentScroll() {
  _ListConfig* config = GetListConfig();
  return config ? config->m_bCanContentScroll : 0;
}

void CUIList::SetCanContentScroll(int canScroll) {
  if (_ListConfig* config = GetListConfig()) config->m_bCanContentScroll = canScroll;
}

void CUIList::ForceRefresh() {
  if (CUIForm* form = GetOwnerForm()) PostMessageW(form->GetSafeHwnd(), WM_PAINT, 0, 0);
}

}  // namespace KarvelUI
