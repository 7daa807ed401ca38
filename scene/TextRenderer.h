#pragma once

#include "scene/Export.h"
#include "scene/TextStyle.h"

#include "platform/ogl/PerContext.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <QSizeF>
#include <QString>

#include <boost/shared_ptr.hpp>

#include <cstddef>

namespace Vek::Chart::Scene {

namespace Private {
class FlatBatch;
class LetterCache;
} // namespace Private

/// Draws strings at window pixels, upright or rotated, with a halo that keeps them legible over data.
///
/// Box: as high as the lines of the font, as wide as the longest line and an eighth of the font's height to the left
/// and to the right, where slanted letters may reach. A halo reaches beyond it. Lines are separated by line feeds. The
/// box lies with the point that the anchor names at the given position, and is rotated about it. In steps of 90
/// degrees, its corners are at whole pixels, so that letters are as sharp as their image.
///
/// The letters are those of `Ogl::Text`. Superscripts and signs are plain Unicode ("×10⁻³ m²").
///
/// Ownership: the shapes of the strings are kept on pages, textures of one byte a texel that many strings share, one
/// set per context (`Ogl::PerContext`): a renderer draws in any number of contexts, and ends before or after them. The
/// colours are not part of the pages. A set has at most MostTexels texels, or one page; the page that was not drawn for
/// the longest time is freed first. A copy starts without pages.
///
/// Cost: a string is painted and uploaded when it is drawn for the first time. `Draw` is one upload of vertices and one
/// draw call for each string; many strings are better drawn on a Canvas, which draws all of them together. GL needs
/// buffer objects that can be mapped.
///
/// Errors: Qt needs a QGuiApplication for fonts (platform "offscreen" will do). Without one, `Size` is empty and
/// nothing is drawn; both report "qGuiApp != nullptr && "Text needs a QGuiApplication."". A string whose image is
/// larger than the device's textures is reported ("largest <= GL_MAX_TEXTURE_SIZE && "600 x 30 texels, the limit is
/// 512"") and not drawn, as is one that there is no memory for. A position or rotation that is not finite draws
/// nothing. Rendering thread only.
///
/// \snippet SceneTextSnippets.cpp TextRenderer
/// \image html parts/TextRenderer.png
/// \ingroup legends
class VEK_SCENE_API TextRenderer {
public:
  static constexpr std::size_t MostTexels = 1U << 24; ///< of all pages of a context; 16 MiB
  static constexpr int MaxSize = 1024; ///< the largest height of a font in pixels; larger ones are drawn so

  using Style = Scene::TextStyle; ///< the appearance of a string

  /// The point of the box that lies at the given position, as fractions of its width and height: 0 is the left or lower
  /// edge, 0.5 the middle, 1 the right or upper edge.
  struct Anchor {
    double x = 0;   ///< along the width
    double y = 0.5; ///< along the height
  };

  /// The size of the box in points, where a point takes `p_pointSize` pixels. Calls no GL.
  static QSizeF Size(const QString& p_text, const Style& p_style, double p_pointSize = 1);

  /// Draws a string.
  ///
  /// \param p_gl the projection must map pixels to the viewport (`Rgl::PixelProjection`, Canvas); all state is restored
  /// \param p_text nothing is drawn if it is empty
  /// \param p_position in pixels from the viewport's lower left corner
  /// \param p_anchor the point of the box that lies there
  /// \param p_style the font, its size in points, and colours
  /// \param p_pointSize pixels of one point: the device pixel ratio
  /// \param p_rotation counter-clockwise, in degrees; with 90 the string is read from bottom to top
  void Draw(Utility::Scoped<Rgl>& p_gl, const QString& p_text, const Types::Vector2_Base<double>& p_position,
            Anchor p_anchor, const Style& p_style, double p_pointSize = 1, double p_rotation = 0) const;

  /// Frees the textures of the scope's context.
  void Release(const Utility::Scoped<Rgl>& p_gl) const { _letters.Release(p_gl); }

private:
  friend class Canvas;

  /// Likewise, later: adds what `Draw` would draw to a batch.
  void Add(Private::FlatBatch& p_batch, const Utility::Scoped<Rgl>& p_gl, const QString& p_text,
           const Types::Vector2_Base<double>& p_position, Anchor p_anchor, const Style& p_style, double p_pointSize,
           double p_rotation) const;

  // Behind a pointer, since its type is private; a shared one, since that is what PerContext can copy.
  Ogl::PerContext<boost::shared_ptr<Private::LetterCache>> _letters;
};

} // namespace Vek::Chart::Scene
