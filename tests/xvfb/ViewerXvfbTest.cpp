// The sample viewer in a real X server: its own Xvfb on a free display, the
// viewer on SDL's x11 driver, its window found on the screen and its pixels
// read back from the server (not from GL). The skin's caption and border
// must be there (assets/README.md); Tab shows a tool button's keyboard
// focus; dragging the caption moves the window; a click on the caption's
// close button ends the program with exit code 0. A right click on the
// photo opens the context menu on screen; Skins > Ocean re-skins the window.

#include <gtest/gtest.h>

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <X11/extensions/XTest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <FreeImage.h>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr auto kStartTimeout = std::chrono::seconds(20);
constexpr auto kPaintTimeout = std::chrono::seconds(30);
constexpr auto kExitTimeout = std::chrono::seconds(20);
constexpr auto kPoll = std::chrono::milliseconds(50);

// The default skin (assets/README.md and Theme/Default/KarvelView.xml).
constexpr unsigned kCaption = 0x3E424A;   // caption band, row 16
constexpr unsigned kAccent = 0xE8A33D;    // accent line, row 31
constexpr unsigned kSide = 0x3A3E45;      // side border and bottom band
constexpr unsigned kCentre = 0x2B2E33;    // centre fill
constexpr int kCloseFromRight = 22;       // the close button's centre, from the right edge
constexpr int kCloseY = 16;
// The focus outline's left column on btnNext, the first Tab's button: the
// tool bar's panel starts 8 right of the window and 52 above its bottom.
constexpr int kNextOutlineX = 8 + 42 + 2;
constexpr int kNextOutlineFromBottom = 52 - 6 - 16;
const char* const kTitle = "KarvelView";
// Left of the photo, which the view centres: the form's centre fill.
constexpr int kBesidePhotoX = 100;
// The context menu (Theme/Default, CUIMenu "public"): entries 22 high,
// separators 7, from 2 down; Skins is the seventh entry after two
// separators, Ocean the second of its sub-menu.
const char* const kMenuTitle = "KarvelUIMenu";
constexpr int kSkinsEntryY = 2 + 22 + 7 + 5 * 22 + 7 + 11;
constexpr int kOceanEntryY = 2 + 22 + 11;
constexpr unsigned kOceanCaption = 0x1E6091;  // Ocean's caption band, row 20

bool WaitFor(std::chrono::steady_clock::duration timeout, const std::function<bool()>& done) {
  const auto end = Clock::now() + timeout;
  while (!done()) {
    if (Clock::now() >= end) return false;
    std::this_thread::sleep_for(kPoll);
  }
  return true;
}

// A child process that is ended (TERM, then KILL) when it goes out of scope.
class Child {
 public:
  explicit Child(pid_t pid) : m_pid(pid) {}
  ~Child() { Stop(); }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  // The exit status once the process ended within the timeout.
  std::optional<int> WaitExit(std::chrono::steady_clock::duration timeout) {
    std::optional<int> status;
    WaitFor(timeout, [&] {
      int raw = 0;
      if (m_pid <= 0 || waitpid(m_pid, &raw, WNOHANG) != m_pid) return false;
      m_pid = -1;
      status = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
      return true;
    });
    return status;
  }
  void Stop() {
    if (m_pid <= 0) return;
    kill(m_pid, SIGTERM);
    if (!WaitExit(std::chrono::seconds(5)) && m_pid > 0) {
      kill(m_pid, SIGKILL);
      waitpid(m_pid, nullptr, 0);
    }
    m_pid = -1;
  }

 private:
  pid_t m_pid;
};

std::unique_ptr<Child> Spawn(const std::vector<std::string>& args, const std::vector<std::string>& env, int keepFd = -1) {
  const pid_t pid = fork();
  if (pid < 0) return nullptr;
  if (pid == 0) {
    for (const std::string& variable : env) putenv(const_cast<char*>(variable.c_str()));
    for (int fd = 3; fd < 256; ++fd)
      if (fd != keepFd) close(fd);
    std::vector<char*> argv;
    for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    execv(argv[0], argv.data());
    _exit(127);
  }
  return std::make_unique<Child>(pid);
}

// Xvfb on the first free display; -displayfd tells which one it took.
struct XServer {
  std::unique_ptr<Child> process;
  std::string display;

  bool Start() {
    int fds[2];
    if (pipe(fds) != 0) return false;
    process = Spawn({"/usr/bin/Xvfb", "-displayfd", std::to_string(fds[1]), "-screen", "0", "1280x800x24",
                     "-nolisten", "tcp", "-noreset"},
                    {}, fds[1]);
    close(fds[1]);
    std::string number;
    pollfd wait{fds[0], POLLIN, 0};
    char c = 0;
    const auto end = Clock::now() + kStartTimeout;
    while (Clock::now() < end && poll(&wait, 1, 100) >= 0) {
      if (!(wait.revents & (POLLIN | POLLHUP))) continue;
      if (read(fds[0], &c, 1) != 1 || c == '\n') break;
      number += c;
    }
    close(fds[0]);
    display = ":" + number;
    return !number.empty();
  }
};

struct DisplayCloser {
  void operator()(Display* display) const { XCloseDisplay(display); }
};

struct ImageDestroyer {
  void operator()(XImage* image) const { XDestroyImage(image); }
};
using Image = std::unique_ptr<XImage, ImageDestroyer>;

class ViewerXvfbTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!fs::exists("/usr/bin/Xvfb")) GTEST_SKIP() << "Xvfb is not installed (scripts/setup.sh installs it)";
    ASSERT_TRUE(server.Start()) << "Xvfb did not report a display";
    ASSERT_TRUE(WaitFor(kStartTimeout, [&] {
      display.reset(XOpenDisplay(server.display.c_str()));
      return display != nullptr;
    }));
    int event = 0, error = 0, major = 0, minor = 0;
    ASSERT_TRUE(XTestQueryExtension(display.get(), &event, &error, &major, &minor));
  }

  void StartViewer() {
    const fs::path home = fs::path(KARVEL_BINARY_DIR) / "test-home" / "xvfb";
    fs::create_directories(home);
    viewer = Spawn({KARVEL_BINARY_DIR "/bin/karvelview", "--skin", "Default"},
                   {"DISPLAY=" + server.display, "SDL_VIDEODRIVER=x11", "LIBGL_ALWAYS_SOFTWARE=1",
                    "HOME=" + home.string(), "XDG_DATA_HOME=" + (home / "data").string()});
    ASSERT_NE(viewer, nullptr);
  }

  // The viewable top-level window titled kTitle.
  Window FindViewer() {
    const std::vector<Window> windows = FindWindows(kTitle);
    return windows.empty() ? 0 : windows.front();
  }

  // The viewable top-level windows titled `title`, lowest first.
  std::vector<Window> FindWindows(const std::string& title) {
    std::vector<Window> found;
    Window root = 0, parent = 0, *children = nullptr;
    unsigned count = 0;
    if (!XQueryTree(display.get(), DefaultRootWindow(display.get()), &root, &parent, &children, &count)) return found;
    for (unsigned i = 0; i < count; ++i) {
      XWindowAttributes attributes;
      char* name = nullptr;
      if (XGetWindowAttributes(display.get(), children[i], &attributes) && attributes.map_state == IsViewable &&
          XFetchName(display.get(), children[i], &name) && name && title == name)
        found.push_back(children[i]);
      if (name) XFree(name);
    }
    if (children) XFree(children);
    return found;
  }

  XRectangle Geometry(Window window) {
    XWindowAttributes attributes{};
    XGetWindowAttributes(display.get(), window, &attributes);
    Window child = 0;
    int x = 0, y = 0;
    XTranslateCoordinates(display.get(), window, DefaultRootWindow(display.get()), 0, 0, &x, &y, &child);
    return {static_cast<short>(x), static_cast<short>(y), static_cast<unsigned short>(attributes.width),
            static_cast<unsigned short>(attributes.height)};
  }

  // What the screen shows, read from the server.
  Image Screen() {
    const int screen = DefaultScreen(display.get());
    return Image(XGetImage(display.get(), DefaultRootWindow(display.get()), 0, 0, DisplayWidth(display.get(), screen),
                           DisplayHeight(display.get(), screen), AllPlanes, ZPixmap));
  }
  static unsigned Rgb(XImage* image, int x, int y) { return XGetPixel(image, x, y) & 0xFFFFFF; }

  static void SavePng(XImage* image, const fs::path& file) {
    FIBITMAP* bitmap = FreeImage_Allocate(image->width, image->height, 24);
    for (int y = 0; y < image->height; ++y) {
      BYTE* row = FreeImage_GetScanLine(bitmap, image->height - 1 - y);
      for (int x = 0; x < image->width; ++x) {
        const unsigned rgb = Rgb(image, x, y);
        row[x * 3 + FI_RGBA_RED] = static_cast<BYTE>(rgb >> 16);
        row[x * 3 + FI_RGBA_GREEN] = static_cast<BYTE>(rgb >> 8);
        row[x * 3 + FI_RGBA_BLUE] = static_cast<BYTE>(rgb);
      }
    }
    FreeImage_Save(FIF_PNG, bitmap, file.string().c_str(), PNG_DEFAULT);
    FreeImage_Unload(bitmap);
  }

  // XTest's pointer, with a pause for the viewer to follow.
  void MoveMouse(int x, int y) { Settle(XTestFakeMotionEvent(display.get(), -1, x, y, CurrentTime)); }
  void Button(bool down, unsigned button = 1) {
    Settle(XTestFakeButtonEvent(display.get(), button, down ? True : False, CurrentTime));
  }
  void Key(KeySym key) {
    const KeyCode code = XKeysymToKeycode(display.get(), key);
    XTestFakeKeyEvent(display.get(), code, True, CurrentTime);
    Settle(XTestFakeKeyEvent(display.get(), code, False, CurrentTime));
  }
  void Settle(int) {
    XFlush(display.get());
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }

  XServer server;
  std::unique_ptr<Display, DisplayCloser> display;
  std::unique_ptr<Child> viewer;
};

TEST_F(ViewerXvfbTest, TheWindowShowsItsSkinMovesByItsCaptionAndClosesByItsButton) {
  StartViewer();
  Window window = 0;
  ASSERT_TRUE(WaitFor(kStartTimeout, [&] { return (window = FindViewer()) != 0; })) << "no viewer window on screen";
  XRectangle r = Geometry(window);
  EXPECT_EQ(r.x, 120);  // where the skin's PositionRect puts it
  EXPECT_EQ(r.y, 80);
  ASSERT_EQ(r.width, 960);
  ASSERT_EQ(r.height, 640);

  Image screen;
  const bool painted = WaitFor(kPaintTimeout, [&] {
    screen = Screen();
    return screen && Rgb(screen.get(), r.x + r.width / 2, r.y + 16) == kCaption;
  });
  if (screen) SavePng(screen.get(), fs::path(KARVEL_BINARY_DIR) / "xvfb-viewer.png");
  ASSERT_TRUE(painted) << "the caption band never appeared";
  EXPECT_EQ(Rgb(screen.get(), r.x + r.width / 2, r.y + 31), kAccent);
  EXPECT_EQ(Rgb(screen.get(), r.x + 4, r.y + r.height / 2), kSide);
  EXPECT_EQ(Rgb(screen.get(), r.x + r.width - 5, r.y + r.height / 2), kSide);
  EXPECT_EQ(Rgb(screen.get(), r.x + r.width / 2, r.y + r.height - 4), kSide);
  EXPECT_EQ(Rgb(screen.get(), r.x + kBesidePhotoX, r.y + r.height / 2), kCentre);

  Key(XK_Tab);
  ASSERT_TRUE(WaitFor(kPaintTimeout, [&] {
    screen = Screen();
    return Rgb(screen.get(), r.x + kNextOutlineX, r.y + r.height - kNextOutlineFromBottom) == kAccent;
  })) << "Tab showed no keyboard focus";

  // Drag the caption 60 pixels right and 40 down.
  MoveMouse(r.x + 300, r.y + 16);
  Button(true);
  for (int step = 1; step <= 4; ++step) MoveMouse(r.x + 300 + 15 * step, r.y + 16 + 10 * step);
  Button(false);
  ASSERT_TRUE(WaitFor(kPaintTimeout, [&] { return Geometry(window).x == r.x + 60; })) << "the caption drag did not move the window";
  r = Geometry(window);
  EXPECT_EQ(r.y, 80 + 40);

  MoveMouse(r.x + r.width - kCloseFromRight, r.y + kCloseY);
  Button(true);
  Button(false);
  const std::optional<int> status = viewer->WaitExit(kExitTimeout);
  ASSERT_TRUE(status.has_value()) << "the viewer did not exit after its close button was clicked";
  EXPECT_EQ(*status, 0);
}

TEST_F(ViewerXvfbTest, ARightClickOnThePhotoOpensTheMenuWhoseSkinsEntrySwitchesTheSkin) {
  StartViewer();
  Window window = 0;
  ASSERT_TRUE(WaitFor(kStartTimeout, [&] { return (window = FindViewer()) != 0; })) << "no viewer window on screen";
  const XRectangle r = Geometry(window);
  Image screen;
  ASSERT_TRUE(WaitFor(kPaintTimeout, [&] {
    screen = Screen();
    return screen && Rgb(screen.get(), r.x + r.width / 2, r.y + 16) == kCaption;
  })) << "the caption band never appeared";

  MoveMouse(r.x + r.width / 2, r.y + r.height / 2);
  Button(true, 3);
  Button(false, 3);
  std::vector<Window> menus;
  ASSERT_TRUE(WaitFor(kPaintTimeout, [&] { return (menus = FindWindows(kMenuTitle)).size() == 1; }))
      << "no context menu on screen";
  const XRectangle menu = Geometry(menus[0]);
  MoveMouse(menu.x + 30, menu.y + kSkinsEntryY);
  MoveMouse(menu.x + 32, menu.y + kSkinsEntryY);
  ASSERT_TRUE(WaitFor(kPaintTimeout, [&] { return (menus = FindWindows(kMenuTitle)).size() == 2; }))
      << "resting on Skins opened no sub-menu";
  XRectangle sub = Geometry(menus[1]);
  if (sub.x == menu.x && sub.y == menu.y) sub = Geometry(menus[0]);
  MoveMouse(sub.x + 20, menu.y + kSkinsEntryY);
  MoveMouse(sub.x + 30, sub.y + kOceanEntryY);
  Button(true);
  Button(false);

  const bool switched = WaitFor(kPaintTimeout, [&] {
    screen = Screen();
    return FindWindows(kMenuTitle).empty() && Rgb(screen.get(), r.x + r.width / 2, r.y + 20) == kOceanCaption;
  });
  if (screen) SavePng(screen.get(), fs::path(KARVEL_BINARY_DIR) / "xvfb-viewer-ocean.png");
  EXPECT_TRUE(switched) << "choosing Skins > Ocean left the caption as it was";
}

}  // namespace
