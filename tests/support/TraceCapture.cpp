#include "support/TraceCapture.h"

namespace KarvelTest {

TraceCapture::TraceCapture() {
  m_previous = KarvelUI::ITrace_imp::SetObserver([this](int level, const KarvelUI::CString& message) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_lines.push_back({level, message.str()});
  });
}

TraceCapture::~TraceCapture() { KarvelUI::ITrace_imp::SetObserver(std::move(m_previous)); }

std::vector<TracedLine> TraceCapture::Lines() const {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_lines;
}

std::vector<std::wstring> TraceCapture::Messages() const {
  std::vector<std::wstring> messages;
  for (const TracedLine& line : Lines()) messages.push_back(line.message);
  return messages;
}

bool TraceCapture::Contains(const std::wstring& text) const {
  for (const TracedLine& line : Lines())
    if (line.message.find(text) != std::wstring::npos) return true;
  return false;
}

void TraceCapture::Clear() {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_lines.clear();
}

}  // namespace KarvelTest
