#pragma once

#include "platform/debug/TypeName.h"

#include <type_traits>

namespace Vek::Chart::Ogl {

// Plain component records: the elements of vertex arrays and GPU buffers, without padding.

/// One component.
template <class T>
struct Vec1 {
  T x{}; ///< the only component
};
/// Two components.
template <class T>
struct Vec2 {
  T x{}; ///< first
  T y{}; ///< second
};
/// Three components.
template <class T>
struct Vec3 {
  T x{}; ///< first
  T y{}; ///< second
  T z{}; ///< third
};

///@{
/// Compares component by component.
template <class T>
constexpr bool operator==(const Vec1<T>& p_a, const Vec1<T>& p_b) {
  return p_a.x == p_b.x;
}
template <class T>
constexpr bool operator==(const Vec2<T>& p_a, const Vec2<T>& p_b) {
  return p_a.x == p_b.x && p_a.y == p_b.y;
}
template <class T>
constexpr bool operator==(const Vec3<T>& p_a, const Vec3<T>& p_b) {
  return p_a.x == p_b.x && p_a.y == p_b.y && p_a.z == p_b.z;
}
///@}

/// One element of a vertex attribute: a component record, without padding.
template <class T>
struct Attribute : T {
  constexpr Attribute() = default; ///< zeros
  /// Copies the record.
  constexpr Attribute(const T& p_value) // NOLINT: implicit, an attribute is its record
      : T(p_value) {}
};

static_assert(sizeof(Attribute<Vec3<float>>) == 3 * sizeof(float));
static_assert(sizeof(Attribute<Vec1<unsigned int>>) == sizeof(unsigned int));
static_assert(std::is_trivially_copyable_v<Attribute<Vec3<float>>>);

} // namespace Vek::Chart::Ogl

/// Type name used in report signatures.
template <class T>
struct vekdebug::TypeName<Vek::Chart::Ogl::Vec1<T>> {
  /// The name.
  static std::string Text() { return "class Vek::Chart::Ogl::Vec1<" + TypeName<T>::Text() + ">"; }
};
/// Type name used in report signatures.
template <class T>
struct vekdebug::TypeName<Vek::Chart::Ogl::Vec2<T>> {
  /// The name.
  static std::string Text() { return "class Vek::Chart::Ogl::Vec2<" + TypeName<T>::Text() + ">"; }
};
/// Type name used in report signatures.
template <class T>
struct vekdebug::TypeName<Vek::Chart::Ogl::Vec3<T>> {
  /// The name.
  static std::string Text() { return "class Vek::Chart::Ogl::Vec3<" + TypeName<T>::Text() + ">"; }
};
/// Type name used in report signatures. A template argument list that ends in '>' is closed after a blank.
template <class T>
struct vekdebug::TypeName<Vek::Chart::Ogl::Attribute<T>> {
  /// The name.
  static std::string Text() { return "class Vek::Chart::Ogl::Attribute<" + TypeName<T>::Text() + " >"; }
};
