// The film strip drawn by the OpenGL backend off screen: seven generated
// pictures loaded by the list's worker, the selection grown by its effect.

#include <karvelui/AnimationController.h>
#include <karvelui/UIList.h>

#include <chrono>
#include <thread>

#include "framework/FrameworkTestSupport.h"
#include "platform/Paths.h"
#include "support/GLTesting.h"
#include "support/PictureFiles.h"
#include "support/TempDir.h"

namespace KarvelTest {
namespace {

constexpr int kPng = 13;
constexpr int kPictures = 7;
constexpr int kSelected = 3;
constexpr DWORD kColours[kPictures] = {0xFFFFFF00, 0xFF00FFFF, 0xFF00FF00, 0xFFFF0000,
                                       0xFF0000FF, 0xFFFF00FF, 0xFFFFFFFF};

class UIListPixelTest : public FrameworkTest {
 public:
  // The event's integer is its handler's.
  void FreeIndex(CUIControl*, void* index) { delete static_cast<int*>(index); }

 protected:
  void SetUp() override {
    FrameworkTest::SetUp();
    ASSERT_EQ(DXCore::InitInstance(), S_OK);
  }
  void TearDown() override {
    if (form) form->Release();
    DXCore::ExitInstance();
    FrameworkTest::TearDown();
  }

  // Columns of `colour` in row y.
  static int RunWidth(const Frame& frame, int y, DWORD colour) {
    int width = 0;
    for (int x = 0; x < frame.size.cx; ++x) width += ColorNear(frame.At(x, y), colour, 8) ? 1 : 0;
    return width;
  }

  ManualClock clock;
  TempDir photos;
  CUIForm* form = nullptr;
};

TEST_F(UIListPixelTest, TheLoadedSelectionIsDrawnLargerThanItsNeighboursWithItsReflectionBelow) {
  Write("Theme/Default/images/back.png", MakePicture(kPng, 4, 4, 32, [](int, int) { return kBlack; }));
  LoadSkin(R"(<TestForm css="Main"><Strip type="CUIList" css="Strip" ass="Strip"/></TestForm>)",
           R"(<css><CUIForm><Main PositionRect="0, 0, 400, 160" BorderMargin="0, 0, 0, 0">
                <Image File="back.png"><EdgeCenter mid="0, 0, 4, 4"/></Image></Main></CUIForm>
              <CUIList><Strip ItemSize="40, 40"/></CUIList></css>
              <ass><CUIList><Strip AnchorStyle="topleft" Bounds="0, 0, 400, 160"/></CUIList></ass>)");
  form = new CUIForm();
  form->SetObjectID(L"TestForm");
  ASSERT_TRUE(form->Create(WS_POPUP | WS_VISIBLE, L"KarvelListPixels", L"", nullptr, 0, CRect(0, 0, 10, 10)));
  auto* list = dynamic_cast<CUIList*>(form->FindControlRecusive(L"Strip"));
  ASSERT_NE(list, nullptr);
  form->ListenEvent(UI_EVENT_LIST_THUMB_LOADED, MakeDelegate(this, &UIListPixelTest::FreeIndex));
  for (int i = 0; i < kPictures; ++i) {
    const DWORD colour = kColours[i];
    auto* item = new UIItemInfo();
    const auto file = photos.Write(std::to_string(i) + ".png",
                                  MakePicture(kPng, 64, 64, 32, [colour](int, int) { return colour; }));
    item->Thumbnail().SetImage(FromNativePath(file.string()));
    ASSERT_EQ(list->AddItem(item, 0), 1);
  }
  list->SelectItem(kSelected, 1);
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  auto allLoaded = [&] {
    for (int i = 0; i < kPictures; ++i)
      if (list->GetItem(i)->Thumbnail().GetState() != THUMB_STATE_LOADED) return false;
    return true;
  };
  while (!allLoaded() && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
  ASSERT_TRUE(allLoaded());
  list->DeliverLoadedItems();  // the selection's effect starts now that its picture is there
  clock.Advance(300);
  form->GetAnimationController()->OnTimer(form);
  ASSERT_EQ(list->GetItem(kSelected)->GetSize(), CSize(63, 63));

  form->OnPaint(0);
  const Frame frame = ReadBack(form->GetRenderDevice()->GetD3DDevice());
  const int middle = 80;
  const int selectedWidth = RunWidth(frame, middle, kColours[kSelected]);
  EXPECT_GE(selectedWidth, 60);
  EXPECT_LT(RunWidth(frame, middle, kColours[kSelected - 1]) + 4, selectedWidth);
  EXPECT_LT(RunWidth(frame, middle, kColours[kSelected + 1]) + 4, selectedWidth);

  // Below the selection: its colour at under half strength, fading downwards.
  const CRect drawn = frame.InkBounds(kBlack, CRect(0, 0, 400, 160));
  int column = 0;
  for (int x = 0; x < 400 && !column; ++x)
    if (ColorNear(frame.At(x, middle), kColours[kSelected], 8)) column = x + selectedWidth / 2;
  int bottom = middle;
  while (bottom < 159 && ColorNear(frame.At(column, bottom + 1), kColours[kSelected], 8)) ++bottom;
  const DWORD mirrored = frame.At(column, bottom + 2);
  const int red = static_cast<int>((mirrored >> 16) & 0xFF);
  EXPECT_GT(red, 60) << std::hex << mirrored;
  EXPECT_LT(red, 128) << std::hex << mirrored;
  EXPECT_EQ(mirrored & 0xFFFF, 0u) << std::hex << mirrored;
  EXPECT_LT((frame.At(column, bottom + 20) >> 16) & 0xFF, static_cast<DWORD>(red));
  EXPECT_GT(drawn.bottom, bottom + 20);
}

}  // namespace
}  // namespace KarvelTest
