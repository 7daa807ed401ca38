#pragma once

#include "platform/types/Matrix.h"
#include "platform/types/Vector.h"

#include <cstddef>

namespace Vek::Chart::Library::Private {

/// Where one copy of a glyph goes: rotation * ((p - (0, 0, shift)) * factor) + position.
struct GlyphPlacement {
  Types::Matrix3 rotation;
  Types::Vector3_Base<double> position;
  double shift = 0.0;
  double factor = 1.0;
};

/// Places points, each stored as three floats. All floats of the library's glyphs come from these two functions, so
/// that every way to draw a glyph gives the same bits.
void PlacePoints(const Types::Vector3_Base<double>* p_points, std::size_t p_count, const GlyphPlacement& p_placement,
                 float* p_out);

/// Rotates directions, each stored as three floats.
void RotateDirections(const Types::Vector3_Base<double>* p_directions, std::size_t p_count,
                      const Types::Matrix3& p_rotation, float* p_out);

} // namespace Vek::Chart::Library::Private
