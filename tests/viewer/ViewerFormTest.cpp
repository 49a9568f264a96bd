// The viewer's main form from the committed skins, painted off screen: the
// context menu's entries do what they say (skins, turns, zoom, clipboard,
// the swirl, the modal forms, Exit), and the headless screenshot of the
// program shows the first bundled photo in the photo view.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <karvelui/BandedSwirlEffect.h>
#include <karvelui/Clipboard.h>
#include <karvelui/DXCore.h>
#include <karvelui/IMenu.h>
#include <karvelui/MessageQueue.h>
#include <karvelui/UIButton.h>
#include <karvelui/UISlider.h>
#include <karvelui/UIManager.h>

#include "ContextMenu.h"
#include "MainForm.h"
#include "PathText.h"
#include "PhotoView.h"
#include "skin/SkinTestSupport.h"
#include "support/GLTesting.h"
#include "support/PictureFiles.h"
#include "support/WindowTesting.h"

namespace KarvelTest {
namespace {

namespace fs = std::filesystem;
using namespace KarvelView;

const fs::path kAssets = fs::path(KARVEL_SOURCE_DIR) / "assets";
constexpr float kQuarter = 1.5707964f;
constexpr float kThreeQuarters = 4.712389f;
constexpr UINT kModalTimer = 77;

fs::path FirstPhoto() {
  std::vector<fs::path> photos;
  for (const auto& entry : fs::directory_iterator(kAssets / "Photos")) photos.push_back(entry.path());
  return *std::min_element(photos.begin(), photos.end());
}

class ViewerFormTest : public SkinManagerTest {
 protected:
  void SetUp() override {
    // A private copy: freeing the skin manager writes PreSkin.xml beside Theme.
    fs::copy(kAssets / "Theme", m_app.Path() / "Theme", fs::copy_options::recursive);
    ASSERT_EQ(DXCore::InitInstance(), S_OK);
    Manager();
    CMainForm::RegisterControls();
    ASSERT_EQ(Manager()->InitSkinData(), 1);
    form = new CMainForm();
    ASSERT_TRUE(form->Open());
    ASSERT_NE(form->GetPhotoView(), nullptr);
    form->GetPhotoView()->SetProgressiveLoading(FALSE);
  }
  void TearDown() override {
    if (CUIManager::GetInstance()->IsExist(form) != -1) form->Release();
    DropQuit();
    DXCore::ExitInstance();
    CUIManager::FreeInstance();
    SkinManagerTest::TearDown();
  }
  // The main form ends the program when it goes; later tests go on.
  static void DropQuit() {
    MSG msg;
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE))
      if (msg.message != WM_QUIT && !WalkPreTranslateTree(&msg)) DispatchMessageW(&msg);
  }
  void ShowFirstPhoto() {
    form->OpenPath(LibraryPath(kAssets / "Photos"));
    form->OnPaint(0);
  }
  // Chooses the entry with `id` as a click would: the callback, then the tree goes.
  void Choose(int id) {
    CContextMenu menu(*form);
    IMenu* root = menu.Build();
    IMenu* entry = root->FindIMenu(id);
    ASSERT_NE(entry, nullptr) << id;
    ASSERT_FALSE(entry->IsDisabled()) << id;
    IMenu::InvokeMenu(root, entry, nullptr);
  }
  // `act` runs on the modal form that the next Choose opens.
  void WhenModal(std::function<void(CUIForm&)> act) {
    m_modalAct = std::move(act);
    form->RegisterTimerHandler(kModalTimer, 10, UITimerHandler(this, &ViewerFormTest::OnModalTimer));
    m_clock.Advance(10);
  }
  void OnModalTimer(unsigned int) {
    form->UnRegisterTimerHandler(kModalTimer);
    CPtrArray modal;
    CUIManager::GetInstance()->GetModalForms(modal);
    ASSERT_EQ(modal.GetSize(), 1);
    m_modalAct(*static_cast<CUIForm*>(modal[0]));
  }

  CMainForm* form = nullptr;
  ManualClock m_clock;
  std::function<void(CUIForm&)> m_modalAct;
};

TEST_F(ViewerFormTest, WithoutAPictureOnlyThePictureCommandsAreDisabled) {
  CContextMenu menu(*form);
  IMenu* root = menu.Build();
  for (int id : {CContextMenu::kRotateLeft, CContextMenu::kFit, CContextMenu::kCopyPath, CContextMenu::kBandedSwirl})
    EXPECT_TRUE(root->FindIMenu(id)->IsDisabled()) << id;
  for (int id : {CContextMenu::kOpenFolder, CContextMenu::kAbout, CContextMenu::kExit})
    EXPECT_FALSE(root->FindIMenu(id)->IsDisabled()) << id;
  root->Release();
}

TEST_F(ViewerFormTest, ASkinEntrySwitchesEveryOpenFormAndIsSavedAsTheChoice) {
  auto* other = new CUIForm();
  other->SetObjectID(L"MainForm");
  ASSERT_TRUE(other->Create(WS_POPUP, L"KarvelViewOther", L"Other", nullptr, 0, CRect(0, 0, 300, 200)));
  CContextMenu menu(*form);
  IMenu* root = menu.Build();
  EXPECT_EQ(root->FindIMenu(CContextMenu::kFirstSkin)->GetCaption(), L"Graphite");
  EXPECT_TRUE(root->FindIMenu(CContextMenu::kFirstSkin)->IsChecked());
  IMenu* ocean = root->FindIMenu(CContextMenu::kFirstSkin + 1);
  EXPECT_FALSE(ocean->IsChecked());
  IMenu::InvokeMenu(root, ocean, nullptr);

  EXPECT_EQ(form->GetAssData().m_rcMargin, CRect(12, 0, 12, 12));  // Ocean's frame
  EXPECT_EQ(other->GetAssData().m_rcMargin, CRect(12, 0, 12, 12));
  root = menu.Build();
  EXPECT_TRUE(root->FindIMenu(CContextMenu::kFirstSkin + 1)->IsChecked());
  root->Release();
  other->Release();
  form->Release();
  DropQuit();
  CUISkinManager::FreeInstance();
  EXPECT_NE(Read("PreSkin.xml").find("Ocean"), std::string::npos) << Read("PreSkin.xml");
}

TEST_F(ViewerFormTest, TurnsAreStoredPerFileAndZoomCommandsReachTheView) {
  ShowFirstPhoto();
  const CString shown = form->GetShownPath();
  CPhotoView* view = form->GetPhotoView();
  Choose(CContextMenu::kRotateRight);
  EXPECT_EQ(view->GetStoredRotation(shown), kQuarter);
  Choose(CContextMenu::kRotateLeft);
  Choose(CContextMenu::kRotateLeft);
  EXPECT_EQ(view->GetStoredRotation(shown), kThreeQuarters);

  Choose(CContextMenu::kActualSize);
  EXPECT_EQ(view->GetZoomPercent(), 100);
  EXPECT_FALSE(view->IsFitted());
  Choose(CContextMenu::kFit);
  EXPECT_TRUE(view->IsFitted());
}

TEST_F(ViewerFormTest, TheZoomSliderAndThePhotoViewFollowEachOther) {
  ShowFirstPhoto();
  auto* slider = static_cast<CUISlider*>(form->FindControlRecusive(L"sldZoom"));
  CPhotoView* view = form->GetPhotoView();
  view->ZoomAt(2, view->GetBoundsSmall().CenterPoint());  // the wheel
  EXPECT_EQ(view->GetZoomPercent(), 150);
  EXPECT_EQ(slider->GetPosition(), 150);
  slider->SetPosition(220);  // as a drag leaves it
  slider->FireEvent(UI_EVENT_SLIDER_CHANGED, slider);
  EXPECT_EQ(view->GetZoomPercent(), 220);
}

TEST_F(ViewerFormTest, AZoomedPhotoStaysInsideItsView) {
  ShowFirstPhoto();
  form->StepPicture(1);  // an opaque photo: ColourChart.jpg
  form->OnPaint(0);
  const Frame fitted = ReadBack(form->GetRenderDevice()->GetD3DDevice());
  const CRect view = form->GetPhotoView()->GetBoundsSmall();
  form->GetPhotoView()->ZoomAt(4, view.CenterPoint());
  form->OnPaint(0);
  const Frame zoomed = ReadBack(form->GetRenderDevice()->GetD3DDevice());
  const int x = view.CenterPoint().x;
  for (int y : {int(view.top) - 1, int(view.bottom)})  // the caption's edge, the tool bar's
    EXPECT_EQ(zoomed.At(x, y), fitted.At(x, y)) << y;
  EXPECT_NE(zoomed.At(x, view.top + 1), fitted.At(x, view.top + 1));  // the photo fills the view
}

TEST_F(ViewerFormTest, CopyPathPutsTheSystemsFormOfThePathOnTheClipboard) {
  ShowFirstPhoto();
  Choose(CContextMenu::kCopyPath);
  std::vector<BYTE> data;
  ASSERT_TRUE(GetClipboardData(CF_UNICODETEXT, data));
  std::wstring text;  // UTF-16 units with a terminator; the path is plain ASCII
  for (size_t i = 0; i + 1 < data.size() && (data[i] || data[i + 1]); i += 2)
    text += static_cast<wchar_t>(data[i] | data[i + 1] << 8);
  EXPECT_EQ(CString(text.c_str()).ToUtf8(), FirstPhoto().string());
}

TEST_F(ViewerFormTest, BandedSwirlPlaysOverTheShownPhoto) {
  BandedSwirlEffect::SetShaderPath(CString((kAssets / "BandedSwirl.fx").string().c_str()));
  ShowFirstPhoto();
  Choose(CContextMenu::kBandedSwirl);
  EXPECT_TRUE(form->GetSwirl().IsPlaying());
  form->GetSwirl().Stop();
}

TEST_F(ViewerFormTest, OpenFolderHandsTheTypedFolderToOpenPath) {
  TempDir folder;
  const fs::path picture = folder.Write("only.jpg", MakeJpeg(40, 30));
  WhenModal([&](CUIForm& modal) {
    EXPECT_EQ(modal.GetObjectID(), L"FolderForm");
    for (char c : folder.Path().string() + "x") modal.SendMessage(WM_CHAR, static_cast<WPARAM>(c));
    modal.SendMessage(WM_KEYDOWN, VK_BACK);
    modal.SendMessage(WM_KEYDOWN, VK_RETURN);
  });
  Choose(CContextMenu::kOpenFolder);
  EXPECT_EQ(NativePath(form->GetShownPath()), picture.string());
}

TEST_F(ViewerFormTest, AboutShowsItsFormUntilOkAndExitClosesTheWindow) {
  CString title;
  WhenModal([&](CUIForm& modal) {
    title = modal.GetObjectID();
    EXPECT_NE(modal.FindControlRecusive(L"lblAboutText"), nullptr);
    static_cast<CUIButton*>(modal.FindControlRecusive(L"btnOK"))->OnClick();
  });
  Choose(CContextMenu::kAbout);
  EXPECT_EQ(title, L"AboutForm");
  EXPECT_TRUE(form->IsWindowEnabled());

  Choose(CContextMenu::kExit);
  DropQuit();
  EXPECT_EQ(CUIManager::GetInstance()->IsExist(form), -1);
}

// The program itself, off screen: the first bundled photo, fitted (it is
// smaller than the view, so shown pixel for pixel) and centred in the view,
// blended over the form where it is translucent.
TEST_F(ViewerFormTest, TheHeadlessScreenshotShowsTheFirstPhotoInTheView) {
  const fs::path shot = m_app.Path() / "shot.png";
  const std::string command = "'" KARVEL_BINARY_DIR "/bin/karvelview' --skin Default --screenshot '" + shot.string() +
                              "' > /dev/null";
  ASSERT_EQ(std::system(command.c_str()), 0);
  const DecodedPicture screen = DecodePicture(TempDir::Read(shot));
  const DecodedPicture photo = DecodePicture(TempDir::Read(FirstPhoto()));
  ASSERT_GT(photo.width, 0);
  ASSERT_EQ(screen.width, form->GetBounds().Width());

  const CRect view = form->GetPhotoView()->GetBoundsSmall();
  ASSERT_LE(photo.width, view.Width());
  const CPoint origin(view.CenterPoint().x - photo.width / 2, view.CenterPoint().y - photo.height / 2);
  const std::uint32_t ground = screen.At(view.left + 2, view.top + 2);  // what shows through
  const auto over = [&](std::uint32_t pixel) {
    const std::uint32_t alpha = pixel >> 24;
    std::uint32_t blended = 0xFF000000u;
    for (int shift : {0, 8, 16}) {
      const std::uint32_t top = (pixel >> shift) & 0xFF, bottom = (ground >> shift) & 0xFF;
      blended |= ((top * alpha + bottom * (255 - alpha) + 127) / 255) << shift;
    }
    return blended;
  };
  int inked = 0, same = 0;
  for (int y = 0; y < photo.height; y += 5)
    for (int x = 0; x < photo.width; x += 5) {
      if (photo.At(x, y) >> 24 == 0) continue;
      ++inked;
      same += ColorNear(screen.At(origin.x + x, origin.y + y) | 0xFF000000u, over(photo.At(x, y)), 6) ? 1 : 0;
    }
  ASSERT_GT(inked, 500);
  EXPECT_GT(same, inked * 95 / 100) << same << " of " << inked;
}

}  // namespace
}  // namespace KarvelTest
