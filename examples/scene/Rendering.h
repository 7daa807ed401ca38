#pragma once

#include "examples/scene/Scene.h"

#include "platform/types/Size.h"

#include <QImage>

#include <string>
#include <vector>

namespace Vek::Chart::Gallery {

/// Makes a scene and draws it once, off-screen, with smooth edges: at twice the size, reduced; or pixel by pixel, if
/// that is what it shows. `p_size` is that of the result. Throws what making the scene throws, and std::runtime_error
/// when there is no GL.
QImage RenderScene(const SceneEntry& p_entry, const Inputs& p_inputs, Types::Size p_size);

/// A page that shows each picture NAME.png with its caption and its source.
std::string IndexPage(const std::vector<SceneEntry>& p_entries);

} // namespace Vek::Chart::Gallery
