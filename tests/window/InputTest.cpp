// Desktop input as window messages: mouse moves, clicks, wheel, capture,
// hover and leave tracking, keys with their bits, characters and cursors.

#include <cstring>
#include <tuple>

#include "support/WindowTesting.h"

using namespace KarvelUI;
using namespace KarvelTest;

namespace {

void RecordMouse(RecordingWnd& wnd) {
  wnd.only = {WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_RBUTTONDOWN,
              WM_RBUTTONUP, WM_MOUSEWHEEL,  WM_MOUSEHOVER, WM_MOUSELEAVE};
}

TRACKMOUSEEVENT Tracking(HWND hwnd, DWORD flags, DWORD hoverTime = HOVER_DEFAULT) {
  TRACKMOUSEEVENT track;
  track.dwFlags = flags;
  track.hwndTrack = hwnd;
  track.dwHoverTime = hoverTime;
  return track;
}

}  // namespace

TEST(MouseInput, MovesAndClicksCarryKeyFlagsAndClientPointsAndConsecutiveMovesMerge) {
  RecordingWnd wnd;
  RecordMouse(wnd);
  ASSERT_TRUE(MakeWindow(wnd, CRect(100, 100, 300, 200), WS_POPUP | WS_VISIBLE));
  PushKey(wnd.m_hWnd, SDL_SCANCODE_LSHIFT, true);
  for (int i = 1; i <= 10; ++i) PushMotion(wnd.m_hWnd, i, 2 * i);  // merged into the latest
  PushButton(wnd.m_hWnd, 11, 21, true);
  PushMotion(wnd.m_hWnd, 12, 22, SDL_BUTTON_LMASK);
  PushButton(wnd.m_hWnd, 13, 23, false);
  PushKey(wnd.m_hWnd, SDL_SCANCODE_LSHIFT, false);
  PumpAll();
  ASSERT_EQ(wnd.Messages(), (std::vector<UINT>{WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_MOUSEMOVE, WM_LBUTTONUP}));
  std::vector<WPARAM> flags;
  for (const Received& r : wnd.log) flags.push_back(r.wParam);
  EXPECT_EQ(flags, (std::vector<WPARAM>{MK_SHIFT, MK_SHIFT | MK_LBUTTON, MK_SHIFT | MK_LBUTTON, MK_SHIFT}));
  CPoint cursor;
  ASSERT_TRUE(GetCursorPos(&cursor));
  EXPECT_EQ((std::vector{PointOf(wnd.log[0].lParam), PointOf(wnd.log[3].lParam), cursor}),
            (std::vector{CPoint(10, 20), CPoint(13, 23), CPoint(113, 123)}));
}

TEST(MouseInput, DoubleClicksNeedTheClassStyle) {
  WNDCLASSW cls;
  cls.lpszClassName = L"KarvelTestNoDoubleClicks";
  AfxRegisterClass(&cls);
  RecordingWnd with, without;
  RecordMouse(with);
  RecordMouse(without);
  ASSERT_TRUE(MakeWindow(with, CRect(0, 0, 50, 50), WS_POPUP | WS_VISIBLE));
  ASSERT_TRUE(without.CreateEx(0, cls.lpszClassName, L"", WS_POPUP | WS_VISIBLE, CRect(100, 0, 150, 50), nullptr, 0));
  const std::pair<bool, Uint8> presses[] = {{true, 1}, {false, 1}, {true, 2}, {false, 2}, {true, 3}};  // down?, clicks
  for (RecordingWnd* wnd : {&with, &without})
    for (const auto& [down, clicks] : presses) PushButton(wnd->m_hWnd, 5, 5, down, SDL_BUTTON_LEFT, clicks);
  PumpAll();
  EXPECT_EQ(with.Messages(),
            (std::vector<UINT>{WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP, WM_LBUTTONDOWN}));
  EXPECT_EQ(without.Messages(),
            (std::vector<UINT>{WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDOWN}));
}

TEST(MouseInput, WheelGives120PerNotchWithTheScreenPoint) {
  RecordingWnd wnd;
  RecordMouse(wnd);
  ASSERT_TRUE(MakeWindow(wnd, CRect(40, 50, 240, 250), WS_POPUP | WS_VISIBLE));
  PushWheel(wnd.m_hWnd, 10, 20, 1.0f);
  PushWheel(wnd.m_hWnd, 10, 20, 2.0f, true);
  PumpAll();
  ASSERT_EQ(wnd.log.size(), 2u);
  EXPECT_EQ(std::make_tuple(GET_WHEEL_DELTA_WPARAM(wnd.log[0].wParam), GET_WHEEL_DELTA_WPARAM(wnd.log[1].wParam),
                            CPoint::FromLParam(wnd.log[0].lParam)),
            std::make_tuple(short{120}, short{-240}, CPoint(50, 70)));
}

TEST(MouseInput, ACapturedWindowGetsMovesOutsideItselfAsUnsignedClientPointsAndHearsWhenItLosesCapture) {
  RecordingWnd captor, other;
  RecordMouse(captor);
  RecordMouse(other);
  captor.only.push_back(WM_CAPTURECHANGED);
  ASSERT_TRUE(MakeWindow(captor, CRect(100, 100, 200, 200), WS_POPUP | WS_VISIBLE));
  ASSERT_TRUE(MakeWindow(other, CRect(300, 100, 400, 200), WS_POPUP | WS_VISIBLE));
  EXPECT_EQ(SetCapture(captor.m_hWnd), nullptr);
  PushMotion(captor.m_hWnd, -5, -7);  // left of and above the captor
  PumpAll();
  PushMotion(other.m_hWnd, 10, 10);  // over another of our windows
  PushButton(other.m_hWnd, 10, 10, true);
  PumpAll();
  EXPECT_TRUE(other.log.empty());
  ASSERT_EQ(captor.Messages(), (std::vector<UINT>{WM_MOUSEMOVE, WM_MOUSEMOVE, WM_LBUTTONDOWN}));
  EXPECT_EQ(std::make_tuple(PointOf(captor.log[0].lParam), PointOf(captor.log[1].lParam)),
            std::make_tuple(CPoint(65531, 65529), CPoint(210, 10)));
  captor.log.clear();
  EXPECT_EQ(SetCapture(other.m_hWnd), captor.m_hWnd);
  ASSERT_EQ(captor.Messages(), std::vector<UINT>{WM_CAPTURECHANGED});
  EXPECT_EQ(reinterpret_cast<HWND>(captor.log[0].lParam), other.m_hWnd);
  EXPECT_TRUE(ReleaseCapture());
  PushMotion(other.m_hWnd, 11, 11);
  PumpAll();
  EXPECT_EQ(other.Messages(), std::vector<UINT>{WM_MOUSEMOVE});
  SetCapture(captor.m_hWnd);
  captor.ShowWindow(SW_HIDE);  // hiding the captor ends the capture
  EXPECT_EQ(GetCapture(), nullptr);
}

TEST(MouseInput, DisabledWindowsGetNoInputClicksActivateAndCaptionPressesBelongToTheDesktop) {
  class Captioned : public RecordingWnd {
    LRESULT OnNcHitTest(CPoint screen) override {
      CPoint p = screen;
      ScreenToClient(&p);
      return p.y < 10 ? HTCAPTION : HTCLIENT;
    }
  } b;
  RecordingWnd a;
  RecordMouse(a);
  b.only = {WM_ACTIVATE, WM_LBUTTONDOWN};
  ASSERT_TRUE(MakeWindow(a, CRect(0, 0, 50, 50), WS_POPUP | WS_VISIBLE | WS_DISABLED));
  ASSERT_TRUE(MakeWindow(b, CRect(100, 0, 150, 50), WS_POPUP | WS_VISIBLE));
  PushButton(a.m_hWnd, 5, 5, true);
  PushMotion(a.m_hWnd, 6, 6);
  PumpAll();
  EXPECT_TRUE(a.log.empty());
  SetActiveWindow(nullptr);
  b.log.clear();
  PushButton(b.m_hWnd, 5, 20, true);
  PushButton(b.m_hWnd, 5, 5, true);
  PumpAll();
  ASSERT_EQ(b.Messages(), (std::vector<UINT>{WM_ACTIVATE, WM_LBUTTONDOWN}));
  EXPECT_EQ(std::make_tuple(LOWORD(b.log[0].wParam), PointOf(b.log[1].lParam)),
            std::make_tuple(WORD{WA_CLICKACTIVE}, CPoint(5, 20)));
}

TEST(MouseTracking, HoverComesOnceAfterTheCursorRestsAndLeaveOnceItGoes) {
  ManualClock clock;
  RecordingWnd wnd, other;
  wnd.only = {WM_MOUSEHOVER, WM_MOUSELEAVE};
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 100, 100), WS_POPUP | WS_VISIBLE));
  ASSERT_TRUE(MakeWindow(other, CRect(200, 0, 300, 100), WS_POPUP | WS_VISIBLE));
  PushMotion(wnd.m_hWnd, 30, 40);
  PumpAll();
  TRACKMOUSEEVENT track = Tracking(wnd.m_hWnd, TME_HOVER | TME_LEAVE);
  ASSERT_TRUE(TrackMouseEvent(&track));
  clock.Advance(399);
  PumpAll();
  EXPECT_TRUE(wnd.log.empty());
  PushMotion(wnd.m_hWnd, 32, 38);  // within the hover rectangle: the wait goes on
  clock.Advance(1);
  PumpAll();
  ASSERT_EQ(wnd.Messages(), std::vector<UINT>{WM_MOUSEHOVER});
  EXPECT_EQ(PointOf(wnd.log[0].lParam), CPoint(32, 38));
  clock.Advance(1000);
  PushMotion(other.m_hWnd, 5, 5);
  PumpAll();
  PushMotion(wnd.m_hWnd, 10, 10);
  PushMotion(other.m_hWnd, 7, 7);
  PumpAll();
  EXPECT_EQ(wnd.Messages(), (std::vector<UINT>{WM_MOUSEHOVER, WM_MOUSELEAVE}));

  // Moving out of the hover rectangle restarts the wait.
  wnd.log.clear();
  PushMotion(wnd.m_hWnd, 30, 40);
  PumpAll();
  track = Tracking(wnd.m_hWnd, TME_HOVER, 100);
  TrackMouseEvent(&track);
  clock.Advance(90);
  PushMotion(wnd.m_hWnd, 40, 40);
  PumpAll();
  clock.Advance(90);
  PumpAll();
  EXPECT_TRUE(wnd.log.empty());
  clock.Advance(10);
  PumpAll();
  EXPECT_EQ(wnd.Messages(), std::vector<UINT>{WM_MOUSEHOVER});
}

TEST(MouseTracking, LeaveComesAtOnceWhenTheCursorIsElsewhereAndCancelStopsIt) {
  RecordingWnd wnd, other;
  wnd.only = {WM_MOUSELEAVE};
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 100, 100), WS_POPUP | WS_VISIBLE));
  ASSERT_TRUE(MakeWindow(other, CRect(200, 0, 300, 100), WS_POPUP | WS_VISIBLE));
  PushMotion(other.m_hWnd, 5, 5);
  PumpAll();
  TRACKMOUSEEVENT track = Tracking(wnd.m_hWnd, TME_LEAVE);
  TrackMouseEvent(&track);
  PumpAll();
  EXPECT_EQ(wnd.Messages(), std::vector<UINT>{WM_MOUSELEAVE});
  wnd.log.clear();
  PushMotion(wnd.m_hWnd, 5, 5);
  PumpAll();
  TrackMouseEvent(&track);
  track.dwFlags = TME_LEAVE | TME_CANCEL;
  TrackMouseEvent(&track);
  PushMotion(other.m_hWnd, 5, 5);
  PumpAll();
  EXPECT_TRUE(wnd.log.empty());
}

TEST(KeyboardInput, KeysArriveAsVirtualKeysWithTheirBits) {
  RecordingWnd wnd;
  wnd.only = {WM_KEYDOWN, WM_KEYUP, WM_SYSKEYDOWN, WM_SYSKEYUP};
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 10, 10), WS_POPUP | WS_VISIBLE));
  const std::pair<SDL_Scancode, int> keys[] = {  // 1 press, 2 repeat, 0 release
      {SDL_SCANCODE_ESCAPE, 1}, {SDL_SCANCODE_ESCAPE, 2}, {SDL_SCANCODE_ESCAPE, 0}, {SDL_SCANCODE_LEFT, 1},
      {SDL_SCANCODE_A, 1},      {SDL_SCANCODE_TAB, 1},    {SDL_SCANCODE_LALT, 1},   {SDL_SCANCODE_F4, 1},
      {SDL_SCANCODE_F4, 0},     {SDL_SCANCODE_LALT, 0}};
  for (const auto& [code, state] : keys) PushKey(wnd.m_hWnd, code, state != 0, state == 2);
  PumpAll();
  ASSERT_EQ(wnd.Messages(), (std::vector<UINT>{WM_KEYDOWN, WM_KEYDOWN, WM_KEYUP, WM_KEYDOWN, WM_KEYDOWN, WM_KEYDOWN,
                                               WM_SYSKEYDOWN, WM_SYSKEYDOWN, WM_SYSKEYUP, WM_SYSKEYUP}));
  std::vector<WPARAM> virtualKeys;
  std::vector<DWORD> bits;
  for (const Received& r : wnd.log) virtualKeys.push_back(r.wParam), bits.push_back(static_cast<DWORD>(r.lParam));
  EXPECT_EQ(std::vector<WPARAM>(virtualKeys.begin(), virtualKeys.begin() + 6),
            (std::vector<WPARAM>{VK_ESCAPE, VK_ESCAPE, VK_ESCAPE, VK_LEFT, 'A', VK_TAB}));
  EXPECT_EQ(virtualKeys[7], static_cast<WPARAM>(VK_F4));
  // One press with scan code 1, held (previous state down), released; an extended key.
  EXPECT_EQ(std::vector<DWORD>(bits.begin(), bits.begin() + 4),
            (std::vector<DWORD>{0x00010001, 0x40010001, 0xC0010001u, 0x014B0001}));
  EXPECT_TRUE(bits[7] & (1 << 29));  // with Alt
}

TEST(KeyboardInput, KeyStateFollowsRetrievedMessagesAndTellsTheShiftKeysApart) {
  RecordingWnd wnd;
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 10, 10), WS_POPUP | WS_VISIBLE));
  PushKey(wnd.m_hWnd, SDL_SCANCODE_RSHIFT, true);
  MSG msg;
  // Translated but not yet retrieved: the key state has not moved, the async state has.
  auto down = [](int key) { return GetKeyState(key) < 0; };
  ASSERT_TRUE(PeekMessageW(&msg, nullptr, WM_KEYDOWN, WM_KEYDOWN, PM_NOREMOVE));
  EXPECT_TRUE(!down(VK_SHIFT) && GetAsyncKeyState(VK_RSHIFT) < 0);
  PumpAll();
  EXPECT_TRUE(down(VK_SHIFT) && !down(VK_LSHIFT));
  PushKey(wnd.m_hWnd, SDL_SCANCODE_LSHIFT, true);
  PushKey(wnd.m_hWnd, SDL_SCANCODE_RSHIFT, false);
  PumpAll();
  EXPECT_TRUE(down(VK_SHIFT) && !down(VK_RSHIFT));
  PushKey(wnd.m_hWnd, SDL_SCANCODE_LSHIFT, false);
  PushButton(wnd.m_hWnd, 1, 1, true);
  PumpAll();
  EXPECT_TRUE(!down(VK_SHIFT) && down(VK_LBUTTON));
  const short capsBefore = GetKeyState(VK_CAPITAL) & 1;  // the toggle bit flips with every press
  PushKey(wnd.m_hWnd, SDL_SCANCODE_CAPSLOCK, true);
  PushKey(wnd.m_hWnd, SDL_SCANCODE_CAPSLOCK, false);
  PumpAll();
  EXPECT_NE(GetKeyState(VK_CAPITAL) & 1, capsBefore);
}

TEST(KeyboardInput, KeysGoToTheFocusWindowAndTextBecomesUtf16Characters) {
  RecordingWnd a, b;
  a.only = b.only = {WM_KEYDOWN, WM_CHAR, WM_KILLFOCUS};
  ASSERT_TRUE(MakeWindow(a, CRect(0, 0, 10, 10), WS_POPUP | WS_VISIBLE));
  ASSERT_TRUE(MakeWindow(b, CRect(0, 0, 10, 10), WS_POPUP | WS_VISIBLE));
  a.SetFocus();
  EXPECT_EQ(std::make_tuple(GetFocus(), reinterpret_cast<HWND>(b.Of(WM_KILLFOCUS).at(0).wParam)),
            std::make_tuple(a.m_hWnd, a.m_hWnd));
  a.log.clear();
  PushKey(b.m_hWnd, SDL_SCANCODE_RETURN, true);
  SDL_Event text{};
  text.type = SDL_TEXTINPUT;
  text.text.windowID = SdlId(b.m_hWnd);
  std::strcpy(text.text.text, "\xC3\xA9\xF0\x9F\x98\x80");  // é and an emoji
  SDL_PushEvent(&text);
  PumpAll();
  EXPECT_TRUE(b.Of(WM_KEYDOWN).empty());
  ASSERT_EQ(a.Messages(), (std::vector<UINT>{WM_KEYDOWN, WM_CHAR, WM_CHAR, WM_CHAR}));
  // A surrogate pair, as UTF-16 programs expect.
  EXPECT_EQ((std::vector{a.log[1].wParam, a.log[2].wParam, a.log[3].wParam}), (std::vector<WPARAM>{0xE9, 0xD83D, 0xDE00}));
}

TEST(Cursors, TheClassCursorIsSetOnEveryMoveAndAWindowMayChooseAnother) {
  class Hand : public RecordingWnd {
   public:
    bool wantHand = false;
    BOOL OnSetCursor(CWnd* wnd, UINT hit, UINT message) override {
      if (!wantHand) return CWnd::OnSetCursor(wnd, hit, message);
      SetCursor(LoadCursorW(nullptr, IDC_HAND));
      return TRUE;
    }
  } wnd;
  const HCURSOR arrow = LoadCursorW(nullptr, IDC_ARROW), hand = LoadCursorW(nullptr, IDC_HAND);
  ASSERT_TRUE(arrow && hand && arrow != hand);
  EXPECT_EQ(LoadCursorW(nullptr, MakeIntResource(1)), nullptr);
  ASSERT_TRUE(MakeWindow(wnd, CRect(0, 0, 50, 50), WS_POPUP | WS_VISIBLE));
  SetCursor(nullptr);
  for (bool wantHand : {false, true}) {
    wnd.wantHand = wantHand;
    PushMotion(wnd.m_hWnd, 5 + wantHand, 5);
    PumpAll();
    EXPECT_EQ(GetCursor(), wantHand ? hand : arrow);
  }
}
