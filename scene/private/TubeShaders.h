#pragma once

#include "scene/private/TubeSelection.h"

#include <string>
#include <tuple>

namespace Vek::Chart::Scene::Private {

/// The shaders of lines (see TubeSelection). What all vertices have in common lies in their texts as constants, since
/// rasterisers in software work through both sides of each branch on a uniform.
struct TubeShaders {
  /// What is written to each pixel.
  enum Paint : unsigned char { Colors, Depths, Numbers };

  Paint paint = Colors;
  TubeSection::Kind kind = TubeSection::Facing;
  bool isPainted = false;     ///< by values
  bool isLogarithmic = false; ///< colours
  bool isPeeled = false;      ///< a layer in front is left out
  bool isCentral = false;     ///< perspective

  /// Reads stations and values from buffer textures.
  std::string VertexText() const;
  std::string FragmentText() const;

  friend bool operator<(const TubeShaders& p_a, const TubeShaders& p_b) {
    const auto all = [](const TubeShaders& p_shaders) {
      return std::tie(p_shaders.paint, p_shaders.kind, p_shaders.isPainted, p_shaders.isLogarithmic, p_shaders.isPeeled,
                      p_shaders.isCentral);
    };
    return all(p_a) < all(p_b);
  }
};

} // namespace Vek::Chart::Scene::Private
