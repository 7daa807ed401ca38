#include "io/Formats.h"
#include "io/FileError.h"
#include "io/ReadHeights.h"
#include "io/ReadImage.h"
#include "io/ReadMesh.h"
#include "io/ReadTable.h"
#include "io/ReadVectorField.h"
#include "io/ReadVolume.h"
#include "tests/support/ErrorOf.h"
#include "tests/support/FileText.h"
#include "tests/support/Output.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Io;

namespace {

using Folder = TempFolder;

/// A NetCDF-4 file, made by nccopy of the package netcdf-bin.
std::string NetCdf4(const Folder& p_folder) {
  const std::string path = p_folder.File("a.nc");
  EXPECT_EQ(std::system(("nccopy -k netCDF-4 -d 5 -s " VEK_SOURCE_DIR "/data/navy_winds_1987.nc " + path).c_str()), 0);
  return path;
}

/// An NRRD file of four voxels, made by teem-unu of the package teem-apps.
std::string Nrrd(const Folder& p_folder, const std::string& p_encoding) {
  const std::string values = p_folder.Write("a.raw", "abcd");
  const std::string path = p_folder.File("a.nrrd");
  Output("teem-unu make -t uchar -s 2 2 1 -e raw -i " + values + " 2> /dev/null | teem-unu save -f nrrd -e " +
         p_encoding + " -o " + path);
  return path;
}

/// A NIfTI file, made by nifti_tool of the package nifti-bin.
std::string Nifti(const Folder& p_folder, const std::string& p_name) {
  const std::string path = p_folder.File(p_name);
  Output("nifti_tool -make_im -prefix " + path);
  return path;
}

/// For each format, by "Kind Name", a call that reads a file of it and returns how many vertices, voxels, nodes, rows
/// or pixels that has. Real files lie in data/ or tests/io/files/.
const std::map<std::string, std::function<std::size_t(const Folder&)>> ReadOne{
    {"Meshes OBJ",
     [](const Folder& p_folder) {
       return ReadMesh(p_folder.Write("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n")).positions.size();
     }},
    {"Meshes PLY",
     [](const Folder& p_folder) {
       return ReadMesh(p_folder.Write("a.ply", "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\n"
                                               "property float y\nproperty float z\nend_header\n1 2 3\n"))
           .positions.size();
     }},
    {"Meshes STL",
     [](const Folder& p_folder) {
       return ReadMesh(p_folder.Write("a.stl", "solid a\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\n"
                                               "vertex 0 1 0\nendloop\nendfacet\nendsolid a\n"))
           .positions.size();
     }},
    {"Meshes glTF",
     [](const Folder& p_folder) {
       const std::string path = p_folder.File("a.glb"); // made by assimp-utils
       EXPECT_EQ(
           std::system(("assimp export " VEK_SOURCE_DIR "/symbols/Cube.obj " + path + " -fglb2 >/dev/null").c_str()),
           0);
       return ReadMesh(path).positions.size();
     }},
    {"Volumes NetCDF", [](const Folder&) { return ReadVolume(VEK_SOURCE_DIR "/data/navy_winds_1987.nc").Count(); }},
    {"Volumes NetCDF-4", [](const Folder& p_folder) { return ReadVolume(NetCdf4(p_folder)).Count(); }},
    {"Volumes TextArray", [](const Folder&) { return ReadVolume(VEK_SOURCE_DIR "/data/ocean_salinity.txt").Count(); }},
    {"Volumes NRRD", [](const Folder& p_folder) { return ReadVolume(Nrrd(p_folder, "raw")).Count(); }},
    {"Volumes NRRD, compressed", [](const Folder& p_folder) { return ReadVolume(Nrrd(p_folder, "gzip")).Count(); }},
    {"Volumes NIfTI", [](const Folder& p_folder) { return ReadVolume(Nifti(p_folder, "a.nii")).Count(); }},
    {"Volumes NIfTI, compressed",
     [](const Folder& p_folder) { return ReadVolume(Nifti(p_folder, "a.nii.gz")).Count(); }},
    {"Volumes raw",
     [](const Folder& p_folder) {
       VolumeOptions options;
       options.raw = RawLayout{{2, 2, 1}, Volume::UInt8};
       return ReadVolume(p_folder.Write("a.raw", "abcd"), options).Count();
     }},
    {"Vector fields NetCDF",
     [](const Folder&) { return ReadVectorField(VEK_SOURCE_DIR "/data/navy_winds_1987.nc").vectors.size(); }},
    {"Vector fields NetCDF-4",
     [](const Folder& p_folder) { return ReadVectorField(NetCdf4(p_folder)).vectors.size(); }},
    {"Vector fields CSV",
     [](const Folder&) { return ReadVectorField(VEK_SOURCE_DIR "/data/noaa_navy_winds_1987-01.csv").vectors.size(); }},
    {"Height grids NetCDF",
     [](const Folder&) { return ReadHeights(VEK_SOURCE_DIR "/data/navy_winds_1987.nc").heights.size(); }},
    {"Height grids NetCDF-4", [](const Folder& p_folder) { return ReadHeights(NetCdf4(p_folder)).heights.size(); }},
    {"Height grids height grid",
     [](const Folder&) { return ReadHeights(VEK_SOURCE_DIR "/data/etopo60.txt").heights.size(); }},
    {"Height grids ESRI ASCII grid",
     [](const Folder& p_folder) {
       return ReadHeights(p_folder.Write("a.asc", "ncols 1\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize 1\n5\n"))
           .heights.size();
     }},
    {"Height grids CSV",
     [](const Folder& p_folder) {
       return ReadHeights(p_folder.Write("a.csv", "x,y,h\n0,0,1\n1,0,2\n")).heights.size();
     }},
    {"Images Radiance", [](const Folder&) { return ReadImage(VEK_SOURCE_DIR "/data/sky.hdr").pixels.size(); }},
    {"Images PFM",
     [](const Folder& p_folder) { return ReadImage(p_folder.Write("a.pfm", "Pf\n1 1\n-1\n1234")).pixels.size(); }},
    {"Images OpenEXR",
     [](const Folder& p_folder) {
       return ReadImage(p_folder.Write("a.exr", ExrFile({0, 0, 2, 1}, "BGR"))).pixels.size();
     }},
    {"Tables CSV", [](const Folder&) { return ReadTable(VEK_SOURCE_DIR "/data/earthquakes.csv").Rows(); }},
};

} // namespace

TEST(Formats, ReadsAFileOfEveryRow) {
  std::set<std::string> rows;
  for (const Format& format : Formats()) {
    const std::string row = std::string(KindName(format.kind)) + ' ' + std::string(format.name);
    SCOPED_TRACE(row);
    EXPECT_TRUE(rows.insert(row).second) << "twice";
    EXPECT_TRUE(format.isAvailable || !format.package.empty());
    ASSERT_EQ(ReadOne.count(row), 1u);
    const Folder folder;
    std::size_t size = 0;
    const std::string error = ErrorOf<FileError>([&] { size = ReadOne.at(row)(folder); });
    if (format.isAvailable)
      EXPECT_TRUE(error.empty() && size > 0) << error;
    else
      EXPECT_NE(error.find(format.package), std::string::npos) << error;
  }
  EXPECT_EQ(rows.size(), ReadOne.size());
}

TEST(Formats, MakesPatternsForFileDialogs) {
  EXPECT_EQ(FilePatterns(Format::Tables), "*.csv *.tsv *.txt *.dat");
  EXPECT_EQ(FilePatterns(Format::Meshes).substr(0, 17), "*.obj *.ply *.stl");
}
