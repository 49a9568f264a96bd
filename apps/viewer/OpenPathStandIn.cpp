// Folder browsing until the film strip takes it over: the pictures of one
// folder in name order, stepped through by the tool bar's Prev and Next.

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "MainForm.h"
#include "PathText.h"

using namespace KarvelUI;

namespace KarvelView {

namespace {

namespace fs = std::filesystem;

// The folder shown; one main form per program.
struct ShownFolder {
  std::vector<CString> pictures;
  size_t shown = 0;
};
ShownFolder g_folder;

bool IsPicture(const fs::path& file) {
  std::string extension = file.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  for (const char* known : {".jpg", ".jpeg", ".png", ".gif", ".bmp", ".tif", ".tiff"})
    if (extension == known) return true;
  return false;
}

std::vector<fs::path> PicturesIn(const fs::path& folder) {
  std::vector<fs::path> pictures;
  std::error_code error;
  for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error))
    if (it->is_regular_file(error) && IsPicture(it->path())) pictures.push_back(it->path());
  std::sort(pictures.begin(), pictures.end());
  return pictures;
}

}  // namespace

void CMainForm::OpenPath(const CString& path) {
  const fs::path native(NativePath(path));
  std::error_code error;
  const bool folder = fs::is_directory(native, error);
  g_folder = ShownFolder();
  for (const fs::path& picture : PicturesIn(folder ? native : native.parent_path())) {
    if (!folder && picture == native) g_folder.shown = g_folder.pictures.size();
    g_folder.pictures.push_back(LibraryPath(picture.string()));
  }
  StepPicture(0);
}

void CMainForm::StepPicture(int direction) {
  const size_t count = g_folder.pictures.size();
  if (count == 0) return;
  const int n = static_cast<int>(count);
  g_folder.shown = static_cast<size_t>(((static_cast<int>(g_folder.shown) + direction) % n + n) % n);
  const auto at = [&](size_t offset) { return g_folder.pictures[(g_folder.shown + offset) % count]; };
  ShowPicture(at(0), {at(count - 1), at(1)});
}

}  // namespace KarvelView
