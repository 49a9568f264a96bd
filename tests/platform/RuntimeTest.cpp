#include <gtest/gtest.h>

#include <dlfcn.h>

#include <atomic>
#include <filesystem>
#include <string>

#include "platform/Clock.h"
#include "platform/CodePage.h"
#include "platform/DynamicLibrary.h"
#include "platform/Paths.h"
#include <karvelui/Sync.h>
#include "platform/SystemInfo.h"
#include <karvelui/Thread.h>
#include "support/TempDir.h"

using namespace KarvelUI;
using KarvelTest::TempDir;

TEST(Clock, HookReplacesTheCounterUntilRemoved) {
  LONGLONG frequency = 0;
  ASSERT_TRUE(QueryPerformanceFrequency(&frequency));
  EXPECT_EQ(frequency, 1000000000LL);

  LONGLONG fake = 5 * frequency + 123;
  SetPerformanceCounterHook([&] { return fake; });
  LONGLONG now = 0;
  QueryPerformanceCounter(&now);
  EXPECT_EQ(now, fake);
  EXPECT_EQ(GetTickCount64(), 5000u);
  fake += frequency / 2;
  EXPECT_EQ(GetTickCount64(), 5500u);

  SetPerformanceCounterHook(nullptr);
  LONGLONG a = 0;
  LONGLONG b = 0;
  QueryPerformanceCounter(&a);
  QueryPerformanceCounter(&b);
  EXPECT_NE(a, fake);
  EXPECT_LE(a, b);  // monotonic
}

TEST(Sync, CriticalSectionIsRecursiveAndExcludesOtherThreads) {
  CriticalSection section;
  section.Enter();
  ASSERT_TRUE(section.TryEnter());  // same thread enters again
  bool otherGotIn = true;
  Thread other;
  ASSERT_TRUE(other.Start([&] { otherGotIn = section.TryEnter(); }));
  other.Join();
  EXPECT_FALSE(otherGotIn);
  section.Leave();
  section.Leave();
  ASSERT_TRUE(other.Start([&] {
    otherGotIn = section.TryEnter();
    if (otherGotIn) section.Leave();
  }));
  other.Join();
  EXPECT_TRUE(otherGotIn);
}

TEST(Sync, ManualResetEventStaysSetAndWakesEveryWaiter) {
  ManualResetEvent event;
  EXPECT_FALSE(event.Wait(1));
  std::atomic<int> woken{0};
  Thread first;
  Thread second;
  ASSERT_TRUE(first.Start([&] { event.Wait(); ++woken; }));
  ASSERT_TRUE(second.Start([&] { event.Wait(); ++woken; }));
  event.Set();
  first.Join();
  second.Join();
  EXPECT_EQ(woken.load(), 2);
  EXPECT_TRUE(event.IsSet());  // nothing reset it
  EXPECT_TRUE(event.Wait(0));
  event.Reset();
  EXPECT_FALSE(event.IsSet());
  EXPECT_FALSE(event.Wait(0));
}

TEST(Thread, StartsOnceAndJoinsOnDestruction) {
  std::atomic<bool> ran{false};
  {
    Thread thread;
    ManualResetEvent go;
    ASSERT_TRUE(thread.Start([&] { go.Wait(); ran = true; }));
    EXPECT_TRUE(thread.IsRunning());
    EXPECT_FALSE(thread.Start([] {}));  // still attached
    go.Set();
  }
  EXPECT_TRUE(ran.load());
}

TEST(CodePage, AnsiIsUtf8AndSingleBytePagesReplace) {
  EXPECT_EQ(GetACP(), CP_UTF8);
  EXPECT_EQ(*MultiByteToWide(CP_ACP, "caf\xc3\xa9"), L"caf\u00e9");
  EXPECT_EQ(*WideToMultiByte(CP_ACP, L"\u5199"), "\xe5\x86\x99");
  EXPECT_EQ(*WideToMultiByte(CP_LATIN1, L"caf\u00e9 \u5199", '#'), "caf\xe9 #");
  EXPECT_EQ(*MultiByteToWide(CP_LATIN1, "\xe9"), L"\u00e9");
  EXPECT_EQ(*WideToMultiByte(CP_ASCII, L"\u00e9a", '#'), "#a");
  EXPECT_FALSE(MultiByteToWide(936, "x").has_value());
}

TEST(SystemInfo, PlatformIsNeverTheNtOne) {
  OSVersionInfo info;
  ASSERT_TRUE(GetOSVersionInfo(info));
  EXPECT_NE(info.platformId, VER_PLATFORM_WIN32_NT);
  EXPECT_GT(info.majorVersion, 0u);
}

TEST(DynamicLibrary, DllNamesMapToSharedObjectsBesideLibraryOrProgram) {
  EXPECT_EQ(MapLibraryName(L"ZorImgUtil.dll"), CString(L"libZorImgUtil.so"));
  EXPECT_EQ(MapLibraryName(L"user32"), CString(L"libuser32.so"));
  EXPECT_EQ(MapLibraryName(L"C:\\plug\\Raw.DLL"), CString(L"C:\\plug\\libRaw.so"));
  EXPECT_EQ(MapLibraryName(L"libz.so"), CString(L"libz.so"));

  const auto bare = LibraryCandidatePaths(L"ZorImgUtil.dll");
  ASSERT_FALSE(bare.empty());
  // Linked statically, this library's code is the program itself: one folder.
  EXPECT_EQ(bare.front(), GetExecutableFolderNative() + "/libZorImgUtil.so");
  const auto placed = LibraryCandidatePaths(L"\\\\opt\\x\\Raw.dll");
  ASSERT_EQ(placed.size(), 1u);
  EXPECT_EQ(placed.front(), "/opt/x/libRaw.so");
}

TEST(DynamicLibrary, LoadsRenamedLibraryAndFindsExports) {
  // Any shared library of the system serves; zlib is always installed.
  void* system = dlopen("libz.so.1", RTLD_NOW);
  ASSERT_NE(system, nullptr);
  Dl_info info{};
  ASSERT_NE(dladdr(dlsym(system, "zlibVersion"), &info), 0);
  TempDir dir;
  std::filesystem::copy_file(info.dli_fname, dir.Path() / "libZorTest.so");
  dlclose(system);

  DynamicLibrary library;
  EXPECT_FALSE(library.Load(FromNativePath((dir.Path() / "Missing.dll").string())));
  EXPECT_FALSE(library.LastError().empty());
  ASSERT_TRUE(library.Load(FromNativePath((dir.Path() / "ZorTest.dll").string())));
  EXPECT_EQ(library.LoadedPath(), (dir.Path() / "libZorTest.so").string());
  using VersionFn = const char* (*)();
  auto version = reinterpret_cast<VersionFn>(library.GetProcAddress("zlibVersion"));
  ASSERT_NE(version, nullptr);
  EXPECT_EQ(std::string(version()).substr(0, 2), "1.");
  EXPECT_EQ(library.GetProcAddress("NoSuchExport"), nullptr);
  library.Free();
  EXPECT_FALSE(library.IsLoaded());
}
