#pragma once

// Two containers. CUIPanel groups children over a nine-part background
// picture and is itself transparent to the mouse: clicks reach its children
// or pass through. CUIBottomPanel routes the mouse messages it receives to
// its own children, with its own hover tracking; it is made for a bar that
// holds the form's mouse capture while the cursor is over it, and it gives
// the capture up when the cursor moves off it.
//
// Threads: the user-interface thread only.

#include <karvelui/ImageConfig.h>
#include <karvelui/SkinConfig.h>
#include <karvelui/UIControl.h>

namespace KarvelUI {

// The skin record of a panel (css type "CUIPanel").
class KARVELUI_API _PanelConfig : public _SkinConfig {
 public:
  _PanelConfig();
  _PanelConfig(const _PanelConfig&) = default;
  _PanelConfig& operator=(const _PanelConfig&) = default;

  // Copies over the destination's fields without resetting them first.
  void Copy(_SkinConfig* source) override;
  void Reset() override;
  int Read(CSkinReader* reader) override;
  _SkinConfig* Clone() override;

  _ImageBorderConfig m_imgBackground;  // "BkImage"
  COLORREF m_clrBackground = 0;        // "BkColor": kept, not drawn
};

class KARVELUI_API CUIPanel : public CUIControl {
 public:
  CUIPanel();
  void RenderSelf(DXCore* dx, CRect* clip) override;
};

class KARVELUI_API CUIBottomPanel : public CUIControl {
 public:
  CUIBottomPanel();
  // Hands the message to the child under the point (no bubbling); 0 when
  // there is none.
  int OnMouseMessage(UINT message, UINT flags, const CPoint& point) override;
  // The cursor moved off the panel: it gives up the form's mouse capture.
  virtual void OnMouseLeave(UINT flags, const CPoint& point);

  CUIControl* GetHoverChild() const { return m_pHoverChild; }

 private:
  // Sends WM_MOUSELEAVE to the old hover child and WM_MOUSEHOVER to the new one.
  void SetCursorMoveFocus(CUIControl* control);
  // The hover child while it still belongs to the panel.
  CUIControl* LiveHoverChild();

  CUIControl* m_pHoverChild = nullptr;
};

}  // namespace KarvelUI
