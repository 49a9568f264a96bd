#pragma once

// Shared pieces of the animation tests: stand-in forms, a board that logs
// its callbacks and destruction, and a window that routes the animation
// timer and marked paints the way a form does. Time runs on ManualClock.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <karvelui/AnimationController.h>
#include <karvelui/WinConstants.h>
#include "support/WindowTesting.h"

namespace KarvelTest {

using Log = std::vector<std::string>;

// The animation layer only passes forms around; it never enters one. Each
// stand-in form owns at most one controller, found through the resolver the
// form layer would install.
inline char g_fakeForms[2];
inline AnimationController* g_fakeFormControllers[2];

inline CUIForm* FakeForm(int index = 0) { return reinterpret_cast<CUIForm*>(&g_fakeForms[index]); }

struct ControllerRelease {
  void operator()(AnimationController* controller) const {
    for (AnimationController*& slot : g_fakeFormControllers)
      if (slot == controller) slot = nullptr;
    controller->Release();
  }
};
using ControllerPtr = std::unique_ptr<AnimationController, ControllerRelease>;

// A controller owned by stand-in form `index`.
inline ControllerPtr NewController(int index = 0) {
  AnimationController::SetFormResolver([](CUIForm* form) {
    return form == FakeForm(0) ? g_fakeFormControllers[0] : form == FakeForm(1) ? g_fakeFormControllers[1] : nullptr;
  });
  return ControllerPtr(g_fakeFormControllers[index] = new AnimationController(FakeForm(index)));
}

// Logs "<name>:completed" / "<name>:changed" and counts its destructions.
class LoggingBoard : public AnimationBoard {
 public:
  LoggingBoard(std::string name, Log* log, int* destroyed = nullptr)
      : m_name(std::move(name)), m_log(log), m_destroyed(destroyed) {
    SetCallbackCompleted(AnimationCompletedCallback(this, &LoggingBoard::OnCompleted));
    SetCallbackValueChanged(AnimationValueChangedCallback(this, &LoggingBoard::OnChanged));
  }
  ~LoggingBoard() override {
    if (m_destroyed) ++*m_destroyed;
  }
  // Moves `value` linearly from `from` to `to` over ms.
  LoggingBoard& Animate(double from, double to, std::int64_t ms) {
    SetTarget(&value, 1, TARGET_DOUBLE);
    SetFormula(FORMULA_LINEAR);
    SetRange(AnimationRange(from, to, 1.0), 0);
    SetDuration(CUITimeSpan(ms));
    return *this;
  }

  double value = 0.0;
  std::vector<double> oldValues, newValues;
  std::function<void()> onCompleted;  // runs inside the callback, after the log line

 private:
  void OnCompleted() {
    m_log->push_back(m_name + ":completed");
    if (onCompleted) onCompleted();
  }
  void OnChanged(double* before, double* after, unsigned count) {
    m_log->push_back(m_name + ":changed");
    oldValues.assign(before, before + count);
    newValues.assign(after, after + count);
  }

  std::string m_name;
  Log* m_log;
  int* m_destroyed;
};

// Sends the animation timer to OnTimer and, after painting a paint marked
// with its id, calls AfterRefresh, as a form does. Painting costs paintCostMs.
class FormWindow : public CWnd {
 public:
  using Received = std::pair<UINT, WPARAM>;  // timer and paint messages, with their wParam

  FormWindow(AnimationController* controller, ManualClock* clock) : m_controller(controller), m_clock(clock) {
    MakeWindow(*this, CRect(0, 0, 64, 64));
    controller->SetWnd(m_hWnd);
  }

  std::int64_t paintCostMs = 0;

  // Dispatches everything due now; returns the timer and paint messages seen.
  std::vector<Received> Pump() {
    m_seen.clear();
    MSG msg;
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&msg);
    return m_seen;
  }

  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message != WM_TIMER && message != WM_PAINT) return CWnd::WindowProc(message, wParam, lParam);
    m_seen.emplace_back(message, wParam);
    if (message == WM_TIMER && wParam == ANIMATION_TIMER_ID) m_controller->OnTimer(FakeForm());
    if (message == WM_PAINT) {
      {
        CPaintDC dc(this);
        m_clock->Advance(paintCostMs);
      }
      if (wParam == ANIMATION_TIMER_ID) m_controller->AfterRefresh();
    }
    return 0;
  }

 private:
  AnimationController* m_controller;
  ManualClock* m_clock;
  std::vector<Received> m_seen;
};

}  // namespace KarvelTest
