// Picture file images held in memory go through the same decode as files:
// the same texels for every format, every frame of an animation read from
// the cache's own copy of the bytes, and the same failure for a cut file.

#include "cache/CacheTestSupport.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

struct FileImageCase {
  const char* name;
  std::string bytes;
};

class FileImageTest : public CacheTest, public ::testing::WithParamInterface<int> {};

std::vector<FileImageCase> Cases() {
  std::vector<GifFrame> frames{{6, 4, 0, 0, 100, 0, Pattern}};
  for (int k = 1; k < 4; ++k) frames.push_back({1, 4, k, 0, 100, 0, Solid(0xFF000000u + 0x101010u * k)});
  return {{"jpeg", MakePicture(PICTURE_FORMAT_JPEG, 70, 9, 24, Pattern)},
          {"png", MakePicture(PICTURE_FORMAT_PNG, 9, 70, 32, Pattern)},
          {"bmp", MakePicture(PICTURE_FORMAT_BMP, 5, 5, 24, Pattern)},
          {"gif", MakeAnimatedGif(frames)}};
}

// Every texel of every frame, frame by frame.
std::vector<DWORD> AllTexels(ResourceCache& cache, tagTextureItem* item, IDirect3DDevice9* device) {
  std::vector<DWORD> texels;
  for (long f = 0; f < item->nFrameCount; ++f) {
    const tagTextureItem* frame = cache.GetFrameByIndex(item, f, device);
    if (!frame) return {};
    for (int y = 0; y < static_cast<int>(frame->TextureInfo.Height); ++y)
      for (int x = 0; x < static_cast<int>(frame->TextureInfo.Width); ++x) texels.push_back(PictureTexel(frame, x, y));
  }
  return texels;
}

}  // namespace

TEST_P(FileImageTest, DecodesLikeTheFileFramesIncluded) {
  const FileImageCase c = Cases()[static_cast<size_t>(GetParam())];
  const CString path = WriteFile(std::string(c.name) + ".pic", c.bytes);
  tagTextureItem* fromFile = Cache().GetTextureItem(path, Device());
  ASSERT_NE(fromFile, nullptr);
  tagTextureItem* fromMemory = nullptr;
  {
    const std::string transient = c.bytes;  // the frames must not need the caller's bytes
    fromMemory = Cache().LoadTextureFromFileImage(L"memory", Device(), transient.data(), transient.size(), 0);
  }
  ASSERT_NE(fromMemory, nullptr);
  EXPECT_EQ(fromMemory->nImageFormat, fromFile->nImageFormat);
  EXPECT_EQ(fromMemory->nFrameCount, fromFile->nFrameCount);
  const std::vector<DWORD> texels = AllTexels(Cache(), fromMemory, Device());
  EXPECT_FALSE(texels.empty());
  EXPECT_EQ(texels, AllTexels(Cache(), fromFile, Device()));
}

INSTANTIATE_TEST_SUITE_P(Formats, FileImageTest, ::testing::Range(0, 4),
                         [](const auto& info) { return std::string(Cases()[static_cast<size_t>(info.param)].name); });

TEST_F(CacheTest, ACutFileImageFailsLikeACutFile) {
  const std::string png = MakePicture(PICTURE_FORMAT_PNG, 40, 40, 24, Pattern);
  TraceCapture trace;
  EXPECT_EQ(Cache().LoadTextureFromFileImage(L"cut", Device(), png.data(), png.size() / 2, 0), nullptr);
  EXPECT_EQ(Cache().LoadTextureFromFileImage(L"cut", Device(), nullptr, 0, 0), nullptr);
  EXPECT_TRUE(trace.Contains(L"<ERROR> Decode Fail: cut"));
}
