#include "PhotoView.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iterator>

#include <karvelui/DXCore.h>
#include <karvelui/Input.h>
#include <karvelui/ResourceCache.h>
#include <karvelui/UIForm.h>
#include <karvelui/UIManager.h>

using namespace KarvelUI;

namespace KarvelView {

namespace {

constexpr const wchar_t* kTypeName = L"CPhotoView";
constexpr int kWheelNotch = 120;
constexpr int kDefaultFrameTime = 100;  // milliseconds, for a frame that tells none
constexpr double kZoomTolerance = 1e-4;  // a zoom this close to a step is on it
// A picture pixel whose edge lies this close to the view's edge counts as inside.
constexpr double kEdgeTolerance = 1e-3;
// Keys of the view (virtual-key codes of the US layout).
constexpr UINT kKeyOpenBracket = 0xDB;   // "["
constexpr UINT kKeyCloseBracket = 0xDD;  // "]"
constexpr UINT kKeyPlus = 0xBB;          // "=" / "+"
constexpr UINT kKeyMinus = 0xBD;         // "-"
// A captured cursor left of or above the window arrives as an unsigned
// 16-bit coordinate; above this it stands for a negative one.
constexpr LONG kLargestCoordinate = 0x7FFF;

std::uint64_t SteadyMilliseconds() {
  using namespace std::chrono;
  return static_cast<std::uint64_t>(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

LONG SignedCoordinate(LONG value) { return value > kLargestCoordinate ? value - 0x10000 : value; }

}  // namespace

double NextZoomStep(double zoom, int direction) {
  if (direction > 0) {
    for (double step : kZoomSteps)
      if (step > zoom + kZoomTolerance) return step;
    return std::end(kZoomSteps)[-1];
  }
  for (auto step = std::rbegin(kZoomSteps); step != std::rend(kZoomSteps); ++step)
    if (*step < zoom - kZoomTolerance) return *step;
  return kZoomSteps[0];
}

// --- FramePlayer ------------------------------------------------------------------------

void FramePlayer::Start(std::uint64_t now, int frameCount, FrameTime frameTime) {
  m_frameCount = frameCount;
  m_frame = 0;
  m_frameStart = now;
  m_frameTime = std::move(frameTime);
}

int FramePlayer::TimeOf(int frame) const {
  const int time = m_frameTime ? m_frameTime(frame) : kDefaultFrameTime;
  return time > 0 ? time : kDefaultFrameTime;
}

int FramePlayer::Advance(std::uint64_t now) {
  if (!IsPlaying()) return m_frame;
  for (int skipped = 0; now >= m_frameStart + static_cast<std::uint64_t>(TimeOf(m_frame)); ++skipped) {
    if (skipped == m_frameCount) {
      m_frameStart = now;  // a whole round behind (a stalled window): go on from here
      break;
    }
    m_frameStart += static_cast<std::uint64_t>(TimeOf(m_frame));
    m_frame = (m_frame + 1) % m_frameCount;
  }
  return m_frame;
}

int FramePlayer::MillisecondsLeft(std::uint64_t now) const {
  const std::uint64_t end = m_frameStart + static_cast<std::uint64_t>(TimeOf(m_frame));
  return now >= end ? 0 : static_cast<int>(end - now);
}

// --- CPhotoView: life ---------------------------------------------------------------------

CPhotoView::CPhotoView() : m_clock(&SteadyMilliseconds) { SetTypeName(kTypeName); }

CPhotoView::~CPhotoView() {
  // A form being destroyed has already dropped its timers (and left the manager).
  CUIForm* form = GetOwnerForm();
  if (m_bAnimationTimerOn && form && CUIManager::GetInstance()->IsExist(form) != -1)
    form->UnRegisterTimerHandler(UI_TIMER_IMAGE_ANIMATION);
}

CUIControl* CPhotoView::CreateControl(const CString& type) {
  return type == kTypeName ? new CPhotoView() : nullptr;
}

// --- loading ------------------------------------------------------------------------------

int CPhotoView::ShowFile(const CString& path, const std::vector<CString>& decodeAhead) {
  SetDecodeAhead(decodeAhead);
  return LoadImageW(path, 0, 0, 0.0f, 1);
}

int CPhotoView::LoadImageW(const CString& path, int hostValue1, int hostValue2, float rotation, int fitWindow) {
  const bool same = IsHaveImage() && m_pImage->m_strFile == path;
  if (!same) m_player.Stop();  // the base stops the timer
  const int loaded = CUIImageBase::LoadImageW(path, hostValue1, hostValue2, rotation, fitWindow);
  if (!same) {
    m_nReportedZoom = -1;  // every new picture tells its zoom, even one its predecessor had
    m_bFitted = TRUE;
    m_bDragging = FALSE;
    ReleaseControlCapture();
  }
  return loaded;
}

// --- zoom ---------------------------------------------------------------------------------

double CPhotoView::GetZoom() const {
  if (!m_pImageInfo || m_pImageInfo->Width == 0 || !IsHaveImage()) return 0.0;
  return static_cast<double>(m_rcViewF.Width()) / m_pImageInfo->Width;
}

CSize CPhotoView::GetPictureSize() const {
  if (!IsHaveImage() || !m_pImageInfo) return CSize();
  return CSize(static_cast<LONG>(m_pImageInfo->Width), static_cast<LONG>(m_pImageInfo->Height));
}

CString CPhotoView::GetFile() const { return IsHaveImage() ? m_pImage->m_strFile : CString(); }

float CPhotoView::GetStoredRotation(const CString& path) const {
  const auto found = m_mapRotations.find(path);
  return found == m_mapRotations.end() ? 0.0f : found->second.fRotation;
}

int CPhotoView::GetZoomPercent() const { return static_cast<int>(std::lround(GetZoom() * 100)); }

void CPhotoView::ZoomTo(double zoom, float x, float y) {
  const double current = GetZoom();
  if (current <= 0) return;
  zoom = std::clamp(zoom, kZoomSteps[0], std::end(kZoomSteps)[-1]);
  // Scaling the unturned rectangle about the cursor scales the turned one
  // about it too (both share their centre), so the point under it stays.
  ScaleRect(m_rcViewF, static_cast<float>(zoom / current), x, y);
  m_bFitted = FALSE;
  KeepInView();
  ApplyViewRect();
}

void CPhotoView::ZoomAt(int notches, CPoint cursor) {
  double zoom = GetZoom();
  if (zoom <= 0 || notches == 0) return;
  for (int i = 0; i < std::abs(notches); ++i) zoom = NextZoomStep(zoom, notches);
  ZoomTo(zoom, static_cast<float>(cursor.x), static_cast<float>(cursor.y));
}

void CPhotoView::ZoomIn() {
  const CRect inner = GetBoundsSmall();
  ZoomAt(1, inner.CenterPoint());
}

void CPhotoView::ZoomOut() {
  const CRect inner = GetBoundsSmall();
  ZoomAt(-1, inner.CenterPoint());
}

void CPhotoView::SetZoomPercent(int percent) {
  const CRect inner = GetBoundsSmall();
  const CPoint centre = inner.CenterPoint();
  ZoomTo(percent / 100.0, static_cast<float>(centre.x), static_cast<float>(centre.y));
}

void CPhotoView::ActualSize() {
  const CRect inner = GetBoundsSmall();
  const CPoint centre = inner.CenterPoint();
  ZoomTo(1.0, static_cast<float>(centre.x), static_cast<float>(centre.y));
}

void CPhotoView::FitToView() {
  m_bFitted = TRUE;
  SetNeadRefresh(1);  // the next draw fits it again
  Refresh();
}

// --- pan and turns --------------------------------------------------------------------------

RectF CPhotoView::ScreenRect() {
  RectF screen = m_rcViewF;
  if (m_pImage) RotateRect(screen, m_pImage->m_fRotation, (screen.left + screen.right) / 2,
                           (screen.top + screen.bottom) / 2);
  return screen;
}

void CPhotoView::KeepInView() {
  const CRect inner = GetBoundsSmall();
  const RectF screen = ScreenRect();
  auto shift = [](float low, float high, LONG innerLow, LONG innerHigh) {
    const float from = static_cast<float>(innerLow), to = static_cast<float>(innerHigh);
    if (high - low < to - from) return (from + to) / 2 - (low + high) / 2;  // smaller: centred
    if (low > from) return from - low;                                      // larger: covering
    if (high < to) return to - high;
    return 0.0f;
  };
  const float dx = shift(screen.left, screen.right, inner.left, inner.right);
  const float dy = shift(screen.top, screen.bottom, inner.top, inner.bottom);
  m_rcViewF = RectF(m_rcViewF.left + dx, m_rcViewF.top + dy, m_rcViewF.right + dx, m_rcViewF.bottom + dy);
}

void CPhotoView::PanBy(float dx, float dy) {
  if (!IsHaveImage() || !m_pImageInfo) return;
  m_rcViewF = RectF(m_rcViewF.left + dx, m_rcViewF.top + dy, m_rcViewF.right + dx, m_rcViewF.bottom + dy);
  m_bFitted = FALSE;
  KeepInView();
  ApplyViewRect();
}

void CPhotoView::Turn(int quarterTurns) {
  if (!IsHaveImage()) return;
  const float angle = TurnAngle(QuarterTurns(m_pImage->m_fRotation) + quarterTurns);
  m_pImage->m_fRotation = angle;
  m_mapRotations[m_pImage->m_strFile] = _RotateInfo{angle, 0};
  if (m_bFitted) {
    FitToView();
    return;
  }
  KeepInView();  // the turn is about the picture's centre; only its extent changed
  ApplyViewRect();
}

void CPhotoView::RotateLeft() { Turn(-1); }

void CPhotoView::RotateRight() { Turn(1); }

void CPhotoView::ApplyViewRect() {
  m_rcView = RoundRect(m_rcViewF);
  CPoint centre((m_rcView.left + m_rcView.right) / 2, (m_rcView.top + m_rcView.bottom) / 2);
  SetCenterPoint(centre);
  SetNeadRefresh(0);  // the rectangle is ours now
  Refresh();
  ReportZoom();
}

void CPhotoView::ReportZoom() {
  const int zoom = GetZoomPercent();
  if (zoom == m_nReportedZoom) return;
  m_nReportedZoom = zoom;
  FireEvent(kZoomChangedEvent, this);
}

// --- drawing and animation --------------------------------------------------------------------

void CPhotoView::RenderSelf(DXCore* dx, CRect* clip) {
  const CRect inner = GetBoundsSmall();
  if (inner != m_rcLastInner) {
    m_rcLastInner = inner;
    if (!m_bFitted && m_pImageInfo) {
      // A zoomed picture keeps its zoom and stays in the resized view.
      KeepInView();
      ApplyViewRect();
    }
  }
  if (!PictureOverflows(dx)) {
    CUIImageBase::RenderSelf(dx, clip);
  } else {
    // The device does not clip: the base draws its frame around a picture
    // of no size, and the part inside the view is drawn here.
    const CRect view = m_rcView;
    m_rcView = CRect(view.CenterPoint(), view.CenterPoint());
    CUIImageBase::RenderSelf(dx, clip);
    m_rcView = view;
    DrawInsideView(dx);
  }
  if (IsHaveImage() && m_pImageInfo) ReportZoom();
  if (!m_bAnimationTimerOn && IsLoadImageSuccess() && IsHaveImage()) StartAnimation(dx);
}

bool CPhotoView::PictureOverflows(DXCore* dx) {
  if (!dx || !IsHaveImage() || !m_pImageInfo || m_pImageInfo->Width == 0 || !IsLoadImageSuccess() || m_bNeedRefresh)
    return false;
  const CRect inner = GetBoundsSmall();
  const RectF screen = ScreenRect();
  if (screen.left >= inner.left && screen.top >= inner.top && screen.right <= inner.right &&
      screen.bottom <= inner.bottom)
    return false;
  // Until the whole picture is up the base shows its preview, unclipped.
  const tagTextureItem* item = dx->GetResourceCache()->SearchTextureItem(m_pImage->m_strFile, dx->GetD3DDevice());
  return item && item->IsReady();
}

void CPhotoView::DrawInsideView(DXCore* dx) {
  const CRect inner = GetBoundsSmall();
  const RectF screen = ScreenRect();
  RectF shown(std::max(screen.left, static_cast<float>(inner.left)), std::max(screen.top, static_cast<float>(inner.top)),
              std::min(screen.right, static_cast<float>(inner.right)),
              std::min(screen.bottom, static_cast<float>(inner.bottom)));
  if (shown.right <= shown.left || shown.bottom <= shown.top) return;
  const float cx = (m_rcViewF.left + m_rcViewF.right) / 2, cy = (m_rcViewF.top + m_rcViewF.bottom) / 2;
  RotateRect(shown, -m_pImage->m_fRotation, cx, cy);  // into the picture's own axes
  // Whole picture pixels inside the view, drawn exactly where the whole
  // picture would put them: at the view's edge up to one of them is left out.
  const double zoom = static_cast<double>(m_rcViewF.Width()) / m_pImageInfo->Width;
  const auto pixel = [&](float at, float origin) { return (at - origin) / zoom; };
  CRect source(static_cast<LONG>(std::ceil(pixel(shown.left, m_rcViewF.left) - kEdgeTolerance)),
               static_cast<LONG>(std::ceil(pixel(shown.top, m_rcViewF.top) - kEdgeTolerance)),
               static_cast<LONG>(std::floor(pixel(shown.right, m_rcViewF.left) + kEdgeTolerance)),
               static_cast<LONG>(std::floor(pixel(shown.bottom, m_rcViewF.top) + kEdgeTolerance)));
  source.IntersectRect(source, CRect(0, 0, static_cast<LONG>(m_pImageInfo->Width),
                                     static_cast<LONG>(m_pImageInfo->Height)));
  if (source.IsRectEmpty()) return;
  const RectF dest(static_cast<float>(m_rcViewF.left + source.left * zoom),
                   static_cast<float>(m_rcViewF.top + source.top * zoom),
                   static_cast<float>(m_rcViewF.left + source.right * zoom),
                   static_cast<float>(m_rcViewF.top + source.bottom * zoom));
  const CRect target = RoundRect(dest);
  const D3DXVECTOR2 centre{static_cast<float>(m_pImage->m_nRotateCenterX),
                           static_cast<float>(m_pImage->m_nRotateCenterY)};
  dx->DrawImage(m_pImage->m_strFile, &target, &source, &centre, m_pImage->m_fRotation, m_pImage->m_dwColor,
                m_pImage->m_nFrame);
  dx->SetTransform(nullptr, nullptr, nullptr, 0.0f, nullptr);
}

void CPhotoView::StartAnimation(DXCore* dx) {
  CUIForm* form = GetOwnerForm();
  if (!dx || !form) return;
  const tagTextureItem* item = dx->GetResourceCache()->SearchTextureItem(m_pImage->m_strFile, dx->GetD3DDevice());
  if (!item || !item->IsReady() || item->nFrameCount <= 1) return;
  m_player.Start(m_clock(), item->nFrameCount, [this](int frame) { return FrameTimeOf(frame); });
  if (form->RegisterTimerHandler(UI_TIMER_IMAGE_ANIMATION, m_player.MillisecondsLeft(m_clock()),
                                 UITimerHandler(this, &CPhotoView::OnAnimationTimer)))
    m_bAnimationTimerOn = 1;
}

void CPhotoView::StopAnimation() {
  m_player.Stop();
  if (!m_bAnimationTimerOn) return;
  m_bAnimationTimerOn = 0;
  if (CUIForm* form = GetOwnerForm()) form->UnRegisterTimerHandler(UI_TIMER_IMAGE_ANIMATION);
}

int CPhotoView::FrameTimeOf(int frame) {
  DXCore* dx = GetRenderDevice();
  if (!dx || !IsHaveImage()) return kDefaultFrameTime;
  ResourceCache* cache = dx->GetResourceCache();
  // Frames are decoded the first time they are asked for, as drawing does.
  tagTextureItem* item = cache->SearchTextureItem(m_pImage->m_strFile, dx->GetD3DDevice());
  const tagTextureItem* shown = item ? cache->GetFrameByIndex(item, frame, dx->GetD3DDevice()) : nullptr;
  return shown ? shown->nFrameTime : kDefaultFrameTime;
}

void CPhotoView::OnAnimationTimer(unsigned int) {
  CUIForm* form = GetOwnerForm();
  if (!m_player.IsPlaying() || !form || !IsHaveImage()) {
    StopAnimation();
    return;
  }
  const std::uint64_t now = m_clock();
  m_pImage->m_nFrame = m_player.Advance(now);
  ++m_nFrameCounter;
  // Each frame keeps its own time: the timer is set again for what is left of it.
  form->UnRegisterTimerHandler(UI_TIMER_IMAGE_ANIMATION);
  form->RegisterTimerHandler(UI_TIMER_IMAGE_ANIMATION, m_player.MillisecondsLeft(now),
                             UITimerHandler(this, &CPhotoView::OnAnimationTimer));
  Refresh();
}

// --- input ------------------------------------------------------------------------------------

int CPhotoView::OnMouseMessage(UINT message, UINT flags, const CPoint& point) {
  switch (message) {
    case WM_MOUSEWHEEL:
      ZoomAt(GET_WHEEL_DELTA_WPARAM(flags) / kWheelNotch, point);
      return 1;
    case WM_LBUTTONDOWN:
      m_bDragging = TRUE;
      m_ptDrag = point;
      SetControlCapture();
      return 1;
    case WM_MOUSEMOVE:
      if (!m_bDragging) return 0;
      {
        const CPoint at(SignedCoordinate(point.x), SignedCoordinate(point.y));
        PanBy(static_cast<float>(at.x - m_ptDrag.x), static_cast<float>(at.y - m_ptDrag.y));
        m_ptDrag = at;
      }
      return 1;
    case WM_LBUTTONUP:
      if (!m_bDragging) return 0;
      m_bDragging = FALSE;
      ReleaseControlCapture();
      return 1;
    case WM_LBUTTONDBLCLK:
      if (CUIForm* form = GetOwnerForm())
        form->SendMessage(WM_SYSCOMMAND, form->IsZoomed() ? SC_RESTORE : SC_MAXIMIZE, 0);
      return 1;
    default:
      return 0;
  }
}

int CPhotoView::OnKeyMessage(UINT message, UINT wParam, UINT, UINT) {
  if (message != WM_KEYDOWN) return 0;
  const bool control = GetKeyState(VK_CONTROL) < 0;
  if (wParam == kKeyOpenBracket || (control && wParam == 'L')) {
    RotateLeft();
  } else if (wParam == kKeyCloseBracket || (control && wParam == 'R')) {
    RotateRight();
  } else if (!control && wParam == 'F') {
    FitToView();
  } else if (!control && wParam == '1') {
    ActualSize();
  } else if (wParam == kKeyPlus || wParam == VK_ADD) {
    ZoomIn();
  } else if (wParam == kKeyMinus || wParam == VK_SUBTRACT) {
    ZoomOut();
  } else {
    return 0;
  }
  return 1;
}

}  // namespace KarvelView
