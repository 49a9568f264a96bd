#pragma once

// Running a checker over bytes: from memory of exactly their size (so a read
// one byte too far is an address-sanitizer error, not a silent zero) or
// through a real file.

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "platform/Paths.h"
#include "render/ImageArchive.h"
#include "support/TempDir.h"

namespace KarvelTest {

inline int CheckExact(KarvelUI::CImageArchive& checker, const std::string& bytes) {
  if (bytes.empty()) return checker.CheckMemory(nullptr, 0);
  auto copy = std::make_unique<std::uint8_t[]>(bytes.size());
  std::memcpy(copy.get(), bytes.data(), bytes.size());
  return checker.CheckMemory(copy.get(), bytes.size());
}

inline int OpenWritten(KarvelUI::CImageArchive& checker, const std::string& bytes) {
  TempDir dir;
  const auto path = dir.Write("picture.bin", bytes);
  return checker.Open(KarvelUI::FromNativePath(path.string()));
}

}  // namespace KarvelTest
