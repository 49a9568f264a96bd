#pragma once

// The viewer's film strip: the pictures of one folder in the main form's
// "ThumbList". Opening a file or folder lists the folder's pictures (by
// name, files of other kinds left out), fills the strip and selects the
// file (else the first picture). The selection is moved by the strip's own
// click and wheel, by keys (Left/Right, Home/End, PageUp/PageDown) and by
// the tool bar's previous/next buttons, always through the list's public
// operations; each new selection is shown with its neighbours decoded
// ahead, and the status line names it with its pixel size.

#include <functional>
#include <vector>

#include <karvelui/CString.h>
#include <karvelui/UIControl.h>

namespace KarvelUI {
class CUIList;
}

namespace KarvelView {

class CFolderStrip {
 public:
  // path: the picture to show; ahead: the previous and next pictures.
  using ShowPicture = std::function<void(const KarvelUI::CString& path, const std::vector<KarvelUI::CString>& ahead)>;
  using ShowStatus = std::function<void(const KarvelUI::CString& text)>;

  // Listens to the strip's events on `root` (the form), which outlives this.
  CFolderStrip(KarvelUI::CUIControl& root, KarvelUI::CUIList* strip, ShowPicture show, ShowStatus status);

  // A folder, or a file whose folder is listed with the file selected (both
  // in the library's path form). False when nothing could be listed.
  bool Open(const KarvelUI::CString& path);
  // The first file of a WM_DROPFILES handle; the handle is freed.
  bool OpenDrop(void* drop);
  // Moves the selection by `steps` (clamped to the strip's ends).
  void Move(int steps);
  void MoveTo(int index);
  // Left, Right, Home, End, PageUp, PageDown: 1 when the key was one of them.
  int OnKey(KarvelUI::UINT message, KarvelUI::UINT key);
  // Every item of the drawing range has its thumbnail and nothing moves:
  // what a screenshot waits for.
  bool IsSettled() const;
  // "N pictures, M drawn with thumbnails, selection centred" (or "off
  // centre by D px"): what a screenshot run reports.
  KarvelUI::CString Summary() const;

  const std::vector<KarvelUI::CString>& Files() const { return m_files; }
  // "name  width x height" for a picture.
  static KarvelUI::CString Describe(const KarvelUI::CString& path);
  // The folder's pictures (library form), sorted by name without regard to case.
  static std::vector<KarvelUI::CString> ListPictures(const KarvelUI::CString& folder);

 private:
  void OnSelected(KarvelUI::CUIControl* sender, void* param);
  void OnThumbFailed(KarvelUI::CUIControl* sender, void* param);
  void OnThumbLoaded(KarvelUI::CUIControl* sender, void* param);
  int PageSize() const;

  KarvelUI::CUIList* m_strip;
  ShowPicture m_show;
  ShowStatus m_status;
  std::vector<KarvelUI::CString> m_files;  // the strip's items, in order
};

}  // namespace KarvelView
