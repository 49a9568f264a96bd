#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <tuple>
#include <vector>

#include <karvelui/CommonString.h>
#include <karvelui/SkinReader.h>
#include "SkinTestSupport.h"
#include "platform/FileSystem.h"
#include "support/TraceCapture.h"

using namespace KarvelUI;
using testing::ElementsAre;

namespace {

// A configuration record as a control type would define it.
struct TestConfig : public _SkinConfig {
  static inline int s_released = 0;

  ~TestConfig() override { ++s_released; }
  void Copy(_SkinConfig* source) override {
    if (auto* other = static_cast<TestConfig*>(source)) *this = *other;
  }
  void Reset() override {
    m_dwColor = 0xFF808080;
    m_nSize = 3;
    m_strTag = L"prototype";
    m_image.Reset();
  }
  int Read(CSkinReader* reader) override {
    if (!reader) return 0;
    reader->GetColor(m_dwColor, L"Color");
    reader->GetInt(m_nSize, L"Size");
    reader->GetImage(m_image, L"Image");
    return 1;
  }
  _SkinConfig* Clone() override { return new TestConfig(*this); }

  DWORD m_dwColor = 0xFF808080;
  int m_nSize = 3;
  CString m_strTag = L"prototype";
  _ImageConfig m_image;
};

const char kBuild[] = "<BuildRoot><MainForm><ok type=\"TestButton\" css=\"ok\"/></MainForm></BuildRoot>";
const char kSkinList[] =
    "<SkinsRoot><Skin Name=\"Default\" Text=\"Classic\"/><Skin Name=\"Blue\" Text=\"Deep blue\"/>"
    "<Other Name=\"Broken\" Text=\"Broken one\"/></SkinsRoot>";
const char kDefaultSkin[] =
    "<UIRoot><css>"
    "<TestButton><ok Color=\"10, 20, 30\" Size=\"5\"><Image File=\"ok.png\"/></ok>"
    "<onlyDefault Size=\"8\"><Image File=\"def.png\"/></onlyDefault></TestButton>"
    "<CUIBottomPanel><bar Size=\"1\"/></CUIBottomPanel>"
    "<text><Title TextColor=\"1, 2, 3\" FontFace=\"DejaVu Sans\" FontSize=\"20\" FontBold=\"true\"/>"
    "<Small FontSize=\"9\"/></text>"
    "</css><ass>"
    "<TestButton><ok Bounds=\"1, 2, 3, 4\" DockStyle=\"left\"/></TestButton>"
    "</ass></UIRoot>";
const char kBlueSkin[] =
    "<UIRoot><css><TestButton><ok Size=\"7\"><Image File=\"blue-ok.png\"/></ok></TestButton>"
    "<text><Title TextColor=\"200, 0, 0\"/></text></css>"
    "<ass><TestButton><ok AnchorStyle=\"center\"/></TestButton></ass></UIRoot>";

class SkinDataTest : public KarvelTest::SkinManagerTest {
 protected:
  void SetUp() override {
    TestConfig::s_released = 0;
    Write("Theme/Build.xml", kBuild);
    Write("Theme/SkinDatas.xml", kSkinList);
    Write("Theme/Default/KarvelView.xml", kDefaultSkin);
    Write("Theme/Blue/KarvelView.xml", kBlueSkin);
    Write("Theme/Broken/KarvelView.xml", "<UIRoot><css>");
  }

  CUISkinManager* Loaded() {
    CUISkinManager* manager = Manager();
    EXPECT_EQ(manager->InitSkinData(), 1);
    manager->RegisterSkinCreateor(L"TestButton", new TestConfig());
    return manager;
  }

  TestConfig* Css(const wchar_t* css, const wchar_t* type = L"TestButton") {
    _SkinConfig* out = nullptr;
    Manager()->ReadCssData(css, type, out);
    m_configs.emplace_back(out);
    return static_cast<TestConfig*>(out);
  }

  CString Path(const CString& relative) { return CommonString::ReparsePath(AppPath() + relative); }

  std::vector<SkinConfigPtr> m_configs;
};

std::vector<std::wstring> SkinNames(CUISkinManager* manager) {
  CArray<SkinItem> items;
  items.Add(SkinItem(L"stale", L"stale"));
  manager->GetAllSkinItem(items);
  std::vector<std::wstring> names;
  for (const SkinItem& item : items) names.push_back(item.m_strName.str() + L"=" + item.m_strText.str());
  return names;
}

}  // namespace

TEST_F(SkinDataTest, InitSkinDataLoadsBuildFileAndSkinListAndAppendsOnEveryCall) {
  CUISkinManager* manager = Loaded();
  EXPECT_NE(manager->GetBuildNode(L"BuildRoot MainForm"), nullptr);
  EXPECT_THAT(SkinNames(manager), ElementsAre(L"Default=Classic", L"Blue=Deep blue", L"Broken=Broken one"));
  EXPECT_EQ(manager->GetSkinNameText(L"BLUE") + L"|" + manager->GetSkinNameText(L"Purple") + L"|" +
                manager->GetCurrentSkinName(),
            L"Deep blue||Default");
  EXPECT_EQ(manager->InitSkinData(), 1);
  EXPECT_EQ(SkinNames(manager).size(), 6u);
}

TEST_F(SkinDataTest, InitSkinDataStopsAtTheFirstMissingFileWithItsTraceLine) {
  KarvelTest::TraceCapture trace;
  std::filesystem::remove(m_app.Path() / "Theme/Build.xml");
  EXPECT_EQ(Manager()->InitSkinData(), 0);
  EXPECT_TRUE(SkinNames(Manager()).empty());
  Write("Theme/Build.xml", "<BuildRoot>");  // malformed counts as missing
  EXPECT_EQ(Manager()->InitSkinData(), 0);
  Write("Theme/Build.xml", kBuild);
  std::filesystem::remove(m_app.Path() / "Theme/SkinDatas.xml");
  EXPECT_EQ(Manager()->InitSkinData(), 0);
  Write("Theme/SkinDatas.xml", kSkinList);
  Write("Theme/Default/KarvelView.xml", "not xml");
  EXPECT_EQ(Manager()->InitSkinData(), 0);
  const std::wstring prefix = L"CUISkinManager InitSkinData()->";
  EXPECT_THAT(trace.Messages(),
              ElementsAre(prefix + L"LoadSkinBuidFile() occur Error", prefix + L"LoadSkinBuidFile() occur Error",
                          prefix + L"LoadAllSkinItem() occur Error", prefix + L"LoadDefaultSkin() occur Error"));
  EXPECT_EQ(trace.Lines()[0].level, TRACE_LEVEL_ERROR);
  EXPECT_NE(Manager()->GetBuildNode(L"BuildRoot MainForm"), nullptr);  // what loaded before stays usable
}

TEST_F(SkinDataTest, CssEntriesOverwriteOnlyTheirOwnKeysAndTheCurrentSkinsEntryWinsWhole) {
  Loaded();
  TestConfig* ok = Css(L"ok");
  ASSERT_NE(ok, nullptr);
  EXPECT_EQ(std::make_tuple(ok->m_dwColor, ok->m_nSize, ok->m_image.m_strFile, ok->m_strTag),
            std::make_tuple(0xFF0A141Eu, 5, Path(L"Theme\\Default\\images\\ok.png"), CString(L"prototype")));
  EXPECT_NE(Css(L"ok"), ok);  // each call hands out a new record

  Manager()->SetSkinFile(L"Blue");
  ok = Css(L"ok");  // the colour is not inherited from the default skin's "ok"
  EXPECT_EQ(std::make_tuple(ok->m_nSize, ok->m_dwColor, ok->m_image.m_strFile),
            std::make_tuple(7, 0xFF808080u, Path(L"Theme\\Blue\\images\\blue-ok.png")));
  TestConfig* fallback = Css(L"onlyDefault");
  EXPECT_EQ(std::make_tuple(fallback->m_nSize, fallback->m_image.m_strFile),
            std::make_tuple(8, Path(L"Theme\\Default\\images\\def.png")));
}

TEST_F(SkinDataTest, MissingOrEmptyCssLeavesTheOutputAloneAndOnlyAMissingPrototypeIsTraced) {
  Loaded();
  KarvelTest::TraceCapture trace;
  _SkinConfig* const stale = reinterpret_cast<_SkinConfig*>(0x1234);
  _SkinConfig* out = stale;
  const std::pair<const wchar_t*, const wchar_t*> lookups[] = {
      {L"", L"TestButton"}, {L"nothing", L"TestButton"}, {L"ok", L"CUIUnknown"}, {L"bar", L"CUIBottomPanel"}};
  for (const auto& [css, type] : lookups) Manager()->ReadCssData(css, type, out);
  EXPECT_EQ(out, stale);
  ASSERT_EQ(trace.Lines().size(), 1u);
  EXPECT_EQ(std::make_tuple(trace.Lines()[0].level, trace.Lines()[0].message),
            std::make_tuple(TRACE_LEVEL_ERROR,
                           std::wstring(L"SkinManager ReadCssData error, No defualt config: css(bar), type(CUIBottomPanel)\n")));
}

TEST_F(SkinDataTest, ReplacingAPrototypeDoesNotReleaseTheOldOne) {
  CUISkinManager* manager = Loaded();
  auto* first = new TestConfig();
  auto* second = new TestConfig();
  second->m_strTag = L"second";
  manager->RegisterSkinCreateor(L"TestLabel", first);
  manager->RegisterSkinCreateor(L"TestLabel", second);
  EXPECT_EQ(TestConfig::s_released, 0);
  Write("Theme/Default/KarvelView.xml", "<UIRoot><css><TestLabel><title Size=\"4\"/></TestLabel></css></UIRoot>");
  manager->InitSkinData();
  EXPECT_EQ(Css(L"title", L"TestLabel")->m_strTag, L"second");
  m_configs.clear();
  EXPECT_EQ(TestConfig::s_released, 1);
  CUISkinManager::FreeInstance();  // releases "TestButton" and the second "TestLabel"
  EXPECT_EQ(TestConfig::s_released, 3);
  first->Release();
}

TEST_F(SkinDataTest, TextStylesStartFromTheDefaultFontAndAreCachedPerSkin) {
  CUISkinManager* manager = Loaded();
  LOGFONTW font{};
  font.lfItalic = 1;
  DWORD color = 0;
  manager->GetFontAndColor(L"Title", font, color);
  EXPECT_STREQ(font.lfFaceName, L"DejaVu Sans");
  EXPECT_EQ(std::make_tuple(color, font.lfHeight, font.lfWeight, font.lfItalic),
            std::make_tuple(0xFF010203u, LONG{20}, LONG{FW_BOLD}, BYTE{0}));
  // "Small" names no colour: the caller's colour is what gets cached.
  color = 0x11111111;
  manager->GetFontAndColor(L"Small", font, color);
  EXPECT_STREQ(font.lfFaceName, L"SimSun");
  color = 0x22222222;
  font.lfHeight = 50;
  manager->GetFontAndColor(L"Small", font, color);
  manager->GetFontAndColor(L"Nothing", font, color);  // unknown styles leave both outputs
  EXPECT_EQ(std::make_tuple(color, font.lfHeight), std::make_tuple(0x11111111u, LONG{9}));
  // A skin change empties the cache: the current skin's style wins now.
  manager->SetSkinFile(L"Blue");
  manager->GetFontAndColor(L"Title", font, color);
  EXPECT_EQ(std::make_tuple(color, font.lfHeight), std::make_tuple(0xFFC80000u, LONG{12}));
  color = 0x33333333;
  manager->GetFontAndColor(L"Small", font, color);
  EXPECT_EQ(color, 0x33333333u);
}

TEST_F(SkinDataTest, AssDataReadsOntoTheCallersRecordFromTheCurrentSkinFirst) {
  CUISkinManager* manager = Loaded();
  _AssData data;
  data.m_strTipID = L"tip";
  manager->ReadAssData(L"ok", L"TestButton", &data);
  EXPECT_EQ(std::make_tuple(data.m_rcBounds, data.m_nStyle, data.m_strTipID),
            std::make_tuple(CRect(1, 2, 4, 6), int{DOCK_LEFT}, CString(L"tip")));
  manager->SetSkinFile(L"Blue");
  _AssData blue;
  blue.m_rcBounds = CRect(7, 7, 8, 8);
  manager->ReadAssData(L"ok", L"TestButton", &blue);
  EXPECT_EQ(std::make_tuple(blue.m_nStyle, blue.m_rcBounds),  // the bounds not from the default skin
            std::make_tuple(int{ANCHOR_CENTER}, CRect(7, 7, 8, 8)));
  blue.m_nStyle = 5;
  manager->ReadAssData(L"missing", L"TestButton", &blue);
  manager->ReadAssData(L"", L"TestButton", &blue);
  EXPECT_EQ(blue.m_nStyle, 5);
  manager->ReadAssData(L"ok", L"TestButton", nullptr);
}

namespace {
int g_broadcasts = 0;
int g_changingDuringBroadcast = -1;
void CountBroadcast() {
  ++g_broadcasts;
  g_changingDuringBroadcast = CUISkinManager::GetInstance()->IsThemeChanging();
}
}  // namespace

TEST_F(SkinDataTest, SetCurrentSkinReskinsOnlyOnARealChangeAndUnknownOrBrokenSkinsLeaveTheDefaultAnswering) {
  CUISkinManager* manager = Loaded();
  CUISkinManager::SetFormsSkinChanger(&CountBroadcast);
  manager->SetCurrentSkin(L"DEFAULT");
  EXPECT_EQ(g_broadcasts, 0);
  manager->SetCurrentSkin(L"blue");
  EXPECT_EQ(std::make_tuple(g_broadcasts, g_changingDuringBroadcast, manager->IsThemeChanging(), Css(L"ok")->m_nSize),
            std::make_tuple(1, 1, 0, 7));
  // Its files live under the installed skin's own spelling.
  EXPECT_EQ(manager->TranslatePath(L"x.png", 0), Path(L"Theme\\Blue\\images\\x.png"));
  manager->SetCurrentSkin(L"Blue");
  EXPECT_EQ(g_broadcasts, 1);
  CUISkinManager::SetFormsSkinChanger(nullptr);

  EXPECT_EQ(manager->SetSkinFile(L"Purple"), 1);
  EXPECT_EQ(std::make_tuple(manager->GetCurrentSkinName(), Css(L"ok")->m_nSize), std::make_tuple(CString(L"Purple"), 5));
  EXPECT_EQ(manager->SetSkinFile(L"Broken"), 0);
  EXPECT_EQ(Css(L"ok")->m_nSize, 5);
}

TEST_F(SkinDataTest, TranslatePathResolvesTheThreePrefixes) {
  CUISkinManager* manager = Loaded();
  manager->SetSkinFile(L"Blue");
  const std::tuple<const wchar_t*, int, CString> paths[] = {
      {L"", 0, L""},
      {L"%x.png", 0, Path(L"x.png")},
      {L"@a\\b.png", 0, Path(L"Theme\\Default\\a\\b.png")},
      {L"btn.png", 0, Path(L"Theme\\Blue\\images\\btn.png")},
      {L"sub/btn.png", 1, Path(L"Theme\\Default\\images\\sub\\btn.png")}};
  for (const auto& [path, fromDefault, expected] : paths)
    EXPECT_EQ(manager->TranslatePath(path, fromDefault), expected);
  Write("Theme/Blue/images/sub/real.png", "png");  // the result names the file on disk
  EXPECT_TRUE(std::filesystem::exists(ToNativePath(manager->TranslatePath(L"sub\\real.png", 0))));
}

TEST_F(SkinDataTest, ChosenSkinIsSavedOnDestructionAndRestoredByTheNextRun) {
  Loaded()->SetCurrentSkin(L"Blue");
  CUISkinManager::FreeInstance();
  EXPECT_EQ(Read("PreSkin.xml"), "<PreSkin Name=\"Blue\" />\n");
  EXPECT_EQ(Loaded()->GetCurrentSkinName(), L"Blue");
  EXPECT_EQ(Css(L"ok")->m_nSize, 7);
  // Naming the default skin in any case, or not a PreSkin, loads no second skin.
  for (const char* previous : {"<PreSkin Name=\"DEFAULT\"/>", "<Other Name=\"Blue\"/>"}) {
    CUISkinManager::FreeInstance();
    Write("PreSkin.xml", previous);
    EXPECT_EQ(Loaded()->GetCurrentSkinName(), L"Default") << previous;
  }
  CUISkinManager::FreeInstance();
  EXPECT_EQ(Read("PreSkin.xml"), "<PreSkin Name=\"Default\" />\n");
}

// The program folder made read-only and the data folder redirected for one
// test. Permissions do not stop root: then the hook reports the folder so.
struct ReadOnlyProgramFolder {
  ReadOnlyProgramFolder(const std::filesystem::path& native, const CString& path) : folder(native) {
    if (const char* home = std::getenv("XDG_DATA_HOME")) oldHome = home;
    setenv("XDG_DATA_HOME", data.Path().c_str(), 1);
    std::filesystem::permissions(folder, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    if (IsFolderWritable(path)) SetFolderWritableHook([path](const CString& f) { return f != path; });
  }
  ~ReadOnlyProgramFolder() {
    MakeWritable();
    setenv("XDG_DATA_HOME", oldHome.c_str(), 1);
  }
  void MakeWritable() {
    SetFolderWritableHook(nullptr);
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
  }
  KarvelTest::TempDir data;
  std::filesystem::path folder;
  std::string oldHome;
};

TEST_F(SkinDataTest, WithAReadOnlyProgramFolderTheChoiceIsKeptInTheDataFolderAndReadAfterTheProgramFolder) {
  ReadOnlyProgramFolder readOnly(m_app.Path(), AppPath());
  Loaded()->SetCurrentSkin(L"Blue");
  CUISkinManager::FreeInstance();
  EXPECT_FALSE(Exists("PreSkin.xml"));
  EXPECT_EQ(KarvelTest::TempDir::Read(readOnly.data.Path() / "Orvane/Karvel/PreSkin.xml"),
            "<PreSkin Name=\"Blue\" />\n");
  EXPECT_EQ(Loaded()->GetCurrentSkinName(), L"Blue");
  CUISkinManager::FreeInstance();

  readOnly.MakeWritable();
  Write("PreSkin.xml", "<PreSkin Name=\"Default\"/>");
  EXPECT_EQ(Loaded()->GetCurrentSkinName(), L"Default");
}

namespace {
int g_button = 0, g_menu = 0;
CUIControl* const kButton = reinterpret_cast<CUIControl*>(&g_button);
CUIControl* const kMenu = reinterpret_cast<CUIControl*>(&g_menu);
CUIControl* BuiltInCreator(const CString& type) { return type == L"TestButton" ? kButton : nullptr; }
// Cannot win over the built-in creator for a button.
CUIControl* HostCreator(const CString& type) { return type == L"CUIMenu" || type == L"TestButton" ? kMenu : nullptr; }
void RegisterBuiltIns(CUISkinManager& manager) {
  manager.RegisterObjectCreateor(&BuiltInCreator);
  manager.RegisterSkinCreateor(L"TestButton", new TestConfig());
}
}  // namespace

TEST_F(SkinDataTest, CreatorsAreAskedInRegistrationOrderWithTheBuiltInOneFirst) {
  CUISkinManager::SetBuiltInRegistration(&RegisterBuiltIns);
  CUISkinManager* manager = Manager();
  CUISkinManager::SetBuiltInRegistration(nullptr);
  EXPECT_EQ(manager->CreateSkinObject(L"CUIMenu"), nullptr);
  EXPECT_EQ(manager->RegisterObjectCreateor(&HostCreator), 1);
  EXPECT_EQ((std::vector{manager->CreateSkinObject(L"TestButton"), manager->CreateSkinObject(L"CUIMenu"),
                         manager->CreateSkinObject(L"testbutton")}),
            (std::vector<CUIControl*>{kButton, kMenu, nullptr}));
  ASSERT_EQ(manager->InitSkinData(), 1);
  EXPECT_EQ(Css(L"ok")->m_nSize, 5);  // the built-in prototype answers css lookups
}
