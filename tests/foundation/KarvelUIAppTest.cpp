#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <karvelui/CommonString.h>
#include "foundation/KarvelUIApp.h"
#include <karvelui/Trace.h>
#include "platform/Paths.h"
#include "support/TempDir.h"

using namespace KarvelUI;
using KarvelTest::TempDir;

TEST(KarvelUIApp, StartUpRecordsAppPathAndTrimsTheLogShutDownReleasesIt) {
  // A log left oversized by an earlier run.
  const std::filesystem::path log = ToNativePath(ITrace_imp::DefaultPath());
  if (g_ITrace) g_ITrace->Release();
  std::filesystem::create_directories(log.parent_path());
  std::string old(600000, 'o');
  old.replace(old.size() - 250000, 250000, std::string(250000, 'n'));
  {
    std::ofstream out(log, std::ios::binary | std::ios::trunc);
    out << old;
  }
  CommonString::FreeInstance();

  CKarvelUIApp app;
  ASSERT_TRUE(app.InitInstance());
  EXPECT_EQ(ToNativePath(CommonString::GetInstance()->GetAppPath()), GetExecutableFolderNative() + "/");
  ASSERT_NE(g_ITrace, nullptr);
  EXPECT_TRUE(g_ITrace == ITrace_imp::GetInstance() && TempDir::Read(log) == std::string(250000, 'n'));

  g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"<ERROR> last words");
  ITrace* const released = g_ITrace;
  EXPECT_EQ(app.ExitInstance(), 0);
  ASSERT_EQ(g_ITrace, released);
  // Code that runs after the exit (static destructors, tasks winding down)
  // still traces, and its lines reach the file.
  g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"<ERROR> after exit");
  EXPECT_EQ(app.ExitInstance(), 0);  // a second exit is harmless
  const std::string content = TempDir::Read(log);
  EXPECT_NE(content.find("<ERROR> last words\r\n["), std::string::npos);
  EXPECT_EQ(content.substr(content.size() - 20), "<ERROR> after exit\r\n");
  CommonString::FreeInstance();
}
