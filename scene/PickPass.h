#pragma once

#include "scene/Export.h"

#include <cstdint>

namespace Vek::Chart::Scene {

/// One of the drawings that a `Picker` makes of a plot.
///
/// \ingroup picking
struct VEK_SCENE_API PickPass {
  /// What is written to each pixel.
  enum Kind : unsigned char {
    Depths, ///< the depth, packed by DepthCodec
    Ids,    ///< red, green and blue: the element, lowest byte first; alpha: the plot + 1
  };
  /// Elements have the numbers below this one, which stands for none.
  static constexpr std::uint32_t NoElement = 0xFFFFFF;
  /// The number of plots that ids can tell apart.
  static constexpr unsigned int MostPlots = 255;

  Kind kind = Depths;    ///< of all plots, one after the other
  unsigned int plot = 0; ///< the number of the plot that is drawn
};

} // namespace Vek::Chart::Scene
