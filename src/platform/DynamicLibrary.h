#pragma once

// Loading shared libraries by the names callers pass, which are the same on
// every platform (the RAW extractor is "ZorImgUtil.dll"). "X.dll" names the
// library "libX.so"; a bare name is looked for next to this library first,
// then next to the program. A name with a folder is used in that folder only.

#include <string>
#include <vector>

#include <karvelui/CString.h>
#include <karvelui/Export.h>

namespace KarvelUI {

// "ZorImgUtil.dll" -> "libZorImgUtil.so"; the folder part, if any, is kept
// (library form). A name that already ends in ".so" is left alone.
CString MapLibraryName(const CString& name);
// The native paths a name is tried at, in order.
std::vector<std::string> LibraryCandidatePaths(const CString& name);

class DynamicLibrary {
 public:
  DynamicLibrary() = default;
  ~DynamicLibrary() { Free(); }
  DynamicLibrary(DynamicLibrary&& other) noexcept;
  DynamicLibrary& operator=(DynamicLibrary&& other) noexcept;
  DynamicLibrary(const DynamicLibrary&) = delete;
  DynamicLibrary& operator=(const DynamicLibrary&) = delete;

  // True when one of the candidate paths loaded.
  bool Load(const CString& name);
  void Free();
  bool IsLoaded() const { return m_handle != nullptr; }
  // The exported symbol, or null.
  void* GetProcAddress(const char* symbol) const;
  // The native path that was loaded, or empty.
  const std::string& LoadedPath() const { return m_path; }
  // The loader's message for the last failed Load.
  const std::string& LastError() const { return m_error; }

 private:
  void* m_handle = nullptr;
  std::string m_path;
  std::string m_error;
};

}  // namespace KarvelUI
