// The examples of the reference for files: what stands between two marks is shown there.

#include "io/FileError.h"
#include "io/Formats.h"
#include "io/ReadHeights.h"
#include "io/ReadImage.h"
#include "io/ReadMesh.h"
#include "io/ReadTable.h"
#include "io/ReadVectorField.h"
#include "io/ReadVolume.h"
#include "io/SampleFile.h"
#include "library/ObjScene.h"
#include "library/ReadTextArray.h"
#include "scene/Figure.h"
#include "scene/VectorField.h"
#include "tests/support/Test.h"

TEST(FileSnippets, ReadTable) {
  const TempFolder folder;
  const std::string path = folder.Write("wind.csv", "lon,lat,u,v,speed\n10,50,3,4,5\n11,50,,,\n");
  /// [ReadTable]
  const Io::Table wind = Io::ReadTable(path);
  const std::vector<std::array<double, 3>> positions = wind.Points("lon", "lat"); // z is 0
  const std::vector<std::array<double, 3>> vectors = wind.Vectors("u", "v");      // the second one is missing: NaN
  const std::vector<double>& speeds = wind["speed"];
  /// [ReadTable]
  EXPECT_TRUE(positions.size() == 2 && std::isnan(vectors[1][0]) && speeds[0] == 5);
}

TEST(FileSnippets, ReadObjScene) {
  const TempFolder folder;
  folder.Write("house.mtl", "newmtl brick\nKd 0.6 0.2 0.1\n");
  const std::string path = folder.Write("house.obj", "mtllib house.mtl\nv 0 0 0\nv 4 0 0\nv 4 3 0\nv 2 5 0\nv 0 3 0\n"
                                                     "usemtl brick\nf 1 2 3 4 5\n");
  /// [ReadObjScene]
  const ObjScene house = ReadObjScene(path);
  for (const ObjScene::Group& group : house.groups) {
    if (group.primitive != ObjScene::Triangles || group.material < 0)
      continue;
    const std::array<float, 3>& color = house.materials[group.material].diffuse;
    const std::uint32_t* const triangles = &house.indices[group.first]; // of house.positions and house.normals
    std::cout << group.count / 3 << " triangles, red " << color[0] << ", from vertex " << triangles[0] << '\n';
  }
  /// [ReadObjScene]
  EXPECT_EQ(house.indices.size(), 9u);
}

TEST(FileSnippets, ReadMesh) {
  const TempFolder folder;
  const std::string path =
      folder.Write("part.stl", "solid part\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\n"
                               "vertex 0 1 0\nendloop\nendfacet\nendsolid part\n");
  /// [ReadMesh]
  Io::Mesh mesh;
  try {
    mesh = Io::ReadMesh(path); // OBJ, PLY or STL
  } catch (const Io::FileError& error) {
    std::cerr << error.what() << '\n'; // "part.stl:4: expected a number, got "x""
  }
  for (const std::string& warning : mesh.warnings) // what was left out
    std::cerr << warning << '\n';
  const std::size_t vertices = mesh.positions.size() / 3;
  /// [ReadMesh]
  EXPECT_EQ(vertices, 3u);
}

TEST(FileSnippets, ReadVolume) {
  const TempFolder folder;
  const std::string path = folder.Write("head.nrrd", "NRRD0004\ntype: short\ndimension: 3\nsizes: 2 1 1\n"
                                                     "spacings: 0.5 0.5 2\nencoding: ascii\n\n-1000 3000\n");
  /// [ReadVolume]
  const Io::Volume head = Io::ReadVolume(path); // TextArray, NRRD or NIfTI
  const auto [least, most] = head.range;
  const double first = head.Value(0, 0, 0);
  const Io::Volume::Vector position = head.Position(1, 0, 0);                          // of the second voxel's centre
  if (const auto* const values = std::get_if<std::vector<std::int16_t>>(&head.values)) // without a copy
    std::cout << values->size() << " values from " << least << " to " << most << '\n';

  Io::VolumeOptions options; // of a file without header
  options.raw = Io::RawLayout{{256, 256, 109}, Io::Volume::Int16};
  options.noData = -32768;
  /// [ReadVolume]
  EXPECT_TRUE(first == least && position[0] == 0.5 && options.raw->channels == 1);
}

TEST(FileSnippets, ReadTextArray) {
  std::istringstream file("TextArray 2 2 1 1\n0.5 10  1.5 20\n");
  /// [ReadTextArray]
  TextArrayOptions options;
  options.precision = TextArrayOptions::Bits16;
  options.range = {{0, 30}}; // these become 0 and 65535
  options.channels = {1};
  const TextArray array = ReadTextArray(file, "salt.txt", options);
  const auto& values = std::get<std::vector<std::uint16_t>>(array.values);
  /// [ReadTextArray]
  EXPECT_EQ(values, (std::vector<std::uint16_t>{21845, 43690}));
}

TEST(FileSnippets, Formats) {
  /// [Formats]
  for (const Io::Format& format : Io::Formats())
    if (format.kind == Io::Format::Meshes && !format.isAvailable)
      std::cout << format.name << " files need a build with " << format.package << '\n';
  const std::string patterns = Io::FilePatterns(Io::Format::Meshes); // "*.obj *.ply *.stl", for a file dialog
  /// [Formats]
  EXPECT_EQ(patterns.substr(0, 5), "*.obj");
}

TEST(FileSnippets, ReadVectorField) {
  const std::string path = VEK_SOURCE_DIR "/data/navy_winds_1987.nc";
  /// [ReadVectorField]
  Io::VectorField wind = Io::ReadVectorField(path);
  std::cout << wind.times.size() << " steps, in " << wind.unit << '\n'; // 2 steps, in M/S
  wind = Io::ReadVectorField(path, {{"UWND", "VWND"}, 1});              // the second one
  Scene::VectorField field = Scene::VectorField::Rectilinear(wind.axes[0], wind.axes[1], wind.axes[2], wind.vectors);
  if (wind.period > 0)
    field.WrapX(wind.period);
  Scene::Figure figure;
  figure.Quiver(wind.Positions(), wind.vectors);
  /// [ReadVectorField]
  EXPECT_EQ(field.Missing(), 0u);
}

TEST(FileSnippets, ReadHeights) {
  const std::string path = VEK_SOURCE_DIR "/data/etopo60.txt";
  /// [ReadHeights]
  const Io::HeightGrid relief = Io::ReadHeights(path); // a height grid, NetCDF or a table
  Scene::Figure figure;
  figure.Surface(relief.x, relief.y, relief.heights);
  /// [ReadHeights]
  EXPECT_EQ(relief.heights.size(), 360u * 180);
}

TEST(FileSnippets, ReadImage) {
  const std::string path = Io::SampleFile("sky.hdr");
  /// [ReadImage]
  Io::ImageOptions options;
  options.applyExposure = true; // radiances
  options.applyOrientation = true;
  const Io::Image sky = Io::ReadImage(path, options); // Radiance, PFM or OpenEXR
  const float* const zenith = &sky.pixels[sky.channels * sky.width * (sky.height - 1)];
  std::cout << sky.width << " x " << sky.height << ", blue at the top " << zenith[2] << '\n';
  /// [ReadImage]
  EXPECT_GT(zenith[2], zenith[0]);
}
