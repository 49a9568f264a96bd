// karvelskin: tools for skin authors.
//
//   karvelskin check THEME_FOLDER [SKIN]
//       Reads the build file, the skin list and every skin (or SKIN and the
//       default skin) the way the library does and prints one line per
//       finding, "file:line: message". Exit status 0 when clean, 1 with
//       findings, 2 when the folder cannot be read.
//   karvelskin preview THEME_FOLDER --skin NAME --form ID [--size WxH] [--menu] --out FILE.png
//       Builds the form off screen in that skin, with a sample photo in its
//       image views (Photos beside the theme folder) and, with --menu, a
//       sample popup menu open, and writes the picture.
//   karvelskin preview THEME_FOLDER --all [--size WxH] --out FOLDER
//       Every form in every skin, plain and with the menu open, one PNG each
//       (SKIN-FORM.png, SKIN-FORM-menu.png), and contact-sheet.png of them all.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "Picture.h"
#include "Preview.h"
#include <karvelui/CommonString.h>
#include <karvelui/DXCore.h>
#include <karvelui/SkinChecker.h>
#include <karvelui/SkinManager.h>
#include <karvelui/UIButton.h>
#include <karvelui/UIImageBase.h>
#include <karvelui/UILabel.h>
#include <karvelui/UIList.h>
#include <karvelui/UIManager.h>
#include <karvelui/UIPanel.h>
#include <karvelui/UISlider.h>

using namespace KarvelUI;
using namespace KarvelSkin;
namespace fs = std::filesystem;

namespace {

constexpr int kUsage = 2;
constexpr int kContactCellWidth = 480;

struct Arguments {
  std::string command, theme, skin, form, out;
  std::vector<std::pair<std::string, std::string>> hostTypes;  // --type NAME=BUILTIN
  int width = 0, height = 0;
  bool menu = false, all = false;
};

void PrintUsage() {
  std::fprintf(stderr,
               "usage: karvelskin check THEME_FOLDER [SKIN] [--type NAME=BUILTIN]...\n"
               "       karvelskin preview THEME_FOLDER --skin NAME --form ID [--size WxH] [--menu] --out FILE.png\n"
               "       karvelskin preview THEME_FOLDER --all [--size WxH] --out FOLDER\n");
}

bool ParseArguments(int argc, char** argv, Arguments& args) {
  if (argc < 3) return false;
  args.command = argv[1];
  args.theme = argv[2];
  while (args.theme.size() > 1 && args.theme.back() == '/') args.theme.pop_back();
  for (int i = 3; i < argc; ++i) {
    const std::string arg = argv[i];
    const bool hasValue = i + 1 < argc;
    if (arg == "--skin" && hasValue) args.skin = argv[++i];
    else if (arg == "--form" && hasValue) args.form = argv[++i];
    else if (arg == "--out" && hasValue) args.out = argv[++i];
    else if (arg == "--size" && hasValue) {
      if (std::sscanf(argv[++i], "%dx%d", &args.width, &args.height) != 2 || args.width <= 0 || args.height <= 0) return false;
    } else if (arg == "--type" && hasValue) {
      const std::string pair = argv[++i];
      const size_t equals = pair.find('=');
      if (equals == std::string::npos || equals == 0 || equals + 1 == pair.size()) return false;
      args.hostTypes.emplace_back(pair.substr(0, equals), pair.substr(equals + 1));
    } else if (arg == "--menu") args.menu = true;
    else if (arg == "--all") args.all = true;
    else if (args.command == "check" && args.skin.empty() && arg[0] != '-') args.skin = arg;
    else return false;
  }
  if (args.command == "check") return true;
  return args.command == "preview" && !args.out.empty() && (args.all || (!args.skin.empty() && !args.form.empty()));
}

// The skin manager reads "Theme" below its application folder and saves the
// chosen skin there: a private folder with a link to the theme keeps the
// author's folder name free and untouched. Frees the library's singletons.
class Session {
 public:
  explicit Session(const std::string& theme) {
    std::string pattern = (fs::temp_directory_path() / "karvelskin-XXXXXX").string();
    if (!mkdtemp(pattern.data())) return;
    m_stage = pattern;
    std::error_code error;
    fs::create_directory_symlink(fs::absolute(theme), m_stage / "Theme", error);
    if (!error) CUISkinManager::GetInstance()->SetAppPath(CString(m_stage.string().c_str()));
  }
  ~Session() {
    if (m_device) DXCore::ExitInstance();
    CUISkinManager::FreeInstance();
    CUIManager::FreeInstance();
    CommonString::FreeInstance();
    std::error_code error;
    if (!m_stage.empty()) fs::remove_all(m_stage, error);  // the link, not the theme
  }
  bool IsReady() const { return !m_stage.empty(); }
  bool StartDevice() { return m_device = SUCCEEDED(DXCore::InitInstance()); }

 private:
  fs::path m_stage;
  bool m_device = false;
};

// A host's own control types (the viewer's CPhotoView, say) are made by the
// host's creator, which this tool does not have: each is checked as the
// built-in type it derives from, under its own name.
template <class Base>
class HostControl : public Base {
 public:
  explicit HostControl(const CString& type) { this->SetTypeName(type); }
};

std::map<CString, CString>& HostTypes() {
  static std::map<CString, CString> types;
  return types;
}

CUIControl* CreateHostType(const CString& type) {
  const auto it = HostTypes().find(type);
  if (it == HostTypes().end()) return nullptr;
  const CString& base = it->second;
  if (base == L"CUIImageBase") return new HostControl<CUIImageBase>(type);
  if (base == L"CUIButton") return new HostControl<CUIButton>(type);
  if (base == L"CUILabel") return new HostControl<CUILabel>(type);
  if (base == L"CUIPanel") return new HostControl<CUIPanel>(type);
  if (base == L"CUISlider") return new HostControl<CUISlider>(type);
  if (base == L"CUIList") return new HostControl<CUIList>(type);
  return nullptr;
}

int Check(const Arguments& args) {
  for (const auto& [name, builtIn] : args.hostTypes) HostTypes()[CString(name.c_str())] = CString(builtIn.c_str());
  if (!HostTypes().empty()) CUISkinManager::GetInstance()->RegisterObjectCreateor(&CreateHostType);
  std::vector<SkinFinding> findings;
  const SkinCheckResult result = CSkinChecker::Check(CString(args.theme.c_str()), CString(args.skin.c_str()), findings);
  for (const SkinFinding& finding : findings)
    std::printf("%s\n", CSkinChecker::FormatFinding(finding, CString(args.theme.c_str())).ToUtf8().c_str());
  return result;
}

// A photo beside the theme folder, where the viewer keeps its samples.
CString SamplePhoto(const std::string& theme) {
  const fs::path photos = fs::absolute(theme).parent_path() / "Photos";
  std::error_code error;
  std::vector<fs::path> found;
  for (const auto& entry : fs::directory_iterator(photos, error))
    if (entry.path().extension() == ".jpg") found.push_back(entry.path());
  std::sort(found.begin(), found.end());
  return found.empty() ? CString() : CString(found.front().string().c_str());
}

bool WriteForm(const CString& form, const PreviewOptions& options, const std::string& out, Picture& picture) {
  if (!PaintForm(form, options, picture)) {
    std::fprintf(stderr, "karvelskin: the build file has no form %s\n", form.ToUtf8().c_str());
    return false;
  }
  if (!SavePng(picture, out)) {
    std::fprintf(stderr, "karvelskin: cannot write %s\n", out.c_str());
    return false;
  }
  std::printf("karvelskin: wrote %s\n", out.c_str());
  return true;
}

int PreviewAll(const Arguments& args, PreviewOptions options) {
  CUISkinManager* skins = CUISkinManager::GetInstance();
  CArray<SkinItem> items;
  skins->GetAllSkinItem(items);
  const std::vector<CString> forms = BuildFormIds();
  fs::create_directories(args.out);
  std::vector<Picture> sheet;
  for (const SkinItem& item : items) {
    skins->SetCurrentSkin(item.m_strName);
    for (const CString& form : forms) {
      for (const bool menu : {false, true}) {
        options.menu = menu;
        const std::string name = item.m_strName.ToUtf8() + "-" + form.ToUtf8() + (menu ? "-menu" : "") + ".png";
        if (!WriteForm(form, options, (fs::path(args.out) / name).string(), sheet.emplace_back())) return 1;
      }
    }
  }
  const std::string out = (fs::path(args.out) / "contact-sheet.png").string();
  if (sheet.empty() || !SavePng(MakeContactSheet(sheet, static_cast<int>(forms.size()) * 2, kContactCellWidth), out)) {
    std::fprintf(stderr, "karvelskin: cannot write %s\n", out.c_str());
    return 1;
  }
  std::printf("karvelskin: wrote %s\n", out.c_str());
  return 0;
}

int Preview(const Arguments& args, Session& session) {
  // Off screen: real GL through the software rasteriser, no display needed.
  setenv("SDL_VIDEODRIVER", "offscreen", 0);
  if (!session.StartDevice()) {
    std::fprintf(stderr, "karvelskin: no graphics device object\n");
    return 1;
  }
  CUISkinManager* skins = CUISkinManager::GetInstance();
  if (!skins->InitSkinData()) {
    std::fprintf(stderr, "karvelskin: cannot read the skins in %s (try karvelskin check)\n", args.theme.c_str());
    return 2;
  }
  PreviewOptions options;
  options.width = args.width;
  options.height = args.height;
  options.menu = args.menu;
  options.photo = SamplePhoto(args.theme);
  if (args.all) return PreviewAll(args, options);
  skins->SetCurrentSkin(CString(args.skin.c_str()));
  Picture picture;
  return WriteForm(CString(args.form.c_str()), options, args.out, picture) ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  Arguments args;
  if (!ParseArguments(argc, argv, args)) {
    PrintUsage();
    return kUsage;
  }
  Session session(args.theme);
  if (!session.IsReady()) {
    std::fprintf(stderr, "karvelskin: cannot make a private folder\n");
    return kUsage;
  }
  const int status = args.command == "check" ? Check(args) : Preview(args, session);
  if (status == SKINCHECK_UNREADABLE && args.command == "check")
    std::fprintf(stderr, "karvelskin: cannot read the theme folder %s\n", args.theme.c_str());
  return status;
}
