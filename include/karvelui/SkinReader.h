#pragma once

// CSkinReader: the typed view of one element of a skin file. It fixes how
// numbers, colours, rectangles, fonts and images are written in a skin:
//
//   number      "%d" (GetInt), "%i" (GetDWORD: 0x.. hex, leading 0 octal),
//               "%f" (GetReal); text that is no number leaves the output
//   pair        "x, y" (GetSize, GetPoint)
//   colour      "r, g, b" decimal, each reduced to 8 bits, alpha always FF
//   rectangle   "a, b, c, d": left, top, right, bottom when absolute, else
//               x, y, width, height
//   boolean     T / true / F / false in any case, nothing else
// List items are separated by ',' and optional white space (ValueScanner.h).
//
// Every getter returns 1 when the key was found and 0 otherwise; a getter
// returning 0 leaves its output alone (GetString excepted). Keys are exact,
// keywords are compared without regard to case. The default-skin flag says
// which skin's image folder relative image names resolve in (1: "Default",
// 0: the current skin); it is handed to CUISkinManager::TranslatePath.
// A reader never logs and never owns its node. Reads need a non-null node.

#include <karvelui/Base.h>
#include <karvelui/ImageConfig.h>
#include <karvelui/SkinTypes.h>

namespace KarvelUI {

// What a getter takes a key's value to be. Child names an element asked for
// (a font, an image, a group); Picture is an image's "File", SourceRect a
// rectangle of that picture (an image's "Rect", a state, an edge piece).
// A key may be reported more than once; the later kinds of this list are
// the more precise (a "File" is a String and a Picture).
enum class SkinKeyKind {
  Child, String, Int, Number, Real, Bool, Size, Point, Color, Rect,
  SourceRect, Picture, FontFace, DockStyle, AnchorStyle,
};

// Recording mode, for tools that check skins: while a CSkinKeyRecording is
// alive, every key a reader on the same thread asks for is reported to its
// recorder, found or not, so a record's Read() tells which keys it knows
// and what it takes them to be.
class KARVELUI_API ISkinKeyRecorder {
 public:
  virtual ~ISkinKeyRecorder() = default;
  virtual void OnSkinKey(void* node, const CString& key, SkinKeyKind kind) = 0;
};

class KARVELUI_API CSkinKeyRecording {
 public:
  explicit CSkinKeyRecording(ISkinKeyRecorder& recorder);
  ~CSkinKeyRecording();  // the recorder before this one is back
  CSkinKeyRecording(const CSkinKeyRecording&) = delete;
  CSkinKeyRecording& operator=(const CSkinKeyRecording&) = delete;

 private:
  ISkinKeyRecorder* m_pPrevious;
};

class KARVELUI_API CSkinReader {
 public:
  CSkinReader() = default;
  explicit CSkinReader(void* node) : m_pNode(node) {}
  CSkinReader(void* node, int fromDefaultSkin) : m_pNode(node), m_bDefaultSkin(fromDefaultSkin) {}

  int IsValid() const { return m_pNode ? 1 : 0; }
  void* GetNode() const { return m_pNode; }
  int IsDefaultSkin() const { return m_bDefaultSkin; }

  // child = reader on the first child element `name`, with this reader's
  // flag; 0 (child untouched) when there is none.
  int FindChild(CSkinReader& child, const CString& name) const;
  CString TranslatePath(const CString& path) const;

  // Attribute `key`, or the element's text for an empty key. out is always
  // assigned; 1 only when it is not empty.
  int GetString(CString& out, const CString& key) const;
  int GetInt(int& out, const CString& key) const;
  int GetDWORD(DWORD& out, const CString& key) const;
  int GetReal(float& out, const CString& key) const;
  int GetBool(int& out, const CString& key) const;
  int GetSize(CSize& out, const CString& key) const;
  int GetPoint(CPoint& out, const CString& key) const;
  int GetColor(DWORD& out, const CString& key) const;
  int GetRect(CRect& out, const CString& key, int absolute) const;
  // Attributes "left", "mid", "right" of this element (absolute
  // rectangles); a missing one leaves its rectangle. Always 1.
  int GetEdge(CEdge& edge) const;

  // Child `name` with "TextColor", "FontFace", "FontSize" (the height as
  // written) and "FontBold" (true sets weight 700, false changes nothing),
  // read onto the font and colour given.
  int GetFont(LOGFONTW& font, DWORD& color, const CString& name) const;
  // The same four keys of this element itself.
  void GetFontKeys(LOGFONTW& font, DWORD& color) const;
  // Child `name` with "File" (translated), "Rect" (absolute), "Color".
  int GetImage(_ImageConfig& image, const CString& name) const;
  // As above, plus the pieces "left", "mid", "right" and "Hor"; the source
  // rectangle always ends as the pieces' total size.
  int GetImage(_ImageEdgeConfig& image, const CString& name) const;
  // As the plain image, plus the edges "EdgeTop", "EdgeLeft", "EdgeRight",
  // "EdgeBottom", "EdgeCenter" (child elements); then Caculate().
  int GetImage(_ImageBorderConfig& image, const CString& name) const;
  // One file, one rectangle per state key; states whose key is missing are
  // left alone. five: "Normal", "Focus", "Press", "Disable", "KBFocus".
  int Get5StateImage(_ImageConfig* five, const CString& name) const;
  // six: "UncheckNormal", "UncheckHover", "CheckNormal", "CheckHover",
  // "UncheckDisable", "CheckDisable".
  int Get6StateImage(_ImageConfig* six, const CString& name) const;
  // Layout keys of this element onto data; nothing for a null data.
  void GetAssData(_AssData* data) const;

 private:
  // Tells the recording, if any, that key was asked for as kind.
  void Note(const CString& key, SkinKeyKind kind) const;
  int GetStateImages(_ImageConfig* states, const wchar_t* const* keys, int count, const CString& name) const;

  void* m_pNode = nullptr;
  int m_bDefaultSkin = 1;
};

}  // namespace KarvelUI
