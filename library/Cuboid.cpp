#include "library/Cuboid.h"

#include "library/private/gl/QuadricDraw.h"
#include "platform/ogl/Guard.h"

namespace Vek::Chart::Library {

void Cuboid::operator()(const Utility::Unscoped<Rgl>& p_gl, const Geometry& p_geometry) {
  Utility::Scoped<Rgl> gl(p_gl);
  const Types::Vector3_Base<double>& edges = size.Value();
  if (size.Changed()) {
    inverseSize = {1 / edges.x, 1 / edges.y, 1 / edges.z};
    size.ClearChanged();
  }
  const boost::shared_ptr<void> polygons = gl->PushAttribScope(RGL_POLYGON_BIT);
  gl->PolygonMode(RGL_FRONT_AND_BACK, filled ? RGL_FILL : RGL_LINE);
  const boost::shared_ptr<void> moved = Private::TranslateScope(gl, position.Value());
  gl->Scale(edges);
  const boost::shared_ptr<void> scaled = Ogl::MakeGuard([&] { gl->Scale(inverseSize); });
  p_geometry.Cube(gl);
}

} // namespace Vek::Chart::Library
