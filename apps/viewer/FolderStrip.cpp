#include "FolderStrip.h"

#include <FreeImage.h>

#include <algorithm>
#include <cstdlib>
#include <cwctype>
#include <filesystem>
#include <memory>
#include <system_error>

#include <karvelui/AnimationBoard.h>
#include <karvelui/CommonString.h>
#include <karvelui/DragDrop.h>
#include <karvelui/Input.h>
#include <karvelui/UIList.h>

using namespace KarvelUI;

namespace KarvelView {

namespace fs = std::filesystem;

namespace {

// What the library's decoders read (camera RAW files come through their previews).
constexpr const wchar_t* kPictureExtensions[] = {L"jpg", L"jpeg", L"jpe", L"png", L"gif", L"bmp", L"tif",
                                                 L"tiff", L"nef", L"cr2", L"crw", L"arw", L"dng", L"orf",
                                                 L"pef", L"raf", L"rw2", L"srw"};

// The library writes paths with backslashes; the file system wants slashes.
fs::path Native(const CString& path) {
  std::string text = path.ToUtf8();
  std::string native;
  for (const char c : text)
    if (c != '\\' && c != '/') native += c;
    else if (native.empty() || native.back() != '/') native += '/';
  return native;
}

CString Library(const fs::path& path) {
  std::string text = path.string();
  std::replace(text.begin(), text.end(), '/', '\\');
  return CString(text.c_str());
}

std::wstring Lower(std::wstring text) {
  for (wchar_t& c : text) c = static_cast<wchar_t>(std::towlower(c));
  return text;
}

bool IsPictureName(const fs::path& file) {
  std::wstring extension = Lower(file.extension().wstring());
  if (extension.empty()) return false;
  extension.erase(0, 1);
  return std::find(std::begin(kPictureExtensions), std::end(kPictureExtensions), extension) !=
         std::end(kPictureExtensions);
}

CString Text(const wchar_t* id, const CString& fallback) {
  const CString text = CommonString::GetInstance()->GetStringViaID(id);
  return text.IsEmpty() ? fallback : text;
}

CString FileName(const CString& path) {
  const int slash = path.ReverseFind(L'\\');
  return slash < 0 ? path : path.Mid(slash + 1);
}

// The event's integer belongs to its handler.
int TakeIndex(void* param) {
  std::unique_ptr<int> index(static_cast<int*>(param));
  return index ? *index : -1;
}

}  // namespace

CFolderStrip::CFolderStrip(CUIControl& root, CUIList* strip, ShowPicture show, ShowStatus status)
    : m_strip(strip), m_show(std::move(show)), m_status(std::move(status)) {
  root.ListenEvent(UI_EVENT_LIST_SELECTED, MakeDelegate(this, &CFolderStrip::OnSelected));
  root.ListenEvent(UI_EVENT_LIST_THUMB_FAILED, MakeDelegate(this, &CFolderStrip::OnThumbFailed));
  root.ListenEvent(UI_EVENT_LIST_THUMB_LOADED, MakeDelegate(this, &CFolderStrip::OnThumbLoaded));
}

std::vector<CString> CFolderStrip::ListPictures(const CString& folder) {
  std::vector<fs::path> found;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(Native(folder), error)) {
    std::error_code kind;
    if (entry.is_regular_file(kind) && IsPictureName(entry.path())) found.push_back(entry.path());
  }
  std::sort(found.begin(), found.end(), [](const fs::path& a, const fs::path& b) {
    return Lower(a.filename().wstring()) < Lower(b.filename().wstring());
  });
  std::vector<CString> pictures;
  for (const fs::path& file : found) pictures.push_back(Library(file));
  return pictures;
}

bool CFolderStrip::Open(const CString& path) {
  if (!m_strip) return false;
  const fs::path native = Native(path);
  std::error_code error;
  const bool isFolder = fs::is_directory(native, error);
  const fs::path folder = isFolder ? native : native.parent_path();
  if (!fs::is_directory(folder, error)) {
    m_status(Text(L"STRID_STATUS_CANNOT_OPEN", L"Cannot open") + L" " + path);
    return false;
  }
  m_strip->ClearAll(0);
  m_files = ListPictures(Library(folder));
  if (m_files.empty()) {
    m_status(Text(L"STRID_STATUS_NO_PICTURES", L"No pictures in") + L" " + Library(folder));
    return true;
  }
  for (const CString& file : m_files) {
    auto* item = new UIItemInfo();
    item->Thumbnail().SetImage(file);
    item->m_strText = FileName(file);
    m_strip->AddItem(item, 0);
  }
  const CString wanted = isFolder ? CString() : Library(native);
  const auto it = std::find(m_files.begin(), m_files.end(), wanted);
  MoveTo(it == m_files.end() ? 0 : static_cast<int>(it - m_files.begin()));
  m_strip->Refresh();
  return true;
}

bool CFolderStrip::OpenDrop(void* drop) {
  const CString first = DragQueryFilePath(drop, 0);
  DragFinish(drop);
  return !first.IsEmpty() && Open(first);
}

void CFolderStrip::MoveTo(int index) {
  if (!m_strip || m_files.empty()) return;
  index = std::clamp(index, 0, static_cast<int>(m_files.size()) - 1);
  if (index != m_strip->GetSelectedItem()) m_strip->SelectItem(static_cast<unsigned>(index), 1);
}

void CFolderStrip::Move(int steps) {
  if (!m_strip) return;
  MoveTo(std::max(m_strip->GetSelectedItem(), 0) + steps);
}

int CFolderStrip::PageSize() const {
  _ListConfig* config = m_strip->GetListConfig();
  const LONG cell = config && config->m_szItem.cx > 0 ? config->m_szItem.cx : 1;
  return std::max(1, static_cast<int>(m_strip->GetBounds().Width() / cell));
}

int CFolderStrip::OnKey(UINT message, UINT key) {
  if (!m_strip) return 0;
  const int last = static_cast<int>(m_files.size()) - 1;
  const int selected = m_strip->GetSelectedItem();
  int target = 0;
  switch (static_cast<int>(key)) {
    case VK_LEFT: target = selected - 1; break;
    case VK_RIGHT: target = selected + 1; break;
    case VK_HOME: target = 0; break;
    case VK_END: target = last; break;
    case VK_PRIOR: target = selected - PageSize(); break;
    case VK_NEXT: target = selected + PageSize(); break;
    default: return 0;
  }
  if (message == WM_KEYDOWN) MoveTo(target);
  return 1;
}

bool CFolderStrip::IsSettled() const {
  if (!m_strip) return true;
  if (m_strip->GetItemsCount() > 0 && m_strip->GetVisibleCount() == 0) return false;  // not laid out yet
  const unsigned first = m_strip->GetFirstVisible();
  const unsigned end = std::min(first + m_strip->GetVisibleCount(), m_strip->GetItemsCount());
  for (unsigned i = first; i < end; ++i)
    if (m_strip->GetItem(i)->Thumbnail().GetState() == THUMB_STATE_NOT_LOADED) return false;
  const int selected = m_strip->GetSelectedItem();
  if (selected >= 0) {
    UIItemInfo* item = m_strip->GetItem(static_cast<unsigned>(selected));
    // A loaded selection grows, then its halo fades in.
    if (item->Thumbnail().GetState() == THUMB_STATE_LOADED &&
        (item->m_pSelectBoard->GetState() == ANIMATION_RUNNING || item->m_pHaloBoard->GetState() != ANIMATION_STOPPED))
      return false;
  }
  return m_strip->GetScrollBoard().GetState() != ANIMATION_RUNNING;
}

CString CFolderStrip::Summary() const {
  constexpr int kCentredWithin = 3;  // pixels; the scroll is rounded, sizes are integers
  CString text;
  if (!m_strip) return text;
  int drawn = 0;
  const unsigned first = m_strip->GetFirstVisible();
  const unsigned end = std::min(first + m_strip->GetVisibleCount(), m_strip->GetItemsCount());
  for (unsigned i = first; i < end; ++i)
    drawn += m_strip->GetItem(i)->Thumbnail().GetState() == THUMB_STATE_LOADED ? 1 : 0;
  text.Format(L"%d pictures, %d drawn with thumbnails", static_cast<int>(m_files.size()), drawn);
  const int selected = m_strip->GetSelectedItem();
  if (selected < 0) return text + L", nothing selected";
  const UIItemInfo* item = m_strip->GetItem(static_cast<unsigned>(selected));
  const int cellLeft = item->m_rect.left - item->m_rcPadding.left - m_strip->GetPixelScroll();
  const int off = cellLeft + item->m_size.cx / 2 - m_strip->GetBounds().Width() / 2;
  CString where;
  if (std::abs(off) <= kCentredWithin) where = L", selection centred";
  else where.Format(L", selection off centre by %d px", off);
  return text + where;
}

CString CFolderStrip::Describe(const CString& path) {
  CString text = FileName(path);
  const std::string native = Native(path).string();
  const FREE_IMAGE_FORMAT format = FreeImage_GetFileType(native.c_str(), 0);
  FIBITMAP* header = format == FIF_UNKNOWN ? nullptr : FreeImage_Load(format, native.c_str(), FIF_LOAD_NOPIXELS);
  if (header) {
    CString size;
    size.Format(L"  %u x %u", FreeImage_GetWidth(header), FreeImage_GetHeight(header));
    text += size;
    FreeImage_Unload(header);
  }
  return text;
}

void CFolderStrip::OnSelected(CUIControl*, void*) {
  const int selected = m_strip->GetSelectedItem();
  if (selected < 0 || selected >= static_cast<int>(m_files.size())) return;
  std::vector<CString> ahead;
  if (selected > 0) ahead.push_back(m_files[selected - 1]);
  if (selected + 1 < static_cast<int>(m_files.size())) ahead.push_back(m_files[selected + 1]);
  m_show(m_files[selected], ahead);
  m_status(Describe(m_files[selected]));
}

// A file that looked like a picture but does not decode leaves the strip,
// which stops drawing at it.
void CFolderStrip::OnThumbFailed(CUIControl*, void* param) {
  const int index = TakeIndex(param);
  if (index < 0 || index >= static_cast<int>(m_files.size())) return;
  const bool wasSelected = index == m_strip->GetSelectedItem();
  m_strip->RemoveItem(static_cast<unsigned>(index), 1);
  m_files.erase(m_files.begin() + index);
  if (wasSelected) MoveTo(index);
  if (m_files.empty()) m_status(Text(L"STRID_STATUS_NO_PICTURES", L"No pictures in"));
}

void CFolderStrip::OnThumbLoaded(CUIControl*, void* param) { TakeIndex(param); }

}  // namespace KarvelView
