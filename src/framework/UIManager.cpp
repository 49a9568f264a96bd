#include <karvelui/UIManager.h>

#include <karvelui/UIForm.h>
#include <karvelui/Input.h>

namespace KarvelUI {

CUIManager* CUIManager::m_pInstance = nullptr;

CUIManager* CUIManager::GetInstance() {
  if (!m_pInstance) m_pInstance = new CUIManager();
  return m_pInstance;
}

void CUIManager::FreeInstance() {
  delete m_pInstance;
  m_pInstance = nullptr;
}

void CUIManager::RegisterForm(CUIForm* form) {
  if (IsExist(form) == -1) m_arrForms.Add(form);
}

void CUIManager::UnRegisterForm(CUIForm* form) {
  const int index = IsExist(form);
  if (index != -1) m_arrForms.RemoveAt(index);
}

int CUIManager::IsExist(CUIForm* form) const {
  for (INT_PTR i = 0; i < m_arrForms.GetSize(); ++i)
    if (m_arrForms[i] == form) return static_cast<int>(i);
  return -1;
}

CUIForm* CUIManager::IsExist(const CString& id) const {
  for (void* item : m_arrForms) {
    auto* form = static_cast<CUIForm*>(item);
    if (form->GetObjectID() == id) return form;
  }
  return nullptr;
}

void CUIManager::GetForms(const CString& id, CPtrArray& out) const {
  out.RemoveAll();
  for (void* item : m_arrForms)
    if (static_cast<CUIForm*>(item)->GetObjectID() == id) out.Add(item);
}

void CUIManager::GetAllForms(CPtrArray& out) const {
  out.RemoveAll();
  for (void* item : m_arrForms)
    if (IsWindow(static_cast<CUIForm*>(item)->GetSafeHwnd())) out.Add(item);
}

void CUIManager::GetModalForms(CPtrArray& out) const {
  for (void* item : m_arrForms)
    if (static_cast<CUIForm*>(item)->IsModalWnd()) out.Add(item);
}

void CUIManager::RegisterOnceForm(CUIForm* form, const CString& name) { m_mapOnceForms[name] = form; }

void CUIManager::UnRegisterOnceForm(CUIForm* form) {
  for (auto it = m_mapOnceForms.begin(); it != m_mapOnceForms.end(); ++it) {
    if (it->second == form) {
      m_mapOnceForms.erase(it);
      return;
    }
  }
}

CUIForm* CUIManager::IsExistOnceForm(const CString& name) const {
  const auto found = m_mapOnceForms.find(name);
  return found == m_mapOnceForms.end() ? nullptr : found->second;
}

UINT CUIManager::MapKeyState() {
  UINT state = 0;
  if (GetKeyState(VK_CONTROL) < 0) state |= 0x8;
  if (GetKeyState(VK_RBUTTON) < 0) state |= 0x1;
  if (GetKeyState(VK_LBUTTON) < 0) state |= 0x2;
  if (GetKeyState(VK_SHIFT) < 0) state |= 0x4;
  if (GetKeyState(VK_MENU) < 0) state |= 0x20;
  return state;
}

void ReskinAllForms() {
  CPtrArray forms;
  CUIManager::GetInstance()->GetAllForms(forms);
  for (void* form : forms) static_cast<CUIForm*>(form)->OnSkinChanged();
}

}  // namespace KarvelUI
