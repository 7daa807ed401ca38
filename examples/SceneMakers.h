#pragma once

#include "examples/scene/Scene.h"

#include <memory>

namespace Vek::Chart::Gallery {

// One function for each scene, in the source file of that name.
std::unique_ptr<Scene> LoadWind(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Scene> LoadSymbols(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Scene> LoadEarthquakes(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Scene> LoadAtlas(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Scene> LoadColors(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Scene> LoadVolume(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Scene> LoadCuts(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Scene> LoadHdr(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Scene> LoadPicking(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Scene> LoadStyles(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Scene> LoadShapes(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Scene> LoadStreamlines(const Inputs& p_inputs, Loading& p_loading);
std::unique_ptr<Scene> LoadFlow(const Inputs& p_inputs, Loading& p_loading);

} // namespace Vek::Chart::Gallery
