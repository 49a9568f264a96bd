#include "ContextMenu.h"

#include <karvelui/CommonString.h>
#include <karvelui/IMenu.h>
#include <karvelui/SkinManager.h>
#include <karvelui/WindowHelpers.h>

#include "Dialogs.h"
#include "MainForm.h"
#include "PathText.h"

using namespace KarvelUI;

namespace KarvelView {

namespace {

// The text of a string-table id, or `fallback` when the table has none.
CString Text(const wchar_t* id, const wchar_t* fallback) {
  const CString text = CommonString::GetInstance()->GetStringViaID(id);
  return text.IsEmpty() ? CString(fallback) : text;
}

}  // namespace

IMenu* CContextMenu::Build() {
  const MenuHandler chosen(this, &CContextMenu::OnChosen);
  const int noPicture = m_form.GetShownPath().IsEmpty() ? 1 : 0;
  auto* root = new IMenu();
  root->AddMenu(Text(L"STRID_OPEN_FOLDER", L"Open folder..."), kOpenFolder, 0, 0, chosen, CString());
  root->AddMenu(CString(), -1, 0, 0);
  root->AddMenu(Text(L"STRID_ROTATE_LEFT", L"Rotate left"), kRotateLeft, noPicture, 0, chosen, CString());
  root->AddMenu(Text(L"STRID_ROTATE_RIGHT", L"Rotate right"), kRotateRight, noPicture, 0, chosen, CString());
  root->AddMenu(Text(L"STRID_ZOOM_FIT", L"Fit to window"), kFit, noPicture, 0, chosen, CString());
  root->AddMenu(Text(L"STRID_ZOOM_ACTUAL", L"Actual size"), kActualSize, noPicture, 0, chosen, CString());
  root->AddMenu(Text(L"STRID_COPY_PATH", L"Copy path"), kCopyPath, noPicture, 0, chosen, CString());
  root->AddMenu(CString(), -1, 0, 0);

  CUISkinManager* skins = CUISkinManager::GetInstance();
  m_skins.RemoveAll();
  skins->GetAllSkinItem(m_skins);
  IMenu* skinMenu = root->AddMenu(Text(L"STRID_SKINS", L"Skins"), -1, 0, 0);
  for (INT_PTR i = 0; i < m_skins.GetSize(); ++i) {
    const CString& name = m_skins[i].m_strName;
    CString caption = skins->GetSkinNameText(name);
    if (caption.IsEmpty()) caption = name;
    const int current = name.CompareNoCase(skins->GetCurrentSkinName()) == 0 ? 1 : 0;
    skinMenu->AddMenu(caption, kFirstSkin + static_cast<int>(i), 0, current, chosen, CString());
  }
  IMenu* effects = root->AddMenu(Text(L"STRID_EFFECTS", L"Effects"), -1, 0, 0);
  effects->AddMenu(Text(L"STRID_EFFECT_BANDED_SWIRL", L"Banded swirl"), kBandedSwirl, noPicture, 0, chosen, CString());
  root->AddMenu(CString(), -1, 0, 0);
  root->AddMenu(Text(L"STRID_ABOUT", L"About"), kAbout, 0, 0, chosen, CString());
  root->AddMenu(Text(L"STRID_EXIT", L"Exit"), kExit, 0, 0, chosen, CString());
  return root;
}

void CContextMenu::Popup(int x, int y) { IMenu::PopupMenu(&m_form, Build(), x, y, 0, CString()); }

void CContextMenu::OnChosen(IMenu* entry) {
  const int id = entry->GetID();
  if (id >= kFirstSkin) {
    if (id - kFirstSkin < m_skins.GetSize()) m_form.ChooseSkin(m_skins[id - kFirstSkin].m_strName);
    return;
  }
  switch (id) {
    case kOpenFolder: m_form.AskForFolder(); break;
    case kRotateLeft: m_form.RotateLeft(); break;
    case kRotateRight: m_form.RotateRight(); break;
    case kFit: m_form.FitPicture(); break;
    case kActualSize: m_form.ActualSize(); break;
    case kCopyPath: m_form.CopyPath(); break;
    case kBandedSwirl: m_form.PlaySwirl(); break;
    case kAbout: m_form.ShowAbout(); break;
    case kExit: m_form.Exit(); break;
    default: break;
  }
}

// --- the main form's commands that only the menu offers ------------------------------------------

void CMainForm::ShowContextMenu(int x, int y) {
  if (!IsClosing()) m_menu->Popup(x, y);
}

void CMainForm::CopyPath() {
  const CString path = GetShownPath();
  if (!path.IsEmpty()) CopyTextToClipborder(NativeText(path));
}

void CMainForm::ChooseSkin(const CString& name) {
  // The skin manager writes the current skin to PreSkin.xml when it is freed.
  CUISkinManager::GetInstance()->SetCurrentSkin(name);
}

void CMainForm::PlaySwirl() {
  // The window's own frame, photo in place: a photo stretched over the whole
  // window would be distorted for the length of the transition.
  if (!GetShownPath().IsEmpty()) m_swirl.Start(this, CString());
}

void CMainForm::AskForFolder() {
  const CString folder = AskFolder(*this, NativeText(FolderOf(GetShownPath())));
  if (!folder.IsEmpty()) OpenPath(folder);
}

void CMainForm::ShowAbout() { RunAboutForm(*this); }

void CMainForm::Exit() { PostMessage(WM_CLOSE); }

}  // namespace KarvelView
