#include "render/ResourceCache.h"

#include <FreeImage.h>

#include <cstdint>

namespace KarvelUI {

void FreeImageDeleter::operator()(FIBITMAP* bitmap) const {
  if (bitmap) FreeImage_Unload(bitmap);
}

void FreeImageDeleter::operator()(FIMULTIBITMAP* bitmap) const {
  if (bitmap) FreeImage_CloseMultiBitmap(bitmap, 0);
}

TextureTile::~TextureTile() {
  if (bLocked && pTexture) pTexture->UnlockRect(0);
}

tagTextureItem::tagTextureItem() : pFirstFrame(this) {}

tagTextureItem::~tagTextureItem() {
  // Frames are unlinked one at a time, so a long animation does not recurse.
  std::unique_ptr<tagTextureItem> next = std::move(pNextFrame);
  while (next) next = std::move(next->pNextFrame);
}

bool ResourceCache::KeyLess::operator()(const CString& a, const CString& b) const {
  if (a.GetLength() != b.GetLength()) return a.GetLength() < b.GetLength();
  const std::wstring& x = a.str();
  const std::wstring& y = b.str();
  for (size_t i = x.size(); i-- > 0;) {
    if (x[i] != y[i]) return static_cast<std::uint32_t>(x[i]) < static_cast<std::uint32_t>(y[i]);
  }
  return false;
}

ResourceCache::ResourceCache()
    : m_pTextureLock(std::make_unique<CRITICAL_SECTION>()), m_pRawLock(std::make_unique<CRITICAL_SECTION>()) {}

ResourceCache::~ResourceCache() { ReleaseAll(); }

ID3DXFont* ResourceCache::GetFont(int height, int weight, int italic, const wchar_t* faceName, int underline,
                                  IDirect3DDevice9* device) {
  CString key;
  key.Format(L"%s %d %d %d %d", faceName ? faceName : L"", underline, italic, weight, height);
  auto found = m_Fonts.find(key);
  if (found != m_Fonts.end()) return found->second->pFont.Get();
  auto item = std::make_unique<FONTITEM>();
  if (FAILED(D3DXCreateFontW(device, height, 0, static_cast<UINT>(weight), 1, italic, DEFAULT_CHARSET,
                             OUT_DEFAULT_PRECIS, DRAFT_QUALITY, 0, faceName, item->pFont.Receive())))
    return nullptr;
  ID3DXFont* font = item->pFont.Get();
  m_Fonts.emplace(key, std::move(item));
  return font;
}

int ResourceCache::ReleaseFont(int height, int weight, int italic, const wchar_t* faceName,
                               IDirect3DDevice9* device) {
  if (!device) return 0;
  CString key;
  key.Format(L"%s %d %d %d", faceName ? faceName : L"", italic, weight, height);
  return m_Fonts.erase(key) > 0 ? 1 : 0;
}

void ResourceCache::ReleaseAll() {
  m_Textures.clear();
  m_Fonts.clear();
}

}  // namespace KarvelUI
