#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include <karvelui/XmlDocument.h>
#include "skin/XmlText.h"
#include "SkinTestSupport.h"

using namespace KarvelUI;
using KarvelTest::LibraryPath;
using KarvelTest::LoadedXml;
using KarvelTest::TempDir;

namespace {

std::string Nested(int depth) {
  std::string xml;
  for (int i = 0; i < depth; ++i) xml += "<e>";
  for (int i = 0; i < depth; ++i) xml += "</e>";
  return xml;
}

std::string WithAttributes(int count) {
  std::string xml = "<e";
  for (int i = 0; i < count; ++i) xml += " a" + std::to_string(i) + "=\"" + std::to_string(i) + "\"";
  return xml + "/>";
}

std::vector<std::wstring> ChildNames(void* node) {
  std::vector<std::wstring> names;
  for (void* child = CXmlDocument::GetFirstChild(node); child; child = CXmlDocument::GetNextSibling(child))
    names.push_back(CXmlDocument::GetNodeName(child).str());
  return names;
}

}  // namespace

TEST(XmlDocumentTest, PathWalkFollowsTheFirstElementOfEachNameAndNodeHelpersSeeElementsOnly) {
  LoadedXml xml(
      "<?xml version=\"1.0\"?><!-- skin --><UIRoot><css><CUIButton><ok id=\"1\"/><ok id=\"2\"/></CUIButton>"
      "<CUIButton><cancel/></CUIButton></css><late><b/>text after</late><t>hello</t>"
      "<kids>text<!-- c --><one/>more<two/><one/></kids></UIRoot>");
  ASSERT_TRUE(xml.Loaded());
  EXPECT_EQ(CXmlDocument::GetNodeAttribute(xml.Node(L"UIRoot css CUIButton ok"), L"id"), L"1");
  for (const wchar_t* path : {L"UIRoot css CUIButton cancel" /* only the first CUIButton */, L"UIRoot  css",
                              L"UIRoot css ", L"uiroot"})
    EXPECT_EQ(xml.Node(path), nullptr) << path;
  EXPECT_THROW(xml.Doc().PathWalk(L""), std::invalid_argument);
  EXPECT_EQ(CXmlDocument().PathWalk(L"UIRoot"), nullptr);
  EXPECT_EQ(CXmlDocument::GetNodeText(xml.Node(L"UIRoot t")), L"hello");
  EXPECT_EQ(CXmlDocument::GetNodeText(xml.Node(L"UIRoot late")), L"");  // text after an element is not its text
  EXPECT_EQ(CXmlDocument::GetNodeAttribute(xml.Node(L"UIRoot t"), L"missing"), L"");
  EXPECT_EQ(CXmlDocument::GetNodeText(nullptr) + CXmlDocument::GetNodeAttribute(nullptr, L"y") +
                CXmlDocument::GetNodeName(nullptr),
            L"");
  void* kids = xml.Node(L"UIRoot kids");
  EXPECT_EQ(ChildNames(kids), (std::vector<std::wstring>{L"one", L"two", L"one"}));
  EXPECT_EQ(CXmlDocument::FindChild(kids, L"two"), CXmlDocument::GetNextSibling(CXmlDocument::GetFirstChild(kids)));
  EXPECT_EQ(CXmlDocument::FindChild(kids, L"One"), nullptr);
  EXPECT_EQ(CXmlDocument::FindChild(nullptr, L"one"), nullptr);
}

TEST(XmlDocumentTest, InsertEndChildOfNodeAppendsIndependentDeepCopies) {
  LoadedXml xml("<r><target><first/></target></r>");
  void* child = CXmlDocument::CreateNode(L"item");
  void* inner = CXmlDocument::CreateNode(L"inner");
  CXmlDocument::InsertEndChild(child, inner);
  CXmlDocument::DeleteNode(inner);  // child holds its own copy
  void* target = xml.Node(L"r target");
  void* copy1 = CXmlDocument::InsertEndChild(target, child);
  void* copy2 = CXmlDocument::InsertEndChild(target, child);
  CXmlDocument::SetNodeAttribute(copy1, L"n", L"1");
  EXPECT_EQ(CXmlDocument::GetNodeAttribute(copy2, L"n") + CXmlDocument::GetNodeAttribute(child, L"n"), L"");
  EXPECT_NE(CXmlDocument::FindChild(copy2, L"inner"), nullptr);
  EXPECT_EQ(ChildNames(target), (std::vector<std::wstring>{L"first", L"item", L"item"}));
  EXPECT_EQ(CXmlDocument::InsertEndChild(nullptr, child), nullptr);
  EXPECT_EQ(CXmlDocument::InsertEndChild(target, nullptr), nullptr);
  EXPECT_EQ(CXmlDocument::DeleteNode(child), 1);
  EXPECT_EQ(CXmlDocument::DeleteNode(nullptr), 1);
}

TEST(XmlDocumentTest, IncludeMergesIntoAnExistingChildOrAppendsTheWholeRootAndFailsWithoutTouchingTheTree) {
  LoadedXml xml("<BuildRoot><Main><panel/></Main></BuildRoot>");
  const CString part = LibraryPath(xml.Dir().Write("part.xml", "<Main><button/><!-- c --><label/></Main>"));
  EXPECT_EQ(xml.Doc().Include(part, L"BuildRoot", 1), 1);
  EXPECT_EQ(ChildNames(xml.Node(L"BuildRoot Main")), (std::vector<std::wstring>{L"panel", L"button", L"label"}));
  EXPECT_EQ(xml.Doc().Include(part, L"BuildRoot", 0), 1);
  EXPECT_EQ(ChildNames(xml.Node(L"BuildRoot")), (std::vector<std::wstring>{L"Main", L"Main"}));
  // Merge with no child of that name appends the root too.
  EXPECT_EQ(xml.Doc().Include(part, L"BuildRoot Main panel", 1), 1);
  EXPECT_EQ(ChildNames(xml.Node(L"BuildRoot Main panel")), std::vector<std::wstring>{L"Main"});

  const CString broken = LibraryPath(xml.Dir().Write("broken.xml", "<Extra><open></Extra>"));
  EXPECT_EQ(xml.Doc().Include(part, L"BuildRoot Missing", 0), 0);  // the parsed file is freed (ASan)
  EXPECT_EQ(xml.Doc().Include(broken, L"BuildRoot", 0), 0);
  EXPECT_EQ(xml.Doc().Include(LibraryPath(xml.Dir().Path() / "none.xml"), L"BuildRoot", 0), 0);
  EXPECT_EQ(ChildNames(xml.Node(L"BuildRoot")).size(), 2u);
  CXmlDocument empty;
  EXPECT_EQ(empty.Include(part, L"BuildRoot", 0), 0);
}

TEST(XmlDocumentTest, SaveKeepsTheByteOrderMarkAndTheUtf8TextAndSetAttributeAppendsNewOnesLast) {
  TempDir dir;
  const std::string body = "<r name=\"\xE4\xB8\xAD\xE6\x96\x87\">caf\xC3\xA9</r>\n";
  const auto withMark = dir.Write("bom.xml", "\xEF\xBB\xBF" + body);
  CXmlDocument doc(LibraryPath(withMark));
  ASSERT_TRUE(doc.IsLoaded());
  void* root = doc.PathWalk(L"r");
  EXPECT_EQ(CXmlDocument::GetNodeAttribute(root, L"name"), L"\u4E2D\u6587");
  EXPECT_EQ(CXmlDocument::GetNodeText(root), L"caf\u00E9");
  EXPECT_EQ(CXmlDocument::SetNodeAttribute(root, L"extra", L"\u00FC"), root);
  CXmlDocument::SetNodeAttribute(root, L"name", L"x");  // replaced in place
  EXPECT_EQ(CXmlDocument::SetNodeAttribute(nullptr, L"a", L"1"), nullptr);
  ASSERT_EQ(doc.SaveFile(), 1);
  EXPECT_EQ(TempDir::Read(withMark), "\xEF\xBB\xBF<r name=\"x\" extra=\"\xC3\xBC\">caf\xC3\xA9</r>\n");
  CXmlDocument plain(LibraryPath(dir.Write("plain.xml", body)));
  ASSERT_EQ(plain.SaveFile(LibraryPath(dir.Path() / "copy.xml")), 1);
  EXPECT_EQ(TempDir::Read(dir.Path() / "copy.xml"), body);

  // Without a tree, a file name, or a folder to write to, nothing is saved.
  CXmlDocument empty;
  EXPECT_EQ(empty.SaveFile(), 0);
  EXPECT_EQ(empty.SaveFile(LibraryPath(dir.Path() / "x.xml")), 0);
  EXPECT_FALSE(std::filesystem::exists(dir.Path() / "x.xml"));
  empty.InsertEndChild(L"r");
  EXPECT_EQ(empty.SaveFile(), 0);  // made in memory: no file name
  EXPECT_EQ(empty.SaveFile(LibraryPath(dir.Path() / "missing" / "x.xml")), 0);
}

TEST(XmlDocumentTest, BadFilesFailToLoadAndLeaveNoTree) {
  TempDir dir;
  const struct {
    const char* name;
    std::string bytes;
  } cases[] = {
      {"empty", ""},
      {"blank", " \n\t "},
      {"truncated", "<UIRoot><css><CUIButton name=\"a"},
      {"unclosed", "<UIRoot><css></UIRoot>"},
      {"binary", std::string("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16)},
      {"too deep", Nested(kMaxXmlElementDepth + 1)},
      {"far too deep", Nested(200000)},
      {"too many attributes", WithAttributes(kMaxXmlAttributes + 1)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    CXmlDocument doc;
    ASSERT_EQ(doc.InsertEndChild(L"old") != nullptr, true);
    EXPECT_EQ(doc.LoadFile(LibraryPath(dir.Write("bad.xml", c.bytes))), 0);
    EXPECT_FALSE(doc.IsLoaded());
    EXPECT_EQ(doc.PathWalk(L"old"), nullptr);
  }
  CXmlDocument missing(LibraryPath(dir.Path() / "none.xml"));
  EXPECT_FALSE(missing.IsLoaded());
  CXmlDocument folder(LibraryPath(dir.Path()));
  EXPECT_FALSE(folder.IsLoaded());
}

TEST(XmlDocumentTest, ADeclarationOrACommentAloneLoadsAsADocumentWithoutElements) {
  for (const char* text : {"<?xml version=\"1.0\"?>", "<!-- no skin yet -->"}) {
    SCOPED_TRACE(text);
    LoadedXml xml(text);
    EXPECT_TRUE(xml.Loaded());
    EXPECT_EQ(xml.Node(L"UIRoot"), nullptr);
    LoadedXml target("<BuildRoot/>");
    EXPECT_EQ(target.Doc().Include(LibraryPath(xml.Dir().Path() / "doc.xml"), L"BuildRoot", 0), 0);  // no root
    EXPECT_NE(xml.Doc().InsertEndChild(L"UIRoot"), nullptr);
    EXPECT_NE(xml.Node(L"UIRoot"), nullptr);
  }
}

TEST(XmlDocumentTest, NestingAndAttributesUpToTheLimitsLoad) {
  TempDir dir;
  CXmlDocument doc;
  ASSERT_EQ(doc.LoadFile(LibraryPath(dir.Write("deep.xml", Nested(kMaxXmlElementDepth)))), 1);
  void* node = doc.PathWalk(L"e");
  int depth = 0;
  for (; node; node = CXmlDocument::FindChild(node, L"e")) ++depth;
  EXPECT_EQ(depth, kMaxXmlElementDepth);

  ASSERT_EQ(doc.LoadFile(LibraryPath(dir.Write("wide.xml", WithAttributes(kMaxXmlAttributes)))), 1);
  EXPECT_EQ(CXmlDocument::GetNodeAttribute(doc.PathWalk(L"e"), L"a1023"), L"1023");
}

TEST(XmlDocumentTest, LineEndsBecomeLineFeedsAndAZeroByteEndsTheText) {
  using namespace std::string_literals;
  LoadedXml xml("<r a=\"x\r\ny\rz\"/>\0<unclosed"s);
  ASSERT_TRUE(xml.Loaded());
  EXPECT_EQ(CXmlDocument::GetNodeAttribute(xml.Node(L"r"), L"a"), L"x\ny\nz");
}
