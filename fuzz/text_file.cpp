// Arbitrary bytes as a text file read line by line, in text mode (UTF-16
// with its mark, else narrow text) and in binary mode (always narrow).
// Beyond memory safety: every line consumes input, so a file never yields
// more lines than it has bytes, and a narrow line is never longer than one
// read piece.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include <karvelui/StdioFileEx.h>
#include "platform/Paths.h"
#include "FuzzFiles.h"

using namespace KarvelUI;

namespace {

void ReadAllLines(const CString& path, UINT flags, std::size_t size) {
  CStdioFileEx file;
  if (!file.Open(path, flags)) return;
  const bool narrow = !file.IsFileUnicodeText();
  std::size_t lines = 0;
  CString line;
  while (file.ReadString(line)) {
    if (++lines > size) abort();
    if (narrow && static_cast<std::size_t>(line.GetLength()) > CStdioFileEx::kNarrowPiece) abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const CString path = FromNativePath(fuzzing::WriteScratchFile("text.txt", data, size).string());
  ReadAllLines(path, CStdioFile::modeRead | CStdioFile::typeText, size);
  ReadAllLines(path, CStdioFile::modeRead | CStdioFile::shareDenyNone, size);
  return 0;
}
