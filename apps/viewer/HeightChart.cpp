#include "apps/viewer/Charts.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Viewer {

namespace {

/// Whether values are lengths, as those of a relief, by their unit.
bool AreLengths(const std::string& p_unit) {
  const QString unit = QString::fromStdString(p_unit).toLower();
  return unit.isEmpty() || unit == "m" || unit == "km" || unit == "ft" || unit == "feet" || unit.startsWith("met");
}

class HeightChart : public Chart {
public:
  HeightChart(const std::shared_ptr<const Document>& p_document, const Io::HeightGrid& p_grid)
      : Chart(QString::fromStdString(p_document->Name()))
      , _document(p_document)
      , _grid(p_grid.period > 0 ? p_grid.Closed(p_grid.period) : p_grid)
      , _isMap(AngleOf(p_grid.xName, p_grid.xUnit) == 'x' && AngleOf(p_grid.yName, p_grid.yUnit) == 'y') {
    figure->SetMap(_isMap);
    QStringList parts{QString("%L1 × %L2 values").arg(p_grid.x.size()).arg(p_grid.y.size()),
                      QString::fromStdString(p_grid.name)};
    if (p_document->part.time < p_grid.times.size())
      parts << QString::fromStdString(p_grid.times[p_document->part.time]);
    if (p_document->part.level < p_grid.levels.size())
      parts << QString("level %1").arg(p_grid.levels[p_document->part.level]);
    parts.removeAll(QString());
    figure->SetTitle(QString::fromStdString(p_document->Name()), parts.join(" · "));
    AddParts("Surface", p_document->part, p_grid.times, p_grid.variables, p_grid.levels);
    AddChoice("Surface", "Shape", {"relief", "flat"}, _isMap && !AreLengths(p_grid.unit) ? 1 : 0, [this](int p_shape) {
      Build(p_shape == 1);
    }).rebuilds = true;
    Setting& lines = AddNumber("Surface", "Contour lines", 0, {0, 40},
                               [this](double p_most) { _surface->Contours(static_cast<int>(p_most)); });
    lines.isWhole = true;
    lines.isOffered = [this] { return Get<int>("Surface", "Shape") == 0; };
    Set("Surface", "Contour lines", 10.0);
    AddColors({ColoredOf(_surface)});
    AddNumber("Colours", "Opacity", 1, {0, 1}, [this](double p_opacity) { _surface->SetOpacity(p_opacity); });
  }

private:
  void Build(bool p_isFlat) {
    if (_surface != nullptr)
      figure->Remove(*_surface);
    const QString title = TitleOf(_grid.name.empty() ? "Height" : _grid.name, _grid.unit);
    if (_isMap)
      figure->SetAxisTitles({}, {}, title);
    else
      figure->SetAxisTitles(TitleOf(_grid.xName, _grid.xUnit), TitleOf(_grid.yName, _grid.yUnit), title);
    if (p_isFlat) {
      std::vector<double> heights(_grid.heights.size());
      std::transform(_grid.heights.begin(), _grid.heights.end(), heights.begin(),
                     [](double p_height) { return std::isnan(p_height) ? p_height : 0; });
      _surface = &figure->Surface(_grid.x, _grid.y, heights).ColorBy(_grid.heights);
    } else {
      _surface = &figure->Surface(_grid.x, _grid.y, _grid.heights);
    }
    _surface->ColorTitle(title);
    figure->camera.reset();
  }

  std::shared_ptr<const Document> _document;
  const Io::HeightGrid _grid; ///< without a gap where longitudes start again
  const bool _isMap;
  Scene::SurfacePlot* _surface = nullptr;
};

} // namespace

std::unique_ptr<Chart> MakeHeightChart(const std::shared_ptr<const Document>& p_document,
                                       const Io::HeightGrid& p_grid) {
  return std::make_unique<HeightChart>(p_document, p_grid);
}

} // namespace Vek::Chart::Viewer
