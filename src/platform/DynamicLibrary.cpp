#include "platform/DynamicLibrary.h"

#include <dlfcn.h>

#include <utility>

#include "platform/Paths.h"

namespace KarvelUI {
namespace {

bool EndsWithNoCase(const CString& text, const wchar_t* suffix) {
  const CString tail(suffix);
  return text.GetLength() >= tail.GetLength() && text.Right(tail.GetLength()).CompareNoCase(tail) == 0;
}

int LastSeparator(const CString& path) {
  const int back = path.ReverseFind(L'\\');
  const int slash = path.ReverseFind(L'/');
  return back > slash ? back : slash;
}

}  // namespace

CString MapLibraryName(const CString& name) {
  const int cut = LastSeparator(name);
  const CString folder = name.Left(cut + 1);
  CString file = name.Mid(cut + 1);
  if (EndsWithNoCase(file, L".so")) return name;
  if (EndsWithNoCase(file, L".dll")) file = file.Left(file.GetLength() - 4);
  return folder + L"lib" + file + L".so";
}

std::vector<std::string> LibraryCandidatePaths(const CString& name) {
  const CString mapped = MapLibraryName(name);
  if (LastSeparator(mapped) >= 0) return {ToNativePath(mapped)};
  const std::string file = ToNativePath(mapped);
  std::vector<std::string> paths{GetLibraryFolderNative() + "/" + file};
  const std::string program = GetExecutableFolderNative() + "/" + file;
  if (program != paths.front()) paths.push_back(program);
  return paths;
}

DynamicLibrary::DynamicLibrary(DynamicLibrary&& other) noexcept
    : m_handle(std::exchange(other.m_handle, nullptr)),
      m_path(std::move(other.m_path)),
      m_error(std::move(other.m_error)) {}

DynamicLibrary& DynamicLibrary::operator=(DynamicLibrary&& other) noexcept {
  if (this != &other) {
    Free();
    m_handle = std::exchange(other.m_handle, nullptr);
    m_path = std::move(other.m_path);
    m_error = std::move(other.m_error);
  }
  return *this;
}

bool DynamicLibrary::Load(const CString& name) {
  Free();
  m_error.clear();
  if (name.IsEmpty()) {
    m_error = "empty library name";
    return false;
  }
  for (const std::string& path : LibraryCandidatePaths(name)) {
    m_handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (m_handle) {
      m_path = path;
      return true;
    }
    const char* message = dlerror();
    if (!m_error.empty()) m_error += "; ";
    m_error += message ? message : path;
  }
  return false;
}

void DynamicLibrary::Free() {
  if (m_handle) dlclose(m_handle);
  m_handle = nullptr;
  m_path.clear();
}

void* DynamicLibrary::GetProcAddress(const char* symbol) const {
  if (!m_handle || !symbol) return nullptr;
  return dlsym(m_handle, symbol);
}

}  // namespace KarvelUI
