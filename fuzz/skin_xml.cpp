// Arbitrary bytes as a skin file: loaded through CXmlDocument::LoadFile
// (via a file, as the library reads skins), then every element is read with
// each CSkinReader getter, included into itself and saved. Two properties
// are checked beyond memory safety: the nesting measure that guards the
// parser never reports less than the depth of the tree the parser built,
// and a saved document loads again.
//
//   scripts/fuzz.sh skin_xml 60
// or, in a build folder of one's own:
//   CC=clang CXX=clang++ cmake -S . -B build-skin-fuzz -G Ninja -DKARVEL_BUILD_FUZZ=ON \
//       -DKARVEL_SANITIZE=address,undefined -DKARVEL_BUILD_TESTS=OFF
//   cmake --build build-skin-fuzz --target fuzz_skin_xml
//   build-skin-fuzz/bin/fuzz_skin_xml -max_total_time=60 CORPUS fuzz/seeds/skin_xml

#include <stdlib.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/Paths.h"
#include <karvelui/SkinReader.h>
#include <karvelui/XmlDocument.h>
#include "skin/XmlText.h"
#include "ReadEverything.h"

using namespace KarvelUI;

namespace {

const std::filesystem::path& WorkFolder() {
  static const std::filesystem::path folder = [] {
    std::string pattern = (std::filesystem::temp_directory_path() / "fuzz-skin-xml-XXXXXX").string();
    if (!mkdtemp(pattern.data())) abort();
    return std::filesystem::path(pattern);
  }();
  return folder;
}

CString WriteInput(const std::uint8_t* data, std::size_t size) {
  const std::filesystem::path file = WorkFolder() / "input.xml";
  std::FILE* out = std::fopen(file.c_str(), "wb");
  if (!out) abort();
  if (size) std::fwrite(data, 1, size, out);
  std::fclose(out);
  return FromNativePath(file.string());
}


// Reads every element; returns the depth of the deepest one.
int Visit(void* node, int& budget) {
  int deepest = 0;
  for (void* child = CXmlDocument::GetFirstChild(node); child && budget > 0;
       child = CXmlDocument::GetNextSibling(child)) {
    --budget;
    KarvelFuzz::ReadEverything(CSkinReader(child));
    deepest = std::max(deepest, Visit(child, budget));
  }
  return deepest + 1;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const CString input = WriteInput(data, size);
  CXmlDocument doc;
  if (!doc.LoadFile(input)) return 0;

  // The root element's name is unknown; include the file under a holder
  // element and take the copy from there (the same file must load twice).
  CXmlDocument probe;
  void* holder = probe.InsertEndChild(L"holder");
  // A file of only a declaration or comments loads but has no root to include.
  if (probe.Include(input, L"holder", 0) != 1) return 0;
  void* root = CXmlDocument::GetFirstChild(holder);
  if (!root) abort();

  int budget = 4000;
  KarvelFuzz::ReadEverything(CSkinReader(root));
  const int depth = Visit(root, budget);
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (budget > 0 && depth > MeasureXmlShape(NormalizeXmlText(bytes), 1 << 20, 1 << 20).depth) abort();

  const CString rootName = CXmlDocument::GetNodeName(root);
  if (!rootName.IsEmpty() && rootName.Find(L' ') < 0) doc.Include(input, rootName, 1);
  const CString saved = FromNativePath((WorkFolder() / "saved.xml").string());
  // Including the root under itself may nest past the limit; only a tree
  // well inside it must survive the round trip.
  if (doc.SaveFile(saved) && 2 * depth + 2 <= kMaxXmlElementDepth) {
    CXmlDocument again;
    if (!again.LoadFile(saved)) abort();
  }
  return 0;
}
