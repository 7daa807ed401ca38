#pragma once

#include "library/Export.h"
#include "library/Texture.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <QColor>

#include <cstdint>
#include <vector>

namespace Vek::Chart::Library {

/// A rectangle in window pixels with one texture or several on top of each other, stretched whole or as a nine-patch.
/// With a border, the corners keep their size of `border` × `border` texels, the edges and the middle stretch.
///
/// Corners are truncated toward zero to whole pixels. A rectangle without a positive width and height draws nothing and
/// touches no GL state. The projection must map pixels to the viewport (`Rgl::PixelProjection`).
///
/// What a call leaves changed: the current colour, the current texture coordinate of unit 0, the pixel store's unpack
/// alignment when a texture is uploaded (it is 1 then), and the blend function when a layer was blended. The attribute
/// stack restores textures and the active unit, enables and the depth function.
///
/// \snippet DrawingSnippets.cpp TexturedQuad
/// \image html shapes.jpg
/// \ingroup drawables
class VEK_LIBRARY_API TexturedQuad {
public:
  Types::Viewport<0> rect;  ///< in pixels from the lower left of the window
  QColor color = Qt::white; ///< combined with the first texture by its environment setting
  std::uint32_t border = 0; ///< in pixels and texels; 0 stretches the whole texture

  /// Draws one texture, combined with `color` by the texture's environment.
  void operator()(const Utility::Unscoped<Rgl>& p_gl, const Texture& p_texture) const;

  /// Draws layers, the first at the bottom. From the second on, each replaces the colour, always passes the depth test,
  /// and is blended by its environment setting: 2 not at all, 1 by its alpha, 0 by multiplication. Any other number
  /// keeps the blending of the previous layer. A null pointer is reported and skipped.
  void operator()(const Utility::Unscoped<Rgl>& p_gl, std::vector<boost::shared_ptr<Texture>> p_textures) const;

private:
  void DrawLayer(Utility::Scoped<Rgl>& p_gl, const Texture& p_texture, bool p_first) const;
};

} // namespace Vek::Chart::Library
