#include "scene/private/AxesLayouter.h"

#include "scene/private/BoxView.h"

#include "platform/types/Angle.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

namespace Vek::Chart::Scene::Private {

namespace {

using Point = Types::Vector3_Base<double>;
using Position = AxesLayout::Position;
using Label = AxesLayout::Label;
using Line = AxesLayout::Line;
using Quad = std::array<Position, 4>;

/// Whether a side of the first quadrilateral, which is wound counter-clockwise, has the second one beyond it.
bool IsSeparated(const Quad& p_a, const Quad& p_b) {
  for (std::size_t i = 0; i < p_a.size(); ++i) {
    const Position side = p_a[(i + 1) % p_a.size()] - p_a[i];
    const Position outward(side.y, -side.x);
    if (std::all_of(p_b.begin(), p_b.end(),
                    [&](const Position& p_corner) { return Dot(outward, p_corner - p_a[i]) >= 0; }))
      return true;
  }
  return false;
}

/// A tick on its edge.
struct Tick {
  double fraction; ///< of the edge
  QString label;   ///< empty for a minor one
  Position place;
  QSizeF size; ///< of the label
};

/// An axis at the edge that has its values.
struct LabelledAxis {
  QString note;
  std::vector<Tick> ticks;  ///< all
  std::vector<Tick> values; ///< those with a label
  Position from;
  Position to;
  Position along;   ///< of length 1, from `from` to `to`
  Position outward; ///< of length 1, away from the box
  QSizeF widest;    ///< the largest width and the largest height of a value
};

double WidthAlong(const QSizeF& p_size, const Position& p_direction) {
  return p_size.width() * std::abs(p_direction.x) + p_size.height() * std::abs(p_direction.y);
}

/// The layout in the making.
class Layouter {
public:
  Layouter(const Axes& p_axes, const Camera& p_camera, const Axes::Target& p_target)
      : _axes(p_axes)
      , _target(p_target)
      , _view(p_axes.box, p_camera, p_target.viewport, p_target.pointSize)
      , _width(static_cast<double>(p_target.viewport.width) / p_target.pointSize)
      , _height(static_cast<double>(p_target.viewport.height) / p_target.pointSize) {}

  /// `p_isBounded`: without what leaves the viewport.
  AxesLayout Make(Axes::State& p_state, bool p_isBounded) {
    _isBounded = p_isBounded;
    if (!_view.SeesAny())
      return {};
    for (std::size_t axis = 0; axis < 3; ++axis)
      if (_view.IsInFront()) {
        p_state.edges[axis] = BestEdge(axis, p_state.edges[axis]);
        if (p_state.edges[axis] >= 0)
          Measure(axis, static_cast<unsigned int>(p_state.edges[axis]));
      } else {
        _gridTicks[axis] = TicksOf(axis, MostWithoutValues).second;
      }
    AddGrid();
    AddEdges();
    if (_view.IsInFront()) {
      _result.corners = _view.Corners();
      AddTitles();
      AddValues();
    }
    return std::move(_result);
  }

private:
  /// The outline edge that lies leftmost (z) or lowest, or the one before where it is nearly as good; −1 for none.
  int BestEdge(std::size_t p_axis, int p_before) const {
    constexpr double Better = 0.05;
    constexpr double TieBreak = 1e-3; // equally low edges of a map from above: the left one
    int best = -1;
    double bestScore = -std::numeric_limits<double>::infinity();
    for (unsigned int edge = 0; edge < 4; ++edge) {
      if (_view.SeenFacesAt(p_axis, edge) != 1)
        continue;
      const Position middle = _view.PositionOf(_view.PointAt(p_axis, edge, 0.5));
      const double x = middle.x / _width, y = middle.y / _height;
      const double score =
          -(p_axis == 2 ? x + TieBreak * y : y + TieBreak * x) + (static_cast<int>(edge) == p_before ? Better : 0.0);
      if (score > bestScore) {
        best = static_cast<int>(edge);
        bestScore = score;
      }
    }
    return best;
  }

  /// The note and the ticks of an axis, without their places.
  std::pair<QString, std::vector<Tick>> TicksOf(std::size_t p_axis, int p_most) const {
    const auto& [title, unit, low, high, scale, maker] = _axes.axes[p_axis];
    const bool isLinear = scale == Axes::Scale::Linear;
    const auto most = static_cast<std::size_t>(p_most);
    const Ticks made = maker      ? maker(low, high, most)
                       : isLinear ? Ticks::Linear(low, high, most)
                                  : Ticks::Logarithmic(low, high, most);
    const auto along = [isLinear](double p_value) { return isLinear ? p_value : std::log(p_value); };
    constexpr double Rounding = 1e-9;
    std::vector<Tick> ticks;
    for (std::size_t i = 0; i < made.Values().size(); ++i) {
      const double fraction = (along(made.Values()[i]) - along(low)) / (along(high) - along(low));
      if (fraction >= -Rounding && fraction <= 1 + Rounding)
        ticks.push_back({fraction, made.Strings()[i], {}, {}});
    }
    return {made.Note(), std::move(ticks)};
  }

  /// Whether two values have room beside each other.
  bool AreApart(const LabelledAxis& p_axis, const Tick& p_a, const Tick& p_b) const {
    return Length(p_b.place - p_a.place) >= WidthAlong((p_a.size + p_b.size) / 2, p_axis.along) + _axes.lengths.gap;
  }

  /// Takes as many ticks as fit along an edge, or the first and the last one of the fewest; none where two do not fit.
  void Measure(std::size_t p_axis, unsigned int p_edge) {
    LabelledAxis axis;
    axis.from = _view.PositionOf(_view.PointAt(p_axis, p_edge, 0));
    axis.to = _view.PositionOf(_view.PointAt(p_axis, p_edge, 1));
    const double length = Length(axis.to - axis.from);
    if (!(length > _axes.lengths.gap))
      return;
    axis.along = (axis.to - axis.from) / length;
    axis.outward = Outward(axis);
    LabelledAxis fewest;
    for (int most = Axes::MostTicks; most >= 2; --most) {
      std::tie(axis.note, axis.ticks) = TicksOf(p_axis, most);
      axis.values.clear();
      axis.widest = QSizeF(0, 0);
      bool isFit = true;
      for (Tick& tick : axis.ticks) {
        tick.place = _view.PositionOf(_view.PointAt(p_axis, p_edge, tick.fraction));
        if (tick.label.isEmpty())
          continue;
        tick.size = SizeOf(tick.label, AxesLayout::Font::Tick);
        isFit = isFit && (axis.values.empty() || AreApart(axis, axis.values.back(), tick));
        axis.widest = axis.widest.expandedTo(tick.size);
        axis.values.push_back(tick);
      }
      if (axis.values.size() < 2)
        continue;
      if (isFit) {
        _gridTicks[p_axis] = axis.values;
        _labelled[p_axis] = std::move(axis);
        return;
      }
      fewest = axis;
    }
    if (fewest.values.empty() || !AreApart(fewest, fewest.values.front(), fewest.values.back()))
      return;
    _gridTicks[p_axis] = fewest.values;
    fewest.values = {fewest.values.front(), fewest.values.back()};
    for (Tick& tick : fewest.ticks)
      if (tick.fraction != fewest.values.front().fraction && tick.fraction != fewest.values.back().fraction)
        tick.label.clear();
    _labelled[p_axis] = std::move(fewest);
  }

  QSizeF SizeOf(const QString& p_text, AxesLayout::Font p_font) const {
    return _target.measure(p_text, p_font).expandedTo(QSizeF(0, 0));
  }

  /// Away from the middle of the box; downwards or to the left where the box is seen as a line.
  Position Outward(const LabelledAxis& p_axis) const {
    Position middle;
    for (const Position& corner : _view.Corners())
      middle = middle + corner / 8.0;
    const Position normal(p_axis.along.y, -p_axis.along.x);
    const double side = Dot(normal, p_axis.from - middle);
    if (std::abs(side) > 1e-6 * (_width + _height))
      return side > 0 ? normal : -normal;
    return normal.y < -1e-9 || (normal.y < 1e-9 && normal.x < 0) ? normal : -normal;
  }

  void AddLine(const Point& p_from, const Point& p_to, Line::Kind p_kind) {
    if (const auto ends = _view.Clipped(p_from, p_to))
      _result.lines.push_back({ends->first, ends->second, p_kind});
  }

  /// Lines across the faces that are not seen, at the ticks.
  void AddGrid() {
    struct Across {
      unsigned int from; ///< edges, as BoxView numbers them
      unsigned int to;
      std::size_t face; ///< axes after that of the ticks
      unsigned int side;
    };
    constexpr std::array<Across, 4> Lines = {{{0, 1, 2, 0}, {2, 3, 2, 1}, {0, 2, 1, 0}, {1, 3, 1, 1}}};
    constexpr double Rounding = 1e-6; // lines at the ends are edges
    for (std::size_t axis = 0; axis < 3; ++axis)
      for (const Tick& tick : _gridTicks[axis])
        for (const Across& line : Lines)
          if (tick.fraction > Rounding && tick.fraction < 1 - Rounding &&
              !_view.Sees((axis + line.face) % 3, line.side))
            AddLine(_view.PointAt(axis, line.from, tick.fraction), _view.PointAt(axis, line.to, tick.fraction),
                    Line::Kind::Grid);
  }

  void AddEdges() {
    for (std::size_t axis = 0; axis < 3; ++axis)
      for (unsigned int edge = 0; edge < 4; ++edge)
        if (_view.SeenFacesAt(axis, edge) < 2)
          AddLine(_view.PointAt(axis, edge, 0), _view.PointAt(axis, edge, 1), Line::Kind::Edge);
  }

  /// The value of a tick, beyond its mark: the half-plane outside of an outline edge holds nothing of the box.
  Label Value(std::size_t p_axis, const Tick& p_tick) const {
    const Position& outward = _labelled[p_axis]->outward;
    const double reach = _axes.lengths.tick + _axes.lengths.gap + WidthAlong(p_tick.size, outward) / 2;
    return {p_tick.label, p_tick.place + outward * reach, 0, p_tick.size, AxesLayout::Font::Tick, p_axis};
  }

  /// The title at a fraction of the edge, beyond the widest value.
  Label Title(std::size_t p_axis, const QString& p_text, double p_fraction) const {
    const LabelledAxis& axis = *_labelled[p_axis];
    const QSizeF size = SizeOf(p_text, AxesLayout::Font::Title);
    const double reach =
        _axes.lengths.tick + 2 * _axes.lengths.gap + WidthAlong(axis.widest, axis.outward) + size.height() / 2;
    constexpr double MostRotation = 100; // steep ones are read from bottom to top, also if they lean a little over
    double rotation = Types::Angle::FromRadians(std::atan2(axis.along.y, axis.along.x)).Degrees();
    if (rotation > MostRotation)
      rotation -= 180;
    else if (rotation <= MostRotation - 180)
      rotation += 180;
    const Position middle = axis.from + (axis.to - axis.from) * p_fraction;
    return {p_text, middle + axis.outward * reach, rotation, size, AxesLayout::Font::Title, p_axis};
  }

  QString TitleText(std::size_t p_axis) const {
    const Axes::Axis& axis = _axes.axes[p_axis];
    const QString& note = _labelled[p_axis]->note;
    const QString unit = note.isEmpty() || axis.unit.isEmpty() ? note + axis.unit : note + ' ' + axis.unit;
    return axis.title.isEmpty() || unit.isEmpty() ? axis.title + unit : axis.title + " (" + unit + ')';
  }

  /// Titles, each at the first place along its edge where it meets nothing, or no title.
  void AddTitles() {
    constexpr std::array<double, 5> Fractions = {0.5, 0.35, 0.65, 0.2, 0.8};
    for (const std::size_t axis : Order) {
      if (!_labelled[axis])
        continue;
      const QString text = TitleText(axis);
      if (text.isEmpty())
        continue;
      std::optional<Label> chosen;
      for (const double fraction : Fractions) {
        const Label title = Title(axis, text, fraction);
        if (!IsFree(title))
          continue;
        if (!chosen)
          chosen = title;
        if (!MeetsValues(title)) {
          chosen = title;
          break;
        }
      }
      if (chosen)
        _result.labels.push_back(*chosen);
    }
  }

  bool MeetsValues(const Label& p_title) const {
    for (std::size_t axis = 0; axis < 3; ++axis)
      if (_labelled[axis])
        for (const Tick& tick : _labelled[axis]->values)
          if (Meet(p_title, Value(axis, tick)))
            return true;
    return false;
  }

  /// The values that are free, the ends of each axis first, and marks at all ticks. One value alone gives no scale:
  /// such an axis has neither title nor marks.
  void AddValues() {
    for (const std::size_t axis : Order) {
      if (!_labelled[axis])
        continue;
      const LabelledAxis& labelled = *_labelled[axis];
      const std::size_t before = _result.labels.size(), count = labelled.values.size();
      for (std::size_t i = 0; i < count; ++i) {
        const std::size_t tick = i == 0 ? 0 : i == 1 ? count - 1 : i - 1;
        const Label value = Value(axis, labelled.values[tick]);
        if (IsFree(value))
          _result.labels.push_back(value);
      }
      if (_result.labels.size() < before + 2)
        _result.labels.erase(std::remove_if(_result.labels.begin(), _result.labels.end(),
                                            [&](const Label& p_label) { return p_label.axis == axis; }),
                             _result.labels.end());
      else
        AddMarks(labelled);
    }
  }

  void AddMarks(const LabelledAxis& p_axis) {
    for (const Tick& tick : p_axis.ticks) {
      const double length = tick.label.isEmpty() ? _axes.lengths.tick / 2 : _axes.lengths.tick;
      _result.lines.push_back({tick.place, tick.place + p_axis.outward * length, Line::Kind::Tick});
    }
  }

  /// Whether a label lies in the viewport and meets none of those placed.
  bool IsFree(const Label& p_label) const {
    for (const auto& [x, y] : p_label.Corners())
      if (_isBounded && !(x >= 0 && y >= 0 && x <= _width && y <= _height))
        return false;
    return std::none_of(_result.labels.begin(), _result.labels.end(),
                        [&](const Label& p_placed) { return Meet(p_label, p_placed); });
  }

  static bool Meet(const Label& p_a, const Label& p_b) {
    const Quad a = p_a.Corners(), b = p_b.Corners();
    return !IsSeparated(a, b) && !IsSeparated(b, a);
  }

  static constexpr std::array<std::size_t, 3> Order = {2, 0, 1};
  static constexpr int MostWithoutValues = 5; ///< ticks of an axis whose edges are partly behind the eye

  const Axes& _axes;
  const Axes::Target& _target;
  BoxView _view;
  double _width;
  double _height;
  bool _isBounded = true;
  std::array<std::optional<LabelledAxis>, 3> _labelled;
  std::array<std::vector<Tick>, 3> _gridTicks;
  AxesLayout _result;
};

} // namespace

AxesLayout LaidOut(const Axes& p_axes, const Camera& p_camera, const Axes::Target& p_target, Axes::State& p_state,
                   bool p_isBounded) {
  return Layouter(p_axes, p_camera, p_target).Make(p_state, p_isBounded);
}

} // namespace Vek::Chart::Scene::Private
