#include "scene/private/FigureMap.h"

#include "scene/Graticule.h"
#include "scene/private/FigureCuts.h"
#include "scene/private/FigureState.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Scene {

namespace Private {

Box MapLimits(const Box& p_limits, const Box& p_data) {
  constexpr double NearlyTheWorld = 300;
  Point low = p_limits.Min(), high = p_limits.Max();
  low.y = std::clamp(low.y, -Graticule::Pole, Graticule::Pole - 1);
  high.y = std::clamp(high.y, low.y + 1, Graticule::Pole);
  if (p_data.Extent().x > NearlyTheWorld) {
    low.x = p_data.Min().x < 0 ? -Graticule::Turn / 2 : 0;
    high.x = low.x + Graticule::Turn;
  }
  high.x = std::min(high.x, low.x + Graticule::Turn);
  return {low, high};
}

std::vector<Types::Plane> MapBorders(const Box& p_map) {
  return {{p_map.Min(), Point(1, 0, 0)},
          {p_map.Max(), Point(-1, 0, 0)},
          {p_map.Min(), Point(0, 1, 0)},
          {p_map.Max(), Point(0, -1, 0)}};
}

std::vector<double> MapShifts(const Box& p_placed, const Box& p_map, double p_turn) {
  constexpr double Touch = 1e-6; // of a turn
  std::vector<double> shifts;
  if (p_placed.Empty() || p_map.Empty())
    return shifts;
  const double first = std::ceil((p_map.Min().x - p_placed.Max().x) / p_turn + Touch);
  const double last = std::floor((p_map.Max().x - p_placed.Min().x) / p_turn - Touch);
  for (double turn = first; turn <= last; ++turn)
    shifts.push_back(turn * p_turn);
  return shifts;
}

Frame ShiftedFrame(const Frame& p_frame, const Point& p_shift) {
  Frame frame = p_frame;
  frame.camera.target = frame.camera.target - p_shift;
  for (Types::Plane& cut : frame.cuts)
    cut = {cut.Point() - p_shift, cut.Normal()};
  return frame;
}

} // namespace Private

std::vector<double> Figure::State::ShiftsOf(const Private::PlotContent& p_content) const {
  if (!rules.isMap)
    return {0};
  return Private::MapShifts(p_content.placedBox, _box, Graticule::Turn * transform.axes[0].factor);
}

double Figure::State::LiftOf(const Private::PlotContent& p_content) const {
  constexpr double Lift = 1e-4; // of the scene: more than depths are rounded, less than is seen
  if (!_isFlat)
    return 0;
  const auto entry =
      std::find_if(entries.begin(), entries.end(), [&](const Entry& p_entry) { return p_entry.content == &p_content; });
  return Lift * static_cast<double>(entry - entries.begin());
}

void Figure::State::ForEachCopy(Utility::Scoped<Rgl>& p_gl, const Private::Frame& p_frame,
                                const Private::PlotContent& p_content,
                                const std::function<void(const Private::Frame&)>& p_draw) const {
  const double lift = LiftOf(p_content);
  if (!rules.isMap && lift == 0)
    return p_draw(p_frame);
  for (const double shift : ShiftsOf(p_content)) {
    const Private::Frame copy = Private::ShiftedFrame(p_frame, {shift, 0, lift});
    const auto matrices = copy.camera.Apply(p_gl, copy.viewport);
    p_draw(copy);
  }
}

boost::shared_ptr<void> Figure::State::CutScope(const Utility::Scoped<Rgl>& p_gl, const Private::Frame& p_frame,
                                                const Private::PlotContent& p_content) const {
  std::vector<Types::Plane> cuts = p_frame.cuts;
  if (rules.isMap)
    for (const Types::Plane& border : Private::MapBorders(_box))
      cuts.push_back(border);
  if (p_content.IsSurface() && CutsSurfaces())
    for (const Types::Plane& limit : Private::LimitCuts(rules, transform))
      cuts.push_back(limit);
  return Private::CutScope(p_gl, cuts);
}

} // namespace Vek::Chart::Scene
