#pragma once

// IMenu: one node of a menu tree that the host builds in code and hands to
// IMenu::PopupMenu. A node is an entry (caption, command id, disabled and
// checked flags, an optional icon, the callback run when it is chosen) and
// owns its children, which are the entries of its sub-menu. An empty
// caption makes the entry a separator.
//
// The tree lives on the heap and is freed through Release(). Once popped
// up it belongs to the popup chain: choosing an entry closes the chain,
// calls the entry's callback with the entry itself and then frees the
// whole tree; any other way of closing the chain frees it without a
// callback. The host must not touch the tree afterwards.
//
// MenuItem: how one popup window shows one entry of the level it displays
// (its place, its height and whether it is selected). It points into the
// tree and into its window without owning either.

#include <list>
#include <memory>
#include <vector>

#include <karvelui/Base.h>

namespace KarvelUI {

class CUIForm;
class CUIMenu;
class IMenu;
class _ImageConfig;

using MenuHandler = FastDelegate1<IMenu*, void>;

class KARVELUI_API IMenu {
 public:
  // The three integers of every constructor and AddMenu are, in order, the
  // command id, the disabled flag and the checked flag.
  IMenu();
  IMenu(const CString& caption, int id, int disabled, int checked);
  IMenu(const CString& caption, int id, int disabled, int checked, MenuHandler handler, const CString& iconFile);
  // The node keeps its own copy of icon, when icon names a file.
  IMenu(const CString& caption, int id, int disabled, int checked, MenuHandler handler, _ImageConfig* icon);
  IMenu(const IMenu&) = delete;
  IMenu& operator=(const IMenu&) = delete;

  // Destroys the node and its children.
  virtual void Release();
  // Releases every child; the node can then be filled anew.
  virtual void Destroy();

  // Appends child, which this node owns from then on.
  void AddMenu(IMenu* child);
  // Each makes a node with the matching constructor, appends it and returns
  // it, so a sub-menu can be filled in place.
  IMenu* AddMenu(const CString& caption, int id, int disabled, int checked);
  IMenu* AddMenu(const CString& caption, int id, int disabled, int checked, MenuHandler handler,
                 const CString& iconFile);
  IMenu* AddMenu(const CString& caption, int id, int disabled, int checked, MenuHandler handler,
                 _ImageConfig* icon);

  CString GetCaption() const { return m_strCaption; }
  int GetID() const { return m_nID; }
  int IsDisabled() const { return m_bDisabled ? 1 : 0; }
  int IsChecked() const { return m_bChecked ? 1 : 0; }
  MenuHandler GetHandle() const { return m_handler; }
  CString GetICONFile() const { return m_strIconFile; }
  _ImageConfig* GetICONImage() const { return m_pIconImage.get(); }
  int GetSubMenuCount() const { return static_cast<int>(m_children.size()); }
  // Null outside 0..count-1.
  IMenu* GetSubMenu(int index) const;

  // Calls the handler with this node: 1, or 0 when there is no handler or
  // it threw (the exception goes no further).
  int Invoke();
  // Closes window (when given), runs item's callback (when given), then
  // frees root (when given). Returns 1.
  static int InvokeMenu(IMenu* root, IMenu* item, CUIMenu* window);

  // The first descendant with that id, depth first, each node before its
  // children; null for ids below -1 or without children.
  IMenu* FindIMenu(int id);
  // Appends every descendant in the same order.
  void GetAllSubMenu(std::list<IMenu*>& list);

  // A copy of menu's children (never of menu's own fields). Deliberately,
  // a child that has children of its own is copied as a bare sub-menu
  // node: it loses its caption, id, flags, handler and icon, and so shows
  // as a separator. Leaves lose only their icons. The caller owns the copy.
  static IMenu* Clone(IMenu* menu);

  // Shows menu in a new popup window of owner (the form's active menu),
  // at (x, y) in screen pixels, or at the cursor when either is -1.
  // flags 1 opens it upwards from y. css names the skin entry (empty:
  // "public"). The chain takes the tree over.
  static void PopupMenu(CUIForm* owner, IMenu* menu, int x, int y, int flags, const CString& css);

 protected:
  // Nodes go through Release().
  virtual ~IMenu();

 private:
  struct Releaser {
    void operator()(IMenu* menu) const {
      if (menu) menu->Release();
    }
  };

  std::vector<std::unique_ptr<IMenu, Releaser>> m_children;
  CString m_strIconFile;
  std::unique_ptr<_ImageConfig> m_pIconImage;
  CString m_strCaption;
  int m_nID = -1;
  int m_bDisabled = 0;
  int m_bChecked = 0;
  MenuHandler m_handler;
};

class KARVELUI_API MenuItem {
 public:
  MenuItem(int height, IMenu* menu, CUIMenu* owner) : m_nHeight(height), m_pMenu(menu), m_pOwner(owner) {}

  int GetPos() const { return m_nPos; }
  void SetPos(int pos) { m_nPos = pos; }
  int GetHeight() const { return m_nHeight; }
  // The bottom of the entry; its top when it has no height.
  int GetValidEndPos() const { return m_nHeight >= 1 ? m_nPos + m_nHeight : m_nPos; }
  int IsSeparator() const { return !m_pMenu || m_pMenu->GetCaption().IsEmpty() ? 1 : 0; }
  int IsSel() const { return m_bSelected && !IsSeparator() ? 1 : 0; }
  // Separators never take the selection.
  void SetSel(int selected) {
    if (!IsSeparator()) m_bSelected = selected;
  }
  CString GetCaption() const { return m_pMenu ? m_pMenu->GetCaption() : CString(); }
  int IsChecked() const { return m_pMenu ? m_pMenu->IsChecked() : 0; }
  int IsDisabled() const { return m_pMenu ? m_pMenu->IsDisabled() : 0; }
  _ImageConfig* GetICONImage() const { return m_pMenu ? m_pMenu->GetICONImage() : nullptr; }
  CString GetICONFile() const { return m_pMenu ? m_pMenu->GetICONFile() : CString(); }
  int HasSubMenus() const { return m_pMenu && m_pMenu->GetSubMenuCount() > 0 ? 1 : 0; }
  IMenu* GetMenu() const { return m_pMenu; }
  CUIMenu* GetOwner() const { return m_pOwner; }

 private:
  int m_nPos = 0;
  int m_nHeight = 0;
  int m_bSelected = 0;
  IMenu* m_pMenu = nullptr;
  CUIMenu* m_pOwner = nullptr;
};

}  // namespace KarvelUI
