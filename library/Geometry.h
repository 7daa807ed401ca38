#pragma once

#include "library/Export.h"
#include "platform/ogl/Objects.h"
#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

namespace Vek::Chart::Library {

/// Unit shapes, recorded once into display lists and replayed by one call each.
///
/// | shape         | extent                                                                    |
/// |---------------|---------------------------------------------------------------------------|
/// | Cube          | edge 1 around the origin, one normal per face                               |
/// | Sphere        | radius 0.5 around the origin                                              |
/// | Cylinder      | open, radius 0.5, from z = 0 to 1                                         |
/// | Cone          | open, radius 0.5 at z = 0, tip at z = 1                                   |
/// | Disk          | radius 0.5 in the plane z = 0                                             |
/// | CircularArrow | around the origin: x within ±0.499, y from −0.489 to 0.45, z within ±0.5  |
/// | Ring          | nothing: its list is empty, deliberately                                  |
/// | Voxel         | the cube from 0 to 1 of `TexturedCube`, texture coordinates on unit 0     |
///
/// All shapes except Voxel have normals. They are drawn with the current colour, material, texture and transformation.
/// A replay leaves the current normal (Voxel: the texture coordinate) changed. The lists belong to the context of the
/// handle, which must be current when the last copy is destroyed. If GL cannot make a quadric or a list, the failure is
/// reported and the shape draws nothing.
///
/// \snippet DrawingSnippets.cpp Geometry
/// \image html shapes.jpg
/// \ingroup drawables
class VEK_LIBRARY_API Geometry {
public:
  /// Records all shapes in the context of the handle.
  explicit Geometry(const Utility::Unscoped<Rgl>& p_gl);
  ~Geometry();
  /// Copies share the lists.
  Geometry(const Geometry&) = default;
  /// Copy assignment; shares the lists.
  Geometry& operator=(const Geometry&) = default;

  ///@{
  /// Replays the unit shape of that name (see the table). The scope is unused; it guarantees a current context.
  void Cube(const Utility::Scoped<Rgl>& p_gl) const;
  void Sphere(const Utility::Scoped<Rgl>& p_gl) const;
  void Cylinder(const Utility::Scoped<Rgl>& p_gl) const;
  void Disk(const Utility::Scoped<Rgl>& p_gl) const;
  void Cone(const Utility::Scoped<Rgl>& p_gl) const;
  void CircularArrow(const Utility::Scoped<Rgl>& p_gl) const;
  void Ring(const Utility::Scoped<Rgl>& p_gl) const;
  void Voxel(const Utility::Scoped<Rgl>& p_gl) const;
  ///@}

private:
  boost::shared_ptr<Ogl::DisplayList> _cube;
  boost::shared_ptr<Ogl::DisplayList> _sphere;
  boost::shared_ptr<Ogl::DisplayList> _cylinder;
  boost::shared_ptr<Ogl::DisplayList> _disk;
  boost::shared_ptr<Ogl::DisplayList> _cone;
  boost::shared_ptr<Ogl::DisplayList> _circularArrow;
  boost::shared_ptr<Ogl::DisplayList> _ring;
  boost::shared_ptr<Ogl::DisplayList> _voxel;
};

} // namespace Vek::Chart::Library
