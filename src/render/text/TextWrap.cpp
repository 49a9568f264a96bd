#include "render/text/TextWrap.h"

#include <algorithm>

namespace KarvelUI {

namespace {

bool IsBlank(char32_t c) { return c == U' ' || c == U'\t' || c == 0x3000; }

// Characters that may not begin a line.
bool IsClosing(char32_t c) {
  static constexpr std::u32string_view kClosing =
      U"!%),.:;?]}¢°’”‰′″℃、。〉》」』】〕〗〙〛ゝゞ々ーぁぃぅぇぉっゃゅょゎ"
      U"ァィゥェォッャュョヮヵヶ・！％），．：；？］｝～｡｣､･";
  return kClosing.find(c) != std::u32string_view::npos;
}

// Characters that may not end a line.
bool IsOpening(char32_t c) {
  static constexpr std::u32string_view kOpening = U"([{£¥‘“〈《「『【〔〖〘〚（［｛｢";
  return kOpening.find(c) != std::u32string_view::npos;
}

int TrimmedWidth(const std::vector<CharInfo>& chars, int begin, int end, int width) {
  while (end > begin && chars[end - 1].space) width -= chars[--end].advance;
  return width;
}

int WidthOf(const std::vector<CharInfo>& chars, int begin, int end) {
  int width = 0;
  for (int i = begin; i < end; ++i) width += chars[i].advance;
  return width;
}

// Moves a forced break off a cluster's tail; a line keeps at least one
// whole cluster.
int AlignForcedBreak(const std::vector<CharInfo>& chars, int begin, int at) {
  int back = at;
  while (back > begin && !chars[back].clusterStart) --back;
  if (back > begin) return back;
  int forward = begin + 1;
  const int size = static_cast<int>(chars.size());
  while (forward < size && !chars[forward].clusterStart) ++forward;
  return forward;
}

}  // namespace

bool IsCjkBreakChar(char32_t c) {
  return (c >= 0x2E80 && c <= 0x9FFF) ||    // radicals, CJK punctuation, kana, ideographs
         (c >= 0xAC00 && c <= 0xD7A3) ||    // hangul syllables
         (c >= 0xF900 && c <= 0xFAFF) ||    // compatibility ideographs
         (c >= 0xFF00 && c <= 0xFFEF) ||    // full-width forms
         (c >= 0x20000 && c <= 0x2FFFF);    // supplementary ideographs
}

void MarkBreakOpportunities(std::wstring_view text, std::vector<CharInfo>& chars) {
  const size_t count = std::min(text.size(), chars.size());
  for (size_t i = 0; i < count; ++i) {
    const auto c = static_cast<char32_t>(text[i]);
    chars[i].space = IsBlank(c);
    chars[i].breakBefore = false;
    if (i == 0) continue;
    const auto previous = static_cast<char32_t>(text[i - 1]);
    if (chars[i].space || IsClosing(c) || IsOpening(previous)) continue;
    chars[i].breakBefore =
        IsBlank(previous) || IsCjkBreakChar(c) || IsCjkBreakChar(previous);
  }
}

void WrapParagraph(const std::vector<CharInfo>& chars, int wrapWidth,
                   std::vector<LineSpan>& lines) {
  const int size = static_cast<int>(chars.size());
  int start = 0;
  do {
    int width = 0;
    int lastBreak = -1;
    int i = start;
    for (; i < size; ++i) {
      if (i > start && chars[i].breakBefore) lastBreak = i;
      const bool overflows = width + chars[i].advance > wrapWidth;
      if (overflows && i > start && !chars[i].space) break;
      width += chars[i].advance;
    }
    if (i == size) {
      lines.push_back({start, size, width});
      return;
    }
    const int end = lastBreak > start ? lastBreak : AlignForcedBreak(chars, start, i);
    int drawnEnd = end;
    while (drawnEnd > start && chars[drawnEnd - 1].space) --drawnEnd;
    lines.push_back({start, drawnEnd, WidthOf(chars, start, drawnEnd)});
    start = end;
    while (start < size && chars[start].space) ++start;
  } while (start < size);
}

LineSpan WholeParagraph(const std::vector<CharInfo>& chars) {
  const int size = static_cast<int>(chars.size());
  return {0, size, WidthOf(chars, 0, size)};
}

LineSpan FitPrefix(const std::vector<CharInfo>& chars, const LineSpan& line, int maxWidth) {
  int width = 0;
  LineSpan fit{line.begin, line.begin, 0};
  for (int i = line.begin; i <= line.end; ++i) {
    const bool boundary = i == line.end || (i > line.begin && chars[i].clusterStart);
    if (boundary) {
      const int trimmed = TrimmedWidth(chars, line.begin, i, width);
      if (trimmed > maxWidth) break;
      fit.end = i;
      fit.width = trimmed;
    }
    if (i < line.end) width += chars[i].advance;
  }
  while (fit.end > fit.begin && chars[fit.end - 1].space) --fit.end;
  return fit;
}

}  // namespace KarvelUI
