#pragma once

// Camera-like photographs for the thumbnail benchmark: 4000 x 3000 (12
// megapixels), a smooth scene (light falling from sky to ground, soft blobs
// of colour) under sensor grain, saved as JPEG quality 92 with 4:2:0 chroma,
// about 4.4 MB each. They are made once into a cache folder and reused while
// the folder holds all of them from the same recipe.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <FreeImage.h>

namespace KarvelBench {

inline constexpr int kPhotoCount = 120;
inline constexpr int kPhotoWidth = 4000, kPhotoHeight = 3000;
inline constexpr int kPhotoQuality = 92;
inline constexpr int kGrain = 22;  // peak of the triangular grain, in levels
inline constexpr const char* kPhotoRecipe = "photos v1: 120 x 4000x3000, q92 4:2:0, grain 22";

namespace detail {

struct Random {
  std::uint32_t state;
  std::uint32_t Next() { return state = state * 1664525u + 1013904223u; }
  double Unit() { return (Next() >> 8) / 16777216.0; }
};

inline std::uint8_t Clamp(int v) { return static_cast<std::uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v); }

// One photograph: the scene is separable (a row term plus a column term)
// plus a few blobs, so making 12 megapixels stays cheap.
inline bool MakePhoto(int index, const std::filesystem::path& file) {
  Random random{static_cast<std::uint32_t>(index * 7919 + 17)};
  FIBITMAP* bitmap = FreeImage_Allocate(kPhotoWidth, kPhotoHeight, 24);
  if (!bitmap) return false;
  double sky[3], ground[3], phase[3];
  for (int c = 0; c < 3; ++c) sky[c] = 90 + 150 * random.Unit(), ground[c] = 20 + 120 * random.Unit(), phase[c] = 6.3 * random.Unit();
  std::vector<int> column(static_cast<size_t>(kPhotoWidth) * 3);
  for (int x = 0; x < kPhotoWidth; ++x)
    for (int c = 0; c < 3; ++c) column[x * 3 + c] = static_cast<int>(25 * std::sin(x / 410.0 + phase[c]));
  struct Blob { double x, y, r; int colour[3]; } blobs[4];
  for (Blob& b : blobs) {
    b = {kPhotoWidth * random.Unit(), kPhotoHeight * random.Unit(), 200 + 500 * random.Unit(), {}};
    for (int& c : b.colour) c = static_cast<int>(120 * random.Unit()) - 60;
  }
  for (int y = 0; y < kPhotoHeight; ++y) {
    const double t = static_cast<double>(y) / kPhotoHeight;
    int row[3];
    for (int c = 0; c < 3; ++c) row[c] = static_cast<int>(sky[c] * (1 - t) + ground[c] * t);
    BYTE* out = FreeImage_GetScanLine(bitmap, kPhotoHeight - 1 - y);
    for (int x = 0; x < kPhotoWidth; ++x, out += 3) {
      const std::uint32_t r = random.Next();
      const int grain = (static_cast<int>((r >> 8) & 0xFF) + static_cast<int>((r >> 16) & 0xFF) - 255) * kGrain / 256;
      int v[3] = {row[0] + column[x * 3], row[1] + column[x * 3 + 1], row[2] + column[x * 3 + 2]};
      for (const Blob& b : blobs) {
        const double dx = x - b.x, dy = y - b.y, d = (dx * dx + dy * dy) / (b.r * b.r);
        if (d < 1)
          for (int c = 0; c < 3; ++c) v[c] += static_cast<int>(b.colour[c] * (1 - d) * (1 - d));
      }
      out[FI_RGBA_RED] = Clamp(v[0] + grain);
      out[FI_RGBA_GREEN] = Clamp(v[1] + grain);
      out[FI_RGBA_BLUE] = Clamp(v[2] + grain);
    }
  }
  const bool saved = FreeImage_Save(FIF_JPEG, bitmap, file.c_str(), kPhotoQuality | JPEG_SUBSAMPLING_420) != 0;
  FreeImage_Unload(bitmap);
  return saved;
}

}  // namespace detail

// The photographs in `folder`, made where missing; empty on failure.
inline std::vector<std::filesystem::path> EnsurePhotos(const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  const std::filesystem::path recipe = folder / "recipe.txt";
  std::string stamp;
  std::getline(std::ifstream(recipe), stamp);
  const bool current = stamp == kPhotoRecipe;
  std::vector<std::filesystem::path> photos;
  for (int i = 0; i < kPhotoCount; ++i) {
    char name[32];
    std::snprintf(name, sizeof name, "IMG_%04d.JPG", i + 1);
    const std::filesystem::path file = folder / name;
    if (!current || !std::filesystem::exists(file)) {
      if (i % 10 == 0) std::printf("  making photographs %d..%d of %d\n", i + 1, std::min(i + 10, kPhotoCount), kPhotoCount);
      if (!detail::MakePhoto(i, file)) return {};
    }
    photos.push_back(file);
  }
  std::ofstream(recipe) << kPhotoRecipe << "\n";
  return photos;
}

}  // namespace KarvelBench
