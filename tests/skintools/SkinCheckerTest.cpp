// The skin checker on a theme with one mistake of each kind (data/Broken),
// and on the sample skins, which check clean.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <karvelui/SkinChecker.h>
#include <karvelui/SkinReader.h>
#include <karvelui/UIControl.h>
#include "skin/SkinTestSupport.h"
#include "skintools/PhotoViewStandIn.h"

namespace KarvelTest {
namespace {

using namespace KarvelUI;

// A control type the library does not know, registered the way a host
// registers its own: the checker learns its record's keys from it.
class CTestStrip : public CUIControl {
 public:
  CTestStrip() { SetTypeName(L"CTestStrip"); }
};

class _TestStripConfig : public _SkinConfig {
 public:
  _TestStripConfig() { Reset(); }
  void Copy(_SkinConfig* source) override {
    if (source) m_szItem = static_cast<_TestStripConfig*>(source)->m_szItem;
  }
  void Reset() override { m_szItem = CSize(64, 64); }
  int Read(CSkinReader* reader) override { return reader ? reader->GetSize(m_szItem, L"ItemSize") : 0; }
  _SkinConfig* Clone() override {
    auto* clone = new _TestStripConfig();
    clone->Copy(this);
    return clone;
  }
  CSize m_szItem;
};

CUIControl* CreateTestStrip(const CString& type) { return type == L"CTestStrip" ? new CTestStrip() : nullptr; }

std::vector<std::string> Lines(const std::vector<SkinFinding>& findings) {
  std::vector<std::string> lines;
  for (const SkinFinding& finding : findings) lines.push_back(CSkinChecker::FormatFinding(finding).ToUtf8());
  return lines;
}

CString Theme(const char* relative) { return LibraryPath(std::filesystem::path(KARVEL_SOURCE_DIR) / relative); }

class SkinCheckerTest : public SkinManagerTest {};

TEST_F(SkinCheckerTest, ReportsEachKindOfMistakeWithFileAndLine) {
  Manager()->RegisterObjectCreateor(&CreateTestStrip);
  Manager()->RegisterSkinCreateor(L"CTestStrip", new _TestStripConfig());
  std::vector<SkinFinding> findings;
  EXPECT_EQ(CSkinChecker::Check(Theme("tests/skintools/data/Broken"), CString(), findings), SKINCHECK_FINDINGS);
  const std::vector<std::string> expected = {
      "Bad/KarvelView.xml:4: XML does not parse: Error reading end tag.",
      "Build.xml:6: type \"CUIButon\" of \"btnGhost\" is no control type the factory makes",
      "Build.xml:7: css entry \"CUIButton Missing\" of \"btnLost\" is not in Default/KarvelView.xml",
      "Build.xml:7: ass entry \"CUIButton Missing\" of \"btnLost\" is not in Default/KarvelView.xml",
      "Default/KarvelView.xml:5: value \"8, 0, 8\" of \"BorderMargin\" is not a rectangle \"a, b, c, d\"",
      "Default/KarvelView.xml:5: value \"yes\" of \"Resize\" is not true or false",
      "Default/KarvelView.xml:8: \"IsRepeat\" is not read by CUIButton's record (misspelt?)",
      "Default/KarvelView.xml:9: \"Focus\" (130, 0, 158, 20) leaves its picture of 140 x 80",
      "Default/KarvelView.xml:10: picture \"Nowhere.png\" does not exist (Default/images/Nowhere.png)",
      "Default/KarvelView.xml:11: element <Imgae> is not read by CUIButton's record (misspelt?)",
      "Default/KarvelView.xml:12: value \"255, 0\" of \"TextColor\" is not a colour \"red, green, blue\" of 0 to 255 each",
      "Default/KarvelView.xml:14: picture \"Broken.png\" cannot be decoded (Default/images/Broken.png)",
      "Default/KarvelView.xml:14: css entry \"CUIButton Unused\" is used by no build node",
      "Default/KarvelView.xml:17: \"ItemSize\" has zero width",
      "Default/KarvelView.xml:23: value \"middle\" of \"DockStyle\" is no layout keyword",
      "Default/KarvelView.xml:24: ass entry \"CUIButton Spare\" is used by no build node",
      "SkinDatas.xml:5: skin \"Gone\" has no Gone/KarvelView.xml",
  };
  EXPECT_EQ(Lines(findings), expected);
}

TEST_F(SkinCheckerTest, SampleSkinsCheckCleanAndAMissingFolderIsUnreadable) {
  CUISkinManager::GetInstance()->RegisterObjectCreateor(&PhotoViewStandIn::Create);
  std::vector<SkinFinding> findings;
  for (const wchar_t* skin : {L"", L"Default", L"Ocean"}) {
    EXPECT_EQ(CSkinChecker::Check(Theme("assets/Theme"), skin, findings), SKINCHECK_CLEAN) << Lines(findings)[0];
    EXPECT_TRUE(findings.empty());
  }
  EXPECT_EQ(CSkinChecker::Check(Theme("tests/skintools/data/None"), CString(), findings), SKINCHECK_UNREADABLE);
}

}  // namespace
}  // namespace KarvelTest
