#include "RawExtract.h"

#include "JpegEncoder.h"

#include <fcntl.h>
#include <libraw/libraw.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>

namespace ZorImgUtil {
namespace {

struct ProcessedImageDeleter {
  void operator()(libraw_processed_image_t* image) const { LibRaw::dcraw_clear_mem(image); }
};
using ProcessedImage = std::unique_ptr<libraw_processed_image_t, ProcessedImageDeleter>;

std::unique_ptr<LibRaw> NewProcessor() {
  auto raw = std::make_unique<LibRaw>(LIBRAW_OPTIONS_NONE);
  libraw_output_params_t& params = raw->imgdata.params;
  // A preview needs no full-resolution interpolation; half size is four
  // times less work and plenty for a screen.
  params.half_size = 1;
  params.use_camera_wb = 1;
  params.output_bps = 8;
  return raw;
}

bool StartsLikeJpeg(const char* data, unsigned length) {
  return data && length >= 4 && static_cast<unsigned char>(data[0]) == 0xFF &&
         static_cast<unsigned char>(data[1]) == 0xD8;
}

bool TakeJpegPreview(LibRaw& raw, std::vector<unsigned char>& jpeg) {
  if (raw.unpack_thumb() != LIBRAW_SUCCESS) return false;
  const libraw_thumbnail_t& thumb = raw.imgdata.thumbnail;
  if (thumb.tformat != LIBRAW_THUMBNAIL_JPEG || !StartsLikeJpeg(thumb.thumb, thumb.tlength)) return false;
  jpeg.assign(thumb.thumb, thumb.thumb + thumb.tlength);
  return true;
}

bool IsEightBitImage(const libraw_processed_image_t& image) {
  const unsigned long long expected = 1ull * image.width * image.height * image.colors;
  return image.type == LIBRAW_IMAGE_BITMAP && image.bits == 8 && (image.colors == 1 || image.colors == 3) &&
         image.width > 0 && image.height > 0 && image.data_size >= expected;
}

ExtractResult Develop(LibRaw& raw, unsigned long long maxPixels, std::vector<unsigned char>& jpeg) {
  const libraw_image_sizes_t& sizes = raw.imgdata.sizes;
  if (1ull * sizes.raw_width * sizes.raw_height > maxPixels) return kExtractTooLarge;
  if (raw.unpack() != LIBRAW_SUCCESS || raw.dcraw_process() != LIBRAW_SUCCESS) return kExtractDevelopFailed;
  int error = LIBRAW_SUCCESS;
  ProcessedImage image(raw.dcraw_make_mem_image(&error));
  if (!image || error != LIBRAW_SUCCESS || !IsEightBitImage(*image)) return kExtractDevelopFailed;
  return EncodeJpeg(image->data, image->width, image->height, image->colors, jpeg) ? kExtractOk
                                                                                 : kExtractEncodeFailed;
}

ExtractResult ExtractOpened(LibRaw& raw, int openResult, unsigned long long maxPixels,
                            std::vector<unsigned char>& jpeg) {
  if (openResult != LIBRAW_SUCCESS) return kExtractNotRaw;
  if (TakeJpegPreview(raw, jpeg)) return kExtractOk;
  jpeg.clear();
  return Develop(raw, maxPixels, jpeg);
}

// Closes a descriptor and removes the temporary file unless it was kept.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::string pattern) : m_path(std::move(pattern)) {
    m_fd = mkstemp(m_path.data());
    m_created = m_fd >= 0;
  }
  ~TemporaryFile() {
    if (m_fd >= 0) close(m_fd);
    if (m_created && !m_kept) unlink(m_path.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  bool IsOpen() const { return m_fd >= 0; }
  bool WriteAll(const std::vector<unsigned char>& bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
      const ssize_t written = write(m_fd, bytes.data() + done, bytes.size() - done);
      if (written < 0 && errno == EINTR) continue;
      if (written <= 0) return false;
      done += static_cast<std::size_t>(written);
    }
    return true;
  }
  bool Close() {
    const int fd = m_fd;
    m_fd = -1;
    return close(fd) == 0;
  }
  bool MoveTo(const std::string& path) {
    m_kept = std::rename(m_path.c_str(), path.c_str()) == 0;
    return m_kept;
  }

 private:
  std::string m_path;
  int m_fd = -1;
  bool m_created = false;
  bool m_kept = false;
};

}  // namespace

ExtractResult ExtractJpegFromFile(const std::string& nativePath, std::vector<unsigned char>& jpeg,
                                  unsigned long long maxPixels) {
  jpeg.clear();
  if (nativePath.empty()) return kExtractBadArguments;
  try {
    auto raw = NewProcessor();
    return ExtractOpened(*raw, raw->open_file(nativePath.c_str()), maxPixels, jpeg);
  } catch (...) {
    jpeg.clear();
    return kExtractInternalError;
  }
}

ExtractResult ExtractJpegFromMemory(const void* data, std::size_t size, std::vector<unsigned char>& jpeg,
                                    unsigned long long maxPixels) {
  jpeg.clear();
  if (!data || size == 0) return kExtractBadArguments;
  try {
    auto raw = NewProcessor();
    // LibRaw only reads the buffer; its interface is not const-correct.
    return ExtractOpened(*raw, raw->open_buffer(const_cast<void*>(data), size), maxPixels, jpeg);
  } catch (...) {
    jpeg.clear();
    return kExtractInternalError;
  }
}

bool WriteFileAtomically(const std::string& path, const std::vector<unsigned char>& bytes) {
  if (path.empty()) return false;
  TemporaryFile temporary(path + ".XXXXXX");
  return temporary.IsOpen() && temporary.WriteAll(bytes) && temporary.Close() && temporary.MoveTo(path);
}

}  // namespace ZorImgUtil
