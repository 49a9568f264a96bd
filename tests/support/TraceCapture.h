#pragma once

// Collects every line the trace log writes while the object lives: the
// message text (no time stamp, no line end) and its level, in file order.
//
//   KarvelTest::TraceCapture trace;
//   ... code under test ...
//   EXPECT_THAT(trace.Messages(), ElementsAre(L"<ERROR> ..."));

#include <mutex>
#include <string>
#include <vector>

#include <karvelui/Trace.h>

namespace KarvelTest {

struct TracedLine {
  int level;
  std::wstring message;
};

class TraceCapture {
 public:
  TraceCapture();
  ~TraceCapture();
  TraceCapture(const TraceCapture&) = delete;
  TraceCapture& operator=(const TraceCapture&) = delete;

  std::vector<TracedLine> Lines() const;
  std::vector<std::wstring> Messages() const;
  // True when some captured message contains the text.
  bool Contains(const std::wstring& text) const;
  void Clear();

 private:
  mutable std::mutex m_mutex;
  std::vector<TracedLine> m_lines;
  KarvelUI::ITrace_imp::Observer m_previous;
};

}  // namespace KarvelTest
