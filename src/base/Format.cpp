#include <karvelui/Format.h>

#include <cstdio>
#include <cwchar>

#include <karvelui/TextCodec.h>

namespace KarvelUI {

long long FormatArg::AsSigned() const {
  switch (m_kind) {
    case Kind::Signed: return m_signed;
    case Kind::Unsigned: return static_cast<long long>(m_unsigned);
    case Kind::Double: return static_cast<long long>(m_double);
    default: return static_cast<long long>(reinterpret_cast<std::uintptr_t>(m_pointer));
  }
}

unsigned long long FormatArg::AsUnsigned() const {
  switch (m_kind) {
    case Kind::Signed: return static_cast<unsigned long long>(m_signed);
    case Kind::Unsigned: return m_unsigned;
    case Kind::Double: return static_cast<unsigned long long>(static_cast<long long>(m_double));
    default: return reinterpret_cast<std::uintptr_t>(m_pointer);
  }
}

double FormatArg::AsDouble() const {
  switch (m_kind) {
    case Kind::Signed: return static_cast<double>(m_signed);
    case Kind::Unsigned: return static_cast<double>(m_unsigned);
    case Kind::Double: return m_double;
    default: return 0.0;
  }
}

const void* FormatArg::AsPointer() const {
  switch (m_kind) {
    case Kind::Signed: return reinterpret_cast<const void*>(static_cast<std::intptr_t>(m_signed));
    case Kind::Unsigned: return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(m_unsigned));
    case Kind::Double: return nullptr;
    default: return m_pointer;
  }
}

namespace {

enum class Width { Default, Char, Short, Long32, Long64 };

struct Conversion {
  std::string flags;
  int width = -1;
  int precision = -1;
  Width size = Width::Default;
  bool wideOverride = false;    // l or w: text is wide whatever the type letter
  bool narrowOverride = false;  // h: text is narrow whatever the type letter
  wchar_t type = 0;
};

class Formatter {
 public:
  Formatter(const wchar_t* format, std::span<const FormatArg> args) : m_p(format), m_args(args) {}

  std::wstring Run() {
    if (!m_p) return m_out;
    while (*m_p) {
      if (*m_p != L'%') {
        m_out += *m_p++;
        continue;
      }
      ++m_p;
      if (*m_p == L'%') {
        m_out += L'%';
        ++m_p;
        continue;
      }
      Conversion conv;
      if (!ParseConversion(conv)) break;
      Emit(conv);
    }
    return m_out;
  }

 private:
  const FormatArg* Next() { return m_next < m_args.size() ? &m_args[m_next++] : nullptr; }

  int ReadNumberOrStar() {
    if (*m_p == L'*') {
      ++m_p;
      const FormatArg* a = Next();
      return a ? static_cast<int>(a->AsSigned()) : 0;
    }
    int n = 0;
    while (*m_p >= L'0' && *m_p <= L'9') n = n * 10 + (*m_p++ - L'0');
    return n;
  }

  bool ParseConversion(Conversion& conv) {
    while (*m_p && std::wcschr(L"-+ #0", *m_p)) conv.flags += static_cast<char>(*m_p++);
    if (*m_p == L'*' || (*m_p >= L'0' && *m_p <= L'9')) {
      conv.width = ReadNumberOrStar();
      if (conv.width < 0) {
        conv.flags += '-';
        conv.width = -conv.width;
      }
    }
    if (*m_p == L'.') {
      ++m_p;
      conv.precision = ReadNumberOrStar();
      if (conv.precision < 0) conv.precision = -1;
    }
    ParseLength(conv);
    if (!*m_p) return false;
    conv.type = *m_p++;
    return true;
  }

  void ParseLength(Conversion& conv) {
    for (;;) {
      if (std::wcsncmp(m_p, L"I64", 3) == 0) {
        conv.size = Width::Long64, m_p += 3;
      } else if (std::wcsncmp(m_p, L"I32", 3) == 0) {
        conv.size = Width::Long32, m_p += 3;
      } else if (*m_p == L'I' || *m_p == L'z' || *m_p == L'j' || *m_p == L't') {
        conv.size = Width::Long64, ++m_p;
      } else if (m_p[0] == L'l' && m_p[1] == L'l') {
        conv.size = Width::Long64, m_p += 2;
      } else if (*m_p == L'l' || *m_p == L'w') {
        // Windows' long is 32 bits; for text l and w select wide characters.
        conv.size = Width::Long32, conv.wideOverride = true, ++m_p;
      } else if (m_p[0] == L'h' && m_p[1] == L'h') {
        conv.size = Width::Char, conv.narrowOverride = true, m_p += 2;
      } else if (*m_p == L'h') {
        conv.size = Width::Short, conv.narrowOverride = true, ++m_p;
      } else if (*m_p == L'L' || *m_p == L'q') {
        conv.size = Width::Long64, ++m_p;
      } else {
        return;
      }
    }
  }

  void Emit(const Conversion& conv) {
    switch (conv.type) {
      case L'd': case L'i':
        EmitSigned(conv);
        break;
      case L'u': case L'o': case L'x': case L'X':
        EmitUnsigned(conv);
        break;
      case L'f': case L'F': case L'e': case L'E': case L'g': case L'G': case L'a': case L'A':
        EmitDouble(conv);
        break;
      case L'c': case L'C':
        EmitChar(conv);
        break;
      case L's': case L'S':
        EmitString(conv);
        break;
      case L'p':
        EmitPointer(conv);
        break;
      case L'n':
        Next();
        break;
      default:  // unknown conversion: written as it stands
        m_out += L'%';
        m_out += conv.type;
        break;
    }
  }

  std::string NarrowConversion(const Conversion& conv, const char* length, char type) const {
    std::string f(1, '%');
    f += conv.flags;
    if (conv.width >= 0) f += std::to_string(conv.width);
    if (conv.precision >= 0) {
      f += '.';
      f += std::to_string(conv.precision);
    }
    f += length;
    f += type;
    return f;
  }

  template <typename T>
  void AppendPrintf(const std::string& fmt, T value) {
    char buffer[512];
    int n = std::snprintf(buffer, sizeof buffer, fmt.c_str(), value);
    if (n < 0) return;
    if (static_cast<size_t>(n) < sizeof buffer) {
      for (int i = 0; i < n; ++i) m_out += static_cast<wchar_t>(static_cast<unsigned char>(buffer[i]));
      return;
    }
    std::string big(static_cast<size_t>(n) + 1, '\0');
    std::snprintf(big.data(), big.size(), fmt.c_str(), value);
    for (int i = 0; i < n; ++i) m_out += static_cast<wchar_t>(static_cast<unsigned char>(big[i]));
  }

  void EmitSigned(const Conversion& conv) {
    const FormatArg* a = Next();
    if (!a) return;
    long long v = a->AsSigned();
    switch (conv.size) {
      case Width::Char: v = static_cast<signed char>(v); break;
      case Width::Short: v = static_cast<short>(v); break;
      case Width::Default: case Width::Long32: v = static_cast<std::int32_t>(v); break;
      case Width::Long64: break;
    }
    AppendPrintf(NarrowConversion(conv, "ll", 'd'), v);
  }

  void EmitUnsigned(const Conversion& conv) {
    const FormatArg* a = Next();
    if (!a) return;
    unsigned long long v = a->AsUnsigned();
    switch (conv.size) {
      case Width::Char: v = static_cast<unsigned char>(v); break;
      case Width::Short: v = static_cast<unsigned short>(v); break;
      case Width::Default: case Width::Long32: v = static_cast<std::uint32_t>(v); break;
      case Width::Long64: break;
    }
    AppendPrintf(NarrowConversion(conv, "ll", static_cast<char>(conv.type)), v);
  }

  void EmitDouble(const Conversion& conv) {
    const FormatArg* a = Next();
    if (!a) return;
    AppendPrintf(NarrowConversion(conv, "", static_cast<char>(conv.type)), a->AsDouble());
  }

  void EmitPointer(const Conversion& conv) {
    const FormatArg* a = Next();
    if (!a) return;
    // Windows prints pointers as zero-padded upper-case hexadecimal.
    Conversion hex = conv;
    hex.type = L'X';
    hex.flags += '0';
    if (hex.width < 0) hex.width = static_cast<int>(2 * sizeof(void*));
    AppendPrintf(NarrowConversion(hex, "ll", 'X'),
                 static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(a->AsPointer())));
  }

  void Pad(std::wstring_view text, const Conversion& conv) {
    const bool left = conv.flags.find('-') != std::string::npos;
    const size_t width = conv.width > 0 ? static_cast<size_t>(conv.width) : 0;
    const size_t fill = width > text.size() ? width - text.size() : 0;
    const wchar_t padChar = (!left && conv.flags.find('0') != std::string::npos) ? L'0' : L' ';
    if (!left) m_out.append(fill, padChar);
    m_out += text;
    if (left) m_out.append(fill, L' ');
  }

  bool WantsNarrow(const Conversion& conv, wchar_t narrowLetter) const {
    if (conv.narrowOverride) return true;
    if (conv.wideOverride) return false;
    return conv.type == narrowLetter;
  }

  void EmitChar(const Conversion& conv) {
    const FormatArg* a = Next();
    if (!a) return;
    wchar_t c = WantsNarrow(conv, L'C') ? static_cast<wchar_t>(static_cast<unsigned char>(a->AsSigned()))
                                        : static_cast<wchar_t>(a->AsSigned());
    Pad(std::wstring_view(&c, 1), conv);
  }

  void EmitString(const Conversion& conv) {
    const FormatArg* a = Next();
    if (!a) return;
    std::wstring text;
    if (a->GetKind() == FormatArg::Kind::Wide) {
      text = a->AsWide() ? a->AsWide() : L"(null)";
    } else if (a->GetKind() == FormatArg::Kind::Narrow) {
      text = a->AsNarrow() ? Utf8ToWide(a->AsNarrow()) : L"(null)";
    } else if (a->GetKind() == FormatArg::Kind::Pointer && !a->AsPointer()) {
      text = L"(null)";
    }
    // The argument's own type decides how its text is read; the letter case
    // only matters for raw pointers, which carry no type.
    if (conv.precision >= 0 && text.size() > static_cast<size_t>(conv.precision))
      text.resize(static_cast<size_t>(conv.precision));
    Pad(text, conv);
  }

  const wchar_t* m_p;
  std::span<const FormatArg> m_args;
  size_t m_next = 0;
  std::wstring m_out;
};

}  // namespace

std::wstring FormatWide(const wchar_t* format, std::span<const FormatArg> args) {
  return Formatter(format, args).Run();
}

}  // namespace KarvelUI
