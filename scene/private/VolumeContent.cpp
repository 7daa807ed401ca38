#include "scene/private/VolumeContent.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

constexpr double MostSamples = 1024; // along the diagonal

/// In Composite mode a power of the share of the range, so that what is common and low hides little; otherwise
/// opaque from a quarter of the range on, so that colours are those of the bar.
OpacityFunction DefaultOpacities(VolumeRaycaster::Mode p_mode, const ValueScale& p_scale) {
  const auto value = [&](double p_share) {
    return p_scale.logarithmic ? p_scale.lower * std::pow(p_scale.upper / p_scale.lower, p_share)
                               : p_scale.lower * (1 - p_share) + p_scale.upper * p_share;
  };
  if (p_mode != VolumeRaycaster::Mode::Composite)
    return OpacityFunction::Ramp(p_scale.lower, value(0.25));
  constexpr int Steps = 16;
  constexpr double Most = 0.9, Power = 1.5;
  std::vector<OpacityFunction::Point> points;
  for (int i = 0; i <= Steps; ++i) {
    const double share = static_cast<double>(i) / Steps;
    points.push_back({value(share), Most * std::pow(share, Power)});
  }
  return OpacityFunction(std::move(points));
}

} // namespace

VolumeContent::VolumeContent(VoxelGrid p_grid)
    : GridContent(std::move(p_grid))
    , _part(_grid) {
  coloring.SetOpacities([this](const std::vector<double>& p_values, const ValueScale& p_scale) {
    const OpacityFunction function = Opacities(p_scale);
    std::vector<double> opacities;
    for (const double value : p_values)
      opacities.push_back(function(value) * opacity);
    return opacities;
  });
}

void VolumeContent::ValuesChanged() {
  TakeColorValues();
}

void VolumeContent::ValuesUpdated() {
  if (coloring.HasValues())
    ColorByValue();
}

Box VolumeContent::PlaceChanged(const Changes& p_changes) {
  if (p_changes.isMoved) {
    PlaceGrid(p_changes);
    _part.SetGrid(_placed);
  }
  return _region;
}

OpacityFunction VolumeContent::Opacities(const ValueScale& p_scale) const {
  return _opacity ? *_opacity : DefaultOpacities(_mode, p_scale);
}

VolumeRaycaster::Settings VolumeContent::Settings() const {
  VolumeRaycaster::Settings settings;
  settings.mode = _mode;
  settings.scale = Scale();
  settings.opacity = Opacities(settings.scale);
  const double diagonal = Diagonal();
  settings.unitLength = _layer * diagonal;
  settings.shading = _shading;
  settings.samplesPerVoxel = _samples;
  settings.leastStep = diagonal / MostSamples;
  settings.filter = _filter;
  settings.part = _region;
  settings.whole = _wholeRegion;
  return settings;
}

VolumeRaycaster::Settings VolumeContent::Settings(const Frame& p_frame) const {
  constexpr double MovingQuality = 0.25;
  VolumeRaycaster::Settings settings = Settings();
  settings.clips = p_frame.cuts;
  settings.quality = p_frame.isMoving ? MovingQuality : 1;
  return settings;
}

void VolumeContent::Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) {
  if (_region.Empty())
    return;
  DrawEdges(p_gl, p_frame);
  _part.Draw(p_gl, coloring.Map(p_gl), Settings(p_frame));
}

void VolumeContent::DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame, const PickPass& p_pass) {
  if (!_region.Empty())
    _part.Draw(p_gl, Settings(p_frame), p_pass);
}

void VolumeContent::ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const {
  _part.Release(p_gl);
  _placed.Release(p_gl);
}

std::vector<QString> VolumeContent::Notes() const {
  std::vector<QString> notes;
  if (_mode == Mode::Maximum)
    notes.push_back(QStringLiteral("largest value along each line of sight"));
  else if (_mode == Mode::Average)
    notes.push_back(QStringLiteral("mean value along each line of sight"));
  else
    notes.push_back(QStringLiteral("outer half of the colour bar: in the opacity of a layer of %1 % of the diagonal")
                        .arg(_layer * 100));
  const Point voxel = _placed.VoxelSize();
  const double step = _part.SamplingDistance(Settings()) / std::min({voxel.x, voxel.y, voxel.z});
  if (step > 1)
    notes.push_back(QStringLiteral("sampled every %1 voxels").arg(step, 0, 'g', 2));
  const std::vector<QString> others = GridContent::Notes();
  notes.insert(notes.end(), others.begin(), others.end());
  return notes;
}

} // namespace Vek::Chart::Scene::Private
