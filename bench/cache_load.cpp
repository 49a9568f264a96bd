#define KARVEL_BENCH_OWN_MAIN
// The picture cache against the image library alone, on the same files in
// the same run:
//   photo - a 24-megapixel JPEG to a drawable cache entry (decode, tiles and
//           the copy into the tile textures) against FreeImage_Load +
//           FreeImage_ConvertTo32Bits of the file. The overhead of tiling and
//           uploading should stay under 25%.
//           The first draw of the entry, which hands the tiles to the GPU, is
//           printed beside them.
//   gif   - the first frame of a 100-frame animated GIF (all the cache decodes
//           before it can be shown) against decoding every frame.
// Prints the best of several rounds in milliseconds and the ratios.
//
//   scripts/bench.sh cache_load

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>

#include "platform/Paths.h"
#include "render_support.h"
#include "support/PictureFiles.h"
#include "support/TempDir.h"

// After the library's headers: FreeImage defines TRUE and FALSE as macros.
#include <FreeImage.h>

using namespace KarvelUI;
using namespace KarvelBench;

namespace {

constexpr int kPhotoWidth = 6000, kPhotoHeight = 4000;
constexpr int kGifFrames = 100, kGifWidth = 480, kGifHeight = 360;
constexpr int kRounds = 5;

// Best of the rounds, in milliseconds; `prepare` runs untimed before each.
double BestMs(const std::function<void()>& prepare, const std::function<bool()>& work) {
  double best = 1e300;
  for (int round = 0; round <= kRounds; ++round) {
    prepare();
    const auto start = std::chrono::steady_clock::now();
    if (!work()) {
      std::printf("a round failed\n");
      return 0;
    }
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    if (round > 0) best = std::min(best, took.count());  // the first round warms the page cache
  }
  return best;
}

// Smooth gradients with a little noise compress like photographs.
std::uint32_t PhotoPixel(int x, int y) {
  const unsigned noise = (static_cast<unsigned>(x) * 73856093u ^ static_cast<unsigned>(y) * 19349663u) >> 28;
  return 0xFF000000u | ((x / 24 + noise) & 0xFF) << 16 | ((y / 16 + noise) & 0xFF) << 8 | ((x + y) / 40 & 0xFF);
}

// A bar moving across a still background, one position per frame.
std::vector<KarvelTest::GifFrame> GifFrames() {
  std::vector<KarvelTest::GifFrame> frames;
  for (int i = 0; i < kGifFrames; ++i) {
    frames.push_back({kGifWidth, kGifHeight, 0, 0, 40, 1, [i](int x, int y) {
                        if (x / 4 == i) return 0xFFFFFFFFu;
                        return 0xFF000000u | static_cast<std::uint32_t>((x / 40) * 20) << 16 |
                               static_cast<std::uint32_t>((y / 40) * 25) << 8;
                      }});
  }
  return frames;
}

bool DecodeWithFreeImage(const std::string& native) {
  FIBITMAP* picture = FreeImage_Load(FIF_JPEG, native.c_str(), 0);
  FIBITMAP* converted = picture ? FreeImage_ConvertTo32Bits(picture) : nullptr;
  if (picture) FreeImage_Unload(picture);
  if (converted) FreeImage_Unload(converted);
  return converted != nullptr;
}

bool DecodeEveryPage(const std::string& native) {
  FIMULTIBITMAP* gif = FreeImage_OpenMultiBitmap(FIF_GIF, native.c_str(), FALSE, TRUE, TRUE, 0);
  if (!gif) return false;
  const int pages = FreeImage_GetPageCount(gif);
  for (int i = 0; i < pages; ++i) {
    FIBITMAP* page = FreeImage_LockPage(gif, i);
    FIBITMAP* converted = page ? FreeImage_ConvertTo32Bits(page) : nullptr;
    if (converted) FreeImage_Unload(converted);
    if (page) FreeImage_UnlockPage(gif, page, FALSE);
  }
  FreeImage_CloseMultiBitmap(gif, 0);
  return pages == kGifFrames;
}

void PrintRatio(const char* what, double cacheMs, const char* otherName, double otherMs) {
  std::printf("%-6s cache %9.1f ms   %s %9.1f ms   ratio %.3f\n", what, cacheMs, otherName, otherMs,
              otherMs > 0 ? cacheMs / otherMs : 0.0);
}

}  // namespace

int main() {
  BenchWindow window;
  if (!window.Open(320, 200)) {
    std::printf("no render device\n");
    return 1;
  }
  ResourceCache& cache = *window.core.GetResourceCache();
  IDirect3DDevice9* device = window.core.GetD3DDevice();
  D3DCAPS9 caps{};
  window.core.GetD3DDeviceCaps(&caps);

  KarvelTest::TempDir folder;
  std::printf("writing a %d x %d JPEG and a %d-frame GIF ...\n", kPhotoWidth, kPhotoHeight, kGifFrames);
  const std::filesystem::path photo =
      folder.Write("photo.jpg", KarvelTest::MakePicture(2, kPhotoWidth, kPhotoHeight, 24, PhotoPixel));
  const std::filesystem::path gif = folder.Write("anim.gif", KarvelTest::MakeAnimatedGif(GifFrames()));
  const CString photoPath = FromNativePath(photo.string()), gifPath = FromNativePath(gif.string());
  std::printf("JPEG %.1f MB, GIF %.1f MB, tiles of %u pixels, best of %d rounds\n",
              std::filesystem::file_size(photo) / 1e6, std::filesystem::file_size(gif) / 1e6,
              static_cast<unsigned>(caps.MaxTextureWidth / 4), kRounds);

  auto release = [&](const CString& path) { return [&cache, device, path] { cache.ReleaseTexture(path, device, 0); }; };
  const double photoCache = BestMs(release(photoPath), [&] { return cache.GetTextureItem(photoPath, device); });
  const double photoPlain = BestMs([] {}, [&] { return DecodeWithFreeImage(photo.string()); });
  PrintRatio("photo", photoCache, "FreeImage", photoPlain);
  std::printf("       tiling and upload overhead %.1f%% (target: under 25%%)\n",
              photoPlain > 0 ? (photoCache / photoPlain - 1) * 100 : 0.0);
  const CRect screen(0, 0, 320, 200);
  const double firstDraw = BestMs(
      [&] {
        cache.ReleaseTexture(photoPath, device, 0);
        cache.GetTextureItem(photoPath, device);
      },
      [&] {
        const bool drawn = window.core.BeginPaint() == S_OK &&
                           window.core.DrawImage(photoPath, &screen, nullptr, nullptr, 0, 0xFFFFFFFF, 0) == S_OK;
        return window.core.EndPaint() == S_OK && drawn;
      });
  std::printf("       first draw of the entry (tiles to the GPU) %.1f ms\n", firstDraw);

  const double firstFrame = BestMs(release(gifPath), [&] { return cache.GetTextureItem(gifPath, device); });
  const double everyFrame = BestMs(release(gifPath), [&] {
    return cache.GetFrameByIndex(cache.GetTextureItem(gifPath, device), kGifFrames - 1, device);
  });
  const double everyPage = BestMs([] {}, [&] { return DecodeEveryPage(gif.string()); });
  PrintRatio("gif", firstFrame, "all frames (cache)", everyFrame);
  PrintRatio("", firstFrame, "all pages (FreeImage)", everyPage);
  return 0;
}
