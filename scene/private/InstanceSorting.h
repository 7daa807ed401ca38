#pragma once

#include "platform/ogl/Rgl.h"
#include "platform/ogl/Vec.h"
#include "platform/types/Geometry.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// How a scope shows points: its matrices and the height of its viewport.
struct Projection {
  std::array<double, 16> clip{}; ///< from model to clip coordinates, column by column
  double pixels = 0;             ///< of a unit at a clip w of 1

  static Projection Of(const Utility::Scoped<Ogl::Rgl>& p_gl);

  /// The clip coordinate w of a point: its distance along the view axis, or 1 in a parallel projection.
  double W(double p_x, double p_y, double p_z) const {
    return clip[3] * p_x + clip[7] * p_y + clip[11] * p_z + clip[15];
  }
  /// False if a box lies outside of the view frustum; true for some boxes that do.
  bool MayShow(const Types::BoundingBox_Base<double>& p_box) const;

  friend bool operator==(const Projection& p_a, const Projection& p_b) {
    return p_a.clip == p_b.clip && p_a.pixels == p_b.pixels;
  }
};

/// The instances of each level of detail, as ranges of an order.
class InstanceSorting {
public:
  template <class T>
  using Shared = boost::shared_ptr<const std::vector<T>>;
  /// What decides on the level of an instance.
  struct Input {
    Shared<Ogl::Vec3<float>> positions; ///< x above 3.2e38: left out
    Shared<float> sizes;                ///< 1 if there are none
    std::vector<double> mostPixels;     ///< of each level, ascending
    Projection projection;
  };
  /// The instances of a level.
  struct Range {
    std::size_t first = 0; ///< in the order
    std::size_t count = 0;
    Types::BoundingBox_Base<double> box; ///< around their positions
    double largest = 0;                  ///< of their sizes
  };

  /// Finds the levels anew if the input changed; true if the order did.
  bool Update(Input p_input);
  /// Whether the levels of these instances are known.
  bool Fits(const Shared<Ogl::Vec3<float>>& p_positions, const Shared<float>& p_sizes, std::size_t p_levels) const {
    return _input.positions == p_positions && _input.sizes == p_sizes && _ranges.size() == p_levels;
  }
  /// The instances by level; empty if they stay in their order.
  const std::vector<std::uint32_t>& Order() const { return _order; }
  /// One for each level.
  const std::vector<Range>& Ranges() const { return _ranges; }

private:
  bool Known() const { return !_ranges.empty(); }
  std::size_t LevelOf(std::size_t p_instance) const;
  bool Sort();

  Input _input;
  std::vector<std::uint32_t> _levelOf;
  std::vector<std::uint32_t> _order;
  std::vector<Range> _ranges;
};

} // namespace Vek::Chart::Scene::Private
