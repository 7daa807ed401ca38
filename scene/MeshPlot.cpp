#include "scene/MeshPlot.h"

#include "scene/private/MeshContent.h"

namespace Vek::Chart::Scene {

MeshPlot::MeshPlot(Private::MeshData p_data)
    : ColoredPlot(std::make_unique<Private::MeshContent>(std::move(p_data))) {}

MeshPlot& MeshPlot::ColorByFile() {
  static_cast<Private::MeshContent&>(Content()).ColorByFile();
  return *this;
}

MeshPlot& MeshPlot::UpdatePositions(const Array3& p_positions) {
  static_cast<Private::MeshContent&>(Content()).UpdatePositions(p_positions);
  return *this;
}

} // namespace Vek::Chart::Scene
