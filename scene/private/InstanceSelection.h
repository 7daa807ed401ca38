#pragma once

#include "platform/ogl/Rgl.h"
#include "platform/ogl/Vec.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// How a scope shows points: its matrices and the size of its viewport.
struct Projection {
  std::array<double, 16> model{};      ///< from model to eye coordinates, column by column
  std::array<double, 16> projection{}; ///< to clip coordinates
  std::array<double, 16> clip{};       ///< both
  int width = 0, height = 0;           ///< of the viewport
  double pixels = 0;                   ///< of a unit at a clip w of 1
  bool isCentral = false;              ///< perspective

  static Projection Of(const Utility::Scoped<Ogl::Rgl>& p_gl);

  friend bool operator==(const Projection& p_a, const Projection& p_b) {
    return p_a.model == p_b.model && p_a.projection == p_b.projection && p_a.width == p_b.width &&
           p_a.height == p_b.height;
  }
};

/// Which instances are drawn, and with which level of detail: those that the view frustum may show, without those that
/// are surely hidden if instances overlap a lot.
///
/// Instances are looked at in blocks of a fixed size, so that the order does not depend on the number of threads.
class InstanceSelection {
public:
  template <class T>
  using Shared = boost::shared_ptr<const std::vector<T>>;
  /// What a level asks for.
  struct Level {
    double mostPixels = 0;    ///< the largest size × pixels per unit; ascending
    std::size_t vertices = 0; ///< of an instance
    double diameter = 0;      ///< of an instance of size 1, if it is a ray-cast sphere
    double reach = 0;         ///< of an instance of size 1 from its position
    double core = 0;          ///< radius of a ball around the position that an instance of size 1 encloses

    friend bool operator==(const Level& p_a, const Level& p_b) {
      return p_a.mostPixels == p_b.mostPixels && p_a.vertices == p_b.vertices && p_a.diameter == p_b.diameter &&
             p_a.reach == p_b.reach && p_a.core == p_b.core;
    }
  };
  /// What decides.
  struct Input {
    Shared<Ogl::Vec3<float>> positions; ///< x above 3.2e38: left out
    Shared<float> sizes;                ///< 1 if there are none; 0: left out
    Shared<float> axes;                 ///< any numbers of each instance, all of them 0: left out
    std::vector<Level> levels;          ///< at most MostLevels
    double leastPixels = 0;             ///< of sizes
    std::size_t mostVertices = 0;       ///< of all instances together, about; 0 for any number
    std::size_t hiding = 0;             ///< how many instances hide what is behind them, 1 or 2; 0 for any number
    bool hasOneSample = false;          ///< whether pixels are sampled at their centres
    Projection sizing;                  ///< decides on levels
    Projection view;                    ///< decides on what may be seen
  };
  static constexpr std::size_t MostLevels = 16;
  /// The instances of a level, as a range of the order.
  struct Range {
    std::size_t first = 0;
    std::size_t count = 0;
    std::size_t nearer = 0; ///< so many of them from the first are not hidden by one other instance
  };

  /// Finds the levels anew if the input changed; true if it did.
  bool Update(Input p_input);
  /// Whether the levels of these instances are known.
  bool Fits(const Shared<Ogl::Vec3<float>>& p_positions, const Shared<float>& p_sizes, std::size_t p_levels) const {
    return _input.positions == p_positions && _input.sizes == p_sizes && _ranges.size() == p_levels;
  }
  /// The projection that decided on the levels.
  const Projection& Sizing() const { return _input.sizing; }
  /// How many instances hide what is behind them.
  std::size_t Hiding() const { return _input.hiding; }
  /// Whether that holds at the centres of pixels alone.
  bool HasOneSample() const { return _input.hasOneSample; }
  /// One for each level.
  const std::vector<Range>& Ranges() const { return _ranges; }
  /// The number of instances that are drawn.
  std::size_t Count() const { return _ranges.empty() ? 0 : _ranges.back().first + _ranges.back().count; }
  /// Every how many-th instance is drawn.
  std::size_t Step() const { return _step; }
  /// Writes the instances level by level: `Count` numbers. Where two hide what is behind them, they go roughly from
  /// near to far in each part of a range.
  void WriteOrder(std::uint32_t* p_order) const;

private:
  static constexpr std::size_t BlockSize = 8192;
  static constexpr std::uint8_t LeftOut = 255;

  struct Rules;
  void Choose(double p_coarseness, std::size_t p_step);
  void FindRanges();
  void HideOccluded();
  double Cost() const;
  void FindDirected(const Input& p_input);

  Input _input;
  std::size_t _step = 1;
  std::vector<std::uint8_t> _isDirected; ///< 0 for axes that are zero; empty without axes
  std::vector<std::uint8_t> _levelOf;    ///< plus MostLevels for those hidden by one other instance
  std::vector<std::array<std::uint32_t, 2 * MostLevels>> _firstOf; ///< of each block and level, in the order
  std::vector<Range> _ranges;
};

} // namespace Vek::Chart::Scene::Private
