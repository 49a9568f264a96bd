// CUIControl: tree, building, skin data, states, opacity, drawing, hit
// testing, input bubbling, events, capture and tooltips. Layout lives in
// UIControlLayout.cpp.

#include <karvelui/UIControl.h>

#include <karvelui/CommonString.h>
#include <karvelui/Trace.h>
#include <karvelui/UIForm.h>
#include <karvelui/Input.h>
#include <karvelui/DXCore.h>
#include <karvelui/SkinConfig.h>
#include <karvelui/SkinManager.h>
#include <karvelui/SkinReader.h>
#include <karvelui/XmlDocument.h>

namespace KarvelUI {

namespace {

bool InUnitRange(float value) { return value >= 0.0f && value <= 1.0f; }  // false for NaN

}  // namespace

// --- CUIObject --------------------------------------------------------------------------

int CUIObject::Equals(CUIObject* other) {
  if (!other) return 0;
  return GetType().CompareNoCase(other->GetType()) == 0 ? 1 : 0;
}

CString CUIObject::ToString() {
  CString text;
  text.Format(L"Type: %s", GetType());
  return text;
}

// --- construction and identity -------------------------------------------------------------

CUIControl::CUIControl() = default;

CUIControl::~CUIControl() {
  m_mapListeners.clear();
  ReleaseSkinConfig();
  RemoveTooltip();
  // The form must not route input to a control that no longer exists.
  if (m_pOwnerForm && !IsRootOfForm()) m_pOwnerForm->ForgetControl(this);
  RemoveAllControlFromMap();
}

CString CUIControl::GetType() { return m_strTypeName; }

CString CUIControl::ToString() {
  CString text;
  text.Format(L"Type: %s , ID: %s", m_strTypeName, m_strObjectID);
  return text;
}

void CUIControl::Release() { delete this; }

void CUIControl::SetOwnerForm(CUIForm* form) {
  m_pOwnerForm = form;
  for (CUIControl* child : m_arrSubControls)
    if (child) child->SetOwnerForm(form);
}

void CUIControl::LeaveForm() {
  // A detached control may be destroyed later, out of the form's sight.
  if (m_pOwnerForm) {
    RemoveTooltip();
    m_pOwnerForm->ForgetControl(this);
  }
  m_pOwnerForm = nullptr;
  for (CUIControl* child : m_arrSubControls)
    if (child) child->LeaveForm();
}

BOOL CUIControl::IsValid() { return m_pOwnerForm && m_pParentContainer ? TRUE : FALSE; }

BOOL CUIControl::IsRootOfForm() const {
  return m_pOwnerForm && static_cast<const CUIControl*>(m_pOwnerForm) == this;
}

BOOL CUIControl::IsUIForm() const { return m_hSelfWnd || IsRootOfForm() ? TRUE : FALSE; }

BOOL CUIControl::IsCursorInBounds(const CPoint& point) { return GetBounds().PtInRect(point); }

CRect CUIControl::GetBounds() { return m_rcBounds; }

// --- the child array ---------------------------------------------------------------------

void CUIControl::AdoptChild(CUIControl* child) {
  child->SetParentContainer(this);
  child->SetOwnerForm(m_pOwnerForm);
}

BOOL CUIControl::RegisterControl(CUIControl* child) {
  if (!child) return FALSE;
  for (CUIControl* existing : m_arrSubControls)
    if (existing == child) return FALSE;
  AdoptChild(child);
  // At full opacity nothing is pushed: the child keeps what it carried.
  const float opacity = GetOpacity();
  if (opacity != 1.0f && InUnitRange(opacity)) {
    child->m_fOpacityParent = opacity;
    child->SetAllSubControlsOpacity(opacity * child->m_fOpacitySelf);
  }
  m_arrSubControls.Add(child);
  return TRUE;
}

BOOL CUIControl::RegisterControl(int index, CUIControl* child) {
  if (!child) return FALSE;
  AdoptChild(child);
  const float opacity = GetOpacity();
  if (opacity != 1.0f) child->SetOpacityParent(opacity);
  if (index >= m_arrSubControls.GetSize())
    m_arrSubControls.Add(child);
  else
    m_arrSubControls.InsertAt(index, child);
  return TRUE;
}

CUIControl* CUIControl::UnRegisterControl(const CString& id) {
  for (INT_PTR i = 0; i < m_arrSubControls.GetSize(); ++i) {
    CUIControl* child = m_arrSubControls[i];
    if (child && child->m_strObjectID.CompareNoCase(id) == 0) {
      m_arrSubControls.RemoveAt(i);
      child->LeaveForm();
      child->SetParentContainer(nullptr);
      return child;
    }
  }
  return nullptr;
}

BOOL CUIControl::UnRegisterControl(CUIControl* child) {
  if (!child) return FALSE;
  for (INT_PTR i = 0; i < m_arrSubControls.GetSize(); ++i) {
    if (m_arrSubControls[i] == child) {
      m_arrSubControls.RemoveAt(i);
      // The parent link stays: callers that move a control re-register it.
      child->LeaveForm();
      return TRUE;
    }
  }
  return FALSE;
}

void CUIControl::RemoveAllControlFromMap() {
  // Detach first, so that a child's destructor never sees a half-emptied array.
  std::vector<CUIControl*> children = std::move(m_arrSubControls.std_vector());
  m_arrSubControls.RemoveAll();
  for (CUIControl* child : children)
    if (child) child->Release();
}

CUIControl* CUIControl::FindControl(const CString& id) {
  if (m_strObjectID.CompareNoCase(id) == 0) return this;
  for (CUIControl* child : m_arrSubControls)
    if (child && child->m_strObjectID.CompareNoCase(id) == 0) return child;
  return nullptr;
}

CUIControl* CUIControl::FindControlRecusive(const CString& id) {
  if (m_strObjectID.CompareNoCase(id) == 0) return this;
  for (CUIControl* child : m_arrSubControls) {
    if (!child) continue;
    if (child->m_strObjectID.CompareNoCase(id) == 0) return child;
    if (CUIControl* found = child->FindControlRecusive(id)) return found;
  }
  return nullptr;
}

void CUIControl::GetAllSubControls(CPtrArray& out) {
  for (CUIControl* child : m_arrSubControls) {
    if (!child) continue;
    out.Add(child);
    child->GetAllSubControls(out);
  }
}

// --- building and skin data ----------------------------------------------------------------

BOOL CUIControl::BuildFromXML(void* node) {
  if (!node || !OnBuildControlBefore()) return FALSE;
  CSkinReader reader(node);
  CString text;
  if (reader.GetString(text, L"css")) m_strCssName = text;
  if (reader.GetString(text, L"ass")) m_strAssName = text;
  int flag = 0;
  if (reader.GetBool(flag, L"Visible")) m_bVisible = flag;
  if (reader.GetBool(flag, L"Enable")) m_bEnabled = flag;
  for (void* child = CXmlDocument::GetFirstChild(node); child; child = CXmlDocument::GetNextSibling(child))
    BuildChildFromXML(child);
  return OnBuildControlAfter();
}

void CUIControl::BuildChildFromXML(void* childNode) {
  const CString name = CXmlDocument::GetNodeName(childNode);
  const CString type = CXmlDocument::GetNodeAttribute(childNode, L"type");
  if (type.IsEmpty()) {
    // An element without a type names an existing child; it makes nothing.
    FindControl(name);
    return;
  }
  CUIControl* child = CUISkinManager::GetInstance()->CreateSkinObject(type);
  if (!child) {
    g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"Create obj error:%s, type:%s\n", name, type);
    return;
  }
  child->SetObjectID(name);
  RegisterControl(child);
  child->BuildFromXML(childNode);
}

void CUIControl::ReleaseSkinConfig() {
  if (m_pSkinConfig) m_pSkinConfig->Release();
  m_pSkinConfig = nullptr;
}

void CUIControl::ReadAssSkinData(CString name) {
  const CString entry = name.IsEmpty() ? m_strTypeName : name;
  m_rcBounds.SetRectEmpty();
  ReleaseSkinConfig();
  if (!entry.IsEmpty() && !m_strAssName.IsEmpty())
    CUISkinManager::GetInstance()->ReadAssData(m_strAssName, entry, &m_AssData);
  if (!m_AssData.m_strTipID.IsEmpty())
    m_strTooltipText = CommonString::GetInstance()->GetStringViaID(m_AssData.m_strTipID);
  for (CUIControl* child : m_arrSubControls)
    if (child) child->ReadAssSkinData(CString());
}

_SkinConfig* CUIControl::GetSkinConfig(CString name) {
  if (m_pSkinConfig) return m_pSkinConfig;
  const CString type = name.IsEmpty() ? m_strTypeName : name;
  CUISkinManager::GetInstance()->ReadCssData(m_strCssName, type, m_pSkinConfig);
  return m_pSkinConfig;
}

void CUIControl::DispathSkinChangeMsg() {
  OnSetSkinData();
  for (CUIControl* child : m_arrSubControls)
    if (child) child->DispathSkinChangeMsg();
}

BOOL CUIControl::OnBuildControlBefore() { return TRUE; }
BOOL CUIControl::OnBuildControlAfter() { return TRUE; }
void CUIControl::OnSetSkinData() {}

// --- visibility and enabled state --------------------------------------------------------------

void CUIControl::SetVisible(BOOL visible) {
  m_bVisible = visible;
  SetTempVisible(visible);
  // The value is imposed on the descendants; this control's own state is m_bVisible.
  m_nTempVisible = -1;
}

void CUIControl::SetTempVisible(BOOL visible) {
  m_nTempVisible = visible ? 1 : 0;
  if (m_hSelfWnd) ShowWindow(m_hSelfWnd, visible && m_bVisible ? SW_SHOW : SW_HIDE);
  for (CUIControl* child : m_arrSubControls)
    if (child) child->SetTempVisible(visible);
}

void CUIControl::SetEnabled(BOOL enabled) {
  m_bEnabled = enabled;
  SetTempEnable(enabled);
  m_nTempEnable = -1;
}

void CUIControl::SetTempEnable(BOOL enabled) {
  m_nTempEnable = enabled ? 1 : 0;
  if (m_hSelfWnd) EnableWindow(m_hSelfWnd, enabled && m_bEnabled);
  for (CUIControl* child : m_arrSubControls)
    if (child) child->SetTempEnable(enabled);
}

void CUIControl::SetFocused(BOOL focused) {
  m_bFocused = focused;
  if (focused && m_pOwnerForm) m_pOwnerForm->SetKeyFocus(this);
}

void CUIControl::SetHitTransparent(BOOL transparent) { m_bHitTransparent = transparent; }

// --- opacity ------------------------------------------------------------------------------------

void CUIControl::SetOpacitySelf(float opacity) {
  if (!InUnitRange(opacity)) return;
  m_fOpacitySelf = opacity;
  SetAllSubControlsOpacity(opacity * m_fOpacityParent);
}

void CUIControl::SetOpacityParent(float opacity) {
  if (!InUnitRange(opacity)) return;
  m_fOpacityParent = opacity;
  SetAllSubControlsOpacity(opacity * m_fOpacitySelf);
}

void CUIControl::SetAllSubControlsOpacity(float opacity) {
  if (!InUnitRange(opacity)) return;
  for (CUIControl* child : m_arrSubControls) {
    if (!child) continue;
    child->m_fOpacityParent = opacity;
    child->SetAllSubControlsOpacity(opacity * child->m_fOpacitySelf);
  }
}

// --- drawing --------------------------------------------------------------------------------------

void CUIControl::Render(DXCore* dx, CRect* clip) {
  const float opacity = m_fOpacityParent * m_fOpacitySelf;
  if (opacity == 0.0f) return;
  if (InUnitRange(opacity)) dx->SetGlobalOpacity(opacity);
  RenderSelf(dx, clip);
  dx->SetGlobalOpacity(1.0f);
  RenderAllSubControls(dx, clip);
}

void CUIControl::RenderSelf(DXCore*, CRect*) {}

void CUIControl::RenderAllSubControls(DXCore* dx, CRect* clip) {
  // Index 0 first, so later children are drawn over earlier ones.
  for (CUIControl* child : m_arrSubControls)
    if (child && child->IsShown() && !child->IsUIForm()) child->Render(dx, clip);
}

void CUIControl::Refresh() {
  if (!IsValid() || !IsShown()) return;
  const HWND hwnd = m_pOwnerForm->GetSafeHwnd();
  if (!hwnd) return;
  const CRect bounds = GetBounds();
  InvalidateRect(hwnd, &bounds, FALSE);
}

// --- hit testing and input ---------------------------------------------------------------------------

CUIControl* CUIControl::FindControlUnderPoint(const CPoint& point) {
  if (!IsShown() || !IsCursorInBounds(point)) return nullptr;
  CPoint local = point;
  if (IsUIForm()) local -= GetBounds().TopLeft();
  // The lower index wins an overlap, although it is drawn underneath.
  for (CUIControl* child : m_arrSubControls)
    if (CUIControl* hit = child ? child->FindControlUnderPoint(local) : nullptr) return hit;
  return m_bHitTransparent ? nullptr : this;
}

int CUIControl::OnMouseMessage(UINT, UINT, const CPoint&) { return 0; }
int CUIControl::OnKeyMessage(UINT, UINT, UINT, UINT) { return 0; }

void CUIControl::DispatchMouseMessage(UINT message, UINT flags, const CPoint& point) {
  if (OnMouseMessage(message, flags, point)) return;
  // The walk ends at the form's root (its own parent) or at a detached control.
  if (m_pParentContainer && m_pParentContainer != this)
    m_pParentContainer->DispatchMouseMessage(message, flags, point);
}

void CUIControl::DispatchKeyMessage(UINT message, UINT wParam, UINT repeat, UINT flags) {
  if (OnKeyMessage(message, wParam, repeat, flags)) return;
  if (m_pParentContainer && m_pParentContainer != this)
    m_pParentContainer->DispatchKeyMessage(message, wParam, repeat, flags);
}

// --- events ---------------------------------------------------------------------------------------------

BOOL CUIControl::ListenEvent(int id, UIEventHandler handler) {
  m_mapListeners[id] = handler;
  return TRUE;
}

BOOL CUIControl::FireEvent(int id, void* param) {
  if (m_nTempEnable == 0 || !m_bEnabled) return FALSE;
  return DispatchEvent(this, id, param);
}

BOOL CUIControl::DispatchEvent(CUIControl* sender, int id, void* param) {
  for (CUIControl* control = this; control;) {
    const auto found = control->m_mapListeners.find(id);
    if (found != control->m_mapListeners.end()) {
      // A copy: the handler may replace its own listener or free the control.
      const UIEventHandler handler = found->second;
      handler(sender, param);
      break;
    }
    CUIControl* parent = control->m_pParentContainer;
    control = parent == control ? nullptr : parent;
  }
  return TRUE;
}

// --- capture --------------------------------------------------------------------------------------------

void CUIControl::SetControlCapture() {
  if (!m_pOwnerForm) return;
  m_pOwnerForm->SetCaptureControl(this);
  SetCapture(m_pOwnerForm->GetSafeHwnd());
}

void CUIControl::ReleaseControlCapture() {
  if (!m_pOwnerForm) return;
  m_pOwnerForm->SetCaptureControl(nullptr);
  ReleaseCapture();
}

// --- tooltips --------------------------------------------------------------------------------------------

void CUIControl::AddTooltip() {
  if (m_nTempEnable == 0 || !m_bEnabled) return;
  if (m_strObjectID.IsEmpty() || m_strTooltipText.IsEmpty() || !m_pOwnerForm) return;
  m_pOwnerForm->AddSubTooltip(this);
}

void CUIControl::RemoveTooltip() {
  if (m_pOwnerForm) m_pOwnerForm->RemoveSubTooltip(this);
}

void CUIControl::AddAllSubTooltip() {
  CPtrArray all;
  GetAllSubControls(all);
  for (void* item : all) {
    auto* control = static_cast<CUIControl*>(item);
    if (!control->IsShownAndEnabled())
      control->RemoveTooltip();
    else if (!control->m_strObjectID.IsEmpty() && !control->m_strTooltipText.IsEmpty())
      control->AddTooltip();
  }
}

void CUIControl::RemoveAllSubTooltip() {
  CPtrArray all;
  GetAllSubControls(all);
  for (void* item : all) static_cast<CUIControl*>(item)->RemoveTooltip();
}

}  // namespace KarvelUI
