// CUIMenu: the popup window of one menu level, its skin record, and
// IMenu::PopupMenu, which opens the first level for a form.

#include <karvelui/UIMenu.h>

#include <algorithm>

#include <karvelui/DXCore.h>
#include <karvelui/Helpers.h>
#include <karvelui/Input.h>
#include <karvelui/Screen.h>
#include <karvelui/SkinManager.h>
#include <karvelui/SkinReader.h>
#include <karvelui/Trace.h>
#include <karvelui/UIForm.h>

namespace KarvelUI {

namespace {

constexpr wchar_t kClassName[] = L"CUIMenu";
constexpr wchar_t kTitle[] = L"KarvelUIMenu";
constexpr wchar_t kPublicCss[] = L"public";
constexpr wchar_t kTypeName[] = L"CUIMenu";
constexpr DWORD kStyle = WS_POPUP | WS_THICKFRAME;
const CRect kCreateRect(0, 0, 150, 150);

constexpr int kEmptyMenuSize = 200;
constexpr int kBottomMargin = 2;
constexpr int kIconRoom = 18;       // the text moves right by this for an icon
constexpr int kIconFileSize = 16;   // an icon file is drawn in this square
constexpr int kMarkLeft = 6;        // from the entry box's left to the check mark
constexpr int kMarkInset = 3;
constexpr int kArrowRight = 6;      // from the arrow to the entry box's right
constexpr int kSubMenuRaise = 2;    // a sub-menu's top above its entry's top
constexpr int kUpwardsNudge = 4;
constexpr DWORD kHoverTimeMs = 1;
constexpr DWORD kTextFormat = DT_SINGLELINE | DT_VCENTER;
constexpr DWORD kEraseColour = 0xFF282828;

// State pictures of a check mark or an arrow.
constexpr int kStateNormal = 0;
constexpr int kStateFocus = 1;
constexpr int kStateDisable = 3;

int StateOf(const MenuItem& item) {
  if (item.IsDisabled()) return kStateDisable;
  return item.IsSel() ? kStateFocus : kStateNormal;
}

// Text is drawn and measured without underline, whatever the skin's font says.
LOGFONTW TextFont(const _MenuConfig& config) {
  LOGFONTW font = config.m_font;
  font.lfUnderline = 0;
  return font;
}

}  // namespace

// --- _MenuConfig ----------------------------------------------------------------------

_MenuConfig::_MenuConfig() { _MenuConfig::Reset(); }

void _MenuConfig::Reset() {
  GetDefaultLOGFONT(m_font);
  // Stored without alpha as built-in defaults; a skin's colours carry 0xFF.
  m_clrBackground = 0x007B7670;
  m_clrText = 0x00FFFFFF;
  m_clrTextSel = 0x00FFFFFF;
  m_clrTextDisable = 0x00808080;
  m_nIndent = 2;
  m_szTextOffset = CSize(6, 30);
  m_nIconSize = 18;
  m_imgBackground.Reset();
  m_imgNormal.Reset();
  m_imgFocused.Reset();
  for (_ImageConfig& image : m_imgChecked) image.Reset();
  for (_ImageConfig& image : m_imgSubmenu) image.Reset();
  m_imgSeperator.Reset();
}

void _MenuConfig::Copy(_SkinConfig* source) {
  auto* from = static_cast<_MenuConfig*>(source);
  if (!from) return;
  m_clrBackground = from->m_clrBackground;
  m_clrText = from->m_clrText;
  m_clrTextSel = from->m_clrTextSel;
  m_clrTextDisable = from->m_clrTextDisable;
  m_nIndent = from->m_nIndent;
  m_szTextOffset = from->m_szTextOffset;
  m_nIconSize = from->m_nIconSize;
  m_imgBackground.Copy(&from->m_imgBackground);
  m_imgNormal.Copy(&from->m_imgNormal);
  m_imgFocused.Copy(&from->m_imgFocused);
  for (int i = 0; i < 5; ++i) {
    m_imgChecked[i].Copy(&from->m_imgChecked[i]);
    m_imgSubmenu[i].Copy(&from->m_imgSubmenu[i]);
  }
  m_imgSeperator.Copy(&from->m_imgSeperator);
}

int _MenuConfig::Read(CSkinReader* reader) {
  if (!reader) return 0;
  reader->GetInt(m_nIndent, L"Indent");
  reader->GetSize(m_szTextOffset, L"TextOffset");
  reader->GetInt(m_nIconSize, L"IconSize");
  reader->GetImage(m_imgBackground, L"BkImage");
  reader->GetImage(m_imgNormal, L"NormalImage");
  reader->GetImage(m_imgFocused, L"FocusedImage");
  reader->GetImage(m_imgSeperator, L"SeperatorImage");
  reader->Get5StateImage(m_imgChecked, L"CheckedImage");
  reader->Get5StateImage(m_imgSubmenu, L"SubmenuImage");
  DWORD ignored = 0;  // the text colours live in "Color"
  reader->GetFont(m_font, ignored, L"Font");
  CSkinReader colours;
  if (reader->FindChild(colours, L"Color")) {
    colours.GetColor(m_clrBackground, L"Background");
    colours.GetColor(m_clrText, L"Text");
    colours.GetColor(m_clrTextSel, L"TextSel");
    colours.GetColor(m_clrTextDisable, L"TextDisable");
  }
  return 1;
}

_SkinConfig* _MenuConfig::Clone() {
  auto* clone = new _MenuConfig();
  clone->Copy(this);
  return clone;
}

// --- life cycle ---------------------------------------------------------------------------

CUIMenu::CUIMenu(const CString& css)
    : m_pDXCore(std::make_unique<DXCore>()), m_strCss(css.IsEmpty() ? CString(kPublicCss) : css) {}

CUIMenu::~CUIMenu() {
  m_pChildWnd.reset();
  m_pHoverItem = nullptr;
  m_items.clear();
  m_pConfig.reset();
  // The device goes while its window still exists, so its GL objects are
  // freed in a live context.
  m_pDXCore.reset();
  if (m_pOwnerForm && m_pOwnerForm->GetActiveMenu() == this) m_pOwnerForm->SetActiveMenu(nullptr);
  if (m_pParentWnd && m_pParentWnd->m_pChildWnd.get() == this) (void)m_pParentWnd->m_pChildWnd.release();
  DestroyWindow();
}

void CUIMenu::Release() { delete this; }

void CUIMenu::ReleaseAll() {
  CUIMenu* root = GetRootParent();
  IMenu* tree = root->m_pMenu;
  // The windows first: none of them may look at the tree once it is gone.
  root->Release();
  if (tree) tree->Release();
}

BOOL CUIMenu::Create(CWnd* parent) {
  WNDCLASSW cls;
  cls.style = CS_VREDRAW | CS_HREDRAW | CS_DBLCLKS;
  cls.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  cls.lpszClassName = kClassName;
  AfxRegisterClass(&cls);
  // A tool window stays off the taskbar; the desktop only takes that at creation.
  return CreateEx(WS_EX_TOOLWINDOW, kClassName, kTitle, kStyle, kCreateRect, parent, 0);
}

int CUIMenu::OnCreate(LPCREATESTRUCT createStruct) {
  if (CWnd::OnCreate(createStruct) == -1) return -1;
  m_ptOffset = GetOffsetPtAux();
  m_pDXCore->SetWindow(m_hWnd);
  const HRESULT result = m_pDXCore->_InitD3D();
  if (FAILED(result)) {
    g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"<ERROR> init d3d error:%d\n", result);
    return -1;
  }
  return 0;
}

void CUIMenu::OnDestroy() {
  m_pDXCore.reset();  // it draws into this window
  CWnd::OnDestroy();
}

CPoint CUIMenu::GetOffsetPtAux() {
  CRect frame(0, 0, 400, 300);
  AdjustWindowRectEx(&frame, GetStyle(), FALSE, GetExStyle());
  return CPoint(-frame.left, -frame.top);
}

_MenuConfig* CUIMenu::GetSkinConfig() {
  if (!m_pConfig) {
    _SkinConfig* read = nullptr;
    CUISkinManager::GetInstance()->ReadCssData(m_strCss, kTypeName, read);
    auto* config = dynamic_cast<_MenuConfig*>(read);
    if (!config && read) read->Release();  // a host's prototype of another kind
    m_pConfig.reset(config);
  }
  return m_pConfig.get();
}

CUIMenu* CUIMenu::GetRootParent() {
  CUIMenu* root = this;
  while (root->m_pParentWnd) root = root->m_pParentWnd;
  return root;
}

// --- items and geometry -----------------------------------------------------------------------

void CUIMenu::LoadMenuW(IMenu* menu) {
  if (!menu) return;
  m_pMenu = menu;
  _MenuConfig* config = GetSkinConfig();
  if (!config) return;
  m_pHoverItem = nullptr;
  m_items.clear();
  m_rcBounds.right = m_rcBounds.left + 2 * config->m_nIndent;
  for (int i = 0; i < menu->GetSubMenuCount(); ++i) {
    IMenu* child = menu->GetSubMenu(i);
    const _ImageConfig& shape = child->GetCaption().IsEmpty() ? config->m_imgSeperator : config->m_imgNormal;
    auto item = std::make_unique<MenuItem>(shape.m_rcSrc.Height(), child, this);
    int pos = config->m_nIndent;
    if (!m_items.empty()) {
      const MenuItem& previous = *m_items.back();
      pos = previous.GetPos() + std::max(previous.GetHeight(), 0);
    }
    item->SetPos(pos);
    m_items.push_back(std::move(item));
  }
  for (const auto& item : m_items) {
    const int needed = CaculateItemWidth(item.get()) + config->m_szTextOffset.cx + config->m_szTextOffset.cy +
                       2 * config->m_nIndent;
    if (needed > m_rcBounds.Width()) m_rcBounds.right = m_rcBounds.left + needed;
  }
}

int CUIMenu::CaculateItemWidth(MenuItem* item) {
  _MenuConfig* config = GetSkinConfig();
  if (!item || item->IsSeparator() || !config || !m_pDXCore) return 0;
  // Measured by the engine that draws it, in the format it is drawn with.
  CRect extent(0, 0, 0, 0);
  if (FAILED(m_pDXCore->MeasureText(item->GetCaption(), TextFont(*config), kTextFormat | DT_NOCLIP, &extent)))
    return 0;
  int width = extent.Width();
  if (!item->GetICONFile().IsEmpty() || item->GetICONImage()) width += kIconRoom;
  return width;
}

void CUIMenu::CaculateBounds() {
  if (m_items.empty()) {
    m_rcBounds.SetRect(0, 0, kEmptyMenuSize, kEmptyMenuSize);
    return;
  }
  const MenuItem& last = *m_items.back();
  m_rcBounds.bottom = last.GetPos() + std::max(last.GetHeight(), 0) + m_rcBounds.top + kBottomMargin;
}

HRGN CUIMenu::GetBoundsRGN() {
  if (m_rcBounds.IsRectEmpty()) CaculateBounds();
  return std::make_unique<Region>(m_rcBounds);
}

void CUIMenu::SetRGN() {
  HRGN region = GetBoundsRGN();
  region->Offset(m_ptOffset.x, m_ptOffset.y);
  SetWindowRgn(std::move(region), TRUE);
}

void CUIMenu::SetWndPosition(const CRect& rect) {
  const int x = std::max(0, static_cast<int>(rect.left - m_ptOffset.x));
  const int y = std::max(0, static_cast<int>(rect.top - m_ptOffset.y));
  MoveWindow(x, y, rect.Width() + 2 * m_ptOffset.x, rect.Height() + 2 * m_ptOffset.y, TRUE);
}

void CUIMenu::PopupMenu(int x, int y, int flags, CUIMenu* parentWindow, int activate) {
  CaculateBounds();
  m_pParentWnd = parentWindow;
  const int width = m_rcBounds.Width();
  const int height = m_rcBounds.Height();
  if (x + width >= GetSystemMetrics(SM_CXFULLSCREEN)) {
    x -= width;
    if (m_pParentWnd) x -= m_pParentWnd->m_rcBounds.Width();  // to the left of the parent
  }
  if (flags == MENU_POPUP_UPWARDS || y + height >= GetSystemMetrics(SM_CYFULLSCREEN)) {
    y -= height;
    // An upward sub-menu ends level with the entry it belongs to.
    if (m_pParentWnd && GetSkinConfig()) y += GetSkinConfig()->m_imgNormal.m_rcSrc.Height() + kUpwardsNudge;
  }
  SetWndPosition(CRect(x, y, x + width, y + height));
  SetWindowPos(HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW | (activate ? 0 : SWP_NOACTIVATE));
  // The keys come to the chain's root.
  if (activate && m_hWnd) SetFocus();
}

MenuItem* CUIMenu::GetItem(int index) const {
  if (index < 0 || index >= GetItemCount()) return nullptr;
  return m_items[static_cast<size_t>(index)].get();
}

int CUIMenu::GetItemFromPoint(const CPoint& point) const {
  if (m_items.empty() || point.x < 0 || point.x >= m_rcBounds.Width()) return -1;
  int low = 0;
  int high = GetItemCount() - 1;
  while (low <= high) {
    const int mid = (low + high) / 2;
    const MenuItem& item = *m_items[static_cast<size_t>(mid)];
    if (point.y < item.GetPos())
      high = mid - 1;
    else if (point.y >= item.GetPos() + std::max(item.GetHeight(), 0))
      low = mid + 1;
    else
      return mid;
  }
  return -1;
}

// --- drawing -----------------------------------------------------------------------------------

LRESULT CUIMenu::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  const bool activating = message == WM_ACTIVATE && LOWORD(wParam) != WA_INACTIVE;
  if (activating || message == WM_PAINT || message == WM_SHOWWINDOW) {
    OnPaint();
    return 1;
  }
  return CWnd::WindowProc(message, wParam, lParam);
}

BOOL CUIMenu::OnEraseBkgnd() { return TRUE; }  // the paint clears the whole back buffer

void CUIMenu::OnPaint() {
  CPaintDC scope(this);
  if (!m_pDXCore || CUISkinManager::GetInstance()->IsThemeChanging()) return;
  if (m_rcBounds.IsRectEmpty()) CaculateBounds();
  if (FAILED(m_pDXCore->BeginPaint())) return;
  m_pDXCore->CleanScreen(kEraseColour);
  RenderBounds();
  Render(m_rcBounds);
  if (m_pDXCore->EndPaint() == D3DERR_DEVICELOST) Invalidate(FALSE);
}

void CUIMenu::Render(const CRect& rect) { RenderItems(rect); }

void CUIMenu::RenderBounds() {
  if (_MenuConfig* config = GetSkinConfig()) config->m_imgBackground.Render(m_pDXCore.get(), m_rcBounds);
}

void CUIMenu::RenderItems(const CRect& rect) {
  for (const auto& item : m_items)
    if (item->GetValidEndPos() > rect.top && item->GetPos() < rect.bottom) RenderItem(item.get());
}

void CUIMenu::RenderItem(MenuItem* item) {
  if (!item) return;
  RenderItem(CRect(0, item->GetPos(), m_rcBounds.Width(), item->GetPos() + item->GetHeight()), item);
}

void CUIMenu::DrawStateImage(_ImageConfig& image, const CRect& box, int size) {
  CRect dest(box.left, 0, box.right, 0);
  const int height = std::min(static_cast<int>(image.m_rcSrc.Height()), size);
  dest.top = box.top + (box.Height() - height) / 2;
  dest.bottom = dest.top + height;
  image.Render(m_pDXCore.get(), dest, nullptr);
}

void CUIMenu::RenderItem(const CRect& rect, MenuItem* item) {
  _MenuConfig* config = GetSkinConfig();
  if (!config || !item || !m_pDXCore) return;
  DXCore* dx = m_pDXCore.get();
  const int indent = config->m_nIndent;
  const int size = config->m_nIconSize;
  // The right edge moves in by twice the indent and the left by one: kept so.
  CRect box(rect.left + indent, rect.top, rect.right - 2 * indent, rect.bottom);
  if (item->IsSeparator()) {
    config->m_imgSeperator.Render(dx, box, nullptr);
    return;
  }
  if (item->IsSel())
    config->m_imgFocused.Render(dx, box);
  else
    config->m_imgNormal.Render(dx, box, nullptr);

  int x = rect.left + indent + kMarkLeft;
  if (item->IsChecked()) {
    _ImageConfig& mark = config->m_imgChecked[StateOf(*item)];
    if (!mark.m_rcSrc.IsRectEmpty()) {
      // The left edge moves in by the inset but the right does not: kept so.
      const int width = std::min(static_cast<int>(mark.m_rcSrc.Width()), size);
      DrawStateImage(mark, CRect(x + kMarkInset, rect.top, x + width, rect.bottom), size);
      x += kMarkInset;
    }
  }
  int shift = 0;
  if (_ImageConfig* icon = item->GetICONImage()) {
    const int width = std::min(static_cast<int>(icon->m_rcSrc.Width()), size);
    DrawStateImage(*icon, CRect(x, rect.top, x + width, rect.bottom), size);
    shift = kIconRoom;
  }
  if (!item->GetICONFile().IsEmpty()) {
    const int top = rect.top + (rect.Height() - kIconFileSize) / 2;
    const CRect dest(x, top, x + kIconFileSize, top + kIconFileSize);
    dx->DrawImage(item->GetICONFile(), &dest, nullptr, nullptr, 0.0f, 0xFFFFFFFF, 0);
    shift = kIconRoom;  // one shift, even with an icon image as well
  }

  const CRect text(rect.left + config->m_szTextOffset.cx + indent + shift, rect.top, rect.right, rect.bottom);
  const DWORD colour = item->IsDisabled() ? config->m_clrTextDisable
                       : item->IsSel()    ? config->m_clrTextSel
                                          : config->m_clrText;
  dx->SetTransform(nullptr, nullptr, nullptr, 0.0f, nullptr);
  dx->DrawTextW(item->GetCaption(), text, TextFont(*config), kTextFormat, colour);

  if (item->HasSubMenus()) {
    _ImageConfig& arrow = config->m_imgSubmenu[StateOf(*item)];
    const int arrowWidth = std::min(static_cast<int>(config->m_imgSubmenu[kStateNormal].m_rcSrc.Width()), size);
    const int left = rect.right - indent - arrowWidth - kArrowRight;
    if (!arrow.m_rcSrc.IsRectEmpty()) {
      const int width = std::min(static_cast<int>(arrow.m_rcSrc.Width()), size);
      DrawStateImage(arrow, CRect(left, rect.top, left + width, rect.bottom), size);
    }
  }
}

// --- mouse -------------------------------------------------------------------------------------

void CUIMenu::RequestHoverAndLeave() {
  if (m_bTracking) return;
  TRACKMOUSEEVENT track;
  track.dwFlags = TME_HOVER | TME_LEAVE;
  track.hwndTrack = m_hWnd;
  track.dwHoverTime = kHoverTimeMs;
  m_bTracking = TrackMouseEvent(&track);
}

void CUIMenu::SelectItem(MenuItem* item) {
  if (item == m_pHoverItem) return;
  if (m_pHoverItem) {
    m_pHoverItem->SetSel(0);
    m_pHoverItem = nullptr;
  }
  if (item && !item->IsSeparator() && !item->IsDisabled()) {
    item->SetSel(1);
    m_pHoverItem = item;
  }
  CloseSubMenu();  // at once, not after a hover
  Invalidate(FALSE);
}

void CUIMenu::OnMouseMove(UINT, CPoint point) {
  Default();
  MenuItem* item = GetItemPtrFromPoint(point);
  if (!item || item == m_pHoverItem) return;
  SelectItem(item);
  RequestHoverAndLeave();
}

void CUIMenu::OnMouseHover(UINT, CPoint point) {
  MenuItem* item = GetItemPtrFromPoint(point);
  m_bTracking = FALSE;
  if (!item || item->IsSeparator() || item->IsDisabled()) return;
  if (item->HasSubMenus() && !m_pChildWnd) {
    OpenSubMenu(item);
    return;
  }
  if (m_pOwnerForm && m_pOwnerForm->GetSafeHwnd())
    m_pOwnerForm->PostMessage(UI_WM_MENUHOVER, static_cast<WPARAM>(item->GetMenu()->GetID()), 0);
  Invalidate(FALSE);
}

void CUIMenu::OnMouseLeave() {
  m_bTracking = FALSE;
  if (m_pChildWnd) return;  // the mouse went on into the sub-menu: its entry stays selected
  if (m_pHoverItem) m_pHoverItem->SetSel(0);
  m_pHoverItem = nullptr;
  Invalidate(FALSE);
}

void CUIMenu::OnLButtonUp(UINT, CPoint point) {
  Default();
  SetFocus();
  MenuItem* item = GetItemPtrFromPoint(point);
  if (item && !item->IsSeparator() && !item->IsDisabled() && !item->HasSubMenus()) InvokeItem(item);
}

void CUIMenu::InvokeItem(MenuItem* item) {
  CUIMenu* root = GetRootParent();
  IMenu::InvokeMenu(root->m_pMenu, item->GetMenu(), root);
}

void CUIMenu::OpenSubMenu(MenuItem* item) {
  if (!item || !m_hWnd) return;
  std::unique_ptr<CUIMenu, Releaser> child(new CUIMenu(kPublicCss));  // whatever this level's entry
  if (!child->Create(m_pOwnerForm)) return;
  child->SetOwnerForm(m_pOwnerForm);
  child->LoadMenuW(item->GetMenu());
  child->SetParentMenuWnd(this);
  m_pChildWnd = std::move(child);
  Invalidate(FALSE);
  CRect window;
  GetWindowRect(&window);
  window.OffsetRect(m_ptOffset.x, m_ptOffset.y);
  m_pChildWnd->PopupMenu(window.left + m_rcBounds.Width(), window.top + item->GetPos() - kSubMenuRaise, 0, this, 0);
}

void CUIMenu::CloseSubMenu() { m_pChildWnd.reset(); }

// --- activation and keys ------------------------------------------------------------------------

bool CUIMenu::ChainHolds(HWND hwnd) {
  for (CUIMenu* level = GetRootParent(); level; level = level->m_pChildWnd.get())
    if (level->m_hWnd == hwnd) return true;
  return false;
}

void CUIMenu::OnActivate(UINT state, CWnd* other, BOOL) {
  Default();
  if (state != WA_INACTIVE || !IsWindowVisible()) return;
  if (other && ChainHolds(other->m_hWnd)) return;  // e.g. a click into a sub-menu
  ReleaseAll();
}

BOOL CUIMenu::PreTranslateMessage(MSG* msg) {
  if (msg && msg->message == WM_KEYDOWN && msg->wParam == static_cast<WPARAM>(VK_ESCAPE)) {
    if (m_pOwnerForm && m_pOwnerForm->GetSafeHwnd()) m_pOwnerForm->PostMessage(UI_WM_RELEASEMENU);
    return TRUE;
  }
  return CWnd::PreTranslateMessage(msg);
}

CUIMenu* CUIMenu::KeyboardLevel() {
  CUIMenu* level = GetRootParent();
  while (level->m_pChildWnd) level = level->m_pChildWnd.get();
  return level;
}

void CUIMenu::StepSelection(int step) {
  const int count = GetItemCount();
  if (count == 0) return;
  int index = -1;
  for (int i = 0; i < count; ++i)
    if (GetItem(i) == m_pHoverItem) index = i;
  if (index < 0) index = step > 0 ? -1 : count;
  for (int n = 1; n <= count; ++n) {
    MenuItem* item = GetItem(((index + step * n) % count + count) % count);
    if (!item->IsSeparator() && !item->IsDisabled()) {
      SelectItem(item);
      return;
    }
  }
}

void CUIMenu::OnKeyDown(UINT key, UINT, UINT) {
  CUIMenu* level = KeyboardLevel();
  MenuItem* item = level->m_pHoverItem;
  switch (static_cast<int>(key)) {
    case VK_DOWN: level->StepSelection(1); break;
    case VK_UP: level->StepSelection(-1); break;
    case VK_LEFT:
      if (level->m_pParentWnd) level->m_pParentWnd->CloseSubMenu();
      break;
    case VK_RIGHT:
    case VK_RETURN:
      if (!item) break;
      if (item->HasSubMenus()) {
        level->OpenSubMenu(item);
        if (level->m_pChildWnd) level->m_pChildWnd->StepSelection(1);
      } else if (key == static_cast<UINT>(VK_RETURN)) {
        level->InvokeItem(item);  // this chain is gone afterwards
      }
      break;
    default: Default(); break;
  }
}

void CUIMenu::OnSize(UINT type, int cx, int cy) {
  CWnd::OnSize(type, cx, cy);
  if (cx <= 0 || cy <= 0) return;
  m_ptOffset = GetOffsetPtAux();
  SetRGN();
  if (m_pDXCore) m_pDXCore->ResetD3DSize({cx, cy});
}

// --- IMenu::PopupMenu ------------------------------------------------------------------------------

void IMenu::PopupMenu(CUIForm* owner, IMenu* menu, int x, int y, int flags, const CString& css) {
  // One chain per form: one still open goes first.
  if (owner && owner->GetActiveMenu()) owner->GetActiveMenu()->ReleaseAll();
  auto* window = new CUIMenu(css);
  if (!window->Create(owner)) {
    // Nothing is shown, and the tree was handed over.
    window->Release();
    if (menu) menu->Release();
    return;
  }
  window->SetOwnerForm(owner);
  window->LoadMenuW(menu);
  if (x == -1 || y == -1) {
    CPoint cursor;
    GetCursorPos(&cursor);
    x = cursor.x;
    y = cursor.y;
  }
  if (owner) owner->SetActiveMenu(window);
  window->PopupMenu(x, y, flags, nullptr, 1);
}

}  // namespace KarvelUI
