#pragma once

// CUISlider: a horizontal or vertical track with a thumb, a fill picture
// behind the thumb and a background picture. It maps an integer range onto
// the track, moves the thumb by dragging it or by a click in the track, and
// raises UI_EVENT_SLIDER_CHANGED on every such move while it is enabled.
// The thumb's rectangle is in form coordinates and placed by SetPosition
// (or on the first paint); a host that moves the slider sets the position
// again.
//
// Threads: the user-interface thread only.

#include <karvelui/ImageConfig.h>
#include <karvelui/SkinConfig.h>
#include <karvelui/UIControl.h>

namespace KarvelUI {

// Thumb pictures used: normal, hover, pressed (of the five "SliderBtn" states).
inline constexpr int UISLIDER_THUMB_STATES = 5;

// The skin record of a slider (css type "CUISlider").
class KARVELUI_API _SliderConfig : public _SkinConfig {
 public:
  _SliderConfig();
  _SliderConfig(const _SliderConfig&) = default;
  _SliderConfig& operator=(const _SliderConfig&) = default;

  void Copy(_SkinConfig* source) override;
  void Reset() override;
  int Read(CSkinReader* reader) override;
  _SkinConfig* Clone() override;

  _ImageConfig m_imgThumb[UISLIDER_THUMB_STATES];  // "SliderBtn"
  _ImageConfig m_imgBackground;                    // "BkImage", stretched over the bounds
  _ImageConfig m_imgFill;                          // "FillImage", from the track's start to the thumb
  int m_bHorizontal = 1;                           // "IsHorz"
};

class KARVELUI_API CUISlider : public CUIControl {
 public:
  CUISlider();

  void OnSetSkinData() override;
  void RenderSelf(DXCore* dx, CRect* clip) override;
  // Handles every mouse message (none bubbles).
  int OnMouseMessage(UINT message, UINT flags, const CPoint& point) override;
  BOOL OnBuildControlAfter() override;

  // Stores both as given; always TRUE.
  BOOL SetRange(int minimum, int maximum);
  void GetRange(int& minimum, int& maximum) const;
  // Not below the minimum; deliberately no upper clamp.
  void SetPosition(int position);
  int GetPosition() const { return m_nPosition; }
  CRect GetThumbRect() const { return m_rcThumb; }
  BOOL IsDragging() const { return m_bDragging; }
  int GetThumbState() const { return m_nThumbState; }

  // A press on the thumb starts a drag; elsewhere in the track the thumb jumps there.
  void OnLButtonDown(UINT flags, CPoint point);
  // Ends a drag and gives the capture back; a release without a drag does nothing.
  void OnLButtonUp(UINT flags, CPoint point);
  void OnMouseMove(UINT flags, CPoint point);
  void OnMouseLeave(UINT flags, CPoint point);

 protected:
  // The bounds less 4 pixels left and right and 5 top and bottom.
  CRect GetSlotBounds(BOOL horizontal);
  _SliderConfig* GetSliderConfig();

 private:
  // (value - minimum) / range, 0 for an empty range.
  double PositionRatio() const;
  // minimum + the share of the range that `done` of `room` is.
  int PositionAt(LONG done, LONG room) const;
  CSize ThumbSize(_SliderConfig& config) const;
  void PlaceThumbForPaint(_SliderConfig& config, const CRect& slot);
  void DragHorizontally(const CPoint& point, const CRect& slot);
  void DragVertically(const CPoint& point, const CRect& slot);
  void FireChanged();
  void SetThumbState(int state);

  int m_nPosition = 0;
  int m_nMin = 0;
  int m_nMax = 0;
  CRect m_rcThumb;          // form coordinates
  BOOL m_bDragging = FALSE;
  CPoint m_ptLast;          // cursor at the last drag step
  int m_nThumbState = 0;    // 0 normal, 1 hover, 2 pressed
};

}  // namespace KarvelUI
