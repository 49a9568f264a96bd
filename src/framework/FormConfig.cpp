#include <karvelui/FormConfig.h>

#include <karvelui/SkinReader.h>

namespace KarvelUI {

_FormConfig::_FormConfig() { _FormConfig::Reset(); }

void _FormConfig::Reset() {
  m_szMax = CSize(0, 0);
  m_szMin = CSize(250, 200);
  m_bResize = 1;
  m_rcPosition.SetRectEmpty();
  m_rcBorderMargin.SetRect(3, 3, 3, 3);
  m_imgBackground.Reset();
  m_imgFullScreen.Reset();
  m_imgFullScreen.m_strFile = L"FullScreenImage";
  m_bFullWindow = 0;
}

void _FormConfig::Copy(_SkinConfig* source) {
  auto* from = static_cast<_FormConfig*>(source);
  if (!from) return;
  m_szMax = from->m_szMax;
  m_szMin = from->m_szMin;
  m_bResize = from->m_bResize;
  m_rcPosition = from->m_rcPosition;
  m_rcBorderMargin = from->m_rcBorderMargin;
  m_imgBackground.Copy(&from->m_imgBackground);
  m_imgFullScreen.Copy(&from->m_imgFullScreen);
  m_bFullWindow = from->m_bFullWindow;
}

int _FormConfig::Read(CSkinReader* reader) {
  if (!reader) return 0;
  reader->GetRect(m_rcPosition, L"PositionRect", 0);
  reader->GetRect(m_rcBorderMargin, L"BorderMargin", 1);
  reader->GetSize(m_szMax, L"MaxSize");
  reader->GetSize(m_szMin, L"MinSize");
  reader->GetBool(m_bResize, L"Resize");
  reader->GetBool(m_bFullWindow, L"IsFullWindow");
  reader->GetPoint(m_ptRoundDiameters, L"RoundDiameters");
  reader->GetImage(m_imgBackground, L"Image");
  return 1;
}

_SkinConfig* _FormConfig::Clone() {
  auto* clone = new _FormConfig();
  clone->Copy(this);
  return clone;
}

}  // namespace KarvelUI
