#include <gtest/gtest.h>

#include <karvelui/Collections.h>
#include <karvelui/FastDelegate.h>
#include <karvelui/Geometry.h>
#include <karvelui/Region.h>

using namespace KarvelUI;

TEST(CRectSemantics, RightAndBottomAreExclusiveAndDisjointIntersectionsAreAllZero) {
  const CRect r(10, 20, 30, 40);
  EXPECT_TRUE(r.PtInRect({10, 20}) && !r.PtInRect({30, 25}) && !r.PtInRect({15, 40}));
  EXPECT_TRUE(CRect(5, 5, 4, 10).IsRectEmpty() && !CRect(5, 5, 4, 10).IsRectNull());
  CRect i(1, 2, 3, 4);
  EXPECT_FALSE(i.IntersectRect(CRect(0, 0, 10, 10), CRect(10, 0, 20, 10)));
  EXPECT_EQ(i, CRect(0, 0, 0, 0));
  CRect u;
  u.UnionRect(CRect(0, 0, 0, 0), CRect(5, 5, 6, 6));  // an empty rectangle adds nothing
  EXPECT_EQ(u, CRect(5, 5, 6, 6));
  EXPECT_EQ(CPoint::FromLParam(MAKELPARAM(-3, 70)), CPoint(-3, 70));

  Region rgn;
  rgn.AddRect(CRect(0, 0, 2, 1));
  rgn.AddRect(CRect(3, 1, 5, 2));
  rgn.AddRect(CRect(9, 9, 9, 9));  // empty: ignored
  EXPECT_TRUE(rgn.Rects().size() == 2u && !rgn.Contains({2, 0}));
  EXPECT_EQ(rgn.GetBox(), CRect(0, 0, 5, 2));
}

TEST(Collections, ListsWalkWithPositionsAndMapsIterateInInsertionOrder) {
  CStringList list;
  list.AddTail(L"b");
  list.AddHead(L"a");
  list.AddTail(L"c");
  list.RemoveAt(list.Find(L"b"));
  CString joined;
  for (POSITION pos = list.GetHeadPosition(); pos;) joined += list.GetNext(pos);
  EXPECT_EQ(joined, L"ac");

  CMapStringToString map;
  map.SetAt(L"zeta", L"1");
  map.SetAt(L"alpha", L"2");
  map.SetAt(L"mid", L"3");
  map.SetAt(L"zeta", L"4");  // replaces, keeps its place
  map.RemoveKey(L"alpha");
  CString order, key, value;
  for (POSITION pos = map.GetStartPosition(); pos;) {
    map.GetNextAssoc(pos, key, value);
    order += key + L"=" + value + L";";
  }
  EXPECT_EQ(order, L"zeta=4;mid=3;");
  EXPECT_FALSE(map.Lookup(L"MID", value));  // keys are case-sensitive
}

namespace {
struct Counter {
  int total = 0;
  void Add(int v) { total += v; }
  void Other(int v) { total -= v; }
};
struct Base1 {
  virtual ~Base1() = default;
  int pad = 0;
};
struct Derived : Base1, Counter {
  virtual void Twice(int v) { Add(2 * v); }
};
}  // namespace

TEST(FastDelegateTest, CallsBoundMembersEvenVirtualOnesOfMultiplyDerivedClassesAndComparesByBinding) {
  Counter c, c2;
  FastDelegate1<int> d(&c, &Counter::Add);
  d(5);
  EXPECT_EQ(c.total, 5);
  EXPECT_TRUE(d == MakeDelegate(&c, &Counter::Add));
  EXPECT_FALSE(d == MakeDelegate(&c, &Counter::Other) || d == MakeDelegate(&c2, &Counter::Add));
  Derived obj;
  FastDelegate1<int>(&obj, &Derived::Twice)(4);
  EXPECT_EQ(obj.total, 8);
  FastDelegate1<int> empty;
  EXPECT_FALSE(empty);
  empty(3);  // an unset delegate does nothing
}
