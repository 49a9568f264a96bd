#pragma once

// CUIList: the film strip. One horizontal row of picture thumbnails with one
// selected item, enlarged and centred; the host creates each UIItemInfo,
// names its picture and hands it to the list, which owns it from then on.
// Thumbnails load on the list's background worker, outward from the
// selection (the first selection starts it); only loaded items are drawn.
// Every movement (scrolling, growth, halo fades) is an animation board run
// by the form's animation controller, started by four replaceable effect
// callbacks (UIListEffects.cpp holds the defaults).
//
// Events (parameters): UI_EVENT_LIST_SELECTED (the list),
// UI_EVENT_LIST_THUMB_FAILED and UI_EVENT_LIST_THUMB_LOADED (a new int*
// holding the index, which the handler owns).
//
// Threads. The worker reads the item array under the list's own lock and
// writes only thumbnail records. Its loaded-callback hands the index over to
// the user-interface thread (and asks for a paint); the list's next paint or
// DeliverLoadedItems() runs the select effect and raises
// UI_EVENT_LIST_THUMB_LOADED there, so items, boards and host handlers are
// touched by one thread only. ClearAll kills the worker before it frees
// items.

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include <karvelui/Base.h>
#include <karvelui/ImageConfig.h>
#include <karvelui/SkinConfig.h>
#include <karvelui/ThumbnailConfig.h>
#include <karvelui/UIControl.h>

namespace KarvelUI {

class AnimationBoard;
class CUIList;
class ThumbUpdateTask;
class ListThumbSource;

// The list's skin record (css type "CUIList").
class KARVELUI_API _ListConfig : public _SkinConfig {
 public:
  // Used when a skin gives an "ItemSize" that cannot lay anything out.
  static constexpr LONG kFallbackItemWidth = 96;
  static constexpr LONG kFallbackItemHeight = 72;

  _ListConfig();
  _ListConfig(const _ListConfig&) = default;
  _ListConfig& operator=(const _ListConfig&) = default;

  // Only the background, both fonts and colours, both alignments and
  // canContentScroll; the rest keeps its reset value, on purpose.
  void Copy(_SkinConfig* source) override;
  void Reset() override;
  // Always 1 for a reader. An "ItemSize" without a positive width and
  // height is refused with a trace line; the fallback size is used.
  int Read(CSkinReader* reader) override;
  _SkinConfig* Clone() override;

  _ImageConfig m_imgBackground;            // "BKImage", read only when transparent is 0
  int m_bIsBKTransparent = 1;              // "IsBKTransparent"
  int m_bCanContentScroll = 0;             // "CanContentScroll"
  int m_bIsItemBKTransparent = 1;          // "IsItemBKTransparent"
  _ImageConfig m_imgItemBK;                // "ItemBKImage"
  _ImageConfig m_imgItemBKSelected;        // "ItemBKImageSelected", else a copy of "ItemBKImage"
  _ImageConfig m_imgItemCover;             // "ItemCoverImage"
  CRect m_rcItemThickness;                 // "ItemThickness"
  CSize m_szItem;                          // "ItemSize"
  CRect m_rcItemPadding;                   // "ItemPadding"
  _ImageBorderConfig m_imgItemHalo;        // "ItemHalo", not touched by Reset
  LOGFONTW m_fontUnSelected{};             // "ItemFontUnSelected"
  DWORD m_dwColorUnSelected = 0xFF000000;
  LOGFONTW m_font{};                       // "ItemFont"
  DWORD m_dwColor = 0xFF000000;
  int m_nTextAlignH = 0;                   // "TextAlignH"
  int m_nTextAlignV = 0;                   // "TextAlignV", not touched by Reset
};

// One item of a list. Made by the host with new; the list frees it through
// Release() once it has been inserted.
class KARVELUI_API UIItemInfo {
 public:
  UIItemInfo();
  // Stops both boards on the item's form, then frees them.
  virtual ~UIItemInfo();
  // Copies would free the boards twice; nothing copies an item.
  UIItemInfo(const UIItemInfo&) = delete;
  UIItemInfo& operator=(const UIItemInfo&) = delete;

  virtual void Release();

  int GetSelected() const { return m_bIsSelected; }
  int GetIsHover() const { return m_bIsHover; }
  CUIList* GetList() const { return m_pList; }
  CSize GetSize() const { return m_size; }
  CRect GetPadding() const { return m_rcPadding; }
  void SetRotateAngle(const double& angle) { m_dRotateAngle = angle; }

  _ThumbnailConfig& Thumbnail() { return *m_pThumbnail; }
  // The alpha byte of the halo's colour: what the halo board animates.
  BYTE* HaloAlpha();
  BYTE GetHaloAlpha() const { return static_cast<BYTE>(m_halo.m_dwColor >> 24); }

  // Shared with the worker: a record removed while it loads outlives the item.
  std::shared_ptr<_ThumbnailConfig> m_pThumbnail;
  CString m_strText;                   // carried for the host; never drawn
  CRect m_rect;                        // picture rectangle in list content coordinates
  std::unique_ptr<AnimationBoard> m_pSelectBoard;  // animates m_size
  std::unique_ptr<AnimationBoard> m_pHaloBoard;    // animates the halo's alpha
  CUIForm* m_pForm = nullptr;
  CSize m_size;                        // current cell size (two adjacent ints)
  CRect m_rcPadding;
  int m_bIsItemBKTransparent = 1;
  CRect m_rcThickness;
  _ImageBorderConfig m_halo;
  int m_bIsHover = 0;
  int m_bIsSelected = 0;
  CUIList* m_pList = nullptr;
  double m_dRotateAngle = 0.0;
};

using UIItemList = std::vector<UIItemInfo*>;

// Where ScrollToItem puts the item.
enum SCROLL_POSITION : int {
  SCROLL_POSITION_LEFT = 0,
  SCROLL_POSITION_CENTER = 1,  // no movement
  SCROLL_POSITION_RIGHT = 2,
};

// (index, other index, items, record, list): for hover the item hovered
// before, for leave the item now hovered (-1 for none), for select the item
// selected before (the list's effect index).
using UIListEffect = std::function<void(int, int, const UIItemList&, _ListConfig*, CUIList*)>;
// (index, size in and out, items, record, list): leaves the size to lay the item out with.
using UIListMeasureEffect = std::function<void(int, CSize&, const UIItemList&, _ListConfig*, CUIList*)>;

class KARVELUI_API CUIList : public CUIControl {
 public:
  CUIList();
  // ClearAll(1), then the worker goes.
  ~CUIList() override;

  void RenderSelf(DXCore* dx, CRect* clip) override;
  // Move, left press (which also takes the focus), wheel and leave return 1;
  // everything else 0. The list has no keys of its own.
  int OnMouseMessage(UINT message, UINT flags, const CPoint& point) override;
  void OnSetSkinData() override;
  // Tells OnSize when the form's client size has changed.
  void CalculateBounds() override;

  virtual int RenderItem(DXCore* dx, _ListConfig* config, UIItemInfo* item, CRect itemRect, CRect clip);
  virtual void OnMouseMove(UINT flags, const CPoint& point);
  virtual void OnLButtonDown(UINT flags, const CPoint& point);
  virtual void OnMouseWheel(UINT flags, const CPoint& point);
  virtual void OnMouseLeave(UINT flags, const CPoint& point);
  // Keeps the selection centred when the width changes.
  virtual void OnSize(UINT type, int cx, int cy);
  // 0 vetoes a scroll; the base accepts every one.
  virtual int OnScrollOffsetChanged(double oldOffset, double newOffset);
  virtual void OnItemSelected(UINT index);
  virtual void OnItemUnselected(UINT index);
  virtual void OnItemMouseHover(int index, int previous);
  virtual void OnItemMouseLeave(int index, int next);
  // Lays out the cells around the selection (one row, centred vertically).
  virtual void CalculatePosition();
  // The drawing range after a scroll.
  virtual void CalculateViewport();

  // --- items -----------------------------------------------------------------------------
  int AddItem(UIItemInfo* item, int refresh);
  // 0 (the item stays the caller's) without a skin record or past the end.
  int InsertItem(UIItemInfo* item, const unsigned& index, int refresh);
  int RemoveItem(unsigned index, int refresh);
  // The source's picture path into the item, to be loaded again; the flag is ignored.
  int UpdateItemImage(unsigned index, UIItemInfo* source, int flag);
  void ClearAll(int keepScroll);
  unsigned GetItemsCount() const { return static_cast<unsigned>(m_items.size()); }
  UIItemInfo* GetItem(unsigned index) const { return index < m_items.size() ? m_items[index] : nullptr; }
  const UIItemList& GetItems() const { return m_items; }
  void SetItemRotateAngle(int index, const double& angle);
  // Nothing at all without a selection.
  void GetFiles(CStringArray& paths, CString& selectedPath);
  void GetSelectedItemPath(CString& path);

  // --- selection and scrolling -------------------------------------------------------------
  // force 0: only a loaded item can be selected.
  void SelectItem(unsigned index, int force);
  void UnselectItem();
  int GetSelectedItem() const { return m_nSelected.load(); }
  int GetHoveredItem() const { return m_nHovered; }
  int GetEffectIndex() const { return m_nEffectIndex; }
  double GetScrollOffset() const { return m_dScrollOffset; }
  double GetScrollTarget() const { return m_dScrollTarget; }
  // The offset used for drawing and hit testing.
  int GetPixelScroll() const;
  int ScrollToOffset(double offset, int refresh);
  void AnimationScrollToOffset(double target);
  void ScrollToItem(unsigned index, SCROLL_POSITION position);
  int GetCanContentScroll();
  void SetCanContentScroll(int canScroll);
  void ForceRefresh();
  int GetItemByPoint(const CPoint& point, unsigned& index);
  void SelectedHitTest(const CPoint& point);
  void MouseHoverHitTest(const CPoint& point);
  unsigned GetFirstVisible() const { return m_nFirstVisible; }
  unsigned GetVisibleCount() const { return m_nVisibleCount; }
  AnimationBoard& GetScrollBoard() { return *m_pScrollBoard; }
  _ListConfig* GetListConfig();
  CPoint GetLastMousePoint() const { return m_ptLastMouse; }
  void SetLastSize(int width, int height) {
    m_nLastWidth = width;
    m_nLastHeight = height;
  }

  // --- effects --------------------------------------------------------------------------------
  void SetMouseHoverEffect(UIListEffect effect) { m_hoverEffect = std::move(effect); }
  void SetMouseLeaveEffect(UIListEffect effect) { m_leaveEffect = std::move(effect); }
  void SetItemSelectEffect(UIListEffect effect) { m_selectEffect = std::move(effect); }
  void SetItemMeasureEffect(UIListMeasureEffect effect) { m_measureEffect = std::move(effect); }
  // The defaults the constructor installs.
  void DefaultMouseHoverEffect(int index, int previous, const UIItemList& items, _ListConfig* config, CUIList* list);
  void DefaultMouseLeaveEffect(int index, int next, const UIItemList& items, _ListConfig* config, CUIList* list);
  void DefaultItemSelectEffect(int index, int previous, const UIItemList& items, _ListConfig* config, CUIList* list);
  void DefaultItemMeasureEffect(int index, CSize& size, const UIItemList& items, _ListConfig* config, CUIList* list);
  // The selected item has finished growing: its halo fades in fully.
  void SelectMoveCompleted();

  // --- the worker's side ----------------------------------------------------------------------
  // Called by the worker (any thread): hands the index to this list's thread.
  void ItemThumbLoadedCallback(int index);
  // On the list's thread: the select effect for a selection whose picture
  // has arrived, and UI_EVENT_LIST_THUMB_LOADED per item handed over.
  void DeliverLoadedItems();

 private:
  friend class ListThumbSource;

  void OnAnimationScrollOffsetChanged(double* oldValues, double* newValues, unsigned count);
  void ApplyScrollOffset(double offset);
  void RunSelectEffect(int index);
  void FireIndexEvent(int id, int index);
  void StopBoard(AnimationBoard& board);
  bool IsItemVisible(const CRect& rect, int width, int canContentScroll) const;

  unsigned m_nFirstVisible = 0;
  unsigned m_nVisibleCount = 0;
  UIItemList m_items;
  std::atomic<int> m_nSelected{-1};  // read by the worker
  int m_nEffectIndex = -1;
  int m_nHovered = -1;
  double m_dScrollOffset = 0.0;
  double m_dExtraOffset = 0.0;  // nothing changes it; kept in every use of the offset
  double m_dAnimatedOffset = 0.0;
  double m_dScrollTarget = 0.0;
  std::unique_ptr<AnimationBoard> m_pScrollBoard;
  CPoint m_ptLastMouse;
  UIListEffect m_hoverEffect;
  UIListEffect m_leaveEffect;
  UIListEffect m_selectEffect;
  UIListMeasureEffect m_measureEffect;
  int m_nLastWidth = 0;
  int m_nLastHeight = 0;

  std::mutex m_itemsMutex;  // the worker's reads of m_items against this thread's changes
  std::mutex m_loadedMutex;
  std::vector<int> m_loaded;  // indices handed over by the worker, oldest first
  std::unique_ptr<ListThumbSource> m_pSource;
  ThumbUpdateTask* m_pLoader = nullptr;  // freed through Release()
};

}  // namespace KarvelUI
