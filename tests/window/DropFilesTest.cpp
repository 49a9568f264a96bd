// Files dropped on a window: one WM_DROPFILES per drop with the files in
// the library's path form, freed by the default handling.

#include <karvelui/DragDrop.h>

#include "support/WindowTesting.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

void PushDrop(HWND hwnd, Uint32 type, const char* file = nullptr) {
  SDL_Event e{};
  e.type = type;
  e.drop.windowID = SdlId(hwnd);
  e.drop.file = file ? SDL_strdup(file) : nullptr;  // the translator frees it, as SDL's own
  SDL_PushEvent(&e);
}

// Reads each drop's files, then leaves the message to the default handling.
class DropWnd : public CWnd {
 public:
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message == WM_DROPFILES) {
      const auto drop = reinterpret_cast<HDROP>(wParam);
      std::vector<CString> files;
      for (UINT i = 0; i < DragQueryFileW(drop, DRAG_QUERY_COUNT, nullptr, 0); ++i)
        files.push_back(DragQueryFilePath(drop, i));
      drops.push_back(files);
      handles.push_back(drop);
    }
    return CWnd::WindowProc(message, wParam, lParam);
  }
  std::vector<std::vector<CString>> drops;
  std::vector<HDROP> handles;
};

}  // namespace

TEST(DropFiles, ADropBecomesOneMessageWhoseFilesAreFreedByTheDefaultHandling) {
  DropWnd wnd;
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 100, 100), WS_POPUP | WS_VISIBLE));
  PushDrop(wnd.m_hWnd, SDL_DROPBEGIN);
  PushDrop(wnd.m_hWnd, SDL_DROPFILE, "/photos/a b.jpg");
  PushDrop(wnd.m_hWnd, SDL_DROPFILE, "/photos/c.png");
  PushDrop(wnd.m_hWnd, SDL_DROPCOMPLETE);
  PushDrop(wnd.m_hWnd, SDL_DROPFILE, "/lone.gif");  // without a begin: a drop of its own
  PumpAll();
  const std::vector<std::vector<CString>> expected = {{L"\\photos\\a b.jpg", L"\\photos\\c.png"}, {L"\\lone.gif"}};
  EXPECT_EQ(wnd.drops, expected);
  for (HDROP drop : wnd.handles) EXPECT_EQ(DragQueryFileW(drop, DRAG_QUERY_COUNT, nullptr, 0), 0u);

  const HDROP copy = CreateDropFiles({L"\\photos\\a b.jpg"});
  wchar_t cut[6];
  EXPECT_EQ(DragQueryFileW(copy, 0, cut, 6), 5u);  // cut to fit, terminated
  EXPECT_STREQ(cut, L"\\phot");
  EXPECT_EQ(DragQueryFileW(copy, 0, nullptr, 0), 15u);
  EXPECT_EQ(DragQueryFilePath(copy, 1), L"");
  DragFinish(copy);
  DragFinish(copy);  // a second finish finds nothing
  EXPECT_EQ(DragQueryFilePath(copy, 0), L"");
}
