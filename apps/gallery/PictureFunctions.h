#pragma once

#include "apps/gallery/Picture.h"

#include "scene/Figure.h"

#include <string>

namespace Vek::Chart::Gallery {

// One function for each picture, in the source file of that name, or in Winds.cpp. See PictureEntry.
Figure WindFigure(const Inputs& p_inputs);
Figure StreamlinesFigure(const Inputs& p_inputs);
Figure EarthquakesFigure(const Inputs& p_inputs);
Figure BarsFigure(const Inputs& p_inputs);
Figure FlowFigure(const Inputs& p_inputs);
Figure SurfaceFigure(const Inputs& p_inputs);
Figure VolumeFigure(const Inputs& p_inputs);
Figure HeadFigure(const Inputs& p_inputs);
QImage AtlasImage(const Inputs& p_inputs, Types::Size p_size);
QImage ColorsImage(const Inputs& p_inputs, Types::Size p_size);
QImage CutsImage(const Inputs& p_inputs, Types::Size p_size);
QImage HdrImage(const Inputs& p_inputs, Types::Size p_size);
QImage PickingImage(const Inputs& p_inputs, Types::Size p_size);
QImage ShapesImage(const Inputs& p_inputs, Types::Size p_size);
QImage StylesImage(const Inputs& p_inputs, Types::Size p_size);
QImage SymbolsImage(const Inputs& p_inputs, Types::Size p_size);

/// The name of a file without its folder.
QString NameOfFile(const std::string& p_path);
/// The name of a file, and the size of its volume.
QString VolumeName(const std::string& p_path, const VoxelGrid& p_volume);
/// What the values of a volume of a file are, and their unit.
QString ValueTitle(const VoxelGrid& p_volume);

} // namespace Vek::Chart::Gallery
