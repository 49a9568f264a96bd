#pragma once

// The nine-part form border of a skin. The picture is a miniature window:
// caption band on top, side columns, bottom band, centre. Every piece of
// the skin's "Image" element is a rectangle of it, so neighbouring pieces
// meet with the colours they have on screen and stretching never shows a
// seam. Horizontal pieces (top, bottom) are uniform along x in their
// middles, vertical ones (sides, centre) along y, so they stretch cleanly.

#include <ostream>

#include "Canvas.h"

namespace skingen {

struct BorderColours {
  Argb outline;         // 1-px frame around the window
  Argb captionTop;      // caption gradient, first row under the highlight
  Argb captionBottom;   // caption gradient, last row above the accent
  Argb highlight;       // 1-px light line along the caption's top
  Argb accent;          // 1-px line between caption and client area
  Argb border;          // side columns and bottom band
  Argb innerLine;       // 1-px line where the border meets the centre
  Argb shadow;          // first centre row under the caption, fading out
  Argb centre;          // client background
  Argb grip;            // resize dots in the bottom-right corner
};

struct BorderStyle {
  int caption;       // height of the top band (the form's top border margin)
  int border;        // width of the side columns, height of the bottom band
  int corner;        // width of the corner pieces
  int radius;        // corner radius (the form's round diameters / 2)
  int gripSpacing;   // distance between the resize dots
  BorderColours colours;
};

// Source rectangles of one three-part edge: begin (left or top end),
// stretched middle, end (right or bottom end).
struct EdgePieces {
  Box begin;
  Box middle;
  Box end;
};

struct BorderPieces {
  EdgePieces top;
  EdgePieces left;
  EdgePieces right;
  EdgePieces bottom;
  EdgePieces centre;
};

// Size of the miniature window and where its pieces lie.
Box BorderPictureBounds(const BorderStyle& style);
BorderPieces LayOutBorder(const BorderStyle& style);

Canvas DrawFormBorder(const BorderStyle& style);

// The skin's <Image File=...> element for these pieces, for pasting into
// KarvelView.xml after a restyle.
void WriteImageElement(std::ostream& out, const BorderStyle& style, const char* file);

}  // namespace skingen
