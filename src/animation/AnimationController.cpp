#include <karvelui/AnimationController.h>

#include <algorithm>
#include <atomic>
#include <mutex>

#include <karvelui/WinConstants.h>
#include <karvelui/BackUpdateTask.h>
#include <karvelui/MessageQueue.h>

namespace KarvelUI {
namespace {
std::atomic<AnimationController::FormResolver> g_formResolver{nullptr};
}  // namespace

AnimationController::AnimationController(CUIForm* form) : m_pForm(form) {}

AnimationController::~AnimationController() {
  UILock lock(&m_lock);
  // A window that outlives its controller must not tick into it.
  if (m_hWnd) KillTimer(m_hWnd, ANIMATION_TIMER_ID);
  std::vector<AnimationBoard*> boards;
  boards.swap(m_boards);
  for (AnimationBoard* board : boards) {
    board->m_pController = nullptr;
    if (!board->GetIsControllable()) board->Release();
  }
  ReleaseDeferred();
}

void AnimationController::SetFormResolver(FormResolver resolver) { g_formResolver.store(resolver); }

AnimationController* AnimationController::FromForm(CUIForm* form) {
  const FormResolver resolver = g_formResolver.load();
  return form && resolver ? resolver(form) : nullptr;
}

void AnimationController::Release() { delete this; }

void AnimationController::SetWnd(HWND hwnd) {
  UILock lock(&m_lock);
  m_hWnd = hwnd;
}

HWND AnimationController::GetWnd() const {
  UILock lock(&m_lock);
  return m_hWnd;
}

unsigned AnimationController::GetBoardCount() const {
  UILock lock(&m_lock);
  return static_cast<unsigned>(m_boards.size());
}

bool AnimationController::Contains(const AnimationBoard* board) const {
  return std::find(m_boards.begin(), m_boards.end(), board) != m_boards.end();
}

bool AnimationController::Unlink(AnimationBoard* board) {
  const auto end = std::remove(m_boards.begin(), m_boards.end(), board);
  const bool listed = end != m_boards.end();
  m_boards.erase(end, m_boards.end());
  if (board->m_pController.load() == this) board->m_pController = nullptr;
  return listed;
}

void AnimationController::ReleaseIfOwned(AnimationBoard* board) {
  if (board->GetIsControllable()) return;
  if (m_nTickDepth == 0) {
    board->Release();
    return;
  }
  // The board may be the one whose callback is running right now.
  if (std::find(m_releaseAfterTick.begin(), m_releaseAfterTick.end(), board) == m_releaseAfterTick.end())
    m_releaseAfterTick.push_back(board);
}

void AnimationController::ReleaseDeferred() {
  std::vector<AnimationBoard*> boards;
  boards.swap(m_releaseAfterTick);
  for (AnimationBoard* board : boards) board->Release();
}

bool AnimationController::ArmTimer(UINT elapse) {
  if (!m_hWnd) return false;
  if (SetTimer(m_hWnd, ANIMATION_TIMER_ID, elapse, nullptr)) return true;
  // Timers belong to the window's thread. From any other thread (the
  // thumbnail loader) ask for the first tick at once instead; the window's
  // thread arms the real timer after that tick's paint.
  return PostMessageW(m_hWnd, WM_TIMER, ANIMATION_TIMER_ID, 0) != FALSE;
}

void AnimationController::Begin(AnimationBoard* board, int startTimer) {
  if (!board) return;
  UILock lock(&m_lock);
  Unlink(board);
  m_boards.push_back(board);
  board->m_pController = this;
  if (!m_bTimerRunning && startTimer && ArmTimer(ANIMATION_FRAME_INTERVAL)) m_bTimerRunning = 1;
}

void AnimationController::Stop(AnimationBoard* board) {
  if (!board) return;
  UILock lock(&m_lock);
  Unlink(board);
  ReleaseIfOwned(board);
}

void AnimationController::AdvanceBoards(CUIForm* form) {
  // Callbacks may begin, stop or destroy boards while the list is walked:
  // walk the boards listed when the tick began and skip those gone since.
  // Boards begun during the tick get their first frame on the next one.
  const std::vector<AnimationBoard*> ticking = m_boards;
  for (AnimationBoard* board : ticking) {
    if (!Contains(board)) continue;
    if (board->GetState() == ANIMATION_RUNNING) board->NextFrame(form);
    if (!Contains(board)) continue;  // its own callback took it off
    if (board->GetState() == ANIMATION_STOPPED) {
      Unlink(board);
      ReleaseIfOwned(board);
    }
  }
}

void AnimationController::OnTimer(CUIForm* form) {
  UILock lock(&m_lock);
  // One shot: AfterRefresh arms the next tick once this frame is drawn.
  if (m_hWnd) KillTimer(m_hWnd, ANIMATION_TIMER_ID);
  m_lastTick.Now();

  ++m_nTickDepth;
  AdvanceBoards(form);
  --m_nTickDepth;
  if (m_nTickDepth == 0) ReleaseDeferred();

  // Posted even when no board is left, so the final frame is drawn.
  if (m_hWnd) PostMessageW(m_hWnd, WM_PAINT, ANIMATION_TIMER_ID, 0);
}

void AnimationController::AfterRefresh() {
  // Under the lock so that a Begin from another thread either sees the
  // flag cleared (and arms the timer) or has its board seen here.
  UILock lock(&m_lock);
  if (m_boards.empty()) {
    m_bTimerRunning = 0;
    return;
  }
  CUITime now;
  now.Now();
  const DWORD elapsed = (now - m_lastTick).GetTotalMillisecond();
  const UINT rest = elapsed >= ANIMATION_FRAME_INTERVAL ? 1 : ANIMATION_FRAME_INTERVAL - elapsed;
  m_bTimerRunning = ArmTimer(rest) ? 1 : 0;
}

}  // namespace KarvelUI
