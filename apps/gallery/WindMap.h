#pragma once

#include "apps/gallery/HeightField.h"
#include "apps/gallery/Loading.h"
#include "apps/gallery/MapFrame.h"
#include "apps/gallery/Picture.h"
#include "apps/gallery/Relief.h"
#include "apps/gallery/WindField.h"
#include "scene/Canvas.h"

#include "library/ColorMap.h"

#include <QString>

namespace Vek::Chart::Gallery {

/// The winds of a file over the relief of land and sea floor: what all pictures of the wind share.
class WindMap {
public:
  /// Reads winds and relief, two stages that end at 0.4 and 0.5. Winds that go around the globe are shown between the
  /// two parallels; others in all the part of the world where they are. Throws InputError.
  WindMap(const Inputs& p_inputs, Loading& p_loading, double p_south, double p_north);

  const WindField& Field() const { return _field; }
  const MapFrame& Map() const { return _map; }
  /// m/s at the upper end of the colours; a few winds may be faster.
  double Fastest() const { return _fastest; }
  /// z of the highest mountain.
  double Top() const { return _relief.Top(); }
  /// How much farther the camera stands because the map is tall.
  double Zoom() const { return _zoom; }
  Camera StartCamera(double p_distance) const;

  /// The relief with the graticule on it, lit, as fine as the view needs it.
  void Draw(Utility::Scoped<Rgl>& p_gl, const View& p_view) const;
  /// The relief alone, with the light and the shader that are in use.
  void DrawRelief(Utility::Scoped<Rgl>& p_gl) const { _relief.Draw(p_gl, _reliefColors); }
  /// Degrees along the map, the bar of the speeds, and a title: of the monthly mean that comes with the gallery, or of
  /// another file.
  void DrawLegends(Canvas& p_canvas, const View& p_view, const Library::ColorMap& p_colors, const QString& p_meanTitle,
                   const QString& p_fileTitle) const;

private:
  WindField _field;
  MapFrame _map;
  Relief _relief;
  QString _file;
  double _fastest;
  bool _clipped; ///< whether there are faster winds
  double _zoom;
  Library::ColorMap _reliefColors = Relief::MutedColors();
};

} // namespace Vek::Chart::Gallery
