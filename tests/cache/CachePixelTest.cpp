// A cached picture drawn by the OpenGL backend off screen: the tiles of a
// file picture, each uploaded with its edge repeated, join without seams.

#include <karvelui/DXCore.h>
#include "platform/Paths.h"
#include "render/PictureDecoder.h"
#include "support/GLTesting.h"
#include "support/PictureFiles.h"
#include "support/TempDir.h"

using namespace KarvelUI;
using namespace KarvelTest;

TEST(CachePixel, TilesOfAFilePictureDrawnAtTwiceTheirSizeJoinWithoutSeams) {
  ASSERT_EQ(DXCore::InitInstance(), S_OK);
  CWnd wnd;
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 160, 100)));
  {
    DXCore core;
    core.SetWindow(wnd.m_hWnd);
    ASSERT_EQ(core.Init(), S_OK);
    D3DCAPS9 caps{};
    ASSERT_EQ(core.GetD3DDeviceCaps(&caps), S_OK);
    const int tile = static_cast<int>(caps.MaxTextureWidth / 4);
    // Red up to the first tile's right edge, green after it, four rows high.
    TempDir dir;
    const CString path = FromNativePath(
        dir.Write("wide.png", MakePicture(PICTURE_FORMAT_PNG, tile + 20, 4, 24,
                                          [tile](int x, int) { return x < tile ? kRed : kGreen; }))
            .string());
    const CRect source(tile - 20, 0, tile + 20, 4), dest(10, 10, 90, 18);
    ASSERT_EQ(core.BeginPaint(), S_OK);
    ASSERT_EQ(core.CleanScreen(kBlack), S_OK);
    ASSERT_EQ(core.DrawImage(path, &dest, &source, nullptr, 0, kWhite, 0), S_OK);
    ASSERT_EQ(core.GetResourceCache()->SearchTextureItem(path, core.GetD3DDevice())->nTileCols, 2);
    ASSERT_EQ(core.EndPaint(), S_OK);
    const Frame frame = ReadBack(core.GetD3DDevice());
    EXPECT_EQ(frame.InkBounds(kBlack), dest);
    EXPECT_EQ(frame.InkBounds(kRed, CRect(10, 10, 50, 18)), CRect());
    EXPECT_EQ(frame.InkBounds(kGreen, CRect(50, 10, 90, 18)), CRect());
    core.CleanUp();
  }
  DXCore::ExitInstance();
}
