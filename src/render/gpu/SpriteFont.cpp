#include "render/gpu/SpriteFont.h"

#include <cwchar>

#include <karvelui/WinConstants.h>

namespace KarvelUI {

HRESULT SpriteFont::Create(IDirect3DDevice9* device, const D3DXFONT_DESCW& desc, ID3DXFont** font) {
  if (!device || !font) return D3DERR_INVALIDCALL;
  *font = nullptr;
  LOGFONTW logFont;
  logFont.lfHeight = desc.Height;
  logFont.lfWidth = static_cast<LONG>(desc.Width);
  logFont.lfWeight = static_cast<LONG>(desc.Weight);
  logFont.lfItalic = desc.Italic ? 1 : 0;
  logFont.lfCharSet = desc.CharSet;
  logFont.lfOutPrecision = desc.OutputPrecision;
  logFont.lfQuality = desc.Quality;
  logFont.lfPitchAndFamily = desc.PitchAndFamily;
  std::wcsncpy(logFont.lfFaceName, desc.FaceName, LF_FACESIZE - 1);
  std::shared_ptr<TextFont> textFont = TextFont::GetShared(logFont);
  if (!textFont) return E_FAIL;
  *font = new SpriteFont(RefPtr<IDirect3DDevice9>::Share(device), std::move(textFont));
  return S_OK;
}

SpriteFont::SpriteFont(RefPtr<IDirect3DDevice9> device, std::shared_ptr<TextFont> font)
    : m_device(std::move(device)), m_font(std::move(font)) {}

int SpriteFont::DrawTextW(ID3DXSprite* sprite, const wchar_t* text, int count, RECT* rect, DWORD format,
                          D3DCOLOR color) {
  if (!text || !rect) return 0;
  const int height = m_font->Layout(text, count, *rect, format, m_layout);
  if (format & DT_CALCRECT) {
    *rect = m_layout.bounds;
    return height;
  }
  if (m_layout.quads.empty()) return height;
  if (FAILED(SyncPages())) return 0;
  if (sprite) return SUCCEEDED(DrawQuads(sprite, color)) ? height : 0;

  // No batch given: one of its own, for this text only.
  RefPtr<ID3DXSprite> own;
  if (FAILED(m_device->CreateSprite(own.Receive())) || FAILED(own->Begin(D3DXSPRITE_ALPHABLEND))) return 0;
  const HRESULT drawn = DrawQuads(own.Get(), color);
  const HRESULT ended = own->End();
  return SUCCEEDED(drawn) && SUCCEEDED(ended) ? height : 0;
}

HRESULT SpriteFont::SyncPages() {
  const std::uint64_t generation = m_font->GetAtlasGeneration();
  if (generation == m_atlasGeneration) return S_OK;
  const int pageCount = m_font->GetAtlasPageCount();
  for (int i = 0; i < pageCount; ++i) {
    const HRESULT hr = UploadPage(i);
    if (FAILED(hr)) return hr;
  }
  m_atlasGeneration = generation;
  return S_OK;
}

HRESULT SpriteFont::UploadPage(int index) {
  const AtlasPageView view = m_font->GetAtlasPage(index);
  if (index >= static_cast<int>(m_pages.size())) m_pages.resize(index + 1);
  Page& page = m_pages[index];
  if (page.texture && page.generation == view.generation) return S_OK;
  if (!page.texture) {
    const HRESULT hr = m_device->CreateTexture(static_cast<UINT>(view.width), static_cast<UINT>(view.height), 1, 0,
                                               D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, page.texture.Receive(), nullptr);
    if (FAILED(hr)) return hr;
  }
  D3DLOCKED_RECT locked{};
  HRESULT hr = page.texture->LockRect(0, &locked, nullptr, 0);
  if (FAILED(hr)) return hr;
  m_font->CopyAtlasToArgb(index, CRect(0, 0, view.width, view.height), static_cast<DWORD*>(locked.pBits),
                          locked.Pitch);
  hr = page.texture->UnlockRect(0);
  if (SUCCEEDED(hr)) page.generation = view.generation;
  return hr;
}

HRESULT SpriteFont::DrawQuads(ID3DXSprite* sprite, D3DCOLOR color) {
  for (const GlyphQuad& quad : m_layout.quads) {
    if (quad.page < 0 || quad.page >= static_cast<int>(m_pages.size()) || !m_pages[quad.page].texture) continue;
    const D3DXVECTOR3 position{static_cast<float>(quad.dest.left), static_cast<float>(quad.dest.top), 0.0f};
    const HRESULT hr = sprite->Draw(m_pages[quad.page].texture.Get(), &quad.source, nullptr, &position, color);
    if (FAILED(hr)) return hr;
  }
  return S_OK;
}

}  // namespace KarvelUI
