#pragma once

// CUITooltip: a small rounded child window that is a form of its own, drawn
// black through its own render device. The library never makes one; it is
// offered to hosts. (The tooltips of controls are the form's tooltip
// control, not this.) Like every form it builds itself from the build node
// "BuildRoot <object ID>", so the host sets the object ID before Create.
//
// Threads: the user-interface thread only.

#include <karvelui/UIForm.h>

namespace KarvelUI {

class KARVELUI_API CUITooltip : public CUIForm {
 public:
  CUITooltip();

  // A visible 20 x 20 child window of parent, of the class "Karvel CUITooltip".
  BOOL Create(CWnd* parent);

  // A rounded rectangle over the bounds with 30 x 30 corners.
  HRGN GetBoundRgn() override;
  // Clears to black; no lock, no children, no lost-device retry.
  void OnPaint(UINT flag) override;

  // Swallows every mouse message.
  int OnMouseMessage(UINT message, UINT flags, const CPoint& point) override;
  void RenderSelf(DXCore* dx, CRect* clip) override;
  void OnSetSkinData() override;
  BOOL OnBuildControlAfter() override;
};

}  // namespace KarvelUI
