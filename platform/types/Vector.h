#pragma once

#include <cmath>
#include <cstddef>

namespace Vek::Chart::Types {

/// A vector or point with two components.
template <class T>
struct Vector2_Base {
  T x{}; ///< first component
  T y{}; ///< second component

  constexpr Vector2_Base() = default; ///< zeros
  /// From its components.
  constexpr Vector2_Base(T p_x, T p_y)
      : x(p_x)
      , y(p_y) {}
};

/// A vector or point with three components.
template <class T>
struct Vector3_Base {
  T x{}; ///< first component
  T y{}; ///< second component
  T z{}; ///< third component

  constexpr Vector3_Base() = default; ///< zeros
  /// From its components.
  constexpr Vector3_Base(T p_x, T p_y, T p_z)
      : x(p_x)
      , y(p_y)
      , z(p_z) {}
};

/// A vector with four components; as a homogeneous point, w is 1, as a plane's equation, w is the constant term.
template <class T>
struct Vector4_Base {
  T x{}; ///< first component
  T y{}; ///< second component
  T z{}; ///< third component
  T w{}; ///< fourth component

  constexpr Vector4_Base() = default; ///< zeros
  /// From its components.
  constexpr Vector4_Base(T p_x, T p_y, T p_z, T p_w)
      : x(p_x)
      , y(p_y)
      , z(p_z)
      , w(p_w) {}
};

///@{
/// Component by component. Dot sums the products from left to right, in the order of the components.
template <class T>
constexpr Vector2_Base<T> operator+(const Vector2_Base<T>& p_a, const Vector2_Base<T>& p_b) {
  return {p_a.x + p_b.x, p_a.y + p_b.y};
}
template <class T>
constexpr Vector2_Base<T> operator-(const Vector2_Base<T>& p_a, const Vector2_Base<T>& p_b) {
  return {p_a.x - p_b.x, p_a.y - p_b.y};
}
template <class T>
constexpr Vector2_Base<T> operator-(const Vector2_Base<T>& p_a) {
  return {-p_a.x, -p_a.y};
}
template <class T>
constexpr Vector2_Base<T> operator*(const Vector2_Base<T>& p_a, T p_factor) {
  return {p_a.x * p_factor, p_a.y * p_factor};
}
template <class T>
constexpr Vector2_Base<T> operator/(const Vector2_Base<T>& p_a, T p_divisor) {
  return {p_a.x / p_divisor, p_a.y / p_divisor};
}
template <class T>
constexpr bool operator==(const Vector2_Base<T>& p_a, const Vector2_Base<T>& p_b) {
  return p_a.x == p_b.x && p_a.y == p_b.y;
}
template <class T>
constexpr T Dot(const Vector2_Base<T>& p_a, const Vector2_Base<T>& p_b) {
  return p_a.x * p_b.x + p_a.y * p_b.y;
}

template <class T>
constexpr Vector3_Base<T> operator+(const Vector3_Base<T>& p_a, const Vector3_Base<T>& p_b) {
  return {p_a.x + p_b.x, p_a.y + p_b.y, p_a.z + p_b.z};
}
template <class T>
constexpr Vector3_Base<T> operator-(const Vector3_Base<T>& p_a, const Vector3_Base<T>& p_b) {
  return {p_a.x - p_b.x, p_a.y - p_b.y, p_a.z - p_b.z};
}
template <class T>
constexpr Vector3_Base<T> operator-(const Vector3_Base<T>& p_a) {
  return {-p_a.x, -p_a.y, -p_a.z};
}
template <class T>
constexpr Vector3_Base<T> operator*(const Vector3_Base<T>& p_a, T p_factor) {
  return {p_a.x * p_factor, p_a.y * p_factor, p_a.z * p_factor};
}
template <class T>
constexpr Vector3_Base<T> operator/(const Vector3_Base<T>& p_a, T p_divisor) {
  return {p_a.x / p_divisor, p_a.y / p_divisor, p_a.z / p_divisor};
}
template <class T>
constexpr bool operator==(const Vector3_Base<T>& p_a, const Vector3_Base<T>& p_b) {
  return p_a.x == p_b.x && p_a.y == p_b.y && p_a.z == p_b.z;
}
template <class T>
constexpr T Dot(const Vector3_Base<T>& p_a, const Vector3_Base<T>& p_b) {
  return p_a.x * p_b.x + p_a.y * p_b.y + p_a.z * p_b.z;
}
///@}

/// The right-handed cross product: Cross(x, y) = z.
template <class T>
constexpr Vector3_Base<T> Cross(const Vector3_Base<T>& p_a, const Vector3_Base<T>& p_b) {
  return {p_a.y * p_b.z - p_a.z * p_b.y, p_a.z * p_b.x - p_a.x * p_b.z, p_a.x * p_b.y - p_a.y * p_b.x};
}

///@{
/// Component-wise, for vectors of four components.
template <class T>
constexpr Vector4_Base<T> operator+(const Vector4_Base<T>& p_a, const Vector4_Base<T>& p_b) {
  return {p_a.x + p_b.x, p_a.y + p_b.y, p_a.z + p_b.z, p_a.w + p_b.w};
}
template <class T>
constexpr Vector4_Base<T> operator-(const Vector4_Base<T>& p_a, const Vector4_Base<T>& p_b) {
  return {p_a.x - p_b.x, p_a.y - p_b.y, p_a.z - p_b.z, p_a.w - p_b.w};
}
template <class T>
constexpr Vector4_Base<T> operator*(const Vector4_Base<T>& p_a, T p_factor) {
  return {p_a.x * p_factor, p_a.y * p_factor, p_a.z * p_factor, p_a.w * p_factor};
}
template <class T>
constexpr bool operator==(const Vector4_Base<T>& p_a, const Vector4_Base<T>& p_b) {
  return p_a.x == p_b.x && p_a.y == p_b.y && p_a.z == p_b.z && p_a.w == p_b.w;
}
template <class T>
constexpr T Dot(const Vector4_Base<T>& p_a, const Vector4_Base<T>& p_b) {
  return p_a.x * p_b.x + p_a.y * p_b.y + p_a.z * p_b.z + p_a.w * p_b.w;
}
///@}

///@{
/// Operations that follow from those above, for all three kinds.
template <class Vector>
constexpr auto operator!=(const Vector& p_a, const Vector& p_b) -> decltype(Dot(p_a, p_b), bool()) {
  return !(p_a == p_b);
}
template <class T, template <class> class Vector>
constexpr auto operator*(T p_factor, const Vector<T>& p_a) -> decltype(Dot(p_a, p_a), Vector<T>()) {
  return p_a * p_factor;
}
template <class Vector>
constexpr auto operator+=(Vector& p_a, const Vector& p_b) -> decltype(Dot(p_a, p_b), p_a) {
  return p_a = p_a + p_b;
}
template <class Vector>
constexpr auto operator-=(Vector& p_a, const Vector& p_b) -> decltype(Dot(p_a, p_b), p_a) {
  return p_a = p_a - p_b;
}
///@}

/// The Euclidean length.
template <class Vector>
auto Length(const Vector& p_a) -> decltype(Dot(p_a, p_a)) {
  return std::sqrt(Dot(p_a, p_a));
}
/// The vector of unit length in the same direction; the zero vector for itself.
template <class Vector>
auto Normalize(const Vector& p_a) -> decltype(p_a / Length(p_a)) {
  const auto length = Length(p_a);
  return length == 0 ? p_a : p_a / length;
}

namespace Homogeneous {

/// The point (x, y, z, 1).
template <class T>
constexpr Vector4_Base<T> FromVector3(const Vector3_Base<T>& p_point) {
  return {p_point.x, p_point.y, p_point.z, T(1)};
}

} // namespace Homogeneous

} // namespace Vek::Chart::Types
