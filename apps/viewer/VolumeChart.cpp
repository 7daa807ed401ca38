#include "apps/viewer/Charts.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Viewer {

namespace {

enum Shown { SlicesShown, CompositeShown, MaximumShown, AverageShown, IsosurfaceShown, SlicesAndIsosurfaceShown };

constexpr const char* Axes[] = {"x", "y", "z"};

double Along(const Scene::VoxelGrid::Point& p_point, int p_axis) {
  return p_axis == 0 ? p_point.x : p_axis == 1 ? p_point.y : p_point.z;
}

QString Number(double p_value) {
  return QString::number(p_value, 'g', 6).replace('-', QChar(0x2212));
}

class VolumeChart : public Chart {
public:
  VolumeChart(const std::shared_ptr<const Document>& p_document, const Io::Volume& p_volume)
      : Chart(QString::fromStdString(p_document->Name()))
      , _document(p_document)
      , _volume(p_volume)
      , _grid(p_volume, 0) {
    std::vector<std::string> steps = p_volume.times;
    for (std::size_t i = steps.size(); i < p_volume.steps; ++i)
      steps.push_back(std::to_string(i));
    AddParts("Volume", p_document->part, steps, p_volume.variables);
    if (p_volume.channels > 1) {
      QStringList names;
      for (std::size_t i = 0; i < p_volume.channels; ++i)
        names << (i < p_volume.channelNames.size() ? QString::fromStdString(p_volume.channelNames[i])
                                                   : QString::number(i + 1));
      AddChoice("Volume", "Channel", names, 0, [this](int p_channel) {
        Build(static_cast<std::size_t>(p_channel), _noData);
      }).rebuilds = true;
    } else {
      Build(0, {});
    }
    AddShown();
    AddNoData();
    AddSlices();
    AddClipping();
    AddRays();
    AddColors({ColoredOf(_slices), ColoredOf(_rays), ColoredOf(_surface)},
              [this] { return Show() != IsosurfaceShown; });
    if (p_volume.displayRange)
      Set("Colours", "Range",
          std::optional<Setting::Range>(Setting::Range((*p_volume.displayRange)[0], (*p_volume.displayRange)[1])));
    AddNumber("Colours", "Opacity", 1, {0, 1}, [this](double p_opacity) {
      if (_surface != nullptr)
        _surface->SetOpacity(p_opacity);
    }).isOffered = [this] { return Show() >= IsosurfaceShown; };
  }

  void SliceMoved(const Scene::SlicesPlot* p_plot, std::size_t p_slice, double p_position) override {
    if (p_plot == _slices)
      Set("Slices", QString("At ") + Axes[_slices->SliceAt(p_slice).axis], p_position);
  }

private:
  int Show() const { return Get<int>("Volume", "Show"); }
  bool ShowsSlices() const { return Show() == SlicesShown || Show() == SlicesAndIsosurfaceShown; }

  /// Reads the values of a channel anew, without those that mean "no data".
  void Build(std::size_t p_channel, std::optional<double> p_noData) {
    for (Scene::Plot* plot : std::initializer_list<Scene::Plot*>{_slices, _rays, _surface})
      if (plot != nullptr)
        figure->Remove(*plot);
    _slices = nullptr, _rays = nullptr, _surface = nullptr;
    _grid = Scene::VoxelGrid(_volume, p_channel);
    if (p_noData) {
      std::vector<float> values = _grid.Values();
      std::replace(values.begin(), values.end(), static_cast<float>(*p_noData), NAN);
      _grid = _grid.WithValues(values);
    }
    _channel = p_channel;
    _noData = p_noData;
    DescribeAxes();
    const auto& size = _grid.Size();
    const auto& range = _grid.Range();
    const QString values = range.Empty() ? QString("no values")
                                         : QString("%1 to %2 %3").arg(Number(range.min), Number(range.max), _grid.unit);
    QString subtitle =
        QString("%L1 × %L2 × %L3 voxels, %4").arg(size[0]).arg(size[1]).arg(size[2]).arg(values.trimmed());
    if (!_volume.variables.empty()) // otherwise the names of programs and patients
      subtitle = _grid.name + " · " + subtitle;
    if (_document->part.time < _volume.times.size())
      subtitle += " · " + QString::fromStdString(_volume.times[_document->part.time]);
    if (_grid.HasMissing())
      subtitle += QString(", %L1 without data").arg(_grid.MissingCount());
    figure->SetTitle(QString::fromStdString(_document->Name()), subtitle);
    Apply(Show());
  }

  void DescribeAxes() {
    const auto title = [this](std::size_t p_axis) {
      const std::string& name = _volume.axisNames[p_axis];
      const std::string& unit = _volume.axisUnits[p_axis];
      return TitleOf(name.empty() ? std::string(Axes[p_axis]) : name, unit.empty() ? _volume.lengthUnit : unit);
    };
    const bool isMap = AngleOf(_volume.axisNames[0], _volume.axisUnits[0]) == 'x' &&
                       AngleOf(_volume.axisNames[1], _volume.axisUnits[1]) == 'y';
    figure->SetMap(isMap);
    const auto extent = _grid.Bounds().Max() - _grid.Bounds().Min();
    constexpr double Height = 0.4; // of the map's width: degrees and metres have no common scale
    if (isMap && _grid.Size()[2] > 1)
      figure->SetAspect(1, 1, Height * extent.x / extent.z);
    isMap ? figure->SetAxisTitles({}, {}, title(2)) : figure->SetAxisTitles(title(0), title(1), title(2));
  }

  void AddShown() {
    const auto& size = _grid.Size();
    const bool isFlat = *std::min_element(size.begin(), size.end()) == 1;
    QStringList choices{"slices", "ray casting", "maximum along rays", "mean along rays"};
    if (!isFlat)
      choices << "isosurface"
              << "slices and isosurface";
    AddChoice("Volume", "Show", choices, SlicesShown, [this](int p_shown) { Apply(p_shown); }).rebuilds = true;
  }

  /// Makes the plots that are shown, and hides the others.
  void Apply(int p_shown) {
    const bool hasSlices = p_shown == SlicesShown || p_shown == SlicesAndIsosurfaceShown;
    const bool hasRays = p_shown >= CompositeShown && p_shown <= AverageShown;
    const bool hasSurface = p_shown >= IsosurfaceShown;
    if (hasSlices && _slices == nullptr)
      _slices = &figure->Slices(_grid);
    if (hasRays && _rays == nullptr)
      _rays = &figure->Volume(_grid);
    if (hasSurface && _surface == nullptr)
      _surface = &figure->Isosurface(_grid, Level());
    if (_slices != nullptr)
      _slices->SetVisible(hasSlices);
    if (_rays != nullptr) {
      _rays->SetVisible(hasRays);
      p_shown == MaximumShown ? _rays->Maximum() : p_shown == AverageShown ? _rays->Average() : _rays->Composite();
    }
    if (_surface != nullptr)
      _surface->SetVisible(hasSurface);
    figure->camera.reset();
  }

  void AddNoData() {
    AddSwitch("Volume", "Leave a value out", false, [this](bool p_isOn) { LeaveOut(p_isOn, _left); }).rebuilds = true;
    Setting& value =
        AddNumber("Volume", "Value", 0, ValueRange(), [this](double p_value) { LeaveOut(_leaves, p_value); });
    value.rebuilds = true;
    value.isOffered = [this] { return _leaves; };
    value.unit = _grid.unit;
  }
  void LeaveOut(bool p_leaves, double p_value) {
    _leaves = p_leaves;
    _left = p_value;
    const std::optional<double> noData = p_leaves ? std::optional<double>(p_value) : std::nullopt;
    if (noData == _noData)
      return;
    Build(_channel, noData);
  }

  Setting::Range ValueRange() const {
    const Setting::Range range = _grid.Range();
    return range.Empty() ? Setting::Range(0, 1) : range;
  }
  double Level() const {
    const Setting* const level = Find("Isosurface", "Level");
    return level != nullptr ? std::get<double>(level->value) : (ValueRange().min + ValueRange().max) / 2;
  }

  void AddSlices() {
    const auto offered = [this] { return ShowsSlices(); };
    for (int axis = 0; axis < 3; ++axis) {
      const Setting::Range limits(Along(_grid.Bounds().Min(), axis), Along(_grid.Bounds().Max(), axis));
      _at[axis] = (limits.min + limits.max) / 2;
      AddSwitch("Slices", QString("Across ") + Axes[axis], true, [this, axis](bool p_isOn) {
        _has[axis] = p_isOn;
        Cut();
      }).isOffered = offered;
      Setting& at =
          AddNumber("Slices", QString("At ") + Axes[axis], _at[axis], limits, [this, axis](double p_position) {
            _at[axis] = p_position;
            Cut();
          });
      at.isOffered = [this, axis] { return ShowsSlices() && _has[axis]; };
      at.unit = _grid.lengthUnit;
    }
    AddChoice("Slices", "Between voxels", {"linear", "nearest"}, 0, [this](int p_filter) {
      const auto filter = p_filter == 0 ? Scene::VoxelGrid::Filter::Linear : Scene::VoxelGrid::Filter::Nearest;
      if (_slices != nullptr)
        _slices->Filter(filter);
    }).isOffered = offered;
  }
  /// Values outside of a range are left out.
  void AddClipping() {
    const auto add = [this](const char* p_name, double p_value, double& p_limit) {
      Setting& setting = AddNumber("Slices", p_name, p_value, ValueRange(), [this, &p_limit](double p_number) {
        p_limit = p_number;
        Clip();
      });
      setting.isOffered = [this] { return ShowsSlices(); };
      setting.unit = _grid.unit;
    };
    add("Values from", ValueRange().min, _shownRange.min);
    add("Values to", ValueRange().max, _shownRange.max);
  }
  void Clip() {
    const Setting::Range all = ValueRange();
    if (_slices != nullptr && _shownRange.min <= _shownRange.max) // rounded, at the ends nothing is left out
      _slices->Show(_shownRange.min > all.min ? _shownRange.min : -HUGE_VAL,
                    _shownRange.max < all.max ? _shownRange.max : HUGE_VAL);
  }
  void Cut() {
    if (_slices == nullptr)
      return;
    _slices->Clear();
    for (int axis = 0; axis < 3; ++axis)
      if (_has[axis])
        _slices->At(axis, _at[axis]);
  }

  void AddRays() {
    const auto casts = [this] { return Show() == CompositeShown; };
    Setting& clear =
        AddNumber("Ray casting", "Transparent below", ValueRange().min, ValueRange(), [this](double p_value) {
          _clear = p_value;
          SetOpacities();
        });
    clear.isOffered = casts;
    clear.unit = _grid.unit;
    Setting& dense = AddNumber("Ray casting", "Densest from", (ValueRange().min + ValueRange().max) / 2, ValueRange(),
                               [this](double p_value) {
                                 _dense = p_value;
                                 SetOpacities();
                               });
    dense.isOffered = casts;
    dense.unit = _grid.unit;
    AddNumber("Ray casting", "Density", 0.9, {0.01, 1}, [this](double p_density) {
      _density = p_density;
      SetOpacities();
    }).isOffered = casts;
    AddSwitch("Ray casting", "Lit", true, [this](bool p_isLit) {
      if (_rays != nullptr)
        _rays->Shading(p_isLit);
    }).isOffered = casts;
    Setting& level = AddNumber("Isosurface", "Level", Level(), ValueRange(), [this](double p_level) {
      if (_surface != nullptr)
        _surface->Levels({p_level});
    });
    level.isOffered = [this] { return Show() >= IsosurfaceShown; };
    level.unit = _grid.unit;
  }
  /// Grows evenly from the clear value to the dense one.
  void SetOpacities() {
    if (_rays == nullptr)
      return;
    _rays->OpacityBy({{_clear, 0}, {std::max(_dense, _clear), _density}});
  }

  std::shared_ptr<const Document> _document;
  const Io::Volume& _volume; ///< of the document
  Scene::VoxelGrid _grid;
  std::size_t _channel = 0;
  std::optional<double> _noData; ///< beside that of the file
  bool _leaves = false;
  double _left = 0;
  bool _has[3] = {true, true, true};
  double _at[3] = {0, 0, 0};
  Setting::Range _shownRange{-HUGE_VAL, HUGE_VAL}; ///< of slices
  double _clear = 0, _dense = 0, _density = 1;
  Scene::SlicesPlot* _slices = nullptr;
  Scene::VolumePlot* _rays = nullptr;
  Scene::IsosurfacePlot* _surface = nullptr;
};

} // namespace

std::unique_ptr<Chart> MakeVolumeChart(const std::shared_ptr<const Document>& p_document, const Io::Volume& p_volume) {
  return std::make_unique<VolumeChart>(p_document, p_volume);
}

} // namespace Vek::Chart::Viewer
