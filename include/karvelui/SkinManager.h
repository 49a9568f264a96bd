#pragma once

// CUISkinManager: the process-wide owner of all skin data. It answers which
// controls make up a form (GetBuildNode), how a control looks (ReadCssData,
// ReadAssData, GetFontAndColor) and where a file named in a skin lives
// (TranslatePath), and switches the current skin.
//
// Folder layout below the application folder (trailing backslash):
//   Theme\Build.xml               forms and their control trees (BuildRoot)
//   Theme\SkinDatas.xml           installed skins (SkinsRoot, Name, Text)
//   Theme\<skin>\KarvelView.xml   a skin (UIRoot: css and ass entries)
//   Theme\<skin>\images\          its pictures
//   PreSkin.xml                   the skin chosen last (PreSkin Name=...); in
//                                 the application-data folder instead when
//                                 this folder is not writable
// Every lookup tries the current skin's file first and the "Default"
// skin's second, so a skin only holds what differs from the default.
//
// The control classes live above this layer. The layer that defines them
// installs, once at start-up, the registration of its built-in creator and
// prototypes (SetBuiltInRegistration) and the broadcast that re-skins every
// live form (SetFormsSkinChanger). All operations run on the UI thread.

#include <memory>

#include <karvelui/Base.h>
#include <karvelui/SkinConfig.h>
#include <karvelui/SkinTypes.h>
#include <karvelui/XmlDocument.h>

namespace KarvelUI {

class CUIControl;

class KARVELUI_API CUISkinManager {
 public:
  // Creates a new control of the named type, or null when it has no such type.
  using ObjectCreator = CUIControl* (*)(const CString& type);
  // Registers the built-in creator first, then the built-in prototypes.
  using BuiltInRegistration = void (*)(CUISkinManager& manager);
  // Calls OnSkinChanged() on every live form, in the UI manager's order.
  using FormsSkinChanger = void (*)();

  static CUISkinManager* GetInstance();
  static void FreeInstance();
  static CUISkinManager* m_pInstance;

  static void SetBuiltInRegistration(BuiltInRegistration registration);
  static void SetFormsSkinChanger(FormsSkinChanger changer);

  CUISkinManager();
  // Saves the current skin's name to PreSkin.xml, then frees everything.
  virtual ~CUISkinManager();
  CUISkinManager(const CUISkinManager&) = delete;
  CUISkinManager& operator=(const CUISkinManager&) = delete;
  virtual void Release() { delete this; }

  // The folder holding Theme\ and PreSkin.xml; by default the string
  // table's application path. A skin previewer (or a test) points it
  // elsewhere before InitSkinData.
  void SetAppPath(const CString& folder);
  CString GetAppPath() const;

  // Build file, skin list, default skin, previous choice; 0 and a trace
  // line at the first step that fails.
  int InitSkinData();
  // Appends the skins of Theme\SkinDatas.xml to the list (never clears).
  int LoadAllSkinItem();
  int IncludeSkinFile(const CString& path);
  int IncludeSkinBuildFile(const CString& path);

  // '%' relative to the application folder, '@' to the default skin's
  // folder, anything else in the images folder of the default skin
  // (fromDefault) or of the current skin; normalised with ReparsePath.
  CString TranslatePath(const CString& path, int fromDefault) const;
  void* GetBuildNode(const CString& path);

  // Makes `name` current without re-skinning; unknown names are accepted.
  int SetSkinFile(const CString& name);
  // Switches skin (names compare without case) and re-skins every form.
  void SetCurrentSkin(const CString& name);
  // Reads the default and the current skin's files again (after an author
  // saved them) and re-skins every form as SetCurrentSkin does, so windows
  // keep their place. 0, and the loaded skin kept, when either file does
  // not parse.
  int ReloadSkin();
  CString GetCurrentSkinName() const { return m_strCurrentSkin; }
  int IsThemeChanging() const { return m_bThemeChanging; }
  void ChangeAllFormsSkin();
  void GetAllSkinItem(CArray<SkinItem>& items) const;
  CString GetSkinNameText(const CString& name) const;

  int RegisterObjectCreateor(ObjectCreator creator);
  CUIControl* CreateSkinObject(const CString& type);
  // Takes ownership of prototype; a prototype it replaces is not released.
  void RegisterSkinCreateor(const CString& type, _SkinConfig* prototype);
  // A new record holding type's defaults (a clone of its prototype), or
  // null when type has none; the caller releases it. For tools that read
  // skin entries of their own.
  _SkinConfig* CreateSkinConfig(const CString& type) const;

  // out = clone of type's prototype with the css entry read onto it; out
  // stays untouched when css is empty or has no entry.
  void ReadCssData(const CString& css, const CString& type, _SkinConfig*& out);
  // Layout entry (ass, name) read onto data; untouched when absent.
  void ReadAssData(const CString& ass, const CString& name, _AssData* data);
  // Named text style from the default font; cached until the skin changes.
  void GetFontAndColor(const CString& name, LOGFONTW& font, DWORD& color);

 private:
  struct TextStyle {
    LOGFONTW font;
    DWORD color = 0;
  };

  int LoadSkinBuildFile();
  int LoadDefaultSkin();
  int LoadPreSkin();
  int SavePreSkin();
  void DeleteSkinContents();

  CString ThemeFile(const CString& name) const;
  CString SkinFile(const CString& skin) const;
  const SkinItem* FindSkinItem(const CString& name) const;
  CString SkinFolder(const CString& name) const;
  // The element at path in the current skin, else the default skin;
  // fromDefault tells which one answered.
  void* FindSkinNode(const CString& path, int& fromDefault) const;

  CArray<ObjectCreator, ObjectCreator> m_creators;
  int m_bThemeChanging = 0;
  CString m_strDefaultSkin = L"Default";
  CString m_strCurrentSkin = L"Default";
  CString m_strPreSkin = L"Default";
  std::unique_ptr<CXmlDocument> m_pDefaultSkinDoc;
  std::unique_ptr<CXmlDocument> m_pCurrentSkinDoc;
  std::unique_ptr<CXmlDocument> m_pBuildDoc;
  CMap<CString, const CString&, SkinConfigPtr, SkinConfigPtr> m_prototypes;
  CArray<SkinItem> m_skinItems;
  CMap<CString, const CString&, TextStyle, const TextStyle&> m_textStyles;
  CString m_strAppPath;  // empty: the string table's application path

  static BuiltInRegistration s_builtInRegistration;
  static FormsSkinChanger s_formsSkinChanger;
};

}  // namespace KarvelUI
