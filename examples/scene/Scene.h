#pragma once

#include "examples/scene/Camera.h"

#include "platform/ogl/Rgl.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <memory>
#include <string>
#include <vector>

namespace Vek::Chart::Gallery {

/// From where and into which part of the window a scene is drawn.
struct View {
  Camera camera;
  Types::Viewport<0> viewport;

  /// Pixels that make one point, the unit of letters, lines and legends: 1000 points are the height of the view.
  double PointSize() const { return static_cast<double>(viewport.height) / 1000.0; }
  Camera::Pixel Project(const Types::Vector3_Base<double>& p_point) const { return camera.Project(p_point, viewport); }
};

/// The files that scenes read.
struct Inputs {
  std::string winds;
  std::string relief;
  std::string quakes;
  std::string symbols;  ///< the folder of the built-in glyph models
  std::string salinity; ///< of the ocean, a TextArray volume
  std::string volume;   ///< a TextArray volume of the user's; may be empty
  std::string hdr;      ///< a panorama, Radiance HDR
  std::string sprites;  ///< the folder of the point sprites
  std::string model;    ///< an OBJ file of the user's; may be empty
  std::string flow;     ///< a vector grid of the user's; may be empty
};

/// One picture: it loads what it shows when it is made, and draws it as often as asked. GL objects belong to the
/// context that was current when it was made, which must be current when it is drawn and when it ends.
class Scene {
public:
  Scene() = default;
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;
  virtual ~Scene() = default;

  /// The camera that shows the scene best.
  virtual Camera StartCamera() const = 0;
  /// Fills the viewport: background, scene and legends. GL state is left as it was found.
  virtual void Draw(Utility::Scoped<Rgl>& p_gl, const View& p_view) = 0;
};

/// How a scene is listed.
struct SceneEntry {
  std::string name;    ///< of the picture file, and of the option --only
  std::string caption; ///< one or two sentences for the reader of the gallery
  std::string source;  ///< the file that makes it, from the root of the project
  /// Throws InputError when an input is not what the scene needs.
  std::unique_ptr<Scene> (*make)(Utility::Scoped<Rgl>& p_gl, const Inputs& p_inputs);
  /// Whether a picture shows single pixels, such as those of stipples, and must not be smoothed.
  bool true_pixels = false;
};

/// All scenes, in the order of the gallery.
const std::vector<SceneEntry>& Scenes();

} // namespace Vek::Chart::Gallery
