// skingen <assets folder>
//
// Draws every picture of the sample assets: each skin's form border and
// menu pictures under Theme/<skin>/images/ and the demo photos under Photos/. The XML files and
// the string table beside them are written by hand; the border and menu
// pieces' rectangles for a skin's KarvelView.xml are printed on stdout.
// Same program, same bytes: nothing depends on time or on the machine.

#include <filesystem>
#include <functional>
#include <iostream>
#include <system_error>

#include "FormBorder.h"
#include "ImageFiles.h"
#include "MenuPicture.h"
#include "Photos.h"

namespace fs = std::filesystem;
using namespace skingen;

namespace {

constexpr int kJpegQuality = 85;

// "Graphite": dark greys with an amber line under the caption.
constexpr BorderStyle kGraphite{32, 8, 16, 5, 3,
                                {0xFF15171A, 0xFF474C55, 0xFF34383F, 0xFF5E646E, 0xFFE8A33D, 0xFF3A3E45,
                                 0xFF202226, 0xFF1C1E22, 0xFF2B2E33, 0xFF7A808A}};
// "Ocean": blues, a thicker frame, rounder corners, a cyan line.
constexpr BorderStyle kOcean{40, 12, 24, 8, 4,
                             {0xFF06141F, 0xFF2470A6, 0xFF17507C, 0xFF4A92C4, 0xFF3FC1E8, 0xFF1A4E75,
                              0xFF0D2C44, 0xFF0A2236, 0xFF123A5C, 0xFF7FC4EE}};

// Graphite's menu: the form's greys, the amber accent on check marks.
constexpr MenuColours kGraphiteMenu{0xFF15171A, 0xFF2F3238, 0xFF4A505A, 0xFFE8A33D, 0xFFF2B65A,
                                    0xFF1C1E22, 0xFF5A5E66, 0xFF474C55, 0xFFC8CCD2, 0xFFFFFFFF};
// Ocean's menu: deep blue with cyan marks.
constexpr MenuColours kOceanMenu{0xFF06141F, 0xFF123A5C, 0xFF2470A6, 0xFF3FC1E8, 0xFF7FD8F2,
                                 0xFF06141F, 0xFF3A5A74, 0xFF2A6A98, 0xFFC8ECFA, 0xFFFFFFFF};

bool MakeFolder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) std::cerr << "skingen: " << folder.string() << ": " << error.message() << '\n';
  return !error;
}

bool WriteSkin(const fs::path& assets, const char* skin, const BorderStyle& style) {
  const fs::path images = assets / "Theme" / skin / "images";
  if (!MakeFolder(images) || !SavePng(DrawFormBorder(style), images / "FormBorder.png")) return false;
  std::cout << "Theme/" << skin << "/KarvelView.xml, css CUIForm Main:\n";
  WriteImageElement(std::cout, style, "FormBorder.png");
  return true;
}

bool WriteMenu(const fs::path& assets, const char* skin, const MenuColours& colours) {
  const fs::path images = assets / "Theme" / skin / "images";
  if (!MakeFolder(images) || !SavePng(DrawMenuPicture(colours), images / "Menu.png")) return false;
  std::cout << "Theme/" << skin << "/KarvelView.xml, css CUIMenu public:\n";
  WriteMenuImageElements(std::cout, "Menu.png");
  return true;
}

struct Photo {
  const char* name;
  std::function<Canvas()> draw;
};

bool WritePhotos(const fs::path& folder) {
  if (!MakeFolder(folder)) return false;
  const Photo jpegs[] = {
      {"Lakeside.jpg", [] { return DrawLandscape(1600, 1067, LandscapeLight::Day); }},
      {"Evening.jpg", [] { return DrawLandscape(320, 240, LandscapeLight::Evening); }},
      {"Lighthouse.jpg", [] { return DrawLighthouse(800, 1200); }},
      {"Panorama.jpg", [] { return DrawPanorama(2400, 800); }},
      {"ColourChart.jpg", [] { return DrawColourChart(1200, 800); }},
  };
  for (const Photo& photo : jpegs)
    if (!SaveJpeg(photo.draw(), folder / photo.name, kJpegQuality)) return false;
  return SavePng(DrawBubbles(480, 320), folder / "Bubbles.png") &&
         SaveAnimatedGif(DrawSpinnerFrames(96, 4), folder / "Spinner.gif", 120);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: skingen <assets folder>\n";
    return 2;
  }
  const fs::path assets = argv[1];
  const bool written =
      WriteSkin(assets, "Default", kGraphite) && WriteSkin(assets, "Ocean", kOcean) &&
      WriteMenu(assets, "Default", kGraphiteMenu) && WriteMenu(assets, "Ocean", kOceanMenu) &&
      WritePhotos(assets / "Photos");
  return written ? 0 : 1;
}
