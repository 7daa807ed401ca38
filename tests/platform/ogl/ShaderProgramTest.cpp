#include "platform/ogl/ShaderProgram.h"
#include "tests/support/Test.h"

using Ogl::ShaderProgram;

namespace {

using ShaderProgramCalls = RecordingScopeFixture;

TEST_F(ShaderProgramCalls, CompilesLinksAndNamesLocations) {
  {
    const ShaderProgram program(gl, "vertex", "fragment", {"position", "", "offset"});
    EXPECT_TRUE(program.Linked());
    EXPECT_EQ(program.Name(), 7001U);
  }
  EXPECT_EQ(recorder.LinesWithout({"GetString", "GetShaderiv", "GetProgramiv"}),
            Calls("CreateShader(GL_VERTEX_SHADER); CreateShader(GL_FRAGMENT_SHADER); ShaderSource(6001, 1, ptr, ptr); "
                  "CompileShader(6001); ShaderSource(6002, 1, ptr, ptr); CompileShader(6002); CreateProgram(); "
                  "AttachShader(7001, 6001); AttachShader(7001, 6002); BindAttribLocation(7001, 0, \"position\"); "
                  "BindAttribLocation(7001, 2, \"offset\"); LinkProgram(7001); DeleteShader(6002); "
                  "DeleteShader(6001); DeleteProgram(7001)"));
}

// Each failure is reported once, leaks nothing (checked by the fixture) and leaves the program unused.
TEST_F(ShaderProgramCalls, ReportsFailuresWithTheLog) {
  const std::tuple<const char*, std::size_t, const char*, std::string> cases[] = {
      {"CompileShader", 1, "0:1: syntax error\n", "WARNING: vertex shader: 0:1: syntax error"},
      {"CompileShader", 2, "two\nlines\n\n", "WARNING: fragment shader: two lines"},
      {"LinkProgram", 1, "", "WARNING: shader program: "},
      {"CreateShader", 1, "unused", "WARNING: vertex shader: "},
      {"CreateProgram", 1, "unused", "WARNING: shader program: "},
  };
  for (const auto& [function, number, log, report] : cases) {
    const ReportCapture reports;
    recorder.SetInfoLog(log);
    recorder.Fail(function, number);
    const ShaderProgram program(gl, "vertex", "fragment");
    EXPECT_TRUE(!program.Linked() && program.Name() == 0) << function;
    program.Use(gl);
    EXPECT_EQ(
        reports.Texts(),
        (Lines{report, "\"Linked()\" - class boost::shared_ptr<void> __cdecl Vek::Chart::Ogl::ShaderProgram::Use(class "
                       "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &) const"}))
        << function;
  }
  EXPECT_EQ(recorder.LinesOf({"UseProgram"}), Lines());
}

TEST_F(ShaderProgramCalls, UseRestoresThePreviousProgram) {
  const ShaderProgram first(gl, "v", "f");
  const ShaderProgram second(gl, "v", "f");
  boost::shared_ptr<void> outer = first.Use(gl);
  second.Use(gl);
  outer.reset();
  EXPECT_EQ(recorder.LinesOf({"UseProgram"}),
            (Lines{"UseProgram(7001)", "UseProgram(7002)", "UseProgram(7001)", "UseProgram(0)"}));
}

TEST_F(ShaderProgramCalls, UniformsAreSetByName) {
  const ShaderProgram program(gl, "v", "f");
  const boost::shared_ptr<void> inUse = program.Use(gl);
  recorder.Clear();
  program.SetUniform(gl, "a", 3);
  program.SetUniform(gl, "b", 0.5F);
  program.SetUniform(gl, "a", Types::Vector3_Base<double>(1, 2, 3));
  program.SetUniform(gl, "b", QColor(255, 0, 51, 0));
  program.SetUniform(gl, "a", Types::Transformation::Translation({7, 8, 9}));
  const Lines expected = {"Uniform1i(0, 3)", "Uniform1f(1, 0.5)", "Uniform3f(0, 1, 2, 3)", "Uniform4f(1, 1, 0, 0.2, 0)",
                          "UniformMatrix4fv(0, 1, GL_FALSE, [1 0 0 0 0 1 0 0 0 0 1 0 7 8 9 1])"};
  EXPECT_EQ(recorder.LinesWithout({"GetUniformLocation"}), expected);
}

TEST_F(ShaderProgramCalls, ReportsOldDevices) {
  recorder.SetVersion("1.5");
  const ReportCapture reports;
  EXPECT_FALSE(ShaderProgram(gl, "v", "f").Linked());
  ASSERT_EQ(reports.Texts().size(), 1U);
  EXPECT_EQ(reports.Texts().front().rfind("\"gl.GlVersion() >= Utility::VersionNo(2, 0, 0)\" - __cdecl ", 0), 0U);
  EXPECT_EQ(recorder.LinesOf({"CreateShader", "CreateProgram"}), Lines());
}

} // namespace
