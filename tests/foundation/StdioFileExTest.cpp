#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <karvelui/StdioFileEx.h>
#include "platform/Paths.h"
#include "support/TempDir.h"

using namespace KarvelUI;
using KarvelTest::TempDir;

namespace {

constexpr UINT kTextRead = CStdioFile::modeRead | CStdioFile::typeText | CStdioFile::shareDenyNone;

CString Lib(const std::filesystem::path& p) { return FromNativePath(p.string()); }

std::string Utf16Bytes(const std::u16string& text) {
  std::string bytes;
  for (char16_t u : text) bytes += {static_cast<char>(u & 0xFF), static_cast<char>(u >> 8)};
  return bytes;
}

std::vector<std::wstring> ReadAll(CStdioFileEx& file) {
  std::vector<std::wstring> lines;
  CString line;
  while (file.ReadString(line)) lines.push_back(line.str());
  return lines;
}

}  // namespace

TEST(StdioFileEx, Utf16FileWithMarkReadsLinesWithoutMarkOrLineEnds) {
  TempDir dir;
  const auto path = dir.Write("u16.txt", "\xff\xfe" + Utf16Bytes(u"Caf\u00e9\r\n\U0001F600 \u5199\nend"));
  CStdioFileEx file;
  ASSERT_TRUE(file.Open(Lib(path), kTextRead));
  EXPECT_TRUE(file.IsFileUnicodeText());
  EXPECT_EQ(file.GetOpenFlags() & (CStdioFile::typeText | CStdioFile::typeBinary), CStdioFile::typeBinary);
  EXPECT_EQ(ReadAll(file), (std::vector<std::wstring>{L"Caf\u00e9", L"\U0001F600 \u5199", L"end"}));

  // Without the text flag nothing is probed: the bytes are narrow text.
  CStdioFileEx raw;
  ASSERT_TRUE(raw.Open(Lib(path), CStdioFile::modeRead));
  EXPECT_FALSE(raw.IsFileUnicodeText());
  CString first;
  ASSERT_TRUE(raw.ReadString(first));
  EXPECT_NE(first.Left(4), CString(L"Caf\u00e9"));
}

TEST(StdioFileEx, NarrowLinesEndsAndLongLinePieces) {
  TempDir dir;
  const std::string longLine(5000, 'L');
  const auto path = dir.Write("n.txt", "\xef\xbb\xbfone\r\ntwo\r\r\n" + longLine + "\nlast");
  CStdioFileEx file;
  ASSERT_TRUE(file.Open(Lib(path), kTextRead));
  EXPECT_FALSE(file.IsFileUnicodeText());
  // A UTF-8 mark is not recognised; a long line comes in pieces of 4095.
  EXPECT_EQ(ReadAll(file), (std::vector<std::wstring>{L"\uFEFFone", L"two\r", std::wstring(4095, L'L'),
                                                      std::wstring(905, L'L'), L"last"}));
}

TEST(StdioFileEx, WriteUnicodeMarksOnceAndNarrowUsesTheCodePage) {
  TempDir dir;
  const struct {
    const char* name;
    UINT extraMode;
    UINT codePage;  // 0: the default
    std::vector<const wchar_t*> lines;
    std::string bytes;
  } cases[] = {
      {"w16.txt", CStdioFileEx::modeWriteUnicode, 0, {L"A\u00e9\r\n", L"B"}, "\xff\xfe" + Utf16Bytes(u"A\u00e9\r\nB")},
      {"latin.txt", 0, 28591, {L"\u00e9\u5199\r\n"}, "\xe9#\r\n"},
      {"utf8.txt", 0, 0, {L"\u5199\r\n"}, "\xe5\x86\x99\r\n"},
  };
  for (const auto& c : cases) {
    const CString path = Lib(dir.Path() / c.name);
    {
      CStdioFileEx file;
      if (c.codePage) file.SetCodePage(c.codePage);
      ASSERT_TRUE(file.Open(path, CStdioFile::modeCreate | CStdioFile::modeWrite | c.extraMode));
      for (const wchar_t* line : c.lines) ASSERT_TRUE(file.WriteString(line));
    }
    EXPECT_EQ(TempDir::Read(ToNativePath(path)), c.bytes) << c.name;
  }
  CStdioFileEx back;
  ASSERT_TRUE(back.Open(Lib(dir.Path() / "w16.txt"), kTextRead));
  EXPECT_EQ(ReadAll(back), (std::vector<std::wstring>{L"A\u00e9", L"B"}));
}
