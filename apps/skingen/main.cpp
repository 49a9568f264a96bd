// skingen <assets folder>
//
// Draws every picture of the sample assets: each skin's form border and
// control and menu pictures under Theme/<skin>/images/ and the demo photos
// under Photos/. The XML files and the string table beside them are written
// by hand; the rectangles a skin's KarvelView.xml names in the pictures are
// printed on stdout.
// Same program, same bytes: nothing depends on time or on the machine.

#include <filesystem>
#include <functional>
#include <iostream>
#include <system_error>

#include "Controls.h"
#include "FormBorder.h"
#include "ImageFiles.h"
#include "MenuPicture.h"
#include "Photos.h"
#include "StripPicture.h"

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
// Light glyphs on the dark bands, the border's accent for focus and fill.
constexpr ControlStyle kGraphiteControls{
    32, 5, 20, 28, 20, 20,
    {0xFFD5D8DE, 0xFF6A6F78, 0xFF4A4F58, 0xFF202226, 0xFF5E646E, 0xFFE8A33D, 0xFFD0463C, 0xFF9E2F27, 0xFF202226,
     0xFF464B53, 0xFF393D44, 0xFF2E3137, 0xFF1C1E22, 0xFF141518, 0xFFC9CDD4, 0xFFFFFFFF, 0xFF5B8FC7, 0xFF3E7D3A,
     0xFFE8A33D}};
constexpr ControlStyle kOceanControls{
    32, 8, 20, 32, 24, 24,
    {0xFFD8F0FA, 0xFF4A7A9A, 0xFF2A6A98, 0xFF0B2A42, 0xFF4A92C4, 0xFF3FC1E8, 0xFFD0463C, 0xFF9E2F27, 0xFF0D2C44,
     0xFF2F6E9C, 0xFF1E5783, 0xFF164468, 0xFF0A2236, 0xFF06141F, 0xFFCDEBF7, 0xFFFFFFFF, 0xFF3FC1E8, 0xFF1A4E75,
     0xFFFFE08A}};

bool MakeFolder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) std::cerr << "skingen: " << folder.string() << ": " << error.message() << '\n';
  return !error;
}

bool WriteControls(const fs::path& images, const ControlStyle& style) {
  return SavePng(DrawToolButtonStates(style), images / "ToolButton.png") &&
         SavePng(DrawToolIcons(style), images / "ToolIcons.png") &&
         SavePng(DrawSysButtons(style), images / "SysButtons.png") && SavePng(DrawAppIcon(style), images / "AppIcon.png") &&
         SavePng(DrawSlider(style), images / "Slider.png") && SavePng(DrawToolBar(style), images / "ToolBar.png");
}

bool WriteSkin(const fs::path& assets, const char* skin, const BorderStyle& style, const ControlStyle& controls) {
  const fs::path images = assets / "Theme" / skin / "images";
  if (!MakeFolder(images) || !SavePng(DrawFormBorder(style), images / "FormBorder.png")) return false;
  if (!WriteControls(images, controls)) return false;
  std::cout << "Theme/" << skin << "/KarvelView.xml, css CUIForm Main:\n";
  WriteImageElement(std::cout, style, "FormBorder.png");
  std::cout << "Theme/" << skin << "/KarvelView.xml, controls:\n";
  WriteControlRects(std::cout, controls);
  return true;
}

bool WriteMenu(const fs::path& assets, const char* skin, const MenuColours& colours) {
  const fs::path images = assets / "Theme" / skin / "images";
  if (!MakeFolder(images) || !SavePng(DrawMenuPicture(colours), images / "Menu.png")) return false;
  std::cout << "Theme/" << skin << "/KarvelView.xml, css CUIMenu public:\n";
  WriteMenuImageElements(std::cout, "Menu.png");
  return true;
}

// The strip's halo in each skin's accent, cards in its band colours.
constexpr StripColours kGraphiteStrip{0xFFE8A33D, 0xFF2B2E33, 0xFF474C55};
constexpr StripColours kOceanStrip{0xFF3FC1E8, 0xFF123A5C, 0xFF2470A6};

bool WriteStrip(const fs::path& assets, const char* skin, const StripColours& colours) {
  const fs::path images = assets / "Theme" / skin / "images";
  if (!MakeFolder(images) || !SavePng(DrawStripPicture(colours), images / "Strip.png")) return false;
  std::cout << "Theme/" << skin << "/KarvelView.xml, css CUIList ThumbList:\n";
  WriteStripImageElements(std::cout, "Strip.png");
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
  const bool written = WriteSkin(assets, "Default", kGraphite, kGraphiteControls) &&
                       WriteSkin(assets, "Ocean", kOcean, kOceanControls) &&
                       WriteMenu(assets, "Default", kGraphiteMenu) && WriteMenu(assets, "Ocean", kOceanMenu) &&
                       WriteStrip(assets, "Default", kGraphiteStrip) && WriteStrip(assets, "Ocean", kOceanStrip) &&
                       WritePhotos(assets / "Photos");
  return written ? 0 : 1;
}
