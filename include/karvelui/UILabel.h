#pragma once

// CUILabel: a line or block of text over an optional background picture.
// As a hyperlink it shows the hand cursor, the link colour and an underline
// (always, or only while the cursor is over it), and a click either opens
// its URL in the browser or raises UI_EVENT_CLICK. A label can also report
// the cursor entering and leaving it (UI_EVENT_LINK_ENTER / _LEAVE).
//
// Threads: the user-interface thread only.

#include <karvelui/ImageConfig.h>
#include <karvelui/SkinConfig.h>
#include <karvelui/UIControl.h>

namespace KarvelUI {

// The skin record of a label (css type "CUILabel").
class KARVELUI_API _LabelConfig : public _SkinConfig {
 public:
  _LabelConfig();
  _LabelConfig(const _LabelConfig&) = default;
  _LabelConfig& operator=(const _LabelConfig&) = default;

  void Copy(_SkinConfig* source) override;
  void Reset() override;
  int Read(CSkinReader* reader) override;
  _SkinConfig* Clone() override;

  _ImageConfig m_imgBackground;     // "BkImage"
  int m_bTransparent = 1;           // "Transparent": no background picture
  LOGFONTW m_font;                  // "Font"
  COLORREF m_clrText = 0;           // "Font" colour
  UINT m_nFormatHor = 0;            // "TextAlign" x, as DT_LEFT / DT_CENTER / DT_RIGHT
  UINT m_nFormatVer = 0;            // "TextAlign" y, as DT_TOP / DT_VCENTER / DT_BOTTOM
  int m_bHyperLink = 0;             // "IsHyperLink"
  int m_bSingleLine = 1;            // "IsSingleLine"; otherwise words wrap
  COLORREF m_clrHyperLink = 0;      // "HyperColor"
  int m_bAlwaysUnderline = 1;       // "IsAlwaysShowHyperLine"; otherwise only while hovered
  COLORREF m_clrHoverText = 0;      // "ReverseTextColor"
  int m_bAutoOpenURL = 0;           // "IsAutoOpenURL": a click opens the URL
};

class KARVELUI_API CUILabel : public CUIControl {
 public:
  CUILabel();

  // The text of the layout entry's string id, when it has one.
  void OnSetSkinData() override;
  void RenderSelf(DXCore* dx, CRect* clip) override;
  int OnMouseMessage(UINT message, UINT flags, const CPoint& point) override;
  // Opens the URL (auto-open links) or raises UI_EVENT_CLICK; nothing when disabled.
  virtual void OnClick();

  // Stores the text without its surrounding blanks; relayout lays the
  // parent's children out again.
  void SetText(CString text, BOOL relayout);
  CString GetText() const { return m_strText; }
  CString GetURL() const { return m_strURL; }
  void SetHyperLinkMode(BOOL hyperlink, CString url, BOOL alwaysUnderline);
  // Raise UI_EVENT_LINK_ENTER and _LEAVE while set.
  void SetNotifyHover(BOOL notify) { m_bNotifyHover = notify; }
  BOOL IsHovered() const { return m_bHovered; }
  BOOL IsHighlighted() const { return m_bHighlighted; }

  // These write the skin record; nothing happens without one.
  void SetAlignmentHor(int format);
  void SetAlignmentVer(int format);
  void SetTextColor(COLORREF colour);
  void SetFontBold(BOOL bold);
  void SetTransparent(BOOL transparent);
  void SetMultiLine(BOOL multiLine);
  void SetHyperLinkColor(COLORREF colour);
  void SetAutoOpenURL(BOOL autoOpen);

  // The text's width in the configured font (0 without a record or a device).
  int GetWidth();

 protected:
  _LabelConfig* GetLabelConfig();

 private:
  int OnHoverChange(BOOL entering);
  void SetCursorShape(const wchar_t* cursor) const;

  BOOL m_bNotifyHover = FALSE;
  CString m_strText;
  CString m_strURL;
  BOOL m_bHovered = FALSE;
  BOOL m_bHighlighted = FALSE;
};

}  // namespace KarvelUI
