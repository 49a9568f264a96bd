#include <gtest/gtest.h>

#include <stdlib.h>
#include <time.h>

#include <memory>
#include <regex>
#include <string>
#include <thread>
#include <tuple>

#include <karvelui/Trace.h>
#include "platform/Paths.h"
#include "support/TempDir.h"
#include "support/TraceCapture.h"

using namespace KarvelUI;
using KarvelTest::TempDir;
using KarvelTest::TraceCapture;

namespace {

struct ReleaseTrace {
  void operator()(ITrace_imp* t) const { t->Release(); }
};
using TraceLog = std::unique_ptr<ITrace_imp, ReleaseTrace>;

TraceLog OpenLog(const std::filesystem::path& file) {
  return TraceLog(new ITrace_imp(FromNativePath(file.string())));
}

// The file's lines (split at "\r\n") with their time stamps checked and cut.
std::vector<std::string> MessagesIn(const std::string& content) {
  static const std::regex stamp(R"(^\[\d{4}/\d{2}/\d{2} \d{2}:\d{2}:\d{2}\] )");
  std::vector<std::string> messages;
  size_t start = 0;
  for (size_t end = content.find("\r\n"); end != std::string::npos; end = content.find("\r\n", start)) {
    const std::string line = content.substr(start, end - start);
    std::smatch match;
    EXPECT_TRUE(std::regex_search(line, match, stamp)) << line;
    messages.push_back(line.substr(match.length()));
    start = end + 2;
  }
  EXPECT_EQ(start, content.size()) << "unterminated tail";
  return messages;
}

}  // namespace

TEST(TraceLog, LineFormatLevelsNarrowTextAndTheLengthLimit) {
  TempDir dir;
  const auto file = dir.Path() / "sub" / "KarvelViewTrace.log";  // the folder is made on open
  TraceLog log = OpenLog(file);
  ASSERT_TRUE(log->IsOpen());
  EXPECT_TRUE(log->Trace(TRACE_LEVEL_DROPPED, TRACE_FLUSH, L"dropped %d", 1));
  EXPECT_TRUE(log->Trace(1, TRACE_FLUSH, L"<ERROR> level one %d", 1));
  EXPECT_TRUE(
      log->Trace(TRACE_LEVEL_ERROR, TRACE_NO_FLUSH, L"Create obj error:%s, type:%s\n", CString(L"btnOK"), L"Button"));
  EXPECT_TRUE(log->Trace(TRACE_LEVEL_DEVICE, TRACE_FLUSH, L"<ERROR> Decode Fail: %s", CString(L"\\pics\\\u5199.jpg")));
  log->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"%s", CString(std::wstring(2000, L'x')));  // cut to 1023 characters
  log->Close();
  EXPECT_EQ(MessagesIn(TempDir::Read(file)),
            (std::vector<std::string>{"<ERROR> level one 1", "Create obj error:btnOK, type:Button\n",
                                      "<ERROR> Decode Fail: \\pics\\\xe5\x86\x99.jpg", std::string(1023, 'x')}));
  setenv("TZ", "UTC", 1);  // time stamps are local time with a trailing space
  tzset();
  EXPECT_EQ(ITrace_imp::FormatTimeStamp(1299334029), CString(L"[2011/03/05 14:07:09] "));
}

TEST(TraceLog, OversizedLogKeepsItsLast250000BytesThenAppends) {
  TempDir dir;
  std::string old;
  for (int i = 0; old.size() < 600000; ++i) old += "line " + std::to_string(i) + "\r\n";
  old.resize(600000);
  const auto file = dir.Write("big.log", old);
  {
    TraceLog log = OpenLog(file);
    EXPECT_EQ(TempDir::Read(file), old.substr(600000 - 250000));
    log->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"after trim");
  }
  const std::string content = TempDir::Read(file);
  ASSERT_GT(content.size(), 250000u);
  EXPECT_EQ(content.substr(0, 250000), old.substr(350000));
  EXPECT_EQ(MessagesIn(content.substr(250000)), (std::vector<std::string>{"after trim"}));

  // Just under the limit: left alone.
  const std::string small(499999, 'y');
  const auto kept = dir.Write("kept.log", small);
  OpenLog(kept);
  EXPECT_EQ(TempDir::Read(kept), small);
}

TEST(TraceLog, ReopensAfterCloseAndSharesTheFileWithOthers) {
  TempDir dir;
  const auto file = dir.Path() / "shared.log";
  TraceLog first = OpenLog(file);
  TraceLog second = OpenLog(file);  // e.g. another process using the library
  first->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"one");
  second->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"two");
  first->Close();
  const bool closed = !first->IsOpen();
  first->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"three");
  EXPECT_TRUE(closed && first->IsOpen());
  second->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"four");
  EXPECT_EQ(MessagesIn(TempDir::Read(file)), (std::vector<std::string>{"one", "two", "three", "four"}));
}

TEST(TraceLog, UnopenableFileMakesTraceANoOp) {
  TempDir dir;
  const auto blocker = dir.Write("blocker", "a file, not a folder");
  TraceCapture capture;
  TraceLog log = OpenLog(blocker / "x.log");
  EXPECT_TRUE(!log->IsOpen() && log->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"lost") && !log->IsOpen());
  ASSERT_EQ(capture.Lines().size(), 1u);  // still seen by the capture
}

TEST(TraceLog, TwoThreadsNeverInterleaveWithinALine) {
  TempDir dir;
  TraceLog log = OpenLog(dir.Path() / "threads.log");
  const std::wstring a(300, L'a');
  const std::wstring b(300, L'b');
  auto writer = [&](const std::wstring& text) {
    for (int i = 0; i < 300; ++i) log->Trace(2, i % 2, L"%s %d", text.c_str(), i);
  };
  std::thread t1(writer, a);
  std::thread t2(writer, b);
  t1.join();
  t2.join();
  log->Close();
  const auto messages = MessagesIn(TempDir::Read(dir.Path() / "threads.log"));
  ASSERT_EQ(messages.size(), 600u);
  int nextA = 0;
  int nextB = 0;
  for (const std::string& m : messages) {
    const std::string body = m.substr(0, 300);
    ASSERT_TRUE(body == std::string(300, 'a') || body == std::string(300, 'b')) << m.substr(0, 320);
    int& next = body[0] == 'a' ? nextA : nextB;
    EXPECT_EQ(m.substr(300), " " + std::to_string(next++));  // each thread's lines stay in order
  }
}

TEST(TraceLog, GlobalLogCaptureAndRelease) {
  ITrace_imp* instance = ITrace_imp::GetInstance();
  ASSERT_EQ(g_ITrace, instance);  // valid before any application object ran
  ASSERT_NE(g_ITrace, nullptr);
  CString expected;
  expected.Format(L"%s\\Orvane\\Karvel\\KarvelViewTrace.log",
                  FromNativePath(std::getenv("XDG_DATA_HOME") ? std::getenv("XDG_DATA_HOME")
                                                              : (std::string(std::getenv("HOME")) + "/.local/share")));
  EXPECT_EQ(instance->GetPath(), expected);

  {
    TraceCapture capture;
    g_ITrace->Trace(0, 1, L"below threshold");
    g_ITrace->Trace(TRACE_LEVEL_FALLBACK, TRACE_FLUSH, L"fallback %d of %d", 2, 3);
    g_ITrace->Trace(TRACE_LEVEL_DEVICE, TRACE_FLUSH, L"<D3DERROR> Begin scene fail: %d", -2005530520);
    const auto lines = capture.Lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(std::make_tuple(lines[0].level, lines[0].message, lines[1].message),
              std::make_tuple(3, std::wstring(L"fallback 2 of 3"), std::wstring(L"<D3DERROR> Begin scene fail: -2005530520")));
  }

  // Released, not forgotten: both pointers stay, and a later line opens
  // the file only for itself; the accessor hands out the log open again.
  g_ITrace->Release();
  ASSERT_EQ(g_ITrace, instance);
  EXPECT_FALSE(instance->IsOpen());
  g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"<ERROR> after release");
  EXPECT_FALSE(instance->IsOpen());
  EXPECT_TRUE(ITrace_imp::GetInstance() == instance && instance->IsOpen());
}
