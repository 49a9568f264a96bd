#pragma once

// CUICaption: the title bar of a skinned form, the form's root child named
// "FormCaption". It draws an icon and the form's window title, tells the
// form where the window may be dragged (IsHitCaption), follows the
// window's size changes by swapping its maximise and restore buttons, and
// runs its system buttons: ordinary buttons among its children, known by
// their object IDs, whose clicks post the matching system command to the
// form. Clicks of any other button inside the caption go on to the host.
//
// Threads: the user-interface thread only.

#include <karvelui/ImageConfig.h>
#include <karvelui/SkinConfig.h>
#include <karvelui/UIControl.h>

namespace KarvelUI {

// Object IDs of the system buttons (compared with case).
inline constexpr const wchar_t* kSysButtonClose = L"SysButtonClose";
inline constexpr const wchar_t* kSysButtonMin = L"SysButtonMin";
inline constexpr const wchar_t* kSysButtonMax = L"SysButtonMax";
inline constexpr const wchar_t* kSysButtonRestore = L"SysButtonRestore";
inline constexpr const wchar_t* kSysButtonHelp = L"SysButtonHelp";

// IsHitCaption results.
inline constexpr int CAPTION_HIT_NONE = 0;
inline constexpr int CAPTION_HIT_DRAG = 1;
inline constexpr int CAPTION_HIT_CHILD = 2;

// The skin record of a caption (css type "CUICaption").
class KARVELUI_API _CaptionConfig : public _SkinConfig {
 public:
  _CaptionConfig();
  _CaptionConfig(const _CaptionConfig&) = default;
  _CaptionConfig& operator=(const _CaptionConfig&) = default;

  // Copies every field without resetting first.
  void Copy(_SkinConfig* source) override;
  void Reset() override;
  int Read(CSkinReader* reader) override;
  _SkinConfig* Clone() override;

  int m_bIconVisible = 1;      // "IconVisible"
  int m_bTextVisible = 1;      // "TextVisible"
  CRect m_rcIcon;              // "IconRect", relative to the caption's top-left
  CPoint m_ptTextStart;        // "TextStartPosition", in form coordinates
  int m_nTextHeight = 0;       // "TextHeight"
  LOGFONTW m_font;             // "Font"
  COLORREF m_clrText = 0;      // "Font" colour
  int m_nReserved = 0;
  _ImageConfig m_imgIcon;      // "Image"
};

class KARVELUI_API CUICaption : public CUIControl {
 public:
  CUICaption();

  // Caches the skin record.
  void OnSetSkinData() override;
  void RenderSelf(DXCore* dx, CRect* clip) override;

  // CAPTION_HIT_NONE outside the inner rectangle, CAPTION_HIT_CHILD on any
  // child (shown or not), else CAPTION_HIT_DRAG.
  int IsHitCaption(CPoint point);
  // Follows a WM_SIZE of the form (SIZE_MAXIMIZED or any other type).
  void OnSize(UINT type);
  // Shows the button of the state the window is not in: restore while
  // maximised, maximise otherwise.
  void ChangeMaxRestoreButton();
  // Every click of a button inside the caption arrives here.
  void OnButtonClick(CUIControl* sender, void* param);
  BOOL IsMaximized() const { return m_bMaximized; }

 protected:
  // The room for the title, up to the first shown system button.
  int GetTextWidth();

 private:
  CUIControl* ChildNamed(const wchar_t* id);
  void PostSysCommand(UINT command);

  BOOL m_bMaximized = FALSE;  // the restore button is the one shown
};

}  // namespace KarvelUI
