#include "library/private/GlyphTransform.h"

#include <cstring>

// Each loop below is compiled for every processor and, where the compiler can, once more for those with AVX2. Both give
// the same bits: the operations are the same, and products are not fused.
#if defined(__GNUC__) && defined(__x86_64__)
#define VEK_HAS_AVX2_CLONES 1
#define VEK_INLINE inline __attribute__((always_inline))
#define VEK_AVX2 __attribute__((target("avx2")))
#else
#define VEK_HAS_AVX2_CLONES 0
#define VEK_INLINE inline
#endif

namespace Vek::Chart::Library::Private {

namespace {

using Types::Matrix3;
using Types::Vector3_Base;

/// A matrix by columns. The fourth row is idle: with it the three sums of a point fill a register.
struct Columns {
  double x[4];
  double y[4];
  double z[4];
};

VEK_INLINE Columns ColumnsOf(const Matrix3& p_matrix) {
  const Vector3_Base<double>& a = p_matrix.Row(0);
  const Vector3_Base<double>& b = p_matrix.Row(1);
  const Vector3_Base<double>& c = p_matrix.Row(2);
  return {{a.x, b.x, c.x, 0}, {a.y, b.y, c.y, 0}, {a.z, b.z, c.z, 0}};
}

/// Stores three floats of four. The idle one may be stored too, where the next point's will replace it.
VEK_INLINE void Store(const float* p_row, std::size_t p_index, std::size_t p_count, float* p_out) {
  std::memcpy(p_out + 3 * p_index, p_row, (p_index + 1 < p_count ? 4 : 3) * sizeof(float));
}

VEK_INLINE void Place(const Vector3_Base<double>* p_points, std::size_t p_count, const GlyphPlacement& p_placement,
                      float* p_out) {
  const Columns matrix = ColumnsOf(p_placement.rotation);
  const double position[4] = {p_placement.position.x, p_placement.position.y, p_placement.position.z, 0};
  const double factor = p_placement.factor;
  const double shift = p_placement.shift;
  for (std::size_t i = 0; i < p_count; ++i) {
    const double x = p_points[i].x * factor;
    const double y = p_points[i].y * factor;
    const double z = (p_points[i].z - shift) * factor;
    float row[4];
    for (int r = 0; r < 4; ++r)
      row[r] = static_cast<float>((matrix.x[r] * x + matrix.y[r] * y + matrix.z[r] * z) + position[r]);
    Store(row, i, p_count, p_out);
  }
}

VEK_INLINE void Rotate(const Vector3_Base<double>* p_directions, std::size_t p_count, const Matrix3& p_rotation,
                       float* p_out) {
  const Columns matrix = ColumnsOf(p_rotation);
  for (std::size_t i = 0; i < p_count; ++i) {
    const Vector3_Base<double> d = p_directions[i];
    float row[4];
    for (int r = 0; r < 4; ++r)
      row[r] = static_cast<float>(matrix.x[r] * d.x + matrix.y[r] * d.y + matrix.z[r] * d.z);
    Store(row, i, p_count, p_out);
  }
}

#if VEK_HAS_AVX2_CLONES
VEK_AVX2 void PlaceWide(const Vector3_Base<double>* p_points, std::size_t p_count, const GlyphPlacement& p_placement,
                        float* p_out) {
  Place(p_points, p_count, p_placement, p_out);
}
VEK_AVX2 void RotateWide(const Vector3_Base<double>* p_directions, std::size_t p_count, const Matrix3& p_rotation,
                         float* p_out) {
  Rotate(p_directions, p_count, p_rotation, p_out);
}
#endif

} // namespace

void PlacePoints(const Vector3_Base<double>* p_points, std::size_t p_count, const GlyphPlacement& p_placement,
                 float* p_out) {
#if VEK_HAS_AVX2_CLONES
  if (__builtin_cpu_supports("avx2"))
    return PlaceWide(p_points, p_count, p_placement, p_out);
#endif
  Place(p_points, p_count, p_placement, p_out);
}

void RotateDirections(const Vector3_Base<double>* p_directions, std::size_t p_count, const Matrix3& p_rotation,
                      float* p_out) {
#if VEK_HAS_AVX2_CLONES
  if (__builtin_cpu_supports("avx2"))
    return RotateWide(p_directions, p_count, p_rotation, p_out);
#endif
  Rotate(p_directions, p_count, p_rotation, p_out);
}

} // namespace Vek::Chart::Library::Private
