#include "platform/window/Shell.h"

#include <SDL.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>
#include <mutex>
#include <thread>

extern char** environ;

namespace KarvelUI {
namespace {

constexpr INT_PTR kStarted = 42;
constexpr INT_PTR kFileNotFound = 2;
constexpr INT_PTR kNoAssociation = 31;

std::mutex& HookMutex() {
  static std::mutex m;
  return m;
}

ShellOpenHook& Hook() {
  static ShellOpenHook hook;
  return hook;
}

bool IsBrowserProgram(const CString& file) {
  const int slash = std::max(file.ReverseFind(L'\\'), file.ReverseFind(L'/'));
  return file.Mid(slash + 1).CompareNoCase(kBrowserProgram) == 0;
}

// xdg-open usually hands over to the browser and ends at once; one that is
// still running after a few seconds counts as started and is reaped later.
bool RunXdgOpen(const std::string& target) {
  pid_t pid = 0;
  char program[] = "xdg-open";
  std::string argument = target;
  char* argv[] = {program, argument.data(), nullptr};
  if (posix_spawnp(&pid, "xdg-open", nullptr, nullptr, argv, environ) != 0) return false;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(3);
  while (std::chrono::steady_clock::now() < deadline) {
    int status = 0;
    const pid_t done = waitpid(pid, &status, WNOHANG);
    if (done == pid) return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    if (done < 0) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  std::thread([pid] {
    int status = 0;
    waitpid(pid, &status, 0);
  }).detach();
  return true;
}

bool OpenWithDesktop(const CString& target) {
  const std::string utf8 = target.ToUtf8();
  if (utf8.empty()) return false;
  if (SDL_OpenURL(utf8.c_str()) == 0) return true;
  return RunXdgOpen(utf8);
}

}  // namespace

ShellOpenHook SetShellOpenHook(ShellOpenHook hook) {
  std::lock_guard<std::mutex> lock(HookMutex());
  ShellOpenHook previous = std::move(Hook());
  Hook() = std::move(hook);
  return previous;
}

INT_PTR ShellExecuteW(HWND, const wchar_t* verb, const wchar_t* file, const wchar_t* parameters, const wchar_t*,
                      int showCommand) {
  const CString fileText(file);
  const CString paramText(parameters);
  ShellOpenHook hook;
  {
    std::lock_guard<std::mutex> lock(HookMutex());
    hook = Hook();
  }
  if (hook) return hook(CString(verb), fileText, paramText, showCommand) ? kStarted : kNoAssociation;
  if (fileText.IsEmpty()) return kFileNotFound;
  const CString target = IsBrowserProgram(fileText) ? paramText : fileText;
  return OpenWithDesktop(target) ? kStarted : kNoAssociation;
}

}  // namespace KarvelUI
