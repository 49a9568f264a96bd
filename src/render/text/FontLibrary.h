#pragma once

// FontLibrary: the process-wide state behind every text font: one FreeType
// library, one fontconfig configuration and the cache of face resolutions.
//
// Thread safety: FreeType's library object, fontconfig and the faces opened
// from them are not safe to use from two threads at once. One mutex (Mutex())
// guards all of it; TextFont takes it in every public operation, so fonts may
// be used from the drawing thread and the UI thread (the same thread in this
// library) and from helper threads that only measure.

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <vector>

#include <karvelui/Types.h>

struct FT_LibraryRec_;
struct FT_FaceRec_;
struct _FcConfig;
struct _FcCharSet;

namespace KarvelUI {

struct FtLibraryDeleter { void operator()(FT_LibraryRec_* library) const; };
struct FtFaceDeleter { void operator()(FT_FaceRec_* face) const; };
struct FcConfigDeleter { void operator()(_FcConfig* config) const; };
struct FcCharSetDeleter { void operator()(_FcCharSet* charset) const; };

using FtLibraryPtr = std::unique_ptr<FT_LibraryRec_, FtLibraryDeleter>;
using FtFacePtr = std::unique_ptr<FT_FaceRec_, FtFaceDeleter>;
using FcConfigPtr = std::unique_ptr<_FcConfig, FcConfigDeleter>;
using FcCharSetPtr = std::unique_ptr<_FcCharSet, FcCharSetDeleter>;

// One face file as fontconfig names it, with the styles the file lacks and
// that the renderer must synthesise to honour the request.
struct FaceSource {
  std::string file;
  int index = 0;          // face index inside a collection (.ttc)
  std::string family;     // the family fontconfig reports for the file
  bool emboldenSynthetic = false;
  bool obliqueSynthetic = false;
};

// A requested face name resolved to a primary face plus the ordered faces
// that cover the characters the primary face lacks.
struct FaceResolution {
  FaceSource primary;
  struct Fallback {
    FaceSource source;
    FcCharSetPtr charset;  // the characters the face covers
  };
  std::vector<Fallback> fallbacks;

  // Index into fallbacks of the first face covering `ch`, or -1.
  int FindFallbackFor(char32_t ch) const;
};

class FontLibrary {
 public:
  // The shared instance; null when FreeType or fontconfig cannot start.
  // Fonts hold the pointer so the library outlives every face.
  static std::shared_ptr<FontLibrary> Shared();

  FontLibrary(FtLibraryPtr freetype, FcConfigPtr config);
  FontLibrary(const FontLibrary&) = delete;
  FontLibrary& operator=(const FontLibrary&) = delete;
  ~FontLibrary();

  std::mutex& Mutex() { return m_mutex; }

  // Caller holds Mutex(). Face names known to be CJK system faces ("SimSun",
  // "宋体", "MS Gothic", ...) and names written in CJK characters resolve to a
  // face that covers their script; an empty name means the default sans face;
  // any other name resolves to fontconfig's best match. Resolutions are
  // cached, so fontconfig is queried once per (name, weight, italic).
  std::shared_ptr<const FaceResolution> Resolve(const std::wstring& faceName, LONG weight,
                                                bool italic);

  // Caller holds Mutex(). Opens one face of a file; null when it cannot.
  FtFacePtr OpenFace(const FaceSource& source);

  // The language a face name stands for when it names a CJK system face
  // ("zh-cn" for "SimSun"), or empty. Exposed for tests.
  static std::string CjkLanguageOfFaceName(const std::wstring& faceName);

 private:
  std::shared_ptr<const FaceResolution> ResolveUncached(const std::wstring& faceName,
                                                        LONG weight, bool italic);

  std::mutex m_mutex;
  FtLibraryPtr m_freetype;
  FcConfigPtr m_config;
  std::map<std::tuple<std::wstring, LONG, bool>, std::shared_ptr<const FaceResolution>>
      m_resolutions;
};

}  // namespace KarvelUI
