#pragma once

// printf-style formatting with the Windows wide-format conventions the
// library's messages are written in: %s and %c take wide text, %S and %C
// narrow (UTF-8) text, %I64d/%I64u are 64-bit, %ld is 32-bit. Arguments are
// captured by type, so a mismatched argument is converted, never misread.

#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include <karvelui/Export.h>

namespace KarvelUI {

class FormatArg {
 public:
  enum class Kind { Signed, Unsigned, Double, Wide, Narrow, Pointer };

  template <std::integral T>
  FormatArg(T v) {  // NOLINT: implicit by design
    if constexpr (std::is_signed_v<T> || std::is_same_v<T, wchar_t>) {
      m_kind = Kind::Signed;
      m_signed = static_cast<long long>(v);
    } else {
      m_kind = Kind::Unsigned;
      m_unsigned = static_cast<unsigned long long>(v);
    }
  }
  template <typename E>
    requires std::is_enum_v<E>
  FormatArg(E v) : FormatArg(static_cast<std::underlying_type_t<E>>(v)) {}
  template <std::floating_point T>
  FormatArg(T v) : m_kind(Kind::Double), m_double(static_cast<double>(v)) {}
  FormatArg(const wchar_t* s) : m_kind(Kind::Wide), m_wide(s) {}
  FormatArg(wchar_t* s) : m_kind(Kind::Wide), m_wide(s) {}
  FormatArg(const char* s) : m_kind(Kind::Narrow), m_narrow(s) {}
  FormatArg(char* s) : m_kind(Kind::Narrow), m_narrow(s) {}
  FormatArg(const std::wstring& s) : m_kind(Kind::Wide), m_wide(s.c_str()) {}
  FormatArg(const std::string& s) : m_kind(Kind::Narrow), m_narrow(s.c_str()) {}
  FormatArg(std::nullptr_t) : m_kind(Kind::Pointer), m_pointer(nullptr) {}
  template <typename T>
    requires requires(const T& t) {
      { t.GetString() } -> std::convertible_to<const wchar_t*>;
    }
  FormatArg(const T& s) : m_kind(Kind::Wide), m_wide(s.GetString()) {}
  template <typename T>
    requires(!std::is_same_v<std::remove_cv_t<T>, char> &&
             !std::is_same_v<std::remove_cv_t<T>, wchar_t>)
  FormatArg(T* p) : m_kind(Kind::Pointer), m_pointer(p) {}

  Kind GetKind() const { return m_kind; }
  long long AsSigned() const;
  unsigned long long AsUnsigned() const;
  double AsDouble() const;
  const wchar_t* AsWide() const { return m_kind == Kind::Wide ? m_wide : nullptr; }
  const char* AsNarrow() const { return m_kind == Kind::Narrow ? m_narrow : nullptr; }
  const void* AsPointer() const;

 private:
  Kind m_kind;
  union {
    long long m_signed;
    unsigned long long m_unsigned;
    double m_double;
    const wchar_t* m_wide;
    const char* m_narrow;
    const void* m_pointer;
  };
};

// Formats `format` with `args`; missing arguments format as nothing.
KARVELUI_API std::wstring FormatWide(const wchar_t* format, std::span<const FormatArg> args);

template <typename... Args>
std::wstring FormatWideArgs(const wchar_t* format, const Args&... args) {
  if constexpr (sizeof...(Args) == 0) {
    return FormatWide(format, {});
  } else {
    const FormatArg packed[] = {FormatArg(args)...};
    return FormatWide(format, packed);
  }
}

}  // namespace KarvelUI
