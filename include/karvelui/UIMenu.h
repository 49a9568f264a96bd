#pragma once

// CUIMenu: a borderless, top-most popup window that shows one level of an
// IMenu tree, drawn through its own render device from the skin record
// _MenuConfig (css type "CUIMenu", entry "public" unless named otherwise).
//
// IMenu::PopupMenu opens the first level for a form, which holds it as its
// active menu. Resting the mouse on an entry with children opens the next
// level beside it (always with the "public" entry); moving to another entry
// closes it at once. Resting on a plain entry posts UI_WM_MENUHOVER (its id)
// to the form. A click on a plain, enabled entry closes the whole chain,
// runs the entry's callback and frees the tree. A click in the form,
// Escape (UI_WM_RELEASEMENU to the form) or activating any window outside
// the chain closes it and frees the tree without a callback.
// Keyboard: Up and Down move over the enabled entries of the deepest open
// level, Right (or Enter) opens a sub-menu, Left closes it, Enter chooses.
//
// Placement: a level that would reach the right edge of the screen's work
// area opens to the left of x (a sub-menu to the left of its parent), one
// that would reach the bottom, or one opened with MENU_POPUP_UPWARDS, opens
// upwards from y.
//
// A window deletes itself through Release(); the root window releases the
// sub-menu it opened, which releases its own, and so on.

#include <memory>
#include <vector>

#include <karvelui/IMenu.h>
#include <karvelui/ImageConfig.h>
#include <karvelui/SkinConfig.h>
#include <karvelui/Wnd.h>

namespace KarvelUI {

class CUIForm;
class DXCore;

// Flag of PopupMenu: open upwards from y.
inline constexpr int MENU_POPUP_UPWARDS = 1;

class KARVELUI_API _MenuConfig : public _SkinConfig {
 public:
  _MenuConfig();
  _MenuConfig(const _MenuConfig&) = default;
  _MenuConfig& operator=(const _MenuConfig&) = default;

  // Everything but the font: a clone of the prototype keeps the default
  // font, and the css entry's "Font" element supplies its own.
  void Copy(_SkinConfig* source) override;
  void Reset() override;
  int Read(CSkinReader* reader) override;
  _SkinConfig* Clone() override;

  LOGFONTW m_font;                    // "Font": FontFace, FontSize, FontBold
  DWORD m_clrBackground = 0;          // "Color" Background: read, never drawn
  DWORD m_clrText = 0;                // "Color" Text
  DWORD m_clrTextSel = 0;             // "Color" TextSel
  DWORD m_clrTextDisable = 0;         // "Color" TextDisable
  int m_nIndent = 0;                  // "Indent": margin around the entries
  CSize m_szTextOffset;               // "TextOffset": text's left offset, room kept right of it
  int m_nIconSize = 0;                // "IconSize": largest check mark, icon and arrow
  _ImageBorderConfig m_imgBackground; // "BkImage"
  _ImageConfig m_imgNormal;           // "NormalImage": its height is an entry's height
  _ImageEdgeConfig m_imgFocused;      // "FocusedImage": the selected entry
  _ImageConfig m_imgChecked[5];       // "CheckedImage": Normal, Focus, Press, Disable, KBFocus
  _ImageConfig m_imgSubmenu[5];       // "SubmenuImage": the same states
  _ImageConfig m_imgSeperator;        // "SeperatorImage": its height is a separator's height
};

class KARVELUI_API CUIMenu : public CWnd {
 public:
  // An empty css name becomes "public".
  explicit CUIMenu(const CString& css = CString());
  ~CUIMenu() override;

  // Makes the hidden window and its render device. parent is the window
  // that gets the activation back when the menu goes.
  BOOL Create(CWnd* parent);
  // One item per child of menu, and the width the widest caption needs.
  // Nothing without a skin record.
  void LoadMenuW(IMenu* menu);
  // Sizes, places and shows the window (see the placement rules above);
  // activate 0 shows it without taking the activation (sub-menus).
  void PopupMenu(int x, int y, int flags, CUIMenu* parentWindow, int activate);

  // Destroys this window and the sub-menus opened from it.
  virtual void Release();
  // Frees the tree and closes the whole chain, from its root.
  void ReleaseAll();

  void SetParentMenuWnd(CUIMenu* window) { m_pParentWnd = window; }
  CUIMenu* GetParentMenuWnd() const { return m_pParentWnd; }
  CUIMenu* GetChildMenuWnd() const { return m_pChildWnd.get(); }
  void SetOwnerForm(CUIForm* form) { m_pOwnerForm = form; }
  CUIForm* GetOwnerForm() const { return m_pOwnerForm; }
  IMenu* GetMenu() const { return m_pMenu; }
  CUIMenu* GetRootParent();
  IMenu* GetRootIMenu() { return GetRootParent()->m_pMenu; }
  DXCore* GetRenderDevice() const { return m_pDXCore.get(); }

  // Null when the skin has no entry of this menu's css name.
  _MenuConfig* GetSkinConfig();

  // --- geometry ------------------------------------------------------------------------
  // With no items 200 x 200; otherwise down to the last item plus 2.
  void CaculateBounds();
  // The caption's width in the skin's font, plus 18 with an icon; 0 for a separator.
  int CaculateItemWidth(MenuItem* item);
  const CRect& GetBounds() const { return m_rcBounds; }
  HRGN GetBoundsRGN();
  void SetRGN();
  // Moves the window so that its client area covers rect (screen pixels).
  void SetWndPosition(const CRect& rect);

  // --- items ---------------------------------------------------------------------------
  int GetItemCount() const { return static_cast<int>(m_items.size()); }
  MenuItem* GetItem(int index) const;
  // The index of the item at a client point, or -1.
  int GetItemFromPoint(const CPoint& point) const;
  MenuItem* GetItemPtrFromPoint(const CPoint& point) const { return GetItem(GetItemFromPoint(point)); }
  // The selected entry, or null.
  MenuItem* GetHoverItem() const { return m_pHoverItem; }

  // --- drawing -----------------------------------------------------------------------------
  void Render(const CRect& rect);
  void RenderBounds();
  void RenderItems(const CRect& rect);
  // item across rect's width at its own position.
  void RenderItem(const CRect& rect, MenuItem* item);
  void RenderItem(MenuItem* item);
  void OnPaint() override;

  BOOL PreTranslateMessage(MSG* msg) override;
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

 protected:
  int OnCreate(LPCREATESTRUCT createStruct) override;
  void OnDestroy() override;
  void OnSize(UINT type, int cx, int cy) override;
  BOOL OnEraseBkgnd() override;
  void OnActivate(UINT state, CWnd* other, BOOL minimized) override;
  void OnMouseMove(UINT flags, CPoint point) override;
  void OnLButtonUp(UINT flags, CPoint point) override;
  void OnMouseHover(UINT flags, CPoint point) override;
  void OnMouseLeave() override;
  void OnKeyDown(UINT key, UINT repeat, UINT flags) override;

 private:
  struct Releaser {
    void operator()(CUIMenu* menu) const {
      if (menu) menu->Release();
    }
  };

  CPoint GetOffsetPtAux();
  void RequestHoverAndLeave();
  // Moves the selection to item (null: none); closes an open sub-menu when it changes.
  void SelectItem(MenuItem* item);
  void OpenSubMenu(MenuItem* item);
  void CloseSubMenu();
  // Closes the chain, runs item's callback, frees the tree. This object is
  // gone afterwards.
  void InvokeItem(MenuItem* item);
  bool ChainHolds(HWND hwnd);
  // The deepest open level of the chain: where the keys act.
  CUIMenu* KeyboardLevel();
  void StepSelection(int step);
  void DrawStateImage(_ImageConfig& image, const CRect& box, int size);

  CUIForm* m_pOwnerForm = nullptr;
  IMenu* m_pMenu = nullptr;
  CUIMenu* m_pParentWnd = nullptr;
  std::unique_ptr<CUIMenu, Releaser> m_pChildWnd;
  std::unique_ptr<DXCore> m_pDXCore;
  BOOL m_bTracking = FALSE;
  CPoint m_ptOffset;
  CRect m_rcBounds;
  std::unique_ptr<_MenuConfig, SkinConfigReleaser> m_pConfig;
  std::vector<std::unique_ptr<MenuItem>> m_items;
  MenuItem* m_pHoverItem = nullptr;
  CString m_strCss;
};

}  // namespace KarvelUI
