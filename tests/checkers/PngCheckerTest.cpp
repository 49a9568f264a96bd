#include <gtest/gtest.h>

#include <algorithm>

#include "checkers/CheckerTesting.h"
#include "support/PictureFiles.h"

using KarvelUI::CPngImageArchive;
using namespace KarvelTest;

namespace {

std::size_t IndexOf(const std::vector<std::string>& chunks, const std::string& type) {
  for (std::size_t i = 0; i < chunks.size(); ++i)
    if (PngChunkType(chunks[i]) == type) return i;
  return chunks.size();
}

// Moves the first chunk of one type to just before the first of another
// (or to the end when `before` is empty).
std::string Reordered(const std::string& png, const std::string& type, const std::string& before) {
  auto chunks = SplitPngChunks(png);
  const std::string moved = chunks[IndexOf(chunks, type)];
  chunks.erase(chunks.begin() + static_cast<long>(IndexOf(chunks, type)));
  chunks.insert(chunks.begin() + static_cast<long>(before.empty() ? chunks.size() : IndexOf(chunks, before)), moved);
  return JoinPngChunks(chunks);
}

std::string Without(const std::string& png, const std::string& type) {
  auto chunks = SplitPngChunks(png);
  chunks.erase(chunks.begin() + static_cast<long>(IndexOf(chunks, type)));
  return JoinPngChunks(chunks);
}

TEST(PngChecker, PictureFromTheImageLibraryGivesItsSizeAndEnd) {
  const std::string png = MakePng(300, 200);
  CPngImageArchive checker;
  ASSERT_EQ(OpenWritten(checker, png), 1);
  EXPECT_EQ(checker.GetWidth(), 300u);
  EXPECT_EQ(checker.GetHeight(), 200u);
  EXPECT_EQ(checker.GetEndOffset(), png.size());
  // Bytes after the end chunk do not matter.
  EXPECT_EQ(CheckExact(checker, png + "extra"), 1);
  EXPECT_EQ(checker.GetEndOffset(), png.size());
}

TEST(PngChecker, EveryCutFails) {
  const std::string png = MakePng(20, 10, true);
  CPngImageArchive checker;
  for (std::size_t length = 0; length < png.size(); ++length)
    ASSERT_EQ(CheckExact(checker, png.substr(0, length)), 0) << "cut at " << length;
}

TEST(PngChecker, ChunkOrderIsEnforced) {
  const std::string palette = MakePng(20, 10, true);
  ASSERT_LT(IndexOf(SplitPngChunks(palette), "PLTE"), IndexOf(SplitPngChunks(palette), "IDAT"));
  CPngImageArchive checker;
  EXPECT_EQ(CheckExact(checker, palette), 1);
  EXPECT_EQ(CheckExact(checker, Reordered(palette, "PLTE", "IEND")), 0);  // palette after the data
  EXPECT_EQ(CheckExact(checker, Reordered(palette, "PLTE", "IHDR")), 0);  // palette before the header
  EXPECT_EQ(CheckExact(checker, Reordered(palette, "IDAT", "IHDR")), 0);
  EXPECT_EQ(CheckExact(checker, Reordered(palette, "IEND", "IDAT")), 0);
  EXPECT_EQ(CheckExact(checker, Without(palette, "IEND")), 0);
  EXPECT_EQ(CheckExact(checker, Without(palette, "IDAT")), 0);
  // Unknown chunks anywhere are passed over.
  auto chunks = SplitPngChunks(palette);
  const std::string text("\0\0\0\x05tEXtabcde\0\0\0\0", 17);
  chunks.insert(chunks.begin() + 1, text);
  chunks.insert(chunks.end() - 1, text);
  EXPECT_EQ(CheckExact(checker, JoinPngChunks(chunks)), 1);
  EXPECT_EQ(checker.GetWidth(), 20u);
}

TEST(PngChecker, LengthsThatReachPastTheEndFail) {
  std::string png = MakePng(20, 10);
  const auto chunks = SplitPngChunks(png);
  std::size_t idat = 8;
  for (std::size_t i = 0; i < IndexOf(chunks, "IDAT"); ++i) idat += chunks[i].size();
  CPngImageArchive checker;
  PutBE32(png, idat, 0xFFFFFFF0u);
  EXPECT_EQ(CheckExact(checker, png), 0);
  // The end chunk's own CRC must be there.
  const std::string clean = MakePng(20, 10);
  EXPECT_EQ(CheckExact(checker, clean.substr(0, clean.size() - 1)), 0);
}

TEST(PngChecker, ShortFilesAndWrongSignaturesFail) {
  CPngImageArchive checker;
  std::string png = MakePng(8, 8);
  EXPECT_EQ(CheckExact(checker, png.substr(0, 19)), 0);
  png[1] = 'Q';
  EXPECT_EQ(CheckExact(checker, png), 0);
}

}  // namespace
