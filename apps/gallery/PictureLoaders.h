#pragma once

#include "apps/gallery/Picture.h"

#include <memory>

namespace Vek::Chart::Gallery {

// One function for each picture, in the source file of that name.
std::unique_ptr<Picture> LoadWind(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Picture> LoadSymbols(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Picture> LoadEarthquakes(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Picture> LoadAtlas(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Picture> LoadColors(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Picture> LoadVolume(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Picture> LoadCuts(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Picture> LoadHdr(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Picture> LoadPicking(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Picture> LoadStyles(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Picture> LoadShapes(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Picture> LoadStreamlines(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Picture> LoadFlow(const Inputs& p_inputs, Loading& p_loading);

} // namespace Vek::Chart::Gallery
