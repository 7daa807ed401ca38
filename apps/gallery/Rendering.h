#pragma once

#include "apps/gallery/Picture.h"

#include "platform/types/Size.h"

#include <QImage>

namespace Vek::Chart::Gallery {

/// Makes a picture and draws it once, off-screen, with smooth edges: at twice the size, reduced; or pixel by pixel, if
/// that is what it shows. `p_size` is that of the result. Throws what making the picture throws, and std::runtime_error
/// when there is no GL.
QImage RenderPicture(const PictureEntry& p_entry, const Inputs& p_inputs, Types::Size p_size);

} // namespace Vek::Chart::Gallery
