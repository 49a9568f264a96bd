#pragma once

// Small records of the skin data: one installed skin, a control's layout
// entry ("ass") and the anchor/dock style values stored in it.

#include <karvelui/Base.h>

namespace KarvelUI {

// Stored in _AssData::m_nStyle. 1 to 7 anchor a control against its
// parent's bounds ("AnchorStyle"); 100 to 107 dock it into the parent's
// remaining area ("DockStyle"); 0 places it where its bounds say.
enum AnchorStyle : int {
  ANCHOR_NONE = 0,
  ANCHOR_TOPLEFT = 1,
  ANCHOR_TOPRIGHT = 2,
  ANCHOR_BOTTOMLEFT = 3,
  ANCHOR_BOTTOMRIGHT = 4,
  ANCHOR_TOPCENTER = 5,
  ANCHOR_CENTER = 6,
  ANCHOR_BOTTOMCENTER = 7,
  DOCK_TOP = 100,
  DOCK_BOTTOM = 101,
  DOCK_LEFT = 102,
  DOCK_RIGHT = 103,
  DOCK_HOR = 104,
  DOCK_VER = 105,
  DOCK_FILL = 106,
  DOCK_CAPTION = 107,
};

// One installed skin of "SkinDatas.xml".
struct KARVELUI_API SkinItem {
  CString m_strName;      // folder under Theme, also the skin's identifier
  CString m_strText;      // display name
  CString m_strReserved;  // never filled by the library

  SkinItem() = default;
  SkinItem(const CString& name, const CString& text) : m_strName(name), m_strText(text) {}
  SkinItem(const CString& name, const CString& text, const CString& reserved)
      : m_strName(name), m_strText(text), m_strReserved(reserved) {}
};

// A control's layout entry, filled by CSkinReader::GetAssData.
struct KARVELUI_API _AssData {
  CString m_strTipID;     // "TipID": string-table id of the tooltip
  CString m_strStrID;     // "StrID": string-table id of the text
  CRect m_rcBounds;       // "Bounds", written x, y, width, height
  CRect m_rcMargin;       // "Margin", written left, top, right, bottom
  int m_nStyle = ANCHOR_NONE;  // "DockStyle" or "AnchorStyle"
  int m_bAllowSize = 0;   // "AllowSize"
};

}  // namespace KarvelUI
