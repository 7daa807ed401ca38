#include "apps/parallel/FieldImage.h"

#include "apps/parallel/FieldParts.h"

#include <QFileInfo>

namespace Vek::Chart::Apps {

using Io::GridSplit;
using Parallel::FigureDescription;
using Box = Types::BoundingBox_Base<double>;

QString TitleOf(const std::string& p_name, const std::string& p_unit) {
  return QString::fromStdString(p_unit.empty() ? p_name : p_name + " in " + p_unit);
}

FigureDescription DescriptionOf(const FieldOptions& p_options, const std::vector<std::string>& p_times) {
  FigureDescription description;
  if (p_options.time < p_times.size())
    description.subtitle = QString::fromStdString(p_times[p_options.time]);
  description.title =
      p_options.title.isEmpty() ? QFileInfo(QString::fromStdString(p_options.path)).fileName() : p_options.title;
  description.colorMap = p_options.colorMap;
  description.colorRange = p_options.range;
  description.opacity = p_options.opacity;
  description.azimuth = p_options.look[0];
  description.elevation = p_options.look[1];
  return description;
}

Box BoxBetween(const WholeAxes& p_axes, const GridSplit::Sizes& p_first, const GridSplit::Sizes& p_last) {
  Box box;
  for (const GridSplit::Sizes& node : {p_first, p_last})
    box += {p_axes[0][node[0]], p_axes[1][node[1]], p_axes[2][node[2]]};
  return box;
}

QImage DrawField(const Parallel::Compositor& p_compositor, const FieldOptions& p_options) {
  return p_options.kind == FieldOptions::Kind::Arrows ? DrawArrows(p_compositor, p_options)
                                                      : DrawVoxels(p_compositor, p_options);
}

} // namespace Vek::Chart::Apps
