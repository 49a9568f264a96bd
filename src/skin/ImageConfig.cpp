#include "skin/ImageConfig.h"

#include <algorithm>

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

void _ImageBorderConfig::Caculate() {
  m_rcSrc.SetRect(0, 0, SumOfWidths(m_edgeTop),
                  LargestHeight(m_edgeTop) + SumOfHeights(m_edgeBottom) + SumOfHeights(m_edgeLeft));
}

}  // namespace KarvelUI
