#include "skin/XmlText.h"

#include <algorithm>

#include <karvelui/TextCodec.h>

namespace KarvelUI {
namespace {

unsigned char Byte(char c) { return static_cast<unsigned char>(c); }

// Length of the well-formed UTF-8 sequence at s[i], 0 when it is not one.
size_t Utf8SequenceLength(std::string_view s, size_t i) {
  const unsigned char lead = Byte(s[i]);
  if (lead < 0x80) return 1;
  size_t length = 0;
  char32_t cp = 0;
  if (lead >= 0xC2 && lead <= 0xDF) length = 2, cp = lead & 0x1F;
  else if (lead >= 0xE0 && lead <= 0xEF) length = 3, cp = lead & 0x0F;
  else if (lead >= 0xF0 && lead <= 0xF4) length = 4, cp = lead & 0x07;
  else return 0;
  if (i + length > s.size()) return 0;
  for (size_t k = 1; k < length; ++k) {
    if ((Byte(s[i + k]) & 0xC0) != 0x80) return 0;
    cp = (cp << 6) | (Byte(s[i + k]) & 0x3F);
  }
  const char32_t minimum = length == 2 ? 0x80 : length == 3 ? 0x800 : 0x10000;
  if (cp < minimum || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return 0;
  return length;
}

bool IsWellFormedUtf8(std::string_view s) {
  for (size_t i = 0; i < s.size();) {
    const size_t length = Utf8SequenceLength(s, i);
    if (length == 0) return false;
    i += length;
  }
  return true;
}

// U+FEFF, U+FFFE, U+FFFF: what the parser's UTF-8 mode skips as white space.
bool IsByteOrderMarkLike(std::string_view s, size_t i) {
  return i + 2 < s.size() && Byte(s[i]) == 0xEF &&
         ((Byte(s[i + 1]) == 0xBB && Byte(s[i + 2]) == 0xBF) ||
          (Byte(s[i + 1]) == 0xBF && (Byte(s[i + 2]) == 0xBE || Byte(s[i + 2]) == 0xBF)));
}

std::string NormalizeLineEnds(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (size_t i = 0; i < bytes.size(); ++i) {
    if (bytes[i] != '\r') {
      text += bytes[i];
      continue;
    }
    text += '\n';
    if (i + 1 < bytes.size() && bytes[i + 1] == '\n') ++i;
  }
  return text;
}

std::string DropInnerByteOrderMarks(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (i > 0 && IsByteOrderMarkLike(text, i)) {
      i += 2;
      continue;
    }
    out += text[i];
  }
  return out;
}

// --- nesting measure ----------------------------------------------------------
// Character classes as the parser has them: bytes from 127 up count as
// letters, white space is the C locale's.
bool IsSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}
bool IsAsciiLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsHexDigit(char c) { return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }
bool IsNameStart(char c) { return Byte(c) >= 127 || IsAsciiLetter(c) || c == '_'; }
bool IsNameChar(char c) {
  return IsNameStart(c) || IsDigit(c) || c == '-' || c == '.' || c == ':';
}

class ShapeMeasure {
 public:
  ShapeMeasure(std::string_view text, int depthLimit, int attributeLimit)
      : m_text(text), m_depthLimit(depthLimit), m_attributeLimit(attributeLimit) {}

  XmlShape Run() {
    while (m_at < m_text.size() && m_shape.depth <= m_depthLimit && m_shape.attributes <= m_attributeLimit) {
      if (m_depth == 0) SkipSpace();
      if (m_at >= m_text.size()) break;
      if (Peek() == '<') {
        Markup();
      } else {
        // Top-level text ends the parser's work; reading on only risks
        // counting more than it would, never less.
        Text();
      }
    }
    return m_shape;
  }

 private:
  char Peek(size_t offset = 0) const {
    return m_at + offset < m_text.size() ? m_text[m_at + offset] : '\0';
  }
  bool StartsWith(std::string_view prefix) const { return m_text.substr(m_at).starts_with(prefix); }
  bool StartsWithNoCase(std::string_view prefix) const {
    if (m_text.size() - m_at < prefix.size()) return false;
    for (size_t i = 0; i < prefix.size(); ++i) {
      char c = m_text[m_at + i];
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
      if (c != prefix[i]) return false;
    }
    return true;
  }
  void SkipSpace() {
    while (m_at < m_text.size() && IsSpace(m_text[m_at])) ++m_at;
  }
  void SkipNameChars() {
    while (m_at < m_text.size() && IsNameChar(m_text[m_at])) ++m_at;
  }
  // Moves past the next `terminator` searched from `from`, or to the end.
  void SkipPast(size_t from, std::string_view terminator) {
    const size_t found = m_text.find(terminator, std::min(from, m_text.size()));
    m_at = found == std::string_view::npos ? m_text.size() : found + terminator.size();
  }

  void Markup() {
    if (m_depth > 0 && StartsWith("</")) {
      SkipPast(m_at + 2, ">");
      --m_depth;
    } else if (StartsWithNoCase("<?xml")) {
      Declaration();
    } else if (StartsWith("<!--")) {
      SkipPast(m_at + 4, "-->");
    } else if (StartsWith("<![CDATA[")) {
      SkipPast(m_at + 9, "]]>");
    } else if (IsNameStart(Peek(1))) {
      Tag();
    } else {
      SkipPast(m_at + 1, ">");  // "<!...>" and anything else the parser keeps as unknown
    }
  }

  void Tag() {
    ++m_at;
    SkipNameChars();
    for (int attributes = 0;; ++attributes) {
      m_shape.attributes = std::max(m_shape.attributes, attributes);
      SkipSpace();
      if (m_at >= m_text.size()) return;
      if (Peek() == '/') {
        if (Peek(1) == '>') m_shape.depth = std::max(m_shape.depth, m_depth + 1);  // an empty element
        m_at += Peek(1) == '>' ? 2 : 1;
        return;
      }
      if (Peek() == '>') {
        ++m_at;
        m_shape.depth = std::max(m_shape.depth, ++m_depth);
        return;
      }
      if (attributes > m_attributeLimit || !Attribute()) return;  // the parser gives up here; go on as text
    }
  }

  void Declaration() {
    m_at += 5;
    while (m_at < m_text.size()) {
      if (Peek() == '>') {
        ++m_at;
        return;
      }
      SkipSpace();
      if (StartsWithNoCase("version") || StartsWithNoCase("encoding") || StartsWithNoCase("standalone")) {
        if (!Attribute()) return;
      } else {
        while (m_at < m_text.size() && Peek() != '>' && !IsSpace(Peek())) ++m_at;
      }
    }
  }

  // name = value; false where the parser reports an error.
  bool Attribute() {
    if (!IsNameStart(Peek())) return false;
    SkipNameChars();
    SkipSpace();
    if (Peek() != '=') return false;
    ++m_at;
    SkipSpace();
    if (m_at >= m_text.size()) return false;
    const char quote = Peek();
    if (quote == '"' || quote == '\'') {
      ++m_at;
      while (m_at < m_text.size() && Peek() != quote) Character();
      if (m_at >= m_text.size()) return false;
      ++m_at;
      return true;
    }
    while (m_at < m_text.size() && !IsSpace(Peek()) && Peek() != '/' && Peek() != '>') {
      if (Peek() == '"' || Peek() == '\'') return false;
      ++m_at;
    }
    return true;
  }

  void Text() {
    while (m_at < m_text.size() && Peek() != '<') Character();
  }

  // One character of text or of a quoted value. A numeric character
  // reference runs to the next ';' and is checked backwards only as far as
  // the last 'x' (or '#'), so it can reach over markup; follow it the same
  // way. Both searches are remembered, so a run of broken references costs
  // no more than one pass.
  void Character() {
    if (Peek() != '&' || Peek(1) != '#' || m_at + 2 >= m_text.size()) {
      ++m_at;
      return;
    }
    const bool hex = Peek(2) == 'x';
    const size_t semicolon = NextSemicolon(m_at + (hex ? 3 : 2));
    if (semicolon != std::string_view::npos && m_text[ReferenceStart(semicolon, hex)] == (hex ? 'x' : '#'))
      m_at = semicolon + 1;
    else
      ++m_at;  // the parser fails here
  }

  size_t NextSemicolon(size_t from) {
    if (from >= m_text.size()) return std::string_view::npos;
    if (!m_semicolonKnown || (m_semicolon != std::string_view::npos && m_semicolon < from)) {
      m_semicolon = m_text.find(';', from);
      m_semicolonKnown = true;
      m_referenceStart[0] = m_referenceStart[1] = std::string_view::npos;
    }
    return m_semicolon;
  }

  // The first character before semicolon that is no (hex) digit.
  size_t ReferenceStart(size_t semicolon, bool hex) {
    size_t& start = m_referenceStart[hex ? 1 : 0];
    if (start == std::string_view::npos) {
      start = semicolon - 1;
      while (hex ? IsHexDigit(m_text[start]) : IsDigit(m_text[start])) --start;
    }
    return start;
  }

  std::string_view m_text;
  int m_depthLimit;
  int m_attributeLimit;
  size_t m_at = 0;
  int m_depth = 0;
  XmlShape m_shape;
  bool m_semicolonKnown = false;
  size_t m_semicolon = std::string_view::npos;
  size_t m_referenceStart[2] = {std::string_view::npos, std::string_view::npos};
};

}  // namespace

std::string NormalizeXmlText(std::string_view bytes) {
  const size_t zero = bytes.find('\0');
  if (zero != std::string_view::npos) bytes = bytes.substr(0, zero);
  std::string text = NormalizeLineEnds(bytes);
  if (!IsWellFormedUtf8(text)) text = WideToUtf8(Utf8ToWide(text));
  return DropInnerByteOrderMarks(text);
}

std::optional<std::string> PrepareXmlText(std::string_view bytes) {
  std::string text = NormalizeXmlText(bytes);
  const XmlShape shape = MeasureXmlShape(text, kMaxXmlElementDepth, kMaxXmlAttributes);
  if (shape.depth > kMaxXmlElementDepth || shape.attributes > kMaxXmlAttributes) return std::nullopt;
  return text;
}

XmlShape MeasureXmlShape(std::string_view text, int depthLimit, int attributeLimit) {
  return ShapeMeasure(text, depthLimit, attributeLimit).Run();
}

}  // namespace KarvelUI
