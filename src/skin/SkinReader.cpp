#include <karvelui/SkinReader.h>

#include <algorithm>
#include <cstdint>
#include <cwchar>

#include <karvelui/SkinManager.h>
#include "skin/ValueScanner.h"
#include <karvelui/XmlDocument.h>

namespace KarvelUI {
namespace {

constexpr const wchar_t* kFiveStates[] = {L"Normal", L"Focus", L"Press", L"Disable", L"KBFocus"};
constexpr const wchar_t* kSixStates[] = {L"UncheckNormal", L"UncheckHover", L"CheckNormal",
                                         L"CheckHover",    L"UncheckDisable", L"CheckDisable"};

struct StyleKeyword {
  const wchar_t* text;
  int value;
};
constexpr StyleKeyword kDockStyles[] = {
    {L"top", DOCK_TOP},   {L"bottom", DOCK_BOTTOM}, {L"left", DOCK_LEFT}, {L"right", DOCK_RIGHT},
    {L"hor", DOCK_HOR},   {L"ver", DOCK_VER},       {L"fill", DOCK_FILL}, {L"caption", DOCK_CAPTION},
};
constexpr StyleKeyword kAnchorStyles[] = {
    {L"topleft", ANCHOR_TOPLEFT},         {L"topright", ANCHOR_TOPRIGHT},   {L"bottomleft", ANCHOR_BOTTOMLEFT},
    {L"bottomright", ANCHOR_BOTTOMRIGHT}, {L"topcenter", ANCHOR_TOPCENTER}, {L"center", ANCHOR_CENTER},
    {L"bottomcenter", ANCHOR_BOTTOMCENTER},
};

template <size_t N>
void ApplyStyleKeyword(const CString& text, const StyleKeyword (&table)[N], int& style) {
  for (const StyleKeyword& keyword : table) {
    if (text.CompareNoCase(keyword.text) == 0) {
      style = keyword.value;
      return;
    }
  }
}

void CopyFaceName(LOGFONTW& font, const CString& face) {
  // A longer name is a skin error; keep what fits with its terminator.
  const size_t length = std::min<size_t>(face.GetLength(), LF_FACESIZE - 1);
  std::wmemcpy(font.lfFaceName, face.GetString(), length);
  font.lfFaceName[length] = L'\0';
}

thread_local ISkinKeyRecorder* t_recorder = nullptr;

}  // namespace

CSkinKeyRecording::CSkinKeyRecording(ISkinKeyRecorder& recorder) : m_pPrevious(t_recorder) {
  t_recorder = &recorder;
}

CSkinKeyRecording::~CSkinKeyRecording() { t_recorder = m_pPrevious; }

void CSkinReader::Note(const CString& key, SkinKeyKind kind) const {
  if (t_recorder && m_pNode) t_recorder->OnSkinKey(m_pNode, key, kind);
}

int CSkinReader::FindChild(CSkinReader& child, const CString& name) const {
  Note(name, SkinKeyKind::Child);
  void* node = CXmlDocument::GetFirstChild(m_pNode, name);
  if (!node) return 0;
  child = CSkinReader(node, m_bDefaultSkin);
  return 1;
}

CString CSkinReader::TranslatePath(const CString& path) const {
  return CUISkinManager::GetInstance()->TranslatePath(path, m_bDefaultSkin);
}

int CSkinReader::GetString(CString& out, const CString& key) const {
  if (!key.IsEmpty()) Note(key, SkinKeyKind::String);
  out = key.IsEmpty() ? CXmlDocument::GetNodeText(m_pNode) : CXmlDocument::GetNodeAttribute(m_pNode, key);
  return out.IsEmpty() ? 0 : 1;
}

int CSkinReader::GetInt(int& out, const CString& key) const {
  Note(key, SkinKeyKind::Int);
  CString text;
  if (!GetString(text, key)) return 0;
  ValueScanner(text).ReadInt(out);
  return 1;
}

int CSkinReader::GetDWORD(DWORD& out, const CString& key) const {
  Note(key, SkinKeyKind::Number);
  CString text;
  if (!GetString(text, key)) return 0;
  std::int32_t value = 0;
  if (ValueScanner(text).ReadAutoBaseInt(value)) out = static_cast<DWORD>(value);
  return 1;
}

int CSkinReader::GetReal(float& out, const CString& key) const {
  Note(key, SkinKeyKind::Real);
  CString text;
  if (!GetString(text, key)) return 0;
  ValueScanner(text).ReadFloat(out);
  return 1;
}

int CSkinReader::GetBool(int& out, const CString& key) const {
  Note(key, SkinKeyKind::Bool);
  CString text;
  if (!GetString(text, key)) return 0;
  if (text.CompareNoCase(L"T") == 0 || text.CompareNoCase(L"true") == 0) {
    out = 1;
    return 1;
  }
  if (text.CompareNoCase(L"F") == 0 || text.CompareNoCase(L"false") == 0) {
    out = 0;
    return 1;
  }
  return 0;
}

int CSkinReader::GetSize(CSize& out, const CString& key) const {
  Note(key, SkinKeyKind::Size);
  CString text;
  if (!GetString(text, key)) return 0;
  std::int32_t values[2] = {out.cx, out.cy};  // components not reached stay as they were
  ValueScanner::ReadIntList(text, values, 2);
  out = CSize(values[0], values[1]);
  return 1;
}

int CSkinReader::GetPoint(CPoint& out, const CString& key) const {
  Note(key, SkinKeyKind::Point);
  CString text;
  if (!GetString(text, key)) return 0;
  std::int32_t values[2] = {};
  ValueScanner::ReadIntList(text, values, 2);
  out = CPoint(values[0], values[1]);
  return 1;
}

int CSkinReader::GetColor(DWORD& out, const CString& key) const {
  Note(key, SkinKeyKind::Color);
  CString text;
  if (!GetString(text, key)) return 0;
  std::int32_t rgb[3] = {};
  ValueScanner::ReadIntList(text, rgb, 3);
  const auto low8 = [](std::int32_t v) { return static_cast<DWORD>(v) & 0xFF; };
  out = 0xFF000000u | (low8(rgb[0]) << 16) | (low8(rgb[1]) << 8) | low8(rgb[2]);
  return 1;
}

int CSkinReader::GetRect(CRect& out, const CString& key, int absolute) const {
  Note(key, SkinKeyKind::Rect);
  CString text;
  if (!GetString(text, key)) return 0;
  std::int32_t v[4] = {};
  ValueScanner::ReadIntList(text, v, 4);
  if (absolute)
    out.SetRect(v[0], v[1], v[2], v[3]);
  else
    out.SetRect(v[0], v[1], v[0] + v[2], v[1] + v[3]);
  return 1;
}

int CSkinReader::GetEdge(CEdge& edge) const {
  for (const wchar_t* piece : {L"left", L"mid", L"right"}) Note(piece, SkinKeyKind::SourceRect);
  GetRect(edge.left, L"left", 1);
  GetRect(edge.mid, L"mid", 1);
  GetRect(edge.right, L"right", 1);
  return 1;
}

int CSkinReader::GetFont(LOGFONTW& font, DWORD& color, const CString& name) const {
  CSkinReader child;
  if (!FindChild(child, name)) return 0;
  child.GetFontKeys(font, color);
  return 1;
}

void CSkinReader::GetFontKeys(LOGFONTW& font, DWORD& color) const {
  GetColor(color, L"TextColor");
  CString face;
  Note(L"FontFace", SkinKeyKind::FontFace);
  if (GetString(face, L"FontFace")) CopyFaceName(font, face);
  int size = 0;
  if (GetInt(size, L"FontSize")) font.lfHeight = size;
  int bold = 0;
  if (GetBool(bold, L"FontBold") && bold) font.lfWeight = FW_BOLD;
}

int CSkinReader::GetImage(_ImageConfig& image, const CString& name) const {
  CSkinReader child;
  if (!FindChild(child, name)) return 0;
  CString file;
  child.Note(L"File", SkinKeyKind::Picture);
  if (!child.GetString(file, L"File")) return 0;
  const CString path = child.TranslatePath(file);
  if (!path.IsEmpty()) image.m_strFile = path;
  CRect source;
  child.Note(L"Rect", SkinKeyKind::SourceRect);
  if (child.GetRect(source, L"Rect", 1)) image.m_rcSrc = source;
  child.GetDWORD(image.m_dwColor, L"Color");
  return 1;
}

int CSkinReader::GetImage(_ImageEdgeConfig& image, const CString& name) const {
  CSkinReader child;
  if (!FindChild(child, name) || !GetImage(static_cast<_ImageConfig&>(image), name)) return 0;
  CEdge edge;
  child.GetEdge(edge);
  image.m_edge = edge;
  int horizontal = 0;
  if (child.GetBool(horizontal, L"Hor")) image.m_bHorizontal = horizontal;
  image.Caculate();
  return 1;
}

int CSkinReader::GetImage(_ImageBorderConfig& image, const CString& name) const {
  CSkinReader child;
  if (!FindChild(child, name) || !GetImage(static_cast<_ImageConfig&>(image), name)) return 0;
  const struct {
    const wchar_t* key;
    CEdge& edge;
  } edges[] = {{L"EdgeTop", image.m_edgeTop},
               {L"EdgeLeft", image.m_edgeLeft},
               {L"EdgeRight", image.m_edgeRight},
               {L"EdgeBottom", image.m_edgeBottom},
               {L"EdgeCenter", image.m_edgeCenter}};
  for (const auto& [key, edge] : edges) {
    CSkinReader piece;
    if (child.FindChild(piece, key)) piece.GetEdge(edge);
  }
  image.Caculate();
  return 1;
}

int CSkinReader::GetStateImages(_ImageConfig* states, const wchar_t* const* keys, int count,
                                const CString& name) const {
  CSkinReader child;
  if (!FindChild(child, name)) return 0;
  CString file;
  child.Note(L"File", SkinKeyKind::Picture);
  if (!child.GetString(file, L"File")) return 0;
  const CString path = child.TranslatePath(file);
  for (int i = 0; i < count; ++i) {
    CRect source;
    child.Note(keys[i], SkinKeyKind::SourceRect);
    if (!child.GetRect(source, keys[i], 1)) continue;
    if (!path.IsEmpty()) states[i].LoadImageW(path);
    states[i].m_rcSrc = source;
  }
  return 1;
}

int CSkinReader::Get5StateImage(_ImageConfig* five, const CString& name) const {
  return GetStateImages(five, kFiveStates, 5, name);
}

int CSkinReader::Get6StateImage(_ImageConfig* six, const CString& name) const {
  return GetStateImages(six, kSixStates, 6, name);
}

void CSkinReader::GetAssData(_AssData* data) const {
  if (!data) return;
  CString text;
  if (GetString(text, L"TipID")) data->m_strTipID = text;
  if (GetString(text, L"StrID")) data->m_strStrID = text;
  GetRect(data->m_rcMargin, L"Margin", 1);
  Note(L"DockStyle", SkinKeyKind::DockStyle);
  if (GetString(text, L"DockStyle")) {
    ApplyStyleKeyword(text, kDockStyles, data->m_nStyle);
  } else {
    Note(L"AnchorStyle", SkinKeyKind::AnchorStyle);
    if (GetString(text, L"AnchorStyle")) ApplyStyleKeyword(text, kAnchorStyles, data->m_nStyle);
  }
  GetRect(data->m_rcBounds, L"Bounds", 0);
  GetBool(data->m_bAllowSize, L"AllowSize");
}

}  // namespace KarvelUI
