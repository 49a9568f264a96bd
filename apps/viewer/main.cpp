// karvelview: the sample photo viewer that hosts KarvelUI. It makes the
// calls every host makes: the device object, the string table, the skin
// data, the main form, the message loop, and the singletons freed at the end.
//
//   karvelview [FOLDER or FILE]      a window showing the folder's pictures in
//                                    the film strip, the file selected (the
//                                    bundled photos when none is given); a
//                                    screenshot without a display
//   karvelview --status-file FILE    also appends every status line to FILE
//   karvelview --screenshot FILE     paint the main form off screen into a PNG
//   karvelview --skin NAME           start with that skin
//   karvelview --watch-skins         reload the skin whenever its files are saved
//   karvelview --effect NAME --screenshot FILE
//                                    the same with one frame of a full-window
//                                    effect (BandedSwirlEffect) drawn over it
//   karvelview --soak SECONDS FOLDER walk the folder's pictures off screen for
//                                    that long, switching skins and opening a
//                                    menu, and report memory, files and threads
//
// The skins ("Theme"), the string table and the sample photos lie beside
// the program.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <string>

#include "MainForm.h"
#include "PathText.h"
#include "PhotoView.h"
#include "Screenshot.h"
#include "SkinWatch.h"
#include <karvelui/CommonString.h>
#include <karvelui/UIManager.h>
#include <karvelui/MessageQueue.h>
#include <karvelui/DXCore.h>
#include <karvelui/SkinManager.h>

using namespace KarvelUI;

namespace KarvelView {
bool ApplyNamedEffect(CUIForm& form, const CString& name);  // Effects.cpp
int RunSoak(CMainForm& form, int seconds, const std::string& folder);  // Soak.cpp
}

namespace {

struct Options {
  std::string screenshot;  // empty: windowed
  CString skin;
  CString effect;  // empty: none
  CString open;    // folder or file; empty: the bundled photos
  std::string statusFile;
  bool watchSkins = false;
  int soakSeconds = 0;  // 0: no soak run
  std::string soakFolder;
};

bool HasDisplay() {
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY"}) {
    const char* value = std::getenv(name);
    if (value && *value) return true;
  }
  return false;
}

bool ParseOptions(int argc, char** argv, Options& options) {
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--screenshot" && i + 1 < argc) {
      options.screenshot = argv[++i];
    } else if (arg == "--skin" && i + 1 < argc) {
      options.skin = CString(argv[++i]);
    } else if (arg == "--watch-skins") {
      options.watchSkins = true;
    } else if (arg == "--effect" && i + 1 < argc) {
      options.effect = CString(argv[++i]);
    } else if (arg == "--soak" && i + 2 < argc) {
      options.soakSeconds = std::max(1, std::atoi(argv[++i]));
      options.soakFolder = argv[++i];
      options.screenshot = "-";  // off screen, nothing written
    } else if (arg == "--status-file" && i + 1 < argc) {
      options.statusFile = argv[++i];
    } else if (!arg.empty() && arg[0] != '-' && options.open.IsEmpty()) {
      options.open = KarvelView::LibraryPath(std::filesystem::absolute(arg).lexically_normal().string());
    } else {
      std::fprintf(stderr,
                   "usage: %s [FOLDER or FILE] [--screenshot FILE.png] [--skin NAME] [--effect NAME]"
                   " [--status-file FILE] [--watch-skins] [--soak SECONDS FOLDER]\n",
                   argv[0]);
      return false;
    }
  }
  if (options.screenshot.empty() && !HasDisplay()) {
    options.screenshot = "karvelview.png";
    std::printf("karvelview: no display, painting off screen into %s\n", options.screenshot.c_str());
  }
  return true;
}

constexpr auto kSettleTimeout = std::chrono::seconds(20);
constexpr DWORD kWaitSliceMs = 10;

void PumpPending() {
  MSG msg;
  while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE))
    if (!WalkPreTranslateTree(&msg)) DispatchMessageW(&msg);
}

// Lets the form paint everything it has been asked to and the strip show
// its thumbnails and come to rest (within a time limit), then one frame more.
void PaintOnce(KarvelView::CMainForm& form) {
  const auto end = std::chrono::steady_clock::now() + kSettleTimeout;
  PumpPending();
  while (!form.GetStrip()->IsSettled() && std::chrono::steady_clock::now() < end) {
    WaitMessage(kWaitSliceMs);
    PumpPending();
  }
  // Twice: the first frame of a picture tells the status line its size.
  for (int round = 0; round < 2; ++round) {
    PumpPending();
    form.OnPaint(0);
  }
}

int RunViewer(const Options& options) {
  CommonString* strings = CommonString::GetInstance();
  strings->LoadStringTable(strings->GetAppPath() + L"KarvelView.lng");
  CUISkinManager* skins = CUISkinManager::GetInstance();
  KarvelView::CMainForm::RegisterControls();
  if (!skins->InitSkinData()) {
    std::fprintf(stderr, "karvelview: the skin files beside the program cannot be read\n");
    return 1;
  }
  if (!options.skin.IsEmpty()) skins->SetCurrentSkin(options.skin);

  auto* form = new KarvelView::CMainForm();  // a modeless form releases itself when closed
  CUIManager::GetInstance()->SetMainForm(form);
  if (!form->Open()) {
    form->Release();
    std::fprintf(stderr, "karvelview: the main window cannot be made\n");
    return 1;
  }
  // A picture off screen comes up whole: there is no next frame to finish it in.
  if (!options.screenshot.empty() && form->GetPhotoView()) form->GetPhotoView()->SetProgressiveLoading(FALSE);
  form->SetStatusFile(options.statusFile);
  form->OpenPath(options.open.IsEmpty() ? strings->GetAppPath() + L"Photos" : options.open);
  KarvelView::SkinWatch watch;
  if (options.watchSkins && !watch.Start(*form)) std::fprintf(stderr, "karvelview: the skins cannot be watched\n");
  if (options.screenshot.empty()) return RunMessageLoop();

  PaintOnce(*form);
  if (options.soakSeconds > 0) {
    const int result = KarvelView::RunSoak(*form, options.soakSeconds, options.soakFolder);
    form->Release();
    return result;
  }
  if (!options.effect.IsEmpty() && !KarvelView::ApplyNamedEffect(*form, options.effect)) {
    form->Release();
    std::fprintf(stderr, "karvelview: no effect %s (see the trace log)\n", options.effect.ToUtf8().c_str());
    return 1;
  }
  std::printf("karvelview: strip: %s\n", form->GetStrip()->Summary().ToUtf8().c_str());
  const bool written = KarvelView::WriteScreenshot(*form->GetRenderDevice(), options.screenshot);
  form->Release();
  if (!written) {
    std::fprintf(stderr, "karvelview: cannot write %s\n", options.screenshot.c_str());
    return 1;
  }
  std::printf("karvelview: wrote %s\n", options.screenshot.c_str());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (!ParseOptions(argc, argv, options)) return 2;
  // Off-screen painting needs no display: real GL through the software rasteriser.
  if (!options.screenshot.empty()) setenv("SDL_VIDEODRIVER", "offscreen", 1);

  if (FAILED(DXCore::InitInstance())) {
    std::fprintf(stderr, "karvelview: no graphics device object\n");
    return 1;
  }
  const int result = RunViewer(options);
  CUISkinManager::FreeInstance();  // saves the chosen skin
  CUIManager::FreeInstance();
  CommonString::FreeInstance();
  DXCore::ExitInstance();
  return result;
}
