#include "DngWriter.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include "support/PictureFiles.h"

namespace KarvelTest {
namespace {

struct Entry {
  std::uint16_t tag, type;  // 1 BYTE, 3 SHORT, 4 LONG
  std::vector<std::uint32_t> values;
  std::string Bytes() const {
    std::string bytes;
    for (std::uint32_t v : values)
      for (int i = 0; i < (type == 1 ? 1 : type == 3 ? 2 : 4); ++i) bytes += static_cast<char>(v >> (8 * i));
    return bytes;
  }
};

struct Directory {
  std::vector<Entry> entries;
  std::string strip;
};

// A strip directory: new-subfile type, size, bits, compression, photometric,
// strip offset, samples, rows per strip, byte count, planar configuration.
Directory Strip(std::uint32_t subfile, int width, int height, std::vector<std::uint32_t> bits,
                std::uint32_t compression, std::uint32_t photometric, std::string strip, std::uint32_t stripAt) {
  const auto samples = static_cast<std::uint32_t>(bits.size()), size = static_cast<std::uint32_t>(strip.size());
  return {{{254, 4, {subfile}}, {256, 4, {std::uint32_t(width)}}, {257, 4, {std::uint32_t(height)}},
           {258, 3, bits}, {259, 3, {compression}}, {262, 3, {photometric}}, {273, 4, {stripAt}}, {277, 3, {samples}},
           {278, 4, {std::uint32_t(height)}}, {279, 4, {size}}, {284, 3, {1}}},
          std::move(strip)};
}

// Directories in file order, built for the given directory and strip offsets.
std::vector<Directory> BuildDirectories(const DngLayout& layout, const std::vector<std::uint32_t>& directoryAt,
                                        const std::vector<std::uint32_t>& stripAt) {
  std::string sensor;  // 16-bit samples, dark top half, bright bottom half
  for (int y = 0; y < layout.sensorHeight; ++y)
    for (int x = 0; x < layout.sensorWidth; ++x) sensor += y < layout.sensorHeight / 2 ? "\x2c\x01" : "\xac\x0d";
  std::vector<Directory> dirs;
  auto preview = [&](size_t i, size_t at) {
    const DngPreview& p = layout.previews[i];
    dirs.push_back(Strip(1, p.width, p.height, {8, 8, 8}, 7 /* JPEG */, 6 /* YCbCr */, p.jpeg, stripAt[at]));
  };
  const size_t sensorIndex = layout.previews.empty() ? 0 : 1;
  if (!layout.previews.empty()) preview(0, 0);
  dirs.push_back(Strip(0, layout.sensorWidth, layout.sensorHeight, {16}, 1, 32803 /* colour filter array */,
                       sensor, stripAt[sensorIndex]));
  dirs.back().entries.push_back({33421, 3, {2, 2}});      // CFA repeat pattern
  dirs.back().entries.push_back({33422, 1, {0, 1, 1, 2}});  // R G G B
  dirs.back().entries.push_back({50717, 4, {4095}});        // white level
  for (size_t i = 1; i < layout.previews.size(); ++i) preview(i, i + 1);
  if (directoryAt.size() > 1)  // the sensor image and the other previews
    dirs[0].entries.push_back({330, 4, std::vector<std::uint32_t>(directoryAt.begin() + 1, directoryAt.end())});
  dirs[0].entries.push_back({50706, 1, {1, 4, 0, 0}});  // DNG version
  for (Directory& d : dirs)
    std::sort(d.entries.begin(), d.entries.end(), [](const Entry& a, const Entry& b) { return a.tag < b.tag; });
  return dirs;
}

void Put(std::string& out, std::uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out += static_cast<char>(value >> (8 * i));
}

// The directory's bytes at offset `at`: entries, then values too long for
// an entry, word-aligned. Directories are linked through SubIFDs, not chained.
std::string DirectoryBytes(const Directory& d, std::uint32_t at) {
  std::string out, values;
  const auto valuesAt = at + 2 + 12 * static_cast<std::uint32_t>(d.entries.size()) + 4;
  Put(out, static_cast<std::uint32_t>(d.entries.size()), 2);
  for (const Entry& e : d.entries) {
    const std::string bytes = e.Bytes();
    Put(out, e.tag, 2);
    Put(out, e.type, 2);
    Put(out, static_cast<std::uint32_t>(e.values.size()), 4);
    if (bytes.size() <= 4) {
      out += bytes + std::string(4 - bytes.size(), '\0');
    } else {
      Put(out, valuesAt + static_cast<std::uint32_t>(values.size()), 4);
      values += bytes + std::string(bytes.size() % 2, '\0');
    }
  }
  Put(out, 0, 4);
  return out + values;
}

}  // namespace

std::string MakeDng(const DngLayout& layout) {
  const size_t count = layout.previews.size() + 1;
  std::vector<std::uint32_t> directoryAt(count, 0), stripAt(count, 0);
  // Sizes do not depend on offsets: lay out once with zeros, then for real.
  auto dirs = BuildDirectories(layout, directoryAt, stripAt);
  std::uint32_t at = 8;
  for (size_t i = 0; i < count; ++i) {
    directoryAt[i] = at;
    at += static_cast<std::uint32_t>(DirectoryBytes(dirs[i], at).size());
  }
  for (size_t i = 0; i < count; ++i) {
    stripAt[i] = at;
    at += static_cast<std::uint32_t>((dirs[i].strip.size() + 1) & ~size_t(1));
  }
  dirs = BuildDirectories(layout, directoryAt, stripAt);
  std::string out = "II\x2a";
  out += '\0';
  Put(out, 8, 4);
  for (size_t i = 0; i < count; ++i) out += DirectoryBytes(dirs[i], directoryAt[i]);
  for (const Directory& d : dirs) out += d.strip + std::string(d.strip.size() % 2, '\0');
  if (out.size() != at) throw std::logic_error("DNG layout mismatch");
  return out;
}

DngPreview MakePreviewJpeg(int width, int height, unsigned rgb) {
  return {width, height, MakePicture(2 /* JPEG */, width, height, 24, [rgb](int, int) { return 0xFF000000u | rgb; })};
}

}  // namespace KarvelTest
