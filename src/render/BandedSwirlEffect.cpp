#include <karvelui/BandedSwirlEffect.h>

#include <cstring>
#include <mutex>
#include <string>
#include <vector>

#include <karvelui/CommonString.h>
#include <karvelui/DXCore.h>
#include <karvelui/BackUpdateTask.h>
#include <karvelui/Trace.h>

using namespace KarvelUI;

namespace {

constexpr const wchar_t* kShaderFile = L"BandedSwirl.fx";
constexpr const char* kTechnique = "TShader";
constexpr const char* kFrequency = "Frequency";
constexpr const char* kTwistAmount = "TwistAmount";
// Compiled for software pixel shading without preshaders, as the effect
// always has been; the GLSL backend ignores both switches.
constexpr DWORD kCompileFlags = 0x180;
constexpr DWORD kClearColour = 0x00FFFFFF;
constexpr DWORD kOpaqueBlack = 0xFF000000;
constexpr UINT kQuadTriangles = 2;

// The whole window as a strip, shifted half a pixel of a 1680 x 1050 back
// buffer so that texels meet pixels there; deliberately the same for every
// window size.
constexpr D3DEFFECTVERTEX kQuad[4] = {
    {-1.0005952f, -0.99904764f, 0.0f, 0.0f, 1.0f},
    {0.99940479f, -0.99904764f, 0.0f, 1.0f, 1.0f},
    {-1.0005952f, 1.0009524f, 0.0f, 0.0f, 0.0f},
    {0.99940479f, 1.0009524f, 0.0f, 1.0f, 0.0f},
};

std::mutex g_shaderPathMutex;
CString g_shaderPath;  // empty: beside the program

// The window's picture as an opaque texture of the back buffer's size.
RefPtr<IDirect3DTexture9> CopyBackBuffer(IDirect3DDevice9* device) {
  std::vector<DWORD> pixels;
  CSize size;
  RefPtr<IDirect3DTexture9> texture;
  if (FAILED(device->ReadBackBuffer(pixels, size)) || size.cx <= 0 || size.cy <= 0) return {};
  if (FAILED(device->CreateTexture(static_cast<UINT>(size.cx), static_cast<UINT>(size.cy), 1, 0, D3DFMT_X8R8G8B8,
                                   D3DPOOL_MANAGED, texture.Receive(), nullptr)))
    return {};
  D3DLOCKED_RECT locked{};
  if (FAILED(texture->LockRect(0, &locked, nullptr, 0))) return {};
  const size_t rowBytes = static_cast<size_t>(size.cx) * sizeof(DWORD);
  for (LONG y = 0; y < size.cy; ++y)
    std::memcpy(static_cast<BYTE*>(locked.pBits) + static_cast<ptrdiff_t>(y) * locked.Pitch,
                &pixels[static_cast<size_t>(y) * size.cx], rowBytes);
  texture->UnlockRect(0);
  return texture;
}

}  // namespace

void BandedSwirlEffect::SetShaderPath(const CString& path) {
  std::lock_guard guard(g_shaderPathMutex);
  g_shaderPath = path;
}

CString BandedSwirlEffect::GetShaderPath() {
  {
    std::lock_guard guard(g_shaderPathMutex);
    if (!g_shaderPath.IsEmpty()) return g_shaderPath;
  }
  return CommonString::GetInstance()->GetAppPath() + kShaderFile;
}

int BandedSwirlEffect::Init(CEffectsManager* manager, DXCore* device) {
  if (manager) manager->RegisterEffect(kName, this);
  m_pManager = manager;
  m_pDevice = device;
  IDirect3DDevice9* d3dDevice = device ? device->GetD3DDevice() : nullptr;
  if (!d3dDevice) return E_FAIL;

  std::string messages;
  const HRESULT hr = D3DXCreateEffectFromFileW(d3dDevice, GetShaderPath().GetString(), kCompileFlags,
                                               m_pEffect.Receive(), &messages);
  if (FAILED(hr)) {
    if (!messages.empty())
      g_ITrace->Trace(TRACE_LEVEL_DEVICE, TRACE_FLUSH, L"<D3DERROR> %s", CString(messages.c_str()));
    return E_FAIL;
  }
  m_pEffect->SetTechnique(kTechnique);
  SetSwirl(kDefaultFrequency, kDefaultTwistAmount);
  CaptureInput();  // without a picture the effect samples black
  return S_OK;
}

HRESULT BandedSwirlEffect::CaptureInput() {
  IDirect3DDevice9* d3dDevice = m_pDevice->GetD3DDevice();
  if (!m_strInputPicture.IsEmpty()) {
    // Drawn through the cache, stretched over the window, then copied: any
    // picture the cache can show (tiled, animated, RAW) becomes one texture.
    UILock lock(m_pDevice->GetResourceCache()->GetTextureLock());
    if (FAILED(m_pDevice->BeginPaint())) return E_FAIL;
    const D3DPRESENT_PARAMETERS params = m_pDevice->GetD3DPresentParameters();
    const CRect whole(0, 0, static_cast<LONG>(params.BackBufferWidth), static_cast<LONG>(params.BackBufferHeight));
    m_pDevice->CleanScreen(kOpaqueBlack);
    const HRESULT drawn = m_pDevice->DrawImage(m_strInputPicture, &whole, nullptr, nullptr, 0.0f, 0xFFFFFFFF, 0);
    if (FAILED(drawn)) {
      m_pDevice->EndPaint();
      return drawn;
    }
    m_pInput = CopyBackBuffer(d3dDevice);
    m_pDevice->EndPaint();
  } else {
    m_pInput = CopyBackBuffer(d3dDevice);
  }
  d3dDevice->SetTexture(0, m_pInput.Get());
  return m_pInput ? S_OK : E_FAIL;
}

HRESULT BandedSwirlEffect::SetSwirl(float frequency, float twistAmount) {
  if (!m_pEffect) return E_FAIL;
  if (FAILED(m_pEffect->SetFloat(kFrequency, frequency)) || FAILED(m_pEffect->SetFloat(kTwistAmount, twistAmount)))
    return E_FAIL;
  return S_OK;
}

void BandedSwirlEffect::ApplyEffect(CString /*path*/) {
  if (!m_pEffect) return;
  IDirect3DDevice9* d3dDevice = m_pDevice->GetD3DDevice();
  if (!d3dDevice) return;
  if (SUCCEEDED(m_pDevice->BeginPaint())) {
    d3dDevice->Clear(0, nullptr, D3DCLEAR_TARGET, kClearColour, 1.0f, 0);
    UINT passes = 0;
    if (SUCCEEDED(m_pEffect->Begin(&passes, 0))) {
      for (UINT pass = 0; pass < passes; ++pass) {
        m_pEffect->BeginPass(pass);
        d3dDevice->DrawPrimitiveUP(D3DPT_TRIANGLESTRIP, kQuadTriangles, kQuad, sizeof(D3DEFFECTVERTEX));
        m_pEffect->EndPass();
      }
      m_pEffect->End();
    }
    m_pDevice->EndPaint();
  }
  d3dDevice->Present(nullptr, nullptr, nullptr, nullptr);
}

void BandedSwirlEffect::Release() {
  // Cleared, so that a second Release is harmless. The render device may be
  // gone by now (a manager outliving its form): it is not touched, and keeps
  // the input bound until something else is.
  m_pInput.Reset();
  m_pEffect.Reset();
}
