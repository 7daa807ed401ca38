#include "scene/private/FigureCuts.h"
#include "scene/private/FigureState.h"
#include "scene/private/SceneState.h"

#include "platform/debug/Check.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace Vek::Chart::Scene {

bool Figure::State::PickedScene::operator==(const PickedScene& p_other) const {
  const auto all = [](const PickedScene& p_scene) {
    return std::tie(p_scene.camera, p_scene.viewport, p_scene.pixelRatio, p_scene.transform, p_scene.rules,
                    p_scene.plots, p_scene.added, p_scene.left);
  };
  return all(*this) == all(p_other) && Private::Equal(cuts, p_other.cuts);
}

std::optional<Figure::Hit> Figure::State::Pick(Utility::Scoped<Rgl>& p_gl, Private::Frame p_frame,
                                               const Types::Pos& p_pixel) {
  std::vector<Entry*> plots;
  for (Entry& entry : entries)
    if (entry.content->isVisible && entry.content->opacity > 0)
      plots.push_back(&entry);
  if (plots.size() > PickPass::MostPlots) {
    vekdebug::warn("Figure: Pick: expected at most 255 visible plots, got " + std::to_string(plots.size()));
    return {};
  }
  if (!Private::HasFixedFunctions(p_gl))
    return {};
  p_frame.cuts = SceneCuts();
  PickedScene scene{p_frame.camera, p_frame.viewport, p_frame.pixelRatio, transform, rules, p_frame.cuts, {},
                    added,          entries.size()};
  std::vector<Picker::DrawPlot> drawings;
  for (Entry* const entry : plots) {
    scene.plots.emplace_back(entry->content, entry->content->revision);
    drawings.emplace_back([&, content = entry->content](Utility::Scoped<Rgl>& p_scope, const PickPass& p_pass) {
      const auto cut = CutScope(p_scope, p_frame, *content);
      ForEachCopy(p_scope, p_frame, *content,
                  [&](const Private::Frame& p_copy) { content->DrawPick(p_scope, p_copy, p_pass); });
    });
  }
  if (!(scene == picked)) {
    picked = std::move(scene);
    pickedStamp = {};
  }
  const auto hit = picker.Pick(p_gl, p_frame.camera, p_frame.viewport, p_pixel, pickedStamp, drawings);
  if (!hit || hit->plot >= plots.size())
    return {};

  Entry& entry = *plots[hit->plot];
  if (!hit->element && entry.content->Count() >= PickPass::NoElement && !std::exchange(entry.isCountReported, true))
    vekdebug::warn("Figure: Pick: expected fewer than 2^24 elements in a plot, got " +
                   std::to_string(entry.content->Count()));
  Private::Point position = hit->position - Private::Point(0, 0, LiftOf(*entry.content));
  for (const double shift : ShiftsOf(*entry.content))
    if (const double x = hit->position.x - shift;
        entry.content->placedBox.Min().x <= x && x <= entry.content->placedBox.Max().x)
      position.x = x;
  const Private::Picked found = entry.content->Identify(hit->element, position);
  const auto key = entry.content->coloring.Key();
  return Hit{entry.plot.get(), entry.content->label, found.element,
             found.position,   found.value,          key ? key->title : QString()};
}

} // namespace Vek::Chart::Scene
