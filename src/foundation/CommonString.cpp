#include <karvelui/CommonString.h>

#include <mutex>

#include <karvelui/Helpers.h>
#include <karvelui/StdioFileEx.h>
#include "platform/FileSystem.h"
#include <karvelui/MessageBox.h>
#include "platform/Paths.h"

namespace KarvelUI {
namespace {

constexpr UINT kReadFlags = CStdioFile::modeRead | CStdioFile::shareDenyNone;

std::mutex g_instanceMutex;

// The trimmed, non-empty lines of an open file, in order.
void CollectLines(CStdioFileEx& file, CStringArray& lines) {
  CString line;
  while (file.ReadString(line)) {
    line.Trim();
    if (!line.IsEmpty()) lines.Add(line);
  }
}

CString CutAtComment(CString text) {
  const int semicolon = text.Find(L';');
  if (semicolon >= 0) text.Truncate(semicolon);
  return text;
}

template <class Parts>
int SplitInto(const CString& text, const CString& separator, Parts& parts, void (*add)(Parts&, const CString&)) {
  parts.RemoveAll();
  if (text.IsEmpty()) return 0;
  int start = 0;
  if (!separator.IsEmpty()) {
    for (int at = text.Find(separator.GetString()); at >= 0; at = text.Find(separator.GetString(), start)) {
      add(parts, text.Mid(start, at - start));
      start = at + separator.GetLength();
    }
  }
  add(parts, text.Mid(start));
  return 1;
}

void AddToArray(CStringArray& parts, const CString& piece) { parts.Add(piece); }
void AddToList(CStringList& parts, const CString& piece) { parts.AddTail(piece); }

}  // namespace

CommonString* CommonString::m_pInstance = nullptr;

CommonString* CommonString::GetInstance() {
  std::lock_guard<std::mutex> lock(g_instanceMutex);
  if (!m_pInstance) m_pInstance = new CommonString();
  return m_pInstance;
}

void CommonString::FreeInstance() {
  std::lock_guard<std::mutex> lock(g_instanceMutex);
  delete m_pInstance;
  m_pInstance = nullptr;
}

void CommonString::SetAppPath() { m_strAppPath = GetFileDirFromPath(GetExecutablePath()); }

int CommonString::LoadStringTable(const CString& path) {
  CStdioFileEx file;
  if (path.IsEmpty() || !file.Open(path, kReadFlags)) {
    CString text;
    text.Format(L"Cannot open required file %s! Please reinstall karvelview to fix this problem.", path);
    MessageBoxW(nullptr, text, L"Load file error!", MB_OK | MB_ICONINFORMATION);
    return 0;
  }
  CStringArray lines;
  CollectLines(file, lines);
  file.Close();
  for (const CString& line : lines) AddTableLine(line);
  return 1;
}

void CommonString::AddTableLine(const CString& line) {
  const int equals = line.Find(L'=');
  if (equals < 0) return;
  CString id = line.Left(equals);
  id.Trim();
  CString text = line.Mid(equals + 1);
  text.Trim();
  m_StringTable.SetAt(id, CutAtComment(text));
}

int CommonString::LoadStringTable(CStringArray& lines, const CString& path) {
  CStdioFileEx file;
  if (path.IsEmpty() || !file.Open(path, kReadFlags)) return 0;
  CollectLines(file, lines);
  return 1;
}

int CommonString::WriteStringTable(const CStringArray& lines, const CString& path) {
  if (IsFileExist(path)) DeleteFileW(path);
  CStdioFileEx file;
  if (!file.Open(path, CStdioFile::modeCreate | CStdioFile::modeWrite)) return 0;
  for (const CString& line : lines) file.WriteString(line + L"\r\n");
  file.Close();
  return 1;
}

CString CommonString::GetStringViaID(const CString& id) const {
  CString text;
  if (id.IsEmpty() || !m_StringTable.Lookup(id, text)) return CString();
  text.Replace(L"\\r", L"\r");
  text.Replace(L"\\n", L"\n");
  return text;
}

int CommonString::AnalyzeStringTable(const CStringArray& lines, CMapStringToString& map) {
  for (const CString& line : lines) {
    const int first = line.Find(L'=');
    if (first < 0) continue;
    CString id = line.Left(first);
    id.Trim();
    const int second = line.Find(L'=', first + 1);
    CString text = second < 0 ? line.Mid(first + 1) : line.Mid(first + 1, second - first - 1);
    text.Trim();
    map.SetAt(id, CutAtComment(text));
  }
  return 1;
}

int CommonString::AnalyzeString(const CString& text, wchar_t separator, CStringArray& parts) {
  return SplitInto(text, CString(separator), parts, &AddToArray);
}

int CommonString::AnalyzeString(const CString& text, const CString& separator, CStringArray& parts) {
  return SplitInto(text, separator, parts, &AddToArray);
}

int CommonString::AnalyzeString(const CString& text, wchar_t separator, CStringList& parts) {
  return SplitInto(text, CString(separator), parts, &AddToList);
}

int CommonString::AnalyzeString(const CString& text, const CString& separator, CStringList& parts) {
  return SplitInto(text, separator, parts, &AddToList);
}

int CommonString::AnalyzeString(const CString& text, wchar_t character, CString& tail) {
  if (text.IsEmpty()) return 0;
  const int last = text.ReverseFind(character);
  if (last >= 0) tail = text.Mid(last + 1);
  return 1;
}

CString CommonString::ReparsePath(const CString& path) {
  CString result = path;
  result.Replace(L'/', L'\\');
  result.Replace(L"//", L"\\");
  result.Replace(L"\\\\", L"\\");
  if (result.GetLength() > 0 && result[0] == L'\\' && (result.GetLength() < 2 || result[1] != L'\\'))
    result.Insert(0, L'\\');
  return result;
}

CString CommonString::GetFileDirFromPath(const CString& path) {
  const CString normal = ReparsePath(path);
  int cut = normal.ReverseFind(L'\\');
  if (cut < 0) cut = normal.ReverseFind(L':');
  return cut < 0 ? CString() : normal.Left(cut + 1);
}

CString CommonString::GetFileNameFromPath(const CString& path) {
  const CString normal = ReparsePath(path);
  const int cut = normal.ReverseFind(L'\\');
  return cut < 0 ? path : normal.Mid(cut + 1);
}

CString CommonString::GetFileNameNoExtension(const CString& path) {
  const CString normal = ReparsePath(path);
  const int dot = normal.ReverseFind(L'.');
  return dot < 0 ? path : normal.Left(dot);
}

std::uint64_t CommonString::GetFileSize(const CString& path) {
  FileStatus status;
  return GetPathStatus(ReparsePath(path), status) ? status.size : 0;
}

CString GetFormatSizeString(std::uint64_t size) {
  CString text;
  if (size > 1048576) {
    text.Format(L"%0.2fMB", static_cast<float>(static_cast<double>(size) * (1.0 / 1048576.0)));
  } else if (size > 1024) {
    text.Format(L"%0.1fKB", static_cast<float>(static_cast<double>(size) * (1.0 / 1024.0)));
  } else {
    text.Format(L"%I64uB", size);
  }
  return text;
}

}  // namespace KarvelUI
