#pragma once

#include "apps/gallery/Loading.h"
#include "scene/Figure.h"
#include "scene/View.h"

#include "platform/ogl/Rgl.h"
#include "platform/types/Size.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <QColor>
#include <QImage>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Vek::Chart::Gallery {

using namespace Scene;

/// The files that pictures read.
struct Inputs {
  std::string winds;
  std::string relief;
  std::string quakes;
  std::string symbols;  ///< the folder of the built-in glyph models
  std::string salinity; ///< of the ocean, a TextArray volume
  std::string head;     ///< a CT of a head, NRRD
  std::string volume;   ///< a volume of the user's; may be empty
  std::string hdr;      ///< a panorama, Radiance HDR
  std::string sprites;  ///< the folder of the point sprites
  std::string model;    ///< an OBJ file of the user's; may be empty
  std::string flow;     ///< a vector grid of the user's; may be empty
  std::size_t time = 0; ///< the step of winds in a file with several
  std::string folder;   ///< the gallery's own, with data/, symbols/ and sprites/

  /// Whether a file is the gallery's own, so that its contents are known.
  bool IsOwn(const std::string& p_path) const {
    return !folder.empty() && p_path.compare(0, folder.size(), folder) == 0;
  }
};

/// One picture: it has read and computed what it shows when it is made, without any GL, and draws it as often as asked.
///
/// GL objects are made by the first call that takes a scope, and belong to the context that is current then. It must be
/// current for each further call that is not const, and when the picture ends. Before that call a picture belongs to no
/// thread: it may be made on one, shown on another, or dropped.
class Picture {
public:
  Picture() = default;
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;
  virtual ~Picture() = default;

  /// The camera that shows the picture best.
  virtual Camera StartCamera() const = 0;
  /// Fills the viewport: background, picture and legends. GL state is left as it was found.
  virtual void Draw(Utility::Scoped<Rgl>& p_gl, const View& p_view) = 0;

  // What an interactive program may offer; not every picture has all of it.

  /// Whether there are surfaces that can be pointed at.
  virtual bool HasSurfaces() const { return false; }
  /// The part of the view that shows them.
  virtual Types::Viewport<0> SurfaceViewport(const View& p_view) const { return p_view.viewport; }
  /// Draws the surfaces so that each pixel gets its depth packed by DepthCodec; to be called within DepthShader::Draw,
  /// whose shader does that for all surfaces without a shader of their own. `p_view.viewport` is what SurfaceViewport
  /// returned: it gives the projection its form, but GL's viewport is the caller's.
  virtual void DrawSurfaces(Utility::Scoped<Rgl>&, const View&) {}

  /// Whether the picture colours values by a map that can be exchanged.
  virtual bool TakesColors() const { return false; }
  /// Colours values by this list from now on, interpolated. An empty list brings the picture's own colours back.
  virtual void SetColors(const std::vector<QColor>&) {}

  /// The names of the glyphs that the picture can show its values with; empty when there is no choice. The first one is
  /// the picture's own.
  virtual std::vector<std::string> Shapes() const { return {}; }
  /// Takes the glyph of that index from now on; one that is not there changes nothing.
  virtual void SetShape(std::size_t) {}
};

/// How a picture is listed.
struct PictureEntry {
  std::string name;    ///< of the picture file, and of the option --only
  std::string title;   ///< a few words
  std::string caption; ///< one or two sentences for the reader of the gallery
  std::string source;  ///< the file that makes it, from the root of the project
  /// Reads and computes what the picture shows; on any thread, since it needs no GL. Throws InputError when an input is
  /// not what the picture needs, and Cancelled.
  std::unique_ptr<Picture> (*load)(const Inputs& p_inputs, Loading& p_loading) = nullptr;
  /// Whether a picture shows single pixels, such as those of stipples, and must not be smoothed.
  bool truePixels = false;
  /// The figure of a picture that is one. Throws as `load`.
  Scene::Figure (*figure)(const Inputs& p_inputs) = nullptr;
  /// A picture that is made of parts or of several figures, at a size. Throws as `load`.
  QImage (*image)(const Inputs& p_inputs, Types::Size p_size) = nullptr;
};

/// All pictures, in the order of the gallery.
const std::vector<PictureEntry>& Pictures();

} // namespace Vek::Chart::Gallery
