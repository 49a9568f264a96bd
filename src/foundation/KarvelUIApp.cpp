#include "foundation/KarvelUIApp.h"

#include <karvelui/CommonString.h>
#include <karvelui/Trace.h>

namespace KarvelUI {

BOOL CKarvelUIApp::InitInstance() {
  CommonString::GetInstance()->SetAppPath();
  g_ITrace = ITrace_imp::GetInstance();
  return TRUE;
}

int CKarvelUIApp::ExitInstance() {
  // Releasing the log also clears g_ITrace, so a second exit finds nothing.
  if (g_ITrace) g_ITrace->Release();
  return 0;
}

namespace {

// Runs the application object with the library's own load and unload.
struct LibraryLifetime {
  CKarvelUIApp app;
  LibraryLifetime() { app.InitInstance(); }
  ~LibraryLifetime() { app.ExitInstance(); }
};

LibraryLifetime theApp;

}  // namespace

}  // namespace KarvelUI
