// karvelview --soak SECONDS FOLDER: a long run over a folder of pictures,
// for finding what a short run never shows (memory that only grows, files
// or threads left open). Every picture of the folder goes through the main
// form's render device the way the photo view takes it (the stepwise
// large-picture load, then the whole picture and each frame of an animated
// one) while the form paints; the skin changes every few seconds and a
// popup menu is opened and dismissed. Resident memory, open files and
// threads are reported after the first pass and at the end.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "MainForm.h"
#include <karvelui/DXCore.h>
#include <karvelui/IMenu.h>
#include <karvelui/MessageQueue.h>
#include <karvelui/ResourceCache.h>
#include <karvelui/SkinManager.h>
#include <karvelui/UIForm.h>
#include <karvelui/UIManager.h>

using namespace KarvelUI;

namespace KarvelView {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kSkinInterval = std::chrono::seconds(3);
constexpr auto kMenuInterval = std::chrono::seconds(5);
constexpr int kMaxSteps = 50;  // per picture: the stepwise load gets this many frames
constexpr double kStepBudgetMs = 8.0;
constexpr long kMaxFrames = 16;
constexpr int kMenuEntries = 4;

struct ProcessFigures {
  long residentKb = 0;
  long threads = 0;
  long openFiles = 0;
};

long StatusField(const std::string& name) {
  std::ifstream status("/proc/self/status");
  std::string key;
  long value = 0;
  while (status >> key) {
    if (key == name + ":") {
      status >> value;
      return value;
    }
    status.ignore(4096, '\n');
  }
  return -1;
}

ProcessFigures Measure() {
  ProcessFigures figures;
  figures.residentKb = StatusField("VmRSS");
  figures.threads = StatusField("Threads");
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) ++figures.openFiles;
  return figures;
}

void Report(const char* when, const ProcessFigures& f) {
  std::printf("soak: %s: rss_kb=%ld threads=%ld fds=%ld\n", when, f.residentKb, f.threads, f.openFiles);
  std::fflush(stdout);
}

void Pump(CMainForm& form) {
  MSG msg;
  while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE))
    if (!WalkPreTranslateTree(&msg)) DispatchMessageW(&msg);
  form.OnPaint(0);
}

void NextSkin() {
  CUISkinManager* skins = CUISkinManager::GetInstance();
  CArray<SkinItem> items;
  skins->GetAllSkinItem(items);
  if (items.GetSize() == 0) return;
  INT_PTR current = 0;
  for (INT_PTR i = 0; i < items.GetSize(); ++i)
    if (items[i].m_strName.CompareNoCase(skins->GetCurrentSkinName()) == 0) current = i;
  skins->SetCurrentSkin(items[(current + 1) % items.GetSize()].m_strName);
}

void PopAndDismissMenu(CMainForm& form) {
  auto* menu = new IMenu();  // the popup chain takes the tree over and frees it
  for (int i = 0; i < kMenuEntries; ++i) menu->AddMenu(CString(L"Entry"), i + 1, 0, i == 0);
  IMenu::PopupMenu(&form, menu, 100, 100, 0, CString());
  Pump(form);
  PostMessageW(form.GetSafeHwnd(), UI_WM_RELEASEMENU, 0, 0);  // what Escape posts
  Pump(form);
}

// One picture as the photo view takes it, then every frame of it, then released.
void ShowPicture(CMainForm& form, const CString& path, const std::vector<CString>& ahead) {
  DXCore* dx = form.GetRenderDevice();
  ResourceCache* cache = dx->GetResourceCache();
  cache->RequestViewPictures(path, ahead, CSize(480, 320), dx->GetD3DDevice(), {});
  for (int step = 0; step < kMaxSteps; ++step) {
    const ViewPicture picture = cache->StepViewPicture(path, dx->GetD3DDevice(), kStepBudgetMs);
    Pump(form);
    if (picture.nStage == VIEW_PICTURE_FULL || picture.nStage == VIEW_PICTURE_FAILED) break;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  if (tagTextureItem* item = cache->GetTextureItem(path, dx->GetD3DDevice()))
    for (long frame = 1; frame < std::min<long>(item->nFrameCount, kMaxFrames); ++frame)
      if (!cache->GetFrameByIndex(item, frame, dx->GetD3DDevice())) break;
  cache->ReleaseTexture(path, dx->GetD3DDevice(), 0);
}

std::vector<CString> PicturesIn(const std::string& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    if (entry.is_regular_file()) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  std::vector<CString> paths;
  for (const auto& file : files) paths.push_back(CString(file.string().c_str()));
  return paths;
}

}  // namespace

int RunSoak(CMainForm& form, int seconds, const std::string& folder) {
  const std::vector<CString> pictures = PicturesIn(folder);
  if (pictures.empty()) {
    std::fprintf(stderr, "karvelview: no pictures in %s\n", folder.c_str());
    return 1;
  }
  Report("start", Measure());
  const auto start = Clock::now();
  const auto end = start + std::chrono::seconds(seconds);
  auto nextSkin = start + kSkinInterval;
  auto nextMenu = start + kMenuInterval;
  size_t shown = 0;
  int passes = 0;
  while (Clock::now() < end || passes == 0) {
    const size_t i = shown % pictures.size();
    const std::vector<CString> ahead{pictures[(i + 1) % pictures.size()]};
    ShowPicture(form, pictures[i], ahead);
    if (++shown % pictures.size() == 0 && ++passes == 1) Report("after first pass", Measure());
    const auto now = Clock::now();
    if (now >= nextSkin) NextSkin(), nextSkin = now + kSkinInterval;
    if (now >= nextMenu) PopAndDismissMenu(form), nextMenu = now + kMenuInterval;
  }
  std::printf("soak: %zu pictures shown in %d passes over %zu files\n", shown, passes, pictures.size());
  Report("end", Measure());
  return 0;
}

}  // namespace KarvelView
