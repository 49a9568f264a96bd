#pragma once

// CSkinChecker: reads a theme folder the way the skin manager does and
// reports what a skin author most likely got wrong, each finding with the
// file and the line it is about:
//  - XML that does not parse;
//  - build nodes whose "type" the control factory does not make;
//  - css and ass entries that no build node uses, and build nodes whose
//    entry neither the skin nor the default skin holds;
//  - keys (attributes, child elements) that the type's configuration
//    record does not read: likely typos;
//  - values that do not parse as what the record reads them as (colour,
//    rectangle, number pair, number, boolean, font face, layout keyword);
//  - pictures that do not exist or cannot be decoded, and source
//    rectangles that leave their picture;
//  - an "ItemSize" of zero width.
// Control types, records and the keys each record reads come from the skin
// manager's registrations (CUISkinManager::GetInstance()), so a host's own
// control types are checked as soon as they are registered. css entries of
// types no build file can make (menus) and text styles are read by code,
// so their use is not checked. Nothing is written; the skin manager's
// loaded skin is not touched. UI thread only.

#include <vector>

#include <karvelui/Base.h>

namespace KarvelUI {

struct SkinFinding {
  CString file;  // relative to the theme folder, '/' between folders
  int line = 0;  // from 1
  CString message;
  bool breaksLoading = false;  // the library cannot load this file at all
};

// Results of CSkinChecker::Check, which are also karvelskin's exit statuses.
enum SkinCheckResult {
  SKINCHECK_CLEAN = 0,
  SKINCHECK_FINDINGS = 1,
  SKINCHECK_UNREADABLE = 2,  // no folder, no Build.xml or no SkinDatas.xml
};

class KARVELUI_API CSkinChecker {
 public:
  // themeFolder holds Build.xml, SkinDatas.xml and one folder per skin.
  // skin empty: every installed skin; otherwise that one. The default skin
  // is always checked, since it answers what a skin leaves out. Findings
  // come sorted by file and line.
  static SkinCheckResult Check(const CString& themeFolder, const CString& skin, std::vector<SkinFinding>& findings);
  // "file:line: message", file joined to folder when folder is not empty.
  static CString FormatFinding(const SkinFinding& finding, const CString& folder = CString());
};

}  // namespace KarvelUI
