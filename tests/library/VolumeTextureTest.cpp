#include "library/VolumeTexture.h"

#include "library/TexturedCube.h"
#include "tests/support/Test.h"

namespace {

const std::string Constructor =
    "__cdecl Vek::Chart::Library::VolumeTexture::VolumeTexture(class boost::shared_ptr<class "
    "Vek::Chart::Library::VolumeImage const >,class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &)";

/// Bytes counted from 1, or floats that no byte could hold.
boost::shared_ptr<VolumeImage> Counted(VolumeImage::VoxelFormat p_format, unsigned p_s, unsigned p_t, unsigned p_r) {
  const auto image = boost::make_shared<VolumeImage>(p_format, p_s, p_t, p_r);
  auto& bytes = image->Bytes();
  std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(1));
  for (std::size_t i = 0; image->Precision().Value() == VolumeImage::Precision32F && i < bytes.size() / 4; ++i)
    reinterpret_cast<float*>(bytes.data())[i] = -1e6F + 1000.5F * static_cast<float>(i);
  return image;
}

using VolumeTextureCalls = RecordingScopeFixture;
using VolumeTexturePixels = PixelScopeFixture;

TEST_F(VolumeTextureCalls, UploadsOnceAndAppliesItsSettingsAtEachBind) {
  VolumeTexture texture(Counted(VolumeImage::Byte1, 5, 3, 2), gl);
  EXPECT_TRUE(texture.SizeS() == 5 && texture.SizeT() == 3 && texture.SizeR() == 2);
  texture(gl, RGL_TEXTURE0 + 2);
  EXPECT_EQ(recorder.LinesWithout({"PixelStorei", "GetFloatv", "GetIntegerv", "GetString", "GetError"}),
            Calls("ActiveTexture(GL_TEXTURE2); GenTextures(1, [1001]); BindTexture(GL_TEXTURE_3D, 1001); "
                  "PushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT); BindBuffer(GL_PIXEL_UNPACK_BUFFER, 0); "
                  "TexImage3D(GL_TEXTURE_3D, 0, GL_LUMINANCE8, 5, 3, 2, 0, GL_LUMINANCE, GL_UNSIGNED_BYTE, ptr); "
                  "PopClientAttrib(); " +
                  TexParameters("3D", {"BASE_LEVEL, 0", "MAX_LEVEL, 0", "WRAP_S, GL_CLAMP_TO_EDGE",
                                       "WRAP_T, GL_CLAMP_TO_EDGE", "WRAP_R, GL_CLAMP_TO_EDGE", "MIN_FILTER, GL_LINEAR",
                                       "MAG_FILTER, GL_LINEAR"}) +
                  "TexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE); Enable(GL_TEXTURE_3D)"));
  texture.wrapS = texture.wrapR = VolumeTexture::Repeat;
  texture.wrapT = 2; // not listed
  texture.minFilter = VolumeTexture::Nearest;
  texture.magFilter = 9;
  texture.environment = VolumeTexture::Modulate;
  recorder.Clear();
  VolumeTexture{texture}(gl, RGL_TEXTURE0);
  EXPECT_EQ(recorder.Lines(),
            Calls("ActiveTexture(GL_TEXTURE0); BindTexture(GL_TEXTURE_3D, 1001); " +
                  TexParameters("3D", {"BASE_LEVEL, 0", "MAX_LEVEL, 0", "WRAP_S, GL_REPEAT", "WRAP_R, GL_REPEAT",
                                       "MIN_FILTER, GL_NEAREST"}) +
                  "TexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE); Enable(GL_TEXTURE_3D)"));
}

TEST_F(VolumeTextureCalls, InternalFormats) {
  const std::tuple<VolumeImage::VoxelFormat, bool, std::string> cases[] = {
      {VolumeImage::Byte1, true, "GL_LUMINANCE8, 2, 1, 1, 0, GL_LUMINANCE, GL_UNSIGNED_BYTE"},
      {VolumeImage::Float1, true, "GL_LUMINANCE32F_ARB, 2, 1, 1, 0, GL_LUMINANCE, GL_FLOAT"},
      {VolumeImage::Byte4, false, "GL_RGBA8, 2, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE"},
      {VolumeImage::Byte4, true, "GL_SRGB8_ALPHA8, 2, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE"},
      {VolumeImage::Float4, true, "GL_RGBA32F, 2, 1, 1, 0, GL_RGBA, GL_FLOAT"},
  };
  for (const auto& [format, srgb, expected] : cases) {
    recorder.Clear();
    VolumeTexture texture(Counted(format, 2, 1, 1), gl);
    texture.sRgb = srgb;
    texture(gl, RGL_TEXTURE0);
    EXPECT_EQ(recorder.LinesOf({"TexImage3D"}), Lines{"TexImage3D(GL_TEXTURE_3D, 0, " + expected + ", ptr)"});
  }
}

TEST_F(VolumeTextureCalls, WhatCannotBeUploadedIsReported) {
  const auto volume = [](unsigned p_t, unsigned p_r) {
    return boost::make_shared<VolumeImage>(VolumeImage::Byte1, 2, p_t, p_r);
  };
  const auto cut = volume(3, 2);
  cut->Bytes().resize(11);
  const ReportCapture withoutFormat;
  const std::tuple<boost::shared_ptr<const VolumeImage>, std::string, std::string> cases[] = {
      {nullptr, "void*(obj)", Constructor},
      {volume(3, 0), "sizeS > 0 && sizeT > 0 && sizeR > 0 && \"Invalid Volume Size\"", Constructor},
      {boost::make_shared<VolumeImage>(VolumeImage::NoFormat, 5, 3, 2), "format", Constructor},
      {volume(513, 1), "largest <= GL_MAX_3D_TEXTURE_SIZE && \"2 x 513 x 1 voxels, the limit is 512\"", Constructor},
      {cut, "bytes <= p_image->Bytes().size()",
       "void __cdecl Vek::Chart::Library::VolumeTexture::Upload(class "
       "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &) const"}};
  for (const auto& [image, condition, signature] : cases) {
    const ReportCapture reports;
    const VolumeTexture texture(image, gl);
    texture(gl, RGL_TEXTURE0);
    texture(gl, RGL_TEXTURE0);
    EXPECT_EQ(reports.Texts(), Lines{"\"" + condition + "\" - " + signature});
  }
  EXPECT_EQ(recorder.LinesOf({"TexImage3D"}), Lines());
}

TEST_F(VolumeTexturePixels, VoxelsComeBackAsTheyWere) {
  const std::tuple<VolumeImage::VoxelFormat, Ogl::GlEnum, Ogl::GlEnum> formats[] = {
      {VolumeImage::Byte1, RGL_LUMINANCE, RGL_UNSIGNED_BYTE},
      {VolumeImage::Float1, RGL_RED, RGL_FLOAT},
      {VolumeImage::Byte4, RGL_RGBA, RGL_UNSIGNED_BYTE},
      {VolumeImage::Float4, RGL_RGBA, RGL_FLOAT}};
  gl->PixelStorei(RGL_PACK_ALIGNMENT, 1);
  for (const auto& [format, channels, type] : formats) {
    const auto image = Counted(format, 5, 3, 2);
    const VolumeTexture texture(image, gl);
    texture(gl, RGL_TEXTURE0);
    std::vector<unsigned char> bytes(image->Bytes().size());
    gl->GetTexImage(RGL_TEXTURE_3D, 0, channels, type, bytes.data());
    EXPECT_EQ(bytes, image->Bytes()) << format;
  }
  gl->PixelStorei(RGL_PACK_ALIGNMENT, 4);
}

TEST_F(VolumeTexturePixels, CubesShowTheirVoxelsAlongTheAxes) {
  // 3 x 2 x 2 voxels: grey 40 steps along x, 120 along y, 20 along z.
  const auto image = boost::make_shared<VolumeImage>(VolumeImage::Byte1, 3, 2, 2);
  const auto grey = [](int p_x, int p_y, int p_z) { return 10 + 40 * p_x + 120 * p_y + 20 * p_z; };
  for (int i = 0; i < 12; ++i)
    image->Bytes()[static_cast<std::size_t>(i)] = static_cast<unsigned char>(grey(i % 3, i / 3 % 2, i / 6));
  VolumeTexture texture(image, gl);
  texture.minFilter = texture.magFilter = VolumeTexture::Nearest;

  // The face z = 0 is near, then z = 1.
  gl->Enable(RGL_DEPTH_TEST);
  texture(gl, RGL_TEXTURE0);
  Library::TexturedCube cube(0);
  for (const int z : {0, 1}) {
    gl->Clear(RGL_DEPTH_BUFFER_BIT);
    gl->LoadIdentity();
    gl->Translate({-1, -1, z - 0.5});
    gl->Scale({2, 2, 1.0 - 2 * z});
    cube(gl);
    for (int y = 0; y < 2; ++y)
      for (int x = 0; x < 3; ++x) {
        const QColor pixel = At((2 * x + 1) * FrameSize.width / 6, (2 * y + 1) * FrameSize.height / 4);
        EXPECT_EQ(pixel, QColor(grey(x, y, z), grey(x, y, z), grey(x, y, z))) << x << ' ' << y << ' ' << z;
      }
  }
}

} // namespace
