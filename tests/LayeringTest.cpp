// Which file may include which: the floors of the house. The rules are one function over two names; it is tested on
// made-up names first and then runs over the include lines of the whole tree.

#include "tests/support/Test.h"

namespace {

const std::set<std::string> Roots{"platform", "algorithms", "library", "examples", "tests",
                                  "bench",    "fuzz",       "tools",   "docs"};

/// The libraries, each above those that stand left of it.
constexpr std::array<const char*, 3> Floors{"platform", "algorithms", "library"};
/// The folders of platform/, top floor first: each includes itself and what stands right of it.
constexpr std::array<const char*, 10> PlatformFloors{"data", "ogl",   "assets",    "file",  "utility",
                                                     "core", "model", "interface", "types", "debug"};

/// The folders of a path below the root, then the file's name.
std::vector<std::string> Parts(const std::string& p_path) {
  const fs::path path(p_path);
  return {path.begin(), path.end()};
}

bool StartsWith(const std::string& p_text, const std::string& p_start) {
  return p_text.compare(0, p_start.size(), p_start) == 0;
}

/// What is wrong with a platform file that includes another one; empty when nothing is.
std::string PlatformFault(const std::vector<std::string>& p_from, const std::vector<std::string>& p_to) {
  if (p_to.size() == 2)
    return p_to[1] == "Export.h" ? "" : "stands outside the floors";
  const auto from = std::find(PlatformFloors.begin(), PlatformFloors.end(), p_from[1]);
  const auto to = std::find(PlatformFloors.begin(), PlatformFloors.end(), p_to[1]);
  if (from == PlatformFloors.end() || to == PlatformFloors.end())
    return "is not on a known floor";
  return from <= to ? "" : "points up";
}

/// What is wrong with `p_from` having the line #include "p_to", both as paths from the root; empty when nothing is.
std::string Fault(const std::string& p_from, const std::string& p_to) {
  const std::vector<std::string> from = Parts(p_from);
  const std::vector<std::string> to = Parts(p_to);
  if (to.size() < 2 || Roots.count(to[0]) == 0)
    return "does not start at the root";
  if (const std::size_t end = p_to.find("/private/"); end != std::string::npos) {
    const std::string owner = p_to.substr(0, end + 1);
    const bool inside = StartsWith(p_from, owner + "private/") || fs::path(p_from).extension() == ".cpp";
    return inside && StartsWith(p_from, owner) ? "" : "is hidden";
  }
  if (from[0] == "platform" && to[0] == "platform")
    return PlatformFault(from, to);
  const auto fromFloor = std::find(Floors.begin(), Floors.end(), from[0]);
  const auto toFloor = std::find(Floors.begin(), Floors.end(), to[0]);
  if (fromFloor != Floors.end())
    return toFloor <= fromFloor ? "" : "points up";
  const bool ownTest = StartsWith(p_from, "tests/" + to[0] + "/") || (from[0] == "docs" && to[0] == "tests");
  return toFloor != Floors.end() || ownTest || to[0] == from[0] ? "" : "belongs to another program";
}

/// What is wrong with `p_from` having the line #include <p_to>.
std::string SystemFault(const std::string& p_from, const std::string& p_to) {
  static const std::regex Gl("(GL|EGL|GLES[0-9]?|epoxy)/.*|qopengl.*|QOpenGL.*", std::regex::icase);
  if (!std::regex_match(p_to, Gl) || Roots.count(Parts(p_from)[0]) == 0)
    return "";
  // A window brings the context on which the abstraction works: the viewer's, and the one that the README shows. What
  // else Qt has for GL stays out.
  const bool window = StartsWith(p_from, "examples/viewer/") || StartsWith(p_from, "tests/examples/viewer/") ||
                      p_from == "docs/snippets/QtWidgetSnippets.cpp";
  if (window && (p_to == "QOpenGLWidget" || p_to == "QOpenGLContext"))
    return "";
  const bool abstraction = StartsWith(p_from, "platform/ogl/") && fs::path(p_from).extension() == ".cpp";
  return abstraction || StartsWith(p_from, "tests/platform/ogl/") ? "" : "goes past the GL abstraction";
}

struct Row {
  const char* from;
  const char* to;
  const char* fault;
};

const Row Rows[] = {
    {"platform/ogl/Rgl.h", "platform/ogl/Vec.h", ""},
    {"platform/ogl/Rgl.h", "platform/Export.h", ""},
    {"platform/data/VertexIndex.h", "platform/interface/AnyInterface.h", ""},
    {"platform/ogl/Rgl.h", "platform/data/StreamWriter.h", "points up"},
    {"platform/ogl/Rgl.h", "platform/Version.h", "stands outside the floors"},
    {"platform/ogl/Rgl.h", "platform/sound/Beep.h", "is not on a known floor"},
    {"platform/Anything.h", "platform/debug/Logger.h", "is not on a known floor"},
    {"platform/ogl/Rgl.cpp", "algorithms/Array.h", "points up"},
    {"algorithms/Array.h", "platform/debug/Check.h", ""},
    {"algorithms/Array.h", "library/ColorMap.h", "points up"},
    {"library/ColorMap.h", "platform/ogl/Rgl.h", ""},
    {"library/ColorMap.h", "library/private/Gradient.h", "is hidden"},
    {"library/ColorMap.cpp", "library/private/Gradient.h", ""},
    {"library/private/Gradient.h", "library/private/Weights.h", ""},
    {"platform/ogl/Rgl.cpp", "platform/ogl/private/Model.h", ""},
    {"platform/ogl/Rgl.h", "platform/ogl/private/Model.h", "is hidden"},
    {"platform/assets/ImageCache.cpp", "platform/ogl/private/Model.h", "is hidden"},
    {"library/ColorMap.cpp", "platform/ogl/private/Model.h", "is hidden"},
    {"library/ColorMap.cpp", "tests/support/ReportCapture.h", "points up"},
    {"tests/library/ColorMapTest.cpp", "library/private/Gradient.h", "is hidden"},
    {"tests/library/ColorMapTest.cpp", "tests/support/ReportCapture.h", ""},
    {"tests/examples/CameraTest.cpp", "examples/scene/Camera.h", ""},
    {"tests/library/ColorMapTest.cpp", "examples/scene/Camera.h", "belongs to another program"},
    {"library/ColorMap.cpp", "ColorMap.h", "does not start at the root"},
    {"library/ColorMap.cpp", "../library/ColorMap.h", "does not start at the root"},
    {"platform/ogl/NativeGl.cpp", "<epoxy/gl.h", ""},
    {"platform/ogl/Rgl.h", "<epoxy/gl.h", "goes past the GL abstraction"},
    {"library/Texture.cpp", "<QOpenGLContext", "goes past the GL abstraction"},
    {"library/Texture.cpp", "<QGLWidget", ""},
    {"examples/viewer/SceneView.h", "<QOpenGLWidget", ""},
    {"examples/viewer/SceneView.cpp", "<QOpenGLFunctions", "goes past the GL abstraction"},
    {"docs/snippets/QtWidgetSnippets.cpp", "<QOpenGLWidget", ""},
    {"examples/scene/Scene.h", "<QOpenGLWidget", "goes past the GL abstraction"},
};

/// All headers and sources of the project, as paths from the root.
std::vector<std::string> ProjectFiles() {
  std::vector<std::string> files;
  for (const std::string& root : Roots) {
    if (!fs::exists(fs::path(VEK_SOURCE_DIR) / root))
      continue;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(fs::path(VEK_SOURCE_DIR) / root)) {
      const fs::path extension = entry.path().extension();
      if (extension == ".h" || extension == ".cpp" || extension == ".inl")
        files.push_back(fs::relative(entry.path(), VEK_SOURCE_DIR).generic_string());
    }
  }
  return files;
}

} // namespace

TEST(LayeringRules, TellGoodFromBad) {
  for (const Row& row : Rows) {
    const std::string fault = row.to[0] == '<' ? SystemFault(row.from, row.to + 1) : Fault(row.from, row.to);
    EXPECT_EQ(fault, row.fault) << row.from << " includes " << row.to;
  }
}

TEST(Layering, EveryIncludePointsDownAndEveryHeaderIsReadOnce) {
  const std::regex include("\\s*#\\s*include\\s*([\"<])([^\">]+)[\">].*");
  // Lists that are read several times, with another macro each time.
  const std::set<std::string> lists{"platform/ogl/GlFunctionList.h", "platform/ogl/GlTokenList.h"};
  std::size_t seen = 0;
  for (const std::string& file : ProjectFiles()) {
    int guards = 0;
    std::ifstream stream(fs::path(VEK_SOURCE_DIR) / file);
    for (std::string line; std::getline(stream, line);) {
      guards += line == "#pragma once" ? 1 : 0;
      std::smatch match;
      if (!std::regex_match(line, match, include))
        continue;
      ++seen;
      const std::string fault = match[1] == "\"" ? Fault(file, match[2]) : SystemFault(file, match[2]);
      EXPECT_EQ(fault, "") << file << ": " << line;
    }
    EXPECT_EQ(guards, fs::path(file).extension() == ".h" && lists.count(file) == 0 ? 1 : 0) << file;
  }
  EXPECT_GT(seen, 100u) << "the tree was not found";
}
