#pragma once

#include <QImage>

namespace Vek::Chart::Library::Private {

/// An image in GL's order: of the same size, the lowest row first, four bytes a pixel as red, green, blue and alpha,
/// not premultiplied. Only the bits are defined; the format of the result depends on Qt. Null for a null image and
/// without memory.
QImage GlFormat(const QImage& p_image);

} // namespace Vek::Chart::Library::Private
