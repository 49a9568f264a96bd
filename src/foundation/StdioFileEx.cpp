#include <karvelui/StdioFileEx.h>

#include <string>

#include <karvelui/TextCodec.h>
#include <karvelui/Trace.h>
#include "platform/CodePage.h"

namespace KarvelUI {
namespace {

constexpr unsigned char kUtf16Mark[2] = {0xFF, 0xFE};

bool IsReadOnlyMode(UINT flags) {
  return (flags & (CStdioFile::modeWrite | CStdioFile::modeReadWrite)) == 0;
}

void StripLineEnd(CString& line) {
  const int length = line.GetLength();
  if (length > 1 && line.Right(2) == L"\r\n") {
    line.Truncate(length - 2);
  } else if (length > 0 && (line[length - 1] == L'\r' || line[length - 1] == L'\n')) {
    line.Truncate(length - 1);
  }
}

}  // namespace

bool CStdioFileEx::StartsWithUtf16Mark(const CString& path) {
  CStdioFile probe;
  if (!probe.Open(path, modeRead | typeBinary | shareDenyNone)) return false;
  unsigned char head[2] = {};
  return probe.Read(head, 2) == 2 && head[0] == kUtf16Mark[0] && head[1] == kUtf16Mark[1];
}

UINT CStdioFileEx::NarrowCodePage() const {
  return m_nFileCodePage == -1 ? GetACP() : static_cast<UINT>(m_nFileCodePage);
}

BOOL CStdioFileEx::Open(const CString& path, UINT flags) {
  m_bIsUnicodeText = 0;
  if ((flags & typeText) && !(flags & modeCreate) && IsReadOnlyMode(flags) && StartsWithUtf16Mark(path)) {
    m_bIsUnicodeText = 1;
    flags = (flags & ~typeText) | typeBinary;
  }
  m_nFlags = flags;
  if (!CStdioFile::Open(path, flags)) return FALSE;
  if (IsReadOnlyMode(flags) && GetLength() > kMaxReadBytes) {
    g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"<ERROR> Text file of %llu bytes is over the limit: %s",
                    static_cast<unsigned long long>(GetLength()), path);
    Close();
    return FALSE;
  }
  return TRUE;
}

BOOL CStdioFileEx::ReadString(CString& line) {
  if (m_bIsUnicodeText) {
    if (GetPosition() == 0) Seek(sizeof kUtf16Mark, begin);
    std::u16string units;
    if (!ReadLineUtf16(units)) return FALSE;
    line = CString(Utf16ToWide(units));
  } else {
    std::string bytes;
    if (!ReadLineBytes(bytes, kNarrowPiece)) return FALSE;
    const auto wide = MultiByteToWide(NarrowCodePage(), bytes);
    if (wide && !wide->empty()) line = CString(*wide);
  }
  StripLineEnd(line);
  return TRUE;
}

bool CStdioFileEx::WriteString(const CString& text) {
  if (m_nFlags & modeWriteUnicode) {
    if (GetPosition() == 0 && !Write(kUtf16Mark, sizeof kUtf16Mark)) return false;
    const std::u16string units = WideToUtf16(text.view());
    std::string bytes;
    bytes.reserve(units.size() * 2);
    for (const char16_t unit : units) {
      bytes += static_cast<char>(unit & 0xFF);
      bytes += static_cast<char>(unit >> 8);
    }
    return Write(bytes.data(), static_cast<UINT>(bytes.size()));
  }
  const auto narrow = WideToMultiByte(NarrowCodePage(), text.view(), '#');
  return narrow && Write(narrow->data(), static_cast<UINT>(narrow->size()));
}

}  // namespace KarvelUI
