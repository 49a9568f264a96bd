#pragma once

// Shared pieces of the thumbnail tests: the real thumbs.db files of the
// shared test data, compound files rewritten stream by stream (to damage a
// real file in a controlled way), and a private shared-cache folder.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <karvelui/CString.h>
#include <karvelui/ThumbnailConfig.h>
#include "platform/Paths.h"
#include "support/TempDir.h"

namespace KarvelTest {

// The thumbs.db samples; empty when the shared test data is not there. The
// main checkout sits beside the shared folder, work trees one level deeper.
std::filesystem::path ThumbsDbData();
#define KARVEL_REQUIRE_THUMBSDB_DATA()                                               \
  if (KarvelTest::ThumbsDbData().empty()) GTEST_SKIP() << "no shared thumbs.db test data"

// A compound file's streams (name, bytes) in directory order, and a new
// compound file holding the given streams.
using Streams = std::vector<std::pair<std::string, std::string>>;
Streams ReadStreams(const std::string& compoundFile);
std::string WriteCompound(const Streams& streams);
std::string& StreamBytes(Streams& streams, const std::string& name);

inline KarvelUI::CString LibraryPath(const std::filesystem::path& native) {
  return KarvelUI::FromNativePath(native.string());
}

// A record of `path` set up the way a list sets up its items.
inline std::shared_ptr<KarvelUI::_ThumbnailConfig> MakeThumb(const KarvelUI::CString& path, KarvelUI::DXCore* dx) {
  auto thumb = std::make_shared<KarvelUI::_ThumbnailConfig>();
  thumb->SetImage(path);
  thumb->SetSize(140, 140);
  thumb->SetRenderDevice(dx);
  return thumb;
}

inline KarvelUI::D3DSURFACE_DESC Desc(const KarvelUI::RefPtr<KarvelUI::IDirect3DTexture9>& texture) {
  KarvelUI::D3DSURFACE_DESC desc{};
  texture->GetLevelDesc(0, &desc);
  return desc;
}

// Points the shared thumbnail cache at a folder of the test's own (and turns
// it on) for the test's life.
class PrivateCacheHome {
 public:
  PrivateCacheHome() {
    setenv("XDG_CACHE_HOME", m_dir.Path().c_str(), 1);
    KarvelUI::_ThumbnailConfig::SetSharedCacheEnabled(1);
  }
  ~PrivateCacheHome() { KarvelUI::_ThumbnailConfig::ClearThumbDB(); }
  const std::filesystem::path& Path() const { return m_dir.Path(); }

 private:
  TempDir m_dir;
};

}  // namespace KarvelTest
