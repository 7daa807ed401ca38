#include "apps/viewer/Charts.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Viewer {

namespace {

enum Shown { ArrowsShown, StreamlinesShown, BothShown };

class FieldChart : public Chart {
public:
  FieldChart(const std::shared_ptr<const Document>& p_document, const Io::VectorField& p_field)
      : Chart(QString::fromStdString(p_document->Name()))
      , _document(p_document)
      , _field(p_field) {
    DescribeAxes();
    AddParts("Field", p_document->part, p_field.times, p_field.variables);
    AddChoice("Field", "Show", {"arrows", "streamlines", "arrows and streamlines"}, 0, [this](int p_shown) {
      Apply(p_shown);
    }).rebuilds = true;
    AddColoring();
    AddColors({ColoredOf(_arrows), ColoredOf(_lines)});
    AddNumber("Colours", "Opacity", 1, {0, 1}, [this](double p_opacity) {
      if (_arrows != nullptr)
        _arrows->SetOpacity(p_opacity);
      if (_lines != nullptr)
        _lines->SetOpacity(p_opacity);
    });
    AddGlyphs();
  }

private:
  int Show() const { return Get<int>("Field", "Show"); }

  void DescribeAxes() {
    const auto& axes = _field.axes;
    const auto title = [this](std::size_t p_axis) {
      return TitleOf(_field.axisNames[p_axis], _field.axisUnits[p_axis]);
    };
    const bool isMap = AngleOf(_field.axisNames[0], _field.axisUnits[0]) == 'x' &&
                       AngleOf(_field.axisNames[1], _field.axisUnits[1]) == 'y';
    figure->SetMap(isMap);
    isMap ? figure->SetAxisTitles({}, {}, title(2)) : figure->SetAxisTitles(title(0), title(1), title(2));
    QStringList parts{QString("%L1 × %L2").arg(axes[0].size()).arg(axes[1].size()) +
                      (axes[2].size() > 1 ? QString(" × %L1 vectors").arg(axes[2].size()) : QString(" vectors"))};
    QStringList names;
    for (const std::string& name : _field.names)
      if (!name.empty())
        names << QString::fromStdString(name);
    parts << names.join(", ");
    if (_field.time < _field.times.size())
      parts << QString::fromStdString(_field.times[_field.time]);
    if (axes[2].size() == 1 && !_field.axisNames[2].empty())
      parts << QString::fromStdString(_field.axisNames[2]) + QString(" %1 %2")
                                                                 .arg(axes[2][0])
                                                                 .arg(QString::fromStdString(_field.axisUnits[2]))
                                                                 .trimmed()
                                                                 .prepend(' ');
    parts.removeAll(QString());
    figure->SetTitle(QString::fromStdString(_document->Name()), parts.join(" · "));
  }

  void Apply(int p_shown) {
    if (p_shown != StreamlinesShown && _arrows == nullptr)
      _arrows = &figure->Quiver(_field.Positions(), _field.vectors);
    if (p_shown != ArrowsShown && _lines == nullptr) {
      Scene::VectorField field =
          Scene::VectorField::Rectilinear(_field.axes[0], _field.axes[1], _field.axes[2], _field.vectors);
      if (_field.period > 0)
        field.WrapX(_field.period);
      _lines = &figure->Streamlines(field);
    }
    if (_arrows != nullptr)
      _arrows->SetVisible(p_shown != StreamlinesShown);
    if (_lines != nullptr)
      _lines->SetVisible(p_shown != ArrowsShown);
    figure->camera.reset();
  }

  /// By speed or by a component.
  void AddColoring() {
    QStringList choices{"speed"};
    for (const std::string& name : _field.names)
      if (!name.empty())
        choices << QString::fromStdString(name);
    AddChoice("Colours", "By", choices, 0, [this, choices](int p_index) {
      std::vector<double> values;
      for (const auto& vector : _field.vectors)
        values.push_back(p_index == 0 ? std::hypot(vector[0], vector[1], vector[2])
                                      : vector[static_cast<std::size_t>(p_index - 1)]);
      const QString name = p_index == 0 ? QString("Speed") : choices.value(p_index);
      const QString title = TitleOf(name.toStdString(), _field.unit);
      if (_arrows != nullptr)
        _arrows->ColorBy(values, title).LengthTitle(TitleOf("Speed", _field.unit));
      if (_lines != nullptr)
        _lines->ColorBy(values, title);
    });
  }

  void AddGlyphs() {
    const auto hasArrows = [this] { return Show() != StreamlinesShown; };
    const auto hasLines = [this] { return Show() != ArrowsShown; };
    constexpr double MostArrows = 50000;
    Setting& most = AddNumber("Arrows", "At most", 10000, {100, MostArrows}, [this](double p_count) {
      if (_arrows != nullptr && p_count != 10000) // by default, as many as the image has room for
        _arrows->Most(static_cast<std::size_t>(p_count));
    });
    most.isOffered = hasArrows;
    most.isWhole = true;
    AddSwitch("Arrows", "Length is chosen", true, [](bool) {}).isOffered = hasArrows;
    AddNumber("Arrows", "Longest", 0.05, {0.005, 0.3}, [this](double p_share) {
      const double fastest = Fastest();
      if (_arrows != nullptr && !Get<bool>("Arrows", "Length is chosen") && fastest > 0)
        _arrows->UnitLength(p_share / fastest);
    }).isOffered = [=] { return hasArrows() && !Get<bool>("Arrows", "Length is chosen"); };
    AddNumber("Streamlines", "Distance", _field.axes[2].size() > 1 ? 1.0 / 16 : 1.0 / 60, {0.005, 0.2},
              [this](double p_share) {
                if (_lines != nullptr)
                  _lines->Spacing(p_share);
              })
        .isOffered = hasLines;
    AddNumber("Streamlines", "Width", 0.15, {0.02, 0.6}, [this](double p_share) {
      if (_lines != nullptr)
        _lines->Width(p_share);
    }).isOffered = hasLines;
    AddSwitch("Streamlines", "Width by speed", true, [this](bool p_isOn) {
      if (_lines != nullptr)
        _lines->WidthBySpeed(p_isOn);
    }).isOffered = hasLines;
  }
  double Fastest() const {
    double fastest = 0;
    for (const auto& vector : _field.vectors)
      fastest = std::fmax(fastest, std::hypot(vector[0], vector[1], vector[2]));
    return fastest;
  }

  std::shared_ptr<const Document> _document;
  const Io::VectorField& _field; ///< of the document
  Scene::QuiverPlot* _arrows = nullptr;
  Scene::StreamlinesPlot* _lines = nullptr;
};

} // namespace

std::unique_ptr<Chart> MakeFieldChart(const std::shared_ptr<const Document>& p_document,
                                      const Io::VectorField& p_field) {
  return std::make_unique<FieldChart>(p_document, p_field);
}

} // namespace Vek::Chart::Viewer
