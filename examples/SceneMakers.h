#pragma once

#include "examples/scene/Scene.h"

#include <memory>

namespace Vek::Chart::Gallery {

// One function for each scene, in the source file of that name.
std::unique_ptr<Scene> MakeWind(Utility::Scoped<Rgl>& p_gl, const Inputs& p_inputs);
std::unique_ptr<Scene> MakeSymbols(Utility::Scoped<Rgl>& p_gl, const Inputs& p_inputs);
std::unique_ptr<Scene> MakeEarthquakes(Utility::Scoped<Rgl>& p_gl, const Inputs& p_inputs);
std::unique_ptr<Scene> MakeAtlas(Utility::Scoped<Rgl>& p_gl, const Inputs& p_inputs);
std::unique_ptr<Scene> MakeVolume(Utility::Scoped<Rgl>& p_gl, const Inputs& p_inputs);
std::unique_ptr<Scene> MakeHdr(Utility::Scoped<Rgl>& p_gl, const Inputs& p_inputs);
std::unique_ptr<Scene> MakePicking(Utility::Scoped<Rgl>& p_gl, const Inputs& p_inputs);
std::unique_ptr<Scene> MakeStyles(Utility::Scoped<Rgl>& p_gl, const Inputs& p_inputs);
std::unique_ptr<Scene> MakeShapes(Utility::Scoped<Rgl>& p_gl, const Inputs& p_inputs);
std::unique_ptr<Scene> MakeStreamlines(Utility::Scoped<Rgl>& p_gl, const Inputs& p_inputs);
std::unique_ptr<Scene> MakeFlow(Utility::Scoped<Rgl>& p_gl, const Inputs& p_inputs);

} // namespace Vek::Chart::Gallery
