// Arbitrary bytes as a thumbnail in the cache Linux desktops share: the
// bytes are the "normal" thumbnail of one picture (modification time
// kPictureMTime), looked up the way the thumbnail loader looks it up:
// format check, PNG decode within the pixel limit, the text keys that say
// whether it is current and the picture's own size.

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <filesystem>

#include "platform/Paths.h"
#include "render/PictureDecoder.h"
#include "thumbnails/SharedThumbCache.h"
#include "FuzzFiles.h"

using namespace KarvelUI;

namespace {

constexpr std::uint64_t kFuzzMaxPixels = 4ull * 1000 * 1000;
constexpr std::time_t kPictureMTime = 1000000000;  // seeds carry Thumb::MTime "1000000000"
constexpr int kNormalWanted = 96;

struct Harness {
  CString picture;
  std::filesystem::path thumbnail;

  Harness() {
    const std::filesystem::path cache = fuzzing::ScratchFolder() / "cache";
    setenv("XDG_CACHE_HOME", cache.c_str(), 1);
    SetMaxPicturePixels(kFuzzMaxPixels);
    const std::uint8_t nothing = 0;
    const std::filesystem::path file = fuzzing::WriteScratchFile("picture.jpg", &nothing, 1);
    const timespec times[2] = {{kPictureMTime, 0}, {kPictureMTime, 0}};
    if (utimensat(AT_FDCWD, file.c_str(), times, 0) != 0) abort();
    picture = FromNativePath(file.string());
    thumbnail = ToNativePath(SharedThumbCache::ThumbnailPath(picture, L"normal"));
    std::filesystem::create_directories(thumbnail.parent_path());
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Harness harness;
  {
    std::FILE* out = std::fopen(harness.thumbnail.c_str(), "wb");
    if (!out) abort();
    if (size) std::fwrite(data, 1, size, out);
    std::fclose(out);
  }
  SharedThumbCache::Hit hit;
  if (SharedThumbCache::Find(harness.picture, kNormalWanted, hit) && !hit.picture) abort();
  return 0;
}
