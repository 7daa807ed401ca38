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
    const std::string signature = "Vek::Chart::Library::" + object.name + "::", memory = "WARNING: GL_OUT_OF_MEMORY";
    const std::pair<std::string, Lines> failures[] = {
        {"GenTextures", {"\"object->Name() != 0\"", memory}}, {"BindTexture", {memory}}, {object.upload, {memory}}};
    for (const auto& [call, expected] : failures) {
      SCOPED_TRACE(object.name + ", " + call);
      const ReportCapture reports;
      recorder.Fail(call);
      EXPECT_FALSE(object.bind());
      Lines conditions; // the last report names the class
      for (const std::string& text : reports.Texts())
        conditions.push_back(text.substr(0, text.find(" - ")));
      ASSERT_EQ(conditions, expected);
      EXPECT_NE(reports.Texts().back().find(signature), std::string::npos) << reports.Texts().back();
      if (call == "BindTexture")
        recorder.TakeComplaints(); // nothing is bound
    }
    const ReportCapture reports;
    recorder.QueueError(RGL_INVALID_ENUM); // the host's, which is no failure of the upload
    EXPECT_TRUE(object.bind());
    ASSERT_EQ(reports.Texts().size(), 1u);
    EXPECT_EQ(reports.Texts()[0].rfind("WARNING: GL_INVALID_ENUM - before void __cdecl " + signature, 0), 0u);
    recorder.Clear();
    EXPECT_TRUE(object.bind());
    EXPECT_EQ(recorder.LinesOf({object.upload, "GetError"}), Lines());
  }
}

TEST_F(TextureUploadCalls, AnImageBeyondTheLimitIsReportedOnceAndNotUploaded) {
  recorder.SetInteger(RGL_MAX_TEXTURE_SIZE, {64});
  const ReportCapture reports;
  const Texture texture(Numbered(2, 65), gl);
  const ColorMap map({Qt::red, Qt::blue}, ColorMap::Discrete);
  for (int i = 0; i < 2; ++i) {
    texture(gl, RGL_TEXTURE0);
    map(gl, RGL_TEXTURE0);
  }
  const std::string condition = "\"largest <= GL_MAX_TEXTURE_SIZE && \"", limit = " texels, the limit is 64\"\" - ";
  const std::string library = "__cdecl Vek::Chart::Library::";
  const std::string scope = "class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &";
  EXPECT_EQ(reports.Texts(),
            (Lines{condition + "2 x 65" + limit + library + "Texture::Texture(const class QImage &," + scope + ")",
                   condition + "4096 x 1" + limit + "void " + library + "ColorMap::operator ()(" + scope +
                       ",unsigned int) const"}));
  EXPECT_EQ(recorder.LinesOf({"TexImage2D"}), Lines());
  Texture(Numbered(64, 64), gl)(gl, RGL_TEXTURE0);
  recorder.Fail("GetIntegerv"); // the limit is not known
  Texture(Numbered(2, 3), gl)(gl, RGL_TEXTURE0);
  EXPECT_EQ(recorder.LinesOf({"TexImage2D"}).size(), 2u);
}

TEST_F(TextureUploadPixels, TheHostsSettingsDoNotReachTheTexels) {
  const auto texels = [&](const Uploader& p_object) {
    p_object.bind();
    std::vector<unsigned char> bytes(4096 * 4);
    gl->GetTexImage(p_object.upload == "TexImage3D" ? RGL_TEXTURE_3D : RGL_TEXTURE_2D, 0, RGL_RGBA, RGL_UNSIGNED_BYTE,
                    bytes.data());
    return bytes;
  };
  for (std::size_t i = 0; i < 3; ++i) {
    const std::vector<unsigned char> expected = texels(Uploaders(gl)[i]);
    const Uploader object = Uploaders(gl)[i];
    gl->PixelStorei(RGL_UNPACK_SKIP_PIXELS, 1);
    gl->PixelTransferf(RGL_RED_SCALE, 0);
    object.bind();
    gl->PixelStorei(RGL_UNPACK_SKIP_PIXELS, 0);
    gl->PixelTransferf(RGL_RED_SCALE, 1);
    EXPECT_EQ(texels(object), expected) << object.name;
  }
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
