#include <karvelui/CString.h>

#include <algorithm>
#include <cwchar>
#include <cwctype>

#include <karvelui/TextCodec.h>

namespace KarvelUI {
namespace {

constexpr const wchar_t* kWhiteSpace = L" \t\r\n\v\f";

size_t Clamp(int value, size_t limit) {
  if (value < 0) return 0;
  return std::min(static_cast<size_t>(value), limit);
}

bool Contains(const wchar_t* chars, wchar_t ch) {
  return chars && ch != 0 && std::wcschr(chars, ch) != nullptr;
}

}  // namespace

CString::CString(const wchar_t* s, int length) {
  if (s && length > 0) m_str.assign(s, static_cast<size_t>(length));
}

CString::CString(const char* utf8) {
  if (utf8) m_str = Utf8ToWide(utf8);
}

CString::CString(wchar_t ch, int repeat) {
  if (repeat > 0) m_str.assign(static_cast<size_t>(repeat), ch);
}

wchar_t CString::GetAt(int index) const {
  return (index >= 0 && static_cast<size_t>(index) < m_str.size()) ? m_str[static_cast<size_t>(index)]
                                                                   : L'\0';
}

void CString::SetAt(int index, wchar_t ch) {
  if (index >= 0 && static_cast<size_t>(index) < m_str.size()) m_str[static_cast<size_t>(index)] = ch;
}

int CString::Compare(const wchar_t* other) const {
  int r = std::wcscmp(m_str.c_str(), other ? other : L"");
  return (r > 0) - (r < 0);
}

int CString::CompareNoCase(const wchar_t* other) const {
  const wchar_t* a = m_str.c_str();
  const wchar_t* b = other ? other : L"";
  for (;; ++a, ++b) {
    const wchar_t ca = ToLowerChar(*a);
    const wchar_t cb = ToLowerChar(*b);
    if (ca != cb) return ca < cb ? -1 : 1;
    if (ca == 0) return 0;
  }
}

CString CString::Left(int count) const { return CString(m_str.substr(0, Clamp(count, m_str.size()))); }

CString CString::Right(int count) const {
  const size_t n = Clamp(count, m_str.size());
  return CString(m_str.substr(m_str.size() - n));
}

CString CString::Mid(int first) const {
  const size_t start = Clamp(first, m_str.size());
  return CString(m_str.substr(start));
}

CString CString::Mid(int first, int count) const {
  const size_t start = Clamp(first, m_str.size());
  return CString(m_str.substr(start, Clamp(count, m_str.size() - start)));
}

CString CString::SpanIncluding(const wchar_t* chars) const {
  size_t n = 0;
  while (n < m_str.size() && Contains(chars, m_str[n])) ++n;
  return Left(static_cast<int>(n));
}

CString CString::SpanExcluding(const wchar_t* chars) const {
  size_t n = 0;
  while (n < m_str.size() && !Contains(chars, m_str[n])) ++n;
  return Left(static_cast<int>(n));
}

CString CString::Tokenize(const wchar_t* tokens, int& start) const {
  if (start < 0 || static_cast<size_t>(start) >= m_str.size()) {
    start = -1;
    return CString();
  }
  size_t begin = static_cast<size_t>(start);
  while (begin < m_str.size() && Contains(tokens, m_str[begin])) ++begin;
  if (begin >= m_str.size()) {
    start = -1;
    return CString();
  }
  size_t end = begin;
  while (end < m_str.size() && !Contains(tokens, m_str[end])) ++end;
  start = static_cast<int>(std::min(end + 1, m_str.size()));
  return CString(m_str.substr(begin, end - begin));
}

int CString::Find(wchar_t ch, int start) const {
  if (start < 0 || static_cast<size_t>(start) > m_str.size()) return -1;
  const size_t pos = m_str.find(ch, static_cast<size_t>(start));
  return pos == std::wstring::npos ? -1 : static_cast<int>(pos);
}

int CString::Find(const wchar_t* sub, int start) const {
  if (!sub || start < 0 || static_cast<size_t>(start) > m_str.size()) return -1;
  const size_t pos = m_str.find(sub, static_cast<size_t>(start));
  return pos == std::wstring::npos ? -1 : static_cast<int>(pos);
}

int CString::ReverseFind(wchar_t ch) const {
  const size_t pos = m_str.rfind(ch);
  return pos == std::wstring::npos ? -1 : static_cast<int>(pos);
}

int CString::FindOneOf(const wchar_t* chars) const {
  if (!chars || !*chars) return -1;
  const size_t pos = m_str.find_first_of(chars);
  return pos == std::wstring::npos ? -1 : static_cast<int>(pos);
}

CString& CString::MakeLower() {
  for (wchar_t& c : m_str) c = ToLowerChar(c);
  return *this;
}

CString& CString::MakeUpper() {
  for (wchar_t& c : m_str) c = ToUpperChar(c);
  return *this;
}

CString& CString::MakeReverse() {
  std::reverse(m_str.begin(), m_str.end());
  return *this;
}

CString& CString::Trim() { return TrimRight().TrimLeft(); }
CString& CString::Trim(wchar_t ch) { return TrimRight(ch).TrimLeft(ch); }
CString& CString::Trim(const wchar_t* chars) { return TrimRight(chars).TrimLeft(chars); }
CString& CString::TrimLeft() { return TrimLeft(kWhiteSpace); }
CString& CString::TrimRight() { return TrimRight(kWhiteSpace); }

CString& CString::TrimLeft(wchar_t ch) {
  const wchar_t set[2] = {ch, 0};
  return TrimLeft(set);
}

CString& CString::TrimRight(wchar_t ch) {
  const wchar_t set[2] = {ch, 0};
  return TrimRight(set);
}

CString& CString::TrimLeft(const wchar_t* chars) {
  size_t n = 0;
  while (n < m_str.size() && Contains(chars, m_str[n])) ++n;
  m_str.erase(0, n);
  return *this;
}

CString& CString::TrimRight(const wchar_t* chars) {
  size_t n = m_str.size();
  while (n > 0 && Contains(chars, m_str[n - 1])) --n;
  m_str.resize(n);
  return *this;
}

int CString::Replace(wchar_t oldCh, wchar_t newCh) {
  int count = 0;
  for (wchar_t& c : m_str) {
    if (c == oldCh) {
      c = newCh;
      ++count;
    }
  }
  return count;
}

int CString::Replace(const wchar_t* oldText, const wchar_t* newText) {
  if (!oldText || !*oldText) return 0;
  const std::wstring_view from(oldText);
  const std::wstring_view to(newText ? newText : L"");
  int count = 0;
  std::wstring out;
  size_t pos = 0;
  for (size_t hit; (hit = m_str.find(from, pos)) != std::wstring::npos; pos = hit + from.size()) {
    out.append(m_str, pos, hit - pos);
    out += to;
    ++count;
  }
  if (count == 0) return 0;
  out.append(m_str, pos);
  m_str = std::move(out);
  return count;
}

int CString::Remove(wchar_t ch) {
  const size_t before = m_str.size();
  std::erase(m_str, ch);
  return static_cast<int>(before - m_str.size());
}

int CString::Insert(int index, wchar_t ch) {
  m_str.insert(Clamp(index, m_str.size()), 1, ch);
  return GetLength();
}

int CString::Insert(int index, const wchar_t* text) {
  if (text) m_str.insert(Clamp(index, m_str.size()), text);
  return GetLength();
}

int CString::Delete(int index, int count) {
  const size_t start = Clamp(index, m_str.size());
  if (count > 0) m_str.erase(start, static_cast<size_t>(count));
  return GetLength();
}

void CString::Truncate(int length) {
  if (length >= 0 && static_cast<size_t>(length) < m_str.size()) m_str.resize(static_cast<size_t>(length));
}

std::string CString::ToUtf8() const { return WideToUtf8(m_str); }

}  // namespace KarvelUI
