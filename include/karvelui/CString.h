#pragma once

// CString: the wide string every path, identifier and text of the library is
// held in. A value type over std::wstring with the MFC-style operations the
// code is written against. Narrow text converts from UTF-8, the narrow code
// page of this platform.

#include <compare>
#include <functional>
#include <string>
#include <string_view>

#include <karvelui/Export.h>
#include <karvelui/Format.h>

namespace KarvelUI {

class KARVELUI_API CString {
 public:
  CString() = default;
  CString(const wchar_t* s) : m_str(s ? s : L"") {}  // NOLINT: implicit like MFC
  CString(const wchar_t* s, int length);
  CString(const char* utf8);                         // NOLINT
  CString(wchar_t ch, int repeat = 1);
  CString(std::wstring s) : m_str(std::move(s)) {}   // NOLINT
  CString(std::wstring_view s) : m_str(s) {}         // NOLINT

  // --- size and access -----------------------------------------------------
  int GetLength() const { return static_cast<int>(m_str.size()); }
  bool IsEmpty() const { return m_str.empty(); }
  void Empty() { m_str.clear(); }
  wchar_t GetAt(int index) const;
  void SetAt(int index, wchar_t ch);
  wchar_t operator[](int index) const { return GetAt(index); }
  const wchar_t* GetString() const { return m_str.c_str(); }
  operator const wchar_t*() const { return m_str.c_str(); }  // NOLINT: MFC's LPCTSTR
  const std::wstring& str() const { return m_str; }
  std::wstring& str() { return m_str; }
  std::wstring_view view() const { return m_str; }

  // --- comparison ------------------------------------------------------------
  int Compare(const wchar_t* other) const;
  int CompareNoCase(const wchar_t* other) const;
  friend bool operator==(const CString& a, const CString& b) { return a.m_str == b.m_str; }
  friend bool operator==(const CString& a, const wchar_t* b) { return a.m_str == (b ? b : L""); }
  friend std::strong_ordering operator<=>(const CString& a, const CString& b) {
    return a.m_str <=> b.m_str;
  }

  // --- concatenation ---------------------------------------------------------
  CString& operator+=(const CString& s) { m_str += s.m_str; return *this; }
  CString& operator+=(const wchar_t* s) { if (s) m_str += s; return *this; }
  CString& operator+=(wchar_t ch) { m_str += ch; return *this; }
  friend CString operator+(CString a, const CString& b) { return a += b; }
  friend CString operator+(CString a, const wchar_t* b) { return a += b; }
  friend CString operator+(const wchar_t* a, const CString& b) { return CString(a) += b; }
  friend CString operator+(CString a, wchar_t ch) { return a += ch; }
  friend CString operator+(wchar_t ch, const CString& b) { return CString(ch) += b; }

  // --- extraction (out-of-range counts are clamped as MFC does) --------------
  CString Left(int count) const;
  CString Right(int count) const;
  CString Mid(int first) const;
  CString Mid(int first, int count) const;
  CString SpanIncluding(const wchar_t* chars) const;
  CString SpanExcluding(const wchar_t* chars) const;
  CString Tokenize(const wchar_t* tokens, int& start) const;

  // --- searching (indices are 0-based; -1 when absent) -----------------------
  int Find(wchar_t ch, int start = 0) const;
  int Find(const wchar_t* sub, int start = 0) const;
  int ReverseFind(wchar_t ch) const;
  int FindOneOf(const wchar_t* chars) const;

  // --- modification ------------------------------------------------------------
  CString& MakeLower();
  CString& MakeUpper();
  CString& MakeReverse();
  CString& Trim();
  CString& Trim(wchar_t ch);
  CString& Trim(const wchar_t* chars);
  CString& TrimLeft();
  CString& TrimLeft(wchar_t ch);
  CString& TrimLeft(const wchar_t* chars);
  CString& TrimRight();
  CString& TrimRight(wchar_t ch);
  CString& TrimRight(const wchar_t* chars);
  int Replace(wchar_t oldCh, wchar_t newCh);
  int Replace(const wchar_t* oldText, const wchar_t* newText);
  int Remove(wchar_t ch);
  int Insert(int index, wchar_t ch);
  int Insert(int index, const wchar_t* text);
  int Delete(int index, int count = 1);
  void Truncate(int length);

  // --- formatting (Windows wide conventions, see base/Format.h) ---------------
  template <typename... Args>
  void Format(const wchar_t* format, const Args&... args) {
    m_str = FormatWideArgs(format, args...);
  }
  template <typename... Args>
  void AppendFormat(const wchar_t* format, const Args&... args) {
    m_str += FormatWideArgs(format, args...);
  }

  // UTF-8 form of the text, for the places where it leaves the library.
  std::string ToUtf8() const;

 private:
  std::wstring m_str;
};

}  // namespace KarvelUI

template <>
struct std::hash<KarvelUI::CString> {
  size_t operator()(const KarvelUI::CString& s) const noexcept {
    return std::hash<std::wstring>()(s.str());
  }
};
