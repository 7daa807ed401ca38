#pragma once

#include "scene/private/InstanceSelection.h"

#include "platform/ogl/Vec.h"

#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// An ellipse in pixels of a viewport, with axes along x and y, and depths in normalized device coordinates.
struct Outline {
  float x = 0, y = 0;
  float halfWidth = 0, halfHeight = 0;
  float depth = 0;
  float front = 0, back = 0; ///< the least and the largest depth, of outlines from within
};

/// How a view shows balls. All bounds are conservative.
class BallView {
public:
  /// Empty for views that do not show balls as ellipses with axes near x and y, or near things at larger depths.
  static std::optional<BallView> Of(const Projection& p_view);

  /// The clip coordinate w of a position in model units.
  float W(const Ogl::Vec3<float>& p_position) const { return _isCentral ? Depth(p_position) : 1; }
  /// A ball's outline from within: whatever encloses the ball hides what is farther than the depth behind all of the
  /// outline. Empty, with widths of 0, where planes of the view frustum cut a ball of radius `p_reach`, which has the
  /// least and the largest depth.
  Outline Inside(const Ogl::Vec3<float>& p_position, float p_radius, float p_reach) const;
  /// A ball's outline from without, and the least depth of the ball; empty where that is before the near plane.
  std::optional<Outline> Around(const Ogl::Vec3<float>& p_position, float p_radius) const;

private:
  /// x · p.x + y · p.y + z · p.z + w
  struct Row {
    float x = 0, y = 0, z = 0, w = 0;
    float operator()(const Ogl::Vec3<float>& p_p) const { return x * p_p.x + y * p_p.y + z * p_p.z + w; }
    /// The sum of the magnitudes.
    float Terms(const Ogl::Vec3<float>& p_p) const {
      return std::abs(x * p_p.x) + std::abs(y * p_p.y) + std::abs(z * p_p.z) + std::abs(w);
    }
  };
  float Depth(const Ogl::Vec3<float>& p_position) const { return _away(p_position); }
  /// Pixels by which an outline may lie elsewhere, as rasterisers and sums round.
  float Margin(const Ogl::Vec3<float>& p_position, float p_share) const;
  float DeviceDepth(float p_away) const { return _isCentral ? _near + _far / p_away : _near + _far * p_away; }

  bool _isCentral = false;
  float _scale = 1;              ///< eye units in a model unit
  Row _right, _up, _away;        ///< eye coordinates; away from the eye
  float _width = 0, _height = 0; ///< pixels of a unit at a w of 1
  float _left = 0, _bottom = 0;  ///< pixels of the eye's axis
  float _near = 0, _far = 0;     ///< of depths
};

/// For each tile of a viewport, a depth behind which everything is hidden: behind one body, or behind two of which one
/// begins where the other has ended. Rays through both meet four surfaces, each at a depth of its own.
class OcclusionGrid {
public:
  static constexpr std::size_t MostBodies = 2;
  /// What of a tile is to be hidden.
  enum class Tiles {
    Areas,   ///< all of it
    Centers, ///< the centres of its pixels, for targets with one sample a pixel
  };
  /// Tiles of `p_tile` × `p_tile` pixels.
  OcclusionGrid(int p_width, int p_height, float p_tile, Tiles p_tiles = Tiles::Areas, std::size_t p_bodies = 1);
  /// Hides what is behind an outline.
  void Cover(const Outline& p_outline);
  /// Hides what another grid of the same size hides.
  void Merge(const OcclusionGrid& p_other);
  /// A grid of tiles four times as wide and high that hides no more.
  OcclusionGrid Coarser() const;
  /// Whether an outline is hidden wholly, by so many bodies, at most those of the grid.
  bool Hides(const Outline& p_outline, std::size_t p_bodies = 1) const;

private:
  /// The depths of a body.
  struct Extent {
    float front, back;
  };
  void AddBody(std::size_t p_tile, const Extent& p_body);
  template <class DepthOf>
  bool Hides(const Outline& p_outline, const DepthOf& p_depthOf) const;

  int _width, _height;
  float _tile, _inset; ///< the latter in tiles
  int _columns, _rows;
  std::vector<float> _depths;
  std::vector<Extent> _firsts; ///< the bodies that end first, where two are needed
};

} // namespace Vek::Chart::Scene::Private
