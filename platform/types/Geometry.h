#pragma once

#include "platform/types/Vector.h"

#include <limits>

namespace Vek::Chart::Types {

/// A plane through a point, with a normal of any length. The plane of three points a, b, c has the point a and the
/// normal (b − a) × (c − a): seen from where the normal points, they run counter-clockwise.
class Plane {
public:
  /// The plane z = 0 with normal +z.
  constexpr Plane() = default;
  /// The plane through `p_point` with that normal, which must not be zero; not checked.
  constexpr Plane(const Vector3_Base<double>& p_point, const Vector3_Base<double>& p_normal)
      : _point(p_point)
      , _normal(p_normal) {}
  /// The plane of three points, which must not lie in one line.
  constexpr Plane(const Vector3_Base<double>& p_a, const Vector3_Base<double>& p_b, const Vector3_Base<double>& p_c)
      : Plane(p_a, Cross(p_b - p_a, p_c - p_a)) {}

  /// The point that the plane was made from.
  constexpr const Vector3_Base<double>& Point() const { return _point; }
  /// The normal as given, not normalised.
  constexpr const Vector3_Base<double>& Normal() const { return _normal; }

  /// (a, b, c, d) with a·x + b·y + c·z + d = 0 on the plane: the normal, and −(normal · point).
  constexpr Vector4_Base<double> Equation() const { return {_normal.x, _normal.y, _normal.z, -Dot(_normal, _point)}; }

private:
  Vector3_Base<double> _point;
  Vector3_Base<double> _normal{0, 0, 1};
};

/// A straight line.
template <class T>
struct Line3_Base {
  Vector3_Base<T> point;     ///< any point on the line
  Vector3_Base<T> direction; ///< of any length

  constexpr Line3_Base() = default; ///< zeros, not a line
  /// The line through a point along a direction.
  constexpr Line3_Base(const Vector3_Base<T>& p_point, const Vector3_Base<T>& p_direction)
      : point(p_point)
      , direction(p_direction) {}
};

/// A ray of limited length.
template <class T>
struct Ray_Base {
  Vector3_Base<T> origin;    ///< the start
  Vector3_Base<T> direction; ///< its length is that of the ray

  constexpr Ray_Base() = default; ///< zeros, not a ray
  /// The ray from `p_origin` to p_origin + p_direction.
  constexpr Ray_Base(const Vector3_Base<T>& p_origin, const Vector3_Base<T>& p_direction)
      : origin(p_origin)
      , direction(p_direction) {}
};

/// An axis-aligned box. A new box is empty: its minimum is +infinity and its maximum −infinity.
template <class T>
class BoundingBox_Base {
public:
  constexpr BoundingBox_Base() = default; ///< empty
  /// The box between two corners, unchecked; a minimum above its maximum makes it empty.
  constexpr BoundingBox_Base(const Vector3_Base<T>& p_min, const Vector3_Base<T>& p_max)
      : _min(p_min)
      , _max(p_max) {}

  /// The lower corner.
  constexpr const Vector3_Base<T>& Min() const { return _min; }
  /// The upper corner.
  constexpr const Vector3_Base<T>& Max() const { return _max; }

  /// Whether some minimum exceeds its maximum, or is NaN.
  constexpr bool Empty() const { return !(_min.x <= _max.x && _min.y <= _max.y && _min.z <= _max.z); }
  /// Edge lengths; zero for an empty box.
  constexpr Vector3_Base<T> Extent() const { return Empty() ? Vector3_Base<T>() : _max - _min; }
  /// The middle; zero for an empty box.
  constexpr Vector3_Base<T> Center() const { return Empty() ? Vector3_Base<T>() : (_min + _max) * T(0.5); }

  /// Extends the box to the point. Components that are NaN are ignored.
  constexpr BoundingBox_Base& operator+=(const Vector3_Base<T>& p_point) {
    Grow(p_point.x, _min.x, _max.x);
    Grow(p_point.y, _min.y, _max.y);
    Grow(p_point.z, _min.z, _max.z);
    return *this;
  }
  /// Extends the box to the other one; an empty one changes nothing.
  constexpr BoundingBox_Base& operator+=(const BoundingBox_Base& p_box) {
    if (p_box.Empty())
      return *this;
    *this += p_box._min;
    return *this += p_box._max;
  }

  /// Compares the corners. Empty boxes are equal only if their corners are.
  friend constexpr bool operator==(const BoundingBox_Base& p_a, const BoundingBox_Base& p_b) {
    return p_a._min == p_b._min && p_a._max == p_b._max;
  }

private:
  static constexpr void Grow(T p_value, T& p_min, T& p_max) {
    if (p_value < p_min)
      p_min = p_value;
    if (p_value > p_max)
      p_max = p_value;
  }
  static constexpr T Infinity = std::numeric_limits<T>::infinity();
  Vector3_Base<T> _min{Infinity, Infinity, Infinity};
  Vector3_Base<T> _max{-Infinity, -Infinity, -Infinity};
};

} // namespace Vek::Chart::Types
