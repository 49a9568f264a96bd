#include <karvelui/WindowHelpers.h>

#include <karvelui/Helpers.h>
#include <karvelui/MessageBox.h>
#include <karvelui/Clipboard.h>
#include "platform/window/Shell.h"
#include <karvelui/Wnd.h>

namespace KarvelUI {
namespace {

constexpr DWORD kDropEffectCopy = 1;
constexpr DWORD kDropEffectMove = 2;
constexpr DWORD kDropFilesHeaderSize = 20;
constexpr INT_PTR kShellFailureLimit = 32;  // shell results up to this are failures

void AppendDword(std::vector<BYTE>& out, DWORD value) {
  for (int shift = 0; shift < 32; shift += 8) out.push_back(static_cast<BYTE>((value >> shift) & 0xFF));
}

void AppendUtf16(std::vector<BYTE>& out, const CString& text) {
  for (char16_t unit : WideToUtf16(text.view())) {
    out.push_back(static_cast<BYTE>(unit & 0xFF));
    out.push_back(static_cast<BYTE>(unit >> 8));
  }
  out.push_back(0);
  out.push_back(0);
}

BYTE AlphaForPercent(wchar_t percent) {
  return static_cast<BYTE>(static_cast<DWORD>(percent) * 255 / 100);
}

}  // namespace

BOOL IsWndMinimized(HWND hwnd) { return (GetWindowLongW(hwnd, GWL_STYLE) & WS_MINIMIZE) ? TRUE : FALSE; }

BOOL IsWndMaximized(HWND hwnd) { return (GetWindowLongW(hwnd, GWL_STYLE) & WS_MAXIMIZE) ? TRUE : FALSE; }

DWORD MakeWindowTransparent(HWND hwnd, wchar_t percent) {
  const DWORD exStyle = static_cast<DWORD>(GetWindowLongW(hwnd, GWL_EXSTYLE));
  if (!(exStyle & WS_EX_LAYERED)) {
    SetWindowLongW(hwnd, GWL_EXSTYLE, static_cast<LONG>(exStyle | WS_EX_LAYERED));
    SetWindowPos(hwnd, nullptr, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
  }
  SetLayeredWindowAttributes(hwnd, 0, AlphaForPercent(percent), LWA_ALPHA);
  UpdateWindow(hwnd);
  return 0;
}

DWORD MakeWindowTransparent(HWND hwnd, wchar_t percent, DWORD colorKey) {
  // The layered-window call is part of this platform layer, so the lookup
  // that could fail elsewhere always succeeds here; a bad handle is the error.
  if (!IsWindow(hwnd)) return 0;
  const DWORD exStyle = static_cast<DWORD>(GetWindowLongW(hwnd, GWL_EXSTYLE));
  SetWindowLongW(hwnd, GWL_EXSTYLE, static_cast<LONG>(exStyle & ~WS_EX_LAYERED));
  SetWindowLongW(hwnd, GWL_EXSTYLE, static_cast<LONG>(exStyle | WS_EX_LAYERED));
  return static_cast<DWORD>(
      SetLayeredWindowAttributes(hwnd, colorKey, AlphaForPercent(percent), LWA_COLORKEY | LWA_ALPHA));
}

void CopyTextToClipborder(const CString& text) {
  if (text.IsEmpty()) return;
  std::vector<BYTE> block;
  AppendUtf16(block, text);
  if (!OpenClipboard(nullptr)) return;
  EmptyClipboard();
  SetClipboardData(CF_TEXT, std::move(block));
  CloseClipboard();
}

std::vector<BYTE> BuildFileDropBlock(const CStringArray& files) {
  std::vector<BYTE> block;
  AppendDword(block, kDropFilesHeaderSize);  // offset of the list
  AppendDword(block, 0);                     // drop point x
  AppendDword(block, 0);                     // drop point y
  AppendDword(block, 0);                     // not in the non-client area
  AppendDword(block, 1);                     // wide paths
  for (const CString& file : files) AppendUtf16(block, file);
  block.push_back(0);
  block.push_back(0);
  return block;
}

void CopyFilesToClipBoard(const CStringArray& files, BOOL copy) {
  const UINT dropEffectFormat = RegisterClipboardFormatW(L"Preferred DropEffect");
  std::vector<BYTE> effect;
  AppendDword(effect, copy ? kDropEffectCopy : kDropEffectMove);
  std::vector<BYTE> drop = BuildFileDropBlock(files);
  if (!OpenClipboard(nullptr)) return;
  EmptyClipboard();
  SetClipboardData(dropEffectFormat, std::move(effect));
  SetClipboardData(CF_HDROP, std::move(drop));
  CloseClipboard();
}

void SafeOpenWeb(CString& url, int showCommand) {
  CString scheme = url;
  scheme.Trim();
  scheme.MakeLower();
  const bool https = scheme.Left(5) == L"https";
  const bool legacyIsDefault = https ? IsUsingIEAsHttpsBrowser() : IsUsingIEAsHttpBrowser();
  INT_PTR result = 0;
  if (GetIEVersion() < 7.0f && legacyIsDefault)
    result = ShellExecuteW(nullptr, L"open", kBrowserProgram, url, nullptr, showCommand);
  else
    result = ShellExecuteW(nullptr, L"open", url, nullptr, nullptr, showCommand);
  if (result > kShellFailureLimit) return;
  result = ShellExecuteW(nullptr, L"open", kBrowserProgram, url, nullptr, showCommand);
  if (result > kShellFailureLimit) return;
  MessageBoxW(nullptr, L"can't open iexplore.exe, please setup iexplore !", L"tips message!", MB_ICONINFORMATION);
}

}  // namespace KarvelUI
