// Examples of the reference for hosts; it shows the lines between two marks.

#include "library/ColorMap.h"
#include "library/ObjModel.h"
#include "library/VectorSymbol.h"
#include "library/Version.h"
#include "platform/ogl/OffscreenContext.h"
#include "platform/ogl/PerContext.h"
#include "platform/ogl/ShaderProgram.h"
#include "platform/ogl/VertexData.h"
#include "platform/utility/Threads.h"
#include "testing/RecordingGl.h"
#include "testing/Surface.h"
#include "tests/support/Test.h"

#include <dlfcn.h>

namespace {

TEST(HostSnippets, Version) {
  const auto requireLibrary = [] {
    //! [Version]
    if (Library::Version() < Utility::VersionNo(1, 0, 0))
      throw std::runtime_error("This program needs version 1.0 of the chart library.");
    //! [Version]
  };
  EXPECT_NO_THROW(requireLibrary());
}

//! [Sink]
/// Counts failures, and keeps the last message for a status line.
class CountingSink : public vekdebug::sink {
public:
  void write(const vekdebug::report& p_report) override { // may be called from several threads at once
    if (p_report.kind == vekdebug::severity::debug)
      return;
    ++count;
    const std::lock_guard<std::mutex> lock(mutex);
    last = p_report.text + " " + vekdebug::detail_text(p_report.where); // the latter has path, line and values
  }

  std::atomic<int> count = 0;
  std::mutex mutex;
  std::string last;
};
//! [Sink]

TEST(HostSnippets, Reports) {
  //! [Reports]
  const auto sink = std::make_shared<CountingSink>();
  const std::shared_ptr<vekdebug::sink> before = Utility::GetLogger().set_sink(sink);
  const Library::ColorMap empty({}, Library::ColorMap::Discrete); // reports "size > 0", and goes on
  Utility::GetLogger().set_sink(before);
  //! [Reports]
  EXPECT_EQ(sink->last.substr(0, 13), "\"size > 0\" - ");
}

TEST(HostSnippets, Check) {
  Testing::ReportCapture reports;
  //! [Check]
  const auto half = [](int p_size) {
    if (!VEK_ENSURE(p_size > 0, "int __cdecl Half(int)"))
      return 0; // a harmless value
    return p_size / 2;
  };
  const int none = half(-3); // reports "p_size > 0" - int __cdecl Half(int)
  //! [Check]
  EXPECT_TRUE(none == 0 && reports.Texts() == Texts{"\"p_size > 0\" - int __cdecl Half(int)"});
}

TEST(HostSnippets, Threads) {
  //! [Threads]
  std::vector<float> values(1000000, 2.0f);
  Utility::RunRanges(Utility::Threads::All(), values.size(), 65536, [&](std::size_t p_first, std::size_t p_last) {
    for (std::size_t i = p_first; i < p_last; ++i)
      values[i] = std::sqrt(values[i]);
  });
  //! [Threads]
  EXPECT_EQ(std::count(values.begin(), values.end(), std::sqrt(2.0f)), 1000000);
}

TEST(HostSnippetCalls, RecordingGl) {
  //! [RecordingGl]
  const Testing::RecordingGl recorder;
  {
    const Utility::Scoped<Rgl> gl(recorder.Handle());
    gl->Enable(RGL_BLEND);
    gl->Color(Qt::red);
  }
  const std::vector<std::string> lines = recorder.Lines(); // {"Enable(GL_BLEND)", "Color4d(1, 0, 0, 1)"}
  const bool faultless = recorder.Complaints().empty();    // nothing leaked, all pairs closed
  //! [RecordingGl]
  EXPECT_TRUE(faultless && lines == (std::vector<std::string>{"Enable(GL_BLEND)", "Color4d(1, 0, 0, 1)"}));
}

//! [RecordingFixture]
/// The host's drawing.
void DrawMarker(Utility::Scoped<Rgl>& p_gl) {
  const boost::shared_ptr<void> state = p_gl->PushAttribScope(RGL_CURRENT_BIT); // popped at the end
  p_gl->Color(Qt::red);
  p_gl->Begin(RGL_QUADS);
  for (const auto& [x, y] : {std::pair(-0.5, -0.5), {0.5, -0.5}, {0.5, 0.5}, {-0.5, 0.5}})
    p_gl->Vertex(x, y, 0);
  p_gl->End();
}

/// Its calls. A test fails as well on misuse, unbalanced pairs and objects that were not deleted.
using MarkerCalls = Testing::RecordingFixture;

TEST_F(MarkerCalls, SetOneColor) {
  Utility::Scoped<Rgl> gl(recorder.Handle());
  DrawMarker(gl);
  EXPECT_EQ(recorder.LinesOf({"Color4d", "Begin"}), Testing::Calls("Color4d(1, 0, 0, 1); Begin(GL_QUADS)"));
}
//! [RecordingFixture]

//! [PixelFixture]
/// Its pixels, on a frame buffer of 4 × 3.
class MarkerPixels : public Testing::PixelScopeFixture {
protected:
  MarkerPixels()
      : PixelScopeFixture({4, 3}) {}
};

TEST_F(MarkerPixels, FillTheMiddle) {
  DrawMarker(gl);
  EXPECT_EQ(Testing::Map(Image(), Qt::red), "....\n"
                                            ".##.\n"
                                            "....\n");
}
//! [PixelFixture]

TEST(HostSnippets, ReportCapture) {
  //! [ReportCapture]
  const Testing::TempFolder folder;     // removed with its files at the end
  const Testing::ReportCapture reports; // which are not printed
  Library::LoadPolygonObjFile(vekfile::filepath(folder.Path().string()) + "missing.obj");
  EXPECT_EQ(reports.Texts().size(), 1u);
  //! [ReportCapture]
}

TEST(HostSnippets, Surface) {
  //! [Surface]
  Ogl::VertexData cube;
  Library::VectorSymbol(Model::Symbol::ShapeCube, 16).OrientShape(1, 0, {0, 0, 0}, false, 0, 1, {}, cube);
  const Testing::Surface surface = Testing::SurfaceOf(cube);
  EXPECT_TRUE(Testing::IsClosed(surface));
  EXPECT_GT(Testing::EnclosedVolume(surface), 0); // its triangles face outward
  //! [Surface]
}

using HostSnippetPixels = Testing::PixelFixture;

TEST_F(HostSnippetPixels, Rgl) {
  const Utility::Unscoped<Rgl>& handle = Handle();
  //! [Rgl]
  Utility::Scoped<Rgl> gl(handle); // the context is current while this lives
  gl->Color(Qt::red);              // with the project's value types,
  gl->Begin(RGL_TRIANGLES);        // or GL's own functions
  gl->Vertex(-1, -1, 0);
  gl->Vertex(1, -1, 0);
  gl->Vertex(0, 1, 0);
  gl->End();
  gl->CheckError("MyScene::Draw"); // reports what GL did not like
  //! [Rgl]
  EXPECT_EQ(PixelAt(Image(), 30, 10), QColor(Qt::red).rgba());
}

TEST_F(HostSnippetPixels, VertexData) {
  Utility::Scoped<Rgl> gl(Handle());
  std::vector<Types::Vector3_Base<float>> positions = {{-1, -1, 0}, {1, -1, 0}, {0, 1, 0}};
  //! [VertexData]
  Ogl::VertexData data;
  data.SetVertices(std::move(positions)); // the vector's memory, not a copy
  data.SetIndices(std::vector<unsigned int>{0, 1, 2});
  data.PrimitiveType() = Ogl::VertexBuffer::Triangles;
  data.Draw(gl);
  //! [VertexData]
  EXPECT_EQ(PixelAt(Image(), 30, 10), QColor(Qt::white).rgba());
}

TEST_F(HostSnippetPixels, ShaderProgram) {
  Utility::Scoped<Rgl> gl(Handle());
  //! [ShaderProgram]
  const Ogl::ShaderProgram program(gl, "void main() { gl_Position = ftransform(); }",
                                   "uniform vec4 tint; void main() { gl_FragColor = tint; }");
  {
    const boost::shared_ptr<void> used = program.Use(gl);
    program.SetUniform(gl, "tint", QColor(Qt::green));
    gl->Begin(RGL_TRIANGLES);
    gl->Vertex(-1, -1, 0);
    gl->Vertex(1, -1, 0);
    gl->Vertex(0, 1, 0);
    gl->End();
  } // the program before is current again
  //! [ShaderProgram]
  EXPECT_EQ(PixelAt(Image(), 30, 10), QColor(Qt::green).rgba());
}

//! [PerContext]
/// A triangle that can be drawn in any context.
class Triangle {
public:
  void Draw(Utility::Scoped<Rgl>& p_gl) const {
    const auto record = [&] {
      boost::shared_ptr<Ogl::DisplayList> list = p_gl->GenDisplayList();
      const boost::shared_ptr<void> recording = list->Compile();
      p_gl->Begin(RGL_TRIANGLES);
      p_gl->Vertex(-1, -1, 0);
      p_gl->Vertex(1, -1, 0);
      p_gl->Vertex(0, 1, 0);
      p_gl->End();
      return list;
    };
    (*_lists.Get(p_gl, record))(); // recorded once in each context
  }

private:
  Ogl::PerContext<boost::shared_ptr<Ogl::DisplayList>> _lists; // each freed with its context or with the triangle
};
//! [PerContext]

TEST_F(HostSnippetPixels, PerContext) {
  const Triangle triangle;
  Ogl::OffscreenContext other({61, 37});
  for (Ogl::OffscreenContext* const context : {&other, &Context()}) {
    Utility::Scoped<Rgl> gl(context->Handle());
    triangle.Draw(gl);
    EXPECT_EQ(PixelAt(context->Image(), 30, 10), QColor(Qt::white).rgba());
  }
}

// A context that somebody else made current.
TEST_F(HostSnippetPixels, OnCurrentContext) {
  const Utility::Scoped<Rgl> current(Handle());
  //! [OnCurrentContext]
  const Utility::Unscoped<Rgl> handle = Rgl::OnCurrentContext(); // kept by the host
  {
    const Utility::Scoped<Rgl> gl(handle); // the host has made its context current before
    gl->ClearColor(Qt::blue);
    gl->Clear(RGL_COLOR_BUFFER_BIT);
  }
  //! [OnCurrentContext]
  EXPECT_EQ(PixelAt(Image(), 30, 10), QColor(Qt::blue).rgba());
}

// The host's own way of making a context current, and of finding GL's functions.
TEST_F(HostSnippetPixels, OwnLoader) {
  struct {
    int made = 0;
    int left = 0;
    void MakeCurrent() { ++made; }
    void Release() { ++left; }
  } window;
  const auto load = reinterpret_cast<void* (*)(const char*)>(
      ::dlsym(::dlopen("libEGL.so.1", RTLD_NOW | RTLD_GLOBAL), "eglGetProcAddress"));
  const Utility::Scoped<Rgl> current(Handle());
  //! [OwnLoader]
  const auto table = boost::make_shared<Ogl::GlFunctions>();
#define VEK_GL(p_result, p_name, p_parameters, p_arguments)                                                            \
  table->p_name = reinterpret_cast<decltype(table->p_name)>(load("gl" #p_name));
#define VEK_GLU(p_result, p_name, p_parameters, p_arguments) table->p_name = Ogl::NativeGl().p_name;
#include "platform/ogl/GlFunctionList.h"

  // Called as the outermost scope opens and closes, with eglMakeCurrent in them, for example.
  const auto enter = [&] { window.MakeCurrent(); };
  const auto leave = [&] { window.Release(); };
  const Utility::Unscoped<Rgl> handle(boost::make_shared<Rgl>(table, enter, leave));
  //! [OwnLoader]
  {
    const Utility::Scoped<Rgl> gl(handle);
    gl->ClearColor(Qt::green);
    gl->Clear(RGL_COLOR_BUFFER_BIT);
  }
  EXPECT_EQ(std::tuple(PixelAt(Image(), 30, 10), window.made, window.left), std::tuple(QColor(Qt::green).rgba(), 1, 1));
}

TEST_F(HostSnippetPixels, OffscreenContext) {
  //! [OffscreenContext]
  Ogl::OffscreenContext context({64, 32}, 4); // with a frame buffer of its own, four samples a pixel
  {
    const Utility::Scoped<Rgl> gl(context.Handle());
    gl->ClearColor(Qt::white);
    gl->Clear(RGL_COLOR_BUFFER_BIT);
  }
  const QImage picture = context.Image();
  //! [OffscreenContext]
  EXPECT_EQ(picture.pixel(3, 5), QColor(Qt::white).rgba());
}

} // namespace
