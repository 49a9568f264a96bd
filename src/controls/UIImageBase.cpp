#include <karvelui/UIImageBase.h>

#include <algorithm>
#include <cmath>

#include <karvelui/D3DMath.h>
#include <karvelui/DXCore.h>
#include <karvelui/Helpers.h>
#include <karvelui/MessageQueue.h>
#include <karvelui/ResourceCache.h>
#include <karvelui/SkinReader.h>
#include <karvelui/UIForm.h>
#include "render/PictureDecoder.h"

namespace KarvelUI {

namespace {

constexpr const wchar_t* kTypeName = L"CUIImageBase";
// The exact 32-bit floats of a quarter and a three-quarter turn: only these
// count as sideways (angles computed in float, as the host stores them).
constexpr float kQuarterTurn = 1.5707964f;
constexpr float kThreeQuarterTurn = 4.712389f;
// Room kept free above and below the picture.
constexpr int kMargin = 30;
constexpr int kMaximisedMargin = 96;
constexpr LONG kDefaultPlaceholderSide = 400;
// Work of one frame on the tiles of a picture coming up.
constexpr double kUploadBudgetMs = 6.0;
// A colour that leaves nothing on screen (white, fully transparent).
constexpr DWORD kUnseen = 0x00FFFFFF;

}  // namespace

// --- _UIImageBaseConfig ---------------------------------------------------------------

_UIImageBaseConfig::_UIImageBaseConfig() { _UIImageBaseConfig::Reset(); }

void _UIImageBaseConfig::Reset() {
  m_imgInvalidate.Reset();
  m_imgShadow.Reset();
}

void _UIImageBaseConfig::Copy(_SkinConfig* source) {
  Reset();
  auto* from = static_cast<_UIImageBaseConfig*>(source);
  if (!from) return;
  m_imgInvalidate.Copy(&from->m_imgInvalidate);
  m_imgShadow.Copy(&from->m_imgShadow);
}

int _UIImageBaseConfig::Read(CSkinReader* reader) {
  if (!reader) return 0;
  reader->GetImage(m_imgInvalidate, L"InvalidateImage");
  reader->GetImage(m_imgWhiteBackground, L"BKImageWhite");
  reader->GetImage(m_imgShadow, L"BkImageShadow");
  return 1;
}

_SkinConfig* _UIImageBaseConfig::Clone() {
  auto* clone = new _UIImageBaseConfig();
  clone->Copy(this);
  return clone;
}

// --- life --------------------------------------------------------------------------------

CUIImageBase::CUIImageBase() { SetTypeName(kTypeName); }

CUIImageBase::~CUIImageBase() { m_mapRotations.clear(); }

void CUIImageBase::OnSetSkinData() { GetImageBaseConfig(); }

_UIImageBaseConfig* CUIImageBase::GetImageBaseConfig() {
  // Derived views keep the image view's record type.
  return dynamic_cast<_UIImageBaseConfig*>(GetSkinConfig(kTypeName));
}

DXCore* CUIImageBase::GetRenderDevice() const {
  CUIForm* form = GetOwnerForm();
  return form ? form->GetRenderDevice() : nullptr;
}

int CUIImageBase::IsHaveImage() const { return m_pImage && !m_pImage->m_strFile.IsEmpty() ? 1 : 0; }

void CUIImageBase::Reset() {
  m_pImageInfo.reset();
  m_pTextureInfo.reset();
  m_rcView.SetRectEmpty();
  m_bLoadSuccess = 1;
  m_bNeedRefresh = 1;
  m_nHostValue1 = m_nHostValue2 = 0;
  if (m_pImage) m_pImage->m_fRotation = 0.0f;
}

void CUIImageBase::SetCenterPoint(CPoint& point) {
  if (!m_pImage) return;
  m_pImage->m_nRotateCenterX = point.x;
  m_pImage->m_nRotateCenterY = point.y;
}

// --- loading -----------------------------------------------------------------------------

int CUIImageBase::LoadImageW(const CString& path, int hostValue1, int hostValue2, float rotation, int fitWindow) {
  if (m_pImage && !path.IsEmpty() && m_pImage->m_strFile == path) {
    m_bNeedRefresh = 0;  // the current rectangle, with any zoom and pan, stays
    return 1;
  }
  if (!m_pImage) {
    m_pImage = std::make_unique<_ImageConfig>();
  } else if (!m_pImage->m_strFile.IsEmpty()) {
    if (DXCore* dx = GetRenderDevice()) dx->ReleaseTexture(m_pImage->m_strFile, 1);  // going back needs no decode
    m_pImage->m_strFile.Empty();
  }
  m_pImage->m_nFrame = 0;
  m_nFrameCounter = 0;
  if (m_bAnimationTimerOn) {
    m_bAnimationTimerOn = 0;
    if (CUIForm* form = GetOwnerForm()) form->UnRegisterTimerHandler(UI_TIMER_IMAGE_ANIMATION);
  }
  if (path.IsEmpty() || !IsFileExist(path)) return 0;

  Reset();
  m_nHostValue1 = hostValue1;
  m_nHostValue2 = hostValue2;
  m_pImage->m_strFile = path;
  const auto stored = m_mapRotations.find(path);
  float angle = rotation;
  if (stored != m_mapRotations.end()) {
    angle = stored->second.fRotation;  // the file's own last turn wins over the argument
  } else {
    if (const int exifTurns = ExifOrientationQuarterTurns(ReadExifOrientation(path)))
      angle = QuarterTurnAngle(QuarterTurnsOf(rotation) + exifTurns);
    m_mapRotations[path] = _RotateInfo{angle, 0};
  }
  m_pImage->m_fRotation = angle;
  m_bFitWnd = fitWindow;
  m_bNeedRefresh = 1;
  m_bRequestPending = true;
  RequestPictures(GetRenderDevice());
  Refresh();
  return 1;
}

void CUIImageBase::Clear() {
  if (m_pImage && !m_pImage->m_strFile.IsEmpty() && GetOwnerForm()) {
    m_pImage->m_strFile.Empty();
    // Deliberately after emptying: the old entry is not released here.
    if (DXCore* dx = GetRenderDevice()) dx->ReleaseTexture(m_pImage->m_strFile, 0);
  }
  Reset();
}

void CUIImageBase::SetDecodeAhead(const std::vector<CString>& paths) {
  m_vecDecodeAhead = paths;
  m_bRequestPending = true;  // asked with the next load, or the next draw
  if (IsHaveImage()) Refresh();
}

void CUIImageBase::RequestPictures(DXCore* dx) {
  if (!m_bRequestPending || !m_bProgressive || !dx || !IsHaveImage() || !GetOwnerForm()) return;
  m_bRequestPending = false;
  const CRect inner = GetBoundsSmall();
  const HWND window = GetOwnerForm()->GetSafeHwnd();
  // Runs on the cache's worker: a posted paint is the thread-safe way back.
  dx->GetResourceCache()->RequestViewPictures(m_pImage->m_strFile, m_vecDecodeAhead, inner.Size(),
                                              dx->GetD3DDevice(),
                                              [window] { PostMessageW(window, WM_PAINT, 0, 0); });
}

// --- drawing -----------------------------------------------------------------------------

ViewPicture CUIImageBase::LookUpPicture(DXCore* dx) {
  RequestPictures(dx);
  // A path never requested (progressive loading off) is loaded at once.
  ViewPicture picture = dx->GetResourceCache()->StepViewPicture(m_pImage->m_strFile, dx->GetD3DDevice(),
                                                                kUploadBudgetMs);
  if (picture.nStage == VIEW_PICTURE_FAILED) m_bLoadSuccess = 0;
  if (m_pImageInfo || picture.nStage == VIEW_PICTURE_PENDING) return picture;
  // Filled once; a failed lookup leaves them zero until the next Reset.
  m_pImageInfo = std::make_unique<D3DXIMAGE_INFO>();
  m_pTextureInfo = std::make_unique<D3DXIMAGE_INFO>();
  if (picture.nStage != VIEW_PICTURE_FAILED) {
    *m_pImageInfo = picture.ImageInfo;
    *m_pTextureInfo = picture.nStage == VIEW_PICTURE_FULL ? picture.pPicture->TextureInfo : picture.ImageInfo;
    m_bLoadSuccess = 1;
  }
  return picture;
}

void CUIImageBase::DrawPicture(DXCore* dx, const ViewPicture& picture) {
  if (picture.nStage == VIEW_PICTURE_FULL) {
    m_pImage->Render(dx, m_rcView, nullptr);
    return;
  }
  // On the way: the tiles made so far are handed to the device - one unseen
  // texel each - so that it takes them in now, a few per frame, while the
  // preview stands for the whole picture. Both fill the same rectangle, so
  // nothing moves in the frame where the last tile replaces the preview.
  if (picture.pPicture) {
    dx->SetTransform(nullptr, nullptr, nullptr, 0.0f, nullptr);
    const RECT texel(0, 0, 1, 1);
    const D3DXVECTOR3 corner{static_cast<float>(m_rcView.left), static_cast<float>(m_rcView.top), 0.0f};
    const tagTextureItem& tiles = *picture.pPicture;
    for (int i = 0; i < tiles.nTileCols * tiles.nTileRows; ++i)
      if (tiles.pTiles[i].pTexture) dx->DrawImage(tiles.pTiles[i].pTexture.Get(), &texel, nullptr, &corner, kUnseen);
    Refresh();  // the next frame makes the next tiles
  }
  if (picture.pPreview) {
    const D3DXVECTOR2 centre{static_cast<float>(m_pImage->m_nRotateCenterX),
                             static_cast<float>(m_pImage->m_nRotateCenterY)};
    dx->DrawImage(picture.pPreview, &m_rcView, nullptr, &centre, m_pImage->m_fRotation, m_pImage->m_dwColor);
  }
  dx->SetTransform(nullptr, nullptr, nullptr, 0.0f, nullptr);
}

void CUIImageBase::RenderSelf(DXCore* dx, CRect*) {
  if (!dx) return;
  const CRect bounds = GetBounds();
  CRect inner = GetBoundsSmall();
  _UIImageBaseConfig* config = GetImageBaseConfig();
  if (config && !config->m_imgShadow.m_rcSrc.IsRectEmpty()) config->m_imgShadow.Render(dx, bounds);
  if (!m_pImage) m_pImage = std::make_unique<_ImageConfig>();
  if (m_pImage->m_strFile.IsEmpty()) return;

  const ViewPicture picture = LookUpPicture(dx);
  if (!m_pImageInfo) return;  // still decoding: the worker asks for the paint that shows it
  SetRectData(inner);
  if (m_bLoadSuccess) {
    DrawPicture(dx, picture);
  } else if (config) {
    // The placeholder's own rectangle, so that it shows instead of the
    // picture's collapsed one.
    m_rcView = GetInvalidateViewRect();
    config->m_imgInvalidate.Render(dx, m_rcView, nullptr);
  }
}

// --- geometry ----------------------------------------------------------------------------

float CUIImageBase::TurnAngle(int quarterTurns) { return QuarterTurnAngle(quarterTurns); }

int CUIImageBase::QuarterTurns(float angle) { return QuarterTurnsOf(angle); }

LONG CUIImageBase::RoundToPixel(float value) { return static_cast<LONG>(value + 0.5f); }

CRect CUIImageBase::RoundRect(const RectF& rect) {
  return CRect(RoundToPixel(rect.left), RoundToPixel(rect.top), RoundToPixel(rect.right), RoundToPixel(rect.bottom));
}

void CUIImageBase::SetRectData(CRect& area) {
  if (!m_pImage || m_pImage->m_strFile.IsEmpty() || area.IsRectEmpty() || !m_bNeedRefresh) return;
  const float width = m_pImageInfo ? static_cast<float>(m_pImageInfo->Width) : 0.0f;
  const float height = m_pImageInfo ? static_cast<float>(m_pImageInfo->Height) : 0.0f;
  SetViewRect(m_rcView, m_rcViewF, width, height, area, m_bFitWnd, nullptr, 1);
  CPoint centre((m_rcView.left + m_rcView.right) / 2, (m_rcView.top + m_rcView.bottom) / 2);
  SetCenterPoint(centre);
}

void CUIImageBase::SetViewRect(CRect& view, RectF& exact, float width, float height, CRect area, int fit,
                               CPoint* centre, int putCentre) {
  const CPoint c = centre ? *centre : CPoint((area.left + area.right) / 2, (area.top + area.bottom) / 2);
  const float turn = std::fabs(m_pImage ? m_pImage->m_fRotation : 0.0f);
  const bool sideways = turn == kQuarterTurn || turn == kThreeQuarterTurn;

  // The picture's own width runs vertically on screen when it is sideways.
  int roomWidth = sideways ? area.Height() : area.Width();
  int roomHeight = sideways ? area.Width() : area.Height();
  float left = static_cast<float>(c.x) - (sideways ? height : width) / 2;
  float top = static_cast<float>(c.y) - (sideways ? width : height) / 2;
  CUIForm* form = GetOwnerForm();
  const int margin = form && (form->GetStyle() & WS_MAXIMIZE) ? kMaximisedMargin : kMargin;
  // Either way the margins keep the picture off the area's top and bottom edges.
  if (sideways) {
    left += static_cast<float>(margin);
    roomWidth -= 2 * margin;
  } else {
    top += static_cast<float>(margin);
    roomHeight -= 2 * margin;
  }

  float newWidth = width, newHeight = height;
  if ((width > static_cast<float>(roomWidth) || height > static_cast<float>(roomHeight)) && fit) {
    if (static_cast<float>(roomWidth) / static_cast<float>(roomHeight) <= width / height) {
      newWidth = static_cast<float>(roomWidth);
      newHeight = height * static_cast<float>(roomWidth) / width;
    } else {
      newHeight = static_cast<float>(roomHeight);
      newWidth = width * static_cast<float>(roomHeight) / height;
    }
    left = static_cast<float>(c.x) - newWidth / 2;
    top = static_cast<float>(c.y) - newHeight / 2;
  }
  exact = RectF(left, top, left + newWidth, top + newHeight);
  if (putCentre) {
    const CRect inner = GetBoundsSmall();
    PutCenterToPoint(exact, static_cast<float>((inner.left + inner.right) / 2),
                     static_cast<float>((inner.top + inner.bottom) / 2));
  }
  view = RoundRect(exact);
}

void CUIImageBase::PutCenterToPoint(RectF& rect, float x, float y) {
  const float width = rect.Width(), height = rect.Height();
  rect.left += x - (rect.left + rect.right) / 2;
  rect.top += y - (rect.top + rect.bottom) / 2;
  rect.right = rect.left + width;
  rect.bottom = rect.top + height;
  m_rcView = RoundRect(m_rcViewF);
  const LONG cx = RoundToPixel((rect.left + rect.right) / 2);
  CPoint centre(cx, cx);  // deliberately the horizontal centre for both
  SetCenterPoint(centre);
}

void CUIImageBase::RotateRect(RectF& rect, float angle, float cx, float cy) {
  // The render device's own transformation, so the result lies where it draws.
  const D3DXVECTOR2 pivot{cx, cy};
  D3DXMATRIX turn;
  D3DXMatrixTransformation2D(&turn, nullptr, 0.0f, nullptr, &pivot, angle, nullptr);
  const D3DXVECTOR2 a = TransformPoint(turn, rect.left, rect.top);
  const D3DXVECTOR2 b = TransformPoint(turn, rect.right, rect.bottom);
  rect = RectF(std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y));
}

void CUIImageBase::ScaleRect(RectF& rect, float scale, float cx, float cy) {
  rect = RectF(cx + (rect.left - cx) * scale, cy + (rect.top - cy) * scale, cx + (rect.right - cx) * scale,
               cy + (rect.bottom - cy) * scale);
}

CRect CUIImageBase::GetInvalidateViewRect() {
  const _UIImageBaseConfig* config = GetImageBaseConfig();
  CSize size(kDefaultPlaceholderSide, kDefaultPlaceholderSide);
  if (config && !config->m_imgInvalidate.m_rcSrc.IsRectEmpty()) size = config->m_imgInvalidate.m_rcSrc.Size();
  const CRect inner = GetBoundsSmall();
  const LONG left = (inner.left + inner.right) / 2 - size.cx / 2;
  const LONG top = (inner.top + inner.bottom) / 2 - size.cy / 2;
  return CRect(left, top, left + size.cx, top + size.cy);
}

}  // namespace KarvelUI
