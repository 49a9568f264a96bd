// IMenu: the menu tree's nodes, their lookups, copies and the choosing of
// an entry. IMenu::PopupMenu lives with the popup window in UIMenu.cpp.

#include <karvelui/IMenu.h>

#include <karvelui/ImageConfig.h>
#include <karvelui/UIMenu.h>

namespace KarvelUI {

IMenu::IMenu() = default;

IMenu::IMenu(const CString& caption, int id, int disabled, int checked)
    : m_strCaption(caption), m_nID(id), m_bDisabled(disabled), m_bChecked(checked) {}

IMenu::IMenu(const CString& caption, int id, int disabled, int checked, MenuHandler handler,
             const CString& iconFile)
    : m_strIconFile(iconFile),
      m_strCaption(caption),
      m_nID(id),
      m_bDisabled(disabled),
      m_bChecked(checked),
      m_handler(handler) {}

IMenu::IMenu(const CString& caption, int id, int disabled, int checked, MenuHandler handler, _ImageConfig* icon)
    : m_strCaption(caption), m_nID(id), m_bDisabled(disabled), m_bChecked(checked), m_handler(handler) {
  if (icon && !icon->m_strFile.IsEmpty()) {
    m_pIconImage = std::make_unique<_ImageConfig>();
    m_pIconImage->Copy(icon);
  }
}

IMenu::~IMenu() {
  m_pIconImage.reset();
  Destroy();
}

void IMenu::Release() { delete this; }

void IMenu::Destroy() { m_children.clear(); }

void IMenu::AddMenu(IMenu* child) {
  if (child) m_children.emplace_back(child);
}

IMenu* IMenu::AddMenu(const CString& caption, int id, int disabled, int checked) {
  auto* child = new IMenu(caption, id, disabled, checked);
  AddMenu(child);
  return child;
}

IMenu* IMenu::AddMenu(const CString& caption, int id, int disabled, int checked, MenuHandler handler,
                      const CString& iconFile) {
  auto* child = new IMenu(caption, id, disabled, checked, handler, iconFile);
  AddMenu(child);
  return child;
}

IMenu* IMenu::AddMenu(const CString& caption, int id, int disabled, int checked, MenuHandler handler,
                      _ImageConfig* icon) {
  auto* child = new IMenu(caption, id, disabled, checked, handler, icon);
  AddMenu(child);
  return child;
}

IMenu* IMenu::GetSubMenu(int index) const {
  if (index < 0 || index >= GetSubMenuCount()) return nullptr;
  return m_children[static_cast<size_t>(index)].get();
}

int IMenu::Invoke() {
  if (!m_handler) return 0;
  try {
    m_handler(this);
  } catch (...) {
    // A host's failure stays in its own callback.
    return 0;
  }
  return 1;
}

int IMenu::InvokeMenu(IMenu* root, IMenu* item, CUIMenu* window) {
  if (window) window->Release();
  if (item) item->Invoke();
  if (root) root->Release();
  return 1;
}

IMenu* IMenu::FindIMenu(int id) {
  if (id < -1 || m_children.empty()) return nullptr;
  for (const auto& child : m_children) {
    if (child->GetID() == id) return child.get();
    if (IMenu* found = child->FindIMenu(id)) return found;
  }
  return nullptr;
}

void IMenu::GetAllSubMenu(std::list<IMenu*>& list) {
  for (const auto& child : m_children) {
    list.push_back(child.get());
    child->GetAllSubMenu(list);
  }
}

IMenu* IMenu::Clone(IMenu* menu) {
  auto* copy = new IMenu();
  if (!menu) return copy;
  for (const auto& child : menu->m_children) {
    if (child->GetSubMenuCount() > 0)
      copy->AddMenu(Clone(child.get()));
    else
      copy->AddMenu(child->GetCaption(), child->GetID(), child->IsDisabled(), child->IsChecked(), child->GetHandle(),
                    CString());
  }
  return copy;
}

}  // namespace KarvelUI
