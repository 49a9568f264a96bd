#pragma once

// Every value getter of the skin reader on one element, so a fuzz target
// reaches each value syntax (numbers, colours, rectangles, fonts, lists).

#include <karvelui/SkinReader.h>

namespace KarvelFuzz {

using namespace KarvelUI;

inline void ReadEverything(const CSkinReader& reader) {
  CString text;
  reader.GetString(text, L"");
  reader.GetString(text, L"File");
  int number = 0;
  reader.GetInt(number, L"Size");
  reader.GetBool(number, L"Hor");
  reader.GetBool(number, L"AllowSize");
  DWORD dword = 0;
  reader.GetDWORD(dword, L"Color");
  reader.GetColor(dword, L"TextColor");
  float real = 0.0f;
  reader.GetReal(real, L"Alpha");
  CSize size;
  reader.GetSize(size, L"MinSize");
  CPoint point;
  reader.GetPoint(point, L"Offset");
  CRect rect;
  reader.GetRect(rect, L"Rect", 1);
  reader.GetRect(rect, L"Bounds", 0);
  CEdge edge;
  reader.GetEdge(edge);
  LOGFONTW font{};
  reader.GetFont(font, dword, L"Font");
  _AssData ass;
  reader.GetAssData(&ass);
  _ImageConfig image;
  reader.GetImage(image, L"Image");
  _ImageEdgeConfig edgeImage;
  reader.GetImage(edgeImage, L"Edge");
  _ImageBorderConfig border;
  reader.GetImage(border, L"Border");
  _ImageConfig states[6];
  reader.Get5StateImage(states, L"Button");
  reader.Get6StateImage(states, L"Check");
}

}  // namespace KarvelFuzz
