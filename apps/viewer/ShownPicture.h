#pragma once

#include "apps/gallery/Loading.h"
#include "apps/gallery/Picture.h"

#include <functional>
#include <memory>
#include <string>

namespace Vek::Chart::Viewer {

/// Something that can be shown: how it is listed and how it is loaded.
struct ShownPicture {
  std::string name;
  std::string caption;
  bool truePixels = false; ///< shows single pixels, which must not be smoothed
  /// For any thread; see Gallery::PictureEntry.
  std::function<std::unique_ptr<Gallery::Picture>(Gallery::Loading&)> load;
};

/// A picture of the gallery with its files.
ShownPicture GalleryPicture(const Gallery::PictureEntry& p_entry, const Gallery::Inputs& p_inputs);

} // namespace Vek::Chart::Viewer
