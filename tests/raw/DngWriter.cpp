#include "DngWriter.h"

#include <FreeImage.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <stdexcept>

namespace KarvelTest {
namespace {

enum TiffType : std::uint16_t { kByte = 1, kShort = 3, kLong = 4 };

struct Entry {
  std::uint16_t tag;
  std::uint16_t type;
  std::uint32_t count;
  std::string value;  // little-endian bytes
};

struct Directory {
  std::vector<Entry> entries;
  std::string strip;
};

void Put16(std::string& out, std::uint32_t v) {
  out += char(v & 0xFF);
  out += char((v >> 8) & 0xFF);
}
void Put32(std::string& out, std::uint32_t v) {
  Put16(out, v & 0xFFFF);
  Put16(out, v >> 16);
}

Entry Shorts(std::uint16_t tag, std::initializer_list<std::uint32_t> values) {
  Entry e{tag, kShort, std::uint32_t(values.size()), {}};
  for (auto v : values) Put16(e.value, v);
  return e;
}
Entry Longs(std::uint16_t tag, const std::vector<std::uint32_t>& values) {
  Entry e{tag, kLong, std::uint32_t(values.size()), {}};
  for (auto v : values) Put32(e.value, v);
  return e;
}
Entry Bytes(std::uint16_t tag, std::initializer_list<std::uint8_t> values) {
  Entry e{tag, kByte, std::uint32_t(values.size()), {}};
  for (auto v : values) e.value += char(v);
  return e;
}
constexpr std::uint32_t kWhiteLevel = 4095;

std::string SensorPixels(int width, int height) {
  std::string pixels;
  pixels.reserve(std::size_t(width) * height * 2);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) Put16(pixels, y < height / 2 ? 300 : 3500);
  return pixels;
}

Directory SensorDirectory(const DngLayout& layout, std::uint32_t stripAt) {
  Directory d;
  d.strip = SensorPixels(layout.sensorWidth, layout.sensorHeight);
  d.entries = {Longs(254, {0}),
               Longs(256, {std::uint32_t(layout.sensorWidth)}),
               Longs(257, {std::uint32_t(layout.sensorHeight)}),
               Shorts(258, {16}),
               Shorts(259, {1}),
               Shorts(262, {32803}),
               Longs(273, {stripAt}),
               Shorts(277, {1}),
               Longs(278, {std::uint32_t(layout.sensorHeight)}),
               Longs(279, {std::uint32_t(d.strip.size())}),
               Shorts(284, {1}),
               Shorts(33421, {2, 2}),
               Bytes(33422, {0, 1, 1, 2}),
               Longs(50717, {kWhiteLevel})};
  return d;
}

Directory PreviewDirectory(const DngPreview& preview, std::uint32_t stripAt) {
  Directory d;
  d.strip = preview.jpeg;
  d.entries = {Longs(254, {1}),
               Longs(256, {std::uint32_t(preview.width)}),
               Longs(257, {std::uint32_t(preview.height)}),
               Shorts(258, {8, 8, 8}),
               Shorts(259, {7}),
               Shorts(262, {6}),
               Longs(273, {stripAt}),
               Shorts(277, {3}),
               Longs(278, {std::uint32_t(preview.height)}),
               Longs(279, {std::uint32_t(d.strip.size())}),
               Shorts(284, {1})};
  return d;
}

void AddDngTags(Directory& main, const std::vector<std::uint32_t>& subDirectories) {
  if (!subDirectories.empty()) main.entries.push_back(Longs(330, subDirectories));
  main.entries.push_back(Bytes(50706, {1, 4, 0, 0}));
}

// Directories in file order, built for the given strip and directory offsets.
std::vector<Directory> BuildDirectories(const DngLayout& layout, const std::vector<std::uint32_t>& directoryAt,
                                        const std::vector<std::uint32_t>& stripAt) {
  std::vector<Directory> dirs;
  const bool hasPreview = !layout.previews.empty();
  if (hasPreview) {
    dirs.push_back(PreviewDirectory(layout.previews[0], stripAt[0]));
    dirs.push_back(SensorDirectory(layout, stripAt[1]));
    for (std::size_t i = 1; i < layout.previews.size(); ++i)
      dirs.push_back(PreviewDirectory(layout.previews[i], stripAt[i + 1]));
    AddDngTags(dirs[0], std::vector<std::uint32_t>(directoryAt.begin() + 1, directoryAt.end()));
  } else {
    dirs.push_back(SensorDirectory(layout, stripAt[0]));
    AddDngTags(dirs[0], {});
  }
  for (Directory& d : dirs)
    std::sort(d.entries.begin(), d.entries.end(), [](const Entry& a, const Entry& b) { return a.tag < b.tag; });
  return dirs;
}

std::uint32_t DirectorySize(const Directory& d) {
  std::uint32_t size = 2 + 12 * std::uint32_t(d.entries.size()) + 4;
  for (const Entry& e : d.entries)
    if (e.value.size() > 4) size += std::uint32_t((e.value.size() + 1) & ~std::size_t(1));
  return size;
}

void WriteDirectory(std::string& out, const Directory& d) {
  const std::uint32_t at = std::uint32_t(out.size());
  std::uint32_t extra = at + 2 + 12 * std::uint32_t(d.entries.size()) + 4;
  std::string values;
  Put16(out, std::uint32_t(d.entries.size()));
  for (const Entry& e : d.entries) {
    Put16(out, e.tag);
    Put16(out, e.type);
    Put32(out, e.count);
    if (e.value.size() <= 4) {
      out += e.value + std::string(4 - e.value.size(), '\0');
    } else {
      Put32(out, extra + std::uint32_t(values.size()));
      values += e.value;
      if (values.size() % 2) values += '\0';
    }
  }
  Put32(out, 0);  // directories are linked through SubIFDs, not chained
  out += values;
}

}  // namespace

std::string MakeDng(const DngLayout& layout) {
  const std::size_t count = layout.previews.empty() ? 1 : layout.previews.size() + 1;
  std::vector<std::uint32_t> directoryAt(count, 0), stripAt(count, 0);
  // Sizes do not depend on offsets: lay out once with zeros, then for real.
  auto dirs = BuildDirectories(layout, directoryAt, stripAt);
  std::uint32_t at = 8;
  for (std::size_t i = 0; i < count; ++i) {
    directoryAt[i] = at;
    at += DirectorySize(dirs[i]);
  }
  for (std::size_t i = 0; i < count; ++i) {
    stripAt[i] = at;
    at += std::uint32_t((dirs[i].strip.size() + 1) & ~std::size_t(1));
  }
  dirs = BuildDirectories(layout, directoryAt, stripAt);

  std::string out = "II";
  Put16(out, 42);
  Put32(out, 8);
  for (const Directory& d : dirs) WriteDirectory(out, d);
  for (const Directory& d : dirs) {
    out += d.strip;
    if (out.size() % 2) out += '\0';
  }
  if (out.size() != at) throw std::logic_error("DNG layout mismatch");
  return out;
}

DngPreview MakePreviewJpeg(int width, int height, unsigned rgb) {
  struct Session {
    Session() { FreeImage_Initialise(FALSE); }
    ~Session() { FreeImage_DeInitialise(); }
  } session;
  std::unique_ptr<FIBITMAP, decltype(&FreeImage_Unload)> bitmap(FreeImage_Allocate(width, height, 24),
                                                                 &FreeImage_Unload);
  for (int y = 0; y < height; ++y) {
    auto* line = FreeImage_GetScanLine(bitmap.get(), y);
    for (int x = 0; x < width; ++x, line += 3) {
      line[FI_RGBA_RED] = (rgb >> 16) & 0xFF;
      line[FI_RGBA_GREEN] = (rgb >> 8) & 0xFF;
      line[FI_RGBA_BLUE] = rgb & 0xFF;
    }
  }
  std::unique_ptr<FIMEMORY, decltype(&FreeImage_CloseMemory)> memory(FreeImage_OpenMemory(),
                                                                     &FreeImage_CloseMemory);
  DngPreview preview{width, height, {}};
  if (!FreeImage_SaveToMemory(FIF_JPEG, bitmap.get(), memory.get(), JPEG_QUALITYGOOD | JPEG_BASELINE))
    return preview;
  BYTE* data = nullptr;
  DWORD size = 0;
  FreeImage_AcquireMemory(memory.get(), &data, &size);
  preview.jpeg.assign(reinterpret_cast<const char*>(data), size);
  return preview;
}

DecodedJpeg DecodeJpeg(const std::string& bytes) {
  struct Session {
    Session() { FreeImage_Initialise(FALSE); }
    ~Session() { FreeImage_DeInitialise(); }
  } session;
  std::string copy = bytes;
  std::unique_ptr<FIMEMORY, decltype(&FreeImage_CloseMemory)> memory(
      FreeImage_OpenMemory(reinterpret_cast<BYTE*>(copy.data()), static_cast<DWORD>(copy.size())),
      &FreeImage_CloseMemory);
  DecodedJpeg decoded;
  if (FreeImage_GetFileTypeFromMemory(memory.get(), 0) != FIF_JPEG) return decoded;
  std::unique_ptr<FIBITMAP, decltype(&FreeImage_Unload)> bitmap(FreeImage_LoadFromMemory(FIF_JPEG, memory.get(), 0),
                                                                &FreeImage_Unload);
  if (!bitmap || FreeImage_GetBPP(bitmap.get()) != 24 || FreeImage_GetHeight(bitmap.get()) < 6) return decoded;
  decoded.width = static_cast<int>(FreeImage_GetWidth(bitmap.get()));
  decoded.height = static_cast<int>(FreeImage_GetHeight(bitmap.get()));
  // Scan line 0 is the bottom row.
  decoded.bottomGreen = FreeImage_GetScanLine(bitmap.get(), 2)[FI_RGBA_GREEN];
  decoded.topGreen = FreeImage_GetScanLine(bitmap.get(), decoded.height - 3)[FI_RGBA_GREEN];
  return decoded;
}

}  // namespace KarvelTest
