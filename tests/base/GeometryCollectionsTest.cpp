#include <gtest/gtest.h>

#include <karvelui/Collections.h>
#include <karvelui/FastDelegate.h>
#include <karvelui/Geometry.h>
#include <karvelui/Region.h>

using namespace KarvelUI;

TEST(CRectSemantics, RightAndBottomAreExclusive) {
  CRect r(10, 20, 30, 40);
  EXPECT_TRUE(r.PtInRect({10, 20}));
  EXPECT_FALSE(r.PtInRect({30, 25}));
  EXPECT_FALSE(r.PtInRect({15, 40}));
  EXPECT_TRUE(CRect(5, 5, 5, 10).IsRectEmpty());
  EXPECT_TRUE(CRect(5, 5, 4, 10).IsRectEmpty());
  EXPECT_FALSE(CRect(5, 5, 4, 10).IsRectNull());
}

TEST(CRectSemantics, IntersectionOfDisjointRectsIsAllZero) {
  CRect r(1, 2, 3, 4);
  EXPECT_FALSE(r.IntersectRect(CRect(0, 0, 10, 10), CRect(10, 0, 20, 10)));
  EXPECT_EQ(r, CRect(0, 0, 0, 0));
  EXPECT_TRUE(r.IntersectRect(CRect(0, 0, 10, 10), CRect(5, -5, 20, 5)));
  EXPECT_EQ(r, CRect(5, 0, 10, 5));
}

TEST(CRectSemantics, DeflateOffsetAndUnion) {
  CRect r(0, 0, 100, 50);
  r.DeflateRect(1, 2, 3, 4);
  EXPECT_EQ(r, CRect(1, 2, 97, 46));
  r.OffsetRect(10, -2);
  EXPECT_EQ(r, CRect(11, 0, 107, 44));
  CRect u;
  u.UnionRect(CRect(0, 0, 0, 0), CRect(5, 5, 6, 6));
  EXPECT_EQ(u, CRect(5, 5, 6, 6));
  EXPECT_EQ(CPoint::FromLParam(MAKELPARAM(-3, 70)), CPoint(-3, 70));
}

TEST(RegionTest, HitTestingAndBox) {
  Region rgn;
  rgn.AddRect(CRect(0, 0, 2, 1));
  rgn.AddRect(CRect(3, 1, 5, 2));
  rgn.AddRect(CRect(9, 9, 9, 9));  // empty: ignored
  EXPECT_EQ(rgn.Rects().size(), 2u);
  EXPECT_TRUE(rgn.Contains({1, 0}));
  EXPECT_FALSE(rgn.Contains({2, 0}));
  EXPECT_EQ(rgn.GetBox(), CRect(0, 0, 5, 2));
}

TEST(Collections, ArrayInsertRemoveKeepOrder) {
  CStringArray a;
  a.Add(L"a");
  a.Add(L"c");
  a.InsertAt(1, L"b");
  ASSERT_EQ(a.GetSize(), 3);
  EXPECT_EQ(a[1], L"b");
  a.RemoveAt(0, 2);
  EXPECT_EQ(a.GetSize(), 1);
  EXPECT_EQ(a[0], L"c");
}

TEST(Collections, ListWalksWithPositions) {
  CStringList list;
  list.AddTail(L"b");
  list.AddHead(L"a");
  list.AddTail(L"c");
  CString joined;
  for (POSITION pos = list.GetHeadPosition(); pos;) joined += list.GetNext(pos);
  EXPECT_EQ(joined, L"abc");
  POSITION found = list.Find(L"b");
  ASSERT_NE(found, nullptr);
  list.RemoveAt(found);
  EXPECT_EQ(list.GetCount(), 2);
  EXPECT_EQ(list.GetTail(), L"c");
}

TEST(Collections, MapIteratesInInsertionOrder) {
  CMapStringToString map;
  map.SetAt(L"zeta", L"1");
  map.SetAt(L"alpha", L"2");
  map.SetAt(L"mid", L"3");
  map.SetAt(L"zeta", L"4");  // replaces, keeps its place
  map.RemoveKey(L"alpha");
  CString order;
  CString key, value;
  for (POSITION pos = map.GetStartPosition(); pos;) {
    map.GetNextAssoc(pos, key, value);
    order += key + L"=" + value + L";";
  }
  EXPECT_EQ(order, L"zeta=4;mid=3;");
  EXPECT_TRUE(map.Lookup(L"mid", value));
  EXPECT_FALSE(map.Lookup(L"MID", value));  // keys are case-sensitive
}

namespace {
struct Counter {
  int total = 0;
  void Add(int v) { total += v; }
  void Other(int v) { total -= v; }
};
struct Base1 { virtual ~Base1() = default; int pad = 0; };
struct Derived : Base1, Counter {
  virtual void Twice(int v) { Add(2 * v); }
};
int g_free = 0;
void FreeAdd(int v) { g_free += v; }
}  // namespace

TEST(FastDelegateTest, CallsBoundMemberAndComparesByBinding) {
  Counter c;
  FastDelegate1<int> d(&c, &Counter::Add);
  ASSERT_TRUE(d);
  d(5);
  EXPECT_EQ(c.total, 5);
  EXPECT_TRUE(d == MakeDelegate(&c, &Counter::Add));
  EXPECT_FALSE(d == MakeDelegate(&c, &Counter::Other));
  Counter c2;
  EXPECT_FALSE(d == MakeDelegate(&c2, &Counter::Add));
  FastDelegate1<int> empty;
  EXPECT_FALSE(empty);
  empty(3);  // an unset delegate does nothing
}

TEST(FastDelegateTest, VirtualMembersOfMultiplyDerivedClasses) {
  Derived obj;
  FastDelegate1<int> d(&obj, &Derived::Twice);
  d(4);
  EXPECT_EQ(obj.total, 8);
  FastDelegate1<int> f(&FreeAdd);
  f(3);
  EXPECT_EQ(g_free, 3);
}
