#pragma once

#include "platform/types/Angle.h"
#include "platform/types/Vector.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Vek::Chart::Types {

/// A 3 × 3 matrix of doubles, multiplied by column vectors on its right.
class Matrix3 {
public:
  /// The identity.
  constexpr Matrix3() = default;
  /// From its three rows.
  constexpr Matrix3(const Vector3_Base<double>& p_row0, const Vector3_Base<double>& p_row1,
                    const Vector3_Base<double>& p_row2)
      : _rows{{p_row0, p_row1, p_row2}} {}

  /// The matrix whose columns are the images of the three axes.
  static constexpr Matrix3 FromColumns(const Vector3_Base<double>& p_x, const Vector3_Base<double>& p_y,
                                       const Vector3_Base<double>& p_z) {
    return {{p_x.x, p_y.x, p_z.x}, {p_x.y, p_y.y, p_z.y}, {p_x.z, p_y.z, p_z.z}};
  }

  /// Right-handed rotation by an angle about an axis of any length; the identity for a zero axis.
  static Matrix3 Rotation(Angle p_angle, const Vector3_Base<double>& p_axis) {
    const Vector3_Base<double> a = Normalize(p_axis);
    const double c = std::cos(p_angle.Radians());
    const double s = std::sin(p_angle.Radians());
    const double t = 1.0 - c;
    if (a == Vector3_Base<double>())
      return {};
    return {{c + a.x * a.x * t, a.x * a.y * t - a.z * s, a.x * a.z * t + a.y * s},
            {a.y * a.x * t + a.z * s, c + a.y * a.y * t, a.y * a.z * t - a.x * s},
            {a.z * a.x * t - a.y * s, a.z * a.y * t + a.x * s, c + a.z * a.z * t}};
  }

  /// The rotation of a glyph's axis +z into `p_direction`, with its +y as close to `p_up` as that leaves it: columns x,
  /// y and z, orthonormal and right-handed. Neither vector needs a certain length.
  ///
  /// An up vector that is zero, not finite, or within 1e-6 of the line of the direction (as the sine of their angle)
  /// leaves the roll open. +y is then turned as close as possible to the axis +y of the world, or to its +z where the
  /// direction runs along ±y. So FromAxis of +z is the identity, and of -z half a turn about +y; small noise in such a
  /// direction does not change the roll. No choice of the roll is continuous in all directions; elsewhere this one is.
  ///
  /// A direction that is zero or not finite gives the identity.
  static Matrix3 FromAxis(const Vector3_Base<double>& p_direction,
                          const Vector3_Base<double>& p_up = Vector3_Base<double>(0, 0, 1)) {
    using Vector = Vector3_Base<double>;
    constexpr double Parallel = 1e-6;
    const Vector z = UnitOrZero(p_direction);
    for (const Vector& up : {UnitOrZero(p_up), Vector(0, 1, 0), Vector(0, 0, 1)})
      if (const Vector side = Cross(up, z); Length(side) > Parallel) {
        const Vector y = Normalize(Cross(z, side));
        return FromColumns(Cross(y, z), y, z);
      }
    return {}; // there is no direction
  }

  /// Row 0 to 2; other indices throw std::out_of_range.
  const Vector3_Base<double>& Row(std::size_t p_index) const { return _rows.at(p_index); }

  /// The transposed matrix, which for a rotation is its inverse.
  constexpr Matrix3 Transposed() const { return FromColumns(_rows[0], _rows[1], _rows[2]); }

  ///@{
  /// The product; products of matrices apply the right factor first.
  friend constexpr Vector3_Base<double> operator*(const Matrix3& p_matrix, const Vector3_Base<double>& p_vector) {
    return {Dot(p_matrix._rows[0], p_vector), Dot(p_matrix._rows[1], p_vector), Dot(p_matrix._rows[2], p_vector)};
  }
  friend constexpr Matrix3 operator*(const Matrix3& p_a, const Matrix3& p_b) {
    const Matrix3 columns = p_b.Transposed();
    return FromColumns(p_a * columns._rows[0], p_a * columns._rows[1], p_a * columns._rows[2]);
  }
  ///@}
  /// Compares element by element.
  friend constexpr bool operator==(const Matrix3& p_a, const Matrix3& p_b) {
    return p_a._rows[0] == p_b._rows[0] && p_a._rows[1] == p_b._rows[1] && p_a._rows[2] == p_b._rows[2];
  }

private:
  /// At unit length; zero for the zero vector and for one that is not finite. Neither overflows nor underflows.
  static Vector3_Base<double> UnitOrZero(const Vector3_Base<double>& p_vector) {
    const double largest = std::max({std::abs(p_vector.x), std::abs(p_vector.y), std::abs(p_vector.z)});
    if (!std::isfinite(p_vector.x) || !std::isfinite(p_vector.y) || !std::isfinite(p_vector.z) || largest == 0)
      return {};
    return Normalize(p_vector / largest);
  }

  std::array<Vector3_Base<double>, 3> _rows{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
};

} // namespace Vek::Chart::Types
