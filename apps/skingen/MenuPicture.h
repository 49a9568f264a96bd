#pragma once

// The pictures of a skin's popup menu, all in one file: the menu's frame
// (a nine-part border), an invisible entry strip whose height sets every
// entry's height, the selected-entry highlight (a three-part edge), a
// separator strip, and the check mark and sub-menu arrow in their Normal,
// Focus and Disable states. Pieces keep to fixed places in the picture so
// the skins' CUIMenu entries name the same rectangles.

#include <ostream>

#include "Canvas.h"

namespace skingen {

struct MenuColours {
  Argb outline;     // 1-px frame of the menu
  Argb fill;        // menu background
  Argb highlight;   // selected entry
  Argb mark;        // check mark box
  Argb markFocus;   // check mark box of the selected entry
  Argb tick;        // the tick inside the box
  Argb dimmed;      // check mark box and arrow of a disabled entry
  Argb separator;   // the separator's line
  Argb arrow;       // sub-menu arrow
  Argb arrowFocus;  // sub-menu arrow of the selected entry
};

Canvas DrawMenuPicture(const MenuColours& colours);

// The picture elements of the skin's <CUIMenu><public> entry.
void WriteMenuImageElements(std::ostream& out, const char* file);

}  // namespace skingen
