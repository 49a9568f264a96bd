#include <gtest/gtest.h>

#include "checkers/CheckerTesting.h"
#include "support/PictureFiles.h"

using KarvelUI::CJpgImageArchive;
using namespace KarvelTest;

namespace {

constexpr std::size_t kSlack = 0x40000;

// End of the start-of-scan segment: where the entropy-coded data begins.
std::size_t ScanDataStart(const std::string& jpeg) {
  const std::size_t sos = FindJpegMarker(jpeg, 0xDA);
  return sos + 2 + ((static_cast<unsigned char>(jpeg[sos + 2]) << 8) | static_cast<unsigned char>(jpeg[sos + 3]));
}

TEST(JpegChecker, CompleteBaselinePictureGivesItsSize) {
  const std::string jpeg = MakeJpeg(640, 480);
  CJpgImageArchive checker;
  EXPECT_EQ(checker.GetWidth(), 0u);
  ASSERT_EQ(OpenWritten(checker, jpeg), 1);
  EXPECT_EQ(checker.GetWidth(), 640u);
  EXPECT_EQ(checker.GetHeight(), 480u);
  // Cut in the middle of its scan data it is still a picture cut short.
  ASSERT_LT(jpeg.size() / 2, 640u * 480 * 3 + kSlack);
  CJpgImageArchive cut;
  EXPECT_EQ(OpenWritten(cut, jpeg.substr(0, jpeg.size() / 2)), 1);
  EXPECT_EQ(cut.GetWidth(), 640u);
  EXPECT_EQ(cut.GetHeight(), 480u);
}

TEST(JpegChecker, EveryCutBeforeTheScanDataFailsAndEveryCutAfterPasses) {
  const std::string jpeg = MakeJpeg(24, 16);
  const std::size_t scanData = ScanDataStart(jpeg);
  CJpgImageArchive checker;
  for (std::size_t length = 0; length <= jpeg.size(); ++length)
    ASSERT_EQ(CheckExact(checker, jpeg.substr(0, length)), length >= scanData ? 1 : 0) << "cut at " << length;
}

TEST(JpegChecker, TruncatedFileMustNotBeImplausiblyLarge) {
  // 16 x 16 pixels at three bytes: 768. Scan data without an end marker is
  // tolerated up to 768 + 0x40000 bytes, exclusive.
  const std::string jpeg = MakeJpeg(16, 16);
  const std::string cut = jpeg.substr(0, ScanDataStart(jpeg) + 10);
  CJpgImageArchive checker;
  std::string justBelow = cut + std::string(768 + kSlack - 1 - cut.size(), '\0');
  EXPECT_EQ(CheckExact(checker, justBelow), 1);
  std::string atLimit = justBelow + '\0';
  EXPECT_EQ(CheckExact(checker, atLimit), 0);
  EXPECT_EQ(checker.GetWidth(), 16u);  // the size was read before the verdict
}

TEST(JpegChecker, EndMarkerIsFoundInsideTrailingBytes) {
  // Not at the very end, and far beyond the truncation allowance: only the
  // scan for the end marker can pass it.
  const std::string jpeg = MakeJpeg(16, 16) + std::string(kSlack + 1000, '\x11');
  CJpgImageArchive checker;
  EXPECT_EQ(CheckExact(checker, jpeg), 1);
}

TEST(JpegChecker, OnlyTheBaselineFrameHeaderGivesASize) {
  const std::string progressive = MakeJpeg(64, 48, true);
  ASSERT_NE(FindJpegMarker(progressive, 0xC2), std::string::npos);
  CJpgImageArchive checker;
  ASSERT_EQ(OpenWritten(checker, MakeJpeg(64, 48)), 1);
  EXPECT_EQ(checker.GetWidth(), 64u);
  // The same checker opening a progressive file reports no size.
  EXPECT_EQ(OpenWritten(checker, progressive), 1);
  EXPECT_EQ(checker.GetWidth(), 0u);
  EXPECT_EQ(checker.GetHeight(), 0u);

  std::string extended = MakeJpeg(64, 48);
  extended[FindJpegMarker(extended, 0xC0) + 1] = '\xC1';
  EXPECT_EQ(CheckExact(checker, extended), 1);
  EXPECT_EQ(checker.GetWidth(), 0u);
}

TEST(JpegChecker, FillBytesAndStandaloneMarkersAreSkipped) {
  std::string jpeg = MakeJpeg(40, 30);
  jpeg.insert(FindJpegMarker(jpeg, 0xC0), "\xFF\xFF\xFF\x01\xFF\xD3");
  CJpgImageArchive checker;
  EXPECT_EQ(CheckExact(checker, jpeg), 1);
  EXPECT_EQ(checker.GetWidth(), 40u);
  EXPECT_EQ(checker.GetHeight(), 30u);
}

TEST(JpegChecker, EndOfImageBeforeAnyScanFails) {
  const std::string jpeg = MakeJpeg(16, 16);
  const std::string noScan = jpeg.substr(0, FindJpegMarker(jpeg, 0xDA)) + "\xFF\xD9";
  CJpgImageArchive checker;
  EXPECT_EQ(CheckExact(checker, noScan), 0);
  EXPECT_EQ(CheckExact(checker, noScan + jpeg.substr(FindJpegMarker(jpeg, 0xDA))), 0);
}

TEST(JpegChecker, SegmentLengthsThatReachPastTheEndFail) {
  const std::string jpeg = MakeJpeg(16, 16);
  CJpgImageArchive checker;
  for (unsigned char marker : {0xDB, 0xC0, 0xC4, 0xDA}) {
    std::string lying = jpeg;
    const std::size_t at = FindJpegMarker(lying, marker);
    ASSERT_NE(at, std::string::npos) << int(marker);
    PutBE16(lying, at + 2, 0xFFFF);
    EXPECT_EQ(CheckExact(checker, lying), 0) << int(marker);
  }
}

TEST(JpegChecker, ShortFilesAndWrongSignaturesFail) {
  CJpgImageArchive checker;
  const auto minimal = [](std::size_t padding) {
    return std::string("\xFF\xD8\xFF\xDA\x00\x02", 6) + std::string(padding, '\0') + "\xFF\xD9";
  };
  EXPECT_EQ(CheckExact(checker, minimal(11)), 0);  // 19 bytes
  EXPECT_EQ(CheckExact(checker, minimal(12)), 1);  // 20 bytes
  std::string jpeg = MakeJpeg(16, 16);
  jpeg[1] = '\xD9';
  EXPECT_EQ(CheckExact(checker, jpeg), 0);
  EXPECT_EQ(CheckExact(checker, ""), 0);
}

}  // namespace
