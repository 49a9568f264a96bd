#pragma once

// CUIForm: a top-level window that hosts one control tree and draws it with
// its own render device. It is at once a platform window and the root
// control of its tree (its own parent and owner form, which ends every
// upward walk). Creating the window builds the tree from the build node
// "BuildRoot <object ID>", reads the skin, lays the tree out and makes the
// render device. The window procedure routes mouse messages to the control
// under the cursor (or the capture control), keys to the keyboard-focus
// control, and keeps hover, tab order, tooltips, timers, the animation
// controller, the rounded shape, the sizing grips and the modal loop.
//
// Every form is registered with CUIManager from construction to destruction.
// A modeless form destroys itself when closed (Release), so it must live on
// the heap; a modal form's DoModal destroys only its window.
// Everything runs on the window's thread; a paint holds the texture lock of
// the form's resource cache because the thumbnail loader fills textures
// from its own thread.

#include <map>
#include <memory>
#include <vector>

#include <karvelui/UIControl.h>
#include <karvelui/Wnd.h>

namespace KarvelUI {

class AnimationController;
class CUICaption;
class CToolTipCtrl;
class CUIMenu;
class DXCore;
class _FormConfig;

// Window message that releases the form's active popup menu (posted on Escape).
inline constexpr UINT UI_WM_RELEASEMENU = 10907;
// Posted by a popup menu to its owner form while the mouse rests on an
// entry (entry id as wParam); the host handles it.
inline constexpr UINT UI_WM_MENUHOVER = 4325;

using UITimerHandler = FastDelegate1<unsigned int, void>;
// Paints a whole frame on the form's render device in place of the tree.
using UIPaintHandler = FastDelegate1<DXCore*, void>;

class KARVELUI_API CUIForm : public CWnd, public CUIControl {
 public:
  CUIForm();
  ~CUIForm() override;

  // Registers the window class, drops the child and caption style bits and
  // makes the window; creation builds the tree and the render device.
  BOOL Create(DWORD style, const wchar_t* className, const wchar_t* windowName, CWnd* parent, UINT id, CRect rect);
  BOOL Create(DWORD exStyle, DWORD style, const wchar_t* className, const wchar_t* windowName, CWnd* parent,
              UINT id, CRect rect);

  // --- modal loop and closing ----------------------------------------------------------
  // Shows the form centred over a disabled owner until EndDialog; then hides
  // and destroys the window and returns the result.
  int DoModal();
  void EndDialog(int result);
  BOOL IsModalWnd() const { return m_bModal; }
  // Disables the owner (the parent window, else the active window); returns it.
  virtual HWND PreModal();
  // Hides the window, re-enables and activates the owner, destroys the window.
  virtual void PostModal(HWND owner);
  void OnQueryCloseForm();
  BOOL IsClosing() const { return m_bClosing; }
  void SetCloseOnEscape(BOOL close) { m_bCloseOnEscape = close; }

  // --- window ---------------------------------------------------------------------------
  virtual void BringToTop();
  void SetIcon(UINT resourceId, BOOL big);
  // Moves the window so that its client area is r (frame assumed as thick
  // on the right and bottom as on the left and top), and repaints.
  void SetFormPosition(CRect& r);
  // The frame's left and top thickness.
  CPoint GetOffsetPtAux();
  CString GetClassNameW() const { return m_strClassName; }
  virtual void SetFormRgn();
  // The window's shape: a rounded rectangle over the root's bounds, or the
  // whole screen for a maximised full-window form; null without a skin record.
  virtual HRGN GetBoundRgn();
  // Any percent but 100 makes the window translucent; 100 makes it opaque.
  void SetFormTransparent(int percent);
  void SetGlobalOpacity(float opacity);

  // --- input -----------------------------------------------------------------------------
  LRESULT OnMouseMsg(UINT message, UINT flags, const CPoint& point);
  LRESULT OnKeyMsg(UINT message, UINT wParam, UINT repeat, UINT keyFlags);
  // Sends WM_MOUSELEAVE to the control the cursor left and WM_MOUSEHOVER to the one it entered.
  void SetCursorMoveFocus(CUIControl* control);
  // Sends UI_KEY_KILLFOCUS to the control losing the keyboard focus and UI_KEY_SETFOCUS to the one gaining it.
  void SetKeyFocus(CUIControl* control);
  CUIControl* GetCaptureControl() const { return m_pCaptureControl; }
  void SetCaptureControl(CUIControl* control) { m_pCaptureControl = control; }
  CUIControl* GetHoverControl() const { return m_pHoverControl; }
  CUIControl* GetKeyFocusControl() const { return m_pKeyFocusControl; }
  // The first focused, shown control of the tab order (it becomes current).
  CUIControl* GetCurFocused();
  void AddTABOrder(CUIControl* control);
  // The next shown and enabled control after the current one, wrapping.
  CUIControl* GetNextTabCtrl();
  // Deliberately always the first shown and enabled control of the tab order.
  CUIControl* GetPrevTabCtrl();

  // --- tooltips ----------------------------------------------------------------------------
  void CreateToolTip();
  void ActiveTooltip(BOOL active);
  void AddSubTooltip(CUIControl* control);
  void RemoveSubTooltip(CUIControl* control);
  CToolTipCtrl* GetToolTipCtrl() const { return m_pToolTip.get(); }

  // --- timers ------------------------------------------------------------------------------
  // 0 when the id has a handler already (the first one stays).
  BOOL RegisterTimerHandler(UINT id, int intervalMs, UITimerHandler handler);
  void UnRegisterTimerHandler(UINT id);

  void SetActiveMenu(CUIMenu* menu) { m_pActiveMenu = menu; }
  CUIMenu* GetActiveMenu() const { return m_pActiveMenu; }
  DXCore* GetRenderDevice() const { return m_pDXCore.get(); }
  // While set, a paint hands the render device (with its texture lock held)
  // to `painter` instead of drawing the tree: a full-window effect playing
  // over the form. An empty delegate restores the usual paint.
  void SetPaintOverride(UIPaintHandler painter) { m_paintOverride = painter; }
  AnimationController* GetAnimationController() const { return m_pAnimationController.get(); }

  // --- skin --------------------------------------------------------------------------------
  // Re-reads layout and skin data for the whole tree, lays it out, reshapes
  // the window and repaints (also the skin manager's broadcast).
  virtual void OnSkinChanged();
  void OnSetSkinData() override;
  void RenderSelf(DXCore* dx, CRect* clip) override;
  // The root follows the window's client size.
  void CalculateBounds() override;
  virtual void OnMouseLeave(UINT flags, const CPoint& point);
  // Draws the whole tree; a flag of ANIMATION_TIMER_ID completes an animation frame.
  virtual void OnPaint(UINT flag);

  BOOL PreTranslateMessage(MSG* msg) override;
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

  // A control of this form is being destroyed: drop every reference to it.
  void ForgetControl(CUIControl* control);

 protected:
  int OnCreate(LPCREATESTRUCT createStruct) override;
  BOOL OnEraseBkgnd() override;
  void OnGetMinMaxInfo(MINMAXINFO* info) override;
  LRESULT OnNcHitTest(CPoint screenPoint) override;
  void OnSize(UINT type, int cx, int cy) override;
  void OnClose() override;
  void OnTimer(UINT_PTR id) override;

  _FormConfig* GetFormConfig();
  // The root's direct child named "FormCaption" when it is a caption. This
  // and the two below are defined with the caption, in the controls layer.
  CUICaption* GetFormCaption();
  // The caption's IsHitCaption for a client point, 0 without a caption.
  int HitFormCaption(const CPoint& point);
  // Tells the caption about a size change of the window.
  void SizeFormCaption(UINT type);

 private:
  struct AnimationReleaser {
    void operator()(AnimationController* controller) const;
  };

  LRESULT RouteMouseMessage(UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT RouteKeyMessage(UINT message, WPARAM wParam, LPARAM lParam);
  void ReleaseActiveMenu(BOOL wholeChain);
  void ShowD3DInitFailure(HRESULT result);
  BOOL HandleTabKey();
  LRESULT GripHitTest(const CPoint& point, const CRect& margin);
  void AddOrUpdateTool(CUIControl* control);
  UINT_PTR ToolIdOf(CWnd* owner, CUIControl* control) const;

  CUIControl* m_pCaptureControl = nullptr;
  std::unique_ptr<DXCore> m_pDXCore;
  BOOL m_bClosing = FALSE;
  CPoint m_ptOffset;
  BOOL m_bTracking = FALSE;
  CUIControl* m_pHoverControl = nullptr;
  CUIControl* m_pKeyFocusControl = nullptr;
  BOOL m_bModal = FALSE;
  int m_nModalResult = -1;
  std::unique_ptr<AnimationController, AnimationReleaser> m_pAnimationController;
  CUIMenu* m_pActiveMenu = nullptr;
  BOOL m_bCloseOnEscape = TRUE;
  CWnd* m_pParentWnd = nullptr;
  CString m_strClassName;
  std::unique_ptr<CToolTipCtrl> m_pToolTip;  // the window exists after CreateToolTip
  BOOL m_bToolTipsEnabled = FALSE;
  CMapPtrToPtr m_mapTooltipTools;  // control -> window its tool was added to
  std::map<UINT, UITimerHandler> m_mapTimerHandlers;
  std::vector<CUIControl*> m_vecTabOrder;
  int m_nCurTabIndex = 0;
  UIPaintHandler m_paintOverride;
};

}  // namespace KarvelUI
