#pragma once

// Full-window effects and the registry that keeps them by name. These
// classes stand outside the library's namespace. Nothing in the library
// makes or calls them: a host makes a manager and its effects, initialises
// each effect on a form's render device (which registers it), and asks it
// to draw.
//
//   CEffectsManager effects;
//   BandedSwirlEffect swirl;
//   if (swirl.Init(&effects, form->GetRenderDevice()) == 0) swirl.ApplyEffect(L"");
//
// The manager never deletes an effect: it only releases the effect's
// device resources (Release) when the effect is replaced, unregistered or
// when the manager is emptied or destroyed. The host deletes effect objects.

#include <map>

#include <karvelui/CString.h>
#include <karvelui/Export.h>
#include <karvelui/Types.h>

namespace KarvelUI {
class DXCore;
}

class CEffectsManager;

class KARVELUI_API IKarvelEffect {
 public:
  IKarvelEffect() = default;
  virtual ~IKarvelEffect() = default;
  IKarvelEffect(const IKarvelEffect&) = default;
  IKarvelEffect& operator=(const IKarvelEffect&) = default;

  // Prepares the effect on `device` and registers it with `manager`:
  // 0, or a negative result when it cannot draw.
  virtual int Init(CEffectsManager* manager, KarvelUI::DXCore* device) = 0;
  // Draws one frame of the effect and presents it.
  virtual void ApplyEffect(KarvelUI::CString path) = 0;
  // Releases the device resources; the object stays.
  virtual void Release() = 0;

 protected:
  KarvelUI::DXCore* m_pDevice = nullptr;  // not owned
  CEffectsManager* m_pManager = nullptr;  // not owned
};

class KARVELUI_API CEffectsManager {
 public:
  CEffectsManager() = default;
  // Releases every registered effect (ReleaseAll).
  virtual ~CEffectsManager();
  CEffectsManager(const CEffectsManager&) = delete;
  CEffectsManager& operator=(const CEffectsManager&) = delete;

  void Init() {}
  // An effect already registered under `name` is released first.
  void RegisterEffect(KarvelUI::CString name, IKarvelEffect* effect);
  // Removes and releases the effect of `name`; nothing when there is none.
  void UnRegisterEffect(KarvelUI::CString name);
  IKarvelEffect* FindEffect(KarvelUI::CString name);
  // Null when `index` is past the last entry; otherwise the effect whose name
  // sorts first, whatever the index.
  IKarvelEffect* GetEffect(KarvelUI::UINT index);
  // Releases every effect in name order and empties the registry.
  void ReleaseAll();

 private:
  std::map<KarvelUI::CString, IKarvelEffect*> m_mapEffects;  // case-sensitive order; not owned
};
