#include "apps/gallery/PictureLoaders.h"

namespace Vek::Chart::Gallery {

const std::vector<PictureEntry>& Pictures() {
  static const std::vector<PictureEntry> Pictures = {
      {"wind", "Winds of the world",
       "The monthly mean wind of the world in January 1987 as arrows above the relief: length and colour tell the "
       "speed. Glyphs by VectorSymbol, colours by two ColorMaps bound as textures.",
       "apps/gallery/pictures/Wind.cpp", LoadWind},
      {"symbols", "Glyph models",
       "The fourteen built-in glyph models of the SymbolRegistry, drawn from their GPU buffers: one instanced call for "
       "a model and all its copies.",
       "apps/gallery/pictures/Symbols.cpp", LoadSymbols},
      {"earthquakes", "A week of earthquakes",
       "A week of earthquakes where they lie below the surface: each a sphere, sized by magnitude and coloured by "
       "depth, all of them instances of one model.",
       "apps/gallery/pictures/Earthquakes.cpp", LoadEarthquakes},
      {"atlas", "Colour atlas",
       "A chart in the colours of one texture: drawn three times from the same vertices, once in the atlas's own "
       "colours and twice moved onto instances with replaced colours. Below, the ColorAtlas itself, enlarged.",
       "apps/gallery/pictures/Atlas.cpp", LoadAtlas},
      {"colors", "Colour maps and scales",
       "All maps of NamedColors, blended and in classes, above the lightness of their colours. Below, real fields that "
       "ColorScale turned into colours, each in one call: on a linear and a logarithmic range and in classes of given "
       "bounds, with colours of their own for values below, above and not a number.",
       "apps/gallery/pictures/Colors.cpp", LoadColors},
      {"hdr", "High dynamic range",
       "A panorama with a high dynamic range, read by HdrImage, at five exposures, and the luminance along the row "
       "that is marked: what one exposure burns out or drowns, another shows.",
       "apps/gallery/pictures/Hdr.cpp", LoadHdr},
      {"volume", "Salinity of the ocean",
       "The salinity of the ocean as a volume, cut by three planes: Intersect makes the slices, a VolumeTexture fills "
       "them, and land is transparent.",
       "apps/gallery/pictures/Volume.cpp", LoadVolume},
      {"cuts", "Planes and rays",
       "Everything that Intersect computes: a volume cut by five planes, filled by a VolumeTexture; the line of two "
       "planes; and rays that meet a plane, end on it, lie in it or stop short. The volume is a formula that the scene "
       "computes itself, or one given with --volume.",
       "apps/gallery/pictures/Cuts.cpp", LoadCuts},
      {"picking", "Depth picking",
       "Places in the world under seven pixels, read from one drawing by a TopMostFragmentDepthBuffer. On the right, "
       "all the depths that DepthCodec unpacks from that drawing's colours, beside the true depth buffer.",
       "apps/gallery/pictures/Picking.cpp", LoadPicking},
      {"styles", "Styles and patterns",
       "All patterns that lines, areas and points can have, pixel by pixel, and texts from 2 to 96 pixels: Style and "
       "Pattern at work.",
       "apps/gallery/pictures/Styles.cpp", LoadStyles, true},
      {"shapes", "Shapes",
       "Everything that draws itself: the unit shapes of Geometry from display lists, solids filled and outlined, "
       "boxes, nine-patch panels and layered textures.",
       "apps/gallery/pictures/Shapes.cpp", LoadShapes},
      {"streamlines", "Streamlines of the wind",
       "The same wind as evenly spaced streamlines above the relief, coloured by speed: fast winds as tubes, calm ones "
       "as ribbons, swept from the cross-sections of StreamLineShape without twist.",
       "apps/gallery/pictures/Streamlines.cpp", LoadStreamlines},
      {"flow", "Flow in a vortex",
       "A flow in space as tubes from where it enters its box, with glyphs of VectorSymbol along them: a Burgers "
       "vortex that the scene computes itself, or a grid given with --flow.",
       "apps/gallery/pictures/Flow.cpp", LoadFlow},
  };
  return Pictures;
}

} // namespace Vek::Chart::Gallery
