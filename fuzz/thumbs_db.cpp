// Arbitrary bytes as a folder's thumbs.db, read from memory: the compound
// file, the catalog and its caps, then lookups of the first names it lists
// (each opens the file again and reads a thumbnail stream), and the first
// thumbnail found decoded as the thumbnail loader would.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "render/PictureDecoder.h"
#include "thumbnails/ThumbDB.h"

namespace {

using namespace KarvelUI;

constexpr std::uint64_t kFuzzMaxPixels = 4ull * 1000 * 1000;  // a stored picture claiming more is refused early
constexpr size_t kLookups = 8;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool limited = (SetMaxPicturePixels(kFuzzMaxPixels), true);
  (void)limited;
  const std::unique_ptr<ThumbDB> db = ThumbDB::FromMemory(std::string(reinterpret_cast<const char*>(data), size));
  bool decoded = false;
  const std::vector<ThumbDBEntry>& entries = db->GetEntries();
  for (size_t i = 0; i < entries.size() && i < kLookups; ++i) {
    const std::vector<BYTE> thumbnail = db->GetThumbData(entries[i].strName);
    if (thumbnail.empty() || decoded) continue;
    decoded = true;
    LoadPictureFromMemory(thumbnail.data(), thumbnail.size());
  }
  return 0;
}
