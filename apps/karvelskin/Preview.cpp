#include "Preview.h"

#include <memory>

#include <karvelui/DXCore.h>
#include <karvelui/IMenu.h>
#include <karvelui/MessageQueue.h>
#include <karvelui/SkinManager.h>
#include <karvelui/UIForm.h>
#include <karvelui/UIImageBase.h>
#include <karvelui/UIMenu.h>
#include <karvelui/XmlDocument.h>

using namespace KarvelUI;

namespace KarvelSkin {
namespace {

// The sample viewer's window: a host draws its own frame and caption.
constexpr DWORD kFormStyle = WS_POPUP | WS_THICKFRAME | WS_SYSMENU | WS_MINIMIZEBOX | WS_MAXIMIZEBOX;
constexpr int kCreateWidth = 960, kCreateHeight = 640;
// Paints until no more work is queued (a picture view loads in steps).
constexpr int kMaxPaintRounds = 50;
constexpr int kMenuX = 40, kMenuY = 40;  // client point the sample menu opens at

void NoCommand(IMenu*) {}

void PumpAndPaint(CUIForm& form) {
  for (int round = 0; round < kMaxPaintRounds; ++round) {
    MSG msg;
    bool any = false;
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
      any = true;
      if (!WalkPreTranslateTree(&msg)) DispatchMessageW(&msg);
    }
    form.OnPaint(0);
    if (!any) return;
  }
}

bool ReadBack(DXCore& core, Picture& out) {
  IDirect3DDevice9* device = core.GetD3DDevice();
  CSize size;
  if (!device || FAILED(device->ReadBackBuffer(out.pixels, size))) return false;
  out.width = size.cx;
  out.height = size.cy;
  return out.width > 0 && out.height > 0;
}

void ShowSamplePhoto(CUIForm& form, const CString& photo) {
  if (photo.IsEmpty()) return;
  CPtrArray controls;
  form.GetAllSubControls(controls);
  for (void* item : controls)
    if (auto* view = dynamic_cast<CUIImageBase*>(static_cast<CUIControl*>(item))) view->LoadImageW(photo, 0, 0, 0.0f, 1);
}

// A context menu with each kind of entry: checked, separator, plain, disabled, sub-menu.
void PaintSampleMenu(CUIForm& form, Picture& out) {
  const MenuHandler command(&NoCommand);
  IMenu* menu = new IMenu();
  menu->AddMenu(L"Fit to window", 1, 0, 1, command, CString());
  menu->AddMenu(L"", 0, 0, 0);
  menu->AddMenu(L"Actual size", 2, 0, 0, command, CString());
  menu->AddMenu(L"Print", 3, 1, 0, command, CString());
  IMenu* skins = menu->AddMenu(L"Skins", 4, 0, 0);
  skins->AddMenu(L"Graphite", 41, 0, 1, command, CString());
  CPoint at(kMenuX, kMenuY);
  form.ClientToScreen(&at);
  IMenu::PopupMenu(&form, menu, at.x, at.y, 0, CString());
  CUIMenu* popup = form.GetActiveMenu();
  if (!popup) return;
  popup->OnPaint();
  Picture picture;
  if (!ReadBack(*popup->GetRenderDevice(), picture)) return;
  CRect window;
  popup->GetWindowRect(&window);
  form.ScreenToClient(&window);
  out.Paste(picture, window.left, window.top);
}

}  // namespace

std::vector<CString> BuildFormIds() {
  std::vector<CString> ids;
  void* root = CUISkinManager::GetInstance()->GetBuildNode(L"BuildRoot");
  for (void* form = root ? CXmlDocument::GetFirstChild(root) : nullptr; form; form = CXmlDocument::GetNextSibling(form))
    ids.push_back(CXmlDocument::GetNodeName(form));
  return ids;
}

bool PaintForm(const CString& id, const PreviewOptions& options, Picture& out) {
  auto* form = new CUIForm();  // a form is freed through Release()
  form->SetObjectID(id);
  if (!form->Create(kFormStyle, L"KarvelSkinPreview", id, nullptr, 0, CRect(0, 0, kCreateWidth, kCreateHeight))) {
    form->Release();
    return false;
  }
  if (options.width > 0 && options.height > 0) {
    CRect client(0, 0, options.width, options.height);
    form->SetFormPosition(client);
  }
  ShowSamplePhoto(*form, options.photo);
  form->ShowWindow(SW_SHOW);
  PumpAndPaint(*form);
  const bool read = ReadBack(*form->GetRenderDevice(), out);
  if (read && options.menu) PaintSampleMenu(*form, out);
  form->Release();
  MSG msg;
  while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&msg);
  return read;
}

}  // namespace KarvelSkin
