#pragma once

// A device-independent bitmap of our own (32-bit pixels, top-down rows,
// 0xAARRGGBB), loading from BMP files, and the window region of all pixels
// that differ from a key colour.

#include <vector>

#include <karvelui/Base.h>

namespace KarvelUI {

class KARVELUI_API CBitmap {
 public:
  CBitmap() = default;
  CBitmap(int width, int height, DWORD fill = 0) { Create(width, height, fill); }

  // False (and nothing kept) for a non-positive size.
  bool Create(int width, int height, DWORD fill = 0);
  void DeleteObject();
  bool IsNull() const { return m_pixels.empty(); }

  int GetWidth() const { return m_nWidth; }
  int GetHeight() const { return m_nHeight; }
  // 0 outside the bitmap.
  DWORD GetPixel(int x, int y) const;
  void SetPixel(int x, int y, DWORD argb);
  const DWORD* GetBits() const { return m_pixels.data(); }
  DWORD* GetBits() { return m_pixels.data(); }

 private:
  int m_nWidth = 0;
  int m_nHeight = 0;
  std::vector<DWORD> m_pixels;
};

using HBITMAP = const CBitmap*;

// Replaces bitmap's content with the BMP file at path (1, or 0 leaving it
// empty). The file must begin with "BM", record its real size and carry the
// 40-byte info header; 1-, 4-, 8-, 16-, 24- and 32-bit uncompressed pixels
// (and 16/32-bit bit fields) are read.
KARVELUI_API BOOL LoadBitmapFromFile(CBitmap* bitmap, const CString& path);

// The region of the pixels within rc whose colour (red, green, blue; alpha
// ignored) differs from transparentColor: one rectangle, one pixel high, per
// run of such pixels, in bitmap coordinates. Null for a null bitmap or when
// rc misses the bitmap; empty when every pixel is the key.
KARVELUI_API HRGN BitmapToRegion(HBITMAP bitmap, const CRect& rc, COLORREF transparentColor);

}  // namespace KarvelUI
