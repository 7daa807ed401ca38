#pragma once

#include "apps/gallery/Loading.h"

#include "platform/types/Vector.h"

#include <array>
#include <cstddef>
#include <istream>
#include <string>
#include <vector>

namespace Vek::Chart::Gallery {

/// Vectors at the nodes of a regular grid, x fastest. A grid that is one node thick is flat: it holds at the z of its
/// nodes only.
class VectorGrid {
public:
  using Vector = Types::Vector3_Base<double>;
  using Counts = std::array<std::size_t, 3>;

  /// `p_vectors` has one element a node; `p_spacing` is above 0. With `p_wraps`, the columns go once around in x.
  VectorGrid(const Counts& p_counts, const Vector& p_origin, const Vector& p_spacing, std::vector<Vector> p_vectors,
             bool p_wraps = false);

  /// Reads a grid: a first line "# dims nx ny nz origin x y z spacing dx dy dz" (the last two may be left out: 0 0 0
  /// and 1 1 1), then a table of comma-separated values with a header that names the columns u, v and w, one row a
  /// node, x fastest, then y. Further columns are passed over. Throws InputError when the text is anything else.
  static VectorGrid Read(std::istream& p_stream, const std::string& p_name);
  static VectorGrid ReadFile(const std::string& p_path, Loading& p_loading);

  /// The vector at a place, linear between the nodes around it; false, and nothing written, beyond the border.
  bool At(const Vector& p_place, Vector& p_vector) const;

  const Counts& Size() const { return _counts; }
  Vector Place(std::size_t p_x, std::size_t p_y, std::size_t p_z) const;
  const Vector& Node(std::size_t p_x, std::size_t p_y, std::size_t p_z) const;
  Vector Min() const { return Place(0, 0, 0); }
  Vector Max() const { return Place(_counts[0] - 1, _counts[1] - 1, _counts[2] - 1); }
  const Vector& Spacing() const { return _spacing; }
  /// The length that a fraction of all vectors does not exceed.
  double LengthQuantile(double p_fraction) const;

private:
  Counts _counts;
  Vector _origin;
  Vector _spacing;
  std::vector<Vector> _vectors;
  bool _wraps;
};

} // namespace Vek::Chart::Gallery
