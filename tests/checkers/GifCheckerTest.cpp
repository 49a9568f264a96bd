#include <gtest/gtest.h>

#include "checkers/CheckerTesting.h"
#include "support/PictureFiles.h"

using KarvelUI::CGifImageArchive;
using namespace KarvelTest;

namespace {

const std::string kTrailer = ";";

TEST(GifChecker, PictureFromTheImageLibraryGivesItsSizeAndEnd) {
  const std::string gif = MakeGif(40, 30);
  CGifImageArchive checker;
  ASSERT_EQ(OpenWritten(checker, gif), 1);
  EXPECT_EQ(checker.GetWidth(), 40u);
  EXPECT_EQ(checker.GetHeight(), 30u);
  EXPECT_EQ(checker.GetImageCount(), 1);
  EXPECT_EQ(checker.GetTrailerOffset(), gif.size());
}

TEST(GifChecker, EveryCutFailsBecauseTheTrailerIsLast) {
  const std::string gif = MakeGif(12, 10);
  CGifImageArchive checker;
  for (std::size_t length = 0; length < gif.size(); ++length)
    ASSERT_EQ(CheckExact(checker, gif.substr(0, length)), 0) << "cut at " << length;
}

TEST(GifChecker, ImagesAndKnownExtensionsAreWalked) {
  const std::string gif = GifHeader(300, 200, 2) + GifExtension(0xFF, "NETSCAPE2.0") + GifExtension(0xF9, "abcd") +
                          GifImage(0) + std::string(3, '\0') + GifExtension(0xFE) + GifExtension(0x01) +
                          GifImage(3) + kTrailer + "trailing bytes";
  CGifImageArchive checker;
  ASSERT_EQ(CheckExact(checker, gif), 1);
  EXPECT_EQ(checker.GetWidth(), 300u);
  EXPECT_EQ(checker.GetHeight(), 200u);
  EXPECT_EQ(checker.GetImageCount(), 2);
  EXPECT_EQ(checker.GetTrailerOffset(), gif.size() - 14);
}

TEST(GifChecker, StructuralFaultsFail) {
  CGifImageArchive checker;
  const std::string header = GifHeader(8, 8, 1);
  EXPECT_EQ(CheckExact(checker, header + GifImage(0) + kTrailer), 1);
  // Unknown extension label, unknown block, no image, no trailer.
  EXPECT_EQ(CheckExact(checker, header + GifExtension(0x02) + GifImage(0) + kTrailer), 0);
  EXPECT_EQ(CheckExact(checker, header + GifImage(0) + "\x2d" + kTrailer), 0);
  EXPECT_EQ(CheckExact(checker, header + GifExtension(0xFE) + kTrailer), 0);
  EXPECT_EQ(CheckExact(checker, header + GifImage(0)), 0);
  // A local colour table that runs past the end of the file.
  EXPECT_EQ(CheckExact(checker, header + GifImage(8).substr(0, 200)), 0);
}

TEST(GifChecker, SignatureAndScreenDescriptorMustBeComplete) {
  CGifImageArchive checker;
  const std::string body = GifImage(0) + kTrailer;
  EXPECT_EQ(CheckExact(checker, GifHeader(4, 4, 0, "87a") + body), 1);
  EXPECT_EQ(CheckExact(checker, GifHeader(4, 4, 0, "88a") + body), 0);
  EXPECT_EQ(CheckExact(checker, GifHeader(4, 4, 0, "89b") + body), 0);
  // Background index (offset 11) and aspect ratio (12) must both exist.
  EXPECT_EQ(CheckExact(checker, GifHeader(4, 4, 0).substr(0, 11)), 0);
  EXPECT_EQ(CheckExact(checker, GifHeader(4, 4, 0).substr(0, 12)), 0);
  EXPECT_EQ(CheckExact(checker, "GIF89a"), 0);
  // A global colour table of 256 entries does not fit in this file.
  EXPECT_EQ(CheckExact(checker, GifHeader(4, 4, 8).substr(0, 13 + 100) + body), 0);
}

}  // namespace
