#include <gtest/gtest.h>

#include <string>

#include <karvelui/XmlDocument.h>
#include "skin/XmlText.h"
#include "SkinTestSupport.h"

using namespace KarvelUI;
using namespace std::string_literals;
using KarvelTest::LoadedXml;

namespace {

// Depth of the element tree the parser actually built.
int TreeDepth(void* node) {
  int deepest = 0;
  for (void* child = CXmlDocument::GetFirstChild(node); child; child = CXmlDocument::GetNextSibling(child))
    deepest = std::max(deepest, TreeDepth(child));
  return deepest + 1;
}

// Depth of the tree under the root element <a>; 0 when the text fails.
int LoadedDepth(const std::string& xml) {
  LoadedXml loaded(xml);
  void* root = loaded.Loaded() ? loaded.Node(L"a") : nullptr;
  return root ? TreeDepth(root) : 0;
}

}  // namespace

TEST(XmlTextTest, DepthFollowsTheParserThroughMarkupThatHidesTags) {
  const struct {
    const char* name;
    std::string xml;
    int depth;
  } cases[] = {
      {"plain", "<a><b><c/></b><b/></a>", 3},
      {"quoted markup", "<a x=\"</a><b><b>\" y='>'><b/></a>", 2},
      {"comment and cdata", "<a><!-- <b><b> --><![CDATA[<b><b>]]><b/></a>", 2},
      {"declaration value", "<a><?xml version=\"></a>\"?><b><c/></b></a>", 3},
      // A character reference runs to the next ';' when only digits stand
      // between it and the last 'x' (or '#') before it: the close tag
      // inside is text to the parser.
      {"hex reference over a close tag", "<a>&#x</a>x1;<b><c/></b></a>", 3},
      {"decimal reference over a close tag", "<a>&#</a>#9;<b/></a>", 2},
      {"reference in a quoted value", "<a v=\"&#x\"></a>x1;\"><b/></a>", 2},
      {"unknown markup", "<a><!DOCTYPE x><b/></a>", 2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(LoadedDepth(c.xml), c.depth);
    EXPECT_GE(MeasureXmlShape(NormalizeXmlText(c.xml), 1000, 1000).depth, c.depth);
  }
}

TEST(XmlTextTest, HiddenCloseTagsCannotSmuggleDepthPastTheLimit) {
  // Each level hides its close tag inside a character reference, so a naive
  // tag counter sees depth 1 while the parser nests every level.
  std::string xml;
  for (int i = 0; i < 400; ++i) xml += "<a>&#x</a>x1;";
  EXPECT_GT(MeasureXmlShape(xml, kMaxXmlElementDepth, kMaxXmlAttributes).depth, kMaxXmlElementDepth);
  EXPECT_FALSE(PrepareXmlText(xml).has_value());
  // The same shape in quoted values and declarations.
  std::string quoted;
  for (int i = 0; i < 400; ++i) quoted += "<a v=\"&#x\"></a>x1;\">";
  EXPECT_FALSE(PrepareXmlText(quoted).has_value());
}

TEST(XmlTextTest, NormalizingRepairsUtf8AndDropsInnerByteOrderMarks) {
  // A lead byte without its continuation would let the parser's UTF-8 mode
  // step over the '<' after it.
  EXPECT_EQ(NormalizeXmlText("\xEF\xBB\xBF<a>\xF0<b/></a>"), "\xEF\xBB\xBF<a>\xEF\xBF\xBD<b/></a>");
  EXPECT_EQ(NormalizeXmlText("<a x=\"\xC3\xA9\xE4\xB8\xAD\"/>"), "<a x=\"\xC3\xA9\xE4\xB8\xAD\"/>");
  EXPECT_EQ(NormalizeXmlText("<a x=\xEF\xBB\xBF\"1\xEF\xBF\xBE\"/>"), "<a x=\"1\"/>");
  EXPECT_EQ(NormalizeXmlText("a\r\nb\rc\n\r"), "a\nb\nc\n\n");
  EXPECT_EQ(NormalizeXmlText("<a/>\0<b>"s), "<a/>");
  // Latin-1 bytes widen to U+FFFD like any other text that is not UTF-8.
  LoadedXml latin("<a t=\"caf\xE9\"/>");
  ASSERT_TRUE(latin.Loaded());
  EXPECT_EQ(CXmlDocument::GetNodeAttribute(latin.Node(L"a"), L"t"), L"caf\uFFFD");
}
