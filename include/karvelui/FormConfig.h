#pragma once

// _FormConfig: the skin record of a form (css type "CUIForm"): its place
// and size limits, the frame thickness that the root keeps free of docked
// controls, the rounded window shape and the nine-part background.

#include <karvelui/ImageConfig.h>
#include <karvelui/SkinConfig.h>

namespace KarvelUI {

class KARVELUI_API _FormConfig : public _SkinConfig {
 public:
  _FormConfig();
  _FormConfig(const _FormConfig&) = default;
  _FormConfig& operator=(const _FormConfig&) = default;

  // Everything but the round diameters, which stay the destination's own.
  void Copy(_SkinConfig* source) override;
  void Reset() override;
  int Read(CSkinReader* reader) override;
  _SkinConfig* Clone() override;

  CSize m_szMax;                   // "MaxSize": read and kept, not applied
  CSize m_szMin;                   // "MinSize"
  int m_bResize = 1;               // "Resize": grips and maximising
  CRect m_rcPosition;              // "PositionRect": x, y, width, height
  CRect m_rcBorderMargin;          // "BorderMargin": left, top, right, bottom
  CPoint m_ptRoundDiameters;       // "RoundDiameters": corner ellipse size
  _ImageBorderConfig m_imgBackground;  // "Image"
  _ImageConfig m_imgFullScreen;    // not read from the skin
  int m_bFullWindow = 0;           // "IsFullWindow": maximise over the whole monitor
};

}  // namespace KarvelUI
