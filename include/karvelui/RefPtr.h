#pragma once

// Ownership of device objects. Every device object is reference counted: the
// call that creates it hands out one reference, AddRef takes another and
// Release drops one, destroying the object with the last. RefPtr holds one
// reference for its lifetime, so ownership shows in the types.

#include <atomic>
#include <utility>

#include <karvelui/Types.h>

namespace KarvelUI {

class IRefCounted {
 public:
  virtual ULONG AddRef() = 0;
  virtual ULONG Release() = 0;

 protected:
  virtual ~IRefCounted() = default;
};

// Implements the counting for one concrete class; objects start with the one
// reference their creator hands out.
template <class Interface>
class RefCounted : public Interface {
 public:
  ULONG AddRef() override { return m_refs.fetch_add(1, std::memory_order_relaxed) + 1; }
  ULONG Release() override {
    const ULONG left = m_refs.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) delete this;
    return left;
  }

 protected:
  RefCounted() = default;

 private:
  std::atomic<ULONG> m_refs{1};
};

template <class T>
class RefPtr {
 public:
  RefPtr() = default;
  RefPtr(std::nullptr_t) {}  // NOLINT
  // Takes over a reference the caller already owns.
  static RefPtr Adopt(T* p) {
    RefPtr r;
    r.m_p = p;
    return r;
  }
  // Takes a new reference.
  static RefPtr Share(T* p) {
    if (p) p->AddRef();
    return Adopt(p);
  }
  RefPtr(const RefPtr& o) : m_p(o.m_p) {
    if (m_p) m_p->AddRef();
  }
  RefPtr(RefPtr&& o) noexcept : m_p(std::exchange(o.m_p, nullptr)) {}
  template <class U>
  RefPtr(RefPtr<U>&& o) noexcept : m_p(o.Detach()) {}  // NOLINT: upcast
  RefPtr& operator=(RefPtr o) noexcept {
    std::swap(m_p, o.m_p);
    return *this;
  }
  ~RefPtr() { Reset(); }

  T* Get() const { return m_p; }
  T* operator->() const { return m_p; }
  explicit operator bool() const { return m_p != nullptr; }
  void Reset() {
    if (T* p = std::exchange(m_p, nullptr)) p->Release();
  }
  // Gives up the reference without releasing it.
  T* Detach() { return std::exchange(m_p, nullptr); }
  // For creation calls with an out parameter: drops the current object and
  // returns the slot the new reference is written to.
  T** Receive() {
    Reset();
    return &m_p;
  }
  friend bool operator==(const RefPtr& a, const RefPtr& b) { return a.m_p == b.m_p; }

 private:
  T* m_p = nullptr;
};

}  // namespace KarvelUI
