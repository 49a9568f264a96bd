// Arbitrary bytes as skin values: the input's lines become, in order, the
// values of the keys below on one element and its children, and every getter of the skin reader reads them:
// numbers, colours, points, sizes, rectangles, booleans, fonts, image
// records with edges and borders, five- and six-state images and the
// layout record. No XML parsing: the values reach the reader as they are.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <karvelui/Helpers.h>
#include <karvelui/SkinReader.h>
#include <karvelui/XmlDocument.h>
#include "ReadEverything.h"

using namespace KarvelUI;

namespace {

struct Slot {
  const wchar_t* child;  // null: the element itself
  const wchar_t* key;
};

constexpr Slot kSlots[] = {
    {nullptr, L"Size"},         {nullptr, L"Hor"},          {nullptr, L"Color"},       {nullptr, L"TextColor"},
    {nullptr, L"Alpha"},        {nullptr, L"MinSize"},      {nullptr, L"Offset"},      {nullptr, L"Rect"},
    {nullptr, L"Bounds"},       {nullptr, L"left"},         {nullptr, L"mid"},         {nullptr, L"right"},
    {nullptr, L"TipID"},        {nullptr, L"StrID"},        {nullptr, L"Margin"},      {nullptr, L"DockStyle"},
    {nullptr, L"AnchorStyle"},  {nullptr, L"AllowSize"},    {L"Font", L"TextColor"},   {L"Font", L"FontFace"},
    {L"Font", L"FontSize"},     {L"Font", L"FontBold"},     {L"Image", L"File"},       {L"Image", L"Rect"},
    {L"Image", L"Color"},       {L"Edge", L"File"},         {L"Edge", L"left"},        {L"Edge", L"mid"},
    {L"Edge", L"right"},        {L"Edge", L"Hor"},          {L"Border", L"File"},      {L"EdgeTop", L"left"},
    {L"EdgeCenter", L"mid"},    {L"Button", L"File"},       {L"Button", L"Normal"},    {L"Button", L"KBFocus"},
    {L"Check", L"File"},        {L"Check", L"CheckHover"},  {L"Check", L"CheckDisable"},
};

// A child of `element` named `name` (the border's edges live under "Border").
void* ChildFor(void* element, const wchar_t* name) {
  const std::wstring_view view(name);
  void* parent = view.starts_with(L"Edge") && view != L"Edge" ? CXmlDocument::FindChild(element, L"Border") : element;
  if (void* found = CXmlDocument::FindChild(parent, name)) return found;
  void* made = CXmlDocument::CreateNode(name);
  void* inserted = CXmlDocument::InsertEndChild(parent, made);
  CXmlDocument::DeleteNode(made);
  return inserted;
}


}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  CXmlDocument doc;
  void* element = doc.InsertEndChild(L"Values");
  CString value;
  for (const Slot& target : kSlots) {
    if (input.empty()) break;
    const size_t end = input.find('\n');
    const std::string line(input.substr(0, end));
    input.remove_prefix(end == std::string_view::npos ? input.size() : end + 1);
    MBCS_to_CString(line.c_str(), value);
    CXmlDocument::SetNodeAttribute(target.child ? ChildFor(element, target.child) : element, target.key, value);
  }
  KarvelFuzz::ReadEverything(CSkinReader(element));
  return 0;
}
