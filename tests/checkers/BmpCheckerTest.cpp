#include <gtest/gtest.h>

#include "checkers/CheckerTesting.h"
#include "support/PictureFiles.h"

using KarvelUI::CBmpImageArchive;
using namespace KarvelTest;

namespace {

TEST(BmpChecker, DirectColourBitmapsGiveTheirSize) {
  for (int bpp : {16, 24, 32}) {
    CBmpImageArchive checker;
    ASSERT_EQ(OpenWritten(checker, MakeBmp(33, 21, bpp)), 1) << bpp;
    EXPECT_EQ(checker.GetWidth(), 33u) << bpp;
    EXPECT_EQ(checker.GetHeight(), 21u) << bpp;
  }
}

TEST(BmpChecker, PaletteBitmapsFail) {
  for (int bpp : {1, 4, 8}) {
    CBmpImageArchive checker;
    EXPECT_EQ(OpenWritten(checker, MakeBmp(33, 21, bpp)), 0) << bpp;
  }
}

TEST(BmpChecker, RealSizeMayStrayAHundredBytesFromTheDeclaredOne) {
  const std::string bmp = MakeBmp(40, 40, 24);
  CBmpImageArchive checker;
  EXPECT_EQ(CheckExact(checker, bmp + std::string(100, '\0')), 1);
  EXPECT_EQ(CheckExact(checker, bmp + std::string(101, '\0')), 0);
  EXPECT_EQ(CheckExact(checker, bmp + std::string(150, '\0')), 0);
  EXPECT_EQ(CheckExact(checker, bmp.substr(0, bmp.size() - 100)), 1);
  EXPECT_EQ(CheckExact(checker, bmp.substr(0, bmp.size() - 101)), 0);
}

TEST(BmpChecker, TopDownHeightIsReportedAsStored) {
  std::string bmp = MakeBmp(10, 10, 24);
  PutLE32(bmp, 22, static_cast<unsigned>(-10));
  CBmpImageArchive checker;
  ASSERT_EQ(CheckExact(checker, bmp), 1);
  EXPECT_EQ(checker.GetHeight(), 0xFFFFFFF6u);
}

TEST(BmpChecker, HeaderFieldsAreValidated) {
  const std::string bmp = MakeBmp(10, 10, 24);
  const auto patched = [&](std::size_t at, unsigned value, bool wide) {
    std::string copy = bmp;
    wide ? PutLE32(copy, at, value) : PutLE16(copy, at, value);
    return copy;
  };
  CBmpImageArchive checker;
  EXPECT_EQ(CheckExact(checker, patched(6, 1, false)), 0);  // reserved
  EXPECT_EQ(CheckExact(checker, patched(8, 1, false)), 0);  // reserved
  EXPECT_EQ(CheckExact(checker, patched(10, static_cast<unsigned>(bmp.size()), true)), 1);
  EXPECT_EQ(CheckExact(checker, patched(10, static_cast<unsigned>(bmp.size()) + 1, true)), 0);
  EXPECT_EQ(CheckExact(checker, patched(14, 108, true)), 1);  // version 4 header
  EXPECT_EQ(CheckExact(checker, patched(14, 124, true)), 1);  // version 5 header
  EXPECT_EQ(CheckExact(checker, patched(14, 12, true)), 0);
  EXPECT_EQ(CheckExact(checker, patched(14, 64, true)), 0);
  EXPECT_EQ(CheckExact(checker, patched(26, 2, false)), 0);  // planes
  EXPECT_EQ(checker.GetWidth(), 10u);                        // read before the plane check
  EXPECT_EQ(CheckExact(checker, patched(28, 48, false)), 0);  // bit count
}

TEST(BmpChecker, ShortFilesWrongSignaturesAndNoPathFail) {
  CBmpImageArchive checker;
  std::string header = MakeBmp(10, 10, 24).substr(0, 54);
  PutLE32(header, 2, 54);
  PutLE32(header, 10, 54);
  EXPECT_EQ(CheckExact(checker, header), 1);
  EXPECT_EQ(CheckExact(checker, header.substr(0, 53)), 0);
  header[1] = 'A';
  EXPECT_EQ(CheckExact(checker, header), 0);
  EXPECT_EQ(checker.Open(nullptr), 0);
}

}  // namespace
