#include "library/Arrow3D.h"

#include "library/Cylinder.h"

namespace Vek::Chart::Library {

void Arrow3D::operator()(const Utility::Unscoped<Rgl>& p_gl) const {
  const Utility::Scoped<Rgl> gl(p_gl); // one for both parts
  const double shaftLength = (1 - headFraction) * length;

  Cylinder shaft;
  shaft.position = position;
  shaft.baseRadius = shaft.topRadius = shaftRadius;
  shaft.height = shaftLength;
  shaft.filled = filled;
  shaft.slices = segments;
  shaft.stacks = 1;
  shaft(p_gl);

  Cylinder head;
  head.position = position + Types::Vector3_Base<double>(0, 0, shaftLength);
  head.baseRadius = headRadius;
  head.topRadius = 0.0;
  head.height = length * headFraction;
  head.slices = segments;
  head.stacks = 1;
  head(p_gl);
}

} // namespace Vek::Chart::Library
