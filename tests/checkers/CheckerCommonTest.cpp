#include <gtest/gtest.h>

#include <memory>

#include "checkers/CheckerTesting.h"
#include "support/PictureFiles.h"

using namespace KarvelUI;
using KarvelTest::CheckExact;
using KarvelTest::OpenWritten;

namespace {

std::vector<std::unique_ptr<CImageArchive>> AllCheckers() {
  std::vector<std::unique_ptr<CImageArchive>> checkers;
  checkers.push_back(std::make_unique<CJpgImageArchive>());
  checkers.push_back(std::make_unique<CGifImageArchive>());
  checkers.push_back(std::make_unique<CPngImageArchive>());
  checkers.push_back(std::make_unique<CBmpImageArchive>());
  return checkers;
}

TEST(ImageCheckers, EachAcceptsOnlyItsOwnFormat) {
  const std::string files[] = {KarvelTest::MakeJpeg(32, 32), KarvelTest::MakeGif(32, 32),
                               KarvelTest::MakePng(32, 32), KarvelTest::MakeBmp(32, 32, 24)};
  auto checkers = AllCheckers();
  for (std::size_t c = 0; c < checkers.size(); ++c)
    for (std::size_t f = 0; f < std::size(files); ++f)
      EXPECT_EQ(CheckExact(*checkers[c], files[f]), c == f ? 1 : 0) << "checker " << c << ", file " << f;
}

TEST(ImageCheckers, MissingEmptyAndUnreadableFilesFail) {
  KarvelTest::TempDir dir;
  const auto empty = dir.Write("empty.jpg", "");
  for (auto& checker : AllCheckers()) {
    EXPECT_EQ(checker->Open(FromNativePath((dir.Path() / "missing.jpg").string())), 0);
    EXPECT_EQ(checker->Open(FromNativePath(empty.string())), 0);
    EXPECT_EQ(checker->Open(FromNativePath(dir.Path().string())), 0);  // a folder
    EXPECT_EQ(checker->Open(L""), 0);
    EXPECT_EQ(checker->GetWidth(), 0u);
    EXPECT_EQ(checker->GetHeight(), 0u);
  }
  CImageArchive base;
  EXPECT_EQ(OpenWritten(base, KarvelTest::MakePng(4, 4)), 0);
}

}  // namespace
