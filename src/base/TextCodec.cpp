#include <karvelui/TextCodec.h>

#include <locale.h>
#include <wctype.h>

namespace KarvelUI {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

// Decodes one UTF-8 sequence starting at s[i]; advances i past it.
char32_t DecodeUtf8(std::string_view s, size_t& i) {
  const auto byte = [&](size_t k) { return static_cast<unsigned char>(s[k]); };
  const unsigned char lead = byte(i);
  if (lead < 0x80) {
    ++i;
    return lead;
  }
  int extra = 0;
  char32_t cp = 0;
  char32_t minimum = 0;
  if ((lead & 0xE0) == 0xC0) {
    extra = 1, cp = lead & 0x1F, minimum = 0x80;
  } else if ((lead & 0xF0) == 0xE0) {
    extra = 2, cp = lead & 0x0F, minimum = 0x800;
  } else if ((lead & 0xF8) == 0xF0) {
    extra = 3, cp = lead & 0x07, minimum = 0x10000;
  } else {
    ++i;
    return kReplacement;
  }
  size_t k = i + 1;
  for (int n = 0; n < extra; ++n, ++k) {
    if (k >= s.size() || (byte(k) & 0xC0) != 0x80) {
      i = k;  // resynchronise on the offending byte
      return kReplacement;
    }
    cp = (cp << 6) | (byte(k) & 0x3F);
  }
  i = k;
  if (cp < minimum || cp > 0x10FFFF || IsSurrogate(cp)) return kReplacement;
  return cp;
}

void AppendUtf8(std::string& out, char32_t cp) {
  if (cp > 0x10FFFF || IsSurrogate(cp)) cp = kReplacement;
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

locale_t Utf8Locale() {
  static const locale_t loc = [] {
    locale_t l = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
    if (!l) l = newlocale(LC_CTYPE_MASK, "en_US.UTF-8", static_cast<locale_t>(0));
    return l;
  }();
  return loc;
}

}  // namespace

std::wstring Utf8ToWide(std::string_view utf8) {
  std::wstring out;
  out.reserve(utf8.size());
  for (size_t i = 0; i < utf8.size();) out += static_cast<wchar_t>(DecodeUtf8(utf8, i));
  return out;
}

std::string WideToUtf8(std::wstring_view wide) {
  std::string out;
  out.reserve(wide.size());
  for (wchar_t c : wide) AppendUtf8(out, static_cast<char32_t>(c));
  return out;
}

std::u16string WideToUtf16(std::wstring_view wide) {
  std::u16string out;
  out.reserve(wide.size());
  for (wchar_t wc : wide) {
    char32_t c = static_cast<char32_t>(wc);
    if (c > 0x10FFFF) c = kReplacement;
    if (c >= 0x10000) {
      c -= 0x10000;
      out += static_cast<char16_t>(0xD800 + (c >> 10));
      out += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
    } else {
      out += static_cast<char16_t>(c);
    }
  }
  return out;
}

std::wstring Utf16ToWide(std::u16string_view utf16) {
  std::wstring out;
  out.reserve(utf16.size());
  for (size_t i = 0; i < utf16.size(); ++i) {
    const char32_t c = utf16[i];
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < utf16.size() && utf16[i + 1] >= 0xDC00 &&
        utf16[i + 1] <= 0xDFFF) {
      out += static_cast<wchar_t>(0x10000 + ((c - 0xD800) << 10) + (utf16[i + 1] - 0xDC00));
      ++i;
    } else if (IsSurrogate(c)) {
      out += static_cast<wchar_t>(kReplacement);
    } else {
      out += static_cast<wchar_t>(c);
    }
  }
  return out;
}

wchar_t ToLowerChar(wchar_t c) {
  if (c < 0x80) return (c >= L'A' && c <= L'Z') ? static_cast<wchar_t>(c + 32) : c;
  locale_t loc = Utf8Locale();
  return loc ? static_cast<wchar_t>(towlower_l(static_cast<wint_t>(c), loc)) : c;
}

wchar_t ToUpperChar(wchar_t c) {
  if (c < 0x80) return (c >= L'a' && c <= L'z') ? static_cast<wchar_t>(c - 32) : c;
  locale_t loc = Utf8Locale();
  return loc ? static_cast<wchar_t>(towupper_l(static_cast<wint_t>(c), loc)) : c;
}

}  // namespace KarvelUI
