// Every call of GL and every allocation fails once, for every class that uses GL: nothing crashes, leaks or stays open,
// a failure that loses something is reported, and the object works at the next try.
//
// VEK_FAIL_ONWARDS=1 in the environment also runs the slow sweeps, in which every later call fails, too.

#include "library/Arrow3D.h"
#include "library/Box.h"
#include "library/ColorAtlas.h"
#include "library/ColorMap.h"
#include "library/Cuboid.h"
#include "library/Cylinder.h"
#include "library/Disk.h"
#include "library/FilledBox.h"
#include "library/Geometry.h"
#include "library/HdrImage.h"
#include "library/ModelCache.h"
#include "library/ObjModel.h"
#include "library/Pattern.h"
#include "library/RenderTexture.h"
#include "library/Ring.h"
#include "library/Sphere.h"
#include "library/Style.h"
#include "library/SymbolRegistry.h"
#include "library/TexturedQuad.h"
#include "library/TopMostFragmentDepthBuffer.h"
#include "library/VectorSymbol.h"
#include "library/VolumeImage.h"
#include "library/VolumeTexture.h"
#include "platform/ogl/ShaderProgram.h"
#include "platform/ogl/Text.h"
#include "scene/Canvas.h"
#include "scene/Theme.h"
#include "tests/support/FaultyGl.h"
#include "tests/support/OperatorNew.h"
#include "tests/support/Test.h"

#include <new>

namespace {

using Handle = Utility::Unscoped<Rgl>;
/// Uses an object that it owns.
using Use = std::function<void(Scope&)>;

struct Subject {
  const char* name;
  std::function<Use(const Handle&)> make; ///< the object, and what uses it
  bool degrades = false;                  ///< after a failure it does with less, for good
};

QImage Checks() {
  QImage image(4, 4, QImage::Format_ARGB32);
  image.fill(Qt::red);
  image.setPixel(1, 2, 0x80402010);
  return image;
}

boost::shared_ptr<VolumeImage> Voxels() {
  std::istringstream text("TextArray 2 1 2 2 1 2 3 4 5 6 7 8");
  return VolumeImage::LoadFromStream(text, VolumeImage::TextArray);
}

boost::shared_ptr<ObjModel> Triangle() {
  std::istringstream text("v 0 0 0\nv 1 0 0\nv 0 1 0\nvn 0 0 1\ng a\nf 1//1 2//1 3//1\n");
  return LoadPolygonObj(text);
}

boost::shared_ptr<ObjModel> Square() {
  std::istringstream text("v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3\nf 1 3 4\n");
  return LoadPolygonObj(text);
}

const vekfile::filepath Symbols(VEK_SOURCE_DIR "/symbols");
constexpr Types::Viewport<0> Window(0, 0, 61, 37);

template <class Object>
Use Owned(const boost::shared_ptr<Object>& p_object) {
  return [p_object](Scope& p_gl) { (*p_object)(p_gl, RGL_TEXTURE0); };
}

/// A subject that makes its objects anew at each use.
Subject Fresh(const char* p_name, const std::function<void(const Handle&, Scope&)>& p_use) {
  return {p_name, [p_use](const Handle& p_handle) -> Use { return [=](Scope& p_gl) { p_use(p_handle, p_gl); }; }};
}

void DrawStyled(const Handle&, Scope& p_gl) {
  boost::function<void(Scope&)> draw = [](Scope& p_inner) { DrawTexturedSquare(p_inner, 1); };
  Types::FillStyle fill;
  fill.pattern.Set(Pattern::FillGrid);
  fill.secondColor.Set(Qt::white);
  Style::DrawInternal(fill, p_gl, draw);
  Types::LineStyle line;
  line.pattern.Set(Pattern::LineLong);
  line.smooth.Set(true);
  Style::DrawInternal(line, p_gl, draw);
}

Subject TargetOf(const char* p_name, int p_samples) {
  return {p_name,
          [p_samples](const Handle&) -> Use {
            const auto target = boost::make_shared<RenderTexture>(Types::Size{8, 6}, RenderTexture::Rgba8,
                                                                  RenderTexture::Linear, p_samples);
            return [target](Scope& p_gl) {
              {
                const auto bound = target->BindForDraw(p_gl);
                p_gl->Clear(RGL_COLOR_BUFFER_BIT);
              }
              target->GenerateMips(p_gl);
              target->BindColor(p_gl, RGL_TEXTURE0);
              target->BindDepth(p_gl, RGL_TEXTURE0);
              target->ToImage(p_gl);
              target->ReadDepths(p_gl);
            };
          },
          p_samples > 0}; // without samples, where these fail
}

const std::vector<Subject>& Subjects() {
  static const std::vector<Subject> All = {
      {"Texture",
       [](const Handle& p_handle) {
         Scope gl(p_handle);
         return Owned(boost::make_shared<Texture>(Checks(), gl));
       }},
      {"VolumeTexture",
       [](const Handle& p_handle) {
         Scope gl(p_handle);
         return Owned(boost::make_shared<VolumeTexture>(Voxels(), gl));
       }},
      {"ColorMap",
       [](const Handle&) {
         return Owned(boost::make_shared<ColorMap>(std::vector<QColor>{Qt::red, Qt::blue}, ColorMap::Interpolated));
       }},
      {"ColorAtlas",
       [](const Handle&) -> Use {
         const auto atlas = boost::make_shared<ColorAtlas>();
         const unsigned int parent = atlas->AddColor(Qt::red, atlas->RootAtlasId());
         atlas->AddColor(Qt::green, parent);
         atlas->AddInstance(parent, {{parent, Qt::blue}});
         return [atlas, built = boost::make_shared<bool>(false)](Scope& p_gl) {
           if (!*built)
             atlas->BuildAtlas(p_gl);
           *built = true;
           (*atlas->Texture())(p_gl, RGL_TEXTURE0);
         };
       }},
      Fresh("Pattern",
            [](const Handle&, Scope& p_gl) {
              Assets::ImageCache cache;
              const Assets::Resource sprites(vekfile::filepath(VEK_SOURCE_DIR "/sprites"));
              (*Pattern::PointSpritePattern(Pattern::PointStar, sprites, cache, p_gl))(p_gl, RGL_TEXTURE0);
            }),
      Fresh("Style", DrawStyled),
      {"Text",
       [](const Handle&) -> Use {
         const auto text = boost::make_shared<Ogl::Text>("abc");
         return [text](Scope& p_gl) { (*text)(p_gl); };
       }},
      {"Canvas",
       [](const Handle&) -> Use {
         const auto text = boost::make_shared<TextRenderer>();
         return [text](Scope& p_gl) {
           Canvas canvas(p_gl, Window, *text);
           canvas.Fill({2, 2, 20, 20}, Qt::red);
           canvas.Text("abc", {5, 10}, {}, Theme().WithHalo(Theme().SmallStyle()));
           canvas.Image({20, 2, 30, 12}, Checks());
           canvas.Polyline({{1, 1}, {5, 9}, {9, 1}}, 1, Qt::red);
           canvas.Flush();
         };
       }},
      {"TexturedQuad",
       [](const Handle& p_handle) -> Use {
         Scope gl(p_handle);
         const auto texture = boost::make_shared<Texture>(Checks(), gl);
         TexturedQuad quad;
         quad.rect = {2, 2, 20, 20};
         quad.border = 1;
         return [=](Scope&) { quad(p_handle, {texture, texture}); };
       }},
      Fresh("Geometry",
            [](const Handle& p_handle, Scope& p_gl) {
              const Geometry shapes(p_handle);
              shapes.Ring(p_gl);
              shapes.Voxel(p_gl);
              Cuboid()(p_handle, shapes);
            }),
      Fresh("Drawables",
            [](const Handle& p_handle, Scope& p_gl) {
              Arrow3D()(p_handle);
              Cylinder()(p_handle);
              Disk()(p_handle);
              Sphere()(p_handle);
              Box()(p_handle);
              FilledBox()(p_handle);
              Ogl::Library::Ring()(p_handle);
              p_gl->PixelProjection(Window);
            }),
      TargetOf("RenderTexture", 0),
      TargetOf("RenderTextureWithSamples", 4),
      {"TopMostFragmentDepthBuffer",
       [](const Handle&) -> Use {
         const auto picker = boost::make_shared<TopMostFragmentDepthBuffer>();
         return [picker](Scope& p_gl) {
           picker->GetDepthAt(
               p_gl, Window, {4, 4}, Core::TimeStamp(), [&](DepthCodec::Encoding) { DrawTexturedSquare(p_gl, 1); },
               [](unsigned int, float) {});
         };
       }},
      {"ModelCache",
       [](const Handle& p_handle) -> Use {
         const auto cache = boost::make_shared<ModelCache>(p_handle);
         const boost::shared_ptr<ObjModel> triangle = Triangle(), square = Square();
         return [=](Scope& p_gl) {
           cache->Register(*triangle);
           ModelDraw(cache->GetModel(cache->Register(*square))).Draw(p_gl);
         };
       }},
      Fresh("SymbolRegistry",
            [](const Handle& p_handle, Scope&) {
              const Core::Ptr<ModelCache> cache(new ModelCache(p_handle));
              const SymbolRegistry registry(cache, Symbols);
              registry.GetVertexBuffer(Model::Symbol::ShapeCone);
            }),
      Fresh("VertexData",
            [](const Handle&, Scope& p_gl) {
              Ogl::VertexData data;
              const VectorSymbol arrow(Model::Symbol::ShapeArrow3D, 8);
              arrow.OrientShape(1, 0, Types::Vector3_Base<double>(), true, 0, 1, Types::Matrix3(), data);
              data.Draw(p_gl);
            }),
      Fresh("Readers",
            [](const Handle&, Scope&) {
              const HdrImage sky(vekfile::filepath(VEK_SOURCE_DIR "/fuzz/corpus/FuzzHdr/separated"));
              Voxels();
              Triangle();
            }),
      Fresh("ShaderProgram",
            [](const Handle&, Scope& p_gl) {
              const Ogl::ShaderProgram program(p_gl, "void main() { gl_Position = ftransform(); }",
                                               "uniform vec4 a; void main() { gl_FragColor = a; }");
              const auto used = program.Use(p_gl);
              program.SetUniform(p_gl, "a", QColor(Qt::red));
            }),
  };
  return All;
}

/// One failure, of a call or of an allocation.
struct Fault {
  FaultyGl::Plan calls;
  std::size_t allocation = 0;
  bool throwing = false;
};

/// What a host has bound, and must find bound afterwards.
std::vector<int> HostState(const Handle& p_handle) {
  const Scope gl(p_handle);
  std::vector<int> values;
  for (const Ogl::GlEnum name :
       {RGL_ARRAY_BUFFER_BINDING, RGL_ELEMENT_ARRAY_BUFFER_BINDING, RGL_PIXEL_PACK_BUFFER_BINDING,
        RGL_PIXEL_UNPACK_BUFFER_BINDING, RGL_FRAMEBUFFER_BINDING, RGL_CURRENT_PROGRAM, RGL_MATRIX_MODE,
        RGL_MODELVIEW_STACK_DEPTH, RGL_PROJECTION_STACK_DEPTH, RGL_ATTRIB_STACK_DEPTH, RGL_CLIENT_ATTRIB_STACK_DEPTH}) {
    values.push_back(0);
    gl->GetIntegerv(name, &values.back());
  }
  return values;
}

/// Runs the subject once with the fault and once without. `p_finish` looks at the object after both, with what uses it.
/// Returns false when the fault was not reached: the subject has fewer calls.
bool Survives(const Subject& p_subject, const Fault& p_fault, const Handle& p_real,
              const std::function<void(const Use&, const Handle&)>& p_finish) {
  std::optional<ReportCapture> reports(std::in_place, p_fault.throwing);
  FaultyGl faulty(p_real);
  const std::vector<int> before = HostState(p_real);
  Use use;
  faulty.Arm(p_fault.calls);
  FailingAllocations::Arm(p_fault.allocation);
  try {
    use = p_subject.make(faulty.Handle());
    Scope gl(faulty.Handle());
    use(gl);
  } catch (const std::exception&) { // the sink's, or std::bad_alloc
  }
  const bool lacked = FailingAllocations::Disarm();
  const std::string failed = faulty.Disarm();
  const std::string what = std::string(p_subject.name) + ", " + (lacked ? "allocation" : failed) + " " +
                           std::to_string(lacked ? p_fault.allocation : p_fault.calls.first) +
                           (p_fault.throwing ? ", throwing" : "");
  SCOPED_TRACE(what);
  EXPECT_EQ(HostState(p_real), before);
  EXPECT_EQ(faulty.Handle().Object()->ScopeDepth(), 0U);
  EXPECT_TRUE(failed.empty() || !reports->Texts().empty() || faulty.TakePendingError()) << "nothing was reported";
  reports.emplace();
  Scope gl(faulty.Handle()); // objects are released within it
  gl->CheckError("what is left");
  reports->Clear();
  if (!use)
    use = p_subject.make(faulty.Handle());
  use(gl);
  EXPECT_EQ(reports->Texts(), Lines()) << "at the next try";
  p_finish(use, faulty.Handle());
  use = {};
  return lacked || !failed.empty();
}

/// Every call alone, and every allocation; calls also with a sink that throws.
void RunAll(const std::function<bool(const Fault&)>& p_run) {
  constexpr std::size_t Most = 5000; // no subject has so many
  const bool onwards = std::getenv("VEK_FAIL_ONWARDS") != nullptr;
  for (const bool throwing : {false, true})
    for (const bool all : {false, true})
      for (std::size_t i = 1; (!all || onwards) && i < Most && p_run({{i, all}, 0, throwing}); ++i)
        if (testing::Test::HasFailure())
          return;
  for (std::size_t i = 1; i < Most && p_run({{}, i, false}); ++i)
    if (testing::Test::HasFailure())
      return;
}

/// The lines of a use, without digits: the names of objects differ after a failure.
Lines LinesOfUse(RecordingGl& p_recorder, const Use& p_use, const Handle& p_handle) {
  p_recorder.Clear();
  {
    Scope gl(p_handle);
    p_use(gl);
  }
  Lines lines = p_recorder.Lines();
  for (std::string& line : lines)
    line.erase(std::remove_if(line.begin(), line.end(), [](unsigned char p_c) { return std::isdigit(p_c); }),
               line.end());
  return lines;
}

class Failures : public testing::TestWithParam<std::size_t> {
public:
  void SetUp() override { MakeApplication(); }
};
using FailuresCalls = Failures;
using FailuresPixels = Failures;

TEST_P(FailuresCalls, LeaveNothingBehind) {
  const Subject& subject = Subjects()[GetParam()];
  Lines clean;
  const auto run = [&](const Fault& p_fault) {
    RecordingGl recorder;
    unsigned int target = 0, buffer = 0;
    {
      const Scope host(recorder.Handle());
      host->GenFramebuffers(1, &target);
      host->BindFramebuffer(RGL_FRAMEBUFFER, target);
      host->GenBuffers(1, &buffer);
      host->BindBuffer(RGL_ARRAY_BUFFER, buffer);
    }
    const bool reached = Survives(subject, p_fault, recorder.Handle(), [&](const Use& p_use, const Handle& p_handle) {
      const Lines lines = LinesOfUse(recorder, p_use, p_handle);
      if (clean.empty())
        clean = lines;
      const auto [line, same] = std::mismatch(lines.begin(), lines.end(), clean.begin(), clean.end());
      EXPECT_TRUE(lines == clean || subject.degrades)
          << (line == lines.end() ? "end" : *line) << " instead of " << (same == clean.end() ? "end" : *same);
    });
    {
      const Scope host(recorder.Handle());
      host->DeleteFramebuffers(1, &target);
      host->DeleteBuffers(1, &buffer);
    }
    Lines complaints = recorder.Complaints();
    // A buffer without memory cannot be mapped; GL says so, and that is reported.
    complaints.erase(std::remove_if(complaints.begin(), complaints.end(),
                                    [](const std::string& p_line) {
                                      return p_line.rfind("MapBufferRange", 0) == 0 &&
                                             p_line.find("of a buffer of 0") != std::string::npos;
                                    }),
                     complaints.end());
    EXPECT_EQ(complaints, Lines());
    return reached;
  };
  run({}); // gives the clean lines
  RunAll(run);
}

TEST_P(FailuresPixels, LeaveNothingBehind) {
  const Subject& subject = Subjects()[GetParam()];
  Ogl::OffscreenContext& context = PixelFixture::ContextOf(PixelFixture::FrameSize);
  QImage clean;
  const auto run = [&](const Fault& p_fault) {
    context.BindFrameBuffer();
    const bool reached = Survives(subject, p_fault, context.Handle(), [&](const Use& p_use, const Handle& p_handle) {
      {
        Scope gl(p_handle);
        const auto state = gl->PushAttribScope(RGL_ALL_ATTRIB_BITS);
        gl->ClearColor(Qt::black);
        gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
        p_use(gl);
        gl->Viewport(0, 0, 30, 37); // the right half shows the use, the left one what it has left bound
        DrawTexturedSquare(gl, 1);
        gl->CheckError("the use");
      }
      const QImage image = context.Image();
      if (clean.isNull())
        clean = image;
      EXPECT_TRUE(image == clean) << "it draws something else at the next try";
    });
    return reached;
  };
  run({});
  RunAll(run);
}

const auto Name = [](const auto& p_info) { return std::string(Subjects()[p_info.param].name); };
INSTANTIATE_TEST_SUITE_P(Each, FailuresCalls, testing::Range<std::size_t>(0, Subjects().size()), Name);
INSTANTIATE_TEST_SUITE_P(Each, FailuresPixels, testing::Range<std::size_t>(0, Subjects().size()), Name);

} // namespace
