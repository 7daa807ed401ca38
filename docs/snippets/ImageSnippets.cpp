// The examples of the reference for images, volumes and files: what stands between two marks is shown there.

#include "library/HdrImage.h"
#include "library/VolumeImage.h"
#include "library/VolumeTexture.h"
#include "library/VoxelTexture.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Library;

namespace {

TEST(ImageSnippets, HdrImage) {
  const Testing::TempFolder folder;
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

using ImageSnippetPixels = Testing::PixelScopeFixture;

TEST_F(ImageSnippetPixels, VolumeTexture) {
  const vekfile::filepath data(VEK_SOURCE_DIR "/data");
  //! [VolumeTexture]
  const boost::shared_ptr<VolumeImage> ocean =
      VolumeImage::LoadFromFile(data + "ocean_salinity.txt", VolumeImage::TextArray);
  VolumeTexture volume(ocean, gl);
  volume.magFilter = VolumeTexture::Nearest; // the settings count at each bind, sRgb at the first only
  volume(gl, RGL_TEXTURE0);                  // uploaded; s runs along the extent that varies fastest
  //! [VolumeTexture]
  EXPECT_EQ(std::pair(volume.SizeS(), volume.SizeR()), std::pair(180, 20));
}

TEST_F(ImageSnippetPixels, VoxelTexture) {
  //! [VoxelTexture]
  const std::vector<std::uint16_t> values{0, 1000, 2000, 65535};
  VoxelTexture::Voxels voxels;
  voxels.values = values.data(); // uploaded by the constructor
  voxels.type = VoxelTexture::UInt16;
  voxels.size = {2, 2, 1};
  const VoxelTexture texture(voxels, gl);
  texture(gl, RGL_TEXTURE0); // a shader reads value = texture3D(...).r * texture.ValueScale()
  //! [VoxelTexture]
  EXPECT_EQ(texture.ValueScale(), 65535);
}

} // namespace
