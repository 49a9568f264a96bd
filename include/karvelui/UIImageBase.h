#pragma once

// CUIImageBase: the control that shows one photograph. It fits the picture
// into its inner rectangle (shrinking, never enlarging), centres it, turns it
// by quarter turns about its own centre and remembers per file the turn it
// last had. It draws the skin's shadow frame over its bounds and, in place
// of a picture that cannot be shown, the skin's placeholder. Derived views
// (zoom, pan) use its protected geometry.
//
// A picture counts as failed - and the placeholder is drawn in its place -
// when the render device's cache cannot make it: its decode fails, or the
// file has gone missing or become unreadable since LoadImageW. The
// placeholder's rectangle (GetInvalidateViewRect) then becomes the view
// rectangle, so that it shows rather than collapsing to a point.
//
// Large pictures come up in steps (ResourceCache::RequestViewPictures): a
// reduced preview first, then the full-resolution tiles, uploaded a few per
// frame while the preview shows and replacing it in one frame when the last
// is up. The view rectangle is always computed from the
// whole picture's size, so replacing the preview moves nothing. Pictures
// named with SetDecodeAhead are decoded meanwhile, ready for the next load.
//
// A JPEG whose EXIF data says it is stored turned is shown upright: its turn
// is added to the rotation argument of its first load (the rotation map then
// holds the sum).

#include <map>
#include <memory>
#include <vector>

#include <karvelui/Base.h>
#include <karvelui/D3DTypes.h>
#include <karvelui/ImageConfig.h>
#include <karvelui/SkinConfig.h>
#include <karvelui/UIControl.h>

namespace KarvelUI {

struct ViewPicture;

// The form timer of a view's frame animation; every load stops it.
inline constexpr UINT UI_TIMER_IMAGE_ANIMATION = 14402;

// The image view's skin record (css type "CUIImageBase").
class KARVELUI_API _UIImageBaseConfig : public _SkinConfig {
 public:
  _UIImageBaseConfig();
  // Unlike Copy and Clone, these copy the white background too.
  _UIImageBaseConfig(const _UIImageBaseConfig&) = default;
  _UIImageBaseConfig& operator=(const _UIImageBaseConfig&) = default;

  // The white background is deliberately left out of Copy, Reset and Clone.
  void Copy(_SkinConfig* source) override;
  void Reset() override;
  int Read(CSkinReader* reader) override;
  _SkinConfig* Clone() override;

  _ImageConfig m_imgInvalidate;       // "InvalidateImage": placeholder; its Rect gives its size
  _ImageConfig m_imgWhiteBackground;  // "BKImageWhite": read and kept, not drawn
  _ImageBorderConfig m_imgShadow;     // "BkImageShadow": frame over the whole bounds
};

// The last turn of one file.
struct KARVELUI_API _RotateInfo {
  float fRotation = 0.0f;  // radians, clockwise
  int nReserved = 0;       // always 0
};

class KARVELUI_API CUIImageBase : public CUIControl {
 public:
  CUIImageBase();
  ~CUIImageBase() override;

  void OnSetSkinData() override;
  void RenderSelf(DXCore* dx, CRect* clip) override;

  // Shows another picture: 1 when it is set (or already shown, keeping the
  // current rectangle and any zoom), 0 for an empty path or a missing file.
  // A file loaded before keeps the turn it had; `rotation` applies to a
  // file's first load. The previous picture's textures are released while
  // its decoded copy stays.
  virtual int LoadImageW(const CString& path, int hostValue1, int hostValue2, float rotation, int fitWindow);
  // Forgets the picture. The file name is emptied before the cache is asked
  // to release it, so the old entry stays cached (deliberately).
  virtual void Clear();

  int IsHaveImage() const;
  int IsLoadImageSuccess() const { return m_bLoadSuccess; }
  int IsFitWnd() const { return m_bFitWnd; }
  void SetNeadRefresh(int refresh) { m_bNeedRefresh = refresh; }

  // Pictures to decode while this one is shown, most wanted first (the
  // previous and next of a strip); at most these and the shown picture stay
  // decoded. Takes effect with the next load or draw.
  void SetDecodeAhead(const std::vector<CString>& paths);
  // FALSE: every picture is decoded and uploaded at its first draw, in one go.
  void SetProgressiveLoading(BOOL progressive) { m_bProgressive = progressive; }

 protected:
  virtual void Reset();
  // Recomputes the view rectangle for `area` while need-refresh is set.
  virtual void SetRectData(CRect& area);
  // The picture turns about `point`.
  virtual void SetCenterPoint(CPoint& point);

  // Places a width x height picture in `area` (fit: shrink to the room left
  // by the margins), centred on `centre` or the area's centre, then moved to
  // the centre of the inner rectangle when `putCentre`.
  void SetViewRect(CRect& view, RectF& exact, float width, float height, CRect area, int fit, CPoint* centre,
                   int putCentre);
  // Corners (left, top) and (right, bottom) turned by `angle` about (cx, cy);
  // the result spans the two turned corners (exact for quarter turns).
  void RotateRect(RectF& rect, float angle, float cx, float cy);
  // Both corners scaled about (cx, cy).
  void ScaleRect(RectF& rect, float scale, float cx, float cy);
  // Moves `rect` so that its centre is (x, y), recomputes the integer view
  // rectangle from the exact one and turns the picture about (cx, cx):
  // deliberately the horizontal centre twice; SetRectData sets the real
  // centre right after.
  void PutCenterToPoint(RectF& rect, float x, float y);
  // The placeholder's rectangle: its picture's size (400 x 400 without one),
  // centred in the inner rectangle.
  CRect GetInvalidateViewRect();

  // The record of the skin, or null.
  _UIImageBaseConfig* GetImageBaseConfig();
  // The owner form's render device, or null.
  DXCore* GetRenderDevice() const;
  // k clockwise quarter turns as the exact float the sideways test knows
  // (k modulo 4), and the quarter turns nearest to an angle.
  static float TurnAngle(int quarterTurns);
  static int QuarterTurns(float angle);
  // Round half up: truncate(v + 0.5).
  static LONG RoundToPixel(float value);
  static CRect RoundRect(const RectF& rect);

  std::unique_ptr<_ImageConfig> m_pImage;  // file, colour, rotation centre, rotation, frame
  CRect m_rcView;                          // the unturned picture, client coordinates
  RectF m_rcViewF;                         // the same before rounding
  int m_bFitWnd = 1;
  std::unique_ptr<D3DXIMAGE_INFO> m_pImageInfo;    // the picture's own description
  std::unique_ptr<D3DXIMAGE_INFO> m_pTextureInfo;  // the uploaded pixels' description
  int m_bLoadSuccess = 1;
  int m_bNeedRefresh = 1;
  int m_nHostValue1 = 0;
  int m_nHostValue2 = 0;
  std::map<CString, _RotateInfo> m_mapRotations;  // exact (case-sensitive) paths
  int m_nReserved1 = 0;
  int m_nReserved2 = 0;
  int m_bAnimationTimerOn = 0;  // a derived view sets it when it starts UI_TIMER_IMAGE_ANIMATION
  int m_nFrameCounter = 0;

 private:
  // What the cache has of the picture; fills the information records the
  // first time it has anything.
  ViewPicture LookUpPicture(DXCore* dx);
  void DrawPicture(DXCore* dx, const ViewPicture& picture);
  void RequestPictures(DXCore* dx);

  std::vector<CString> m_vecDecodeAhead;
  BOOL m_bProgressive = TRUE;
  bool m_bRequestPending = false;
};

}  // namespace KarvelUI
