#include "MenuPicture.h"

namespace skingen {

namespace {

// Where the pieces lie (left, top, right, bottom; right and bottom outside).
constexpr int kPictureWidth = 56;
constexpr int kPictureHeight = 56;
constexpr Box kFrame{0, 0, 24, 24};       // nine-part border, 4-px bands
constexpr int kBand = 4;
constexpr Box kEntry{24, 0, 32, 22};      // transparent: entries show the frame's fill
constexpr Box kHighlight{32, 0, 56, 22};  // ends 6 px wide, stretched middle
constexpr int kHighlightEnd = 6;
constexpr double kHighlightRadius = 3.0;
constexpr Box kSeparator{24, 24, 32, 31};  // line on its middle row
constexpr int kStateSize = 16;             // check marks at y 32, arrows at y 48
constexpr int kMarksTop = 32;
constexpr int kArrowSize = 8;
constexpr int kArrowsTop = 48;
constexpr double kMarkRadius = 3.0;

// Normal, Focus, Disable: the states a menu draws.
constexpr const char* kStateKeys[] = {"Normal", "Focus", "Disable"};

void DrawFrame(Canvas& canvas, const MenuColours& c) {
  FillBox(canvas, kFrame, c.outline);
  FillBox(canvas, Inset(kFrame, 1), c.fill);
}

void DrawHighlight(Canvas& canvas, const MenuColours& c) {
  FillRounded(canvas, {kHighlight, kHighlightRadius}, c.highlight);
}

void DrawSeparator(Canvas& canvas, const MenuColours& c) {
  HorizontalLine(canvas, kSeparator.left, kSeparator.right, kSeparator.top + kSeparator.Height() / 2, c.separator);
}

// A stroke of round dabs from (x0, y0) to (x1, y1).
void Stroke(Canvas& canvas, double x0, double y0, double x1, double y1, Argb colour) {
  constexpr int kDabs = 12;
  for (int i = 0; i <= kDabs; ++i) {
    const double t = double(i) / kDabs;
    FillDisc(canvas, {x0 + (x1 - x0) * t, y0 + (y1 - y0) * t, 1.0}, colour);
  }
}

void DrawMark(Canvas& canvas, int left, Argb box, Argb tick) {
  const Box area{left, kMarksTop, left + kStateSize, kMarksTop + kStateSize};
  FillRounded(canvas, {area, kMarkRadius}, box);
  // The tick keeps to the upper left, so the box's lower right stays plain.
  Stroke(canvas, left + 3.5, kMarksTop + 7.5, left + 6.0, kMarksTop + 10.0, tick);
  Stroke(canvas, left + 6.0, kMarksTop + 10.0, left + 11.0, kMarksTop + 4.0, tick);
}

// A right-pointing triangle, as an upper and a lower half.
void DrawArrow(Canvas& canvas, int left, Argb colour) {
  const double x0 = left + 2.0, x1 = left + 6.0;
  const double top = kArrowsTop + 1.0, middle = kArrowsTop + 4.0, bottom = kArrowsTop + 7.0;
  FillTrapezoid(canvas, {top, middle, x0, x0, x0, x1}, colour);
  FillTrapezoid(canvas, {middle, bottom, x0, x1, x0, x0}, colour);
}

Box StateBox(int index, int top, int size) { return {index * size, top, (index + 1) * size, top + size}; }

void WriteRect(std::ostream& out, const char* key, const Box& box) {
  out << ' ' << key << "=\"" << box.left << ", " << box.top << ", " << box.right << ", " << box.bottom << '"';
}

void WriteEdge(std::ostream& out, const char* name, const Box& begin, const Box& middle, const Box& end) {
  out << "          <" << name;
  WriteRect(out, "left", begin);
  WriteRect(out, "mid", middle);
  WriteRect(out, "right", end);
  out << "/>\n";
}

// The nine pieces of the frame: rows (top band, middle, bottom band) by
// columns (left band, middle, right band).
Box FramePiece(int row, int column) {
  const int xs[] = {kFrame.left, kFrame.left + kBand, kFrame.right - kBand, kFrame.right};
  const int ys[] = {kFrame.top, kFrame.top + kBand, kFrame.bottom - kBand, kFrame.bottom};
  return {xs[column], ys[row], xs[column + 1], ys[row + 1]};
}

// A vertical edge cut from one column: its top end, middle and bottom end.
void WriteVerticalEdge(std::ostream& out, const char* name, int column) {
  const Box full = FramePiece(1, column);
  const int third = full.Height() / 3;
  WriteEdge(out, name, {full.left, full.top, full.right, full.top + third},
            {full.left, full.top + third, full.right, full.bottom - third},
            {full.left, full.bottom - third, full.right, full.bottom});
}

void WriteStates(std::ostream& out, const char* name, const char* file, int top, int size) {
  out << "        <" << name << " File=\"" << file << '"';
  for (int i = 0; i < 3; ++i) WriteRect(out, kStateKeys[i], StateBox(i, top, size));
  out << "/>\n";
}

}  // namespace

Canvas DrawMenuPicture(const MenuColours& c) {
  Canvas canvas(kPictureWidth, kPictureHeight);
  DrawFrame(canvas, c);
  DrawHighlight(canvas, c);
  DrawSeparator(canvas, c);
  const Argb boxes[] = {c.mark, c.markFocus, c.dimmed};
  const Argb arrows[] = {c.arrow, c.arrowFocus, c.dimmed};
  for (int i = 0; i < 3; ++i) {
    DrawMark(canvas, StateBox(i, kMarksTop, kStateSize).left, boxes[i], c.tick);
    DrawArrow(canvas, StateBox(i, kArrowsTop, kArrowSize).left, arrows[i]);
  }
  return canvas;
}

void WriteMenuImageElements(std::ostream& out, const char* file) {
  out << "        <BkImage File=\"" << file << "\">\n";
  WriteEdge(out, "EdgeTop", FramePiece(0, 0), FramePiece(0, 1), FramePiece(0, 2));
  WriteVerticalEdge(out, "EdgeLeft", 0);
  WriteVerticalEdge(out, "EdgeRight", 2);
  WriteEdge(out, "EdgeBottom", FramePiece(2, 0), FramePiece(2, 1), FramePiece(2, 2));
  WriteVerticalEdge(out, "EdgeCenter", 1);
  out << "        </BkImage>\n";
  out << "        <NormalImage File=\"" << file << '"';
  WriteRect(out, "Rect", kEntry);
  out << "/>\n";
  out << "        <FocusedImage File=\"" << file << "\" Hor=\"true\"";
  WriteRect(out, "left", {kHighlight.left, kHighlight.top, kHighlight.left + kHighlightEnd, kHighlight.bottom});
  WriteRect(out, "mid",
            {kHighlight.left + kHighlightEnd, kHighlight.top, kHighlight.right - kHighlightEnd, kHighlight.bottom});
  WriteRect(out, "right", {kHighlight.right - kHighlightEnd, kHighlight.top, kHighlight.right, kHighlight.bottom});
  out << "/>\n";
  WriteStates(out, "CheckedImage", file, kMarksTop, kStateSize);
  WriteStates(out, "SubmenuImage", file, kArrowsTop, kArrowSize);
  out << "        <SeperatorImage File=\"" << file << '"';
  WriteRect(out, "Rect", kSeparator);
  out << "/>\n";
}

}  // namespace skingen
