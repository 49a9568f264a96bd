#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>
#include <memory>
#include <map>

#include <karvelui/WinConstants.h>
#include "render/text/TextFont.h"

namespace KarvelUI::texttest {

inline LOGFONTW MakeFont(const wchar_t* face, LONG height = 12, LONG weight = FW_NORMAL,
                         bool italic = false) {
  LOGFONTW font;
  font.lfHeight = height;
  font.lfWeight = weight;
  font.lfItalic = italic ? 1 : 0;
  std::wcsncpy(font.lfFaceName, face, LF_FACESIZE - 1);
  return font;
}

inline std::shared_ptr<TextFont> OpenFont(const wchar_t* face, LONG height = 12,
                                          LONG weight = FW_NORMAL, bool italic = false) {
  return TextFont::Create(MakeFont(face, height, weight, italic));
}

// Sum of atlas coverage under a quad's source rectangle.
inline long Coverage(const TextFont& font, const GlyphQuad& quad) {
  const AtlasPageView page = font.GetAtlasPage(quad.page);
  long sum = 0;
  for (int y = quad.source.top; y < quad.source.bottom; ++y) {
    for (int x = quad.source.left; x < quad.source.right; ++x) {
      sum += page.pixels[static_cast<size_t>(y) * page.pitch + x];
    }
  }
  return sum;
}

inline CRect UnionOfQuads(const TextLayout& layout) {
  CRect all;
  for (const GlyphQuad& q : layout.quads) {
    if (all.IsRectEmpty()) all = q.dest;
    else all.SetRect(std::min(all.left, q.dest.left), std::min(all.top, q.dest.top),
                     std::max(all.right, q.dest.right), std::max(all.bottom, q.dest.bottom));
  }
  return all;
}

// Quads per line, keyed by the line's index: a glyph belongs to the line cell
// that holds its centre.
inline std::map<int, int> QuadsPerLine(const TextLayout& layout, int top, int lineHeight) {
  std::map<int, int> perLine;
  for (const GlyphQuad& q : layout.quads) {
    const int centre = (q.dest.top + q.dest.bottom) / 2 - top;
    ++perLine[centre >= 0 ? centre / lineHeight : -1];
  }
  return perLine;
}

}  // namespace KarvelUI::texttest
