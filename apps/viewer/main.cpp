// karvelview: the sample photo viewer that hosts KarvelUI. It makes the
// calls every host makes: the device object, the string table, the skin
// data, the main form, the message loop, and the singletons freed at the end.
//
//   karvelview                       a window (or a screenshot without a display)
//   karvelview --screenshot FILE     paint the main form off screen into a PNG
//   karvelview --skin NAME           start with that skin
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
#include <cstring>
#include <string>

#include "MainForm.h"
#include "Screenshot.h"
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
    } else if (arg == "--effect" && i + 1 < argc) {
      options.effect = CString(argv[++i]);
    } else if (arg == "--soak" && i + 2 < argc) {
      options.soakSeconds = std::max(1, std::atoi(argv[++i]));
      options.soakFolder = argv[++i];
      options.screenshot = "-";  // off screen, nothing written
    } else {
      std::fprintf(stderr, "usage: %s [--screenshot FILE.png] [--skin NAME] [--effect NAME] [--soak SECONDS FOLDER]\n",
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

// Lets the form paint everything it has been asked to, then one frame more.
void PaintOnce(KarvelView::CMainForm& form) {
  MSG msg;
  while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE))
    if (!WalkPreTranslateTree(&msg)) DispatchMessageW(&msg);
  form.OnPaint(0);
}

int RunViewer(const Options& options) {
  CommonString* strings = CommonString::GetInstance();
  strings->LoadStringTable(strings->GetAppPath() + L"KarvelView.lng");
  CUISkinManager* skins = CUISkinManager::GetInstance();
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
