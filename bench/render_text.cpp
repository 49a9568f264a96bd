// Text throughput through the render device: strings of 20 characters
// drawn per millisecond with their glyphs cached in one atlas page, in
// frames of 1000 strings (each frame presented and finished).

#include <benchmark/benchmark.h>
#include <epoxy/gl.h>

#include <chrono>

#include <karvelui/WinConstants.h>
#include "render_support.h"

using namespace KarvelUI;
using namespace KarvelBench;

namespace {

constexpr const wchar_t* kTwenty = L"Photo_2024_0815.jpeg";  // 20 characters
constexpr int kStringsPerFrame = 1000;

void BM_DrawText20(benchmark::State& state, const wchar_t* face, UINT format) {
  BenchWindow window;
  if (!window.Open(1280, 800)) {
    state.SkipWithError("no GL device");
    return;
  }
  DXCore& core = window.core;
  auto draw = [&](int i) {
    const LONG top = (i % 40) * 20, left = (i / 40 % 6) * 210;
    core.DrawTextW(kTwenty, -1, top, left, 200, 20, 12, FW_NORMAL, 0, 0, face, format, 0xFFFFFFFF);
  };
  core.BeginPaint();
  draw(0);  // shapes the string and fills the atlas
  core.EndPaint();

  core.BeginPaint();
  int drawn = 0;
  const auto start = std::chrono::steady_clock::now();
  for (auto _ : state) {
    draw(drawn);
    if (++drawn % kStringsPerFrame == 0) {
      core.EndPaint();
      glFinish();
      core.BeginPaint();
    }
  }
  core.EndPaint();
  glFinish();
  const double elapsedMs = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
  state.counters["strings/ms"] = static_cast<double>(state.iterations()) / elapsedMs;
}
BENCHMARK_CAPTURE(BM_DrawText20, default_face, L"SimSun", DT_SINGLELINE | DT_VCENTER)->UseRealTime();
BENCHMARK_CAPTURE(BM_DrawText20, ellipsis, L"DejaVu Sans", DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS)
    ->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
