#pragma once

#include "apps/gallery/HeightField.h"
#include "apps/gallery/MapFrame.h"

#include "library/ColorMap.h"

#include "platform/ogl/Rgl.h"
#include "platform/ogl/VertexData.h"
#include "platform/utility/Scope.h"

namespace Vek::Chart::Gallery {

/// The land and the sea floor as a block of relief over a map, coloured by height. Sea level is at z = 0.
class Relief {
public:
  /// Colours from `LowestColored` metres below to `HighestColored` metres above the sea; the coast is at their border.
  static constexpr double LowestColored = -6000;
  static constexpr double HighestColored = 6000;
  static constexpr double SeaFloorFlattening = 0.3;

  Relief(const HeightField& p_heights, const MapFrame& p_map, double p_zPerMetre);

  /// Muted colours that leave room for what is drawn above. A surface that lets the background through needs to be
  /// brighter.
  static Library::ColorMap MutedColors(double p_opacity = 1.0, double p_brightness = 1.0);

  /// z of a height in metres; the sea floor is flattened, to be calmer than the land.
  double Z(double p_metres) const { return p_metres * _zPerMetre * (p_metres < 0 ? SeaFloorFlattening : 1); }
  /// z of the highest point and of the base of the block.
  double Top() const { return _top; }
  double Base() const { return _base; }

  /// Needs lighting (see DirectionalLight); `p_colors` gives the colours. The fewer pixels a unit has, the coarser it
  /// is drawn.
  void Draw(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors, double p_pixelsPerUnit = 100) const;
  /// Without the sides of the block.
  void DrawSurface(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors, double p_pixelsPerUnit = 100) const;

private:
  void BuildSurface(const HeightField& p_heights, const MapFrame& p_map);
  void BuildSides();

  double _zPerMetre;
  double _top = 0;
  double _base = 0;
  std::size_t _columns = 0;
  std::size_t _rows = 0;
  Ogl::VertexData _surface;
  Ogl::VertexData _coarseSurface; ///< half as many cells along each side, of the same vertices
  Ogl::VertexData _sides;
};

} // namespace Vek::Chart::Gallery
