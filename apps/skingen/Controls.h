#pragma once

// The pictures of a skin's controls: the tool bar's button states and
// icons, the caption's system buttons and icon, the slider and the tool
// bar's band. Each function draws one picture file; the rectangles the
// skin's KarvelView.xml names inside them follow from the style's sizes
// (ControlLayout) and are printed by WriteControlRects.

#include <ostream>

#include "Canvas.h"

namespace skingen {

struct ControlColours {
  Argb glyph;          // icons and system-button glyphs
  Argb glyphDim;       // the same on a disabled button
  Argb hover;          // button under the cursor
  Argb press;          // button held down
  Argb frame;          // thin outline of a hovered or pressed button
  Argb accent;         // keyboard focus, slider fill, pressed thumb
  Argb close;          // close button under the cursor
  Argb closePress;     // close button held down
  Argb barLine;        // line between the client area and the tool bar
  Argb barHighlight;   // the row under it
  Argb barTop;         // tool bar gradient, first and last row
  Argb barBottom;
  Argb track;          // slider groove
  Argb trackShadow;    // its top row
  Argb thumb;          // slider thumb, normal and hovered
  Argb thumbHover;
  Argb iconSky;        // caption icon: a small picture of hills under a sun
  Argb iconHills;
  Argb iconSun;
};

struct ControlStyle {
  int toolButton;      // side of a square tool button state
  int toolRadius;      // corner radius of its background
  int toolIcon;        // side of a tool icon
  int sysWidth;        // one system-button state
  int sysHeight;
  int appIcon;         // side of the caption icon
  ControlColours colours;
};

// Tool icons, in the order of their columns in ToolIcons.png.
enum ToolIcon { kIconPrev, kIconNext, kIconRotateLeft, kIconRotateRight, kIconFit, kIconActual, kIconSkin, kToolIconCount };
// System buttons, in the order of their rows in SysButtons.png.
enum SysGlyph { kSysMin, kSysMax, kSysRestore, kSysClose, kSysGlyphCount };

// ToolButton.png: the five states side by side (Normal, Focus, Press, Disable, KBFocus).
Canvas DrawToolButtonStates(const ControlStyle& style);
// ToolIcons.png: one icon per column.
Canvas DrawToolIcons(const ControlStyle& style);
// SysButtons.png: one row per glyph, its five states side by side.
Canvas DrawSysButtons(const ControlStyle& style);
// AppIcon.png.
Canvas DrawAppIcon(const ControlStyle& style);
// Slider.png: the groove (16 x 20), the fill (16 x 10) and five thumb
// states (12 x 16), side by side with a column between the stretched ones.
Canvas DrawSlider(const ControlStyle& style);
// ToolBar.png: the band's top lines and a gradient to stretch (8 x 16).
Canvas DrawToolBar(const ControlStyle& style);

// The rectangles of the pictures above, as the skin file writes them.
void WriteControlRects(std::ostream& out, const ControlStyle& style);

}  // namespace skingen
