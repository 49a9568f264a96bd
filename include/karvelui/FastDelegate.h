#pragma once

// FastDelegate0..3: an object pointer plus a member function of that object,
// called later without knowing the object's class. The delegate is "set" when
// either part is non-null. Two delegates are equal when they bind the same
// object and the same member function. A plain function can be bound too.
//
// Template arguments follow the callers' spelling: the parameter types first,
// the result type last (defaulting to void), e.g.
// FastDelegate2<CUIControl*, void*, void>.

#include <cstring>
#include <type_traits>
#include <utility>

namespace KarvelUI {
namespace detail {

// A member-function pointer of any class fits in two machine words with the
// Itanium C++ ABI; it is stored as raw bytes and cast back by a stub that
// knows the real class.
inline constexpr std::size_t kMemberFnSize = 2 * sizeof(void*);

template <typename R, typename... Params>
class DelegateBase {
 public:
  using Stub = R (*)(void* object, const unsigned char* fn, Params... params);

  DelegateBase() = default;

  template <class C, class M>
  void BindMember(C* object, M method) {
    static_assert(sizeof(M) <= kMemberFnSize, "member function pointer too large");
    clear();
    m_object = const_cast<void*>(static_cast<const void*>(object));
    std::memcpy(m_fn, &method, sizeof(M));
    m_hasFn = method != nullptr;
    m_stub = &CallMember<C, M>;
  }
  void BindFree(R (*function)(Params...)) {
    clear();
    std::memcpy(m_fn, &function, sizeof(function));
    m_hasFn = function != nullptr;
    m_stub = &CallFree;
  }

  void clear() {
    m_object = nullptr;
    std::memset(m_fn, 0, sizeof m_fn);
    m_hasFn = false;
    m_stub = nullptr;
  }
  bool empty() const { return m_object == nullptr && !m_hasFn; }
  explicit operator bool() const { return !empty(); }
  bool operator!() const { return empty(); }

  R operator()(Params... params) const {
    if (!m_stub || !m_hasFn) {
      if constexpr (std::is_void_v<R>) return;
      else return R{};
    }
    return m_stub(m_object, m_fn, std::forward<Params>(params)...);
  }

  friend bool operator==(const DelegateBase& a, const DelegateBase& b) {
    return a.m_object == b.m_object && a.m_hasFn == b.m_hasFn &&
           std::memcmp(a.m_fn, b.m_fn, sizeof a.m_fn) == 0;
  }

 private:
  template <class C, class M>
  static R CallMember(void* object, const unsigned char* fn, Params... params) {
    M method;
    std::memcpy(&method, fn, sizeof(M));
    // The optimiser cannot see that a class without virtual functions is
    // never dispatched through a vtable and warns about reading one.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Warray-bounds"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
    return (static_cast<C*>(object)->*method)(std::forward<Params>(params)...);
#pragma GCC diagnostic pop
  }
  static R CallFree(void*, const unsigned char* fn, Params... params) {
    R (*function)(Params...);
    std::memcpy(&function, fn, sizeof(function));
    return function(std::forward<Params>(params)...);
  }

  void* m_object = nullptr;
  alignas(void*) unsigned char m_fn[kMemberFnSize] = {};
  bool m_hasFn = false;
  Stub m_stub = nullptr;
};

template <typename R, typename... Params>
class Delegate : public DelegateBase<R, Params...> {
 public:
  Delegate() = default;
  template <class C, class X>
  Delegate(C* object, R (X::*method)(Params...)) {
    this->BindMember(object, method);
  }
  template <class C, class X>
  Delegate(const C* object, R (X::*method)(Params...) const) {
    this->BindMember(object, method);
  }
  Delegate(R (*function)(Params...)) { this->BindFree(function); }  // NOLINT

  template <class C, class X>
  void bind(C* object, R (X::*method)(Params...)) {
    this->BindMember(object, method);
  }
  template <class C, class X>
  void bind(const C* object, R (X::*method)(Params...) const) {
    this->BindMember(object, method);
  }
  void bind(R (*function)(Params...)) { this->BindFree(function); }
};

}  // namespace detail

template <typename R = void>
class FastDelegate0 : public detail::Delegate<R> {
  using detail::Delegate<R>::Delegate;
};
template <typename P1, typename R = void>
class FastDelegate1 : public detail::Delegate<R, P1> {
  using detail::Delegate<R, P1>::Delegate;
};
template <typename P1, typename P2, typename R = void>
class FastDelegate2 : public detail::Delegate<R, P1, P2> {
  using detail::Delegate<R, P1, P2>::Delegate;
};
template <typename P1, typename P2, typename P3, typename R = void>
class FastDelegate3 : public detail::Delegate<R, P1, P2, P3> {
  using detail::Delegate<R, P1, P2, P3>::Delegate;
};

// MakeDelegate(object, &Class::Method): deduces the delegate from the method.
template <class C, class X, typename R>
FastDelegate0<R> MakeDelegate(C* object, R (X::*method)()) {
  return FastDelegate0<R>(object, method);
}
template <class C, class X, typename R, typename P1>
FastDelegate1<P1, R> MakeDelegate(C* object, R (X::*method)(P1)) {
  return FastDelegate1<P1, R>(object, method);
}
template <class C, class X, typename R, typename P1, typename P2>
FastDelegate2<P1, P2, R> MakeDelegate(C* object, R (X::*method)(P1, P2)) {
  return FastDelegate2<P1, P2, R>(object, method);
}
template <class C, class X, typename R, typename P1, typename P2, typename P3>
FastDelegate3<P1, P2, P3, R> MakeDelegate(C* object, R (X::*method)(P1, P2, P3)) {
  return FastDelegate3<P1, P2, P3, R>(object, method);
}

}  // namespace KarvelUI
