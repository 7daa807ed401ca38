#pragma once

#include "platform/types/Angle.h"
#include "platform/types/Vector.h"

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
  std::array<Vector3_Base<double>, 3> _rows{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
};

} // namespace Vek::Chart::Types
