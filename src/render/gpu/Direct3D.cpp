#include <karvelui/Direct3D.h>

#include <cwchar>

#include "platform/MappedFile.h"

namespace KarvelUI {

namespace {
// Effect sources are a few kilobytes; anything this large is not one.
constexpr std::size_t kMaxEffectFileBytes = 1u << 20;
}  // namespace

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

HRESULT D3DXCreateEffectFromFileW(IDirect3DDevice9* device, const wchar_t* path, DWORD flags, ID3DXEffect** effect,
                                  std::string* messages) {
  if (!device || !path || !effect) return D3DERR_INVALIDCALL;
  *effect = nullptr;
  if (messages) messages->clear();
  const CString name(path);
  const MappedFile file(name);
  if (!file.IsOpen() || file.Size() > kMaxEffectFileBytes) {
    if (messages) *messages = name.ToUtf8() + (file.IsOpen() ? ": too large for an effect" : ": cannot be read");
    return E_FAIL;
  }
  const std::string source(reinterpret_cast<const char*>(file.Data()), file.Size());
  return device->CreateEffect(source, flags, effect, messages);
}

}  // namespace KarvelUI
