#pragma once

#include "scene/Export.h"

#include "scene/InstancedMesh.h"
#include "scene/View.h"

#include "library/ModelCache.h"

#include <cstddef>
#include <vector>

namespace Vek::Chart::Scene {

/// A model that is fine enough for instances up to a size in the picture.
struct VEK_SCENE_API ModelLevel {
  Mesh mesh;
  double mostPixels; ///< of an instance's size
};

/// Spheres of 20, 80 and 320 triangles, each up to the size at which its outline leaves the circle by a fifth of a
/// pixel. Larger ones take what the caller adds.
VEK_SCENE_API std::vector<ModelLevel> CoarseSpheres(Library::ModelCache& p_cache);

/// Instances that are drawn as finely as they appear: thousands of dots do not cost the triangles of as many balls.
class VEK_SCENE_API LeveledInstances {
public:
  explicit LeveledInstances(std::vector<Instance> p_instances);

  /// Draws each instance with the first level that is fine enough for it, or with the last one.
  void Draw(Utility::Scoped<Rgl>& p_gl, InstancePainter& p_painter, const std::vector<ModelLevel>& p_levels,
            const View& p_view, const Library::ColorMap& p_colors);
  /// Draws what the picture showed last; before the first one, all instances with the last level.
  void DrawDepths(Utility::Scoped<Rgl>& p_gl, InstancePainter& p_painter, const std::vector<ModelLevel>& p_levels);

private:
  void Take(const std::vector<std::size_t>& p_levelOf, std::size_t p_count);

  std::vector<Instance> _instances;
  std::vector<std::size_t> _levelOf;    ///< for each instance
  std::vector<InstanceBuffers> _levels; ///< the instances of each
};

} // namespace Vek::Chart::Scene
