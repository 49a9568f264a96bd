#pragma once

// The GPU font: the CPU text engine (TextFont) lays text out into glyph
// quads over its atlas; this font keeps one texture per atlas page on its
// device, uploads a page again whenever its generation moves, and draws the
// quads through a sprite batch in the caller's colour. It speaks only the
// device interfaces, so every backend (and the test double) shares it.

#include <cstdint>
#include <memory>
#include <vector>

#include <karvelui/Direct3D.h>
#include "render/text/TextFont.h"

namespace KarvelUI {

class SpriteFont final : public RefCounted<ID3DXFont> {
 public:
  // E_FAIL when no face answers the description.
  static HRESULT Create(IDirect3DDevice9* device, const D3DXFONT_DESCW& desc, ID3DXFont** font);

  int DrawTextW(ID3DXSprite* sprite, const wchar_t* text, int count, RECT* rect, DWORD format,
                D3DCOLOR color) override;

 private:
  SpriteFont(RefPtr<IDirect3DDevice9> device, std::shared_ptr<TextFont> font);
  ~SpriteFont() override = default;

  HRESULT SyncPages();
  HRESULT UploadPage(int index);
  HRESULT DrawQuads(ID3DXSprite* sprite, D3DCOLOR color);

  struct Page {
    RefPtr<IDirect3DTexture9> texture;
    std::uint64_t generation = 0;
  };

  RefPtr<IDirect3DDevice9> m_device;
  std::shared_ptr<TextFont> m_font;
  std::vector<Page> m_pages;
  std::uint64_t m_atlasGeneration = 0;  // of the last complete sync
  TextLayout m_layout;                  // reused between calls
};

}  // namespace KarvelUI
