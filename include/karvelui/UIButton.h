#pragma once

// CUIButton: the push button and the toggle (check) button. It draws one
// picture per state (stretched, or as three slices whose ends keep their
// width), an optional icon and a caption with an optional shadow, follows
// hover, press, disabled and keyboard-focus states from the mouse messages
// its form routes to it, and raises UI_EVENT_CLICK with itself as the
// parameter. A button configured to repeat clicks while held does so on
// window timer UI_TIMER_BUTTON_REPEAT, with the keyboard's repeat delay and
// speed; only one button in the process repeats at a time.
//
// Threads: the user-interface thread only.

#include <karvelui/ImageConfig.h>
#include <karvelui/SkinConfig.h>
#include <karvelui/UIControl.h>

namespace KarvelUI {

// Also the index of the state picture drawn ("Normal", "Focus", "Press",
// "Disable", "KBFocus").
enum UIButtonStatus : int {
  UIBUTTON_NORMAL = 0,
  UIBUTTON_HOVER = 1,
  UIBUTTON_PRESSED = 2,  // for a toggle button: checked
  UIBUTTON_DISABLED = 3,
  UIBUTTON_KBFOCUS = 4,
};
inline constexpr int UIBUTTON_STATE_COUNT = 5;

enum UIButtonType : int {
  UIBUTTON_PUSH = 0,
  UIBUTTON_TOGGLE = 1,
};

// Window timer of the repeating button (one per process).
inline constexpr UINT_PTR UI_TIMER_BUTTON_REPEAT = 1234;

// The skin record of a button (css type "CUIButton").
class KARVELUI_API _ButtonConfig : public _SkinConfig {
 public:
  _ButtonConfig();
  _ButtonConfig(const _ButtonConfig&) = default;
  _ButtonConfig& operator=(const _ButtonConfig&) = default;

  // Resets first; the shadow offset is deliberately not inherited.
  void Copy(_SkinConfig* source) override;
  // Leaves the shadow offset as it is.
  void Reset() override;
  int Read(CSkinReader* reader) override;
  _SkinConfig* Clone() override;

  _ImageConfig m_imgStates[UIBUTTON_STATE_COUNT];  // "Image": Normal, Focus, Press, Disable, KBFocus
  _ImageConfig m_imgIcon;                          // "Icon"
  int m_bFlat = 0;                                 // "Flat": stretch the picture instead of three slices
  CSize m_szEdge;                                  // "Edge": widths of the left and right slices
  COLORREF m_clrText = 0;                          // "Font" colour
  COLORREF m_clrTextFocus = 0;                     // "ColorTextFocus" (hover, pressed, keyboard focus)
  int m_bTextShadow = 0;                           // "IsTextShadow"
  CPoint m_ptTextShadowOffset;                     // "TextShadowOffset"
  COLORREF m_clrTextShadow = 0;                    // "ColorTextShadow"
  LOGFONTW m_font;                                 // "Font"
  CRect m_rcIconOffset;                            // "IconOffset": left, top, right, bottom insets
  CRect m_rcTextOffset;                            // "TextOffset": likewise
  int m_nTextHorAlign = 1;                         // "TextHorAlign": 0 left, 2 right, else centred
  int m_nTextVerAlign = 1;                         // "TextVerAlign": 0 top, 2 bottom, else centred
  int m_bRepeat = 0;                               // "IsRepeate": click again while held
};

class KARVELUI_API CUIButton : public CUIControl {
 public:
  CUIButton();
  // A button that repeats stops its timer first.
  ~CUIButton() override;

  void SetEnabled(BOOL enabled) override;
  // Gaining the focus makes it the form's key focus control and shows the
  // hover state; losing it shows the normal state.
  void SetFocused(BOOL focused) override;
  // The text of the layout entry's string id, when it has one.
  void OnSetSkinData() override;
  void RenderSelf(DXCore* dx, CRect* clip) override;
  int OnMouseMessage(UINT message, UINT flags, const CPoint& point) override;
  // Raises UI_EVENT_CLICK unless the button is disabled.
  virtual void OnClick();

  UIButtonStatus GetButtonStatus() const { return m_nStatus; }
  void SetButtonStatus(UIButtonStatus status);
  UIButtonType GetButtonType() const { return m_nButtonType; }
  void SetButtonType(UIButtonType type) { m_nButtonType = type; }
  CString GetWindowTextW() const { return m_strText; }
  void SetWindowTextW(const CString& text);
  // Writes the skin record's flat flag (nothing without a record).
  void SetFlat(BOOL flat);

 protected:
  // First repeat after the keyboard delay setting, then one per the
  // keyboard speed setting's interval, in milliseconds.
  int GetDelay();
  int GetInterval();
  void StartTimer();
  // Only while repeating.
  void StopTimer();
  static void OnTimerProc(HWND hwnd, UINT message, UINT_PTR id, DWORD time);

  _ButtonConfig* GetButtonConfig();
  BOOL IsDisabled() const;

 private:
  void OnLeftDown();
  void OnLeftUp();
  void OnHover();
  void OnLeave();
  void RenderBackground(DXCore* dx, _ButtonConfig& config, const CRect& b, CRect* clip);
  // The icon's box, or an empty rectangle without an icon.
  CRect RenderIcon(DXCore* dx, _ButtonConfig& config, const CRect& b);
  void RenderText(DXCore* dx, _ButtonConfig& config, const CRect& b, const CRect& iconBox);
  HWND FormWindow() const;

  static CUIButton* s_pRepeatButton;  // the one button repeating, if any

  UIButtonStatus m_nStatus = UIBUTTON_NORMAL;
  UIButtonType m_nButtonType = UIBUTTON_PUSH;
  CString m_strText;
  BOOL m_bPressed = FALSE;  // the left button went down here and a click is pending
  int m_nRepeating = 0;     // 0 off, 1 waiting for the first delay, 2 repeating
};

}  // namespace KarvelUI
