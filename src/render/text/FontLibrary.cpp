#include "render/text/FontLibrary.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <array>

#include <karvelui/TextCodec.h>

namespace KarvelUI {

void FtLibraryDeleter::operator()(FT_LibraryRec_* library) const { FT_Done_FreeType(library); }
void FtFaceDeleter::operator()(FT_FaceRec_* face) const { FT_Done_Face(face); }
void FcConfigDeleter::operator()(_FcConfig* config) const { FcConfigDestroy(config); }
void FcCharSetDeleter::operator()(_FcCharSet* charset) const { FcCharSetDestroy(charset); }

namespace {

struct FcPatternDeleter { void operator()(FcPattern* p) const { FcPatternDestroy(p); } };
struct FcFontSetDeleter { void operator()(FcFontSet* s) const { FcFontSetDestroy(s); } };
using FcPatternPtr = std::unique_ptr<FcPattern, FcPatternDeleter>;
using FcFontSetPtr = std::unique_ptr<FcFontSet, FcFontSetDeleter>;

// How many faces after the primary one are kept for per-character fallback;
// the sorted, trimmed list rarely needs more to cover any text.
constexpr size_t kMaxFallbacks = 24;
constexpr LONG kBoldThreshold = 600;
constexpr char32_t kCjkProbe = 0x4E2D;  // 中: a face without it is no CJK face

struct CjkFaceName {
  const wchar_t* name;
  const char* language;
};

// System faces of East Asian editions that skins name; none is installed on
// a typical Linux desktop, so each resolves to a face covering its script.
constexpr std::array kCjkFaceNames{
    CjkFaceName{L"simsun", "zh-cn"},          CjkFaceName{L"nsimsun", "zh-cn"},
    CjkFaceName{L"simhei", "zh-cn"},          CjkFaceName{L"simkai", "zh-cn"},
    CjkFaceName{L"kaiti", "zh-cn"},           CjkFaceName{L"fangsong", "zh-cn"},
    CjkFaceName{L"microsoft yahei", "zh-cn"}, CjkFaceName{L"microsoft yahei ui", "zh-cn"},
    CjkFaceName{L"dengxian", "zh-cn"},        CjkFaceName{L"mingliu", "zh-tw"},
    CjkFaceName{L"pmingliu", "zh-tw"},        CjkFaceName{L"microsoft jhenghei", "zh-tw"},
    CjkFaceName{L"ms gothic", "ja"},          CjkFaceName{L"ms pgothic", "ja"},
    CjkFaceName{L"ms ui gothic", "ja"},       CjkFaceName{L"ms mincho", "ja"},
    CjkFaceName{L"ms pmincho", "ja"},         CjkFaceName{L"meiryo", "ja"},
    CjkFaceName{L"meiryo ui", "ja"},          CjkFaceName{L"yu gothic", "ja"},
    CjkFaceName{L"malgun gothic", "ko"},      CjkFaceName{L"gulim", "ko"},
    CjkFaceName{L"dotum", "ko"},              CjkFaceName{L"batang", "ko"},
    CjkFaceName{L"gungsuh", "ko"},
};

bool IsHangul(char32_t c) { return (c >= 0xAC00 && c <= 0xD7A3) || (c >= 0x1100 && c <= 0x11FF); }
bool IsKana(char32_t c) { return c >= 0x3040 && c <= 0x30FF; }
bool IsHan(char32_t c) {
  return (c >= 0x4E00 && c <= 0x9FFF) || (c >= 0x3400 && c <= 0x4DBF) ||
         (c >= 0xF900 && c <= 0xFAFF) || (c >= 0x20000 && c <= 0x2FFFF);
}

std::string FcString(FcPattern* font, const char* object) {
  FcChar8* value = nullptr;
  if (FcPatternGetString(font, object, 0, &value) != FcResultMatch || !value) return {};
  return reinterpret_cast<const char*>(value);
}

int FcInt(FcPattern* font, const char* object, int fallback) {
  int value = fallback;
  return FcPatternGetInteger(font, object, 0, &value) == FcResultMatch ? value : fallback;
}

bool IsUsableFace(FcPattern* font) {
  FcBool scalable = FcTrue;
  FcPatternGetBool(font, FC_SCALABLE, 0, &scalable);
  return scalable && !FcString(font, FC_FILE).empty();
}

FaceSource MakeSource(FcPattern* font, LONG weight, bool italic) {
  FaceSource source;
  source.file = FcString(font, FC_FILE);
  source.index = FcInt(font, FC_INDEX, 0) & 0xFFFF;  // upper bits select named instances
  source.family = FcString(font, FC_FAMILY);
  source.emboldenSynthetic =
      weight >= kBoldThreshold && FcInt(font, FC_WEIGHT, FC_WEIGHT_REGULAR) < FC_WEIGHT_DEMIBOLD;
  source.obliqueSynthetic = italic && FcInt(font, FC_SLANT, FC_SLANT_ROMAN) == FC_SLANT_ROMAN;
  return source;
}

bool Covers(FcPattern* font, char32_t ch) {
  FcCharSet* charset = nullptr;
  return FcPatternGetCharSet(font, FC_CHARSET, 0, &charset) == FcResultMatch && charset &&
         FcCharSetHasChar(charset, ch);
}

FcPatternPtr BuildRequest(FcConfig* config, const std::wstring& faceName, LONG weight,
                          bool italic) {
  FcPatternPtr pattern(FcPatternCreate());
  if (!pattern) return nullptr;
  const std::string family = WideToUtf8(faceName);
  const std::string language = FontLibrary::CjkLanguageOfFaceName(faceName);
  auto addFamily = [&](const char* name) {
    FcPatternAddString(pattern.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>(name));
  };
  if (!family.empty()) addFamily(family.c_str());
  if (family.empty() || !language.empty()) addFamily("sans-serif");
  if (!language.empty()) {
    FcPatternAddString(pattern.get(), FC_LANG, reinterpret_cast<const FcChar8*>(language.c_str()));
  }
  const int otWeight = std::clamp<LONG>(weight <= 0 ? 400 : weight, 1, 1000);
  FcPatternAddInteger(pattern.get(), FC_WEIGHT, FcWeightFromOpenType(otWeight));
  FcPatternAddInteger(pattern.get(), FC_SLANT, italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
  FcConfigSubstitute(config, pattern.get(), FcMatchPattern);
  FcDefaultSubstitute(pattern.get());
  return pattern;
}

}  // namespace

int FaceResolution::FindFallbackFor(char32_t ch) const {
  for (size_t i = 0; i < fallbacks.size(); ++i) {
    if (fallbacks[i].charset && FcCharSetHasChar(fallbacks[i].charset.get(), ch)) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

std::shared_ptr<FontLibrary> FontLibrary::Shared() {
  static const std::shared_ptr<FontLibrary> instance = []() -> std::shared_ptr<FontLibrary> {
    FT_Library freetype = nullptr;
    if (FT_Init_FreeType(&freetype) != 0) return nullptr;
    FtLibraryPtr freetypeOwner(freetype);
    FcConfigPtr config(FcInitLoadConfigAndFonts());
    if (!config) return nullptr;
    return std::make_shared<FontLibrary>(std::move(freetypeOwner), std::move(config));
  }();
  return instance;
}

FontLibrary::FontLibrary(FtLibraryPtr freetype, FcConfigPtr config)
    : m_freetype(std::move(freetype)), m_config(std::move(config)) {}

FontLibrary::~FontLibrary() = default;

std::string FontLibrary::CjkLanguageOfFaceName(const std::wstring& faceName) {
  std::wstring lower;
  lower.reserve(faceName.size());
  for (wchar_t c : faceName) lower += ToLowerChar(c);
  for (const CjkFaceName& entry : kCjkFaceNames) {
    if (lower == entry.name) return entry.language;
  }
  // Names written in the script itself ("宋体", "ＭＳ ゴシック", "굴림").
  bool han = false;
  for (wchar_t wc : faceName) {
    const auto c = static_cast<char32_t>(wc);
    if (IsKana(c)) return "ja";
    if (IsHangul(c)) return "ko";
    han = han || IsHan(c);
  }
  return han ? "zh-cn" : std::string();
}

std::shared_ptr<const FaceResolution> FontLibrary::Resolve(const std::wstring& faceName,
                                                           LONG weight, bool italic) {
  const auto key = std::make_tuple(faceName, weight, italic);
  if (auto found = m_resolutions.find(key); found != m_resolutions.end()) return found->second;
  auto resolution = ResolveUncached(faceName, weight, italic);
  if (resolution) m_resolutions.emplace(key, resolution);
  return resolution;
}

std::shared_ptr<const FaceResolution> FontLibrary::ResolveUncached(const std::wstring& faceName,
                                                                   LONG weight, bool italic) {
  FcPatternPtr request = BuildRequest(m_config.get(), faceName, weight, italic);
  if (!request) return nullptr;
  FcResult result = FcResultNoMatch;
  FcFontSetPtr sorted(FcFontSort(m_config.get(), request.get(), FcTrue, nullptr, &result));
  if (!sorted || sorted->nfont == 0) return nullptr;

  std::vector<FcPattern*> usable;
  for (int i = 0; i < sorted->nfont; ++i) {
    if (IsUsableFace(sorted->fonts[i])) usable.push_back(sorted->fonts[i]);
  }
  if (usable.empty()) return nullptr;

  // A CJK face name must land on a face that really draws its script, even
  // when the configuration ranks a Latin face first.
  auto primary = usable.begin();
  if (!CjkLanguageOfFaceName(faceName).empty()) {
    auto cjk = std::find_if(usable.begin(), usable.end(),
                            [](FcPattern* font) { return Covers(font, kCjkProbe); });
    if (cjk != usable.end()) primary = cjk;
  }

  auto resolution = std::make_shared<FaceResolution>();
  resolution->primary = MakeSource(*primary, weight, italic);
  for (FcPattern* font : usable) {
    if (font == *primary) continue;
    if (resolution->fallbacks.size() >= kMaxFallbacks) break;
    FcCharSet* charset = nullptr;
    if (FcPatternGetCharSet(font, FC_CHARSET, 0, &charset) != FcResultMatch || !charset) continue;
    resolution->fallbacks.push_back({MakeSource(font, weight, italic),
                                     FcCharSetPtr(FcCharSetCopy(charset))});
  }
  return resolution;
}

FtFacePtr FontLibrary::OpenFace(const FaceSource& source) {
  FT_Face face = nullptr;
  if (FT_New_Face(m_freetype.get(), source.file.c_str(), source.index, &face) != 0) return nullptr;
  FtFacePtr owner(face);
  if (FT_Select_Charmap(face, FT_ENCODING_UNICODE) != 0 && face->num_charmaps == 0) return nullptr;
  return owner;
}

}  // namespace KarvelUI
