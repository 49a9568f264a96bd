#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <regex>
#include <sstream>

#include <karvelui/TextCodec.h>
#include "ThumbTestSupport.h"
#include "support/PictureFiles.h"
#include "thumbnails/ThumbDB.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

struct ListedEntry {
  std::wstring name;
  long jpegBytes;  // -1: the entry has no stream
};

// The entry list the data's README gives for `file`.
std::vector<ListedEntry> ListedEntries(const std::string& file) {
  std::ifstream readme(ThumbsDbData() / "README.md");
  const std::regex row(R"re(^\s*\["(.*)", \d+, (null|\d+), )re");
  std::vector<ListedEntry> entries;
  bool inList = false;
  for (std::string line; std::getline(readme, line);) {
    if (line == "### " + file + " \u2014 entries") inList = true;
    else if (inList && line == "```" && !entries.empty()) break;
    std::smatch match;
    if (inList && std::regex_search(line, match, row))
      entries.push_back({Utf8ToWide(match[1].str()), match[2] == "null" ? -1 : std::stol(match[2].str())});
  }
  return entries;
}

std::string ReadFile(const std::filesystem::path& file) { return TempDir::Read(file); }

// Everything written to the standard wide output while `work` runs.
std::wstring WideOutputOf(const std::function<void()>& work) {
  std::wostringstream captured;
  std::wstreambuf* previous = std::wcout.rdbuf(captured.rdbuf());
  work();
  std::wcout.rdbuf(previous);
  return captured.str();
}

struct RealFile {
  const char* file;
  size_t entries;
  size_t subHeader;  // bytes before the JPEG in what a lookup returns
};

class RealThumbsDb : public ::testing::TestWithParam<RealFile> {};

TEST_P(RealThumbsDb, CatalogReadsBackToTheListedNamesAndJpegSizes) {
  KARVEL_REQUIRE_THUMBSDB_DATA();
  const RealFile& param = GetParam();
  std::unique_ptr<ThumbDB> db;
  EXPECT_EQ(WideOutputOf([&] { db = std::make_unique<ThumbDB>(LibraryPath(ThumbsDbData() / param.file)); }), L"");
  ASSERT_EQ(db->GetEntries().size(), param.entries);
  const std::vector<ListedEntry> listed = ListedEntries(param.file);
  ASSERT_EQ(listed.size(), param.entries);
  for (size_t i = 0; i < listed.size(); ++i) {
    SCOPED_TRACE(WideToUtf8(listed[i].name));
    EXPECT_EQ(db->GetEntries()[i].strName.str(), listed[i].name);
    const std::vector<BYTE> data = db->GetThumbData(listed[i].name);
    if (listed[i].jpegBytes < 0) {
      EXPECT_TRUE(data.empty());
      continue;
    }
    ASSERT_EQ(data.size(), listed[i].jpegBytes + param.subHeader);
    EXPECT_EQ(data[param.subHeader] << 8 | data[param.subHeader + 1], 0xFFD8);  // a JPEG's start
  }
}

INSTANTIATE_TEST_SUITE_P(Files, RealThumbsDb,
                         ::testing::Values(RealFile{"FOOGS-Thumbs.db", 125, 0},
                                           RealFile{"qsim-svn-Thumbs.db", 25, 16},  // type-2 sub-header kept
                                           RealFile{"ljzxzxl-2010-Thumbs.db", 11, 0},
                                           RealFile{"www.php.gr.jp-Thumbs.db", 39, 0},
                                           RealFile{"basic-webpage-Thumbs.db", 0, 0},  // no "Catalog"
                                           RealFile{"myopenlab-Thumbs.db", 0, 0}));    // no streams at all

// Offsets of the catalog's entries, by their record lengths (clean file).
std::vector<size_t> EntryOffsets(const std::string& catalog) {
  std::vector<size_t> offsets;
  for (size_t at = 16; at + 4 <= catalog.size();) {
    offsets.push_back(at);
    at += static_cast<unsigned char>(catalog[at]) | static_cast<unsigned char>(catalog[at + 1]) << 8;
  }
  return offsets;
}

struct Damage {
  const char* what;
  std::function<void(Streams&, std::vector<size_t>)> apply;
  size_t entries;
  const wchar_t* probe;  // looked up afterwards
  bool probeFound;
};

class DamagedThumbsDb : public ::testing::TestWithParam<Damage> {};

TEST_P(DamagedThumbsDb, KeepsWhatIsIntactAndNothingElse) {
  KARVEL_REQUIRE_THUMBSDB_DATA();
  Streams streams = ReadStreams(ReadFile(ThumbsDbData() / "FOOGS-Thumbs.db"));
  ASSERT_EQ(streams.size(), 126u);
  GetParam().apply(streams, EntryOffsets(StreamBytes(streams, "Catalog")));
  std::unique_ptr<ThumbDB> db;
  EXPECT_EQ(WideOutputOf([&] { db = ThumbDB::FromMemory(WriteCompound(streams)); }), L"");
  EXPECT_EQ(db->GetEntries().size(), GetParam().entries);
  EXPECT_EQ(!db->GetThumbData(GetParam().probe).empty(), GetParam().probeFound);
}

void SetCount(Streams& s, std::uint32_t count) { PutLE32(StreamBytes(s, "Catalog"), 4, count); }

INSTANTIATE_TEST_SUITE_P(
    Cases, DamagedThumbsDb,
    ::testing::Values(
        Damage{"missing stream", [](Streams& s, auto) { std::erase_if(s, [](auto& e) { return e.first == "5"; }); },
               125, L"Barrel.bmp", false},
        Damage{"catalog cut inside entry 3", [](Streams& s, auto at) { StreamBytes(s, "Catalog").resize(at[2] + 10); },
               2, L"BarMid.bmp", true},
        Damage{"negative count", [](Streams& s, auto) { SetCount(s, 0xFFFFFFFF); }, 0, L"Blank.bmp", false},
        Damage{"huge count", [](Streams& s, auto) { SetCount(s, 0x7FFFFFFF); }, 0, L"Blank.bmp", false},
        Damage{"count just over the cap", [](Streams& s, auto) { SetCount(s, kMaxCatalogEntries + 1); }, 0,
               L"Blank.bmp", false},
        Damage{"count over what the stream holds", [](Streams& s, auto) { SetCount(s, 1000); }, 125,
               L"WindowHighScores.bmp", true},
        Damage{"entry 4 shorter than its name",
               [](Streams& s, auto at) { PutLE32(StreamBytes(s, "Catalog"), at[3], 16 + 2 * 12); }, 3,
               L"BarRight.bmp", false},
        Damage{"name running past the cap",
               [](Streams& s, auto at) {
                 std::string& catalog = StreamBytes(s, "Catalog");
                 catalog.resize(at[1] + 16);
                 catalog.append(2 * (kMaxNameLength + 1), 'A');
                 catalog.append(4, '\0');
               },
               1, L"Blank.bmp", true},
        Damage{"catalog over the cap",
               [](Streams& s, auto) { StreamBytes(s, "Catalog").resize(kMaxCatalogBytes + 1); }, 0, L"Blank.bmp",
               false},
        Damage{"thumbnail stream no longer than its header",
               [](Streams& s, auto) { StreamBytes(s, "1").resize(kThumbnailHeaderBytes); }, 125, L"Blank.bmp",
               false},
        Damage{"thumbnail stream over the cap",
               [](Streams& s, auto) { StreamBytes(s, "1").resize(kMaxThumbnailBytes + 1); }, 125, L"Blank.bmp",
               false}),
    [](const auto& info) {
      std::string name = info.param.what;
      std::replace(name.begin(), name.end(), ' ', '_');
      return name;
    });

TEST(ThumbDB, ANonCompoundFileHasNoEntriesAndNoMessage) {
  std::unique_ptr<ThumbDB> db;
  EXPECT_EQ(WideOutputOf([&] { db = ThumbDB::FromMemory(MakeJpeg(8, 8)); }), L"");
  EXPECT_TRUE(db->GetEntries().empty() && ThumbDB(L"\\nowhere\\thumbs.db").GetEntries().empty());
}

TEST(ThumbDB, ACompoundFileThatCannotBeOpenedIsReportedOnTheWideOutput) {
  KARVEL_REQUIRE_THUMBSDB_DATA();
  std::string bytes = ReadFile(ThumbsDbData() / "FOOGS-Thumbs.db");
  std::fill(bytes.begin() + 8, bytes.begin() + 512, '\xFF');  // signature kept, header destroyed
  TempDir dir;
  const CString path = LibraryPath(dir.Write("thumbs.db", bytes));
  std::unique_ptr<ThumbDB> db;
  const std::wstring output = WideOutputOf([&] { db = std::make_unique<ThumbDB>(path); });
  EXPECT_EQ(output, L"Error: Can not open storage - " + path.str() + L"\n");
  EXPECT_TRUE(db->GetEntries().empty());
}

TEST(ThumbDB, LookupsMatchNamesExactlyAndTheFirstOfTwoEntriesOfANameWins) {
  KARVEL_REQUIRE_THUMBSDB_DATA();
  Streams streams = ReadStreams(ReadFile(ThumbsDbData() / "FOOGS-Thumbs.db"));
  std::string& catalog = StreamBytes(streams, "Catalog");
  const size_t man = EntryOffsets(catalog)[50];  // "Man.bmp", index 51, after "Key.bmp" (index 6)
  for (size_t i = 0; i < 3; ++i) catalog[man + 16 + 2 * i] = "Key"[i];
  const std::unique_ptr<ThumbDB> db = ThumbDB::FromMemory(WriteCompound(streams));
  EXPECT_EQ(db->GetThumbData(L"Key.bmp").size(), 1077u);  // stream "6", not "15"
  EXPECT_TRUE(db->GetThumbData(L"key.bmp").empty() && db->GetThumbData(L"Man.bmp").empty());
  EXPECT_EQ(ThumbDB::StreamNameOf(305), L"503");
}

}  // namespace
