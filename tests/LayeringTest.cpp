// Which file may include which: the floors of the house. The rules are one function over two names; it is tested on
// made-up names first and then runs over the include lines of the whole tree.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

const std::set<std::string> Roots{"platform", "algorithms", "library", "examples", "tests", "bench", "fuzz", "tools"};

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
  if (StartsWith(p_to, "library/private/")) {
    const bool hidden =
        StartsWith(p_from, "library/private/") || (from[0] == "library" && fs::path(p_from).extension() == ".cpp");
    return hidden ? "" : "is hidden";
  }
  if (from[0] == "platform")
    return to[0] == "platform" ? PlatformFault(from, to) : "points up";
  if (from[0] == "algorithms")
    return to[0] == "platform" || to[0] == "algorithms" ? "" : "points up";
  if (from[0] == "library")
    return to[0] == "platform" || to[0] == "algorithms" || to[0] == "library" ? "" : "points up";
  const bool below = to[0] == "platform" || to[0] == "algorithms" || to[0] == "library";
  const bool own_test = StartsWith(p_from, "tests/" + to[0] + "/");
  return below || own_test || to[0] == from[0] ? "" : "belongs to another program";
}

/// What is wrong with `p_from` having the line #include <p_to>.
std::string SystemFault(const std::string& p_from, const std::string& p_to) {
  static const std::regex gl("(GL|EGL|GLES[0-9]?|epoxy)/.*|qopengl.*|QOpenGL.*", std::regex::icase);
  if (!std::regex_match(p_to, gl) || Roots.count(Parts(p_from)[0]) == 0)
    return "";
  const bool abstraction = StartsWith(p_from, "platform/ogl/") && fs::path(p_from).extension() == ".cpp";
  return abstraction || StartsWith(p_from, "tests/platform/ogl/") ? "" : "goes past the GL abstraction";
}

struct Row {
  const char* from;
  const char* to;
  const char* fault;
};

const Row QuotedRows[] = {
    {"platform/ogl/Rgl.h", "platform/ogl/Vec.h", ""},
    {"platform/ogl/Rgl.h", "platform/core/Ptr.h", ""},
    {"platform/ogl/Rgl.h", "platform/Export.h", ""},
    {"platform/data/VertexIndex.h", "platform/interface/AnyInterface.h", ""},
    {"platform/debug/Logger.h", "platform/types/Math.h", "points up"},
    {"platform/file/FilePath.cpp", "platform/assets/Resource.h", "points up"},
    {"platform/ogl/Rgl.h", "platform/data/StreamWriter.h", "points up"},
    {"platform/ogl/Rgl.h", "platform/Version.h", "stands outside the floors"},
    {"platform/ogl/Rgl.h", "platform/sound/Beep.h", "is not on a known floor"},
    {"platform/Anything.h", "platform/debug/Logger.h", "is not on a known floor"},
    {"platform/ogl/Rgl.cpp", "library/Texture.h", "points up"},
    {"platform/ogl/Rgl.cpp", "algorithms/Array.h", "points up"},
    {"algorithms/Array.h", "platform/debug/Check.h", ""},
    {"algorithms/Array.h", "algorithms/Interpret.h", ""},
    {"algorithms/Array.h", "library/ColorMap.h", "points up"},
    {"algorithms/Array.h", "library/private/Clone.h", "is hidden"},
    {"library/ColorMap.h", "platform/ogl/Rgl.h", ""},
    {"library/ColorMap.h", "library/Texture.h", ""},
    {"library/ColorMap.h", "library/private/Gradient.h", "is hidden"},
    {"library/ColorMap.cpp", "library/private/Gradient.h", ""},
    {"library/private/Gradient.h", "library/private/Weights.h", ""},
    {"library/private/Gradient.h", "library/ColorMap.h", ""},
    {"library/ColorMap.cpp", "tests/support/ReportCapture.h", "points up"},
    {"tests/library/ColorMapTest.cpp", "library/private/Gradient.h", "is hidden"},
    {"tests/library/ColorMapTest.cpp", "tests/support/ReportCapture.h", ""},
    {"tests/examples/CameraTest.cpp", "examples/scene/Camera.h", ""},
    {"tests/library/ColorMapTest.cpp", "examples/scene/Camera.h", "belongs to another program"},
    {"bench/ColorMapBench.cpp", "tests/support/ReportCapture.h", "belongs to another program"},
    {"examples/Gallery.cpp", "library/private/Gradient.h", "is hidden"},
    {"examples/Gallery.cpp", "platform/ogl/OffscreenContext.h", ""},
    {"library/ColorMap.cpp", "ColorMap.h", "does not start at the root"},
    {"library/ColorMap.cpp", "../library/ColorMap.h", "does not start at the root"},
    {"library/ColorMap.cpp", "Texture/ColorMap.h", "does not start at the root"},
};

const Row SystemRows[] = {
    {"platform/ogl/NativeGl.cpp", "epoxy/gl.h", ""},
    {"platform/ogl/Rgl.h", "epoxy/gl.h", "goes past the GL abstraction"},
    {"library/Texture.cpp", "GL/gl.h", "goes past the GL abstraction"},
    {"library/Texture.cpp", "QOpenGLContext", "goes past the GL abstraction"},
    {"library/Texture.cpp", "QGLWidget", ""},
    {"library/Texture.cpp", "vector", ""},
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

std::vector<std::string> Lines(const std::string& p_file) {
  std::ifstream stream(fs::path(VEK_SOURCE_DIR) / p_file);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  return lines;
}

} // namespace

TEST(LayeringRules, TellGoodFromBad) {
  for (const Row& row : QuotedRows)
    EXPECT_EQ(Fault(row.from, row.to), row.fault) << row.from << " includes \"" << row.to << '"';
  for (const Row& row : SystemRows)
    EXPECT_EQ(SystemFault(row.from, row.to), row.fault) << row.from << " includes <" << row.to << '>';
}

TEST(Layering, EveryIncludePointsDown) {
  const std::regex include("\\s*#\\s*include\\s*([\"<])([^\">]+)[\">].*");
  std::size_t seen = 0;
  for (const std::string& file : ProjectFiles()) {
    for (const std::string& line : Lines(file)) {
      std::smatch match;
      if (!std::regex_match(line, match, include))
        continue;
      ++seen;
      const std::string fault = match[1] == "\"" ? Fault(file, match[2]) : SystemFault(file, match[2]);
      EXPECT_EQ(fault, "") << file << ": " << line;
    }
  }
  EXPECT_GT(seen, 100u) << "the tree was not found";
}

TEST(Layering, EveryHeaderIsReadOnce) {
  // Lists that are read several times, with another macro each time.
  const std::set<std::string> lists{"platform/ogl/GlFunctionList.h", "platform/ogl/GlTokenList.h"};
  for (const std::string& file : ProjectFiles()) {
    if (fs::path(file).extension() != ".h" || lists.count(file) != 0)
      continue;
    const std::vector<std::string> lines = Lines(file);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "#pragma once"), 1) << file;
  }
}
