#pragma once

#include "apps/gallery/Picture.h"

#include "platform/types/Size.h"

#include <QImage>

namespace Vek::Chart::Gallery {

/// Makes a picture and draws it off-screen, in the dark theme, with letters in proportion to its height. `p_size` is
/// that of the result. Throws what making the picture throws, and std::runtime_error when there is no GL.
QImage RenderPicture(const PictureEntry& p_entry, const Inputs& p_inputs, Types::Size p_size);

} // namespace Vek::Chart::Gallery
