#include "render/text/TextFont.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include FT_TRUETYPE_TABLES_H
#include <hb-ft.h>
#include <hb.h>

#include <algorithm>
#include <cmath>
#include <cwchar>
#include <map>
#include <mutex>
#include <string_view>
#include <tuple>
#include <unordered_map>

#include <karvelui/TextCodec.h>
#include <karvelui/WinConstants.h>
#include "render/text/FontLibrary.h"
#include "render/text/TextWrap.h"

namespace KarvelUI {

static_assert(sizeof(wchar_t) == sizeof(std::uint32_t), "text is shaped as UTF-32");

namespace {

struct HbFontDeleter { void operator()(hb_font_t* font) const { hb_font_destroy(font); } };
struct HbBufferDeleter { void operator()(hb_buffer_t* buffer) const { hb_buffer_destroy(buffer); } };
using HbFontPtr = std::unique_ptr<hb_font_t, HbFontDeleter>;
using HbBufferPtr = std::unique_ptr<hb_buffer_t, HbBufferDeleter>;

constexpr LONG kDefaultCellHeight = 12;
constexpr LONG kMaxCellHeight = 4096;
// Past this many distinct paragraphs the shaping cache starts over; a UI
// shows far fewer strings than that at once.
constexpr size_t kMaxCachedParagraphs = 4096;
constexpr FT_Fixed kObliqueShear = 0x0366A;  // tan(12 degrees) in 16.16
constexpr std::wstring_view kEllipsis = L"...";

struct DesignMetrics {
  double upem = 1000;
  double ascent = 800;
  double descent = 200;
  double averageWidth = 500;
};

// The ascent and descent that define the cell: the OS/2 "win" values that
// the platform's font mapper uses, else the horizontal header's.
DesignMetrics ReadDesignMetrics(FT_Face face) {
  DesignMetrics design;
  if (face->units_per_EM > 0) design.upem = face->units_per_EM;
  const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
  if (os2 && os2->version != 0xFFFF && os2->usWinAscent + os2->usWinDescent > 0) {
    design.ascent = os2->usWinAscent;
    design.descent = os2->usWinDescent;
  } else if (face->ascender - face->descender > 0) {
    design.ascent = face->ascender;
    design.descent = -face->descender;
  } else {
    design.ascent = design.upem * 0.8;
    design.descent = design.upem * 0.2;
  }
  design.averageWidth = (os2 && os2->xAvgCharWidth > 0) ? os2->xAvgCharWidth : design.upem / 2;
  return design;
}

struct CellSize {
  double emX = 0;
  double emY = 0;
  int ascent = 0;
  int descent = 0;
};

CellSize ComputeCell(const DesignMetrics& design, LONG height, LONG width) {
  CellSize cell;
  const LONG h = std::clamp<LONG>(height == 0 ? kDefaultCellHeight : height, -kMaxCellHeight,
                                  kMaxCellHeight);
  const double designCell = design.ascent + design.descent;
  if (h > 0) {
    cell.emY = h * design.upem / designCell;
    cell.ascent = static_cast<int>(std::lround(design.ascent * h / designCell));
    cell.descent = h - cell.ascent;
  } else {
    cell.emY = -h;
    cell.ascent = static_cast<int>(std::lround(design.ascent * cell.emY / design.upem));
    cell.descent = static_cast<int>(std::lround(design.descent * cell.emY / design.upem));
  }
  const double w = std::min<double>(std::abs(static_cast<double>(width)), kMaxCellHeight);
  cell.emX = w > 0 ? w * design.upem / design.averageWidth : cell.emY;
  return cell;
}

// One face opened at the font's size, with the styles it must synthesise.
struct SizedFace {
  FaceSource source;
  FtFacePtr face;
  HbFontPtr shaper;  // references `face`
  DesignMetrics design;
  CellSize cell;
  int loadFlags = FT_LOAD_DEFAULT;
  FT_Pos emboldenStrength = 0;  // 26.6 pixels added to every glyph's width
  int extraAdvance = 0;         // whole pixels, the same
};

std::unique_ptr<SizedFace> OpenSizedFace(FontLibrary& library, const FaceSource& source,
                                         const LOGFONTW& request) {
  auto sized = std::make_unique<SizedFace>();
  sized->source = source;
  sized->face = library.OpenFace(source);
  if (!sized->face || !FT_IS_SCALABLE(sized->face)) return nullptr;
  FT_Face face = sized->face.get();
  sized->design = ReadDesignMetrics(face);
  sized->cell = ComputeCell(sized->design, request.lfHeight, request.lfWidth);
  if (FT_Set_Char_Size(face, std::lround(sized->cell.emX * 64), std::lround(sized->cell.emY * 64),
                       72, 72) != 0) {
    return nullptr;
  }
  if (source.emboldenSynthetic || source.obliqueSynthetic) sized->loadFlags |= FT_LOAD_NO_BITMAP;
  if (source.emboldenSynthetic) {
    // About a 24th of the em, never less than a pixel so small text reads bold.
    sized->extraAdvance = std::max(1, static_cast<int>(std::lround(sized->cell.emY / 24)));
    sized->emboldenStrength = static_cast<FT_Pos>(sized->extraAdvance) * 64;
  }
  sized->shaper.reset(hb_ft_font_create_referenced(face));
  if (!sized->shaper) return nullptr;
  hb_ft_font_set_load_flags(sized->shaper.get(), sized->loadFlags);
  return sized;
}

struct GlyphSlot {
  int face = 0;
  std::uint32_t glyph = 0;
  bool rendered = false;
  int page = -1;  // -1: nothing to draw (blank or failed glyph)
  CRect source;
  int left = 0;   // bitmap offset from the pen position
  int top = 0;    // bitmap top above the baseline
};

struct ShapedGlyph {
  std::uint32_t slot = 0;
  int advance = 0;
  int xOffset = 0;
  int yOffset = 0;  // upwards
  int cluster = 0;  // index of the first character of its cluster
};

struct ShapedParagraph {
  std::vector<ShapedGlyph> glyphs;  // in character order
  std::vector<CharInfo> chars;
};

struct PlacedLine {
  const ShapedParagraph* paragraph = nullptr;
  LineSpan span;
  bool ellipsis = false;
  int width = 0;  // including the ellipsis
};

struct ParagraphHash {
  using is_transparent = void;
  size_t operator()(std::wstring_view text) const { return std::hash<std::wstring_view>{}(text); }
};

bool IsStickyMark(char32_t c) {
  switch (hb_unicode_general_category(hb_unicode_funcs_get_default(), c)) {
    case HB_UNICODE_GENERAL_CATEGORY_NON_SPACING_MARK:
    case HB_UNICODE_GENERAL_CATEGORY_SPACING_MARK:
    case HB_UNICODE_GENERAL_CATEGORY_ENCLOSING_MARK:
    case HB_UNICODE_GENERAL_CATEGORY_FORMAT:
      return true;
    default:
      return false;
  }
}

bool ClipQuad(GlyphQuad& quad, const CRect& clip) {
  CRect visible;
  if (!visible.IntersectRect(quad.dest, clip)) return false;
  quad.source.left += visible.left - quad.dest.left;
  quad.source.top += visible.top - quad.dest.top;
  quad.source.right -= quad.dest.right - visible.right;
  quad.source.bottom -= quad.dest.bottom - visible.bottom;
  quad.dest = visible;
  return true;
}

int RoundPos(hb_position_t value) { return static_cast<int>(std::lround(value / 64.0)); }

// Copies an FT bitmap into 8-bit coverage rows (one byte per pixel).
bool ToCoverage(const FT_Bitmap& bitmap, std::vector<BYTE>& out) {
  const int width = static_cast<int>(bitmap.width);
  const int rows = static_cast<int>(bitmap.rows);
  out.assign(static_cast<size_t>(width) * rows, 0);
  for (int y = 0; y < rows; ++y) {
    const BYTE* row = bitmap.buffer + static_cast<ptrdiff_t>(y) * bitmap.pitch;
    BYTE* target = &out[static_cast<size_t>(y) * width];
    switch (bitmap.pixel_mode) {
      case FT_PIXEL_MODE_GRAY:
        std::copy(row, row + width, target);
        break;
      case FT_PIXEL_MODE_MONO:
        for (int x = 0; x < width; ++x) target[x] = (row[x >> 3] & (0x80 >> (x & 7))) ? 255 : 0;
        break;
      case FT_PIXEL_MODE_BGRA:
        for (int x = 0; x < width; ++x) target[x] = row[4 * x + 3];
        break;
      default:
        return false;
    }
  }
  return true;
}

std::wstring LowerFaceName(const LOGFONTW& font) {
  std::wstring name(font.lfFaceName, wcsnlen(font.lfFaceName, LF_FACESIZE));
  for (wchar_t& c : name) c = ToLowerChar(c);
  return name;
}

}  // namespace

struct TextFont::Impl {
  Impl(std::shared_ptr<FontLibrary> lib, const LOGFONTW& font, int atlasPageSize)
      : library(std::move(lib)), request(font), atlas(atlasPageSize),
        m_buffer(hb_buffer_create()) {}

  bool Open();
  int Layout(std::wstring_view text, const CRect& rect, UINT format, TextLayout& out);

 private:
  std::wstring_view Clean(std::wstring_view paragraph);
  const ShapedParagraph& Paragraph(std::wstring_view text);
  ShapedParagraph Shape(std::wstring_view text);
  void ShapeRun(std::wstring_view text, int begin, int end, int face, ShapedParagraph& out);
  int FaceFor(char32_t c);
  std::uint32_t SlotFor(int face, std::uint32_t glyph);
  void Render(GlyphSlot& slot);
  void AddLines(std::wstring_view paragraph, int width, UINT format);
  void EmitLine(const ShapedParagraph& paragraph, const LineSpan& span, int x, int y,
                const CRect* clip, std::vector<GlyphQuad>& quads);

 public:
  std::shared_ptr<FontLibrary> library;  // first member: outlives every face
  LOGFONTW request;
  std::shared_ptr<const FaceResolution> resolution;
  TextMetrics metrics;
  GlyphAtlas atlas;

 private:
  std::vector<std::unique_ptr<SizedFace>> m_faces;  // [0] is the primary face
  std::vector<int> m_fallbackFace;                   // per fallback: face index, -1 unopened, -2 failed
  std::unordered_map<char32_t, int> m_faceOfChar;
  std::vector<GlyphSlot> m_slots;
  std::unordered_map<std::uint64_t, std::uint32_t> m_slotOf;
  std::unordered_map<std::wstring, ShapedParagraph, ParagraphHash, std::equal_to<>> m_paragraphs;
  HbBufferPtr m_buffer;
  // Scratch storage reused by every call.
  std::wstring m_cleaned;
  std::vector<int> m_charFaces;
  std::vector<LineSpan> m_spans;
  std::vector<PlacedLine> m_lines;
  std::vector<BYTE> m_coverage;
};

bool TextFont::Impl::Open() {
  if (!m_buffer || !hb_buffer_allocation_successful(m_buffer.get())) return false;
  const std::wstring faceName(request.lfFaceName, wcsnlen(request.lfFaceName, LF_FACESIZE));
  const bool italic = request.lfItalic != 0;
  resolution = library->Resolve(faceName, request.lfWeight, italic);
  if (!resolution) return false;
  auto primary = OpenSizedFace(*library, resolution->primary, request);
  if (!primary) return false;
  m_fallbackFace.assign(resolution->fallbacks.size(), -1);

  metrics.ascent = primary->cell.ascent;
  metrics.descent = primary->cell.descent;
  metrics.height = metrics.ascent + metrics.descent;
  metrics.averageCharWidth = static_cast<int>(
      std::lround(primary->design.averageWidth * primary->cell.emX / primary->design.upem));
  metrics.weight = request.lfWeight <= 0 ? FW_NORMAL : request.lfWeight;
  metrics.italic = italic;
  metrics.syntheticBold = resolution->primary.emboldenSynthetic;
  metrics.syntheticItalic = resolution->primary.obliqueSynthetic;
  metrics.family = Utf8ToWide(resolution->primary.family);
  m_faces.push_back(std::move(primary));
  return true;
}

int TextFont::Impl::FaceFor(char32_t c) {
  if (FT_Get_Char_Index(m_faces[0]->face.get(), c) != 0) return 0;
  if (auto found = m_faceOfChar.find(c); found != m_faceOfChar.end()) return found->second;
  int face = 0;
  const int fallback = resolution->FindFallbackFor(c);
  if (fallback >= 0) {
    int& opened = m_fallbackFace[fallback];
    if (opened == -1) {
      auto sized = OpenSizedFace(*library, resolution->fallbacks[fallback].source, request);
      opened = sized ? static_cast<int>(m_faces.size()) : -2;
      if (sized) m_faces.push_back(std::move(sized));
    }
    if (opened >= 0) face = opened;
  }
  m_faceOfChar.emplace(c, face);
  return face;
}

std::uint32_t TextFont::Impl::SlotFor(int face, std::uint32_t glyph) {
  const std::uint64_t key = (static_cast<std::uint64_t>(face) << 32) | glyph;
  auto [it, added] = m_slotOf.try_emplace(key, static_cast<std::uint32_t>(m_slots.size()));
  if (added) {
    GlyphSlot slot;
    slot.face = face;
    slot.glyph = glyph;
    m_slots.push_back(slot);
  }
  return it->second;
}

void TextFont::Impl::ShapeRun(std::wstring_view text, int begin, int end, int face,
                              ShapedParagraph& out) {
  hb_buffer_t* buf = m_buffer.get();
  hb_buffer_clear_contents(buf);
  hb_buffer_add_utf32(buf, reinterpret_cast<const std::uint32_t*>(text.data()),
                      static_cast<int>(text.size()), static_cast<unsigned>(begin), end - begin);
  hb_buffer_set_direction(buf, HB_DIRECTION_LTR);
  hb_buffer_guess_segment_properties(buf);
  const SizedFace& sized = *m_faces[face];
  hb_shape(sized.shaper.get(), buf, nullptr, 0);

  unsigned count = 0;
  const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(buf, &count);
  const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buf, &count);
  for (unsigned i = 0; i < count; ++i) {
    ShapedGlyph glyph;
    glyph.slot = SlotFor(face, infos[i].codepoint);
    glyph.advance = RoundPos(positions[i].x_advance);
    if (glyph.advance != 0) glyph.advance += sized.extraAdvance;
    glyph.xOffset = RoundPos(positions[i].x_offset);
    glyph.yOffset = RoundPos(positions[i].y_offset);
    glyph.cluster = static_cast<int>(infos[i].cluster);
    out.glyphs.push_back(glyph);
  }
}

ShapedParagraph TextFont::Impl::Shape(std::wstring_view text) {
  ShapedParagraph shaped;
  const int size = static_cast<int>(text.size());
  m_charFaces.resize(text.size());
  for (int i = 0; i < size; ++i) {
    const auto c = static_cast<char32_t>(text[i]);
    m_charFaces[i] = (i > 0 && IsStickyMark(c)) ? m_charFaces[i - 1] : FaceFor(c);
  }
  for (int begin = 0; begin < size;) {
    int end = begin + 1;
    while (end < size && m_charFaces[end] == m_charFaces[begin]) ++end;
    ShapeRun(text, begin, end, m_charFaces[begin], shaped);
    begin = end;
  }
  shaped.chars.assign(text.size(), CharInfo{0, false, false, false});
  for (const ShapedGlyph& glyph : shaped.glyphs) {
    if (glyph.cluster < 0 || glyph.cluster >= size) continue;
    shaped.chars[glyph.cluster].clusterStart = true;
    shaped.chars[glyph.cluster].advance += glyph.advance;
  }
  if (size > 0) shaped.chars[0].clusterStart = true;
  MarkBreakOpportunities(text, shaped.chars);
  return shaped;
}

const ShapedParagraph& TextFont::Impl::Paragraph(std::wstring_view text) {
  if (auto found = m_paragraphs.find(text); found != m_paragraphs.end()) return found->second;
  return m_paragraphs.emplace(std::wstring(text), Shape(text)).first->second;
}

// Tabs become blanks; other control characters (and, on a single line, the
// line breaks) draw as nothing.
std::wstring_view TextFont::Impl::Clean(std::wstring_view paragraph) {
  const bool hasControl = std::any_of(paragraph.begin(), paragraph.end(),
                                      [](wchar_t c) { return c < 0x20 || c == 0x7F; });
  if (!hasControl) return paragraph;
  m_cleaned.clear();
  for (wchar_t c : paragraph) {
    if (c == L'\t') m_cleaned += L' ';
    else if (c >= 0x20 && c != 0x7F) m_cleaned += c;
  }
  return m_cleaned;
}

void TextFont::Impl::AddLines(std::wstring_view paragraph, int width, UINT format) {
  const bool singleLine = (format & DT_SINGLELINE) != 0;
  const ShapedParagraph& shaped = Paragraph(Clean(paragraph));
  m_spans.clear();
  if ((format & DT_WORDBREAK) && !singleLine) {
    WrapParagraph(shaped.chars, width, m_spans);
  } else {
    m_spans.push_back(WholeParagraph(shaped.chars));
  }
  for (const LineSpan& span : m_spans) {
    PlacedLine line{&shaped, span, false, span.width};
    if ((format & DT_END_ELLIPSIS) && span.width > width) {
      const int ellipsisWidth = WholeParagraph(Paragraph(kEllipsis).chars).width;
      line.span = FitPrefix(shaped.chars, span, width - ellipsisWidth);
      line.ellipsis = true;
      line.width = line.span.width + ellipsisWidth;
    }
    m_lines.push_back(line);
  }
}

int TextFont::Impl::Layout(std::wstring_view text, const CRect& rect, UINT format,
                           TextLayout& out) {
  // Evict before looking anything up: the lines below point into the cache.
  if (m_paragraphs.size() > kMaxCachedParagraphs) m_paragraphs.clear();
  m_lines.clear();
  const int width = rect.Width();
  if (format & DT_SINGLELINE) {
    AddLines(text, width, format);
  } else {
    size_t start = 0;
    for (size_t i = 0; i < text.size(); ++i) {
      if (text[i] != L'\r' && text[i] != L'\n') continue;
      AddLines(text.substr(start, i - start), width, format);
      if (text[i] == L'\r' && i + 1 < text.size() && text[i + 1] == L'\n') ++i;
      start = i + 1;
    }
    AddLines(text.substr(start), width, format);
  }

  const int lineHeight = metrics.height;
  const int textHeight = static_cast<int>(m_lines.size()) * lineHeight;
  int longest = 0;
  for (const PlacedLine& line : m_lines) longest = std::max(longest, line.width);
  const bool wrapped = (format & DT_WORDBREAK) && !(format & DT_SINGLELINE) && m_lines.size() > 1;
  const int boundsWidth = wrapped ? std::max(width, longest) : longest;
  out.bounds = CRect(rect.left, rect.top, rect.left + boundsWidth, rect.top + textHeight);
  out.lineCount = static_cast<int>(m_lines.size());
  out.height = textHeight;
  if (format & DT_CALCRECT) return out.height;

  int y = rect.top;
  if (format & DT_SINGLELINE) {
    if (format & DT_VCENTER) y = rect.top + (rect.Height() - textHeight) / 2;
    else if (format & DT_BOTTOM) y = rect.bottom - textHeight;
    if (format & (DT_VCENTER | DT_BOTTOM)) out.height = y - rect.top + textHeight;
  }
  const CRect* clip = (format & DT_NOCLIP) ? nullptr : &rect;
  for (const PlacedLine& line : m_lines) {
    int x = rect.left;
    if (format & DT_CENTER) x = rect.left + (width - line.width) / 2;
    else if (format & DT_RIGHT) x = rect.right - line.width;
    EmitLine(*line.paragraph, line.span, x, y, clip, out.quads);
    if (line.ellipsis) {
      const ShapedParagraph& dots = Paragraph(kEllipsis);
      EmitLine(dots, WholeParagraph(dots.chars), x + line.span.width, y, clip, out.quads);
    }
    y += lineHeight;
  }
  return out.height;
}

void TextFont::Impl::EmitLine(const ShapedParagraph& paragraph, const LineSpan& span, int x,
                              int y, const CRect* clip, std::vector<GlyphQuad>& quads) {
  const auto& glyphs = paragraph.glyphs;
  auto glyph = std::lower_bound(glyphs.begin(), glyphs.end(), span.begin,
                                [](const ShapedGlyph& g, int c) { return g.cluster < c; });
  int pen = 0;
  for (; glyph != glyphs.end() && glyph->cluster < span.end; ++glyph) {
    GlyphSlot& slot = m_slots[glyph->slot];
    if (!slot.rendered) Render(slot);
    if (slot.page >= 0) {
      GlyphQuad quad;
      quad.page = slot.page;
      quad.source = slot.source;
      quad.dest = CRect(0, 0, slot.source.Width(), slot.source.Height());
      quad.dest.OffsetRect(x + pen + glyph->xOffset + slot.left,
                           y + metrics.ascent - glyph->yOffset - slot.top);
      if (!clip || ClipQuad(quad, *clip)) quads.push_back(quad);
    }
    pen += glyph->advance;
  }
}

void TextFont::Impl::Render(GlyphSlot& slot) {
  slot.rendered = true;
  const SizedFace& sized = *m_faces[slot.face];
  FT_Face face = sized.face.get();
  if (FT_Load_Glyph(face, slot.glyph, sized.loadFlags) != 0) return;
  FT_GlyphSlot glyph = face->glyph;
  if (glyph->format == FT_GLYPH_FORMAT_OUTLINE) {
    if (sized.source.obliqueSynthetic) {
      FT_Matrix shear{0x10000, kObliqueShear, 0, 0x10000};
      FT_Outline_Transform(&glyph->outline, &shear);
    }
    if (sized.emboldenStrength > 0) FT_Outline_EmboldenXY(&glyph->outline, sized.emboldenStrength, 0);
  }
  if (glyph->format != FT_GLYPH_FORMAT_BITMAP && FT_Render_Glyph(glyph, FT_RENDER_MODE_NORMAL) != 0) {
    return;
  }
  const FT_Bitmap& bitmap = glyph->bitmap;
  if (bitmap.width == 0 || bitmap.rows == 0 || !bitmap.buffer) return;
  if (!ToCoverage(bitmap, m_coverage)) return;
  const int width = static_cast<int>(bitmap.width);
  const GlyphAtlas::Placement placement =
      atlas.Add(m_coverage.data(), width, width, static_cast<int>(bitmap.rows));
  slot.page = placement.page;
  slot.source = placement.source;
  slot.left = glyph->bitmap_left;
  slot.top = glyph->bitmap_top;
}

// --- TextFont -----------------------------------------------------------------

TextFont::TextFont(PrivateKey, std::unique_ptr<Impl> impl) : m_impl(std::move(impl)) {}

TextFont::~TextFont() {
  // Faces go back to FreeType under the library's lock; the local reference
  // keeps the library (and its mutex) alive until the lock is released.
  std::shared_ptr<FontLibrary> library = m_impl->library;
  std::lock_guard lock(library->Mutex());
  m_impl.reset();
}

std::shared_ptr<TextFont> TextFont::Create(const LOGFONTW& font, int atlasPageSize) {
  std::shared_ptr<FontLibrary> library = FontLibrary::Shared();
  if (!library) return nullptr;
  std::unique_ptr<Impl> impl;
  {
    std::lock_guard lock(library->Mutex());
    impl = std::make_unique<Impl>(library, font, atlasPageSize);
    if (!impl->Open()) {
      impl.reset();
      return nullptr;
    }
  }
  return std::make_shared<TextFont>(PrivateKey(), std::move(impl));
}

std::shared_ptr<TextFont> TextFont::GetShared(const LOGFONTW& font) {
  using Key = std::tuple<std::wstring, LONG, LONG, LONG, bool>;
  static std::mutex mutex;
  static std::map<Key, std::shared_ptr<TextFont>> fonts;
  const Key key{LowerFaceName(font), font.lfHeight, font.lfWidth, font.lfWeight,
                font.lfItalic != 0};
  std::lock_guard lock(mutex);
  auto [it, added] = fonts.try_emplace(key);
  if (added) it->second = Create(font);
  return it->second;
}

const TextMetrics& TextFont::GetMetrics() const { return m_impl->metrics; }

int TextFont::Layout(const wchar_t* text, int count, const CRect& rect, UINT format,
                     TextLayout& out) {
  out.quads.clear();
  out.lineCount = 0;
  out.height = 0;
  out.bounds = CRect(rect.left, rect.top, rect.left, rect.top);
  if (!text) return 0;
  const size_t length = count < 0 ? std::wcslen(text) : static_cast<size_t>(count);
  std::lock_guard lock(m_impl->library->Mutex());
  return m_impl->Layout(std::wstring_view(text, length), rect, format, out);
}

CSize TextFont::GetTextExtent(const wchar_t* text, int count) {
  TextLayout layout;
  Layout(text, count, CRect(), DT_SINGLELINE | DT_CALCRECT | DT_NOCLIP, layout);
  return CSize(layout.bounds.Width(), GetMetrics().height);
}

int TextFont::GetAtlasPageCount() const {
  std::lock_guard lock(m_impl->library->Mutex());
  return m_impl->atlas.GetPageCount();
}

AtlasPageView TextFont::GetAtlasPage(int page) const {
  std::lock_guard lock(m_impl->library->Mutex());
  return m_impl->atlas.GetPage(page);
}

std::uint64_t TextFont::GetAtlasGeneration() const {
  std::lock_guard lock(m_impl->library->Mutex());
  return m_impl->atlas.GetGeneration();
}

void TextFont::CopyAtlasToArgb(int page, const CRect& area, DWORD* dest,
                               int destPitchBytes) const {
  std::lock_guard lock(m_impl->library->Mutex());
  m_impl->atlas.CopyToArgb(page, area, dest, destPitchBytes);
}

// --- measuring without a window -------------------------------------------------

CSize MeasureTextExtent(const LOGFONTW& font, const wchar_t* text, int count) {
  std::shared_ptr<TextFont> shared = TextFont::GetShared(font);
  return shared ? shared->GetTextExtent(text, count) : CSize();
}

int CalcTextRect(const LOGFONTW& font, const wchar_t* text, int count, CRect& rect, UINT format) {
  std::shared_ptr<TextFont> shared = TextFont::GetShared(font);
  if (!shared) return 0;
  TextLayout layout;
  const int height = shared->Layout(text, count, rect, format | DT_CALCRECT, layout);
  rect = layout.bounds;
  return height;
}

}  // namespace KarvelUI
