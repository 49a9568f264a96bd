#define KARVEL_BENCH_OWN_MAIN
// Picture checkers against the image library's header-only probe, on the
// same folder of pictures in the same run:
//   checkers - the format's CImageArchive: map, walk the structure, size
//   probe    - FreeImage_GetFileType + FreeImage_Load(FIF_LOAD_NOPIXELS)
// Prints microseconds per file for each format and the ratio probe/checker
// (above 1: the checkers are faster).
//
//   bench_image_check            pictures generated into a temporary folder
//   bench_image_check FOLDER     the .jpg/.gif/.png/.bmp files of FOLDER

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

#include "platform/Paths.h"
#include "render/ImageArchive.h"

// After the library's headers: FreeImage defines TRUE and FALSE as macros.
#include <FreeImage.h>

namespace fs = std::filesystem;

namespace {

struct Picture {
  std::string format;  // "jpg", "gif", "png", "bmp"
  std::string native;
  std::wstring library;
};

using Bitmap = std::unique_ptr<FIBITMAP, decltype(&FreeImage_Unload)>;

Bitmap NoiseBitmap(int width, int height) {
  Bitmap bitmap(FreeImage_Allocate(width, height, 24), &FreeImage_Unload);
  unsigned state = 7;
  for (int y = 0; y < height; ++y) {
    BYTE* line = FreeImage_GetScanLine(bitmap.get(), y);
    for (int x = 0; x < width * 3; ++x) {
      // Smooth gradients with a little noise compress like photographs.
      state = state * 1103515245u + 12345u;
      line[x] = static_cast<BYTE>((x / 3 + y + (x % 3) * 60 + ((state >> 16) & 15)) & 0xFF);
    }
  }
  return bitmap;
}

// A photo-viewer folder: camera-sized JPEGs, screenshots as PNG and BMP, a
// few GIFs.
void GeneratePictures(const fs::path& folder) {
  const Bitmap photo = NoiseBitmap(3000, 2000);
  const Bitmap screen = NoiseBitmap(1280, 800);
  const Bitmap small = NoiseBitmap(640, 480);
  const Bitmap indexed(FreeImage_ColorQuantize(small.get(), FIQ_WUQUANT), &FreeImage_Unload);
  for (int i = 0; i < 6; ++i) {
    const std::string n = std::to_string(i);
    FreeImage_Save(FIF_JPEG, photo.get(), (folder / ("photo" + n + ".jpg")).c_str(), JPEG_QUALITYGOOD);
    FreeImage_Save(FIF_PNG, screen.get(), (folder / ("screen" + n + ".png")).c_str(), PNG_Z_BEST_SPEED);
    FreeImage_Save(FIF_BMP, screen.get(), (folder / ("screen" + n + ".bmp")).c_str(), BMP_DEFAULT);
    FreeImage_Save(FIF_GIF, indexed.get(), (folder / ("anim" + n + ".gif")).c_str(), GIF_DEFAULT);
  }
}

std::vector<Picture> ListPictures(const fs::path& folder) {
  std::vector<Picture> pictures;
  for (const auto& entry : fs::directory_iterator(folder)) {
    std::string ext = entry.path().extension().string();
    if (ext.size() < 2) continue;
    ext = ext.substr(1);
    std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    if (ext == "jpeg") ext = "jpg";
    if (ext != "jpg" && ext != "gif" && ext != "png" && ext != "bmp") continue;
    const std::string native = entry.path().string();
    pictures.push_back({ext, native, KarvelUI::FromNativePath(native).GetString()});
  }
  std::sort(pictures.begin(), pictures.end(), [](const Picture& a, const Picture& b) { return a.native < b.native; });
  return pictures;
}

bool CheckWithArchive(const Picture& picture) {
  std::unique_ptr<KarvelUI::CImageArchive> checker;
  if (picture.format == "jpg") checker = std::make_unique<KarvelUI::CJpgImageArchive>();
  if (picture.format == "gif") checker = std::make_unique<KarvelUI::CGifImageArchive>();
  if (picture.format == "png") checker = std::make_unique<KarvelUI::CPngImageArchive>();
  if (picture.format == "bmp") checker = std::make_unique<KarvelUI::CBmpImageArchive>();
  return checker->Open(picture.library.c_str()) && checker->GetWidth() > 0;
}

bool ProbeWithFreeImage(const Picture& picture) {
  const FREE_IMAGE_FORMAT format = FreeImage_GetFileType(picture.native.c_str(), 0);
  if (format == FIF_UNKNOWN) return false;
  const Bitmap bitmap(FreeImage_Load(format, picture.native.c_str(), FIF_LOAD_NOPIXELS), &FreeImage_Unload);
  return bitmap && FreeImage_GetWidth(bitmap.get()) > 0;
}

// Best of several rounds, in microseconds per file, for each format.
template <class Probe>
std::map<std::string, double> TimePerFile(const std::vector<Picture>& pictures, Probe probe, int rounds, int& failures) {
  std::map<std::string, double> best;
  for (int round = 0; round < rounds; ++round) {
    std::map<std::string, std::pair<double, int>> total;
    for (const Picture& picture : pictures) {
      const auto start = std::chrono::steady_clock::now();
      const bool ok = probe(picture);
      const std::chrono::duration<double, std::micro> took = std::chrono::steady_clock::now() - start;
      if (!ok && round == 0) ++failures;
      total[picture.format].first += took.count();
      total[picture.format].second += 1;
    }
    for (const auto& [format, sum] : total) {
      const double perFile = sum.first / sum.second;
      if (!best.count(format) || perFile < best[format]) best[format] = perFile;
    }
  }
  return best;
}

}  // namespace

int main(int argc, char** argv) {
  FreeImage_Initialise(FALSE);
  fs::path folder;
  fs::path generated;
  if (argc > 1) {
    folder = argv[1];
  } else {
    generated = fs::temp_directory_path() / ("karvel-bench-pictures-" + std::to_string(::getpid()));
    fs::create_directories(generated);
    std::printf("generating pictures in %s ...\n", generated.c_str());
    GeneratePictures(generated);
    folder = generated;
  }

  const std::vector<Picture> pictures = ListPictures(folder);
  int checkerFailures = 0, probeFailures = 0;
  const int rounds = 15;
  // One untimed pass each first, so both find the files in the page cache.
  TimePerFile(pictures, CheckWithArchive, 1, checkerFailures);
  TimePerFile(pictures, ProbeWithFreeImage, 1, probeFailures);
  checkerFailures = probeFailures = 0;
  const auto checker = TimePerFile(pictures, CheckWithArchive, rounds, checkerFailures);
  const auto probe = TimePerFile(pictures, ProbeWithFreeImage, rounds, probeFailures);

  std::printf("%zu pictures, best of %d rounds\n", pictures.size(), rounds);
  std::printf("%-6s %14s %14s %8s\n", "format", "checker us", "probe us", "ratio");
  double checkerSum = 0, probeSum = 0;
  for (const auto& [format, perFile] : checker) {
    const double other = probe.count(format) ? probe.at(format) : 0.0;
    std::printf("%-6s %14.1f %14.1f %8.2f\n", format.c_str(), perFile, other, perFile > 0 ? other / perFile : 0.0);
    checkerSum += perFile;
    probeSum += other;
  }
  std::printf("%-6s %14.1f %14.1f %8.2f\n", "sum", checkerSum, probeSum, checkerSum > 0 ? probeSum / checkerSum : 0.0);
  std::printf("files refused: checker %d, probe %d\n", checkerFailures, probeFailures);

  if (!generated.empty()) fs::remove_all(generated);
  FreeImage_DeInitialise();
  return 0;
}
