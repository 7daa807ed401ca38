#include "apps/gallery/PictureFunctions.h"
#include "apps/gallery/PictureLoaders.h"

namespace Vek::Chart::Gallery {

const std::vector<PictureEntry>& Pictures() {
  static const std::vector<PictureEntry> Pictures = {
      {"wind", "Winds of the world",
       "The monthly mean wind of the world in January 1987 as arrows above the relief: length and colour tell the "
       "speed. Glyphs by VectorSymbol, colours by two ColorMaps bound as textures.",
       "apps/gallery/pictures/Wind.cpp", LoadWind},
      {"symbols", "Glyph models",
       "The fourteen built-in glyph models of the SymbolRegistry in GPU buffers. One instanced call of InstancedMesh "
       "draws a model and all its copies. A mesh given with --model joins them.",
       "apps/gallery/pictures/Symbols.cpp", nullptr, false, nullptr, SymbolsImage},
      {"earthquakes", "A week of earthquakes",
       "A week of earthquakes where they lie below the surface: each a sphere, sized by magnitude and coloured by "
       "depth, all of them instances of one model.",
       "apps/gallery/pictures/Earthquakes.cpp", LoadEarthquakes},
      {"atlas", "Colour atlas",
       "A chart in the colours of one texture, drawn three times from the same vertices: in the colours of the "
       "ColorAtlas itself, and moved onto two instances with other colours. Below, the texels of the atlas.",
       "apps/gallery/pictures/Atlas.cpp", nullptr, false, nullptr, AtlasImage},
      {"colors", "Colour maps and scales",
       "All maps of NamedColors, blended and in classes, with the lightness of their colours. Below, depths and "
       "salinities of the sea that ColorScale turned into colours, each in one call: on a linear and a logarithmic "
       "range, and in classes of given bounds. Values below, above and not a number have colours of their own.",
       "apps/gallery/pictures/Colors.cpp", nullptr, false, nullptr, ColorsImage},
      {"hdr", "High dynamic range",
       "Spheres of five finishes in the light of an image with high dynamic range (Venice at sunset, from Poly Haven, "
       "or a file given with --hdr), which ReadImage reads. The second row has the light that a screen can show: "
       "without the sun, highlights and warm light are gone. Below, the image at five exposures; on the right, the "
       "luminance along one row.",
       "apps/gallery/pictures/Hdr.cpp", nullptr, false, nullptr, HdrImage},
      {"volume", "Slices through a volume",
       "The salinity of the ocean on a map and at the true depths of its twenty layers; land is left "
       "out. A SlicesPlot of a VoxelGrid with uneven layers, or of a volume given with --volume.",
       "apps/gallery/pictures/Volume.cpp", nullptr, false, VolumeFigure},
      {"head", "Ray-cast volume",
       "A computed tomography of a head, from the data of VTK: skin and bone in a VolumePlot, which adds up colours "
       "and opacities along each line of sight. A volume given with --volume takes its place.",
       "apps/gallery/pictures/Head.cpp", nullptr, false, HeadFigure},
      {"cuts", "Planes and rays",
       "Oblique slices of a SlicesPlot through a volume: a formula, or a file given with --volume. On the right, "
       "results of Intersect: the line of two planes, and rays that meet a plane, end on it, lie in it or stop short.",
       "apps/gallery/pictures/Cuts.cpp", nullptr, false, nullptr, CutsImage},
      {"picking", "Depth picking",
       "Positions under seven pixels, which a Picker finds from the depths of one drawing. On the right, all depths "
       "that DepthCodec decodes from colours, and the depth buffer of the same drawing.",
       "apps/gallery/pictures/Picking.cpp", nullptr, false, nullptr, PickingImage},
      {"styles", "Styles and patterns",
       "All patterns of lines, areas and points, pixel by pixel, and texts from 2 to 96 pixels, drawn with Style and "
       "Pattern.",
       "apps/gallery/pictures/Styles.cpp", nullptr, false, nullptr, StylesImage},
      {"shapes", "Shapes",
       "The unit shapes of Geometry from display lists, solids filled and outlined, boxes, nine-patch panels and "
       "layers of textures.",
       "apps/gallery/pictures/Shapes.cpp", nullptr, false, nullptr, ShapesImage},
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
