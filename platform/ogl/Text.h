#pragma once

#include "platform/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Property.h"
#include "platform/types/Size.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <QColor>
#include <QImage>
#include <QString>

namespace Vek::Chart::Ogl {

/// A text renderer: one or more lines in window pixels, in the font of `TextFont`.
///
/// The letters have the first colour. With the flag set, the second colour fills a box behind the text; without it, it
/// draws an outline around the letters. A transparent second colour draws neither.
///
/// Errors: an image that cannot be made or uploaded is reported, nothing is drawn, and the next draw tries again: no
/// memory as "!image.isNull() && "700 x 20 pixels"", an image beyond the device's limit as "largest <=
/// GL_MAX_TEXTURE_SIZE && "700 x 20 texels, the limit is 512"", a GL error by its name.
///
/// Qt needs a QGuiApplication for fonts (platform "offscreen" will do). Without one, `Image` is null and drawing does
/// nothing; both report "qGuiApp != nullptr && "Text needs a QGuiApplication."".
///
/// The image is made and uploaded, as a new texture, only after a change; copies share it until then. The last holder
/// of a texture must release it while the context that made it is current. Rendering thread only.
///
/// \image html styles.jpg
/// \ingroup host
class VEK_PLATFORM_API Text {
public:
  static constexpr unsigned int MinSize = 2;  ///< the smallest height in pixels
  static constexpr unsigned int MaxSize = 96; ///< the largest height in pixels

  /// A black text of 12 pixels.
  explicit Text(const QString& p_text = {});

  /// The text; lines are separated by line feeds.
  Types::Property<QString> text;
  /// The lower left corner of the text's box, in window pixels.
  Types::Pos position;
  /// The letters' colour.
  Types::Property<QColor> firstColor{QColor(Qt::black)};
  /// The colour of the box or outline; transparent draws neither.
  Types::Property<QColor> secondColor{QColor(Qt::transparent)};
  /// Whether the second colour fills a box, or draws outlines.
  Types::Property<bool> flag{false};
  /// The height of the font in pixels, clamped to MinSize to MaxSize.
  Types::Property<unsigned int> size{12};

  /// The text with its box or outline, premultiplied ARGB; null for an empty text.
  const QImage& Image();

  /// Draws at `position`, one texel a pixel, over what is there. The projection must map pixels to the viewport
  /// (`Rgl::PixelProjection`). All GL state is restored.
  void operator()(Utility::Scoped<Rgl>& p_gl);

private:
  bool Changed() const;
  QImage Painted() const;

  QImage _image;
  bool _uploaded = false;
  boost::shared_ptr<Texture> _texture;
};

} // namespace Vek::Chart::Ogl
