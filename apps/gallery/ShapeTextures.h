#pragma once

#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <QImage>

/// The textures of the picture of all shapes.
namespace Vek::Chart::Gallery {

/// A 3-D texture whose voxels have their coordinates as colours; empty where GL makes no texture, which is reported.
boost::shared_ptr<Ogl::Texture> VoxelTexture(Utility::Scoped<Rgl>& p_gl);
/// A rounded panel with a dot in each corner, of three by three borders.
QImage PanelImage(int p_border);
/// A lower layer: a gradient with stripes.
QImage GroundImage();
/// An upper layer: an opaque disk on transparent light grey.
QImage DiskImage();

} // namespace Vek::Chart::Gallery
