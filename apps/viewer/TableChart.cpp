#include "apps/viewer/Charts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <initializer_list>
#include <stdexcept>

namespace Vek::Chart::Viewer {

namespace {

/// The name of a column without the unit behind it, in lower case: "depth" of "depth_km" and "Depth (km)".
QString Bare(const std::string& p_name) {
  QString name = QString::fromStdString(p_name).toLower().trimmed();
  name = name.left(name.indexOf('(')).trimmed();
  for (const char* unit : {"_km", "_m", "_deg"})
    if (name.endsWith(unit))
      name.chop(static_cast<int>(QString(unit).size()));
  return name;
}

/// A cell in one line, with an ellipsis at the end of a long one.
QString Short(const std::string& p_cell) {
  constexpr int Most = 40;
  const QString text = QString::fromStdString(p_cell).simplified();
  return text.size() <= Most ? text : text.left(Most - 1) + QChar(0x2026);
}

class TableChart : public Chart {
public:
  TableChart(const std::shared_ptr<const Document>& p_document, const Io::Table& p_table)
      : Chart(QString::fromStdString(p_document->Name()))
      , _document(p_document) {
    TakeColumns(p_table);
    Guess();
    AddColumns();
    _isReady = true;
    Build();
    const double diameter = std::clamp(0.1 / std::sqrt(static_cast<double>(_rows) + 1), 0.01, 0.03);
    AddNumber("Symbols", "Diameter", diameter, {0.001, 0.1}, [this](double p_share) {
      if (_points != nullptr)
        _points->Diameter(_size == 0 ? p_share : 4 * p_share);
    });
    const auto hasValues = [this] { return _color > 0; };
    AddColors({ColoredOf(_points), ColoredOf(_arrows)}, hasValues);
    AddNumber("Colours", "Opacity", 1, {0, 1}, [this](double p_opacity) {
      if (_points != nullptr)
        _points->SetOpacity(p_opacity);
      if (_arrows != nullptr)
        _arrows->SetOpacity(p_opacity);
    });
  }

  QStringList Details(const Scene::Figure::Hit& p_hit) const override {
    QStringList cells;
    if (!p_hit.element)
      return cells;
    for (int column = 1; column <= _numberCount; ++column)
      if (column != _color && !Has(_place, column))
        cells << QString::fromStdString(Column(column)->name) + ": " +
                     QString::number(Column(column)->numbers.at(*p_hit.element), 'g', 10);
    for (const Text& text : _texts)
      if (!Has(_place, text.time))
        cells << QString::fromStdString(text.cells->name) + ": " + Short(text.cells->strings.at(*p_hit.element));
    return cells;
  }

private:
  /// A column of strings, and the number of the column with their times; -1 where they are no times.
  struct Text {
    const Io::Table::Column* cells = nullptr;
    int time = -1;
  };

  void TakeColumns(const Io::Table& p_table) {
    _rows = p_table.Rows();
    for (const Io::Table::Column& column : p_table.Columns())
      if (column.strings.empty())
        _columns.push_back(&column);
    _numberCount = static_cast<int>(_columns.size());
    for (std::size_t i = 0; i < p_table.Columns().size(); ++i) {
      const Io::Table::Column& column = p_table.Columns()[i];
      if (column.strings.empty())
        continue;
      const bool hasTimes = p_table.HasTimes(i);
      if (hasTimes)
        _columns.push_back(&_times.emplace_back(Io::Table::Column{column.name, p_table.Times(i), {}}));
      _texts.push_back({&column, hasTimes ? static_cast<int>(_columns.size()) : -1});
    }
    if (_columns.size() < 2)
      throw std::invalid_argument(_document->path + ": expected two columns of numbers or times, got " +
                                  std::to_string(_columns.size()));
  }

  bool IsTime(int p_column) const { return p_column > _numberCount; }
  /// Whether z points downwards.
  bool IsDown() const { return _isDown && !IsTime(_place[2]); }

  static bool Has(const std::array<int, 3>& p_columns, int p_column) {
    return std::find(p_columns.begin(), p_columns.end(), p_column) != p_columns.end();
  }
  /// The number of the first column of one of these names that has no use yet, from 1; 0 without one.
  int Find(std::initializer_list<const char*> p_names) const {
    for (const char* name : p_names)
      for (int column = 1; column <= _numberCount; ++column)
        if (Bare(Column(column)->name) == name)
          return column;
    return 0;
  }
  /// What columns mean, by their names; otherwise x is a time, where there is one, and the first ones are positions.
  void Guess() {
    _place = {Find({"lon", "long", "longitude", "lng", "x"}), Find({"lat", "latitude", "y"}),
              Find({"depth", "z", "height", "altitude", "elevation"})};
    if (_place[0] == 0 || _place[1] == 0)
      _place = FirstColumns();
    _vector = {Find({"u", "vx"}), Find({"v", "vy"}), Find({"w", "vz"})};
    _isDown = _place[2] != 0 && Bare(Column(_place[2])->name) == "depth";
    _size = Find({"mag", "magnitude", "size"});
    _color = _isDown ? _place[2] : 0;
    for (int column = 1; column <= _numberCount && _color == 0; ++column)
      if (!Has(_place, column) && !Has(_vector, column) && column != _size &&
          !Bare(Column(column)->name).startsWith("time"))
        _color = column;
    _color = _color == 0 ? _place[2] : _color;
  }

  std::array<int, 3> FirstColumns() const {
    std::vector<int> columns;
    for (int column = _numberCount + 1; column <= static_cast<int>(_columns.size()) && columns.empty(); ++column)
      columns.push_back(column);
    for (int column = 1; column <= _numberCount && columns.size() < 3; ++column)
      columns.push_back(column);
    columns.resize(3, 0);
    return {columns[0], columns[1], columns[2]};
  }

  void AddColumns() {
    QStringList names{"–"}, numbers;
    for (const Io::Table::Column* column : _columns)
      names << QString::fromStdString(column->name);
    numbers = names.mid(0, 1 + _numberCount);
    const auto add = [&](const char* p_group, const char* p_name, int& p_column, const QStringList& p_names) {
      AddChoice(p_group, p_name, p_names, p_column, [this, &p_column](int p_index) {
        p_column = p_index;
        Build();
      }).rebuilds = true;
    };
    add("Columns", "x", _place[0], names);
    add("Columns", "y", _place[1], names);
    add("Columns", "z", _place[2], names);
    AddSwitch("Columns", "z downwards", _isDown, [this](bool p_isOn) {
      _isDown = p_isOn;
      Build();
    }).rebuilds = true;
    add("Columns", "Colour", _color, numbers);
    add("Columns", "Size", _size, numbers);
    for (int axis = 0; axis < 3; ++axis)
      add("Arrows", std::array<const char*, 3>{"along x", "along y", "along z"}[static_cast<std::size_t>(axis)],
          _vector[static_cast<std::size_t>(axis)], numbers);
  }

  const Io::Table::Column* Column(int p_index) const {
    return p_index > 0 ? _columns.at(static_cast<std::size_t>(p_index - 1)) : nullptr;
  }
  /// Three columns as points; those that are not there are 0.
  std::vector<std::array<double, 3>> Points(const std::array<int, 3>& p_columns, bool p_isDown) const {
    std::vector<std::array<double, 3>> points(_rows);
    for (std::size_t axis = 0; axis < 3; ++axis)
      if (const Io::Table::Column* column = Column(p_columns[axis]))
        for (std::size_t i = 0; i < _rows; ++i)
          points[i][axis] = p_isDown && axis == 2 ? -column->numbers[i] : column->numbers[i];
    return points;
  }

  void Build() {
    if (!_isReady)
      return;
    if (_points != nullptr)
      figure->Remove(*_points);
    if (_arrows != nullptr)
      figure->Remove(*_arrows);
    _points = nullptr, _arrows = nullptr;
    DescribeAxes();
    const auto points = Points(_place, IsDown());
    if (_isMap)
      ScaleHeights(points);
    const Io::Table::Column* const color = Column(_color);
    if (_vector[0] != 0 && _vector[1] != 0) {
      _arrows = &figure->Quiver(points, Points(_vector, IsDown()));
      if (color != nullptr)
        _arrows->ColorBy(color->numbers, QString::fromStdString(color->name));
    } else {
      _points = &figure->Scatter(points);
      if (color != nullptr)
        _points->ColorBy(color->numbers, QString::fromStdString(color->name));
      if (const Io::Table::Column* size = Column(_size))
        _points->SizeBy(size->numbers, QString::fromStdString(size->name));
    }
    figure->camera.reset();
  }

  /// On a map, heights are up to a third as long as the map.
  void ScaleHeights(const std::vector<std::array<double, 3>>& p_points) {
    Types::BoundingBox_Base<double> box;
    for (const auto& [x, y, z] : p_points)
      if (std::isfinite(x) && std::isfinite(y) && std::isfinite(z))
        box += Types::Vector3_Base<double>(x, y, z);
    const auto extent = box.Empty() ? Types::Vector3_Base<double>() : box.Extent();
    const double longest = std::fmax(extent.x, extent.y);
    if (longest > 0 && extent.z > 0)
      figure->SetAspect(1, 1, longest / extent.z / 3);
  }

  void DescribeAxes() {
    const auto name = [this](int p_column) {
      return Column(p_column) != nullptr ? Column(p_column)->name : std::string();
    };
    _isMap = AngleOf(Bare(name(_place[0])).toStdString(), {}) == 'x' &&
             AngleOf(Bare(name(_place[1])).toStdString(), {}) == 'y';
    figure->SetMap(_isMap);
    for (int axis = 0; axis < 3; ++axis)
      figure->SetDateAxis(axis, IsTime(_place[static_cast<std::size_t>(axis)]));
    figure->SetAxisTitles(_isMap ? QString() : QString::fromStdString(name(_place[0])),
                          _isMap ? QString() : QString::fromStdString(name(_place[1])),
                          (IsDown() ? QString(QChar(0x2212)) : QString()) + QString::fromStdString(name(_place[2])));
    figure->SetTitle(QString::fromStdString(_document->Name()), QString("%L1 rows").arg(_rows));
  }

  std::shared_ptr<const Document> _document;
  std::vector<const Io::Table::Column*> _columns; ///< those of numbers, then those of times
  int _numberCount = 0;                           ///< how many have numbers
  std::deque<Io::Table::Column> _times;           ///< in seconds
  std::vector<Text> _texts;
  std::size_t _rows = 0;
  std::array<int, 3> _place{}, _vector{}; ///< columns, from 1; 0 for none
  int _color = 0, _size = 0;              ///< likewise
  bool _isDown = false;                   ///< whether z points downwards
  bool _isMap = false;
  bool _isReady = false; ///< whether all columns are chosen
  Scene::ScatterPlot* _points = nullptr;
  Scene::QuiverPlot* _arrows = nullptr;
};

} // namespace

std::unique_ptr<Chart> MakeTableChart(const std::shared_ptr<const Document>& p_document, const Io::Table& p_table) {
  return std::make_unique<TableChart>(p_document, p_table);
}

} // namespace Vek::Chart::Viewer
