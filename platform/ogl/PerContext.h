#pragma once

#include "platform/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>

#include <cstdint>
#include <utility>
#include <vector>

namespace Vek::Chart::Ogl {

class ContextStore;

/// The untyped part of `PerContext`.
class VEK_PLATFORM_API ContextValues {
public:
  ContextValues() = default;
  ~ContextValues();
  /// A copy starts empty.
  ContextValues(const ContextValues& p_other);
  /// Takes the values over.
  ContextValues(ContextValues&& p_other) noexcept;
  /// Releases the values of this object.
  ContextValues& operator=(const ContextValues& p_other);
  /// Releases the values of this object and takes over those of the other one.
  ContextValues& operator=(ContextValues&& p_other) noexcept;

  /// The value of a context; null without one.
  void* Find(const Rgl& p_gl) const;
  /// Keeps a value in a context and returns it. If there is one already, the new one is dropped and the old one
  /// returned.
  void* Keep(const Rgl& p_gl, boost::shared_ptr<void> p_value);
  /// Releases the value of a context.
  void Release(const Rgl& p_gl);
  /// Releases the values of all contexts.
  void Reset();
  /// Releases all values of a context, whosever they are.
  static void ReleaseAll(const Rgl& p_gl);

private:
  std::uint64_t _owner = 0; // 0 until there is a value
  std::vector<boost::weak_ptr<ContextStore>> _stores;
};

/// One `T`, with GL objects, for each context in which something is drawn, made at its first use there. For classes
/// that are drawn in several contexts, a widget and an off-screen image for example.
///
/// A context is one `Rgl`, that is one handle and its copies. Two handles that `Rgl::OnCurrentContext` made on the same
/// context have a `T` each, so a host keeps its handle for as long as the context exists.
///
/// The `T` of a context is freed, with the context current, when one of these ends or is called, in any order:
/// - this object, `Reset` or an assignment to it: at once inside an open scope of that context, otherwise when the next
///   one opens or closes;
/// - an `OffscreenContext` or a `RecordingGl`: in its destructor;
/// - `Release(gl)`, of this object or of the whole context: at once. A host with a context of its own calls
///   `Ogl::Release(gl)` before the context ends, and before Qt replaces it: a QOpenGLWidget that gets another window
///   gets another context, which QOpenGLContext::aboutToBeDestroyed announces.
///
/// If the last handle of a context ends while there are values in it, nobody can make the context current any more. The
/// values are destroyed, but their GL names are forgotten and never deleted, since another context may be current that
/// has objects of the same names. One warning for each such context has the number of values ("WARNING: Rgl: 2 values
/// of PerContext were not released before the last handle of their context ended; their GL names are forgotten").
///
/// A copy starts empty. Assignment frees what the target had, since it was made for the old value of its class; moving
/// takes the values along.
///
/// `T` must delete its GL objects in its destructor, through objects made by its own `Rgl` (`Texture`, `Buffer`,
/// `ShaderProgram`, …), and must not keep an `Unscoped<Rgl>` or anything that has one (`ModelCache`): the context's
/// handle would then keep itself alive, and only `Release` and the end of an `OffscreenContext` free such a `T`.
///
/// A context and the objects drawn in it are used on one thread. The destructor and `Reset` may be called on another
/// one and then call no GL.
///
/// \snippet HostSnippets.cpp PerContext
/// \ingroup host
template <class T>
class PerContext {
public:
  /// The value of the scope's context. Without one, `p_make()` makes it; when that throws, nothing is kept. The
  /// reference is valid until the value is freed.
  template <class Make>
  T& Get(const Utility::Scoped<Rgl>& p_gl, Make&& p_make) const {
    if (T* const found = Find(p_gl))
      return *found;
    return *static_cast<T*>(_values.Keep(*p_gl, boost::shared_ptr<T>(new T(std::forward<Make>(p_make)()))));
  }
  /// Likewise, with the default constructor.
  T& Get(const Utility::Scoped<Rgl>& p_gl) const {
    return Get(p_gl, [] { return T(); });
  }
  /// The value of the scope's context; null without one.
  T* Find(const Utility::Scoped<Rgl>& p_gl) const { return static_cast<T*>(_values.Find(*p_gl)); }
  /// Frees the value of the scope's context.
  void Release(const Utility::Scoped<Rgl>& p_gl) const { _values.Release(*p_gl); }
  /// Frees the values of all contexts, for example because they were made of data that changed.
  void Reset() { _values.Reset(); }

private:
  mutable ContextValues _values; // a cache: no part of the value of the object that has it
};

/// Frees the values of all `PerContext` objects in the scope's context.
VEK_PLATFORM_API void Release(const Utility::Scoped<Rgl>& p_gl);

} // namespace Vek::Chart::Ogl
