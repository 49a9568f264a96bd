#include "SkinWatch.h"

#include <karvelui/SkinManager.h>
#include <karvelui/UILabel.h>

using namespace KarvelUI;

namespace KarvelView {

namespace {

// Two polls (one to see a save, one to see it settled) stay well inside
// the half second an author waits for a saved change to show.
constexpr UINT kWatchTimer = 20;
constexpr int kPollMs = 100;

}  // namespace

bool SkinWatch::Start(CUIForm& form) {
  if (!m_watcher.Start()) return false;
  m_form = &form;
  return form.RegisterTimerHandler(kWatchTimer, kPollMs, MakeDelegate(this, &SkinWatch::OnTimer)) != FALSE;
}

void SkinWatch::OnTimer(unsigned int) {
  CString report;
  if (!m_watcher.Poll(report)) return;
  auto* status = dynamic_cast<CUILabel*>(m_form->FindControlRecusive(L"lblStatus"));
  if (!status) return;
  if (report.IsEmpty()) report = CUISkinManager::GetInstance()->GetCurrentSkinName() + L" reloaded";
  status->SetText(report, FALSE);
  status->Refresh();
}

}  // namespace KarvelView
