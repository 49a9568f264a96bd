#pragma once

// The bytes of an XML file on their way to the parser. The parser recurses
// once per element level and trusts its input to be well-formed UTF-8, so
// every file is prepared here first:
//  - the text ends at the first zero byte, and CR LF / lone CR become LF
//    (what the parser's own file loading does);
//  - bytes that are not UTF-8 become U+FFFD, the same character they widen
//    to anyway, so a multi-byte step can never swallow a '<' or a quote;
//  - U+FEFF, U+FFFE and U+FFFF after the start are dropped (in UTF-8 mode
//    the parser skips them as white space, in legacy mode it reads them as
//    name characters; without them both modes see the same structure);
//  - element nesting is measured without recursion, mirroring how the
//    parser reads tags, attribute values, character references, comments,
//    CDATA sections and declarations, so that a file nested deeper than
//    kMaxXmlElementDepth, or with an element of more than
//    kMaxXmlAttributes attributes, is refused before the parser sees it.
// Internal to the skin layer; exposed for its tests and fuzz target.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace KarvelUI {

// The limits of every XML file the library reads (also stated in
// <karvelui/XmlDocument.h>). Skin, build and list files stay far below
// them; a file past any of them is refused whole.
//
// Deepest element nesting: the parser recurses once per level, so this
// bounds its stack use.
inline constexpr int kMaxXmlElementDepth = 256;
// Most attributes one element may carry (the parser checks each new
// attribute against all earlier ones, so their number costs its square).
inline constexpr int kMaxXmlAttributes = 1024;
// Largest file: text and tree are held in memory whole; larger files are
// refused before they are read.
inline constexpr std::size_t kMaxXmlFileBytes = 8u << 20;

// The text the parser is given, or nothing when the file must be refused
// (nested too deeply, too many attributes on one element).
std::optional<std::string> PrepareXmlText(std::string_view bytes);

// Line ends, zero byte, UTF-8 repair and stray byte-order marks only.
std::string NormalizeXmlText(std::string_view bytes);

struct XmlShape {
  int depth = 0;       // deepest element nesting the parser can reach
  int attributes = 0;  // most attributes on one element
};
// The shape of prepared text, measured without recursion; measuring stops
// once a value exceeds its limit. Never less than the tree the parser
// builds: where the parser would give up on malformed input the measure
// carries on, so it may report more.
XmlShape MeasureXmlShape(std::string_view text, int depthLimit, int attributeLimit);

}  // namespace KarvelUI
