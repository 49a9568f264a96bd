#include <gtest/gtest.h>

#include <stdlib.h>

#include <regex>
#include <tuple>
#include <vector>

#include <karvelui/Helpers.h>
#include "platform/Paths.h"
#include "support/TempDir.h"

using namespace KarvelUI;
using KarvelTest::TempDir;

TEST(Conversions, ParsingAndSearchingRawCharacters) {
  const wchar_t text[] = L"123abc", negative[] = L"-5";
  const wchar_t* end = nullptr;
  // Where the number ends, null when it fills the length; no sign.
  using Parsed = std::pair<long, const wchar_t*>;
  for (const auto& [length, source, expected] :
       {std::tuple{6, text, Parsed{123, text + 3}}, std::tuple{3, text, Parsed{123, nullptr}},
        std::tuple{2, negative, Parsed{0, negative}}}) {
    end = text + 1;  // none of the expected ends
    const long value = xatol(source, length, &end);
    EXPECT_EQ(Parsed(value, end), expected) << length;
  }
  EXPECT_EQ(xatol(text, 2, nullptr), 12);
  EXPECT_EQ(std::make_tuple(find(L"abcabc", 6, L'c'), find(L"abcabc", 2, L'c')), std::make_tuple(3u, 0u));  // 1-based
  EXPECT_EQ(bin2hex(std::string("\x0a\xff\x00\x7e", 4)), CString(L"0aff007e"));
  EXPECT_EQ(ultoa10(4294967295u), L"4294967295");
}

TEST(Conversions, NumbersThroughTextAndUtf16Bytes) {
  EXPECT_EQ(Int2Bytes(-42), std::string("-\0" "4\0" "2\0", 6));
  EXPECT_EQ(Bytes2Int(CString_to_Bytes(L"  17xyz")), 17);
  EXPECT_EQ(Bytes2DWORD64(DWORD642Bytes(9000000000ULL)), 9000000000ULL);
  EXPECT_EQ(std::make_tuple(CString2Int(L"99999999999"), CString2Int(L"-12")), std::make_tuple(2147483647, -12));
  EXPECT_EQ(CString2DWORD64(L"12345678901"), 12345678901ULL);
  EXPECT_EQ((std::vector{CString2UInt(L"0x1F"), CString2UInt(L"017"), CString2UInt(L"18446744073709551615")}),
            (std::vector<decltype(CString2UInt(L""))>{31u, 15u, 18446744073709551615ULL}));
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
  // Each conversion's count, and what it left in `back`.
  std::vector<std::pair<int, CString>> results;
  results.emplace_back(MBCS_to_CString(narrow.c_str(), back), back);
  results.emplace_back(MBCS_to_CString(nullptr, back), back);
  results.emplace_back(utf8_to_CString(std::string("ab\0cd", 5), back), back);
  EXPECT_EQ(results, (std::vector<std::pair<int, CString>>{{9, text}, {0, CString()}, {2, CString(L"ab")}}));
}

TEST(SystemHelpers, FilesVersionFontAndFolders) {
  TempDir dir;
  const CString file = FromNativePath(dir.Write("f.bin", std::string(300, 'z')).string());
  EXPECT_EQ(GetFileSize(file), 300u);
  DeleteFileW(file);
  EXPECT_TRUE(!IsFileExist(file) && GetFileSize(file) == 0u);
  DeleteFileW(file);  // already gone: swallowed
  DeleteFileW(nullptr);

  EXPECT_TRUE(std::regex_match(GetOSVersion().ToUtf8(), std::regex(R"(256\.1\.\d+\.\d+)")));
  EXPECT_FALSE(IsVistaWindows());
  LOGFONT font;
  font.lfItalic = 1;
  GetDefaultLOGFONT(font);
  EXPECT_EQ(std::make_tuple(font.lfHeight, font.lfWeight, font.lfItalic), std::make_tuple(LONG{12}, LONG{FW_NORMAL}, BYTE{0}));
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
  EXPECT_FALSE(IsUsingIEAsHttpBrowser() || IsUsingIEAsHttpsBrowser());
  auto setBrowser = [&](const std::string& exec) {
    dir.Write("data/applications/web.desktop", "[Desktop Entry]\nExec=" + exec + "\n");
    dir.Write("config/mimeapps.list", "[Default Applications]\nx-scheme-handler/http=web.desktop\n");
  };
  setBrowser("firefox %u");
  EXPECT_FALSE(IsUsingIEAsHttpBrowser());
  setBrowser("wine \"C:\\\\Program Files\\\\Internet Explorer\\\\IEXPLORE.EXE\" %u");
  EXPECT_TRUE(IsUsingIEAsHttpBrowser() && !IsUsingIEAsHttpsBrowser());
}
