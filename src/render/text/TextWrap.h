#pragma once

// Line breaking of one paragraph of shaped text: where a line may break, how
// a paragraph wraps at a width and how much of a line fits before an
// ellipsis. Works on per-character widths only, so it knows nothing of fonts.

#include <string_view>
#include <vector>

#include <karvelui/Export.h>

namespace KarvelUI {

struct CharInfo {
  int advance = 0;            // pixels this character moves the pen (its cluster's first char)
  bool breakBefore = false;   // a line may start at this character
  bool space = false;         // a blank that hangs at the end of a wrapped line
  bool clusterStart = true;   // false inside a cluster (combining marks, ligature tails)
};

struct LineSpan {
  int begin = 0;  // first character
  int end = 0;    // one past the last character drawn (a wrap's hanging blanks excluded)
  int width = 0;  // pixels
};

// Break opportunities: after a run of blanks, and on both sides of CJK
// ideographs, kana and hangul, except before closing punctuation and after
// opening punctuation (no line starts with "。" or ends with "（").
void MarkBreakOpportunities(std::wstring_view text, std::vector<CharInfo>& chars);

// Greedy wrap at `wrapWidth` pixels. A line ends at the last opportunity that
// fits; a word longer than the width is broken where it overflows (never
// inside a cluster, and never leaving a line empty). Blanks at a wrap hang
// past the width and are dropped from the start of the next line.
void WrapParagraph(const std::vector<CharInfo>& chars, int wrapWidth,
                                std::vector<LineSpan>& lines);

// The whole paragraph as one line.
LineSpan WholeParagraph(const std::vector<CharInfo>& chars);

// The longest prefix of `line` whose width, without its trailing blanks, is
// at most `maxWidth`, ending on a cluster boundary; may be empty.
LineSpan FitPrefix(const std::vector<CharInfo>& chars, const LineSpan& line,
                                int maxWidth);

bool IsCjkBreakChar(char32_t c);

}  // namespace KarvelUI
