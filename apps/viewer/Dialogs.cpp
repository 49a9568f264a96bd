#include "Dialogs.h"

#include <karvelui/CommonString.h>
#include <karvelui/Input.h>
#include <karvelui/UIForm.h>
#include <karvelui/UILabel.h>

#include "PathText.h"

using namespace KarvelUI;

namespace KarvelView {

namespace {

constexpr DWORD kDialogStyle = WS_POPUP | WS_SYSMENU;
constexpr int kResultOk = 1;
constexpr wchar_t kCaret = L'|';
constexpr UINT kFirstPrintable = 0x20;

CString Text(const wchar_t* id, const wchar_t* fallback) {
  const CString text = CommonString::GetInstance()->GetStringViaID(id);
  return text.IsEmpty() ? CString(fallback) : text;
}

// A modal form of the skin whose buttons "btnOK" and "btnCancel" end it.
class CDialogForm : public CUIForm {
 public:
  bool Make(CUIForm& owner, const wchar_t* id, const CString& title) {
    SetObjectID(id);
    if (!Create(kDialogStyle, L"KarvelViewDialog", title, &owner, 0, CRect(0, 0, 360, 180))) return false;
    ListenEvent(UI_EVENT_CLICK, MakeDelegate(this, &CDialogForm::OnButtonClick));
    return true;
  }

 private:
  void OnButtonClick(CUIControl* sender, void*) {
    if (!sender) return;
    if (sender->GetObjectID() == L"btnOK") EndDialog(kResultOk);
    else if (sender->GetObjectID() == L"btnCancel") EndDialog(0);
  }
};

// The folder form: its label "lblPath" is the path field.
class CFolderForm : public CDialogForm {
 public:
  void SetPath(const CString& path) {
    m_path = path;
    ShowPath();
  }
  const CString& GetPath() const { return m_path; }

  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message == WM_CHAR && !IsClosing()) {
      if (wParam >= kFirstPrintable) SetPath(m_path + CString(static_cast<wchar_t>(wParam)));
      return 1;
    }
    if (message == WM_KEYDOWN && !IsClosing()) {
      if (wParam == static_cast<WPARAM>(VK_RETURN)) {
        EndDialog(kResultOk);
        return 1;
      }
      if (wParam == static_cast<WPARAM>(VK_BACK)) {
        if (!m_path.IsEmpty()) SetPath(m_path.Left(m_path.GetLength() - 1));
        return 1;
      }
    }
    return CDialogForm::WindowProc(message, wParam, lParam);
  }

 private:
  void ShowPath() {
    if (auto* field = dynamic_cast<CUILabel*>(FindControlRecusive(L"lblPath"))) {
      field->SetText(m_path + CString(kCaret), FALSE);
      field->Refresh();
    }
  }

  CString m_path;
};

}  // namespace

void RunAboutForm(CUIForm& owner) {
  auto* form = new CDialogForm();
  if (form->Make(owner, L"AboutForm", Text(L"STRID_ABOUT", L"About"))) form->DoModal();
  form->Release();
}

CString AskFolder(CUIForm& owner, const CString& initial) {
  auto* form = new CFolderForm();
  CString folder;
  if (form->Make(owner, L"FolderForm", Text(L"STRID_OPEN_FOLDER", L"Open folder..."))) {
    form->SetPath(initial);
    if (form->DoModal() == kResultOk) folder = LibraryPath(form->GetPath().ToUtf8());
  }
  form->Release();
  return folder;
}

}  // namespace KarvelView
