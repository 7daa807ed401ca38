#pragma once

#include "scene/private/PlotContent.h"

#include "platform/types/Geometry.h"

#include <vector>

namespace Vek::Chart::Scene::Private {

// Figures whose x is a longitude and whose y is a latitude, in degrees. Data are placed by their own longitudes and
// drawn once for each turn that has a part on the map; GL's clip planes cut them at the borders.

constexpr std::size_t MapBorderCount = 4;

/// The limits of a map for which the user has set none: round ones around whole glyphs, within the latitudes; the whole
/// world for data that are nearly as wide.
Box MapLimits(const Box& p_limits, const Box& p_data);
/// The planes around a map in scene units, which face inwards.
std::vector<Types::Plane> MapBorders(const Box& p_map);
/// The distances along x by which copies of what was placed in a box have parts on the map. All in scene units.
std::vector<double> MapShifts(const Box& p_placed, const Box& p_map, double p_turn);
/// The frame for a copy that is moved by a vector, in scene units.
Frame ShiftedFrame(const Frame& p_frame, const Point& p_shift);

} // namespace Vek::Chart::Scene::Private
