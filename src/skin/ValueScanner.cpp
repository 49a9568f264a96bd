#include "skin/ValueScanner.h"

#include <charconv>
#include <string>

namespace KarvelUI {
namespace {

bool IsSpace(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r'); }

int DigitValue(wchar_t c) {
  if (c >= L'0' && c <= L'9') return c - L'0';
  if (c >= L'a' && c <= L'z') return c - L'a' + 10;
  if (c >= L'A' && c <= L'Z') return c - L'A' + 10;
  return 99;
}

// The characters a floating-point number can be made of, narrowed.
std::string FloatCharacters(const wchar_t* text) {
  std::string out;
  for (; *text && *text < 0x80; ++text) {
    const char c = static_cast<char>(*text);
    if (!(DigitValue(*text) < 36 || c == '.' || c == '+' || c == '-' || c == '(' || c == ')' || c == '_')) break;
    out += c;
  }
  return out;
}

}  // namespace

void ValueScanner::SkipSpace() {
  while (IsSpace(*m_at)) ++m_at;
}

bool ValueScanner::ReadDigits(int base, bool negative, std::int32_t& value) {
  // Like strtol: saturate at the 64-bit range, then keep the low 32 bits.
  constexpr std::uint64_t kLimit = 0x8000000000000000ull;
  std::uint64_t magnitude = 0;
  const wchar_t* start = m_at;
  for (; DigitValue(*m_at) < base; ++m_at) {
    const std::uint64_t next = magnitude * static_cast<std::uint64_t>(base) + DigitValue(*m_at);
    magnitude = (magnitude > kLimit / base || next > kLimit) ? kLimit : next;
  }
  if (m_at == start) return false;
  if (!negative && magnitude == kLimit) magnitude = kLimit - 1;
  const std::uint64_t bits = negative ? (0 - magnitude) : magnitude;
  value = static_cast<std::int32_t>(static_cast<std::uint32_t>(bits));
  return true;
}

bool ValueScanner::ReadInt(std::int32_t& value) {
  SkipSpace();
  const wchar_t* start = m_at;
  const bool negative = *m_at == L'-';
  if (*m_at == L'-' || *m_at == L'+') ++m_at;
  if (ReadDigits(10, negative, value)) return true;
  m_at = start;
  return false;
}

bool ValueScanner::ReadAutoBaseInt(std::int32_t& value) {
  SkipSpace();
  const wchar_t* start = m_at;
  const bool negative = *m_at == L'-';
  if (*m_at == L'-' || *m_at == L'+') ++m_at;
  if (m_at[0] == L'0' && (m_at[1] == L'x' || m_at[1] == L'X')) {
    m_at += 2;
    if (ReadDigits(16, negative, value)) return true;
    value = 0;  // "0x" alone is the number 0
    return true;
  }
  if (*m_at == L'0') return ReadDigits(8, negative, value);
  if (ReadDigits(10, negative, value)) return true;
  m_at = start;
  return false;
}

bool ValueScanner::ReadFloat(float& value) {
  SkipSpace();
  const std::string text = FloatCharacters(m_at);
  const char* first = text.data();
  const char* last = text.data() + text.size();
  const bool negative = first != last && *first == '-';
  if (first != last && (*first == '-' || *first == '+')) ++first;
  double parsed = 0.0;
  std::from_chars_result result{};
  if (last - first >= 2 && first[0] == '0' && (first[1] == 'x' || first[1] == 'X')) {
    result = std::from_chars(first + 2, last, parsed, std::chars_format::hex);
    if (result.ec == std::errc::invalid_argument) result = {first + 1, std::errc{}};  // "0x" alone is 0
  } else {
    result = std::from_chars(first, last, parsed);
  }
  if (result.ptr == first) return false;
  if (result.ec == std::errc::result_out_of_range) parsed = 0.0;
  value = static_cast<float>(negative ? -parsed : parsed);
  m_at += result.ptr - text.data();
  return true;
}

bool ValueScanner::ReadSeparator() {
  if (*m_at != L',') return false;
  ++m_at;
  SkipSpace();
  return true;
}

bool ValueScanner::AtEnd() {
  SkipSpace();
  return *m_at == L'\0';
}

int ValueScanner::ReadIntList(const wchar_t* text, std::int32_t* values, int count) {
  ValueScanner scanner(text);
  int read = 0;
  while (read < count) {
    if (read > 0 && !scanner.ReadSeparator()) break;
    if (!scanner.ReadInt(values[read])) break;
    ++read;
  }
  return read;
}

}  // namespace KarvelUI
