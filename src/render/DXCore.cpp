#include <karvelui/DXCore.h>

#include <algorithm>

#include <karvelui/BackUpdateTask.h>
#include <karvelui/Trace.h>
#include <karvelui/D3DMath.h>
#include <karvelui/WinConstants.h>

namespace KarvelUI {

namespace {
// The cache key of FillRect's texel; no file path looks like it.
constexpr const wchar_t* kFillTexelKey = L"<fill texel>";
}  // namespace

RefPtr<IDirect3D9> DXCore::s_pD3D;

void DXCore::LockDeleter::operator()(CRITICAL_SECTION* section) const { UILock::ReleaseLock(section); }

// --- the process-wide object ---------------------------------------------------

HRESULT DXCore::InitInstance() {
  IDirect3D9* d3d = Direct3DCreate9(D3D_SDK_VERSION);
  if (!d3d) return E_FAIL;
  s_pD3D = RefPtr<IDirect3D9>::Adopt(d3d);
  return S_OK;
}

HRESULT DXCore::InitInstance(IDirect3D9* d3d) {
  if (!d3d) return E_FAIL;
  s_pD3D = RefPtr<IDirect3D9>::Share(d3d);
  return S_OK;
}

void DXCore::ExitInstance() { s_pD3D.Reset(); }

IDirect3D9* DXCore::GetD3DObject() { return s_pD3D.Get(); }

// --- life ------------------------------------------------------------------------

DXCore::DXCore() = default;

DXCore::~DXCore() {
  m_ResourceCache.ReleaseAll();
  m_pD3DXSprite.Reset();
  m_pD3DDevice.Reset();
  m_pDeviceLock.reset();
}

void DXCore::SetWindow(HWND window) { m_hWnd = window; }

HRESULT DXCore::Init() {
  if (!m_hWnd) return E_FAIL;
  const HRESULT hr = _InitD3D();
  return FAILED(hr) ? hr : S_OK;
}

HRESULT DXCore::CreateDevice() {
  constexpr DWORD kBehavior = D3DCREATE_SOFTWARE_VERTEXPROCESSING | D3DCREATE_MULTITHREADED;
  return s_pD3D->CreateDevice(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, m_hWnd, kBehavior, &m_d3dpp,
                              m_pD3DDevice.Receive());
}

HRESULT DXCore::_InitD3D() {
  if (!s_pD3D) return E_FAIL;
  if (m_pD3DDevice) CleanUp();  // textures and fonts belong to the old device

  m_d3dpp = {};
  m_d3dpp.Windowed = TRUE;
  m_d3dpp.SwapEffect = D3DSWAPEFFECT_DISCARD;
  m_d3dpp.BackBufferCount = 2;
  m_d3dpp.BackBufferFormat = D3DFMT_A8R8G8B8;
  m_d3dpp.PresentationInterval = D3DPRESENT_INTERVAL_IMMEDIATE;

  // Each fallback changes one parameter and keeps the earlier changes.
  HRESULT hr = CreateDevice();
  if (FAILED(hr)) {
    g_ITrace->Trace(TRACE_LEVEL_FALLBACK, TRACE_FLUSH, L"fail try Double Buffer: %d", hr);
    g_ITrace->Trace(TRACE_LEVEL_FALLBACK, TRACE_FLUSH, L"try single buffer");
    m_d3dpp.BackBufferCount = 1;
    hr = CreateDevice();
  }
  if (FAILED(hr)) {
    g_ITrace->Trace(TRACE_LEVEL_FALLBACK, TRACE_FLUSH, L"fail try: %d", hr);
    g_ITrace->Trace(TRACE_LEVEL_FALLBACK, TRACE_FLUSH, L"try D3DFMT_A1R5G5B5");
    m_d3dpp.BackBufferFormat = D3DFMT_A1R5G5B5;
    hr = CreateDevice();
  }
  if (FAILED(hr)) {
    g_ITrace->Trace(TRACE_LEVEL_FALLBACK, TRACE_FLUSH, L"fail try D3DSWAPEFFECT_DISCARD: %d", hr);
    g_ITrace->Trace(TRACE_LEVEL_FALLBACK, TRACE_FLUSH, L"try D3DSWAPEFFECT_COPY");
    m_d3dpp.SwapEffect = D3DSWAPEFFECT_COPY;
    hr = CreateDevice();
  }
  if (FAILED(hr)) {
    g_ITrace->Trace(TRACE_LEVEL_DEVICE, TRACE_FLUSH, L"<D3DERROR> Create D3DDevice fail: %d", hr);
    return hr;
  }

  TraceDeviceCaps();
  hr = D3DXCreateSprite(m_pD3DDevice.Get(), m_pD3DXSprite.Receive());
  if (FAILED(hr)) {
    g_ITrace->Trace(TRACE_LEVEL_DEVICE, TRACE_FLUSH, L"<D3DERROR> Create sprite fail: %d", hr);
    return hr;
  }
  if (!m_pDeviceLock) m_pDeviceLock.reset(UILock::CreateLock());
  return S_OK;
}

void DXCore::TraceDeviceCaps() {
  D3DCAPS9 caps{};
  m_pD3DDevice->GetDeviceCaps(&caps);
  const UINT memory = m_pD3DDevice->GetAvailableTextureMem();
  // The numbers print as signed 32-bit values, as the log has always shown them.
  g_ITrace->Trace(TRACE_LEVEL_FALLBACK, TRACE_FLUSH,
                  L"Device Caps:\r\n                      MaxTextureWidth: %d, MaxTextureHeight: %d\r\n"
                  L"                      AvailableTextureMem: %d",
                  static_cast<int>(caps.MaxTextureWidth), static_cast<int>(caps.MaxTextureHeight),
                  static_cast<int>(memory));
}

void DXCore::CleanUp() {
  m_ResourceCache.ReleaseAll();
  UILock lock(m_pDeviceLock.get());
  m_pD3DXSprite.Reset();
  m_pD3DDevice.Reset();
  m_bSceneOpen = false;
}

IDirect3DDevice9* DXCore::GetD3DDevice() {
  UILock lock(m_pDeviceLock.get());
  return m_pD3DDevice.Get();
}

ID3DXSprite* DXCore::GetD3DXSprite() {
  UILock lock(m_pDeviceLock.get());
  return m_pD3DXSprite.Get();
}

HRESULT DXCore::GetD3DDeviceCaps(D3DCAPS9* caps) {
  if (!caps) return E_FAIL;
  *caps = {};
  if (!m_pD3DDevice) return E_FAIL;
  return SUCCEEDED(m_pD3DDevice->GetDeviceCaps(caps)) ? S_OK : E_FAIL;
}

void DXCore::SetGlobalOpacity(float opacity) {
  if (opacity >= 0.0f && opacity <= 1.0f) m_fGlobalOpacity = opacity;  // false for NaN
}

// --- frames ----------------------------------------------------------------------

HRESULT DXCore::BeginPaint() {
  if (!m_pD3DDevice) return E_FAIL;
  // A failed reset left no sprite and wrote its trace line. Paints fail
  // quietly until the next ResetD3DSize (the form's next size change), so
  // a device that stays unusable costs neither a reset nor a line per paint.
  if (!m_pD3DXSprite) return E_FAIL;
  if (m_bSceneOpen) {
    m_pD3DDevice->EndScene();  // left open by a batch that failed to begin
    m_bSceneOpen = false;
  }
  HRESULT hr = m_pD3DDevice->BeginScene();
  if (FAILED(hr)) {
    g_ITrace->Trace(TRACE_LEVEL_DEVICE, TRACE_FLUSH, L"<D3DERROR> Begin scene fail: %d", hr);
    return hr;
  }
  hr = m_pD3DXSprite->Begin(D3DXSPRITE_ALPHABLEND);
  if (FAILED(hr)) {
    g_ITrace->Trace(TRACE_LEVEL_DEVICE, TRACE_FLUSH, L"<D3DERROR> Begin sprite fail: %d", hr);
    m_bSceneOpen = true;
    return hr;
  }
  return S_OK;
}

HRESULT DXCore::EndPaint() {
  if (!m_pD3DDevice || !m_pD3DXSprite) return E_FAIL;
  HRESULT hr = m_pD3DXSprite->End();
  if (FAILED(hr)) {
    g_ITrace->Trace(TRACE_LEVEL_DEVICE, TRACE_FLUSH, L"<D3DERROR> End sprite fail: %d", hr);
    return hr;
  }
  hr = m_pD3DDevice->EndScene();
  if (FAILED(hr)) {
    g_ITrace->Trace(TRACE_LEVEL_DEVICE, TRACE_FLUSH, L"<D3DERROR> End scene fail: %d", hr);
    return hr;
  }
  hr = m_pD3DDevice->Present(nullptr, nullptr, nullptr, nullptr);
  if (hr == D3DERR_DEVICELOST) {
    const HRESULT reset = ResetD3DSize({static_cast<LONG>(m_d3dpp.BackBufferWidth),
                                        static_cast<LONG>(m_d3dpp.BackBufferHeight)});
    if (SUCCEEDED(reset)) return D3DERR_DEVICELOST;  // the caller paints again
  }
  if (FAILED(hr)) {
    g_ITrace->Trace(TRACE_LEVEL_DEVICE, TRACE_FLUSH, L"<D3DERROR> Present fail: %d", hr);
    return hr;
  }
  return S_OK;
}

HRESULT DXCore::ResetD3DSize(DXSIZE size) {
  if (!m_pD3DDevice) return 1;
  UILock lock(m_pDeviceLock.get());
  // The sprite holds device state that must go before a reset.
  m_pD3DXSprite.Reset();
  m_bSceneOpen = false;
  m_d3dpp.BackBufferWidth = static_cast<UINT>(std::max<LONG>(0, size.width));
  m_d3dpp.BackBufferHeight = static_cast<UINT>(std::max<LONG>(0, size.height));

  // The fallbacks run in the reverse direction of creation for the swap effect.
  HRESULT hr = m_pD3DDevice->Reset(&m_d3dpp);
  if (FAILED(hr) && m_d3dpp.BackBufferFormat != D3DFMT_A1R5G5B5) {
    g_ITrace->Trace(TRACE_LEVEL_FALLBACK, TRACE_FLUSH, L"fail reset: %d", hr);
    g_ITrace->Trace(TRACE_LEVEL_FALLBACK, TRACE_FLUSH, L"try D3DFMT_A1R5G5B5");
    m_d3dpp.BackBufferFormat = D3DFMT_A1R5G5B5;
    hr = m_pD3DDevice->Reset(&m_d3dpp);
  }
  if (FAILED(hr) && m_d3dpp.SwapEffect != D3DSWAPEFFECT_DISCARD) {
    g_ITrace->Trace(TRACE_LEVEL_FALLBACK, TRACE_FLUSH, L"fail reset D3DSWAPEFFECT_COPY: %d", hr);
    g_ITrace->Trace(TRACE_LEVEL_FALLBACK, TRACE_FLUSH, L"try D3DSWAPEFFECT_DISCARD");
    m_d3dpp.SwapEffect = D3DSWAPEFFECT_DISCARD;
    hr = m_pD3DDevice->Reset(&m_d3dpp);
  }
  if (FAILED(hr)) {
    g_ITrace->Trace(TRACE_LEVEL_DEVICE, TRACE_FLUSH, L"<D3DERROR> Reset D3DDevice fail: %d", hr);
    return hr;
  }
  // Managed textures survive the reset; nothing in the cache is reloaded.
  hr = D3DXCreateSprite(m_pD3DDevice.Get(), m_pD3DXSprite.Receive());
  if (FAILED(hr)) {
    g_ITrace->Trace(TRACE_LEVEL_DEVICE, TRACE_FLUSH, L"<D3DERROR> Create sprite fail: %d", hr);
    return hr;
  }
  return S_OK;
}

HRESULT DXCore::CleanScreen(DWORD colour) {
  if (!m_pD3DDevice) return E_FAIL;
  return m_pD3DDevice->Clear(0, nullptr, D3DCLEAR_TARGET, colour, 1.0f, 0);
}

// --- drawing ---------------------------------------------------------------------

DWORD DXCore::ApplyOpacity(DWORD colour) const {
  const double alpha = static_cast<double>(colour >> 24) * m_fGlobalOpacity + 0.5;
  const auto scaled = static_cast<DWORD>(std::min(alpha, 255.0));
  return (scaled << 24) | (colour & 0x00FFFFFFu);
}

HRESULT DXCore::SetTransform(const D3DXVECTOR2* scalingCentre, const D3DXVECTOR2* scaling,
                             const D3DXVECTOR2* rotationCentre, float rotation, const D3DXVECTOR2* translation) {
  if (!m_pD3DXSprite) return E_FAIL;
  D3DXMATRIX matrix;
  D3DXMatrixTransformation2D(&matrix, scalingCentre, 0.0f, scaling, rotationCentre, rotation, translation);
  const HRESULT hr = m_pD3DXSprite->SetTransform(&matrix);
  return FAILED(hr) ? hr : S_OK;
}

HRESULT DXCore::DrawTextW(const wchar_t* text, int count, LONG top, LONG left, LONG width, LONG height,
                          int fontHeight, int fontWeight, int italic, int underline, const wchar_t* faceName,
                          DWORD format, DWORD colour) {
  if (!m_pD3DXSprite) return E_FAIL;
  const DWORD drawn = ApplyOpacity(colour);
  ID3DXFont* font = m_ResourceCache.GetFont(fontHeight, fontWeight, italic, faceName, underline, m_pD3DDevice.Get());
  if (!font) return E_FAIL;
  RECT rect(left, top, left + width, top + height);
  const int result = font->DrawTextW(m_pD3DXSprite.Get(), text, count, &rect, format, drawn);
  return result < 0 ? result : S_OK;
}

HRESULT DXCore::DrawTextW(const CString& text, const CRect& rect, const LOGFONTW& font, DWORD format, DWORD colour) {
  return DrawTextW(text.GetString(), -1, rect.top, rect.left, rect.Width(), rect.Height(), font.lfHeight,
                   font.lfWeight, font.lfItalic, font.lfUnderline, font.lfFaceName, format, colour);
}

HRESULT DXCore::MeasureText(const CString& text, const LOGFONTW& font, DWORD format, CRect* rect) {
  if (!rect) return E_FAIL;
  ID3DXFont* measured = m_ResourceCache.GetFont(font.lfHeight, font.lfWeight, font.lfItalic, font.lfFaceName,
                                                font.lfUnderline, m_pD3DDevice.Get());
  if (!measured) return E_FAIL;
  RECT extent(rect->left, rect->top, rect->left, rect->top);
  const int result = measured->DrawTextW(nullptr, text.GetString(), -1, &extent, format | DT_CALCRECT, 0);
  if (result < 0) return result;
  *rect = CRect(extent.left, extent.top, extent.right, extent.bottom);
  return S_OK;
}

HRESULT DXCore::FillRect(const CRect& rect, DWORD colour) {
  // One opaque white texel, stretched and tinted by the colour.
  static DWORD white = 0xFFFFFFFFu;
  tagTextureItem* texel =
      m_ResourceCache.GetTextureItemFromMemory(kFillTexelKey, m_pD3DDevice.Get(), &white, sizeof(white), 1, 1, 32);
  if (!texel) return E_FAIL;
  const CRect source(0, 0, 1, 1);
  const HRESULT hr = DrawImage(texel, &rect, &source, nullptr, 0.0f, colour);
  SetTransform(nullptr, nullptr, nullptr, 0.0f, nullptr);  // what follows is drawn unscaled
  return hr;
}

HRESULT DXCore::DrawImage(IDirect3DTexture9* texture, const RECT* source, const D3DXVECTOR3* centre,
                          const D3DXVECTOR3* position, DWORD colour) {
  if (!m_pD3DXSprite) return E_FAIL;
  const HRESULT hr = m_pD3DXSprite->Draw(texture, source, centre, position, ApplyOpacity(colour));
  if (FAILED(hr)) {
    g_ITrace->Trace(TRACE_LEVEL_DEVICE, TRACE_FLUSH, L"<D3DERROR> Draw image fail: %d", hr);
    return hr;
  }
  return S_OK;
}

HRESULT DXCore::DrawImage(tagTextureItem* item, const CRect* dest, const CRect* source,
                          const D3DXVECTOR2* rotationCentre, float rotation, DWORD colour) {
  if (!item || !item->IsReady() || !dest) return E_FAIL;
  const CRect whole(0, 0, static_cast<LONG>(item->TextureInfo.Width), static_cast<LONG>(item->TextureInfo.Height));
  const CRect src = (source && !source->IsRectEmpty()) ? *source : whole;
  if (dest->Width() < 0 || dest->Height() < 0) return E_FAIL;  // a negative scale: no mirroring
  if (src.IsRectEmpty()) return S_OK;                          // a picture of no size: nothing to draw
  const float sx = static_cast<float>(dest->Width()) / static_cast<float>(src.Width());
  const float sy = static_cast<float>(dest->Height()) / static_cast<float>(src.Height());

  // Every piece is scaled about its own top-left corner and all share the
  // rotation centre, so the pieces join without gaps and turn as one.
  const D3DXVECTOR2 scaling{sx, sy};
  for (int row = 0; row < item->nTileRows; ++row) {
    for (int column = 0; column < item->nTileCols; ++column) {
      const TextureTile* tile = item->Tile(column, row);
      CRect piece;
      if (!tile->pTexture || !piece.IntersectRect(tile->rect, src)) continue;
      CRect inTile = piece;
      inTile.OffsetRect(-tile->rect.left, -tile->rect.top);
      const D3DXVECTOR2 at{static_cast<float>(dest->left) + static_cast<float>(piece.left - src.left) * sx,
                           static_cast<float>(dest->top) + static_cast<float>(piece.top - src.top) * sy};
      SetTransform(&at, &scaling, rotationCentre, rotation, nullptr);
      const D3DXVECTOR3 position{at.x, at.y, 0.0f};
      if (FAILED(DrawImage(tile->pTexture.Get(), &inTile, nullptr, &position, colour))) return E_FAIL;
    }
  }
  return S_OK;
}

HRESULT DXCore::DrawImage(const CString& path, const CRect* dest, const CRect* source,
                          const D3DXVECTOR2* rotationCentre, float rotation, DWORD colour, long frame) {
  IDirect3DDevice9* device = m_pD3DDevice.Get();
  tagTextureItem* item = m_ResourceCache.GetFrameByIndex(m_ResourceCache.GetTextureItem(path, device), frame, device);
  if (!item) return E_FAIL;
  return DrawImage(item, dest, source, rotationCentre, rotation, colour);
}

HRESULT DXCore::GetTextureInfo(const CString& path, D3DXIMAGE_INFO* imageInfo, D3DXIMAGE_INFO* textureInfo) {
  const tagTextureItem* item = m_ResourceCache.GetTextureItem(path, m_pD3DDevice.Get());
  if (!item || item->nState == TEXTURE_STATE_FAILED) return E_FAIL;
  if (imageInfo) *imageInfo = item->ImageInfo;
  if (textureInfo) *textureInfo = item->TextureInfo;
  return S_OK;
}

void DXCore::ReleaseTexture(const CString& path, int keepDecoded) {
  m_ResourceCache.ReleaseTexture(path, m_pD3DDevice.Get(), keepDecoded);
}

}  // namespace KarvelUI
