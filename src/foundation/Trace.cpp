#include <karvelui/Trace.h>

#include <time.h>

#include <algorithm>
#include <ctime>
#include <mutex>
#include <string>
#include <vector>

#include <karvelui/CommonString.h>
#include <karvelui/Helpers.h>
#include "platform/FileSystem.h"

namespace KarvelUI {
namespace {

constexpr UINT kOpenFlags = CStdioFile::modeReadWrite | CStdioFile::modeCreate | CStdioFile::modeNoTruncate |
                            CStdioFile::typeBinary | CStdioFile::shareDenyNone;

std::mutex g_instanceMutex;
ITrace_imp* g_instance = nullptr;

// Never destroyed: lines traced while static objects are torn down still
// look at them.
std::mutex& ObserverMutex() {
  static auto* const mutex = new std::mutex();
  return *mutex;
}

ITrace_imp::Observer& CurrentObserver() {
  static auto* const observer = new ITrace_imp::Observer();
  return *observer;
}

}  // namespace

ITrace* g_ITrace = ITrace_imp::GetInstance();

ITrace_imp* ITrace_imp::GetInstance() {
  std::lock_guard<std::mutex> lock(g_instanceMutex);
  if (!g_instance) {
    g_instance = new ITrace_imp(DefaultPath());
    g_ITrace = g_instance;
  } else {
    g_instance->Reopen();
  }
  return g_instance;
}

CString ITrace_imp::DefaultPath() {
  CString folder;
  GetAppDataPath(folder);
  CString path;
  path.Format(L"%s\\%s", folder, L"KarvelViewTrace.log");
  return path;
}

ITrace_imp::ITrace_imp(const CString& path) : m_strPath(path) {
  std::lock_guard<CriticalSection> lock(m_lock);
  OpenFile();
}

ITrace_imp::~ITrace_imp() { Close(); }

// The process log is released at unload, while g_ITrace and the accessor
// keep pointing at it and code that runs later in shut-down still traces:
// so it closes its file and lives on, opening the file per line from then.
void ITrace_imp::Release() {
  {
    std::lock_guard<std::mutex> lock(g_instanceMutex);
    if (this == g_instance) {
      std::lock_guard<CriticalSection> fileLock(m_lock);
      CloseFile();
      m_bReleased = true;
      return;
    }
  }
  delete this;
}

void ITrace_imp::Close() {
  std::lock_guard<CriticalSection> lock(m_lock);
  CloseFile();
}

// Called with the lock held.
void ITrace_imp::CloseFile() {
  if (m_bOpen) {
    m_file.Close();
    m_bOpen = 0;
  }
}

void ITrace_imp::Reopen() {
  std::lock_guard<CriticalSection> lock(m_lock);
  if (!m_bReleased) return;
  m_bReleased = false;
  if (!m_bOpen) OpenFile();
}

CString ITrace_imp::GetPath() const {
  std::lock_guard<CriticalSection> lock(m_lock);
  return m_strPath;
}

bool ITrace_imp::IsOpen() const {
  std::lock_guard<CriticalSection> lock(m_lock);
  return m_bOpen != 0;
}

ITrace_imp::Observer ITrace_imp::SetObserver(Observer observer) {
  std::lock_guard<std::mutex> lock(ObserverMutex());
  Observer previous = std::move(CurrentObserver());
  CurrentObserver() = std::move(observer);
  return previous;
}

// Called with the lock held.
void ITrace_imp::OpenFile() {
  const CString folder = CommonString::GetFileDirFromPath(m_strPath);
  if (!folder.IsEmpty()) CreateFolderTree(folder);
  m_bOpen = m_file.Open(m_strPath, kOpenFlags);
  if (m_bOpen && m_file.GetLength() >= m_nSizeLimit) TrimOversizedFile();
}

// Keeps the newest half of the limit: the last bytes of the old log.
void ITrace_imp::TrimOversizedFile() {
  const std::uint64_t length = m_file.GetLength();
  std::vector<char> content(static_cast<size_t>(length));
  m_file.Seek(0, CStdioFile::begin);
  const UINT read = m_file.Read(content.data(), static_cast<UINT>(content.size()));
  content.resize(read);
  m_file.Close();
  RemoveFile(m_strPath);
  m_bOpen = m_file.Open(m_strPath, kOpenFlags);
  if (!m_bOpen) return;
  const size_t keep = std::min<size_t>(content.size(), m_nSizeLimit / 2);
  m_file.Write(content.data() + (content.size() - keep), static_cast<UINT>(keep));
  m_file.Flush();
}

CString ITrace_imp::FormatTimeStamp(std::int64_t unixSeconds) {
  const time_t seconds = static_cast<time_t>(unixSeconds);
  tm local{};
  localtime_r(&seconds, &local);
  char stamp[64] = {};
  std::strftime(stamp, sizeof stamp, "[%Y/%m/%d %H:%M:%S] ", &local);
  return CString(stamp);
}

bool ITrace_imp::TraceArgs(int level, int flush, const wchar_t* format, std::span<const FormatArg> args) {
  if (level < m_nLevel) return true;
  std::wstring message = FormatWide(format, args);
  if (message.size() > kMessageCapacity - 1) message.resize(kMessageCapacity - 1);
  const CString text(std::move(message));
  const CString line = FormatTimeStamp(std::time(nullptr)) + text + L"\r\n";
  WriteLine(level, text, line, flush);
  return true;
}

void ITrace_imp::WriteLine(int level, const CString& message, const CString& line, int flush) {
  std::lock_guard<CriticalSection> lock(m_lock);
  {
    std::lock_guard<std::mutex> observerLock(ObserverMutex());
    if (CurrentObserver()) CurrentObserver()(level, message);
  }
  std::string bytes;
  CString_to_MBCS(line, bytes);
  if (!m_bOpen) OpenFile();
  if (!m_bOpen) return;
  // Another process may have appended since our last write.
  m_file.SeekToEnd();
  m_file.Write(bytes.data(), static_cast<UINT>(bytes.size()));
  if (flush) m_file.Flush();
  if (m_bReleased) CloseFile();
}

}  // namespace KarvelUI
