#pragma once

// Image records: which picture file, which rectangle of it, which tint. A
// plain image draws one rectangle scaled into its target; an edge image is
// a three-part picture (two fixed ends and a stretched middle, horizontal
// or vertical); a border image is a frame of five edge pictures. All parts
// of one record come from its one file. The skin reader fills them
// (CSkinReader::GetImage, Get5StateImage, Get6StateImage) and drawn
// through a window's render device; the picture itself is loaded by the
// device's resource cache on first draw.
//
// The device never clips: a record drawn inside a clip rectangle shrinks
// its destination and its source together, so it shows exactly the part
// of the picture the unclipped draw would show there.

#include <karvelui/Base.h>

namespace KarvelUI {

class DXCore;

// Source rectangles of a three-part picture inside one file. For a vertical
// edge "left" is the top end and "right" the bottom end.
struct KARVELUI_API CEdge {
  CRect left;
  CRect right;
  CRect mid;
};

class KARVELUI_API _ImageConfig {
 public:
  _ImageConfig();
  _ImageConfig(const _ImageConfig&) = default;
  _ImageConfig& operator=(const _ImageConfig&) = default;
  virtual ~_ImageConfig() = default;

  // Draws the source rectangle (empty: the whole picture) into target,
  // kept inside *clip when one is given.
  virtual void Render(DXCore* dx, CRect& target, CRect* clip);
  // Copies everything but the frame (a copied record keeps its own frame).
  // A null source does nothing.
  virtual void Copy(_ImageConfig* source);
  virtual void Reset();

  // Only names the file (empty path: 0, nothing changes); the picture is
  // loaded by the resource cache on first draw.
  int LoadImageW(const CString& path);

  // One rectangle of the picture scaled into target. Nothing is drawn
  // without a file, into an empty target, or when the whole picture is
  // wanted but the cache cannot make it.
  void RenderRect(DXCore* dx, const CRect& target, CRect source, const CRect* clip);
  // A three-part picture: the ends keep their natural size along the
  // edge's direction and are stretched across it; the middle is scaled
  // into what lies between them (and skipped when the ends overlap).
  // Drawn left (top), middle, right (bottom).
  void RenderEdge(DXCore* dx, const CRect& target, const CEdge& edge, int horizontal);

  CString m_strFile;              // full path, already translated
  CRect m_rcSrc;                  // "Rect"; empty means the whole picture
  DWORD m_dwColor = 0xFFFFFFFF;   // "Color": tint and alpha
  int m_nRotateCenterX = 0;
  int m_nRotateCenterY = 0;
  float m_fRotation = 0.0f;
  int m_nFrame = 0;               // animation frame handed to the device
};

class KARVELUI_API _ImageEdgeConfig : public _ImageConfig {
 public:
  _ImageEdgeConfig();
  _ImageEdgeConfig(const _ImageEdgeConfig&) = default;
  _ImageEdgeConfig& operator=(const _ImageEdgeConfig&) = default;

  using _ImageConfig::Render;
  // Also copies the edge and the direction when source is an edge record.
  void Copy(_ImageConfig* source) override;
  void Reset() override;
  // The edge into target, unclipped.
  virtual void Render(DXCore* dx, CRect target);

  // Source rectangle = (0, 0, W, H), the size of the three parts laid end
  // to end: horizontal W = sum of widths, H = largest height; vertical the
  // other way round.
  void Caculate();

  CEdge m_edge;
  int m_bHorizontal = 1;  // "Hor"
};

class KARVELUI_API _ImageBorderConfig : public _ImageConfig {
 public:
  _ImageBorderConfig();
  _ImageBorderConfig(const _ImageBorderConfig&) = default;
  _ImageBorderConfig& operator=(const _ImageBorderConfig&) = default;

  using _ImageConfig::Render;
  // Also copies the five edges when source is a border record.
  void Copy(_ImageConfig* source) override;
  void Reset() override;
  // The frame: top and bottom as horizontal edges, left, right and centre
  // as vertical ones, each into its region of DivideWindow (empty regions
  // are skipped), in the order top, left, right, bottom, centre.
  virtual void Render(DXCore* dx, CRect target);

  // Splits target into top, left, right, bottom and centre regions (in
  // this order). The top and bottom bands span the full width and so own
  // the corners; their heights are the tallest piece of their edge, the
  // side columns' widths the widest piece of theirs.
  void DivideWindow(const CRect& target, CRect (&regions)[5]) const;
  // Source rectangle = (0, 0, W, H): W = the top edge's widths summed;
  // H = the top edge's tallest piece + the bottom and left edges' heights
  // summed. The sums are the natural size the controls work with.
  void Caculate();

  CEdge m_edgeTop;     // "EdgeTop"
  CEdge m_edgeBottom;  // "EdgeBottom"
  CEdge m_edgeLeft;    // "EdgeLeft"
  CEdge m_edgeRight;   // "EdgeRight"
  CEdge m_edgeCenter;  // "EdgeCenter"
};

}  // namespace KarvelUI
