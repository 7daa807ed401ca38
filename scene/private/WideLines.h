#pragma once

#include "scene/GpuMesh.h"
#include "scene/PickPass.h"
#include "scene/ValueScale.h"
#include "scene/private/DataTransform.h"

#include "library/ColorMap.h"
#include "platform/ogl/PerContext.h"
#include "platform/ogl/Rgl.h"
#include "platform/ogl/ShaderProgram.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <functional>
#include <vector>

namespace Vek::Chart::Scene::Private {

struct WideLineShading;

/// Polylines of a constant width on the screen, with round joints and ends, in one draw call. GL's own wide lines have
/// neither, and end at a width that each driver chooses. Each segment is an instance of a stadium shape, which the
/// vertex shader places in pixels; both of its ends are read from one array of points.
class WideLines {
public:
  /// All points of all lines, one after the other. A point that is not finite ends a line and is not drawn.
  void SetPoints(const std::vector<Point>& p_points);
  /// A value for each point, or none. A segment with a missing one is missing.
  void SetValues(const std::vector<float>& p_values);

  /// Draws in the colours of the values, not lit, under the current matrices and viewport.
  void Draw(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors, const ValueScale& p_scale, double p_pixels,
            const PeelPass* p_pass = nullptr) const;
  /// Draws depths, or the numbers of the segments, counted over all points.
  void DrawPick(Utility::Scoped<Rgl>& p_gl, double p_pixels, const PickPass& p_pass) const;
  void Release(const Utility::Scoped<Rgl>& p_gl) const { _buffers.Release(p_gl); }

private:
  struct Buffers;
  using SetUniforms = std::function<void(const Ogl::ShaderProgram&)>;
  void DrawSegments(Utility::Scoped<Rgl>& p_gl, const WideLineShading& p_shading, double p_pixels,
                    const SetUniforms& p_setUniforms) const;
  bool CanFetch(const Utility::Scoped<Rgl>& p_gl) const;
  void DrawAttributes(Utility::Scoped<Rgl>& p_gl, Buffers& p_buffers, bool p_hasValues, double p_pixels) const;
  void DrawFetched(Utility::Scoped<Rgl>& p_gl, Buffers& p_buffers, const Ogl::ShaderProgram& p_program,
                   double p_pixels) const;
  template <class T>
  using Shared = boost::shared_ptr<const std::vector<T>>;

  Shared<GpuMesh::Record> _points;
  Shared<float> _values;
  Ogl::PerContext<Buffers> _buffers;
};

} // namespace Vek::Chart::Scene::Private
