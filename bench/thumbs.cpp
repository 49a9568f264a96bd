#define KARVEL_BENCH_OWN_MAIN
// Thumbnails of 120 camera-like 12-megapixel JPEGs (thumbs_photos.h), loaded
// the way a thumbnail list loads them: ThumbUpdateTask workers walking lists
// of _ThumbnailConfig records, each thumbnail resampled to 140 pixels with
// its reflection, textures made on the render device. In one run, page cache
// warm, the best of three interleaved rounds (the exact path: one round),
// thumbnails per second for:
//   exact     every picture decoded whole, then resampled;
//   fast x1   JPEGs decoded at 1/2, 1/4 or 1/8 scale, one worker;
//   fast x2   the same with two workers (two lists of half the files);
//   vips      vipsthumbnail --size 140 on the same files, VIPS_CONCURRENCY=1;
// all with the desktop's shared thumbnail cache off; then the cost of writing
// that cache on a first pass, and a second pass that reads it. Last, the
// memory a loaded thumbnail holds, and whether a further pass grows it.
//
//   scripts/bench.sh thumbs      (installs vipsthumbnail, makes the photos once)

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <thread>

#include <karvelui/ThumbnailConfig.h>
#include "platform/Memory.h"
#include "platform/Paths.h"
#include "render_support.h"
#include "support/TempDir.h"
#include "thumbnails/ThumbUpdateTask.h"
#include "thumbnails/ThumbnailSource.h"
#include "thumbs_photos.h"

using namespace KarvelUI;
using namespace KarvelBench;

namespace {

constexpr int kWanted = 140;
constexpr int kRounds = 3;

// A list as the worker sees it.
class BenchList : public IThumbList {
 public:
  BenchList(const std::vector<std::filesystem::path>& photos, DXCore* dx) {
    for (const auto& photo : photos) {
      auto thumb = std::make_shared<_ThumbnailConfig>();
      thumb->SetImage(FromNativePath(photo.string()));
      thumb->SetSize(kWanted, kWanted);
      thumb->SetRenderDevice(dx);
      m_items.push_back(std::move(thumb));
    }
  }
  ~BenchList() { Stop(); }

  void Stop() {
    if (m_task) m_task->Release();
    m_task = nullptr;
  }
  void Start() { BackUpdateTask::BeginUpdateTask(m_task); }
  // Between passes, moves the selection to the first item still to load.
  bool Done() {
    if (m_loaded == static_cast<int>(m_items.size())) return true;
    if (m_task->GetState() == TASK_STATE_WAITING) {
      for (size_t i = 0; i < m_items.size(); ++i) {
        if (m_items[i]->GetState() != THUMB_STATE_NOT_LOADED) continue;
        m_selected = static_cast<int>(i);
        break;
      }
      BackUpdateTask::ResetUpdateTask(m_task);
    }
    return false;
  }
  const std::vector<std::shared_ptr<_ThumbnailConfig>>& Items() const { return m_items; }

  int GetThumbCount() override { return static_cast<int>(m_items.size()); }
  std::shared_ptr<_ThumbnailConfig> GetThumbAt(int index) override { return m_items[static_cast<size_t>(index)]; }
  int GetSelectedIndex() override { return m_selected; }
  HWND GetRepaintWindow() override { return nullptr; }
  void ItemThumbLoadedCallback(int) override { ++m_loaded; }

 private:
  std::vector<std::shared_ptr<_ThumbnailConfig>> m_items;  // fixed while the worker runs
  std::atomic<int> m_selected{-1};
  std::atomic<int> m_loaded{0};
  ThumbUpdateTask* m_task = ThumbUpdateTask::Create(this);
};

long ResidentKilobytes() {
  ReleaseFreeHeapMemory();
  long pages = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return resident * 4;
}

struct Pass {
  double seconds = 0;
  int failed = 0;
  std::vector<std::unique_ptr<BenchList>> lists;  // kept for measuring, released by the caller
};

// Loads every photo with `workers` lists of equal share; the records are
// kept only when asked for.
Pass LoadAll(const std::vector<std::filesystem::path>& photos, int workers, DXCore* dx, bool keep = false) {
  Pass pass;
  const size_t share = (photos.size() + workers - 1) / workers;
  for (size_t at = 0; at < photos.size(); at += share)
    pass.lists.push_back(std::make_unique<BenchList>(
        std::vector<std::filesystem::path>(photos.begin() + at, photos.begin() + std::min(photos.size(), at + share)), dx));
  const auto start = std::chrono::steady_clock::now();
  for (auto& list : pass.lists) list->Start();
  for (bool done = false; !done;) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    done = true;
    for (auto& list : pass.lists) done = list->Done() && done;
  }
  pass.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  for (auto& list : pass.lists) {
    list->Stop();  // the workers end: their decode buffers go with them
    for (const auto& item : list->Items()) pass.failed += item->GetState() != THUMB_STATE_LOADED;
  }
  if (!keep) pass.lists.clear();
  return pass;
}

// The fastest of a configuration's rounds: the rounds of all configurations
// interleave, so a busy moment of the machine spoils one round only.
struct Best {
  double seconds = 0;
  int failed = 0;
  void Take(const Pass& pass) {
    seconds = seconds > 0 ? std::min(seconds, pass.seconds) : pass.seconds;
    failed += pass.failed;
  }
};

double Rate(const Best& best, size_t count) { return best.seconds > 0 ? count / best.seconds : 0; }

std::string LoadAverage() {
  std::string text;
  std::getline(std::ifstream("/proc/loadavg"), text);
  return text.substr(0, text.find(' ', text.find(' ', text.find(' ') + 1) + 1));
}

double RunVips(const std::vector<std::filesystem::path>& photos) {
  if (std::system("command -v vipsthumbnail >/dev/null 2>&1") != 0) return 0;
  KarvelTest::TempDir out;
  std::string command = "VIPS_CONCURRENCY=1 vipsthumbnail --size 140 -o '" + out.Path().string() + "/%s.jpg'";
  for (const auto& photo : photos) command += " '" + photo.string() + "'";
  const auto start = std::chrono::steady_clock::now();
  if (std::system(command.c_str()) != 0) return 0;
  return photos.size() / std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Bytes of texture memory (thumbnail and reflection) per loaded thumbnail.
double TextureBytesPerThumbnail(const Pass& pass) {
  double bytes = 0;
  int count = 0;
  for (const auto& list : pass.lists) {
    for (const auto& item : list->Items()) {
      for (const RefPtr<IDirect3DTexture9>& texture : {item->GetTexture(), item->GetReflection()}) {
        D3DSURFACE_DESC desc{};
        if (texture && SUCCEEDED(texture->GetLevelDesc(0, &desc))) bytes += 4.0 * desc.Width * desc.Height;
      }
      ++count;
    }
  }
  return count ? bytes / count : 0;
}

void PrintRate(const char* what, double rate, double perThumbMs) {
  std::printf("  %-34s %8.1f thumbnails/s  (%6.1f ms each)\n", what, rate, perThumbMs);
}

void PrintRatio(const char* what, double ratio, double goal) {
  std::printf("  %-46s %6.2fx   goal >= %.1fx  %s\n", what, ratio, goal, ratio >= goal ? "met" : "NOT MET");
}

}  // namespace

int main() {
  BenchWindow window;
  if (!window.Open(320, 200)) {
    std::printf("no render device\n");
    return 1;
  }
  const std::filesystem::path folder = std::filesystem::path(GetExecutableFolderNative()) / ".." / "thumbs-photos";
  std::printf("photographs in %s\n", folder.lexically_normal().c_str());
  const std::vector<std::filesystem::path> photos = EnsurePhotos(folder);
  if (photos.empty()) {
    std::printf("could not make the photographs\n");
    return 1;
  }
  double megabytes = 0;
  for (const auto& photo : photos) megabytes += KarvelTest::TempDir::Read(photo).size() / 1e6;  // warms the page cache
  std::printf("%zu JPEGs of %d x %d, %.2f MB each on average; thumbnails of %d pixels with reflections\n\n",
              photos.size(), kPhotoWidth, kPhotoHeight, megabytes / photos.size(), kWanted);
  DXCore* dx = &window.core;
  const size_t n = photos.size();

  std::printf("load average before: %s\n", LoadAverage().c_str());
  Best exact, fast1, fast2, writing, second;
  double vips = 0;
  _ThumbnailConfig::SetSharedCacheEnabled(0);
  SetJpegFastPath(false);
  exact.Take(LoadAll(photos, 1, dx));  // one round: it is slow and far behind
  SetJpegFastPath(true);
  for (int round = 0; round < kRounds; ++round) {
    _ThumbnailConfig::SetSharedCacheEnabled(0);
    fast1.Take(LoadAll(photos, 1, dx));
    fast2.Take(LoadAll(photos, 2, dx));
    vips = std::max(vips, RunVips(photos));
    KarvelTest::TempDir cacheHome;
    setenv("XDG_CACHE_HOME", cacheHome.Path().c_str(), 1);
    _ThumbnailConfig::SetSharedCacheEnabled(1);
    writing.Take(LoadAll(photos, 1, dx));
    second.Take(LoadAll(photos, 1, dx));
  }
  std::printf("load average after:  %s\n\n", LoadAverage().c_str());

  std::printf("first pass, shared cache off (best of %d rounds):\n", kRounds);
  PrintRate("exact path (decode whole, resample)", Rate(exact, n), exact.seconds * 1000 / n);
  PrintRate("fast path, one worker", Rate(fast1, n), fast1.seconds * 1000 / n);
  PrintRate("fast path, two workers", Rate(fast2, n), fast2.seconds * 1000 / n);
  if (vips > 0)
    PrintRate("vipsthumbnail --size 140, 1 thread", vips, 1000 / vips);
  else
    std::printf("  vipsthumbnail not available (scripts/setup.sh bench installs it)\n");
  std::printf("shared cache on:\n");
  PrintRate("first pass, writing the cache", Rate(writing, n), writing.seconds * 1000 / n);
  std::printf("  %-34s %8.1f ms per thumbnail\n", "cost of writing", (writing.seconds - fast1.seconds) * 1000 / n);
  PrintRate("second pass, through the cache", Rate(second, n), second.seconds * 1000 / n);
  const int failed = exact.failed + fast1.failed + fast2.failed + writing.failed + second.failed;
  if (failed) std::printf("  %d thumbnails FAILED to load\n", failed);

  std::printf("\nratios:\n");
  if (vips > 0) PrintRatio("fast x1 / vipsthumbnail (1 thread)", Rate(fast1, n) / vips, 1.2);
  PrintRatio("fast x1 / exact", Rate(fast1, n) / Rate(exact, n), 3.5);
  PrintRatio("fast x2 / fast x1", Rate(fast2, n) / Rate(fast1, n), 1.8);
  PrintRatio("second pass via shared cache / first pass (fast x1)", Rate(second, n) / Rate(fast1, n), 10.0);
  std::printf("  (%u hardware threads)\n", std::thread::hardware_concurrency());

  // Memory: a loaded thumbnail holds its texture and its reflection (CPU
  // copies of the managed pool; a drawn one adds its GPU copy).
  _ThumbnailConfig::SetSharedCacheEnabled(0);
  const long before = ResidentKilobytes();
  Pass held = LoadAll(photos, 1, dx, true);
  const long loaded = ResidentKilobytes();
  held.lists.clear();
  const Pass again = LoadAll(photos, 1, dx, true);
  const long reloaded = ResidentKilobytes();
  std::printf("\nmemory per loaded thumbnail:\n");
  std::printf("  texture + reflection %.1f KB (goal <= 160 KB), resident %.1f KB\n",
              TextureBytesPerThumbnail(again) / 1024, static_cast<double>(loaded - before) / n);
  std::printf("  resident growth over a further pass of %zu: %ld KB\n", n, reloaded - loaded);
  return failed ? 1 : 0;
}
