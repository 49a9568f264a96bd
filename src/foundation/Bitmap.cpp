#include <karvelui/Bitmap.h>

#include <cstdint>
#include <cstring>
#include <optional>

#include "platform/MappedFile.h"

namespace KarvelUI {
namespace {

constexpr std::uint32_t kFileHeaderSize = 14;
constexpr std::uint32_t kInfoHeaderSize = 40;
constexpr std::uint32_t kRgb = 0;
constexpr std::uint32_t kBitFields = 3;
constexpr std::int64_t kMaxPixels = 1LL << 28;  // refuses absurd headers before allocating

std::uint32_t Read32(const std::uint8_t* p) {
  return static_cast<std::uint32_t>(p[0]) | (static_cast<std::uint32_t>(p[1]) << 8) |
         (static_cast<std::uint32_t>(p[2]) << 16) | (static_cast<std::uint32_t>(p[3]) << 24);
}
std::uint16_t Read16(const std::uint8_t* p) { return static_cast<std::uint16_t>(p[0] | (p[1] << 8)); }

struct BmpLayout {
  int width = 0;
  int height = 0;  // always positive; topDown tells the row order
  bool topDown = false;
  int bitCount = 0;
  std::uint32_t compression = 0;
  std::uint32_t pixelOffset = 0;
  std::size_t stride = 0;
  const std::uint8_t* palette = nullptr;  // BGRX entries
  std::uint32_t paletteSize = 0;
  std::uint32_t masks[3] = {0x7C00, 0x03E0, 0x001F};  // 16-bit default 5-5-5
};

// Scales a masked channel to 8 bits.
BYTE Channel(std::uint32_t value, std::uint32_t mask) {
  if (mask == 0) return 0;
  int shift = 0;
  while (!((mask >> shift) & 1)) ++shift;
  const std::uint32_t max = mask >> shift;
  return static_cast<BYTE>(((value & mask) >> shift) * 255 / max);
}

std::optional<BmpLayout> ParseHeaders(const std::uint8_t* data, std::size_t size) {
  if (size < kFileHeaderSize + kInfoHeaderSize || data[0] != 'B' || data[1] != 'M') return std::nullopt;
  if (Read32(data + 2) != size) return std::nullopt;
  const std::uint8_t* info = data + kFileHeaderSize;
  if (Read32(info) != kInfoHeaderSize) return std::nullopt;

  BmpLayout bmp;
  const auto width = static_cast<std::int32_t>(Read32(info + 4));
  const auto height = static_cast<std::int32_t>(Read32(info + 8));
  bmp.bitCount = Read16(info + 14);
  bmp.compression = Read32(info + 16);
  bmp.pixelOffset = Read32(data + 10);
  if (width <= 0 || height == 0 || height == INT32_MIN) return std::nullopt;
  bmp.width = width;
  bmp.topDown = height < 0;
  bmp.height = height < 0 ? -height : height;
  if (static_cast<std::int64_t>(bmp.width) * bmp.height > kMaxPixels) return std::nullopt;

  const int bits = bmp.bitCount;
  const bool paletted = bits == 1 || bits == 4 || bits == 8;
  if (!paletted && bits != 16 && bits != 24 && bits != 32) return std::nullopt;
  if (bmp.compression == kBitFields) {
    if (bits != 16 && bits != 32) return std::nullopt;
    const std::size_t maskEnd = kFileHeaderSize + kInfoHeaderSize + 12;
    if (size < maskEnd) return std::nullopt;
    for (int i = 0; i < 3; ++i) bmp.masks[i] = Read32(info + kInfoHeaderSize + 4 * i);
  } else if (bmp.compression != kRgb) {
    return std::nullopt;  // run-length and embedded formats are not read
  }
  if (paletted) {
    const std::uint32_t used = Read32(info + 32);
    bmp.paletteSize = used ? used : (1u << bits);
    bmp.palette = info + kInfoHeaderSize;
    const std::uint64_t paletteEnd = kFileHeaderSize + kInfoHeaderSize + 4ULL * bmp.paletteSize;
    if (bmp.paletteSize > 256 || paletteEnd > bmp.pixelOffset) return std::nullopt;
  }
  bmp.stride = ((static_cast<std::size_t>(bmp.width) * static_cast<std::size_t>(bits) + 31) / 32) * 4;
  if (bmp.pixelOffset > size || bmp.stride * static_cast<std::size_t>(bmp.height) > size - bmp.pixelOffset)
    return std::nullopt;
  return bmp;
}

DWORD PaletteColour(const BmpLayout& bmp, std::uint32_t index) {
  if (index >= bmp.paletteSize) return 0xFF000000;
  const std::uint8_t* entry = bmp.palette + 4 * index;
  return 0xFF000000 | (static_cast<DWORD>(entry[2]) << 16) | (static_cast<DWORD>(entry[1]) << 8) | entry[0];
}

DWORD DecodePixel(const BmpLayout& bmp, const std::uint8_t* row, int x) {
  switch (bmp.bitCount) {
    case 1: return PaletteColour(bmp, (row[x / 8] >> (7 - x % 8)) & 1);
    case 4: return PaletteColour(bmp, (row[x / 2] >> (x % 2 ? 0 : 4)) & 0x0F);
    case 8: return PaletteColour(bmp, row[x]);
    case 16: {
      const std::uint32_t v = Read16(row + 2 * x);
      return 0xFF000000 | (static_cast<DWORD>(Channel(v, bmp.masks[0])) << 16) |
             (static_cast<DWORD>(Channel(v, bmp.masks[1])) << 8) | Channel(v, bmp.masks[2]);
    }
    case 24: {
      const std::uint8_t* p = row + 3 * x;
      return 0xFF000000 | (static_cast<DWORD>(p[2]) << 16) | (static_cast<DWORD>(p[1]) << 8) | p[0];
    }
    default: {
      const std::uint32_t v = Read32(row + 4 * x);
      if (bmp.compression != kBitFields) return v;  // B, G, R, X in memory
      return (v & 0xFF000000) | (static_cast<DWORD>(Channel(v, bmp.masks[0])) << 16) |
             (static_cast<DWORD>(Channel(v, bmp.masks[1])) << 8) | Channel(v, bmp.masks[2]);
    }
  }
}

}  // namespace

bool CBitmap::Create(int width, int height, DWORD fill) {
  DeleteObject();
  if (width <= 0 || height <= 0) return false;
  m_nWidth = width;
  m_nHeight = height;
  m_pixels.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), fill);
  return true;
}

void CBitmap::DeleteObject() {
  m_pixels.clear();
  m_pixels.shrink_to_fit();
  m_nWidth = 0;
  m_nHeight = 0;
}

DWORD CBitmap::GetPixel(int x, int y) const {
  if (x < 0 || y < 0 || x >= m_nWidth || y >= m_nHeight) return 0;
  return m_pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth) + static_cast<std::size_t>(x)];
}

void CBitmap::SetPixel(int x, int y, DWORD argb) {
  if (x < 0 || y < 0 || x >= m_nWidth || y >= m_nHeight) return;
  m_pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth) + static_cast<std::size_t>(x)] = argb;
}

BOOL LoadBitmapFromFile(CBitmap* bitmap, const CString& path) {
  if (!bitmap) return FALSE;
  bitmap->DeleteObject();
  const MappedFile file(path);
  if (!file.IsOpen()) return FALSE;
  const auto layout = ParseHeaders(file.Data(), file.Size());
  if (!layout) return FALSE;
  const BmpLayout& bmp = *layout;
  bitmap->Create(bmp.width, bmp.height);
  for (int y = 0; y < bmp.height; ++y) {
    const int fileRow = bmp.topDown ? y : bmp.height - 1 - y;
    const std::uint8_t* row = file.Data() + bmp.pixelOffset + static_cast<std::size_t>(fileRow) * bmp.stride;
    for (int x = 0; x < bmp.width; ++x) bitmap->SetPixel(x, y, DecodePixel(bmp, row, x));
  }
  return TRUE;
}

HRGN BitmapToRegion(HBITMAP bitmap, const CRect& rc, COLORREF transparentColor) {
  if (!bitmap || bitmap->IsNull()) return nullptr;
  CRect area;
  if (!area.IntersectRect(CRect(0, 0, bitmap->GetWidth(), bitmap->GetHeight()), rc)) return nullptr;
  // The key as a pixel value: COLORREF keeps red in its low byte.
  const DWORD key = (static_cast<DWORD>(GetRValue(transparentColor)) << 16) |
                    (static_cast<DWORD>(GetGValue(transparentColor)) << 8) | GetBValue(transparentColor);
  auto region = std::make_unique<Region>();
  for (int y = area.top; y < area.bottom; ++y) {
    int runStart = -1;
    for (int x = area.left; x < area.right; ++x) {
      const bool opaque = (bitmap->GetPixel(x, y) & 0x00FFFFFF) != key;
      if (opaque && runStart < 0) runStart = x;
      if (!opaque && runStart >= 0) {
        region->AddRect(CRect(runStart, y, x, y + 1));
        runStart = -1;
      }
    }
    if (runStart >= 0) region->AddRect(CRect(runStart, y, area.right, y + 1));
  }
  return region;
}

}  // namespace KarvelUI
