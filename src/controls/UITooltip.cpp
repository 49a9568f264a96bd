#include <karvelui/UITooltip.h>

#include <karvelui/DXCore.h>
#include <karvelui/Input.h>
#include "platform/window/Regions.h"

namespace KarvelUI {

namespace {

constexpr const wchar_t* kTooltipClass = L"Karvel CUITooltip";
constexpr int kCornerDiameter = 30;
constexpr LONG kInitialSize = 20;
constexpr DWORD kBlack = 0;

}  // namespace

CUITooltip::CUITooltip() = default;

BOOL CUITooltip::Create(CWnd* parent) {
  WNDCLASSW cls;
  cls.style = CS_VREDRAW | CS_HREDRAW | CS_DBLCLKS;
  cls.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  cls.lpszClassName = kTooltipClass;
  AfxRegisterClass(&cls);
  return CWnd::CreateEx(0, kTooltipClass, kTooltipClass, WS_CHILD | WS_VISIBLE, CRect(0, 0, kInitialSize, kInitialSize),
                        parent, 0);
}

HRGN CUITooltip::GetBoundRgn() {
  const CRect b = GetBounds();
  return CreateRoundRectRgn(b.left, b.top, b.right + 1, b.bottom + 1, kCornerDiameter, kCornerDiameter);
}

void CUITooltip::OnPaint(UINT) {
  CPaintDC scope(this);
  DXCore* dx = GetRenderDevice();
  if (FAILED(dx->BeginPaint())) return;
  dx->CleanScreen(kBlack);
  CRect clip = GetBounds();
  RenderSelf(dx, &clip);
  dx->EndPaint();
}

int CUITooltip::OnMouseMessage(UINT, UINT, const CPoint&) { return 1; }
void CUITooltip::RenderSelf(DXCore*, CRect*) {}
void CUITooltip::OnSetSkinData() {}
BOOL CUITooltip::OnBuildControlAfter() { return TRUE; }

}  // namespace KarvelUI
