#pragma once

// The viewer's small modal forms, built from the skin like the main form:
// "AboutForm" (the program's name and version, an OK button) and
// "FolderForm" (a path field: type a folder, Enter or OK opens it,
// Backspace deletes, Escape or Cancel gives up).

#include <karvelui/CString.h>

namespace KarvelUI {
class CUIForm;
}

namespace KarvelView {

void RunAboutForm(KarvelUI::CUIForm& owner);
// The folder typed (library form), or empty when the user gave up.
KarvelUI::CString AskFolder(KarvelUI::CUIForm& owner, const KarvelUI::CString& initial);

}  // namespace KarvelView
