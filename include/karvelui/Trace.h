#pragma once

// The trace log: one append-only text file in the application-data folder
// ("KarvelViewTrace.log"), one time-stamped line per report, reached through
// the global g_ITrace. Levels below the threshold (1) are dropped before
// anything is formatted. Lines from different threads never mix.
//
//   g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"Create obj error:%s, type:%s\n", name, type);

#include <functional>
#include <span>

#include <karvelui/CString.h>
#include <karvelui/Export.h>
#include <karvelui/Format.h>
#include <karvelui/Types.h>
#include <karvelui/StdioFile.h>
#include <karvelui/Sync.h>

namespace KarvelUI {

// What a line reports; the level is not written into the line.
enum TraceLevel : int {
  TRACE_LEVEL_DROPPED = 0,   // below the threshold: never written
  TRACE_LEVEL_ERROR = 2,     // skin, control and list errors ("<ERROR> ", "<WARNING> ")
  TRACE_LEVEL_FALLBACK = 3,  // a fallback taken (device creation and reset attempts)
  TRACE_LEVEL_DEVICE = 4,    // graphics device failures ("<D3DERROR> ") and pictures that do not decode
};

// Whether the line is flushed to the file at once; the library always does.
enum TraceFlush : int { TRACE_NO_FLUSH = 0, TRACE_FLUSH = 1 };

class KARVELUI_API ITrace {
 public:
  // Arguments of any type FormatArg takes (CString included) are captured by
  // type, so a mismatched argument can never be misread.
  template <typename... Args>
  bool Trace(int level, int flush, const wchar_t* format, const Args&... args) {
    if constexpr (sizeof...(Args) == 0) {
      return TraceArgs(level, flush, format, {});
    } else {
      const FormatArg packed[] = {FormatArg(args)...};
      return TraceArgs(level, flush, format, packed);
    }
  }
  virtual bool TraceArgs(int level, int flush, const wchar_t* format, std::span<const FormatArg> args) = 0;
  // Ends the object's use. The process log (ITrace_imp::GetInstance) only
  // closes its file: g_ITrace stays valid, and later lines still reach the file.
  virtual void Release() = 0;
  // Closes the file; the next Trace opens it again.
  virtual void Close() = 0;

 protected:
  virtual ~ITrace() = default;
};

class KARVELUI_API ITrace_imp : public ITrace {
 public:
  static constexpr DWORD kSizeLimit = 500000;
  static constexpr int kMessageCapacity = 1024;  // wide characters, terminator included

  // The process's log, made (and opened) on first use; sets g_ITrace. After
  // its Release() the same log is handed out and opened again.
  static ITrace_imp* GetInstance();
  // A log at the given file (library path), opened at once.
  explicit ITrace_imp(const CString& path);

  bool TraceArgs(int level, int flush, const wchar_t* format, std::span<const FormatArg> args) override;
  void Release() override;
  void Close() override;

  CString GetPath() const;
  bool IsOpen() const;
  // "[2011/03/05 14:07:09] " for the given time (local time).
  static CString FormatTimeStamp(std::int64_t unixSeconds);
  // "<app data>\KarvelViewTrace.log".
  static CString DefaultPath();

  // Test hook: sees every line that passes the threshold (level and message,
  // without stamp and line end), in file order. Production code never sets
  // it. Returns the previous observer.
  using Observer = std::function<void(int level, const CString& message)>;
  static Observer SetObserver(Observer observer);

 protected:
  ~ITrace_imp() override;

 private:
  void OpenFile();
  void CloseFile();
  void Reopen();
  void TrimOversizedFile();
  void WriteLine(int level, const CString& message, const CString& line, int flush);

  CStdioFile m_file;
  int m_bOpen = 0;
  DWORD m_nSizeLimit = kSizeLimit;
  CString m_strPath;
  int m_nLevel = 1;
  bool m_bReleased = false;  // the process log after Release(): a file open per line
  mutable CriticalSection m_lock;
};

// Valid whenever library code can run, shut-down included: set by static
// initialisation of the trace module (and again by the application object
// at load), never cleared.
extern KARVELUI_API ITrace* g_ITrace;

}  // namespace KarvelUI
