#pragma once

// CUIControl: one node of a form's control tree. A control owns its
// children, carries its identifier, layout data, visibility, enabled state,
// opacity and tooltip text, draws itself through the form's render device,
// receives the mouse and key messages the form routes to it and raises
// numbered events that climb the tree to the first control listening.
//
// Inherited state: a container imposes its visibility and enabled state on
// its descendants through their "temp" flags (-1: nothing imposed), so a
// child's own flags survive hiding and showing its parent. Opacity works the
// same way as a product: each control carries the product of its ancestors'
// own opacities in its opacity-parent field.
//
// Threads: all of it runs on the thread that owns the form's window.

#include <map>

#include <karvelui/Base.h>
#include <karvelui/FastDelegate.h>
#include <karvelui/SkinTypes.h>

namespace KarvelUI {

class CUIControl;
class CUIForm;
class DXCore;
class _SkinConfig;

using UIEventHandler = FastDelegate2<CUIControl*, void*, void>;

// Event ids raised by the library's controls.
inline constexpr int UI_EVENT_CLICK = 1;
inline constexpr int UI_EVENT_SLIDER_CHANGED = 2;
inline constexpr int UI_EVENT_LINK_ENTER = 5;
inline constexpr int UI_EVENT_LINK_LEAVE = 6;
inline constexpr int UI_EVENT_LIST_SELECTED = 4027;
inline constexpr int UI_EVENT_LIST_THUMB_FAILED = 4028;
inline constexpr int UI_EVENT_LIST_THUMB_LOADED = 4029;

// Key messages the form sends to a control losing and gaining the keyboard focus.
inline constexpr UINT UI_KEY_KILLFOCUS = 4024;
inline constexpr UINT UI_KEY_SETFOCUS = 4025;

// The root of every user-interface object.
class KARVELUI_API CUIObject {
 public:
  CUIObject() = default;
  virtual ~CUIObject() = default;
  virtual CString GetType() = 0;
  // 1 when other is an object of the same type (compared without case).
  virtual int Equals(CUIObject* other);
  virtual CString ToString();
};

class KARVELUI_API CUIControl : public CUIObject {
 public:
  CUIControl();
  // Empties the listeners, releases the skin record, leaves the form's
  // tooltip list and releases every child.
  ~CUIControl() override;
  CUIControl(const CUIControl&) = delete;
  CUIControl& operator=(const CUIControl&) = delete;

  CString GetType() override;
  CString ToString() override;
  // Destroys the control; the way a parent frees its children.
  virtual void Release();
  virtual void SetControlCapture();
  virtual void ReleaseControlCapture();
  virtual CRect GetBounds();
  virtual void SetVisible(BOOL visible);
  virtual void SetEnabled(BOOL enabled);
  virtual void SetFocused(BOOL focused);
  virtual void SetHitTransparent(BOOL transparent);
  virtual BOOL IsValid();
  virtual BOOL IsUIForm() const;
  // Right and bottom edges are outside.
  virtual BOOL IsCursorInBounds(const CPoint& point);
  virtual void CalculateBounds();
  virtual void RePositionSubControls();
  virtual BOOL OnBuildControlBefore();
  virtual BOOL OnBuildControlAfter();
  // Subclasses read their skin record here.
  virtual void OnSetSkinData();
  // The cached record, made on first use from the css entry (css name,
  // name or the type name); null when the skin has none.
  virtual _SkinConfig* GetSkinConfig(CString name);
  virtual void RenderSelf(DXCore* dx, CRect* clip);
  // Invalidates the bounds in the form's window (the form redraws its tree).
  virtual void Refresh();
  virtual void RenderAllSubControls(DXCore* dx, CRect* clip);
  // Non-zero when handled; unhandled messages bubble to the parent.
  virtual int OnMouseMessage(UINT message, UINT flags, const CPoint& point);
  virtual int OnKeyMessage(UINT message, UINT wParam, UINT repeat, UINT flags);
  virtual void DispatchMouseMessage(UINT message, UINT flags, const CPoint& point);
  virtual void DispatchKeyMessage(UINT message, UINT wParam, UINT repeat, UINT flags);

  // --- identity and tree ----------------------------------------------------------
  void SetObjectID(const CString& id) { m_strObjectID = id; }
  CString GetObjectID() const { return m_strObjectID; }
  CUIControl* GetParentContainer() const { return m_pParentContainer; }
  void SetParentContainer(CUIControl* parent) { m_pParentContainer = parent; }
  CUIForm* GetOwnerForm() const { return m_pOwnerForm; }
  // Also sets the form on every descendant.
  void SetOwnerForm(CUIForm* form);
  HWND GetSelfHwnd() const { return m_hSelfWnd; }
  CString GetCssName() const { return m_strCssName; }
  CString GetAssName() const { return m_strAssName; }
  void SetCssName(const CString& css) { m_strCssName = css; }
  void SetAssName(const CString& ass) { m_strAssName = ass; }

  // Appends a child (0 for null or a child already present).
  BOOL RegisterControl(CUIControl* child);
  // Inserts a child at index; deliberately no duplicate check.
  BOOL RegisterControl(int index, CUIControl* child);
  // Detaches the first child with that id; the caller owns it.
  CUIControl* UnRegisterControl(const CString& id);
  // Detaches child, keeping its parent link.
  BOOL UnRegisterControl(CUIControl* child);
  // This control or a direct child with the id (no deeper).
  CUIControl* FindControl(const CString& id);
  // Depth first, first match wins.
  CUIControl* FindControlRecusive(const CString& id);
  // The topmost hit, where the lower-index sibling wins an overlap.
  CUIControl* FindControlUnderPoint(const CPoint& point);
  // Every descendant, depth first, parents before children.
  void GetAllSubControls(CPtrArray& out);
  void RemoveAllControlFromMap();
  INT_PTR GetChildCount() const { return m_arrSubControls.GetSize(); }
  CUIControl* GetChild(INT_PTR index) const { return m_arrSubControls.GetAt(index); }

  // --- building and skin -------------------------------------------------------------
  BOOL BuildFromXML(void* node);
  void ReadAssSkinData(CString name);
  // OnSetSkinData on this control, then on every descendant, parents first.
  void DispathSkinChangeMsg();
  _AssData& GetAssData() { return m_AssData; }

  // --- states ---------------------------------------------------------------------------
  void SetTempVisible(BOOL visible);
  void SetTempEnable(BOOL enabled);
  BOOL IsVisible() const { return m_nTempVisible == 0 ? FALSE : m_bVisible; }
  BOOL IsEnabled() const { return m_nTempEnable == 0 ? FALSE : m_bEnabled; }
  BOOL IsFocused() const { return m_bFocused; }
  BOOL IsHitTransparent() const { return m_bHitTransparent; }
  // Own and inherited flags all set: what drawing, hit testing and routing ask.
  BOOL IsShown() const { return m_nTempVisible != 0 && m_bVisible; }
  BOOL IsShownAndEnabled() const { return IsShown() && m_nTempEnable != 0 && m_bEnabled; }

  // --- opacity ----------------------------------------------------------------------------
  float GetOpacity() const { return m_fOpacityParent * m_fOpacitySelf; }
  float GetOpacitySelf() const { return m_fOpacitySelf; }
  float GetOpacityParent() const { return m_fOpacityParent; }
  void SetOpacitySelf(float opacity);
  void SetOpacityParent(float opacity);

  // --- tooltips ---------------------------------------------------------------------------
  void SetTooltipText(const CString& text) { m_strTooltipText = text; }
  CString GetTooltipText() const { return m_strTooltipText; }
  void AddTooltip();
  void RemoveTooltip();
  void AddAllSubTooltip();
  void RemoveAllSubTooltip();

  // --- events -------------------------------------------------------------------------------
  // One handler per id; a later one replaces the earlier.
  BOOL ListenEvent(int id, UIEventHandler handler);
  // 0 without doing anything on a disabled control, else DispatchEvent's 1.
  BOOL FireEvent(int id, void* param);
  // Runs the first handler for id found from this control upwards; always 1.
  BOOL DispatchEvent(CUIControl* sender, int id, void* param);

  // --- drawing and layout -----------------------------------------------------------------
  // Draws this control (at its effective opacity) and then its children.
  void Render(DXCore* dx, CRect* clip);
  void SetBounds(const CRect& bounds) { m_rcBounds = bounds; }
  // The bounds less the margin, never of negative size.
  CRect GetBoundsSmall();
  CRect GetAnchor() const { return m_AssData.m_rcBounds; }
  void SetAnchor(const CRect& anchor) { m_AssData.m_rcBounds = anchor; }
  void SetAnchorStyle(AnchorStyle style) { m_AssData.m_nStyle = style; }
  void SetMargin(const CRect& margin) { m_AssData.m_rcMargin = margin; }
  // Places this (docked) control in the parent's remaining area and
  // shrinks the area by what it takes.
  void Dock2Container(CRect* remaining);

 protected:
  virtual void SetAllSubControlsOpacity(float opacity);

  // Forms set these on their own root part.
  void SetSelfHwnd(HWND hwnd) { m_hSelfWnd = hwnd; }
  void SetTypeName(const CString& type) { m_strTypeName = type; }
  // Only this control's link; the descendants keep theirs.
  void ClearOwnerForm() { m_pOwnerForm = nullptr; }
  BOOL m_bTooltipEnabled = FALSE;

 private:
  // Each builder step of BuildFromXML for one child element.
  void BuildChildFromXML(void* childNode);
  void AdoptChild(CUIControl* child);
  // Drops this subtree's tooltips and the form's references to it, then the form link.
  void LeaveForm();
  void ReleaseSkinConfig();
  BOOL IsRootOfForm() const;
  void PlaceByAnchor(const CRect& parent);

  CString m_strObjectID;
  _AssData m_AssData;
  CString m_strTypeName = L"CUIControl";
  CString m_strCssName;
  CString m_strAssName;
  BOOL m_bVisible = TRUE;
  BOOL m_bEnabled = TRUE;
  BOOL m_bHitTransparent = FALSE;
  BOOL m_bFocused = FALSE;
  CString m_strTooltipText;
  CUIForm* m_pOwnerForm = nullptr;
  CUIControl* m_pParentContainer = nullptr;
  HWND m_hSelfWnd = nullptr;
  CArray<CUIControl*, CUIControl* const&> m_arrSubControls;
  _SkinConfig* m_pSkinConfig = nullptr;  // owned; freed through its Release
  CRect m_rcBounds;
  int m_nTempVisible = -1;
  int m_nTempEnable = -1;
  std::map<int, UIEventHandler> m_mapListeners;
  float m_fOpacitySelf = 1.0f;
  float m_fOpacityParent = 1.0f;
};

}  // namespace KarvelUI
