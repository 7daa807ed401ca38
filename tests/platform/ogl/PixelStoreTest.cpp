#include "platform/ogl/PixelStore.h"
#include "tests/support/Test.h"

namespace {

using Ogl::GlEnum;
using PixelStoreCalls = RecordingScopeFixture;
using PixelStorePixels = PixelScopeFixture;

struct Setting {
  GlEnum name;
  float host, initial;
  bool packs, unpacks; ///< which of the two small scopes must open
};
const std::vector<Setting> Settings = [] {
  const std::pair<std::vector<GlEnum>, Setting> groups[] = {
      {{RGL_UNPACK_ROW_LENGTH, RGL_UNPACK_SKIP_ROWS, RGL_UNPACK_SKIP_PIXELS, RGL_UNPACK_SWAP_BYTES,
        RGL_UNPACK_LSB_FIRST},
       {0, 2, 0, false, true}},
      {{RGL_UNPACK_ALIGNMENT}, {0, 8, 4, false, true}},
      {{RGL_UNPACK_IMAGE_HEIGHT, RGL_UNPACK_SKIP_IMAGES, RGL_PACK_ROW_LENGTH, RGL_PACK_SWAP_BYTES},
       {0, 2, 0, false, false}},
      {{RGL_PACK_ALIGNMENT}, {0, 8, 4, false, false}},
      {{RGL_PACK_SKIP_ROWS, RGL_PACK_SKIP_PIXELS}, {0, 1, 0, true, false}},
      {{RGL_MAP_COLOR}, {0, 1, 0, true, true}},
      {{RGL_RED_SCALE, RGL_GREEN_SCALE, RGL_BLUE_SCALE, RGL_ALPHA_SCALE, RGL_DEPTH_SCALE}, {0, 0.25F, 1, true, true}},
      {{RGL_RED_BIAS, RGL_GREEN_BIAS, RGL_BLUE_BIAS, RGL_ALPHA_BIAS, RGL_DEPTH_BIAS}, {0, -0.25F, 0, true, true}}};
  std::vector<Setting> settings;
  for (const auto& [names, setting] : groups)
    for (const GlEnum name : names)
      settings.push_back({name, setting.host, setting.initial, setting.packs, setting.unpacks});
  return settings;
}();

void Set(Scope& p_gl, GlEnum p_name, float p_value) {
  if (p_name >= RGL_MAP_COLOR && p_name <= RGL_DEPTH_BIAS)
    p_gl->PixelTransferf(p_name, p_value);
  else
    p_gl->PixelStorei(p_name, static_cast<int>(p_value));
}

std::vector<float> Values(Scope& p_gl) {
  std::vector<float> values;
  for (const Setting& setting : Settings)
    p_gl->GetFloatv(setting.name, &values.emplace_back());
  return values;
}

} // namespace

TEST_F(PixelStoreCalls, SmallScopesOpenOnlyWhereASettingOfTheHostMatters) {
  const auto expect = [&](GlEnum p_name, bool p_packs, bool p_unpacks) {
    EXPECT_EQ(bool(Ogl::PixelPackScope(*gl)), p_packs) << std::hex << p_name;
    EXPECT_EQ(bool(Ogl::ImageUnpackScope(*gl)), p_unpacks) << std::hex << p_name;
  };
  expect(0, false, false);
  EXPECT_EQ(Changes(), Lines());
  for (const Setting& setting : Settings) {
    Set(gl, setting.name, setting.host);
    expect(setting.name, setting.packs, setting.unpacks);
    Set(gl, setting.name, setting.initial);
  }
  unsigned int buffer = 0;
  gl->GenBuffers(1, &buffer);
  for (const GlEnum target : {RGL_PIXEL_PACK_BUFFER, RGL_PIXEL_UNPACK_BUFFER}) {
    gl->BindBuffer(target, buffer);
    expect(target, target == RGL_PIXEL_PACK_BUFFER, target == RGL_PIXEL_UNPACK_BUFFER);
    gl->BindBuffer(target, 0);
  }
  gl->DeleteBuffers(1, &buffer);
  recorder.SetVersion("2.0 without pixel buffers");
  recorder.Clear();
  Ogl::UnpackScope(*gl);
  EXPECT_EQ(recorder.LinesOf({"BindBuffer"}), Lines());
}

TEST_F(PixelStorePixels, TransfersAreTightWhateverTheHostHasSet) {
  std::vector<unsigned char> texels(5 * 3 * 2 * 4), read(texels.size());
  std::iota(texels.begin(), texels.end(), static_cast<unsigned char>(100));
  unsigned int buffer = 0;
  gl->GenBuffers(1, &buffer);
  for (const GlEnum target : {RGL_PIXEL_PACK_BUFFER, RGL_PIXEL_UNPACK_BUFFER})
    gl->BindBuffer(target, buffer);
  for (const Setting& setting : Settings)
    Set(gl, setting.name, setting.host);
  const std::vector<float> host = Values(gl);
  const auto texture = gl->GenTexture(), volume = gl->GenTexture();
  gl->Bind(texture, Rgl::Sampler2D);
  gl->Bind(volume, Rgl::Sampler3D);
  for (const bool flat : {true, false}) {
    const GlEnum target = flat ? RGL_TEXTURE_2D : RGL_TEXTURE_3D;
    const GlEnum type = flat ? RGL_UNSIGNED_BYTE : RGL_UNSIGNED_INT_8_8_8_8_REV; // whose bytes can be swapped
    auto unpacking = flat ? Ogl::ImageUnpackScope(*gl) : Ogl::UnpackScope(*gl);
    if (flat)
      gl->TexImage2D(target, 0, RGL_RGBA8, 5, 6, 0, RGL_RGBA, type, texels.data());
    else
      gl->TexImage3D(target, 0, RGL_RGBA8, 5, 3, 2, 0, RGL_RGBA, type, texels.data());
    unpacking.reset();
    auto packing = flat ? Ogl::PixelPackScope(*gl) : Ogl::PackScope(*gl);
    gl->GetTexImage(target, 0, RGL_RGBA, type, read.data());
    packing.reset();
    EXPECT_EQ(read, texels) << (flat ? "flat" : "deep");
    EXPECT_EQ(Values(gl), host);
  }
  for (const Setting& setting : Settings)
    Set(gl, setting.name, setting.initial);
  gl->DeleteBuffers(1, &buffer);
}
