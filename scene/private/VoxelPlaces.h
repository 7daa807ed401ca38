#pragma once

#include "scene/private/VoxelAxis.h"

#include "platform/ogl/PerContext.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Geometry.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <array>

namespace Vek::Chart::Scene::Private {

/// Where the cells of a grid lie, and, where some are uneven, a texture from positions to texture coordinates.
class VoxelPlaces {
public:
  using Point = Types::Vector3_Base<double>;
  using Box = Types::BoundingBox_Base<double>;

  /// Throws std::invalid_argument for axes without an extent, or with one that is not finite.
  explicit VoxelPlaces(std::array<VoxelAxis, 3> p_axes);

  const VoxelAxis& Axis(std::size_t p_axis) const { return _axes[p_axis]; }
  const Box& Bounds() const { return _box; }
  bool AreEven() const { return _axes[0].IsEven() && _axes[1].IsEven() && _axes[2].IsEven(); }
  Point Share(const Point& p_position) const {
    return {_axes[0].Share(p_position.x), _axes[1].Share(p_position.y), _axes[2].Share(p_position.z)};
  }
  Point Coordinate(const Point& p_position) const {
    return {_axes[0].Coordinate(p_position.x), _axes[1].Coordinate(p_position.y), _axes[2].Coordinate(p_position.z)};
  }

  /// Binds a texture on a unit (a token): one row for each axis, its texels the texture coordinates of even shares of
  /// the box from 0 to 1. False after a report.
  bool BindTable(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const;
  void Release(const Utility::Scoped<Rgl>& p_gl) const { _tables.Release(p_gl); }

private:
  struct Table {
    boost::shared_ptr<Ogl::Texture> name;
    bool tried = false;
  };
  boost::shared_ptr<Ogl::Texture> Upload(Utility::Scoped<Rgl>& p_gl) const;

  std::array<VoxelAxis, 3> _axes;
  Box _box;
  Ogl::PerContext<Table> _tables;
};

/// The texels of a row.
constexpr int PlacesWidth = 4096;

/// For a shader: `vec3 TexelAt(vec3 share)`, the texture coordinate of a share of the box, by the sampler `places`.
extern const char* const PlacesText;

} // namespace Vek::Chart::Scene::Private
