#include <karvelui/Direct3D.h>

#include <cwchar>

namespace KarvelUI {

HRESULT D3DXCreateSprite(IDirect3DDevice9* device, ID3DXSprite** sprite) {
  if (!device || !sprite) return D3DERR_INVALIDCALL;
  return device->CreateSprite(sprite);
}

HRESULT D3DXCreateFontW(IDirect3DDevice9* device, int height, UINT width, UINT weight, UINT mipLevels, BOOL italic,
                        DWORD charSet, DWORD outputPrecision, DWORD quality, DWORD pitchAndFamily,
                        const wchar_t* faceName, ID3DXFont** font) {
  if (!device || !font) return D3DERR_INVALIDCALL;
  D3DXFONT_DESCW desc{};
  desc.Height = height;
  desc.Width = width;
  desc.Weight = weight;
  desc.MipLevels = mipLevels;
  desc.Italic = italic;
  desc.CharSet = static_cast<BYTE>(charSet);
  desc.OutputPrecision = static_cast<BYTE>(outputPrecision);
  desc.Quality = static_cast<BYTE>(quality);
  desc.PitchAndFamily = static_cast<BYTE>(pitchAndFamily);
  if (faceName) std::wcsncpy(desc.FaceName, faceName, LF_FACESIZE - 1);
  return device->CreateFont(desc, font);
}

}  // namespace KarvelUI
