#include <gtest/gtest.h>

#include <stdlib.h>

#include <regex>

#include <karvelui/Helpers.h>
#include "platform/Paths.h"
#include "support/TempDir.h"

using namespace KarvelUI;
using KarvelTest::TempDir;

TEST(Conversions, ParsingAndSearchingRawCharacters) {
  const wchar_t text[] = L"123abc", negative[] = L"-5";
  const wchar_t* end = nullptr;
  EXPECT_EQ(xatol(text, 6, &end), 123);
  EXPECT_EQ(end, text + 3);
  EXPECT_EQ(xatol(text, 3, &end), 123);
  EXPECT_EQ(end, nullptr);
  EXPECT_EQ(xatol(text, 2, nullptr), 12);
  EXPECT_EQ(xatol(negative, 2, &end), 0);  // no sign
  EXPECT_EQ(end, negative);
  EXPECT_EQ(find(L"abcabc", 6, L'c'), 3u);  // 1-based; 0 when absent
  EXPECT_EQ(find(L"abcabc", 2, L'c'), 0u);
  EXPECT_EQ(bin2hex(std::string("\x0a\xff\x00\x7e", 4)), CString(L"0aff007e"));
  EXPECT_EQ(ultoa10(4294967295u), L"4294967295");
}

TEST(Conversions, NumbersThroughTextAndUtf16Bytes) {
  EXPECT_EQ(Int2Bytes(-42), std::string("-\0" "4\0" "2\0", 6));
  EXPECT_EQ(Bytes2Int(CString_to_Bytes(L"  17xyz")), 17);
  EXPECT_EQ(Bytes2DWORD64(DWORD642Bytes(9000000000ULL)), 9000000000ULL);
  EXPECT_EQ(CString2Int(L"99999999999"), 2147483647);
  EXPECT_EQ(CString2Int(L"-12"), -12);
  EXPECT_EQ(CString2DWORD64(L"12345678901"), 12345678901ULL);
  EXPECT_EQ(CString2UInt(L"0x1F"), 31u);
  EXPECT_EQ(CString2UInt(L"017"), 15u);
  EXPECT_EQ(CString2UInt(L"18446744073709551615"), 18446744073709551615ULL);
  EXPECT_EQ(DWORD642CString(18446744073709551615ULL), CString(L"-1"));  // signed format, kept
  EXPECT_EQ(UInt2CString(42) + Int2CString(-7), CString(L"42-7"));
  EXPECT_EQ(Int2Utf8(305), "305");
}

TEST(Conversions, NonAsciiTextAcrossEncodings) {
  const CString text(L"Caf\u00e9 \u5199\u771f \U0001F600");
  const std::string bytes = CString_to_Bytes(text);
  EXPECT_EQ(bytes.size(), 2u * 10);  // the emoji takes two UTF-16 units
  EXPECT_EQ(bytes.substr(16, 4), std::string("\x3d\xd8\x00\xde", 4));
  EXPECT_EQ(Bytes_to_CString(bytes + "x"), text);  // an odd trailing byte is ignored
  std::string narrow;
  EXPECT_EQ(CString_to_MBCS(text, narrow), 17);
  EXPECT_EQ(narrow, "Caf\xc3\xa9 \xe5\x86\x99\xe7\x9c\x9f \xf0\x9f\x98\x80");
  EXPECT_EQ(CString_to_utf8(text), narrow);
  CString back = L"stale";
  EXPECT_EQ(MBCS_to_CString(narrow.c_str(), back), 9);
  EXPECT_EQ(back, text);
  EXPECT_EQ(MBCS_to_CString(nullptr, back), 0);
  EXPECT_TRUE(back.IsEmpty());
  EXPECT_EQ(utf8_to_CString(std::string("ab\0cd", 5), back), 2);
  EXPECT_EQ(back, CString(L"ab"));
}

TEST(SystemHelpers, FilesVersionFontAndFolders) {
  TempDir dir;
  const CString file = FromNativePath(dir.Write("f.bin", std::string(300, 'z')).string());
  EXPECT_EQ(GetFileSize(file), 300u);
  DeleteFileW(file);
  EXPECT_FALSE(IsFileExist(file));
  EXPECT_EQ(GetFileSize(file), 0u);
  DeleteFileW(file);  // already gone: swallowed
  DeleteFileW(nullptr);

  EXPECT_TRUE(std::regex_match(GetOSVersion().ToUtf8(), std::regex(R"(256\.1\.\d+\.\d+)")));
  EXPECT_FALSE(IsVistaWindows());
  LOGFONT font;
  font.lfItalic = 1;
  GetDefaultLOGFONT(font);
  EXPECT_EQ(font.lfHeight, 12);
  EXPECT_EQ(font.lfWeight, FW_NORMAL);
  EXPECT_EQ(font.lfItalic, 0);
  EXPECT_STREQ(font.lfFaceName, L"SimSun");
  CString app;
  GetAppPath(app);
  EXPECT_EQ(ToNativePath(app), GetExecutableFolderNative());  // no trailing separator
  setenv("XDG_DATA_HOME", "/data/home", 1);
  CString data = L"unchanged";
  EXPECT_EQ(GetAppDataPath(data), TRUE);
  EXPECT_EQ(data, CString(L"\\data\\home\\Orvane\\Karvel"));
}

TEST(BrowserHelpers, OnlyTheLegacyBrowserUnderACompatibilityLayerCountsAsIt) {
  TempDir dir;
  dir.UseAsDesktop();
  EXPECT_FLOAT_EQ(GetIEVersion(), 5.0f);
  // No browser configured at all: the commands open through the desktop.
  EXPECT_FALSE(IsUsingIEAsHttpBrowser());
  EXPECT_FALSE(IsUsingIEAsHttpsBrowser());
  auto setBrowser = [&](const std::string& exec) {
    dir.Write("data/applications/web.desktop", "[Desktop Entry]\nExec=" + exec + "\n");
    dir.Write("config/mimeapps.list", "[Default Applications]\nx-scheme-handler/http=web.desktop\n");
  };
  setBrowser("firefox %u");
  EXPECT_FALSE(IsUsingIEAsHttpBrowser());
  setBrowser("wine \"C:\\\\Program Files\\\\Internet Explorer\\\\IEXPLORE.EXE\" %u");
  EXPECT_TRUE(IsUsingIEAsHttpBrowser());
  EXPECT_FALSE(IsUsingIEAsHttpsBrowser());
}
