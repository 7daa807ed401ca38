#pragma once

#include "scene/Export.h"
#include "scene/OpacityFunction.h"
#include "scene/PickPass.h"
#include "scene/ValueScale.h"
#include "scene/VoxelGrid.h"

#include "library/ColorMap.h"

#include "platform/ogl/PerContext.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Geometry.h"
#include "platform/utility/Scope.h"

#include <optional>
#include <vector>

namespace Vek::Chart::Scene {

/// Draws a volume by casting a ray through its box for each pixel.
///
/// **Modes.** Composite is emission and absorption: a value v has the colour of the colour map and the extinction
/// coefficient −ln(1 − opacity(v)) / unitLength, so that a layer of that value, `unitLength` thick, has the opacity of
/// the opacity function and a layer of another thickness L the opacity 1 − (1 − opacity)^(L / unitLength), whatever the
/// sampling distance (Max, "Optical Models for Direct Volume Rendering", 1995). Maximum and Average take the largest
/// and the mean value along the ray and draw its colour with its opacity. Isosurface draws the nearest surface of one
/// value, opaque, in the colour of that value.
///
/// **Rays** start at the near plane or where they enter the box, also with the camera inside, and end where they leave
/// it, at the far plane, or, while GL's depth test is enabled, at the depth that is in the frame buffer: opaque things
/// are drawn before the volume and hide what lies behind them, inside the box as well. Rays are sampled at even
/// distances, about `samplesPerVoxel · quality` times per edge of the shortest voxel (`SamplingDistance`), and 8192
/// times at most; missing values are transparent and count in no mean. In Composite mode a ray ends as soon as its
/// opacity exceeds 0.998. On grids whose cells are uneven, bounds of cells are off by up to 1/8000 of the box.
///
/// **State.** Draws under GL's model-view and projection matrices (Camera::Apply), of any kind that can be inverted,
/// within GL's viewport and scissor, over what is there by the opacity. Writes no depth. All GL state is left as it
/// was. The depth range must be 0 to 1.
///
/// **Light.** With `shading`, and in Isosurface mode, colours are lit by GL's light 0 (see DirectionalLight), on both
/// sides, with the gradient of the values as normal.
///
/// Cost: proportional to the pixels that the box covers and the samples along a ray; VolumeBench measures it. A quality
/// of 0.25 takes a quarter of the steps, for a volume that moves. Changes of the settings upload no voxel. The frame
/// buffer's depths under the viewport are read at each draw with the depth test.
///
/// Ownership: GL objects are kept per context (see Ogl::PerContext); copies share the grid.
///
/// Errors: std::invalid_argument from the drawings for limits of the scale that cannot be drawn, numbers that are not
/// finite, samplesPerVoxel or a quality that is not above 0, a negative unitLength or leastStep, more than six clipping
/// planes, and one without a normal. See VoxelGrid and Ogl::ShaderProgram for what is reported. Depths of a
/// multisampled frame buffer that cannot be read are reported once per context and hide nothing.
///
/// \ingroup plots
/// \snippet SceneVolumeSnippets.cpp VolumeRaycaster
/// \image html parts/VolumeRaycaster.png
class VEK_SCENE_API VolumeRaycaster {
public:
  /// What a ray shows.
  enum class Mode {
    Composite, ///< all values along the ray, by their opacities
    Maximum,   ///< the largest value
    Average,   ///< the mean of the values
    Isosurface ///< the first place where the value is `isovalue`
  };

  /// How a volume is drawn.
  struct Settings {
    Mode mode = Mode::Composite; ///< what a ray shows
    /// The colours of values. Its colour of missing values does not apply: they are transparent.
    ValueScale scale;
    /// The opacity of a value. Empty: from 0 at the lower limit of the scale to 0.5 at the upper one for Composite, to
    /// 1 for Maximum and Average, as the colours along their logarithms where the scale is logarithmic.
    std::optional<OpacityFunction> opacity;
    double unitLength = 0;      ///< of Composite, in units of the box; 0: a twentieth of the diagonal of the box
    double isovalue = 0;        ///< of Isosurface
    bool shading = false;       ///< lights Composite
    double samplesPerVoxel = 1; ///< per edge of a voxel, of its shortest edge; above 0
    double leastStep = 0;       ///< of samples, whatever the voxels, in units of the box; not negative
    double quality = 1;         ///< factor of the samples, above 0
    bool jitter = false;        ///< moves the samples of each pixel by a fixed pattern, which hides rings
    VoxelGrid::Filter filter = VoxelGrid::Filter::Linear; ///< of the samples
    /// Only what lies on the side of all planes that their normals point to is drawn; at most six.
    std::vector<Types::Plane> clips;
    /// The part of the box that is drawn; empty for all of it.
    Types::BoundingBox_Base<double> part;
    /// A larger part, of which others draw the rest: samples lie where they do on rays through it, each in one part
    /// alone. Empty for `part`.
    Types::BoundingBox_Base<double> whole;
  };

  /// Draws that grid.
  explicit VolumeRaycaster(VoxelGrid p_grid);

  /// The grid.
  const VoxelGrid& Grid() const { return _grid; }
  /// Takes another grid; programs are kept.
  void SetGrid(VoxelGrid p_grid);
  /// The distance of the samples along a ray, in units of the box.
  double SamplingDistance(const Settings& p_settings) const;

  /// Draws the volume.
  void Draw(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors, const Settings& p_settings) const;
  /// Gives each pixel the depth of what it shows, packed by DepthCodec: of the isosurface, of the first largest sample,
  /// and otherwise of the position at which the opacity of the ray reaches half its final one. Rays of an opacity below
  /// 0.05 show nothing. The depths are tested and written as those of a surface there. Belongs within a DepthPass.
  void DrawDepths(Utility::Scoped<Rgl>& p_gl, const Settings& p_settings) const;
  /// Draws for a Picker: depths, or ids without an element.
  void Draw(Utility::Scoped<Rgl>& p_gl, const Settings& p_settings, const PickPass& p_pass) const;
  /// Frees the GL objects of the scope's context but the texture of the grid.
  void Release(const Utility::Scoped<Rgl>& p_gl) const { _programs.Release(p_gl); }

private:
  struct Programs;

  VoxelGrid _grid;
  Ogl::PerContext<Programs> _programs;
};

} // namespace Vek::Chart::Scene
