// The picture checkers over real files from the image library and over
// damaged copies of them. Bytes are checked from memory of exactly their
// size, so a read one byte too far is an address-sanitizer error.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "platform/Paths.h"
#include "render/ImageArchive.h"
#include "support/PictureFiles.h"
#include "support/TempDir.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

enum Kind { Jpg, Gif, Png, Bmp };

std::unique_ptr<CImageArchive> Checker(Kind kind) {
  switch (kind) {
    case Jpg: return std::make_unique<CJpgImageArchive>();
    case Gif: return std::make_unique<CGifImageArchive>();
    case Png: return std::make_unique<CPngImageArchive>();
    case Bmp: return std::make_unique<CBmpImageArchive>();
  }
  return nullptr;
}

int CheckExact(CImageArchive& checker, const std::string& bytes) {
  if (bytes.empty()) return checker.CheckMemory(nullptr, 0);
  auto copy = std::make_unique<std::uint8_t[]>(bytes.size());
  std::memcpy(copy.get(), bytes.data(), bytes.size());
  return checker.CheckMemory(copy.get(), bytes.size());
}

int OpenWritten(CImageArchive& checker, const std::string& bytes) {
  TempDir dir;
  return checker.Open(FromNativePath(dir.Write("picture.bin", bytes).string()));
}

// A copy with put(copy, at, value) applied.
std::string With(std::string bytes, void (*put)(std::string&, std::size_t, unsigned), std::size_t at, unsigned value) {
  put(bytes, at, value);
  return bytes;
}
void PutByte(std::string& bytes, std::size_t at, unsigned value) { bytes[at] = static_cast<char>(value); }

std::size_t ScanDataStart(const std::string& jpeg) {  // where the entropy-coded data begins
  const std::size_t sos = FindJpegMarker(jpeg, 0xDA);
  return sos + 2 + ((static_cast<unsigned char>(jpeg[sos + 2]) << 8) | static_cast<unsigned char>(jpeg[sos + 3]));
}

// PNG chunks with the first `type` moved before the first `before` (to the end when empty) or removed.
std::string PngWith(const std::string& png, const std::string& type, const char* before) {
  auto chunks = SplitPngChunks(png);
  auto find = [&](const std::string& t) {
    return std::find_if(chunks.begin(), chunks.end(), [&](const std::string& c) { return PngChunkType(c) == t; });
  };
  const std::string moved = *find(type);
  chunks.erase(find(type));
  if (before) chunks.insert(*before ? find(before) : chunks.end(), moved);
  return JoinPngChunks(chunks);
}

// Unknown chunks right after the header and right before the end.
std::string WithTextChunks(const std::string& png) {
  auto chunks = SplitPngChunks(png);
  const std::string text("\0\0\0\x05tEXtabcde\0\0\0\0", 17);
  chunks.insert(chunks.begin() + 1, text);
  chunks.insert(chunks.end() - 1, text);
  return JoinPngChunks(chunks);
}

const std::size_t kSlack = 0x40000;  // how far a JPEG cut short may run past its pixel count
const std::string kJpeg = MakeJpeg(16, 16), kBmp = MakeBmp(10, 10, 24), kPng = MakePng(20, 10, true);
const std::size_t kSos = FindJpegMarker(kJpeg, 0xDA);
// The JPEG cut ten bytes into its scan data, then padded with zeros to `total` bytes.
std::string JpegCutTo(std::size_t total) {
  const std::string cut = kJpeg.substr(0, ScanDataStart(kJpeg) + 10);
  return cut + std::string(total - cut.size(), '\0');
}
const std::string kGifHead = GifHeader(8, 8, 1), kGifBody = GifImage(0) + ";";

struct Case {
  const char* name;
  Kind kind;
  std::string bytes;
  int result;
  UINT width = 0, height = 0;  // looked at when not 0
};

class ImageCheckerTest : public ::testing::TestWithParam<Case> {};

TEST_P(ImageCheckerTest, ChecksTheBytes) {
  const Case& c = GetParam();
  auto checker = Checker(c.kind);
  EXPECT_EQ(CheckExact(*checker, c.bytes), c.result);
  if (c.width) {
    EXPECT_EQ(checker->GetWidth(), c.width);
  }
  if (c.height) {
    EXPECT_EQ(checker->GetHeight(), c.height);
  }
}

std::string Name(const ::testing::TestParamInfo<Case>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(
    Jpeg, ImageCheckerTest,
    ::testing::Values(
        Case{"Baseline", Jpg, MakeJpeg(640, 480), 1, 640, 480},
        // Scan data without an end marker is tolerated up to 16 x 16 x 3 + kSlack bytes, exclusive;
        // the size is read before the verdict.
        Case{"CutJustBelowTheLimit", Jpg, JpegCutTo(768 + kSlack - 1), 1},
        Case{"CutAtTheLimit", Jpg, JpegCutTo(768 + kSlack), 0, 16},
        Case{"EndMarkerInsideTrailingBytes", Jpg, kJpeg + std::string(kSlack + 1000, '\x11'), 1},
        Case{"Progressive", Jpg, MakeJpeg(64, 48, true), 1},
        Case{"FillBytesAndStandaloneMarkersSkipped", Jpg,
             MakeJpeg(40, 30).insert(FindJpegMarker(MakeJpeg(40, 30), 0xC0), "\xFF\xFF\xFF\x01\xFF\xD3"), 1, 40, 30},
        Case{"EndOfImageWithoutAScan", Jpg, kJpeg.substr(0, kSos) + "\xFF\xD9", 0},
        Case{"EndOfImageBeforeTheScan", Jpg, kJpeg.substr(0, kSos) + "\xFF\xD9" + kJpeg.substr(kSos), 0},
        Case{"QuantTableLengthPastTheEnd", Jpg, With(kJpeg, PutBE16, FindJpegMarker(kJpeg, 0xDB) + 2, 0xFFFF), 0},
        Case{"FrameLengthPastTheEnd", Jpg, With(kJpeg, PutBE16, FindJpegMarker(kJpeg, 0xC0) + 2, 0xFFFF), 0},
        Case{"HuffmanLengthPastTheEnd", Jpg, With(kJpeg, PutBE16, FindJpegMarker(kJpeg, 0xC4) + 2, 0xFFFF), 0},
        Case{"ScanLengthPastTheEnd", Jpg, With(kJpeg, PutBE16, kSos + 2, 0xFFFF), 0},
        Case{"NineteenBytes", Jpg, std::string("\xFF\xD8\xFF\xDA\x00\x02", 6) + std::string(11, '\0') + "\xFF\xD9", 0},
        Case{"TwentyBytes", Jpg, std::string("\xFF\xD8\xFF\xDA\x00\x02", 6) + std::string(12, '\0') + "\xFF\xD9", 1},
        Case{"WrongSignature", Jpg, With(kJpeg, PutByte, 1, 0xD9), 0}),
    Name);

INSTANTIATE_TEST_SUITE_P(
    Gif, ImageCheckerTest,
    ::testing::Values(
        Case{"Minimal", Gif, kGifHead + kGifBody, 1, 8, 8},
        Case{"Version87a", Gif, GifHeader(4, 4, 0, "87a") + kGifBody, 1},
        Case{"Version88a", Gif, GifHeader(4, 4, 0, "88a") + kGifBody, 0},
        Case{"Version89b", Gif, GifHeader(4, 4, 0, "89b") + kGifBody, 0},
        Case{"UnknownExtension", Gif, kGifHead + GifExtension(0x02) + kGifBody, 0},
        Case{"UnknownBlock", Gif, kGifHead + GifImage(0) + "\x2d;", 0},
        Case{"NoImage", Gif, kGifHead + GifExtension(0xFE) + ";", 0},
        Case{"NoTrailer", Gif, kGifHead + GifImage(0), 0},
        Case{"LocalTablePastTheEnd", Gif, kGifHead + GifImage(8).substr(0, 200), 0},
        // Background index (offset 11) and aspect ratio (12) must both exist.
        Case{"NoBackgroundIndex", Gif, GifHeader(4, 4, 0).substr(0, 11), 0},
        Case{"NoAspectRatio", Gif, GifHeader(4, 4, 0).substr(0, 12), 0},
        Case{"GlobalTablePastTheEnd", Gif, GifHeader(4, 4, 8).substr(0, 113) + kGifBody, 0}),
    Name);

INSTANTIATE_TEST_SUITE_P(
    Png, ImageCheckerTest,
    ::testing::Values(
        Case{"Palette", Png, kPng, 1, 20, 10},
        Case{"BytesAfterTheEnd", Png, kPng + "extra", 1},
        Case{"PaletteAfterTheData", Png, PngWith(kPng, "PLTE", "IEND"), 0},
        Case{"PaletteBeforeTheHeader", Png, PngWith(kPng, "PLTE", "IHDR"), 0},
        Case{"DataBeforeTheHeader", Png, PngWith(kPng, "IDAT", "IHDR"), 0},
        Case{"EndBeforeTheData", Png, PngWith(kPng, "IEND", "IDAT"), 0},
        Case{"NoEnd", Png, PngWith(kPng, "IEND", nullptr), 0},
        Case{"NoData", Png, PngWith(kPng, "IDAT", nullptr), 0},
        Case{"UnknownChunksPassedOver", Png, WithTextChunks(kPng), 1, 20},
        Case{"DataLengthPastTheEnd", Png, With(kPng, PutBE32, kPng.find("IDAT") - 4, 0xFFFFFFF0u), 0},
        Case{"EndWithoutItsCrc", Png, kPng.substr(0, kPng.size() - 1), 0},
        Case{"NineteenBytes", Png, kPng.substr(0, 19), 0},
        Case{"WrongSignature", Png, With(kPng, PutByte, 1, 'Q'), 0}),
    Name);

INSTANTIATE_TEST_SUITE_P(
    Bmp, ImageCheckerTest,
    ::testing::Values(
        Case{"SixteenBits", Bmp, MakeBmp(33, 21, 16), 1, 33, 21},
        Case{"TwentyFourBits", Bmp, MakeBmp(33, 21, 24), 1, 33, 21},
        Case{"ThirtyTwoBits", Bmp, MakeBmp(33, 21, 32), 1, 33, 21},
        Case{"OneBitPalette", Bmp, MakeBmp(33, 21, 1), 0},
        Case{"FourBitPalette", Bmp, MakeBmp(33, 21, 4), 0},
        Case{"EightBitPalette", Bmp, MakeBmp(33, 21, 8), 0},
        // The real size may stray a hundred bytes from the declared one.
        Case{"HundredBytesMore", Bmp, kBmp + std::string(100, '\0'), 1},
        Case{"HundredAndOneBytesMore", Bmp, kBmp + std::string(101, '\0'), 0},
        Case{"HundredBytesFewer", Bmp, kBmp.substr(0, kBmp.size() - 100), 1},
        Case{"HundredAndOneBytesFewer", Bmp, kBmp.substr(0, kBmp.size() - 101), 0},
        Case{"TopDownHeightAsStored", Bmp, With(kBmp, PutLE32, 22, static_cast<unsigned>(-10)), 1, 10, 0xFFFFFFF6u},
        Case{"FirstReservedWord", Bmp, With(kBmp, PutLE16, 6, 1), 0},
        Case{"SecondReservedWord", Bmp, With(kBmp, PutLE16, 8, 1), 0},
        Case{"PixelsAtTheEnd", Bmp, With(kBmp, PutLE32, 10, static_cast<unsigned>(kBmp.size())), 1},
        Case{"PixelsPastTheEnd", Bmp, With(kBmp, PutLE32, 10, static_cast<unsigned>(kBmp.size()) + 1), 0},
        Case{"VersionFourHeader", Bmp, With(kBmp, PutLE32, 14, 108), 1},
        Case{"VersionFiveHeader", Bmp, With(kBmp, PutLE32, 14, 124), 1},
        Case{"CoreHeader", Bmp, With(kBmp, PutLE32, 14, 12), 0},
        Case{"UnknownHeader", Bmp, With(kBmp, PutLE32, 14, 64), 0},
        Case{"TwoPlanes", Bmp, With(kBmp, PutLE16, 26, 2), 0, 10},  // the width is read before the planes
        Case{"FortyEightBits", Bmp, With(kBmp, PutLE16, 28, 48), 0},
        Case{"HeaderOnly", Bmp, With(With(kBmp.substr(0, 54), PutLE32, 2, 54), PutLE32, 10, 54), 1},
        Case{"HeaderOneByteShort", Bmp, With(With(kBmp.substr(0, 53), PutLE32, 2, 54), PutLE32, 10, 54), 0},
        Case{"WrongSignature", Bmp, With(kBmp, PutByte, 1, 'A'), 0}),
    Name);

}  // namespace

TEST(ImageCheckers, EachAcceptsOnlyItsOwnFormatAndMissingEmptyOrUnreadableFilesFail) {
  const std::string files[] = {MakeJpeg(32, 32), MakeGif(32, 32), MakePng(32, 32), MakeBmp(32, 32, 24)};
  TempDir dir;
  const auto empty = dir.Write("empty.jpg", "");
  for (Kind kind : {Jpg, Gif, Png, Bmp}) {
    auto checker = Checker(kind);
    for (int f = 0; f < 4; ++f) EXPECT_EQ(CheckExact(*checker, files[f]), f == kind ? 1 : 0) << kind << " " << f;
    ASSERT_EQ(OpenWritten(*checker, files[kind]), 1) << kind;
    EXPECT_EQ(checker->GetWidth(), 32u) << kind;
    for (const CString& bad : {FromNativePath((dir.Path() / "missing.jpg").string()), FromNativePath(empty.string()),
                               FromNativePath(dir.Path().string()), CString()})
      EXPECT_EQ(checker->Open(bad), 0) << kind;
    EXPECT_EQ(checker->GetWidth(), 0u);
    EXPECT_EQ(checker->Open(nullptr), 0);
  }
  CImageArchive base;
  EXPECT_EQ(OpenWritten(base, files[Png]), 0);
}

TEST(ImageCheckers, EveryCutOfAGifOrPngFailsAndOfAJpegFailsOnlyBeforeTheScanData) {
  const std::string jpeg = MakeJpeg(24, 16), gif = MakeGif(12, 10);
  for (std::size_t length = 0; length <= jpeg.size(); ++length)
    ASSERT_EQ(CheckExact(*Checker(Jpg), jpeg.substr(0, length)), length >= ScanDataStart(jpeg) ? 1 : 0) << length;
  for (std::size_t length = 0; length < gif.size(); ++length)
    ASSERT_EQ(CheckExact(*Checker(Gif), gif.substr(0, length)), 0) << length;
  for (std::size_t length = 0; length < kPng.size(); ++length)
    ASSERT_EQ(CheckExact(*Checker(Png), kPng.substr(0, length)), 0) << length;
}

TEST(ImageCheckers, GifImagesAndExtensionsAreWalkedToTheTrailerAndPngToItsEnd) {
  CGifImageArchive gif;
  const std::string walked = GifHeader(300, 200, 2) + GifExtension(0xFF, "NETSCAPE2.0") + GifExtension(0xF9, "abcd") +
                             GifImage(0) + std::string(3, '\0') + GifExtension(0xFE) + GifExtension(0x01) +
                             GifImage(3) + ";trailing bytes";
  ASSERT_EQ(CheckExact(gif, walked), 1);
  EXPECT_EQ(gif.GetWidth(), 300u);
  EXPECT_EQ(gif.GetImageCount(), 2);
  EXPECT_EQ(gif.GetTrailerOffset(), walked.size() - 14);
  const std::string made = MakeGif(40, 30);
  ASSERT_EQ(CheckExact(gif, made), 1);
  EXPECT_EQ(gif.GetTrailerOffset(), made.size());

  CPngImageArchive png;
  ASSERT_EQ(CheckExact(png, kPng + "extra"), 1);
  EXPECT_EQ(png.GetEndOffset(), kPng.size());
}

TEST(ImageCheckers, AJpegCheckerReopenedOnAProgressiveFileForgetsTheSize) {
  CJpgImageArchive checker;
  ASSERT_EQ(OpenWritten(checker, MakeJpeg(64, 48)), 1);
  EXPECT_EQ(checker.GetWidth(), 64u);
  EXPECT_EQ(OpenWritten(checker, MakeJpeg(64, 48, true)), 1);
  EXPECT_EQ(checker.GetWidth(), 0u);
  std::string extended = MakeJpeg(64, 48);
  extended[FindJpegMarker(extended, 0xC0) + 1] = '\xC1';
  EXPECT_EQ(CheckExact(checker, extended), 1);
  EXPECT_EQ(checker.GetWidth(), 0u);
}
