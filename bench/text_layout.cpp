// CPU side of text drawing: laying out strings into glyph quads.
//   Cached     - the hot path of every repaint: a string already shaped,
//                glyphs already in the atlas (reported as strings per ms).
//   Uncached   - a new 20-character string each time (shaping + lookups).
//   Measure    - DT_CALCRECT through the shared font (label and menu widths).
//   WordBreak  - a wrapped multi-line paragraph, cached.

#include <benchmark/benchmark.h>

#include <cwchar>
#include <string>

#include <karvelui/WinConstants.h>
#include "render/text/TextFont.h"

using namespace KarvelUI;

namespace {

LOGFONTW DefaultFont() {
  LOGFONTW font;
  font.lfHeight = 12;
  font.lfWeight = FW_NORMAL;
  std::wcsncpy(font.lfFaceName, L"SimSun", LF_FACESIZE - 1);
  return font;
}

constexpr const wchar_t* kTwenty = L"Photo_2024_0815.jpeg";  // 20 characters
constexpr const wchar_t* kMixed = L"相册 Holiday 2024 夏天";  // 20 characters, Latin and CJK

void ReportStringsPerMs(benchmark::State& state) {
  state.counters["strings/ms"] =
      benchmark::Counter(static_cast<double>(state.iterations()) / 1000.0, benchmark::Counter::kIsRate);
}

void BM_LayoutCached(benchmark::State& state, const wchar_t* text) {
  auto font = TextFont::GetShared(DefaultFont());
  TextLayout layout;
  const CRect rect(0, 0, 200, 20);
  font->Layout(text, -1, rect, DT_SINGLELINE | DT_VCENTER, layout);  // warm
  for (auto _ : state) {
    font->Layout(text, -1, rect, DT_SINGLELINE | DT_VCENTER, layout);
    benchmark::DoNotOptimize(layout.quads.data());
  }
  ReportStringsPerMs(state);
}
BENCHMARK_CAPTURE(BM_LayoutCached, latin20, kTwenty);
BENCHMARK_CAPTURE(BM_LayoutCached, mixed20, kMixed);

void BM_LayoutUncached(benchmark::State& state) {
  auto font = TextFont::Create(DefaultFont());
  TextLayout layout;
  const CRect rect(0, 0, 200, 20);
  wchar_t text[21];
  unsigned counter = 0;
  for (auto _ : state) {
    std::swprintf(text, 21, L"IMG_%08u_view.jpg", counter++);
    font->Layout(text, -1, rect, DT_SINGLELINE, layout);
    benchmark::DoNotOptimize(layout.quads.data());
  }
  ReportStringsPerMs(state);
}
BENCHMARK(BM_LayoutUncached);

void BM_MeasureCalcRect(benchmark::State& state) {
  const LOGFONTW font = DefaultFont();
  for (auto _ : state) {
    CRect rect;
    benchmark::DoNotOptimize(CalcTextRect(font, kTwenty, -1, rect, DT_NOCLIP));
  }
  ReportStringsPerMs(state);
}
BENCHMARK(BM_MeasureCalcRect);

void BM_WordBreakParagraph(benchmark::State& state) {
  auto font = TextFont::GetShared(DefaultFont());
  TextLayout layout;
  const wchar_t* text =
      L"The thumbnail strip loads pictures on a worker thread and shows them as "
      L"soon as they are ready; 缩略图在后台线程中加载，加载完成后立即显示。";
  const CRect rect(0, 0, 160, 400);
  for (auto _ : state) {
    font->Layout(text, -1, rect, DT_WORDBREAK, layout);
    benchmark::DoNotOptimize(layout.quads.data());
  }
}
BENCHMARK(BM_WordBreakParagraph);

}  // namespace

BENCHMARK_MAIN();
