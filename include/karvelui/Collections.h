#pragma once

// The collection names the library is written against, as thin wrappers over
// std containers. Arrays and lists keep insertion order; maps also iterate in
// insertion order, so code that walks a map sees a stable, documented order.
// A POSITION is an opaque cursor (an index in disguise): removing an element
// invalidates the positions after it.

#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include <karvelui/CString.h>
#include <karvelui/Types.h>

namespace KarvelUI {

using INT_PTR_INDEX = INT_PTR;
struct PositionTag;
using POSITION = PositionTag*;

namespace detail {
inline POSITION ToPosition(size_t index) { return reinterpret_cast<POSITION>(index + 1); }
inline size_t FromPosition(POSITION pos) { return reinterpret_cast<std::uintptr_t>(pos) - 1; }
}  // namespace detail

template <class TYPE, class ARG_TYPE = const TYPE&>
class CArray {
 public:
  INT_PTR GetSize() const { return static_cast<INT_PTR>(m_items.size()); }
  INT_PTR GetCount() const { return GetSize(); }
  BOOL IsEmpty() const { return m_items.empty() ? TRUE : FALSE; }
  INT_PTR GetUpperBound() const { return GetSize() - 1; }
  void SetSize(INT_PTR size) { m_items.resize(size < 0 ? 0 : static_cast<size_t>(size)); }

  const TYPE& GetAt(INT_PTR i) const { return m_items.at(static_cast<size_t>(i)); }
  TYPE& GetAt(INT_PTR i) { return m_items.at(static_cast<size_t>(i)); }
  TYPE& ElementAt(INT_PTR i) { return m_items.at(static_cast<size_t>(i)); }
  void SetAt(INT_PTR i, ARG_TYPE value) { m_items.at(static_cast<size_t>(i)) = value; }
  const TYPE& operator[](INT_PTR i) const { return GetAt(i); }
  TYPE& operator[](INT_PTR i) { return GetAt(i); }
  TYPE* GetData() { return m_items.data(); }
  const TYPE* GetData() const { return m_items.data(); }

  INT_PTR Add(ARG_TYPE value) {
    m_items.push_back(value);
    return GetSize() - 1;
  }
  void InsertAt(INT_PTR i, ARG_TYPE value, INT_PTR count = 1) {
    if (count > 0) m_items.insert(m_items.begin() + Clamp(i), static_cast<size_t>(count), value);
  }
  void RemoveAt(INT_PTR i, INT_PTR count = 1) {
    const size_t start = Clamp(i);
    const size_t end = std::min(m_items.size(), start + static_cast<size_t>(count < 0 ? 0 : count));
    m_items.erase(m_items.begin() + start, m_items.begin() + end);
  }
  void RemoveAll() { m_items.clear(); }
  INT_PTR Append(const CArray& other) {
    const INT_PTR first = GetSize();
    m_items.insert(m_items.end(), other.m_items.begin(), other.m_items.end());
    return first;
  }
  void Copy(const CArray& other) { m_items = other.m_items; }

  auto begin() { return m_items.begin(); }
  auto end() { return m_items.end(); }
  auto begin() const { return m_items.begin(); }
  auto end() const { return m_items.end(); }
  std::vector<TYPE>& std_vector() { return m_items; }
  const std::vector<TYPE>& std_vector() const { return m_items; }

 private:
  size_t Clamp(INT_PTR i) const {
    return i < 0 ? 0 : std::min(static_cast<size_t>(i), m_items.size());
  }
  std::vector<TYPE> m_items;
};

using CPtrArray = CArray<void*, void*>;
using CStringArray = CArray<CString, const CString&>;
using CDWordArray = CArray<DWORD, DWORD>;
using CUIntArray = CArray<UINT, UINT>;

template <class TYPE, class ARG_TYPE = const TYPE&>
class CList {
 public:
  INT_PTR GetCount() const { return static_cast<INT_PTR>(m_items.size()); }
  INT_PTR GetSize() const { return GetCount(); }
  BOOL IsEmpty() const { return m_items.empty() ? TRUE : FALSE; }

  POSITION AddTail(ARG_TYPE value) {
    m_items.push_back(value);
    return detail::ToPosition(m_items.size() - 1);
  }
  POSITION AddHead(ARG_TYPE value) {
    m_items.insert(m_items.begin(), value);
    return detail::ToPosition(0);
  }
  TYPE& GetHead() { return m_items.front(); }
  const TYPE& GetHead() const { return m_items.front(); }
  TYPE& GetTail() { return m_items.back(); }
  const TYPE& GetTail() const { return m_items.back(); }
  TYPE RemoveHead() {
    TYPE v = m_items.front();
    m_items.erase(m_items.begin());
    return v;
  }
  TYPE RemoveTail() {
    TYPE v = m_items.back();
    m_items.pop_back();
    return v;
  }
  void RemoveAll() { m_items.clear(); }

  POSITION GetHeadPosition() const { return m_items.empty() ? nullptr : detail::ToPosition(0); }
  POSITION GetTailPosition() const {
    return m_items.empty() ? nullptr : detail::ToPosition(m_items.size() - 1);
  }
  // Returns the element at pos and moves pos to the next one (null at the end).
  TYPE& GetNext(POSITION& pos) {
    const size_t i = detail::FromPosition(pos);
    pos = i + 1 < m_items.size() ? detail::ToPosition(i + 1) : nullptr;
    return m_items.at(i);
  }
  const TYPE& GetNext(POSITION& pos) const { return const_cast<CList*>(this)->GetNext(pos); }
  TYPE& GetPrev(POSITION& pos) {
    const size_t i = detail::FromPosition(pos);
    pos = i > 0 ? detail::ToPosition(i - 1) : nullptr;
    return m_items.at(i);
  }
  TYPE& GetAt(POSITION pos) { return m_items.at(detail::FromPosition(pos)); }
  const TYPE& GetAt(POSITION pos) const { return m_items.at(detail::FromPosition(pos)); }
  void SetAt(POSITION pos, ARG_TYPE value) { m_items.at(detail::FromPosition(pos)) = value; }
  void RemoveAt(POSITION pos) {
    const size_t i = detail::FromPosition(pos);
    if (i < m_items.size()) m_items.erase(m_items.begin() + static_cast<std::ptrdiff_t>(i));
  }
  POSITION InsertBefore(POSITION pos, ARG_TYPE value) {
    const size_t i = pos ? std::min(detail::FromPosition(pos), m_items.size()) : 0;
    m_items.insert(m_items.begin() + static_cast<std::ptrdiff_t>(i), value);
    return detail::ToPosition(i);
  }
  POSITION InsertAfter(POSITION pos, ARG_TYPE value) {
    const size_t i = pos ? std::min(detail::FromPosition(pos) + 1, m_items.size()) : m_items.size();
    m_items.insert(m_items.begin() + static_cast<std::ptrdiff_t>(i), value);
    return detail::ToPosition(i);
  }
  POSITION Find(ARG_TYPE value, POSITION after = nullptr) const {
    for (size_t i = after ? detail::FromPosition(after) + 1 : 0; i < m_items.size(); ++i)
      if (m_items[i] == value) return detail::ToPosition(i);
    return nullptr;
  }
  POSITION FindIndex(INT_PTR index) const {
    return (index >= 0 && static_cast<size_t>(index) < m_items.size())
               ? detail::ToPosition(static_cast<size_t>(index))
               : nullptr;
  }

  auto begin() { return m_items.begin(); }
  auto end() { return m_items.end(); }
  auto begin() const { return m_items.begin(); }
  auto end() const { return m_items.end(); }

 private:
  std::vector<TYPE> m_items;
};

using CStringList = CList<CString, const CString&>;
using CPtrList = CList<void*, void*>;

// Hash map that iterates in insertion order.
template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
class CMap {
 public:
  void InitHashTable(UINT /*hashSize*/) {}  // sizing is the container's business
  INT_PTR GetCount() const { return static_cast<INT_PTR>(m_entries.size()); }
  INT_PTR GetSize() const { return GetCount(); }
  BOOL IsEmpty() const { return m_entries.empty() ? TRUE : FALSE; }

  BOOL Lookup(ARG_KEY key, VALUE& value) const {
    const auto it = m_index.find(key);
    if (it == m_index.end()) return FALSE;
    value = m_entries[it->second].second;
    return TRUE;
  }
  const VALUE* PLookup(ARG_KEY key) const {
    const auto it = m_index.find(key);
    return it == m_index.end() ? nullptr : &m_entries[it->second].second;
  }
  VALUE* PLookup(ARG_KEY key) {
    const auto it = m_index.find(key);
    return it == m_index.end() ? nullptr : &m_entries[it->second].second;
  }
  void SetAt(ARG_KEY key, ARG_VALUE value) { (*this)[key] = value; }
  VALUE& operator[](ARG_KEY key) {
    const auto it = m_index.find(key);
    if (it != m_index.end()) return m_entries[it->second].second;
    m_index.emplace(key, m_entries.size());
    m_entries.emplace_back(key, VALUE{});
    return m_entries.back().second;
  }
  BOOL RemoveKey(ARG_KEY key) {
    const auto it = m_index.find(key);
    if (it == m_index.end()) return FALSE;
    const size_t at = it->second;
    m_index.erase(it);
    m_entries.erase(m_entries.begin() + static_cast<std::ptrdiff_t>(at));
    for (auto& [k, i] : m_index)
      if (i > at) --i;
    return TRUE;
  }
  void RemoveAll() {
    m_entries.clear();
    m_index.clear();
  }

  POSITION GetStartPosition() const { return m_entries.empty() ? nullptr : detail::ToPosition(0); }
  void GetNextAssoc(POSITION& pos, KEY& key, VALUE& value) const {
    const size_t i = detail::FromPosition(pos);
    key = m_entries.at(i).first;
    value = m_entries.at(i).second;
    pos = i + 1 < m_entries.size() ? detail::ToPosition(i + 1) : nullptr;
  }

  auto begin() { return m_entries.begin(); }
  auto end() { return m_entries.end(); }
  auto begin() const { return m_entries.begin(); }
  auto end() const { return m_entries.end(); }

 private:
  std::vector<std::pair<KEY, VALUE>> m_entries;
  std::unordered_map<KEY, size_t> m_index;
};

using CMapStringToString = CMap<CString, const CString&, CString, const CString&>;
using CMapStringToPtr = CMap<CString, const CString&, void*, void*>;
using CMapPtrToPtr = CMap<void*, void*, void*, void*>;

}  // namespace KarvelUI
