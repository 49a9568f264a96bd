#pragma once

#include <gtest/gtest.h>

#include <cwchar>
#include <memory>
#include <numeric>
#include <vector>

#include <karvelui/WinConstants.h>
#include "render/text/TextFont.h"

namespace KarvelUI::texttest {

inline LOGFONTW MakeFont(const wchar_t* face, LONG height = 12, LONG weight = FW_NORMAL, bool italic = false) {
  LOGFONTW font;
  font.lfHeight = height;
  font.lfWeight = weight;
  font.lfItalic = italic ? 1 : 0;
  std::wcsncpy(font.lfFaceName, face, LF_FACESIZE - 1);
  return font;
}

inline std::shared_ptr<TextFont> OpenFont(const wchar_t* face, LONG height = 12, LONG weight = FW_NORMAL,
                                          bool italic = false) {
  return TextFont::Create(MakeFont(face, height, weight, italic));
}

// The atlas coverage under a quad's source rectangle, row by row.
inline std::vector<BYTE> Pixels(const TextFont& font, const GlyphQuad& quad) {
  const AtlasPageView page = font.GetAtlasPage(quad.page);
  std::vector<BYTE> pixels;
  for (int y = quad.source.top; y < quad.source.bottom; ++y)
    for (int x = quad.source.left; x < quad.source.right; ++x)
      pixels.push_back(page.pixels[static_cast<size_t>(y) * page.pitch + x]);
  return pixels;
}

inline long Coverage(const TextFont& font, const GlyphQuad& quad) {
  const std::vector<BYTE> pixels = Pixels(font, quad);
  return std::accumulate(pixels.begin(), pixels.end(), 0L);
}

inline CRect UnionOfQuads(const TextLayout& layout) {
  CRect all;
  for (const GlyphQuad& q : layout.quads) all.UnionRect(all, q.dest);
  return all;
}

}  // namespace KarvelUI::texttest
