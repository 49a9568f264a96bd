// The main form's photo: what it shows, how it turns and zooms, and what
// the status line says about it.

#include <karvelui/CommonString.h>
#include <karvelui/SkinManager.h>

#include "MainForm.h"
#include "PathText.h"
#include "PhotoView.h"

using namespace KarvelUI;

namespace KarvelView {

void CMainForm::RegisterControls() {
  CUISkinManager::GetInstance()->RegisterObjectCreateor(&CPhotoView::CreateControl);
}

void CMainForm::ShowPicture(const CString& path, const std::vector<CString>& ahead) {
  if (!m_view) return;
  m_swirl.Stop();  // it swirls the picture that is going
  m_loadFailed = m_view->ShowFile(path, ahead) == 0;
  ShowStatus(m_loadFailed ? FileNameOf(path) : CString());
}

CString CMainForm::GetShownPath() const { return m_view ? m_view->GetFile() : CString(); }

void CMainForm::RotateLeft() {
  if (m_view) m_view->RotateLeft();
}

void CMainForm::RotateRight() {
  if (m_view) m_view->RotateRight();
}

void CMainForm::FitPicture() {
  if (m_view) m_view->FitToView();
}

void CMainForm::ActualSize() {
  if (m_view) m_view->ActualSize();
}

CString CMainForm::PictureText() const {
  if (m_loadFailed) return CommonString::GetInstance()->GetStringViaID(L"STRID_LOAD_FAILED");
  const CString path = GetShownPath();
  if (path.IsEmpty()) return CString();
  CString text = FileNameOf(path);
  const CSize size = m_view->GetPictureSize();
  if (size.cx > 0 && size.cy > 0) {
    CString pixels;
    pixels.Format(L"  %d \u00D7 %d", static_cast<int>(size.cx), static_cast<int>(size.cy));
    text += pixels;
  }
  return text;
}

}  // namespace KarvelView
