#include <karvelui/ImageConfig.h>

#include <algorithm>

#include <karvelui/DXCore.h>

namespace KarvelUI {
namespace {

int SumOfWidths(const CEdge& edge) { return edge.left.Width() + edge.mid.Width() + edge.right.Width(); }
int SumOfHeights(const CEdge& edge) { return edge.left.Height() + edge.mid.Height() + edge.right.Height(); }
int LargestWidth(const CEdge& edge) {
  return std::max({edge.left.Width(), edge.mid.Width(), edge.right.Width()});
}
int LargestHeight(const CEdge& edge) {
  return std::max({edge.left.Height(), edge.mid.Height(), edge.right.Height()});
}

}  // namespace

// --- _ImageConfig ---------------------------------------------------------------

_ImageConfig::_ImageConfig() { _ImageConfig::Reset(); }

void _ImageConfig::Copy(_ImageConfig* source) {
  if (!source) return;
  m_strFile = source->m_strFile;
  m_rcSrc = source->m_rcSrc;
  m_dwColor = source->m_dwColor;
  m_nRotateCenterX = source->m_nRotateCenterX;
  m_nRotateCenterY = source->m_nRotateCenterY;
  m_fRotation = source->m_fRotation;
}

void _ImageConfig::Reset() {
  m_strFile.Empty();
  m_rcSrc.SetRectEmpty();
  m_dwColor = 0xFFFFFFFF;
  m_nRotateCenterX = 0;
  m_nRotateCenterY = 0;
  m_fRotation = 0.0f;
  m_nFrame = 0;
}

int _ImageConfig::LoadImageW(const CString& path) {
  if (path.IsEmpty()) return 0;
  m_strFile = path;
  return 1;
}

void _ImageConfig::Render(DXCore* dx, CRect& target, CRect* clip) { RenderRect(dx, target, m_rcSrc, clip); }

void _ImageConfig::RenderRect(DXCore* dx, const CRect& target, CRect source, const CRect* clip) {
  if (!dx || m_strFile.IsEmpty() || target.IsRectEmpty()) return;
  if (source.IsRectEmpty()) {
    const tagTextureItem* item = dx->GetResourceCache()->GetTextureItem(m_strFile, dx->GetD3DDevice());
    if (!item || item->nState == TEXTURE_STATE_FAILED) return;
    source.SetRect(0, 0, static_cast<LONG>(item->TextureInfo.Width), static_cast<LONG>(item->TextureInfo.Height));
    if (source.IsRectEmpty()) return;
  }
  CRect dest = target;
  if (clip) {
    // The source shrinks with the destination, at the draw's scale.
    const float sx = static_cast<float>(target.Width()) / static_cast<float>(source.Width());
    const float sy = static_cast<float>(target.Height()) / static_cast<float>(source.Height());
    dest.IntersectRect(*clip, target);
    if (target.left < clip->left) source.left += static_cast<LONG>(static_cast<float>(clip->left - target.left) / sx);
    if (target.top < clip->top) source.top += static_cast<LONG>(static_cast<float>(clip->top - target.top) / sy);
    if (target.right > clip->right)
      source.right -= static_cast<LONG>(static_cast<float>(target.right - clip->right) / sx);
    if (target.bottom > clip->bottom)
      source.bottom -= static_cast<LONG>(static_cast<float>(target.bottom - clip->bottom) / sy);
  }
  if (dest.IsRectEmpty()) return;
  const D3DXVECTOR2 centre{static_cast<float>(m_nRotateCenterX), static_cast<float>(m_nRotateCenterY)};
  dx->DrawImage(m_strFile, &dest, &source, &centre, m_fRotation, m_dwColor, m_nFrame);
}

void _ImageConfig::RenderEdge(DXCore* dx, const CRect& target, const CEdge& edge, int horizontal) {
  if (m_strFile.IsEmpty() || target.IsRectEmpty()) return;
  const CRect& t = target;
  const LONG leftW = edge.left.Width(), leftH = edge.left.Height();
  const LONG rightW = edge.right.Width(), rightH = edge.right.Height();
  const CRect first = horizontal ? CRect(t.left, t.top, t.left + leftW, t.bottom)
                                 : CRect(t.left, t.top, t.right, t.top + leftH);
  const CRect middle = horizontal ? CRect(t.left + leftW, t.top, t.right - rightW, t.bottom)
                                  : CRect(t.left, t.top + leftH, t.right, t.bottom - rightH);
  const CRect last = horizontal ? CRect(t.right - rightW, t.top, t.right, t.bottom)
                                : CRect(t.left, t.bottom - rightH, t.right, t.bottom);
  if (!edge.left.IsRectEmpty()) RenderRect(dx, first, edge.left, nullptr);
  if (!edge.mid.IsRectEmpty()) RenderRect(dx, middle, edge.mid, nullptr);
  if (!edge.right.IsRectEmpty()) RenderRect(dx, last, edge.right, nullptr);
}

// --- _ImageEdgeConfig -----------------------------------------------------------

_ImageEdgeConfig::_ImageEdgeConfig() { _ImageEdgeConfig::Reset(); }

void _ImageEdgeConfig::Copy(_ImageConfig* source) {
  _ImageConfig::Copy(source);
  if (const auto* edge = dynamic_cast<_ImageEdgeConfig*>(source)) {
    m_edge = edge->m_edge;
    m_bHorizontal = edge->m_bHorizontal;
  }
}

// The edge itself is emptied only by construction: a reset record keeps the
// pieces until the skin gives new ones.
void _ImageEdgeConfig::Reset() {
  _ImageConfig::Reset();
  m_bHorizontal = 1;
}

void _ImageEdgeConfig::Render(DXCore* dx, CRect target) { RenderEdge(dx, target, m_edge, m_bHorizontal); }

void _ImageEdgeConfig::Caculate() {
  if (m_bHorizontal)
    m_rcSrc.SetRect(0, 0, SumOfWidths(m_edge), LargestHeight(m_edge));
  else
    m_rcSrc.SetRect(0, 0, LargestWidth(m_edge), SumOfHeights(m_edge));
}

// --- _ImageBorderConfig ---------------------------------------------------------

_ImageBorderConfig::_ImageBorderConfig() { _ImageBorderConfig::Reset(); }

void _ImageBorderConfig::Copy(_ImageConfig* source) {
  _ImageConfig::Copy(source);
  if (const auto* border = dynamic_cast<_ImageBorderConfig*>(source)) {
    m_edgeTop = border->m_edgeTop;
    m_edgeBottom = border->m_edgeBottom;
    m_edgeLeft = border->m_edgeLeft;
    m_edgeRight = border->m_edgeRight;
    m_edgeCenter = border->m_edgeCenter;
  }
}

void _ImageBorderConfig::Reset() {
  _ImageConfig::Reset();
  m_edgeTop = m_edgeBottom = m_edgeLeft = m_edgeRight = m_edgeCenter = CEdge{};
}

void _ImageBorderConfig::DivideWindow(const CRect& target, CRect (&regions)[5]) const {
  const int topH = LargestHeight(m_edgeTop);
  const int bottomH = LargestHeight(m_edgeBottom);
  const int leftW = LargestWidth(m_edgeLeft);
  const int rightW = LargestWidth(m_edgeRight);
  const CRect& t = target;
  regions[0].SetRect(t.left, t.top, t.right, t.top + topH);
  regions[1].SetRect(t.left, t.top + topH, t.left + leftW, t.bottom - bottomH);
  regions[2].SetRect(t.right - rightW, t.top + topH, t.right, t.bottom - bottomH);
  regions[3].SetRect(t.left, t.bottom - bottomH, t.right, t.bottom);
  regions[4].SetRect(t.left + leftW, t.top + topH, t.right - rightW, t.bottom - bottomH);
}

void _ImageBorderConfig::Render(DXCore* dx, CRect target) {
  CRect regions[5];
  DivideWindow(target, regions);
  const CEdge* edges[5] = {&m_edgeTop, &m_edgeLeft, &m_edgeRight, &m_edgeBottom, &m_edgeCenter};
  const int horizontal[5] = {1, 0, 0, 1, 0};
  for (int i = 0; i < 5; ++i) {
    if (!regions[i].IsRectEmpty()) RenderEdge(dx, regions[i], *edges[i], horizontal[i]);
  }
}

void _ImageBorderConfig::Caculate() {
  m_rcSrc.SetRect(0, 0, SumOfWidths(m_edgeTop),
                  LargestHeight(m_edgeTop) + SumOfHeights(m_edgeBottom) + SumOfHeights(m_edgeLeft));
}

}  // namespace KarvelUI
