// The registry keys the browser checks read, answered from the desktop's
// own settings (mimeapps.list and desktop entries) in a temporary folder.

#include <gtest/gtest.h>

#include "platform/Registry.h"
#include "support/TempDir.h"

using namespace KarvelUI;
using KarvelTest::TempDir;

namespace {

class DesktopFixture : public ::testing::Test {
 protected:
  void SetUp() override { m_dir.UseAsDesktop(); }
  static CString Read(RegistryRoot root, const wchar_t* key, const wchar_t* name) {
    RegistryKey registry;
    CString value = L"<missing>";
    if (registry.Open(root, key)) registry.QueryString(name, value);
    return value;
  }
  TempDir m_dir;
};

constexpr const wchar_t* kChoice = L"Software\\Microsoft\\Windows\\Shell\\Associations\\UrlAssociations\\";

}  // namespace

TEST_F(DesktopFixture, OpenCommandsNameTheDesktopBrowserAndTheUserListWins) {
  m_dir.Write("config/mimeapps.list",
              "[Added Associations]\nx-scheme-handler/http=other.desktop;\n"
              "[Default Applications]\n# comment\nx-scheme-handler/http=gone.desktop;web.desktop;\n");
  m_dir.Write("etc/mimeapps.list", "[Default Applications]\nx-scheme-handler/http=sys.desktop\n"
                                   "x-scheme-handler/https=secure.desktop\n");
  m_dir.Write("data/applications/web.desktop", "[Desktop Entry]\nName=Web\nExec=/usr/bin/web --new %U %i\n");
  m_dir.Write("share/applications/sys.desktop", "[Desktop Entry]\nExec=sysweb %u\n");
  m_dir.Write("share/applications/secure.desktop",
              "[Desktop Entry]\nExec=safe 100%% %u\n[Desktop Action x]\nExec=no\n");
  // Keys compare without case; a missing desktop entry is skipped for the next.
  EXPECT_EQ(Read(RegistryRoot::ClassesRoot, L"HTTP\\Shell\\Open\\Command", L""), CString(L"/usr/bin/web --new \"%1\""));
  EXPECT_EQ(Read(RegistryRoot::ClassesRoot, L"https\\shell\\open\\command", L""), CString(L"safe 100% \"%1\""));
  EXPECT_EQ(Read(RegistryRoot::CurrentUser, (CString(kChoice) + L"http\\UserChoice").GetString(), L"progid"),
            CString(L"web.desktop"));
  RegistryKey key;
  ASSERT_TRUE(key.Open(RegistryRoot::ClassesRoot, L"http\\shell\\open\\command"));
  CString name = L"x", value;
  ASSERT_TRUE(key.EnumValue(0, name, value));
  EXPECT_TRUE(name.IsEmpty());
  EXPECT_FALSE(key.EnumValue(1, name, value));
}

TEST_F(DesktopFixture, WithoutADefaultTheCommandIsXdgOpenWithoutAUserChoiceAndOtherKeysDoNotExist) {
  EXPECT_EQ(Read(RegistryRoot::ClassesRoot, L"https\\shell\\open\\command", L""), CString(L"xdg-open \"%1\""));
  EXPECT_EQ(Read(RegistryRoot::ClassesRoot, (CString(kChoice) + L"https\\UserChoice").GetString(), L"Progid"),
            CString(L"<missing>"));
  RegistryKey key;
  EXPECT_FALSE(key.Open(RegistryRoot::LocalMachine, L"Software\\Microsoft\\Internet Explorer"));
  EXPECT_FALSE(key.Open(RegistryRoot::LocalMachine, L"http\\shell\\open\\command"));
  EXPECT_FALSE(key.Open(RegistryRoot::ClassesRoot, L"ftp\\shell\\open\\command"));
  CString value;
  EXPECT_FALSE(key.QueryString(L"", value));
}
