// The smallest host: device object, string table, skin data, one form,
// one painted frame read back. Prints the frame's size and the pixel in the
// middle of the caption band.
#include <cstdio>
#include <vector>

#include <karvelui/CommonString.h>
#include <karvelui/DXCore.h>
#include <karvelui/MessageQueue.h>
#include <karvelui/SkinManager.h>
#include <karvelui/UIForm.h>
#include <karvelui/UIManager.h>

using namespace KarvelUI;

int main() {
  if (FAILED(DXCore::InitInstance())) return 1;
  CommonString* strings = CommonString::GetInstance();
  strings->LoadStringTable(strings->GetAppPath() + L"KarvelView.lng");
  if (!CUISkinManager::GetInstance()->InitSkinData()) return 2;

  auto* form = new CUIForm();
  form->SetObjectID(L"MainForm");
  if (!form->Create(WS_POPUP, L"HostForm", L"Host", nullptr, 0, CRect(0, 0, 320, 200))) return 3;
  form->ShowWindow(SW_SHOW);
  MSG msg;
  while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&msg);
  form->OnPaint(0);

  std::vector<DWORD> pixels;
  CSize size;
  const HRESULT read = form->GetRenderDevice()->GetD3DDevice()->ReadBackBuffer(pixels, size);
  form->Release();
  CUISkinManager::FreeInstance();
  CUIManager::FreeInstance();
  CommonString::FreeInstance();
  DXCore::ExitInstance();
  if (FAILED(read) || size.cx < 2 || size.cy < 17) return 4;
  std::printf("host: %ldx%ld caption %08X\n", static_cast<long>(size.cx), static_cast<long>(size.cy),
              static_cast<unsigned>(pixels[16 * size.cx + size.cx / 2]));
  return 0;
}
