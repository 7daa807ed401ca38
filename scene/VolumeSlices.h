#pragma once

#include "scene/Export.h"

#include "library/ColorMap.h"
#include "library/VolumeImage.h"
#include "library/VolumeTexture.h"

#include "platform/ogl/Rgl.h"
#include "platform/ogl/ShaderProgram.h"
#include "platform/types/Geometry.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <array>
#include <vector>

namespace Vek::Chart::Scene {

/// A polygon in a volume's box, as its corners in order.
using Slice = std::vector<Types::Vector3_Base<double>>;

/// Fills polygons with the values of the volume in whose box they lie. A volume has values from 0 to 1; where it is 0
/// there is nothing, neither colour nor depth.
class VEK_SCENE_API SlicePainter {
public:
  /// How values become colours.
  struct Look {
    float low = 0;        ///< the value of the first colour
    float high = 1;       ///< the value of the last one
    float lowOpacity = 1; ///< of the first colour; the last one is opaque
  };

  /// The volume fills `p_box`, its first layer below, or above with `p_downwards`.
  SlicePainter(Utility::Scoped<Rgl>& p_gl, const boost::shared_ptr<const Library::VolumeImage>& p_image,
               const Types::BoundingBox_Base<double>& p_box, Library::VolumeTexture::Filter p_filter,
               bool p_downwards = false);

  void Draw(Utility::Scoped<Rgl>& p_gl, const std::vector<Slice>& p_slices, const Library::ColorMap& p_colors,
            const Look& p_look) const;
  /// Each pixel gets its depth, packed by DepthCodec.
  void DrawDepths(Utility::Scoped<Rgl>& p_gl, const std::vector<Slice>& p_slices) const;

private:
  void Fill(Utility::Scoped<Rgl>& p_gl, const std::vector<Slice>& p_slices) const;

  Types::BoundingBox_Base<double> _box;
  bool _downwards;
  Library::VolumeTexture _texture;
  Ogl::ShaderProgram _colored;
  Ogl::ShaderProgram _packed;
};

/// A box around the origin for a volume whose voxels are cubes; its longest side is `p_longest`.
VEK_SCENE_API Types::BoundingBox_Base<double> BoxOf(const Library::VolumeImage& p_image, double p_longest);

/// The two ends of each edge of a box.
VEK_SCENE_API std::array<std::array<Types::Vector3_Base<double>, 2>, 12>
Edges(const Types::BoundingBox_Base<double>& p_box);

/// Draw slices' outlines and a box's edges as lines of the current width, without a texture.
VEK_SCENE_API void DrawOutlines(Utility::Scoped<Rgl>& p_gl, const std::vector<Slice>& p_slices);
VEK_SCENE_API void DrawEdges(Utility::Scoped<Rgl>& p_gl, const Types::BoundingBox_Base<double>& p_box);

} // namespace Vek::Chart::Scene
