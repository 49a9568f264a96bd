#include <gtest/gtest.h>

#include <stdlib.h>

#include "platform/Registry.h"
#include "support/TempDir.h"

using namespace KarvelUI;
using KarvelTest::TempDir;

namespace {

// A desktop whose settings live only in a temporary folder.
class DesktopFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("XDG_CONFIG_HOME", (m_dir.Path() / "config").c_str(), 1);
    setenv("XDG_DATA_HOME", (m_dir.Path() / "data").c_str(), 1);
    setenv("XDG_CONFIG_DIRS", (m_dir.Path() / "etc").c_str(), 1);
    setenv("XDG_DATA_DIRS", (m_dir.Path() / "share").c_str(), 1);
  }
  void Write(const std::string& relative, const std::string& text) { m_dir.Write(relative, text); }

  static CString Read(RegistryRoot root, const wchar_t* key, const wchar_t* name) {
    RegistryKey registry;
    CString value = L"<missing>";
    if (registry.Open(root, key)) registry.QueryString(name, value);
    return value;
  }

  TempDir m_dir;
};

constexpr const wchar_t* kHttpChoice =
    L"Software\\MicroSoft\\Windows\\Shell\\Associations\\UrlAssociations\\http\\UserChoice";

}  // namespace

TEST_F(DesktopFixture, OpenCommandsNameTheDesktopBrowser) {
  Write("config/mimeapps.list",
        "[Added Associations]\nx-scheme-handler/http=other.desktop;\n"
        "[Default Applications]\n# comment\nx-scheme-handler/http=gone.desktop;web.desktop;\n"
        "x-scheme-handler/https=secure.desktop\n");
  Write("data/applications/web.desktop", "[Desktop Entry]\nName=Web\nExec=/usr/bin/web --new %U %i\n");
  Write("share/applications/secure.desktop", "[Desktop Entry]\nExec=safe 100%% %u\n[Desktop Action x]\nExec=no\n");

  EXPECT_EQ(Read(RegistryRoot::ClassesRoot, L"HTTP\\Shell\\Open\\Command", L""),
            CString(L"/usr/bin/web --new \"%1\""));
  EXPECT_EQ(Read(RegistryRoot::ClassesRoot, L"https\\shell\\open\\command", L""), CString(L"safe 100% \"%1\""));
  EXPECT_EQ(Read(RegistryRoot::ClassesRoot, kHttpChoice, L"Progid"), CString(L"web.desktop"));
  EXPECT_EQ(Read(RegistryRoot::CurrentUser, kHttpChoice, L"progid"), CString(L"web.desktop"));

  RegistryKey key;
  ASSERT_TRUE(key.Open(RegistryRoot::ClassesRoot, L"http\\shell\\open\\command"));
  CString name = L"x";
  CString value;
  ASSERT_TRUE(key.EnumValue(0, name, value));
  EXPECT_TRUE(name.IsEmpty());
  EXPECT_FALSE(key.EnumValue(1, name, value));
}

TEST_F(DesktopFixture, UserListWinsOverSystemListAndFallbackIsXdgOpen) {
  Write("etc/mimeapps.list", "[Default Applications]\nx-scheme-handler/http=sys.desktop\n");
  Write("share/applications/sys.desktop", "[Desktop Entry]\nExec=sysweb %u\n");
  EXPECT_EQ(FindDesktopBrowser("http").command, CString(L"sysweb \"%1\""));

  Write("config/mimeapps.list", "[Default Applications]\nx-scheme-handler/http=mine.desktop\n");
  Write("data/applications/mine.desktop", "[Desktop Entry]\nExec=mine %u\n");
  EXPECT_EQ(FindDesktopBrowser("http").desktopId, CString(L"mine.desktop"));

  // No default for https: the command still exists (opening through the
  // desktop), but there is no user choice.
  EXPECT_EQ(Read(RegistryRoot::ClassesRoot, L"https\\shell\\open\\command", L""), CString(L"xdg-open \"%1\""));
  EXPECT_EQ(Read(RegistryRoot::ClassesRoot,
                 L"Software\\Microsoft\\Windows\\Shell\\Associations\\UrlAssociations\\https\\UserChoice",
                 L"Progid"),
            CString(L"<missing>"));
}

TEST_F(DesktopFixture, OtherKeysDoNotExist) {
  RegistryKey key;
  EXPECT_FALSE(key.Open(RegistryRoot::LocalMachine, L"Software\\Microsoft\\Internet Explorer"));
  EXPECT_FALSE(key.Open(RegistryRoot::LocalMachine, L"http\\shell\\open\\command"));
  EXPECT_FALSE(key.Open(RegistryRoot::ClassesRoot, L"ftp\\shell\\open\\command"));
  CString value;
  EXPECT_FALSE(key.QueryString(L"", value));
}
