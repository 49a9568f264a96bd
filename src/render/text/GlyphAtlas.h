#pragma once

// GlyphAtlas: the pages of 8-bit coverage into which a font's glyphs are
// rasterised, ready to be uploaded as textures.
//
// Pixels are one byte per texel: 0 transparent, 255 fully covered. A GPU
// texture of white texels whose alpha is this coverage (see CopyToArgb),
// multiplied by the draw colour, paints the text in that colour.
//
// Pages are allocated once at their final size and never move, so a page's
// pixel pointer stays valid for the life of the atlas. Glyphs are never
// evicted. Every change (a page added, a glyph written) advances the atlas
// generation and the generation of the page concerned; a consumer that keeps
// the generation it last uploaded re-uploads exactly when it differs.

#include <cstdint>
#include <memory>
#include <vector>

#include <karvelui/Export.h>
#include <karvelui/Geometry.h>

namespace KarvelUI {

struct AtlasPageView {
  const BYTE* pixels = nullptr;  // row-major, `pitch` bytes per row
  int width = 0;
  int height = 0;
  int pitch = 0;
  std::uint64_t generation = 0;  // advances whenever this page's pixels change
};

class GlyphAtlas {
 public:
  static constexpr int kDefaultPageSize = 512;
  static constexpr int kMaxPageSize = 4096;
  // Blank texels kept around every glyph so that filtering never bleeds a
  // neighbour into a quad.
  static constexpr int kPadding = 1;

  explicit GlyphAtlas(int pageSize = kDefaultPageSize);
  GlyphAtlas(const GlyphAtlas&) = delete;
  GlyphAtlas& operator=(const GlyphAtlas&) = delete;
  ~GlyphAtlas();

  struct Placement {
    int page = -1;
    CRect source;  // where the glyph's texels are, in page pixels
  };

  // Copies a width x height coverage bitmap into free space (a new page when
  // the current ones are full). `rows` is read with `pitch` bytes per row.
  // A glyph larger than kMaxPageSize is refused (page -1).
  Placement Add(const BYTE* rows, int pitch, int width, int height);

  int GetPageCount() const { return static_cast<int>(m_pages.size()); }
  AtlasPageView GetPage(int index) const;
  std::uint64_t GetGeneration() const { return m_generation; }

  // Writes `area` of a page into 32-bit texels 0xAARRGGBB: white with the
  // coverage as alpha. `dest` points at the texel for area's top-left corner.
  void CopyToArgb(int page, const CRect& area, DWORD* dest, int destPitchBytes) const;

 private:
  struct Shelf {
    int top = 0;
    int height = 0;
    int used = 0;  // width already taken from the left
  };
  struct Page {
    int width = 0;
    int height = 0;
    std::vector<BYTE> pixels;
    std::vector<Shelf> shelves;
    std::uint64_t generation = 0;
  };

  bool PlaceOnPage(Page& page, int width, int height, CPoint& at);
  Page& AddPage(int minWidth, int minHeight);

  int m_pageSize;
  std::vector<std::unique_ptr<Page>> m_pages;
  std::uint64_t m_generation = 0;
};

}  // namespace KarvelUI
