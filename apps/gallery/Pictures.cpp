#include "apps/gallery/PictureFunctions.h"

namespace Vek::Chart::Gallery {

const std::vector<PictureEntry>& Pictures() {
  static const std::vector<PictureEntry> Pictures = {
      {"wind", "Wind as arrows",
       "A wind above the relief of land and sea floor. Length and colour of an arrow are the speed; it points where "
       "the "
       "air goes on the map, and its key holds everywhere. One arrow stands for several nodes of the grid, as the note "
       "below the map says. A Figure with a map, a SurfacePlot and a QuiverPlot.",
       "apps/gallery/pictures/Winds.cpp", WindFigure},
      {"symbols", "Glyph models",
       "The fourteen built-in glyph models of the SymbolRegistry in GPU buffers. One instanced call of InstancedMesh "
       "draws a model and all its copies. A mesh given with --model joins them.",
       "apps/gallery/pictures/Symbols.cpp", nullptr, SymbolsImage},
      {"earthquakes", "Earthquakes",
       "Earthquakes where they lie below the coasts of the world: spheres whose diameters grow with the magnitude and "
       "whose colours are depths, with stems from deep ones up to the surface; the subtitle says how much deeper than "
       "true they are drawn. A ScatterPlot and two LinesPlots; the "
       "coasts are Isolines of a relief.",
       "apps/gallery/pictures/Earthquakes.cpp", EarthquakesFigure},
      {"bars", "Earthquakes in classes",
       "The number of earthquakes of each magnitude and depth as a BarsPlot on a logarithmic axis. Classes without any "
       "have no bar.",
       "apps/gallery/pictures/Bars.cpp", BarsFigure},
      {"atlas", "Colour atlas",
       "A chart in the colours of one texture, drawn three times from the same vertices: in the colours of the "
       "ColorAtlas itself, and moved onto two instances with other colours. Below, the texels of the atlas.",
       "apps/gallery/pictures/Atlas.cpp", nullptr, AtlasImage},
      {"colors", "Colour maps and scales",
       "All maps of NamedColors, blended and in classes, with the lightness of their colours. Below, depths and "
       "salinities of the sea that ColorScale turned into colours, each in one call: on a linear and a logarithmic "
       "range, and in classes of given bounds. Values below, above and not a number have colours of their own.",
       "apps/gallery/pictures/Colors.cpp", nullptr, ColorsImage},
      {"hdr", "High dynamic range",
       "Spheres of five finishes in the light of an image with high dynamic range (Venice at sunset, from Poly Haven, "
       "or a file given with --hdr), which ReadImage reads. The second row has the light that a screen can show: "
       "without the sun, highlights and warm light are gone. Below, the image at five exposures; on the right, the "
       "luminance along one row.",
       "apps/gallery/pictures/Hdr.cpp", nullptr, HdrImage},
      {"volume", "Slices through a volume",
       "The salinity of the ocean on a map and at the true depths of its twenty layers; land is left "
       "out. A SlicesPlot of a VoxelGrid with uneven layers, or of a volume given with --volume.",
       "apps/gallery/pictures/Volume.cpp", VolumeFigure},
      {"head", "Ray-cast volume",
       "A computed tomography of a head, from the data of VTK: skin and bone in a VolumePlot, which adds up colours "
       "and opacities along each line of sight. A volume given with --volume takes its place.",
       "apps/gallery/pictures/Head.cpp", HeadFigure},
      {"cuts", "Planes and rays",
       "Oblique slices of a SlicesPlot through a volume: a formula, or a file given with --volume. On the right, "
       "results of Intersect: the line of two planes, and rays that meet a plane, end on it, lie in it or stop short.",
       "apps/gallery/pictures/Cuts.cpp", nullptr, CutsImage},
      {"picking", "Depth picking",
       "Positions under seven pixels, which a Picker finds from the depths of one drawing. On the right, all depths "
       "that DepthCodec decodes from colours, and the depth buffer of the same drawing.",
       "apps/gallery/pictures/Picking.cpp", nullptr, PickingImage},
      {"styles", "Styles and patterns",
       "All patterns of lines, areas and points, pixel by pixel, and texts from 2 to 96 pixels, drawn with Style and "
       "Pattern.",
       "apps/gallery/pictures/Styles.cpp", nullptr, StylesImage},
      {"shapes", "Shapes",
       "The unit shapes of Geometry from display lists, solids filled and outlined, boxes, nine-patch panels and "
       "layers of textures.",
       "apps/gallery/pictures/Shapes.cpp", nullptr, ShapesImage},
      {"streamlines", "Streamlines of a wind",
       "The same wind as evenly spaced lines, as wide as it is fast, with heads downstream: a StreamlinesPlot on a "
       "map.",
       "apps/gallery/pictures/Winds.cpp", StreamlinesFigure},
      {"flow", "Flow in space",
       "Evenly spaced streamlines in a box with units: a Burgers vortex in water, which is computed, or a vector field "
       "given with --flow. A StreamlinesPlot.",
       "apps/gallery/pictures/Flow.cpp", FlowFigure},
      {"surface", "Relief as a surface",
       "Heights as a SurfacePlot with contour lines at round heights: land and sea floor of southern Asia, or all of a "
       "grid given with --relief. The subtitle says how much steeper than true slopes are.",
       "apps/gallery/pictures/Surface.cpp", SurfaceFigure},
  };
  return Pictures;
}

} // namespace Vek::Chart::Gallery
