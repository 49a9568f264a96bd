#pragma once

// A small read-only view shaped like the system registry, answering the keys
// the browser detection reads from this desktop's settings:
//
//   classes root  "http\shell\open\command", "https\shell\open\command":
//                 default value = the default browser's command line with
//                 "%1" for the URL ("xdg-open "%1"" when no browser is set)
//   classes root and current user
//                 "Software\Microsoft\Windows\Shell\Associations\UrlAssociations
//                  \<scheme>\UserChoice": "Progid" = the
//                 browser's desktop entry id (only when one is set)
//
// The default browser comes from the XDG mimeapps.list files (the default
// application for x-scheme-handler/http and .../https) and its desktop entry.
// Key paths compare without regard to case, as registry paths do; nothing
// else exists, so every other key reads as missing.

#include <utility>
#include <vector>

#include <karvelui/CString.h>
#include <karvelui/Export.h>

namespace KarvelUI {

enum class RegistryRoot { ClassesRoot, CurrentUser, LocalMachine };

class RegistryKey {
 public:
  // Opens root\path; false (and an empty key) when it does not exist.
  // Access rights do not matter: the view is read-only.
  bool Open(RegistryRoot root, const CString& path);
  bool IsOpen() const { return m_open; }
  // The named value ("" is the default value); false when missing.
  bool QueryString(const CString& name, CString& value) const;
  // The value at index (name and data); false past the last one.
  bool EnumValue(int index, CString& name, CString& value) const;

 private:
  bool m_open = false;
  std::vector<std::pair<CString, CString>> m_values;
};

// What the view is built from, exposed for tests of the detection.
struct DesktopBrowser {
  CString desktopId;  // e.g. "firefox.desktop"; empty when none is set
  CString command;    // command line with "%1" for the URL
};
DesktopBrowser FindDesktopBrowser(const char* scheme);

}  // namespace KarvelUI
