#include "library/private/mesh/GlyphTransform.h"

#include "library/private/Avx2.h"

namespace Vek::Chart::Library::Private {

using Types::Matrix3;
using Types::Vector3_Base;

namespace {

// Sums run from left to right, as in the product of a matrix and a vector.
VEK_INLINE double Product(const Vector3_Base<double>& p_row, double p_x, double p_y, double p_z) {
  return p_row.x * p_x + p_row.y * p_y + p_row.z * p_z;
}

VEK_INLINE void Place(const VectorColumns& p_points, const GlyphPlacement& p_placement, float* p_out) {
  const Vector3_Base<double> row0 = p_placement.rotation.Row(0);
  const Vector3_Base<double> row1 = p_placement.rotation.Row(1);
  const Vector3_Base<double> row2 = p_placement.rotation.Row(2);
  const Vector3_Base<double> position = p_placement.position;
  const double shift = p_placement.shift;
  const double factor = p_placement.factor;
  const double* const xs = p_points.x.data();
  const double* const ys = p_points.y.data();
  const double* const zs = p_points.z.data();
  const std::size_t count = p_points.Count() / 4 * 4; // no change; a hint for the vectoriser
  for (std::size_t i = 0; i < count; ++i) {
    const double x = xs[i] * factor;
    const double y = ys[i] * factor;
    const double z = (zs[i] - shift) * factor;
    p_out[4 * i] = static_cast<float>(Product(row0, x, y, z) + position.x);
    p_out[4 * i + 1] = static_cast<float>(Product(row1, x, y, z) + position.y);
    p_out[4 * i + 2] = static_cast<float>(Product(row2, x, y, z) + position.z);
    p_out[4 * i + 3] = 0.f;
  }
}

VEK_INLINE void Rotate(const VectorColumns& p_directions, const Matrix3& p_rotation, float* p_out) {
  const Vector3_Base<double> row0 = p_rotation.Row(0);
  const Vector3_Base<double> row1 = p_rotation.Row(1);
  const Vector3_Base<double> row2 = p_rotation.Row(2);
  const double* const xs = p_directions.x.data();
  const double* const ys = p_directions.y.data();
  const double* const zs = p_directions.z.data();
  const std::size_t count = p_directions.Count() / 4 * 4;
  for (std::size_t i = 0; i < count; ++i) {
    p_out[4 * i] = static_cast<float>(Product(row0, xs[i], ys[i], zs[i]));
    p_out[4 * i + 1] = static_cast<float>(Product(row1, xs[i], ys[i], zs[i]));
    p_out[4 * i + 2] = static_cast<float>(Product(row2, xs[i], ys[i], zs[i]));
    p_out[4 * i + 3] = 0.f;
  }
}

#if defined(VEK_AVX2)
VEK_AVX2 void PlaceWide(const VectorColumns& p_points, const GlyphPlacement& p_placement, float* p_out) {
  Place(p_points, p_placement, p_out);
}
VEK_AVX2 void RotateWide(const VectorColumns& p_directions, const Matrix3& p_rotation, float* p_out) {
  Rotate(p_directions, p_rotation, p_out);
}
#endif

} // namespace

VectorColumns::VectorColumns(const std::vector<Vector3_Base<double>>& p_vectors) {
  const std::size_t count = (p_vectors.size() + 3) / 4 * 4;
  x.resize(count);
  y.resize(count);
  z.resize(count);
  for (std::size_t i = 0; i < p_vectors.size(); ++i) {
    x[i] = p_vectors[i].x;
    y[i] = p_vectors[i].y;
    z[i] = p_vectors[i].z;
  }
}

void PlacePoints(const VectorColumns& p_points, const GlyphPlacement& p_placement, float* p_out) {
#if defined(VEK_AVX2)
  if (__builtin_cpu_supports("avx2"))
    return PlaceWide(p_points, p_placement, p_out);
#endif
  Place(p_points, p_placement, p_out);
}

void RotateDirections(const VectorColumns& p_directions, const Matrix3& p_rotation, float* p_out) {
#if defined(VEK_AVX2)
  if (__builtin_cpu_supports("avx2"))
    return RotateWide(p_directions, p_rotation, p_out);
#endif
  Rotate(p_directions, p_rotation, p_out);
}

} // namespace Vek::Chart::Library::Private
