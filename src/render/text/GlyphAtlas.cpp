#include "render/text/GlyphAtlas.h"

#include <algorithm>
#include <cstring>

namespace KarvelUI {

namespace {

// A shelf accepts glyphs up to this much shorter than itself; shorter ones
// open their own shelf so that small punctuation does not waste tall rows.
constexpr int kShelfSlack = 4;

int RoundUpToPowerOfTwo(int value) {
  int result = 1;
  while (result < value) result <<= 1;
  return result;
}

}  // namespace

GlyphAtlas::GlyphAtlas(int pageSize)
    : m_pageSize(std::clamp(pageSize, 16, kMaxPageSize)) {}

GlyphAtlas::~GlyphAtlas() = default;

GlyphAtlas::Placement GlyphAtlas::Add(const BYTE* rows, int pitch, int width, int height) {
  Placement placement;
  if (width <= 0 || height <= 0) return placement;
  const int paddedWidth = width + 2 * kPadding;
  const int paddedHeight = height + 2 * kPadding;
  if (paddedWidth > kMaxPageSize || paddedHeight > kMaxPageSize) return placement;

  CPoint at;
  int pageIndex = -1;
  for (size_t i = 0; i < m_pages.size(); ++i) {
    if (PlaceOnPage(*m_pages[i], paddedWidth, paddedHeight, at)) {
      pageIndex = static_cast<int>(i);
      break;
    }
  }
  if (pageIndex < 0) {
    Page& page = AddPage(paddedWidth, paddedHeight);
    pageIndex = static_cast<int>(m_pages.size()) - 1;
    if (!PlaceOnPage(page, paddedWidth, paddedHeight, at)) return placement;
  }

  Page& page = *m_pages[pageIndex];
  const int left = at.x + kPadding;
  const int top = at.y + kPadding;
  for (int y = 0; y < height; ++y) {
    std::memcpy(&page.pixels[static_cast<size_t>(top + y) * page.width + left],
                rows + static_cast<ptrdiff_t>(y) * pitch, static_cast<size_t>(width));
  }
  ++page.generation;
  ++m_generation;
  placement.page = pageIndex;
  placement.source = CRect(left, top, left + width, top + height);
  return placement;
}

bool GlyphAtlas::PlaceOnPage(Page& page, int width, int height, CPoint& at) {
  for (Shelf& shelf : page.shelves) {
    if (height <= shelf.height && height + kShelfSlack >= shelf.height &&
        shelf.used + width <= page.width) {
      at = CPoint(shelf.used, shelf.top);
      shelf.used += width;
      return true;
    }
  }
  const int nextTop = page.shelves.empty() ? 0 : page.shelves.back().top + page.shelves.back().height;
  if (nextTop + height > page.height || width > page.width) return false;
  page.shelves.push_back({nextTop, height, width});
  at = CPoint(0, nextTop);
  return true;
}

GlyphAtlas::Page& GlyphAtlas::AddPage(int minWidth, int minHeight) {
  auto page = std::make_unique<Page>();
  page->width = std::max(m_pageSize, RoundUpToPowerOfTwo(minWidth));
  page->height = std::max(m_pageSize, RoundUpToPowerOfTwo(minHeight));
  page->pixels.assign(static_cast<size_t>(page->width) * page->height, 0);
  page->generation = 1;
  ++m_generation;
  m_pages.push_back(std::move(page));
  return *m_pages.back();
}

AtlasPageView GlyphAtlas::GetPage(int index) const {
  if (index < 0 || index >= GetPageCount()) return {};
  const Page& page = *m_pages[index];
  return {page.pixels.data(), page.width, page.height, page.width, page.generation};
}

void GlyphAtlas::CopyToArgb(int pageIndex, const CRect& area, DWORD* dest,
                            int destPitchBytes) const {
  if (pageIndex < 0 || pageIndex >= GetPageCount() || !dest) return;
  const Page& page = *m_pages[pageIndex];
  CRect clipped;
  if (!clipped.IntersectRect(area, CRect(0, 0, page.width, page.height))) return;
  auto* destBytes = reinterpret_cast<BYTE*>(dest);
  for (int y = clipped.top; y < clipped.bottom; ++y) {
    auto* row = reinterpret_cast<DWORD*>(destBytes + static_cast<ptrdiff_t>(y - area.top) *
                                                         destPitchBytes) +
                (clipped.left - area.left);
    const BYTE* coverage = &page.pixels[static_cast<size_t>(y) * page.width + clipped.left];
    for (int x = 0; x < clipped.Width(); ++x) {
      row[x] = (static_cast<DWORD>(coverage[x]) << 24) | 0x00FFFFFFu;
    }
  }
}

}  // namespace KarvelUI
