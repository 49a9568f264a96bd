#pragma once

// The viewer's photo view: the library's image view with zoom, pan, quarter
// turns and animation.
//
// - The wheel zooms about the cursor, one step of kZoomSteps per notch,
//   between the first and the last step; the picture point under the cursor
//   stays under it. Each change of the zoom fires kZoomChangedEvent (the
//   sender is the view; GetZoomPercent tells the new zoom), so a slider can
//   follow.
// - Dragging with the left button pans; the picture never leaves the view: a
//   picture larger than the view along an axis keeps covering it, a smaller
//   one stays centred.
// - Quarter turns (RotateLeft/Right, "[" and "]", Ctrl+L and Ctrl+R) are
//   stored in the rotation map, so the file keeps its turn.
// - FitToView ("F") shrinks the picture into the view again and follows the
//   view's size; ActualSize ("1") shows it pixel for pixel.
// - A double click maximises the window, or restores it.
// - Animated pictures play on the form timer UI_TIMER_IMAGE_ANIMATION, each
//   frame for its own time; every load stops them.
//
// The host registers CreateControl with the skin manager; build files then
// make "CPhotoView" nodes, laid out by ass entries of type "CPhotoView" and
// drawn from css entries of type "CUIImageBase" (the image view's record).

#include <cstdint>
#include <functional>
#include <vector>

#include <karvelui/UIImageBase.h>

namespace KarvelView {

// Fired when the view's zoom changes.
inline constexpr int kZoomChangedEvent = 4110;

// Zoom levels (displayed size / picture size) the view steps through.
inline constexpr double kZoomSteps[] = {0.05, 0.1, 0.125, 0.25, 0.333, 0.5, 0.667, 0.75, 1.0,
                                        1.25, 1.5, 2.0,   3.0,  4.0,   6.0, 8.0,   12.0,  16.0};

// The next step above (direction > 0) or below (< 0) `zoom`, or the last
// step in that direction.
double NextZoomStep(double zoom, int direction);

// Which frame of an animation is shown when. The frame time of frame k comes
// from `frameTime(k)` (milliseconds); times are those of an injected clock.
class FramePlayer {
 public:
  using FrameTime = std::function<int(int frame)>;

  // Starts at frame 0 at time `now`.
  void Start(std::uint64_t now, int frameCount, FrameTime frameTime);
  void Stop() { m_frameCount = 0; }
  bool IsPlaying() const { return m_frameCount > 1; }
  // Moves past every frame whose time is over by `now` (a late timer skips
  // frames rather than slowing the animation; a whole round late, it goes on
  // from `now`) and returns the frame shown.
  int Advance(std::uint64_t now);
  // Milliseconds from `now` until the shown frame's time is over.
  int MillisecondsLeft(std::uint64_t now) const;
  int Frame() const { return m_frame; }

 private:
  int TimeOf(int frame) const;

  int m_frameCount = 0;
  int m_frame = 0;
  std::uint64_t m_frameStart = 0;
  FrameTime m_frameTime;
};

class CPhotoView : public KarvelUI::CUIImageBase {
 public:
  using Clock = std::function<std::uint64_t()>;  // milliseconds

  CPhotoView();
  ~CPhotoView() override;

  // Makes "CPhotoView" nodes (for CUISkinManager::RegisterObjectCreateor).
  static KarvelUI::CUIControl* CreateControl(const KarvelUI::CString& type);

  // Shows `path` fitted (a file shown before keeps its turn), decoding
  // `decodeAhead` (previous and next of the strip) meanwhile.
  int ShowFile(const KarvelUI::CString& path, const std::vector<KarvelUI::CString>& decodeAhead = {});
  void ZoomIn();
  void ZoomOut();
  // `notches` wheel notches (positive: in) about the client point `cursor`.
  void ZoomAt(int notches, KarvelUI::CPoint cursor);
  // Any zoom (clamped to the steps' range) about the view's centre: the slider.
  void SetZoomPercent(int percent);
  void FitToView();
  void ActualSize();
  void RotateLeft();
  void RotateRight();
  // Displayed size / picture size, in percent (0 without a picture shown).
  int GetZoomPercent() const;
  double GetZoom() const;
  KarvelUI::BOOL IsFitted() const { return m_bFitted; }
  // The shown picture's own size in pixels; empty until it is first drawn.
  KarvelUI::CSize GetPictureSize() const;
  // The path of the shown picture; empty without one.
  KarvelUI::CString GetFile() const;
  // The turn stored for `path` (radians, clockwise); 0 for a file never shown.
  float GetStoredRotation(const KarvelUI::CString& path) const;

  int LoadImageW(const KarvelUI::CString& path, int hostValue1, int hostValue2, float rotation,
                 int fitWindow) override;
  void RenderSelf(KarvelUI::DXCore* dx, KarvelUI::CRect* clip) override;
  int OnMouseMessage(KarvelUI::UINT message, KarvelUI::UINT flags, const KarvelUI::CPoint& point) override;
  int OnKeyMessage(KarvelUI::UINT message, KarvelUI::UINT wParam, KarvelUI::UINT repeat,
                   KarvelUI::UINT flags) override;

  // The clock of the animation (tests inject one).
  void SetClock(Clock clock) { m_clock = std::move(clock); }
  // The animation timer's handler.
  void OnAnimationTimer(unsigned int id);

 protected:
  // Scales the view about (x, y) to `zoom`, then keeps the picture in the view.
  void ZoomTo(double zoom, float x, float y);
  // Moves the view by (dx, dy), then keeps the picture in the view.
  void PanBy(float dx, float dy);
  // Shifts the view rectangle so that the turned picture covers the inner
  // rectangle along each axis where it is larger, and is centred where smaller.
  void KeepInView();
  void Turn(int quarterTurns);
  // The picture's rectangle on screen (turned).
  KarvelUI::RectF ScreenRect();

 private:
  // Whether the ready picture reaches outside the inner rectangle.
  bool PictureOverflows(KarvelUI::DXCore* dx);
  // The part of the picture inside the inner rectangle.
  void DrawInsideView(KarvelUI::DXCore* dx);
  void ApplyViewRect();
  void ReportZoom();
  void StartAnimation(KarvelUI::DXCore* dx);
  void StopAnimation();
  int FrameTimeOf(int frame);

  KarvelUI::BOOL m_bFitted = KarvelUI::TRUE;
  KarvelUI::BOOL m_bDragging = KarvelUI::FALSE;
  KarvelUI::CPoint m_ptDrag;
  KarvelUI::CRect m_rcLastInner;
  int m_nReportedZoom = -1;
  FramePlayer m_player;
  Clock m_clock;
};

}  // namespace KarvelView
