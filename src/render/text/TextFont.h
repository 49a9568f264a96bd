#pragma once

// TextFont: one font description (face name, height, weight, italic) turned
// into laid-out glyph quads over an atlas of rasterised glyphs. The GPU font
// uploads the atlas pages as textures and draws the quads with a colour; the
// label and the popup menu measure through the same layout, without a window.
//
// Height, as in the platform's logical font record:
//   height > 0   the cell height (ascent + descent) in pixels; the em size is
//                scaled so that the face's ascent + descent fills it, and the
//                line height is exactly `height`;
//   height < 0   the em (character) height |height| in pixels; the line
//                height is the face's ascent + descent at that size, so it is
//                larger than |height|;
//   height == 0  the default cell height of 12 pixels.
// Width 0 keeps the face's natural proportions; another value scales the
// glyphs horizontally so that the average character is that wide.
// Weight >= 600 is bold: the bold face when the family has one, otherwise the
// regular outlines emboldened (one pixel wider per glyph at small sizes).
// Italic uses the italic face or slants the upright one. Underline and
// strike-out are not drawn by fonts.
//
// Faces: fontconfig resolves the face name once (see FontLibrary::Resolve);
// characters the face lacks are drawn with the first face that has them, on
// the primary face's baseline and sized by the same height rule.
//
// Layout (DrawText's format flags; coordinates in pixels, origin top-left,
// y down, every glyph at whole-pixel positions):
//   - lines break at "\r\n", "\r" and "\n"; every break starts a line, so a
//     text ending with a break ends with an empty line and an empty text is
//     one empty line. DT_SINGLELINE draws line breaks as nothing;
//   - DT_WORDBREAK wraps at the rectangle's width: after blanks and between
//     CJK characters; a word wider than the rectangle breaks where it
//     overflows;
//   - DT_LEFT / DT_CENTER / DT_RIGHT place each line; DT_VCENTER / DT_BOTTOM
//     apply to DT_SINGLELINE only, other text starts at the top;
//   - DT_END_ELLIPSIS cuts a line wider than the rectangle and ends it with
//     "..." so that it fits;
//   - DT_CALCRECT produces no quads; `bounds` is the rectangle at the given
//     left/top that the text occupies: the longest line's width (with
//     DT_WORDBREAK and several lines, the given width), lines x line height;
//   - without DT_NOCLIP quads are clipped to the rectangle: a glyph across
//     its edge keeps the visible part, its source and destination shrunk
//     together; a glyph wholly outside is dropped;
//   - tabs draw as blanks, other control characters as nothing; text runs
//     left to right.
//
// Thread safety: every operation takes the shared FontLibrary mutex.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <karvelui/Export.h>
#include <karvelui/Geometry.h>
#include <karvelui/Types.h>
#include "render/text/GlyphAtlas.h"

namespace KarvelUI {

struct TextMetrics {
  int height = 0;            // line height: ascent + descent
  int ascent = 0;            // baseline offset from the line's top
  int descent = 0;
  int averageCharWidth = 0;
  LONG weight = FW_NORMAL;   // as requested (0 reads as 400)
  bool italic = false;
  bool syntheticBold = false;
  bool syntheticItalic = false;
  std::wstring family;       // the family of the face actually used
};

struct GlyphQuad {
  CRect dest;    // layout pixels
  CRect source;  // atlas pixels of `page`; same size as dest (one texel per pixel)
  int page = 0;
};

struct TextLayout {
  std::vector<GlyphQuad> quads;  // in drawing order
  CRect bounds;                  // the rectangle DT_CALCRECT reports
  int lineCount = 0;
  int height = 0;                // DrawText's result
};

class TextFont {
 public:
  // Null when no face can be found or opened. `atlasPageSize` is the side of
  // each atlas page (tests use small pages to exercise page overflow).
  static std::shared_ptr<TextFont> Create(const LOGFONTW& font,
                                          int atlasPageSize = GlyphAtlas::kDefaultPageSize);

  // One shared font per description (face name without regard to case,
  // height, width, weight, italic), created on first request and kept for the
  // life of the process: the measuring functions below and every device
  // drawing the same font share its glyphs and shaped text.
  static std::shared_ptr<TextFont> GetShared(const LOGFONTW& font);

  struct Impl;
  class PrivateKey {
    friend class TextFont;
    explicit PrivateKey() = default;
  };
  // For Create only (the key cannot be made elsewhere).
  TextFont(PrivateKey, std::unique_ptr<Impl> impl);
  TextFont(const TextFont&) = delete;
  TextFont& operator=(const TextFont&) = delete;
  ~TextFont();

  const TextMetrics& GetMetrics() const;

  // Lays out `count` characters of `text` (-1: up to the terminating zero)
  // in `rect` with DT_* `format`; replaces out's content (its storage is
  // reused, so a caller keeping one TextLayout allocates nothing once warm).
  // Returns out.height: the text's height, or with DT_SINGLELINE and
  // DT_VCENTER/DT_BOTTOM the distance from rect's top to the text's bottom;
  // 0 for a null text.
  int Layout(const wchar_t* text, int count, const CRect& rect, UINT format, TextLayout& out);

  // The width of the text drawn on one line, and the line height.
  CSize GetTextExtent(const wchar_t* text, int count);

  // Atlas access for the GPU side; page pointers stay valid for the font's
  // life, their pixels change only inside Layout.
  int GetAtlasPageCount() const;
  AtlasPageView GetAtlasPage(int page) const;
  std::uint64_t GetAtlasGeneration() const;
  void CopyAtlasToArgb(int page, const CRect& area, DWORD* dest, int destPitchBytes) const;

 private:
  std::unique_ptr<Impl> m_impl;
};

// Measuring without a window, through the shared fonts.
// The label's text width: what GetTextExtent reports for its font.
CSize MeasureTextExtent(const LOGFONTW& font, const wchar_t* text, int count);
// DrawText with DT_CALCRECT added: sets rect's right and bottom as
// TextLayout::bounds and returns the text height; 0 when the font fails.
int CalcTextRect(const LOGFONTW& font, const wchar_t* text, int count, CRect& rect,
                              UINT format);

}  // namespace KarvelUI
