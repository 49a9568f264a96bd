#include <gtest/gtest.h>

#include <dlfcn.h>

#include <atomic>
#include <filesystem>
#include <string>

#include <karvelui/Sync.h>
#include <karvelui/Thread.h>
#include "platform/Clock.h"
#include "platform/CodePage.h"
#include "platform/DynamicLibrary.h"
#include "platform/Paths.h"
#include "platform/SystemInfo.h"
#include "support/TempDir.h"

using namespace KarvelUI;
using KarvelTest::TempDir;

TEST(Clock, HookReplacesTheCounterUntilRemoved) {
  LONGLONG frequency = 0, now = 0, a = 0, b = 0;
  ASSERT_TRUE(QueryPerformanceFrequency(&frequency));
  EXPECT_EQ(frequency, 1000000000LL);
  LONGLONG fake = 5 * frequency + 123;
  SetPerformanceCounterHook([&] { return fake; });
  QueryPerformanceCounter(&now);
  EXPECT_EQ(now, fake);
  fake += frequency / 2;
  EXPECT_EQ(GetTickCount64(), 5500u);
  SetPerformanceCounterHook(nullptr);
  QueryPerformanceCounter(&a);
  QueryPerformanceCounter(&b);
  EXPECT_NE(a, fake);
  EXPECT_LE(a, b);  // monotonic
}

TEST(Sync, CriticalSectionIsRecursiveAndExcludesOtherThreadsAndThreadsStartOnce) {
  CriticalSection section;
  section.Enter();
  ASSERT_TRUE(section.TryEnter());  // the same thread enters again
  bool otherGotIn = true;
  {
    Thread other;
    ManualResetEvent go;
    ASSERT_TRUE(other.Start([&] {
      go.Wait();
      otherGotIn = section.TryEnter();
    }));
    EXPECT_TRUE(other.IsRunning());
    EXPECT_FALSE(other.Start([] {}));  // still attached
    go.Set();
  }  // joined on destruction
  EXPECT_FALSE(otherGotIn);
  section.Leave();
  section.Leave();
  Thread later;
  ASSERT_TRUE(later.Start([&] {
    otherGotIn = section.TryEnter();
    if (otherGotIn) section.Leave();
  }));
  later.Join();
  EXPECT_TRUE(otherGotIn);
}

TEST(Sync, ManualResetEventStaysSetAndWakesEveryWaiter) {
  ManualResetEvent event;
  EXPECT_FALSE(event.Wait(1));
  std::atomic<int> woken{0};
  Thread first, second;
  ASSERT_TRUE(first.Start([&] { event.Wait(); ++woken; }));
  ASSERT_TRUE(second.Start([&] { event.Wait(); ++woken; }));
  event.Set();
  first.Join();
  second.Join();
  EXPECT_EQ(woken.load(), 2);
  EXPECT_TRUE(event.Wait(0));  // nothing reset it
  event.Reset();
  EXPECT_FALSE(event.Wait(0));
}

TEST(CodePage, AnsiIsUtf8SingleBytePagesReplaceAndThePlatformIsNeverTheNtOne) {
  EXPECT_EQ(GetACP(), CP_UTF8);
  EXPECT_EQ(*MultiByteToWide(CP_ACP, "caf\xc3\xa9"), L"caf\u00e9");
  EXPECT_EQ(*WideToMultiByte(CP_ACP, L"\u5199"), "\xe5\x86\x99");
  EXPECT_EQ(*WideToMultiByte(CP_LATIN1, L"caf\u00e9 \u5199", '#'), "caf\xe9 #");
  EXPECT_EQ(*MultiByteToWide(CP_LATIN1, "\xe9"), L"\u00e9");
  EXPECT_EQ(*WideToMultiByte(CP_ASCII, L"\u00e9a", '#'), "#a");
  EXPECT_FALSE(MultiByteToWide(936, "x").has_value());
  OSVersionInfo info;
  ASSERT_TRUE(GetOSVersionInfo(info));
  EXPECT_NE(info.platformId, VER_PLATFORM_WIN32_NT);
  EXPECT_GT(info.majorVersion, 0u);
}

TEST(DynamicLibrary, DllNamesMapToSharedObjectsBesideTheProgramAndLoadRenamed) {
  EXPECT_EQ(MapLibraryName(L"user32"), CString(L"libuser32.so"));
  EXPECT_EQ(MapLibraryName(L"C:\\plug\\Raw.DLL"), CString(L"C:\\plug\\libRaw.so"));
  EXPECT_EQ(MapLibraryName(L"libz.so"), CString(L"libz.so"));
  // Linked statically, this library's code is the program itself: one folder.
  EXPECT_EQ(LibraryCandidatePaths(L"ZorImgUtil.dll").front(), GetExecutableFolderNative() + "/libZorImgUtil.so");
  EXPECT_EQ(LibraryCandidatePaths(L"\\\\opt\\x\\Raw.dll"), std::vector<std::string>{"/opt/x/libRaw.so"});

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
  auto version = reinterpret_cast<const char* (*)()>(library.GetProcAddress("zlibVersion"));
  ASSERT_NE(version, nullptr);
  EXPECT_EQ(std::string(version()).substr(0, 2), "1.");
  EXPECT_EQ(library.GetProcAddress("NoSuchExport"), nullptr);
  library.Free();
  EXPECT_FALSE(library.IsLoaded());
}
