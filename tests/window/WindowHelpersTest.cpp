#include <algorithm>
#include <tuple>

#include <karvelui/Clipboard.h>
#include <karvelui/WindowHelpers.h>
#include "platform/MessageBoxHook.h"
#include "platform/window/Shell.h"
#include "support/WindowTesting.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

std::string DesktopClipboardText() {
  char* text = SDL_GetClipboardText();
  std::string result = text ? text : "";
  SDL_free(text);
  return result;
}

// Little-endian UTF-16 bytes, ended by a zero unit when `terminated`.
std::vector<BYTE> Utf16Bytes(std::u16string text, bool terminated = false) {
  if (terminated) text.push_back(u'\0');
  std::vector<BYTE> bytes;
  for (char16_t unit : text) bytes.insert(bytes.end(), {static_cast<BYTE>(unit & 0xFF), static_cast<BYTE>(unit >> 8)});
  return bytes;
}

}  // namespace

TEST(ClipboardHelpers, TextRoundTripsAsUtf16UnderThePlainTextId) {
  ASSERT_TRUE(detail::EnsureVideo());
  const CString text(L"Gr\u00fc\u00dfe \u6f22\u5b57 \U0001F600");
  CopyTextToClipborder(text);
  EXPECT_EQ(DesktopClipboardText(), text.ToUtf8());
  std::vector<BYTE> data;
  ASSERT_TRUE(GetClipboardData(CF_TEXT, data));
  EXPECT_EQ(data, Utf16Bytes(u"Gr\u00fc\u00dfe \u6f22\u5b57 \U0001F600", true));

  // An empty text leaves the clipboard alone; text from another program reads back as UTF-16.
  CopyTextToClipborder(CString());
  EXPECT_EQ(DesktopClipboardText(), text.ToUtf8());
  SDL_SetClipboardText("elsewhere");
  ASSERT_TRUE(GetClipboardData(CF_UNICODETEXT, data));
  EXPECT_EQ(data, Utf16Bytes(u"elsewhere", true));

  EXPECT_FALSE(SetClipboardData(CF_TEXT, {65, 0, 0, 0}));  // data needs an open clipboard
  ASSERT_TRUE(OpenClipboard(nullptr));
  EXPECT_EQ((std::vector{OpenClipboard(nullptr), CloseClipboard(), CloseClipboard()}), (std::vector{FALSE, TRUE, FALSE}));
}

TEST(ClipboardHelpers, FileDropBlockHasTheExactLayout) {
  CStringArray files;
  files.Add(L"\\home\\me\\a b.jpg");
  files.Add(L"\u00e9");
  const std::vector<BYTE> block = BuildFileDropBlock(files);
  std::vector<BYTE> expected = {20, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0};
  const std::vector<BYTE> first = Utf16Bytes(u"\\home\\me\\a b.jpg");
  expected.insert(expected.end(), first.begin(), first.end());
  expected.insert(expected.end(), {0, 0, 0xE9, 0, 0, 0, 0, 0});
  EXPECT_EQ(block, expected);
  EXPECT_EQ(block.size(), 20u + (2 * 16 + 2) + (2 * 1 + 2) + 2);
  EXPECT_EQ(BuildFileDropBlock(CStringArray()).size(), 22u);
}

TEST(ClipboardHelpers, FilesGoOnTheClipboardWithTheirDropEffect) {
  ASSERT_TRUE(detail::EnsureVideo());
  CStringArray files;
  files.Add(L"\\home\\me\\a b.jpg");
  files.Add(L"\\tmp\\\u00e9.png");
  const UINT effectFormat = RegisterClipboardFormatW(L"Preferred DropEffect");
  EXPECT_TRUE(effectFormat >= 0xC000u && RegisterClipboardFormatW(L"preferred dropeffect") == effectFormat);

  CopyFilesToClipBoard(files, TRUE);
  std::vector<BYTE> data;
  ASSERT_TRUE(GetClipboardData(effectFormat, data));
  EXPECT_EQ(data, (std::vector<BYTE>{1, 0, 0, 0}));
  ASSERT_TRUE(GetClipboardData(CF_HDROP, data));
  EXPECT_EQ(data, BuildFileDropBlock(files));
  EXPECT_EQ(DesktopClipboardText(), "file:///home/me/a%20b.jpg\r\nfile:///tmp/%C3%A9.png\r\n");

  CopyFilesToClipBoard(files, FALSE);
  ASSERT_TRUE(GetClipboardData(effectFormat, data));
  EXPECT_EQ(data, (std::vector<BYTE>{2, 0, 0, 0}));

  // Another program taking the clipboard makes the file list go away.
  SDL_SetClipboardText("elsewhere");
  EXPECT_FALSE(IsClipboardFormatAvailable(CF_HDROP));
  EXPECT_TRUE(IsClipboardFormatAvailable(CF_TEXT));
}

TEST(WindowHelpers, TransparencyMakesTheWindowLayeredWithoutActivatingItAndStatesFollowTheStyle) {
  RecordingWnd wnd, other;
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 10, 10), WS_POPUP | WS_VISIBLE));
  ASSERT_TRUE(MakeWindow(other, CRect(0, 0, 10, 10), WS_POPUP | WS_VISIBLE));
  EXPECT_EQ(MakeWindowTransparent(wnd.m_hWnd, L'\x32'), 0u);  // 50 %
  EXPECT_TRUE((wnd.GetExStyle() & WS_EX_LAYERED) && GetActiveWindow() == other.m_hWnd);
  COLORREF key = 0;
  BYTE alpha = 0;
  DWORD flags = 0;
  ASSERT_TRUE(GetLayeredWindowAttributes(wnd.m_hWnd, &key, &alpha, &flags));
  EXPECT_EQ(std::make_tuple(alpha, flags), std::make_tuple(BYTE{127}, DWORD{LWA_ALPHA}));
  EXPECT_EQ(MakeWindowTransparent(wnd.m_hWnd, L'\x50', RGB(9, 8, 7)), 1u);  // 80 %
  ASSERT_TRUE(GetLayeredWindowAttributes(wnd.m_hWnd, &key, &alpha, &flags));
  EXPECT_EQ(std::make_tuple(alpha, key, flags), std::make_tuple(BYTE{204}, RGB(9, 8, 7), DWORD{LWA_ALPHA | LWA_COLORKEY}));
  EXPECT_EQ(MakeWindowTransparent(nullptr, L'\x50', 0), 0u);

  wnd.ShowWindow(SW_MAXIMIZE);
  wnd.ShowWindow(SW_MINIMIZE);
  EXPECT_TRUE(IsWndMinimized(wnd.m_hWnd));
  wnd.ShowWindow(SW_RESTORE);  // back to maximised
  EXPECT_TRUE(!IsWndMinimized(wnd.m_hWnd) && IsWndMaximized(wnd.m_hWnd) && !IsWndMinimized(nullptr));
}

// --- opening web pages ----------------------------------------------------------------------------

namespace {

struct ShellCall {
  CString verb, file, parameters;
  int show;
  bool operator==(const ShellCall&) const = default;
};

// Captures shell requests and message boxes; the shell answers from a script.
class ShellCapture {
 public:
  explicit ShellCapture(std::vector<bool> answers) : m_answers(std::move(answers)) {
    m_previousShell = SetShellOpenHook([this](const CString& verb, const CString& file, const CString& params, int show) {
      calls.push_back({verb, file, params, show});
      return calls.size() <= m_answers.size() && m_answers[calls.size() - 1];
    });
    m_previousBox = SetMessageBoxHook([this](HWND owner, const CString& text, const CString& caption, UINT type) {
      boxes.push_back({owner, text, caption, type});
      return IDOK;
    });
  }
  ~ShellCapture() {
    SetShellOpenHook(m_previousShell);
    SetMessageBoxHook(m_previousBox);
  }
  struct Box {
    HWND owner;
    CString text, caption;
    UINT type;
  };
  std::vector<ShellCall> calls;
  std::vector<Box> boxes;

 private:
  std::vector<bool> m_answers;
  ShellOpenHook m_previousShell;
  MessageBoxHook m_previousBox;
};

}  // namespace

TEST(SafeOpenWeb, OpensTheUrlThenTheBrowserProgramThenTellsTheUser) {
  for (size_t failures = 0; failures <= 2; ++failures) {
    SCOPED_TRACE(failures);
    CString url(L"  HTTPS://example.org/a?b=1 ");
    std::vector<bool> answers(failures, false);  // the shell fails `failures` times, then opens
    answers.push_back(true);
    ShellCapture capture(answers);
    SafeOpenWeb(url, SW_SHOW);
    ASSERT_EQ(capture.calls.size(), std::min<size_t>(failures + 1, 2));
    EXPECT_EQ(capture.calls[0], (ShellCall{L"open", url, L"", SW_SHOW}));
    if (failures > 0) {
      EXPECT_EQ(capture.calls[1], (ShellCall{L"open", L"IEXPLORE.EXE", url, SW_SHOW}));
    }
    ASSERT_EQ(capture.boxes.size(), failures == 2 ? 1u : 0u);
    if (failures == 2) {
      const auto& box = capture.boxes[0];
      EXPECT_EQ(std::make_tuple(box.owner, box.text, box.caption, box.type),
                std::make_tuple(HWND{}, CString(L"can't open iexplore.exe, please setup iexplore !"),
                                CString(L"tips message!"), UINT{MB_ICONINFORMATION}));
    }
  }
}
