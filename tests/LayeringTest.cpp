// The layers of the architecture: which file may include which. The rules are functions of two paths, applied to
// made-up paths and to all include lines of the tree.

#include "tests/support/Test.h"

namespace {

const std::set<std::string> Roots{"platform", "algorithms", "library", "io",    "scene",
                                  "parallel", "widgets",    "testing", "apps",  "examples",
                                  "tests",    "bench",      "fuzz",    "tools", "docs"};

/// The libraries, lowest layer first.
constexpr std::array<const char*, 7> Layers{"platform", "algorithms", "library", "io", "scene", "parallel", "widgets"};
/// The folders of platform/, top layer first: each includes itself and those to its right.
constexpr std::array<const char*, 10> PlatformLayers{"data", "ogl",   "assets",    "file",  "utility",
                                                     "core", "model", "interface", "types", "debug"};

/// The components of a path.
std::vector<std::string> Parts(const std::string& p_path) {
  const fs::path path(p_path);
  return {path.begin(), path.end()};
}

bool StartsWith(const std::string& p_text, const std::string& p_start) {
  return p_text.compare(0, p_start.size(), p_start) == 0;
}

/// The fault of a platform file that includes another one; empty if allowed.
std::string PlatformFault(const std::vector<std::string>& p_from, const std::vector<std::string>& p_to) {
  if (p_to.size() == 2)
    return p_to[1] == "Export.h" ? "" : "is outside the layers";
  const auto from = std::find(PlatformLayers.begin(), PlatformLayers.end(), p_from[1]);
  const auto to = std::find(PlatformLayers.begin(), PlatformLayers.end(), p_to[1]);
  if (from == PlatformLayers.end() || to == PlatformLayers.end())
    return "is in no known layer";
  return from <= to ? "" : "points upwards";
}

/// The fault of `p_from` with the line #include "p_to", both as paths from the root; empty if allowed.
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
  if (from[0] == "testing")
    return to[0] == "testing" || to[0] == "platform" ? "" : "is not the platform";
  const auto fromLayer = std::find(Layers.begin(), Layers.end(), from[0]);
  const auto toLayer = std::find(Layers.begin(), Layers.end(), to[0]);
  if (from[0] == "widgets" && to[0] == "parallel")
    return "belongs to another library";
  if (fromLayer != Layers.end())
    return toLayer <= fromLayer ? "" : "points upwards";
  if (from[0] == "apps" && to[0] == "apps" && to[1] != "gallery" && from[1] != to[1])
    return "belongs to another program";
  const bool ownTest = StartsWith(p_from, "tests/" + to[0] + "/") || (from[0] == "docs" && to[0] == "tests");
  const bool testing = to[0] == "testing" && (from[0] == "tests" || from[0] == "docs");
  return toLayer != Layers.end() || ownTest || testing || to[0] == from[0] ? "" : "belongs to another program";
}

/// The fault of `p_from` with the line #include <p_to>; empty if allowed.
std::string SystemFault(const std::string& p_from, const std::string& p_to) {
  static const std::regex Gl("(GL|EGL|GLES[0-9]?|epoxy)/.*|qopengl.*|QOpenGL.*", std::regex::icase);
  if (!std::regex_match(p_to, Gl) || Roots.count(Parts(p_from)[0]) == 0)
    return "";
  // A window owns the context on which the abstraction works: the widgets, the viewer's window, and those of a host.
  const bool window = StartsWith(p_from, "widgets/") || StartsWith(p_from, "tests/widgets/") ||
                      StartsWith(p_from, "apps/viewer/") || StartsWith(p_from, "tests/apps/viewer/") ||
                      p_from == "docs/snippets/QtWidgetSnippets.cpp" || p_from == "examples/embedded.cpp";
  if (window && (p_to == "QOpenGLWidget" || p_to == "QOpenGLContext"))
    return "";
  const bool abstraction = StartsWith(p_from, "platform/ogl/") && fs::path(p_from).extension() == ".cpp";
  const bool counting = p_from == "tests/widgets/FigureViewMovingTest.cpp"; // what GL draws of a window
  return abstraction || counting || StartsWith(p_from, "tests/platform/ogl/") ? "" : "bypasses the GL abstraction";
}

struct Row {
  const char* from;
  const char* to;
  const char* fault;
};

/// Includes that break a rule; the tree itself has all that are allowed.
const Row Rows[] = {
    {"platform/ogl/Rgl.h", "platform/data/StreamWriter.h", "points upwards"},
    {"platform/ogl/Rgl.h", "platform/Version.h", "is outside the layers"},
    {"platform/ogl/Rgl.h", "platform/sound/Beep.h", "is in no known layer"},
    {"platform/ogl/Rgl.cpp", "algorithms/Array.h", "points upwards"},
    {"platform/ogl/Rgl.cpp", "testing/RecordingGl.h", "points upwards"},
    {"testing/RecordingGl.cpp", "library/ColorMap.h", "is not the platform"},
    {"testing/RecordingGl.cpp", "platform/ogl/private/QuietReport.h", "is hidden"},
    {"tests/testing/RecordingGlTest.cpp", "testing/private/RecordingModel.h", "is hidden"},
    {"examples/gallery/Main.cpp", "testing/RecordingGl.h", "belongs to another program"},
    {"library/ColorMap.cpp", "tests/support/FaultyGl.h", "points upwards"},
    {"library/ColorMap.h", "library/private/color/Gradient.h", "is hidden"},
    {"library/ColorMap.cpp", "platform/ogl/private/Model.h", "is hidden"},
    {"tests/library/ColorMapTest.cpp", "library/private/color/Gradient.h", "is hidden"},
    {"tests/library/ColorMapTest.cpp", "apps/gallery/Options.h", "belongs to another program"},
    {"apps/gallery/Options.cpp", "apps/viewer/Document.h", "belongs to another program"},
    {"io/ReadTable.h", "scene/Camera.h", "points upwards"},
    {"scene/Figure.cpp", "widgets/FigureView.h", "points upwards"},
    {"scene/Figure.cpp", "parallel/Compositor.h", "points upwards"},
    {"widgets/FigureView.cpp", "parallel/Compositor.h", "belongs to another library"},
    {"examples/quiver.cpp", "apps/gallery/Options.h", "belongs to another program"},
    {"library/ColorMap.cpp", "../library/ColorMap.h", "does not start at the root"},
    {"platform/ogl/Rgl.h", "<epoxy/gl.h", "bypasses the GL abstraction"},
    {"apps/viewer/ViewerWindow.cpp", "<QOpenGLFunctions", "bypasses the GL abstraction"},
    {"widgets/FigureView.cpp", "<QOpenGLFunctions", "bypasses the GL abstraction"},
    {"scene/Figure.h", "<QOpenGLWidget", "bypasses the GL abstraction"},
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

TEST(LayeringRules, FindEachFault) {
  for (const Row& row : Rows) {
    const std::string fault = row.to[0] == '<' ? SystemFault(row.from, row.to + 1) : Fault(row.from, row.to);
    EXPECT_EQ(fault, row.fault) << row.from << " includes " << row.to;
  }
}

TEST(Layering, IncludesPointDownwardsAndHeadersHaveGuards) {
  const std::regex include("\\s*#\\s*include\\s*([\"<])([^\">]+)[\">].*");
  // Lists that are included several times, each time with another macro.
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
  EXPECT_GT(seen, 100u) << "no tree found";
}
