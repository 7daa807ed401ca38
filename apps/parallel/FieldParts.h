#pragma once

#include "apps/parallel/FieldOptions.h"

#include "io/GridSplit.h"
#include "io/ReadVolume.h"
#include "parallel/Compositor.h"
#include "parallel/FigureDescription.h"

#include <QImage>

#include <array>
#include <string>
#include <vector>

namespace Vek::Chart::Apps {

using WholeAxes = std::array<std::vector<double>, 3>; ///< positions of all nodes along x, y and z

/// What is read of a file to learn its axes.
constexpr Io::GridRegion OneNode{{0, 0, 0}, {1, 1, 1}};

/// "Name in unit", or the name alone.
QString TitleOf(const std::string& p_name, const std::string& p_unit);
/// What the options and the times of the file say.
Parallel::FigureDescription DescriptionOf(const FieldOptions& p_options, const std::vector<std::string>& p_times);
/// The box between two nodes.
Types::BoundingBox_Base<double> BoxBetween(const WholeAxes& p_axes, const Io::GridSplit::Sizes& p_first,
                                           const Io::GridSplit::Sizes& p_last);

/// The image of the kind that its name says; see DrawField.
QImage DrawArrows(const Parallel::Compositor& p_compositor, const FieldOptions& p_options);
QImage DrawVoxels(const Parallel::Compositor& p_compositor, const FieldOptions& p_options);

} // namespace Vek::Chart::Apps
