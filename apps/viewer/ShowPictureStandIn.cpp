// Until the photo view is in the main form, a shown picture is only named
// in the status line.

#include "MainForm.h"

using namespace KarvelUI;

namespace KarvelView {

void CMainForm::ShowPicture(const CString& path, const std::vector<CString>&) { ShowStatus(path); }

}  // namespace KarvelView
