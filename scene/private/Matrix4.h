#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

namespace Vek::Chart::Scene::Private {

/// A 4 × 4 matrix, column by column as GL has it.
using Matrix4 = std::array<double, 16>;

/// The product; the right factor applies first.
inline Matrix4 Product(const Matrix4& p_a, const Matrix4& p_b) {
  Matrix4 product{};
  for (std::size_t column = 0; column < 4; ++column)
    for (std::size_t row = 0; row < 4; ++row)
      for (std::size_t i = 0; i < 4; ++i)
        product[4 * column + row] += p_a[4 * i + row] * p_b[4 * column + i];
  return product;
}

/// The inverse, by Gauss-Jordan elimination with column pivots. False, and nothing written, without one.
inline bool Invert(Matrix4 p_matrix, Matrix4& p_inverse) {
  Matrix4 inverse{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  for (std::size_t i = 0; i < 4; ++i) { // columns are eliminated in place of rows: the inverse is the same
    std::size_t pivot = i;
    for (std::size_t j = i + 1; j < 4; ++j)
      if (std::abs(p_matrix[4 * j + i]) > std::abs(p_matrix[4 * pivot + i]))
        pivot = j;
    const double divisor = p_matrix[4 * pivot + i];
    if (!(std::abs(divisor) > 0) || !std::isfinite(divisor))
      return false;
    for (std::size_t row = 0; row < 4; ++row) {
      std::swap(p_matrix[4 * i + row], p_matrix[4 * pivot + row]);
      std::swap(inverse[4 * i + row], inverse[4 * pivot + row]);
      p_matrix[4 * i + row] /= divisor;
      inverse[4 * i + row] /= divisor;
    }
    for (std::size_t j = 0; j < 4; ++j) {
      const double factor = p_matrix[4 * j + i];
      if (j != i)
        for (std::size_t row = 0; row < 4; ++row) {
          p_matrix[4 * j + row] -= factor * p_matrix[4 * i + row];
          inverse[4 * j + row] -= factor * inverse[4 * i + row];
        }
    }
  }
  p_inverse = inverse;
  return true;
}

} // namespace Vek::Chart::Scene::Private
