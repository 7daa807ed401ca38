#pragma once

namespace Vek::Chart::Model::Symbol {

/// The built-in glyph shapes of the chart model; 0 means none. The values are also the slots of the table of built-in
/// model files. Any number is a valid value; numbers outside of 1 to 15 are unknown and reported where they are used.
enum Shape : int {
  ShapePoint = 1,            ///< one vertex at the origin
  ShapeArrowHead1D = 2,      ///< line chevron
  ShapeArrow1D = 3,          ///< line arrow
  ShapeArrowHead2D = 4,      ///< flat triangle
  ShapeArrow2D = 5,          ///< flat arrow
  ShapePlane = 6,            ///< flat unit square
  ShapeArrowHead3D = 7,      ///< cone with base cap
  ShapeArrow3D = 8,          ///< cylindrical shaft with conical head
  ShapeCylinder = 9,         ///< open cylinder
  ShapeCone = 10,            ///< open cone
  ShapeCircularArrow3D = 11, ///< three-quarter ring arrow
  ShapeCrosshair = 12,       ///< three axis-parallel lines
  ShapeCube = 13,            ///< unit cube
  ShapeSphere = 14,          ///< sphere
  ShapeCustom = 15,          ///< a model of the user's; the built-in table holds a torus here
};

} // namespace Vek::Chart::Model::Symbol
