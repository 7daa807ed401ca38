#include "scene/private/InstanceSelection.h"

#include "scene/private/Matrix4.h"
#include "scene/private/MeshShaders.h"

#include "platform/types/Vector.h"
#include "platform/utility/Threads.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

using Point = Types::Vector3_Base<double>;

/// The factor by which a matrix scales lengths, of all directions in the mean.
double ScaleOf(const Matrix4& p_m) {
  const Point x(p_m[0], p_m[1], p_m[2]), y(p_m[4], p_m[5], p_m[6]), z(p_m[8], p_m[9], p_m[10]);
  return std::cbrt(std::abs(Dot(Cross(x, y), z)));
}

/// x · p.x + y · p.y + z · p.z + w
struct Linear {
  float x = 0, y = 0, z = 0, w = 0;
  float operator()(float p_x, float p_y, float p_z) const { return x * p_x + y * p_y + z * p_z + w; }
};

/// A row of a matrix, times a number, plus another row.
Linear Combined(const Matrix4& p_m, std::size_t p_row, double p_factor, std::size_t p_other, double p_scale) {
  const auto at = [&](std::size_t p_column) {
    return static_cast<float>((p_factor * p_m[4 * p_column + p_row] + p_m[4 * p_column + p_other]) * p_scale);
  };
  return {at(0), at(1), at(2), at(3)};
}

/// Some instances, number by number.
struct Chunk {
  static constexpr std::size_t Size = 256;
  using Floats = std::array<float, Size>;
  Floats x{}, y{}, z{}, size{};
  Floats w{}, extent{};          ///< clip coordinate w; size × pixels per unit at a w of 1
  std::array<int, Size> level{}; ///< below 0: left out
};

/// The distance from a side of the view frustum, positive inside. `p_side` is 1 or −1.
Linear Side(const Matrix4& p_clip, std::size_t p_axis, double p_side) {
  const Linear plane = Combined(p_clip, p_axis, p_side, 3, 1);
  const double x = static_cast<double>(plane.x), y = static_cast<double>(plane.y), z = static_cast<double>(plane.z);
  const double length = std::sqrt(x * x + y * y + z * z);
  return Combined(p_clip, p_axis, p_side, 3, length > 0 ? 1 / length : 1);
}

} // namespace

Projection Projection::Of(const Utility::Scoped<Ogl::Rgl>& p_gl) {
  Matrix4 view{}, projection{};
  std::array<int, 4> viewport{};
  p_gl->GetDoublev(RGL_MODELVIEW_MATRIX, view.data());
  p_gl->GetDoublev(RGL_PROJECTION_MATRIX, projection.data());
  p_gl->GetIntegerv(RGL_VIEWPORT, viewport.data());
  return {view,
          projection,
          Product(projection, view),
          viewport[2],
          viewport[3],
          std::abs(projection[5]) * ScaleOf(view) * viewport[3] / 2.0,
          projection[15] == 0};
}

/// The input as the loop over all instances needs it.
struct InstanceSelection::Rules {
  Rules(const Input& p_input, double p_coarseness)
      : depth(Combined(p_input.sizing.clip, 3, 0, 3, 1))
      , sides{Side(p_input.view.clip, 0, 1),  Side(p_input.view.clip, 0, -1), Side(p_input.view.clip, 1, 1),
              Side(p_input.view.clip, 1, -1), Side(p_input.view.clip, 2, 1),  Side(p_input.view.clip, 2, -1)}
      , pixels(static_cast<float>(p_input.sizing.pixels))
      , least(static_cast<float>(p_input.sizing.pixels > 0 ? p_input.leastPixels / p_input.sizing.pixels : 0))
      , bounds(p_input.levels.size() - 1) {
    for (const Level& level : p_input.levels)
      reach = std::max(reach, static_cast<float>(level.reach * 1.001));
    for (std::size_t level = 0; level < bounds; ++level)
      mostPixels[level] =
          static_cast<float>(std::min(p_input.levels[level].mostPixels * p_coarseness, double{LargestValue}));
  }

  /// Finds the levels of the instances of a chunk. The loops have no branches, so that compilers make vectors of them.
  void FindLevels(Chunk& p_chunk) const {
    for (std::size_t i = 0; i < Chunk::Size; ++i) {
      const float x = p_chunk.x[i], y = p_chunk.y[i], z = p_chunk.z[i];
      const float w = depth(x, y, z), size = std::max(p_chunk.size[i], least * w), radius = -reach * size;
      int isSeen = (p_chunk.size[i] > 0 ? 1 : 0) & (x <= 3.2e38F ? 1 : 0);
      for (const Linear& side : sides)
        isSeen &= side(x, y, z) >= radius ? 1 : 0;
      p_chunk.w[i] = w;
      p_chunk.extent[i] = size * pixels;
      p_chunk.level[i] = isSeen - 1; // -1: left out
    }
    for (std::size_t bound = 0; bound < bounds; ++bound)
      for (std::size_t i = 0; i < Chunk::Size; ++i) // behind the eye, where it may reach into the view: the finest one
        p_chunk.level[i] += p_chunk.extent[i] > mostPixels[bound] * p_chunk.w[i] ? ~(p_chunk.level[i] >> 31) & 1 : 0;
  }

  /// The size of an instance × pixels per unit.
  double ExtentOf(const Ogl::Vec3<float>& p_position, float p_size) const {
    constexpr double Nearest = 1e-6;
    const double w = std::max(Nearest, static_cast<double>(depth(p_position.x, p_position.y, p_position.z)));
    return std::max(static_cast<double>(p_size) / w, static_cast<double>(least)) * static_cast<double>(pixels);
  }

  Linear depth; ///< clip coordinate w
  std::array<Linear, 6> sides;
  float pixels, least, reach = 0;
  std::size_t bounds;
  std::array<float, MostLevels> mostPixels{};
};

bool InstanceSelection::Update(Input p_input) {
  const bool isSame = !_ranges.empty() && p_input.positions == _input.positions && p_input.sizes == _input.sizes &&
                      p_input.axes == _input.axes && p_input.levels == _input.levels &&
                      p_input.leastPixels == _input.leastPixels && p_input.mostVertices == _input.mostVertices &&
                      p_input.hiding == _input.hiding && p_input.hasOneSample == _input.hasOneSample &&
                      p_input.sizing == _input.sizing && p_input.view == _input.view;
  if (isSame)
    return false;
  if (p_input.axes != _input.axes)
    FindDirected(p_input);
  _input = std::move(p_input);
  const std::size_t most = _input.mostVertices;
  if (most == 0) {
    Choose(1, 1);
    if (_input.hiding != 0)
      HideOccluded();
    return true;
  }
  // Of many instances, a sample decides.
  constexpr double Coarseness = 4; // errors of four fifths of a pixel
  const auto room = static_cast<double>(most);
  const std::size_t sample = _input.positions->size() < 8 * BlockSize ? 1 : 64;
  Choose(1, sample);
  double coarseness = 1;
  if (static_cast<double>(sample) * Cost() > room)
    Choose(coarseness = Coarseness, sample);
  const double cost = static_cast<double>(sample) * Cost();
  std::size_t step = 1;
  while (cost / static_cast<double>(step) > room && step < _input.positions->size())
    step *= 2;
  if (step != sample)
    Choose(coarseness, step);
  while (sample == 1 && Cost() > room && step < _input.positions->size())
    Choose(coarseness, step *= 2);
  return true;
}

/// Once for all views, so that each reads a byte instead of three or six floats.
void InstanceSelection::FindDirected(const Input& p_input) {
  _isDirected.clear();
  if (!p_input.axes)
    return;
  const std::size_t count = p_input.positions->size(), numbers = p_input.axes->size() / count;
  const float* const axes = p_input.axes->data();
  _isDirected.resize(count);
  for (std::size_t i = 0; i < count; ++i)
    _isDirected[i] = axes[i * numbers] != 0 || axes[i * numbers + 1] != 0 || axes[i * numbers + 2] != 0 ? 1 : 0;
}

/// The time that drawing takes, in vertices.
double InstanceSelection::Cost() const {
  constexpr double OfPixel = 0.04; // seen by a ray-cast sphere, measured with a rasteriser in software on four cores
  double vertices = 0, pixels = 0;
  for (std::size_t level = 0; level < _ranges.size(); ++level)
    vertices += static_cast<double>(_ranges[level].count * _input.levels[level].vertices);
  if (std::none_of(_input.levels.begin(), _input.levels.end(),
                   [](const Level& p_level) { return p_level.diameter > 0; }))
    return vertices;
  const Rules rules(_input, 1);
  constexpr double Most = 1000; // of those that reach out of the view
  for (std::size_t i = 0; i < _levelOf.size(); i += _step)
    if (_levelOf[i] != LeftOut) {
      const double extent = rules.ExtentOf((*_input.positions)[i], _input.sizes ? (*_input.sizes)[i] : 1);
      const double diameter = std::min(Most, extent * _input.levels[_levelOf[i]].diameter);
      pixels += diameter * diameter;
    }
  return vertices + OfPixel * pixels;
}

/// Finds levels and ranges of every how many-th instance. `p_coarseness` multiplies the sizes of levels.
void InstanceSelection::Choose(double p_coarseness, std::size_t p_step) {
  const std::vector<Ogl::Vec3<float>>& positions = *_input.positions;
  const std::size_t count = positions.size();
  const float* const sizes = _input.sizes ? _input.sizes->data() : nullptr;
  const Rules rules(_input, p_coarseness);
  _step = p_step;
  _levelOf.resize(count);
  _firstOf.assign((count + BlockSize - 1) / BlockSize, {});
  Utility::RunRanges(Utility::Threads::All(), count, BlockSize, [&](std::size_t p_begin, std::size_t p_end) {
    std::array<std::uint32_t, 256> counts{};
    Chunk chunk;
    for (std::size_t i = (p_begin + p_step - 1) / p_step * p_step; i < p_end; i += Chunk::Size * p_step) {
      const std::size_t inChunk = std::min(Chunk::Size, (p_end - i + p_step - 1) / p_step);
      for (std::size_t k = 0; k < inChunk; ++k) {
        const std::size_t at = i + k * p_step;
        chunk.x[k] = positions[at].x, chunk.y[k] = positions[at].y, chunk.z[k] = positions[at].z;
        chunk.size[k] = _isDirected.empty() || _isDirected[at] ? sizes != nullptr ? sizes[at] : 1 : 0;
      }
      rules.FindLevels(chunk);
      for (std::size_t k = 0; k < inChunk; ++k) {
        const auto level = static_cast<std::uint8_t>(chunk.level[k]);
        _levelOf[i + k * p_step] = level;
        ++counts[level];
      }
    }
    std::copy_n(counts.begin(), MostLevels, _firstOf[p_begin / BlockSize].begin());
  });
  FindRanges();
}

/// Turns the counts of all blocks and levels into places of the order.
void InstanceSelection::FindRanges() {
  _ranges.assign(_input.levels.size(), {});
  std::uint32_t next = 0;
  const auto place = [&](std::size_t p_level) {
    for (auto& firsts : _firstOf)
      next += std::exchange(firsts[p_level], next);
  };
  for (std::size_t level = 0; level < _ranges.size(); ++level) {
    _ranges[level].first = next;
    place(level);
    _ranges[level].nearer = next - _ranges[level].first;
    place(level + MostLevels);
    _ranges[level].count = next - _ranges[level].first;
  }
}

namespace {

/// Writes instances from near to far, roughly.
void WriteFromNear(const std::uint32_t* p_begin, const std::uint32_t* p_end, const Linear& p_depth,
                   const std::vector<Ogl::Vec3<float>>& p_positions, std::uint32_t* p_order) {
  constexpr std::size_t Bins = 256;
  if (p_begin == p_end)
    return;
  std::vector<float> depths(static_cast<std::size_t>(p_end - p_begin));
  std::transform(p_begin, p_end, depths.begin(), [&](std::uint32_t p_i) {
    return p_depth(p_positions[p_i].x, p_positions[p_i].y, p_positions[p_i].z);
  });
  const auto [least, most] = std::minmax_element(depths.begin(), depths.end());
  const float start = *least, scale = *most > start ? static_cast<float>(Bins) / (*most - start) : 0;
  const auto binOf = [&](float p_depthOf) { // 0 for NaN
    const float bin = (p_depthOf - start) * scale;
    return bin > 0 ? static_cast<std::size_t>(std::min(bin, static_cast<float>(Bins - 1))) : 0;
  };
  std::array<std::size_t, Bins + 1> firsts{};
  for (const float depth : depths)
    ++firsts[binOf(depth) + 1];
  std::partial_sum(firsts.begin(), firsts.end(), firsts.begin());
  for (std::size_t i = 0; i < depths.size(); ++i)
    p_order[firsts[binOf(depths[i])]++] = p_begin[i];
}

} // namespace

void InstanceSelection::WriteOrder(std::uint32_t* p_order) const {
  std::vector<std::uint32_t> byNumber(_input.hiding > 1 ? Count() : 0);
  std::uint32_t* const order = byNumber.empty() ? p_order : byNumber.data();
  Utility::RunRanges(Utility::Threads::All(), _levelOf.size(), BlockSize, [&](std::size_t p_begin, std::size_t p_end) {
    auto next = _firstOf[p_begin / BlockSize];
    for (std::size_t i = (p_begin + _step - 1) / _step * _step; i < p_end; i += _step)
      if (const std::uint8_t level = _levelOf[i]; level != LeftOut)
        order[next[level]++] = static_cast<std::uint32_t>(i);
  });
  if (byNumber.empty())
    return;
  // Of half-transparent instances, each of which is shaded in several layers, near ones keep the shader from far ones.
  const Linear depth = Combined(_input.view.clip, 2, 0, 2, 1);
  for (const Range& range : _ranges)
    for (const auto& [first, end] : {std::pair(range.first, range.first + range.nearer),
                                     std::pair(range.first + range.nearer, range.first + range.count)})
      WriteFromNear(order + first, order + end, depth, *_input.positions, p_order + first);
}

} // namespace Vek::Chart::Scene::Private
