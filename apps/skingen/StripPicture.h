#pragma once

// The film strip's pictures, all in one file: the halo drawn around a
// hovered or selected thumbnail (a nine-part frame: a soft glow outside the
// picture's edge and a bright line just inside it) and the plain cards drawn
// behind an item and behind the selected item.

#include <ostream>

#include "Canvas.h"

namespace skingen {

struct StripColours {
  Argb halo;          // glow and edge line
  Argb card;          // behind an item
  Argb cardSelected;  // behind the selected item
};

Canvas DrawStripPicture(const StripColours& colours);

// The picture elements of the skin's <CUIList> entry.
void WriteStripImageElements(std::ostream& out, const char* file);

}  // namespace skingen
