// The library's own control types: the creator the skin manager consults
// first and the prototype skin record of each type. Installed into the skin
// manager at load, so every manager made afterwards knows them, and the
// skin manager's theme broadcast is pointed at the live forms.

#include <karvelui/FormConfig.h>
#include <karvelui/SkinManager.h>
#include <karvelui/UIButton.h>
#include <karvelui/UICaption.h>
#include <karvelui/UIForm.h>
#include <karvelui/UIImageBase.h>
#include <karvelui/UILabel.h>
#include <karvelui/UIList.h>
#include <karvelui/UIMenu.h>
#include <karvelui/UIManager.h>
#include <karvelui/UIPanel.h>
#include <karvelui/UISlider.h>

namespace KarvelUI {

namespace {

// Exact names only: a host creator may add types but cannot replace these.
// Menus and tooltip windows are not made from build files.
CUIControl* CreateBuiltInControl(const CString& type) {
  if (type == L"CUIForm") return new CUIForm();
  if (type == L"CUICaption") return new CUICaption();
  if (type == L"CUIButton") return new CUIButton();
  if (type == L"CUILabel") return new CUILabel();
  if (type == L"CUIPanel") return new CUIPanel();
  if (type == L"CUIBottomPanel") return new CUIBottomPanel();
  if (type == L"CUISlider") return new CUISlider();
  if (type == L"CUIImageBase") return new CUIImageBase();
  if (type == L"CUIList") return new CUIList();
  return nullptr;
}

// The bottom panel and the tooltip window have no skin record of their own.
void RegisterBuiltIns(CUISkinManager& manager) {
  manager.RegisterObjectCreateor(&CreateBuiltInControl);
  manager.RegisterSkinCreateor(L"CUIForm", new _FormConfig());
  manager.RegisterSkinCreateor(L"CUIMenu", new _MenuConfig());
  manager.RegisterSkinCreateor(L"CUICaption", new _CaptionConfig());
  manager.RegisterSkinCreateor(L"CUIButton", new _ButtonConfig());
  manager.RegisterSkinCreateor(L"CUILabel", new _LabelConfig());
  manager.RegisterSkinCreateor(L"CUIPanel", new _PanelConfig());
  manager.RegisterSkinCreateor(L"CUISlider", new _SliderConfig());
  manager.RegisterSkinCreateor(L"CUIImageBase", new _UIImageBaseConfig());
  manager.RegisterSkinCreateor(L"CUIList", new _ListConfig());
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
