#pragma once

// Picture decoding: the one place that hands picture files to the image
// library (and, for thumbnails, JPEG files to the JPEG decoder itself).
// Decoding is the widest attack surface of a photo viewer, so:
//
// - Only the formats the viewer shows are decoded: JPEG, PNG, GIF, BMP and
//   TIFF. Every other decoder of the image library is switched off for the
//   whole process the first time a picture is examined, and a file detected
//   as anything else counts as unknown. (Camera RAW files reach the decoder
//   as the JPEG previews of raw/RawSupport.h, never as RAW data.)
// - A picture larger than GetMaxPicturePixels() (width x height; 200
//   megapixels unless changed) is refused from its header, before any pixel
//   buffer exists. Multi-page files are measured page by page before the
//   first page is decoded.
// - Single-page pictures are read through bounded reads of an ordinary file;
//   a file whose data ends before the decoder is done is refused rather than
//   shown with its missing part filled in.
//
// Paths are library paths (backslash form); they become native paths here.

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <karvelui/CString.h>
#include <karvelui/Export.h>

// The image library's types (global, as it declares them).
struct FIBITMAP;
struct FIMULTIBITMAP;

namespace KarvelUI {

// Frees decoded pictures with the decoder that made them.
struct FreeImageDeleter {
  void operator()(FIBITMAP* bitmap) const;
  void operator()(FIMULTIBITMAP* bitmap) const;
};
using FIBitmapPtr = std::unique_ptr<FIBITMAP, FreeImageDeleter>;
using FIMultiBitmapPtr = std::unique_ptr<FIMULTIBITMAP, FreeImageDeleter>;

// The image library's format codes the system works with.
enum PictureFormat {
  PICTURE_FORMAT_UNKNOWN = -1,
  PICTURE_FORMAT_BMP = 0,
  PICTURE_FORMAT_JPEG = 2,
  PICTURE_FORMAT_PNG = 13,
  PICTURE_FORMAT_TIFF = 18,
  PICTURE_FORMAT_GIF = 25,
};

inline constexpr std::uint64_t kDefaultMaxPicturePixels = 200000000;

// The largest picture (width x height) the decoder accepts. Returns the
// previous limit; tests and the fuzz target lower it.
std::uint64_t SetMaxPicturePixels(std::uint64_t pixels);
std::uint64_t GetMaxPicturePixels();

// Where a picture's bytes come from: a file (library path) or a picture file
// image held in memory. A memory source shares its copy of the bytes with
// every multi-page picture opened from it, so frames can still be read
// after the source itself is gone.
class PictureSource {
 public:
  static PictureSource File(const CString& path);
  static PictureSource Memory(const void* data, std::size_t size);

  bool IsMemory() const { return m_pBytes != nullptr; }
  const CString& Path() const { return m_strPath; }
  const std::uint8_t* Data() const { return m_pBytes ? m_pBytes->data() : nullptr; }
  std::size_t Size() const { return m_pBytes ? m_pBytes->size() : 0; }
  const std::shared_ptr<const std::vector<std::uint8_t>>& Bytes() const { return m_pBytes; }

 private:
  CString m_strPath;
  std::shared_ptr<const std::vector<std::uint8_t>> m_pBytes;
};

// The file's format, or PICTURE_FORMAT_UNKNOWN when it cannot be read or is
// not one of the formats the viewer decodes.
int DetectPictureFormat(const CString& path);
int DetectPictureFormat(const PictureSource& source);
// GIF and TIFF: opened page by page.
bool IsMultiPageFormat(int format);

// A single-page picture as the decoder delivers it; null when it is too
// large, cut short or cannot be decoded.
FIBitmapPtr LoadPicture(const CString& path, int format);
FIBitmapPtr LoadPicture(const PictureSource& source, int format);
// The same for a picture file image in memory (any of the viewer's
// single-page formats, detected from the bytes).
FIBitmapPtr LoadPictureFromMemory(const void* data, std::size_t size);

// A multi-page file opened read-only, its pages kept in memory once read;
// null when it cannot be opened or any page is larger than the limit.
FIMultiBitmapPtr OpenMultiPagePicture(const CString& path, int format);
// The same from either source; pages of a memory source are read from the
// source's bytes, which stay alive until the picture is closed.
FIMultiBitmapPtr OpenMultiPagePicture(const PictureSource& source, int format);

// One page of a multi-page file, locked for as long as the object lives and
// handed back unchanged.
class LockedPage {
 public:
  LockedPage(FIMULTIBITMAP* file, int page);
  ~LockedPage();
  LockedPage(const LockedPage&) = delete;
  LockedPage& operator=(const LockedPage&) = delete;

  FIBITMAP* Get() const { return m_pPage; }

 private:
  FIMULTIBITMAP* m_pFile;
  FIBITMAP* m_pPage;
};

// True for a 32-bit picture of ordinary (blue, green, red, alpha) pixels.
bool Is32BitPicture(FIBITMAP* picture);
// True for a 24-bit picture of ordinary (blue, green, red) pixels.
bool Is24BitPicture(FIBITMAP* picture);
// A 32-bit copy (a plain clone when it already is one); null on failure.
FIBitmapPtr CopyAs32Bits(FIBITMAP* picture);
// Sets every pixel's alpha byte of a 32-bit picture to 255.
void MakeOpaque(FIBITMAP* picture);

// --- thumbnails -------------------------------------------------------------------

// A JPEG decoded at a reduced scale: the decoder itself shrinks by 1/2, 1/4
// or 1/8 while it decodes, which spares most of the work of a full decode
// when only a thumbnail is wanted. The file and pixel buffers are reused
// from one picture to the next, so a thumbnail loader keeps one decoder per
// thread. The same guards as LoadPicture hold: the pixel limit is checked on
// the header's size before anything is decoded, and a file whose data ends
// early, or that the decoder has any complaint about, is refused.
class ScaledJpegDecoder {
 public:
  // What Decode delivers: top-down rows of 32-bit pixels (blue, green, red,
  // alpha 255), valid until the next Decode.
  struct Picture {
    const std::uint8_t* bits = nullptr;
    int pitch = 0;
    int width = 0, height = 0;
    unsigned fullWidth = 0, fullHeight = 0;  // the picture's own size
    int denominator = 1;                     // the scale was 1 / denominator
  };

  // Larger files are left to LoadPicture, which streams them.
  static constexpr std::uint64_t kMaxFileBytes = 256u << 20;

  ScaledJpegDecoder();
  ~ScaledJpegDecoder();
  ScaledJpegDecoder(const ScaledJpegDecoder&) = delete;
  ScaledJpegDecoder& operator=(const ScaledJpegDecoder&) = delete;

  // The least size (width, height) the result must have, given the
  // picture's own size.
  using MinimumSize = std::function<std::pair<unsigned, unsigned>(unsigned width, unsigned height)>;

  // Decodes at the smallest scale whose result is still at least the minimum
  // size (or the whole picture when that is larger than the picture). False
  // when the file is no JPEG this decoder reads, is over the limits, or fails.
  bool Decode(const CString& path, const MinimumSize& minimum, Picture& out);

 private:
  void* m_pHandle;  // the decoder's instance
  std::vector<std::uint8_t> m_File;
  std::vector<std::uint8_t> m_Pixels;
};

// 32-bit pixels (blue, green, red, alpha; `pitch` bytes per row, rows from
// the top) as a PNG file image with the given text chunks; fully opaque
// pixels are stored without alpha. Empty on failure.
using PngText = std::vector<std::pair<std::string, std::string>>;
std::string EncodePng(const std::uint8_t* bits, int pitch, int width, int height, const PngText& texts);
// A text chunk a decoded PNG carried; false when there is none of that key.
bool ReadPngText(FIBITMAP* picture, const char* key, std::string& value);

// An integer tag of the page's animation metadata, as stored (unsigned);
// false when the page has no such tag or it is not an integer.
bool ReadAnimationTag(FIBITMAP* page, const char* key, std::uint32_t& value);

// --- Pictures shown large: header facts, EXIF orientation, reduced and ------
// --- cancellable loading (the image view's fast path) -------------------------

// What a picture file's header tells without decoding a pixel.
struct PictureHeader {
  int format = PICTURE_FORMAT_UNKNOWN;
  unsigned width = 0;
  unsigned height = 0;
  int orientation = 1;  // EXIF orientation, 1..8; 1 (as stored) when the file has none
};

// False when the file cannot be read, is not a viewer format, or is larger
// than the pixel limit. Multi-page files report only their format.
bool ReadPictureHeader(const CString& path, PictureHeader& header);

// EXIF orientations that the view turns by (mirrored ones, 2, 4, 5 and 7,
// are turned like their unmirrored partners and not mirrored: the render
// device draws no mirror images).
enum ExifOrientation {
  EXIF_ORIENTATION_NORMAL = 1,
  EXIF_ORIENTATION_ROTATE_180 = 3,
  EXIF_ORIENTATION_ROTATE_90 = 6,   // stored turned left: shown turned a quarter right
  EXIF_ORIENTATION_ROTATE_270 = 8,  // stored turned right: shown turned a quarter left
};
// The orientation in a decoded (or header-only) picture's EXIF data; 1 when
// it has none or an out-of-range value.
int ExifOrientationOf(FIBITMAP* picture);
// The orientation of a JPEG file, read from its header; 1 for other files.
int ReadExifOrientation(const CString& path);
// Clockwise quarter turns (0..3) that show a picture of that orientation upright.
int ExifOrientationQuarterTurns(int orientation);
// k clockwise quarter turns as the 32-bit float nearest to k x pi/2, the
// exact values the image view recognises as turns (k taken modulo 4).
float QuarterTurnAngle(int quarterTurns);
// The quarter turns (0..3) nearest to an angle in radians.
int QuarterTurnsOf(float angle);

// The largest reduction the JPEG decoder offers (2, 4 or 8) that keeps a
// width x height picture at least minWidth x minHeight; 1 when none does.
int JpegReductionFor(unsigned width, unsigned height, unsigned minWidth, unsigned minHeight);

// A single-page picture as LoadPicture gives it, a JPEG reduced by
// `reduction` (1, 2, 4 or 8) while it is decoded. A `cancel` flag set during
// the decode ends it early with null.
FIBitmapPtr LoadPictureReduced(const CString& path, int format, int reduction, const std::atomic<bool>* cancel);

// A copy of `picture` shrunk by `reduction` in each direction (box filter),
// 24 or 32 bits as the picture is; null on failure.
FIBitmapPtr ShrinkPicture(FIBITMAP* picture, int reduction);

}  // namespace KarvelUI
