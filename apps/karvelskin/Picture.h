#pragma once

// 32-bit pixels (0xAARRGGBB, rows from the top) and the PNG files and
// contact sheets made of them.

#include <string>
#include <vector>

#include <karvelui/Base.h>

namespace KarvelSkin {

struct Picture {
  int width = 0, height = 0;
  std::vector<KarvelUI::DWORD> pixels;

  KarvelUI::DWORD At(int x, int y) const { return pixels[static_cast<size_t>(y) * width + x]; }
  // Copies `other` with its top-left corner at (x, y), clipped to this picture.
  void Paste(const Picture& other, int x, int y);
};

bool SavePng(const Picture& picture, const std::string& path);
bool LoadPng(const std::string& path, Picture& picture);
// The pictures in rows of `columns`, each scaled to fit a cell `cellWidth` wide.
Picture MakeContactSheet(const std::vector<Picture>& pictures, int columns, int cellWidth);

}  // namespace KarvelSkin
