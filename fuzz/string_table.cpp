// Arbitrary bytes as a string-table file: loaded into the table, every
// identifier fetched back, and the same lines through the public line
// analyser and the splitters. Beyond memory safety: no fetched text holds
// a ';' (everything from the first one on is a comment).

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include <karvelui/CommonString.h>
#include "platform/Paths.h"
#include "FuzzFiles.h"

using namespace KarvelUI;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const CString path = FromNativePath(fuzzing::WriteScratchFile("strings.lng", data, size).string());
  CommonString table;
  if (!table.LoadStringTable(path)) abort();  // the file exists, so it must load

  CStringArray lines;
  CommonString::LoadStringTable(lines, path);
  CMapStringToString analysed;
  CommonString::AnalyzeStringTable(lines, analysed);
  for (const CString& line : lines) {
    const int equals = line.Find(L'=');
    if (equals < 0) continue;
    CString id = line.Left(equals);
    id.Trim();
    if (table.GetStringViaID(id).Find(L';') >= 0) abort();
    CStringArray parts;
    CommonString::AnalyzeString(line, L'=', parts);
    CStringList words;
    CommonString::AnalyzeString(line, CString(L"\\n"), words);
    CString tail;
    CommonString::AnalyzeString(line, L'\\', tail);
  }
  return 0;
}
