#include "library/Cuboid.h"

namespace Vek::Chart::Library {

void Cuboid::operator()(const Utility::Unscoped<Rgl>& p_gl, const Geometry& p_geometry) {
  Utility::Scoped<Rgl> gl(p_gl);
  const Types::Vector3_Base<double>& edges = size.Value();
  if (size.Changed()) {
    inverseSize = {1 / edges.x, 1 / edges.y, 1 / edges.z};
    size.ClearChanged();
  }
  gl->PushAttrib(RGL_POLYGON_BIT);
  gl->PolygonMode(RGL_FRONT_AND_BACK, filled ? RGL_FILL : RGL_LINE);
  gl->Translate(position.Value());
  gl->Scale(edges);
  p_geometry.Cube(gl);
  gl->Scale(inverseSize);
  gl->Translate(-position.Value());
  gl->PopAttrib();
}

} // namespace Vek::Chart::Library
