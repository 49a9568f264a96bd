#pragma once

// The library's application object. When the library is loaded it records
// the host executable's folder in the string table and opens the trace log
// (trimming an oversized one); when the library is unloaded it releases the
// log. One instance lives in the library; hosts never make their own.

#include <karvelui/Export.h>
#include <karvelui/Types.h>

namespace KarvelUI {

class CKarvelUIApp {
 public:
  CKarvelUIApp() = default;
  virtual ~CKarvelUIApp() = default;
  CKarvelUIApp(const CKarvelUIApp&) = delete;
  CKarvelUIApp& operator=(const CKarvelUIApp&) = delete;

  // CommonString::SetAppPath and g_ITrace = the process log. Returns TRUE.
  virtual BOOL InitInstance();
  // Releases the trace log (if one is open). Returns 0.
  virtual int ExitInstance();
};

}  // namespace KarvelUI
