#pragma once

#include <boost/shared_ptr.hpp>

#include <utility>

namespace Vek::Chart::Utility {

/// A copyable handle to a rendering interface, on which scopes are opened. `T` is `Ogl::Rgl`.
template <class T>
class Unscoped {
public:
  /// `p_object` must not be null.
  explicit Unscoped(boost::shared_ptr<T> p_object)
      : _object(std::move(p_object)) {}

  /// The object itself; never null.
  const boost::shared_ptr<T>& Object() const { return _object; }

private:
  boost::shared_ptr<T> _object;
};

/// An open rendering scope: while it lives, the context of its `T` is current and may be called. Opening calls
/// `T::ScopeBegin`, the end of the scope calls `T::ScopeEnd`, whose exceptions are dropped. Scopes of one `T` may be
/// nested.
template <class T>
class Scoped {
public:
  /// Opens the scope. Exceptions of ScopeBegin pass through.
  explicit Scoped(const Unscoped<T>& p_handle)
      : _handle(p_handle) {
    _handle.Object()->ScopeBegin();
  }
  ~Scoped() {
    try {
      _handle.Object()->ScopeEnd();
    } catch (...) { // NOLINT: nothing may leave a destructor
    }
  }
  Scoped(const Scoped&) = delete;
  Scoped& operator=(const Scoped&) = delete;

  ///@{
  /// The interface.
  T* operator->() const { return _handle.Object().get(); }
  T& operator*() const { return *_handle.Object(); }
  ///@}

  /// The handle of this scope, for functions that open their own scope.
  const Unscoped<T>& Handle() const { return _handle; }

private:
  Unscoped<T> _handle;
};

} // namespace Vek::Chart::Utility
