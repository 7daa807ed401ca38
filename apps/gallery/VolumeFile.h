#pragma once

#include "apps/gallery/Loading.h"
#include "scene/ValueScale.h"

#include "library/VolumeImage.h"

#include <boost/shared_ptr.hpp>

#include <string>

namespace Vek::Chart::Gallery {

/// A volume of bytes and what they stand for.
struct VolumeFile {
  boost::shared_ptr<const Library::VolumeImage> image;
  double largest = 0; ///< the number of the file that became 255
  // The bytes below which 2 and 98 of 100 bytes lie that are not 0.
  int low = 0;
  int high = 1;

  /// From the colour of `low` to that of `high`, where 1 is a byte of 255.
  Scene::ValueScale Scale() const;

  /// Reads a volume "TextArray nx 1 ny nz". Throws InputError when the file is none.
  static VolumeFile Read(const std::string& p_path, Loading& p_loading);
};

} // namespace Vek::Chart::Gallery
