#pragma once

#include "platform/Export.h"

#include <set>
#include <string>

namespace Vek::Chart::Ogl {

/// What the device of a context can do beyond its GL version, read once from the version and the extension list.
class VEK_PLATFORM_API DeviceFeatures {
public:
  enum Feature : unsigned int {
    FeatureFrameBufferObject = 0,
    FeatureFloatTextures = 1,
    FeatureInstancing = 2, ///< instanced draw calls and per-instance attributes
    FeatureSrgbFrameBuffer = 3,
    FeatureMultisampleFrameBuffer = 4,
    FeatureVolumeTextures = 5,
  };

  DeviceFeatures() = default;
  explicit DeviceFeatures(std::set<Feature> p_supported)
      : _supported(std::move(p_supported)) {}

  bool Supported(Feature p_feature) const { return _supported.count(p_feature) != 0; }

private:
  std::set<Feature> _supported;
};

} // namespace Vek::Chart::Ogl
