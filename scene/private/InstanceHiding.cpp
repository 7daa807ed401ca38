// The part of InstanceSelection that leaves out what other instances hide.

#include "scene/private/InstanceOcclusion.h"
#include "scene/private/InstanceSelection.h"

#include "platform/utility/Threads.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace Vek::Chart::Scene::Private {

namespace {

/// A sample of what instances cover of a viewport.
struct CoverSample {
  double pixels = 0;         ///< that all instances together cover, about
  double room = 0;           ///< pixels of the rectangle around their positions
  double pixelsOfOne = 0;    ///< in the mean
  std::vector<float> depths; ///< of the sample
};

template <class OutlineOf>
CoverSample SampleCover(std::size_t p_count, const Projection& p_view, const OutlineOf& p_outlineOf) {
  constexpr std::size_t Few = 65536;
  constexpr std::size_t Stride = 61; // not that of rows of regular grids
  const std::size_t stride = p_count < Few ? 1 : Stride;
  const double most = static_cast<double>(p_view.width) * p_view.height;
  const auto width = static_cast<float>(p_view.width), height = static_cast<float>(p_view.height);
  float left = width, right = 0, bottom = height, top = 0;
  CoverSample sample;
  for (std::size_t i = 0; i < p_count; i += stride)
    if (const Outline outline = p_outlineOf(i); outline.halfWidth > 0 && outline.halfHeight > 0) {
      sample.depths.push_back(outline.depth);
      sample.pixels += std::min(most, M_PI * static_cast<double>(outline.halfWidth * outline.halfHeight));
      left = std::min(left, outline.x), right = std::max(right, outline.x);
      bottom = std::min(bottom, outline.y), top = std::max(top, outline.y);
    }
  const auto span = [](float p_from, float p_to, float p_most) {
    return static_cast<double>(std::max(0.0F, std::min(p_to, p_most) - std::max(p_from, 0.0F)));
  };
  sample.room = span(left, right, width) * span(bottom, top, height);
  if (!sample.depths.empty())
    sample.pixelsOfOne = sample.pixels / static_cast<double>(sample.depths.size());
  sample.pixels *= static_cast<double>(stride);
  return sample;
}

/// A grid of tiles that are small beside instances, so that many of them are covered wholly.
OcclusionGrid GridFor(const InstanceSelection::Input& p_input, double p_pixels) {
  constexpr double Most = 64, TilesOfInstance = 50;
  double tile = p_input.hasOneSample ? 1 : 0.5;
  while (tile < Most && tile * tile * TilesOfInstance < p_pixels)
    tile *= 2;
  return {p_input.view.width, p_input.view.height, static_cast<float>(tile),
          p_input.hasOneSample ? OcclusionGrid::Tiles::Centers : OcclusionGrid::Tiles::Areas, p_input.hiding};
}

/// The outlines of instances in a view.
class Outlines {
public:
  Outlines(const InstanceSelection::Input& p_input, const BallView& p_view)
      : _input(p_input)
      , _view(p_view)
      , _least(static_cast<float>(p_input.view.pixels > 0 ? p_input.leastPixels / p_input.view.pixels : 0)) {
    for (std::size_t level = 0; level < p_input.levels.size(); ++level) {
      _cores[level] = static_cast<float>(p_input.levels[level].core);
      _reaches[level] = static_cast<float>(p_input.levels[level].reach);
    }
  }

  /// From within; empty for an instance that hides nothing.
  Outline Inside(std::size_t p_instance, std::uint8_t p_level) const {
    const float core = _cores[p_level], size = Size(p_instance);
    return core > 0 ? _view.Inside((*_input.positions)[p_instance], core * size, _reaches[p_level] * size) : Outline();
  }
  std::optional<Outline> Around(std::size_t p_instance, std::uint8_t p_level) const {
    return _view.Around((*_input.positions)[p_instance], _reaches[p_level] * Size(p_instance));
  }

private:
  float Size(std::size_t p_instance) const {
    return std::max(_input.sizes ? (*_input.sizes)[p_instance] : 1, _least * _view.W((*_input.positions)[p_instance]));
  }

  const InstanceSelection::Input& _input;
  const BallView& _view;
  const float _least;                          ///< size at a clip coordinate w of 1
  std::array<float, 256> _cores{}, _reaches{}; ///< of levels; 0 for those left out
};

} // namespace

/// Draws instances into a coarse depth buffer, and leaves out those that it hides.
void InstanceSelection::HideOccluded() {
  const auto view = BallView::Of(_input.view);
  if (!view)
    return;
  const std::size_t count = _input.positions->size();
  const Outlines outlines(_input, *view);
  const auto insideOf = [&](std::size_t p_i) { return outlines.Inside(p_i, _levelOf[p_i]); };

  // Worth it where instances cover what they span several times.
  constexpr double LeastCover = 4;
  CoverSample sample = SampleCover(count, _input.view, insideOf);
  if (!(sample.pixels > LeastCover * static_cast<double>(_input.hiding) * sample.room))
    return;
  constexpr std::ptrdiff_t Front = 8;
  const auto front = sample.depths.begin() + static_cast<std::ptrdiff_t>(sample.depths.size()) / Front;
  std::nth_element(sample.depths.begin(), front, sample.depths.end());

  const Utility::Threads threads = Utility::Threads::All();
  const auto shares = static_cast<std::size_t>(threads.Count());
  std::vector<OcclusionGrid> grids(shares, GridFor(_input, sample.pixelsOfOne));
  const auto cover = [&](const auto& p_isWanted) {
    Utility::RunBlocks(threads, shares, [&](std::size_t p_share) {
      for (std::size_t i = p_share * count / shares; i < (p_share + 1) * count / shares; ++i)
        if (_levelOf[i] != LeftOut)
          if (const Outline inside = insideOf(i); p_isWanted(i, inside))
            grids[p_share].Cover(inside);
    });
    for (std::size_t share = 1; share < shares; ++share)
      grids[0].Merge(grids[share]);
  };
  const auto isHidden = [&](std::size_t p_i, const OcclusionGrid& p_grid, std::size_t p_bodies) {
    const auto around = outlines.Around(p_i, _levelOf[p_i]);
    return around && p_grid.Hides(*around, p_bodies);
  };
  // Those in front hide most of the others, which larger tiles show quickly.
  cover([&](std::size_t, const Outline& p_inside) { return p_inside.depth < *front; });
  const OcclusionGrid coarse = grids[0].Coarser();
  cover([&](std::size_t p_i, const Outline&) {
    if (!isHidden(p_i, coarse, _input.hiding))
      return true;
    _levelOf[p_i] = LeftOut;
    return false;
  });
  Utility::RunRanges(threads, count, BlockSize, [&](std::size_t p_begin, std::size_t p_end) {
    auto& counts = _firstOf[p_begin / BlockSize];
    counts = {};
    for (std::size_t i = p_begin; i < p_end; ++i) {
      if (_levelOf[i] != LeftOut && isHidden(i, grids[0], 1))
        _levelOf[i] = _input.hiding == 1 || isHidden(i, grids[0], _input.hiding)
                          ? LeftOut
                          : static_cast<std::uint8_t>(_levelOf[i] + MostLevels);
      if (_levelOf[i] != LeftOut)
        ++counts[_levelOf[i]];
    }
  });
  FindRanges();
}

} // namespace Vek::Chart::Scene::Private
