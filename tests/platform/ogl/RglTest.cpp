#include "platform/ogl/Rgl.h"
#include "tests/support/Test.h"

namespace {

TEST(Rgl, OutermostScopeSwitchesContexts) {
  const boost::shared_ptr<const Ogl::GlFunctions> functions = RecordingGl().Handle().Object()->Functions();
  std::string log;
  const Utility::Unscoped<Rgl> handle(boost::shared_ptr<Rgl>(new Rgl(
      functions, [&] { log += '('; }, [&] { log += ')'; })));
  {
    const Scope outer(handle);
    {
      const Scope inner(outer.Handle());
      EXPECT_EQ(handle.Object()->ScopeDepth(), 2U);
    }
    EXPECT_EQ(log, "(");
  }
  const Scope again(handle);
  EXPECT_EQ(log, "()(");

  Rgl broken(functions, [] { throw std::runtime_error("no context"); });
  EXPECT_THROW(broken.ScopeBegin(), std::runtime_error);
  EXPECT_EQ(broken.ScopeDepth(), 0U);
  const ReportCapture reports;
  broken.ScopeEnd();
  EXPECT_EQ(reports.Texts(), Lines{"\"_scopeDepth > 0\" - void __cdecl Vek::Chart::Ogl::Rgl::ScopeEnd(void)"});
  EXPECT_EQ(broken.ScopeDepth(), 0U);

  const boost::shared_ptr<Rgl> refusing(new Rgl(functions, {}, [] { throw std::runtime_error("no release"); }));
  Scope{Utility::Unscoped<Rgl>(refusing)}; // ends in a destructor, which must not throw
  EXPECT_EQ(refusing->ScopeDepth(), 0U);
}

TEST(Rgl, ReportsMissingFunctions) {
  const boost::shared_ptr<Ogl::GlFunctions> table(new Ogl::GlFunctions(Ogl::NativeGl()));
  table->MapBufferRange = nullptr;
  table->GenTextures = nullptr;
  table->NewQuadric = nullptr;
  ReportCapture reports;
  const Rgl holed(table);
  EXPECT_EQ(reports.Texts(),
            Lines{"WARNING: Rgl: the function table lacks glGenTextures glMapBufferRange gluNewQuadric"});
  EXPECT_EQ(holed.MapBufferRange(RGL_ARRAY_BUFFER, 0, 1, RGL_MAP_WRITE_BIT), nullptr);
  EXPECT_EQ(holed.NewQuadric(), nullptr);
  EXPECT_FALSE(holed.GenTexture());
  reports.Clear();
  const Rgl none(nullptr);
  EXPECT_EQ(none.GetError(), RGL_NO_ERROR);
  EXPECT_FALSE(none.Features().Supported(Ogl::DeviceFeatures::FeatureVolumeTextures));
  EXPECT_EQ(reports.Texts().size(), 1U);
  const ReportCapture throwing(true);
  EXPECT_THROW(Rgl(nullptr), std::runtime_error);
}

class RglCalls : public RecordingScopeFixture {
public:
  const ReportCapture reports;
};

TEST_F(RglCalls, ValueTypesBecomeNumbers) {
  gl->Begin(RGL_LINES);
  gl->Normal(Types::Vector3_Base<double>(0, 0, 1));
  gl->TexCoord(0.25, 0.5);
  gl->Vertex(Types::Vector3_Base<double>(1, 2, 3));
  gl->Vertex(4, 5, 6);
  gl->End();
  gl->Color(QColor::fromRgba64(0x8000, 0, 0xFFFF, 0x4000)); // more than 8 bits a channel must arrive
  gl->ClearColor(QColor(0, 255, 0, 51));
  gl->Translate({1, -2, 0.5});
  gl->Scale({2, 2, 2});
  gl->Rotate(Types::Angle::FromDegrees(180), {0, 1, 0});
  gl->MultMatrix(Types::Transformation::Translation({7, 8, 9}));
  const float infinity = std::numeric_limits<float>::infinity();
  gl->Viewport({-0.9F, -1.9F, 2.9F, 3.5F}); // truncated, and held within an int
  gl->Viewport({NAN, -infinity, infinity, 3e9F});
  EXPECT_EQ(recorder.Lines(),
            Calls("Begin(GL_LINES); Normal3d(0, 0, 1); TexCoord2d(0.25, 0.5); Vertex3d(1, 2, 3); Vertex3d(4, 5, 6); "
                  "End(); Color4d(0.5000076295109483, 0, 1, 0.2500038147554742); ClearColor(0, 1, 0, 0.2); "
                  "Translated(1, -2, 0.5); Scaled(2, 2, 2); Rotated(180, 0, 1, 0); "
                  "MultMatrixd([1 0 0 0 0 1 0 0 0 0 1 0 7 8 9 1]); "
                  "Viewport(0, -1, 2, 3); Viewport(0, -2147483648, 2147483647, 2147483647)"));
}

// The previous state of the host must return.
TEST_F(RglCalls, GuardsRestoreWhatTheyChange) {
  gl->MatrixMode(RGL_TEXTURE);
  const boost::shared_ptr<Ogl::FrameBufferObject> drawn = gl->GenFrameBufferObject(), read = gl->GenFrameBufferObject();
  gl->BindFramebuffer(RGL_DRAW_FRAMEBUFFER, drawn->Name());
  gl->BindFramebuffer(RGL_READ_FRAMEBUFFER, read->Name());
  const boost::shared_ptr<Ogl::DisplayList> list = gl->GenDisplayList();
  recorder.Clear();
  boost::shared_ptr<void> guard = gl->PixelProjection({3, 4, 29, 14});
  guard.reset();
  guard = gl->PushAttribScope(RGL_ENABLE_BIT | RGL_POLYGON_BIT | RGL_CURRENT_BIT);
  guard.reset();
  guard = list->Compile();
  EXPECT_TRUE(guard);
  gl->Finish();
  guard.reset();
  (*list)();
  guard = gl->BindScope(gl->GenFrameBufferObject()); // held by the guard only
  guard.reset();
  EXPECT_EQ(
      recorder.LinesWithout({"GetIntegerv"}),
      Calls("MatrixMode(GL_PROJECTION); PushMatrix(); LoadIdentity(); Ortho(0, 29, 0, 14, -1, 1); "
            "MatrixMode(GL_MODELVIEW); PushMatrix(); LoadIdentity(); "
            "MatrixMode(GL_PROJECTION); PopMatrix(); MatrixMode(GL_MODELVIEW); PopMatrix(); MatrixMode(GL_TEXTURE); "
            "PushAttrib(GL_CURRENT_BIT|GL_POLYGON_BIT|GL_ENABLE_BIT); PopAttrib(); "
            "NewList(2001, GL_COMPILE); Finish(); EndList(); CallList(2001); "
            "GenFramebuffers(1, [4003]); BindFramebuffer(GL_FRAMEBUFFER, 4003); "
            "BindFramebuffer(GL_DRAW_FRAMEBUFFER, 4001); BindFramebuffer(GL_READ_FRAMEBUFFER, 4002); "
            "DeleteFramebuffers(1, [4003])"));
}

// The fixture looks for what is left pushed, bound or not deleted.
TEST_F(RglCalls, ReportsNullAndNamelessObjects) {
  for (const char* const name : {"GenTextures", "GenFramebuffers", "GenRenderbuffers", "GenLists"})
    for (const std::size_t number : {1, 2, 3})
      recorder.Fail(name, number);
  const Ogl::DisplayList list(gl->Functions());
  const boost::shared_ptr<Ogl::FrameBufferObject> nameless(new Ogl::FrameBufferObject(gl->Functions()));
  const std::function<void()> calls[] = {
      [&] { EXPECT_FALSE(gl->GenTexture()); },
      [&] { EXPECT_FALSE(gl->GenFrameBufferObject()); },
      [&] { EXPECT_FALSE(gl->GenRenderBuffer()); },
      [&] { EXPECT_FALSE(gl->GenDisplayList()); },
      [&] { list.Compile(); },
      [&] { gl->Bind(nullptr, Rgl::Sampler3D); },
      [&] { gl->BindScope(nullptr); },
      [&] { gl->BindScope(nameless); }, // must not bind the window
      [&] { gl->PixelProjection(Types::Viewport<0>(0, 0, 0, 14)); },
  };
  const std::string
      guard = "class boost::shared_ptr<void> __cdecl Vek::Chart::Ogl::",
      bind = guard + "Rgl::BindScope(const class boost::shared_ptr<class Vek::Chart::Ogl::FrameBufferObject> &) const";
  Lines expected;
  for (const std::string name : {"Texture", "FrameBufferObject", "RenderBuffer", "DisplayList"})
    expected.push_back("\"object->Name() != 0\" - class boost::shared_ptr<class Vek::Chart::Ogl::" + name +
                       "> __cdecl Vek::Chart::Ogl::Rgl::Gen" + name + "(void) const");
  expected =
      expected + Lines{"\"_name != 0\" - " + guard + "DisplayList::Compile(void) const",
                       "\"void*(obj)\" - void __cdecl Vek::Chart::Ogl::Rgl::Bind(const class boost::shared_ptr<class "
                       "Vek::Chart::Ogl::Texture> &,enum Vek::Chart::Ogl::Rgl::TexSamplerType) const",
                       "\"void*(obj)\" - " + bind, "\"p_target->Name() != 0\" - " + bind,
                       "\"p_viewport.width > 0 && p_viewport.height > 0\" - " + guard +
                           "Rgl::PixelProjection(const class Vek::Chart::Types::Viewport<0> &) const"};
  list();
  for (const bool throws : {false, true}) {
    const ReportCapture each(throws);
    for (const auto& call : calls)
      if (throws)
        EXPECT_THROW(call(), std::runtime_error) << &call - calls;
      else
        call();
    EXPECT_EQ(each.Texts(), expected);
  }
  EXPECT_EQ(recorder.LinesOf({"NewList", "EndList", "CallList", "BindTexture", "BindFramebuffer"}),
            Lines{"BindTexture(GL_TEXTURE_3D, 0)"});
}

TEST_F(RglCalls, VersionsAndFeatures) {
  using Features = Ogl::DeviceFeatures;
  using Set = std::set<Features::Feature>;
  const auto floats = Features::FeatureFloatTextures, instancing = Features::FeatureInstancing,
             srgb = Features::FeatureSrgbFrameBuffer, volumes = Features::FeatureVolumeTextures;
  const Set all = {
      floats, instancing, srgb, volumes, Features::FeatureFrameBufferObject, Features::FeatureMultisampleFrameBuffer};
  Set of30 = all;
  of30.erase(instancing); // in 3.3 only
  const std::tuple<const char*, const char*, Utility::VersionNo, Set> cases[] = {
      {"", "", {0, 0, 0}, {}},
      {"Mesa 3.1", "", {0, 0, 0}, {}},
      {"1.1", "", {1, 1, 0}, {}},
      {"1.4.17 Vendor 9.9", "", {1, 4, 17}, {volumes}},
      {"2.1 x", " GL_ARB_texture_float  GL_EXT_framebuffer_sRGB ", {2, 1, 0}, {volumes, floats, srgb}},
      {"2.1", "GL_ARB_draw_instanced GL_ARB_framebuffer_objects", {2, 1, 0}, {volumes}}, // half, and a longer name
      {"2.1", "GL_ARB_instanced_arrays GL_ARB_draw_instanced", {2, 1, 0}, {volumes, instancing}},
      {"3.0", "", {3, 0, 0}, of30},
      {"3.2", "", {3, 2, 0}, of30},
      {"3.3", "", {3, 3, 0}, all},
      {"10.2 (Compatibility Profile) Mesa 22.3.6", "", {10, 2, 0}, all},
  };
  for (const auto& [version, extensions, number, features] : cases) {
    RecordingGl device;
    device.SetVersion(version);
    device.SetExtensions(extensions);
    const Scope deviceGl(device.Handle());
    EXPECT_EQ(deviceGl->GlVersion(), number) << version;
    for (const Features::Feature feature : all)
      EXPECT_EQ(deviceGl->Features().Supported(feature), features.count(feature) != 0)
          << version << extensions << feature;
  }
  recorder.Fail("GetString"); // as without a current context: not taken for the device's answer
  EXPECT_FALSE(gl->Features().Supported(volumes));
  EXPECT_TRUE(gl->Features().Supported(volumes));
  recorder.SetInteger(RGL_MAX_TEXTURE_SIZE, {12345});
  EXPECT_EQ(gl->GetMaxTextureSize(), 12345);
}

TEST_F(RglCalls, ReportsErrors) {
  EXPECT_TRUE(gl->CheckError("nowhere"));
  recorder.QueueError(RGL_INVALID_OPERATION);
  recorder.QueueError(0x1234);
  EXPECT_FALSE(gl->CheckError("here @line86"));
  EXPECT_EQ(reports.Texts(),
            (Lines{"WARNING: GL_INVALID_OPERATION - here @line86", "WARNING: GL error 4660 - here @line86"}));
  EXPECT_EQ(reports.Entries().front().kind, vekdebug::severity::error);
  EXPECT_TRUE(gl->CheckError("again"));
  // A lost context returns errors without end.
  for (int i = 0; i < 100; ++i)
    recorder.QueueError(RGL_OUT_OF_MEMORY);
  EXPECT_FALSE(gl->CheckError("lost"));
}

// The recorder's state must be the driver's, at first and after the same calls.
TEST(RglPixels, TheRecorderAgreesWithTheDriver) {
  const Ogl::OffscreenContext context({9, 3});
  const RecordingGl recorder;
  const Scope recorded(recorder.Handle()), real(context.Handle());
  const auto numbers = [](const Scope& p_gl, Ogl::GlEnum p_name) {
    std::vector<double> values(16);
    p_gl->GetDoublev(p_name, values.data());
    return values;
  };
  // clang-format off
  const Ogl::GlEnum names[] = {
      RGL_MATRIX_MODE, RGL_DEPTH_FUNC, RGL_DEPTH_WRITEMASK, RGL_BLEND_SRC_RGB, RGL_BLEND_DST_ALPHA,
      RGL_CULL_FACE_MODE, RGL_FRONT_FACE, RGL_SHADE_MODEL, RGL_LINE_WIDTH, RGL_LINE_STIPPLE_PATTERN,
      RGL_LINE_STIPPLE_REPEAT, RGL_POINT_SIZE, RGL_ACTIVE_TEXTURE, RGL_TEXTURE_BINDING_2D, RGL_UNPACK_ALIGNMENT,
      RGL_PACK_ALIGNMENT, RGL_COLOR_CLEAR_VALUE, RGL_COLOR_WRITEMASK, RGL_POLYGON_MODE, RGL_ATTRIB_STACK_DEPTH,
      RGL_MODELVIEW_STACK_DEPTH, RGL_CLIENT_ACTIVE_TEXTURE, RGL_CURRENT_PROGRAM, RGL_ARRAY_BUFFER_BINDING,
      RGL_BLEND, RGL_DITHER, RGL_MULTISAMPLE, RGL_LIGHTING, RGL_CULL_FACE, RGL_DEPTH_TEST, RGL_SCISSOR_TEST,
      RGL_TEXTURE_2D, RGL_LINE_SMOOTH, RGL_NORMALIZE, RGL_FRAMEBUFFER_SRGB, RGL_POINT_SPRITE};
  // clang-format on
  for (const Ogl::GlEnum name : names)
    EXPECT_EQ(numbers(recorded, name), numbers(real, name)) << std::hex << name;
  for (const Scope* const scope : {&recorded, &real}) {
    const Rgl& target = **scope;
    target.Scissor(1, 2, 3, 4);
    target.CullFace(RGL_FRONT);
    target.FrontFace(RGL_CW);
    target.ShadeModel(RGL_FLAT);
    target.PointSize(2.5F);
    target.LineWidth(2);
    target.DepthFunc(RGL_GREATER);
    target.ClientActiveTexture(RGL_TEXTURE1);
    target.Enable(RGL_BLEND);
    target.Translate({1, 2, 3});
    target.Rotate(Types::Angle::FromDegrees(33), {1, 2, -1});
    target.Scale({2, 0.5, -1});
    target.MultMatrix({Types::Matrix3({1, 2, 3}, {4, 5, 6}, {7, 8, 10}), {-1, 0.25, 4}});
    target.Ortho(-3, 5, 1, 2, 0.5, 8);
    target.MatrixMode(RGL_PROJECTION);
    target.LoadMatrixd(std::array<double, 16>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}.data());
  }
  for (const Ogl::GlEnum name : names)
    EXPECT_EQ(numbers(recorded, name), numbers(real, name)) << "after the calls, " << std::hex << name;
  for (const Ogl::GlEnum name : {RGL_SCISSOR_BOX, RGL_PROJECTION_MATRIX})
    EXPECT_EQ(numbers(recorded, name), numbers(real, name)) << std::hex << name;
  const std::vector<double> actual = numbers(recorded, RGL_MODELVIEW_MATRIX),
                            expected = numbers(real, RGL_MODELVIEW_MATRIX);
  for (std::size_t i = 0; i < 16; ++i)
    EXPECT_NEAR(actual[i], expected[i], 1e-5 * std::max(1.0, std::abs(expected[i]))) << "element " << i;
}

} // namespace
