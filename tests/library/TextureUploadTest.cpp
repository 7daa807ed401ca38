#include "library/ColorMap.h"
#include "library/Texture.h"
#include "library/VolumeTexture.h"
#include "tests/support/Test.h"

// What all classes that upload images have in common.

namespace {

QImage Numbered(int p_width, int p_height) {
  QImage image(p_width, p_height, QImage::Format_ARGB32);
  for (int i = 0; i < p_width * p_height; ++i)
    image.setPixel(i % p_width, i / p_width, qRgb(200 - i, 3 * i, 7));
  return image;
}

struct Uploader {
  std::string name, upload;
  std::function<boost::shared_ptr<Ogl::Texture>()> bind; ///< binds it on unit 0; the handle that it has then
};

/// One object of each class; none is uploaded yet.
std::vector<Uploader> Uploaders(Scope& p_gl) {
  const auto uploader = [&](const char* p_name, const char* p_upload, auto p_object) {
    return Uploader{p_name, p_upload, [&p_gl, p_object] {
                      p_object(p_gl, RGL_TEXTURE0);
                      return p_object.Handle();
                    }};
  };
  const auto volume = boost::make_shared<VolumeImage>(VolumeImage::Byte1, 3, 2, 2);
  return {uploader("Texture", "TexImage2D", Texture(Numbered(3, 2), p_gl)),
          uploader("ColorMap", "TexImage2D", ColorMap({Qt::red, Qt::blue}, ColorMap::Discrete)),
          uploader("VolumeTexture", "TexImage3D", VolumeTexture(volume, p_gl))};
}

using TextureUploadCalls = RecordingScopeFixture;
using TextureUploadPixels = PixelScopeFixture;

} // namespace

TEST_F(TextureUploadCalls, AFailureIsReportedAndTheNextBindTriesAgain) {
  for (const Uploader& object : Uploaders(gl)) {
    SCOPED_TRACE(object.name);
    const std::string signature = "Vek::Chart::Library::" + object.name + "::";
    const auto expect = [&](const Lines& p_expected) {
      const ReportCapture reports;
      recorder.Clear();
      EXPECT_FALSE(object.bind());
      Lines begins; // the last report names the class
      for (const std::string& text : reports.Texts())
        begins.push_back(text.substr(0, text.find(" - ")));
      ASSERT_EQ(begins, p_expected);
      EXPECT_NE(reports.Texts().back().find(signature), std::string::npos) << reports.Texts().back();
    };
    recorder.Fail("GenTextures");
    expect({"\"object->Name() != 0\"", "WARNING: GL_OUT_OF_MEMORY"});
    EXPECT_EQ(Changes(), Calls("ActiveTexture(GL_TEXTURE0); GenTextures(1, [0])")) << "the host's texture 0 is kept";
    for (const std::string& call : {std::string("BindTexture"), object.upload}) {
      recorder.Fail(call);
      expect({"WARNING: GL_OUT_OF_MEMORY"});
      EXPECT_EQ(recorder.LinesOf({"DeleteTextures"}).size(), 1u);
      recorder.TakeComplaints(); // nothing is bound
    }
    {
      struct Thrower : vekdebug::sink {
        void write(const vekdebug::report&) override { throw std::runtime_error("sink"); }
      };
      const auto previous = vekdebug::logger::instance().set_sink(std::make_shared<Thrower>());
      recorder.Fail(object.upload);
      EXPECT_THROW(object.bind(), std::runtime_error);
      vekdebug::logger::instance().set_sink(previous);
    }
    const ReportCapture reports;
    recorder.QueueError(RGL_INVALID_ENUM); // the host's, which is no failure of the upload
    recorder.Clear();
    EXPECT_TRUE(object.bind());
    EXPECT_EQ(recorder.LinesOf({object.upload}).size(), 1u);
    ASSERT_EQ(reports.Texts().size(), 1u);
    EXPECT_EQ(reports.Texts()[0].rfind("WARNING: GL_INVALID_ENUM - before void __cdecl " + signature, 0), 0u);
    recorder.Clear();
    EXPECT_TRUE(object.bind());
    EXPECT_EQ(recorder.LinesOf({object.upload, "GetError"}), Lines());
  }
}

TEST_F(TextureUploadCalls, AnImageBeyondTheLimitIsReportedOnceAndNotUploaded) {
  recorder.SetInteger(RGL_MAX_TEXTURE_SIZE, {64});
  const auto expect = [&](const ReportCapture& p_reports, const std::string& p_size, const std::string& p_signature) {
    EXPECT_EQ(p_reports.Texts(), Lines{"\"largest <= GL_MAX_TEXTURE_SIZE && \"" + p_size +
                                       " texels, the limit is 64\"\" - " + p_signature});
    EXPECT_EQ(recorder.LinesOf({"TexImage2D"}), Lines());
  };
  const std::string scope = "class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &";
  {
    const ReportCapture reports;
    const Texture texture(Numbered(2, 65), gl);
    for (int i = 0; i < 2; ++i)
      texture(gl, RGL_TEXTURE0);
    expect(reports, "2 x 65", "__cdecl Vek::Chart::Library::Texture::Texture(const class QImage &," + scope + ")");
  }
  const ReportCapture reports;
  const ColorMap map({Qt::red, Qt::blue}, ColorMap::Discrete);
  for (int i = 0; i < 2; ++i)
    map(gl, RGL_TEXTURE0);
  expect(reports, "4096 x 1",
         "void __cdecl Vek::Chart::Library::ColorMap::operator ()(" + scope + ",unsigned int) const");
  Texture(Numbered(64, 64), gl)(gl, RGL_TEXTURE0);
  recorder.Fail("GetIntegerv"); // the limit is not known
  Texture(Numbered(2, 3), gl)(gl, RGL_TEXTURE0);
  EXPECT_EQ(recorder.LinesOf({"TexImage2D"}).size(), 2u);
}

TEST_F(TextureUploadPixels, TheHostsSettingsNeitherReachTheTexelsNorChange) {
  const std::vector<unsigned char> forbidden(1 << 16, 99); // what a bound pixel buffer holds
  unsigned int buffer = 0;
  gl->GenBuffers(1, &buffer);
  gl->BindBuffer(RGL_PIXEL_UNPACK_BUFFER, buffer);
  gl->BufferData(RGL_PIXEL_UNPACK_BUFFER, static_cast<Ogl::GlSize>(forbidden.size()), forbidden.data(),
                 RGL_STATIC_DRAW);
  gl->BindBuffer(RGL_PIXEL_UNPACK_BUFFER, 0);
  const std::pair<Ogl::GlEnum, int> settings[] = {{RGL_UNPACK_SKIP_ROWS, 1000},
                                                  {RGL_UNPACK_SKIP_PIXELS, 1},
                                                  {RGL_UNPACK_ROW_LENGTH, 10000000},
                                                  {RGL_PIXEL_UNPACK_BUFFER_BINDING, static_cast<int>(buffer)},
                                                  {RGL_RED_SCALE, 0},
                                                  {RGL_MAP_COLOR, 1}};
  const auto set = [&](Ogl::GlEnum p_name, int p_value) {
    if (p_name == RGL_PIXEL_UNPACK_BUFFER_BINDING)
      gl->BindBuffer(RGL_PIXEL_UNPACK_BUFFER, static_cast<unsigned int>(p_value));
    else if (p_name == RGL_RED_SCALE || p_name == RGL_MAP_COLOR)
      gl->PixelTransferf(p_name, static_cast<float>(p_value));
    else
      gl->PixelStorei(p_name, p_value);
  };
  const auto texels = [&](const Uploader& p_object) {
    p_object.bind();
    const Ogl::GlEnum target = p_object.upload == "TexImage3D" ? RGL_TEXTURE_3D : RGL_TEXTURE_2D;
    std::vector<unsigned char> bytes(4096 * 4);
    gl->GetTexImage(target, 0, RGL_RGBA, RGL_UNSIGNED_BYTE, bytes.data());
    return bytes;
  };
  for (const auto& [name, value] : settings)
    for (std::size_t i = 0; i < 3; ++i) {
      const std::vector<unsigned char> expected = texels(Uploaders(gl)[i]);
      const Uploader object = Uploaders(gl)[i];
      set(name, value);
      object.bind();
      int kept = -1, alignment = 0;
      gl->GetIntegerv(name, &kept);
      gl->GetIntegerv(RGL_UNPACK_ALIGNMENT, &alignment);
      set(name, name == RGL_RED_SCALE ? 1 : 0);
      EXPECT_EQ(texels(object), expected) << object.name << ", " << std::hex << name;
      EXPECT_EQ(kept, value);
      EXPECT_EQ(alignment, 1);
    }
  gl->DeleteBuffers(1, &buffer);
}

TEST_F(TextureUploadPixels, ATextureShowsRightAfterAVolume) {
  const std::vector<Uploader> objects = Uploaders(gl);
  for (const std::size_t flat : {0u, 1u}) {
    objects[2].bind();
    objects[flat].bind();
    DrawTexturedSquare(gl);
    EXPECT_TRUE(SameColor(PixelAt(Image(), 0, FrameSize.height - 1), flat == 0 ? QColor(200, 0, 7) : Qt::red, 12))
        << objects[flat].name;
    objects[2].bind();
    DrawTexturedSquare(gl);
    EXPECT_TRUE(SameColor(PixelAt(Image(), 0, 0), Qt::black)) << "and the volume after it";
  }
}
