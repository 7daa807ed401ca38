#pragma once

#include "examples/scene/Loading.h"
#include "examples/scene/Scene.h"

#include <functional>
#include <memory>
#include <string>

namespace Vek::Chart::Viewer {

/// Something that can be shown: how it is listed and how it is loaded.
struct ShownScene {
  std::string name;
  std::string caption;
  bool truePixels = false; ///< shows single pixels, which must not be smoothed
  /// For any thread; see Gallery::SceneEntry.
  std::function<std::unique_ptr<Gallery::Scene>(Gallery::Loading&)> load;
};

/// A scene of the gallery with its files.
ShownScene GalleryScene(const Gallery::SceneEntry& p_entry, const Gallery::Inputs& p_inputs);

} // namespace Vek::Chart::Viewer
