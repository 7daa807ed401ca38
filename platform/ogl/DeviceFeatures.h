#pragma once

#include "platform/Export.h"

#include <set>
#include <string>

namespace Vek::Chart::Ogl {

/// The optional features of a context's device, determined by GL version and extensions.
class VEK_PLATFORM_API DeviceFeatures {
public:
  /// Features that a device may lack.
  enum Feature : unsigned int {
    FeatureFrameBufferObject = 0,      ///< frame-buffer objects
    FeatureFloatTextures = 1,          ///< textures of 16- and 32-bit floats
    FeatureInstancing = 2,             ///< instanced draw calls and per-instance attributes
    FeatureSrgbFrameBuffer = 3,        ///< frame buffers that take linear light and store sRGB
    FeatureMultisampleFrameBuffer = 4, ///< frame-buffer objects with several samples per pixel
    FeatureVolumeTextures = 5,         ///< 3-D textures
  };

  DeviceFeatures() = default; ///< none
  /// A device with exactly these features.
  explicit DeviceFeatures(std::set<Feature> p_supported)
      : _supported(std::move(p_supported)) {}

  /// True if the device has the feature.
  bool Supported(Feature p_feature) const { return _supported.count(p_feature) != 0; }

private:
  std::set<Feature> _supported;
};

} // namespace Vek::Chart::Ogl
