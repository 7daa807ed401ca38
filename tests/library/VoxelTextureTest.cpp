#include "library/VoxelTexture.h"

#include "io/MakeTexture.h"
#include "tests/support/ErrorOf.h"
#include "tests/support/Test.h"

namespace {

using VoxelTextureCalls = RecordingScopeFixture;
using VoxelTexturePixels = PixelScopeFixture;

TEST_F(VoxelTextureCalls, FormatsAndErrors) {
  const std::array<double, 6> values{};
  const auto upload = [&](VoxelTexture::Type p_type, int p_channels, std::array<int, 3> p_size) {
    recorder.Clear();
    const VoxelTexture texture({values.data(), p_type, p_channels, p_size}, gl);
    const auto lines = recorder.LinesOf({"TexImage3D"});
    return lines.empty() ? std::string(texture.Handle() ? "bound" : "none") : lines.front();
  };
  EXPECT_EQ(upload(VoxelTexture::UInt16, 1, {3, 2, 1}),
            "TexImage3D(GL_TEXTURE_3D, 0, GL_LUMINANCE16, 3, 2, 1, 0, GL_LUMINANCE, GL_UNSIGNED_SHORT, ptr)");
  EXPECT_EQ(upload(VoxelTexture::Float32, 3, {2, 1, 1}),
            "TexImage3D(GL_TEXTURE_3D, 0, GL_RGB32F, 2, 1, 1, 0, GL_RGB, GL_FLOAT, ptr)");
  EXPECT_EQ(
      upload(VoxelTexture::UInt8, 2, {1, 1, 1}),
      "TexImage3D(GL_TEXTURE_3D, 0, GL_LUMINANCE8_ALPHA8, 1, 1, 1, 0, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, ptr)");
  const ReportCapture reports;
  EXPECT_EQ(upload(VoxelTexture::UInt8, 1, {1, 513, 1}), "none");
  EXPECT_EQ(reports.Texts(),
            Lines{"\"largest <= GL_MAX_3D_TEXTURE_SIZE && \"1 x 513 x 1 voxels, the limit is 512\"\" - "
                  "VoxelTexture::VoxelTexture"});
  const auto error = [&](const VoxelTexture::Voxels& p_voxels) {
    return ErrorOf<std::invalid_argument>([&] { VoxelTexture(p_voxels, gl); });
  };
  EXPECT_EQ(error({}), "VoxelTexture: expected values, got none");
  EXPECT_EQ(error({values.data(), VoxelTexture::UInt8, 5, {1, 1, 1}}), "VoxelTexture: expected 1 to 4 channels, got 5");
  EXPECT_EQ(error({values.data(), VoxelTexture::UInt8, 1, {1, 0, 1}}),
            "VoxelTexture: expected sizes of 1 or more, got 1 x 0 x 1 voxels");
}

/// The floats that a texture of a volume of 3 × 1 × 1 voxels has, times its scale.
template <class T>
std::vector<double> RoundTrip(Utility::Scoped<Rgl>& p_gl, std::vector<T> p_values) {
  Io::Volume volume;
  volume.size = {3, 1, 1};
  volume.values = std::move(p_values);
  const VoxelTexture texture = Io::MakeTexture(volume, p_gl);
  EXPECT_TRUE(texture(p_gl, RGL_TEXTURE0));
  std::vector<float> texels(3);
  p_gl->GetTexImage(RGL_TEXTURE_3D, 0, RGL_RED, RGL_FLOAT, texels.data());
  std::vector<double> values(3);
  std::transform(texels.begin(), texels.end(), values.begin(),
                 [&](float p_texel) { return std::round(p_texel * texture.ValueScale() * 100) / 100; });
  return values;
}

TEST_F(VoxelTexturePixels, ValuesComeBack) {
  EXPECT_EQ(RoundTrip<std::uint8_t>(gl, {0, 7, 255}), (std::vector<double>{0, 7, 255}));
  EXPECT_EQ(RoundTrip<std::uint16_t>(gl, {1, 7, 65535}), (std::vector<double>{1, 7, 65535}));
  EXPECT_EQ(RoundTrip<std::int16_t>(gl, {-32768, 7, 3000}), (std::vector<double>{-32768, 7, 3000}));
  EXPECT_EQ(RoundTrip<double>(gl, {-1e6, 0.25, 3e9}), (std::vector<double>{-1e6, 0.25, 3e9}));
}

} // namespace
