#pragma once

#include "platform/types/Matrix.h"

#include <array>

namespace Vek::Chart::Types {

/// An affine transformation of points: a 3 × 3 matrix followed by a translation. Products apply the right factor first.
class Transformation {
public:
  /// The identity.
  constexpr Transformation() = default;
  /// The matrix first, then the translation.
  constexpr Transformation(const Matrix3& p_linear, const Vector3_Base<double>& p_translation)
      : _linear(p_linear)
      , _translation(p_translation) {}
  /// Right-handed rotation by an angle about an axis through the origin.
  Transformation(Angle p_angle, const Vector3_Base<double>& p_axis)
      : _linear(Matrix3::Rotation(p_angle, p_axis)) {}

  /// Translation by an offset.
  static constexpr Transformation Translation(const Vector3_Base<double>& p_offset) { return {Matrix3(), p_offset}; }
  /// Scaling along the axes.
  static constexpr Transformation Scaling(const Vector3_Base<double>& p_factors) {
    return {Matrix3({p_factors.x, 0, 0}, {0, p_factors.y, 0}, {0, 0, p_factors.z}), {}};
  }

  /// The matrix.
  constexpr const Matrix3& Linear() const { return _linear; }
  /// The translation.
  constexpr const Vector3_Base<double>& Offset() const { return _translation; }

  /// The elements of the 4 × 4 matrix in column-major order, as GL takes them.
  std::array<double, 16> ColumnMajor() const {
    const Matrix3 c = _linear.Transposed();
    return {c.Row(0).x, c.Row(0).y, c.Row(0).z, 0, c.Row(1).x,     c.Row(1).y,     c.Row(1).z,     0,
            c.Row(2).x, c.Row(2).y, c.Row(2).z, 0, _translation.x, _translation.y, _translation.z, 1};
  }

  ///@{
  /// The product; products of transformations apply the right factor first.
  friend constexpr Vector3_Base<double> operator*(const Transformation& p_t, const Vector3_Base<double>& p_point) {
    return p_t._linear * p_point + p_t._translation;
  }
  friend constexpr Transformation operator*(const Transformation& p_a, const Transformation& p_b) {
    return {p_a._linear * p_b._linear, p_a * p_b._translation};
  }
  ///@}

private:
  Matrix3 _linear;
  Vector3_Base<double> _translation;
};

} // namespace Vek::Chart::Types
