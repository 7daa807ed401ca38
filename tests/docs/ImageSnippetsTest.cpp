// The examples of the reference for images, volumes and files: what stands between two marks is shown there.

#include "library/HdrImage.h"
#include "library/ObjModel.h"
#include "library/VolumeImage.h"
#include "library/VolumeTexture.h"
#include "tests/support/PixelFixture.h"
#include "tests/support/ReportCapture.h"
#include "tests/support/TempFolder.h"

#include <sstream>

using namespace Vek::Chart;
using namespace Vek::Chart::Library;

namespace {

using Texts = std::vector<std::string>;

TEST(ImageSnippets, HdrImage) {
  const Vek::Test::TempFolder folder;
  const std::string target = folder.Write("sky.pfm", "");
  const vekfile::filepath data(VEK_SOURCE_DIR "/data");
  testing::internal::CaptureStdout(); // writing says so
  //! [HdrImage]
  const HdrImage sky(data + "sky.hdr");
  const HdrImage::Rgb32F& horizon = sky.Pixel(0, sky.Height() / 2); // rows from the bottom
  const float candela = sky.Luminance(horizon);                     // per square metre
  sky.SaveAsPFM(target);
  //! [HdrImage]
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(sky.Width(), 512);
  EXPECT_NEAR(candela, 179 * (0.265 * horizon.red + 0.67 * horizon.green + 0.065 * horizon.blue), candela * 1e-5);
}

TEST(ImageSnippets, VolumeImage) {
  //! [VolumeImage]
  VolumeImage image(VolumeImage::Float4, 64, 32, 16);               // the first extent varies fastest
  const std::uint64_t index = 3 + 64 * (2 + 32 * std::uint64_t(1)); // the voxel (3, 2, 1)
  const VolumeImage::TypeArray<float> voxel(image.Data().At(index), 4);
  voxel[3] = 0.5F; // its fourth component
  //! [VolumeImage]
  float stored = 0;
  std::memcpy(&stored, &image.Bytes()[16 * index + 12], sizeof stored);
  EXPECT_EQ(stored, 0.5F);
}

TEST(ImageSnippets, TextArray) {
  //! [TextArray]
  std::istringstream file("TextArray 3 1 2 1   0 1 2   3 4 5"); // 3 × 2 × 1 voxels of one channel
  const boost::shared_ptr<VolumeImage> volume = VolumeImage::LoadFromStream(file, VolumeImage::TextArray);
  const std::vector<unsigned char>& bytes = volume->Bytes(); // 0, 51, 102, 153, 204, 255: the largest becomes 255
  //! [TextArray]
  EXPECT_EQ(bytes, (std::vector<unsigned char>{0, 51, 102, 153, 204, 255}));
}

class ImageSnippetPixels : public Vek::Test::PixelFixture {};

TEST_F(ImageSnippetPixels, VolumeTexture) {
  Utility::Scoped<Rgl> gl(Handle());
  const vekfile::filepath data(VEK_SOURCE_DIR "/data");
  //! [VolumeTexture]
  const boost::shared_ptr<VolumeImage> ocean =
      VolumeImage::LoadFromFile(data + "ocean_salinity.txt", VolumeImage::TextArray);
  VolumeTexture volume(ocean, gl);
  volume.magFilter = VolumeTexture::Nearest; // the settings count at each bind, sRgb at the first only
  volume(gl, RGL_TEXTURE0);                  // uploaded; s runs along the extent that varies fastest
  //! [VolumeTexture]
  EXPECT_EQ(volume.SizeS(), 180);
  EXPECT_EQ(volume.SizeR(), 20);
}

// What the page about files says of files with faults: the reports, and what comes of the file.
TEST(ImageSnippets, FilesWithFaults) {
  Vek::Test::ReportCapture reports;
  const auto first = [&reports] {
    const Texts texts = reports.Texts();
    reports.Clear();
    return texts.empty() ? std::string() : texts.front().substr(0, texts.front().find(" - "));
  };
  const auto obj = [](const char* p_text) {
    std::istringstream file(p_text);
    return LoadPolygonObj(file);
  };
  EXPECT_EQ(obj("v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3 4\n")->DefaultGroup()->indices.size(), 3U);
  EXPECT_EQ(first(), "\"parts.size() == 4\"") << "a quad: three corners are taken";
  EXPECT_EQ(obj("v 0 0 0\nf -1 -1 -1\n")->DefaultGroup()->indices.front(), 0xFFFFFFFEU);
  EXPECT_EQ(first(), "\"0 <= vertexIndex < vertices->size()\"") << "relative indices are not resolved";
  EXPECT_TRUE(obj("v 0 0 0\nvt 0 0\nusemtl red\n")->DefaultGroup()->indices.empty());
  EXPECT_EQ(first(), "") << "what is not read is passed over";
  EXPECT_ANY_THROW(obj("v one 2 3\n"));

  std::istringstream rgbe("#?RGBE\n\n-Y 1 +X 1\n\x80\x80\x80\x81");
  EXPECT_EQ(HdrImage(rgbe).Pixel(0, 0).red, 1);
  EXPECT_EQ(first(), "\"header.size() == 10\"") << "and read all the same";
  std::istringstream huge("#?RADIANCE\n\n-Y 60000 +X 60000\n");
  EXPECT_THROW(HdrImage{huge}, std::length_error);
  reports.Clear();

  const auto volume = [](const char* p_text) {
    std::istringstream file(p_text);
    return VolumeImage::LoadFromStream(file, VolumeImage::TextArray);
  };
  EXPECT_TRUE(volume("Volume 1 1 1 1 0"));
  EXPECT_EQ(first(), "\"header == \"TextArray\"\"") << "and read all the same";
  EXPECT_FALSE(volume("TextArray 1 1 0 1"));
  reports.Clear();
  EXPECT_EQ(volume("TextArray 2 1 1 1 5")->Bytes(), (std::vector<unsigned char>{255, 0}));
  EXPECT_EQ(first(), "\"file\"") << "a missing number counts as 0";
  EXPECT_EQ(volume("TextArray 1 2 1 1 1 4")->Bytes(), (std::vector<unsigned char>{63}));
  EXPECT_EQ(first(), "\"channels == 1\"") << "the first channel, by the largest of both";
}

} // namespace
