// The library's own control types: the creator the skin manager consults
// first and the prototype skin record of each type. Installed into the skin
// manager at load, so every manager made afterwards knows them, and the
// skin manager's theme broadcast is pointed at the live forms.

#include <karvelui/FormConfig.h>
#include <karvelui/UIForm.h>
#include <karvelui/UIManager.h>
#include <karvelui/SkinManager.h>
#include <karvelui/UIImageBase.h>

namespace KarvelUI {

namespace {

// Exact names only: a host creator may add types but cannot replace these.
CUIControl* CreateBuiltInControl(const CString& type) {
  if (type == L"CUIForm") return new CUIForm();
  if (type == L"CUIImageBase") return new CUIImageBase();
  return nullptr;
}

void RegisterBuiltIns(CUISkinManager& manager) {
  manager.RegisterObjectCreateor(&CreateBuiltInControl);
  manager.RegisterSkinCreateor(L"CUIForm", new _FormConfig());
  manager.RegisterSkinCreateor(L"CUIImageBase", new _UIImageBaseConfig());
}

struct BuiltInInstaller {
  BuiltInInstaller() {
    CUISkinManager::SetBuiltInRegistration(&RegisterBuiltIns);
    CUISkinManager::SetFormsSkinChanger(&ReskinAllForms);
  }
};

const BuiltInInstaller s_installer;

}  // namespace

}  // namespace KarvelUI
