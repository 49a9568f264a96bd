#include "FormBorder.h"

namespace skingen {

namespace {

// Natural sizes of the stretched middles and of the vertical pieces.
constexpr int kMiddleWidth = 16;
constexpr int kBeginHeight = 8;   // holds the shadow under the caption
constexpr int kMiddleHeight = 8;
constexpr int kEndHeight = 4;
constexpr int kShadowRows = 6;
constexpr int kGripDot = 2;

EdgePieces HorizontalPieces(const BorderStyle& style, int top, int bottom) {
  const int width = BorderPictureBounds(style).Width();
  return {{0, top, style.corner, bottom},
          {style.corner, top, width - style.corner, bottom},
          {width - style.corner, top, width, bottom}};
}

EdgePieces VerticalPieces(const BorderStyle& style, int left, int right) {
  const int top = style.caption;
  return {{left, top, right, top + kBeginHeight},
          {left, top + kBeginHeight, right, top + kBeginHeight + kMiddleHeight},
          {left, top + kBeginHeight + kMiddleHeight, right, top + kBeginHeight + kMiddleHeight + kEndHeight}};
}

void DrawFrame(Canvas& canvas, const BorderStyle& style) {
  const RoundedBox outer{canvas.Bounds(), double(style.radius)};
  FillRounded(canvas, outer, style.colours.outline);
  FillRounded(canvas, {Inset(outer.box, 1), style.radius - 1.0}, style.colours.border);
}

void DrawCaption(Canvas& canvas, const BorderStyle& style) {
  const BorderColours& c = style.colours;
  const int right = canvas.Width() - 1;
  const RoundedBox inside{Inset(canvas.Bounds(), 1), style.radius - 1.0};
  FillVerticalGradient(canvas, {1, 1, right, 2}, c.highlight, c.highlight, inside);
  FillVerticalGradient(canvas, {1, 2, right, style.caption - 1}, c.captionTop, c.captionBottom, inside);
  HorizontalLine(canvas, 1, right, style.caption - 1, c.accent);
}

void DrawCentre(Canvas& canvas, const BorderStyle& style) {
  const BorderColours& c = style.colours;
  const int left = style.border;
  const int right = canvas.Width() - style.border;
  const int bottom = canvas.Height() - style.border;
  FillBox(canvas, {left, style.caption, right, bottom}, c.centre);
  FillVerticalGradient(canvas, {left, style.caption, right, style.caption + kShadowRows}, c.shadow, c.centre);
  // An L of darker lines where the border meets the client area.
  VerticalLine(canvas, left - 1, style.caption, bottom, c.innerLine);
  VerticalLine(canvas, right, style.caption, bottom, c.innerLine);
  HorizontalLine(canvas, left - 1, right + 1, bottom, c.innerLine);
}

// Three dots in the bottom-right corner, inside the bottom band.
void DrawGrip(Canvas& canvas, const BorderStyle& style) {
  const int right = canvas.Width() - 3;
  const int bottom = canvas.Height() - 3;
  const int offsets[3][2] = {{0, 0}, {1, 0}, {0, 1}};
  for (const auto& offset : offsets) {
    const int x = right - kGripDot - offset[0] * style.gripSpacing;
    const int y = bottom - kGripDot - offset[1] * style.gripSpacing;
    FillBox(canvas, {x, y, x + kGripDot, y + kGripDot}, style.colours.grip);
  }
}

void WriteRect(std::ostream& out, const char* key, const Box& box) {
  out << ' ' << key << "=\"" << box.left << ", " << box.top << ", " << box.right << ", " << box.bottom << '"';
}

void WriteEdge(std::ostream& out, const char* name, const EdgePieces& pieces) {
  out << "        <" << name;
  WriteRect(out, "left", pieces.begin);
  WriteRect(out, "mid", pieces.middle);
  WriteRect(out, "right", pieces.end);
  out << "/>\n";
}

}  // namespace

Box BorderPictureBounds(const BorderStyle& style) {
  return {0, 0, 2 * style.corner + kMiddleWidth,
          style.caption + kBeginHeight + kMiddleHeight + kEndHeight + style.border};
}

BorderPieces LayOutBorder(const BorderStyle& style) {
  const Box all = BorderPictureBounds(style);
  return {HorizontalPieces(style, 0, style.caption), VerticalPieces(style, 0, style.border),
          VerticalPieces(style, all.right - style.border, all.right),
          HorizontalPieces(style, all.bottom - style.border, all.bottom),
          VerticalPieces(style, style.border, all.right - style.border)};
}

Canvas DrawFormBorder(const BorderStyle& style) {
  const Box all = BorderPictureBounds(style);
  Canvas canvas(all.Width(), all.Height());
  DrawFrame(canvas, style);
  DrawCaption(canvas, style);
  DrawCentre(canvas, style);
  DrawGrip(canvas, style);
  return canvas;
}

void WriteImageElement(std::ostream& out, const BorderStyle& style, const char* file) {
  const BorderPieces pieces = LayOutBorder(style);
  out << "      <Image File=\"" << file << "\">\n";
  WriteEdge(out, "EdgeTop", pieces.top);
  WriteEdge(out, "EdgeLeft", pieces.left);
  WriteEdge(out, "EdgeRight", pieces.right);
  WriteEdge(out, "EdgeBottom", pieces.bottom);
  WriteEdge(out, "EdgeCenter", pieces.centre);
  out << "      </Image>\n";
}

}  // namespace skingen
