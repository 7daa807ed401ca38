#pragma once

#include <QImage>

namespace Vek::Chart::Library::Private {

/// An image in GL's order: of the same size, the lowest row first, four bytes a pixel as red, green, blue and alpha,
/// not multiplied by alpha. Only the bits count, the format of what comes back depends on Qt. Null for a null image,
/// and where there is no memory.
QImage GlFormat(const QImage& p_image);

} // namespace Vek::Chart::Library::Private
