#pragma once

#include "scene/Export.h"

#include "library/Texture.h"

#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <QColor>
#include <QImage>
#include <QString>

#include <cstddef>
#include <map>
#include <memory>
#include <tuple>

namespace Vek::Chart::Scene {

/// A line of text as an image with straight alpha, just as wide as the text and as high as the font's lines, `p_pixels`
/// being the size of the letters. Needs a QGuiApplication. Never empty.
VEK_SCENE_API QImage TextImage(const QString& p_text, int p_pixels, bool p_bold, const QColor& p_color);

/// Draws lines of text as textured quads; each text becomes a texture once, until there are too many: texts may change
/// with each movement of a mouse. Its textures end with it, which must happen while the context is current.
class VEK_SCENE_API TextRenderer {
public:
  static constexpr std::size_t MostTextures = 256;

  struct Style {
    double size = 19; ///< in points
    QColor color;
    bool bold = false;
  };
  /// Which part of the text stands at the given place: 0 its left or lower border, 0.5 the middle, 1 the right or upper
  /// one.
  struct Anchor {
    double x = 0;
    double y = 0.5;
  };

  /// To be called with a projection of one unit a pixel (see Canvas); the place is in pixels from the lower left.
  void Draw(Utility::Scoped<Rgl>& p_gl, const QString& p_text, double p_x, double p_y, Anchor p_anchor,
            const Style& p_style, double p_pointSize);

private:
  using Key = std::tuple<QString, int, bool, QRgb>;
  std::map<Key, std::unique_ptr<Library::Texture>> _textures;
};

} // namespace Vek::Chart::Scene
