#pragma once

#include "scene/GpuMesh.h"
#include "scene/PeelPass.h"
#include "scene/PickPass.h"
#include "scene/TubeMesh.h"
#include "scene/ValueScale.h"
#include "scene/private/TubeLevels.h"

#include "library/ColorMap.h"
#include "platform/ogl/PerContext.h"
#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// Lines as tubes, or as ribbons in the plane z = const, whose colours change without other vertices.
///
/// The vertex shader makes the rings of a tube of its stations, with as many vertices and as many rings as are seen
/// (see TubeSelection). Without buffer textures (GL 3.2), lines are one mesh, as `TubeMesh` makes it.
class LineTubes {
public:
  /// How lines are drawn.
  struct Quality {
    bool isOpen = false;          ///< whether insides are seen, behind cuts or through half-transparent walls
    std::size_t mostVertices = 0; ///< about; 0 for any number
    double pixels = 0;            ///< the width of lines on the screen, not lit; 0 for tubes
  };

  /// Replaces the lines; `value` of their points is not read. `p_values` has one value for each point of all lines, one
  /// after the other, or none. Throws std::invalid_argument for more than 2^24 points.
  void SetLines(const std::vector<std::vector<TubeMesh::Point>>& p_lines, const std::vector<float>& p_values,
                bool p_isFlat);
  /// Replaces the values.
  void SetValues(const std::vector<float>& p_values);

  /// Draws in the colours of the values, lit, as `GpuMesh::Draw` does.
  void Draw(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors, const ValueScale& p_scale,
            const Quality& p_quality, const PeelPass* p_pass = nullptr) const;
  /// Uploads what the first drawing would upload.
  void Upload(Utility::Scoped<Rgl>& p_gl) const;
  /// Draws depths, or numbers for PointOf, with the levels of the last drawing.
  void DrawPick(Utility::Scoped<Rgl>& p_gl, const PickPass& p_pass) const;
  /// Every how many-th line the last drawing had.
  std::size_t Step(const Utility::Scoped<Rgl>& p_gl) const;
  void Release(const Utility::Scoped<Rgl>& p_gl) const { _buffers.Release(p_gl); }

  /// The point, counted over all lines, that lies nearest to a position on what was drawn with a number; empty for
  /// other numbers.
  std::optional<std::size_t> PointOf(std::uint32_t p_number, const TubeLevels::Vector& p_position) const;

private:
  struct Buffers;
  struct Drawing;
  /// Made anew where it is not of the lines and values.
  const GpuMesh& WholeMesh(Buffers& p_buffers) const;

  boost::shared_ptr<const TubeLevels> _lines;                                 ///< null if there are none
  boost::shared_ptr<const std::vector<float>> _values;                        ///< of stations; null for one colour
  boost::shared_ptr<const std::vector<TubeLevels::ValueErrors>> _valueErrors; ///< likewise
  bool _isFlat = false;
  Ogl::PerContext<Buffers> _buffers;
};

} // namespace Vek::Chart::Scene::Private
