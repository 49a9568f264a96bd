#pragma once

// CToolTipCtrl: the tooltip control each form owns. It keeps a list of
// tools (rectangles of a window, or whole windows), follows the mouse
// messages its owner relays before dispatching them, and after the cursor
// rests on a tool for the initial delay shows a small popup with the tool's
// text below-right of the cursor. The popup never takes activation or focus
// and is drawn through a render device of its own.
//
// Timing:
// - Entering a tool starts the initial delay; moving within it does not.
// - Entering another tool hides a shown tip at once. The next tip comes
//   after the reshow delay when a tip was showing at that moment or was
//   hidden less than a reshow delay before (the user is reading along a row
//   of tools); otherwise after the initial delay again.
// - A shown tip hides after the auto-pop delay and stays hidden while the
//   cursor stays in that tool.
// - A button press hides the tip and keeps it hidden until the cursor goes
//   to another tool (or leaves all tools and comes back).
// - WM_MOUSELEAVE of the current tool's window hides the tip. The control
//   does not request leave notifications itself, since the window layer
//   tracks one window at a time and the owner (the form) tracks its own.
// - Mouse input on the popup itself hides it.
//
// Without a render device (none could be made) tools and timers are kept
// as usual but no popup appears.

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <karvelui/Export.h>
#include <karvelui/Wnd.h>

namespace KarvelUI {

class DXCore;

// Control styles.
inline constexpr DWORD TTS_ALWAYSTIP = 0x01;  // tips also while the owner is not the active window
inline constexpr DWORD TTS_NOPREFIX = 0x02;   // accepted; "&" is never taken as a prefix anyway

// Delay kinds for SetDelayTime / GetDelayTime.
inline constexpr DWORD TTDT_AUTOMATIC = 0;
inline constexpr DWORD TTDT_RESHOW = 1;
inline constexpr DWORD TTDT_AUTOPOP = 2;
inline constexpr DWORD TTDT_INITIAL = 3;

// Tool flags.
inline constexpr UINT TTF_IDISHWND = 0x0001;  // the tool is a whole window; uId is its handle

// One tool. For a whole-window tool hwnd is that window, uId its handle as
// a number and rect is unused.
struct CToolInfo {
  UINT uFlags = 0;
  HWND hwnd = nullptr;
  UINT_PTR uId = 0;
  CRect rect;  // client coordinates of hwnd
  CString strText;
};

class CToolTipCtrl : public CWnd {
 public:
  CToolTipCtrl();
  ~CToolTipCtrl() override;

  // Makes the hidden popup, owned by owner's top-level window, and its render
  // device. FALSE when the control exists already or the window cannot be made.
  BOOL Create(CWnd* owner, DWORD style = 0);

  // The automatic delay: initial = ms, auto-pop = 10 x ms, reshow = ms / 5.
  void SetDelayTime(UINT ms);
  // One delay (TTDT_*); a negative ms restores that delay's default (with
  // TTDT_AUTOMATIC all three: 500, 5000, 100).
  void SetDelayTime(DWORD which, int ms);
  // TTDT_AUTOMATIC reads the initial delay; 0 for an unknown kind.
  int GetDelayTime(DWORD which) const;

  // An inactive control hides its tip and shows none until activated again.
  void Activate(BOOL active);

  // A rectangle of wnd's client area (null: empty until SetToolRect), named
  // by (wnd, toolId). Adding an existing tool again replaces its text and rectangle.
  BOOL AddTool(CWnd* wnd, const CString& text, const CRect* toolRect, UINT_PTR toolId);
  // The whole window wnd as a tool (TTF_IDISHWND, uId = its handle).
  BOOL AddTool(CWnd* wnd, const CString& text);
  // In the calls below toolId 0 names wnd's whole-window tool (so does its
  // handle), unless a rectangle tool with id 0 exists. Unknown tools are ignored.
  void DelTool(CWnd* wnd, UINT_PTR toolId = 0);
  BOOL GetToolInfo(CToolInfo& out, CWnd* wnd, UINT_PTR toolId = 0) const;
  void SetToolRect(CWnd* wnd, UINT_PTR toolId, const CRect& rect);
  // A tip showing this tool changes at once (and hides for an empty text).
  void UpdateTipText(const CString& text, CWnd* wnd, UINT_PTR toolId = 0);
  int GetToolCount() const { return static_cast<int>(m_tools.size()); }

  // The owner passes every message here before dispatching it.
  void RelayEvent(const MSG* msg);

  BOOL IsTipShown() const;
  // The text of the tip on screen; empty when none is shown.
  CString GetShownText() const;
  // The popup's render device; null before Create or when none could be made.
  DXCore* GetRenderDevice() const { return m_core.get(); }

 protected:
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
  void OnDestroy() override;
  void OnSize(UINT type, int cx, int cy) override;
  void OnTimer(UINT_PTR id) override;
  void OnPaint() override;

 private:
  struct ToolKey {
    HWND hwnd = nullptr;
    UINT_PTR id = 0;
    bool operator==(const ToolKey&) const = default;
  };

  using CWnd::Create;  // the window-class form is not for tooltips

  void CreateRenderDevice();
  int IndexOf(HWND hwnd, UINT_PTR toolId) const;
  const CToolInfo* ToolAt(HWND hwnd, const CPoint& point) const;
  const CToolInfo* CurrentTool() const;
  static ToolKey KeyOf(const CToolInfo& tool) { return {tool.hwnd, tool.uId}; }
  BOOL StoreTool(const CToolInfo& tool);
  void SetToolText(size_t index, const CString& text);

  void OnRelayedMove(HWND hwnd, const CPoint& point);
  void OnRelayedPress(HWND hwnd, const CPoint& point);
  void OnRelayedLeave(HWND hwnd);
  void EnterTool(const ToolKey& key);
  void ForgetTool();

  bool OwnerAllowsTips() const;
  bool CanShow(const CToolInfo& tool) const;
  bool RecentlyHidden() const;
  void ShowTip();
  void LayOutTip(const CString& text);
  void HideTip();
  void StopTimers();
  CSize TextExtent(const CString& text);
  void PaintTip();

  std::unique_ptr<DXCore> m_core;
  HWND m_owner = nullptr;  // top-level owner, for the active-window rule
  DWORD m_style = 0;
  bool m_active = true;
  int m_initialMs = 0;  // the constructor sets the defaults
  int m_autoPopMs = 0;
  int m_reshowMs = 0;
  std::vector<CToolInfo> m_tools;     // in the order added; the first hit wins
  std::optional<ToolKey> m_current;   // tool under the cursor
  std::optional<ToolKey> m_suppressed;  // pressed in; no tip until another tool
  CPoint m_cursor;                    // last relayed cursor position, screen
  CString m_shownText;
  std::optional<std::uint64_t> m_lastHideMs;
  LOGFONTW m_font;
};

}  // namespace KarvelUI
