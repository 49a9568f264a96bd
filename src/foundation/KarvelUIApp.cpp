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
  // The log outlives its release (see ITrace_imp::Release), so g_ITrace
  // stays valid for whatever runs after this, and a second exit is harmless.
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
