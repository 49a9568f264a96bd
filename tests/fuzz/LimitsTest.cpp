// What hostile files are refused by: each limit on what a file claims or
// holds gives the designed failure and a trace line that names the limit.

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <functional>
#include <string>

#include <karvelui/CommonString.h>
#include <karvelui/ResourceCache.h>
#include <karvelui/StdioFileEx.h>
#include <karvelui/XmlDocument.h>
#include "platform/Paths.h"
#include "render/PictureDecoder.h"
#include "skin/XmlText.h"
#include "support/PictureFiles.h"
#include "support/TempDir.h"
#include "support/TraceCapture.h"
#include "thumbnails/ThumbDB.h"

// After the library's headers: GLib defines TRUE and FALSE as macros.
#include <gsf/gsf.h>

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

constexpr std::uint64_t kSmallPixelLimit = 100;

std::uint32_t Blue(int, int) { return 0xFF0000FFu; }

// A file of `size` zero bytes that takes no disk space.
CString SparseFile(const TempDir& dir, const std::string& name, std::uint64_t size) {
  const std::filesystem::path file = dir.Write(name, "");
  std::filesystem::resize_file(file, size);
  return FromNativePath(file.string());
}

// A thumbs.db holding a catalog of `count` entries (one written: "a.jpg",
// index 1) and a thumbnail stream "1" of `thumbnailBytes` bytes.
std::string ThumbsDb(std::int32_t count, std::size_t thumbnailBytes) {
  std::string catalog(16, '\0');
  std::memcpy(&catalog[4], &count, 4);
  const std::u16string name = u"a.jpg";
  std::string entry(16, '\0');
  entry[4] = 1;
  entry.append(reinterpret_cast<const char*>(name.c_str()), (name.size() + 1) * 2);
  entry.append(2, '\0');
  entry[0] = static_cast<char>(entry.size());
  catalog += entry;
  GsfOutput* sink = gsf_output_memory_new();
  GsfOutfile* root = gsf_outfile_msole_new(sink);
  const std::string thumbnail(thumbnailBytes, 'x');
  const std::pair<const char*, const std::string*> streams[] = {{"Catalog", &catalog}, {"1", &thumbnail}};
  for (const auto& [stream, bytes] : streams) {
    GsfOutput* child = gsf_outfile_new_child(root, stream, FALSE);
    gsf_output_write(child, bytes->size(), reinterpret_cast<const guint8*>(bytes->data()));
    gsf_output_close(child);
    g_object_unref(child);
  }
  gsf_output_close(GSF_OUTPUT(root));
  g_object_unref(root);
  const auto* data = reinterpret_cast<const char*>(gsf_output_memory_get_bytes(GSF_OUTPUT_MEMORY(sink)));
  std::string file(data, static_cast<size_t>(gsf_output_size(sink)));
  g_object_unref(sink);
  return file;
}

// Decoded through a cache (decode only): true when the picture is refused.
bool DecodeRefused(const wchar_t* key, const std::string& bytes) {
  ResourceCache cache;
  return cache.LoadTextureFromFileImage(key, nullptr, bytes.data(), bytes.size(), 1) == nullptr;
}

struct LimitCase {
  const char* name;
  std::function<bool(const TempDir&)> refused;  // true when the designed failure came
  std::wstring trace;
};

const LimitCase kCases[] = {
    {"TextFileSize",
     [](const TempDir& dir) {
       CStdioFileEx file;
       return !file.Open(SparseFile(dir, "big.txt", CStdioFileEx::kMaxReadBytes + 1),
                         CStdioFile::modeRead | CStdioFile::typeText);
     },
     L"<ERROR> Text file of 16777217 bytes is over the limit: "},
    {"StringTableSize",
     [](const TempDir& dir) {
       CStringArray lines;
       return CommonString::LoadStringTable(lines, SparseFile(dir, "big.lng", CStdioFileEx::kMaxReadBytes + 1)) == 0 &&
              lines.GetSize() == 0;
     },
     L"<ERROR> Text file of 16777217 bytes is over the limit: "},
    {"XmlFileSize",
     [](const TempDir& dir) {
       CXmlDocument doc;
       return !doc.LoadFile(SparseFile(dir, "big.xml", kMaxXmlFileBytes + 1));
     },
     L"<ERROR> XML file of 8388609 bytes is over the limit: "},
    {"XmlDepth",
     [](const TempDir& dir) {
       std::string xml;
       for (int i = 0; i <= kMaxXmlElementDepth; ++i) xml += "<a>";
       for (int i = 0; i <= kMaxXmlElementDepth; ++i) xml += "</a>";
       CXmlDocument doc;
       return !doc.LoadFile(FromNativePath(dir.Write("deep.xml", xml).string()));
     },
     L"<ERROR> XML file nested deeper than 256 or with more than 1024 attributes on an element: "},
    {"PicturePixels",
     [](const TempDir&) {
       const std::string png = MakePng(20, 10);
       return LoadPictureFromMemory(png.data(), png.size()) == nullptr && DecodeRefused(L"limit.png", png);
     },
     L"<ERROR> Decode Fail: limit.png"},
    {"AnimationFramePixels",
     [](const TempDir&) {
       return DecodeRefused(L"frames.gif",
                            MakeAnimatedGif({{4, 4, 0, 0, 100, 0, Blue}, {20, 10, 0, 0, 100, 0, Blue}}));
     },
     L"<ERROR> Decode Fail: frames.gif"},
    {"PngChunkLength",
     [](const TempDir&) {
       std::ifstream in(KARVEL_SOURCE_DIR "/fuzz/regressions/shared_thumbs/png-text-chunk-claims-560mb.png",
                        std::ios::binary);
       const std::string png((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
       return !png.empty() && DecodeRefused(L"chunk.png", png);
     },
     L"<ERROR> Decode Fail: chunk.png"},
    {"ThumbsDbEntries",
     [](const TempDir&) { return ThumbDB::FromMemory(ThumbsDb(kMaxCatalogEntries + 1, 20))->GetEntries().empty(); },
     L"<WARNING> thumbs.db catalog of 262145 entries is over the limit: "},
    {"ThumbsDbThumbnail",
     [](const TempDir&) {
       const auto db = ThumbDB::FromMemory(ThumbsDb(1, kMaxThumbnailBytes + 1));
       return db->GetEntries().size() == 1 && db->GetThumbData(L"a.jpg").empty();
     },
     L"<WARNING> thumbs.db thumbnail of 2097153 bytes is over the limit: "},
};

void PrintTo(const LimitCase& c, std::ostream* out) { *out << c.name; }

class LimitTest : public ::testing::TestWithParam<LimitCase> {
 protected:
  void SetUp() override { m_previousLimit = SetMaxPicturePixels(kSmallPixelLimit); }
  void TearDown() override { SetMaxPicturePixels(m_previousLimit); }

  std::uint64_t m_previousLimit = 0;
};

}  // namespace

TEST_P(LimitTest, RefusedWithItsTraceLine) {
  const TempDir dir;
  TraceCapture trace;
  EXPECT_TRUE(GetParam().refused(dir));
  EXPECT_TRUE(trace.Contains(GetParam().trace)) << ::testing::PrintToString(trace.Messages());
}

INSTANTIATE_TEST_SUITE_P(Limits, LimitTest, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });
