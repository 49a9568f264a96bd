#pragma once

// CUIManager: the process-wide registry of live forms. Every form adds
// itself when constructed and leaves when destroyed, so the manager always
// knows which forms exist: the host finds forms by name, keeps
// single-instance ("once") forms and remembers its main form; the skin
// manager re-skins every form through it. Form names are the root
// controls' object IDs and compare case-sensitively here.
// User-interface thread only.

#include <map>

#include <karvelui/Base.h>

namespace KarvelUI {

class CUIForm;

class KARVELUI_API CUIManager {
 public:
  static CUIManager* GetInstance();
  static void FreeInstance();
  static CUIManager* m_pInstance;

  CUIManager() = default;
  virtual ~CUIManager() = default;
  CUIManager(const CUIManager&) = delete;
  CUIManager& operator=(const CUIManager&) = delete;

  // Appends the form once.
  void RegisterForm(CUIForm* form);
  void UnRegisterForm(CUIForm* form);
  // The form's index in the list, -1 when absent.
  int IsExist(CUIForm* form) const;
  // The first form registered under exactly this name.
  CUIForm* IsExist(const CString& id) const;
  // Empties out, then lists every form of that name.
  void GetForms(const CString& id, CPtrArray& out) const;
  // Empties out, then lists every form whose window exists.
  void GetAllForms(CPtrArray& out) const;
  // Appends the modal forms; out is not emptied first.
  void GetModalForms(CPtrArray& out) const;
  void SetMainForm(CUIForm* form) { m_pMainForm = form; }
  CUIForm* GetMainForm() const { return m_pMainForm; }

  // The entry for name becomes form (replacing an earlier one).
  void RegisterOnceForm(CUIForm* form, const CString& name);
  // Removes the first entry, in name order, that holds form.
  void UnRegisterOnceForm(CUIForm* form);
  CUIForm* IsExistOnceForm(const CString& name) const;

  // Modifier and button state: Control 0x8, right button 0x1, left button
  // 0x2, Shift 0x4, Alt 0x20 (the buttons deliberately the other way round
  // from the mouse-message flags).
  static UINT MapKeyState();

 private:
  struct NameLess {
    bool operator()(const CString& a, const CString& b) const { return a.str() < b.str(); }
  };

  CUIForm* m_pMainForm = nullptr;
  CPtrArray m_arrForms;
  std::map<CString, CUIForm*, NameLess> m_mapOnceForms;
};

// Re-skins every live form, in registration order (the skin manager's
// broadcast when the current skin changes).
KARVELUI_API void ReskinAllForms();

}  // namespace KarvelUI
